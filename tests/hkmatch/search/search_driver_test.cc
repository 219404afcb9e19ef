// The address search end to end (hk_mpro) on small databases, in file and
// in memory mode: regions, passes, reuse, caches and the state left behind.
#include <gtest/gtest.h>

#include <string>

#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/reference_store.h"
#include "hkmatch/refdata/search_alloc.h"
#include "orlo_compare.h"
#include "orlo_matcher.h"
#include "support/search_harness.h"

namespace {

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

// Reference data read and search storage taken since it was made.
struct Work {
  orlo::AccessCounters before = orlo::access_counters();
  uint64_t allocs_before = orlo::search_alloc_count();

  uint64_t level2() const {
    return orlo::access_counters().level2_reads - before.level2_reads;
  }
  uint64_t basedata() const {
    return orlo::access_counters().basedata_reads - before.basedata_reads;
  }
  uint64_t unpacks() const {
    return orlo::access_counters().unpacks - before.unpacks;
  }
  uint64_t allocs() const { return orlo::search_alloc_count() - allocs_before; }
};

// Every search test runs in file mode and in memory mode.
class Search : public ::testing::TestWithParam<const char *> {
 protected:
  std::string options() const { return std::string(" ") + GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Modes, Search, ::testing::Values("-", "M"),
                         [](const auto &info) {
                           return std::string(info.param[0] == 'M' ? "Memory"
                                                                   : "File");
                         });

// Searches that choose nothing: status and state left (no key or no such
// region forgets the key). The street table stays in the reference store,
// so the next search reads no LEVEL2 whatever the last one did.
TEST_P(Search, SearchesThatChooseNothing) {
  // clang-format off
  const struct {
    Address a;
    int32_t level, ret;
    char matchstat;
    int laststat;  // -1: not checked
    bool forgets_key;
    const char *note;
  } rows[] = {
    {{"KLN", "NATHAN ROAD", "99"}, 0, 0, '3', 1, false,
       "number outside every range; no fuzzy pass after an exact street"},
    {{"", "NATHAN ROAD", "12"}, 0, 1, '1', 2, true, "blank region"},
    {{"KLN", "NATHAN ROAD", "12", "", "", "", 'F'}, 0, 1, '1', 2, true,
       "mode F: no key"},
    {{"NT", "NATHAN ROAD", "12"}, 0, 1, '1', -1, true, "unknown region"},
    {{"KLN", "", "12"}, 0, 0, '2', 2, false, "empty street"},
    {{"KLN", "ZZYZX LANE", "12"}, 0, 0, '2', 2, false, "unknown street"},
    {{"KLN", "NATHAN RAOD", "12", "", "", "", '3'}, 0, 0, '2', 1, false,
       "mode 3 stops after the exact pass"},
    {{"KLN", "NATHAN RAOD", "12", "", "", "", '3'}, 2, 0, '2', -1, false,
       "mode 3 at level 2: the fuzzy pass skips every street"},
  };
  // clang-format on
  TestDb db(kCsv);
  for (const auto &r : rows) {
    SCOPED_TRACE(r.note);
    Geocoder g(db, options());
    ASSERT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).retcode(), '1');
    const Outcome o = g.search(r.a, r.level);
    EXPECT_EQ(o.ret, r.ret);
    EXPECT_EQ(o.retcode(), '0');
    EXPECT_EQ(o.matchstat(), r.matchstat);
    EXPECT_EQ(o.refid(), "");
    if (r.a.mode != '3') {
      EXPECT_EQ(o.street(), r.a.street);  // the input echoed
    }
    if (r.laststat >= 0) {
      EXPECT_EQ(g.mcb()->laststat, r.laststat);
    }
    if (r.laststat == 2) {
      EXPECT_EQ(g.mcb()->lastcnt, 0);
    }
    if (r.forgets_key) {
      EXPECT_EQ(std::string(g.mcb()->lastkey, 30), std::string(30, '\0'));
    }
    if (r.a.region == "NT") {
      EXPECT_EQ(g.mcb()->lvl2cnt, 0);  // an unknown region drops the table
    }
    const Work w;
    EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "15"}).refid(), "00001");
    EXPECT_EQ(w.level2(), 0u);
    EXPECT_EQ(g.search({"HK", "DES VOEUX ROAD", "5"}).refid(), "00011");
  }
}

