"""`shell`: commands on one open league, from a script and from a terminal; picks wait until they are saved."""
import json
import os
import pty
import select
import subprocess
import time
import unittest

import support
from drafting import DraftTest
from support import DONE, REFUSED, USAGE


class Scripts(DraftTest):
    def test_picks_are_undone_and_replaced_before_they_are_saved(self):
        before = self.snapshot()
        out, err = self.shell(
            "# draft night", "", *[f"draft pick P{n}" for n in range(1, 7)],
            "draft undo", "draft undo", "draft undo",             # back across the end of round 1
            "draft pick T1",
            "draft pick --pick 2 'Ann Twin' --team ASP", "draft pick --pick 1 P2",  # who was replaced is free
            "draft pick --pick 3 T9", "draft undo",               # a replacement is undone
            "draft undo 4", "draft pick o'dapplewick", "draft save")
        self.assertEqual(err, f"The draft was saved in {self.folder}\\{support.LIVE}.\n")
        self.assertIn("Restored pick 3, round 1: Lucian Nettleworth has Olaf Dimblewood (P3, AMB, RB) again", out)
        self.assertIn("Saved picks 1-4.", out)
        self.expect("P2", "P483", "P3", "P23")
        self.assert_changed_only(before, "draft info")
        self.shell("clear 1 3", "pick P1", "pick P2 --pick 3", "save")  # `draft` may be left out
        self.expect("P1", "P483", "P2", "P23")

    def test_each_pick_is_followed_by_who_is_next(self):
        out, _ = self.shell(*[f"draft pick P{n}" for n in range(1, 6)], "quit --discard")
        order = ["Barnaby Rumblethorpe, pick 2, round 1", "Lucian Nettleworth, pick 3, round 1",
                 "Osric Marrowgate, pick 4, round 1", "Osric Marrowgate, pick 5, round 2", "Lucian Nettleworth, pick 6, round 2"]
        self.assertEqual([line for line in out.split("\n") if line.startswith("On the clock: ")],
                         [f"On the clock: {turn}." for turn in order])

    def test_saving_and_undoing_what_was_saved(self):
        self.shell("draft pick P1", "draft pick P2", "draft save", "draft undo", "draft save", "draft pick P3",
                   "draft save", "draft save")
        self.expect("P1", "P3")
        self.shell("draft undo", "draft save")  # by another process: the last pick that is filled
        self.expect("P1")
        self.shell("draft clear --yes", "draft undo", "draft pick P2", "draft save")
        self.expect("P1", "P2")
        self.shell("draft pick P2 --pick 1", code=REFUSED)
        self.shell("draft clear --yes", "draft pick P2", "draft pick P1", "draft save")
        self.expect("P2", "P1")

    def test_reverting_drops_what_is_not_saved(self):
        out, _ = self.shell("draft pick P1", "draft save", "draft pick P2", "draft pick P3 --pick 1", "draft revert",
                            "draft clock", "draft pick P2", "draft save")
        self.assertIn("Back to what is stored: picks 1-2.", out)
        self.expect("P1", "P2")

    def test_leaving_with_unsaved_picks(self):
        before = support.digest(self.path)
        for lines, says in (((), "A change of pick 1 is not saved."), (("quit",), "line 2: A change of pick 1 is not saved."),
                            (("exit",), "line 2: "), (("draft pick P2", "draft pick P2"), "line 3: ")):
            _, err = self.shell("draft pick P1", *lines, code=REFUSED)
            self.assertIn(says, err)
            self.assertIn("not saved", err)
        self.assertIn("picks 1-2 are not saved", err)
        self.shell("draft pick P1", "quit --discard", "draft nonsense")
        self.shell("draft pick P1", "draft undo")  # nothing is left to save
        self.shell("draft pick P1", "draft revert", "quit")
        self.assertEqual(support.digest(self.path), before)

    def test_commands_that_would_lose_unsaved_picks_are_refused(self):
        for command in ("season use 2031 --create", "season set --rounds 4", "season lock draft --yes", "manager join 2",
                        "manager leave 1", "manager fee 1 paid", "manager rank 3 1", "prize set 1 5",
                        "settings --current-season 0"):
            _, err = self.shell("draft pick P1", command, code=REFUSED)
            self.assertIn("line 2: ", err)
            self.assertIn("pick 1 are not saved", err.replace("is not", "are not"), command)
        self.shell("draft pick P1", "draft save", "manager fee 1 paid", "draft pick P2", "draft save")
        self.expect("P1", "P2")

    def test_a_failing_line_is_named_and_ends_the_script(self):
        for lines, line, code in ((["draft clock", "", "draft pick nobody", "draft pick P1"], 3, REFUSED),
                                  (["# x", "darft pick P1"], 2, USAGE), (["draft pick 'P1"], 1, USAGE),
                                  (["draft pick P1 --pcik 2"], 1, USAGE), (["draft"], 1, USAGE)):
            _, err = self.shell(*lines, "draft save", code=code)
            self.assertIn(f"line {line}: ", err)
        self.assertEqual(self.stored(), {})
        script = self.folder / "night.txt"
        script.write_bytes(b"\xef\xbb\xbfdraft pick P1\r\ndraft pick P1\r\ndraft pick P2\r\ndraft save\r\n")
        done = self.fail_with(REFUSED, *self.at, "shell", "--script", script, says="night.txt, line 2: ")
        self.assertIn("A change of pick 1 is not saved.", done.stderr)
        done = self.fail_with(REFUSED, *self.at, "shell", "--script", script, "--keep-going", says="line 2: ")
        self.expect("P1", "P2")
        self.fail_with(support.CANNOT_OPEN, *self.at, "shell", "--script", self.folder / "none", says="none")

    def test_endless_input_is_refused(self):
        for words in (["shell", "--script"], ["import", "players"]):
            self.refused(*words, "/dev/zero", says="too long")
            self.refused(*words, self.folder, says="cannot be read", code=support.CANNOT_OPEN)
        self.assertIn("too long", self.shell("x" * 70000, code=REFUSED)[1])

    def test_a_published_board_does_not_keep_what_is_dropped(self):
        page = self.folder / "board.html"
        self.shell(f"board --html '{page}'", "pick P300", "quit --discard")
        saved = page.read_text("utf-8")
        self.shell(f"board --html '{page}'", "pick P300", code=REFUSED)
        self.assertEqual(page.read_text("utf-8"), saved)
        self.shell(f"board --html '{page}'", "pick P300", "save")
        self.assertNotEqual(page.read_text("utf-8"), saved)

    def test_options_of_a_line_are_its_own(self):
        out, _ = self.shell("draft pick P1 --pick 3", "draft pick P2 --json", "draft clock", "quit --discard")
        self.assertEqual(json.loads(out[out.index("{"):out.rindex("}") + 1])["picks"][0]["pick"], 1)
        self.assertIn("2 of 12", out[out.rindex("}"):])
        done = subprocess.run([support.PROGRAM, *self.at, "--json", "--quiet", "shell"], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, input=b"draft pick P1\ndraft save\ndraft clock\n", check=True,
                              env=support.environment(), timeout=support.SECONDS)
        self.assertEqual(done.stderr, b"")
        answers, decoder = done.stdout.decode().strip(), json.JSONDecoder()
        picked, end = decoder.raw_decode(answers)
        self.assertEqual((picked["picks"][0]["saved"], picked["unsavedPicks"]), (False, 1))
        saved, more = decoder.raw_decode(answers[end:].lstrip())
        self.assertEqual((saved["picks"][0]["saved"], saved["unsavedPicks"]), (True, 0))
        self.assertEqual(json.loads(answers[end:].lstrip()[more:])["onTheClock"]["pick"], 2)

    def test_what_a_shell_does_not_offer(self):
        for command in ("dump 'team info'", "check", "info", "create", "shell", "tables", "query x"):
            _, err = self.shell(command, code=USAGE)
            self.assertIn("has the league's file to itself", err)
        self.shell("draft clock --folder x", code=USAGE)
        out, _ = self.shell("help", "help draft pick", "draft undo --help")
        for part in ("season", "quit", "--position", "Take the last pick back"):
            self.assertIn(part, out)

    def test_the_file_is_held_until_the_shell_ends(self):
        shell = subprocess.Popen([support.PROGRAM, *self.at, "shell"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, env=support.environment())
        self.addCleanup(shell.kill)
        shell.stdin.write(b"draft clock\n")
        shell.stdin.flush()
        self.assertIn(b"on the clock", shell.stdout.readline())
        self.fail_with(support.CANNOT_OPEN, *self.at, "draft", "clock")
        shell.communicate(b"", timeout=support.SECONDS)
        self.assertEqual(shell.returncode, DONE)
        self.done("draft", "clock")

    def test_what_was_saved_survives_the_end_of_the_process(self):
        shell = subprocess.Popen([support.PROGRAM, *self.at, "shell"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                 stderr=subprocess.DEVNULL, env=support.environment())
        self.addCleanup(shell.stdout.close)
        shell.stdin.write(b"pick P1\npick P2\nsave\npick P3\n")
        shell.stdin.flush()
        while b"takes Olaf Dimblewood" not in (line := shell.stdout.readline()):
            self.assertTrue(line)
        shell.kill()
        shell.communicate()
        self.expect("P1", "P2")


@unittest.skipUnless(os.name == "posix", "needs a pseudo-terminal")
class Terminals(DraftTest):
    """Somebody types."""

    def type(self, *exchanges, code=DONE):
        """Types each answer once its question is shown; (question, answer). What was shown, in all."""
        ours, theirs = pty.openpty()
        self.addCleanup(os.close, ours)
        shell = subprocess.Popen([support.PROGRAM, *map(str, self.at), "shell"], stdin=theirs, stdout=theirs,
                                 stderr=theirs, env=support.environment(NO_COLOR="1"), start_new_session=True)
        self.addCleanup(shell.kill)
        os.close(theirs)
        shown = position = ""
        end = time.monotonic() + support.SECONDS

        def read_until(question):
            nonlocal shown
            start = len(position)
            while question not in shown[start:]:
                self.assertLess(time.monotonic(), end, f"no {question!r} after {shown!r}")
                if select.select([ours], [], [], 0.2)[0]:
                    try:
                        shown += os.read(ours, 65536).decode("utf-8", "replace")
                    except OSError:  # the other side is closed
                        break

        for question, answer in exchanges:
            read_until(question)
            position = shown
            os.write(ours, answer.encode())
        read_until("\x00")  # never comes: to the end
        self.assertEqual(shell.wait(timeout=support.SECONDS), code, shown)
        return shown

    PROMPT, UNSAVED = "halcyra> ", "halcyra*> "

    def test_names_do_not_reach_the_terminal_with_control_characters(self):
        self.done("player", "add", "Eve\x1b[2J\u202e", "Lee", "--position", "QB", "--team", "1")
        shown = self.type((self.PROMPT, "player show Eve\n"), (self.PROMPT, "search Eve\n"), (self.PROMPT, "pick Eve\n"),
                          (self.UNSAVED, "pick Eve\n"), (self.UNSAVED, "board\n"), (self.UNSAVED, "quit --discard\n"))
        for words in ("dump", "player info"), ("query", "select * from [player info] where id > 480"):
            ours, theirs = pty.openpty()
            with subprocess.Popen([support.PROGRAM, *map(str, self.at), *words], stdout=theirs, stderr=theirs,
                                  env=support.environment()):
                os.close(theirs)
                try:
                    while text := os.read(ours, 65536):
                        shown += text.decode("utf-8", "replace")
                except OSError:  # the other side is closed
                    os.close(ours)
        self.assertIn("Eve", shown)
        self.assertNotIn("\x1b", shown)
        self.assertNotIn("\u202e", shown)

    def test_errors_do_not_end_it_and_leaving_asks(self):
        shown = self.type((self.PROMPT, "darft\n"), (self.PROMPT, "draft pick P1\n"), (self.UNSAVED, "quit\n"),
                          ("cancel]", "cancel\n"), (self.UNSAVED, "draft pick P2\n"), (self.UNSAVED, "quit\n"),
                          ("cancel]", "yes\n"))
        self.assertIn("Did you mean 'draft'?", shown)
        self.expect("P1", "P2")

    def test_leaving_without_saving(self):
        self.type((self.PROMPT, "draft pick P1\n"), (self.UNSAVED, "\x04"), ("cancel]", "no\n"))
        self.assertEqual(self.stored(), {})
        self.type((self.PROMPT, "draft pick P1\n"), (self.UNSAVED, "\x04"), ("cancel]", "\x04"), code=REFUSED)
        self.assertEqual(self.stored(), {})
        self.type((self.PROMPT, "\x04"))

    def test_ctrl_c_gives_up_the_line_and_not_the_draft(self):
        self.type((self.PROMPT, "draft pick P1\n"), (self.UNSAVED, "draft clear --yes\x03"), ("", "\n"),
                  (self.UNSAVED, "draft save\n"), (self.PROMPT, "quit\n"))
        self.expect("P1")

    def test_clearing_asks(self):
        self.type((self.PROMPT, "draft pick P1\n"), (self.UNSAVED, "draft save\n"), (self.PROMPT, "draft clear\n"),
                  ("[yes, no]", "no\n"), (self.PROMPT, "draft clock\n"), (self.PROMPT, "draft clear\n"),
                  ("[yes, no]", "y\n"), (self.UNSAVED, "draft save\n"), (self.PROMPT, "quit\n"))
        self.assertEqual(self.stored(), {})


if __name__ == "__main__":
    support.main()
