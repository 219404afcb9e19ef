// Scoring and choice of base records: the choice rules on records scored by
// hand (threshold, fewer penalties, ties), then the same rules end to end
// through hk_mpro on databases whose records score as the rules need.
#include "hkmatch/record_scoring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "orlo_matcher.h"
#include "search_harness.h"

namespace {

using orlo::choose_record;
using orlo::testing::Address;
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

struct Choice {
  int64_t index;
  bool tie;
};

Choice choose(const std::vector<HKBASEREC> &recs) {
  bool tie = true;
  int64_t i =
      choose_record(recs.data(), static_cast<int64_t>(recs.size()), &tie);
  return {i, tie};
}

TEST(ChooseRecord, MeanOf93QualifiesAndOf92Point5DoesNot) {
  EXPECT_EQ(choose({scored(100, 86)}).index, 0);
  EXPECT_EQ(choose({scored(100, 85)}).index, -1);
  EXPECT_EQ(choose({scored(90, 96)}).index, 0);
  EXPECT_EQ(choose({scored(90, 95), scored(91, 94), scored(93, 92)}).index, -1);
  EXPECT_EQ(choose({}).index, -1);
}

TEST(ChooseRecord, FirstRecordWithTheGreatestValueWins) {
  Choice c = choose({scored(100, 90), scored(100, 104, 0, "K01", "00002"),
                     scored(99, 104, 0, "K01", "00003")});
  EXPECT_EQ(c.index, 1);
  EXPECT_FALSE(c.tie);
}

TEST(ChooseRecord, FewerPenaltiesBeatAHigherValue) {
  // Best by value has 3 penalties; a qualifying record with 1 replaces it.
  EXPECT_EQ(choose({scored(100, 110, 3), scored(100, 95, 1)}).index, 1);
  // A record below the threshold never does.
  EXPECT_EQ(choose({scored(100, 110, 3), scored(100, 80, 0)}).index, 0);
  // Two penalties are already enough to be replaced.
  EXPECT_EQ(choose({scored(100, 110, 2), scored(100, 95, 1)}).index, 1);
}

TEST(ChooseRecord, OnePenaltyIsNeverReplaced) {
  EXPECT_EQ(choose({scored(100, 110, 1), scored(100, 95, 0)}).index, 0);
}

TEST(ChooseRecord, PenaltyWalkGoesOnWithTheNewBest) {
  // 3 is replaced by 2 (next in order), which is replaced by 0; the record
  // with 1 penalty that comes after the 0 does not take over again.
  Choice c = choose({scored(100, 110, 3), scored(100, 100, 2),
                     scored(100, 90, 0, "K01", "00003"), scored(100, 105, 1)});
  EXPECT_EQ(c.index, 2);
  // Ties are then counted at the new best value.
  c = choose({scored(100, 110, 3), scored(100, 90, 0, "K01", "00002"),
              scored(100, 90, 4, "K01", "00003")});
  EXPECT_EQ(c.index, 1);
  EXPECT_TRUE(c.tie);
}

TEST(ChooseRecord, TieNeedsADifferentReferencePair) {
  Choice same = choose({scored(100, 100), scored(100, 100)});
  EXPECT_EQ(same.index, 0);
  EXPECT_FALSE(same.tie);
  Choice other = choose({scored(100, 100), scored(100, 100, 0, "K01", "9")});
  EXPECT_EQ(other.index, 0);
  EXPECT_TRUE(other.tie);
  Choice code = choose({scored(100, 100), scored(100, 100, 0, "K02")});
  EXPECT_TRUE(code.tie);
  // Equal only at a lower value: no tie.
  EXPECT_FALSE(choose({scored(100, 104), scored(100, 100, 0, "K02"),
                       scored(100, 100, 0, "K03")})
                   .tie);
}

// The code and identifier are compared blank-padded to 3 and 5 bytes side
// by side: "K1"+"23" is "K1 23   ", not "K12"+"3".
TEST(ChooseRecord, ReferencePairIsPaddedBeforeItIsCompared) {
  EXPECT_TRUE(
      choose({scored(100, 100, 0, "K1", "23"), scored(100, 100, 0, "K12", "3")})
          .tie);
  EXPECT_FALSE(
      choose({scored(100, 100, 0, "K1", "23"), scored(100, 100, 0, "K1", "23")})
          .tie);
}

// ---- End to end -------------------------------------------------------------

constexpr const char *kHeader =
    "region,street,refcode,refid,building,parity,qual1,low,qual2,high,code9,"
    "address\n";

TEST(RecordChoice, EqualRecordsWithTheSameReferenceChooseTheFirst) {
  TestDb db(std::string(kHeader) +
            "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,FIRST\n"
            "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,SECOND\n");
  Geocoder g(db);
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '0');
  EXPECT_EQ(orlo::testing::field(o.out, HKOUT_REFLINE_OFF, HKOUT_REFLINE_LEN),
            "FIRST");
}

