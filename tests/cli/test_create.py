"""`create`: files of every kind, the sample league, CSV files, and what is refused."""
import os
import re

import support
from support import CANNOT_OPEN, DAMAGED, LIVE, PASSWORD, REFUSED, TABLES, USAGE

SAMPLE = support.TEST_DATA.parent.parent / "data" / "sample"
SAMPLE_TABLES = {"positions": "position info", "teams": "team info", "prize-types": "prize type info",
                 "prizes": "prize info", "players": "player info", "managers": "manager info"}


class Create(support.CliTest):
    def create(self, *words):
        return self.succeed("--folder", self.folder, *words)

    def files(self):
        return sorted(path.name for path in self.folder.iterdir())

    def assert_sound(self, path):
        self.assertEqual(support.independent_findings(path), "")
        self.succeed("check", path)

    def test_a_file_of_every_kind(self):
        names = {"live": LIVE, "test": "Halcyra - Test.mdb", "blank": "Halcyra - Blank.mdb",
                 "setup": "Halcyra - Setup.mdb", "BACKUP": r"Halcyra - Backup - \d{4}-\d\d-\d\d - \d\d-\d\d-\d\d\.mdb"}
        for kind, name in names.items():
            with self.subTest(kind=kind):
                before = set(self.files())
                self.create("--kind", kind, "create")
                made = set(self.files()) - before
                self.assertEqual(len(made), 1)
                self.assertRegex(made.pop(), f"^{name}$")
        for file in self.files():
            path = self.folder / file
            self.assert_sound(path)
            for table in TABLES:
                header, rows = support.tsv_rows(self.succeed("dump", table, "--file", path, "--password", PASSWORD))
                self.assertEqual(header, support.expected_text(table).split("\n")[0].split("\t"))
                self.assertEqual(rows, [["1", "0"]] if table == "settings" else [])
            self.fail_with(CANNOT_OPEN, "tables", "--file", path, "--password", "wrong", says="password")

    def test_the_sample_league(self):
        self.create("create", "--sample")
        path = self.folder / LIVE
        self.assert_sound(path)
        info = support.json_of(self.create("info", "--json"))
        self.assertEqual(info["currentSeasonID"], 0)
        for name, table in SAMPLE_TABLES.items():
            lines = support.csv_of((SAMPLE / f"{name}.csv").read_text("utf-8"))
            header, rows = support.tsv_rows(self.succeed("dump", table, "--file", path))
            self.assertEqual(len(rows), len(lines) - 1, table)
            self.assertEqual(info["rows"][table], len(rows))
            # Each line is there, with every value that it gives.
            given = [dict(zip(lines[0], line)) for line in lines[1:]]
            stored = {row[0]: dict(zip(header, row)) for row in rows}
            for line in given:
                row = stored[line[header[0]]]
                for column, text in line.items():
                    if column != "is retired":
                        self.assertEqual(row[column] or "", text)
        self.assertEqual(info["rows"]["team info"], 32)

    def test_what_was_dumped_as_csv_fills_a_new_league(self):
        old = support.FIXTURES / "league.mdb"
        for name, table in SAMPLE_TABLES.items():
            text = self.succeed("dump", table, "--file", old, "--format", "csv")
            (self.folder / f"{name}.csv").write_text(text.replace(",-1\n", ",true\n"), "utf-8")
        self.create("create", "--csv", str(self.folder))
        for table in SAMPLE_TABLES.values():
            self.assertEqual(self.succeed("dump", table, "--file", self.folder / LIVE), support.expected_text(table))
        self.assert_sound(self.folder / LIVE)

    def test_a_bad_line_is_named_and_no_file_is_made(self):
        cases = {
            "managers.csv": ("id,first name,last name\n1,Ann,Lee\nx,Bo,Li\n", "line 3"),
            "positions.csv": ("id,abbr,desc\n1,QB,Quarterback\n\n1,RB,Running back\n", "line 4"),
            "players.csv": ("id,first name,last name,position id\n1,A,B,99\n", "line 2"),
            "teams.csv": ("id,no such column\n1,2\n", "line 1"),
            "prizes.csv": ("id,desc\n1," + "x" * 300 + "\n", "line 2"),
            "prize-types.csv": ('type id,type name\n1,"open\n', "line 2"),
        }
        for name, (text, line) in cases.items():
            with self.subTest(file=name):
                folder = self.folder / "csv"
                folder.mkdir(exist_ok=True)
                for old in folder.iterdir():
                    old.unlink()
                (folder / name).write_text(text, "utf-8")
                done = self.fail_with(REFUSED, "--folder", self.folder, "create", "--csv", folder, says=line)
                self.assertIn(name, done.stderr)
                self.assertEqual(self.files(), ["csv"])

    def test_folders_without_anything_to_read(self):
        self.fail_with(REFUSED, "--folder", self.folder, "create", "--csv", self.folder, says="players.csv")
        self.fail_with(CANNOT_OPEN, "--folder", self.folder, "create", "--csv", self.folder / "none", says="none")
        self.assertEqual(self.files(), [])

    def test_nothing_is_replaced_without_force(self):
        path = self.league()
        before = support.digest(path)
        self.fail_with(REFUSED, "--folder", self.folder, "create", says="--force")
        self.assertEqual((support.digest(path), self.files()), (before, [LIVE]))
        # What goes wrong on the way leaves the old file, with --force too.
        self.fail_with(CANNOT_OPEN, "--folder", self.folder, "create", "--force", "--csv", self.folder / "none")
        self.assertEqual((support.digest(path), self.files()), (before, [LIVE]))
        self.create("create", "--force")
        self.assertEqual(support.tsv_rows(self.succeed("dump", "player info", "--file", path))[1], [])
        path.write_bytes(b"damaged")
        self.fail_with(REFUSED, "--folder", self.folder, "create")
        self.create("create", "--force")
        self.assert_sound(path)
        self.assertEqual(self.files(), [LIVE])

    def test_folders_that_are_none(self):
        (self.folder / "file").write_text("x", "utf-8")
        for folder in (self.folder / "none", self.folder / "file"):
            done = support.run("--folder", folder, "create")
            self.assertIn(done.returncode, (CANNOT_OPEN, support.SYSTEM_FAILED))
            self.assertIn(folder.name, done.stderr)
        os.mkdir(self.folder / LIVE)
        for words in (["create"], ["create", "--force"]):
            self.assertIn(support.run("--folder", self.folder, *words).returncode,
                          (REFUSED, CANNOT_OPEN, DAMAGED, support.SYSTEM_FAILED))
        self.assertTrue((self.folder / LIVE).is_dir())

    def test_json_and_options_that_exclude_each_other(self):
        made = support.json_of(self.create("create", "--sample", "--json"))
        self.assertTrue(re.search(r"Halcyra - Live\.mdb$", made["file"]))
        self.assertEqual(made["rows"]["team info"], 32)
        self.fail_with(USAGE, "--folder", self.folder, "create", "--sample", "--csv", self.folder)


if __name__ == "__main__":
    support.main()
