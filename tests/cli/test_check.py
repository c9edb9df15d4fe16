"""`check` on sound and on damaged files, and every other command on damaged ones: right, or a clear error."""
import shutil

import support
from support import CANNOT_OPEN, DAMAGED, DONE, FIXTURES, TABLES

UNUSABLE = ["empty", "header-only", "magic", "jet3", "catalog"]
DAMAGED_TABLE = ["tabledef", "index-root", "index-leaf", "rowoffset", "pointer"]
CUT = ["truncated", "truncated-midpage"]
SOUND = ["draftno", "draftmanager", "nullsetting", "nosetting"]


def damaged(fault):
    return FIXTURES / f"league-damaged-{fault}.mdb"


class Check(support.CliTest):
    def test_sound_files(self):
        names = ["league.mdb", "league-encoded.mdb", "league-blank.mdb", "league-no-password.mdb"]
        names += [damaged(fault).name for fault in SOUND]
        for name in names:
            with self.subTest(file=name):
                self.assertIn("is sound", self.succeed("check", FIXTURES / name))
                report = support.json_of(self.succeed("check", "--file", FIXTURES / name, "--json"))
                self.assertEqual((report["sound"], report["findings"], report["pages"]),
                                 (True, [], (FIXTURES / name).stat().st_size // 4096))

    def test_damaged_files(self):
        for fault in UNUSABLE + DAMAGED_TABLE + CUT:
            with self.subTest(fault=fault):
                self.fail_with(DAMAGED, "check", damaged(fault))

    def test_findings_are_the_result_and_parse_as_json(self):
        done = support.run("check", damaged("rowoffset"), "--json")
        report = support.json_of(done.stdout)
        self.assertEqual((done.returncode, report["sound"]), (DAMAGED, False))
        self.assertIn("player info", " ".join(report["findings"]))

    def test_bodies_of_moved_rows_that_nothing_leads_to_are_findings(self):
        done = self.fail_with(DAMAGED, "check", FIXTURES / "league-stale-moved.mdb", says="14 findings")
        self.assertEqual(len(done.stdout.splitlines()), 14)

    def test_dumps_of_damaged_files_are_right_or_fail(self):
        # The damage of most files is in one table: the rest must still be readable.
        for fault in UNUSABLE + DAMAGED_TABLE + CUT:
            for table in TABLES:
                with self.subTest(fault=fault, table=table):
                    done = support.run("dump", table, "--file", damaged(fault))
                    if done.returncode == DONE:
                        self.assertEqual(done.stdout, support.expected_text(table))
                    else:
                        self.assertEqual(done.returncode, DAMAGED, done.stderr)
                        self.assertNotEqual(done.stderr, "")
                    if fault in UNUSABLE:
                        self.assertEqual(done.returncode, DAMAGED)
                    if fault in DAMAGED_TABLE and table not in ("player info",):
                        self.assertEqual(done.returncode, DONE)
        for fault in ("tabledef", "rowoffset", "pointer"):
            self.fail_with(DAMAGED, "dump", "player info", "--file", damaged(fault), says="player info")

    def test_league_commands_on_damaged_files(self):
        for fault in UNUSABLE:
            with self.subTest(fault=fault):
                shutil.copyfile(damaged(fault), self.folder / support.LIVE)
                for command in ("info", "settings"):
                    self.fail_with(DAMAGED, "--folder", self.folder, command)

    def test_no_command_changes_a_file(self):
        for path in sorted(FIXTURES.glob("*.mdb")):
            copy = self.folder / path.name
            shutil.copyfile(path, copy)
            before = support.digest(copy)
            for words in (["check", copy], ["tables", "--file", copy], ["dump", "player info", "--file", copy],
                          ["query", "select * from [draft info] where [manager id] = 3", "--file", copy]):
                self.assertIn(support.run(*words).returncode, (DONE, DAMAGED, CANNOT_OPEN), words)
                self.assertEqual(support.digest(copy), before, words)
        self.assertEqual(sorted(p.name for p in self.folder.iterdir()), sorted(p.name for p in FIXTURES.glob("*.mdb")))


if __name__ == "__main__":
    support.main()
