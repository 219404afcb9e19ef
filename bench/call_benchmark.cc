// The matcher as a caller sees it, through hk_mtci on the generated
// reference database of bench_data.h:
//  - BM_Process: records per second of "P" calls for the exact, fuzzy,
//    realistic and region-blank mixes, in file and memory mode, on 1 and 2
//    threads, each thread with its own instance (real time, so the rate is
//    the total of all threads);
//  - BM_Open: the time of an "O" call (and the "C" that follows) in both
//    modes, and the heap one open instance holds;
//  - BM_OpenShared: an open of files another instance holds open (it
//    attaches to that instance's reference store);
//  - BM_ManyInstances: the resident memory of 200 instances of the same
//    files, each after 1,000 realistic records;
//  - BM_InstanceMemory: the heap one instance holds after a batch of
//    realistic records has filled its caches.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "bench_data.h"
#include "orlo_matcher.h"
#include "orlo_records.h"

namespace {

using orlo::bench::database_dir;
using orlo::bench::inputs;
using orlo::bench::Mix;

// Bytes of heap in use: small blocks plus the blocks mapped on their own.
double heap_bytes() {
  struct mallinfo2 m = mallinfo2();
  return static_cast<double>(m.uordblks + m.hblkhd);
}

// One instance opened with an "O" call and closed with a "C" call that
// writes no accuracy statement.
class Instance {
 public:
  explicit Instance(bool memory) {
    const std::string &dir = database_dir();
    std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
                bd = dir + "/BASEDATA";
    out_.fill(' ');
    hk_mtci("O", &handle_, nullptr, out_.data(), memory ? " M" : "", nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            l1.c_str(), l2.c_str(), bd.c_str(), nullptr, nullptr);
  }
  ~Instance() {
    out_.fill(' ');
    hk_mtci("C", &handle_, nullptr, out_.data(), "L", nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr);
  }
  Instance(const Instance &) = delete;
  Instance &operator=(const Instance &) = delete;

  bool ok() const { return out_[0] == '0' && handle_.mcb != nullptr; }

  // Geocodes one record; true when a reference was chosen.
  bool process(const std::string &rec) {
    out_.fill(' ');
    hk_mtci("P", &handle_, rec.c_str(), out_.data(), nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, namelist_.data(), reclist_.data());
    benchmark::DoNotOptimize(out_.data());
    return out_[HKOUT_RETCODE_OFF] == '1';
  }

 private:
  HKHANDLE handle_{};
  std::array<char, HKOUTREC_SIZE> out_;
  std::vector<char> namelist_ = std::vector<char>(30000);
  std::vector<char> reclist_ = std::vector<char>(7500);
};

void BM_Process(benchmark::State &state) {
  const bool memory = state.range(0) != 0;
  const auto mix = static_cast<Mix>(state.range(1));
  const std::vector<std::string> &recs = inputs(mix, false);
  Instance instance(memory);
  if (recs.empty() || !instance.ok()) {
    state.SkipWithError("no database");
    return;
  }
  // Each thread starts at its own place in the batch.
  size_t i = recs.size() * static_cast<size_t>(state.thread_index()) /
             static_cast<size_t>(state.threads());
  int64_t chosen = 0;
  for (auto _ : state) {
    chosen += instance.process(recs[i]);
    i = i + 1 == recs.size() ? 0 : i + 1;
  }
  state.SetItemsProcessed(state.iterations());
  state.counters["chosen%"] = benchmark::Counter(
      100.0 * static_cast<double>(chosen), benchmark::Counter::kAvgIterations);
}

BENCHMARK(BM_Process)
    ->ArgNames({"memory", "mix"})
    ->ArgsProduct({{0, 1},
                   {orlo::bench::kExact, orlo::bench::kFuzzy,
                    orlo::bench::kRealistic, orlo::bench::kNoRegion}})
    ->Threads(1)
    ->Threads(2)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

// Opens and closes instances for the benchmark loop; heap_MB is what one
// open instance holds.
void measure_opens(benchmark::State &state, bool memory) {
  double held = 0;
  for (auto _ : state) {
    double before = heap_bytes();
    Instance instance(memory);
    held = heap_bytes() - before;
    if (!instance.ok()) {
      state.SkipWithError("open failed");
      return;
    }
  }
  state.counters["heap_MB"] = held / 1e6;
}

void BM_Open(benchmark::State &state) {
  const bool memory = state.range(0) != 0;
  if (database_dir().empty()) {
    state.SkipWithError("no database");
    return;
  }
  measure_opens(state, memory);
}

BENCHMARK(BM_Open)
    ->ArgNames({"memory"})
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

// A second and later open of files another instance holds open: it attaches
// to that instance's reference store instead of reading the files again.
void BM_OpenShared(benchmark::State &state) {
  const bool memory = state.range(0) != 0;
  if (database_dir().empty()) {
    state.SkipWithError("no database");
    return;
  }
  Instance first(memory);
  measure_opens(state, memory);
}

BENCHMARK(BM_OpenShared)
    ->ArgNames({"memory"})
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

// Resident memory of the whole process, in bytes.
double resident_bytes() {
  FILE *f = std::fopen("/proc/self/status", "r");
  if (f == nullptr) return 0;
  char line[256];
  double kb = 0;
  while (std::fgets(line, sizeof line, f) != nullptr) {
    if (std::sscanf(line, "VmRSS: %lf kB", &kb) == 1) break;
  }
  std::fclose(f);
  return kb * 1024;
}

// 200 instances of the same files open at once, each after 1,000 records of
// the realistic mix (each from its own place in the batch): the resident
// memory they add to the process, and what the process holds in all.
void BM_ManyInstances(benchmark::State &state) {
  constexpr int kInstances = 200;
  constexpr size_t kRecords = 1000;
  const bool memory = state.range(0) != 0;
  const std::vector<std::string> &recs = inputs(orlo::bench::kRealistic, false);
  if (recs.empty()) {
    state.SkipWithError("no database");
    return;
  }
  double added = 0;
  double total = 0;
  for (auto _ : state) {
    const double before = resident_bytes();
    std::vector<std::unique_ptr<Instance>> open;
    for (int n = 0; n < kInstances; ++n) {
      open.push_back(std::make_unique<Instance>(memory));
      if (!open.back()->ok()) {
        state.SkipWithError("open failed");
        return;
      }
      size_t i = recs.size() * static_cast<size_t>(n) / kInstances;
      for (size_t k = 0; k < kRecords; ++k) {
        open.back()->process(recs[i]);
        i = i + 1 == recs.size() ? 0 : i + 1;
      }
    }
    total = resident_bytes();
    added = total - before;
  }
  state.SetItemsProcessed(state.iterations() * kInstances * kRecords);
  state.counters["rss_added_MB"] = added / 1e6;
  state.counters["rss_total_MB"] = total / 1e6;
}

BENCHMARK(BM_ManyInstances)
    ->ArgNames({"memory"})
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void BM_InstanceMemory(benchmark::State &state) {
  const bool memory = state.range(0) != 0;
  const std::vector<std::string> &recs = inputs(orlo::bench::kRealistic, false);
  if (recs.empty()) {
    state.SkipWithError("no database");
    return;
  }
  double held = 0;
  for (auto _ : state) {
    double before = heap_bytes();
    Instance instance(memory);
    for (const std::string &rec : recs) instance.process(rec);
    held = heap_bytes() - before;
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(recs.size()));
  state.counters["heap_MB"] = held / 1e6;
}

BENCHMARK(BM_InstanceMemory)
    ->ArgNames({"memory"})
    ->Arg(0)
    ->Arg(1)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
