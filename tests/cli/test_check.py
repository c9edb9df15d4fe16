"""`check` on sound and on damaged files, and every other command on damaged ones: right, or a clear error."""
import shutil

import support
from support import CANNOT_OPEN, DAMAGED, DONE, FIXTURES, REFUSED, TABLES, USAGE

UNUSABLE = ["empty", "header-only", "magic", "jet3", "catalog"]
DAMAGED_TABLE = ["tabledef", "index-root", "index-leaf", "rowoffset", "pointer"]
CUT = ["truncated", "truncated-midpage"]
# What breaks the rules of the league in files that are sound.
BOTH = "two in one pick"
REMARKS = [BOTH, "no settings", "late picks"]
MISFITS = {"league.mdb": [BOTH], "league-encoded.mdb": [BOTH], "league-no-password.mdb": [BOTH],
           "league-blank.mdb": ["no settings"], "league-damaged-draftno.mdb": [BOTH, "outside draft"],
           "league-damaged-draftmanager.mdb": [BOTH, "not taking part"],
           "league-damaged-nullsetting.mdb": [BOTH, "no current season"],
           "league-damaged-nosetting.mdb": [BOTH, "no settings"]}


def damaged(fault):
    return FIXTURES / f"league-damaged-{fault}.mdb"


class Check(support.CliTest):
    def test_sound_files(self):
        for name, misfits in MISFITS.items():
            with self.subTest(file=name):
                broken = [kind for kind in misfits if kind not in REMARKS]
                code = REFUSED if broken else DONE
                done = support.run("check", FIXTURES / name)
                self.assertEqual(done.returncode, code)
                self.assertIn("is sound", done.stdout)
                done = support.run("check", "--file", FIXTURES / name, "--json")
                self.assertEqual(done.returncode, code)
                if broken:
                    self.assertIn(f": {len(broken)} finding", done.stderr)
                report = support.json_of(done.stdout)
                self.assertEqual((report["sound"], report["findings"], report["pages"]),
                                 (True, [], (FIXTURES / name).stat().st_size // 4096))
                self.assertEqual(sorted(finding["kind"] for finding in report["leagueFindings"]), sorted(misfits))

    def test_repair(self):
        for name, misfits in MISFITS.items():
            with self.subTest(file=name):
                shutil.rmtree(self.folder)
                self.folder.mkdir()
                at = ["--folder", self.folder]
                path = self.league(name)
                before = {table: self.succeed("dump", table, "--file", path) for table in TABLES}
                left = [kind for kind in misfits if kind in ("outside draft", "not taking part")]
                done = support.run(*at, "check", "--repair", "--json")
                report = support.json_of(done.stdout)
                self.assertEqual([finding["kind"] for finding in report["leagueFindings"]], left)
                self.assertEqual(len(report["repairs"]), len(misfits) - len(left))
                self.assertEqual(done.returncode, REFUSED if left else DONE, done.stderr)
                for table in TABLES:
                    self.assertEqual(self.succeed("dump", table, "--file", report["backup"]), before[table])
                password = "" if name == "league-no-password.mdb" else support.PASSWORD
                self.assertEqual(support.independent_findings(path, password), "")

                # What was repaired is no longer found, and a second repair changes nothing.
                after = support.digest(path)
                done = support.run(*at, "check", "--repair")
                self.assertEqual(done.returncode, REFUSED if left else DONE, done.stderr)
                self.assertNotIn("Copied", done.stdout)
                self.assertEqual(support.digest(path), after)
                self.assertEqual(len(list(self.folder.glob("*Backup*"))), 1)

    def test_repair_prints_its_changes(self):
        path = self.league("league-damaged-nullsetting.mdb")
        lines = self.succeed("--folder", self.folder, "check", "--repair").splitlines()
        self.assertRegex(lines[0], "^Copied .* to .*Backup.*\\.mdb\\.$")
        self.assertEqual(lines[1:], ["Set the current season in [settings] to none instead of Null.",
                                     "Removed team 29 from pick 7 of season 2022 (id 12); player 2366 keeps the pick."])
        self.assertIn("is sound", self.succeed("check", path))

    def test_a_finding_names_the_commands_that_mend_it(self):
        done = support.run("check", damaged("draftmanager"), "--json")
        findings = {finding["kind"]: finding for finding in support.json_of(done.stdout)["leagueFindings"]}
        self.assertEqual(findings[BOTH]["repairable"], True)
        finding = findings["not taking part"]
        self.assertFalse(finding["repairable"])
        season, command = finding["commands"]
        self.assertRegex(season, "^settings --current-season [0-9]+$")
        self.assertRegex(command, "^draft pick WHO --pick [0-9]+$")  # the season has no room for another manager
        self.assertIn(f"pick {command.split()[-1]} of", finding["text"])

    def test_repair_refuses_other_files_and_damage(self):
        self.fail_with(USAGE, "check", "--repair", FIXTURES / "league.mdb", says="league in the folder")
        self.fail_with(USAGE, "check", "--repair", "--password", "x", says="league in the folder")
        path = self.league("league-stale-moved.mdb")
        before = support.digest(path)
        done = self.fail_with(DAMAGED, "--folder", self.folder, "check", "--repair", says="14 findings")
        self.assertEqual(len(done.stdout.splitlines()), 14)
        self.assertEqual(support.digest(path), before)
        self.assertEqual(len(list(self.folder.iterdir())), 1)

    def test_damaged_files(self):
        for fault in UNUSABLE + DAMAGED_TABLE + CUT:
            with self.subTest(fault=fault):
                self.fail_with(DAMAGED, "check", damaged(fault))

    def test_findings_are_the_result_and_parse_as_json(self):
        done = support.run("check", damaged("rowoffset"), "--json")
        report = support.json_of(done.stdout)
        self.assertEqual((done.returncode, report["sound"]), (DAMAGED, False))
        self.assertIn("player info", " ".join(report["findings"]))

    def test_bodies_of_moved_rows_that_nothing_leads_to_are_findings(self):
        done = self.fail_with(DAMAGED, "check", FIXTURES / "league-stale-moved.mdb", says="14 findings")
        findings = [line for line in done.stdout.splitlines() if "table 'player info'" in line]
        self.assertEqual(len(findings), 14)

    def test_dumps_of_damaged_files_are_right_or_fail(self):
        # The damage of most files is in one table: the rest must still be readable.
        for fault in UNUSABLE + DAMAGED_TABLE + CUT:
            for table in TABLES:
                with self.subTest(fault=fault, table=table):
                    done = support.run("dump", table, "--file", damaged(fault))
                    if done.returncode == DONE:
                        self.assertEqual(done.stdout, support.expected_text(table))
                    else:
                        self.assertEqual(done.returncode, DAMAGED, done.stderr)
                        self.assertNotEqual(done.stderr, "")
                    if fault in UNUSABLE:
                        self.assertEqual(done.returncode, DAMAGED)
                    if fault in DAMAGED_TABLE and table not in ("player info",):
                        self.assertEqual(done.returncode, DONE)
        for fault in ("tabledef", "rowoffset", "pointer"):
            self.fail_with(DAMAGED, "dump", "player info", "--file", damaged(fault), says="player info")

    def test_league_commands_on_damaged_files(self):
        for fault in UNUSABLE:
            with self.subTest(fault=fault):
                shutil.copyfile(damaged(fault), self.folder / support.LIVE)
                for command in ("info", "settings"):
                    self.fail_with(DAMAGED, "--folder", self.folder, command)

    def test_no_command_changes_a_file(self):
        for path in sorted(FIXTURES.glob("*.mdb")):
            copy = self.folder / path.name
            shutil.copyfile(path, copy)
            before = support.digest(copy)
            for words in (["check", copy], ["tables", "--file", copy], ["dump", "player info", "--file", copy],
                          ["query", "select * from [draft info] where [manager id] = 3", "--file", copy]):
                self.assertIn(support.run(*words).returncode, (DONE, REFUSED, DAMAGED, CANNOT_OPEN), words)
                self.assertEqual(support.digest(copy), before, words)
        self.assertEqual(sorted(p.name for p in self.folder.iterdir()), sorted(p.name for p in FIXTURES.glob("*.mdb")))


if __name__ == "__main__":
    support.main()
