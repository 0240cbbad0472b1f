#!/usr/bin/env python3
"""Checks the arrows between the rooms of the library: who may include whom.

usage: include_arrows.py ROOT     checks every C++ file under ROOT/qeltin
       include_arrows.py --self-test

Prints one line for each include that is not allowed and fails if there is one.
"""

import pathlib
import re
import sys
import tempfile

PRODUCTS_AND_BELOW = {"products", "tin", "kernel", "platform"}

# A room may include itself and the rooms named here. platform knows none of the others.
ALLOWED = {
    "platform": set(),
    "kernel": {"platform"},
    "tin": {"kernel", "platform"},
    "products": {"tin", "kernel", "platform"},
    "persistence": PRODUCTS_AND_BELOW,
    "contour": PRODUCTS_AND_BELOW,
    "decimate": PRODUCTS_AND_BELOW,
    "models": PRODUCTS_AND_BELOW | {"persistence", "contour", "decimate"},
    "render": PRODUCTS_AND_BELOW,
}

# The one borrowing upward: surfaces smooth and remove points with polygons.
EXCEPTIONS = {("tin", "qeltin/products/TPolygon.h")}

QUOTED = re.compile(r'^\s*#\s*include\s*"([^"]*)"')
ANGLED = re.compile(r"^\s*#\s*include\s*<((?:qeltin|testing)/[^>]*)>")


def complaint(path, included, angled):
    """Returns what is wrong with a file under qeltin/ including a header, or None."""
    room = path.parts[1]
    if room not in ALLOWED:
        return f"the room qeltin/{room} has no arrows"
    if angled:
        return f'write "{included}", in quotes'
    is_test = path.name.endswith("_test.cpp")
    if included.startswith("testing/"):
        return None if is_test else "only a test may include testing/"
    parts = included.split("/")
    if parts[0] != "qeltin" or len(parts) < 3:
        return 'our own headers are included by their full path, "qeltin/ROOM/HEADER.h"'
    target = parts[1]
    if target == room or target in ALLOWED[room] or (room, included) in EXCEPTIONS:
        return None
    return f"{room} must not know {target}"


def check(root):
    """Returns a line for each include under root/qeltin that is not allowed, and the file count."""
    lines = []
    files = sorted(p for p in (root / "qeltin").rglob("*") if p.suffix in (".h", ".cpp"))
    for file in files:
        path = file.relative_to(root)
        text = file.read_text(encoding="utf-8")
        for number, line in enumerate(text.splitlines(), start=1):
            quoted, angled = QUOTED.match(line), ANGLED.match(line)
            if quoted or angled:
                included = (quoted or angled).group(1)
                wrong = complaint(path, included, bool(angled))
                if wrong:
                    lines.append(f"{path}:{number}: {included}: {wrong}")
    return lines, len(files)


def self_test():
    """Plants arrows, good and bad, and expects exactly the bad ones to be reported."""
    cases = [
        # file, include, allowed
        ("kernel/TPoint.h", '"qeltin/platform/Export.h"', True),
        ("tin/TIN.cpp", '"qeltin/kernel/TPoint.h"', True),
        ("tin/TIN.h", '"qeltin/products/TPolygon.h"', True),
        ("models/CTin.cpp", '"qeltin/decimate/Decimator.h"', True),
        ("render/GlTIN.cpp", '"qeltin/products/TGrid.h"', True),
        ("tin/TIN_test.cpp", '"testing/VerifySurface.h"', True),
        ("tin/TIN.cpp", "<vector>", True),
        ("kernel/TPoint.cpp", '"qeltin/tin/TIN.h"', False),
        ("tin/TIN.cpp", '"qeltin/products/TGrid.h"', False),
        ("kernel/TEdge.cpp", '"qeltin/products/TPolygon.h"', False),
        ("platform/FileStream.cpp", '"qeltin/kernel/TPoint.h"', False),
        ("contour/Contour.cpp", '"qeltin/persistence/TINFile.h"', False),
        ("render/GlTIN.cpp", '"qeltin/models/CTin.h"', False),
        ("models/CTin.cpp", '"qeltin/render/GlTIN.h"', False),
        ("tin/TIN_test.cpp", '"qeltin/models/CTin.h"', False),
        ("tin/TIN.cpp", '"testing/VerifySurface.h"', False),
        ("tin/TIN.cpp", '"TArray.h"', False),
        ("tin/TIN.cpp", "<qeltin/tin/TArray.h>", False),
        ("attic/Old.cpp", '"qeltin/tin/TIN.h"', False),
    ]
    failures = []
    for file, include, allowed in cases:
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "qeltin", file)
            path.parent.mkdir(parents=True)
            path.write_text(f"// A planted arrow.\n  #  include {include}\n", encoding="utf-8")
            found, _ = check(pathlib.Path(folder))
        where = f"qeltin/{file}:2: "
        expected = not found if allowed else len(found) == 1 and found[0].startswith(where)
        if not expected:
            failures.append(f"{file} includes {include}: allowed={allowed}, reported {found}")
    return failures, len(cases)


def main(arguments):
    if len(arguments) != 1:
        print(__doc__, file=sys.stderr)
        return 2
    if arguments[0] == "--self-test":
        lines, count = self_test()
    else:
        lines, count = check(pathlib.Path(arguments[0]))
    print("\n".join(lines) if lines else f"{count} checked, no arrow out of place")
    return 1 if lines or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
