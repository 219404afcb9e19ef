#!/usr/bin/env bash
# Sets everything up, builds the project and runs the main job.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
scripts/build.sh release
bin=build/release/bin
echo
echo "Premise numbers as the matcher reads them:"
"$bin/hkpremise" "12" "0012" "12A" "12 AB" "A12" "12-14" "12 1/2" "N12E5" "G/F"
