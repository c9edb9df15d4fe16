"""`season`: every season of a league, making one, its settings and its locks."""
import json

import support
from leagues import LeagueTest
from support import USAGE

FLAGS = {"is ranking locked": "isRankingLocked", "is season locked": "isSeasonLocked",
         "is draft locked": "isDraftLocked", "has season started": "hasSeasonStarted"}
NUMBERS = {"id": "id", "season year": "year", "no of players": "noOfManagers", "no of rounds": "noOfRounds",
           "money contribution": "moneyContribution", "no of regular weeks": "noOfRegularWeeks",
           "total no of weeks": "totalNoOfWeeks"}
BIGGEST = 2147483647


class Looking(LeagueTest):
    def test_all_seasons_are_told_as_they_are_stored(self):
        self.use_fixture()
        told = {season["id"]: season for season in self.told("season", "list")}
        rows = self.rows("season info")
        self.assertEqual(sorted(told), [row["id"] for row in rows])
        for row in rows:
            season = told[row["id"]]
            for column, name in (NUMBERS | FLAGS).items():
                self.assertEqual(season[name], row[column], f"{column} of season {row['id']}")
            for table, name in (("playing info", "managersPlaying"), ("draft info", "picksMade"),
                                ("money distribution info", "noOfPrizes"), ("winning info", "noOfWinnings")):
                self.assertEqual(season[name], len(self.of_season(table, row["id"])), f"{name} of {row['id']}")
            self.assertEqual(season["noOfPicks"], row["no of players"] * row["no of rounds"])
            self.assertEqual(season["isCurrent"], row["id"] == 11)
            self.assertEqual(self.told("season", "show", row["season year"]), season)
        text = self.done("season", "list")
        self.assertEqual([line.split()[0] for line in text.splitlines() if line.startswith("*")], ["*"])
        self.assertRegex(text, r"(?m)^\*  2021 .* ranking, draft$")
        self.assertIn("84 of 168", text)
        self.assertIn("2021 (id 11, the current season)", self.done("season", "show"))

    def test_seasons_that_there_are_not(self):
        self.use_fixture()
        self.refused("season", "show", "2031", says="no season 2031")
        self.refused("settings", "--current-season", "4", says="no season with the id 4")  # deleted long ago
        for words in (["manager", "list"], ["prize", "list"], ["winning", "list"], ["money"]):
            self.refused(*words, "--season", "2031", says="no season 2031")
        self.use_sample()
        self.assertEqual(self.told("season", "list"), [])
        self.refused("season", "show", says="No season is the current one")

    def test_a_draft_that_cannot_be_loaded_whole_stops_no_other_command(self):
        for fixture, says in (("league-damaged-draftno.mdb", "10000"), ("league-damaged-draftmanager.mdb", "19")):
            self.path = self.league(fixture)
            for words in (["season", "list"], ["season", "show"], ["manager", "list"], ["money"], ["history"],
                          ["season", "set", "--season-locked", "no"], ["prize", "set", "1", "5"], ["winning", "add", "7", "1"],
                          ["manager", "fee", "7", "paid"], ["season", "use", "2020"]):
                done = support.run(*self.at, *words)
                self.assertEqual(done.returncode, support.DONE, done.stderr)
                self.assertRegex(done.stderr, f"Error in loading drafts.*{says}")


class Choosing(LeagueTest):
    def test_a_season_that_is_there(self):
        self.use_fixture()
        before = self.snapshot()
        self.assertTrue(self.told("season", "use", "2016")["isCurrent"])
        self.assertEqual(self.rows("settings"), [{"id": 1, "current season id": 5}])
        self.assertEqual(self.told("season", "show")["year"], 2016)
        self.assert_changed_only(before, "settings")

    def test_a_new_season_is_made_only_when_asked_for(self):
        self.use_fixture()
        before = self.snapshot()
        self.assertIn("--create", self.refused("season", "use", "2031", says="no season 2031"))
        made = self.told("season", "use", "2031", "--create")
        self.assertEqual((made["id"], made["year"], made["isCurrent"]), (16, 2031, True))
        stored = self.rows("season info")[-1]
        self.assertEqual(stored, {"id": 16, "season year": 2031} | {name: 0 for name in list(NUMBERS)[2:]} |
                         {name: False for name in FLAGS})
        self.assertEqual(self.rows("settings"), [{"id": 1, "current season id": 16}])
        self.assert_changed_only(before, "season info", "settings")
        self.done("season", "use", "2031", "--create")  # is there by now, and is not made twice
        self.assertEqual(len(self.rows("season info")), 13)

    def test_the_first_season_of_a_league(self):
        self.use_sample()
        self.assertEqual(self.told("season", "use", "2026", "--create")["id"], 1)
        self.assertEqual(self.told("season", "show")["year"], 2026)

    def test_years_that_are_none(self):
        self.use_fixture()
        for year in ("x", "20.5", "99999999999"):
            self.refused("season", "use", year, "--create", says="YEAR", code=USAGE)
        for year in ("0", "1899", "3000", BIGGEST):
            self.refused("season", "use", year, "--create", says="from 1900 to 2999")
        self.refused("season", "use", says="YEAR", code=USAGE)


