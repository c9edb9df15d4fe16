"""Completion in bash: the script is sourced, and asked as a terminal asks it."""
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

import support


@unittest.skipUnless(shutil.which("bash"), "needs bash")
class Completion(support.CliTest):
    def complete(self, *words, folder="."):
        program = 'eval "$SCRIPT"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _halcyra; printf "%s\\n" "${COMPREPLY[@]}"'
        done = subprocess.run(["bash", "--norc", "-c", program, "bash", "halcyra", *words], cwd=folder, text=True,
                              capture_output=True, check=True, env={"PATH": "/usr/bin:/bin", "SCRIPT": self.script})
        self.assertEqual(done.stderr, "")
        return set(done.stdout.split("\n")) - {""}

    def test_what_may_come_next(self):
        self.script = self.succeed("completion", "bash")
        cases = [(["dr"], {"draft"}), (["season", "l"], {"list", "lock"}), (["draft", "pick", "--pos"], {"--position"}),
                 (["--kind", ""], {"live", "test", "blank", "backup", "setup"}), (["draft", "--kind", "=", "b"], {"blank", "backup"}),
                 (["--kind", "test", "ch"], {"check"}), (["season", "set", "--started", ""], {"yes", "no"}),
                 (["search", "--type", "pl"], {"players"}), (["query", "x", "--fol"], {"--folder"}),
                 (["season", "set", "--year", "draft", "p"], set()), (["nothing", "p", "pr"], {"prize"})]
        for words, expected in cases:
            self.assertEqual(self.complete(*words), expected, words)

    def test_every_command_of_the_help_is_offered(self):
        self.script = self.succeed("completion", "bash")
        lines = self.succeed("--help").split("Subcommands:")[1].splitlines()
        named = {line.split()[0] for line in lines if line.startswith("  ") and line[2] != " "}
        self.assertEqual(self.complete(""), named)
        self.assertIn("completion", named)

    def test_names_of_files(self):
        self.script = self.succeed("completion", "bash")
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "two words.csv").touch()
            Path(folder, "teams").mkdir()
            self.assertEqual(self.complete("import", "players", "t", folder=folder), {"two words.csv", "teams"})
            self.assertEqual(self.complete("create", "--csv", "t", folder=folder), {"teams"})

    @unittest.skipUnless(shutil.which("zsh"), "needs zsh")
    def test_zsh_takes_the_script(self):
        program = 'eval "$SCRIPT"; [[ -n ${_comps[halcyra]} ]] && (( $+functions[_halcyra] ))'
        done = subprocess.run(["zsh", "-f", "-c", program], cwd=self.folder, text=True, capture_output=True, check=False,
                              env={"PATH": "/usr/bin:/bin", "HOME": str(self.folder), "SCRIPT": self.succeed("completion", "zsh")})
        self.assertEqual((done.returncode, done.stderr), (0, ""))


if __name__ == "__main__":
    support.main()
