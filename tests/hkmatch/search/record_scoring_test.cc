// Choice of base records: the rules on hand-scored records, then end to end.
#include "hkmatch/search/record_scoring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "orlo_matcher.h"
#include "support/search_harness.h"

namespace {

using orlo::testing::Geocoder;
using orlo::testing::Outcome;
using orlo::testing::TestDb;

HKBASEREC scored(int32_t bscore, int16_t bmscore, int32_t bpen = 0,
                 const char *refcode = "K01", const char *refid = "00001") {
  HKBASEREC r;
  std::memset(&r, 0, sizeof r);
  orlo::testing::set_text(r.brefcode, refcode);
  orlo::testing::set_text(r.brefid, refid);
  r.bscore = bscore;
  r.bmscore = bmscore;
  r.bpen = bpen;
  return r;
}

// The choice among scored records: a record qualifies when the mean of its
// street score and its score is at least 93; the first greatest value wins;
// a best with two or more penalties gives way to a later qualifying record
// with fewer (and the walk goes on from it); a tie needs another record at
// the best value with a different code and identifier, compared padded.
TEST(ChooseRecord, Table) {
  struct Row {
    std::vector<HKBASEREC> recs;
    int64_t index;
    int tie;  // 0, 1, or -1 when it does not matter
    const char *note;
  };
  // clang-format off
  const Row rows[] = {
    {{scored(100, 86)}, 0, -1, "mean 93 qualifies"},
    {{scored(100, 85)}, -1, -1, "mean 92.5 does not"},
    {{scored(90, 96)}, 0, -1, "mean 93 from a low street score"},
    {{scored(90, 95), scored(91, 94), scored(93, 92)}, -1, -1, "none qualifies"},
    {{}, -1, -1, "no record"},
    {{scored(100, 90), scored(100, 104, 0, "K01", "00002"), scored(99, 104, 0, "K01", "00003")}, 1, 0, "first greatest value"},
    {{scored(100, 110, 3), scored(100, 95, 1)}, 1, -1, "3 penalties give way to 1"},
    {{scored(100, 110, 2), scored(100, 95, 1)}, 1, -1, "2 penalties give way to 1"},
    {{scored(100, 110, 3), scored(100, 80, 0)}, 0, -1, "not to a record below the threshold"},
    {{scored(100, 110, 1), scored(100, 95, 0)}, 0, -1, "1 penalty is never replaced"},
    {{scored(100, 110, 3), scored(100, 100, 2), scored(100, 90, 0, "K01", "00003"), scored(100, 105, 1)}, 2, -1, "walk goes on with the new best"},
    {{scored(100, 110, 3), scored(100, 90, 0, "K01", "00002"), scored(100, 90, 4, "K01", "00003")}, 1, 1, "ties counted at the new best value"},
    {{scored(100, 100), scored(100, 100)}, 0, 0, "same reference is no tie"},
    {{scored(100, 100), scored(100, 100, 0, "K01", "9")}, 0, 1, "other identifier ties"},
    {{scored(100, 100), scored(100, 100, 0, "K02")}, 0, 1, "other code ties"},
    {{scored(100, 104), scored(100, 100, 0, "K02"), scored(100, 100, 0, "K03")}, 0, 0, "equal only below the best"},
    {{scored(100, 100, 0, "K1", "23"), scored(100, 100, 0, "K12", "3")}, 0, 1, "K1+23 is not K12+3"},
    {{scored(100, 100, 0, "K1", "23"), scored(100, 100, 0, "K1", "23")}, 0, 0, "short pair equal"},
  };
  // clang-format on
  for (const Row &r : rows) {
    SCOPED_TRACE(r.note);
    bool tie = r.tie != 1;  // preset to the wrong answer
    EXPECT_EQ(orlo::choose_record(r.recs.data(),
                                  static_cast<int64_t>(r.recs.size()), &tie),
              r.index);
    if (r.tie >= 0) {
      EXPECT_EQ(tie, r.tie == 1);
    }
  }
}

// ---- End to end -------------------------------------------------------------

// Equal records: one reference chooses the first, two are a tie ('5').
TEST(RecordChoice, EqualRecords) {
  TestDb same(
      "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,FIRST\n"
      "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,SECOND\n");
  Geocoder g(same);
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '0');
  EXPECT_EQ(orlo::testing::trimmed(o.out, orlo::out::refline), "FIRST");

  TestDb other(
      "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,FIRST\n"
      "KLN,NATHAN ROAD,K01,00002,,,,10,,20,,SECOND\n");
  Geocoder t(other);
  o = t.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '5');
  EXPECT_EQ(o.refid(), "");
  EXPECT_EQ(o.grade(), '9');
  EXPECT_EQ(t.mcb()->laststat, 0);
}

// Input 12 on floor 12, building TOWER, code ABC. Record A numbers floors
// (+2 +4), its building only ends with TOWER (+3, one penalty); record B
// holds 12 (+2) and has the building (+6). With a wrong code (-6, one
// penalty each) A scores 103 with 2 penalties and B, lower with 1, is
// chosen; with the right code A keeps its single penalty and stays best.
TEST(RecordChoice, PenaltiesEndToEnd) {
  for (const char *code : {"XYZ", "ABC"}) {
    SCOPED_TRACE(code);
    const std::string c(code);
    TestDb db("KLN,NATHAN ROAD," + c +
              ",0000A,GOLDEN TOWER,,FLOOR/SHOP,1,,20,,\n"
              "KLN,NATHAN ROAD," +
              c + ",0000B,TOWER,,,10,,20,,\n");
    Geocoder g(db);
    const Outcome o =
        g.search({"KLN", "NATHAN ROAD", "12", "TOWER", "12/F FLAT A", "ABC"});
    ASSERT_NE(g.mcb()->baserecs, nullptr);
    const HKBASEREC *recs = g.mcb()->baserecs;
    if (c == "XYZ") {
      EXPECT_EQ(o.refid(), "0000B");
      EXPECT_EQ(o.grade(), '1');
      EXPECT_EQ(recs[0].bmscore, 103);
      EXPECT_EQ(recs[0].bpen, 2);
      EXPECT_EQ(recs[1].bmscore, 102);
      EXPECT_EQ(recs[1].bpen, 1);
    } else {
      EXPECT_EQ(o.refid(), "0000A");
      EXPECT_EQ(recs[1].bpen, 0);
    }
  }
}

// A building rejection outranks number rejections; an acceptance both.
TEST(RecordChoice, StatusOfRejections) {
  const std::string building =
      "KLN,NATHAN ROAD,K01,00002,OCEAN CENTRE,,,10,,20,,\n";
  const std::string far = "KLN,NATHAN ROAD,K01,00003,,,,50,,60,,\n";
  TestDb rejected("KLN,NATHAN ROAD,K01,00001,,,,30,,40,,\n" + building + far);
  Geocoder g(rejected);
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '4');

  TestDb accepted("KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n" + building + far);
  Geocoder a(accepted);
  o = a.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '0');
  EXPECT_EQ(o.refid(), "00001");
}

}  // namespace
