"""A command that is killed is in the file whole or not at all, at whatever moment, and every season still loads.

HALCYRA_TEST_EVERY tries only every N-th point; which ones follows from HALCYRA_TEST_SEED, random and printed if not set.
"""
import errno
import os
import random
import shutil
import subprocess
import time
import unittest

import support
from drafting import DraftTest

CRASHER = os.environ.get("HALCYRA_TEST_CRASHER", "")
EVERY = int(os.environ.get("HALCYRA_TEST_EVERY", "1"))
SEED = int(os.environ.get("HALCYRA_TEST_SEED", random.randrange(1 << 30)))
KILLS = 300 // EVERY
FAULTS = [(how, error) for how in ("fail", "fail for good", "short") for error in (errno.EIO, errno.ENOSPC)]
SCRIPT = b"draft pick P40\ndraft pick P41\ndraft undo\ndraft pick T9\ndraft save\ndraft pick P42\ndraft save\nmanager fee 3 paid\n"
PLAYERS = "id,first name,last name,position,team\n1,Ann,Lee,QB,AMB\n" + "".join(
    f"new,New{n},Player{n},RB,ASP\n" for n in range(40))
COMMANDS = [["season", "set", "--contribution", "7", "--weeks", "20"], ["season", "use", "2099", "--create"],
            ["season", "use", "2029"], ["season", "lock", "ranking", "--yes"], ["season", "lock", "draft", "--yes"],
            ["manager", "fee", "1", "3", "10", "paid"], ["manager", "rank", "10", "1"], ["manager", "add", "Ann", "Lee"],
            ["manager", "edit", "1", "--first", "Ann"], ["prize", "set", "1=26", "2=36", "3=46"], ["prize", "remove", "2"],
            ["prize", "add", "Cup", "--type", "1"], ["prize", "edit", "1", "--name", "Cup"], ["prize", "delete", "13", "--yes"],
            ["position", "add", "P", "Punter"], ["position", "edit", "QB", "--short", "Q"], ["position", "delete", "LS", "--yes"],
            ["player", "add", "Ann", "Lee", "--position", "QB", "--team", "1"], ["player", "edit", "P1", "--first", "Ann"],
            ["player", "delete", "P480", "--yes"], ["winning", "add", "3", "1", "--week", "2"], ["winning", "remove", "1", "2"],
            ["draft", "pick", "P30"], ["draft", "undo"], ["draft", "clear", "--yes"], ["draft", "clear", "2", "4"],
            ["draft", "pick", "P31", "--pick", "2"], ["settings", "--current-season", "2"], ["manager", "leave", "12"],
            ["manager", "join", "12"], ["import", "players"], ["shell"]]


