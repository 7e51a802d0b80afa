"""The library bears the given name inside and needs exactly the given libraries at run time."""

from binary import compare, first_groups, is_dll, lines_of, parse_arguments

arguments = parse_arguments(__doc__, ("library", None), ("name", None), ("needed", "*"))
headers = lines_of(arguments.objdump, "-p", arguments.library)
if is_dll(arguments.library):
    # The export table's own name stands in a line that reads "Name <address> <name>".
    names = first_groups(r"^Name\s+[0-9a-f]+ (\S+)$", headers)
    needed = first_groups(r"DLL Name: (\S+)", headers)
else:
    names = first_groups(r"^\s*SONAME\s+(\S+)", headers)
    needed = first_groups(r"^\s*NEEDED\s+(\S+)", headers)
compare("name", [arguments.name], names)
compare("needed library", arguments.needed, needed)