class Setting(LeagueTest):
    ALL = ["--year", "2031", "--managers", "6", "--rounds", "9", "--contribution", "75", "--regular-weeks", "13",
           "--weeks", "15", "--started", "yes", "--season-locked", "yes"]

    def test_every_setting_is_stored_and_nothing_else(self):
        self.use_fixture(season=15)
        before = self.snapshot()
        told = self.told("season", "set", *self.ALL)
        self.assertEqual(self.told("season", "show"), told)
        self.assertEqual(self.rows("season info")[-1], {
            "id": 15, "season year": 2031, "no of players": 6, "no of rounds": 9, "money contribution": 75,
            "no of regular weeks": 13, "total no of weeks": 15, "is ranking locked": False,
            "is season locked": True, "is draft locked": False, "has season started": True})
        self.assert_changed_only(before, "season info")
        self.done("season", "set", "--season-locked", "no", "--started", "no")
        row = self.rows("season info")[-1]
        self.assertEqual((row["is season locked"], row["has season started"], row["no of rounds"]), (False, False, 9))

    def test_prizes_stay_when_settings_are_saved(self):
        self.use_fixture(season=11)
        before = self.snapshot()
        self.done("season", "set", "--contribution", "61")
        self.assert_changed_only(before, "season info")

    def test_values_that_are_none(self):
        self.use_fixture(season=15)
        for name in ("--year", "--managers", "--rounds", "--regular-weeks", "--weeks"):
            for value in ("x", "1.5", "99999999999"):
                self.refused("season", "set", name, value, says=name, code=USAGE)
            for value in ("0", "-1", "3000", BIGGEST):
                self.refused("season", "set", f"{name}={value}", says="must be from")
        self.refused("season", "set", "--contribution=-1", says="must be from 0")
        self.refused("season", "set", "--started", "maybe", says="maybe", code=USAGE)
        self.refused("season", "set", says="Say what to set", code=USAGE)
        self.refused("season", "set", "--year", "2020", says="is a season 2020 already")
        self.refused("season", "set", "--regular-weeks", "16", "--weeks", "15", says="15 weeks cannot have 16")
        self.refused("season", "set", "--regular-weeks", "19", says="18 weeks cannot have 19")
        self.refused("season", "set", "--contribution", "5", "--rounds", "0", says="rounds")  # all or nothing

    def test_what_is_played_already_is_not_cut_off(self):
        self.use_fixture(season=12)  # 84 of 12 x 14 picks
        self.assertIn("draft clear", self.refused("season", "set", "--rounds", "6", says="84 picks are made"))
        self.refused("season", "set", "--managers", "11", says="ranking of the season 2022 is locked")
        self.done("season", "set", "--rounds", "7")
        self.done("season", "set", "--rounds", "20")
        self.assertEqual(self.told("season", "show")["picksMade"], 84)
        self.done("settings", "--current-season", "13")  # 12 take part, no picks, not locked
        self.refused("season", "set", "--managers", "11", says="12 take part")
        self.done("season", "set", "--managers", "14")
        self.done("settings", "--current-season", "11")  # winnings up to week 9
        self.refused("season", "set", "--weeks", "8", "--regular-weeks", "7", says="up to week 9")
        self.done("season", "set", "--weeks", "9", "--regular-weeks", "7")


