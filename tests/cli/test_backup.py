"""`backup`, `restore` and `compact`: copies of the league, put back, and made anew."""
import os
import subprocess
import unittest

import support
from leagues import LeagueTest
from support import CANNOT_OPEN, DAMAGED, USAGE


def leftovers(folder):
    return sorted(path.name for path in folder.iterdir() if "being-made" in path.name or path.name.endswith("-log"))


class Backups(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture(season=12)

    def tearDown(self):
        self.assertEqual(leftovers(self.folder), [])

    def test_a_backup_is_the_league_and_can_be_put_back(self):
        before = self.snapshot()
        backup = self.told("backup")["backup"]
        self.assertRegex(backup, r"Halcyra - Backup - \d{4}-\d\d-\d\d - \d\d-\d\d-\d\d\.mdb$")
        self.done("prize", "set", "best trade", "35")
        changed = self.snapshot()
        second = self.told("backup")["backup"]
        self.assertEqual([entry["file"] for entry in self.told("backup", "--list")], sorted([backup, second], reverse=True))
        self.refused("restore", backup, says="nothing was restored")
        told = self.told("restore", backup.rsplit("\\", 1)[1], "--yes")
        self.assertEqual(self.snapshot(), before)
        self.assert_sound()
        self.assertEqual(told["before"], "kept")
        self.done("restore", told["kept"], "--yes")
        self.assertEqual(self.snapshot(), changed)

    def test_a_league_that_cannot_be_read_is_put_aside(self):
        before = self.snapshot()
        self.done("backup")
        self.path.write_bytes(b"no longer a league" * 1000)
        kept = self.told("restore", "--latest", "--yes")["kept"].replace("\\", "/")
        self.assertEqual(self.snapshot(), before)
        with open(kept, "rb") as file:
            self.assertEqual(file.read(), b"no longer a league" * 1000)

    def test_compacting_changes_no_row(self):
        before = self.snapshot()
        told = self.told("compact")
        self.assertLess(told["pages"], told["pagesBefore"])
        self.assertIsNone(told["kept"])
        self.assertEqual(self.snapshot(), before)
        for table in support.TABLES:
            self.assert_seen_by_others(table)
        self.assert_sound()

    def test_what_is_refused_changes_nothing(self):
        self.refused("restore", says="which backup", code=USAGE)
        self.refused("restore", "--latest", says="no backup")
        self.refused("restore", "gone.mdb", "--yes", says="gone.mdb", code=CANNOT_OPEN)
        self.league("league-stale-moved.mdb", "stale.mdb")
        self.refused("restore", self.folder / "stale.mdb", "--yes", says="damaged", code=DAMAGED)
        self.league("league-damaged-pointer.mdb", "Halcyra - Test.mdb")
        self.fail_with(DAMAGED, *self.at, "compact", "--kind", "test", says="damaged")
        shell = subprocess.Popen([support.PROGRAM, *map(str, self.at), "shell"], stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, env=support.environment())
        self.addCleanup(shell.communicate)
        shell.stdin.write(b"position list\n")
        shell.stdin.flush()
        shell.stdout.readline()  # the shell has the file open now
        backup = self.league("league.mdb", "other.mdb")
        for words in (["backup"], ["restore", backup, "--yes"], ["compact"]):
            self.refused(*words, says="exclusively", code=CANNOT_OPEN)


@unittest.skipIf(os.name == "nt", "modes and links of this kind are not there")
class Files(LeagueTest):
    """Who may read the files that commands make, and what lies in their way."""

    def setUp(self):
        super().setUp()
        self.use_fixture(season=12)

    def rights(self, path):
        status = os.stat(path)
        return oct(status.st_mode), status.st_uid, status.st_gid

    def test_every_file_is_as_private_as_the_league(self):
        os.chmod(self.path, 0o640)
        if os.geteuid() == 0:
            os.chown(self.path, 12345, 23456)
        wanted = self.rights(self.path)
        backup = self.told("backup")["backup"].replace("\\", "/")
        self.assertEqual(self.rights(backup), wanted)
        with subprocess.Popen([support.PROGRAM, "--folder", self.folder, "shell"], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=support.environment()) as shell:
            shell.stdin.write(b"prize set 1=31\n")
            shell.stdin.flush()
            while b"were saved" not in shell.stdout.readline():
                pass
            self.assertEqual(self.rights(str(self.path) + "-log"), wanted)
            shell.stdin.close()
            shell.stdout.read()
        for words in (["compact"], ["restore", "--latest", "--yes"], ["check", "--repair"], ["create", "--force", "--sample"]):
            self.done(*words)
            for file in [self.path, *self.folder.glob("*Backup*")]:
                self.assertEqual(self.rights(file), wanted, f"{file} after {words}")
        os.unlink(self.path)
        self.done("restore", backup, "--yes")
        self.assertEqual(self.rights(self.path), wanted)

    def test_nothing_is_written_through_links_or_in_place_of_devices(self):
        victim, out, pipe = self.folder / "victim", self.folder / "teams.csv", self.folder / "pipe"
        victim.write_text("mine")
        (self.folder / "teams.csv.being-made").symlink_to(victim)
        (self.folder / ".being-made-0123456789abcdef").symlink_to(victim)
        os.link(victim, self.folder / ".being-made-0000000000000000")
        left = self.folder / ".being-made-1111111111111111"
        left.write_text("left by a crash")
        out.write_text("old")
        out.chmod(0o600)
        self.done("export", "teams", "--output", out, "--force")
        self.done("backup")
        self.assertEqual((victim.read_text(), left.exists(), oct(out.stat().st_mode)), ("mine", False, oct(0o100600)))
        self.assertEqual(len(list(self.folder.glob(".being-made-0*"))), 2, "what is not left by a crash stays")
        os.mkfifo(pipe)
        with subprocess.Popen(["cat", pipe], stdout=subprocess.PIPE) as reader:
            self.done("export", "teams", "--output", pipe, "--force")
            self.assertEqual(reader.communicate()[0].decode("utf-8"), out.read_text("utf-8"))
        self.assertTrue(pipe.is_fifo())

    def test_commands_that_race_leave_whole_files(self):
        self.done("backup")
        commands = [["restore", "--latest", "--yes"], ["compact"], ["create", "--force", "--sample"], ["create", "--sample"],
                    ["prize", "set", "1=77"], ["backup"]]
        for isThere in (True, False):
            if not isThere:
                self.path.unlink()
            running = [(words, subprocess.Popen([support.PROGRAM, "--folder", self.folder, *words], stderr=subprocess.PIPE,
                                                stdout=subprocess.DEVNULL, env=support.environment()))
                       for words in commands * 3 + commands[:2]]
            for words, process in running:
                error = process.communicate()[1].decode("utf-8")
                self.assertIn(process.returncode, (support.DONE, support.REFUSED, CANNOT_OPEN), f"{words}: {error}")
                self.assertNotIn("being-made", error)
            for file in [self.path, *self.folder.glob("*Backup*")]:
                self.assertIn(support.run("check", file).returncode, (support.DONE, support.REFUSED), file)
            self.assertEqual(leftovers(self.folder), [])


if __name__ == "__main__":
    support.main()
