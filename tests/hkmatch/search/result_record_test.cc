// The result record: the output record with and without a chosen reference,
// in the ordinary mode and in mode '3', and its two composed lines.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "support/record_builders.h"
#include "support/search_harness.h"

namespace {

using orlo::testing::InputRecord;
using orlo::testing::pad;
using orlo::testing::trimmed;
namespace out = orlo::out;
namespace in = orlo::in;

// A candidate list of two streets in a street table of three, and a
// reference record on candidate 0 (NATHAN ROAD).
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
    ref_.bpen = 1;
  }

  // Runs the writer on a blank output record with the search's codes.
  std::string write(const InputRecord &inrec, char retcode, char matchstat,
                    HKBASEREC *chosen) {
    std::string rec(HKOUTREC_SIZE, ' ');
    rec[out::retcode.off] = retcode;
    rec[out::matchstat.off] = matchstat;
    hk_fret(nullptr, chosen, inrec.data(), &mcb_, rec.data());
    return rec;
  }
  std::string with_ref(const InputRecord &inrec) {
    return write(inrec, '1', '0', &ref_);
  }
  static std::string field(const std::string &rec, orlo::FieldRef f) {
    return rec.substr(static_cast<size_t>(f.off), static_cast<size_t>(f.len));
  }
  // Every input field that the writer copies byte for byte.
  static void expect_echoed(const std::string &o, const InputRecord &inrec) {
    EXPECT_EQ(field(o, out::premno), inrec.field(in::premno));
    EXPECT_EQ(field(o, out::unit), inrec.field(in::unit));
    EXPECT_EQ(field(o, out::unitext), inrec.field(in::unitext));
    EXPECT_EQ(field(o, out::district), inrec.field(in::district));
    EXPECT_EQ(field(o, out::region), inrec.field(in::region));
    EXPECT_EQ(o[out::mode.off], inrec.data()[in::mode.off]);
  }

  std::array<STREETENT, 3> streets_;
  std::array<STREETENT *, 2> cands_;
  HKMCB mcb_;
  HKBASEREC ref_;
};

InputRecord typical_input(char mode = '1') {
  InputRecord r;
  r.premno("0012A")
      .street("NATHAN RD")
      .bldg("CHUNG KING MANSION")
      .unit("FLAT A 12/F")
      .unitext("BLK 3")
      .district("TSIM SHA TSUI")
      .region("KLN")
      .mode(mode);
  return r;
}

