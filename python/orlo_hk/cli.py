"""python3 -m orlo_hk geocode: a CSV file of addresses geocoded on a Dask
cluster, written in input order with hkgeocode's columns."""
import argparse
import itertools
import logging
import os
import sys
import time
import warnings

from .frame import HEADER, OUTPUT_HEADER, Totals
from .records import meaning

PROG = "python3 -m orlo_hk"
EXIT_OK, EXIT_BAD_ROWS, EXIT_USAGE, EXIT_NO_DATABASE, EXIT_FAILED_ROWS = \
    0, 1, 2, 3, 4

DESCRIPTION = """\
Geocodes a CSV file of Hong Kong addresses on a Dask cluster and writes
each input row with the matcher's result, in input order.

  %(prog)s geocode [--scheduler ADDRESS|local] --db DIR [--workers N]
      [--memory] [--partition-rows N] [--quiet] IN.csv OUT.csv

IN.csv has the header refcode,premno,street,building,unit,extra,district,
region,mode, as hkgeocode reads it; the fields are tidied as hkgeocode
tidies them (case, blanks, full-width letters, the region from its
spelling or the district). OUT.csv ('-' for standard output) is what
`hkgeocode --threads 1` writes for the same input, byte for byte: the
input columns as read, then return_code, return_meaning, match_status,
match_meaning, out_premno, out_street, out_building, out_unit,
out_district, out_region, line1, line2, ref_code, ref_id, area_changed,
street_changed, premise_changed, ref_line, grade, building_source
(`hkgeocode --help` explains each one and every code).

The input is read here, in partitions of whole rows, and each partition
is geocoded on a worker, with one geocoder instance per worker process,
opened once and reused for every partition it takes. A worker that dies
has its partitions geocoded again elsewhere: every row is written once.
Bad rows are written with return code E and the reason, as hkgeocode
writes them; malformed CSV (a quote left open, a quote inside an
unquoted field) makes its row bad and ends its partition, where hkgeocode
ends the whole input.

Options:
  --scheduler ADDRESS  a running scheduler (tcp://host:8786); 'local' (the
                       default) starts a cluster on this machine
  --db DIR             the reference database folder (LEVEL1, LEVEL2,
                       BASEDATA); every worker needs it at this path
  --workers N          worker processes of the local cluster (default: the
                       number of cores); with --scheduler, wait until the
                       cluster has N workers before starting (default 1)
  --memory             hold LEVEL2 and BASEDATA in memory on each worker
  --partition-rows N   lines per partition (default 10000), and the lines
                       that finish a row left open by a quoted line end
  --quiet              no progress line
  --help               this text

Before any row is sent, every worker is asked for the size of each
reference file and the date record of BASEDATA; the run stops when a
worker cannot read them or the workers see different files.

Progress goes to standard error (with the dashboard's address when the
scheduler has one), then a summary as hkgeocode writes it; bad rows are
reported there with their line.

Exit status: 0 every row processed; 1 some rows were bad (return code E);
2 wrong usage, or a file or scheduler that cannot be used; 3 the reference
database cannot be opened, or differs between workers; 4 some rows failed
in the matcher (damaged reference data, out of memory) or a partition
could not be geocoded.
"""


class Failure(Exception):
    """Ends the command with a message and an exit status."""

    def __init__(self, status, message):
        super().__init__(message)
        self.status = status


def say(message):
    print(f"orlo_hk geocode: {message}", file=sys.stderr, flush=True)


class _Parser(argparse.ArgumentParser):
    """--help prints the usage line and the description, which lists every
    option, and nothing argparse would add."""

    def format_help(self):
        return f"usage: {self.usage}\n\n{self.description}"


def parse(argv):
    p = _Parser(
        prog=PROG, description=DESCRIPTION % {"prog": PROG},
        formatter_class=argparse.RawDescriptionHelpFormatter, add_help=True,
        usage=f"{PROG} geocode [OPTIONS] IN.csv OUT.csv")
    sub = p.add_subparsers(dest="command", metavar="geocode",
                           parser_class=_Parser)
    g = sub.add_parser("geocode", prog=f"{PROG} geocode",
                       description=DESCRIPTION % {"prog": PROG},
                       formatter_class=argparse.RawDescriptionHelpFormatter,
                       usage=f"{PROG} geocode [OPTIONS] IN.csv OUT.csv")
    g.add_argument("--scheduler", default="local")
    g.add_argument("--db", required=True)
    g.add_argument("--workers", type=_positive)
    g.add_argument("--memory", action="store_true")
    g.add_argument("--partition-rows", type=_positive, default=10000)
    g.add_argument("--quiet", action="store_true")
    g.add_argument("input", metavar="IN.csv")
    g.add_argument("output", metavar="OUT.csv")
    args = p.parse_args(argv)
    if args.command is None:
        p.print_usage(sys.stderr)
        print(f"{PROG}: error: name the command: geocode (see --help)",
              file=sys.stderr)
        sys.exit(EXIT_USAGE)
    return args


