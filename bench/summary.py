#!/usr/bin/env python3
"""Prints the medians (of processor time) of a benchmark run as a Markdown table: summary.py RESULT.json"""
import json
import sys


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return "%.3g %s" % (nanoseconds / size, unit)
    return "%.3g ns" % nanoseconds


def main():
    with open(sys.argv[1], encoding="utf-8") as handle:
        result = json.load(handle)
    scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    medians = {}
    for run in result["benchmarks"]:
        if run.get("aggregate_name") != "median":
            continue
        what, who, *rows = run["run_name"].split("/")
        medians.setdefault((what, rows[0] if rows else ""), {})[who] = run["cpu_time"] * scale[run["time_unit"]]
    print("| what | rows | engine | SQLite | engine / SQLite | SQLite, prepared once | engine / that |")
    print("|---|---|---|---|---|---|---|")
    for (what, rows), times in medians.items():
        cells = [what, rows]
        jet, sqlite, prepared = times.get("jet"), times.get("sqlite"), times.get("sqlite-prepared")
        if jet is None or sqlite is None:
            continue
        cells += [duration(jet), duration(sqlite), "%.2f" % (jet / sqlite)]
        cells += [duration(prepared), "%.2f" % (jet / prepared)] if prepared else ["", ""]
        print("| " + " | ".join(cells) + " |")


if __name__ == "__main__":
    main()
