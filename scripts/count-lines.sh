#!/usr/bin/env bash
# Counts non-blank lines of test code against every other source file,
# header and script of the checkout, and prints both with their ratio.
#   test code: tests/, the Java tests (java/test/) and Python tests (test_*.py)
#   the rest:  every other .c .cc .h .java .py .sh .cmake and CMakeLists.txt
# Data, corpora, documentation and generated files do not count.
set -euo pipefail
cd "$(dirname "$0")/.."
count() { xargs -r cat | grep -cv '^[[:space:]]*$' || true; }
files() {
  git ls-files -co --exclude-standard -- '*.c' '*.cc' '*.h' '*.java' '*.py' \
    '*.sh' '*.cmake' '*CMakeLists.txt' | grep -v '^fuzz/corpus/'
}
is_test='^tests/|^java/test/|(^|/)test_[^/]*\.py$|(^|/)tests?/[^/]*\.py$'
tests=$(files | grep -E "$is_test" | count)
rest=$(files | grep -Ev "$is_test" | count)
awk -v t="$tests" -v r="$rest" 'BEGIN {
  printf "test lines %d, other lines %d, ratio %.2f\n", t, r, (r ? t / r : 0) }'
