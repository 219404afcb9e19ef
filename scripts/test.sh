#!/usr/bin/env bash
# Sets everything up and runs the whole test suite: static checks, then the
# tests in an optimised build and again under AddressSanitizer +
# UndefinedBehaviorSanitizer. Exits non-zero on the first failure.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

echo "== static checks"
scripts/check-style.sh

for flavour in release asan; do
  echo "== $flavour build"
  scripts/build.sh "$flavour"
  echo "== $flavour tests"
  ctest --test-dir "build/$flavour" --output-on-failure -j"$(nproc)"
done
