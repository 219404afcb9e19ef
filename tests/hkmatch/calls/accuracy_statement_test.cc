// The address accuracy statement page: frame, placement, figures, file and
// standard output.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "orlo_matcher.h"
#include "support/reference_files.h"

namespace {

using orlo::testfiles::read_file;
using orlo::testfiles::TempDir;

constexpr size_t kPageBytes = 2708;

struct Report {
  std::string org = "ORG NAME", street = "1 SOME STREET", city = "HONG KONG",
              phone = "HK  TEL 1234", product = "PRODUCT LINE";
  const char *lines[6] = {"FREE LINE ONE",  "FREE LINE TWO",  "FREE LINE THREE",
                          "FREE LINE FOUR", "FREE LINE FIVE", "FREE LINE SIX"};
  std::string procdate = "2003/05/01", dbdate = "20030401";
  int32_t nread = 0, nmatched = 0;

  void write(const std::string &path) const {
    hk_form(org.c_str(), street.c_str(), city.c_str(), phone.c_str(),
            product.c_str(), lines[0], lines[1], lines[2], lines[3], lines[4],
            lines[5], procdate.c_str(), dbdate.c_str(), &nread, &nmatched,
            path.c_str());
  }
};

// The 80 characters of page line n (1 to 33) of a written statement.
std::string page_line(const std::string &page, int n) {
  return page.substr(2 + static_cast<size_t>(n - 1) * 82 + 1, 80);
}

std::string framed(const std::string &inner78) {
  return "|" + inner78 + "|";
}
class AccuracyStatement : public ::testing::Test {
 protected:
  std::string written(const Report &r) {
    r.write(path_);
    return read_file(path_);
  }
  TempDir dir_;
  std::string path_ = dir_.file("report.txt");
};

// The page is a fixed grid after a form feed: 33 framed lines of 80
// characters between dashed rules, each text at its line and column.
TEST_F(AccuracyStatement, TextsStandAtTheirLinesAndColumns) {
  static constexpr struct {
    int line;
    size_t col;
    const char *text;
  } kPlaces[] = {{2, 8, "ADDRESS ACCURACY STATEMENT"},
                 {4, 8, "ORG NAME"},
                 {5, 8, "1 SOME STREET"},
                 {6, 8, "HONG KONG"},
                 {7, 8, "HK  TEL 1234"},
                 {11, 8, "PRODUCT LINE"},
                 {13, 8, "Database date: "},
                 {13, 28, "20030401"},
                 {15, 8, "FREE LINE ONE"},
                 {17, 8, "FREE LINE TWO"},
                 {18, 8, "FREE LINE THREE"},
                 {19, 8, "FREE LINE FOUR"},
                 {20, 8, "FREE LINE FIVE"},
                 {21, 8, "FREE LINE SIX"},
                 {27, 8, "Total Number of Records Processed: "},
                 {29, 8, "Processing Date: "},
                 {29, 28, "2003/05/01"},
                 {31, 8, "Percent of verified addresses:"}};
  std::string page = written(Report{});
  ASSERT_EQ(page.size(), kPageBytes);
  EXPECT_EQ(page.substr(0, 2), "\f\n");
  for (int n : {1, 9, 33}) EXPECT_EQ(page_line(page, n), std::string(80, '-'));
  for (const auto &p : kPlaces) {
    std::string line = page_line(page, p.line);
    SCOPED_TRACE(p.text);
    EXPECT_EQ(line.substr(p.col, std::string(p.text).size()), p.text);
    if (p.col == 8) {
      EXPECT_EQ(line.substr(0, 8), "|       ");
    }
    EXPECT_EQ(line.back(), '|');
  }
}

// Thousands separators, the 999/1000 threshold, the largest count and a
// negative count, all left-aligned in 14 characters.
TEST_F(AccuracyStatement, ProcessedCountIsGroupedIn14Characters) {
  static constexpr struct {
    int32_t count;
    const char *shown;
  } kCases[] = {{0, "0             "},          {999, "999           "},
                {1000, "1,000         "},       {1234567, "1,234,567     "},
                {2147483647, "2,147,483,647 "}, {-1234, "-1,234        "}};
  Report r;
  for (const auto &c : kCases) {
    r.nread = c.count;
    std::string line = page_line(written(r), 27);
    EXPECT_EQ(line.substr(60), c.shown + std::string("     |")) << c.count;
  }
}

// No records read shows "000.00%"; otherwise two decimals, rounded.
TEST_F(AccuracyStatement, PercentageOfVerifiedAddresses) {
  static constexpr struct {
    int32_t nread, nmatched;
    const char *shown;
  } kCases[] = {{0, 0, "000.00%"}, {0, 5, "000.00%"}, {7, 0, "0.00%"},
                {3, 2, "66.67%"},  {3, 1, "33.33%"},  {1, 1, "100.00%"},
                {1000, 1, "0.10%"}};
  Report r;
  for (const auto &c : kCases) {
    r.nread = c.nread;
    r.nmatched = c.nmatched;
    std::string expect = c.shown;
    expect += std::string(19 - expect.size(), ' ') + "|";
    EXPECT_EQ(page_line(written(r), 31).substr(60), expect)
        << c.nmatched << " of " << c.nread;
  }
}

// Texts are copied byte for byte and cut at the frame; 71 characters from
// column 8 fill a line exactly.
TEST_F(AccuracyStatement, TextsAreCopiedAsBytesAndCutAtColumn78) {
  Report r;
  std::string long_text(100, 'Q'), odd = "A\tB\xE4\xB8\xAD|C";
  r.lines[0] = long_text.c_str();
  r.lines[2] = odd.c_str();
  r.dbdate = std::string(60, 'D');
  r.product = std::string(71, 'P');
  std::string page = written(r);
  ASSERT_EQ(page.size(), kPageBytes);
  EXPECT_EQ(page_line(page, 15),
            framed(std::string(7, ' ') + std::string(71, 'Q')));
  EXPECT_EQ(page_line(page, 13).substr(28), std::string(51, 'D') + "|");
  EXPECT_EQ(page_line(page, 11),
            framed(std::string(7, ' ') + std::string(71, 'P')));
  EXPECT_EQ(page_line(page, 18).substr(8, odd.size()), odd);
}

// A second statement truncates the first file rather than writing over it.
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
  r.write(dir_.file("no/such/dir/report.txt"));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), expected);
}

}  // namespace
