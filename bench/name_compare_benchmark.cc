// Comparisons per second of the spelling, general string and business name
// comparisons on fixed pairs of names.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "orlo_compare.h"

namespace {

constexpr int32_t kLen = 40;

struct NamePair {
  std::string a;
  std::string b;
};

// Both names blank-padded to kLen bytes.
NamePair pair_of(const char *a, const char *b) {
  NamePair p{a, b};
  p.a.resize(kLen, ' ');
  p.b.resize(kLen, ' ');
  return p;
}

// Pairs that stop at different stages: a near miss (character alignment),
// a pair that reaches the word-level rules, and an identical pair.
const NamePair kNearMiss = pair_of("CHRISTOPHERSON", "CHRISTOFFERSEN");
const NamePair kWordLevel = pair_of("JOHN SMITH XYZ", "SMITH JOHN ABC");
const NamePair kBusiness =
    pair_of("ACME IBM WIDGETS LIMITED", "ACME I B M WIDGET LTD");
const NamePair kIdentical = pair_of("HONG KONG TRADING", "HONG KONG TRADING");

const NamePair &pick(int64_t which) {
  switch (which) {
    case 0:
      return kNearMiss;
    case 1:
      return kWordLevel;
    case 2:
      return kBusiness;
    default:
      return kIdentical;
  }
}

void set_label(benchmark::State &state) {
  static const char *const kLabels[] = {"near miss", "word level", "business",
                                        "identical"};
  state.SetLabel(kLabels[state.range(0)]);
  state.SetItemsProcessed(state.iterations());
}

void BM_Spelling(benchmark::State &state) {
  const NamePair &p = pick(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(m_spllng(p.a.data(), p.b.data(), kLen, nullptr));
  }
  set_label(state);
}

void BM_SpellingSquish(benchmark::State &state) {
  const NamePair &p = pick(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        m_spllng(p.a.data(), p.b.data(), kLen, "DI;SQUISH"));
  }
  set_label(state);
}

void BM_GeneralString(benchmark::State &state) {
  const NamePair &p = pick(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(m_tgstr(p.a.data(), p.b.data(), kLen));
  }
  set_label(state);
}

void BM_BusinessName(benchmark::State &state) {
  const NamePair &p = pick(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(m_busnam(p.a.data(), p.b.data(), kLen, nullptr));
  }
  set_label(state);
}

void BM_BusinessNameSort(benchmark::State &state) {
  const NamePair &p = pick(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(m_busnam(p.a.data(), p.b.data(), kLen, "SORT"));
  }
  set_label(state);
}

void BM_BusinessNameCompact(benchmark::State &state) {
  const NamePair &p = pick(state.range(0));
  for (auto _ : state) {
    benchmark::DoNotOptimize(m_busnam(p.a.data(), p.b.data(), kLen, "COMPACT"));
  }
  set_label(state);
}

BENCHMARK(BM_Spelling)->DenseRange(0, 3);
BENCHMARK(BM_SpellingSquish)->DenseRange(0, 3);
BENCHMARK(BM_GeneralString)->DenseRange(0, 3);
BENCHMARK(BM_BusinessName)->DenseRange(0, 3);
BENCHMARK(BM_BusinessNameSort)->DenseRange(0, 3);
BENCHMARK(BM_BusinessNameCompact)->DenseRange(0, 3);

}  // namespace

BENCHMARK_MAIN();
