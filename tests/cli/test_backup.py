"""`backup`, `restore` and `compact`: copies of the league, put back, and made anew."""
import subprocess

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


if __name__ == "__main__":
    support.main()
