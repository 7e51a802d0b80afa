#!/usr/bin/env python3
"""Makes the Unicode tables of the expression engine, src/unicode/*_table.inc.

UCD_DIR holds UnicodeData.txt, Scripts.txt and Blocks.txt of Unicode 5.1.0. That version is part of the library's
promise (which characters \\p{Lu} accepts must not change with the machine that built it), so everything the tables
rely on is checked here, and nothing is written when one count is off.
"""

import argparse
import itertools
import re
import sys
from pathlib import Path

VERSION = "5.1.0"
COMMAND = "tools/make_unicode_tables.py UCD_DIR"
OUTPUT_DIR = Path(__file__).resolve().parent.parent / "src" / "unicode"
LINE_WIDTH = 110

MAX_CODE_POINT = 0x10FFFF
BLOCK_SHIFT = 7  # 128 code points to a block: the smallest table whose block numbers fit into a byte

# General categories: a major-class bit, and a low bit for the subcategory, given by its letter's place.
MAJOR_CLASSES = {
    "L": (0x80, "lutmo"),
    "M": (0x100, "nce"),
    "Z": (0x200, "slp"),
    "S": (0x400, "mcko"),
    "N": (0x800, "dlo"),
    "P": (0x1000, "dseifco"),
    "C": (0x2000, "cfosn"),
}
CATEGORY_MASKS = {
    major + letter: bit | 1 << place
    for major, (bit, letters) in MAJOR_CLASSES.items()
    for place, letter in enumerate(letters)
}

NUM_LISTED = 19316
LAST_LISTED = 0xE01EF
RANGED = [
    (0x3400, 0x4DB5, 0x90),
    (0x4E00, 0x9FC3, 0x90),
    (0xAC00, 0xD7A3, 0x90),
    (0xD800, 0xDB7F, 0x2008),
    (0xDB80, 0xDBFF, 0x2008),
    (0xDC00, 0xDFFF, 0x2008),
    (0xE000, 0xF8FF, 0x2004),
    (0x20000, 0x2A6D6, 0x90),
    (0xF0000, 0xFFFFD, 0x2004),
    (0x100000, 0x10FFFD, 0x2004),
]

# Every script in the order of Scripts.txt, with its number of lines there.
SCRIPTS = """
    Common 530, Latin 42, Greek 51, Cyrillic 18, Armenian 6, Hebrew 22, Arabic 36, Syriac 7, Thaana 3, Devanagari 17,
    Bengali 25, Gurmukhi 21, Gujarati 21, Oriya 25, Tamil 24, Telugu 18, Kannada 20, Malayalam 18, Sinhala 13, Thai 10,
    Lao 22, Tibetan 34, Myanmar 33, Georgian 4, Hangul 12, Ethiopic 31, Cherokee 1, Canadian_Aboriginal 3, Ogham 4,
    Runic 2, Khmer 17, Mongolian 13, Hiragana 3, Katakana 8, Bopomofo 2, Han 15, Yi 4, Old_Italic 2, Gothic 4,
    Deseret 1, Inherited 22, Tagalog 3, Hanunoo 2, Buhid 2, Tagbanwa 3, Limbu 12, Tai_Le 2, Linear_B 7, Ugaritic 2,
    Shavian 1, Osmanya 2, Cypriot 6, Braille 1, Buginese 4, Coptic 6, New_Tai_Lue 6, Glagolitic 2, Tifinagh 2,
    Syloti_Nagri 11, Old_Persian 4, Kharoshthi 11, Balinese 17, Cuneiform 3, Phoenician 3, Phags_Pa 2, Nko 7,
    Sundanese 10, Lepcha 8, Ol_Chiki 4, Vai 6, Saurashtra 6, Kayah_Li 4, Rejang 4, Lycian 1, Carian 1, Lydian 2,
    Cham 13
"""
NUM_SCRIPTS = 77
NUM_BLOCKS = 171
BLOCK_LANDMARKS = {
    0: ("InBasicLatin", 0x0, 0x7F),
    2: ("InLatinExtendedA", 0x100, 0x17F),
    107: ("InCJKUnifiedIdeographs", 0x4E00, 0x9FFF),
    170: ("InSupplementaryPrivateUseAreaB", 0x100000, 0x10FFFF),
}


