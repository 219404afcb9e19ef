#!/usr/bin/env python3
"""Prints the summary of a performance suite run (bench/run_suite.sh).

Usage: bench/summarise_suite.py OUT_DIR ADDRESSES
Reads street.json, search.json and call.json (Google Benchmark),
differential.txt, jni.txt and hkgeocode.txt from OUT_DIR; checks the suite's
targets (street comparison and search rates, the prepared comparison's
checksum equal to m_street's, no difference from the plain street
comparison, the reference store's opens and memory, the JNI overhead,
hkgeocode's rate and scaling) and says which hold.
"""
import json
import os
import re
import sys

MIXES = ["exact", "fuzzy", "realistic", "region blank"]


def load(path):
    with open(path) as f:
        return {b["name"]: b for b in json.load(f)["benchmarks"]}


def per_second(b):
    return b.get("items_per_second", 0.0)


def process_rate(call, memory, mix, threads):
    name = f"BM_Process/memory:{memory}/mix:{mix}/real_time/threads:{threads}"
    return per_second(call[name])


def street_lines(street, checks):
    rows = [("BM_StreetMatcherPattern", "m_street, input from the cache (hit)", 4e6),
            ("BM_StreetFreshPairs", "m_street, fresh pairs (miss)", 3e6),
            ("BM_StreetPrepared", "prepared, one input / 10,000 names", 10e6),
            ("BM_StreetPreparedPairsUnprepared", "the same pairs through m_street", None)]
    lines = []
    for name, label, target in rows:
        b = street[name]
        rate = per_second_of_pairs(b)
        lines.append(f"{label + ':':<42}{rate / 1e6:6.2f} M comparisons/s"
                     f"  (checksum {b.get('checksum', 0):.0f})")
        if target:
            checks.append((f"{label} >= {target / 1e6:.0f} M/s", rate >= target))
    checks.append(("prepared checksum equals m_street's",
                   street["BM_StreetPrepared"].get("checksum") ==
                   street["BM_StreetPreparedPairsUnprepared"].get("checksum")))
    return lines


def differential_lines(out_dir, checks):
    text = open(os.path.join(out_dir, "differential.txt")).read()
    ok = "FAILED" not in text and "PASSED" in text
    checks.append(("street comparison equals its plain form", ok))
    return [f"street comparison against its plain form: {'no difference' if ok else 'DIFFERS'}"]


def per_second_of_pairs(b):
    # Items are comparisons; fall back on the time of one iteration.
    if "items_per_second" in b:
        return b["items_per_second"]
    return 1e9 / b["cpu_time"] if b.get("time_unit") == "ns" else 0.0


def process_lines(call, checks):
    lines = ['hk_mtci "P", records per second (real time, all threads together):',
             f"  {'mix':<13}{'mode':<8}{'1 thread':>10}{'2 threads':>11}{'ratio':>7}"]
    for mix, label in enumerate(MIXES):
        rates = {}
        for memory, mode in ((0, "file"), (1, "memory")):
            one = process_rate(call, memory, mix, 1)
            two = process_rate(call, memory, mix, 2)
            rates[memory] = one
            ratio = two / one if one else 0.0
            lines.append(f"  {label:<13}{mode:<8}{one:>10,.0f}{two:>11,.0f}{ratio:>7.2f}")
            if mix != 3:
                checks.append((f"2 threads >= 1.8 x 1 thread ({label}, {mode})",
                               ratio >= 1.8))
        if mix != 3:
            checks.append((f"memory mode not slower than file mode, 5 % noise allowed ({label})",
                           rates[1] >= 0.95 * rates[0]))
    return lines


SEARCH_MIXES = ["exact", "fuzzy", "realistic"]


def search_lines(search, checks):
    lines = ["hk_pad + hk_mpro, records per second of CPU time:",
             f"  {'mix':<11}{'mode':<8}{'random':>10}{'sorted':>10}{'ratio':>7}"]
    for mix, label in enumerate(SEARCH_MIXES):
        for memory, mode in ((0, "file"), (1, "memory")):
            rand = per_second(search[f"BM_Search/memory:{memory}/mix:{mix}/sorted:0"])
            sort = per_second(search[f"BM_Search/memory:{memory}/mix:{mix}/sorted:1"])
            ratio = rand / sort if sort else 0.0
            lines.append(f"  {label:<11}{mode:<8}{rand:>10,.0f}{sort:>10,.0f}{ratio:>7.2f}")
            checks.append((f"random order >= 0.8 x sorted ({label}, {mode})", ratio >= 0.8))
    for sorted_, label, target in ((0, "random", 20000), (1, "sorted", 30000)):
        rate = per_second(search[f"BM_Search/memory:0/mix:1/sorted:{sorted_}"])
        checks.append((f"fuzzy search, {label} order >= {target:,} records/s (file mode)",
                       rate >= target))
    exact = per_second(search["BM_Search/memory:1/mix:0/sorted:0"])
    real = per_second(search["BM_Search/memory:1/mix:2/sorted:0"])
    checks.append(("search exact, random order >= 300,000 /s (memory mode)", exact >= 3e5))
    checks.append(("search realistic, random order >= 100,000 /s (memory mode)",
                   real >= 1e5))
    return lines


