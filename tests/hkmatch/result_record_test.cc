// The result record: the output record with and without a chosen reference,
// in the ordinary mode and in mode '3', and its two composed lines.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <string_view>

#include "hkmatch/record_builders.h"

namespace {

using orlo::testing::InputRecord;
namespace out = orlo::out;
namespace in = orlo::in;

// A candidate list of two streets in a street table of three.
class ResultRecord : public ::testing::Test {
 protected:
  void SetUp() override {
    std::memset(streets_.data(), 0, sizeof streets_);
    std::strcpy(streets_[0].sname, "CANTON ROAD");
    std::strcpy(streets_[1].sname, "NATHAN ROAD");
    std::strcpy(streets_[2].sname, "SHANGHAI STREET");
    cands_ = {&streets_[1], &streets_[0]};
    std::memset(&mcb_, 0, sizeof mcb_);
    mcb_.lvl2tab = streets_.data();
    mcb_.lvl2cnt = static_cast<uint16_t>(streets_.size());
    mcb_.cands = cands_.data();
    mcb_.candcap = static_cast<int64_t>(cands_.size());

    std::memset(&ref_, 0, sizeof ref_);
    std::strcpy(ref_.brefcode, "K01");
    std::strcpy(ref_.brefid, "00042");
    ref_.bcand = 0;  // NATHAN ROAD
    ref_.bpen = 1;
  }

  // Runs the writer on a blank output record with the search's codes.
  std::string write(const InputRecord &inrec, char retcode, char matchstat,
                    HKBASEREC *chosen) {
    std::string outrec(HKOUTREC_SIZE, ' ');
    outrec[out::retcode.off] = retcode;
    outrec[out::matchstat.off] = matchstat;
    hk_fret(nullptr, chosen, inrec.data(), &mcb_, outrec.data());
    return outrec;
  }
  std::string with_ref(const InputRecord &inrec) {
    return write(inrec, '1', '0', &ref_);
  }

  static std::string field(const std::string &rec, orlo::FieldRef f) {
    return rec.substr(static_cast<size_t>(f.off), static_cast<size_t>(f.len));
  }
  static std::string trimmed(const std::string &rec, orlo::FieldRef f) {
    std::string s = field(rec, f);
    return s.substr(0, s.find_last_not_of(' ') + 1);
  }
  static std::string padded(std::string_view text, size_t width) {
    std::string s(text);
    s.resize(width, ' ');
    return s;
  }

