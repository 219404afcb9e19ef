#!/usr/bin/env bash
# Sets everything up, builds the project and runs the main job: geocodes the
# sample addresses against the sample reference database, shows the results
# as a table with a legend of the codes, and prints the address accuracy
# statement. Says what it does at each step and shows the build's progress.
set -euo pipefail
cd "$(dirname "$0")/.."
echo "run.sh: checking the Debian packages the project needs"
scripts/setup.sh
echo "run.sh: building the library, tools and tests into build/release;"
echo "run.sh: this takes about five minutes on two cores (log in"
echo "run.sh: build/release-build.log)"
mkdir -p build
if ! scripts/build.sh release 2>&1 | tee build/release-build.log; then
  echo "run.sh: the build failed; its log is build/release-build.log" >&2
  exit 1
fi

echo "run.sh: geocoding data/sample/addresses.csv against the sample database"
mkdir -p out
build/release/bin/hkgeocode --quiet --table \
  --report out/accuracy-statement.txt --report-line "Sample addresses" \
  --report-line "data/sample/addresses.csv" \
  --out out/results.txt data/sample/addresses.csv
build/release/bin/hkgeocode --quiet --out out/results.csv \
  data/sample/addresses.csv 2>/dev/null
cat out/results.txt
echo
echo "run.sh: the full results as CSV, every column explained by"
echo "run.sh: 'build/release/bin/hkgeocode --help': out/results.csv"
echo "run.sh: the address accuracy statement: out/accuracy-statement.txt"
cat out/accuracy-statement.txt
