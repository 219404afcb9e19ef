// Candidate comparison (hk_mcte) of one reference record with the prepared
// input: numbers and sides, floors and units, buildings, reference code.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>

#include "support/record_builders.h"

namespace {

using orlo::testing::InputRecord;
using orlo::testing::ReferenceRecord;

struct Result {
  uint32_t code;
  int32_t score;
  int32_t penalties;
  bool operator==(const Result &) const = default;
};

void PrintTo(const Result &r, std::ostream *os) {
  *os << "code " << r.code << ", score " << r.score << ", penalties "
      << r.penalties;
}

Result compare(HKBASEREC rec, HKWORKREC &work) {
  rec.bmscore = 77;  // must be overwritten, also on a rejection
  rec.bpen = 77;
  const uint32_t code = hk_mcte(&rec, &work);
  return {code, rec.bmscore, rec.bpen};
}

Result compare(const ReferenceRecord &ref, const InputRecord &in) {
  HKWORKREC work = in.prepared();
  return compare(ref.build(), work);
}

const ReferenceRecord kOdd11To21{"11", "21", "", "", "", "O"};
const ReferenceRecord kBoth11To21{"11", "21", "", "", "", "B"};
const ReferenceRecord kLow14AHigh12{"14A", "12", "", "", "", ""};
const ReferenceRecord kOnlyLow12{"12", "", "", "", "", ""};
const ReferenceRecord kOnlyHigh20{"", "20", "", "", "", ""};
const ReferenceRecord kNoNumbers{"", "", "", "", "", "O"};
const ReferenceRecord kFloorShop1To20{"1", "20", "FLOOR/SHOP", "", "", ""};
const ReferenceRecord kUnit1To10{"1", "10", "UNIT", "", "", ""};
const ReferenceRecord kFlat1To10{"1", "10", "FLAT", "", "", ""};
const ReferenceRecord kBlankWord1To10{"1", "10", " UNIT", "", "", ""};
const ReferenceRecord kNoWord1To10{"1", "10", "", "", "", ""};

// Numbers, sides, bounds and the unit check: +2 per range test, +4 from the
// unit check; code 3 on a number rejection.
TEST(CompareNumbers, Table) {
  struct Row {
    const ReferenceRecord *ref;
    const char *premno, *unit;
    Result want;
    const char *note;
  };
  // clang-format off
  const Row rows[] = {
    {&kOdd11To21, "13", "", {0, 102, 0}, "in range on the record's side"},
    {&kOdd11To21, "12", "", {3, 0, 0}, "other side"},
    {&kOdd11To21, "23", "", {3, 0, 0}, "above the range"},
    {&kOdd11To21, "12-14", "", {3, 0, 0}, "even pair, odd record"},
    {&kBoth11To21, "12-14", "", {0, 100, 0}, "even pair, record of both sides"},
    {&kOdd11To21, "12-13", "", {0, 100, 0}, "odd and even pair serves both sides"},
    {&kLow14AHigh12, "12", "", {3, 0, 0}, "below the low number, before the range test"},
    {&kLow14AHigh12, "12A", "", {3, 0, 0}, "below the low, lettered: range test decides"},
    {&kOdd11To21, "", "", {0, 100, 0}, "no input number passes"},
    {&kOnlyLow12, "12", "", {0, 102, 0}, "only a low number is both bounds"},
    {&kOnlyLow12, "14", "", {3, 0, 0}, "only a low number, outside"},
    {&kOnlyHigh20, "1", "", {0, 102, 0}, "only a high number starts at zero"},
    {&kOnlyHigh20, "21", "", {3, 0, 0}, "only a high number, outside"},
    {&kNoNumbers, "12", "", {0, 99, 0}, "record without numbers accepts at a cost"},
    {&kNoNumbers, "A", "", {3, 0, 0}, "record without numbers, letter input"},
    {&kFloorShop1To20, "", "12/F FLAT A", {0, 106, 0}, "floor written with /F"},
    {&kFloorShop1To20, "99", "12/F FLAT A", {0, 106, 0}, "floor record ignores the premise number"},
    {&kFloorShop1To20, "", "FLAT A 12/F", {0, 106, 0}, "floor at the end of the line"},
    {&kFloorShop1To20, "", "FLAT A 1/F", {0, 106, 0}, "one-digit floor"},
    {&kFloorShop1To20, "", "FLAT A 21/F", {3, 0, 0}, "floor above the range"},
    {&kFloorShop1To20, "", "123/F", {0, 100, 0}, "three digits are no floor"},
    {&kFloorShop1To20, "", "A12/F", {0, 100, 0}, "floor must start a word"},
    {&kFloorShop1To20, "", "12/FL", {0, 100, 0}, "floor must end a word"},
    {&kFloorShop1To20, "", "SHOP 5", {0, 106, 0}, "shop keyword"},
    {&kFloorShop1To20, "", "G/F SHOP 25", {3, 0, 0}, "shop number outside"},
    {&kFloorShop1To20, "", "FLOOR 7 FLAT B", {0, 106, 0}, "floor keyword"},
    {&kFloorShop1To20, "", "ROOM 2503", {3, 0, 0}, "room on floor 25 rejects at the next position"},
    {&kFloorShop1To20, "", "ROOM 1503", {0, 108, 0}, "room number tested twice"},
    {&kFloorShop1To20, "", "RM 805", {0, 108, 0}, "RM keyword"},
    {&kFloorShop1To20, "", "SUITE 12B", {0, 108, 0}, "SUITE keyword"},
    {&kFloorShop1To20, "", "ROOM 2503ZZ7", {3, 0, 0}, "scan skips the character after a copy"},
    {&kFloorShop1To20, "", "ROOM 5", {0, 100, 0}, "one-digit room names no floor"},
    {&kFloorShop1To20, "", "ROOM 25A03", {0, 108, 0}, "room number stops at a non-digit"},
    {&kUnit1To10, "", "UNIT 5", {0, 106, 0}, "the record's unit word"},
    {&kUnit1To10, "", "UNIT 15", {3, 0, 0}, "unit outside"},
    {&kUnit1To10, "", "SHOP 15", {0, 100, 0}, "keywords count only for FLOOR/SHOP"},
    {&kFlat1To10, "99", "FLAT 5", {0, 106, 0}, "F-word record numbers floors"},
    {&kFlat1To10, "99", "SHOP 5", {0, 100, 0}, "F-word record uses its own word"},
    {&kUnit1To10, "5", "UNIT 50", {0, 102, 0}, "no unit check with a premise number"},
    {&kBlankWord1To10, "", "UNIT 50", {0, 100, 0}, "no unit check for a blank word"},
    {&kNoWord1To10, "", "UNIT 50", {0, 100, 0}, "no unit check without a word"},
  };
  // clang-format on
  for (const Row &r : rows) {
    SCOPED_TRACE(r.note);
    EXPECT_EQ(compare(*r.ref, InputRecord().premno(r.premno).unit(r.unit)),
              r.want);
  }
}

// Buildings: likeness 100 +6, 99 +5 and 91 +3 with a penalty, others 4.
TEST(CompareBuilding, Table) {
  struct Row {
    const char *record, *input;
    Result want;
  };
  // clang-format off
  const Row rows[] = {
    {"", "", {0, 102, 0}},
    {"GOLDEN PLAZA", "", {4, 0, 0}},
    {"", "GOLDEN PLAZA", {0, 102, 1}},
    {"GOLDEN PLAZA", "GOLDEN PLAZA", {0, 108, 0}},
    {"CHUNG KING BLDG", "CHUNG KING BUILDING", {0, 108, 0}},
    {"KWUN TONG IND BLDG", "KWUN TONG INDUSTRIAL BUILDING", {0, 108, 0}},
    {"KWUN TONG INDUSTRIAL BLDG", "KWUN TONG IND BLDG", {0, 108, 0}},
    {"LUK KWOK CTR", "LUK KWOK CENTRE", {0, 108, 0}},
    {"ROYAL VILLA", "ROYAL VILLAS", {0, 108, 0}},
    // A shorter name of at least half the other's length that starts it.
    {"GOLDEN PLAZA", "GOLDEN", {0, 105, 1}},
    {"GOLDEN PLAZA", "GOLD", {4, 0, 0}},
    // Street-name likeness 99 (one letter dropped) and 98 (a vowel).
    {"NAN FUNG COMERCIAL CENTRE", "NAN FUNG COMMERCIAL CENTRE", {0, 107, 1}},
    {"SHUN TAK CENTRE WST TOWER", "SHUN TAK CENTRE WEST TOWER", {4, 0, 0}},
    // A shorter input turns up to 98 into 91; a shorter record only up to 94.
    {"GOLDEN PLAZA.", "GOLDEN PLAZA", {0, 105, 1}},
    {"GOLDEN PLAZA", "GOLDEN PLAZA.", {4, 0, 0}},
    {"GOLDEN", "GOLDEN PLAZA", {4, 0, 0}},
    {"GOLDEN PLAZA", "GOLDEN PLAZA TOWER", {0, 105, 1}},
    // A quote or TH at the start makes the names close and skips the tail
    // rule that otherwise gives 91.
    {"ABC", "X ABC", {0, 105, 1}},
    {"ABC", "'X ABC", {4, 0, 0}},
    {"ABC", "\"X ABC", {4, 0, 0}},
    {"ABC", "THX ABC", {4, 0, 0}},
    {"THX ABC", "ABC", {4, 0, 0}},
    {"GOLDEN PLAZA", "PLAZA", {0, 105, 1}},
    {"PLAZA", "GOLDEN PLAZA", {0, 105, 1}},
    {"HARBOUR CENTRE", "PLAZA", {4, 0, 0}},
  };
  // clang-format on
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.record) + " / " + r.input);
    const ReferenceRecord ref{"1", "99", "", r.record, "", ""};
    EXPECT_EQ(compare(ref, InputRecord().premno("5").bldg(r.input)), r.want);
  }
}

