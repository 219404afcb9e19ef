#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets under fuzz/corpus/.

Seeds come from the sample data and from small databases built with hkdb, so
that every target starts from valid inputs of its kind. Deterministic.

Usage: scripts/make_fuzz_seeds.py BUILD_DIR   (a build that has bin/hkdb)
"""
import csv
import os
import struct
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CORPUS = os.path.join(ROOT, "fuzz", "corpus")
HEADER = "region,street,refcode,refid,building,parity,qual1,low,qual2,high,code9,address\n"


def put(target, name, data):
    folder = os.path.join(CORPUS, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def premise_seeds():
    texts = ["12", "0012", "12A", "12 AB", "A12", "12-14", "12.5", "12 1/2",
             "12 5/8", "12/14", "N12E5", "1N234", "X12E5", "ABC", "G/F", "12-",
             "-", "  ", "a12", "1234567890A", "12 12345", "9" * 99, "9" * 100]
    for i, t in enumerate(texts):
        put("premise_parser_fuzzer", f"seed{i:02d}", t.encode())


def source_record(pieces):
    rec = bytearray(b" " * 8528)
    for off, text in pieces:
        rec[off:off + len(text)] = text.encode()
    return bytes(rec)


def mapping_seeds():
    seeds = [
        [(937, "88"), (827, "NATHAN"), (877, "ROAD"), (1103, "CHUNGKING"),
         (1153, "MANSIONS"), (781, "36"), (1343, "12/F"), (1383, "FLAT A"),
         (2338, "KOWLOON"), (2241, "TSIM SHA TSUI"), (2429, "TST")],
        [(985, "HENNESSY ROAD"), (781, "500"), (725, "00"), (1526, "NEAR MTR"),
         (2241, "HK"), (2469, "00001 ")],
        [(1042, "TIMES SQUARE"), (1103, "MATHESON"), (1153, "STREET"),
         (1082, "1"), (778, "004"), (2818, "1"), (2818 + 16, "PIECE")],
        [(1103, "X"), (1128, "QUEEN'S ROAD"), (1168, "CENTRAL"),
         (2818, "1"), (2818 + 571, "2"), (2818 + 571 + 362, "GROUP LINE")],
    ]
    for i, pieces in enumerate(seeds):
        put("input_mapping_fuzzer", f"seed{i}", source_record(pieces))


def compare_seeds():
    pairs = [("SMITH ST", "SMYTH ST"), ("FIRST ST", "1ST ST"), ("N", "NORTH"),
             ("KING GEORGE RD", "KING G RD"), ("ACME LIMITED", "ACME LTD"),
             ("IBM", "I B M"), ("0012 MAIN", "12 MAIN"), ("SMITH-JONES", "JONES"),
             ("COURT A", "COURT B"), ("MÜLLER", "MUELLER")]
    options = ["", "DI", "TYPE", "SQUISH", "COMPACT", "SORT", "DI;SQUISH"]
    n = 0
    for which in range(4):
        for i, (a, b) in enumerate(pairs):
            length = 31 if i % 2 else 62
            opt = options[(i + which) % len(options)].encode()
            fa = a.encode("latin-1").ljust(length)
            fb = b.encode("latin-1").ljust(length)
            data = bytes([which, length + 2, len(opt)]) + opt + fa + fb
            put("compare_fuzzer", f"seed{n:02d}", data)
            n += 1


def build_db(hkdb, csv_text, folder):
    src = os.path.join(folder, "ref.csv")
    with open(src, "w") as f:
        f.write(HEADER + csv_text)
    subprocess.run([hkdb, "build", src, folder, "--date", "20261101"],
                   check=True, capture_output=True)
    return [open(os.path.join(folder, n), "rb").read()
            for n in ("LEVEL1", "LEVEL2", "BASEDATA")]


def used_parts(l1, l2, bd):
    """The files without their zero padding to whole units."""
    end1 = end2 = 0
    endb = 8
    for r in range(0, len(l1) - 39, 40):
        off, length = struct.unpack(">II", l1[r + 30:r + 38])
        if l1[r:r + 4] == b"\0\0\0\0":
            break
        end1 = r + 40
        end2 = max(end2, off + length)
        pos = off
        while pos < off + length:
            boff, blen = struct.unpack(">II", l2[pos:pos + 8])
            endb = max(endb, boff + blen)
            pos = l2.index(b"\0", pos + 10) + 1
    return l1[:end1 + 40], l2[:end2], bd[:endb]


def database_seeds(hkdb):
    small = [
        "KLN,NATHAN ROAD,TST,00001,CHUNGKING MANSIONS,,,36,,44,COM,36 NATHAN RD\n"
        "KLN,NATHAN ROAD,YMT,00002,,O,,301,,399,STR,301 NATHAN RD\n"
        "HK,QUEEN'S ROAD CENTRAL,CEN,00003,,E,,2,,98,STR,2 QUEEN'S RD C\n",
        "KLN,NATHAN ROAD,TST,00010,GOLDEN PLAZA,,FLOOR/SHOP,1,FLOOR/SHOP,20,COM,GOLDEN PLAZA\n"
        "KLN,NATHAN ROAD,TST,00011,,,,12A,,,STR,12A NATHAN RD\n"
        "NT,A,TMN,00012,SOME BUILDING,,,1,,,,\n",
    ]
    with tempfile.TemporaryDirectory() as tmp:
        for i, text in enumerate(small):
            folder = os.path.join(tmp, str(i))
            os.mkdir(folder)
            l1, l2, bd = used_parts(*build_db(hkdb, text, folder))
            for flags in (0, 1, 3):
                head = bytes([flags]) + struct.pack("<HH", len(l1), len(l2))
                put("reference_db_fuzzer", f"db{i}-{flags}", head + l1 + l2 + bd)
            blocks = bd[8:]
            put("packed_block_fuzzer", f"block{i}", blocks)


def sample_blocks(build):
    db = os.path.join(build, "data", "sample")
    l1, l2, bd = [open(os.path.join(db, n), "rb").read()
                  for n in ("LEVEL1", "LEVEL2", "BASEDATA")]
    pos, k = 0, 0
    while pos + 10 < len(l2) and k < 12:
        boff, blen = struct.unpack(">II", l2[pos:pos + 8])
        if blen == 0:
            break
        if k % 3 == 0:
            put("packed_block_fuzzer", f"sample{k:02d}", bd[boff:boff + blen])
        pos = l2.index(b"\0", pos + 10) + 1
        k += 1


def input_records():
    path = os.path.join(ROOT, "data", "sample", "addresses.csv")
    with open(path, newline="", encoding="latin-1") as f:
        rows = list(csv.reader(f))[1:]
    widths = [(7, 3), (10, 8), (18, 30), (48, 30), (78, 25), (103, 30),
              (133, 30), (163, 30)]
    for i, row in enumerate(rows[:40:2]):
        rec = bytearray(b" " * 200)
        for (off, width), text in zip(widths, row):
            rec[off:off + width] = text.encode("latin-1")[:width].ljust(width)
        unit = row[4].encode("latin-1")
        rec[193:198] = unit[25:30].ljust(5)
        if row[8]:
            rec[199] = ord(row[8][0])
        put("process_record_fuzzer", f"addr{i:02d}", bytes(rec))


def csv_seeds():
    path = os.path.join(ROOT, "data", "sample", "reference.csv")
    lines = open(path, encoding="latin-1").read().splitlines(True)
    put("refdb_build_fuzzer", "sample-head", "".join(lines[:40]).encode("latin-1"))
    put("refdb_build_fuzzer", "quoted", (HEADER + '"KLN","NATHAN ROAD",TST,1,"A ""B"" C",,,1,,,,\n').encode())
    put("refdb_build_fuzzer", "too-wide", (HEADER + "KLN," + "X" * 31 + ",,,,,,,,,,\n").encode())
    put("refdb_build_fuzzer", "open-quote", (HEADER + 'KLN,"NATHAN\n').encode())


def geocode_input_seeds():
    # First byte even: CSV input; odd: raw 200-byte records.
    target = "geocode_input_fuzzer"
    sample = os.path.join(ROOT, "data", "sample", "addresses.csv")
    golden = os.path.join(ROOT, "tests", "tools", "golden", "hkgeocode_in.csv")
    head = "".join(open(sample, encoding="latin-1").readlines()[:20])
    put(target, "csv-sample", b"\0" + head.encode("latin-1"))
    put(target, "csv-golden", b"\0" + open(golden, "rb").read())
    columns = "refcode,premno,street,building,unit,extra,district,region,mode\n"
    put(target, "csv-quotes", b"\0" + (columns + ',"12",QUEEN\'S ROAD,"A ""B"" HOUSE",'
        '12/F FLAT A BLOCK 3 TOWER 2 XX,,CENTRAL,HK,3\n').encode())
    put(target, "csv-bad-header", b"\0refcode,premno,street\n1,2,3\n")
    rec = bytearray(b" " * 200)
    rec[10:21] = b"NATHAN ROAD"
    put(target, "fixed", b"\1" + bytes(rec) * 2 + b"\1\2" + bytes(rec[:50]))


def line_splitter_seeds():
    # First byte: bit 0 geocode, bit 1 with the database's names, bit 2
    # memory mode; the rest is the line.
    target = "line_splitter_fuzzer"
    sample = os.path.join(ROOT, "data", "sample", "addresses.csv")
    with open(sample, encoding="latin-1", newline="") as f:
        rows = list(csv.reader(f))[1:25]
    lines = []
    for r in rows:
        street = " ".join(p for p in (r[1], r[2]) if p)
        lines.append(", ".join(p for p in (r[4], r[3], street, r[6], r[7]) if p))
    lines += [
        "Flat B, 12/F, Block 3, Sunshine Garden, 28 Nathan Rd, TST, Kowloon",
        "Rm 1203 Times Sq 1 Matheson St Causeway Bay HK",
        "No. 28A Nathan Rd., Tower 2, 12th Floor, Tsim Sha Tsui, Hong Kong SAR",
        "UG/F, Unit 3, Phase 1, East Wing, 5 Tai Po Road, Sha Tin, N.T.",
        "LG1 11 Connaught Rd Central HK",
        "22 Castle Peak Road",
        "\uff12\uff12 Castle Peak Road, Kowloon",
        "28 \u5f4c\u6566\u9053",
        "",
        " , ; .",
        "A " * 101,
    ]
    for i, line in enumerate(lines):
        put(target, f"line{i:02d}", bytes([i % 8]) + line.encode("utf-8"))


def main():
    build = sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, "build", "release")
    hkdb = os.path.join(build, "bin", "hkdb")
    premise_seeds()
    mapping_seeds()
    compare_seeds()
    database_seeds(hkdb)
    sample_blocks(build)
    input_records()
    csv_seeds()
    geocode_input_seeds()
    line_splitter_seeds()


if __name__ == "__main__":
    main()
