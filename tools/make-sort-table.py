#!/usr/bin/env python3
"""Makes jet/format/SortTable.inc from sort-keys.tsv, beside this program.

Usage: tools/make-sort-table.py > jet/format/SortTable.inc
"""
import pathlib
import sys

KINDS = {"plain": "P", "accent": "A", "special": "S", "mark": "M", "kana1": "J", "kana2": "K", "ignored": "I"}
DENSE = 0x180  # entries below this are stored one by one, the others as runs


def entries():
    lines = (pathlib.Path(__file__).parent / "sort-keys.tsv").read_text(encoding="utf-8").split("\n")
    for line in lines:
        if not line or line.startswith("#"):
            continue
        code, _, inline, secondary, kind = line.split("\t")
        assert len(inline) <= 8 and len(secondary) <= 4, line
        yield int(code, 16), KINDS[kind], int(inline or "0", 16), int(secondary or "0", 16)


def print_rows(rows, form):
    for at in range(0, len(rows), 8):
        print("    " + " ".join(form(*row) for row in rows[at:at + 8]))


def runs(table):
    """First entries of runs of one kind and weight, in which the inline bytes count up by one if there are any."""
    starts, previous = [], None
    for entry in table:
        code, kind, primary, weight = entry
        step = 1 if primary else 0
        if previous is None or (code, kind, primary, weight) != (
                previous[0] + 1, previous[1], previous[2] + step, previous[3]):
            starts.append(entry)
        previous = entry
    return starts


def main():
    table = sorted(entries())
    codes = [code for code in range(0x10000) if not 0xD800 <= code < 0xE000]
    assert [entry[0] for entry in table] == codes, "a character is missing"
    sparse = runs(table[DENSE:])
    print("// Made by tools/make-sort-table.py from tools/sort-keys.tsv; change those instead.")
    print("// Inline bytes as a number, kind, weights or special code as a number.")
    print("constexpr std::array<SortEntry, 0x%x> kDenseTable = {{" % DENSE)
    print_rows(table[:DENSE], lambda code, kind, primary, weight: "{0x%x, %d, %s}," % (primary, weight, kind))
    print("}};")
    print("constexpr std::array<SortRun, %d> kSortRuns = {{" % len(sparse))
    print_rows(sparse, lambda code, kind, primary, weight:
               "{{0x%x, %d, %s}, 0x%x}," % (primary, weight, kind, code))
    print("}};")


if __name__ == "__main__":
    sys.exit(main())
