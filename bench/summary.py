#!/usr/bin/env python3
"""Puts the medians of a benchmark run as a table into a document: summary.py RESULT.json [RESULT.json ...] DOCUMENT.md

The first result says on what machine it was. The table takes the place of what stands between the lines `<!-- measured -->` and `<!-- end -->`. Benchmarks are named
WHAT/WHO[/ROWS][/real_time]; of those that wait for the disk the time on the wall counts, of the others the
processor's."""
import json
import os
import sys

BEGIN, END = "<!-- measured -->\n", "<!-- end -->\n"
COUNTERS = {"season_KiB": "the season takes {:.0f} KiB", "service_KiB": "the open service {:.0f} KiB",
            "cache_KiB": "{:.0f} KiB in the caches", "found": "{:.0f} found",
            "peak_MiB": "{:.0f} MiB at most"}


def duration(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def read(result):
    """Of each measurement the time of each party, its variation, and what our own run counted."""
    scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    times, spread, counters = {}, {}, {}
    for run in result["benchmarks"]:
        what, who, *rest = run["run_name"].split("/")
        clock = "real_time" if "real_time" in rest else "cpu_time"
        key = (what, next((part for part in rest if part != "real_time"), ""))
        if run.get("aggregate_name") == "median":
            times.setdefault(key, {})[who] = run[clock] * scale[run["time_unit"]]
            if who == "jet":
                counters[key] = [text.format(run[name]) for name, text in COUNTERS.items() if name in run]
        elif run.get("aggregate_name") == "cv":
            spread[(key, who)] = run[clock]
    return times, spread, counters


def table(result):
    times, spread, counters = read(result)
    context = result["context"]
    worst = max(spread.values(), default=0)
    lines = [f"Measured on {context['date'][:10]}, {context['num_cpus']} processors of {context['mhz_per_cpu']} MHz, load "
             f"average {context['load_avg'][0]:.1f} at the start. Repetitions of a measurement vary by up to {worst:.0%} "
             "(coefficient of variation); those of more than 10 % are marked `~`.", "",
             "| what | rows | ours | peer | its time | ours / its | |", "|---|---|---|---|---|---|---|"]
    for (what, rows), by in sorted(times.items()):
        if list(by) == ["jet"]:
            by["none"] = 0
        for peer, theirs in by.items():
            if peer == "jet" or "jet" not in by:
                continue
            marks = ["~" if spread.get(((what, rows), who), 0) > 0.1 else "" for who in ("jet", peer)]
            its, ratio = (duration(theirs), f"{by['jet'] / theirs:.2f}") if theirs else ("", "")
            lines.append(f"| {what} | {rows} | {marks[0]}{duration(by['jet'])} | {peer} | {marks[1]}{its} | {ratio} | "
                         f"{', '.join(counters.get((what, rows), []))} |")
    return "\n".join(lines) + "\n"


def main():
    *results, name = sys.argv[1:]
    result = {"benchmarks": []}
    for path in results:
        with open(path, encoding="utf-8") as handle:
            part = json.load(handle)
        result.setdefault("context", part.get("context"))
        result["benchmarks"] += part["benchmarks"]
    measured = table(result)
    print(measured)
    with open(name, encoding="utf-8") as handle:
        document = handle.read()
    before, _, rest = document.partition(BEGIN)
    _, _, after = rest.partition(END)
    with open(name + ".new", "w", encoding="utf-8") as handle:
        handle.write(before + BEGIN + measured + END + after)
    os.replace(name + ".new", name)


if __name__ == "__main__":
    main()
