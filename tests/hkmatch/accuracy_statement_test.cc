// The address accuracy statement page: frame, placement, figures, file and
// standard output.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "orlo_matcher.h"

namespace {

constexpr size_t kPageBytes = 2708;

struct Report {
  std::string org = "ORG NAME";
  std::string street = "1 SOME STREET";
  std::string city = "HONG KONG";
  std::string phone = "HK  TEL 1234";
  std::string product = "PRODUCT LINE";
  const char *lines[6] = {"FREE LINE ONE",  "FREE LINE TWO",  "FREE LINE THREE",
                          "FREE LINE FOUR", "FREE LINE FIVE", "FREE LINE SIX"};
  std::string procdate = "2003/05/01";
  std::string dbdate = "20030401";
  int32_t nread = 0;
  int32_t nmatched = 0;

  void write(const std::string &path) const {
    hk_form(org.c_str(), street.c_str(), city.c_str(), phone.c_str(),
            product.c_str(), lines[0], lines[1], lines[2], lines[3], lines[4],
            lines[5], procdate.c_str(), dbdate.c_str(), &nread, &nmatched,
            path.c_str());
  }
};

std::string slurp(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

// The 80 characters of page line n (1 to 33) of a written statement.
std::string page_line(const std::string &page, int n) {
  return page.substr(2 + static_cast<size_t>(n - 1) * 82 + 1, 80);
}

std::string framed(const std::string &inner78) {
  return "|" + inner78 + "|";
}

class AccuracyStatement : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/orlo-statement-XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
    path_ = dir_ + "/report.txt";
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  std::string written(const Report &r) {
    r.write(path_);
    return slurp(path_);
  }
  // The characters of line n from column `col` for `len` characters.
  std::string at(const Report &r, int n, size_t col, size_t len) {
    return page_line(written(r), n).substr(col, len);
  }

  std::string dir_;
  std::string path_;
};

TEST_F(AccuracyStatement, PageIs2708BytesOfFramedLines) {
  Report r;
  std::string page = written(r);
  ASSERT_EQ(page.size(), kPageBytes);
  EXPECT_EQ(page.substr(0, 2), "\f\n");
  for (int n = 1; n <= 33; ++n) {
    size_t start = 2 + static_cast<size_t>(n - 1) * 82;
    EXPECT_EQ(page[start], ' ') << n;
    EXPECT_EQ(page[start + 81], '\n') << n;
  }
  std::string dashes(80, '-');
  // Page lines 0 and 34 are never written: the first and last lines written
  // are the dashed lines 1 and 33; line 9 is the rule under the address.
  EXPECT_EQ(page_line(page, 1), dashes);
  EXPECT_EQ(page_line(page, 9), dashes);
  EXPECT_EQ(page_line(page, 33), dashes);
  for (int n : {3, 8, 10, 12, 14, 16, 22, 23, 24, 25, 26, 28, 30, 32}) {
    EXPECT_EQ(page_line(page, n), framed(std::string(78, ' '))) << n;
  }
}

TEST_F(AccuracyStatement, TextsStandAtTheirLinesAndColumns) {
  Report r;
  std::string page = written(r);
  auto text_at = [&](int n, size_t col, const std::string &text) {
    std::string line = page_line(page, n);
    EXPECT_EQ(line.substr(col, text.size()), text) << "line " << n;
    if (col == 8) {
      EXPECT_EQ(line.substr(1, 7), "       ") << "line " << n;
    }
    EXPECT_EQ(line.front(), '|');
    EXPECT_EQ(line.back(), '|');
  };
  text_at(2, 8, "ADDRESS ACCURACY STATEMENT");
  text_at(4, 8, "ORG NAME");
  text_at(5, 8, "1 SOME STREET");
  text_at(6, 8, "HONG KONG");
  text_at(7, 8, "HK  TEL 1234");
  text_at(11, 8, "PRODUCT LINE");
  text_at(13, 8, "Database date: ");
  text_at(13, 28, "20030401");
  text_at(15, 8, "FREE LINE ONE");
  text_at(17, 8, "FREE LINE TWO");
  text_at(18, 8, "FREE LINE THREE");
  text_at(19, 8, "FREE LINE FOUR");
  text_at(20, 8, "FREE LINE FIVE");
  text_at(21, 8, "FREE LINE SIX");
  text_at(27, 8, "Total Number of Records Processed: ");
  text_at(29, 8, "Processing Date: ");
  text_at(29, 28, "2003/05/01");
  text_at(31, 8, "Percent of verified addresses:");
}

TEST_F(AccuracyStatement, ProcessedCountIsGroupedIn14Characters) {
  Report r;
  struct Case {
    int32_t count;
    const char *shown;
  } cases[] = {{0, "0             "},          {999, "999           "},
               {1000, "1,000         "},       {1234567, "1,234,567     "},
               {2147483647, "2,147,483,647 "}, {-1234, "-1,234        "}};
  for (const Case &c : cases) {
    r.nread = c.count;
    std::string line = page_line(written(r), 27);
    EXPECT_EQ(line.substr(60, 14), c.shown) << c.count;
    EXPECT_EQ(line.substr(74), "     |") << c.count;
  }
}

TEST_F(AccuracyStatement, PercentageOfVerifiedAddresses) {
  Report r;
  struct Case {
    int32_t nread, nmatched;
    const char *shown;
  } cases[] = {{0, 0, "000.00%"}, {0, 5, "000.00%"}, {7, 0, "0.00%"},
               {3, 2, "66.67%"},  {7, 6, "85.71%"},  {1, 1, "100.00%"},
               {3, 1, "33.33%"},  {1000, 1, "0.10%"}};
  for (const Case &c : cases) {
    r.nread = c.nread;
    r.nmatched = c.nmatched;
    std::string line = page_line(written(r), 31);
    std::string expect = c.shown;
    expect += std::string(19 - expect.size(), ' ') + "|";
    EXPECT_EQ(line.substr(60), expect) << c.nmatched << " of " << c.nread;
  }
}

TEST_F(AccuracyStatement, NullFreeLinesAndEmptyDatesLeaveTheFrame) {
  Report r;
  r.lines[1] = nullptr;
  r.lines[5] = nullptr;
  r.dbdate = "";
  r.procdate = "";
  std::string page = written(r);
  std::string blank = framed(std::string(78, ' '));
  EXPECT_EQ(page_line(page, 17), blank);
  EXPECT_EQ(page_line(page, 21), blank);
  EXPECT_EQ(page_line(page, 15).substr(8, 13), "FREE LINE ONE");
  std::string date_line =
      framed(std::string(7, ' ') + "Database date: " + std::string(56, ' '));
  EXPECT_EQ(page_line(page, 13), date_line);
  EXPECT_EQ(page_line(page, 29).substr(25), std::string(54, ' ') + "|");
}

TEST_F(AccuracyStatement, LongTextsAreCutAtColumn78) {
  Report r;
  std::string long_text(100, 'Q');
  r.lines[0] = long_text.c_str();
  r.dbdate = std::string(60, 'D');
  r.product = std::string(71, 'P');
  std::string page = written(r);
  ASSERT_EQ(page.size(), kPageBytes);
  EXPECT_EQ(page_line(page, 15),
            framed(std::string(7, ' ') + std::string(71, 'Q')));
  EXPECT_EQ(page_line(page, 13).substr(28), std::string(51, 'D') + "|");
  // 71 characters at column 8 fill the line exactly up to the frame.
  EXPECT_EQ(page_line(page, 11),
            framed(std::string(7, ' ') + std::string(71, 'P')));
}

TEST_F(AccuracyStatement, TextsAreCopiedAsBytes) {
  Report r;
  std::string odd = "A\tB\xE4\xB8\xAD|C";
  r.lines[2] = odd.c_str();
  EXPECT_EQ(at(r, 18, 8, odd.size()), odd);
}

TEST_F(AccuracyStatement, SecondReportReplacesTheFirst) {
  Report r;
  r.nread = 1234567;
  r.write(path_);
  r.nread = 5;
  r.lines[0] = "SECOND";
  std::string page = written(r);
  ASSERT_EQ(page.size(), kPageBytes);
  EXPECT_EQ(page_line(page, 27).substr(60, 14), "5             ");
  EXPECT_EQ(page_line(page, 15).substr(8, 10), "SECOND    ");
}

TEST_F(AccuracyStatement, UnwritablePathSendsThePageToStandardOutput) {
  Report r;
  r.nread = 3;
  r.nmatched = 2;
  std::string expected = written(r);
  ::testing::internal::CaptureStdout();
  r.write(dir_ + "/no/such/dir/report.txt");
  std::string printed = ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed, expected);
}

}  // namespace
