#!/usr/bin/env python3
"""Fails if a program with a recording GL calls a function of GL that it does not record.

usage: unrecorded_calls.py PROGRAM
"""

import re
import subprocess
import sys

GL_FUNCTION = re.compile(r"(gl|glu|glew|glX|egl)[A-Z]\w*")


def main(arguments):
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    command = ["nm", "-D", "--undefined-only", "--format=posix", arguments[0]]
    rows = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    names = {row.split()[0].split("@")[0] for row in rows}
    missed = sorted(n for n in names if GL_FUNCTION.fullmatch(n) and n != "glewExperimental")
    for name in missed:
        print(f"{name} is called and not recorded: add it to testing/gl/RecordingGl.cpp")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
