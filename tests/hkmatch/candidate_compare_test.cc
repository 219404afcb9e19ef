// Candidate comparison of one reference record with the prepared input:
// premise number and side, the record's bounds, the floor and unit check,
// building names, the reference code, and the effect on wk_premrc that later
// candidates see.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "hkmatch/record_builders.h"

namespace {

using orlo::testing::InputRecord;
using orlo::testing::ReferenceRecord;

struct Result {
  uint32_t code;
  int32_t score;
  int32_t penalties;
};

Result compare(HKBASEREC rec, HKWORKREC &work) {
  rec.bmscore = 77;  // must be overwritten, also on a rejection
  rec.bpen = 77;
  const uint32_t code = hk_mcte(&rec, &work);
  return {code, rec.bmscore, rec.bpen};
}

Result compare(const ReferenceRecord &ref, HKWORKREC &work) {
  return compare(ref.build(), work);
}

Result compare(const ReferenceRecord &ref, const InputRecord &in) {
  HKWORKREC work = in.prepared();
  return compare(ref, work);
}

#define EXPECT_RESULT(actual, c, s, p) \
  do {                                 \
    const Result r_ = (actual);        \
    EXPECT_EQ(r_.code, c##u);          \
    EXPECT_EQ(r_.score, s);            \
    EXPECT_EQ(r_.penalties, p);        \
  } while (0)

InputRecord premno(const char *number) {
  return InputRecord().premno(number);
}

InputRecord unit_line(const char *line) {
  return InputRecord().unit(line);
}

const ReferenceRecord kOdd11To21{"11", "21", "", "", "", "O"};
const ReferenceRecord kFloorShop1To20{"1", "20", "FLOOR/SHOP", "", "", ""};
const ReferenceRecord kUnit1To10{"1", "10", "UNIT", "", "", ""};

// ---- premise number and side ----------------------------------------------

TEST(ComparePremiseNumber, InRangeOnTheRecordsSide) {
  EXPECT_RESULT(compare(kOdd11To21, premno("13")), 0, 102, 0);
}

TEST(ComparePremiseNumber, OtherSideRejects) {
  EXPECT_RESULT(compare(kOdd11To21, premno("12")), 3, 0, 0);
  EXPECT_RESULT(compare(kOdd11To21, premno("23")), 3, 0, 0);
}

TEST(ComparePremiseNumber, PairOfOddAndEvenServesBothSides) {
  // 12 14 is even on both numbers; 12 13 is a pair of both sides.
  const ReferenceRecord record{"11", "21", "", "", "", "B"};
  EXPECT_RESULT(compare(record, premno("12-14")), 0, 100, 0);
  EXPECT_RESULT(compare(kOdd11To21, premno("12-14")), 3, 0, 0);
  EXPECT_RESULT(compare(kOdd11To21, premno("12-13")), 0, 100, 0);
  EXPECT_RESULT(compare(kOdd11To21, premno("13 15")), 0, 100, 0);
}

TEST(ComparePremiseNumber, BelowTheLowNumberRejectsWithoutARangeTest) {
  // The range test alone would accept 12: it is the high end of 14A / 12.
  const ReferenceRecord record{"14A", "12", "", "", "", ""};
  const HKBASEREC rec = record.build();
  int32_t score = 100;
  ASSERT_EQ(hk_mvir(12, 'N', 0, ' ', 'E', rec.blonum, rec.blotyp, rec.blosub,
                    rec.blosubtyp, rec.bhinum, rec.bhityp, rec.bhisub,
                    rec.bhisubtyp, &score, 'B', 'B'),
            1);
  EXPECT_RESULT(compare(record, premno("12")), 3, 0, 0);
  // Below 14 too, but with a letter: the range test decides.
  EXPECT_RESULT(compare(record, premno("12A")), 3, 0, 0);
}

TEST(ComparePremiseNumber, UnparsableInputNumberRejects) {
  HKWORKREC work = premno("13").prepared();
  work.wk_premrc = 1;
  EXPECT_RESULT(compare(kOdd11To21, work), 3, 0, 0);
}

TEST(ComparePremiseNumber, NoInputNumberPassesTheRangeTest) {
  EXPECT_RESULT(compare(kOdd11To21, InputRecord()), 0, 100, 0);
}

TEST(ComparePremiseNumber, StreetScoreBelowHundredCostsAPenalty) {
  HKBASEREC rec = kOdd11To21.build();
  HKWORKREC work = premno("13").prepared();
  rec.bscore = 99;
  EXPECT_RESULT(compare(rec, work), 0, 102, 1);
  rec.bscore = 100;
  EXPECT_RESULT(compare(rec, work), 0, 102, 0);
}

// ---- the record's bounds ----------------------------------------------------

TEST(CompareBounds, UnparsableBoundRejects) {
  HKWORKREC work = premno("13").prepared();
  HKBASEREC rec = kOdd11To21.build();
  rec.blorc = 1;
  EXPECT_RESULT(compare(rec, work), 3, 0, 0);
  rec = kOdd11To21.build();
  rec.bhirc = 1;
  EXPECT_RESULT(compare(rec, work), 3, 0, 0);
}

TEST(CompareBounds, OnlyALowNumberIsBothBounds) {
  const ReferenceRecord record{"12", "", "", "", "", ""};
  EXPECT_RESULT(compare(record, premno("12")), 0, 102, 0);
  EXPECT_RESULT(compare(record, premno("14")), 3, 0, 0);
}

TEST(CompareBounds, OnlyAHighNumberStartsTheRangeAtZero) {
  const ReferenceRecord record{"", "20", "", "", "", ""};
  EXPECT_RESULT(compare(record, premno("1")), 0, 102, 0);
  EXPECT_RESULT(compare(record, premno("21")), 3, 0, 0);
}

TEST(CompareBounds, RecordWithoutNumbersAcceptsAtACost) {
  const ReferenceRecord record{"", "", "", "", "", "O"};
  EXPECT_RESULT(compare(record, premno("12")), 0, 99, 0);
  EXPECT_RESULT(compare(record, premno("A")), 3, 0, 0);
}

// ---- floor and unit check ---------------------------------------------------

TEST(CompareUnit, FloorWrittenWithSlashF) {
  HKWORKREC work = unit_line("12/F FLAT A").prepared();
  ASSERT_EQ(work.wk_premrc, 2);
  // + 2 from the range test, + 4 from the unit check.
  EXPECT_RESULT(compare(kFloorShop1To20, work), 0, 106, 0);
  EXPECT_EQ(work.wk_premrc, 0);
}

TEST(CompareUnit, FloorRecordIgnoresThePremiseNumber) {
  EXPECT_RESULT(compare(kFloorShop1To20, premno("99").unit("12/F FLAT A")), 0,
                106, 0);
}

TEST(CompareUnit, FloorAtTheEndOfTheLineIsRewritten) {
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("FLAT A 12/F")), 0, 106, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("FLAT A 1/F")), 0, 106, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("FLAT A 21/F")), 3, 0, 0);
}

