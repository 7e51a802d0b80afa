"""The library's objects hold no writable data and no code that runs at load time."""

import re
import sys

from binary import lines_of, parse_arguments

# Constants that hold addresses are written once, by the loader, and are read-only from then on.
FORBIDDEN = re.compile(r"\.(?!data\.rel\.ro)(data|bss|tdata|tbss|tls|init_array|fini_array|preinit_array|ctors|dtors)\b")

arguments = parse_arguments(__doc__, ("archives", "+"))
for archive in arguments.archives:
    objects, found = 0, []
    for line in lines_of(arguments.objdump, "-h", "-w", archive):
        if header := re.match(r"(\S+):\s+file format", line):
            objects, current = objects + 1, header.group(1)
        section = re.match(r"\s*\d+ (\S+)\s+([0-9a-f]+) ", line)
        if section and FORBIDDEN.match(section.group(1)) and int(section.group(2), 16) > 0:
            found.append(f"{current}: {section.group(1)}, {int(section.group(2), 16)} bytes")
    if found:
        sys.exit(f"{archive}: writable data or start-up code:\n" + "\n".join(found))
    if objects == 0:
        sys.exit(f"{archive}: no objects in it")
    print(f"{archive}: {objects} objects without state")
