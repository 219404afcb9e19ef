// Errors of the address search: storage that cannot be had ('3'), a street
// table that does not hold what its index entry says ('4'), base data that
// does not decode ('5'); after each the instance answers the next search.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hkmatch/reference_access.h"
#include "hkmatch/search_alloc.h"
#include "orlo_matcher.h"
#include "search_harness.h"

namespace {

using orlo::testing::Address;
using orlo::testing::Geocoder;
using orlo::testing::get_be;
using orlo::testing::level1_record;
using orlo::testing::level2_record;
using orlo::testing::Outcome;
using orlo::testing::read_file;
using orlo::testing::set_be;
using orlo::testing::street_block;
using orlo::testing::TestDb;
using orlo::testing::write_file;

constexpr const char *kCsv =
    "HK,DES VOEUX ROAD,H01,00011,,,,1,,99,,\n"
    "KLN,ARGYLE STREET,K02,00020,,,,1,,50,,\n"
    "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n"
    "KLN,NATHAN ROAD,K01,00002,,,,21,,40,,\n"
    "KLN,SHANGHAI STREET,K03,00030,,,,1,,300,,\n";

// A search and the reference identifier it must return.
struct Step {
  Address address;
  std::string refid;
};

const std::vector<Step> kSteps = {
    {{"KLN", "NATHAN ROAD", "12"}, "00001"},     // table, candidates, caches
    {{"KLN", "NATHAN ROAD", "33"}, "00002"},     // reuse
    {{"KLN", "SHANGHAI STREET", "7"}, "00030"},  // same region, new street
    {{"KLN", "NATHAN ROAD", "15"}, "00001"},     // from the region cache
    {{"HK", "DES VOEUX ROAD", "5"}, "00011"}};   // new region

class Errors : public ::testing::TestWithParam<const char *> {
 protected:
  void TearDown() override { orlo::fail_nth_search_alloc(0); }
};

INSTANTIATE_TEST_SUITE_P(Modes, Errors, ::testing::Values("", " M"),
                         [](const auto &info) {
                           return std::string(info.param[0] ? "Memory"
                                                            : "File");
                         });

void expect_error(const Outcome &o, char code, const HKMCB *mcb) {
  EXPECT_EQ(o.ret, 1);
  EXPECT_EQ(o.retcode(), code);
  EXPECT_EQ(mcb->laststat, 2);  // nothing of it may be reused
}

void expect_answers(Geocoder &g, const std::vector<Step> &steps,
                    const std::string &context) {
  for (const Step &s : steps) {
    EXPECT_EQ(g.search(s.address).refid(), s.refid)
        << s.address.street << ", " << context;
  }
}

// Allocations that the steps make on a fresh instance.
uint64_t allocations(const TestDb &db, const char *options,
                     const std::vector<Step> &steps) {
  Geocoder g(db, options);
  uint64_t before = orlo::search_alloc_count();
  expect_answers(g, steps, "clean run");
  return orlo::search_alloc_count() - before;
}

// Fails the n-th allocation of the steps on a fresh instance. The step that
// meets it answers '3'; then every step gives its right answer again.
void fail_allocation(const TestDb &db, const char *options,
                     const std::vector<Step> &steps, int n) {
  Geocoder g(db, options);
  orlo::fail_nth_search_alloc(n);
  bool failed = false;
  for (const Step &s : steps) {
    Outcome o = g.search(s.address);
    if (o.retcode() == '3') {
      expect_error(o, '3', g.mcb());
      failed = true;
      break;
    }
    EXPECT_EQ(o.refid(), s.refid) << "before failing #" << n;
  }
  orlo::fail_nth_search_alloc(0);
  EXPECT_TRUE(failed) << "allocation #" << n << " did not fail the search";
  expect_answers(g, steps, "after failing #" + std::to_string(n));
}

TEST_P(Errors, EveryAllocationOfTheSearchCanFailWith3) {
  TestDb db(kCsv);
  uint64_t count = allocations(db, GetParam(), kSteps);
  // Segment, table, candidate list, records and block buffer once (later
  // regions reuse them); a packed block and its records for each of the
  // three streets; nothing for the reuse and the cached street.
  EXPECT_EQ(count, 11u);
  for (uint64_t n = 1; n <= count; ++n) {
    fail_allocation(db, GetParam(), kSteps, static_cast<int>(n));
  }
}

// In street extract mode every street is a candidate: 1200 of them make the
// candidate list grow past its first 1000 entries.
TEST(ExtractErrors, GrowingTheCandidateListCanFailWith3) {
  std::string csv;
  for (int i = 0; i < 1200; ++i) {
    csv += "KLN,STREET " + std::to_string(10000 + i) + ",K01,00001,,,,1,,9,,\n";
  }
  TestDb db(csv);
  std::string extract = db.dir() + "/streets";
  std::string options = "W" + extract;
  {
    Geocoder g(db, options);
    ASSERT_TRUE(g.opened());
    uint64_t before = orlo::search_alloc_count();
    Outcome o = g.search({"KLN", "STREET 10000", "1"});
    EXPECT_EQ(o.ret, 0);
    EXPECT_EQ(g.mcb()->candcap, 2000);
    uint64_t count = orlo::search_alloc_count() - before;
    EXPECT_EQ(count, 5u);  // segment, table, list, grown list, block buffer
    for (uint64_t n = 1; n <= count; ++n) {
      Geocoder f(db, options);
      orlo::fail_nth_search_alloc(static_cast<int>(n));
      expect_error(f.search({"KLN", "STREET 10000", "1"}), '3', f.mcb());
      orlo::fail_nth_search_alloc(0);
      EXPECT_EQ(f.search({"KLN", "STREET 10000", "1"}).ret, 0);
    }
  }
  orlo::fail_nth_search_alloc(0);
}

// ---- Damaged LEVEL2
// ----------------------------------------------------------

// Checks that KLN answers '4' on every try (its table is never kept) while
// HK keeps working.
void expect_region_damaged(Geocoder &g) {
  for (int i = 0; i < 2; ++i) {
    orlo::AccessCounters before = orlo::access_counters();
    expect_error(g.search({"KLN", "NATHAN ROAD", "12"}), '4', g.mcb());
    EXPECT_EQ(orlo::access_counters().level2_reads - before.level2_reads, 1u);
    EXPECT_EQ(std::string(g.mcb()->lastkey, 30), std::string(30, '\0'));
    EXPECT_EQ(g.mcb()->lvl2cnt, 0);
    EXPECT_EQ(g.search({"HK", "DES VOEUX ROAD", "5"}).refid(), "00011");
  }
}

void expect_region_damaged(const TestDb &db, const char *options) {
  Geocoder g(db, options);
  ASSERT_TRUE(g.opened());
  expect_region_damaged(g);
}

// Rewrites LEVEL1's number at `field` (30 offset, 34 length, 38 count) of
// the KLN record.
void patch_level1(const TestDb &db, int field, int bytes, int64_t delta) {
  std::string l1 = read_file(db.level1());
  size_t r = level1_record(l1, "KLN");
  ASSERT_NE(r, std::string::npos);
  set_be(l1, r + field, bytes,
         static_cast<uint32_t>(get_be(l1, r + field, bytes) + delta));
  write_file(db.level1(), l1);
}

// Open refuses an index whose segments lie outside LEVEL2; the search
// checks again, for the entry changed in memory here.
TEST_P(Errors, SegmentOutsideLevel2Answers4) {
  TestDb db(kCsv);
  Geocoder g(db, GetParam());
  ASSERT_TRUE(g.opened());
  bool patched = false;
  for (int32_t i = 0; i < g.mcb()->lvl1cnt; ++i) {
    L1ENTRY &e = g.mcb()->lvl1tab[i];
    if (std::string(e.l1key, 3) == "KLN") {
      e.l2len += 1 << 20;
      patched = true;
    }
  }
  ASSERT_TRUE(patched);
  expect_region_damaged(g);
}

TEST_P(Errors, SegmentShorterThanItsRecordsAnswers4) {
  TestDb db(kCsv);
  patch_level1(db, 38, 2, 1);  // one record more than there is
  expect_region_damaged(db, GetParam());
}

TEST_P(Errors, SegmentEndingInsideARecordHeadAnswers4) {
  TestDb db(kCsv);
  // Cut the last record ("SHANGHAI STREET", 26 bytes) to 9 bytes of head.
  patch_level1(db, 34, 4, 9 - 26);
  expect_region_damaged(db, GetParam());
}

TEST_P(Errors, StreetNameWithoutItsNulAnswers4) {
  // A name of 30 characters whose NUL is overwritten: the 31 bytes that
  // may hold a name hold none that ends.
  std::string name(30, 'Q');
  TestDb db(std::string(kCsv) + "KLN," + name + ",K09,00090,,,,1,,9,,\n");
  std::string l1 = read_file(db.level1()), l2 = read_file(db.level2());
  size_t r = level2_record(l1, l2, "KLN", name);
  ASSERT_NE(r, std::string::npos);
  ASSERT_EQ(l2[r + 10 + 30], '\0');
  l2[r + 10 + 30] = 'Q';
  write_file(db.level2(), l2);
  expect_region_damaged(db, GetParam());
}

// ---- Damaged BASEDATA
// --------------------------------------------------------

// NATHAN ROAD answers '5' on every try; the other streets of its region
// keep working and no half-made cache of its records stays behind.
void expect_street_damaged(const TestDb &db, const char *options) {
  Geocoder g(db, options);
  ASSERT_TRUE(g.opened());
  for (int i = 0; i < 2; ++i) {
    expect_error(g.search({"KLN", "NATHAN ROAD", "12"}), '5', g.mcb());
    EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "7"}).refid(), "00020");
    EXPECT_EQ(g.search({"KLN", "SHANGHAI STREET", "7"}).refid(), "00030");
  }
  for (uint16_t i = 0; i < g.mcb()->lvl2cnt; ++i) {
    const STREETENT &e = g.mcb()->lvl2tab[i];
    if (std::string(e.sname) == "NATHAN ROAD") {
      EXPECT_EQ(e.bunpk, nullptr);
    }
  }
}

