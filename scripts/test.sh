#!/usr/bin/env bash
# Sets everything up and runs the whole test suite:
#   1. static checks (cppcheck, clang-format);
#   2. every test in an optimised build (the Java tests in a real JVM, and
#      the install, the Debian package and programs that use them, too);
#   3. every test again under AddressSanitizer + UndefinedBehaviorSanitizer,
#      with LeakSanitizer on;
#   4. the reference documentation, warnings as errors;
#   5. the concurrency tests under ThreadSanitizer (built by clang);
#   6. each fuzz target: its corpus replayed, then a fixed number of runs.
# Exits non-zero on the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
jobs=$(nproc)

echo "== static checks"
scripts/check-style.sh

for flavour in release asan; do
  echo "== $flavour build"
  scripts/build.sh "$flavour"
  echo "== $flavour tests"
  ctest --test-dir "build/$flavour" --output-on-failure -j"$jobs"
done

echo "== reference documentation (a declaration without its comment fails)"
cmake --build build/release --target docs

echo "== thread sanitizer build"
scripts/build.sh tsan
echo "== thread sanitizer tests"
ctest --test-dir build/tsan --output-on-failure -j"$jobs" -R 'Thread|Races'

echo "== fuzz build"
scripts/build.sh fuzz
echo "== fuzz targets"
ctest --test-dir build/fuzz --output-on-failure -j"$jobs"
