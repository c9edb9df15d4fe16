"""`draft`, a process a command: what is picked is stored, what must not be is refused."""
import support
from drafting import DraftTest
from leagues import LeagueTest


class Drafting(DraftTest):
    def test_a_whole_draft_runs_there_and_back(self):
        for number in range(1, 13):
            self.assertEqual(self.told("draft", "clock")["onTheClock"]["pick"], number)
            text = self.done("draft", "pick", f"P{number}" if number % 3 else f"T{number}")
            self.assertIn(f"Pick {number}, round {(number - 1) // 4 + 1}: ", text)
        self.assertIn("The draft is complete: all 12 picks are made.", text)
        self.expect(*[f"P{n}" if n % 3 else f"T{n}" for n in range(1, 13)])
        self.refused("draft", "pick", "P20", says="complete")
        self.assertIn("complete", self.done("draft", "clock"))
        self.assertIsNone(self.told("draft", "clock")["onTheClock"])

    def test_the_clock_tells_who_comes_next(self):
        self.done("draft", "pick", "P1")
        text = self.done("draft", "clock")
        for part in ("Barnaby Rumblethorpe", "2 of 12", "1 of 3", "pick 2 of 4",
                     "Lucian Nettleworth (3), Osric Marrowgate (4), Osric Marrowgate (5)"):
            self.assertIn(part, text)
        clock = self.told("draft", "clock")
        self.assertEqual([clock["onTheClock"][key] for key in ("pick", "round", "pickInRound")], [2, 1, 2])
        self.assertEqual([(turn["pick"], turn["manager"]["id"]) for turn in clock["next"]], [(3, 6), (4, 10), (5, 10)])
        # A gap is due first, and is followed by the pick after all that are made.
        self.done("draft", "pick", "--pick", "2", "P2")
        self.done("draft", "pick", "--pick", "4", "P4")
        clock = self.told("draft", "clock")
        self.assertEqual([clock["onTheClock"]["pick"], clock["next"][0]["pick"]], [3, 5])

    def test_names(self):
        for words, who in ((["percival", "thimblemarsh"], "P1"), (["Thimblemarsh, PERCIVAL"], None), (["WILFRED LANTERNB"], "P2"),
                           (["Dimblewood,", "Olaf"], "P3"), (["o'dapplewick"], "P23"), (["de", "la", "vere"], "P485"),
                           (["carl de la"], None), (["Herons"], "T1"), (["asp"], "T2"), (["Barrowgate", "Badgers"], "T3"),
                           (["P7"], "P7"), (["t7"], "T7")):
            with self.subTest(words=words):
                if who:
                    self.assertEqual(self.told("draft", "pick", *words)["picks"][0]["picked"]["id"], who)
                else:
                    self.refused("draft", "pick", *words, says="taken")
        for words in (["nobody"], ["P9999"], ["T99"], ["P0"], ["*"], ["x' or 'a' like 'a"]):
            self.refused("draft", "pick", *words, says="There is no")
        self.refused("draft", "pick", "", says="whom", code=support.USAGE)
        self.refused("draft", "pick", "Olfa", "Dimblewodo", says="Did you mean Olaf Dimblewood (P3, AMB, RB)?")
        self.assertNotIn("Did you mean", self.refused("draft", "pick", "Xyzzy", says="There is no"))
        self.refused("draft", "pick", "3", says="P3 is a player, T3 a team")

    def test_namesakes_are_told_apart(self):
        listed = self.refused("draft", "pick", "Ann", "Twin", says="More than one")
        for facts in ("P481  Ann Twin  AMB   QB", "P482  Ann Twin  AMB   RB", "P483  Ann Twin  ASP   QB"):
            self.assertIn(facts, listed)
        self.assertNotIn("Twinning", listed)
        self.assertIn("P482", self.refused("draft", "pick", "twin", "--team", "amb", says="More than one"))
        self.refused("draft", "pick", "twin", "--team", "XXX", says="no team 'XXX'")
        self.refused("draft", "pick", "twin", "--position", "AMB", says="no position 'AMB'")
        # What does not fit lists whom the name alone would mean.
        self.assertIn("P483", self.refused("draft", "pick", "twin", "--team", "BAR", says="of team BAR"))
        self.done("draft", "pick", "twin", "--team", "amb", "--position", "rb")
        self.done("draft", "pick", "twin", "--team", "ASP")
        # Two are taken; the list says so, and nobody else is picked in their place.
        listed = self.refused("draft", "pick", "twin", says="More than one")
        self.assertIn("taken in round 1 by Dimblestone", listed)
        self.done("draft", "pick", "twin", "--position", "QB", "--team", "AMB")
        self.expect("P482", "P483", "P481")

    def test_retired_players(self):
        self.assertIn("--retired", self.refused("draft", "pick", "Gone", says="who plays"))
        self.done("draft", "pick", "Gone", "--retired")
        self.expect("P486")

    def test_who_is_taken_is_named_with_round_and_manager(self):
        self.done("draft", "pick", "P1")
        self.done("draft", "pick", "--pick", "6", "Herons")
        self.refused("draft", "pick", "P1", says="Percival Thimblemarsh (P1, AMB, QB) is taken in round 1 by Dimblestone, pick 1.")
        self.refused("draft", "pick", "AMB", "--pick", "9", says="(T1, AMB, DEF) is taken in round 2 by Nettleworth, pick 6.")
        self.refused("draft", "pick", "P1", "--pick", "1", says="taken")

    def test_picks_that_there_are_not(self):
        for number in ("0", "-1", "13", "2147483647"):
            for words in (["pick", "P1", f"--pick={number}"], ["clear", number], ["undo", number]):
                if not number.startswith("-") or words[0] == "pick":
                    self.refused("draft", *words, says=f"Pick {number} lies outside the draft")
        self.refused("draft", "clear", "5", says="Pick 5 is empty already.")
        self.refused("draft", "undo", says="the draft is empty")
        for number in ("x", "2147483648", "1.5", ""):
            self.refused("draft", "pick", "P1", f"--pick={number}", says="--pick", code=support.USAGE)

    def test_replacing_and_clearing_leave_no_trace(self):
        for who in ("P1", "T2", "P3", "P4", "P5"):
            self.done("draft", "pick", who)
        self.assertIn("instead of", self.done("draft", "pick", "P11", "--pick", "1"))
        self.done("draft", "pick", "P12", "--pick", "2")   # a player for a team
        self.done("draft", "pick", "T13", "--pick", "3")   # a team for a player
        self.expect("P11", "P12", "T13", "P4", "P5")
        self.done("draft", "clear", "5", "1")
        self.expect(None, "P12", "T13", "P4")
        self.assertEqual(self.told("draft", "undo")["picks"][0]["pick"], 4)
        self.done("draft", "undo", "2")
        self.expect(None, None, "T13")

    def test_another_manager_may_get_a_pick(self):
        self.done("draft", "pick", "P1", "--manager", "Marrowgate")
        self.expect("P1", managers={1: 10})
        self.assertIn("Made by another than whose turn it was: 1 by Marrowgate", self.done("draft", "board"))
        self.done("draft", "pick", "P1", "--pick", "1")
        self.expect("P1")
        self.refused("draft", "pick", "P2", "--manager", "Saddleley", says="no manager of the season 2030 'Saddleley'")

    def test_clearing_everything_wants_to_be_confirmed(self):
        self.done("draft", "pick", "P1")
        self.refused("draft", "clear", says="not cleared")
        before = self.snapshot()
        self.done("draft", "clear", "--yes")
        self.assert_changed_only(before, "draft info")
        self.expect()
        self.assertIn("empty already", self.done("draft", "clear"))

    def test_locks_are_honoured(self):
        self.done("draft", "pick", "P1")
        changes = (["pick", "P2"], ["undo"], ["undo", "1"], ["clear", "1"], ["clear", "--yes"], ["save"])
        self.done("season", "set", "--season-locked", "yes")
        for words in changes:
            self.refused("draft", *words, says="The season 2030 is locked")
        self.done("season", "set", "--season-locked", "no")
        self.done("season", "lock", "draft", "--yes")
        for words in changes:
            self.refused("draft", *words, says="The draft of the season 2030 is locked")
        self.assertTrue(self.told("draft", "clock")["isLocked"])
        self.assertIn("Thimblemarsh", self.done("draft", "board"))

    def test_an_order_that_is_not_settled(self):
        self.done("season", "set", "--managers", "5")
        self.refused("draft", "pick", "P1", says="set to 5 managers, and 4 take part")
        self.assertIn("(nobody)", self.done("draft", "board"))
        self.done("manager", "join", "Ganderfield")
        for words in (["pick", "P1"], ["clock"]):
            self.refused("draft", *words, says="not ranked: Abner Ganderfield")
        self.assertIn("not ranked: Abner Ganderfield", self.done("draft", "board"))
        self.done("manager", "leave", "Ganderfield")
        self.done("season", "use", "2031", "--create")
        self.refused("draft", "pick", "P1", says="The draft of the season 2031 has no picks")