TEST(CompareUnit, OnlyAFloorOfOneOrTwoDigitsAsAWordIsRewritten) {
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("123/F")), 0, 100, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("A12/F")), 0, 100, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("12/FL")), 0, 100, 0);
}

TEST(CompareUnit, TwoBlanksEndTheFloorRewriting) {
  HKWORKREC work = InputRecord().prepared();
  std::strcpy(work.wk_unit, "A  12/F");
  EXPECT_RESULT(compare(kFloorShop1To20, work), 0, 100, 0);
  std::strcpy(work.wk_unit, "A 12/F");
  EXPECT_RESULT(compare(kFloorShop1To20, work), 0, 106, 0);
}

TEST(CompareUnit, ShopAndFloorKeywords) {
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("SHOP 5")), 0, 106, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("G/F SHOP 25")), 3, 0, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("FLOOR 7 FLAT B")), 0, 106,
                0);
}

TEST(CompareUnit, RoomNumberOutsideTheFloorsRejectsAtTheNextPosition) {
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("ROOM 2503")), 3, 0, 0);
}

TEST(CompareUnit, RoomNumberIsTestedTwice) {
  // Floor 15: + 2 at the room number, + 2 at the next position, where the
  // test decides, + 4.
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("ROOM 1503")), 0, 108, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("RM 805")), 0, 108, 0);
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("SUITE 12B")), 0, 108, 0);
}