class Locks(LeagueTest):
    def test_a_complete_draft_is_locked_for_good(self):
        self.use_fixture(season=13)
        self.done("manager", "rank", *(str(row["manager id"]) for row in self.of_season("playing info", 13)))
        before = self.snapshot()
        self.done("season", "lock", "ranking")
        row = next(row for row in self.rows("season info") if row["id"] == 13)
        self.assertEqual([row[flag] for flag in FLAGS], [True, False, False, False])
        self.assert_changed_only(before, "season info")
        self.done("season", "lock", "ranking")  # twice is not an error
        self.done("season", "lock", "draft", "--yes")
        row = next(row for row in self.rows("season info") if row["id"] == 13)
        self.assertEqual([row[flag] for flag in FLAGS], [True, False, True, False])

    def test_what_is_not_complete_is_not_locked_by_mistake(self):
        self.use_fixture(season=13)
        said = self.refused("season", "lock", "ranking", says="not ranked: Alda Brightwater")
        self.assertIn("--yes", said)
        self.refused("season", "lock", "draft", says="Of 144 picks, 0 are made")
        self.refused("season", "lock", "drft", says="drft", code=USAGE)
        self.done("season", "lock", "ranking", "--yes")

    def test_a_locked_ranking(self):
        self.use_fixture(season=12)
        for words in (["manager", "join", "19"], ["manager", "leave", "1"], ["manager", "rank", "1", "1"],
                      ["season", "set", "--managers", "13"]):
            self.refused(*words, says="The ranking of the season 2022 is locked")
        self.done("manager", "fee", "1", "unpaid")
        self.done("prize", "set", "Best trade", "5")

    def test_a_locked_draft(self):
        self.use_fixture(season=13)
        self.done("season", "lock", "draft", "--yes")
        for words in (["manager", "join", "19"], ["manager", "leave", "1"], ["manager", "rank", "1", "1"],
                      ["season", "set", "--managers", "13"], ["season", "set", "--rounds", "13"],
                      ["draft", "pick", "P1"]):
            self.refused(*words, says="The draft of the season 2023 is locked")
        self.done("season", "set", "--contribution", "5", "--started", "yes")
        self.done("manager", "fee", "1", "unpaid")

    def test_a_locked_season_takes_nothing_but_its_unlocking(self):
        self.use_fixture(season=8)
        winning = self.of_season("winning info", 8)[0]["id"]
        for words in (["season", "set", "--contribution", "5"], ["season", "set", "--season-locked", "yes"],
                      ["season", "lock", "draft"], ["manager", "join", "19"], ["manager", "leave", "1"],
                      ["manager", "fee", "1", "paid"], ["manager", "rank", "1", "1"], ["prize", "set", "1", "5"],
                      ["prize", "remove", "1"], ["winning", "add", "1", "1"], ["winning", "remove", winning],
                      ["draft", "pick", "P1"]):
            self.refused(*words, says="The season 2019 is locked")
        self.done("season", "set", "--season-locked", "no")
        self.done("winning", "remove", winning)


class Shell(LeagueTest):
    def test_picks_that_wait_are_not_lost(self):
        self.use_fixture(season=12)
        pick = f"draft pick {self.free_team(12)}"
        said = self.shell(pick, "season use 2021", code=support.REFUSED)[1]
        self.assertIn("'season use' reads the draft again, and changes of pick 85 are not saved.", said)
        for line in ("season set --rounds 15", "season lock draft --yes", "prize set 1 5", "manager fee 1 paid"):
            self.assertIn("are not saved", self.shell(pick, line, code=support.REFUSED)[1])
        # A winning does not touch the draft.
        self.shell("prize set 'Best trade' 5", pick, "winning add 1 'Best trade' --week 2", "draft save")
        self.assertEqual(self.told("season", "show")["picksMade"], 85)
        self.assertEqual([row["week #"] for row in self.of_season("winning info", 12)], [2])

    def test_seasons_follow_each_other_in_one_shell(self):
        self.use_sample()
        out, _ = self.shell("season use 2026 --create", "season set --managers 2 --rounds 3 --weeks 3",
                            "manager join 1 2", "season use 2027 --create -q", "season list", "season use 2026",
                            "season set --year 2025", "season use 2026 --create", "season list --json")
        listed = json.loads(out[out.rindex("\n["):])
        self.assertEqual([(s["year"], s["id"], s["isCurrent"], s["managersPlaying"]) for s in listed],
                         [(2025, 1, False, 2), (2026, 3, True, 0), (2027, 2, False, 0)])


if __name__ == "__main__":
    support.main()
