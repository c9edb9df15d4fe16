"""`manager`: who takes part in a season, fees, and the ranking."""
import support
from leagues import LeagueTest
from support import USAGE


class Looking(LeagueTest):
    def test_managers_stand_in_the_order_of_the_ranking(self):
        self.use_fixture()
        names = {row["id"]: f"{row['first name']} {row['last name']}" for row in self.rows("manager info")}
        for season in self.rows("season info"):
            told = self.told("manager", "list", "--season", season["season year"])["managers"]
            stored = self.of_season("playing info", season["id"])
            picks = [row["manager id"] for row in self.of_season("draft info", season["id"])]
            expected = [{"rank": row["ranking"], "id": row["manager id"], "name": names[row["manager id"]],
                         "isFeePaid": row["fee paid"], "picks": picks.count(row["manager id"])} for row in stored]
            expected.sort(key=lambda m: (m["rank"] is None, m["rank"] or 0, m["id"]))
            self.assertEqual(sorted(told, key=lambda m: (m["rank"] is None, m["rank"] or 0, m["id"])), expected)
            ranks = [m["rank"] for m in told]
            ranked = [rank for rank in ranks if rank is not None]
            self.assertEqual(ranks, sorted(ranked) + [None] * (len(ranks) - len(ranked)))
        text = self.done("manager", "list", "--season", "2023")
        self.assertIn("12 of 12 managers take part, 4 are ranked, 11 have paid.", text)
        self.assertLessEqual(max(map(len, text.splitlines())), 80)

    def test_all_managers_of_the_league(self):
        self.use_fixture()
        told = self.told("manager", "list", "--all")
        playing = {row["manager id"] for row in self.of_season("playing info", 11)}
        self.assertEqual({m["id"] for m in told["managers"]}, {row["id"] for row in self.rows("manager info")})
        self.assertEqual({m["id"] for m in told["managers"] if m["takesPart"]}, playing)

    def test_all_managers_of_a_league_without_seasons(self):
        self.use_sample()
        self.assertEqual(len(self.told("manager", "list", "--all")["managers"]), 12)


