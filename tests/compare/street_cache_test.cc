// The per-thread cache of the street comparison's first street: keyed on
// the first street's bytes alone, and empty in a new thread. (Runs of calls
// against fresh scores, on many threads, are in the differential test.)
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::forget_cached_street;
using orlo_test::street_score;

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
