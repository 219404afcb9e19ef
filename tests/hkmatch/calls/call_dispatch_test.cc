// The call dispatcher with a scripted search in place of the real one: call
// types, the second attempt with the building name and its replacement
// rules, the counters and the change flags.
#include "hkmatch/calls/call_dispatch.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/scripted_search.h"

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
    mcb_.opened = 1;
    handle_.mcb = &mcb_;
    in_ = blank_record(HKINREC_SIZE);
    put(in_, in::premno, "12");
    put(in_, in::street, "NATHAN RD");
    put(in_, in::unit, "12/F FLAT A");
    put(in_, in::district, "YAU MA TEI");
    put(in_, in::region, "KLN");
    out_ = std::string(HKOUTREC_SIZE, '#');
  }
  void TearDown() override { orlo::testing::script = nullptr; }

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

// Only the first character of the call type selects, and only upper case;
// anything else sets the return code and nothing more.
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

// "D" and "PROCESS" are the same call as "P": same output, same counters.
TEST_F(CallDispatch, DAndLongerNamesAreTheSameAsP) {
  Result nomatch;
  nomatch.status = '4';
  for (const char *type : {"P", "D", "PROCESS"}) {
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

// No handle, an empty handle word, a failed open and a closed block give
// 'A'; no input record gives '2'. Nothing is searched or
// counted.
TEST_F(CallDispatch, ProcessWithoutAUsableInstanceOrInputIsRefused) {
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
  mcb_.opened = 0;
  call("D");
  EXPECT_EQ(out_[0], 'A');
  mcb_.opened = 1;
  mcb_.state = 'C';
  call("P");
  EXPECT_EQ(out_[0], 'A');
  mcb_.state = 'O';
  a.handle = &handle_;
  a.in_rec = nullptr;
  orlo::dispatch(a, kScripted);
  EXPECT_EQ(out_[0], '2');
  EXPECT_EQ(mcb_.nread, 0);
  EXPECT_EQ(searches(), 0u);
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

// No second search without a building name, nor when the accepted result
// already carries the reference's own building.
TEST_F(CallDispatch, BuildingIsSearchedOnlyWhenItCanHelp) {
  Result nomatch;
  nomatch.status = '2';
  process(nomatch, &nomatch);
  EXPECT_EQ(searches(), 1u);
  EXPECT_EQ(script_.pads, 1);
  EXPECT_EQ(out_, nomatch.build());

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

// The second result replaces the first only when it is accepted and, for a
// first result not accepted, its reference lies on the first street (first
// 25 characters); for an accepted first result it must also be another
// record of the same code without a building (a blank reference line fits
// any street).
TEST_F(CallDispatch, SecondResultReplacesTheFirstOnlyWhenItFits) {
  using Change = void (*)(Result &);
  const struct {
    const char *note;
    Change first, second;
    bool replaces;
  } cases[] = {
      {"accepted first, all hold", [](Result &) {}, [](Result &) {}, true},
      {"accepted first, blank reference line", [](Result &) {},
       [](Result &r) { r.refline = ""; }, true},
      {"accepted first, other street", [](Result &) {},
       [](Result &r) { r.refline = "CHUNGKING MANSIONS"; }, false},
      {"accepted first, has a building", [](Result &) {},
       [](Result &r) { r.bldg = "CHUNGKING MANSIONS"; }, false},
      {"accepted first, same record", [](Result &) {},
       [](Result &r) { r.refid = "00001"; }, false},
      {"accepted first, other code", [](Result &) {},
       [](Result &r) { r.refcode = "K02"; }, false},
      {"accepted first, second not accepted", [](Result &) {},
       [](Result &r) { r.status = '3'; }, false},
      {"first not accepted, reference on its street",
       [](Result &r) { r.status = '4'; }, [](Result &) {}, true},
      {"first not accepted, reference elsewhere",
       [](Result &r) { r.status = '2'; },
       [](Result &r) { r.refline = "CHUNGKING MANSIONS"; }, false},
      {"neither accepted", [](Result &r) { r.status = '4'; },
       [](Result &r) { r.status = '3'; }, false},
      {"street equal in its first 25 characters",
       [](Result &r) {
         r.status = '4';
         r.street = "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234";
       },
       [](Result &r) { r.refline = "ABCDEFGHIJKLMNOPQRSTUVWXY"; }, true},
      {"street differs in its 25th character",
       [](Result &r) {
         r.status = '4';
         r.street = "ABCDEFGHIJKLMNOPQRSTUVWXYZ1234";
       },
       [](Result &r) { r.refline = "ABCDEFGHIJKLMNOPQRSTUVWXZ"; }, false},
  };
  put(in_, in::bldg, "CHUNGKING MANSIONS");
  for (const auto &c : cases) {
    SCOPED_TRACE(c.note);
    Result first, second;
    second.refid = "00002";
    second.premno = "";
    c.first(first);
    c.second(second);
    mcb_.nmatched = 0;
    process(first, &second);
    ASSERT_EQ(searches(), 2u);
    std::string expected = (c.replaces ? second : first).build();
    // The change flags are those of the result shown (checked below).
    expected.replace(out::areachg.off, 3, out_.substr(out::areachg.off, 3));
    EXPECT_EQ(out_, expected);
    EXPECT_EQ(mcb_.nmatched, expected[out::matchstat.off] == '0' ? 1 : 0);
  }
  // A replacing result gets the change flags against the caller's record.
  Result first, second;
  first.status = '4';
  second.premno = "";
  process(first, &second);
  EXPECT_EQ(out_.substr(out::areachg.off, 3), " YY");
}

// An error of the search is still a record read.
TEST_F(CallDispatch, CountersFollowTheFinalStatus) {
  Result nomatch;
  nomatch.status = '3';
  process(Result{});
  process(nomatch);
  process(nomatch);
  EXPECT_EQ(mcb_.nread, 3);
  EXPECT_EQ(mcb_.nmatched, 1);
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

// Each flag compares the caller's fields with the result's: street; unit or
// premise number; district or region. Only accepted results get flags.
TEST_F(CallDispatch, ChangeFlagsCompareTheCallersFields) {
  const struct {
    const char *note;
    void (*change)(Result &);
    const char *flags;  // areachg, streetchg, premchg
  } cases[] = {
      {"nothing changed", [](Result &) {}, "   "},
      {"street", [](Result &r) { r.street = "NATHAN ROAD"; }, " Y "},
      {"unit", [](Result &r) { r.unit = "12/F"; }, "  Y"},
      {"premise number", [](Result &r) { r.premno = "012"; }, "  Y"},
      {"district", [](Result &r) { r.district = "MONG KOK"; }, "Y  "},
      {"region", [](Result &r) { r.region = "HK"; }, "Y  "},
      {"everything",
       [](Result &r) {
         r.street = "NATHAN ROAD";
         r.premno = r.unit = r.region = "";
       },
       "YYY"},
      {"not accepted",
       [](Result &r) {
         r.status = '4';
         r.region = "NT";
       },
       "   "},
  };
  for (const auto &c : cases) {
    Result r;
    r.street = "NATHAN RD";
    c.change(r);
    process(r);
    EXPECT_EQ(out_.substr(out::areachg.off, 3), c.flags) << c.note;
  }
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
