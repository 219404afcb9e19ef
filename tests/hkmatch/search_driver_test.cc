// The address search end to end: prepared records searched with hk_mpro on
// small reference databases written for each test, in file and in memory
// mode; regions, passes, reuse of the previous search, the caches, and the
// instance's state after errors.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "hkmatch/reference_access.h"
#include "hkmatch/search_alloc.h"
#include "orlo_compare.h"
#include "orlo_matcher.h"
#include "search_harness.h"

namespace {

using orlo::access_counters;
using orlo::AccessCounters;
using orlo::testing::Address;
using orlo::testing::Geocoder;
using orlo::testing::Outcome;
using orlo::testing::TestDb;

// Two regions; NATHAN ROAD holds two ranges of numbers.
constexpr const char *kCsv =
    "HK,DES VOEUX ROAD,H01,00011,,,,1,,99,,\n"
    "HK,QUEEN'S ROAD CENTRAL,H01,00010,,,,1,,99,,\n"
    "KLN,ARGYLE STREET,K02,00020,,,,1,,50,,\n"
    "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n"
    "KLN,NATHAN ROAD,K01,00002,,,,21,,40,,\n"
    "KLN,SHANGHAI STREET,K03,00030,,,,1,,300,,\n";

AccessCounters counters_now() {
  return access_counters();
}

// Work done by reference data since `before`.
struct Work {
  uint64_t level2, basedata, unpacks;
};
Work since(const AccessCounters &before) {
  const AccessCounters &now = access_counters();
  return {now.level2_reads - before.level2_reads,
          now.basedata_reads - before.basedata_reads,
          now.unpacks - before.unpacks};
}

// Every search test runs in file mode and in memory mode.
class Search : public ::testing::TestWithParam<const char *> {
 protected:
  // Options of the test's instance: the first character as given, the
  // memory mode character of the parameter second.
  std::string options(char first = ' ') const {
    return std::string(1, first) + GetParam();
  }
};

INSTANTIATE_TEST_SUITE_P(Modes, Search, ::testing::Values("-", "M"),
                         [](const auto &info) {
                           return std::string(info.param[0] == 'M' ? "Memory"
                                                                   : "File");
                         });

TEST_P(Search, ExactStreetChoosesTheRecordWhoseRangeHoldsTheNumber) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  ASSERT_TRUE(g.opened());
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '0');
  EXPECT_EQ(o.refid(), "00001");
  EXPECT_EQ(o.street(), "NATHAN ROAD");
  EXPECT_EQ(g.mcb()->laststat, 0);
  EXPECT_EQ(g.mcb()->lastcnt, 1);

  o = g.search({"KLN", "NATHAN ROAD", "33"});
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.refid(), "00002");
}

TEST_P(Search, NumberOutsideEveryRangeIsRejectedOnItsNumber) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Outcome o = g.search({"KLN", "NATHAN ROAD", "99"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '3');
  EXPECT_EQ(o.refid(), "");
  // The exact street was found, so the fuzzy pass did not run.
  EXPECT_EQ(g.mcb()->laststat, 1);
}

TEST_P(Search, BlankRegionOrModeFMeansNoKey) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  ASSERT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).retcode(), '1');
  for (Address a : {Address{"", "NATHAN ROAD", "12"},
                    Address{"KLN", "NATHAN ROAD", "12", "", "", "", 'F'}}) {
    Outcome o = g.search(a);
    EXPECT_EQ(o.ret, 1);
    EXPECT_EQ(o.retcode(), '0');
    EXPECT_EQ(o.matchstat(), '1');
    EXPECT_EQ(o.street(), "NATHAN ROAD");  // the input echoed
    EXPECT_EQ(g.mcb()->laststat, 2);
    EXPECT_EQ(g.mcb()->lastcnt, 0);
    EXPECT_EQ(std::string(g.mcb()->lastkey, 30), std::string(30, '\0'));
  }
  // With no last key the next search loads the street table again.
  AccessCounters before = counters_now();
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).retcode(), '1');
  EXPECT_EQ(since(before).level2, 1u);
}

TEST_P(Search, UnknownRegionIsNotFoundAndForgotten) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Outcome o = g.search({"NT", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 1);
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '1');
  EXPECT_EQ(std::string(g.mcb()->lastkey, 30), std::string(30, '\0'));
  EXPECT_EQ(g.mcb()->lvl2cnt, 0);
  EXPECT_EQ(g.search({"HK", "DES VOEUX ROAD", "5"}).refid(), "00011");
}

TEST_P(Search, EmptyStreetFindsNoCandidateInEitherPass) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Outcome o = g.search({"KLN", "", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '2');
  EXPECT_EQ(g.mcb()->laststat, 2);
  EXPECT_EQ(g.mcb()->lastcnt, 0);
}

TEST_P(Search, UnknownStreetFindsNoCandidate) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Outcome o = g.search({"KLN", "ZZYZX LANE", "12"});
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '2');
  EXPECT_EQ(g.mcb()->laststat, 2);
}

