#!/usr/bin/env python3
"""Makes jet/format/SortTable.inc from sort-keys.tsv, beside this program.

Usage: tools/make-sort-table.py > jet/format/SortTable.inc
"""
import pathlib
import sys

KINDS = {"plain": "P", "accent": "A", "special": "S", "mark": "M", "ignored": "I"}
DENSE = 0x180  # characters below this are found by their number, the rest by search


def entries():
    lines = (pathlib.Path(__file__).parent / "sort-keys.tsv").read_text(encoding="utf-8").split("\n")
    for line in lines:
        if not line or line.startswith("#"):
            continue
        code, _, inline, secondary, kind = line.split("\t")
        primary, weight = bytes.fromhex(inline), bytes.fromhex(secondary)
        assert len(primary) <= 2 and len(weight) <= 1, line
        yield int(code, 16), kind, int.from_bytes(primary, "big"), weight[0] if weight else 0


def print_rows(rows, form):
    for at in range(0, len(rows), 8):
        print("    " + " ".join(form(*row) for row in rows[at:at + 8]))


def main():
    table = sorted(entries())
    dense = [e for e in table if e[0] < DENSE]
    assert [e[0] for e in dense] == list(range(DENSE)), "a character below the limit is missing"
    sparse = [e for e in table if e[0] >= DENSE]
    print("// Made by tools/make-sort-table.py from tools/sort-keys.tsv; change those instead.")
    print("// Kind: Plain, Accent, Special, Mark, Ignored; inline bytes as a number; weight or special code.")
    print("constexpr std::array<SortEntry, 0x%x> kDenseTable = {{" % DENSE)
    print_rows(dense, lambda code, kind, primary, weight: "{0x%04x, %s, %d}," % (primary, KINDS[kind], weight))
    print("}};")
    print("constexpr std::array<SparseEntry, %d> kSparseTable = {{" % len(sparse))
    print_rows(sparse, lambda code, kind, primary, weight:
               "{0x%04x, {0x%04x, %s, %d}}," % (code, primary, KINDS[kind], weight))
    print("}};")


if __name__ == "__main__":
    sys.exit(main())