def expect(condition, message):
    if not condition:
        sys.exit(f"make_unicode_tables: {message}")


def read_characters(path):
    """The lines of UnicodeData.txt: {code point: (mask, distance to its lowercase)} and the first/last ranges."""
    listed, ranged = {}, []
    first = None
    for line in path.read_text(encoding="ascii").splitlines():
        fields = line.split(";")
        code_point, name, mask = int(fields[0], 16), fields[1], CATEGORY_MASKS[fields[2]]
        if name.endswith(", First>"):
            first = code_point
        elif name.endswith(", Last>"):
            ranged.append((first, code_point, mask))
        else:
            listed[code_point] = (mask, int(fields[13], 16) - code_point if fields[13] else 0)
    expect(len(listed) == NUM_LISTED, f"{len(listed)} characters are listed, not {NUM_LISTED}")
    expect(list(listed) == sorted(listed), "the characters are not ascending")
    expect(max(listed) == LAST_LISTED, f"U+{max(listed):04X} is the last character listed, not U+{LAST_LISTED:04X}")
    expect(ranged == RANGED, "the first/last ranges are not the known ten")
    expect(not any(first <= c <= last for c in listed for first, last, _ in ranged), "a listed character is in a range")
    return listed, ranged


def read_ranges(path):
    """The (first, last, name) of each line of Scripts.txt or Blocks.txt, in the order of the file."""
    text = path.read_text(encoding="ascii")
    expect(f"{path.stem}-{VERSION}.txt" in text.split("\n", 1)[0], f"{path.name} is not that of Unicode {VERSION}")
    lines = re.findall(r"^([0-9A-F]+)(?:\.\.([0-9A-F]+))?\s*;\s*([^#\n]*?)\s*(?:#.*)?$", text, re.MULTILINE)
    return [(int(first, 16), int(last or first, 16), name) for first, last, name in lines]


def ascending(ranges):
    """True when each range lies above the one before it."""
    return all(r[0] <= r[1] for r in ranges) and all(a[1] < b[0] for a, b in itertools.pairwise(ranges))


def read_scripts(path):
    """{script: its ranges}, in the order of the file, one range a line."""
    scripts = {}
    for first, last, name in read_ranges(path):
        scripts.setdefault(name, []).append((first, last))
    known = [(name, int(count)) for name, count in (entry.split() for entry in SCRIPTS.split(","))]
    expect(len(scripts) == NUM_SCRIPTS, f"there are {len(scripts)} scripts, not {NUM_SCRIPTS}")
    expect([(name, len(ranges)) for name, ranges in scripts.items()] == known, "a script's place or count is off")
    expect(all(ascending(ranges) for ranges in scripts.values()), "a script's ranges are not ascending")
    return scripts


def read_blocks(path):
    """(first, last, name as \\p{...} writes it) of each block."""
    blocks = [(first, last, "In" + re.sub("[ -]", "", name)) for first, last, name in read_ranges(path)]
    expect(len(blocks) == NUM_BLOCKS, f"there are {len(blocks)} blocks, not {NUM_BLOCKS}")
    for index, (name, first, last) in BLOCK_LANDMARKS.items():
        expect(blocks[index] == (first, last, name), f"block {index} is not {name}")
    expect(ascending(blocks), "the blocks are not ascending")
    expect(len({name for _, _, name in blocks}) == NUM_BLOCKS, "two blocks bear one name")
    return blocks


def header(source):
    return [f"// Generated by {COMMAND} from {source} of Unicode {VERSION}. Do not edit.", ""]


def array(declaration, items):
    """A constexpr array, as many items to a line as fit."""
    lines, line = [f"constexpr {declaration}[] = {{"], "   "
    for item in items:
        if len(line) + len(item) + 2 > LINE_WIDTH:
            lines.append(line)
            line = "   "
        line += f" {item},"
    return [*lines, line, "};", ""]


def two_stages(numbers):
    """The block of every 1 << BLOCK_SHIFT numbers, and the numbers of the blocks; equal blocks are kept once."""
    size = 1 << BLOCK_SHIFT
    blocks = {}
    block_of = [
        blocks.setdefault(tuple(numbers[start : start + size]), len(blocks)) for start in range(0, len(numbers), size)
    ]
    expect(max(numbers) <= 255 and len(blocks) <= 256, "a number or a block's number does not fit into a byte")
    return map(str, block_of), (str(number) for block in blocks for number in block)