TEST(CompareUnit, ScanSkipsTheCharacterAfterACopy) {
  // The room number stops at Z; the scan goes on after it, so ZZ7 is never
  // seen and floor 25 decides.
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("ROOM 2503ZZ7")), 3, 0, 0);
}

TEST(CompareUnit, RoomNumberOfOneDigitNamesNoFloor) {
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("ROOM 5")), 0, 100, 0);
}

TEST(CompareUnit, RoomNumberStopsAtTheFirstNonDigit) {
  // 25A03 gives 25, floor 2.
  EXPECT_RESULT(compare(kFloorShop1To20, unit_line("ROOM 25A03")), 0, 108, 0);
}

TEST(CompareUnit, UnitWordOfTheRecord) {
  EXPECT_RESULT(compare(kUnit1To10, unit_line("UNIT 5")), 0, 106, 0);
  EXPECT_RESULT(compare(kUnit1To10, unit_line("UNIT 15")), 3, 0, 0);
  // Keywords count only for FLOOR/SHOP records.
  EXPECT_RESULT(compare(kUnit1To10, unit_line("SHOP 15")), 0, 100, 0);
}

TEST(CompareUnit, RecordNumberingFloorsUsesItsOwnWord) {
  const ReferenceRecord flat{"1", "10", "FLAT", "", "", ""};
  EXPECT_RESULT(compare(flat, premno("99").unit("FLAT 5")), 0, 106, 0);
  EXPECT_RESULT(compare(flat, premno("99").unit("SHOP 5")), 0, 100, 0);
}

TEST(CompareUnit, NotRunWhenTheInputHasAPremiseNumber) {
  EXPECT_RESULT(compare(kUnit1To10, premno("5").unit("UNIT 50")), 0, 102, 0);
}

TEST(CompareUnit, NotRunWithoutAUnitWord) {
  const ReferenceRecord blank_word{"1", "10", " UNIT", "", "", ""};
  EXPECT_RESULT(compare(blank_word, unit_line("UNIT 50")), 0, 100, 0);
  const ReferenceRecord no_word{"1", "10", "", "", "", ""};
  EXPECT_RESULT(compare(no_word, unit_line("UNIT 50")), 0, 100, 0);
}

// The unit check leaves its parser result in the work record; a 2 (nothing
// left after cleaning) makes the input number serve both sides for every
// later candidate.
TEST(CompareUnit, LaterCandidatesSeeTheChangedParserResult) {
  HKWORKREC work = premno("12").unit("SHOP -").prepared();
  ASSERT_EQ(work.wk_premrc, 0);
  EXPECT_RESULT(compare(kOdd11To21, work), 3, 0, 0);
  // The shop number converts to nothing, which the range test accepts.
  EXPECT_RESULT(compare(kFloorShop1To20, work), 0, 104, 0);
  EXPECT_EQ(work.wk_premrc, 2);
  // 12 now counts as both sides.
  EXPECT_RESULT(compare(kOdd11To21, work), 0, 102, 0);
}

// ---- building names ---------------------------------------------------------

ReferenceRecord with_building(const char *name) {
  return {"1", "99", "", name, "", ""};
}

InputRecord building(const char *name) {
  return InputRecord().premno("5").bldg(name);
}

TEST(CompareBuilding, EmptyAndPresentNames) {
  EXPECT_RESULT(compare(with_building(""), building("")), 0, 102, 0);
  EXPECT_RESULT(compare(with_building("GOLDEN PLAZA"), building("")), 4, 0, 0);
  EXPECT_RESULT(compare(with_building(""), building("GOLDEN PLAZA")), 0, 102,
                1);
}

