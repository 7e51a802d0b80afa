"""The library exports exactly the functions that the header declares, under their undecorated names."""

import re

from binary import compare, first_groups, is_dll, lines_of, parse_arguments


def declared(header):
    with open(header, encoding="utf-8") as file:
        text = re.sub(r"/\*.*?\*/|//[^\n]*|^#[^\n]*(?:\\\n[^\n]*)*", "", file.read(), flags=re.DOTALL | re.MULTILINE)
    names = re.findall(r"\bULK_API\b[^;(]*?(\w+)\s*\(", text)
    assert len(names) == text.count("ULK_API"), "a declaration was not understood"
    return names


def exported(arguments):
    if is_dll(arguments.library):
        return first_groups(r"^\s*\[\s*\d+\] (\S+)$", lines_of(arguments.objdump, "-p", arguments.library))
    return first_groups(r" (\S+)$", lines_of(arguments.nm, "-D", "--defined-only", arguments.library))


arguments = parse_arguments(__doc__, ("library", None), ("header", None))
compare("export", declared(arguments.header), exported(arguments))
