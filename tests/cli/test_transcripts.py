"""The transcripts of README.md, of the other pages beside it and of docs/, run and compared; with --update they are rewritten.

A transcript is a block indented by four spaces that begins with `$ `. The commands of a page run in order, in bash, in one
empty folder, with `tests/` of the source tree in it; `/tmp/league` stands for a folder of the test's own, where the league
is. `<!-- setup: COMMANDS -->` runs commands that the page does not show; they have to succeed. A command fails exactly if it
prints a line that begins with `halcyra: `. Lines of a shell's input follow its prompt: such a command runs on a terminal.

Two things on a page stand for others: the time in a backup's name for any time, and a line `...` for any lines.
"""
import errno
import itertools
import os
import pathlib
import re
import shlex
import subprocess
import sys

import support

EXAMPLES = pathlib.Path(os.environ.get("HALCYRA_EXAMPLES", "nowhere"))
SOURCE = support.TEST_DATA.parent.parent
PAGES = [*sorted(SOURCE.glob("*.md")), *sorted((SOURCE / "docs").glob("*.md"))]
SHOWN_FOLDER = "/tmp/league"
INDENT = "    "
PROMPT = re.compile(r"^halcyra\*?> ")
TIME = re.compile(r"\d{4}-\d\d-\d\d - \d\d-\d\d-\d\d")
SETUP = "<!-- setup:"


def is_unfinished(command):
    """Whether bash wants more lines: for a word in quotes, or a here-document."""
    done = subprocess.run(["bash", "-n", "-c", command], stderr=subprocess.PIPE, check=False)
    return b"EOF" in done.stderr or b"end-of-file" in done.stderr


def steps_of(lines):
    """The steps of a page in order: ("setup", command, None) and ("show", command, the slice of its output's lines)."""
    number = 0
    while number < len(lines):
        line = lines[number]
        if line.startswith(SETUP):
            text = line[len(SETUP):]
            while "-->" not in text:
                number += 1
                text += "\n" + lines[number]
            yield "setup", text.split("-->")[0].strip(), None
        elif line.startswith(INDENT + "$ "):
            command = line[len(INDENT) + 2:]
            while is_unfinished(command):
                number += 1
                if not lines[number].startswith(INDENT):
                    raise ValueError(f"line {number + 1}: the command before does not end: {command}")
                command += "\n" + lines[number][len(INDENT):]
            first = last = number + 1
            for end in range(first, len(lines)):
                if lines[end] and (not lines[end].startswith(INDENT) or lines[end].startswith(INDENT + "$ ")):
                    break
                if lines[end]:
                    last = end + 1
            yield "show", command, slice(first, last)
            number = last - 1
        number += 1


def on_terminal(words, typed, **options):
    """Runs a program on a terminal and types a line at each prompt; what the terminal shows, and the code."""
    import pty
    ours, theirs = pty.openpty()
    out = b""
    with subprocess.Popen(words, stdin=theirs, stdout=theirs, stderr=theirs, start_new_session=True, **options) as process:
        os.close(theirs)
        try:
            while True:
                try:
                    piece = os.read(ours, 4096)
                except OSError as error:  # Linux: the last process has closed the terminal
                    if error.errno != errno.EIO:
                        raise
                    break
                if not piece:
                    break
                out += piece
                if typed and PROMPT.match(out[out.rfind(b"\n") + 1:].decode()):
                    os.write(ours, typed.pop(0).encode() + b"\n")
        finally:
            os.close(ours)
        return out.replace(b"\r\n", b"\n").decode(), process.wait(support.SECONDS)


def same(expected, actual):
    """Whether lines of a page describe printed lines."""
    parts = [[TIME.sub("TIME", line) for line in group]
             for dots, group in itertools.groupby(expected, lambda line: line.strip() == "...") if not dots]
    actual = [TIME.sub("TIME", line) for line in actual]
    if "..." not in map(str.strip, expected):
        return not parts and not actual or parts == [actual]
    if len(parts) != 2:
        raise ValueError("a line '...' needs lines before and after it, and only one is allowed in a transcript")
    head, tail = parts
    return len(actual) >= len(head) + len(tail) and actual[:len(head)] == head and actual[-len(tail):] == tail


