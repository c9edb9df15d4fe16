"""`info` and `settings`: the league through the data service."""
import support
from support import LIVE, REFUSED, USAGE


class Settings(support.CliTest):
    def setting_rows(self, path):
        return support.tsv_rows(self.succeed("dump", "settings", "--file", path))[1]

    def test_shown_set_and_kept(self):
        path = self.league()
        league = ["--folder", self.folder]
        self.assertIn("11", self.succeed(*league, "settings"))
        self.assertEqual(support.json_of(self.succeed(*league, "settings", "--json")), {"currentSeasonID": 11})
        for season in (2147483647, -2147483648, 4):
            self.fail_with(REFUSED, *league, "settings", "--current-season", season, says=f"no season with the id {season}")
        for season in (7, 0):
            self.succeed(*league, "settings", "--current-season", season)
            self.assertEqual(self.setting_rows(path), [["1", str(season)]])
            self.assertEqual(support.json_of(self.succeed(*league, "settings", "--json")), {"currentSeasonID": season})
        self.assertEqual(support.independent_findings(path), "")
        # Nothing but the settings has changed.
        self.assertEqual(self.succeed("dump", "player info", "--file", path), support.expected_text("player info"))

    def test_values_that_are_no_season(self):
        path = self.league()
        before = support.digest(path)
        for value in ("x", "", "2147483648", "-2147483649", "1.5", "99999999999999999999"):
            self.fail_with(USAGE, "--folder", self.folder, "settings", f"--current-season={value}")
        self.assertEqual(support.digest(path), before)

    def test_a_league_without_settings_gets_them(self):
        path = self.league("league-damaged-nosetting.mdb")
        league = ["--folder", self.folder]
        self.assertEqual(support.json_of(self.succeed(*league, "settings", "--json")), {"currentSeasonID": 0})
        self.assertEqual(self.setting_rows(path), [])
        self.succeed(*league, "settings", "--current-season", "3")
        self.assertEqual(self.setting_rows(path), [["1", "3"]])
        self.assertEqual(support.independent_findings(path), "")

    def test_settings_that_cannot_be_read_are_named_and_mended(self):
        path = self.league("league-damaged-nullsetting.mdb")
        before = support.digest(path)
        for words in (["settings"], ["info"], ["season", "list"]):
            done = support.run("--folder", self.folder, *words)
            self.assertEqual(done.returncode, support.DONE)
            self.assertIn("Error in loading settings. [settings], row with id 1", done.stderr)
        self.assertEqual(support.digest(path), before)
        self.succeed("--folder", self.folder, "settings", "--current-season", "3")
        self.assertEqual(self.setting_rows(path), [["1", "3"]])

    def test_info(self):
        self.league("league-encoded.mdb")
        text = self.succeed("--folder", self.folder, "info")
        for part in (LIVE, "live", "11", "player info", "2500"):
            self.assertIn(part, text)
        info = support.json_of(self.succeed("--folder", self.folder, "info", "--json"))
        self.assertEqual((info["kind"], info["currentSeasonID"]), ("live", 11))
        self.assertEqual(info["rows"], {table: len(support.expected_rows(table)) for table in support.TABLES})


if __name__ == "__main__":
    support.main()