TEST_P(Search, SameRegionAndStreetReusesCandidatesAndRecords) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Outcome first = g.search({"KLN", "NATHAN ROAD", "12"});
  ASSERT_EQ(g.mcb()->laststat, 0);
  AccessCounters before = counters_now();
  uint64_t allocs = orlo::search_alloc_count();
  Outcome again = g.search({"KLN", "NATHAN ROAD", "33"});
  Work w = since(before);
  EXPECT_EQ(w.level2, 0u);
  EXPECT_EQ(w.basedata, 0u);
  EXPECT_EQ(w.unpacks, 0u);
  EXPECT_EQ(orlo::search_alloc_count(), allocs);
  // The records are compared again with the new input.
  EXPECT_EQ(first.refid(), "00001");
  EXPECT_EQ(again.refid(), "00002");
}

TEST_P(Search, NoReuseAfterASearchThatDidNotChooseInItsFirstPass) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  ASSERT_EQ(g.search({"KLN", "NATHAN ROAD", "99"}).matchstat(), '3');
  ASSERT_EQ(g.mcb()->laststat, 1);
  // Same street: the scan runs again (its candidates are rebuilt) but the
  // table and the street's cached records serve it.
  g.mcb()->lastcnt = 0;  // reuse would now find no candidate at all
  AccessCounters before = counters_now();
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.refid(), "00001");
  EXPECT_EQ(since(before).level2, 0u);
  EXPECT_EQ(since(before).unpacks, 0u);
}

TEST_P(Search, OtherStreetOfTheSameRegionUsesTheRegionCache) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  g.search({"KLN", "NATHAN ROAD", "12"});
  AccessCounters before = counters_now();
  EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "7"}).refid(), "00020");
  Work w = since(before);
  EXPECT_EQ(w.level2, 0u);
  EXPECT_EQ(w.basedata, 1u);
  EXPECT_EQ(w.unpacks, 1u);

  // Back to the first street: its block and records are cached.
  before = counters_now();
  uint64_t allocs = orlo::search_alloc_count();
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "15"}).refid(), "00001");
  w = since(before);
  EXPECT_EQ(w.basedata, 0u);
  EXPECT_EQ(w.unpacks, 0u);
  EXPECT_EQ(orlo::search_alloc_count(), allocs);
}

TEST_P(Search, NewRegionDropsTheTableAndItsCaches) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  g.search({"KLN", "NATHAN ROAD", "12"});
  AccessCounters before = counters_now();
  EXPECT_EQ(g.search({"HK", "DES VOEUX ROAD", "5"}).refid(), "00011");
  EXPECT_EQ(since(before).level2, 1u);
  EXPECT_EQ(g.mcb()->cacheused > 0, true);

  before = counters_now();
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).refid(), "00001");
  Work w = since(before);
  EXPECT_EQ(w.level2, 1u);
  EXPECT_EQ(w.basedata, 1u);
  EXPECT_EQ(w.unpacks, 2u);
}

TEST_P(Search, CacheCeilingKeepsBlocksAndRecordsThatFitOnly) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  // Room for NATHAN ROAD's block, not for its unpacked records.
  uint32_t blen = orlo::testing::street_block(db, "KLN", "NATHAN ROAD").len;
  g.search({"HK", "DES VOEUX ROAD", "5"});  // the ceiling acts per region
  g.mcb()->cachemax = static_cast<int32_t>(blen + 1);
  g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(g.mcb()->cacheused, static_cast<int32_t>(blen));
  g.search({"KLN", "ARGYLE STREET", "7"});  // nothing more fits

  AccessCounters before = counters_now();
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).refid(), "00001");
  Work w = since(before);
  EXPECT_EQ(w.basedata, 0u);  // block from the cache
  EXPECT_EQ(w.unpacks, 2u);   // records unpacked again
  before = counters_now();
  EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "8"}).refid(), "00020");
  EXPECT_EQ(since(before).basedata, 1u);  // read again every time
}

TEST_P(Search, NothingIsCachedUnderAZeroCeiling) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  g.search({"HK", "DES VOEUX ROAD", "5"});
  g.mcb()->cachemax = 0;
  for (int i = 0; i < 2; ++i) {
    g.search({"KLN", "NATHAN ROAD", "12"});
    AccessCounters before = counters_now();
    EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "7"}).refid(), "00020");
    EXPECT_EQ(since(before).basedata, 1u);
    EXPECT_EQ(since(before).unpacks, 1u);
  }
  EXPECT_EQ(g.mcb()->cacheused, 0);
}

TEST_P(Search, SearchLevelTwoStartsFuzzyAndNeverCountsAsFirstPass) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"}, /*level=*/2);
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.refid(), "00001");
  EXPECT_EQ(g.mcb()->laststat, 1);
}

TEST_P(Search, ModeThreeStopsAfterTheExactPass) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  Address a{"KLN", "NATHAN RAOD", "12"};
  a.mode = '3';
  Outcome o = g.search(a);
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '2');
  EXPECT_EQ(g.mcb()->laststat, 1);
  // At level 2 its only pass is fuzzy and skips every street.
  o = g.search(a, 2);
  EXPECT_EQ(o.matchstat(), '2');
}

}  // namespace
