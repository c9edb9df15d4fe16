#!/usr/bin/env python3
"""Draws what an item costs as tables grow, from the quickest repetitions of benchmark runs: growth.py RESULT.json [RESULT.json ...] PICTURE.svg"""
import json
import math
import sys

# What is drawn: title, and how many items one run of it handles in a table of so many rows.
PANELS = {
    "Scan": ("a row of a scan", lambda rows: rows),
    "Lookups": ("a lookup by key", lambda rows: 10000),
    "PrefixSearch": ("a row of a prefix search", lambda rows: rows),
    "GrowingAdds": ("a row added, without syncs", lambda rows: 10000),
}
PARTIES = {"jet": ("ours", "#1f6f4a"), "sqlite": ("SQLite", "#8a5a00"), "sqlite-prepared": ("SQLite, prepared", "#8a5a00")}
SCALE = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
WIDTH, HEIGHT, LEFT, TOP, GAP = 320, 200, 60, 40, 110


def read(runs):
    """{panel: {party: [(rows, nanoseconds an item)]}}, the rows ascending."""
    points = {}
    for run in runs:
        what, who, *rest = run["run_name"].split("/")
        if run["run_type"] != "iteration" or what not in PANELS or who not in PARTIES or not rest:
            continue
        if what == "Lookups" and who == "sqlite":
            continue
        rows = int(rest[0])
        clock = "real_time" if "real_time" in rest else "cpu_time"
        cost = run[clock] * SCALE[run["time_unit"]] / PANELS[what][1](rows)
        line = points.setdefault(what, {}).setdefault(who, {})
        line[rows] = min(cost, line.get(rows, cost))
    return {what: {who: sorted(line.items()) for who, line in by.items()} for what, by in points.items()}


def panel(number, what, lines):
    """One diagram, both axes logarithmic."""
    values = [cost for line in lines.values() for _, cost in line]
    sizes = [rows for line in lines.values() for rows, _ in line]
    low, high = math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)))
    high = max(high, low + 1)
    first, last = math.log10(min(sizes)), math.log10(max(sizes))
    left, top = LEFT + (number % 2) * (WIDTH + GAP), TOP + (number // 2) * (HEIGHT + GAP)

    def place(rows, cost):
        return (left + (math.log10(rows) - first) / ((last - first) or 1) * WIDTH,
                top + HEIGHT - (math.log10(cost) - low) / (high - low) * HEIGHT)

    parts = [f'<text x="{left}" y="{top - 14}" class="title">Nanoseconds for {PANELS[what][0]}</text>']
    for power in range(low, high + 1):
        y = place(min(sizes), 10.0**power)[1]
        parts.append(f'<line x1="{left}" y1="{y:.1f}" x2="{left + WIDTH}" y2="{y:.1f}" class="grid"/>'
                     f'<text x="{left - 8}" y="{y + 4:.1f}" text-anchor="end">{10**power:,}</text>')
    for rows in sorted(set(sizes)):
        x = place(rows, 10.0**low)[0]
        if math.log10(rows) % 1 == 0:
            parts.append(f'<text x="{x:.1f}" y="{top + HEIGHT + 18}" text-anchor="middle">{rows:,}</text>')
    for offset, (who, line) in enumerate(sorted(lines.items())):
        name, colour = PARTIES[who]
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in (place(*point) for point in line))
        parts.append(f'<polyline points="{path}" style="stroke:{colour}"/>')
        parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" style="fill:{colour}"/>' for x, y in (place(*p) for p in line)]
        parts.append(f'<text x="{left + WIDTH - 4}" y="{top + 16 + 16 * offset}" text-anchor="end" style="fill:{colour}">{name}</text>')
    parts.append(f'<text x="{left + WIDTH / 2}" y="{top + HEIGHT + 38}" text-anchor="middle">rows in the table</text>')
    return parts


def main():
    *results, picture = sys.argv[1:]
    runs = []
    for result in results:
        with open(result, encoding="utf-8") as handle:
            runs += json.load(handle)["benchmarks"]
    points = read(runs)
    drawn = [what for what in PANELS if what in points]
    width = 2 * (LEFT + WIDTH) + GAP
    height = TOP + -(-len(drawn) // 2) * (HEIGHT + GAP)
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" role="img" '
           'aria-label="Cost of an item as tables grow">',
           "<style>text{font:12px sans-serif;fill:#444}.title{font-weight:bold;fill:#222}.grid{stroke:#ddd}"
           "polyline{fill:none;stroke-width:2}</style>", f'<rect width="{width}" height="{height}" fill="#fff"/>']
    for number, what in enumerate(drawn):
        svg += panel(number, what, points[what])
    with open(picture, "w", encoding="utf-8") as handle:
        handle.write("\n".join(svg + ["</svg>"]) + "\n")


if __name__ == "__main__":
    main()