// Without a chosen reference (none, a tie, or no choice although one is
// given) the input is echoed with grade 9 and no reference fields.
TEST_F(ResultRecord, WithoutAChoiceEchoesTheInput) {
  const InputRecord inrec = typical_input();
  const struct {
    char retcode, matchstat;
    bool given;
  } rows[] = {{'0', '3', false}, {'1', '5', true}, {'0', '4', true}};
  for (const auto &r : rows) {
    SCOPED_TRACE(r.matchstat);
    const std::string o =
        write(inrec, r.retcode, r.matchstat, r.given ? &ref_ : nullptr);
    EXPECT_EQ(o[out::retcode.off], r.retcode);
    EXPECT_EQ(o[out::matchstat.off], r.matchstat);
    EXPECT_EQ(o[out::grade.off], '9');
    expect_echoed(o, inrec);
    EXPECT_EQ(field(o, out::street), inrec.field(in::street));
    EXPECT_EQ(field(o, out::bldg), inrec.field(in::bldg));
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
}

// The composed lines: a first line left empty takes the second; mode '3'
// leads with the building and copies the street unjustified; a reference
// address text (not starting with a blank) takes the second line.
TEST_F(ResultRecord, ComposedLines) {
  const std::string building = "CHUNG KING MANSION FLAT A 12/F BLK 3";
  const struct {
    InputRecord in;
    bool chosen;
    const char *addr, *line1, *line2, *note;
  } rows[] = {
      {InputRecord().premno("12").street("NATHAN   ROAD"), false, "",
       "12 NATHAN ROAD", "", "street only moves up"},
      {InputRecord().premno("12").street("NATHAN RD"), true, "",
       "12 NATHAN ROAD", "", "street only moves up, reference name"},
      {InputRecord().street("NATHAN ROAD").mode('3'), false, "", "NATHAN ROAD",
       "", "mode 3, street only moves up"},
      {InputRecord().street(" NATHAN ROAD").mode('3'), false, "", "",
       " NATHAN ROAD", "mode 3, leading blank stays put"},
      {typical_input('3').street(" NATHAN  RD"), false, "",
       "CHUNG KING MANSION 0012A FLAT A 12/F BLK 3", " NATHAN  RD",
       "mode 3 without reference"},
      {typical_input(), true, "", building.c_str(), "0012A NATHAN ROAD",
       "reference without address text"},
      {typical_input(), true, " 36 NATHAN ROAD", building.c_str(),
       "0012A NATHAN ROAD", "address text with a leading blank is none"},
      {typical_input(), true, "36-44  NATHAN ROAD",
       "CHUNG KING MANSION FLAT A 12/F BLK 3 0012A NATHAN ",
       "36-44  NATHAN ROAD",
       "address text as stored; the street line joins line 1, cut at 50"},
      {typical_input(), true, "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234",
       "CHUNG KING MANSION FLAT A 12/F BLK 3 0012A NATHAN ",
       "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234", "30-character address text"},
      {InputRecord()
           .bldg("ABCDEFGHIJ KLMNOPQRST UVWXYZAB")
           .unit("FLAT 1234567890 FLOOR 123")
           .unitext("TOWER"),
       false, "", "ABCDEFGHIJ KLMNOPQRST UVWXYZAB FLAT 1234567890 FLO", "",
       "long line cut at 50"},
  };
  for (const auto &r : rows) {
    SCOPED_TRACE(r.note);
    orlo::testing::set_text(ref_.baddr, r.addr);
    const std::string o =
        r.chosen ? with_ref(r.in) : write(r.in, '0', '2', nullptr);
    EXPECT_EQ(field(o, out::line1), pad(r.line1, 50));
    EXPECT_EQ(field(o, out::line2), pad(r.line2, 50));
    // The reference line holds the first 25 characters of the text.
    EXPECT_EQ(trimmed(o, out::refline),
              r.chosen ? trimmed(pad(r.addr, 25), {0, 25}) : "");
  }
}

// A chosen reference sets match status 0, the grade from its penalties, the
// reference fields and the street name of its candidate; a building of its
// own replaces the input's and is flagged.
TEST_F(ResultRecord, WithReferenceCarriesTheReferenceFields) {
  const InputRecord inrec = typical_input();
  std::string o = with_ref(inrec);
  EXPECT_EQ(trimmed(o, out::bldg), "CHUNG KING MANSION");
  EXPECT_EQ(o[out::bldgsrc.off], ' ');

  std::strcpy(ref_.bbldg, "CHUNGKING MANSIONS");
  ref_.bpen = 3;
  o = write(inrec, '1', '4', &ref_);
  EXPECT_EQ(o[out::matchstat.off], '0');
  EXPECT_EQ(o[out::grade.off], '3');
  EXPECT_EQ(field(o, out::refcode), "K01");
  EXPECT_EQ(field(o, out::refid), "00042");
  EXPECT_EQ(trimmed(o, out::street), "NATHAN ROAD");
  EXPECT_EQ(trimmed(o, out::bldg), "CHUNGKING MANSIONS");
  EXPECT_EQ(o[out::bldgsrc.off], 'Y');
  expect_echoed(o, inrec);
}

// In mode '3' the street field holds the input building; a reference street
// goes to the building field and the second line.
TEST_F(ResultRecord, WithReferenceInModeThree) {
  const InputRecord inrec = typical_input('3');
  ref_.bcand = 1;  // CANTON ROAD
  const std::string o = with_ref(inrec);
  EXPECT_EQ(field(o, out::street), inrec.field(in::bldg));
  EXPECT_EQ(trimmed(o, out::bldg), "CANTON ROAD");
  EXPECT_EQ(trimmed(o, out::line1),
            "CHUNG KING MANSION 0012A FLAT A 12/F BLK 3");
  EXPECT_EQ(trimmed(o, out::line2), "CANTON ROAD");
  EXPECT_EQ(field(o, out::refcode), "K01");
  // Without a reference the building stands in both fields.
  const std::string none = write(inrec, '0', '4', nullptr);
  EXPECT_EQ(field(none, out::street), inrec.field(in::bldg));
  EXPECT_EQ(field(none, out::bldg), inrec.field(in::bldg));
}

// A candidate index outside the list (2 is a street of the table, but past
// the list) or a missing list gives no street name instead of a wild read.
TEST_F(ResultRecord, StreetIndexOutsideTheCandidateListGivesNoName) {
  const InputRecord inrec = InputRecord().premno("12").street("NATHAN RD");
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

}  // namespace
