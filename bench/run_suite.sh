#!/usr/bin/env bash
# The performance suite, in one command:
#   bench/run_suite.sh [--quick]
# Builds the optimised flavour into build/bench, generates (once) a reference
# database of ORLO_BENCH_RECORDS records (1,000,000 by default) under /tmp,
# and measures:
#   - m_street comparisons per second, input cache hit and miss, and the
#     prepared comparison (one input against 10,000 prepared names);
#   - the street comparison against its plain form on ORLO_STREET_PAIRS
#     random pairs (2,000,000 by default);
#   - hk_pad + hk_mpro records per second: exact, fuzzy and realistic mixes
#     in random and in sorted order, file and memory mode;
#   - hk_mtci "P" records per second: exact, fuzzy, realistic and region-blank
#     mixes, file and memory mode, 1 and 2 threads;
#   - open time (first open, and an open of files another instance holds)
#     and heap per instance in both modes; the resident memory of 200
#     instances of the same files;
#   - the JNI call overhead (native process from Java against hk_mtci from C);
#   - hkgeocode on generated addresses, 1 and 2 workers, both modes, with its
#     elapsed time and peak memory.
# Raw outputs go to out/bench/; the summary is printed at the end and saved
# as out/bench/summary.txt. --quick shortens every measurement (for checking
# that the suite works, not for figures).
set -euo pipefail
cd "$(dirname "$0")/.."

quick=0
case "${1:-}" in
  --quick) quick=1 ;;
  "") ;;
  -h | --help)
    sed -n '2,21p' "$0" | sed 's/^# \{0,1\}//'
    exit 0
    ;;
  *)
    echo "usage: bench/run_suite.sh [--quick]" >&2
    exit 2
    ;;
esac

records=${ORLO_BENCH_RECORDS:-1000000}
pairs=${ORLO_STREET_PAIRS:-2000000}
addresses=${ORLO_BENCH_ADDRESSES:-1000000}
min_time=2
jni_calls=1000000
if ((quick)); then
  min_time=0.05 jni_calls=20000 addresses=20000 pairs=20000
fi
export ORLO_BENCH_RECORDS=$records
db=/tmp/orlo-search-bench-$records
out=out/bench
build=build/bench
mkdir -p "$out"

step() { echo "== $*" >&2; }

step "setting up and building ($build)"
scripts/setup.sh >/dev/null
command -v /usr/bin/time >/dev/null || apt-get install -y -qq time >/dev/null
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j"$(nproc)" --target hkaddrgen hkgeocode \
  street_compare_benchmark search_benchmark street_differential_test \
  call_benchmark orloHKGeocoder \
  orloHKGeocoderBenchJar >/dev/null

step "m_street"
"$build"/bench/street_compare_benchmark \
  --benchmark_filter='BM_StreetMatcherPattern|BM_StreetFreshPairs|BM_StreetPrepared' \
  --benchmark_min_time="$min_time" --benchmark_format=json \
  --benchmark_out="$out/street.json" >/dev/null

step "street comparison against its plain form, $pairs pairs"
ORLO_STREET_PAIRS=$pairs "$build"/tests/street_differential_test \
  --gtest_brief=1 >"$out/differential.txt"

step "hk_pad + hk_mpro: random and sorted order" \
  "(the first run generates the $records-record database in $db)"
"$build"/bench/search_benchmark --benchmark_min_time="$min_time" \
  --benchmark_format=json --benchmark_out="$out/search.json" >/dev/null

step "hk_mtci: open, memory per instance, records per second" \
  "(the first run generates the $records-record database in $db)"
"$build"/bench/call_benchmark --benchmark_min_time="$min_time" \
  --benchmark_format=json --benchmark_out="$out/call.json" >/dev/null

step "JNI call overhead"
jars="$build/java/orloHKGeocoder.jar:$build/java/orloHKGeocoderBench.jar"
for mode in file memory; do
  java -Djava.library.path="$build" -cp "$jars" \
    pkgs.natives.bench.JniCallBenchmark "$db" "$mode" "$jni_calls"
done >"$out/jni.txt"

step "hkgeocode on $addresses generated addresses"
"$build"/bin/hkaddrgen --reference "$db/reference.csv" --count "$addresses" \
  --seed 1 --out "$out/addresses.csv"
: >"$out/hkgeocode.txt"
for run in "1 " "2 " "1  M" "2  M"; do
  threads=${run%% *} options=${run#* }
  /usr/bin/time -f "threads=$threads options='$options' elapsed=%e peak_kb=%M" \
    -a -o "$out/hkgeocode.txt" "$build"/bin/hkgeocode --quiet --db "$db" \
    --threads "$threads" --options "$options" \
    --out "$out/geocoded-$threads${options:+-memory}.csv" "$out/addresses.csv"
done
cmp "$out/geocoded-1.csv" "$out/geocoded-2.csv"
cmp "$out/geocoded-1.csv" "$out/geocoded-2-memory.csv"

step "summary"
python3 bench/summarise_suite.py "$out" "$addresses" | tee "$out/summary.txt"
