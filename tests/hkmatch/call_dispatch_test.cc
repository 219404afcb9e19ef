// The call dispatcher with a scripted search in place of the real one: call
// types, the second attempt with the building name and its replacement
// rules, the counters and the change flags.
#include "hkmatch/call_dispatch.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "hkmatch/scripted_search.h"

namespace {

namespace in = orlo::in;
namespace out = orlo::out;
using orlo::testing::blank_record;
using orlo::testing::kScripted;
using orlo::testing::put;
using orlo::testing::Result;
using orlo::testing::Script;

class CallDispatch : public ::testing::Test {
 protected:
  void SetUp() override {
    orlo::testing::script = &script_;
    mcb_.state = 'O';
    mcb_.lvl1fp = std::tmpfile();
    ASSERT_NE(mcb_.lvl1fp, nullptr);
    handle_.mcb = &mcb_;
    in_ = blank_record(HKINREC_SIZE);
    put(in_, in::premno, "12");
    put(in_, in::street, "NATHAN RD");
    put(in_, in::unit, "12/F FLAT A");
    put(in_, in::district, "YAU MA TEI");
    put(in_, in::region, "KLN");
    out_ = std::string(HKOUTREC_SIZE, '#');
  }
  void TearDown() override {
    std::fclose(mcb_.lvl1fp);
    orlo::testing::script = nullptr;
  }

  void call(const char *type) {
    orlo::CallArgs a;
    a.call_type = type;
    a.handle = &handle_;
    a.in_rec = in_.data();
    a.out_rec = out_.data();
    a.namelist = namelist_;
    a.reclist = reclist_;
    orlo::dispatch(a, kScripted);
  }
  // Processes in_ with the search answering first and, if asked, second.
  void process(const Result &first, const Result *second = nullptr) {
    std::vector<std::string> answers{first.build()};
    if (second != nullptr) answers.push_back(second->build());
    answer(answers);
    call("P");
  }
  // The next searches answer these records, in order.
  void answer(std::vector<std::string> records) {
    script_ = Script{};
    script_.results = std::move(records);
  }
  size_t searches() const { return script_.seen_inputs.size(); }