  std::array<STREETENT, 3> streets_;
  std::array<STREETENT *, 2> cands_;
  HKMCB mcb_;
  HKBASEREC ref_;
};

InputRecord typical_input() {
  InputRecord r;
  r.premno("0012A")
      .street("NATHAN RD")
      .bldg("CHUNG KING MANSION")
      .unit("FLAT A 12/F")
      .unitext("BLK 3")
      .district("TSIM SHA TSUI")
      .region("KLN")
      .mode('1');
  return r;
}

// ---- without a reference --------------------------------------------------

TEST_F(ResultRecord, WithoutReferenceEchoesTheInput) {
  const InputRecord inrec = typical_input();
  const std::string o = write(inrec, '0', '3', nullptr);
  EXPECT_EQ(o[out::retcode.off], '0');
  EXPECT_EQ(o[out::matchstat.off], '3');
  EXPECT_EQ(o[out::grade.off], '9');
  EXPECT_EQ(field(o, out::premno), inrec.field(in::premno));
  EXPECT_EQ(field(o, out::street), inrec.field(in::street));
  EXPECT_EQ(field(o, out::bldg), inrec.field(in::bldg));
  EXPECT_EQ(field(o, out::unit), inrec.field(in::unit));
  EXPECT_EQ(field(o, out::unitext), inrec.field(in::unitext));
  EXPECT_EQ(field(o, out::district), inrec.field(in::district));
  EXPECT_EQ(field(o, out::region), inrec.field(in::region));
  EXPECT_EQ(o[out::mode.off], '1');
  EXPECT_EQ(trimmed(o, out::refcode), "");
  EXPECT_EQ(trimmed(o, out::refid), "");
  EXPECT_EQ(trimmed(o, out::refline), "");
  EXPECT_EQ(o[out::bldgsrc.off], ' ');
  EXPECT_EQ(trimmed(o, out::line1), "CHUNG KING MANSION FLAT A 12/F BLK 3");
  EXPECT_EQ(trimmed(o, out::line2), "0012A NATHAN RD");
  // Bytes the writer never sets.
  EXPECT_EQ(field(o, out::filler), " ");
  EXPECT_EQ(field(o, {HKOUT_AREACHG_OFF, 3}), "   ");
}

TEST_F(ResultRecord, WithoutReferenceStreetOnlyMovesToTheFirstLine) {
  InputRecord inrec;
  inrec.premno("12").street("NATHAN   ROAD");
  const std::string o = write(inrec, '0', '2', nullptr);
  EXPECT_EQ(trimmed(o, out::line1), "12 NATHAN ROAD");
  EXPECT_EQ(field(o, out::line2), std::string(50, ' '));
}

TEST_F(ResultRecord, WithoutReferenceInModeThreeTheBuildingLeads) {
  InputRecord inrec = typical_input();
  inrec.street(" NATHAN  RD").mode('3');
  const std::string o = write(inrec, '0', '4', nullptr);
  EXPECT_EQ(field(o, out::street), inrec.field(in::bldg));
  EXPECT_EQ(field(o, out::bldg), inrec.field(in::bldg));
  EXPECT_EQ(trimmed(o, out::line1),
            "CHUNG KING MANSION 0012A FLAT A 12/F BLK 3");
  // The street goes into the second line byte for byte, not justified.
  EXPECT_EQ(field(o, out::line2), padded(" NATHAN  RD", 50));
}

TEST_F(ResultRecord, WithoutReferenceInModeThreeAStreetAloneMoves) {
  InputRecord inrec;
  inrec.street("NATHAN ROAD").mode('3');
  const std::string o = write(inrec, '0', '2', nullptr);
  EXPECT_EQ(trimmed(o, out::line1), "NATHAN ROAD");
  EXPECT_EQ(field(o, out::line2), std::string(50, ' '));
}

TEST_F(ResultRecord, WithoutReferenceAStreetWithALeadingBlankStaysPut) {
  InputRecord inrec;
  inrec.street(" NATHAN ROAD").mode('3');
  const std::string o = write(inrec, '0', '2', nullptr);
  EXPECT_EQ(field(o, out::line1), std::string(50, ' '));
  EXPECT_EQ(field(o, out::line2), padded(" NATHAN ROAD", 50));
}

TEST_F(ResultRecord, TieEchoesTheInputWithGradeNine) {
  const InputRecord inrec = typical_input();
  const std::string o = write(inrec, '1', '5', &ref_);
  EXPECT_EQ(o[out::retcode.off], '1');
  EXPECT_EQ(o[out::matchstat.off], '5');
  EXPECT_EQ(o[out::grade.off], '9');
  EXPECT_EQ(field(o, out::street), inrec.field(in::street));
  EXPECT_EQ(trimmed(o, out::refcode), "");
  EXPECT_EQ(trimmed(o, out::refid), "");
  EXPECT_EQ(trimmed(o, out::line2), "0012A NATHAN RD");
}

TEST_F(ResultRecord, NoChoiceWritesNoReferenceEvenWhenGivenOne) {
  const std::string o = write(typical_input(), '0', '4', &ref_);
  EXPECT_EQ(o[out::grade.off], '9');
  EXPECT_EQ(o[out::matchstat.off], '4');
  EXPECT_EQ(trimmed(o, out::refcode), "");
}

// ---- with a reference -------------------------------------------------------

TEST_F(ResultRecord, WithReferenceCarriesTheReferenceFields) {
  const InputRecord inrec = typical_input();
  std::strcpy(ref_.bbldg, "CHUNGKING MANSIONS");
  ref_.bpen = 3;
  const std::string o = write(inrec, '1', '4', &ref_);
  EXPECT_EQ(o[out::matchstat.off], '0');
  EXPECT_EQ(o[out::grade.off], '3');
  EXPECT_EQ(field(o, out::refcode), "K01");
  EXPECT_EQ(field(o, out::refid), "00042");
  EXPECT_EQ(trimmed(o, out::street), "NATHAN ROAD");
  EXPECT_EQ(trimmed(o, out::bldg), "CHUNGKING MANSIONS");
  EXPECT_EQ(o[out::bldgsrc.off], 'Y');
  EXPECT_EQ(field(o, out::unit), inrec.field(in::unit));
  EXPECT_EQ(field(o, out::unitext), inrec.field(in::unitext));
  EXPECT_EQ(field(o, out::district), inrec.field(in::district));
  EXPECT_EQ(field(o, out::region), inrec.field(in::region));
  EXPECT_EQ(o[out::mode.off], '1');
  EXPECT_EQ(trimmed(o, out::refline), "");
}

TEST_F(ResultRecord, PremiseNumberIsAlwaysTheInputs) {
  const InputRecord inrec = typical_input();
  EXPECT_EQ(field(with_ref(inrec), out::premno), "0012A   ");
  EXPECT_EQ(field(write(inrec, '0', '2', nullptr), out::premno), "0012A   ");
}

TEST_F(ResultRecord, ReferenceWithoutBuildingKeepsTheInputs) {
  const std::string o = with_ref(typical_input());
  EXPECT_EQ(trimmed(o, out::bldg), "CHUNG KING MANSION");
  EXPECT_EQ(o[out::bldgsrc.off], ' ');
}

TEST_F(ResultRecord, WithReferenceWithoutAddressText) {
  const std::string o = with_ref(typical_input());
  EXPECT_EQ(trimmed(o, out::line1), "CHUNG KING MANSION FLAT A 12/F BLK 3");
  EXPECT_EQ(trimmed(o, out::line2), "0012A NATHAN ROAD");
}

TEST_F(ResultRecord, WithReferenceAddressTextTakesTheSecondLine) {
  std::strcpy(ref_.baddr, "36-44  NATHAN ROAD");
  const std::string o = with_ref(typical_input());
  // As stored, blank run included.
  EXPECT_EQ(field(o, out::line2), padded("36-44  NATHAN ROAD", 50));
  // Building, unit line, premise number and street, cut at 50.
  EXPECT_EQ(field(o, out::line1),
            std::string("CHUNG KING MANSION FLAT A 12/F BLK 3 0012A NATHAN "
                        "ROAD")
                .substr(0, 50));
  EXPECT_EQ(trimmed(o, out::refline), "36-44  NATHAN ROAD");
}

TEST_F(ResultRecord, AddressTextWithALeadingBlankCountsAsNone) {
  std::strcpy(ref_.baddr, " 36 NATHAN ROAD");
  const std::string o = with_ref(typical_input());
  EXPECT_EQ(trimmed(o, out::line2), "0012A NATHAN ROAD");
  EXPECT_EQ(trimmed(o, out::line1), "CHUNG KING MANSION FLAT A 12/F BLK 3");
}

TEST_F(ResultRecord, ThirtyCharacterAddressGivesTwentyFiveInTheRefline) {
  std::strcpy(ref_.baddr, "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234");
  const std::string o = with_ref(typical_input());
  EXPECT_EQ(field(o, out::refline), "ABCDEFGHIJKLMNOPQRSTUVWXY");
  EXPECT_EQ(trimmed(o, out::line2), "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234");
}

TEST_F(ResultRecord, WithReferenceOnlyStreetMovesToTheFirstLine) {
  InputRecord inrec;
  inrec.premno("12").street("NATHAN RD");
  const std::string o = with_ref(inrec);
  EXPECT_EQ(trimmed(o, out::line1), "12 NATHAN ROAD");
  EXPECT_EQ(field(o, out::line2), std::string(50, ' '));
}

TEST_F(ResultRecord, WithReferenceInModeThree) {
  InputRecord inrec = typical_input();
  inrec.mode('3');
  ref_.bcand = 1;  // CANTON ROAD
  const std::string o = with_ref(inrec);
  EXPECT_EQ(field(o, out::street), inrec.field(in::bldg));
  EXPECT_EQ(trimmed(o, out::bldg), "CANTON ROAD");
  EXPECT_EQ(trimmed(o, out::line1),
            "CHUNG KING MANSION 0012A FLAT A 12/F BLK 3");
  EXPECT_EQ(trimmed(o, out::line2), "CANTON ROAD");
  EXPECT_EQ(o[out::mode.off], '3');
  EXPECT_EQ(field(o, out::refcode), "K01");
}

TEST_F(ResultRecord, StreetIndexOutsideTheCandidateListGivesNoName) {
  InputRecord inrec;
  inrec.premno("12").street("NATHAN RD");
  // 2 names a street of the table but lies past the end of the list.
  for (int32_t bad : {-1, 2, 3, 40000}) {
    ref_.bcand = bad;
    const std::string o = with_ref(inrec);
    EXPECT_EQ(field(o, out::street), std::string(30, ' ')) << bad;
    EXPECT_EQ(trimmed(o, out::line1), "12") << bad;
  }
  ref_.bcand = 0;
  mcb_.cands = nullptr;
  EXPECT_EQ(field(with_ref(inrec), out::street), std::string(30, ' '));
}

TEST_F(ResultRecord, LongLinesAreCutAtFifty) {
  InputRecord inrec;
  inrec.bldg("ABCDEFGHIJ KLMNOPQRST UVWXYZAB")
      .unit("FLAT 1234567890 FLOOR 123")
      .unitext("TOWER");
  const std::string o = write(inrec, '0', '2', nullptr);
  EXPECT_EQ(field(o, out::line1),
            "ABCDEFGHIJ KLMNOPQRST UVWXYZAB FLAT 1234567890 FLO");
}

TEST_F(ResultRecord, AnyInputBytesKeepTheFixedFields) {
  std::mt19937 rng(77);
  std::strcpy(ref_.baddr, "1 NATHAN ROAD");
  for (int round = 0; round < 500; ++round) {
    InputRecord inrec;
    for (int i = 0; i < HKINREC_SIZE; ++i) {
      inrec.data()[i] = static_cast<char>(rng() & 0xFF);
    }
    const bool chosen = round % 2 == 0;
    const std::string o =
        write(inrec, chosen ? '1' : '0', '0', chosen ? &ref_ : nullptr);
    EXPECT_EQ(field(o, out::premno), inrec.field(in::premno));
    EXPECT_EQ(field(o, out::unit), inrec.field(in::unit));
    EXPECT_EQ(field(o, out::unitext), inrec.field(in::unitext));
    EXPECT_EQ(o[out::mode.off], inrec.data()[in::mode.off]);
    EXPECT_EQ(o[out::filler.off], ' ');
    EXPECT_EQ(o[out::grade.off], chosen ? '1' : '9');
    if (::testing::Test::HasFailure()) break;
  }
}

}  // namespace
