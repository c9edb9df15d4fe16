#!/usr/bin/env python3
"""Puts the times of a benchmark run as a table into a document: summary.py RESULT.json [RESULT.json ...] DOCUMENT.md

The first result says on what machine it was. The table takes the place of what stands between the lines
`<!-- measured -->` and `<!-- end -->`. Benchmarks are named WHAT/WHO[/ROWS][/real_time]; of those that wait for the
disk the time on the wall counts, of the others the processor's. Every repetition is in the results. The times are
medians, the ratio is that of all the time that either took: on a machine that changes its speed now and then, the
medians of two parties need not be taken at the same one."""
import json
import os
import statistics
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
    """Of each measurement the times of each party and what our own run counted."""
    scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    times, counters = {}, {}
    for run in result["benchmarks"]:
        if run["run_type"] != "iteration" or run.get("error_occurred"):
            continue
        what, who, *rest = run["run_name"].split("/")
        clock = "real_time" if "real_time" in rest else "cpu_time"
        key = (what, next((part for part in rest if part != "real_time"), ""))
        times.setdefault(key, {}).setdefault(who, []).append(run[clock] * scale[run["time_unit"]])
        if who == "jet":
            most = counters.setdefault(key, {})
            for name in COUNTERS:
                if name in run:
                    most[name] = max(run[name], most.get(name, 0))
    return times, counters


def shown(times):
    """The median, marked when the times vary by more than a tenth."""
    varies = len(times) > 1 and statistics.stdev(times) > 0.1 * statistics.mean(times)
    return ("~" if varies else "") + duration(statistics.median(times))


def table(result):
    times, counters = read(result)
    context = result["context"]
    lines = [f"Measured on {context['date'][:10]}, {context['num_cpus']} processors of {context['mhz_per_cpu']} MHz, load "
             f"average {context['load_avg'][0]:.1f} at the start. Medians; those whose repetitions vary by more than a "
             "tenth are marked `~`.", "",
             "| what | rows | ours | peer | its time | ours / its | |", "|---|---|---|---|---|---|---|"]
    for (what, rows), by in sorted(times.items()):
        ours = by.pop("jet", None)
        if ours is None:
            continue
        counted = ", ".join(COUNTERS[name].format(most) for name, most in counters[(what, rows)].items())
        for peer, theirs in sorted(by.items()):
            ratio = statistics.mean(ours) / statistics.mean(theirs)
            lines.append(f"| {what} | {rows} | {shown(ours)} | {peer} | {shown(theirs)} | {ratio:.2f} | {counted} |")
        if not by:
            lines.append(f"| {what} | {rows} | {shown(ours)} | none | | | {counted} |")
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
