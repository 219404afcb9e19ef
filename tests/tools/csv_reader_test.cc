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
using Lines = std::vector<long>;

struct Result {
  Rows rows;
  Lines lines;
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
    // The error is sticky: the reader does not resume after it.
    EXPECT_EQ(csv.next(&row), CsvReader::Status::kError);
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

// Well-formed input: fields and the line on which each row starts.
TEST(CsvReader, WellFormedInput) {
  const struct {
    const char *note;
    std::string text;
    Rows rows;
    Lines lines;
  } cases[] = {
      {"empty input has no rows", "", {}, {}},
      {"LF, CRLF and no final line end",
       "a,b,c\r\n1,,3\nx,y,z",
       {{"a", "b", "c"}, {"1", "", "3"}, {"x", "y", "z"}},
       {1, 2, 3}},
      {"blank lines are rows of one empty field, a trailing comma an empty "
       "last field",
       "a\n\nb,\n",
       {{"a"}, {""}, {"b", ""}},
       {1, 2, 3}},
      {"quotes keep commas, doubled quotes and line breaks, which move the "
       "following rows down",
       "\"QUEEN'S ROAD, CENTRAL\",\"say \"\"hi\"\"\",\"\"\n"
       "\"two\nlines\",\"cr\r\nlf\",end\nnext,row\n",
       {{"QUEEN'S ROAD, CENTRAL", "say \"hi\"", ""},
        {"two\nlines", "cr\r\nlf", "end"},
        {"next", "row"}},
       {1, 2, 5}},
      {"blanks, NUL, high bytes and a lone CR are delivered unchanged",
       std::string("  pad ,x\0y,\xE9\xFF,lone\rcr\n", 21),
       {{"  pad ", std::string("x\0y", 3), "\xE9\xFF", "lone\rcr"}},
       {1}},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.note);
    for (const Result &r : {read_text(c.text), read_streamed(c.text)}) {
      EXPECT_FALSE(r.failed) << r.error;
      EXPECT_EQ(r.rows, c.rows);
      EXPECT_EQ(r.lines, c.lines);
    }
  }
}

// Malformed input stops the reader on the first line of the faulty row,
// after the rows before it were delivered.
TEST(CsvReader, MalformedInputIsReportedOnTheRowsFirstLine) {
  const struct {
    const char *text;
    long line;
    const char *message;
    size_t rows_before;
  } cases[] = {
      {"ok,row\n\"open,\nnever\nclosed", 2, "not closed", 1},
      {"a,\"b\"c,d\n", 1, "after a closing quote", 0},
      {"x\nab\"c\n", 2, "quote inside", 1},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.text);
    Result r = read_text(c.text);
    EXPECT_TRUE(r.failed);
    EXPECT_EQ(r.error_line, c.line);
    EXPECT_NE(r.error.find(c.message), std::string::npos) << r.error;
    EXPECT_EQ(r.rows.size(), c.rows_before);
  }
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

// Quotes, CRLF and doubled quotes land on every offset of the 64 KiB chunks
// somewhere among these rows.
TEST(CsvReader, StreamedReadingMatchesReadingFromMemory) {
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
