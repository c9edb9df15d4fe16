#!/usr/bin/env python3
"""Times whole processes and writes the times as Google Benchmark writes its own:
processes.py HALCYRA RESULT.json [--repetitions N]

A league is made from a file of made-up players; then its table of players is printed as CSV by halcyra, by mdb-export and by
mdb-reader (run by Node, from tests/tools/node), in turns; and a file of some 40 MB is checked. The time
is the processor's, of the process and of what it starts."""
import argparse
import json
import os
import random
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PASSWORD = "talwep83rn"
SYLLABLES = "ma ram ti quo dan hen ker so li ra bra wes el mc ni tor vel gro sha pin".split()
READER = """
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
const require = createRequire(%s);
const { default: MDBReader } = await import(require.resolve("mdb-reader"));
const reader = new MDBReader(readFileSync(process.argv[2]), { password: process.argv[3] });
let text = "";
for (const row of reader.getTable("player info").getData()) text += Object.values(row).join(",") + "\\n";
process.stdout.write(text);
"""


def name(source):
    return "".join(source.choice(SYLLABLES) for _ in range(source.randint(2, 4))).capitalize()


def write_players(folder, count):
    source = random.Random(20)
    folder.mkdir()
    for file in ("positions.csv", "teams.csv"):
        shutil.copy(ROOT / "data/sample" / file, folder)
    with open(folder / "players.csv", "w", encoding="utf-8") as out:
        out.write("id,first name,last name,position id,team id,is retired\n")
        for number in range(1, count + 1):
            out.write(f"{number},{name(source)},{name(source)},{source.randint(1, 5)},{source.randint(1, 32)},"
                      f"{'true' if source.random() < 0.2 else 'false'}\n")


def run(command, environment):
    """Seconds of processor time, and the most memory in MiB, of a process that succeeds; what it prints is dropped."""
    with open(os.devnull, "wb") as sink:
        process = subprocess.Popen(command, stdout=sink, stderr=sink, env=environment)
        _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with {process.returncode}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def entries(what, who, rows, runs):
    for seconds, memory in runs:
        yield {"run_name": f"{what}/{who}/{rows}", "run_type": "iteration", "cpu_time": seconds, "real_time": seconds,
               "time_unit": "s", "peak_MiB": memory}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("halcyra")
    parser.add_argument("result")
    parser.add_argument("--repetitions", type=int, default=5)
    arguments = parser.parse_args()
    halcyra = str(Path(arguments.halcyra).resolve())
    environment = dict(os.environ, NODE_NO_WARNINGS="1")
    results = []
    with tempfile.TemporaryDirectory() as temporary:
        temporary = Path(temporary)

        def league(count):
            folder = temporary / str(count)
            write_players(folder, count)
            create = [halcyra, "--folder", str(folder), "create", "--csv", str(folder), "--force"]
            times = [run(create, environment) for _ in range(arguments.repetitions if count <= 10000 else 1)]
            return next(folder.glob("*.mdb")), times

        _, times = league(10000)
        results += entries("Create", "jet", 10000, times)

        reader = temporary / "read.mjs"
        reader.write_text(READER % json.dumps(str(ROOT / "tests/tools/node/read-tables.mjs")), encoding="utf-8")
        for rows in (2500, 200000, 1000000):
            file, _ = league(rows)
            commands = {"jet": [halcyra, "dump", "--file", str(file), "--password", PASSWORD, "player info", "--format", "csv"],
                        "mdb-export": ["mdb-export", str(file), "player info"],
                        "mdb-reader": ["node", str(reader), str(file), PASSWORD]}
            times = {who: [] for who in commands}
            for _ in range(arguments.repetitions):
                for who, command in commands.items():
                    times[who].append(run(command, environment))
            for who in commands:
                results += entries("Dump", who, rows, times[who])

        file, _ = league(550000)
        check = [halcyra, "check", str(file), "--password", PASSWORD]
        times = [run(check, environment) for _ in range(arguments.repetitions)]
        results += entries("Check", "jet", f"{file.stat().st_size / 2**20:.0f} MiB", times)
    Path(arguments.result).write_text(json.dumps({"benchmarks": results}, indent=1), encoding="utf-8")


if __name__ == "__main__":
    sys.exit(main())
