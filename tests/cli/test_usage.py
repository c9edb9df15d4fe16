"""Command lines that are wrong: what is mistyped is named, the nearest suggested, and the code says so."""
import os
import pty
import subprocess
import unittest

import support
from support import FIXTURES, PROGRAM, USAGE

LEAGUE = FIXTURES / "league.mdb"


class Usage(support.CliTest):
    def test_mistyped_commands(self):
        for typed, meant in {"dmup": "dump", "chekc": "check", "quiery": "query", "tabels": "tables", "Info": "info",
                             "creat": "create", "setings": "settings"}.items():
            for words in ([typed], [typed, "player info"], ["--json", typed, "--file", "x"]):
                done = self.fail_with(USAGE, *words, says=f"'{typed}'")
                self.assertIn(f"Did you mean '{meant}'?", done.stderr)
                self.assertEqual(done.stdout, "")
        self.assertNotIn("Did you mean", self.fail_with(USAGE, "zzzzzz", says="'zzzzzz'").stderr)

    def test_mistyped_options(self):
        cases = [(["dump", "--fromat", "csv", "settings"], "--fromat", "--format"),
                 (["dump", "settings", "--flie=x"], "--flie", "--file"),
                 (["--flder", "x", "info"], "--flder", "--folder"),
                 (["check", "--passwrod", "x"], "--passwrod", "--password"),
                 (["create", "--samples"], "--samples", "--sample"), (["tables", "--jsn"], "--jsn", "--json")]
        for words, typed, meant in cases:
            done = self.fail_with(USAGE, *words, says=f"'{typed}'")
            self.assertIn(f"Did you mean '{meant}'?", done.stderr)

    def test_what_is_missing_or_too_much(self):
        self.fail_with(USAGE, says="command")
        self.fail_with(USAGE, "dump", says="TABLE")
        self.fail_with(USAGE, "query", says="STATEMENT")
        self.fail_with(USAGE, "dump", "player info", "team info", says="team info")
        self.fail_with(USAGE, "--kind", "lvie", "info", says="lvie")
        self.fail_with(USAGE, "dump", "settings", "--format", "xml", "--file", LEAGUE, says="xml")
        self.fail_with(USAGE, "info", "tables")
        self.fail_with(USAGE, "dump", "settings", "--file", says="--file")

    def test_help_and_version(self):
        text = self.succeed("--help")
        for command in ("create", "info", "settings", "tables", "dump", "query", "check", "--folder", "--kind"):
            self.assertIn(command, text)
        self.assertIn("--password-file", self.succeed("dump", "--help"))
        self.assertRegex(self.succeed("--version"), r"^halcyra \d+\.\d+\.\d+\n$")

    def test_global_options_stand_before_or_after_the_command(self):
        first = self.succeed("--json", "dump", "settings", "--file", LEAGUE)
        self.assertEqual(self.succeed("dump", "settings", "--file", LEAGUE, "--json"), first)

    @unittest.skipUnless(os.name == "posix", "needs a pseudo-terminal")
    def test_colour_is_for_terminals_that_want_it(self):
        self.assertIn(b"\x1b[", self.messages_on_a_terminal())
        self.assertNotIn(b"\x1b[", self.messages_on_a_terminal(NO_COLOR="1"))

    @staticmethod
    def messages_on_a_terminal(**changes):
        ours, theirs = pty.openpty()
        try:
            env = support.environment(**changes)
            if not changes:
                env.pop("NO_COLOR", None)
            subprocess.run([PROGRAM, "dmup"], stderr=theirs, stdout=subprocess.DEVNULL, env=env, check=False)
            return os.read(ours, 4096)
        finally:
            os.close(ours)
            os.close(theirs)


if __name__ == "__main__":
    support.main()
