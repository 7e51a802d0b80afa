"""Makes a C program of a page's pieces of C, and a file with what the page says that it prints.

    guide_program.py PAGE PROGRAM OUTPUT

Pieces are the blocks fenced with ```c. The program holds them one after the other and calls every function
"static void NAME(void)" of theirs. What a piece prints stands in the plain block behind it; in the output the names of
the functions stand between, so that each piece answers for its own.
"""

import re
import sys
from pathlib import Path

page, program, output = map(Path, sys.argv[1:])
source, calls, expected = [], [], []
lines = page.read_text(encoding="utf-8").split("\n")
kind, block, functions = None, [], []
for number, line in enumerate(lines, 1):
    if kind is None:
        if line.startswith("```"):
            kind, block = line[3:], []
            if kind == "c":
                source.append(f'#line {number + 1} "{page.name}"')
    elif line == "```":
        if kind == "c":
            source += block
            functions = re.findall(r"^static void (\w+)\(void\) \{$", "\n".join(block), re.MULTILINE)
            calls += functions
            expected += [f"== {name}" for name in functions]
        elif kind == "":
            expected += block
        kind = None
    else:
        block.append(line)

if not calls:
    sys.exit(f"{page}: no function to call")
body = "".join(f'  puts("== {name}");\n  {name}();\n' for name in calls)
program.write_text("\n".join(source) + f"\n\nint main(void) {{\n{body}  return 0;\n}}\n", encoding="utf-8")
output.write_text("\n".join(expected) + "\n", encoding="utf-8")
