"""Batch runs on Dask: the command on a local cluster against hkgeocode
byte for byte, a worker killed in the middle, one instance per worker
process, and workers that do not see the same reference files."""
import os
import shutil
import signal
import subprocess
import sys
import time

import pandas as pd
import pytest

import orlo_hk
from conftest import SAMPLE_ADDRESSES, SAMPLE_DB, run

distributed = pytest.importorskip("distributed")
dd = pytest.importorskip("dask.dataframe")

COMMAND = [sys.executable, "-m", "orlo_hk", "geocode", "--quiet"]


def test_local_cluster_output_is_hkgeocode_byte_for_byte(generated,
                                                         tmp_path):
    addresses, want, want_err, want_status = generated
    out = tmp_path / "out.csv"
    r = run(COMMAND + ["--scheduler", "local", "--workers", "2", "--db",
                       SAMPLE_DB, "--partition-rows", "7000", str(addresses),
                       str(out)], text=True)
    assert r.returncode == want_status == 1, r.stderr
    assert out.read_bytes() == want
    # The bad rows are named by line as hkgeocode names them, and the
    # summary counts what hkgeocode counts.
    bad = [line.split(": ", 1)[1] for line in r.stderr.splitlines()
           if ".csv:" in line]
    want_bad = [line.split(": ", 1)[1] for line in want_err.decode()
                .splitlines() if ".csv:" in line]
    assert bad == want_bad and len(bad) == 3
    assert want_err.decode().splitlines()[len(want_bad)].split(": ", 1)[1] \
        in r.stderr


@pytest.fixture(scope="module")
def cluster():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1,
                                  processes=True, dashboard_address=None,
                                  silence_logs=50) as c, \
            distributed.Client(c) as client:
        yield c, client


def test_killed_worker_loses_and_doubles_no_row(generated, tmp_path,
                                                cluster):
    addresses, want, _, _ = generated
    c, client = cluster
    out = tmp_path / "out.csv"
    proc = subprocess.Popen(
        COMMAND + ["--scheduler", c.scheduler_address, "--workers", "2",
                   "--db", SAMPLE_DB, "--partition-rows", "1000",
                   str(addresses), str(out)],
        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    # Kill a worker once some partitions are written and many are not.
    deadline = time.monotonic() + 120
    while (not out.exists() or out.stat().st_size < len(want) // 10) and \
            time.monotonic() < deadline and proc.poll() is None:
        time.sleep(0.01)
    pids = client.run(os.getpid)
    victim = sorted(pids.values())[0]
    os.kill(victim, signal.SIGKILL)
    killed_while_running = proc.poll() is None
    _, err = proc.communicate(timeout=300)
    assert killed_while_running, "the run ended before the worker was killed"
    assert proc.returncode == 1, err.decode()
    assert out.read_bytes() == want
    client.wait_for_workers(2, timeout=60)  # the nanny restarts it


def test_dask_frame_one_instance_per_worker(cluster):
    from orlo_hk.cluster import open_count, open_on_workers
    _, client = cluster
    assert set(open_on_workers(client, SAMPLE_DB, False).values()) == {None}
    frame = pd.read_csv(SAMPLE_ADDRESSES, dtype=str, keep_default_na=False)
    want = orlo_hk.geocode_frame(frame, SAMPLE_DB)
    for parts in (8, 5):
        got = orlo_hk.geocode_dask(dd.from_pandas(frame, npartitions=parts),
                                   SAMPLE_DB).compute()
        pd.testing.assert_frame_equal(got, want)
    # Lines of text, as the sample's fields written out in one.
    lines = pd.DataFrame({"line": frame["premno"] + " " + frame["street"] +
                          ", " + frame["district"]})
    got = orlo_hk.geocode_dask(dd.from_pandas(lines, npartitions=4),
                               SAMPLE_DB, line_column="line").compute()
    pd.testing.assert_frame_equal(
        got, orlo_hk.geocode_frame(lines, SAMPLE_DB, line_column="line"))
    # Every partition used the instance its worker process had opened.
    assert list(client.run(open_count).values()) == [1, 1]


def test_workers_that_see_different_databases(tmp_path, generated):
    """Two workers started in folders of their own, as on two machines: the
    same relative path names other files on each."""
    homes = [tmp_path / "a", tmp_path / "b"]
    for home in homes:
        shutil.copytree(SAMPLE_DB, home / "db")
    shutil.copytree(SAMPLE_DB, homes[0] / "only_a")
    # Another date record at the start of b's BASEDATA.
    with open(homes[1] / "db" / "BASEDATA", "r+b") as f:
        f.write(b"20991231")
    with distributed.LocalCluster(n_workers=0, processes=True,
                                  dashboard_address=None,
                                  silence_logs=50) as c:
        workers = [subprocess.Popen(
            [sys.executable, "-m", "distributed.cli.dask_worker",
             c.scheduler_address, "--nthreads", "1",
             "--no-dashboard", "--nworkers", "1"], cwd=home,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            for home in homes]
        try:
            for db, message in [
                    ("db", "the workers see different reference files at db"),
                    ("only_a", "1 of 2 workers cannot read the reference "
                     "files at only_a")]:
                r = run(COMMAND + ["--scheduler", c.scheduler_address,
                                   "--workers", "2", "--db", db,
                                   SAMPLE_ADDRESSES, str(tmp_path / "o.csv")],
                        text=True, timeout=180)
                assert r.returncode == 3, r.stderr
                assert message in r.stderr
                assert "date '20991231'" in r.stderr or db == "only_a"
            assert not (tmp_path / "o.csv").exists() or \
                (tmp_path / "o.csv").stat().st_size == 0
        finally:
            for w in workers:
                w.send_signal(signal.SIGTERM)
            for w in workers:
                w.wait(timeout=60)