void patch_level2(const TestDb &db, int field, int bytes, uint32_t value) {
  std::string l1 = read_file(db.level1()), l2 = read_file(db.level2());
  size_t r = level2_record(l1, l2, "KLN", "NATHAN ROAD");
  ASSERT_NE(r, std::string::npos);
  set_be(l2, r + field, bytes, value);
  write_file(db.level2(), l2);
}

void patch_basedata(const TestDb &db, uint32_t offset, char byte) {
  std::string bd = read_file(db.basedata());
  bd[offset] = byte;
  write_file(db.basedata(), bd);
}

TEST_P(Errors, BlockOutsideBasedataAnswers5) {
  TestDb db(kCsv);
  patch_level2(db, 0, 4, 0xFFFFFF00u);
  expect_street_damaged(db, GetParam());
}

TEST_P(Errors, MoreRecordsThanTheBlockHoldsAnswers5) {
  TestDb db(kCsv);
  patch_level2(db, 8, 2, 3);
  expect_street_damaged(db, GetParam());
}

TEST_P(Errors, RecordLengthBelowItsHeaderAnswers5) {
  TestDb db(kCsv);
  orlo::testing::Block b = street_block(db, "KLN", "NATHAN ROAD");
  patch_basedata(db, b.off, 3);
  expect_street_damaged(db, GetParam());
}

TEST_P(Errors, RecordRunningPastItsBlockAnswers5) {
  TestDb db(kCsv);
  orlo::testing::Block b = street_block(db, "KLN", "NATHAN ROAD");
  ASSERT_LT(b.len, 100u);
  std::string bd = read_file(db.basedata());
  // The second record claims the rest of the block and a byte more.
  uint32_t second = b.off + static_cast<unsigned char>(bd[b.off]);
  patch_basedata(db, second, static_cast<char>(b.off + b.len - second + 1));
  expect_street_damaged(db, GetParam());
}

TEST(ExtractErrors, DamagedBlockInBaseRecordExtractModeAnswers5) {
  TestDb db(kCsv);
  orlo::testing::Block b = street_block(db, "KLN", "NATHAN ROAD");
  patch_basedata(db, b.off, 0);
  std::string options = "X" + db.dir() + "/extract";
  Geocoder g(db, options);
  ASSERT_TRUE(g.opened());
  expect_error(g.search({"KLN", "NATHAN ROAD", "12"}), '5', g.mcb());
  EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "7"}).ret, 0);
}

}  // namespace
