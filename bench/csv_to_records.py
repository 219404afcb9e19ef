#!/usr/bin/env python3
"""Writes the addresses of an hkgeocode input CSV as raw 200-byte input
records, each field placed as given (what hkgeocode --raw does), so that
two versions of the matcher can be compared on their raw 300-byte output
records whatever their CSV output and input tidying look like.

  bench/csv_to_records.py IN.csv OUT.dat"""
import csv
import sys

# (offset, width) of each CSV column in the record; the unit line's last
# five characters go to the unit extension at 193.
PLACES = [(7, 3), (10, 8), (18, 30), (48, 30), (78, 25), (103, 30),
          (133, 30), (163, 30), (199, 1)]
UNIT_EXT = (193, 5)


def record(fields):
    rec = bytearray(b" " * 200)
    for i, (text, (off, width)) in enumerate(zip(fields, PLACES)):
        data = text.encode("latin-1")
        if i == 4 and len(data) > width:
            data, ext = data[:width], data[width:width + UNIT_EXT[1]]
            rec[UNIT_EXT[0]:UNIT_EXT[0] + len(ext)] = ext
        if len(data) > width:
            sys.exit(f"{sys.argv[1]}: column {i + 1} wider than {width}")
        rec[off:off + len(data)] = data
    return bytes(rec)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], newline="", encoding="utf-8") as f, \
            open(sys.argv[2], "wb") as out:
        rows = csv.reader(f)
        next(rows)
        for n, fields in enumerate(rows, start=2):
            if len(fields) != len(PLACES):
                sys.exit(f"{sys.argv[1]}:{n}: expected 9 fields")
            out.write(record(fields))


if __name__ == "__main__":
    main()
