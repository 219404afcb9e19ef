// A streaming reader of RFC 4180 CSV: comma-separated fields, fields quoted
// with '"' (a doubled quote inside stands for one), rows ended by LF or CRLF.
// Field bytes are delivered unchanged, NUL, CR and LF inside quoted fields
// included; deciding what a field may hold is the caller's business.
//
// Input comes either from memory or from a FILE read in chunks, so a file of
// any size is read in constant memory apart from the current row.
#ifndef ORLO_TOOLS_CSV_READER_H
#define ORLO_TOOLS_CSV_READER_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace orlo::tools {

class CsvReader {
 public:
  enum class Status { kRow, kEnd, kError };

  // Reads the bytes of text, which must outlive the reader.
  explicit CsvReader(std::string_view text);
  // Reads file from its current position; the caller keeps ownership.
  explicit CsvReader(std::FILE *file);
  CsvReader(const CsvReader &) = delete;
  CsvReader &operator=(const CsvReader &) = delete;

  // Reads the next row into *fields. kEnd at the end of the input (an empty
  // input has no rows); kError with error() and line() set on malformed
  // input, after which every call returns kError again.
  Status next(std::vector<std::string> *fields);

  // The 1-based line on which the last row returned (or the faulty row)
  // starts.
  long line() const { return row_line_; }
  const std::string &error() const { return error_; }

  // A row (all its field bytes together) longer than this is an error, so
  // that a quote left open in a huge file cannot swallow all memory.
  void set_max_row_bytes(size_t n) { max_row_bytes_ = n; }
  static constexpr size_t kDefaultMaxRowBytes = 16u << 20;

 private:
  static constexpr int kEof = -1;

  int peek() {
    if (pos_ == end_ && !refill()) return kEof;
    return static_cast<unsigned char>(*pos_);
  }
  int get() {
    int c = peek();
    if (c == '\n') ++line_;
    if (c != kEof) ++pos_;
    return c;
  }
  bool refill();
  bool append(std::string *field, char c);
  bool read_quoted(std::string *field);
  enum class FieldEnd { kComma, kRowEnd, kError };
  FieldEnd read_unquoted(std::string *field);
  FieldEnd after_quoted();
  Status fail(std::string message);

  std::FILE *file_ = nullptr;
  std::vector<char> chunk_;
  const char *pos_ = nullptr;
  const char *end_ = nullptr;
  long line_ = 1;
  long row_line_ = 0;
  size_t row_bytes_ = 0;
  size_t max_row_bytes_ = kDefaultMaxRowBytes;
  bool failed_ = false;
  std::string error_;
};

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_CSV_READER_H
