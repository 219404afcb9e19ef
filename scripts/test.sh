#!/usr/bin/env bash
# Sets everything up and runs the whole test suite, in stages:
#   static   static checks (layers, cppcheck, clang-format);
#   release  every test in an optimised build (the Java tests in a real JVM,
#            and the install, the Debian package and programs that use
#            them, too);
#   asan     every test again under AddressSanitizer +
#            UndefinedBehaviorSanitizer, with LeakSanitizer on;
#   docs     the reference documentation, warnings as errors (a public
#            declaration without its contract fails);
#   tsan     the concurrency tests under ThreadSanitizer (built by clang);
#   fuzz     each fuzz target: its corpus replayed, then a fixed number of
#            runs.
# scripts/test.sh STAGE... runs only the stages named. The suite stops at
# the first stage that fails. The last line names every stage with its
# outcome and the time taken, e.g.
#   static checks ok; release 302 tests ok; asan 302 tests ok; docs ok; tsan
#   6 tests ok; fuzz 9 targets ok; 11m02s
# and the exit status is 0 only when every stage passed; otherwise a line
# on standard error names the stage that failed.
set -uo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh || exit 1
jobs=$(nproc)
all_stages=(static release asan docs tsan fuzz)
if (($#)); then stages=("$@"); else stages=("${all_stages[@]}"); fi
for s in "${stages[@]}"; do
  case " ${all_stages[*]} " in
    *" $s "*) ;;
    *) echo "usage: scripts/test.sh [${all_stages[*]}]..." >&2; exit 2 ;;
  esac
done

# Runs ctest on a build and remembers how many tests it ran.
count=""
tests_in() {
  local log
  log=$(mktemp)
  ctest --test-dir "build/$1" --output-on-failure -j"$jobs" "${@:2}" | tee "$log"
  local status=${PIPESTATUS[0]}
  count=$(sed -n 's/.* tests failed out of \([0-9][0-9]*\)$/\1/p' "$log")
  rm -f "$log"
  return "$status"
}

stage_static() { scripts/check-style.sh; }
stage_release() { scripts/build.sh release && tests_in release; }
stage_asan() { scripts/build.sh asan && tests_in asan; }
stage_docs() {
  scripts/build.sh release >/dev/null && cmake --build build/release --target docs
}
stage_tsan() { scripts/build.sh tsan && tests_in tsan -R 'Thread|Races'; }
stage_fuzz() { scripts/build.sh fuzz && tests_in fuzz; }

# How the summary names a stage and what it counted.
describe() {
  case $1 in
    static) echo "static checks" ;;
    fuzz) echo "fuzz${count:+ $count targets}" ;;
    *) echo "$1${count:+ $count tests}" ;;
  esac
}

start=$SECONDS
outcomes=()
failed=""
for stage in "${stages[@]}"; do
  if [[ -n $failed ]]; then
    outcomes+=("$stage not run")
    continue
  fi
  echo "== $stage"
  count=""
  if "stage_$stage"; then
    outcomes+=("$(describe "$stage") ok")
  else
    outcomes+=("$(describe "$stage") FAILED")
    failed=$stage
  fi
done

elapsed=$((SECONDS - start))
summary=$(printf '%s; ' "${outcomes[@]}")
printf '%s%dm%02ds\n' "$summary" $((elapsed / 60)) $((elapsed % 60))
if [[ -n $failed ]]; then
  echo "scripts/test.sh: stage '$failed' failed" >&2
  exit 1
fi