def _positive(text):
    try:
        n = int(text)
    except ValueError:
        n = 0
    if n < 1:
        raise argparse.ArgumentTypeError(f"not a positive number: {text!r}")
    return n


# ---- the input, in partitions of whole CSV rows -------------------------

UTF8_BOM = b"\xef\xbb\xbf"


def read_header(f, name):
    line = f.readline()
    header = line[len(UTF8_BOM):] if line.startswith(UTF8_BOM) else line
    if not line:
        raise Failure(EXIT_USAGE, f"{name}: empty input: the header line is "
                      "missing")
    if header.rstrip(b"\r\n") != HEADER.encode():
        raise Failure(EXIT_USAGE, f"{name}: line 1: expected the header "
                      f"{HEADER}")


def partitions(f, rows_each):
    """(first line number, bytes of whole CSV rows) after the header: each
    partition rows_each lines, and the lines that finish a row whose quoted
    field goes on past the last of them (a row ends at a line end outside
    quotes). The lines are taken as a block: quotes come in pairs in whole
    rows, so an odd count means the last row is still open."""
    line_no = 2
    while True:
        lines = list(itertools.islice(f, rows_each))
        if not lines:
            return
        data = b"".join(lines)
        if data.count(b'"') % 2:
            for line in f:
                lines.append(line)
                if line.count(b'"') % 2:
                    break  # the quote that closes the open field
            data = b"".join(lines)
        yield line_no, data
        line_no += len(lines)


# ---- the cluster ----------------------------------------------------------

# Settings of the local cluster, which the workers take from this process.
# Partitions go between processes of one machine, so compressing them
# costs CPU and saves nothing. Dask's sampling profiler (100 stack samples
# a second in each worker, shown by the dashboard) and its event loop and
# system checks cost an idle cluster about a tenth of a core; fewer of
# them leave that to the geocoding.
LOCAL_CLUSTER_CONFIG = {
    "distributed.comm.compression": None,
    "distributed.worker.profile.enabled": False,
    "distributed.admin.tick.interval": "1s",
    "distributed.admin.system-monitor.interval": "2s",
}


def connect(args):
    """The client, and the local cluster when one was started."""
    from distributed import Client, LocalCluster
    logging.getLogger("distributed").setLevel(logging.ERROR)
    warnings.filterwarnings("ignore", module="distributed")
    if args.scheduler == "local":
        import dask
        dask.config.set(LOCAL_CLUSTER_CONFIG)
        # The dashboard goes on any free port, so that runs side by side do
        # not fight over the usual one.
        cluster = LocalCluster(n_workers=args.workers or os.cpu_count() or 1,
                               threads_per_worker=1, processes=True,
                               dashboard_address=":0",
                               silence_logs=logging.ERROR)
        return Client(cluster), cluster
    try:
        client = Client(args.scheduler, timeout=30)
    except (OSError, TimeoutError) as e:
        raise Failure(EXIT_USAGE, f"cannot reach the scheduler at "
                      f"{args.scheduler}: {e}") from None
    try:
        client.wait_for_workers(args.workers or 1, timeout=120)
    except TimeoutError:
        client.close()
        raise Failure(EXIT_USAGE, f"the scheduler at {args.scheduler} has "
                      f"fewer than {args.workers or 1} workers") from None
    return client, None


def check_database(client, args):
    from .cluster import DatabaseMismatch, check_workers, open_on_workers
    try:
        check_workers(client, args.db)
    except DatabaseMismatch as e:
        raise Failure(EXIT_NO_DATABASE, str(e)) from None
    failed = {w: why for w, why in open_on_workers(client, args.db,
                                                    args.memory).items()
              if why is not None}
    if failed:
        worker, why = sorted(failed.items())[0]
        raise Failure(EXIT_NO_DATABASE, f"worker {worker}: {why}")


# ---- progress and summary -------------------------------------------------

class Progress:
    """A line on standard error, redrawn at most four times a second, when
    standard error is a terminal."""

    def __init__(self, wanted, total_bytes):
        self.enabled = wanted and sys.stderr.isatty()
        self.total = total_bytes
        self.start = time.monotonic()
        self.last = 0.0
        self.shown = False

    def update(self, records, done_bytes):
        now = time.monotonic()
        if not self.enabled or (self.shown and now - self.last < 0.25):
            return
        self.last = now
        seconds = now - self.start
        line = f"\rorlo_hk geocode: {records} records, " \
               f"{records / seconds if seconds else 0:.0f}/s"
        if self.total and 0 < done_bytes <= self.total:
            share = done_bytes / self.total
            left = int(seconds / share - seconds + 0.5)
            line += f", {share * 100:3.0f}%, {left // 3600}:" \
                    f"{left // 60 % 60:02d}:{left % 60:02d} left"
        sys.stderr.write(line + "\033[K")
        sys.stderr.flush()
        self.shown = True

    def finish(self):
        if self.shown:
            sys.stderr.write("\r\033[K")
            self.shown = False