  Script script_;
  HKMCB mcb_{};
  HKHANDLE handle_{};
  std::string in_;
  std::string out_;
  char namelist_[30000] = {};
  char reclist_[7500] = {};
};

TEST_F(CallDispatch, UnknownCallTypesSetOnlyTheReturnCode) {
  for (const char *type : {"X", "", "o", "p", "c", " P"}) {
    out_ = std::string(HKOUTREC_SIZE, '#');
    call(type);
    EXPECT_EQ(out_, "2" + std::string(HKOUTREC_SIZE - 1, '#')) << type;
  }
  orlo::CallArgs a;
  a.out_rec = out_.data();
  orlo::dispatch(a, kScripted);  // no call type at all
  EXPECT_EQ(out_[0], '2');
  EXPECT_EQ(searches(), 0u);
  EXPECT_EQ(mcb_.nread, 0);
}

TEST_F(CallDispatch, OnlyTheFirstCharacterOfTheCallTypeCounts) {
  process(Result{});
  std::string by_p = out_;
  answer({Result{}.build()});
  call("PROCESS");
  EXPECT_EQ(out_, by_p);
  EXPECT_EQ(mcb_.nread, 2);
}

TEST_F(CallDispatch, DIsTheSameAsP) {
  Result nomatch;
  nomatch.status = '4';
  for (const char *type : {"P", "D"}) {
    mcb_.nread = mcb_.nmatched = 0;
    std::vector<std::string> outs;
    for (const Result &r : {Result{}, nomatch, Result{}}) {
      answer({r.build()});
      call(type);
      outs.push_back(out_);
    }
    EXPECT_EQ(mcb_.nread, 3) << type;
    EXPECT_EQ(mcb_.nmatched, 2) << type;
    EXPECT_EQ(outs[0], outs[2]) << type;
    EXPECT_EQ(outs[1], nomatch.build()) << type;
  }
}

TEST_F(CallDispatch, ProcessWithoutAUsableInstanceIsRefused) {
  HKHANDLE empty{};
  orlo::CallArgs a;
  a.call_type = "P";
  a.in_rec = in_.data();
  a.out_rec = out_.data();
  for (HKHANDLE *h : {static_cast<HKHANDLE *>(nullptr), &empty}) {
    a.handle = h;
    orlo::dispatch(a, kScripted);
    EXPECT_EQ(out_, "A" + blank_record(HKOUTREC_SIZE - 1));
  }
  // An open that failed leaves its block without the LEVEL1 file.
  std::FILE *level1 = mcb_.lvl1fp;
  mcb_.lvl1fp = nullptr;
  call("D");
  EXPECT_EQ(out_[0], 'A');
  mcb_.lvl1fp = level1;
  mcb_.state = 'C';
  call("P");
  EXPECT_EQ(out_[0], 'A');
  EXPECT_EQ(mcb_.nread, 0);
  EXPECT_EQ(searches(), 0u);
}

TEST_F(CallDispatch, ProcessWithoutAnInputRecordIsRefused) {
  orlo::CallArgs a;
  a.call_type = "P";
  a.handle = &handle_;
  a.out_rec = out_.data();
  orlo::dispatch(a, kScripted);
  EXPECT_EQ(out_[0], '2');
  EXPECT_EQ(mcb_.nread, 0);
}

TEST_F(CallDispatch, TheSearchGetsAFreshResultAndTheCallersLists) {
  process(Result{});
  ASSERT_EQ(searches(), 1u);
  EXPECT_EQ(script_.seen_result_starts[0],
            "0" + blank_record(HKOUTREC_SIZE - 1));
  EXPECT_EQ(script_.seen_inputs[0], in_);
  EXPECT_EQ(script_.seen_areas[0], blank_record(orlo::kSearchAreaSize));
  EXPECT_EQ(script_.seen_small_areas[0], blank_record(30));
}

TEST_F(CallDispatch, BlankBuildingIsSearchedOnce) {
  Result nomatch;
  nomatch.status = '2';
  process(nomatch, &nomatch);
  EXPECT_EQ(searches(), 1u);
  EXPECT_EQ(script_.pads, 1);
  EXPECT_EQ(out_, nomatch.build());
}

TEST_F(CallDispatch, AcceptedWithTheReferencesBuildingIsSearchedOnce) {
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  Result first;
  first.bldg = "CHUNGKING MANSIONS";
  first.bldgsrc = 'Y';
  process(first, &first);
  EXPECT_EQ(searches(), 1u);
}

TEST_F(CallDispatch, SecondAttemptSearchesTheBuildingAsStreet) {
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  put(in_, in::refcode, "K01");
  std::string callers = in_;
  Result first;  // accepted, but the building is the input's
  Result second;
  second.status = '3';
  process(first, &second);
  ASSERT_EQ(searches(), 2u);
  EXPECT_EQ(script_.pads, 2);
  std::string expected = callers;
  put(expected, in::street, "CHUNGKING MANSIONS");
  put(expected, in::bldg, "");
  put(expected, in::premno, "");
  EXPECT_EQ(script_.seen_inputs[1], expected);
  EXPECT_EQ(in_, callers) << "the caller's record is never changed";
  // The second search starts from a fresh result and a blank small area,
  // but the scratch area keeps what the first search left in it.
  EXPECT_EQ(script_.seen_result_starts[1],
            "0" + blank_record(HKOUTREC_SIZE - 1));
  EXPECT_EQ(script_.seen_small_areas[1], blank_record(30));
  EXPECT_EQ(script_.seen_areas[1], std::string(orlo::kSearchAreaSize, 'a'));
}

TEST_F(CallDispatch, NotAcceptedFirstIsReplacedWhenTheReferenceIsOnItsStreet) {
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  Result first;
  first.status = '4';
  first.street = "NATHAN RD";
  Result second;
  second.street = "NATHAN ROAD";
  second.refline = "NATHAN RD";
  second.premno = "";
  process(first, &second);
  ASSERT_EQ(searches(), 2u);
  std::string expected = second.build();
  expected[out::streetchg.off] = 'Y';
  expected[out::premchg.off] = 'Y';
  EXPECT_EQ(out_, expected);
  EXPECT_EQ(mcb_.nmatched, 1);
}

TEST_F(CallDispatch, NotAcceptedFirstIsKeptWhenTheReferenceIsElsewhere) {
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  Result first;
  first.status = '2';
  first.street = "NATHAN RD";
  Result second;
  second.refline = "CHUNGKING MANSIONS";
  process(first, &second);
  EXPECT_EQ(out_, first.build());
  EXPECT_EQ(mcb_.nmatched, 0);
}

TEST_F(CallDispatch, SecondAttemptNotAcceptedLeavesTheFirstResult) {
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  for (char first_status : {'0', '4'}) {
    Result first;
    first.status = first_status;
    Result second;
    second.status = '3';
    second.refline = first.street;
    process(first, &second);
    std::string expected = first.build();
    // An accepted result still gets its change flags: only the street
    // differs from the input.
    if (first_status == '0') expected[out::streetchg.off] = 'Y';
    EXPECT_EQ(searches(), 2u);
    EXPECT_EQ(out_, expected) << first_status;
  }
}

// An accepted first result gives way only to another record of the same
// reference code, without a building, on the same street (or with no
// reference line).
TEST_F(CallDispatch, AcceptedFirstIsReplacedOnlyUnderAllFourConditions) {
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  Result first;
  first.street = "NATHAN ROAD";
  first.refid = "00001";
  Result good;
  good.refline = "NATHAN ROAD";
  good.refid = "00002";
  good.street = "NATHAN ROAD";
  good.premno = "";

  struct Case {
    const char *what;
    void (*change)(Result &);
    bool replaces;
  } cases[] = {
      {"all hold", [](Result &) {}, true},
      {"blank reference line", [](Result &r) { r.refline = ""; }, true},
      {"other street", [](Result &r) { r.refline = "CHUNGKING MANSIONS"; },
       false},
      {"has a building", [](Result &r) { r.bldg = "CHUNGKING MANSIONS"; },
       false},
      {"same record", [](Result &r) { r.refid = "00001"; }, false},
      {"other code", [](Result &r) { r.refcode = "K02"; }, false},
      {"not accepted", [](Result &r) { r.status = '4'; }, false},
  };
  for (const Case &c : cases) {
    Result second = good;
    c.change(second);
    process(first, &second);
    ASSERT_EQ(searches(), 2u) << c.what;
    std::string shown = out_.substr(out::refid.off, out::refid.len);
    EXPECT_EQ(shown, c.replaces ? second.refid : first.refid) << c.what;
    EXPECT_EQ(out_[out::premchg.off], c.replaces ? 'Y' : ' ') << c.what;
  }
}

TEST_F(CallDispatch, StreetComparedOnItsFirst25Characters) {
  put(in_, in::bldg, "SOME BUILDING");
  Result first;
  first.status = '4';
  first.street = "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234";
  Result second;
  second.refline = "ABCDEFGHIJKLMNOPQRSTUVWXY";
  process(first, &second);
  EXPECT_EQ(out_[out::matchstat.off], '0');
  second.refline = "ABCDEFGHIJKLMNOPQRSTUVWXZ";
  process(first, &second);
  EXPECT_EQ(out_[out::matchstat.off], '4');
}

TEST_F(CallDispatch, CountersFollowTheFinalStatus) {
  Result nomatch;
  nomatch.status = '3';
  process(Result{});
  process(nomatch);
  process(nomatch);
  EXPECT_EQ(mcb_.nread, 3);
  EXPECT_EQ(mcb_.nmatched, 1);
  // An error of the search is still a record read.
  Result failed;
  failed.status = ' ';
  std::string rec = failed.build();
  rec[0] = '5';
  answer({rec});
  call("P");
  EXPECT_EQ(out_[0], '5');
  EXPECT_EQ(mcb_.nread, 4);
  EXPECT_EQ(mcb_.nmatched, 1);
}

TEST_F(CallDispatch, ChangeFlagsCompareTheCallersFields) {
  struct Case {
    const char *what;
    void (*change)(Result &);
    const char *flags;  // areachg, streetchg, premchg
  } cases[] = {
      {"nothing changed", [](Result &r) { r.street = "NATHAN RD"; }, "   "},
      {"street", [](Result &) {}, " Y "},
      {"unit",
       [](Result &r) {
         r.street = "NATHAN RD";
         r.unit = "12/F";
       },
       "  Y"},
      {"premise number",
       [](Result &r) {
         r.street = "NATHAN RD";
         r.premno = "012";
       },
       "  Y"},
      {"district",
       [](Result &r) {
         r.street = "NATHAN RD";
         r.district = "MONG KOK";
       },
       "Y  "},
      {"region",
       [](Result &r) {
         r.street = "NATHAN RD";
         r.region = "HK";
       },
       "Y  "},
      {"everything",
       [](Result &r) {
         r.premno = "";
         r.unit = "";
         r.region = "";
       },
       "YYY"},
  };
  for (const Case &c : cases) {
    Result r;
    c.change(r);
    process(r);
    EXPECT_EQ(out_.substr(out::areachg.off, 3), c.flags) << c.what;
  }
}

TEST_F(CallDispatch, ChangeFlagsOnlyForAcceptedResults) {
  Result nomatch;
  nomatch.status = '4';
  nomatch.region = "NT";
  process(nomatch);
  EXPECT_EQ(out_.substr(out::areachg.off, 3), "   ");
}

TEST_F(CallDispatch, AFlagSetByTheSearchIsNeverCleared) {
  Result r;
  r.street = "NATHAN RD";
  std::string rec = r.build();
  rec[out::areachg.off] = 'Y';
  answer({rec});
  call("P");
  EXPECT_EQ(out_.substr(out::areachg.off, 3), "Y  ");
}

}  // namespace
