// The "C" call: when the accuracy statement is written, what it shows (the
// counters, the database date, the processing date in UTC), and that the
// instance is closed in every case.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "hkmatch/instance_fixture.h"

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

TEST_F(CloseInstance, StatementFollowsTheOptionsOfOpenAndClose) {
  struct Case {
    const char *open, *close;
    bool written;
  } cases[] = {
      {"", "", true},   {"", "W", false},    {"", "R", false}, {"", "X", false},
      {"", "L", false}, {"", "LIST", false}, {"", "w", true},  {"", "r", true},
      {"", "x", true},  {"", "l", true},     {"", "Y", true},  {"", "M", true},
      {"Y", "", true},  {"2", "", true},     {"3", "", false}, {"4", "", false},
      {"5", "", true},  {"6", "", false},    {"7", "", true},  {"8", "", false},
      {"9", "", true},  {"A", "", false},    {"B", "", false}, {"NM", "", true},
  };
  for (const Case &c : cases) {
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

TEST_F(CloseInstance, StatementShowsTheInstancesCounters) {
  open();
  script_.results = {Result{}.build(), Result{}.build()};
  Result rejected;
  rejected.status = '3';
  script_.results.push_back(rejected.build());
  call("P");
  call("D");
  call("P");
  call("C");
  std::string page = report();
  ASSERT_EQ(page.size(), 2708u);
  EXPECT_EQ(statement_line(page, 27).substr(60, 14), "3             ");
  EXPECT_EQ(statement_line(page, 31).substr(60, 7), "66.67% ");
  EXPECT_EQ(statement_line(page, 15).substr(8, 8), "TEST RUN");
}

TEST_F(CloseInstance, StatementCarriesTheIdentityTexts) {
  open();
  call("C");
  std::string page = report();
  const IdentityTexts &id = identity_texts();
  EXPECT_EQ(statement_line(page, 4).substr(8, 29), id.organisation);
  EXPECT_EQ(statement_line(page, 5).substr(8, 29), id.street);
  EXPECT_EQ(statement_line(page, 6).substr(8, 29), id.city);
  EXPECT_EQ(statement_line(page, 7).substr(8, 29), id.country_phone);
  EXPECT_EQ(statement_line(page, 11).substr(8, 36), id.product);
  EXPECT_EQ(std::string(id.product).size(), 36u);
  EXPECT_EQ(std::string(id.organisation).size(), 29u);
}

TEST_F(CloseInstance, DatabaseDateComesFromBasedataOrTheCaller) {
  open();
  call("C");
  EXPECT_EQ(statement_line(report(), 13).substr(28, 9), "20260102 ");

  open();
  call("C", "", "SUPPLIED");
  EXPECT_EQ(statement_line(report(), 13).substr(28, 9), "SUPPLIED ");

  // An empty text is no date: the file's is read.
  open();
  call("C", "", "");
  EXPECT_EQ(statement_line(report(), 13).substr(28, 9), "20260102 ");
}

TEST_F(CloseInstance, EmptyBasedataGivesAnEmptyDatabaseDate) {
  basedata_ = db_->dir() + "/EMPTY";
  write_file(basedata_, "");
  open();
  ASSERT_EQ(out_[0], '0');
  call("C");
  EXPECT_EQ(out_[0], '0');
  std::string expected = "|       Database date: " + std::string(56, ' ') + "|";
  EXPECT_EQ(statement_line(report(), 13), expected);
}

TEST_F(CloseInstance, ShortBasedataGivesWhatItHas) {
  basedata_ = db_->dir() + "/SHORT";
  write_file(basedata_, "2026");
  open();
  call("C");
  EXPECT_EQ(statement_line(report(), 13).substr(28, 5), "2026 ");
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
  EXPECT_EQ(out_[0], '5');
  EXPECT_EQ(out_.substr(1), std::string(HKOUTREC_SIZE - 1, '#'));
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

TEST_F(CloseInstance, StatementGoesToStandardOutputWithoutAFile) {
  open();
  report_ = db_->dir() + "/no/such/dir/report.txt";
  ::testing::internal::CaptureStdout();
  call("C");
  std::string printed = ::testing::internal::GetCapturedStdout();
  ASSERT_EQ(printed.size(), 2708u);
  EXPECT_EQ(statement_line(printed, 2).substr(8, 26),
            "ADDRESS ACCURACY STATEMENT");
}

// Processing dates are taken in UTC: in Hong Kong (UTC+8) 00:30 on 1 May
// 2003 is still 30 April in UTC.
TEST(ProcessingDate, IsTheUtcDate) {
  char date[11];
  format_processing_date(1051747200, date);  // 2003-05-01 00:00:00 UTC
  EXPECT_STREQ(date, "2003/05/01");
  format_processing_date(1051720200, date);  // 2003-05-01 00:30 in UTC+8
  EXPECT_STREQ(date, "2003/04/30");
  format_processing_date(0, date);
  EXPECT_STREQ(date, "1970/01/01");
  format_processing_date(951782400, date);  // leap day
  EXPECT_STREQ(date, "2000/02/29");
  format_processing_date(253402300799, date);  // last second of 9999
  EXPECT_STREQ(date, "9999/12/31");
}

TEST(ProcessingDate, IgnoresTheLocalTimeZone) {
  const char *saved = std::getenv("TZ");
  std::string old = saved != nullptr ? saved : "";
  setenv("TZ", "HKT-8", 1);
  tzset();
  time_t t = 1051720200;
  struct tm local;
  localtime_r(&t, &local);
  EXPECT_EQ(local.tm_mday, 1);  // local date: 1 May
  char date[11];
  format_processing_date(t, date);
  EXPECT_STREQ(date, "2003/04/30");
  if (saved != nullptr) {
    setenv("TZ", old.c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}

TEST_F(CloseInstance, StatementIsDatedByTheClock) {
  open();
  call("C");  // the scripted clock says 2003-05-01 00:00:00 UTC
  EXPECT_EQ(statement_line(report(), 29).substr(28, 11), "2003/05/01 ");
}

}  // namespace
}  // namespace orlo::testing