TEST(RecordChoice, EqualRecordsWithDifferentReferencesAreATie) {
  TestDb db(std::string(kHeader) +
            "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,FIRST\n"
            "KLN,NATHAN ROAD,K01,00002,,,,10,,20,,SECOND\n");
  Geocoder g(db);
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.ret, 0);
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '5');
  EXPECT_EQ(o.refid(), "");  // no reference written
  EXPECT_EQ(o.out[HKOUT_GRADE_OFF], '9');
  EXPECT_EQ(g.mcb()->laststat, 0);
}

// Input 12 on floor 12, building TOWER, reference code ABC.
// Record A numbers floors (unit check +2 +4), its building only ends with
// TOWER (+3, one penalty) and its code differs (-6, one penalty): 103 with
// 2 penalties. Record B holds 12 in its range (+2), has the building (+6)
// and the wrong code (-6): 102 with 1 penalty, lower but chosen.
TEST(RecordChoice, FewerPenaltiesWinOverAHigherValue) {
  TestDb db(std::string(kHeader) +
            "KLN,NATHAN ROAD,XYZ,0000A,GOLDEN TOWER,,FLOOR/SHOP,1,,20,,\n"
            "KLN,NATHAN ROAD,XYZ,0000B,TOWER,,,10,,20,,\n");
  Geocoder g(db);
  Outcome o =
      g.search({"KLN", "NATHAN ROAD", "12", "TOWER", "12/F FLAT A", "ABC"});
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.refid(), "0000B");
  EXPECT_EQ(o.out[HKOUT_GRADE_OFF], '1');
  ASSERT_NE(g.mcb()->baserecs, nullptr);
  EXPECT_EQ(g.mcb()->baserecs[0].bmscore, 103);
  EXPECT_EQ(g.mcb()->baserecs[0].bpen, 2);
  EXPECT_EQ(g.mcb()->baserecs[1].bmscore, 102);
  EXPECT_EQ(g.mcb()->baserecs[1].bpen, 1);
}

// With the right code A has one penalty and stays the best although B has
// none.
TEST(RecordChoice, BestWithOnePenaltyStays) {
  TestDb db(std::string(kHeader) +
            "KLN,NATHAN ROAD,ABC,0000A,GOLDEN TOWER,,FLOOR/SHOP,1,,20,,\n"
            "KLN,NATHAN ROAD,ABC,0000B,TOWER,,,10,,20,,\n");
  Geocoder g(db);
  Outcome o =
      g.search({"KLN", "NATHAN ROAD", "12", "TOWER", "12/F FLAT A", "ABC"});
  EXPECT_EQ(o.refid(), "0000A");
  EXPECT_EQ(g.mcb()->baserecs[1].bpen, 0);
}

TEST(RecordChoice, BuildingRejectionOutranksNumberRejection) {
  TestDb db(std::string(kHeader) +
            "KLN,NATHAN ROAD,K01,00001,,,,30,,40,,\n"
            "KLN,NATHAN ROAD,K01,00002,OCEAN CENTRE,,,10,,20,,\n"
            "KLN,NATHAN ROAD,K01,00003,,,,50,,60,,\n");
  Geocoder g(db);
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.retcode(), '0');
  EXPECT_EQ(o.matchstat(), '4');
}

TEST(RecordChoice, AcceptedRecordKeepsStatusZeroOverLaterRejections) {
  TestDb db(std::string(kHeader) +
            "KLN,NATHAN ROAD,K01,00001,,,,10,,20,,\n"
            "KLN,NATHAN ROAD,K01,00002,OCEAN CENTRE,,,10,,20,,\n"
            "KLN,NATHAN ROAD,K01,00003,,,,50,,60,,\n");
  Geocoder g(db);
  Outcome o = g.search({"KLN", "NATHAN ROAD", "12"});
  EXPECT_EQ(o.retcode(), '1');
  EXPECT_EQ(o.matchstat(), '0');
  EXPECT_EQ(o.refid(), "00001");
}

}  // namespace
