"""`money`, `history`, `position list`, `team list`: what they tell, reckoned once more from the stored rows."""
import collections

import support
from leagues import LeagueTest
from support import USAGE


class Reckoning(LeagueTest):
    """The accounts of every season, from the rows that an independent reader has read."""

    def setUp(self):
        super().setUp()
        self.use_fixture()
        self.seasons = {row["id"]: row for row in self.rows("season info")}
        self.accounts = {season: self.accounts_of(season) for season in self.seasons}

    def accounts_of(self, season):
        accounts = collections.defaultdict(collections.Counter)
        fee = self.seasons[season]["money contribution"]
        for row in self.of_season("playing info", season):
            accounts[row["manager id"]].update(seasons=1, due=fee, paid=fee if row["fee paid"] else 0)
        money = {row["prize id"]: row["money"] for row in self.of_season("money distribution info", season)}
        for row in self.of_season("winning info", season):
            accounts[row["manager id"]].update(won=money.get(row["prize id"], 0), winnings=1)
        return accounts

    def compare(self, told, accounts):
        self.assertEqual({m["managerID"] for m in told["managers"]}, set(accounts))
        for m in told["managers"]:
            account = accounts[m["managerID"]]
            self.assertEqual({name: m[name] for name in ("due", "paid", "won", "owed", "balance", "seasons")},
                             {"due": account["due"], "paid": account["paid"], "won": account["won"],
                              "owed": account["due"] - account["paid"], "balance": account["won"] - account["paid"],
                              "seasons": account["seasons"]})
        balances = [m["balance"] for m in told["managers"]]
        self.assertEqual(balances, sorted(balances, reverse=True))
        for name in ("due", "paid", "won"):
            self.assertEqual(told["total"][name], sum(account[name] for account in accounts.values()))

    def test_the_money_of_each_season(self):
        for season, row in self.seasons.items():
            told = self.told("money", "--season", row["season year"])
            self.assertEqual(told["pool"], row["no of players"] * row["money contribution"])
            self.compare(told, self.accounts[season])
        self.assertEqual(self.told("money"), self.told("money", "--season", "2021"))
        text = self.done("money")
        self.assertIn("Pool 720, prizes put up 720; paid in 540, won 845: 305 short.", text)
        self.assertLessEqual(max(map(len, text.splitlines())), 80)

    def test_the_money_of_all_seasons(self):
        together = collections.defaultdict(collections.Counter)
        for accounts in self.accounts.values():
            for manager, account in accounts.items():
                together[manager].update(account)
        told = self.told("money", "--all")
        self.assertEqual(told["seasons"], sorted(row["season year"] for row in self.seasons.values()))
        self.compare(told, together)
        self.refused("money", "--all", "--season", "2021", says="--all", code=USAGE)

        history = self.told("history")
        for m in history["managers"]:
            account = together[m["managerID"]]
            self.assertEqual((m["seasons"], m["winnings"], m["won"]), tuple(account[n] for n in ("seasons", "winnings", "won")))
            best = max(accounts[m["managerID"]]["won"] for accounts in self.accounts.values() if m["managerID"] in accounts)
            self.assertEqual(m["bestSeason"]["won"], best)
        for told in history["seasons"]:
            season = next(id for id, row in self.seasons.items() if row["season year"] == told["season"])
            accounts = self.accounts[season]
            self.assertEqual(told["won"], sum(account["won"] for account in accounts.values()))
            most = max((account["won"] for account in accounts.values()), default=0)
            self.assertEqual((told["mostWon"] or {"won": 0})["won"], most)
            if most:
                self.assertEqual(accounts[told["mostWon"]["managerID"]]["won"], most)
        self.assertLessEqual(max(map(len, self.done("history").splitlines())), 80)

    def test_a_prize_that_the_season_does_not_put_up_pays_nothing(self):
        self.done("settings", "--current-season", "12")
        self.done("prize", "set", "19", "40")
        self.done("winning", "add", "1", "19")
        self.assertEqual(self.told("money")["total"]["won"], 40)
        self.done("prize", "set", "19", "50")  # a winning pays what its prize pays now
        self.assertEqual(self.told("money")["total"]["won"], 50)
        text = self.done("money", "--season", "2014")
        self.assertNotIn("count as nothing", text)

    def test_leagues_without_seasons(self):
        self.use_sample()
        self.assertEqual(self.told("history"), {"seasons": [], "managers": []})
        self.assertEqual(self.told("money", "--all")["managers"], [])
        self.done("season", "use", "2026", "--create")
        self.assertEqual(self.told("money")["total"]["due"], 0)
        self.assertIsNone(self.told("history")["seasons"][0]["mostWon"])


class Reference(LeagueTest):
    def test_positions_and_teams(self):
        self.use_fixture()
        self.assertEqual(self.told("position", "list"), self.rows("position info"))
        abbr = {row["id"]: row["abbr"] for row in self.rows("position info")}
        self.assertEqual(self.told("team", "list"), [
            {"id": row["id"], "abbr": row["abbr"], "name": row["name"], "nickname": row["nickname"],
             "position": abbr.get(row["position id"])} for row in self.rows("team info")])
        self.assertIn("Port Télème", self.done("team", "list"))
        self.assertIn("Kicker", self.done("position", "list"))


if __name__ == "__main__":
    support.main()
