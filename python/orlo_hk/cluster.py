"""Geocoding on a Dask cluster: one geocoder instance per worker process,
opened on first use and reused for every partition that process geocodes;
the check that every worker sees the same reference files; Dask DataFrames
geocoded partition by partition."""
import os
import threading

from .frame import geocode_csv, geocode_with
from .records import RESULT_NAMES, SPLIT_NAMES
from .geocoder import Geocoder

DATABASE_FILES = ("LEVEL1", "LEVEL2", "BASEDATA")
DATE_RECORD_SIZE = 8

# The instances of this process by (database folder, memory mode), each
# with the lock that keeps its calls one at a time when a worker runs
# several threads, and the number of opens made (for the tests).
_instances = {}
_instances_lock = threading.Lock()
opens = 0


def worker_geocoder(db_dir, memory=False):
    """The instance of this process on db_dir, opened on the first call and
    reused after; with the lock its calls must hold."""
    global opens
    key = (db_dir, bool(memory))
    with _instances_lock:
        entry = _instances.get(key)
        if entry is None:
            entry = (Geocoder(db_dir, memory=memory), threading.Lock())
            _instances[key] = entry
            opens += 1
        return entry


def open_count():
    """Opens made in this process (run on the workers by the tests)."""
    return opens


def geocode_csv_partition(db_dir, memory, data, first_line):
    """geocode_csv on this worker's instance: the output lines, Totals and
    bad rows of one partition of CSV rows."""
    geocoder, lock = worker_geocoder(db_dir, memory)
    with lock:
        return geocode_csv(geocoder, data, first_line)


def _geocode_frame_partition(df, db_dir, memory, columns, line_column):
    geocoder, lock = worker_geocoder(db_dir, memory)
    with lock:
        return geocode_with(geocoder, df, columns, line_column)


def geocode_dask(ddf, db_dir, columns=None, memory=False, line_column=None):
    """geocode_frame over a Dask DataFrame: a lazy Dask DataFrame with the
    result columns added, each partition geocoded on the worker that holds
    it with that worker process's instance. Every worker needs the
    reference files at db_dir (see check_workers)."""
    import pandas as pd
    # Bad names are refused now, on the empty frame, not on the workers.
    meta = geocode_with(_NoGeocoder(), ddf._meta, columns, line_column)
    for name in meta.columns[len(ddf.columns):]:
        meta[name] = pd.Series(dtype=object)
    return ddf.map_partitions(_geocode_frame_partition, db_dir, memory,
                              columns, line_column, meta=meta)


class _NoGeocoder:
    """Stands for a Geocoder on an empty frame: it is never asked to
    geocode anything."""

    def _match(self, items):
        return []

    def geocode_lines(self, lines):
        return []


def database_view(db_dir):
    """What this process sees at db_dir: the size of each reference file and
    the date record at the start of BASEDATA; or {"error": why}."""
    view = {}
    for name in DATABASE_FILES:
        path = os.path.join(db_dir, name)
        try:
            view[name] = os.stat(path).st_size
        except OSError as e:
            return {"error": f"{path}: {e.strerror}"}
    try:
        with open(os.path.join(db_dir, "BASEDATA"), "rb") as f:
            view["date"] = f.read(DATE_RECORD_SIZE).decode("latin-1")
    except OSError as e:
        return {"error": f"{os.path.join(db_dir, 'BASEDATA')}: {e.strerror}"}
    return view


def describe_view(view):
    if "error" in view:
        return view["error"]
    sizes = ", ".join(f"{n} {view[n]} bytes" for n in DATABASE_FILES)
    return f"date {view['date']!r}, {sizes}"


class DatabaseMismatch(Exception):
    """The workers do not all see the same reference files."""


def check_workers(client, db_dir):
    """Asks every worker what it sees at db_dir. Returns the one view they
    share; raises DatabaseMismatch naming each worker and what it sees when
    a worker lacks a file or the workers' files differ in size or date."""
    views = client.run(database_view, db_dir)
    if not views:
        raise DatabaseMismatch("the cluster has no workers")
    lines = [f"  {w}: {describe_view(v)}" for w, v in sorted(views.items())]
    missing = [w for w, v in views.items() if "error" in v]
    if missing:
        raise DatabaseMismatch(
            f"{len(missing)} of {len(views)} workers cannot read the "
            f"reference files at {db_dir}; every worker needs them at the "
            "same path:\n" + "\n".join(lines))
    distinct = {tuple(sorted(v.items())) for v in views.values()}
    if len(distinct) > 1:
        raise DatabaseMismatch(
            f"the workers see different reference files at {db_dir}; give "
            "every machine the same copy:\n" + "\n".join(lines))
    return next(iter(views.values()))


def open_on_workers(client, db_dir, memory):
    """Opens each worker's instance (kept for the run). Returns
    {worker: None or the reason its open failed}."""
    return client.run(_open_here, db_dir, memory)


def _open_here(db_dir, memory):
    try:
        worker_geocoder(db_dir, memory)
        return None
    except OSError as e:
        return str(e)
