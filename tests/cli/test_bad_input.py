"""Files that cannot be opened, passwords, locks and permissions."""
import os
import shutil
import stat
import subprocess
import time
import unittest

import support
from support import CANNOT_OPEN, DAMAGED, FIXTURES, LIVE, PASSWORD, REFUSED, SYSTEM_FAILED, USAGE

NOBODY = 65534


class Files(support.CliTest):
    def test_files_that_are_not_there(self):
        for command in (["tables"], ["dump", "settings"], ["query", "select * from [settings]"], ["check"]):
            self.fail_with(CANNOT_OPEN, *command, "--file", self.folder / "none.mdb", says="none.mdb")
            self.fail_with(CANNOT_OPEN, *command, "--file", self.folder / "no folder" / "x.mdb", says="no folder")
            self.fail_with(CANNOT_OPEN, *command, "--file", self.folder / "*.mdb", says="*.mdb")
            self.fail_with(CANNOT_OPEN, "--folder", self.folder, *command, says=LIVE)
            self.assertNotEqual(support.run(*command, "--file", self.folder).returncode, 0)

    def test_files_that_are_something_else(self):
        for content in (b"", b"x", b"\0" * 4096, b"PK\x03\x04" * 5000, os.urandom(20000)):
            path = self.folder / "other.mdb"
            path.write_bytes(content)
            self.fail_with(DAMAGED, "tables", "--file", path, says="other.mdb")
            self.assertEqual(path.read_bytes(), content)

    def test_league_commands_say_what_is_missing(self):
        for command in ("info", "settings"):
            done = self.fail_with(CANNOT_OPEN, "--folder", self.folder, command,
                                  says="Database file: \\Halcyra - Live.mdb is missing.")
            self.assertIn("create", done.stderr)
        # The live file is what a league's folder is known by: without it no other kind is found.
        test = self.league(name="Halcyra - Test.mdb")
        self.fail_with(CANNOT_OPEN, "--folder", self.folder, "--kind", "test", "info",
                       says="Database file: \\Halcyra - Test.mdb is missing.")
        shutil.copyfile(test, self.folder / LIVE)
        self.succeed("--folder", self.folder, "--kind", "test", "info")
        self.fail_with(CANNOT_OPEN, "--folder", self.folder, "--kind", "setup", "info", says="Halcyra - Setup.mdb")

    def test_the_environment_names_the_folder_and_the_option_wins(self):
        self.league()
        self.assertIn("11", self.succeed("settings", env={"HALCYRA_FOLDER": str(self.folder)}))
        self.fail_with(CANNOT_OPEN, "--folder", self.folder / "other", "settings",
                       env={"HALCYRA_FOLDER": str(self.folder)})


class Passwords(support.CliTest):
    OTHER = FIXTURES / "league-damaged-password.mdb"

    def test_every_way_to_give_one(self):
        secret = self.folder / "secret"
        secret.write_text("otherpw123\r\nnot this\n", "utf-8")
        query = ["query", "select * from [settings]", "--file", self.OTHER]
        settings = support.expected_text("settings")
        self.assertEqual(self.succeed(*query, "--password", "otherpw123"), settings)
        self.assertEqual(self.succeed(*query, "--password-file", secret), settings)
        self.assertEqual(self.succeed(*query, env={"HALCYRA_PASSWORD": "otherpw123"}), settings)
        self.assertEqual(self.succeed(*query, "--password-file", secret, env={"HALCYRA_PASSWORD": "wrong"}), settings)
        self.fail_with(CANNOT_OPEN, *query, "--password-file", self.folder / "none", says="none")

    def test_wrong_missing_and_too_long_ones(self):
        league = FIXTURES / "league.mdb"
        for password in ("wrong", "", "TALWEP83RN", PASSWORD + "x", "x" * 21, "x" * 5000, "\u20ac" * 20):
            for command in (["tables"], ["check"]):
                done = self.fail_with(CANNOT_OPEN, *command, "--file", league, "--password", password, says="password")
                if password:
                    self.assertNotIn(password, done.stderr)
        self.fail_with(CANNOT_OPEN, "tables", "--file", self.OTHER, says="password")
        self.fail_with(USAGE, "tables", "--file", league, "--password", "a;b", says="semicolon")
        self.succeed("tables", "--file", FIXTURES / "league-no-password.mdb", "--password", "whatever")

    def test_a_league_with_another_password(self):
        shutil.copyfile(self.OTHER, self.folder / LIVE)
        for command in ("info", "settings"):
            self.fail_with(CANNOT_OPEN, "--folder", self.folder, command, says="password")


class Locks(support.CliTest):
    def reader_at_work(self, path):
        """A dump that stands still in the middle of its work, because nobody takes its output."""
        reader = subprocess.Popen([support.PROGRAM, "dump", "player info", "--file", str(path), "--json"],
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=support.environment())
        self.addCleanup(reader.wait)
        self.addCleanup(reader.stdout.close)
        self.addCleanup(reader.kill)
        reader.stdout.read(1)
        return reader

    def test_a_file_in_use_is_not_opened_for_writing_nor_replaced(self):
        path = self.league()
        before = support.digest(path)
        reader = self.reader_at_work(path)
        for words in (["settings"], ["info"], ["create", "--force"]):
            self.fail_with(CANNOT_OPEN, "--folder", self.folder, *words)
        self.succeed("dump", "settings", "--file", path)  # others may read
        self.assertEqual(support.digest(path), before)
        reader.kill()
        reader.wait()
        self.succeed("--folder", self.folder, "settings")  # a lock goes with its process


@unittest.skipUnless(os.name == "posix", "permissions are those of POSIX")
class Permissions(support.CliTest):
    def setUp(self):
        super().setUp()
        self.path = self.league()
        self.unprivileged = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
        self.folder.chmod(0o755)
        try:
            subprocess.run([support.PROGRAM, "--version"], check=True, stdout=subprocess.DEVNULL, **self.unprivileged)
        except (PermissionError, subprocess.CalledProcessError):
            self.skipTest("the program is in a folder that an ordinary user cannot read")

    def test_a_read_only_file_is_read_but_not_opened_for_writing(self):
        self.path.chmod(stat.S_IRUSR | stat.S_IRGRP | stat.S_IROTH)
        before = support.digest(self.path)
        self.assertEqual(self.succeed("dump", "settings", "--file", self.path, **self.unprivileged),
                         support.expected_text("settings"))
        self.fail_with(SYSTEM_FAILED, "--folder", self.folder, "settings", "--current-season", "3", says=LIVE,
                       **self.unprivileged)
        self.assertEqual(support.digest(self.path), before)

    def test_a_file_that_may_not_be_read(self):
        self.path.chmod(0)
        if self.unprivileged or os.geteuid() != 0:
            self.fail_with(SYSTEM_FAILED, "dump", "settings", "--file", self.path, says=LIVE, **self.unprivileged)

    def test_a_folder_that_may_not_be_written(self):
        self.folder.chmod(0o555)
        self.addCleanup(self.folder.chmod, 0o755)
        before = sorted(p.name for p in self.folder.iterdir())
        self.fail_with(SYSTEM_FAILED, "--folder", self.folder, "--kind", "test", "create", **self.unprivileged)
        self.assertEqual(sorted(p.name for p in self.folder.iterdir()), before)


if __name__ == "__main__":
    support.main()