class Boards(LeagueTest):
    def test_every_season_of_the_fixture_agrees_with_its_rows(self):
        self.use_fixture()
        header, rows = support.tsv_rows(support.expected_text("draft info"))
        self.assertEqual(header, ["season id", "draft no", "manager id", "player id", "team id"])
        for season, picks in ((1, 150), (2, 192), (3, 96), (5, 12), (6, None), (7, None), (8, None), (10, None), (11, 192),
                              (12, 84), (13, 0), (15, 0)):
            self.done("settings", "--current-season", season)
            board = self.told("draft", "board")
            shown = [[str(season), str(p["pick"]), str(p["manager"]["id"]), p["picked"] and p["picked"]["id"]]
                     for p in board["picks"] if p["manager"]]
            stored = [[s, no, manager, f"P{player}" if player else f"T{team}" if team else None]
                      for s, no, manager, player, team in rows if s == str(season)]
            self.assertEqual(shown, sorted(stored, key=lambda row: int(row[1])))
            if picks is not None:
                self.assertEqual(len(shown), picks)

    def test_columns_say_how_wide_it_may_be(self):
        self.use_fixture(season=12)
        for columns, grids in (("80", 3), ("60", 3), ("120", 2), ("200", 1), ("x", 3), ("0", 3), ("-5", 3), ("24", 12)):
            text = self.succeed(*self.at, "draft", "board", env={"COLUMNS": columns})
            self.assertEqual(text.count(" 1 →"), grids, columns)
            width = int(columns) if columns.isdigit() and columns != "0" else 80
            # Hebrew and the like has a column a letter; marks that combine have none.
            self.assertLessEqual(max(map(len, text.split("\n"))), width + 4)
        self.assertIn("> Pick 85, round 8: Alda Brightwater is on the clock.", text.replace("\n", " "))

    def test_rows_that_do_not_fit_are_marked(self):
        for fixture, number, says in (("league-damaged-draftno.mdb", 10000, "10000 lies outside the draft of 192 picks"),
                                      ("league-damaged-draftmanager.mdb", 17, "17 is of manager 19, who does not take part")):
            self.path = self.league(fixture)
            done = support.run(*self.at, "draft", "board")
            self.assertEqual(done.returncode, support.DONE)
            self.assertIn("Error in loading drafts.", done.stderr)
            self.assertIn(f"! Does not fit: Pick {says}", done.stdout)
            for words in (["season", "set", "--season-locked", "no"], ["season", "list"], ["history"], ["manager", "list"]):
                self.done(*words)
            before = self.of_season("draft info", 11)
            self.refused("draft", "pick", "T1", "--pick", "2", says="locked")
            self.done("draft", "clear", number)
            self.assertEqual(self.of_season("draft info", 11), [row for row in before if row["draft no"] != number])
            done = support.run(*self.at, "draft", "board")
            self.assertNotIn("does not fit", (done.stdout + done.stderr).lower())
            self.refused("draft", "clear", "2", says="locked")

    def test_a_league_without_a_current_season(self):
        self.use_sample()
        for words in (["board"], ["clock"], ["pick", "P1"], ["save"]):
            self.refused("draft", *words, says="No season is the current one")
        self.refused("settings", "--current-season", "77", says="no season with the id 77")


if __name__ == "__main__":
    support.main()