// An exact street chooses the record whose range holds the number; each
// search of the walk reads and unpacks only what no earlier one left in the
// reference store: the same street reuses its candidates, a street seen
// before comes from the store, and a region met again costs nothing.
TEST_P(Search, ReuseAndTheStore) {
  const struct {
    Address a;
    const char *refid;
    uint64_t level2, basedata, unpacks;
    bool allocates;
  } walk[] = {
      {{"KLN", "NATHAN ROAD", "12"}, "00001", 1, 1, 2, true},
      {{"KLN", "NATHAN ROAD", "33"}, "00002", 0, 0, 0, false},
      {{"KLN", "ARGYLE STREET", "7"}, "00020", 0, 1, 1, false},
      {{"KLN", "NATHAN ROAD", "15"}, "00001", 0, 0, 0, false},
      {{"HK", "DES VOEUX ROAD", "5"}, "00011", 1, 1, 1, true},
      {{"KLN", "NATHAN ROAD", "12"}, "00001", 0, 0, 0, false},
      {{"HK", "DES VOEUX ROAD", "6"}, "00011", 0, 0, 0, false},
  };
  TestDb db(kCsv);
  Geocoder g(db, options());
  for (const auto &s : walk) {
    SCOPED_TRACE(s.a.street + " " + s.a.premno);
    const Work w;
    const Outcome o = g.search(s.a);
    EXPECT_EQ(o.ret, 0);
    EXPECT_EQ(o.retcode(), '1');
    EXPECT_EQ(o.matchstat(), '0');
    EXPECT_EQ(o.refid(), s.refid);
    EXPECT_EQ(o.street(), s.a.street);
    EXPECT_EQ(g.mcb()->laststat, 0);
    EXPECT_EQ(g.mcb()->lastcnt, 1);
    EXPECT_EQ(w.level2(), s.level2);
    EXPECT_EQ(w.basedata(), s.basedata);
    EXPECT_EQ(w.unpacks(), s.unpacks);
    if (!s.allocates) {
      EXPECT_EQ(w.allocs(), 0u);
    }
  }
}

// Every instance of the same files shares one store: what one unpacked the
// other reads without touching the files; other files get a store of their
// own, and the last close frees it.
TEST_P(Search, InstancesOfTheSameFilesShareOneStore) {
  TestDb db(kCsv), other(kCsv);
  const orlo::StoreCounts before = orlo::store_counts();
  {
    Geocoder a(db, options()), b(db, options()), c(other, options());
    EXPECT_EQ(a.mcb()->store, b.mcb()->store);
    EXPECT_NE(a.mcb()->store, c.mcb()->store);
    EXPECT_EQ(orlo::store_counts().stores, before.stores + 2);
    EXPECT_EQ(a.search({"KLN", "NATHAN ROAD", "12"}).refid(), "00001");
    const Work w;
    EXPECT_EQ(b.search({"KLN", "NATHAN ROAD", "33"}).refid(), "00002");
    EXPECT_EQ(w.level2() + w.basedata() + w.unpacks(), 0u);
    EXPECT_EQ(c.search({"KLN", "NATHAN ROAD", "33"}).refid(), "00002");
    EXPECT_EQ(w.level2(), 1u);
  }
  EXPECT_EQ(orlo::store_counts().stores, before.stores);
}

// Records beyond the store's budget are not kept: each search unpacks them
// again, with the same result.
TEST_P(Search, RecordsBeyondTheBudgetAreUnpackedEachTime) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  orlo::detail::store_record_budget = 1;
  for (int i = 0; i < 2; ++i) {
    const Work w;
    EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "7"}).refid(), "00020");
    EXPECT_EQ(g.search({"KLN", "SHANGHAI STREET", "7"}).refid(), "00030");
    EXPECT_EQ(w.unpacks(), 2u);
  }
  orlo::detail::store_record_budget = 0;
}

// After a search settled in the fuzzy pass the candidates are rebuilt.
TEST_P(Search, NoReuseAfterASearchThatDidNotChooseInItsFirstPass) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  ASSERT_EQ(g.search({"KLN", "NATHAN ROAD", "99"}).matchstat(), '3');
  ASSERT_EQ(g.mcb()->laststat, 1);
  g.mcb()->lastcnt = 0;  // reuse would now find no candidate at all
  const Work w;
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "12"}).refid(), "00001");
  EXPECT_EQ(g.mcb()->laststat, 0);  // chosen in the first pass, not reused
  EXPECT_EQ(w.level2(), 0u);
  EXPECT_EQ(w.unpacks(), 0u);
}

TEST_P(Search, SearchLevelTwoStartsFuzzyAndNeverCountsAsFirstPass) {
  TestDb db(kCsv);
  Geocoder g(db, options());
  const Outcome o = g.search({"KLN", "NATHAN ROAD", "12"}, /*level=*/2);
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.refid(), "00001");
  EXPECT_EQ(g.mcb()->laststat, 1);
}

