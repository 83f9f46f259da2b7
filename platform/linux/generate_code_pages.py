#!/usr/bin/env python3
"""Writes the C++ source of the code page tables (see CodePageTables.h for their form).

usage: generate_code_pages.py OUTPUT.cpp [--sizes]

--sizes prints the bytes of constant data that each page takes. The mappings come from Python's own codecs,
read in the direction bytes -> character, and from the additions below. Bytes 00 to 7F are ASCII in every page
and in no table. What a page lacks and has a near character for comes from near_characters.txt, beside this file.
"""

import argparse
from pathlib import Path

# The first page is the one that holds until another is set.
SINGLE_BYTE_PAGES = [1252, 437, 737, 775, 850, 852, 855, 857, 858, 860, 861, 862, 863, 864, 865, 866, 874,
                     1250, 1251, 1253, 1254, 1255, 1256, 1257, 1258]
LEAD_BYTES = {
    932: set(range(0x81, 0xA0)) | set(range(0xE0, 0xFD)),
    936: set(range(0x81, 0xFF)),
    949: set(range(0x81, 0xFF)),
    950: set(range(0x81, 0xFF)),
}
CODECS = {936: "gbk"}

# Byte pairs that are read but not written, because another pair of the page means the same character. In 932
# that is NEC's selection of IBM's kanji (rows ED and EE), which gives way to IBM's own rows; in 950 four box
# drawings and two numerals of row A2. Of all other pairs with one meaning the lowest is written.
NOT_WRITTEN = {
    932: set(range(0xED40, 0xEEFD)),
    950: {0xA2A4, 0xA2A5, 0xA2A6, 0xA2A7, 0xA2CC, 0xA2CE},
}

# Characters that came to the pages after the codecs' tables were drawn up: the euro sign, the second holam.
ADDED = {
    936: {0x20AC: 0x80},
    1255: {0x05BA: 0xCA},
}

# A single byte that a page leaves undefined still stands for a character: below A0 for the C1 control of its
# own number, from A0 on for private use characters in the order of the bytes. This is the first of those.
FIRST_STRAY_CHARACTER = {857: 0xF8BB, 864: 0xF8BE, 874: 0xF8C1, 936: 0xF8F5, 949: 0xF8F7, 950: 0xF8F8,
                         1253: 0xF8F9, 1255: 0xF88D, 1257: 0xF8FC}

# In 936 the pairs from A2A1 to FEA0 that neither the codec nor a range below defines stand, in their own
# order, for the private use characters from here on.
FIRST_STRAY_PAIR_936 = 0xE766


def trails(*runs):
    return bytes(byte for first, last in runs for byte in range(first, last + 1))


TRAILS_94 = trails((0xA1, 0xFE))
TRAILS_932 = trails((0x40, 0x7E), (0x80, 0xFC))
TRAILS_936 = trails((0x40, 0x7E), (0x80, 0xFE))
TRAILS_936_LOW = trails((0x40, 0x7E), (0x80, 0xA0))
TRAILS_949 = trails((0x41, 0x5A), (0x61, 0x7A), (0x81, 0xFE))
TRAILS_949_LOW = trails((0x41, 0x5A), (0x61, 0x7A), (0x81, 0xA0))
TRAILS_950 = trails((0x40, 0x7E), (0xA1, 0xFE))


class OrderedRange:
    """Characters first..last; those of them that have no place elsewhere in the page follow one another
    through the byte pairs start..end. Such are the extensions of 936 and 949 and all user-defined areas."""

    def __init__(self, first, last, start, end, trail_set):
        self.first, self.last, self.trails = first, last, trail_set
        self.lead, self.skipped = start >> 8, trail_set.index(start & 0xFF)
        leads = range(start >> 8, (end >> 8) + 1)
        self.pairs = [lead << 8 | trail for lead in leads for trail in trail_set
                      if start <= lead << 8 | trail <= end]
        self.places = set(self.pairs)

    def ordered(self, table):
        """The characters of the range whose place follows from the order."""
        return [c for c in range(self.first, self.last + 1) if table[c] in self.places]


