#!/usr/bin/env python3
"""Speed of the Python package against hkgeocode, and of the Dask batch run
on 1 and 2 workers, with checksums that show the results are the same.

  bench/python_bench.py many --build DIR --db DIR --addresses CSV [--count N]
      hkgeocode --threads 1 (CSV, and raw records with --fixed) against
      Geocoder.geocode_many on raw records and on named fields, and
      geocode_frame, on the first N addresses (default 50,000), one thread
      each, in elapsed and CPU time (the CPU time is the fairer figure on a
      shared machine), the best of --rounds rounds (default 3); every
      Python result is checked against hkgeocode's.
  bench/python_bench.py cluster --db DIR --addresses CSV [--workers 1,2]
      [--partition-rows N]
      the batch command's run on a local cluster of each number of workers:
      start-up, the geocoding itself, records per second, and the output's
      SHA-256 (that of hkgeocode's output for the same input); then the cost of one partition, from 20,000 rows that need
      no search sent in partitions of 20,000 and of 200 rows.

Run with Debian's python3, the package on PYTHONPATH (python/) and
ORLO_HK_LIBRARY naming the library of the same build."""
import argparse
import hashlib
import os
import resource
import subprocess
import sys
import tempfile
import time


def many(args):
    import pandas as pd
    import orlo_hk
    from orlo_hk.frame import geocode_csv
    tmp = tempfile.mkdtemp(prefix="orlo-pybench-")
    sample = os.path.join(tmp, "addresses.csv")
    with open(args.addresses, "rb") as f, open(sample, "wb") as out:
        for i, line in enumerate(f):
            if i > args.count:
                break
            out.write(line)
    hkgeocode = os.path.join(args.build, "bin", "hkgeocode")

    def timed_tool(extra, input_path, output_path):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        start = time.perf_counter()
        subprocess.run([hkgeocode, "--quiet", "--threads", "1", "--db",
                        args.db, "--out", output_path, *extra, input_path],
                       check=False, stderr=subprocess.DEVNULL)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        cpu = (after.ru_utime + after.ru_stime) - \
            (before.ru_utime + before.ru_stime)
        return time.perf_counter() - start, cpu

    frame = pd.read_csv(sample, dtype=str, keep_default_na=False)
    rows = frame.to_dict("records")
    n = len(rows)
    with orlo_hk.Geocoder(args.db) as g:
        records = [g.input_record(r) for r in rows]  # not timed
    fixed_in = os.path.join(tmp, "records.bin")
    with open(fixed_in, "wb") as f:
        f.write(b"".join(records))
    csv_out, fixed_out = (os.path.join(tmp, x) for x in ("out.csv",
                                                           "out.bin"))
    with open(sample, "rb") as f:
        f.readline()
        body = f.read()

    # Each Python measurement on an instance of its own, opened and closed
    # inside it, so that none finds what an earlier one prepared in the
    # store; each checked against hkgeocode's output.
    def python(work, check):
        def run():
            start, cpu = time.perf_counter(), time.process_time()
            with orlo_hk.Geocoder(args.db) as g:
                result = work(g)
            seconds = time.perf_counter() - start, time.process_time() - cpu
            assert check(result), "results differ from hkgeocode"
            return seconds
        return run

    def want():
        with open(fixed_out, "rb") as f:
            return f.read()

    def want_frame():
        return pd.read_csv(csv_out, dtype=str, keep_default_na=False)

    def want_csv():
        with open(csv_out, "rb") as f:
            return f.read().split(b"\n", 1)[1]

    measures = [
        ("hkgeocode --threads 1 (CSV)",
         lambda: timed_tool([], sample, csv_out)),
        ("hkgeocode --threads 1 --fixed",
         lambda: timed_tool(["--fixed"], fixed_in, fixed_out)),
        ("geocode_many, raw 200-byte records",
         python(lambda g: g.geocode_many(records),
                lambda r: b"".join(x.record for x in r) == want())),
        ("geocode_many, named fields (tidied)",
         python(lambda g: g.geocode_many(rows),
                lambda r: b"".join(x.record for x in r) == want())),
        ("geocode_frame (DataFrame in and out)",
         python(lambda g: orlo_hk.frame.geocode_with(g, frame),
                lambda r: r.equals(want_frame()))),
        ("geocode_csv (the batch command's partition work)",
         python(lambda g: geocode_csv(g, body, 2)[0],
                lambda r: r == want_csv())),
    ]
    # Rounds of every measurement in turn, so that a burst of load on the
    # shared machine hits one round and not one measurement; the round with
    # the least CPU time of each is kept.
    best = {}
    for _ in range(args.rounds):
        for what, run in measures:
            seconds = run()
            if what not in best or seconds[1] < best[what][1]:
                best[what] = seconds
    figures = [(what, best[what]) for what, _ in measures]
    want = want()
    print(f"{n} addresses from {args.addresses}, database {args.db}")
    print(f"results checked against hkgeocode; output SHA-256 "
          f"{hashlib.sha256(want).hexdigest()[:16]}")
    print(f"  {'':50s} {'elapsed':>9s} {'CPU':>9s} {'records/s':>9s} "
          f"{'of CPU':>9s} {'x hkgeocode':>11s}")
    base = figures[0][1][1]
    for what, (seconds, cpu) in figures:
        print(f"  {what:50s} {seconds:8.2f}s {cpu:8.2f}s {n / seconds:9.0f} "
              f"{n / cpu:9.0f} {base / cpu:11.2f}")


