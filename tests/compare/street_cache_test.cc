// The per-thread cache of the street comparison's first street: a run of
// calls scores exactly as fresh calls would, threads never see one another's
// streets, and the cache is keyed on the first street's bytes alone.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::forget_cached_street;
using orlo_test::street_score;

// Names as the matcher meets them: correct, abbreviated, misspelt, numbered.
std::vector<std::string> pool_of_names() {
  std::vector<std::string> names;
  std::istringstream in(
      "NATHAN ROAD|NATHAN RD|NATHEN RD|QUEENS ROAD CENTRAL|QUEENS RD C|"
      "DES VOEUX ROAD|DES VOEUX RD WEST|CONNAUGHT ROAD|CANAUGHT RD|"
      "HOLLYWOOD ROAD|HOLYWOOD RD|KING GEORGE RD|KING G RD|TSIM SHA TSUI|"
      "TSEM SHE TSOI|CAUSEWAY BAY|COSWAY BAY|1ST STREET|FIRST ST|21ST AVE|"
      "007 MAIN ST|7 MAIN ST|HIGHWAY 9|HWY 9|ROUTE 9|COURT A|COURT B|COURTA|"
      "N|NORTH|SOUTH|KAM-TIN RD|KAM TIN RD|LOK AND FU RD|LOK & FU ST|A+B ST|"
      " MAIN||AVENUE FOCH|AV FOCH|CALLE SOL|MAINSTREET|MAINSTREE|J F KENNEDY|"
      "JOHN FITZGERALD KENNEDY");
  for (std::string name; std::getline(in, name, '|');) names.push_back(name);
  return names;
}
const std::vector<std::string> kPool = pool_of_names();
const size_t kPoolSize = kPool.size();

int32_t compare(size_t i, size_t j) {
  return street_score(kPool[i], kPool[j], 31);
}

using Key = std::pair<size_t, size_t>;

// The score of every pair as the very first call of a new thread, computed
// once for the whole program.
const std::map<Key, int32_t> &fresh_scores() {
  static const std::map<Key, int32_t> scores = [] {
    std::map<Key, int32_t> s;
    for (size_t i = 0; i < kPoolSize; ++i) {
      for (size_t j = 0; j < kPoolSize; ++j) {
        std::thread t([&] { s[{i, j}] = compare(i, j); });
        t.join();
      }
    }
    return s;
  }();
  return scores;
}

// Calls in the matcher's pattern (runs of one first street) mixed with
// jumps: every score equals the fresh one.
TEST(StreetCache, LongSequenceMatchesFreshCalls) {
  const auto &fresh = fresh_scores();
  std::mt19937 rng(2024);
  std::uniform_int_distribution<size_t> pick(0, kPoolSize - 1);
  std::uniform_int_distribution<int> run_length(1, 30);
  for (int checked = 0; checked < 20000;) {
    const size_t i = pick(rng);
    for (int r = run_length(rng); r > 0; --r, ++checked) {
      const size_t j = pick(rng);
      ASSERT_EQ(compare(i, j), fresh.at({i, j}))
          << "'" << kPool[i] << "' / '" << kPool[j] << "' after " << checked
          << " calls";
    }
  }
}

// Every thread works through its own first streets, all at the same time;
// every score must be the one a single thread gets.
TEST(StreetCache, ThreadsKeepTheirOwnCache) {
  const auto &fresh = fresh_scores();
  constexpr int kThreads = 8;
  std::atomic<int> wrong{0};
  std::atomic<int> done{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      std::mt19937 rng(static_cast<unsigned>(t));
      std::uniform_int_distribution<size_t> pick(0, kPoolSize - 1);
      for (int round = 0; round < 3000; ++round) {
        // Threads start their runs on different first streets.
        const size_t i = (static_cast<size_t>(t) * 5 + pick(rng)) % kPoolSize;
        for (int r = 0; r < 4; ++r, ++done) {
          const size_t j = pick(rng);
          if (compare(i, j) != fresh.at({i, j})) ++wrong;
        }
      }
    });
  }
  for (std::thread &th : threads) th.join();
  EXPECT_EQ(done.load(), kThreads * 3000 * 4);
  EXPECT_EQ(wrong.load(), 0);
}

// The key leaves the options out: a first street recoded with TYPE is
// reused by later calls without it, until another first street replaces it.
// (Raw identity settles before the cache is consulted.)
TEST(StreetCacheKey, OptionsAreNotPartOfTheKey) {
  forget_cached_street();
  EXPECT_EQ(street_score("AVE FOCH", "FOCH", 31), 98);  // AVE dropped
  forget_cached_street();
  EXPECT_EQ(street_score("AVE FOCH", "FOCH", 31, "TYPE"), 0);  // AVE kept
  EXPECT_EQ(street_score("AVE FOCH", "FOCH", 31), 0);
  EXPECT_EQ(street_score("AVE FOCH", "FOCX", 31), 0);
  EXPECT_EQ(street_score("LOK FU", "LOK FU", 31), 100);
  EXPECT_EQ(street_score("AVE FOCH", "FOCH", 31), 0);
  EXPECT_EQ(street_score("LOK FU", "LOK FX", 31), 96);
  EXPECT_EQ(street_score("AVE FOCH", "FOCH", 31), 98);
}

// Nor the length: in 15 bytes FIRST AVE keeps its AVE (no second word) and
// scores 0 against 1ST, but cached from a 31-byte call it scores 98.
TEST(StreetCacheKey, LengthIsNotPartOfTheKey) {
  forget_cached_street();
  EXPECT_EQ(street_score("FIRST AVE", "1ST", 15), 0);
  forget_cached_street();
  EXPECT_EQ(street_score("FIRST AVE", "X", 31), 0);
  EXPECT_EQ(street_score("FIRST AVE", "1ST", 15), 98);
}

TEST(StreetCacheKey, EachThreadStartsEmpty) {
  forget_cached_street();
  EXPECT_EQ(street_score("AVE FOCH", "X", 31, "TYPE"), 0);
  int32_t other = -1;
  std::thread t([&] { other = street_score("AVE FOCH", "FOCH", 31); });
  t.join();
  EXPECT_EQ(other, 98);
  // This thread's cache still holds the TYPE form.
  EXPECT_EQ(street_score("AVE FOCH", "FOCH", 31), 0);
}

}  // namespace
