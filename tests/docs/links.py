"""The links of the documents lead somewhere, and from the README to every document.

    links.py SOURCE_DIR
"""

import re
import sys
from pathlib import Path

root = Path(sys.argv[1]).resolve()
pages = sorted([*root.glob("*.md"), *root.glob("*/*.md")])
faults = []


def prose(page):
    return re.sub(r"^```.*?^```", "", page.read_text(encoding="utf-8"), flags=re.DOTALL | re.MULTILINE)


def anchors(page):
    headings = re.findall(r"^#+ (.*)$", prose(page), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def targets(page):
    """(file, anchor) of each link within the repository."""
    for link in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`\n]*`", "x", prose(page))):
        if not re.match(r"\w+:", link):
            path, _, anchor = link.partition("#")
            yield link, (page.parent / path).resolve() if path else page, anchor


for page in pages:
    for link, target, anchor in targets(page):
        if not target.exists():
            faults.append(f"{page.relative_to(root)}: {link}: no such file")
        elif anchor and anchor not in anchors(target):
            faults.append(f"{page.relative_to(root)}: {link}: no such heading")
reached, found = set(), {root / "README.md"}
while found - reached:
    page = (found - reached).pop()
    reached.add(page)
    found |= {target for _, target, _ in targets(page) if target in pages}
faults += [f"{page.relative_to(root)}: no way to it from README.md" for page in pages if page not in reached]
sys.exit("\n".join(faults) or (None if pages else "no pages"))
