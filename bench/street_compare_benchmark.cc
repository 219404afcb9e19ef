// Street comparisons per second: the matcher's pattern (one input street
// against a few thousand reference names, the input's cached form reused)
// and fresh pairs (a new first street on every call).
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "orlo_compare.h"

namespace {

constexpr int32_t kFieldLen = 31;
constexpr size_t kReferenceNames = 3000;

// Street names of a Hong Kong flavour: one to three syllable words, now and
// then a number or an ordinal, and a street-type word.
std::vector<std::string> reference_names() {
  static const char *const kSyllables[] = {
      "KWUN", "TONG", "SHA",  "TIN",  "TSIM", "TSUI", "MONG", "KOK",
      "WAN",  "CHAI", "SAI",  "YING", "PUN",  "LOK",  "FU",   "KAM",
      "SHEK", "KIP",  "MEI",  "TAI",  "PO",   "HANG", "HAU",  "YAU",
      "MA",   "TEI",  "NGAU", "CHI",  "WONG", "LAI",  "KING", "QUEENS"};
  static const char *const kTypes[] = {
      "ROAD", "RD",   "STREET",  "ST",      "AVENUE",
      "LANE", "PATH", "TERRACE", "HIGHWAY", "CRESCENT"};
  std::mt19937 rng(1997);
  std::uniform_int_distribution<size_t> syllable(0, std::size(kSyllables) - 1);
  std::uniform_int_distribution<size_t> type(0, std::size(kTypes) - 1);
  std::uniform_int_distribution<int> words(1, 3);
  std::uniform_int_distribution<int> percent(0, 99);
  std::vector<std::string> names;
  while (names.size() < kReferenceNames) {
    std::string name;
    if (percent(rng) < 10) name = std::to_string(percent(rng) + 1) + " ";
    if (percent(rng) < 5) name += "FIRST ";
    for (int w = words(rng); w > 0; --w) {
      name += kSyllables[syllable(rng)];
      name += ' ';
    }
    name += kTypes[type(rng)];
    name.resize(kFieldLen, ' ');
    names.push_back(name);
  }
  return names;
}

// One input street against every reference name, as the search does when it
// scores the street table of a region.
void BM_StreetMatcherPattern(benchmark::State &state) {
  const std::vector<std::string> refs = reference_names();
  std::string input = "KWUN TONG ROAD";
  input.resize(kFieldLen, ' ');
  int64_t high = 0;
  for (auto _ : state) {
    for (const std::string &ref : refs) {
      const int32_t s = m_street(input.data(), ref.data(), kFieldLen, nullptr);
      high += s >= 90;
    }
  }
  benchmark::DoNotOptimize(high);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(refs.size()));
}
BENCHMARK(BM_StreetMatcherPattern)->Unit(benchmark::kMillisecond);

// A new first street on every call: nothing comes from the cache.
void BM_StreetFreshPairs(benchmark::State &state) {
  const std::vector<std::string> refs = reference_names();
  int64_t high = 0;
  for (auto _ : state) {
    for (size_t i = 0; i + 1 < refs.size(); ++i) {
      const int32_t s =
          m_street(refs[i].data(), refs[i + 1].data(), kFieldLen, nullptr);
      high += s >= 90;
    }
  }
  benchmark::DoNotOptimize(high);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(refs.size() - 1));
}
BENCHMARK(BM_StreetFreshPairs)->Unit(benchmark::kMillisecond);

// Near misses that run the whole cascade down to the word stage.
void BM_StreetWordStage(benchmark::State &state) {
  std::string a = "KING GEORGE V MEMORIAL RD";
  std::string b = "KING G FIFTH MEMORIAL ROAD";
  a.resize(kFieldLen, ' ');
  b.resize(kFieldLen, ' ');
  for (auto _ : state) {
    benchmark::DoNotOptimize(m_street(a.data(), b.data(), kFieldLen, nullptr));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StreetWordStage);

}  // namespace

BENCHMARK_MAIN();