TEST(CompareBuilding, SameNameScoresSix) {
  EXPECT_RESULT(
      compare(with_building("GOLDEN PLAZA"), building("GOLDEN PLAZA")), 0, 108,
      0);
}

TEST(CompareBuilding, SuffixesAreShortenedBeforeComparing) {
  EXPECT_RESULT(compare(with_building("CHUNG KING BLDG"),
                        building("CHUNG KING BUILDING")),
                0, 108, 0);
  EXPECT_RESULT(compare(with_building("KWUN TONG IND BLDG"),
                        building("KWUN TONG INDUSTRIAL BUILDING")),
                0, 108, 0);
  EXPECT_RESULT(compare(with_building("KWUN TONG INDUSTRIAL BLDG"),
                        building("KWUN TONG IND BLDG")),
                0, 108, 0);
  EXPECT_RESULT(
      compare(with_building("LUK KWOK CTR"), building("LUK KWOK CENTRE")), 0,
      108, 0);
  EXPECT_RESULT(compare(with_building("ROYAL VILLA"), building("ROYAL VILLAS")),
                0, 108, 0);
}

TEST(CompareBuilding, ShorterNameStartingTheLongerScoresNinetyOne) {
  // GOLDEN is at least half of GOLDEN PLAZA and starts it.
  EXPECT_RESULT(compare(with_building("GOLDEN PLAZA"), building("GOLDEN")), 0,
                105, 1);
  // GOLD is less than half of it.
  EXPECT_EQ(compare(with_building("GOLDEN PLAZA"), building("GOLD")).code, 4u);
}

// The likeness values below are those of the street name comparison on the
// adjusted names: 99 for one letter dropped from a long name, 98 for names
// equal but for a full stop or a vowel, 95 for a name that starts the other
// and 90 for one that starts it with a word to spare.
TEST(CompareBuilding, CloseNameScoringNinetyNineCostsAPenalty) {
  EXPECT_RESULT(compare(with_building("NAN FUNG COMERCIAL CENTRE"),
                        building("NAN FUNG COMMERCIAL CENTRE")),
                0, 107, 1);
}

TEST(CompareBuilding, CloseNameScoringNinetyEightRejects) {
  EXPECT_RESULT(compare(with_building("SHUN TAK CENTRE WST TOWER"),
                        building("SHUN TAK CENTRE WEST TOWER")),
                4, 0, 0);
}

TEST(CompareBuilding, PrefixRuleDependsOnWhichNameIsShorter) {
  // A shorter input that starts the record's name: up to 98 becomes 91.
  EXPECT_RESULT(
      compare(with_building("GOLDEN PLAZA."), building("GOLDEN PLAZA")), 0, 105,
      1);
  // A shorter record name: only up to 94 becomes 91.
  EXPECT_RESULT(
      compare(with_building("GOLDEN PLAZA"), building("GOLDEN PLAZA.")), 4, 0,
      0);
  EXPECT_RESULT(compare(with_building("GOLDEN"), building("GOLDEN PLAZA")), 4,
                0, 0);
  EXPECT_RESULT(
      compare(with_building("GOLDEN PLAZA"), building("GOLDEN PLAZA TOWER")), 0,
      105, 1);
}

TEST(CompareBuilding, QuoteOrThMakesNamesCloseAndSkipsTheTailRule) {
  // Different first letters: ABC ends the input, so the tail rule gives 91.
  EXPECT_RESULT(compare(with_building("ABC"), building("X ABC")), 0, 105, 1);
  // A quote or TH at the start makes the names close; their likeness (70,
  // 66) rejects.
  EXPECT_RESULT(compare(with_building("ABC"), building("'X ABC")), 4, 0, 0);
  EXPECT_RESULT(compare(with_building("ABC"), building("\"X ABC")), 4, 0, 0);
  EXPECT_RESULT(compare(with_building("ABC"), building("THX ABC")), 4, 0, 0);
  EXPECT_RESULT(compare(with_building("THX ABC"), building("ABC")), 4, 0, 0);
}