def summary(t, seconds):
    lines = [f"orlo_hk geocode: {t.read} records read, {t.processed} "
             f"processed, {t.matched} matched (match status '0'), {t.bad} bad"]
    for title, counts, kind in (("match status", t.by_status, "M"),
                                ("return code", t.by_code, "R")):
        lines.append(f"  {title}:")
        for code in sorted(counts, key=lambda c: c.encode("latin-1")):
            code_char = code or " "
            lines.append(f"    {counts[code]:12d}  '{code_char}' "
                         f"{meaning(kind, code_char)}")
    rate = t.processed / seconds if seconds > 0 else 0
    lines.append(f"  elapsed {seconds:.2f} s, {rate:.0f} records per second")
    return "\n".join(lines)


def failure_lines(t):
    """One line for each failure code that rows got."""
    return [f"{n} of {t.processed} records failed with return code "
            f"'{code}': {meaning('R', code)}"
            for code, n in sorted(t.by_code.items()) if code not in "01"]


# ---- the run --------------------------------------------------------------

def geocode_file(client, args, source, out, progress):
    """Submits the partitions, at most a few per worker ahead of the one
    being written, and writes each one's rows in input order."""
    from .cluster import geocode_csv_partition
    totals = Totals()
    window = 4 * max(1, len(client.scheduler_info()["workers"]))
    pending = []

    def write_oldest():
        future = pending.pop(0)
        try:
            data, part_totals, bad = future.result()
        except Exception as e:  # a partition that cannot be geocoded
            raise Failure(EXIT_FAILED_ROWS, f"a partition could not be "
                          f"geocoded: {type(e).__name__}: {e}") from None
        future.release()
        out.write(data)
        totals.merge(part_totals)
        if bad:
            progress.finish()  # the messages start on a line of their own
        for line, reason in bad:
            say(f"{args.input}:{line}: {reason}")
        progress.update(totals.read, source.tell())

    for first_line, data in partitions(source, args.partition_rows):
        pending.append(client.submit(geocode_csv_partition, args.db,
                                     args.memory, data, first_line,
                                     pure=False))
        if len(pending) >= window:
            write_oldest()
    while pending:
        write_oldest()
    return totals


def _scheduler_has_dashboard():
    import importlib.util
    return importlib.util.find_spec("bokeh") is not None


def announce(client, cluster, args):
    """The workers, and the dashboard where the scheduler serves one (it
    needs bokeh; without it the progress line here is all there is)."""
    if args.quiet:
        return
    workers = len(client.scheduler_info()["workers"])
    where = "a local cluster" if cluster is not None else args.scheduler
    try:
        dashboard = client.run_on_scheduler(_scheduler_has_dashboard)
    except Exception:  # an older scheduler that refuses the question
        dashboard = False
    say(f"{workers} workers on {where}; " +
        (f"dashboard {client.dashboard_link}" if dashboard else
         "no dashboard (the scheduler lacks bokeh)"))


def run(args):
    start = time.monotonic()
    try:
        source = open(args.input, "rb")
    except OSError as e:
        raise Failure(EXIT_USAGE, f"cannot open {args.input}: {e.strerror}")
    with source:
        read_header(source, args.input)
        client, cluster = connect(args)
        out = None
        try:
            check_database(client, args)
            announce(client, cluster, args)
            try:
                out = sys.stdout.buffer if args.output == "-" else \
                    open(args.output, "wb")
            except OSError as e:
                raise Failure(EXIT_USAGE, f"cannot create {args.output}: "
                              f"{e.strerror}") from None
            out.write(OUTPUT_HEADER.encode())
            progress = Progress(not args.quiet,
                                os.fstat(source.fileno()).st_size)
            totals = geocode_file(client, args, source, out, progress)
            progress.finish()
        finally:
            if out is not None and out is not sys.stdout.buffer:
                out.close()
            client.close()
            if cluster is not None:
                cluster.close()
    print(summary(totals, time.monotonic() - start), file=sys.stderr)
    failures = failure_lines(totals)
    for line in failures:
        say(line)
    if failures:
        return EXIT_FAILED_ROWS
    return EXIT_BAD_ROWS if totals.bad else EXIT_OK


def main(argv=None):
    args = parse(sys.argv[1:] if argv is None else argv)
    try:
        return run(args)
    except Failure as e:
        say(str(e))
        return e.status
