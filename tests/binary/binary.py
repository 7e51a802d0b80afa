"""What the checks of built libraries share: the command line, and reading the tools' output."""

import argparse
import os
import re
import subprocess
import sys


def parse_arguments(description, *positional):
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--objdump", default="objdump")
    parser.add_argument("--nm", default="nm")
    for name, nargs in positional:
        parser.add_argument(name, nargs=nargs)
    return parser.parse_args()


def lines_of(*command):
    """The lines that a command prints. The tools' words are the same everywhere only in the C locale."""
    environment = dict(os.environ, LC_ALL="C")
    result = subprocess.run(command, env=environment, stdout=subprocess.PIPE, text=True, check=True)
    return result.stdout.splitlines()


def is_dll(path):
    return path.lower().endswith(".dll")


def first_groups(pattern, lines):
    """Group 1 of every line that matches the pattern."""
    return [match.group(1) for match in map(re.compile(pattern).search, lines) if match]


def compare(what, expected, found):
    """Ends the check with the differences between two sets of names, if there are any."""
    missing, extra = sorted(set(expected) - set(found)), sorted(set(found) - set(expected))
    for name in missing:
        print(f"missing {what}: {name}")
    for name in extra:
        print(f"unexpected {what}: {name}")
    if missing or extra or not expected:
        sys.exit(1)
    print(f"{what}: {len(expected)}, as expected")
