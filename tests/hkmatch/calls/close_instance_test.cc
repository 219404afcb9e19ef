// The "C" call: when the accuracy statement is written, what it shows (the
// counters, the database date, the processing date in UTC), and that the
// instance is closed in every case.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "support/instance_fixture.h"

namespace orlo::testing {
namespace {

class CloseInstance : public InstanceTest {
 protected:
  // Opens with open_options, closes with close_options; true when a
  // statement was written.
  bool statement_after(const char *open_options, const char *close_options) {
    std::remove(report_.c_str());
    open(open_options);
    EXPECT_EQ(out_[0], '0') << open_options;
    call("C", close_options);
    EXPECT_EQ(handle_.mcb, nullptr);
    return report_written();
  }
};

// Diagnostic runs (pass option 1, listing mode 3) and closes whose options
// start with an upper-case 'W', 'R', 'X' or 'L' get no statement.
TEST_F(CloseInstance, StatementFollowsTheOptionsOfOpenAndClose) {
  static constexpr struct {
    const char *open, *close;
    bool written;
  } kCases[] = {
      {"", "", true},   {"", "W", false}, {"", "R", false}, {"", "X", false},
      {"", "L", false}, {"", "w", true},  {"", "r", true},  {"", "x", true},
      {"", "l", true},  {"", "Y", true},  {"Y", "", true},  {"2", "", true},
      {"3", "", false}, {"4", "", false}, {"5", "", true},  {"6", "", false},
      {"7", "", true},  {"8", "", false}, {"9", "", true},  {"A", "", false},
      {"B", "", false}, {"NM", "", true},
  };
  for (const auto &c : kCases) {
    EXPECT_EQ(statement_after(c.open, c.close), c.written)
        << "open \"" << c.open << "\", close \"" << c.close << "\"";
  }
  // No option string at all is no objection either.
  std::remove(report_.c_str());
  open("");
  CallArgs a = args("C", nullptr);
  a.options = nullptr;
  dispatch(a, kScripted);
  EXPECT_TRUE(report_written());
}

// The statement shows the instance's counters, the caller's free lines and
// the identity texts, in the order hk_form takes them.
TEST_F(CloseInstance, StatementShowsTheInstancesFigures) {
  open();
  Result rejected;
  rejected.status = '3';
  script_.results = {Result{}.build(), Result{}.build(), rejected.build()};
  call("P");
  call("D");
  call("P");
  call("C");
  std::string page = report();
  ASSERT_EQ(page.size(), 2708u);
  EXPECT_EQ(statement_line(page, 27).substr(60, 14), "3             ");
  EXPECT_EQ(statement_line(page, 31).substr(60, 7), "66.67% ");
  EXPECT_EQ(statement_line(page, 15).substr(8, 8), "TEST RUN");
  const IdentityTexts &id = identity_texts();
  EXPECT_EQ(statement_line(page, 4).substr(8, 29), id.organisation);
  EXPECT_EQ(statement_line(page, 5).substr(8, 29), id.street);
  EXPECT_EQ(statement_line(page, 6).substr(8, 29), id.city);
  EXPECT_EQ(statement_line(page, 7).substr(8, 29), id.country_phone);
  EXPECT_EQ(statement_line(page, 11).substr(8, 36), id.product);
}

// The processing date comes from the clock of the steps; the database date
// from the caller's text when it gives one, else from the start of
// BASEDATA, however short.
TEST_F(CloseInstance, StatementIsDatedByTheClockAndTheDatabase) {
  const struct {
    const char *basedata;  // nullptr: the test database's
    const char *supplied;
    std::string shown;
  } cases[] = {
      {nullptr, nullptr, "20260102 "}, {nullptr, "SUPPLIED", "SUPPLIED "},
      {nullptr, "", "20260102 "},      {"2026", nullptr, "2026     "},
      {"", nullptr, "         "},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.shown);
    if (c.basedata != nullptr) {
      basedata_ = db_->dir() + "/OTHER";
      write_file(basedata_, c.basedata);
    }
    open();
    ASSERT_EQ(out_[0], '0');
    call("C", "", c.supplied);
    EXPECT_EQ(out_[0], '0');
    std::string page = report();
    EXPECT_EQ(statement_line(page, 13).substr(28, 9), c.shown);
    EXPECT_EQ(statement_line(page, 29).substr(28, 11), "2003/05/01 ");
  }
}

TEST_F(CloseInstance, BasedataThatCannotBePositionedGives5AndNoStatement) {
  open();
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  ASSERT_EQ(write(fds[1], "20260102", 8), 8);
  close(fds[1]);
  // A pipe cannot seek; the close must still release the block and the
  // instance's own BASEDATA stream (here the pipe).
  std::fclose(mcb().basefp);
  mcb().basefp = fdopen(fds[0], "rb");
  out_ = std::string(HKOUTREC_SIZE, '#');
  call("C");
  EXPECT_EQ(out_, "5" + std::string(HKOUTREC_SIZE - 1, '#'));
  EXPECT_FALSE(report_written());
  EXPECT_EQ(handle_.mcb, nullptr);
}

TEST_F(CloseInstance, CloseOfAnEmptyHandleDoesNothing) {
  call("C");
  EXPECT_EQ(out_, std::string(HKOUTREC_SIZE, '#'));
  EXPECT_FALSE(report_written());
  CallArgs a = args("C", "");
  a.handle = nullptr;
  dispatch(a, kScripted);
  EXPECT_EQ(out_, std::string(HKOUTREC_SIZE, '#'));
}

TEST_F(CloseInstance, FailedOpenIsStillClosed) {
  level2_ = db_->dir() + "/missing";
  open();
  ASSERT_EQ(out_[0], '8');
  ASSERT_NE(handle_.mcb, nullptr);
  int before = open_descriptors();
  call("C", "L");
  EXPECT_EQ(handle_.mcb, nullptr);
  EXPECT_EQ(open_descriptors(), before - 2);  // BASEDATA and LEVEL1
}

// Processing dates are taken in UTC whatever the local time zone: in Hong
// Kong (UTC+8) 00:30 on 1 May 2003 is still 30 April in UTC.
TEST(ProcessingDate, IsTheUtcDate) {
  static constexpr struct {
    time_t t;
    const char *date;
  } kCases[] = {
      {1051747200, "2003/05/01"},    // 00:00:00 UTC
      {1051720200, "2003/04/30"},    // 00:30 on 1 May in UTC+8
      {0, "1970/01/01"},             //
      {951782400, "2000/02/29"},     // leap day
      {253402300799, "9999/12/31"},  // last second of 9999
  };
  const char *saved = std::getenv("TZ");
  std::string old = saved != nullptr ? saved : "";
  setenv("TZ", "HKT-8", 1);
  tzset();
  for (const auto &c : kCases) {
    char date[11];
    format_processing_date(c.t, date);
    EXPECT_STREQ(date, c.date) << c.t;
  }
  time_t t = 1051720200;
  struct tm local;
  localtime_r(&t, &local);
  EXPECT_EQ(local.tm_mday, 1) << "the local zone is in effect";
  if (saved != nullptr) {
    setenv("TZ", old.c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

}  // namespace
}  // namespace orlo::testing
