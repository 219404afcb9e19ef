#!/usr/bin/env bash
# Proves that a change left every result as it was:
#   bench/compare_versions.sh BASE_REV [ADDRESSES] [RECORDS]
# Builds hkdb, hkaddrgen and hkgeocode of the git revision BASE_REV (in a
# worktree under the work folder) and of this checkout (build/bench),
# generates three reference databases of RECORDS records (200,000 by
# default; seeds 1, 2 and 3, the third with its street tables shuffled out of
# order by bench/scramble_streets.py) and ADDRESSES generated addresses for
# each (1,000,000 by default), written as raw 200-byte input records
# (bench/csv_to_records.py), geocodes them once with BASE_REV and, with this
# checkout, in file and memory mode on 1 and 2 workers, and compares every
# raw 300-byte output with BASE_REV's with cmp. Raw records keep the
# comparison to the matcher: the CSV columns' wording and the tidying of
# the fields people write may differ between versions. Prints one line a run and exits non-zero
# on the first difference. Work folder: $ORLO_COMPARE_DIR or
# /tmp/orlo-compare.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ $# -lt 1 || $1 == -h || $1 == --help ]]; then
  sed -n '2,13p' "$0" | sed 's/^# \{0,1\}//'
  [[ $# -lt 1 ]] && exit 2 || exit 0
fi
base_rev=$1
addresses=${2:-1000000}
records=${3:-200000}
work=${ORLO_COMPARE_DIR:-/tmp/orlo-compare}
tools=(hkdb hkaddrgen hkgeocode)
mkdir -p "$work"

step() { echo "== $*" >&2; }

step "building $base_rev"
base_src=$work/base-src
if [[ -d $base_src ]]; then
  git -C "$base_src" checkout -q --detach "$base_rev"
else
  git worktree add -q --detach "$base_src" "$base_rev"
fi
cmake -S "$base_src" -B "$work/base-build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORLO_BUILD_TESTS=OFF -DORLO_BUILD_BENCH=OFF >/dev/null
cmake --build "$work/base-build" -j"$(nproc)" --target "${tools[@]}" >/dev/null
base=$work/base-build/bin

step "building this checkout"
cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/bench -j"$(nproc)" --target "${tools[@]}" >/dev/null
new=build/bench/bin

status=0
for seed in 1 2 3; do
  db=$work/db$seed
  if [[ ! -f $db/BASEDATA ]]; then
    step "database $seed: $records records"
    mkdir -p "$db"
    "$new/hkdb" generate --records "$records" --seed "$seed" \
      --out "$db/ref.csv" 2>/dev/null
    "$new/hkdb" build "$db/ref.csv" "$db" --date 20261101 >/dev/null
    if [[ $seed == 3 ]]; then
      /usr/bin/python3 bench/scramble_streets.py "$db" "$seed"
    fi
    "$new/hkaddrgen" --reference "$db/ref.csv" --count "$addresses" \
      --seed "$seed" --out "$db/addresses.csv" 2>/dev/null
  fi
  if [[ ! -f $db/addresses.dat ]]; then
    /usr/bin/python3 bench/csv_to_records.py "$db/addresses.csv" "$db/addresses.dat"
  fi
  step "database $seed: $base_rev"
  "$base/hkgeocode" --quiet --fixed --db "$db" --out "$db/base.dat" \
    "$db/addresses.dat" 2>"$db/base.log"
  for run in "1 " "2 " "1  M" "2  M"; do
    threads=${run%% *} options=${run#* }
    out=$db/new-$threads${options:+-memory}.dat
    "$new/hkgeocode" --quiet --fixed --db "$db" --threads "$threads" \
      --options "$options" --out "$out" "$db/addresses.dat" 2>"${out%.dat}.log"
    if cmp -s "$db/base.dat" "$out"; then
      echo "database $seed, $threads worker(s), options '$options': identical ($(($(wc -c <"$out") / 300)) records)"
    else
      echo "database $seed, $threads worker(s), options '$options': DIFFERENT" >&2
      cmp "$db/base.dat" "$out" | head -1 >&2 || true
      status=1
    fi
  done
done
exit $status
