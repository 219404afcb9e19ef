// The CSV reader: quoting, line numbers, line endings and malformed input,
// from memory and streamed from a file in chunks.
#include "lib/csv_reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace orlo::tools {
namespace {

using Rows = std::vector<std::vector<std::string>>;

struct Result {
  Rows rows;
  std::vector<long> lines;
  bool failed = false;
  long error_line = 0;
  std::string error;
};

Result read_all(CsvReader &csv) {
  Result r;
  std::vector<std::string> row;
  CsvReader::Status st;
  while ((st = csv.next(&row)) == CsvReader::Status::kRow) {
    r.rows.push_back(row);
    r.lines.push_back(csv.line());
  }
  if (st == CsvReader::Status::kError) {
    r.failed = true;
    r.error_line = csv.line();
    r.error = csv.error();
  }
  return r;
}

Result read_text(const std::string &text) {
  CsvReader csv(text);
  return read_all(csv);
}

// The same text read through a FILE, so rows cross the reader's chunks.
Result read_streamed(const std::string &text) {
  std::FILE *f = std::tmpfile();
  std::fwrite(text.data(), 1, text.size(), f);
  std::rewind(f);
  CsvReader csv(f);
  Result r = read_all(csv);
  std::fclose(f);
  return r;
}

TEST(CsvReader, PlainRowsWithLfAndCrlfEndings) {
  Result r = read_text("a,b,c\r\n1,,3\nx,y,z");
  ASSERT_FALSE(r.failed) << r.error;
  EXPECT_EQ(r.rows, (Rows{{"a", "b", "c"}, {"1", "", "3"}, {"x", "y", "z"}}));
  EXPECT_EQ(r.lines, (std::vector<long>{1, 2, 3}));
}

TEST(CsvReader, QuotedFieldsKeepCommasQuotesAndLineBreaks) {
  Result r = read_text(
      "\"QUEEN'S ROAD, CENTRAL\",\"say \"\"hi\"\"\",\"\"\n"
      "\"two\nlines\",\"cr\r\nlf\",end\n"
      "next,row\n");
  ASSERT_FALSE(r.failed) << r.error;
  ASSERT_EQ(r.rows.size(), 3u);
  EXPECT_EQ(r.rows[0], (std::vector<std::string>{"QUEEN'S ROAD, CENTRAL",
                                                 "say \"hi\"", ""}));
  EXPECT_EQ(r.rows[1],
            (std::vector<std::string>{"two\nlines", "cr\r\nlf", "end"}));
  // A row's line is the line on which it starts; line breaks inside quotes
  // move the following rows down.
  EXPECT_EQ(r.lines, (std::vector<long>{1, 2, 5}));
}

TEST(CsvReader, BytesAreDeliveredUnchanged) {
  std::string text = std::string("  pad ,x\0y,\xE9\xFF,lone\rcr\n", 21);
  Result r = read_text(text);
  ASSERT_FALSE(r.failed) << r.error;
  ASSERT_EQ(r.rows.size(), 1u);
  EXPECT_EQ(r.rows[0][0], "  pad ");
  EXPECT_EQ(r.rows[0][1], std::string("x\0y", 3));
  EXPECT_EQ(r.rows[0][2], "\xE9\xFF");
  EXPECT_EQ(r.rows[0][3], "lone\rcr");
}

TEST(CsvReader, EmptyInputHasNoRowsAndBlankLinesAreRows) {
  EXPECT_TRUE(read_text("").rows.empty());
  EXPECT_FALSE(read_text("").failed);
  Result r = read_text("a\n\nb\n");
  EXPECT_EQ(r.rows, (Rows{{"a"}, {""}, {"b"}}));
  EXPECT_EQ(r.lines, (std::vector<long>{1, 2, 3}));
  // A trailing comma gives a last empty field.
  EXPECT_EQ(read_text("a,\n").rows, (Rows{{"a", ""}}));
}

TEST(CsvReader, MalformedInputIsReportedOnTheRowsFirstLine) {
  Result open = read_text("ok,row\n\"open,\nnever\nclosed");
  EXPECT_TRUE(open.failed);
  EXPECT_EQ(open.error_line, 2);
  EXPECT_NE(open.error.find("not closed"), std::string::npos) << open.error;
  EXPECT_EQ(open.rows.size(), 1u);

  Result after = read_text("a,\"b\"c,d\n");
  EXPECT_TRUE(after.failed);
  EXPECT_EQ(after.error_line, 1);
  EXPECT_NE(after.error.find("after a closing quote"), std::string::npos);

  Result inside = read_text("x\nab\"c\n");
  EXPECT_TRUE(inside.failed);
  EXPECT_EQ(inside.error_line, 2);
  EXPECT_NE(inside.error.find("quote inside"), std::string::npos);
}

TEST(CsvReader, ErrorIsSticky) {
  CsvReader csv(std::string_view("a\"b\nc,d\n"));
  std::vector<std::string> row;
  EXPECT_EQ(csv.next(&row), CsvReader::Status::kError);
  EXPECT_EQ(csv.next(&row), CsvReader::Status::kError);
}

TEST(CsvReader, LongRowsAreReadWholeUpToTheLimit) {
  std::string big(3u << 20, 'N');
  Result r = read_streamed(big + "," + big + "\nshort\n");
  ASSERT_FALSE(r.failed) << r.error;
  ASSERT_EQ(r.rows.size(), 2u);
  EXPECT_EQ(r.rows[0][1].size(), big.size());
  EXPECT_EQ(r.rows[1][0], "short");

  std::string text = "ok\n\"" + std::string(5000, 'x');
  CsvReader limited(text);
  limited.set_max_row_bytes(4096);
  Result capped = read_all(limited);
  EXPECT_TRUE(capped.failed);
  EXPECT_EQ(capped.error_line, 2);
  EXPECT_NE(capped.error.find("longer than 4096"), std::string::npos)
      << capped.error;
}

TEST(CsvReader, StreamedReadingMatchesReadingFromMemory) {
  // Quotes, CRLF and doubled quotes land on every offset of the 64 KiB
  // chunks somewhere among these rows.
  std::string text;
  for (int i = 0; i < 20000; ++i)
    text += "r" + std::to_string(i) + ",\"q\"\"" + std::to_string(i % 7) +
            "\",\"a,\r\nb\"\r\n";
  Result mem = read_text(text);
  Result file = read_streamed(text);
  ASSERT_FALSE(file.failed) << file.error;
  EXPECT_EQ(file.rows, mem.rows);
  EXPECT_EQ(file.lines, mem.lines);
  EXPECT_EQ(file.rows.size(), 20000u);
  EXPECT_EQ(file.lines.back(), 39999);
  EXPECT_EQ(file.rows[123][1], "q\"4");
}

}  // namespace
}  // namespace orlo::tools
