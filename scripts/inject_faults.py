#!/usr/bin/python3
"""Measures how many plausible library faults the test suite catches.

Each fault below is one small edit of a library source (a bound off by one,
a wrong return code, a flipped comparison, a changed table entry, a removed
check, a counter left alone). The script copies the checkout into a scratch
tree (build/faults/src; the checkout itself is never modified), builds it once
in build/faults/build, then for every fault applies the edit, rebuilds
incrementally, runs every test program and the Java tests (not the slow
install and package tests) and puts the file back. It prints, per fault, whether any test
failed and which, and a total; the same report goes to build/faults/report.txt.

  scripts/inject_faults.py              run every fault
  scripts/inject_faults.py --only a,b   run the named faults
  scripts/inject_faults.py --list       list the faults
  scripts/inject_faults.py --rev C      test commit C instead of the checkout
  scripts/inject_faults.py --first      stop each fault at its first catch
Exit status: 0 when the baseline passes and every fault ran, 1 otherwise.
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import time
from concurrent.futures import ThreadPoolExecutor

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WORK = os.path.join(ROOT, "build", "faults")
SRC = os.path.join(WORK, "src")
BUILD = os.path.join(WORK, "build")
# The tool tests belong to the tools; they are reported apart so that the
# power of the library's own tests can be followed on its own.
TOOL_TESTS = "tests/tools/"
# The street comparison's differential test runs fewer pairs than in the
# test command: a fault shows in the first thousands.
TEST_ENV = dict(os.environ, ORLO_STREET_PAIRS="20000")

# (name, file, text to find (exactly once), replacement, what goes wrong)
FAULTS = [
    ("lftpck-single", "common/justify.cc",
     "if (n > 0) std::memcpy(field, work", "if (n > 1) std::memcpy(field, work",
     "a field with one character is not packed"),
    ("wide-blank", "common/wide_justify.cc",
     "return u == kSpace || u == kIdeographicSpace;", "return u == kSpace;",
     "the ideographic space is not a blank"),
    ("string-one-off", "compare/string_compare.cc",
     "diff == 1) return 95;", "diff == 1) return 90;",
     "a prefix one letter short scores 90"),
    ("vowel-table", "compare/business_compare.cc",
     "c == 'O' || c == 'U';", "c == 'O';", "U is not a vowel"),
    ("street-cache", "compare/street_compare.cc",
     "} else if (cache.form_len == len) {", "} else if (true) {",
     "the cached form is reused for another width"),
    ("item-bound", "hkmatch/refdata/packed_record.cc",
     "if (data_length(header) > limit - pos - 1) return false;", "",
     "an item running past its record is accepted"),
    ("presence-bit", "hkmatch/refdata/packed_record.cc",
     "if (field < 8) return", "if (field <= 8) return",
     "the ninth field reads the wrong presence byte"),
    ("level1-code", "hkmatch/refdata/reference_store.cc",
     "if (m->lvl1fp == nullptr) return HKRC_LEVEL1_OPEN;",
     "if (m->lvl1fp == nullptr) return HKRC_LEVEL2_OPEN;",
     "a lost level-1 file reports the level-2 code"),
    ("region-order", "hkmatch/refdata/region_tables.cc",
     "if (padded_initial(tab[i]) < padded_initial(tab[i - 1])) return false;",
     "", "an unsorted street table is accepted"),
    ("level2-code", "hkmatch/calls/open_close.cc",
     "if (m->lvl2fp == nullptr) return kBadLevel2;",
     "if (m->lvl2fp == nullptr) return kBadLevel1;",
     "a missing level-2 file reports the level-1 code"),
    ("state-ready", "hkmatch/calls/call_dispatch.cc",
     "if (mcb->state != 'O' && mcb->state != 'R') return nullptr;",
     "if (mcb->state != 'O') return nullptr;",
     "an instance that has searched is treated as closed"),
    ("input-both-blank", "hkmatch/input/input_prep.cc",
     "if (all_blank(first) && all_blank(second)) return;",
     "if (all_blank(first) || all_blank(second)) return;",
     "one blank half drops the other"),
    ("premise-digit", "hkmatch/premise/premise_parser.cc",
     "return c >= '0' && c <= '9';", "return c > '0' && c <= '9';",
     "0 is not a digit in a premise number"),
    ("range-below-high", "hkmatch/evaluate/premise_range.cc",
     "return l.v1 <= i.v1 && i.v1 < h.v1;",
     "return l.v1 <= i.v1 && i.v1 <= h.v1;",
     "the high number counts as below the high end"),
    ("penalty-count", "hkmatch/evaluate/candidate_compare.cc",
     "    ++c.penalties;\n    return true;", "    return true;",
     "a missing record building is not penalised"),
    ("tie-accepted", "hkmatch/search/result_record.cc",
     "if (chose && !tied) matchstat = HKMS_ACCEPTED;",
     "if (chose) matchstat = HKMS_ACCEPTED;", "a tie is accepted"),
    ("reuse-exact", "hkmatch/search/search_driver.cc",
     "if (s.count > 0) s.exact = true;", "if (s.count > 1) s.exact = true;",
     "a reused single candidate is not exact"),
    ("report-listmode", "hkmatch/calls/close_instance.cc",
     "if (mcb.listmode == 3) return false;", "",
     "the closing report is written in list mode"),
    ("tidy-delete", "normalise/text_tidy.cc",
     "(cp >= 0x7F && cp <= 0x9F)", "(cp > 0x7F && cp <= 0x9F)",
     "DEL is not a control character"),
    ("line-hk", "splitter/line_parse.cc",
     "return k == \"HONGKONG\" || k == \"HK\";", "return k == \"HONGKONG\";",
     "HK is not taken as the territory"),
    ("line-width", "splitter/line_record.cc",
     "if (len + need > width) return false;",
     "if (len + need >= width) return false;",
     "a word that fills its field exactly is dropped"),
    ("mapping-offset", "native/input_mapping.cc",
     "} else if (src[1103] != ' ') {", "} else if (src[1104] != ' ') {",
     "the fourth address group is tested one byte late"),
    ("service-report", "native/geocoder_service.cc",
     "needs |= kNeedFiles | kNeedReport;", "needs |= kNeedFiles;",
     "the report call gets no report lines"),
]


def git(*args):
    return subprocess.run(["git", *args], cwd=ROOT, check=True,
                          capture_output=True).stdout


def tree_files(rev):
    if rev:
        out = git("ls-tree", "-r", "-z", "--name-only", rev).decode()
    else:
        out = git("ls-files", "-co", "--exclude-standard", "-z").decode()
    return [f for f in out.split("\0") if f and not f.startswith("build/")]


def content(rel, rev):
    if rev:
        return git("show", f"{rev}:{rel}")
    path = os.path.join(ROOT, rel)
    if not os.path.isfile(path):
        return None
    with open(path, "rb") as f:
        return f.read()


def sync_scratch(rev):
    """Mirrors the checkout (or commit rev) into SRC, writing only files that
    changed so that the scratch build stays incremental."""
    wanted = set(tree_files(rev))
    existing = sorted(rel for rel in wanted
                      if os.path.isfile(os.path.join(SRC, rel)))
    hashes = {}
    if rev and existing:
        out = subprocess.run(["git", "hash-object", "--stdin-paths"], cwd=SRC,
                             input="\n".join(existing), capture_output=True,
                             text=True, check=True).stdout.split()
        hashes = dict(zip(existing, out))
        for line in git("ls-tree", "-r", rev).decode().splitlines():
            meta, rel = line.split("\t", 1)
            if hashes.get(rel) == meta.split()[2]:
                wanted.discard(rel)
                hashes[rel] = "same"
    for rel in wanted:
        dst = os.path.join(SRC, rel)
        if rev and hashes.get(rel) == "same":
            continue
        data = content(rel, rev)
        if data is None:
            continue
        if os.path.isfile(dst):
            with open(dst, "rb") as f:
                if f.read() == data:
                    continue
        os.makedirs(os.path.dirname(dst), exist_ok=True)
        with open(dst, "wb") as f:
            f.write(data)
        if not rev:
            shutil.copymode(os.path.join(ROOT, rel), dst)
        elif rel.endswith((".sh", ".py")):
            os.chmod(dst, 0o755)
    keep = set(tree_files(rev))
    for dirpath, _, names in os.walk(SRC):
        for n in names:
            rel = os.path.relpath(os.path.join(dirpath, n), SRC)
            if rel not in keep:
                os.remove(os.path.join(dirpath, n))


def run(cmd, **kw):
    return subprocess.run(cmd, capture_output=True, text=True, **kw)


def build():
    if not os.path.isfile(os.path.join(BUILD, "CMakeCache.txt")):
        lld = "-fuse-ld=lld" if shutil.which("ld.lld") else ""
        r = run(["cmake", "-S", SRC, "-B", BUILD, "-DCMAKE_BUILD_TYPE=Release",
                 "-DORLO_BUILD_BENCH=OFF", "-DCMAKE_EXE_LINKER_FLAGS=" + lld,
                 "-DCMAKE_SHARED_LINKER_FLAGS=" + lld])
        if r.returncode != 0:
            sys.exit("configure failed:\n" + r.stdout + r.stderr)
    r = run(["nice", "-n", "10", "cmake", "--build", BUILD, "-j2"])
    return r.returncode == 0, r.stdout + r.stderr


def test_programs():
    """Each GoogleTest program of the suite, by its source file."""
    progs = {}
    for dirpath, _, names in os.walk(os.path.join(SRC, "tests")):
        for n in names:
            if n.endswith("_test.cc"):
                rel = os.path.relpath(os.path.join(dirpath, n), SRC)
                progs[rel] = os.path.join(BUILD, "tests", n[:-3])
    return progs


def failing_tests(progs, first=False, near=""):
    """Runs every test program once (all its tests in one process, which is
    much quicker than CTest's one process per test) and the Java tests under
    CTest; returns the failed tests as (test, source file) pairs. A program
    that dies or hangs counts as one failure of its own. With first, the
    programs of the folder named by near run first and the run stops at the
    first program that fails."""
    def one(item):
        rel, exe = item
        try:
            r = subprocess.run([exe], cwd=BUILD, capture_output=True, text=True,
                               errors="replace", timeout=300, env=TEST_ENV)
            names = set(re.findall(r"^\[  FAILED  \] (\S+?)(?:,| \(|$)",
                                   r.stdout, re.M))
            if r.returncode != 0 and not names:
                names = {"(exit %d)" % r.returncode}
        except subprocess.TimeoutExpired:
            names = {"(timeout)"}
        return [(n, rel) for n in sorted(names)]

    order = sorted(progs.items(), key=lambda kv: (not kv[0].startswith(near),
                                                  kv[0]))
    failed = []
    with ThreadPoolExecutor(2) as pool:
        for found in pool.map(one, order):
            failed += found
            if first and failed:
                pool.shutdown(wait=True, cancel_futures=True)
                return failed
    r = run(["ctest", "--test-dir", BUILD, "-j2", "--timeout", "300",
             "-R", "^java\\."])
    failed += [(n, "java/test") for n in
               re.findall(r"^\s*\d+ - (\S+) \(", r.stdout, re.M)]
    return failed


def report(line, out):
    print(line, flush=True)
    out.write(line + "\n")


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("--only", help="comma-separated fault names")
    ap.add_argument("--list", action="store_true", help="list the faults")
    ap.add_argument("--rev", help="test this commit instead of the checkout")
    ap.add_argument("--first", action="store_true",
                    help="stop each fault at the first failing program "
                         "(quicker; names only that program)")
    args = ap.parse_args()
    faults = FAULTS
    if args.only:
        names = set(args.only.split(","))
        faults = [f for f in FAULTS if f[0] in names]
    if args.list:
        for name, path, _, _, what in faults:
            print(f"{name:18} {path:38} {what}")
        return 0
    os.makedirs(SRC, exist_ok=True)
    sync_scratch(args.rev)
    ok, log = build()
    if not ok:
        sys.exit("the unmodified tree does not build:\n" + log[-4000:])
    progs = test_programs()
    base = failing_tests(progs)
    if base:
        sys.exit("the unmodified tree fails: " + " ".join(t for t, _ in base))
    caught = caught_lib = ran = 0
    status = 0
    with open(os.path.join(WORK, "report.txt"), "w") as out:
        for name, rel, find, repl, what in faults:
            path = os.path.join(SRC, rel)
            with open(path) as f:
                text = f.read()
            if text.count(find) != 1:
                report(f"{name:18} SKIPPED: the text to change is not found "
                       f"exactly once in {rel}", out)
                status = 1
                continue
            start = time.time()
            try:
                with open(path, "w") as f:
                    f.write(text.replace(find, repl))
                built, _ = build()
                near = "tests/" + rel.split("/")[0] + "/"
                failed = (failing_tests(progs, args.first, near)
                          if built else [])
            finally:
                with open(path, "w") as f:
                    f.write(text)
            if not built:
                report(f"{name:18} SKIPPED: does not compile ({what})", out)
                status = 1
                continue
            ran += 1
            lib = [t for t, rel in failed if not rel.startswith(TOOL_TESTS)]
            caught += bool(failed)
            caught_lib += bool(lib)
            verdict = "caught" if failed else "MISSED"
            files = sorted({rel for _, rel in failed})
            report(f"{name:18} {verdict:6} {len(failed):3} tests "
                   f"({len(lib)} outside {TOOL_TESTS}) "
                   f"[{time.time() - start:.0f}s] {what}", out)
            if files:
                report("    by " + ", ".join(files[:6]) +
                       (" ..." if len(files) > 6 else ""), out)
                out.write("    tests: " + " ".join(t for t, _ in failed) + "\n")
        report(f"total: {caught} of {ran} faults caught; {caught_lib} of {ran} "
               f"by tests outside {TOOL_TESTS}", out)
    build()  # leave the scratch build matching the checkout
    return status


if __name__ == "__main__":
    sys.exit(main())