TEST(CompareBuilding, NameEndingTheOtherScoresNinetyOne) {
  EXPECT_RESULT(compare(with_building("GOLDEN PLAZA"), building("PLAZA")), 0,
                105, 1);
  EXPECT_RESULT(compare(with_building("PLAZA"), building("GOLDEN PLAZA")), 0,
                105, 1);
}

TEST(CompareBuilding, UnrelatedNamesReject) {
  EXPECT_RESULT(compare(with_building("HARBOUR CENTRE"), building("PLAZA")), 4,
                0, 0);
}

// ---- reference code ---------------------------------------------------------

TEST(CompareRefcode, EqualAddsSixDifferentCostsSix) {
  const ReferenceRecord record{"1", "99", "", "", "K01", ""};
  EXPECT_RESULT(compare(record, premno("5").refcode("K01")), 0, 108, 0);
  EXPECT_RESULT(compare(record, premno("5").refcode("K02")), 0, 96, 1);
  EXPECT_RESULT(compare(record, premno("5").refcode(" K0")), 0, 96, 1);
  EXPECT_RESULT(compare(record, premno("5")), 0, 102, 0);
}

TEST(CompareRefcode, PenaltiesAddUp) {
  HKBASEREC rec = ReferenceRecord{"1", "99", "", "", "K01", ""}.build();
  rec.bscore = 95;
  HKWORKREC work = premno("5").bldg("PLAZA").refcode("X").prepared();
  EXPECT_RESULT(compare(rec, work), 0, 96, 3);
}

// ---- any record the unpacker can produce ----------------------------------

TEST(CompareAnyRecord, GivesADefinedResult) {
  std::mt19937 rng(4242);
  const std::vector<std::string> numbers = {
      "",      "1",   "12",  "12A",   "A",     "AB",  "12 14", "N12E5",
      "1N234", "12-", "G/F", "99999", "3 1/2", "A12", "?",     "0"};
  const std::vector<std::string> words = {
      "", "FLOOR/SHOP", "FLAT", " X", "UNIT", "FLOOR/SHOP X", "ABCDEFGHIJKL"};
  const std::vector<std::string> names = {
      "",         "GOLDEN PLAZA",
      "'T HOUSE", "\"Q\" BUILDING",
      "THE PEAK", "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234"};
  const std::vector<std::string> lines = {"",
                                          "12/F FLAT A",
                                          "ROOM 2503",
                                          "SHOP 9999999",
                                          "ZZ",
                                          "RM 1",
                                          "SUITE 123456789",
                                          "1/F 2/F",
                                          "FLOOR/SHOP 7",
                                          "ABCDEFGHIJKLMNOPQRSTUVWXYZ 9/F"};
  const auto pick = [&rng](const std::vector<std::string> &v) {
    return v[rng() % v.size()];
  };
  for (int round = 0; round < 3000; ++round) {
    const ReferenceRecord ref{pick(numbers), pick(numbers), pick(words),
                              pick(names),   pick(numbers), "EO"};
    HKBASEREC rec = ref.build();
    rec.bside = "BEO"[rng() % 3];
    rec.bscore = static_cast<int32_t>(90 + rng() % 11);
    InputRecord in;
    in.premno(pick(numbers))
        .bldg(pick(names))
        .unit(pick(lines))
        .unitext(pick(numbers))
        .refcode(pick(numbers));
    HKWORKREC work = in.prepared();
    const Result r = compare(rec, work);
    if (r.code == 0) {
      EXPECT_GE(r.score, 100 - 1 - 6) << round;
      EXPECT_LE(r.score, 100 + 4 + 4 + 6 + 6) << round;
      EXPECT_GE(r.penalties, 0) << round;
      EXPECT_LE(r.penalties, 3) << round;
    } else {
      EXPECT_TRUE(r.code == 3 || r.code == 4) << round;
      EXPECT_EQ(r.score, 0) << round;
      EXPECT_EQ(r.penalties, 0) << round;
    }
    EXPECT_TRUE(work.wk_premrc == 0 || work.wk_premrc == 2) << round;
    if (::testing::Test::HasFailure()) break;
  }
}

}  // namespace