// Reference code: equal +6, different -6 with a penalty, none no change.
TEST(CompareRefcode, EqualAddsSixDifferentCostsSix) {
  const ReferenceRecord ref{"1", "99", "", "", "K01", ""};
  EXPECT_EQ(compare(ref, InputRecord().premno("5").refcode("K01")),
            (Result{0, 108, 0}));
  EXPECT_EQ(compare(ref, InputRecord().premno("5").refcode("K02")),
            (Result{0, 96, 1}));
  EXPECT_EQ(compare(ref, InputRecord().premno("5")), (Result{0, 102, 0}));
}

// A street score below 100 costs a penalty; penalties add up.
TEST(CompareRefcode, StreetScorePenaltyAddsUp) {
  HKBASEREC rec = ReferenceRecord{"1", "99", "", "", "K01", ""}.build();
  HKWORKREC work = InputRecord().premno("5").prepared();
  rec.bscore = 99;
  EXPECT_EQ(compare(rec, work), (Result{0, 102, 1}));
  rec.bscore = 100;
  EXPECT_EQ(compare(rec, work), (Result{0, 102, 0}));
  rec.bscore = 95;
  work = InputRecord().premno("5").bldg("PLAZA").refcode("X").prepared();
  EXPECT_EQ(compare(rec, work), (Result{0, 96, 3}));
}

