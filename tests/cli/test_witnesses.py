"""Independent readers of .mdb files see the same rows as we do, in files of others and in files that we made."""
import json
import shutil
import subprocess
import unittest

import support
from support import FIXTURES, LIVE, PASSWORD, TABLES, TOOLS

READER = TOOLS / "node"


def as_text(value):
    """A value of a witness as `dump --format tsv` writes it; Null stays None."""
    if value is None or isinstance(value, str):
        return value
    return str(-int(value) if isinstance(value, bool) else value)


class Witnesses(support.CliTest):
    def ours(self, path, table):
        header, rows = support.tsv_rows(self.succeed("dump", table, "--file", path))
        return header, sorted(rows, key=repr)

    def sample(self):
        self.succeed("--folder", self.folder, "create", "--sample")
        return self.folder / LIVE

    def changed_league(self):
        """A copy of a league of others, which we have written into."""
        path = self.league()
        self.succeed("--folder", self.folder, "settings", "--current-season", "7")
        return path

    def compare(self, path, read_table):
        types = {t["name"]: [c["type"] for c in t["columns"]]
                 for t in support.json_of(self.succeed("tables", "--file", path, "--json"))}
        self.assertEqual(sorted(types), TABLES)
        for table in TABLES:
            with self.subTest(file=path.name, table=table):
                header, rows = self.ours(path, table)
                their_header, their_rows = read_table(path, table, types[table])
                self.assertEqual(their_header, header)
                self.assertEqual(sorted(their_rows, key=repr), rows)

    @unittest.skipUnless(shutil.which("mdb-export"), "mdb-export is not installed")
    def test_mdb_export(self):
        for path in (FIXTURES / "league.mdb", self.sample(), self.changed_league()):
            self.compare(path, self.mdb_export)

    @staticmethod
    def mdb_export(path, table, types):
        null, quote = "\x01", "\x02"  # marks that no text of a league holds
        text = subprocess.run(["mdb-export", "-0", null, "-q", quote, "-d", "\x1f", "-R", "\x1e", str(path), table],
                              stdout=subprocess.PIPE, check=True, timeout=support.SECONDS).stdout.decode("utf-8")
        lines = [[None if cell == null else cell.replace(quote, "") for cell in line.split("\x1f")]
                 for line in text.split("\x1e")[:-1]]
        flags = [i for i, kind in enumerate(types) if kind == "yes/no"]
        for line in lines[1:]:
            for i in flags:
                line[i] = {"1": "-1", "0": "0"}[line[i]]
        return lines[0], lines[1:]

    @unittest.skipUnless(shutil.which("node") and (READER / "node_modules/mdb-reader").is_dir(),
                         "mdb-reader is not installed")
    def test_mdb_reader(self):
        for path in (FIXTURES / "league.mdb", FIXTURES / "league-encoded.mdb", self.sample(), self.changed_league()):
            done = subprocess.run(["node", str(READER / "read-tables.mjs"), str(path), PASSWORD],
                                  stdout=subprocess.PIPE, check=True, timeout=support.SECONDS)
            read = json.loads(done.stdout)
            self.compare(path, lambda _, table, __, read=read: (
                read[table]["columns"], [[as_text(cell) for cell in row] for row in read[table]["rows"]]))


if __name__ == "__main__":
    support.main()
