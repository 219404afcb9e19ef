#!/usr/bin/env python3
"""Checks that every #include stays inside the project's layering.

A file may include public headers (include/), headers of its own room, and
the interface headers of the rooms below it that the table names. Tests,
benchmarks and fuzz targets sit on top and may include anything.

    scripts/check_layers.py [ROOT]     check the tree (default: this checkout)
    scripts/check_layers.py --self-test   prove that a wrong include is refused

Exit status: 0 clean, 1 a violation (each printed as FILE:LINE: why), 2 usage.
"""
import os
import re
import subprocess
import sys
import tempfile

# room: (rooms it may use, headers of the room that rooms above may include;
#        "*" for all of them). The rooms of the matcher, lowest first.
MATCHER = ["hkmatch/premise", "hkmatch/refdata", "hkmatch/input",
           "hkmatch/evaluate", "hkmatch/search", "hkmatch/calls"]
ROOMS = {
    "common": ([], "*"),
    "normalise": (["common"], ["text_tidy.h", "region_names.h"]),
    "compare": (["common"], ["prepared_streets.h"]),
    "hkmatch/premise": (["common"], []),
    "hkmatch/refdata": (["common", "compare", "hkmatch/premise"],
                        ["reference_access.h", "packed_record.h",
                         "street_table.h", "search_alloc.h",
                         "reference_format.h", "reference_store.h",
                         "street_names.h", "reference_names.h"]),

    "hkmatch/input": (["common", "hkmatch/premise"], ["record_fields.h"]),
    "hkmatch/evaluate": (["common", "compare", "hkmatch/premise",
                          "hkmatch/refdata", "hkmatch/input"], []),
    "hkmatch/search": (["common", "compare"] + MATCHER[:4], []),
    "hkmatch/calls": (["common", "compare"] + MATCHER[:5],
                      ["statement_rules.h", "call_args.h"]),
    # The line splitter: above the call layer, beside the normalisation; it
    # reads the reference names and calls the matcher through hk_mtci.
    "splitter": (["common", "normalise", "hkmatch/refdata"], []),
    "batch": (["common"], []),
    "native": (["common", "compare", "normalise", "splitter"] + MATCHER,
               ["geocoder_service.h"]),
    "tools/lib": (["common", "compare", "normalise", "splitter"] + MATCHER,
                  "*"),
    "tools": (["common", "compare", "normalise", "splitter", "tools/lib"] +
              MATCHER, []),
}
# Public headers that belong to one room: only the rooms that may use it
# include them (the matcher does not depend on the input normalisation).
OWNED = {"include/orlo_normalise.h": "normalise",
         "include/orlo_lines.h": "splitter"}
# Rooms above everything: they may include any header of the tree.
TOP = ("tests", "bench", "fuzz")
SOURCE = re.compile(r".*\.(c|cc|h)$")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def room_of(path):
    """The room of a file: the longest room name that prefixes its path."""
    best = None
    for room in ROOMS:
        if path.startswith(room + "/") and (best is None or len(room) > len(best)):
            best = room
    return best


def resolve(root, path, name):
    """The repository path an include names, or None (a system header)."""
    here = os.path.dirname(path)
    for base in (here, "", "include", "tools", "tests"):
        candidate = os.path.normpath(os.path.join(base, name))
        if os.path.isfile(os.path.join(root, candidate)):
            return candidate
    return None


def violation(src, dst):
    """Why src may not include dst, or None when it may."""
    if src.startswith(TOP):
        return None
    src_room = room_of(src)
    if dst in OWNED:
        owner = OWNED[dst]
        if src_room in (None, owner) or owner in ROOMS[src_room][0]:
            return None
        return f"{src_room} may not use {owner}"
    if dst.startswith("include/"):
        return None
    dst_room = room_of(dst)
    if src_room is None or dst_room is None or src_room == dst_room:
        return None
    uses, _ = ROOMS[src_room]
    if dst_room not in uses:
        return f"{src_room} may not use {dst_room}"
    exports = ROOMS[dst_room][1]
    if exports != "*" and os.path.basename(dst) not in exports:
        return f"{dst} is internal to {dst_room}"
    return None


def source_files(root):
    try:
        out = subprocess.run(
            ["git", "-C", root, "ls-files", "-co", "--exclude-standard"],
            check=True, capture_output=True, text=True).stdout.split("\n")
    except (OSError, subprocess.CalledProcessError):
        out = [os.path.relpath(os.path.join(d, f), root)
               for d, _, fs in os.walk(root) for f in fs]
    return sorted(p for p in out if SOURCE.match(p) and
                  os.path.isfile(os.path.join(root, p)))


def check(root):
    faults = []
    for path in source_files(root):
        with open(os.path.join(root, path), encoding="latin-1") as f:
            for number, line in enumerate(f, 1):
                m = INCLUDE.match(line)
                if not m:
                    continue
                dst = resolve(root, path, m.group(1))
                why = dst and violation(path, dst)
                if why:
                    faults.append(f"{path}:{number}: includes {dst}: {why}")
    return faults


def self_test():
    """A tree with one wrong include of each kind must fail; without, pass."""
    files = {
        "common/a.h": "",
        "compare/b.h": '#include "common/a.h"\n',
        "hkmatch/search/s.h": "",
        "hkmatch/refdata/street_table.h": "",
        "hkmatch/calls/c.cc": '#include "hkmatch/refdata/street_table.h"\n',
        "include/orlo_normalise.h": "",
        "include/orlo_lines.h": "",
        "tools/t.cc": '#include "orlo_normalise.h"\n',
        "splitter/s.cc": '#include "hkmatch/refdata/street_table.h"\n',
    }
    wrong = {
        "common/up.cc": '#include "compare/b.h"\n',
        "hkmatch/refdata/r.cc": '#include "hkmatch/search/s.h"\n',
        "native/n.cc": '#include "hkmatch/search/s.h"\n',
        "hkmatch/input/i.cc": '#include "orlo_normalise.h"\n',
        "hkmatch/calls/l.cc": '#include "orlo_lines.h"\n',
    }
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(root, path), "w") as f:
                f.write(text)
        if check(root):
            print("self-test: a clean tree was refused", file=sys.stderr)
            return 1
        for path, text in wrong.items():
            os.makedirs(os.path.join(root, os.path.dirname(path)), exist_ok=True)
            with open(os.path.join(root, path), "w") as f:
                f.write(text)
            faults = check(root)
            os.remove(os.path.join(root, path))
            if len(faults) != 1 or not faults[0].startswith(path + ":1:"):
                print(f"self-test: {path} was not refused alone: {faults}",
                      file=sys.stderr)
                return 1
    print("self-test: an upward include, another room's internals, a "
          "front end reaching past an interface and the matcher using the "
          "input normalisation or the line splitter are refused")
    return 0


def main(argv):
    if argv[1:] == ["--self-test"]:
        return self_test()
    if len(argv) > 2 or (len(argv) == 2 and argv[1].startswith("-")):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    root = argv[1] if len(argv) == 2 else os.path.join(
        os.path.dirname(os.path.abspath(__file__)), "..")
    faults = check(os.path.abspath(root))
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
