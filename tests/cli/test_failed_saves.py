"""Saves that the system does not let through: a clear error, the file as it was, and a shell that goes on from it."""
import queue
import resource
import subprocess
import threading
import unittest

import support
from leagues import LeagueTest

CHANGES = [["season", "set", "--contribution", "7"], ["season", "use", "2031", "--create"],
           ["season", "lock", "ranking", "--yes"], ["season", "lock", "draft", "--yes"], ["manager", "join", "19"],
           ["manager", "leave", "20"], ["manager", "fee", "1", "unpaid"], ["manager", "rank", "1", "1"],
           ["prize", "set", "Best trade", "5"], ["prize", "remove", "1"], ["winning", "add", "1", "1"], ["player", "add", "Ann", "Lee", "--position", "QB", "--team", "1"],
           ["player", "edit", "P1", "--first", "Ann"], ["manager", "add", "Ann", "Lee"],
           ["manager", "edit", "1", "--first", "Ann"], ["prize", "add", "Cup", "--type", "1"],
           ["prize", "edit", "1", "--name", "Cup"], ["position", "add", "P", "Punter"], ["position", "edit", "QB", "--short", "Q"]]
LOOKS = ["season show", "manager list", "prize list", "winning list", "player show P1", "player list --team 1",
         "manager list --all", "prize list --all"]


@unittest.skipUnless(hasattr(resource, "prlimit"), "limits of another process are Linux's")
class FullDisk(LeagueTest):
    """A limit of 0 on the size of files lets no byte be written, as a full disk does."""

    def setUp(self):
        super().setUp()
        self.use_fixture(season=13)
        self.done("manager", "leave", "18")
        self.done("prize", "set", "Weekly high score", "5")

    def test_every_change(self):
        before = support.digest(self.path)
        for words in CHANGES:
            done = support.run(*self.at, *words, restore_signals=False,
                               preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (0, resource.RLIM_INFINITY)))
            self.assertNotEqual(done.returncode, support.DONE, words)
            self.assertIn("could not be", done.stderr, words)
            self.assertEqual(done.stdout, "", words)
            self.assertEqual(support.digest(self.path), before, words)
        self.assert_sound()

    def test_a_damaged_log_is_reported_once_and_kept(self):
        with subprocess.Popen([support.PROGRAM, *map(str, self.at), "shell"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, env=support.environment()) as shell:
            for words in (b"winning add 1 1 --week 1\n", b"winning add 1 1 --week 2\n", b"winning add 1 1 --week 3\n"):
                shell.stdin.write(words)
                shell.stdin.flush()
                self.assertIn(b"wins", shell.stdout.readline())
            shell.kill()
        log = self.path.with_name(self.path.name + "-log")
        content = bytearray(log.read_bytes())
        second = content.index(b"UNIT", content.index(b"UNIT") + 4)
        content[second + 100] ^= 1
        log.write_bytes(content)
        done = support.run(*self.at, "winning", "list")
        self.assertEqual((done.returncode, done.stdout), (support.DAMAGED, ""))
        self.assertIn("damaged: 2 changes in it are lost", done.stderr)
        self.assertEqual(log.with_name(log.name + "-damaged").read_bytes(), content)
        self.assertEqual(len(self.of_season("winning info", 13)), 1)

    def test_a_shell_goes_on_from_what_is_stored(self):
        shell = subprocess.Popen([support.PROGRAM, *map(str, self.at), "shell", "--keep-going"], stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=support.environment(),
                                 restore_signals=False)
        self.addCleanup(shell.stdout.close)
        self.addCleanup(shell.wait)
        self.addCleanup(shell.kill)
        answers = queue.Queue()
        threading.Thread(target=lambda: [answers.put(line.decode()) for line in shell.stdout], daemon=True).start()

        def say(*lines, until):
            """Sends lines, and reads until an answer holds a text."""
            shell.stdin.write("".join(line + "\n" for line in lines).encode())
            shell.stdin.flush()
            told = []
            while not told or until not in told[-1]:
                told.append(answers.get(timeout=support.SECONDS))
            return "".join(told)

        before = say(*LOOKS, "position list", until="Long snapper")
        resource.prlimit(shell.pid, resource.RLIMIT_FSIZE, (0, resource.RLIM_INFINITY))
        lines = [" ".join(f"'{word}'" for word in words) for words in CHANGES]
        say(*lines, "position list", until="Long snapper")
        resource.prlimit(shell.pid, resource.RLIMIT_FSIZE, (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
        after = say(*LOOKS, "position list", until="Long snapper")
        say("winning add 1 1", until="wins")
        shell.stdin.close()
        shell.wait(timeout=support.SECONDS)
        self.assertEqual(after, before)
        self.assertEqual(len(self.of_season("winning info", 13)), 1)
        self.assert_sound()


if __name__ == "__main__":
    support.main()