def characters_table(listed, ranged):
    """Equal records are kept once."""
    of_code_point = {c: ("kListed", mask, distance) for c, (mask, distance) in listed.items()}
    for first, last, mask in ranged:
        of_code_point.update(dict.fromkeys(range(first, last + 1), ("kRanged", mask, 0)))
    unlisted = ("kUnlisted", 0, 0)
    records = {record: number for number, record in enumerate([unlisted, *sorted(set(of_code_point.values()))])}
    numbers = [records[of_code_point.get(c, unlisted)] for c in range(MAX_CODE_POINT + 1)]

    block_of, record_of = two_stages(numbers)
    return [
        *header("UnicodeData"),
        f"constexpr int32_t kMaxCodePoint = 0x{MAX_CODE_POINT:X};",
        f"constexpr int32_t kLastListed = 0x{LAST_LISTED:X};",
        f"constexpr int kBlockShift = {BLOCK_SHIFT};",
        "",
        *array("CharacterRecord kRecords", (f"{{{k}, 0x{mask:X}, {distance}}}" for k, mask, distance in records)),
        *array("uint8_t kBlockOf", block_of),
        *array("uint8_t kRecordOf", record_of),
    ]


def scripts_table(scripts):
    lines = header("Scripts")
    for name, ranges in scripts.items():
        pairs = (f"{{0x{first:X}, 0x{last:X}}}" for first, last in ranges)
        lines += array(f"CodePointRange k{name}", pairs)
    lines += ["constexpr Script kScripts[] = {", *(f'    script("{n}", k{n}),' for n in scripts), "};", ""]

    last = max(ranges[-1][1] for ranges in scripts.values())
    numbers = [0] * (last + 1)
    for number, ranges in enumerate(scripts.values(), 1):
        for first_of, last_of in ranges:
            expect(not any(numbers[first_of : last_of + 1]), "a code point is in two scripts")
            numbers[first_of : last_of + 1] = [number] * (last_of + 1 - first_of)
    numbers += [0] * (-len(numbers) % (1 << BLOCK_SHIFT))
    block_of, number_of = two_stages(numbers)
    return [
        *lines,
        f"constexpr int32_t kLastInScript = 0x{last:X};",
        f"constexpr int kScriptBlockShift = {BLOCK_SHIFT};",
        "",
        *array("uint8_t kScriptBlockOf", block_of),
        *array("uint8_t kNumberOf", number_of),
    ]


def blocks_table(blocks):
    rows = (f'    {{"{name}", {{0x{first:X}, 0x{last:X}}}}},' for first, last, name in blocks)
    return [*header("Blocks"), "constexpr Block kBlocks[] = {", *rows, "};", ""]


def main():
    arguments = argparse.ArgumentParser(prog="tools/make_unicode_tables.py", description=__doc__,
                                        formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("ucd_dir", type=Path, metavar="UCD_DIR", help="holds the files of Unicode " + VERSION)
    arguments.add_argument("--check", action="store_true", help="write nothing; fail when a table is out of date")
    options = arguments.parse_args()

    ucd = options.ucd_dir
    expect(ucd.is_dir(), f"there is no folder {ucd}")
    tables = {
        "characters_table.inc": characters_table(*read_characters(ucd / "UnicodeData.txt")),
        "scripts_table.inc": scripts_table(read_scripts(ucd / "Scripts.txt")),
        "blocks_table.inc": blocks_table(read_blocks(ucd / "Blocks.txt")),
    }
    stale = False
    for name, lines in tables.items():
        path, content = OUTPUT_DIR / name, "\n".join(lines).rstrip("\n") + "\n"
        if not options.check:
            path.write_text(content, encoding="ascii", newline="\n")
            print(f"wrote {path}")
        elif not path.exists() or path.read_text(encoding="ascii") != content:
            print(f"{path.name} differs from what the data gives", file=sys.stderr)
            stale = True
    return 1 if stale else 0


if __name__ == "__main__":
    sys.exit(main())
