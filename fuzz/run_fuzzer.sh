#!/usr/bin/env bash
# Replays a fuzz target's committed corpus, then fuzzes it briefly from a
# fixed seed into a scratch corpus (the committed one is never written).
#   run_fuzzer.sh TARGET CORPUS_DIR RUNS
set -euo pipefail
target=$1 corpus=$2 runs=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
shopt -s nullglob
seeds=("$corpus"/*)
if ((${#seeds[@]})); then
  "$target" -rss_limit_mb=2048 "${seeds[@]}"
fi
"$target" -runs="$runs" -seed=1 -max_len=16384 -rss_limit_mb=2048 \
  -timeout=20 "$scratch" "$corpus"