def _cpu_seconds():
    r = resource.getrusage(resource.RUSAGE_SELF)
    return r.ru_utime + r.ru_stime


def cluster_run(db, path, workers, partition_rows):
    """(start-up seconds, geocoding seconds, SHA-256 of the output, Totals,
    CPU seconds of the workers and of this process while geocoding) of one
    run of the batch command's steps on a local cluster."""
    from orlo_hk import cli
    from orlo_hk.frame import OUTPUT_HEADER
    out_path = path + f".out{workers}"
    args = cli.parse(["geocode", "--quiet", "--db", db, "--workers",
                      str(workers), "--partition-rows", str(partition_rows),
                      path, out_path])
    start = time.perf_counter()
    client, cluster = cli.connect(args)
    try:
        cli.check_database(client, args)
        ready = time.perf_counter()
        worker_cpu = sum(client.run(_cpu_seconds).values())
        own_cpu = time.process_time()
        with open(path, "rb") as source, open(out_path, "wb") as out:
            cli.read_header(source, path)
            out.write(OUTPUT_HEADER.encode())
            totals = cli.geocode_file(client, args, source, out,
                                      cli.Progress(False, 0))
        done = time.perf_counter()
        own_cpu = time.process_time() - own_cpu
        worker_cpu = sum(client.run(_cpu_seconds).values()) - worker_cpu
    finally:
        client.close()
        cluster.close()
    with open(out_path, "rb") as f:
        digest = hashlib.sha256(f.read()).hexdigest()[:16]
    os.remove(out_path)
    return ready - start, done - ready, digest, totals, (worker_cpu, own_cpu)


def cluster(args):
    counts = [int(w) for w in args.workers.split(",")]
    print(f"addresses {args.addresses}, database {args.db}, partitions of "
          f"{args.partition_rows} rows")
    runs = {}
    for w in counts:
        startup, seconds, digest, totals, (wcpu, cpu) = cluster_run(
            args.db, args.addresses, w, args.partition_rows)
        runs[w] = seconds
        print(f"  {w} worker(s): start-up {startup:5.1f} s, geocoding "
              f"{seconds:7.1f} s, {totals.read / seconds:7.0f} records/s, "
              f"{totals.read} rows, output SHA-256 {digest}; CPU: workers "
              f"{wcpu:.1f} s ({wcpu / seconds / w:.2f} of a core each), "
              f"this process {cpu:.1f} s")
    if len(runs) > 1:
        print(f"  speed-up of {max(runs)} workers over {min(runs)}: "
              f"{runs[min(runs)] / runs[max(runs)]:.2f}")
    # Rows without a region and district: the search stops at once, so what
    # is left is the per-row work in Python and the cost of the partitions.
    tmp = tempfile.mkdtemp(prefix="orlo-pybench-")
    empty = os.path.join(tmp, "no-search.csv")
    with open(empty, "w") as f:
        f.write("refcode,premno,street,building,unit,extra,district,region,"
                "mode\n" + ",1,NO SUCH STREET,,,,,,\n" * 20000)
    times = {}
    for rows in (20000, 200):
        times[rows] = cluster_run(args.db, empty, 1, rows)[1]
    per_partition = (times[200] - times[20000]) / (20000 // 200 - 1)
    print(f"  per partition: 20,000 no-search rows in 1 partition "
          f"{times[20000]:.2f} s, in 100 partitions {times[200]:.2f} s: "
          f"{per_partition * 1000:.1f} ms a partition, "
          f"{times[20000] / 20000 * 1e6:.1f} µs a row")


def main():
    p = argparse.ArgumentParser(description=__doc__,
                                formatter_class=argparse.RawTextHelpFormatter)
    sub = p.add_subparsers(dest="what", required=True)
    m = sub.add_parser("many")
    m.add_argument("--build", required=True)
    m.add_argument("--db", required=True)
    m.add_argument("--addresses", required=True)
    m.add_argument("--count", type=int, default=50000)
    m.add_argument("--rounds", type=int, default=3)
    c = sub.add_parser("cluster")
    c.add_argument("--db", required=True)
    c.add_argument("--addresses", required=True)
    c.add_argument("--workers", default="1,2")
    c.add_argument("--partition-rows", type=int, default=10000)
    args = p.parse_args()
    (many if args.what == "many" else cluster)(args)


if __name__ == "__main__":
    sys.exit(main())
