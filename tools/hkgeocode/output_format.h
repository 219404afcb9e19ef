// The output rows of hkgeocode: the input columns, with --lines how each
// line was split, then every field of the 300-byte output record under a
// readable name, as CSV; a readable table; or the raw records.
#ifndef ORLO_TOOLS_HKGEOCODE_OUTPUT_FORMAT_H
#define ORLO_TOOLS_HKGEOCODE_OUTPUT_FORMAT_H

#include <string>
#include <string_view>
#include <vector>

#include "hkgeocode/input_rows.h"
#include "hkgeocode/legend.h"

namespace orlo::tools::hkgeocode {

// The columns of the CSV output: the input's (their names), then with
// --lines those of the split, then the result's.
struct OutputLayout {
  std::vector<std::string> input_columns;
  bool lines = false;
};

// The header line of the CSV output, with its line end.
std::string csv_header(const OutputLayout &layout);

// The output columns with what each holds, as --help lists them, and the
// columns of the split that --lines adds.
std::string columns_help();
std::string split_columns_help();

// Appends the CSV line of a processed row and its 300-byte output record.
// The input columns repeat the fields exactly as read; the split and
// result columns are UTF-8 (the records' Latin-1 converted).
void append_result_row(const OutputLayout &layout, const InputRow &row,
                       const char *outrec, std::string *out);

// Appends the CSV line of a bad row: its fields exactly as read, return
// code E and the reason.
void append_bad_row(const OutputLayout &layout, const InputRow &row,
                    std::string *out);

// Appends the raw output record of a row: the matcher's, or for a bad row
// 300 blanks with E in byte 0.
void append_raw_record(const InputRow &row, const char *outrec,
                       std::string *out);

// The readable table (--table): its header, and one line a row giving the
// address as given, the return code, the match status, the composed result
// lines and the reference.
std::string table_header();
void append_table_row(const InputRow &row, const char *outrec,
                      std::string *out);

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_OUTPUT_FORMAT_H
