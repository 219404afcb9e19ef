// The rows hkgeocode reads: CSV rows turned into 200-byte input records
// (tidied by the input normalisation, or placed as given with --raw), raw
// records, each checked, or (--lines) addresses written as one line of text,
// which the line splitter turns into records when they are processed; each
// row with the line it came from.
#ifndef ORLO_TOOLS_HKGEOCODE_INPUT_ROWS_H
#define ORLO_TOOLS_HKGEOCODE_INPUT_ROWS_H

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "lib/csv_reader.h"

namespace orlo::tools::hkgeocode {

// The columns of the input CSV, in order.
inline constexpr std::array<std::string_view, 9> kInputColumns = {
    "refcode", "premno",   "street", "building", "unit",
    "extra",   "district", "region", "mode"};

struct InputRow {
  long line = 0;                    // CSV line, or record number with --fixed
  std::vector<std::string> fields;  // the CSV fields as read
  std::string record;               // the 200-byte input record
  std::string error;                // why the row is bad; empty when good
  // With --lines: the address line, then, once processed, which split of
  // it the result is from, how many went to the matcher and how it was
  // read (record holds the split's input record; a refused line is bad).
  bool is_line = false;
  std::string address;
  int split = 0;
  int tries = 0;
  std::string note;

  bool bad() const { return !error.empty(); }
};

// Fills *record (200 bytes) from the nine CSV fields. False with *error set
// when the row cannot be a record: a wrong number of fields, a field wider
// than its place in the record, or a byte that is not printable ASCII.
bool record_from_fields(const std::vector<std::string> &fields,
                        std::string *record, std::string *error);

// Fills *record (200 bytes) from the nine CSV fields as people write them,
// through the input normalisation (orlo_norm_address). False with *error
// set on a wrong number of fields or a field the normalisation refuses.
bool normalised_record(const std::vector<std::string> &fields,
                       std::string *record, std::string *error);

// Checks a raw input record: 200 bytes of printable ASCII.
bool check_raw_record(std::string_view record, std::string *error);

// Makes the input record of a CSV row from its fields: as given (raw) or
// through the input normalisation. A row it refuses gets its error.
void make_record(InputRow *row, bool raw);

// Reads the input in batches.
class RowSource {
 public:
  // fixed: raw 200-byte records; otherwise CSV rows, whose records
  // make_record makes afterwards (on the workers).
  RowSource(std::FILE *in, bool fixed);

  // Address lines: one a line of text (column empty), or the named column
  // of a CSV file with a header.
  static RowSource lines(std::FILE *in, std::string column);

  // Reads the CSV header line (nothing with --fixed or plain lines). False
  // with *error set when it is not the expected header (for --lines with a
  // column: when the header has no such column).
  bool start(std::string *error);

  // The names of the input's columns, for the output: the nine of the
  // record, the header of a CSV of lines, or "line".
  const std::vector<std::string> &columns() const { return columns_; }

  // Reads up to n rows into the first places of *rows, reusing the rows
  // (and the room their texts hold) that are there. Returns the number
  // read; 0 when the input is exhausted. Malformed CSV yields one bad row
  // and ends the input. CSV rows come with their fields only: make_record
  // makes their input records; address lines are split when processed.
  size_t read_batch(size_t n, std::vector<InputRow> *rows);

  // Bytes of the input consumed so far (for the progress display).
  uint64_t bytes_read() const;

 private:
  bool next_csv(InputRow *row);
  bool next_fixed(InputRow *row);
  bool next_text_line(InputRow *row);

  std::FILE *in_;
  bool fixed_;
  bool lines_ = false;
  std::string column_;  // with lines_: the CSV column, or empty
  size_t column_index_ = 0;
  std::vector<std::string> columns_;

  bool ended_ = false;
  long records_ = 0;
  std::unique_ptr<CsvReader> csv_;
};

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_INPUT_ROWS_H
