"""Master records: players, managers, prizes and positions are added, changed and deleted, one command each."""
import os
import subprocess
import unittest

import support
from leagues import LeagueTest
from support import USAGE

BIG = 2**31 - 1


class Changing(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture()

    def next_id(self, table):
        return max(row["id"] for row in self.rows(table)) + 1

    def test_records_come_change_and_go(self):
        cases = [
            ("player info", ["player", "add", "Ann", "Lee", "--position", "qb", "--team", "1"],
             {"first name": "Ann", "last name": "Lee", "position id": 1, "team id": 1, "is retired": False},
             ["player", "edit", "ann", "lee", "--position", "Kicker", "--retired", "yes", "--last", "O'Lee"],
             {"position id": 6, "is retired": True, "last name": "O'Lee"}, ["player", "delete", "Ann O'Lee"]),
            ("manager info", ["manager", "add", "Ann", "Lee"], {"first name": "Ann", "last name": "Lee"},
             ["manager", "edit", "Ann", "Lee", "--first", "Zoë"], {"first name": "Zoë"}, ["manager", "delete", "lee"]),
            ("prize info", ["prize", "add", "Best name", "--type", "special"], {"desc": "Best name", "type id": 6},
             ["prize", "edit", "best name", "--type", "1", "--name", "Worst name"], {"desc": "Worst name", "type id": 1},
             ["prize", "delete", "worst"]),
            ("position info", ["position", "add", "P", "Punter"], {"abbr": "P", "desc": "Punter"},
             ["position", "edit", "p", "--short", "PU"], {"abbr": "PU"}, ["position", "delete", "punter"])]
        for table, add, added, edit, edited, delete in cases:
            before, id = self.snapshot(), self.next_id(table)
            self.assertEqual(self.told(*add)["id"], id)
            row = {"id": id, **added}
            self.assertIn(row, self.rows(table))
            self.assert_changed_only(before, table)
            self.assertEqual(self.told(*edit)["id"], id)
            self.assertIn({**row, **edited}, self.rows(table))
            self.refused(*delete, says="--yes")
            self.assertIn("Deleted", self.done(*delete, "--yes"))
            self.assertEqual(self.snapshot(), before)
        self.assert_sound()

    def test_what_is_missing_or_wrong_is_told(self):
        player = ["player", "add", "Ann", "Lee"]
        cases = [(["player", "add", "", ""], "First name is required."), (["player", "add", "Ann", ""], "Last name is"),
                 (player, "Player position is required."), ([*player, "--position", "QB"], "Player team is required."),
                 ([*player, "--position", "XX", "--team", "1"], "There is no position 'XX'"),
                 ([*player, "--position", "0", "--team", "1"], "no position with the id 0"),
                 ([*player, "--position", "QB", "--team", "-3"], "no team with the id -3"),
                 (["player", "add", "x" * 51, "Lee", "--position", "QB", "--team", "1"], "it has 51 characters, and may have 50"),
                 (["player", "edit", "P1", "--team", ""], "Player team is required."),
                 (["player", "edit", "P4", "--first", "x"], "Player team is required."),
                 (["player", "edit", "P2", "--last", "\U0001f3c8" * 26], "it has 52 characters"),
                 (["manager", "add", "", "Lee"], "First name is required."),
                 (["manager", "edit", "1", "--last", ""], "Last name is required."),
                 (["prize", "add", "", "--type", "1"], "Description is required."),
                 (["prize", "add", "Cup"], "Type of prize is required."),
                 (["prize", "add", "Cup", "--type", "4"], "no type of prize with the id 4"),
                 (["prize", "add", "Cup", "--type", "Wekly"], "There are Weekly, Final standing"),
                 (["position", "add", "", ""], "Description is required."),
                 (["position", "add", "", "Back"], "Abbreviation is required."),
                 (["position", "add", "qb", "Back"], "'qb' is that of Quarterback (1, QB) already"),
                 (["position", "add", "x" * 11, "Back"], "may have 10")]
        for words, says in cases:
            self.refused(*words, says=says)
        for kind in ("player", "manager", "prize", "position"):
            self.refused(kind, "edit", "1", says="Say what to change", code=USAGE)
            self.refused(kind, "add", says="is required", code=USAGE)

    def test_ids_that_nobody_has(self):
        self.use_sample()
        option = {"player": "--first", "manager": "--first", "prize": "--name", "position": "--name"}
        for kind, change in option.items():
            for id in (0, -1, BIG) if kind == "player" else (0, -1, 999999, -BIG - 1):
                self.refused(kind, "edit", id, change, "x", says=f"no {kind} with the id {id}")
                said = self.refused(kind, "delete", id, "--yes", says="ID is required" if id == 0 else "Record not found")
                self.assertIn(f"{kind} {id}", said)
            self.refused(kind, "delete", BIG + 1, "--yes", says=f"{BIG + 1}")
        self.refused("player", "show", "P3000000000", says="P3000000000")

    def test_namesakes_are_told_and_asked_about(self):
        self.use_sample()
        for _ in range(2):
            done = support.run(*self.at, "player", "add", "Percival", "Thimblemarsh", "--position", "QB", "--team", "AMB")
            self.assertIn("There is Percival Thimblemarsh (P", done.stderr)
        self.refused("player", "delete", "Thimblemarsh", "--yes", says="More than one")
        self.done("player", "delete", "p482", "--yes")

    def test_players_are_shown_and_listed(self):
        row = next(r for r in self.rows("draft info") if r["player id"] and r["season id"] == 1)
        years = {s["id"]: s["season year"] for s in self.rows("season info")}
        expected = sorted(years[r["season id"]] for r in self.rows("draft info")
                          if r["player id"] == row["player id"] and r["season id"] in years)
        self.assertEqual(self.told("player", "show", f"P{row['player id']}")["drafted"], expected)
        self.assertIn(str(expected[0]), self.done("player", "show", row["player id"]))
        for options, fits in (([], lambda r: not r["is retired"]), (["--retired"], lambda r: True),
                              (["--team", "1", "--position", "TE"],
                               lambda r: r["team id"] == 1 and r["position id"] == 4 and not r["is retired"])):
            wanted = {r["id"] for r in self.rows("player info") if fits(r) and (r["first name"] or r["last name"])}
            self.assertEqual({p["id"] for p in self.told("player", "list", *options)}, wanted)

    def test_a_shell_sees_its_own_changes_and_forgets_those_that_failed(self):
        out, _ = self.shell("manager edit 1 --last Newname", "manager list --all", "player add Ann Lee --position QB --team 1",
                            "player show Ann Lee", "search Lee --type managers", "player delete Ann Lee --yes",
                            "player list --team 1")
        self.assertIn("Newname", out.split("\n", 1)[1])
        self.assertIn("Ann Lee", out)
        self.assertNotIn("Ann Lee", out.split("Deleted")[1].split("\n", 1)[1])

    def test_a_league_whose_highest_id_is_taken(self):
        folder = self.folder / "csv"
        folder.mkdir()
        (folder / "managers.csv").write_text(f"id,first name,last name\n{BIG},Ann,Lee\n", "utf-8")
        self.succeed(*self.at, "create", "--csv", folder, "--force")
        self.refused("manager", "add", "Bob", "Lee", says="could not be saved")
        self.assertIn("Ann Lee", self.done("manager", "edit", BIG, "--first", "Bob"))


class Deleting(LeagueTest):
    def test_what_others_refer_to_stays(self):
        self.use_fixture()
        referring = {"player": [("draft info", "player id")],
                     "manager": [(t, "manager id") for t in ("playing info", "draft info", "winning info")],
                     "prize": [(t, "prize id") for t in ("money distribution info", "winning info")],
                     "position": [(t, "position id") for t in ("player info", "team info")]}
        gone = {}
        for kind, references in referring.items():
            used, ids = set(), {row["id"] for row in self.rows(f"{kind} info")}
            for table, column in references:
                here = {row[column] for row in self.rows(table)} & ids
                used |= here
                for id in sorted(here)[:1]:
                    self.refused(kind, "delete", id, "--yes", says="included in other related records.")
            gone[kind] = sorted(ids - used)[:1]
        self.assertTrue(gone["player"])
        for kind, ids in gone.items():
            for id in ids:
                self.done(kind, "delete", id, "--yes")
                self.refused(kind, "delete", id, "--yes", says="Record not found")
                self.assertNotIn(id, [row["id"] for row in self.rows(f"{kind} info")])
        self.assert_sound()

    def test_where_it_is_used_is_told(self):
        self.use_fixture()
        said = self.refused("position", "delete", "QB", "--yes", says="It is the position of")
        self.assertRegex(said, r"of \d+ players and \d+ team")
        self.assertIn("2", self.refused("manager", "delete", "1", "--yes", says="Has a part in the season"))


class Importing(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_sample()
        self.file = self.folder / "players.csv"

    def give(self, content):
        self.file.write_bytes(content.encode() if isinstance(content, str) else content)

    def take(self, content, *options, code=support.DONE):
        """What the import of a content reports."""
        self.give(content)
        done = support.run(*self.at, "import", "players", self.file, "--json", *options)
        self.assertEqual(done.returncode, code, done.stderr)
        return support.json_of(done.stdout)

    def test_two_thousand_players(self):
        before = self.snapshot()
        teams, positions = [[row["abbr"] for row in self.rows(t)] for t in ("team info", "position info")]
        lines = [f'New{i},"Lastname, {i}",{positions[i % 5]},{teams[i % 32]},{"yes" if i % 7 == 0 else ""}'
                 for i in range(2000)]
        content = "\ufeff" + "\r\n".join(["First Name,last_name,position,team,is retired", *lines, ""])
        digest = support.digest(self.path)
        self.assertEqual(len(self.take(content, "--dry-run")["added"]), 2000)
        self.assertEqual(support.digest(self.path), digest, "a dry run changes nothing")
        report = self.take(content)
        self.assertEqual([one["id"] for one in report["added"]], list(range(481, 2481)))
        self.assert_changed_only(before, "player info")
        self.assertEqual(len(self.rows("player info")), 2480)
        self.assertEqual(self.rows("player info")[-1], {
            "id": 2480, "first name": "New1999", "last name": "Lastname, 1999", "position id": 1999 % 5 + 1,
            "team id": 1999 % 32 + 1, "is retired": False})
        self.assertEqual(len(self.take(content)["unchanged"]), 2000, "a second time changes nothing")
        self.assertEqual([one["id"] for one in self.told("search", "New1999")], ["P2480"])
        self.done("player", "edit", "New1999", "--last", "Found")
        self.done("player", "delete", "New1999", "Found", "--yes")
        self.assertEqual(self.told("search", "New1999"), [])
        self.assert_sound()
        self.assert_seen_by_others("player info")

    def test_who_is_meant(self):
        one = {"id": 1, "first name": "Percival", "last name": "Thimblemarsh", "position id": 1, "team id": 1}
        row = next(r for r in self.rows("player info") if r["id"] == 1)
        self.assertEqual({**row, **one}, row)
        head = "id,first name,last name,position,team,is retired\n"
        cases = [("1,,,,ASP,\n", "changed", {"team id": 2}), (",percival,THIMBLEMARSH,QB,BAR,\n", "changed", {"team id": 3}),
                 ("P1,Percival,Thimblemarsh,RB,BAR,no\n", "changed", {"position id": 2}),
                 (",Percival,Thimblemarsh,Running back,Barrowgate Badgers,yes\n", "changed", {"is retired": True}),
                 ("1,Percival,Thimblemarsh,2,3,1\n", "unchanged", {})]
        for line, kind, change in cases:
            row.update(change)
            report = self.take(head + line)
            self.assertEqual([[k, len(v)] for k, v in report.items() if v], [[kind, 1]], line)
            self.assertEqual(next(r for r in self.rows("player info") if r["id"] == 1),
                             {**row, "first name": report[kind][0]["firstName"], "last name": report[kind][0]["lastName"]})
        refused = [(",Percival,Thimblemarsh,RB,BAR,\n", "There is P1"), (",Percival,Thimblemarsh,QB,BAR,\n", "There is P1"),
                   ("999,A,B,QB,BAR,\n", "no player with the id 999"), ("-1,A,B,QB,BAR,\n", "no player with the id -1"),
                   ("x,A,B,QB,BAR,\n", "takes an id or 'new', not 'x'"), ("9999999999,A,B,QB,BAR,\n", "9999999999")]
        for line, reason in refused:
            report = self.take(head + line, code=support.REFUSED)
            self.assertIn(reason, report["refused"][0]["reason"])
        self.assertEqual(self.take(head + "new,Percival,Thimblemarsh,RB,BAR,\n")["added"][0]["id"], 481)
        self.assertEqual(self.take("first name,last name,team\nWilfred,Lanternbottom-Jingle,BAR\n")["changed"][0]["id"], 2)
        said = self.take(head + ",Percival,Thimblemarsh,RB,,\n", code=support.REFUSED)
        self.assertIn("P1, P481", said["refused"][0]["reason"])

    def test_lines_that_are_refused_are_all_told_and_the_others_taken(self):
        lines = [b"first name,last name,position,team", b"Ann,Lee,QB,AMB", b",Lee,QB,AMB", b"Bob,,QB,AMB", b"Bob,Lee,,AMB",
                 b"Bob,Lee,QB,", b"Bob,Lee,XX,AMB", b"Bob,Lee,QB,Nowhere", b"Ann,Lee,QB,AMB", b"Bob,Lee", b"B\xff,Lee,QB,AMB",
                 b'B"b,Lee,QB,AMB', b"x" * 51 + b",Lee,QB,AMB", b"", b"Cy,Lee,RB,AMB", b'"not closed,Lee']
        report = self.take(b"\n".join(lines), code=support.REFUSED)
        self.assertEqual([one["firstName"] for one in report["added"]], ["Ann", "Cy"])
        reasons = [(3, "First name is required."), (4, "Last name is required."), (5, "Player position is required."),
                   (6, "Player team is required."), (7, "There is no position 'XX'."), (8, "There is no team 'Nowhere'."),
                   (9, "the same player as on line 2"), (10, "2 fields"), (11, "not UTF-8"), (12, "A quote stands inside"),
                   (13, "51 characters"), (16, "A quoted field is not closed")]
        self.assertEqual([one["line"] for one in report["refused"]], [line for line, _ in reasons])
        for (line, reason), told in zip(reasons, report["refused"], strict=True):
            self.assertIn(reason, told["reason"], line)
        self.assertEqual(len(self.rows("player info")), 482)
        text = support.run(*self.at, "import", "players", self.file)
        self.assertIn("line 7 refused: There is no position 'XX'.", text.stdout)
        self.assertIn("0 players added, 0 changed, 2 as they are; 12 lines refused.", text.stdout)
        if os.name == "posix":
            piped = subprocess.run([support.PROGRAM, *map(str, self.at), "import", "players", "/dev/stdin"],
                                   input=b"\xef\xbb\xbffirst name,last name,position,team\nDee,Lee,RB,AMB\n",
                                   capture_output=True, env=support.environment(), check=False)
            self.assertIn(b"1 player added", piped.stdout, piped.stderr)
        self.assertNotIn("\x1b", text.stderr, "a progress bar is for terminals")
        self.assert_sound()

    def test_files_that_cannot_be_taken_at_all(self):
        for content, says in (("", "names of the columns is missing"), ("frist name,last name\n", "Did you mean 'first name'"),
                              ("first name;last name\n", "separated by commas"), ("id,id\n", "named twice"),
                              ("first name,team\n", "are missing"), ("\"id", "not closed"), ("id\rname", "carriage return")):
            self.give(content)
            self.refused("import", "players", self.file, says=says)
        self.refused("import", "players", self.folder / "none.csv", says="none.csv", code=support.CANNOT_OPEN)
        self.refused("import", "players", self.folder, says="cannot be read", code=support.CANNOT_OPEN)
        self.refused("import", "players", says="FILE", code=USAGE)

    @unittest.skipUnless(os.name == "posix", "needs a pseudo-terminal")
    def test_a_progress_bar_on_a_terminal(self):
        import pty
        self.give("first name,last name,position,team\n" + "".join(f"A{i},Lee,QB,AMB\n" for i in range(3)))
        ours, theirs = pty.openpty()
        try:
            words = [support.PROGRAM, *map(str, self.at), "import", "players", str(self.file)]
            done = subprocess.run(words, stderr=theirs, stdout=subprocess.PIPE, env=support.environment(), check=True)
            said = os.read(ours, 4096).decode()
        finally:
            os.close(ours)
            os.close(theirs)
        self.assertRegex(said, r"^\rImporting \[\.+\] 0 of 3\x1b\[K")
        self.assertIn("\r\x1b[KThe players were saved", said, "the bar is gone in the end")
        self.assertIn(b"3 players added", done.stdout)


if __name__ == "__main__":
    support.main()
