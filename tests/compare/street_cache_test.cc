// The per-thread cache of the street comparison's first street: a run of
// calls scores exactly as fresh calls would, threads never see one another's
// streets, and the cache is keyed on the first street's bytes alone.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::padded;

// Names as the matcher meets them: correct, abbreviated, misspelt, numbered.
const std::vector<std::string> &pool() {
  static const std::vector<std::string> names = {"NATHAN ROAD",
                                                 "NATHAN RD",
                                                 "NATHEN RD",
                                                 "QUEENS ROAD CENTRAL",
                                                 "QUEENS RD CENTRAL",
                                                 "QUEENS RD C",
                                                 "DES VOEUX ROAD",
                                                 "DES VOEUX RD WEST",
                                                 "CONNAUGHT ROAD",
                                                 "CANAUGHT RD",
                                                 "HOLLYWOOD ROAD",
                                                 "HOLYWOOD RD",
                                                 "KING GEORGE RD",
                                                 "KING G RD",
                                                 "TSIM SHA TSUI",
                                                 "TSEM SHE TSOI",
                                                 "CAUSEWAY BAY",
                                                 "COSWAY BAY",
                                                 "1ST STREET",
                                                 "FIRST ST",
                                                 "21ST AVE",
                                                 "007 MAIN ST",
                                                 "7 MAIN ST",
                                                 "HIGHWAY 9",
                                                 "HWY 9",
                                                 "ROUTE 9",
                                                 "COURT A",
                                                 "COURT B",
                                                 "COURTA",
                                                 "N",
                                                 "NORTH",
                                                 "SOUTH",
                                                 "KAM-TIN RD",
                                                 "KAM TIN RD",
                                                 "LOK AND FU RD",
                                                 "LOK & FU ST",
                                                 "A+B ST",
                                                 " MAIN",
                                                 "",
                                                 "AVENUE FOCH",
                                                 "AV FOCH",
                                                 "CALLE SOL",
                                                 "MAINSTREET",
                                                 "MAINSTREE",
                                                 "J F KENNEDY",
                                                 "JOHN FITZGERALD KENNEDY"};
  return names;
}

int32_t compare(size_t i, size_t j, int32_t len = 31) {
  std::string a = padded(pool()[i], static_cast<size_t>(len));
  std::string b = padded(pool()[j], static_cast<size_t>(len));
  return m_street(a.data(), b.data(), len, nullptr);
}

// The score of a call made as the very first call of a new thread.
int32_t compare_fresh(size_t i, size_t j, int32_t len = 31) {
  int32_t score = -1;
  std::thread t([&] { score = compare(i, j, len); });
  t.join();
  return score;
}

using Key = std::pair<size_t, size_t>;

// Fresh scores of every pair, computed once for the whole program.
const std::map<Key, int32_t> &fresh_scores() {
  static const std::map<Key, int32_t> scores = [] {
    std::map<Key, int32_t> s;
    for (size_t i = 0; i < pool().size(); ++i) {
      for (size_t j = 0; j < pool().size(); ++j) {
        s[{i, j}] = compare_fresh(i, j);
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
  std::uniform_int_distribution<size_t> pick(0, pool().size() - 1);
  std::uniform_int_distribution<int> run_length(1, 30);
  int checked = 0;
  while (checked < 20000) {
    const size_t i = pick(rng);
    for (int r = run_length(rng); r > 0; --r, ++checked) {
      const size_t j = pick(rng);
      ASSERT_EQ(compare(i, j), fresh.at({i, j}))
          << "'" << pool()[i] << "' / '" << pool()[j] << "' after " << checked
          << " calls";
    }
  }
}

TEST(StreetCache, SecondStreetsDoNotDisturbTheCachedFirst) {
  const auto &fresh = fresh_scores();
  for (size_t i = 0; i < pool().size(); ++i) {
    for (size_t j = 0; j < pool().size(); ++j) {
      ASSERT_EQ(compare(i, j), fresh.at({i, j}));
    }
    // And back over the same second streets in reverse.
    for (size_t j = pool().size(); j-- > 0;) {
      ASSERT_EQ(compare(i, j), fresh.at({i, j}));
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
      std::uniform_int_distribution<size_t> pick(0, pool().size() - 1);
      for (int round = 0; round < 3000; ++round) {
        // Threads start their runs on different first streets.
        const size_t i =
            (static_cast<size_t>(t) * 5 + pick(rng)) % pool().size();
        for (int r = 0; r < 4; ++r) {
          const size_t j = pick(rng);
          if (compare(i, j) != fresh.at({i, j})) ++wrong;
          ++done;
        }
      }
    });
  }
  for (std::thread &th : threads) th.join();
  EXPECT_EQ(done.load(), kThreads * 3000 * 4);
  EXPECT_EQ(wrong.load(), 0);
}

// --- what the key leaves out
// ---------------------------------------------------

int32_t call(const std::string &s1, const std::string &s2, int32_t len,
             const char *options) {
  std::string a = padded(s1, static_cast<size_t>(len));
  std::string b = padded(s2, static_cast<size_t>(len));
  std::string opt = options ? options : "";
  return m_street(a.data(), b.data(), len, options ? opt.data() : nullptr);
}

void forget_cached_street() {
  call("\x7F", "", 1, nullptr);
}

TEST(StreetCacheKey, OptionsAreNotPartOfTheKey) {
  forget_cached_street();
  EXPECT_EQ(call("AVE FOCH", "FOCH", 31, nullptr), 98);  // AVE dropped
  forget_cached_street();
  EXPECT_EQ(call("AVE FOCH", "FOCH", 31, "TYPE"), 0);  // AVE kept: strict
  // The next call reuses the form recoded with TYPE.
  EXPECT_EQ(call("AVE FOCH", "FOCH", 31, nullptr), 0);
  // Other second streets leave that form alone ...
  EXPECT_EQ(call("AVE FOCH", "FOCX", 31, nullptr), 0);
  // ... and so does a call settled by raw identity.
  EXPECT_EQ(call("LOK FU", "LOK FU", 31, nullptr), 100);
  EXPECT_EQ(call("AVE FOCH", "FOCH", 31, nullptr), 0);
  // Another first street replaces it.
  EXPECT_EQ(call("LOK FU", "LOK FX", 31, nullptr), 96);
  EXPECT_EQ(call("AVE FOCH", "FOCH", 31, nullptr), 98);
}

TEST(StreetCacheKey, LengthIsNotPartOfTheKey) {
  // In 15 bytes FIRST AVE has no second word to drop: fresh, it stays
  // '1ST   AVE' and scores 0 against '1ST' (strict, digit).
  forget_cached_street();
  EXPECT_EQ(call("FIRST AVE", "1ST", 15, nullptr), 0);
  // Cached from a 31-byte call, where AVE was dropped, it scores 98.
  forget_cached_street();
  EXPECT_EQ(call("FIRST AVE", "X", 31, nullptr), 0);
  EXPECT_EQ(call("FIRST AVE", "1ST", 15, nullptr), 98);
}

TEST(StreetCacheKey, EachThreadStartsEmpty) {
  forget_cached_street();
  EXPECT_EQ(call("AVE FOCH", "X", 31, "TYPE"), 0);
  int32_t other = -1;
  std::thread t([&] { other = call("AVE FOCH", "FOCH", 31, nullptr); });
  t.join();
  EXPECT_EQ(other, 98);
  // This thread's cache is still the TYPE form.
  EXPECT_EQ(call("AVE FOCH", "FOCH", 31, nullptr), 0);
}

}  // namespace