class Joining(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture(season=15)  # 10 x 11, nobody takes part

    def test_managers_join_and_leave(self):
        before = self.snapshot()
        self.done("manager", "join", "Brightwater", "benno o'marrick", "GRETA", "14")
        self.assertEqual([m["id"] for m in self.told("manager", "list")["managers"]], [1, 2, 9, 14])
        self.assertEqual(self.of_season("playing info", 15), [
            {"season id": 15, "manager id": id, "fee paid": False, "ranking": None} for id in (1, 2, 9, 14)])
        self.assert_changed_only(before, "playing info")
        self.done("manager", "rank", "14", "9", "2", "1")
        self.done("manager", "leave", "Ironside")
        self.assertEqual([(m["id"], m["rank"]) for m in self.told("manager", "list")["managers"]],
                         [(14, 1), (2, 2), (1, 3)])
        self.done("manager", "leave", "1", "2", "14")
        self.assertEqual(self.rows("playing info"), before["playing info"])

    def test_who_cannot_join(self):
        self.done("manager", "join", "1")
        self.refused("manager", "join", "2", "1", says="Alda Brightwater takes part in the season already")
        self.refused("manager", "join", "2", "Benno", says="Benno O'Marrick is named twice")
        self.refused("manager", "join", "2", "Nobody", says="no manager 'Nobody'")
        self.refused("manager", "join", "4", says="no manager with the id 4")
        self.refused("manager", "join", "", says="no manager ''")
        said = self.refused("manager", "join", "2", "3", "6", "7", "8", "9", "12", "13", "14", "15", says="would have 11")
        self.assertIn("season set --managers", said)
        self.refused("manager", "join", says="NAME", code=USAGE)

    def test_namesakes_are_told_apart_by_their_ids(self):
        self.use_sample()
        self.done("season", "use", "2026", "--create")
        self.done("season", "set", "--managers", "4", "--rounds", "2")
        said = self.refused("manager", "join", "caspar", says="More than one manager may be meant by 'caspar'")
        for part in ("2  Caspar Hazelstone", "8  Caspar Saddleley"):
            self.assertIn(part, said)
        self.done("manager", "join", "8", "Hazelstone")
        self.refused("manager", "fee", "caspar", "paid", says="More than one manager of the season 2026")

    def test_who_has_played_cannot_leave(self):
        self.done("manager", "join", "1", "2")
        self.done("prize", "set", "1", "5")
        self.done("winning", "add", "1", "1", "--week", "1")
        self.refused("manager", "leave", "2", "1", says="Alda Brightwater cannot leave the season 2024, having 1 winning")
        self.done("season", "set", "--managers", "2")
        self.done("manager", "rank", "Alda", "Benno")
        self.done("draft", "pick", self.free_team(15))
        self.refused("manager", "leave", "1", says="having 1 pick and 1 winning")
        self.done("manager", "leave", "2")


class Fees(LeagueTest):
    def test_fees_change_and_nothing_else(self):
        self.use_fixture(season=11)  # 7, 18, 12 ...; 18, 12 and 6 have not paid
        before = self.snapshot()
        told = self.told("manager", "fee", "McTavistock", "12", "paid")
        self.assertEqual([m["id"] for m in told["managers"] if not m["isFeePaid"]], [6])
        changed = [dict(row, **{"fee paid": True}) if row["season id"] == 11 and row["manager id"] in (12, 18) else row
                   for row in before["playing info"]]
        self.assertEqual(self.rows("playing info"), changed)
        self.assert_changed_only(before, "playing info")
        self.done("manager", "fee", "18", "12", "unpaid")
        self.assertEqual(self.rows("playing info"), before["playing info"])

    def test_words_that_say_nothing(self):
        self.use_fixture(season=11)
        for words in (["1"], ["1", "Paid"], ["paid"], ["1", "yes"], ["paid", "1"]):
            self.refused("manager", "fee", *words, says="'paid' or 'unpaid'", code=USAGE)
        self.refused("manager", "fee", "19", "paid", says="no manager of the season 2021 with the id 19")


class Ranking(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture(season=13)  # ranked 9, 8, 15, 12 as 1, 4, 7, 10; 1, 2, 3, 6, 7, 14, 18, 20 are not

    def ranking(self):
        rows = [row for row in self.of_season("playing info", 13) if row["ranking"] is not None]
        return [row["manager id"] for row in sorted(rows, key=lambda row: row["ranking"])]

    def test_a_whole_ranking(self):
        before = self.snapshot()
        order = ["20", "Kettlewell", "7", "6", "3", "Benno", "1", "18", "12", "15", "8", "Greta Ironside"]
        told = self.told("manager", "rank", *order)["managers"]
        self.assertEqual([(m["rank"], m["id"]) for m in told],
                         list(enumerate([20, 14, 7, 6, 3, 2, 1, 18, 12, 15, 8, 9], 1)))
        self.assertEqual(self.told("manager", "list")["managers"], told)
        fees = [(row["manager id"], row["fee paid"]) for row in before["playing info"]]
        self.assertEqual([(row["manager id"], row["fee paid"]) for row in self.rows("playing info")], fees)
        self.assert_changed_only(before, "playing info")
        # The draft follows the ranking.
        self.assertEqual(self.told("draft", "clock")["onTheClock"]["manager"]["id"], 20)

    def test_one_place(self):
        self.done("manager", "rank", "Lindqvarn", "1")  # those behind move down, gaps close
        self.assertEqual(self.ranking(), [15, 9, 8, 12])
        self.done("manager", "rank", "15", "4")
        self.assertEqual(self.ranking(), [9, 8, 12, 15])
        self.done("manager", "rank", "Nadia", "5")  # was not ranked
        self.done("manager", "rank", "Alda", "2")
        self.assertEqual(self.ranking(), [9, 1, 8, 12, 15, 20])
        self.assertEqual(sorted(row["ranking"] for row in self.of_season("playing info", 13) if row["ranking"]),
                         [1, 2, 3, 4, 5, 6])

    def test_rankings_that_are_none(self):
        self.refused("manager", "rank", "20", "14", "7", says="missing: ")
        self.refused("manager", "rank", "20", "14", "20", says="Nadia Überlauf is named twice")
        self.refused("manager", "rank", "20", "19", "7", says="no manager of the season 2023 with the id 19")
        self.refused("manager", "rank", "20", "0", says="from 1 to 5")
        self.refused("manager", "rank", "20", "6", says="from 1 to 5")
        self.refused("manager", "rank", "9", "5", says="from 1 to 4")
        self.refused("manager", "rank", "20", "99999999999", says="99999999999")
        self.refused("manager", "rank", "20", says="missing: ")


if __name__ == "__main__":
    support.main()
