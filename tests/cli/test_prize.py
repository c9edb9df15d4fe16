"""`prize` and `winning`: what a season puts up, and who wins it."""
import support
from leagues import LeagueTest
from support import USAGE


def by_week(winning):
    return (winning["week"] is None, winning["week"] or 0, winning["id"])


class Prizes(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture(season=12)

    def test_prizes_are_told_as_they_are_stored(self):
        names = {row["id"]: row["desc"] for row in self.rows("prize info")}
        types = {row["type id"]: row["type name"] for row in self.rows("prize type info")}
        type_of = {row["id"]: types[row["type id"]] for row in self.rows("prize info")}
        for season in self.rows("season info"):
            told = self.told("prize", "list", "--season", season["season year"])
            stored = self.of_season("money distribution info", season["id"])
            won = [row["prize id"] for row in self.of_season("winning info", season["id"])]
            self.assertEqual(sorted(told["prizes"], key=lambda prize: prize["id"]), [
                {"id": row["prize id"], "name": names[row["prize id"]], "type": type_of[row["prize id"]],
                 "amount": row["money"], "timesWon": won.count(row["prize id"]),
                 "paidOut": row["money"] * won.count(row["prize id"])} for row in stored])
            self.assertEqual(told["putUp"], sum(row["money"] for row in stored))
            self.assertEqual(told["pool"], season["no of players"] * season["money contribution"])
        self.assertIn("1820 together; pool 840 (12 managers x 70), 980 short.", self.done("prize", "list"))
        listed = self.told("prize", "list", "--all")["prizes"]
        amounts = {row["prize id"]: row["money"] for row in self.of_season("money distribution info", 12)}
        self.assertEqual({prize["id"]: prize["amount"] for prize in listed}, {id: amounts.get(id) for id in names})
        for words in (["prize", "list"], ["prize", "list", "--all"], ["winning", "list", "--season", "2013"]):
            self.assertLessEqual(max(map(len, self.done(*words).splitlines())), 80)

    def test_prizes_are_put_up_changed_and_removed(self):
        before = self.snapshot()
        self.done("prize", "set", "best trade", "35")
        self.done("prize", "set", "Mid-season leader=0", "19=36", "Manager's choice=2147483647")
        stored = {row["prize id"]: row["money"] for row in self.of_season("money distribution info", 12)}
        self.assertEqual((stored[19], stored[23], stored[18]), (36, 0, 2147483647))
        was = {row["prize id"]: row["money"] for row in before["money distribution info"] if row["season id"] == 12}
        self.assertEqual({id: money for id, money in stored.items() if id not in (18, 19, 23)},
                         {id: money for id, money in was.items() if id not in (18, 19, 23)})
        self.assert_changed_only(before, "money distribution info")
        self.assertGreater(self.told("prize", "list")["putUp"], 2147483647)
        self.done("prize", "remove", *map(str, stored))
        self.assertEqual(self.of_season("money distribution info", 12), [])
        self.assertEqual([row for row in self.rows("money distribution info") if row["season id"] != 12],
                         [row for row in before["money distribution info"] if row["season id"] != 12])
        self.assert_changed_only(before, "money distribution info")

    def test_prizes_and_amounts_that_are_none(self):
        self.refused("prize", "set", "Nothing", "5", says="no prize 'Nothing'")
        self.refused("prize", "set", "6", "5", says="no prize with the id 6")
        self.refused("prize", "set", "weekly", "5", says="More than one prize may be meant by 'weekly'")
        self.refused("prize", "set", "1=5", "Weekly high score=6", says="is named twice")
        self.refused("prize", "set", "1=5", "Nothing=6", says="no prize 'Nothing'")  # none of them, then
        self.refused("prize", "set", "1=-5", says="must be from 0")
        for words in (["1", "5.5"], ["1", "x"], ["1", ""], ["1="], ["1=2147483648"], ["2", "1=5"], ["1"], ["1", "2", "3"], []):
            self.refused("prize", "set", *words, says="", code=USAGE)
        self.refused("prize", "remove", "19", says="no prize of the season 2022 with the id 19")

    def test_a_prize_that_was_won_stays(self):
        self.done("settings", "--current-season", "11")
        said = self.refused("prize", "remove", "14", "1", says="Weekly high score cannot be removed")
        self.assertIn("4 winnings would pay nothing", said)
        self.done("prize", "remove", "14")


class Winnings(LeagueTest):
    def setUp(self):
        super().setUp()
        self.use_fixture(season=11)

    def test_winnings_are_told_as_they_are_stored(self):
        managers = {row["id"]: f"{row['first name']} {row['last name']}" for row in self.rows("manager info")}
        prizes = {row["id"]: row["desc"] for row in self.rows("prize info")}
        for season in self.rows("season info"):
            year = season["season year"]
            told = self.told("winning", "list", "--season", year)["winnings"]
            amounts = {row["prize id"]: row["money"] for row in self.of_season("money distribution info", season["id"])}
            expected = [{"id": row["id"], "week": row["week #"], "managerID": row["manager id"],
                         "manager": managers[row["manager id"]], "prizeID": row["prize id"],
                         "prize": prizes[row["prize id"]], "amount": amounts.get(row["prize id"])}
                        for row in self.of_season("winning info", season["id"])]
            self.assertEqual(told, sorted(expected, key=by_week))
            in_week_3 = [winning for winning in told if winning["week"] == 3]
            self.assertEqual(self.told("winning", "list", "--season", year, "--week", "3")["winnings"], in_week_3)

    def test_winnings_are_added_and_removed(self):
        before = self.snapshot()
        last = before["winning info"][-1]["id"]
        added = self.told("winning", "add", "Brightwater", "weekly high score", "--week", "17")["added"][0]
        self.assertEqual((added["id"], added["week"], added["managerID"], added["prizeID"], added["amount"]),
                         (last + 1, 17, 1, 1, 25))
        self.done("winning", "add", "Benno O'Marrick", "22")
        self.assertEqual(self.rows("winning info")[-2:], [
            {"id": last + 1, "season id": 11, "prize id": 1, "manager id": 1, "week #": 17},
            {"id": last + 2, "season id": 11, "prize id": 22, "manager id": 2, "week #": None}])
        self.assertEqual(self.rows("winning info")[:-2], before["winning info"])
        self.assert_changed_only(before, "winning info")
        removed = self.told("winning", "remove", last + 2, last + 1, last + 2)["removed"]
        self.assertEqual([winning["id"] for winning in removed], [last + 2, last + 1])
        self.assertEqual(self.rows("winning info"), before["winning info"])
        self.assert_sound()

    def test_the_same_twice_is_told(self):
        for words in (["winning", "add", "1", "1", "--week", "17"], ["winning", "add", "1", "1"]):
            self.assertNotIn("twice", support.run(*self.at, *words).stderr)
            self.assertIn("twice", support.run(*self.at, *words).stderr)

    def test_winnings_that_are_none(self):
        self.refused("winning", "add", "19", "1", says="no manager of the season 2021 with the id 19")
        self.refused("winning", "add", "Nobody", "1", says="'Nobody'")
        self.refused("winning", "add", "1", "2", "3", says="3", code=USAGE)
        self.refused("winning", "add", "1", "Best trade", says="no prize of the season 2021 'Best trade'")
        for week in ("0", "-1", "18", "2147483647"):
            self.refused("winning", "add", "1", "1", f"--week={week}", says=f"no week {week}: the season 2021 has 17 weeks")
            self.refused("winning", "list", f"--week={week}", says=f"no week {week}")
        self.refused("winning", "add", "1", "1", "--week", "x", says="--week", code=USAGE)
        self.refused("winning", "remove", "1", says="The season 2021 has no winning with the id 1")
        mine = self.of_season("winning info", 11)[0]["id"]
        self.refused("winning", "remove", mine, "9999", says="no winning with the id 9999")
        self.refused("winning", "remove", "x", says="ID", code=USAGE)
        self.done("season", "use", "2031", "--create")
        self.done("season", "set", "--managers", "2", "--rounds", "1")
        self.done("manager", "join", "1")
        self.done("prize", "set", "1", "5")
        self.assertIn("season set --weeks", self.refused("winning", "add", "1", "1", "--week", "1", says="has 0 weeks"))

    def test_many_in_one_shell(self):
        before = self.rows("winning info")
        lines = [f"winning add {manager} 1 --week {week}" for week in range(10, 18) for manager in (1, 2)]
        out, _ = self.shell(*lines, f"winning remove {before[-1]['id'] + 1}", "winning list --week 17")
        self.assertIn("week 17: 2 winnings of 50 together", out)
        added = self.rows("winning info")[len(before):]
        self.assertEqual([(row["manager id"], row["week #"]) for row in added],
                         [(manager, week) for week in range(10, 18) for manager in (1, 2)][1:])
        self.assertEqual(len({row["id"] for row in added}), 15)
        self.assert_sound()


if __name__ == "__main__":
    support.main()
