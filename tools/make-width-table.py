#!/usr/bin/env python3
"""Makes league/WidthTable.inc: how many columns of a terminal characters take, as this Python knows Unicode.

Usage: tools/make-width-table.py > league/WidthTable.inc
"""
import sys
import unicodedata

# Pictures that Unicode calls neutral and terminals draw wide.
PICTURES = range(0x1F300, 0x1FB00)


def width(code):
    character = chr(code)
    if unicodedata.category(character) in ("Mn", "Me", "Cf") and code != 0xAD or 0x1160 <= code <= 0x11FF:
        return 0
    return 2 if unicodedata.east_asian_width(character) in "WF" or code in PICTURES else 1


def ranges(wanted):
    found = []
    for code in range(sys.maxunicode + 1):
        if width(code) != wanted:
            continue
        if found and found[-1][1] == code - 1:
            found[-1][1] = code
        else:
            found.append([code, code])
    return found


def main():
    print("// Made by tools/make-width-table.py from Unicode %s; change that instead." % unicodedata.unidata_version)
    for name, wanted, what in (("kNoWidth", 0, "Marks that combine with the letter before them, joiners, and the like."),
                               ("kDoubleWidth", 2, "East Asian scripts, fullwidth forms, pictures.")):
        found = ranges(wanted)
        print("\n/// %s\nconstexpr std::array<Range, %d> %s = {{" % (what, len(found), name))
        line = "   "
        for first, last in found:
            item = " {0x%X, 0x%X}," % (first, last)
            if len(line) + len(item) > 110:
                print(line)
                line = "   "
            line += item
        print(line + "\n}};")


if __name__ == "__main__":
    main()
