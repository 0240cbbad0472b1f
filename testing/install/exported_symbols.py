#!/usr/bin/env python3
"""Compares what a library exports with the list under version control.

usage: exported_symbols.py LIBRARY [--update]

The list holds our own names, demangled and sorted. Instances of the standard library's templates,
which come and go with the compiler, and the linker's own names are left out. --update rewrites the list instead.
"""

import difflib
import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).with_name("exported_symbols.txt")

# Mangled names that belong to namespace std or __gnu_cxx, also as vtable, typeinfo, guard or local.
STANDARD = re.compile(r"^_Z(GV|T[VIST]|Z)*(N[rVK]*[RO]?)?(S[tabsiod]|9__gnu_cxx)")

# Names of the linker's own, which it shows where a library that ours is linked with shows them.
LINKERS = {"__bss_start", "_edata", "_end"}


def exported(library):
    """Returns the sorted demangled names that the library defines for others."""
    command = ["nm", "-D", "--defined-only", "--format=posix", library]
    rows = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    names = [row.split()[0] for row in rows]
    ours = "\n".join(name for name in names if name not in LINKERS and not STANDARD.match(name))
    plain = subprocess.run(["c++filt"], input=ours, check=True, capture_output=True, text=True)
    return sorted(set(plain.stdout.splitlines()))


def main(arguments):
    if not 1 <= len(arguments) <= 2 or arguments[1:] not in ([], ["--update"]):
        print(__doc__, file=sys.stderr)
        return 2
    found = exported(arguments[0])
    if len(arguments) == 2:
        LIST.write_text("\n".join(found) + "\n", encoding="utf-8")
        print(f"{len(found)} symbols written to {LIST.name}")
        return 0
    listed = LIST.read_text(encoding="utf-8").splitlines()
    rows = list(difflib.unified_diff(listed, found, "listed", "exported", lineterm="", n=0))
    print("\n".join(rows) if rows else f"{len(found)} symbols, as listed")
    if rows:
        print("If this is meant, run scripts/update-symbols and say it in CHANGELOG.md.")
    return 1 if rows else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
