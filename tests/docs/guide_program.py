"""Makes a program of a page's pieces of C or C++, and a file with what the page says that it prints.

    guide_program.py PAGE LANGUAGE PROGRAM OUTPUT

Pieces are the blocks fenced with ```c or ```cpp, whichever LANGUAGE says. The program holds them one after the other
and calls every function "static void NAME(void)", in C++ "static void NAME()", of theirs. What a piece prints stands in
the plain block behind it; in the output the names of the functions stand between, so that each piece answers for its
own. In a header, pieces stand in comments and are bodies of functions, which assert what they show.
"""

import re
import sys
from pathlib import Path

page, language, program, output = Path(sys.argv[1]), sys.argv[2], Path(sys.argv[3]), Path(sys.argv[4])
source, calls, expected = [], [], []
lines = page.read_text(encoding="utf-8").split("\n")
is_header = page.suffix == ".h"
if is_header:
    lines = [re.sub("^/// ?", "", line) for line in lines]
    source += [f"#include <{name}.h>" for name in ("assert", "stdlib", "string", page.stem)]
kind, last_kind, block, functions = None, None, [], []
for number, line in enumerate(lines, 1):
    if kind is None:
        if line.startswith("```"):
            kind, block = line[3:], []
            if kind == language:
                source.append(f'#line {number + 1} "{page.name}"')
    elif line == "```":
        if kind == language:
            if is_header:
                block = [f"static void piece{len(calls)}(void) {{", *block, "}"]
                source[-1] = f'#line {number - len(block) + 1} "{page.name}"'
            source += block
            functions = re.findall(r"^static void (\w+)\((?:void)?\) \{$", "\n".join(block), re.MULTILINE)
            calls += functions
            expected += [f"== {name}" for name in functions]
        elif kind == "" and last_kind == language:
            expected += block
        kind, last_kind = None, kind
    else:
        block.append(line)

if not calls:
    sys.exit(f"{page}: no function to call")
body = "".join(f'  puts("== {name}");\n  {name}();\n' for name in calls)
end = f"int main(void) {{\n{body}  return 0;\n}}\n"
program.write_text("#include <stdio.h>\n" + "\n".join(source) + "\n\n" + end, encoding="utf-8")
output.write_text("\n".join(expected) + "\n", encoding="utf-8")
