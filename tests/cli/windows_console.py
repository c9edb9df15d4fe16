"""Plays a season at a console of Windows, under Wine on a pseudo-terminal, and at a terminal of this machine: the files
must be the same. scripts/test-windows runs it: windows_console.py PROGRAM PROGRAM.exe, where PROGRAM is this machine's."""
import fcntl
import os
import pathlib
import pty
import re
import select
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

WINE = "/usr/lib/wine/wine64"
LIVE = "Halcyra - Live.mdb"
SECONDS = 60
PROMPT = re.compile(r"halcyra\*?> $")
SEASON = [
    "manager add Käthe Größer", "manager add Łukasz Świątek", "manager add 明日香 日向", "manager add René 'É𝔘'",
    "manager edit 14 --last Świętek", "player add José Muñoz --position QB --team BAR", "position add ÄÖ Größenwahn",
    "prize add Groß–É --type 1", "season use 2031 --create", "season set --managers 4 --rounds 2 --contribution 20 --weeks 4",
    "manager join Größer Świętek 日向 René", "manager rank Świętek Größer René 日向", "manager fee Größer paid",
    "pick P1", "pick Muñoz", "pick T3", "pick P7", "undo", "pick P9", "save", "prize set Groß–É 30", "winning add 日向 Groß–É --week 1", "money",
]


def text_of(terminal):
    """What a terminal shows, without the console's sequences that draw it."""
    text = terminal.decode("utf-8", "replace").replace("\x1b[K\x1b[1C", " ")
    return re.sub(r"\x1b\[[?0-9;]*[A-Za-z]", "", text).replace("\r", "")


class Terminal:
    """A program on a pseudo-terminal."""

    def __init__(self, *command):
        self.is_console = command[0] == WINE
        self.ours, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 50, 200, 0, 0))
        environment = {**os.environ, "LC_ALL": "C.UTF-8", "TERM": "xterm", "NO_COLOR": "1"}
        self.program = subprocess.Popen(command, stdin=theirs, stdout=theirs, stderr=theirs, env=environment,
                                        start_new_session=True)
        os.close(theirs)

    def read(self, until=None):
        """What the program shows, up to a pattern at its end or else to the end."""
        shown = b""
        silent = 0
        end = time.monotonic() + SECONDS
        while until is None or not until.search(text_of(shown)):
            if time.monotonic() > end:
                self.program.kill()
                raise AssertionError(f"no {until} in {text_of(shown)!r}")
            if select.select([self.ours], [], [], 0.2)[0]:
                try:
                    piece = os.read(self.ours, 65536)
                except OSError:  # the other side is closed
                    piece = b""
                shown += piece
                silent = 0
                if not piece:
                    break
            else:  # processes that Wine left running may keep the terminal open, so its end may never come
                silent += 1
                if until is None and self.program.poll() is not None and silent >= 5:
                    break
        return text_of(shown)

    def type(self, text):
        # Wine's console edits lines itself, and takes over the terminal a moment after the program started.
        end = time.monotonic() + SECONDS
        while self.is_console and termios.tcgetattr(self.ours)[3] & termios.ICANON and time.monotonic() < end:
            time.sleep(0.05)
        os.write(self.ours, text.encode("utf-8"))

    def play(self, lines):
        """Types each line at a prompt, then `quit`. What was shown, in all."""
        shown = ""
        for line in [*lines, "quit"]:
            shown += self.read(PROMPT)
            self.type(line + "\r")
        return shown + self.close()

    def close(self):
        """Waits for the program's end. What was shown until then."""
        shown = self.read()
        os.close(self.ours)
        if self.program.wait(timeout=SECONDS) != 0:
            raise AssertionError(f"{self.program.args} ended with {self.program.returncode} after {shown!r}")
        return shown


class Console(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.here, self.there = pathlib.Path(folder.name, "here"), pathlib.Path(folder.name, "there")
        for each in (self.here, self.there):
            each.mkdir()
        subprocess.run([NATIVE, "--folder", self.here, "create", "--sample"], check=True, capture_output=True)
        (self.there / LIVE).write_bytes((self.here / LIVE).read_bytes())

    def on_windows(self, *words):
        return Terminal(WINE, WINDOWS, "--folder", f"Z:{self.there}", *words)

    def test_season_typed_at_a_console_makes_the_same_file(self):
        shown = []
        for terminal in (Terminal(NATIVE, "--folder", self.here, "shell"), self.on_windows("shell")):
            shown.append(terminal.play([*SEASON, "manager list"]))
        self.assertEqual((self.here / LIVE).read_bytes(), (self.there / LIVE).read_bytes(), "\n".join(shown))
        for word in ("Käthe Größer", "Łukasz Świętek", "明日香 日向"):
            self.assertIn(word, shown[1].split("manager list")[1])

    def test_ctrl_c_does_not_end_the_shell(self):
        terminal = self.on_windows("shell")
        terminal.read(PROMPT)
        terminal.type("\x03")
        terminal.type("manager add Käthe Größer\r")
        self.assertIn("Added Käthe Größer (13).", terminal.play([]))

    def test_code_page_is_as_before(self):
        command = f"chcp & {WINDOWS} --folder Z:{self.there} info & chcp"
        terminal = Terminal(WINE, "cmd", "/c", command)
        pages = re.findall(r"code page: (\d+)", terminal.close())
        self.assertEqual(len(pages), 2)
        self.assertEqual(pages[0], pages[1])

    def test_redirected_text_is_utf_8(self):
        """Without a console at all, input and output are bytes."""
        done = subprocess.run([WINE, WINDOWS, "--folder", f"Z:{self.there}", "shell"], capture_output=True, check=True,
                              input="manager add Łukasz 日向\nquit\n".encode("utf-8"), timeout=SECONDS)
        self.assertIn("Added Łukasz 日向 (13).\n".encode("utf-8"), done.stdout)


if __name__ == "__main__":
    NATIVE, WINDOWS = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
