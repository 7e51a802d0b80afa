"""Prints a source of the site as Doxygen is to read it.

    docs_page.py FILE

A document becomes a page that is called like its file. Links lead to pages where there is one; to other files of the
repository there is none, and the words stay.
"""

import re
import sys
from pathlib import Path

FILES = ("guide.md", "syntax.md", "performance.md", "SECURITY.md", "README.md", "internals.md", "CHANGELOG.md")
PAGES = {name: name[:-3].lower() for name in FILES}
HEADERS = {"ulkch.h": "ulkch.h", "ulkcore.h": "ulkcore.h"}


def anchor(page, heading):
    return page + "_" + re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def linked(page, match):
    words, target = match.groups()
    if re.match(r"\w+:", target):
        return match[0]
    path, _, heading = target.partition("#")
    name = Path(path).name
    to = PAGES.get(name) if path else page
    if to:
        return f"@ref {anchor(to, heading) if heading else to} \"{words.replace('`', '')}\""
    if name == "ulkch.hpp":
        return f"[{words}](cpp/index.html)"
    return f'@ref {HEADERS[name]} "{HEADERS[name]}"' if name in HEADERS else words


def convert(page, text):
    lines, fenced = [], False
    for line in text.split("\n"):
        if line.startswith("```"):
            fenced = not fenced
            line = {"```c": "```{.c}", "```cpp": "```{.cpp}"}.get(line, line)
        elif not fenced:
            heading = re.match(r"(#+) (.*)$", line)
            if heading:
                mark = page if heading[1] == "#" else anchor(page, heading[2])
                line += f" {{#{mark}}}"
            line = line.replace("](plots/", "](")
            line = re.sub(r"(?<!!)\[([^]\n]*)\]\(([^)\s]+)\)", lambda match: linked(page, match), line)
        lines.append(line)
    return "\n".join(lines)


file = Path(sys.argv[1])
text = file.read_text(encoding="utf-8")
sys.stdout.reconfigure(encoding="utf-8")
print(convert(PAGES[file.name], text) if file.name in PAGES else text)