// ---- The fuzzy pass ------------------------------------------------------

// Likeness of two street names as the fuzzy pass asks for it.
int32_t street_score(const std::string &a, const std::string &b) {
  const std::string pa = orlo::testing::pad(a, 31);
  const std::string pb = orlo::testing::pad(b, 31);
  return m_street(pa.c_str(), pb.c_str(), 31, nullptr);
}

// Close names (likeness 90-99) are found in the second pass, with a penalty;
// pass option 1 has no second pass.
TEST(FuzzyPass, SecondPassFindsCloseStreets) {
  const struct {
    const char *region, *input, *reference;
  } rows[] = {{"KLN", "NATHAN RAOD", "NATHAN ROAD"},
              {"KLN", "SHANGHAI ST", "SHANGHAI STREET"},
              {"HK", "QUEENS ROAD CENTRAL", "QUEEN'S ROAD CENTRAL"}};
  TestDb db(kCsv);
  for (const auto &r : rows) {
    SCOPED_TRACE(r.input);
    const int32_t score = street_score(r.input, r.reference);
    ASSERT_GE(score, 90);
    ASSERT_LT(score, 100);
    Geocoder g(db);
    Outcome o = g.search({r.region, r.input, "12"});
    EXPECT_EQ(o.ret, 0);
    EXPECT_EQ(o.retcode(), '1');
    EXPECT_EQ(o.matchstat(), '0');
    EXPECT_EQ(o.street(), r.reference);
    EXPECT_EQ(o.grade(), '1');
    EXPECT_EQ(g.mcb()->laststat, 1);
    ASSERT_EQ(g.mcb()->lastcnt, 1);
    EXPECT_EQ(g.mcb()->candscore[0], score);

    Geocoder exact_only(db, "4");
    o = exact_only.search({r.region, r.input, "12"});
    EXPECT_EQ(o.matchstat(), '2');
    EXPECT_EQ(exact_only.mcb()->laststat, 1);
  }
}

// "ST " is a street-type word: every name with the same initial goes to the
// comparison. "SX" is not, and the name fails every character test.
TEST(FuzzyPass, StreetTypeWordAdmitsEveryNameWithItsInitial) {
  ASSERT_GE(street_score("SX JOHNS ROAD", "SAINT JOHNS ROAD"), 90);
  TestDb db(std::string(kCsv) + "KLN,SAINT JOHNS ROAD,K05,00050,,,,1,,99,,\n");
  Geocoder g(db);
  EXPECT_EQ(g.search({"KLN", "ST JOHNS ROAD", "12"}).refid(), "00050");
  EXPECT_EQ(g.search({"KLN", "SX JOHNS ROAD", "12"}).matchstat(), '2');
}

// The fuzzy pass skips names beginning "PO BOX ", but not "PO BOX" itself.
TEST(FuzzyPass, PostBoxNamesAreSkipped) {
  ASSERT_GE(street_score("PO BOXES 123", "PO BOX 123"), 90);
  TestDb db(
      "KLN,PO BOX,K07,00070,,,,,,,,\n"
      "KLN,PO BOX 123,K07,00071,,,,,,,,\n");
  Geocoder g(db);
  EXPECT_EQ(g.search({"KLN", "PO BOXES 123", ""}).matchstat(), '2');
  EXPECT_EQ(g.search({"KLN", "PO BOX 123", ""}, 2).matchstat(), '2');
  EXPECT_EQ(g.search({"KLN", "PO BOX 123", ""}).refid(), "00071");
  EXPECT_EQ(g.search({"KLN", "PO BOX", ""}, 2).refid(), "00070");
  EXPECT_EQ(g.search({"KLN", "PO BOXX", ""}).refid(), "00070");
}

// NATHAN ROAD holds no 99; NATHAN ROAD EAST, a fuzzy candidate, does.
constexpr const char *kEastCsv =
    "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n"
    "KLN,NATHAN ROAD,K01,00002,OCEAN CENTRE,,,1,,99,,\n"
    "KLN,NATHAN ROAD EAST,K01,00009,,,,1,,99,,\n";

