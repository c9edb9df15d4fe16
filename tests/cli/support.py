"""What the end-to-end tests share: running the built program, fixtures, temporary leagues."""
import csv
import hashlib
import io
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.environ["HALCYRA_PROGRAM"]
TEST_DATA = pathlib.Path(os.environ["HALCYRA_TEST_DATA"])
FIXTURES = TEST_DATA / "fixtures"
EXPECTED = FIXTURES / "expected"
TOOLS = TEST_DATA.parent / "tools"
PASSWORD = "talwep83rn"
LIVE = "Halcyra - Live.mdb"

# The codes of docs/commands.md.
DONE, REFUSED, USAGE, CANNOT_OPEN, DAMAGED, SYSTEM_FAILED = range(6)

TABLES = sorted(path.stem for path in EXPECTED.glob("*.tsv"))
SECONDS = 120  # for one run: whatever takes longer hangs


def environment(**changes):
    """The environment of a run, without the program's own variables unless they are given."""
    env = {name: value for name, value in os.environ.items() if not name.startswith("HALCYRA_")}
    env.update(changes)
    return env


def run(*words, env=None, **options):
    """Runs the program; whatever it was asked, it must neither crash nor trip a sanitizer."""
    options.setdefault("stdout", subprocess.PIPE)
    done = subprocess.run([PROGRAM, *map(str, words)], stderr=subprocess.PIPE, stdin=subprocess.DEVNULL,
                          timeout=SECONDS, env=environment(**(env or {})), check=False, **options)
    done.stderr = done.stderr.decode("utf-8")
    if done.stdout is not None:
        done.stdout = done.stdout.decode("utf-8")
    if done.returncode < 0 or "Sanitizer" in done.stderr or "runtime error:" in done.stderr:
        raise AssertionError(f"{words} ended with {done.returncode}:\n{done.stderr}")
    return done


def expected_text(table):
    return (EXPECTED / f"{table}.tsv").read_text("utf-8")


def tsv_rows(text):
    """Header and rows of a dump, Null as None, escapes undone."""
    def cell(raw):
        if raw == r"\N":
            return None
        out, escape = "", False
        for c in raw:
            if escape:
                out += {"t": "\t", "n": "\n", "r": "\r"}.get(c, c)
                escape = False
            elif c == "\\":
                escape = True
            else:
                out += c
        return out
    lines = text.split("\n")
    assert lines[-1] == "", "the last line has no end"
    rows = [[cell(raw) for raw in line.split("\t")] for line in lines[:-1]]
    return rows[0], rows[1:]


def expected_rows(table):
    return tsv_rows(expected_text(table))[1]


def digest(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


def independent_findings(path, password=PASSWORD):
    """What the independent checker finds in a file; empty when it is sound."""
    done = subprocess.run([sys.executable, str(TOOLS / "mdbcheck.py"), str(path), "--password", password],
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=SECONDS, check=False)
    return "" if done.returncode == 0 else done.stdout.decode("utf-8") or f"exit code {done.returncode}"


class CliTest(unittest.TestCase):
    """A test with a folder of its own and checks on what the program answers."""

    maxDiff = 2000

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="halcyra-test-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def league(self, fixture="league.mdb", name=LIVE):
        """A copy of a fixture, in place as a league's file."""
        path = self.folder / name
        shutil.copyfile(FIXTURES / fixture, path)
        return path

    def succeed(self, *words, **options):
        done = run(*words, **options)
        self.assertEqual(done.returncode, DONE, f"{words}: {done.stderr}")
        return done.stdout

    def fail_with(self, code, *words, says="", **options):
        """The run ends with a code, and its message holds a text; nothing but whole results goes to standard output."""
        done = run(*words, **options)
        self.assertEqual(done.returncode, code, f"{words}: {done.stdout}{done.stderr}")
        self.assertNotEqual(done.stderr, "", f"{words} failed without a word")
        self.assertIn(says.lower(), done.stderr.lower(), f"{words}")
        return done


def json_of(text):
    return json.loads(text)


def csv_of(text):
    return list(csv.reader(io.StringIO(text)))


def main():
    """Runs the tests of a file; 77 when every one of them was skipped, which ctest reports as skipped."""
    program = unittest.main(module="__main__", exit=False)
    result = program.result
    if not result.wasSuccessful():
        sys.exit(1)
    sys.exit(77 if result.testsRun and len(result.skipped) == result.testsRun else 0)
