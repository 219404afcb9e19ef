#!/usr/bin/env bash
# Sets everything up, builds the project and runs the main job: geocodes the
# sample addresses against the sample reference database, shows the results
# as a table and prints the address accuracy statement.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
echo "Building (log in build/release-build.log)..."
mkdir -p build
if ! scripts/build.sh release > build/release-build.log 2>&1; then
  tail -40 build/release-build.log >&2
  exit 1
fi

mkdir -p out
build/release/bin/hkgeocode --quiet --table \
  --report out/accuracy-statement.txt --report-line "Sample addresses" \
  --report-line "data/sample/addresses.csv" \
  --out out/results.txt data/sample/addresses.csv
build/release/bin/hkgeocode --quiet --out out/results.csv \
  data/sample/addresses.csv 2>/dev/null
cat out/results.txt
echo
echo "RC: return code (1 reference address written, 0 not). MS: match status"
echo "(0 accepted, 1 no region, 2 no street, 3 number, 4 building or score,"
echo "5 tie). Full results as CSV: out/results.csv"
cat out/accuracy-statement.txt