HANZI_936 = [
    OrderedRange(0x4E00, 0x72DB, 0x8140, 0xA0FE, TRAILS_936),
    OrderedRange(0x72DC, 0x9FA5, 0xAA40, 0xFD9B, TRAILS_936_LOW),
]
HANGUL_949 = [
    OrderedRange(0xAC00, 0xC8A4, 0x8141, 0xA0FE, TRAILS_949),
    OrderedRange(0xC8A5, 0xD7A3, 0xA141, 0xC652, TRAILS_949_LOW),
]
USER_DEFINED = {
    932: [OrderedRange(0xE000, 0xE757, 0xF040, 0xF9FC, TRAILS_932)],
    936: [
        OrderedRange(0xE000, 0xE233, 0xAAA1, 0xAFFE, TRAILS_94),
        OrderedRange(0xE234, 0xE4C5, 0xF8A1, 0xFEFE, TRAILS_94),
        OrderedRange(0xE4C6, 0xE765, 0xA140, 0xA7A0, TRAILS_936_LOW),
    ],
    949: [
        OrderedRange(0xE000, 0xE05D, 0xC9A1, 0xC9FE, TRAILS_94),
        OrderedRange(0xE05E, 0xE0BB, 0xFEA1, 0xFEFE, TRAILS_94),
    ],
    # The last one overrides the codec, which has kana and Cyrillic there that the page itself does not.
    950: [
        OrderedRange(0xE000, 0xE310, 0xFA40, 0xFEFE, TRAILS_950),
        OrderedRange(0xE311, 0xEEB7, 0x8E40, 0xA0FE, TRAILS_950),
        OrderedRange(0xEEB8, 0xF6B0, 0x8140, 0x8DFE, TRAILS_950),
        OrderedRange(0xF6B1, 0xF848, 0xC6A1, 0xC8FE, TRAILS_950),
    ],
}


def ordered_ranges(page):
    extension = {936: HANZI_936, 949: HANGUL_949}.get(page, [])
    return extension + USER_DEFINED.get(page, [])


def decode(page, code):
    """The character of one byte or byte pair, or None."""
    data = code.to_bytes(1 if code < 0x100 else 2, "big")
    try:
        text = data.decode(CODECS.get(page, f"cp{page}"))
    except UnicodeDecodeError:
        return None
    return ord(text) if len(text) == 1 else None


def codes(page):
    """All single bytes from 80 on, then all byte pairs that the page can hold, ascending."""
    return list(range(0x80, 0x100)) + [lead << 8 | trail for lead in sorted(LEAD_BYTES.get(page, []))
                                       for trail in trails((0x40, 0x7E), (0x80, 0xFE))]


def page_table(page):
    """Character -> bytes (one number, lead byte high) for everything above ASCII."""
    table = {c: pair for area in USER_DEFINED.get(page, [])
             for c, pair in zip(range(area.first, area.last + 1), area.pairs, strict=True)}
    unusable = set(table.values()) | NOT_WRITTEN.get(page, set())
    for code in codes(page):
        character = decode(page, code)
        if character is not None and code not in unusable:
            table.setdefault(character, code)
    table.update(ADDED.get(page, {}))
    add_stray_bytes(page, table)
    if page == 936:
        add_stray_pairs_936(table)
    return table


def add_stray_bytes(page, table):
    used = set(table.values()) | LEAD_BYTES.get(page, set())
    private = FIRST_STRAY_CHARACTER.get(page)
    for byte in range(0x80, 0x100):
        if byte in used:
            continue
        if byte < 0xA0:
            table[byte] = byte
        else:
            table[private] = byte
            private += 1


def add_stray_pairs_936(table):
    used = set(table.values())
    stray = [code for code in codes(936) if 0xA2A1 <= code <= 0xFEA0 and code not in used]
    table.update(enumerate(stray, FIRST_STRAY_PAIR_936))


def near_tables():
    """Page -> character -> bytes of the near character."""
    tables = {}
    for line in Path(__file__).with_name("near_characters.txt").read_text().splitlines():
        if not line.startswith("#"):
            page, first, *bytes_of_each = line.split()
            near = tables.setdefault(int(page), {})
            near.update(enumerate((int(code, 16) for code in bytes_of_each), int(first, 16)))
    return tables


