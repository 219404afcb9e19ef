// The batch geocoder's input reader on arbitrary bytes: the first byte
// chooses raw 200-byte records, CSV placed as given (--raw), CSV tidied
// by the input normalisation, or address lines (plain, or the column
// "line" of a CSV file); the rest is the input file. Every row read is
// either a good 200-byte record or a bad row with a reason; rows come in
// input order. A raw or as-given record is printable ASCII and an as-given
// CSV row has its nine fields, each standing in the record as it was given;
// a tidied record holds no control byte and no lower-case ASCII letter.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "common/fixed_field.h"
#include "hkgeocode/input_rows.h"
#include "hkmatch/input/record_fields.h"
#include "orlo_records.h"

namespace {

using orlo::tools::hkgeocode::InputRow;
using orlo::tools::hkgeocode::make_record;
using orlo::tools::hkgeocode::RowSource;

void check_record(const std::string &rec) {
  if (rec.size() != HKINREC_SIZE) __builtin_trap();
  for (unsigned char c : rec) {
    if (c < 0x20 || c >= 0x7F) __builtin_trap();
  }
}

// Columns that fit in one record field: their text must lead the field.
void check_placement(const InputRow &row) {
  const orlo::FieldRef places[] = {
      orlo::in::refcode,  orlo::in::premno, orlo::in::street,
      orlo::in::bldg,     orlo::in::unit,   orlo::in::extra,
      orlo::in::district, orlo::in::region, orlo::in::mode};
  for (size_t i = 0; i < row.fields.size(); ++i) {
    if (i == 4) continue;  // the unit line spills into a second field
    std::string_view got = orlo::field_view(row.record.data(), places[i]);
    if (got.substr(0, row.fields[i].size()) != row.fields[i]) __builtin_trap();
  }
}

void check_tidied(const std::string &rec) {
  if (rec.size() != HKINREC_SIZE) __builtin_trap();
  for (unsigned char c : rec) {
    if (c < 0x20 || (c >= 0x7F && c <= 0x9F) || (c >= 'a' && c <= 'z'))
      __builtin_trap();
  }
}

void check_row(const InputRow &row, bool fixed, bool raw, long previous_line) {
  if (!row.bad() && !fixed && !raw) {
    check_tidied(row.record);
  } else if (!row.bad()) {
    check_record(row.record);
    if (!fixed) {
      if (row.fields.size() != 9) __builtin_trap();
      check_placement(row);
    }
  }
  if (fixed ? row.line != previous_line + 1 : row.line <= previous_line)
    __builtin_trap();
}

}  // namespace

// A plain line holds no line end; a quoted CSV field may.
void check_line(const InputRow &row, bool plain, long previous_line) {
  if (row.line <= previous_line) __builtin_trap();
  if (row.bad()) return;  // malformed CSV, or a row without the column
  if (!row.is_line) __builtin_trap();
  if (plain && row.address.find('\n') != std::string::npos) __builtin_trap();
}

RowSource make_source(std::FILE *in, uint8_t choice) {
  if (choice & 4) return RowSource::lines(in, choice & 8 ? "line" : "");
  return RowSource(in, choice & 1);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size == 0) return 0;
  const bool lines = data[0] & 4;
  const bool fixed = !lines && (data[0] & 1);
  const bool raw = data[0] & 2;
  std::string text(reinterpret_cast<const char *>(data) + 1, size - 1);
  // fmemopen cannot open an empty buffer; an empty input is /dev/null.
  std::FILE *in = text.empty() ? std::fopen("/dev/null", "r")
                               : fmemopen(text.data(), text.size(), "r");
  if (in == nullptr) return 0;
  {
    RowSource source = make_source(in, data[0]);
    std::string error;
    if (!source.start(&error)) {
      if (error.empty() || fixed) __builtin_trap();
    } else {
      std::vector<InputRow> rows;
      long line = 0;
      for (size_t n; (n = source.read_batch(7, &rows)) > 0;) {
        for (size_t i = 0; i < n; ++i) {
          InputRow &row = rows[i];
          if (lines) {
            check_line(row, !(data[0] & 8), line);
          } else {
            // CSV rows get their records where hkgeocode's workers make
            // them; raw records come with theirs.
            if (!fixed && !row.bad()) make_record(&row, raw);
            check_row(row, fixed, raw, line);
          }
          line = row.line;
        }
      }
    }
  }
  std::fclose(in);
  return 0;
}
