// Errors of the address search: storage that cannot be had ('3'), a street
// table that does not hold what its index entry says ('4'), base data that
// does not decode ('5'); after each the instance answers the next search.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/search_alloc.h"
#include "orlo_matcher.h"
#include "support/search_harness.h"

namespace {

using orlo::testing::Address;
using orlo::testing::Geocoder;
using orlo::testing::get_be;
using orlo::testing::Outcome;
using orlo::testing::read_file;
using orlo::testing::set_be;
using orlo::testing::street_block;
using orlo::testing::TestDb;
using orlo::testing::write_file;

// The 30-character Q street lets a test overwrite the NUL of a full name.
const std::string kLongName(30, 'Q');
const std::string kCsv =
    "HK,DES VOEUX ROAD,H01,00011,,,,1,,99,,\n"
    "KLN,ARGYLE STREET,K02,00020,,,,1,,50,,\n"
    "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n"
    "KLN,NATHAN ROAD,K01,00002,,,,21,,40,,\n"
    "KLN," +
    kLongName +
    ",K09,00090,,,,1,,9,,\n"
    "KLN,SHANGHAI STREET,K03,00030,,,,1,,300,,\n";

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

// Each allocation of a walk fails in turn: that step answers '3', and the
// instance then answers every step right.
TEST_P(Errors, EveryAllocationOfTheSearchCanFailWith3) {
  const struct {
    Address a;
    const char *refid;
  } steps[] = {{{"KLN", "NATHAN ROAD", "12"}, "00001"},
               {{"KLN", "NATHAN ROAD", "33"}, "00002"},
               {{"KLN", "SHANGHAI STREET", "7"}, "00030"},
               {{"KLN", "NATHAN ROAD", "15"}, "00001"},
               {{"HK", "DES VOEUX ROAD", "5"}, "00011"}};
  const auto expect_answers = [&steps](Geocoder &g) {
    for (const auto &s : steps) EXPECT_EQ(g.search(s.a).refid(), s.refid);
  };
  TestDb db(kCsv);
  uint64_t count = 0;
  {
    Geocoder g(db, GetParam());
    const uint64_t before = orlo::search_alloc_count();
    expect_answers(g);
    count = orlo::search_alloc_count() - before;
  }
  // Per region of the store (KLN, HK): segment, table, padded names, name
  // lookup and its results; the candidate list and its scores, the records
  // and the block buffer once.
  EXPECT_EQ(count, 14u);
  for (uint64_t n = 1; n <= count; ++n) {
    SCOPED_TRACE(n);
    Geocoder g(db, GetParam());
    orlo::fail_nth_search_alloc(static_cast<int>(n));
    bool failed = false;
    for (const auto &s : steps) {
      const Outcome o = g.search(s.a);
      if (o.retcode() == '3') {
        expect_error(o, '3', g.mcb());
        failed = true;
        break;
      }
      EXPECT_EQ(o.refid(), s.refid);
    }
    orlo::fail_nth_search_alloc(0);
    EXPECT_TRUE(failed);
    expect_answers(g);
  }
}

// 1200 streets in street extract mode grow the candidate list past 1000.
TEST(ExtractErrors, GrowingTheCandidateListCanFailWith3) {
  std::string csv;
  for (int i = 0; i < 1200; ++i) {
    csv += "KLN,STREET " + std::to_string(10000 + i) + ",K01,00001,,,,1,,9,,\n";
  }
  TestDb db(csv);
  const std::string options = "W" + db.dir() + "/streets";
  const Address a{"KLN", "STREET 10000", "1"};
  uint64_t count = 0;
  {
    Geocoder g(db, options);
    ASSERT_TRUE(g.opened());
    const uint64_t before = orlo::search_alloc_count();
    EXPECT_EQ(g.search(a).ret, 0);
    EXPECT_EQ(g.mcb()->candcap, 2000);
    count = orlo::search_alloc_count() - before;
  }
  // Segment, table, padded names, name lookup and its results of the store's
  // region; the list and its scores, both grown; the block buffer.
  EXPECT_EQ(count, 10u);
  for (uint64_t n = 1; n <= count; ++n) {
    Geocoder f(db, options);
    orlo::fail_nth_search_alloc(static_cast<int>(n));
    expect_error(f.search(a), '3', f.mcb());
    orlo::fail_nth_search_alloc(0);
    EXPECT_EQ(f.search(a).ret, 0);
  }
}

// KLN answers '4' on every try (its table never kept) while HK works.
void expect_region_damaged(Geocoder &g) {
  for (int i = 0; i < 2; ++i) {
    const orlo::AccessCounters before = orlo::access_counters();
    expect_error(g.search({"KLN", "NATHAN ROAD", "12"}), '4', g.mcb());
    EXPECT_EQ(orlo::access_counters().level2_reads - before.level2_reads, 1u);
    EXPECT_EQ(std::string(g.mcb()->lastkey, 30), std::string(30, '\0'));
    EXPECT_EQ(g.mcb()->lvl2cnt, 0);
    EXPECT_EQ(g.search({"HK", "DES VOEUX ROAD", "5"}).refid(), "00011");
  }
}

// NATHAN ROAD answers '5' on every try, leaving no half-made record cache.
void expect_street_damaged(Geocoder &g) {
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

// Sets (or adds to) the big-endian number at offset `at` of `file`.
enum How { kSet, kAdd };
void patch(const std::string &file, size_t at, int bytes, int64_t value,
           How how = kSet) {
  std::string b = read_file(file);
  ASSERT_LE(at + static_cast<size_t>(bytes), b.size());
  if (how == kAdd) value += get_be(b, at, bytes);
  set_be(b, at, bytes, static_cast<uint32_t>(value));
  write_file(file, b);
}

size_t level1_kln(const TestDb &db) {
  return orlo::testing::level1_record(read_file(db.level1()), "KLN");
}

size_t level2_of(const TestDb &db, const std::string &street) {
  return orlo::testing::level2_record(read_file(db.level1()),
                                      read_file(db.level2()), "KLN", street);
}

// Damaged reference files: LEVEL1/LEVEL2 faults of the KLN segment answer
// '4', faults of NATHAN ROAD's block answer '5' (LEVEL1 record: 30 offset,
// 34 length, 38 count; LEVEL2 record: 0 offset, 4 length, 8 count, 10 name).
TEST_P(Errors, DamagedFiles) {
  const struct {
    const char *note;
    char code;
    std::function<void(const TestDb &)> damage;
  } rows[] = {
      {"segment shorter than its records", '4',
       [](const TestDb &db) {
         patch(db.level1(), level1_kln(db) + 38, 2, 1, kAdd);
       }},
      {"segment ending inside the head of SHANGHAI STREET (26 bytes)", '4',
       [](const TestDb &db) {
         patch(db.level1(), level1_kln(db) + 34, 4, 9 - 26, kAdd);
       }},
      {"street name of 30 without its NUL", '4',
       [](const TestDb &db) {
         const size_t at = level2_of(db, kLongName) + 10 + 30;
         ASSERT_EQ(read_file(db.level2())[at], '\0');
         patch(db.level2(), at, 1, 'Q');
       }},
      {"block outside BASEDATA", '5',
       [](const TestDb &db) {
         patch(db.level2(), level2_of(db, "NATHAN ROAD"), 4, 0xFFFFFF00u);
       }},
      {"more records than the block holds", '5',
       [](const TestDb &db) {
         patch(db.level2(), level2_of(db, "NATHAN ROAD") + 8, 2, 3);
       }},
      {"record length below its header", '5',
       [](const TestDb &db) {
         patch(db.basedata(), street_block(db, "KLN", "NATHAN ROAD").off, 1, 3);
       }},
      {"second record running one byte past its block", '5',
       [](const TestDb &db) {
         const orlo::testing::Block b = street_block(db, "KLN", "NATHAN ROAD");
         ASSERT_LT(b.len, 100u);
         const uint32_t second = b.off + static_cast<unsigned char>(
                                             read_file(db.basedata())[b.off]);
         patch(db.basedata(), second, 1, b.off + b.len - second + 1);
       }},
  };
  for (const auto &r : rows) {
    SCOPED_TRACE(r.note);
    TestDb db(kCsv);
    r.damage(db);
    Geocoder g(db, GetParam());
    ASSERT_TRUE(g.opened());
    if (r.code == '4') {
      expect_region_damaged(g);
    } else {
      expect_street_damaged(g);
    }
  }
}

// A street whose length and count say gigabytes and 65535 records answers
// '5' without the search first allocating (and zeroing) room for them: the
// block buffer is never larger than BASEDATA, nor the record room than what
// the blocks can hold. (Found by fuzzing: such a database took seconds a
// search.)
TEST_P(Errors, HugeBlockLengthAndCountAllocateNothingLarge) {
  TestDb db(kCsv);
  patch(db.level2(), level2_of(db, "NATHAN ROAD") + 4, 4, 0x7FFFFF00);
  patch(db.level2(), level2_of(db, "NATHAN ROAD") + 8, 2, 0xFFFF);
  Geocoder g(db, GetParam());
  ASSERT_TRUE(g.opened());
  expect_street_damaged(g);
  EXPECT_LE(g.mcb()->blockcap, g.mcb()->basesize);
  EXPECT_LT(g.mcb()->reccap, 1000);
}

// A segment that LEVEL2 cannot serve does not stop the open: its region
// answers '4' on every search and the other regions answer as before.
TEST_P(Errors, SegmentOutsideLevel2FailsOnlyItsRegion) {
  const struct {
    const char *note;
    std::function<void(const TestDb &)> damage;
  } rows[] = {
      {"segment running a megabyte past the end",
       [](const TestDb &db) {
         patch(db.level1(), level1_kln(db) + 34, 4, 1 << 20, kAdd);
       }},
      {"segment starting past the end",
       [](const TestDb &db) {
         patch(db.level1(), level1_kln(db) + 30, 4, 0x7FFFFFF0);
       }},
      {"offset and length wrapping in 32 bits",
       [](const TestDb &db) {
         patch(db.level1(), level1_kln(db) + 30, 4, 0xFFFFFFF0u);
         patch(db.level1(), level1_kln(db) + 34, 4, 0x20);
       }},
  };
  for (const auto &r : rows) {
    SCOPED_TRACE(r.note);
    TestDb db(kCsv);
    r.damage(db);
    Geocoder g(db, GetParam());
    ASSERT_TRUE(g.opened());
    expect_region_damaged(g);
  }
}

// LEVEL2 cut short inside the KLN segment, which lies after the HK segment:
// the file still opens in both modes. File mode serves HK and answers '4'
// for KLN alone; memory mode holds whole 23200-byte units only, and a file
// cut below one unit leaves it nothing to serve.
TEST_P(Errors, Level2CutShortFailsOnlyTheRegionsItNoLongerHolds) {
  TestDb db(kCsv);
  const std::string level2 = read_file(db.level2());
  const uint32_t kln = get_be(read_file(db.level1()), level1_kln(db) + 30, 4);
  ASSERT_GT(kln, 0u);
  write_file(db.level2(), level2.substr(0, kln + 20));
  Geocoder g(db, GetParam());
  ASSERT_TRUE(g.opened());
  if (*GetParam() == '\0') {
    expect_region_damaged(g);
  } else {
    expect_error(g.search({"HK", "DES VOEUX ROAD", "5"}), '4', g.mcb());
    expect_error(g.search({"KLN", "NATHAN ROAD", "12"}), '4', g.mcb());
  }
}

TEST(ExtractErrors, DamagedBlockInBaseRecordExtractModeAnswers5) {
  TestDb db(kCsv);
  patch(db.basedata(), street_block(db, "KLN", "NATHAN ROAD").off, 1, 0);
  Geocoder g(db, "X" + db.dir() + "/extract");
  ASSERT_TRUE(g.opened());
  expect_error(g.search({"KLN", "NATHAN ROAD", "12"}), '5', g.mcb());
  EXPECT_EQ(g.search({"KLN", "ARGYLE STREET", "7"}).ret, 0);
}

}  // namespace
