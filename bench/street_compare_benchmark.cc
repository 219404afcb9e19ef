// Street comparisons per second: the matcher's pattern (one input street
// against a few thousand reference names, the input's cached form reused),
// fresh pairs (a new first street on every call), and the prepared
// comparison (one input against 10,000 names prepared once). Each row
// reports the sum of its scores over one round (the word-stage row its one
// score) as "checksum", so that a change of speed can be shown not to change
// a score.
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
  int64_t sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const std::string &ref : refs) {
      sum += m_street(input.data(), ref.data(), kFieldLen, nullptr);
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["checksum"] = static_cast<double>(sum);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(refs.size()));
}
BENCHMARK(BM_StreetMatcherPattern)->Unit(benchmark::kMillisecond);

// A new first street on every call: nothing comes from the cache.
void BM_StreetFreshPairs(benchmark::State &state) {
  const std::vector<std::string> refs = reference_names();
  int64_t sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (size_t i = 0; i + 1 < refs.size(); ++i) {
      sum += m_street(refs[i].data(), refs[i + 1].data(), kFieldLen, nullptr);
    }
    benchmark::DoNotOptimize(sum);
  }
  state.counters["checksum"] = static_cast<double>(sum);
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
  int32_t score = 0;
  for (auto _ : state) {
    score = m_street(a.data(), b.data(), kFieldLen, nullptr);
    benchmark::DoNotOptimize(score);
  }
  state.counters["checksum"] = score;
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StreetWordStage);

// Street-like names of 15 to 30 characters: two or three syllable words and
// a street-type word.
std::vector<std::string> prepared_names(size_t count, std::mt19937 &rng) {
  static const char *const kSyllables[] = {
      "KWUN", "TONG", "SHA",  "TIN",  "TSIM", "TSUI", "MONG", "KOK",
      "WAN",  "CHAI", "SAI",  "YING", "PUN",  "LOK",  "FU",   "KAM",
      "SHEK", "KIP",  "MEI",  "TAI",  "PO",   "HANG", "HAU",  "YAU",
      "MA",   "TEI",  "NGAU", "CHI",  "WONG", "LAI",  "KING", "QUEENS"};
  static const char *const kTypes[] = {"ROAD", "STREET",  "AVENUE",  "LANE",
                                       "PATH", "TERRACE", "CRESCENT"};
  std::uniform_int_distribution<size_t> syllable(0, std::size(kSyllables) - 1);
  std::uniform_int_distribution<size_t> type(0, std::size(kTypes) - 1);
  std::vector<std::string> names;
  while (names.size() < count) {
    std::string name;
    for (int w = 2 + static_cast<int>(rng() % 2); w > 0; --w) {
      name += kSyllables[syllable(rng)];
      name += ' ';
    }
    name += kTypes[type(rng)];
    if (name.size() < 15 || name.size() > 30) continue;
    names.push_back(name);
  }
  return names;
}

// One or two typing errors: a letter changed, dropped or doubled.
std::string misspelt(std::string s, std::mt19937 &rng) {
  for (int e = 1 + static_cast<int>(rng() % 2); e > 0; --e) {
    const size_t i = rng() % s.size();
    switch (rng() % 3) {
      case 0:
        s[i] = static_cast<char>('A' + rng() % 26);
        break;
      case 1:
        s.erase(i, 1);
        break;
      default:
        s.insert(i, 1, s[i]);
        break;
    }
  }
  return s;
}

// 10,000 street-like names (fields of 31 bytes) and 64 inputs, each one or
// two edits away from one of them.
struct PreparedCase {
  std::vector<std::string> names;
  std::vector<std::string> inputs;
};

const PreparedCase &prepared_case() {
  static const PreparedCase c = [] {
    PreparedCase pc;
    std::mt19937 rng(2026);
    pc.names = prepared_names(10000, rng);
    for (int k = 0; k < 64; ++k) {
      pc.inputs.push_back(
          misspelt(pc.names[rng() % pc.names.size()].substr(0, 30), rng));
    }
    for (std::string &n : pc.names) n.resize(kFieldLen, ' ');
    for (std::string &n : pc.inputs) n.resize(kFieldLen, ' ');
    return pc;
  }();
  return c;
}

// Each input scored against all 10,000 names prepared once (m_stmany), the
// inputs in turn. The checksum adds every score of all 64 inputs.
void BM_StreetPrepared(benchmark::State &state) {
  const PreparedCase &c = prepared_case();
  std::vector<const char *> fields;
  for (const std::string &n : c.names) fields.push_back(n.data());
  MSTREETS *set = m_stprep(fields.data(), static_cast<int32_t>(fields.size()),
                           kFieldLen, nullptr);
  std::vector<int32_t> scores(fields.size());
  size_t next = 0;
  for (auto _ : state) {
    m_stmany(set, c.inputs[next].data(), scores.data());
    next = (next + 1) % c.inputs.size();
    benchmark::DoNotOptimize(scores.data());
  }
  int64_t sum = 0;
  for (const std::string &in : c.inputs) {
    m_stmany(set, in.data(), scores.data());
    for (int32_t s : scores) sum += s;
  }
  state.counters["checksum"] = static_cast<double>(sum);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(fields.size()));
  m_stfree(set);
}
BENCHMARK(BM_StreetPrepared)->Unit(benchmark::kMillisecond);

// The same inputs and names through m_street, the names not prepared; the
// checksum must equal the prepared row's.
void BM_StreetPreparedPairsUnprepared(benchmark::State &state) {
  const PreparedCase &c = prepared_case();
  const auto round = [&](const std::string &in) {
    int64_t sum = 0;
    for (const std::string &n : c.names) {
      sum += m_street(in.data(), n.data(), kFieldLen, nullptr);
    }
    return sum;
  };
  size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(round(c.inputs[next]));
    next = (next + 1) % c.inputs.size();
  }
  int64_t sum = 0;
  for (const std::string &in : c.inputs) sum += round(in);
  state.counters["checksum"] = static_cast<double>(sum);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(c.names.size()));
}
BENCHMARK(BM_StreetPreparedPairsUnprepared)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
