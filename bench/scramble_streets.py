#!/usr/bin/env python3
"""Rewrites a reference database so that its street tables are out of order.

    bench/scramble_streets.py DBDIR [SEED]

Shuffles the LEVEL2 records of every region's segment in place (seeded, so
the same seed gives the same files): each segment keeps its offset, length
and record count, each record its block, so the database stays valid, but
its street tables are no longer sorted, nor in order of their first letters.
The searches must then take the paths for such tables (the exact pass's
bisection, the fuzzy pass's walk from the start and its stop rule).
"""
import random
import struct
import sys


def records(segment, count):
    pos, out = 0, []
    for _ in range(count):
        end = segment.index(b"\0", pos + 10) + 1
        out.append(segment[pos:end])
        pos = end
    if pos != len(segment):
        raise SystemExit("a segment does not end with its last record")
    return out


def main(argv):
    if len(argv) not in (2, 3):
        print(__doc__.strip(), file=sys.stderr)
        return 2
    db, seed = argv[1], int(argv[2]) if len(argv) == 3 else 1
    rng = random.Random(seed)
    with open(f"{db}/LEVEL1", "rb") as f:
        level1 = f.read()
    with open(f"{db}/LEVEL2", "rb") as f:
        level2 = bytearray(f.read())
    for at in range(0, len(level1) - 39, 40):
        off, length, count = struct.unpack(">IIH", level1[at + 30:at + 40])
        if level1[at:at + 4] == b"\0\0\0\0":
            break
        recs = records(bytes(level2[off:off + length]), count)
        sorted_recs = list(recs)
        while len(recs) > 2 and recs == sorted_recs:
            rng.shuffle(recs)
        level2[off:off + length] = b"".join(recs)
    with open(f"{db}/LEVEL2", "wb") as f:
        f.write(level2)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