class Page:
    """Runs the transcripts of a page in a folder."""

    def __init__(self, path, folder):
        self.path = path
        self.lines = path.read_text("utf-8").split("\n")
        self.work, self.league, self.state = folder / "work", folder / "league", folder / "state"
        self.work.mkdir()
        self.state.touch()
        (self.work / "tests").symlink_to(SOURCE / "tests")
        programs = [pathlib.Path(support.PROGRAM).parent, EXAMPLES]
        # Without a folder the program would make leagues beside itself, in the build tree.
        self.env = support.environment(PATH=":".join(map(str, [*programs, os.environ["PATH"]])), NO_COLOR="1",
                                       TMPDIR=str(folder), HALCYRA_FOLDER=str(self.league))
        self.env.pop("COLUMNS", None)

    def differences(self):
        """(command, the slice of its lines, printed lines, what is wrong) of every step that is not as the page says."""
        for kind, command, where in steps_of(self.lines):
            expected = [line[len(INDENT):] for line in self.lines[where]] if where else []
            printed, code = self.run(command, [PROMPT.sub("", line) for line in expected if PROMPT.match(line)])
            actual = printed.rstrip("\n").split("\n") if printed.strip("\n") else []
            fails = any(line.startswith("halcyra: ") for line in actual)
            if kind == "setup":
                if code != 0:
                    raise AssertionError(f"{self.path.name}: '{command}' ended with {code}:\n{printed}")
            elif (code != 0) != fails:
                yield command, None, actual, f"ended with {code}"
            elif not same(expected, actual):
                yield command, where, actual, "is written as\n" + "\n".join(expected)

    def run(self, command, typed):
        """What a command prints, and its code; exported variables stay for the next one."""
        text = (f". {shlex.quote(str(self.state))}\n{command.replace(SHOWN_FOLDER, str(self.league))}\n"
                f"code=$?; export -p >{shlex.quote(str(self.state))}; exit $code")
        options = {"cwd": self.work, "env": self.env}
        if typed:
            printed, code = on_terminal(["bash", "-c", text], typed, **options)
        else:
            done = subprocess.run(["bash", "-c", text], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, timeout=support.SECONDS, check=False, **options)
            printed, code = done.stdout.decode("utf-8"), done.returncode
        return printed.replace(str(self.league), SHOWN_FOLDER), code

    def rewrite(self, differences):
        """Puts what was printed into the page; a line that differs in a time only stays."""
        for _, where, actual, _ in reversed(differences):
            old = {TIME.sub("TIME", line): line for line in self.lines[where]}
            new = [INDENT + line if line else "" for line in actual]
            self.lines[where] = [old.get(TIME.sub("TIME", line), line) for line in new]
        self.path.write_text("\n".join(self.lines), "utf-8")


class Transcripts(support.CliTest):
    def test_pages(self):
        for path in PAGES:
            if INDENT + "$ " not in path.read_text("utf-8"):
                continue
            if INDENT + "$ league " in path.read_text("utf-8") and not (EXAMPLES / "league").exists():
                print(path.name, "is left out: the examples are not built")
                continue
            with self.subTest(page=path.name):
                folder = self.folder / path.stem
                folder.mkdir()
                page = Page(path, folder)
                found = list(page.differences())
                if UPDATE:
                    page.rewrite([difference for difference in found if difference[1]])
                    found = [difference for difference in found if not difference[1]]
                self.assertEqual([], found, "".join(
                    f"\n$ {command}\nprinted\n" + "\n".join(actual) + f"\nbut {wrong}\n" for command, _, actual, wrong in found))

    def test_what_a_page_can_say(self):
        page = ["Text.", "", "    $ echo 'a", "    b'", "    a", "", "    b", "", "<!-- setup: one", "two -->", "    $ cat <<END",
                "    x", "    END", "    usage"]
        self.assertEqual(list(steps_of(page)), [("show", "echo 'a\nb'", slice(4, 7)), ("setup", "one\ntwo", None),
                                                ("show", "cat <<END\nx\nEND", slice(13, 14))])
        self.assertTrue(same(["a 2026-01-01 - 00-00-00.mdb"], ["a 2031-12-31 - 23-59-59.mdb"]))
        self.assertTrue(same(["a", "...", "d"], ["a", "b", "c", "d"]))
        for expected, actual in [(["a"], ["b"]), (["a"], []), ([], ["a"]), (["a"], ["a", "b"]), (["a", "...", "d"], ["a", "b"]),
                                 (["a", "...", "a"], ["a"])]:
            self.assertFalse(same(expected, actual), (expected, actual))


UPDATE = [sys.argv.pop(i) for i in range(len(sys.argv) - 1, 0, -1) if sys.argv[i] == "--update"]

if __name__ == "__main__":
    support.main()
