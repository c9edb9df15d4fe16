"""`tables` and `dump`: every table of the fixtures, in every format, as independent readers see it."""
import os
import unittest

import support
from support import DONE, FIXTURES, SYSTEM_FAILED, TABLES, REFUSED


class Dump(support.CliTest):
    def test_tsv_of_every_table_is_what_independent_readers_saw(self):
        for fixture in ("league.mdb", "league-encoded.mdb", "league-no-password.mdb", "league-stale-moved.mdb"):
            for table in TABLES:
                with self.subTest(fixture=fixture, table=table):
                    text = self.succeed("dump", table, "--file", FIXTURES / fixture, "--format", "tsv")
                    if fixture == "league-stale-moved.mdb" and table == "player info":
                        self.assertEqual(text.count("\n"), 2501)  # some of its players were changed
                    else:
                        self.assertEqual(text, support.expected_text(table))

    def test_empty_tables_are_a_header(self):
        for table in TABLES:
            header = support.expected_text(table).split("\n")[0] + "\n"
            self.assertEqual(self.succeed("dump", table, "--file", FIXTURES / "league-blank.mdb"), header)

    def test_csv_and_json_hold_the_same_values(self):
        for table in TABLES:
            with self.subTest(table=table):
                header, rows = support.tsv_rows(support.expected_text(table))
                file = FIXTURES / "league.mdb"
                as_csv = support.csv_of(self.succeed("dump", table, "--file", file, "--format", "csv"))
                self.assertEqual(as_csv, [header] + [[cell or "" for cell in row] for row in rows])
                as_json = support.json_of(self.succeed("dump", table, "--file", file, "--json"))
                self.assertEqual(as_json, support.json_of(self.succeed("dump", table, "--file", file, "--format", "json")))
                texts = [[None if v is None else str(-v if isinstance(v, bool) else v) for v in row.values()]
                         for row in as_json]
                self.assertEqual(texts, rows)
                self.assertTrue(all(list(row) == header for row in as_json))

    def test_names_ignore_case_and_unknown_ones_bring_a_suggestion(self):
        file = FIXTURES / "league.mdb"
        self.assertEqual(self.succeed("dump", "Player INFO", "--file", file), support.expected_text("player info"))
        done = self.fail_with(REFUSED, "dump", "palyer info", "--file", file, says="did you mean 'player info'?")
        self.assertIn("palyer info", done.stderr)
        self.assertEqual(done.stdout, "")

    def test_tables_lists_rows_and_keys(self):
        file = FIXTURES / "league.mdb"
        listed = {line.split("  ")[0]: line.split() for line in self.succeed("tables", "--file", file).splitlines()[1:]}
        self.assertEqual(sorted(listed), TABLES)
        tables = support.json_of(self.succeed("tables", "--file", file, "--json"))
        self.assertEqual({t["name"]: t["rows"] for t in tables},
                         {table: len(support.expected_rows(table)) for table in TABLES})
        keys = {t["name"]: [i["columns"] for i in t["indexes"] if i["primary"]] for t in tables}
        self.assertEqual(keys["draft info"], [["season id", "draft no"]])
        self.assertEqual(keys["prize type info"], [["type id"]])
        with_system = support.json_of(self.succeed("tables", "--file", file, "--json", "--system"))
        self.assertIn("MSysObjects", [t["name"] for t in with_system])

    def test_tables_all_lists_objects_that_dump_names_and_refuses(self):
        file = FIXTURES / "league.mdb"
        objects = support.json_of(self.succeed("tables", "--file", file, "--json", "--all"))
        kinds = {o["name"]: o["kind"] for o in objects}
        self.assertEqual(kinds["player info"], "table")
        self.assertEqual(kinds["MSysObjects"], "system table")
        self.assertEqual(kinds["Databases"], "container")
        self.assertIn("player info  ", self.succeed("tables", "--file", file, "--all"))
        relationship = next(name for name, kind in kinds.items() if kind == "relationship")
        self.fail_with(REFUSED, "dump", relationship, "--file", file, says="'%s' is a relationship" % relationship)
        self.assertEqual(self.succeed("dump", "MSysQueries", "--file", file).count("\n"), 1)

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is always full")
    def test_output_that_cannot_be_written_is_a_failure(self):
        for words in (["dump", "player info", "--file", FIXTURES / "league.mdb"],
                      ["dump", "settings", "--file", FIXTURES / "league.mdb"],
                      ["tables", "--file", FIXTURES / "league.mdb"], ["--version"], ["--help"]):
            with self.subTest(words=words), open("/dev/full", "wb") as full:
                self.fail_with(SYSTEM_FAILED, *words, stdout=full, says="standard output")

    def test_messages_do_not_mix_with_results_nor_bring_colour_to_a_file(self):
        done = support.run("query", "select * from [settings]", "--explain", "--file", FIXTURES / "league.mdb")
        self.assertEqual((done.returncode, done.stdout), (DONE, support.expected_text("settings")))
        self.assertIn("settings", done.stderr)
        self.assertNotIn("\x1b", self.fail_with(REFUSED, "dump", "x", "--file", FIXTURES / "league.mdb").stderr)
        quiet = support.run("-q", "query", "select * from [settings]", "--explain", "--file", FIXTURES / "league.mdb")
        self.assertEqual(quiet.stderr, "")


if __name__ == "__main__":
    support.main()
