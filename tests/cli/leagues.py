"""Tests that play on a league: its rows before and after, as this program and as others read them."""
import json
import shutil
import subprocess

import support
import test_witnesses


class LeagueTest(support.CliTest):
    """A test on a league in a folder of its own; every command runs in a process of its own."""

    def setUp(self):
        super().setUp()
        self.at = ["--folder", self.folder]

    def use_fixture(self, season=None):
        """The league of the fixtures, with the season of an id as the current one."""
        self.path = self.league()
        if season is not None:
            self.succeed(*self.at, "settings", "--current-season", season)

    def use_sample(self):
        """A new sample league without seasons."""
        self.succeed(*self.at, "create", "--sample", "--force")
        self.path = self.folder / support.LIVE

    def done(self, *words):
        """What a command that succeeds prints."""
        return self.succeed(*self.at, *words)

    def told(self, *words):
        """The same as JSON."""
        return json.loads(self.done(*words, "--json"))

    def refused(self, *words, says, code=support.REFUSED):
        """A command is refused, says why, and has changed nothing in the file."""
        before = support.digest(self.path)
        done = self.fail_with(code, *self.at, *words, says=says)
        self.assertEqual(support.digest(self.path), before, f"{words} was refused, and the file has changed")
        self.assertEqual(done.stdout, "", f"{words}")
        return done.stderr

    def rows(self, table):
        """The rows of a table as objects."""
        return json.loads(self.succeed("dump", table, "--file", self.path, "--json"))

    def of_season(self, table, season):
        return [row for row in self.rows(table) if row["season id"] == season]

    def free_team(self, season):
        """The id of a team that nobody has picked, as `draft pick` takes it."""
        taken = {row["team id"] for row in self.of_season("draft info", season)}
        return f"T{next(row['id'] for row in self.rows('team info') if row['id'] not in taken)}"

    def snapshot(self):
        return {table: self.rows(table) for table in support.TABLES}

    def assert_changed_only(self, before, *tables):
        """Nothing but these tables has changed, the file is sound, and an independent reader sees the same."""
        after = self.snapshot()
        for table in support.TABLES:
            if table in tables:
                self.assertNotEqual(after[table], before[table], table)
            else:
                self.assertEqual(after[table], before[table], table)
        self.assert_sound()
        for table in tables:
            self.assert_seen_by_others(table)

    def assert_sound(self):
        self.succeed("check", self.path)
        self.assertEqual(support.independent_findings(self.path), "")

    def assert_seen_by_others(self, table):
        if not shutil.which("mdb-export"):
            return
        header, rows = support.tsv_rows(self.succeed("dump", table, "--file", self.path))
        types = {t["name"]: [c["type"] for c in t["columns"]]
                 for t in json.loads(self.succeed("tables", "--file", self.path, "--json"))}
        their_header, their_rows = test_witnesses.Witnesses.mdb_export(self.path, table, types[table])
        self.assertEqual(their_header, header)
        self.assertEqual(sorted(their_rows, key=repr), sorted(rows, key=repr))

    def shell(self, *lines, code=support.DONE):
        """Runs lines in one shell."""
        done = subprocess.run([support.PROGRAM, *map(str, self.at), "shell"], input="\n".join(lines).encode(),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=support.SECONDS,
                              env=support.environment(), check=False)
        self.assertEqual(done.returncode, code, done.stderr.decode())
        return done.stdout.decode(), done.stderr.decode()
