// Records per second of the address search (hk_pad + hk_mpro) on a
// generated reference database, in file mode and in memory mode, for three
// kinds of input: exact street names, street names with a typing error,
// and a realistic mix; each in random order and sorted by region and
// street. Each run keeps one instance open, so its caches are warm after
// the first records, as in a long batch.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "bench_data.h"
#include "orlo_matcher.h"
#include "orlo_records.h"

namespace {

using orlo::bench::database_dir;
using orlo::bench::inputs;
using orlo::bench::kExact;
using orlo::bench::kFuzzy;
using orlo::bench::kRealistic;
using orlo::bench::Mix;

// ---- The benchmark -----------------------------------------------------

void BM_Search(benchmark::State &state) {
  const bool memory = state.range(0) != 0;
  const Mix mix = static_cast<Mix>(state.range(1));
  const bool sorted = state.range(2) != 0;
  const std::string dir = database_dir();
  const std::vector<std::string> &recs = inputs(mix, sorted);
  if (dir.empty() || recs.empty()) {
    state.SkipWithError("no database");
    return;
  }
  HKMCB *mcb = nullptr;
  char code = '0';
  std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
              bd = dir + "/BASEDATA";
  if (hk_mopn(&mcb, &code, memory ? " M" : "", l1.c_str(), l2.c_str(),
              bd.c_str()) != 0) {
    state.SkipWithError("open failed");
    hk_mclo(&mcb, nullptr);
    return;
  }
  std::vector<char> namelist(30000), reclist(7500);
  char area[3000], area30[30];
  char out[HKOUTREC_SIZE];
  HKWORKREC work;
  size_t i = 0;
  int64_t chosen = 0;
  for (auto _ : state) {
    const std::string &rec = recs[i];
    i = i + 1 == recs.size() ? 0 : i + 1;
    hk_pad(rec.c_str(), &work, mcb);
    std::memset(out, ' ', sizeof out);
    out[0] = '0';
    hk_mpro(&mcb, &work, out, rec.c_str(), namelist.data(), reclist.data(), 0,
            area, 0, area30);
    chosen += out[HKOUT_RETCODE_OFF] == '1';
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["chosen%"] = 100.0 * static_cast<double>(chosen) /
                              static_cast<double>(state.iterations());
  hk_mclo(&mcb, out);
}

BENCHMARK(BM_Search)
    ->ArgNames({"memory", "mix", "sorted"})
    ->ArgsProduct({{0, 1}, {kExact, kFuzzy, kRealistic}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