// An unparsable input number or bound rejects, whatever the range says.
TEST(CompareNumbers, UnparsableNumbersReject) {
  HKWORKREC work = InputRecord().premno("13").prepared();
  HKBASEREC rec = kOdd11To21.build();
  ASSERT_EQ(compare(rec, work), (Result{0, 102, 0}));
  rec.blorc = 1;
  EXPECT_EQ(compare(rec, work).code, 3u);
  rec = kOdd11To21.build();
  rec.bhirc = 1;
  EXPECT_EQ(compare(rec, work).code, 3u);
  work.wk_premrc = 1;
  EXPECT_EQ(compare(kOdd11To21.build(), work), (Result{3, 0, 0}));
}

// The floor scan stops at two blanks (preparation never leaves two).
TEST(CompareNumbers, TwoBlanksEndTheFloorScan) {
  HKWORKREC work = InputRecord().prepared();
  std::strcpy(work.wk_unit, "A  12/F");
  EXPECT_EQ(compare(kFloorShop1To20.build(), work), (Result{0, 100, 0}));
  std::strcpy(work.wk_unit, "A 12/F");
  EXPECT_EQ(compare(kFloorShop1To20.build(), work), (Result{0, 106, 0}));
}

// The unit check leaves its parser result in wk_premrc for later candidates.
TEST(CompareNumbers, LaterCandidatesSeeTheChangedParserResult) {
  HKWORKREC floor = InputRecord().unit("12/F FLAT A").prepared();
  ASSERT_EQ(floor.wk_premrc, 2);
  compare(kFloorShop1To20.build(), floor);
  EXPECT_EQ(floor.wk_premrc, 0);

  HKWORKREC work = InputRecord().premno("12").unit("SHOP -").prepared();
  ASSERT_EQ(work.wk_premrc, 0);
  EXPECT_EQ(compare(kOdd11To21.build(), work).code, 3u);
  EXPECT_EQ(compare(kFloorShop1To20.build(), work), (Result{0, 104, 0}));
  EXPECT_EQ(work.wk_premrc, 2);
  EXPECT_EQ(compare(kOdd11To21.build(), work), (Result{0, 102, 0}));
}

}  // namespace