class Killed(DraftTest):
    def setUp(self):
        super().setUp()
        print("HALCYRA_TEST_SEED =", SEED)
        self.random = random.Random(SEED)
        for words in (["season", "set", "--managers", "5", "--weeks", "17", "--regular-weeks", "14"],
                      ["manager", "join", "12"], ["manager", "rank", "12", "5"], ["prize", "set", "1=25", "2=35"],
                      ["prize", "add", "Spare", "--type", "1"], ["position", "add", "LS", "Long snapper"],
                      ["winning", "add", "1", "1", "--week", "1"], ["winning", "add", "3", "1"],
                      ["season", "use", "2029", "--create"], ["season", "set", "--managers", "2", "--rounds", "2"],
                      ["season", "use", "2030"], *(["draft", "pick", f"P{n}"] for n in range(1, 5))):
            self.done(*words)
        (self.folder / "players.csv").write_text(PLAYERS, "utf-8")
        self.other = self.folder / "other"
        self.other.mkdir()

    def start(self, words, folder, **env):
        """Starts a command on the league of a folder, with a script for a shell."""
        file = [self.folder / "players.csv"] if words[0] == "import" else []
        process = subprocess.Popen([support.PROGRAM, "--folder", folder, *words, *file], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=support.environment(**env))
        try:
            process.stdin.write(SCRIPT if words[0] == "shell" else b"")
            process.stdin.close()
        except BrokenPipeError:
            pass  # it is dead already
        return process

    def run_whole(self, words, **env):
        """Runs a command on a copy of the league: whether it succeeds, and the file that it leaves."""
        shutil.copyfile(self.path, self.other / support.LIVE)
        process = self.start(words, self.other, **env)
        began = time.monotonic()
        process.stdout.read()
        self.took = time.monotonic() - began
        process.stdout.close()
        return process.wait() == 0, (self.other / support.LIVE).read_bytes()

    def expect_one_of(self, process, before, after, what):
        """After a process has died, its file is one of the two, and every season loads. Says whether it is the second."""
        told = process.stdout.read()
        process.stdout.close()
        process.wait()
        self.done("season", "list")  # replays the log, and loads all seasons
        now = self.path.read_bytes()
        self.assertTrue(now == after or (now == before and not told), f"{what}: half done, or lost after {told}")
        self.assertFalse((self.folder / (support.LIVE + "-log")).exists())
        return now == after

    @unittest.skipUnless(CRASHER, "there is no library to preload")
    def test_at_each_file_operation(self):
        start = self.path.read_bytes()
        calls = self.folder / "calls"
        points = done = 0
        phase = self.random.randrange(EVERY)
        for words in COMMANDS:
            self.path.write_bytes(start)
            if words[:2] == ["manager", "join"]:
                self.done("manager", "leave", "12")
            before = self.path.read_bytes()
            succeeded, after = self.run_whole(words, LD_PRELOAD=CRASHER, HALCYRA_TEST_CALLS=str(calls))
            self.assertTrue(succeeded and after != before, words)
            for call in range(1, int(calls.read_text()) + 1):
                for how in ("before", "in", "after"):
                    points += 1
                    if points % EVERY != phase:
                        continue
                    self.path.write_bytes(before)
                    process = self.start(words, self.folder, LD_PRELOAD=CRASHER, HALCYRA_TEST_CRASH_AT=str(call),
                                         HALCYRA_TEST_CRASH_HOW=how)
                    if words[0] == "shell":  # two savings and a fee: any of them may be the last
                        self.expect_saved_shell(process, f"{how} call {call}")
                    else:
                        done += self.expect_one_of(process, before, after, f"{words}, killed {how} call {call}")
            self.path.write_bytes(after)
            self.assert_sound()
        self.assertGreater(points, 500)
        print(f"{points} points, every {EVERY}th tried, {done} after the commit")

    @unittest.skipUnless(CRASHER, "there is no library to preload")
    def test_copies_at_each_file_operation(self):
        """Whatever ends a command that makes whole files: the league is the one before or after, or no file at all is new."""
        self.done("backup")
        backup = next(self.folder.glob("Halcyra - Backup*"))
        self.done("prize", "set", "1=99")
        start, before = self.path.read_bytes(), self.snapshot()
        kept = {path.name for path in self.folder.iterdir()} | {"calls"}
        calls = self.folder / "calls"
        for words in (["backup"], ["restore", backup.name, "--yes"], ["compact"], ["create", "--force", "--sample"]):
            support.run("--folder", self.folder, *words,
                        env=support.environment(LD_PRELOAD=CRASHER, HALCYRA_TEST_CALLS=str(calls)))
            after = self.snapshot()
            noOfCalls = int(calls.read_text())
            ways = [(call, how, 0) for call in range(1, noOfCalls + 1) for how in ("before", "in", "after")]
            ways += [(call, how, error) for call in range(1, noOfCalls + 1) for how, error in FAULTS]
            for call, how, error in self.random.sample(ways, 150 if EVERY == 1 else 15):
                for path in self.folder.iterdir():
                    if path.is_file() and path.name not in kept:
                        path.unlink()
                self.path.write_bytes(start)
                what = f"{words}, {how} of call {call} with {error}"
                done = subprocess.run([support.PROGRAM, "--folder", self.folder, *words], capture_output=True, text=True,
                                      env=support.environment(LD_PRELOAD=CRASHER, HALCYRA_TEST_CRASH_AT=str(call),
                                                              HALCYRA_TEST_CRASH_HOW=how, HALCYRA_TEST_ERROR=str(error)))
                what += f": {done.returncode} {done.stderr}"
                now = before if self.path.read_bytes() == start else self.snapshot()
                isNew = now == after and after != before
                self.assertTrue(now == after if done.returncode == support.DONE else now in (before, after), what)
                if error and done.returncode != support.DONE:
                    self.assertEqual(done.returncode, support.SYSTEM_FAILED, what)
                    self.assertTrue(not isNew or "may not survive" in done.stderr, what)
                self.assert_sound()
                self.done("backup")  # sweeps up
                self.assertEqual([path.name for path in self.folder.iterdir() if "being-made" in path.name], [], what)
                for path in self.folder.glob("Halcyra - Backup*"):
                    self.assertIn(support.run("check", path).returncode, (support.DONE, support.REFUSED), what)
            self.path.write_bytes(start)

    @unittest.skipUnless(CRASHER, "there is no library to preload")
    def test_faults_at_each_file_operation(self):
        """What a command reports of a change is what the next one finds, whichever calls of the system fail."""
        start = self.path.read_bytes()
        calls = self.folder / "calls"
        points = 0
        phase = self.random.randrange(EVERY)
        for words in COMMANDS[:-1]:
            self.path.write_bytes(start)
            if words[:2] == ["manager", "join"]:
                self.done("manager", "leave", "12")
            before = self.path.read_bytes()
            _, after = self.run_whole(words, LD_PRELOAD=CRASHER, HALCYRA_TEST_CALLS=str(calls))
            for call in range(1, int(calls.read_text()) + 1):
                for how, error in FAULTS:
                    points += 1
                    if points % EVERY != phase:
                        continue
                    self.path.write_bytes(before)
                    what = f"{words}, {how} of call {call} with {os.strerror(error)}"
                    file = [self.folder / "players.csv"] if words[0] == "import" else []
                    done = support.run("--folder", self.folder, *words, *file, env=support.environment(
                        LD_PRELOAD=CRASHER, HALCYRA_TEST_CRASH_AT=str(call), HALCYRA_TEST_CRASH_HOW=how,
                        HALCYRA_TEST_ERROR=str(error)))
                    self.done("season", "list")
                    now = self.path.read_bytes()
                    what += f": {done.returncode} {done.stdout} {done.stderr}"
                    if done.returncode == support.DONE:
                        self.assertTrue(now == after, what)
                    else:
                        self.assertEqual(done.returncode, support.SYSTEM_FAILED, what)
                        self.assertIn(os.strerror(error) if error == errno.EIO else "disk is full", done.stderr, what)
                        self.assertTrue(now == before or (now == after and "cannot be known" in done.stderr), what)
                    self.assertFalse((self.folder / (support.LIVE + "-log")).exists(), what)
        print(f"{points} faults, every {EVERY}th tried")

    def expect_saved_shell(self, process, what):
        told = process.stdout.read().decode()
        process.stdout.close()
        process.wait()
        picks = len(self.of_season("draft info", 1))
        fee = next(row["fee paid"] for row in self.rows("playing info") if row["manager id"] == 3)
        state = (picks, bool(fee))
        states = [(4, False), (6, False), (7, False), (7, True)]
        self.assertIn(state, states, what)
        acknowledged = told.count("Saved pick") + ("3 have paid" in told)
        self.assertGreaterEqual(states.index(state), min(acknowledged, 3), what)
        self.done("season", "list")

    def test_at_random_moments(self):
        killed = done = 0
        for _ in range(10 * KILLS):
            if killed == KILLS:
                break
            words = self.random.choice(COMMANDS[:-1])
            if words[:2] == ["draft", "pick"]:
                words = ["draft", "pick", f"P{self.random.randrange(1, 400)}"]
            succeeded, after = self.run_whole(words)
            if not succeeded:
                continue
            before = self.path.read_bytes()
            process = self.start(words, self.folder)
            time.sleep(self.random.random() * self.took * 1.2)
            process.kill()
            killed += 1
            done += self.expect_one_of(process, before, after, words)
        self.assert_sound()
        self.assertEqual(killed, KILLS)
        if EVERY == 1:  # a small sample may well end before every commit
            self.assertGreater(done, 0)
        print(f"{killed} processes killed, {done} after the commit")


if __name__ == "__main__":
    support.main()