// An exact street ends the search after the first pass unless pass option 2.
TEST(FuzzyPass, ExactStreetStopsTheSecondPassUnlessPassOptionIsTwo) {
  ASSERT_EQ(street_score("NATHAN ROAD", "NATHAN ROAD EAST"), 90);
  TestDb db(kEastCsv);
  for (const char *options : {"", "4"}) {
    Geocoder g(db, options);
    const Outcome o = g.search({"KLN", "NATHAN ROAD", "99"});
    EXPECT_EQ(o.retcode(), '0') << options;
    EXPECT_EQ(o.matchstat(), '4') << options;
  }
  Geocoder g(db, "5");
  EXPECT_EQ(g.search({"KLN", "NATHAN ROAD", "99"}).refid(), "00009");
  EXPECT_EQ(g.mcb()->laststat, 1);
  EXPECT_EQ(g.mcb()->lastcnt, 2);

  // In listing mode 3 the records of other streets are not summarised.
  Geocoder listing(db, "B");  // listing mode 3, pass option 2
  EXPECT_EQ(listing.search({"KLN", "NATHAN ROAD", "99"}).refid(), "00009");
  EXPECT_EQ(listing.reclist.substr(0, 8), "K0100002");
  EXPECT_EQ(listing.reclist.substr(150), std::string(7350, ' '));
}

// A table out of initial order is scanned from its start and the scan ends
// at the first name whose initial sorts after the input's.
TEST(FuzzyPass, TableOutOfOrderIsScannedFromItsStart) {
  TestDb db(kCsv);
  {
    Geocoder g(db);
    EXPECT_EQ(g.search({"KLN", "ARGYLE STRET", "7"}).refid(), "00020");
    EXPECT_EQ(g.mcb()->lvl2initials, 1);
  }
  // Exchange ARGYLE STREET and NATHAN ROAD, the first two of KLN.
  const std::string l1 = orlo::testing::read_file(db.level1());
  std::string l2 = orlo::testing::read_file(db.level2());
  const size_t a = orlo::testing::level2_record(l1, l2, "KLN", "ARGYLE STREET");
  const size_t n = orlo::testing::level2_record(l1, l2, "KLN", "NATHAN ROAD");
  ASSERT_EQ(n, a + 11 + 13);
  const size_t end = n + 11 + 11;
  l2 = l2.substr(0, a) + l2.substr(n, end - n) + l2.substr(a, n - a) +
       l2.substr(end);
  orlo::testing::write_file(db.level2(), l2);

  Geocoder g(db);
  EXPECT_EQ(g.search({"KLN", "ARGYLE STRET", "7"}).matchstat(), '2');
  EXPECT_EQ(g.mcb()->lvl2initials, 0);
  EXPECT_EQ(g.search({"KLN", "SHANGHAI STRET", "7"}).refid(), "00030");
}

// On a fuzzy street of score 92, a record scoring 94 (mean 93) is chosen and
// one scoring 93 (mean 92.5) is not: status '0' becomes '4'.
TEST(FuzzyPass, MeanOf93IsChosenAndOf92Point5IsNot) {
  ASSERT_EQ(street_score("NATHAN RAOD", "NATHAN ROAD"), 92);
  ASSERT_EQ(street_score("ARGYLE STRET", "ARGYLE STREET"), 92);
  TestDb db(
      "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n"
      "KLN,ARGYLE STREET,K02,00020,,,,,,,,\n");
  Geocoder g(db);
  Outcome o = g.search({"KLN", "NATHAN RAOD", "", "", "", "ZZZ"});
  EXPECT_EQ(g.mcb()->baserecs[0].bscore, 92);
  EXPECT_EQ(g.mcb()->baserecs[0].bmscore, 94);
  EXPECT_EQ(o.refid(), "00001");

  o = g.search({"KLN", "ARGYLE STRET", "12", "", "", "ZZZ"});
  EXPECT_EQ(g.mcb()->baserecs[0].bmscore, 93);
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '4');
  EXPECT_EQ(g.mcb()->laststat, 2);
}

TEST(SampleDatabase, ExactAndFuzzyStreets) {
  Geocoder g(orlo::testing::sample_db_dir());
  ASSERT_TRUE(g.opened());
  EXPECT_EQ(g.search({"HK", "UPPER LASCAR ROW", "3"}).refid(), "03000");
  EXPECT_EQ(g.mcb()->laststat, 0);
  const Outcome o = g.search({"KLN", "CARNARVON RD", "31", "FOOK LEE CENTRE"});
  EXPECT_EQ(o.refid(), "03017");
  EXPECT_EQ(o.street(), "CARNARVON ROAD");
  EXPECT_EQ(g.mcb()->laststat, 1);
  EXPECT_EQ(g.search({"NT", "NO SUCH ROAD", "3"}).matchstat(), '2');
}

}  // namespace
