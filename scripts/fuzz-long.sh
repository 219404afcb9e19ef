#!/usr/bin/env bash
# Fuzzes every target for a while (default 120 s each) from the committed
# corpus, then merges what found new coverage back into it (minimised).
# Findings (crash-*, leak-*, timeout-*) land in fuzz/findings/.
#   scripts/fuzz-long.sh [SECONDS] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-120}
shift || true
scripts/build.sh fuzz > /dev/null
mkdir -p fuzz/findings
targets=("$@")
((${#targets[@]})) || targets=($(ls build/fuzz/fuzz | grep '_fuzzer$'))
for t in "${targets[@]}"; do
  work=$(mktemp -d)
  echo "== $t"
  build/fuzz/fuzz/"$t" -max_total_time="$seconds" -seed=1 -max_len=16384 \
    -rss_limit_mb=2048 -timeout=20 -artifact_prefix=fuzz/findings/"$t"- \
    -print_final_stats=1 "$work" fuzz/corpus/"$t" 2>&1 | grep -E '^#[0-9]+.*(DONE|pulse)|stat::|ERROR|SUMMARY' | tail -4 || true
  build/fuzz/fuzz/"$t" -merge=1 fuzz/corpus/"$t" "$work" > /dev/null 2>&1 || true
  rm -rf "$work"
done
ls fuzz/findings