class Tables:
    """The arrays of CodePageTables.h, filled page by page."""

    def __init__(self):
        self.pages, self.row_numbers, self.rows, self.values = [], [], [], []
        self.ranges, self.trails, self.page_count = [], b"", 0

    def add(self, page):
        table, ranges = page_table(page), ordered_ranges(page)
        ordered = {c for r in ranges for c in r.ordered(table)}
        first_row, first_range = len(self.rows), len(self.ranges)
        ranks = self.add_rows(table, ordered)
        for r in ranges:
            self.add_range(r, table, ranks)
        self.pages.append((page, first_row, 0, first_range, len(ranges)))

    def add_near(self, page, table):
        """As a page behind those that can be set; the page's own entry tells where."""
        place = [entry[0] for entry in self.pages].index(page)
        self.pages[place] = (*self.pages[place][:2], len(self.pages), *self.pages[place][3:])
        self.pages.append((page, len(self.rows), 0, 0, 0))
        self.add_rows(table, set())

    def add_rows(self, table, ordered):
        """Returns for each character in the rows the place of the listed value at or behind it."""
        rows, ranks = sorted({c >> 8 for c in table}), {}
        for row in rows:
            self.rows.append([self.add_block(row << 8 | low, table, ordered, ranks)
                              for low in range(0, 0x100, 32)])
        self.row_numbers += [rows.index(high) + 1 if high in rows else 0 for high in range(0x100)]
        return ranks

    def add_block(self, start, table, ordered, ranks):
        first_value, listed = len(self.values), 0
        for c in range(start, start + 32):
            ranks[c] = len(self.values)
            if c in table and c not in ordered:
                listed |= 1 << (c - start)
                self.values.append(table[c])
        return listed, first_value

    def add_range(self, r, table, ranks):
        if r.trails not in self.trails:
            self.trails += r.trails
        bias = r.first - ranks[r.first] - r.skipped
        first_trail = self.trails.index(r.trails)
        self.ranges.append((r.first, r.last, bias & 0xFFFF, first_trail, len(r.trails), r.lead))
        for c in r.ordered(table):
            lead, trail = divmod(c - ranks[c] - bias, len(r.trails))
            if table[c] != (r.lead + lead) << 8 | r.trails[trail]:
                raise SystemExit(f"U+{c:04X} does not follow the order of its range.")

    def source(self):
        return "\n".join([
            '#include "platform/linux/CodePageTables.h"\n',
            "namespace platform::code_page_tables {\n",
            f"const size_t kPageCount = {self.page_count};",
            array("Page", "kPages", [braced(page) for page in self.pages]),
            array("uint8_t", "kRowNumbers", [str(number) for number in self.row_numbers]),
            array("Row", "kRows", [row_text(row) for row in self.rows]),
            array("uint16_t", "kValues", [f"0x{value:X}" for value in self.values]),
            array("OrderedRange", "kOrderedRanges", [braced(r) for r in self.ranges]),
            array("uint8_t", "kTrailBytes", [f"0x{byte:X}" for byte in self.trails]),
            "\n} // namespace platform::code_page_tables\n",
        ])

    def print_sizes(self):
        starts = [page[1] for page in self.pages] + [len(self.rows)]
        values = [self.rows[start][0][1] for start in starts[:-1]] + [len(self.values)]
        total = len(self.trails)
        for i, (page, _, _, _, range_count) in enumerate(self.pages):
            row_count, value_count = starts[i + 1] - starts[i], values[i + 1] - values[i]
            size = 8 + 256 + 48 * row_count + 2 * value_count + 10 * range_count
            total += size
            print(f"{page:5} {size:7}")
        print(f"total {total:7}")


def braced(numbers):
    return "{" + ", ".join(str(number) for number in numbers) + "}"


def row_text(row):
    listed = ", ".join(f"0x{bits:X}" for bits, _ in row)
    return "{{" + listed + "}, {" + ", ".join(str(first) for _, first in row) + "}}"


def array(element, name, items):
    lines = [", ".join(items[i:i + 12]) for i in range(0, len(items), 12)]
    return f"\nconst {element} {name}[] = {{\n" + ",\n".join(lines) + "};"


def main():
    parser = argparse.ArgumentParser(description="Writes the C++ source of the code page tables.")
    parser.add_argument("output", help="the C++ file to write")
    parser.add_argument("--sizes", action="store_true", help="print the bytes that each page takes")
    arguments = parser.parse_args()
    tables = Tables()
    for page in SINGLE_BYTE_PAGES + list(LEAD_BYTES):
        tables.add(page)
    tables.page_count = len(tables.pages)
    for page, near in near_tables().items():
        tables.add_near(page, near)
    with open(arguments.output, "w", encoding="ascii") as output:
        output.write(tables.source())
    if arguments.sizes:
        tables.print_sizes()


if __name__ == "__main__":
    main()