def store_lines(call, checks):
    lines = []
    for memory, mode in ((0, "file"), (1, "memory")):
        shared = call[f"BM_OpenShared/memory:{memory}"]
        ms = shared["real_time"] * {"ns": 1e-6, "us": 1e-3, "ms": 1}[shared["time_unit"]]
        many = call[f"BM_ManyInstances/memory:{memory}/iterations:1"]
        lines.append(f"second open, {mode} mode: {ms:.3f} ms; 200 instances after 1,000 "
                     f"records each: {many['rss_added_MB']:.0f} MB resident added, "
                     f"{many['rss_total_MB']:.0f} MB in all")
        checks.append((f"second open <= 1 ms ({mode})", ms <= 1.0))
        limit = 1024 if memory else 256
        checks.append((f"200 instances <= {limit} MB resident ({mode})",
                       many["rss_total_MB"] <= limit))
    return lines


def instance_lines(call):
    lines = []
    for memory, mode in ((0, "file"), (1, "memory")):
        opened = call[f"BM_Open/memory:{memory}"]
        warm = call[f"BM_InstanceMemory/memory:{memory}/iterations:1"]
        unit = opened["time_unit"]
        lines.append(f"open + close, {mode} mode: {opened['real_time']:.3f} {unit}; heap "
                     f"{opened['heap_MB']:.2f} MB when open, {warm['heap_MB']:.2f} MB after "
                     f"a batch of realistic records")
    return lines


def jni_lines(call, out_dir, checks):
    text = open(os.path.join(out_dir, "jni.txt")).read()
    lines = []
    for memory, mode in ((0, "file"), (1, "memory")):
        m = re.search(rf"{mode} mode, region blank: (\d+) ns", text)
        if not m:
            continue
        java_ns = float(m.group(1))
        c = call[f"BM_Process/memory:{memory}/mix:3/real_time/threads:1"]
        c_ns = c["cpu_time"] * {"ns": 1, "us": 1e3, "ms": 1e6}[c["time_unit"]]
        lines.append(f"JNI, {mode} mode, region-blank call: Java {java_ns:,.0f} ns, "
                     f"C {c_ns:,.0f} ns: overhead {java_ns - c_ns:,.0f} ns a call")
        checks.append((f"JNI overhead <= 500 ns a call ({mode})", java_ns - c_ns <= 500))
    lines += ["  " + l for l in text.splitlines() if "exact" in l]
    return lines


def hkgeocode_lines(out_dir, addresses, checks):
    lines = [f"hkgeocode, {addresses} generated addresses:"]
    rates = {}
    for line in open(os.path.join(out_dir, "hkgeocode.txt")):
        m = re.match(r"threads=(\d+) options='(.*)' elapsed=([\d.]+) peak_kb=(\d+)", line)
        if not m:
            continue
        threads, options, elapsed, peak = m.groups()
        mode = "memory" if "M" in options else "file"
        rate = int(addresses) / max(float(elapsed), 1e-3)
        rates[(threads, mode)] = rate
        lines.append(f"  {threads} worker(s), {mode:<6} mode: {float(elapsed):7.1f} s, "
                     f"{rate:>9,.0f} records/s, peak RSS {int(peak) / 1024:.1f} MB")
    for mode in ("file", "memory"):
        one, two = rates.get(("1", mode), 0), rates.get(("2", mode), 0)
        checks.append((f"hkgeocode 1 worker >= 100,000 records/s ({mode})", one >= 1e5))
        checks.append((f"hkgeocode 2 workers >= 1.9 x 1 worker ({mode})",
                       one > 0 and two / one >= 1.9))
    return lines


def main():
    out_dir, addresses = sys.argv[1], sys.argv[2]
    street = load(os.path.join(out_dir, "street.json"))
    search = load(os.path.join(out_dir, "search.json"))
    call = load(os.path.join(out_dir, "call.json"))
    checks = []
    sections = [street_lines(street, checks), differential_lines(out_dir, checks),
                search_lines(search, checks), process_lines(call, checks),
                instance_lines(call), store_lines(call, checks),
                jni_lines(call, out_dir, checks), hkgeocode_lines(out_dir, addresses, checks)]
    for s in sections:
        print("\n".join(s))
        print()
    print("Targets:")
    for what, ok in checks:
        print(f"  {'met    ' if ok else 'NOT MET'}  {what}")


if __name__ == "__main__":
    main()
