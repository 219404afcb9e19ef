"""Where the tests find the build: ORLO_HK_BUILD_DIR (default build/release
of this checkout), whose library, sample database and tools they use."""
import os
import subprocess
import sys

import pytest

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(
    os.path.abspath(__file__))))
BUILD = os.environ.get("ORLO_HK_BUILD_DIR",
                       os.path.join(SOURCE, "build", "release"))
os.environ.setdefault("ORLO_HK_LIBRARY",
                      os.path.join(BUILD, "liborloHKGeocoder.so"))
# The package from this checkout, also in the processes the tests start.
PACKAGE_ROOT = os.path.join(SOURCE, "python")
sys.path.insert(0, PACKAGE_ROOT)
os.environ["PYTHONPATH"] = os.pathsep.join(
    p for p in (PACKAGE_ROOT, os.environ.get("PYTHONPATH")) if p)

SAMPLE_DB = os.path.join(BUILD, "data", "sample")
SAMPLE_ADDRESSES = os.path.join(SOURCE, "data", "sample", "addresses.csv")


def tool(name):
    return os.path.join(BUILD, "bin", name)


def run(args, **kw):
    """A finished process with its text outputs."""
    return subprocess.run(args, capture_output=True, **kw)


@pytest.fixture(scope="session")
def generated(tmp_path_factory):
    """100,000 generated addresses, a few bad rows at the end, and what
    hkgeocode --threads 1 makes of them: (input, output bytes, stderr,
    exit status)."""
    d = tmp_path_factory.mktemp("generated")
    addresses = d / "addresses.csv"
    r = run([tool("hkaddrgen"), "--reference",
             os.path.join(SOURCE, "data", "sample", "reference.csv"),
             "--count", "100000", "--seed", "7", "--out", str(addresses)])
    assert r.returncode == 0, r.stderr
    with open(addresses, "ab") as f:
        f.write(BAD_ROWS)
    r = run([tool("hkgeocode"), "--threads", "1", "--quiet", "--db",
             SAMPLE_DB, "--out", str(d / "want.csv"), str(addresses)])
    return addresses, (d / "want.csv").read_bytes(), r.stderr, r.returncode


# Rows hkgeocode refuses, each for another reason, and a quoted line end.
BAD_ROWS = ("\u5f4c,22,NATHAN ROAD,,,,,KLN,\n"
            ",22,NATHAN ROAD,,,,KLN\n"
            ",1,A STREET NAME FAR LONGER THAN THIRTY CHARACTERS,,,,,HK,\n"
            ',5,"NANKING\nSTREET",,,,,KLN,\n'
            ",\u2018,22 Castle Peak Road,,,,,Kowloon,\n").encode()
