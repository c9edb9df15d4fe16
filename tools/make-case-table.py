#!/usr/bin/env python3
"""Makes jet/CaseTable.inc from the case foldings of Unicode, as this Python knows them.

Usage: tools/make-case-table.py > jet/CaseTable.inc
"""
import sys
import unicodedata


def fold(code):
    """The one character that a character folds to: its folding, or its small form, or itself."""
    for folded in (chr(code).casefold(), chr(code).lower()):
        if len(folded) == 1:
            return ord(folded)
    return code


def blocks(pairs):
    """(first, last, step, distance) of characters that stand `step` apart and fold over the same distance."""
    result = []
    for code, distance in pairs:
        if result:
            first, last, step, known = result[-1]
            if known == distance and code - last in (1, 2) and step in (0, code - last):
                result[-1] = (first, code, code - last, known)
                continue
        result.append((code, code, 0, distance))
    return [(first, last, step or 1, distance) for first, last, step, distance in result]


def main():
    codes = [code for code in range(0x80, 0x110000) if not 0xD800 <= code < 0xE000]
    table = blocks([(code, fold(code) - code) for code in codes if fold(code) != code])
    print("// Made by tools/make-case-table.py from Unicode %s; change that instead." % unicodedata.unidata_version)
    print("// First and last character of a block, step between its characters, distance to their folded forms.")
    print("constexpr std::array<Block, %d> kBlocks = {{" % len(table))
    for at in range(0, len(table), 4):
        print("    " + " ".join("{0x%x, 0x%x, %d, %d}," % block for block in table[at:at + 4]))
    print("}};")


if __name__ == "__main__":
    sys.exit(main())
