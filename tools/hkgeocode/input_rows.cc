#include "hkgeocode/input_rows.h"

#include <algorithm>
#include <cstdio>

#include "common/fixed_field.h"
#include "hkmatch/input/record_fields.h"
#include "orlo_normalise.h"
#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

// Where each CSV column goes in the input record. The floor and unit line is
// stored in two pieces: its first 25 characters in in_unit, the last 5 in
// in_unitext near the end of the record.
struct ColumnPlace {
  FieldRef field;
  FieldRef overflow;  // continuation field, width 0 when none
};

constexpr ColumnPlace kPlaces[] = {
    {in::refcode, {0, 0}},  {in::premno, {0, 0}},    {in::street, {0, 0}},
    {in::bldg, {0, 0}},     {in::unit, in::unitext}, {in::extra, {0, 0}},
    {in::district, {0, 0}}, {in::region, {0, 0}},    {in::mode, {0, 0}},
};
static_assert(std::size(kPlaces) == kInputColumns.size());

bool printable(unsigned char c) {
  return c >= 0x20 && c < 0x7F;
}

// Describes the first byte of text that is not printable ASCII, if any.
bool find_unprintable(std::string_view text, std::string *where) {
  for (size_t i = 0; i < text.size(); ++i) {
    auto c = static_cast<unsigned char>(text[i]);
    if (printable(c)) continue;
    char buf[80];
    std::snprintf(buf, sizeof buf,
                  "byte 0x%02X at position %zu is not printable text", c,
                  i + 1);
    *where = buf;
    return true;
  }
  return false;
}

constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";

// Names the text encodings that announce themselves with a byte-order mark
// and that the reader cannot take, so that the message says what is wrong.
std::string_view foreign_bom(std::string_view text) {
  if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    return "UTF-16";
  return {};
}

bool field_count_ok(const std::vector<std::string> &fields,
                    std::string *error) {
  if (fields.size() == kInputColumns.size()) return true;
  *error = "expected 9 fields, found " + std::to_string(fields.size());
  return false;
}

bool place_field(const ColumnPlace &place, std::string_view name,
                 const std::string &value, std::string *record,
                 std::string *error) {
  std::string where;
  if (find_unprintable(value, &where)) {
    *error = std::string(name) + ": " + where;
    return false;
  }
  size_t width = static_cast<size_t>(place.field.len + place.overflow.len);
  if (value.size() > width) {
    *error = std::string(name) + ": " + std::to_string(value.size()) +
             " characters, at most " + std::to_string(width);
    return false;
  }
  std::string_view v = value;
  size_t head = std::min(v.size(), static_cast<size_t>(place.field.len));
  put_field(record->data(), place.field, v.substr(0, head));
  if (place.overflow.len > 0) {
    put_field(record->data(), place.overflow, v.substr(head));
  }
  return true;
}

}  // namespace

bool record_from_fields(const std::vector<std::string> &fields,
                        std::string *record, std::string *error) {
  if (!field_count_ok(fields, error)) return false;
  record->assign(HKINREC_SIZE, ' ');
  for (size_t i = 0; i < fields.size(); ++i) {
    if (!place_field(kPlaces[i], kInputColumns[i], fields[i], record, error))
      return false;
  }
  return true;
}

bool normalised_record(const std::vector<std::string> &fields,
                       std::string *record, std::string *error) {
  if (!field_count_ok(fields, error)) return false;
  static_assert(ORLO_NF_COUNT == kInputColumns.size());
  const char *text[ORLO_NF_COUNT];
  size_t lengths[ORLO_NF_COUNT];
  for (size_t i = 0; i < fields.size(); ++i) {
    text[i] = fields[i].data();
    lengths[i] = fields[i].size();
  }
  record->assign(HKINREC_SIZE, ' ');
  ORLO_NORM_FAULT fault;
  if (orlo_norm_address(text, lengths, record->data(), &fault) == ORLO_NORM_OK)
    return true;
  *error = fault.reason;
  return false;
}

bool check_raw_record(std::string_view record, std::string *error) {
  if (record.size() != HKINREC_SIZE) {
    *error = "short record of " + std::to_string(record.size()) +
             " bytes, expected 200";
    return false;
  }
  std::string where;
  if (find_unprintable(record, &where)) {
    *error = where;
    return false;
  }
  return true;
}

RowSource::RowSource(std::FILE *in, bool fixed) : in_(in), fixed_(fixed) {
  if (!fixed_) csv_ = std::make_unique<CsvReader>(in_);
  columns_.assign(kInputColumns.begin(), kInputColumns.end());
}

RowSource RowSource::lines(std::FILE *in, std::string column) {
  RowSource r(in, /*fixed=*/true);
  r.fixed_ = false;
  r.lines_ = true;
  r.column_ = std::move(column);
  if (!r.column_.empty()) r.csv_ = std::make_unique<CsvReader>(in);
  r.columns_ = {"line"};
  return r;
}

bool RowSource::start(std::string *error) {
  if (fixed_ || (lines_ && column_.empty())) return true;
  std::vector<std::string> header;
  CsvReader::Status s = csv_->next(&header);
  // A byte-order mark marks the file as UTF-8; it is no part of the header.
  if (s == CsvReader::Status::kRow && !header.empty() &&
      header[0].starts_with(kUtf8Bom))
    header[0].erase(0, kUtf8Bom.size());
  if (lines_ && s == CsvReader::Status::kRow) {
    auto at = std::find(header.begin(), header.end(), column_);
    if (at != header.end()) {
      column_index_ = static_cast<size_t>(at - header.begin());
      columns_ = header;
      return true;
    }
    *error = "line 1: the header has no column \"" + column_ + "\"";
    return false;
  }
  bool ok =
      s == CsvReader::Status::kRow && header.size() == kInputColumns.size();
  for (size_t i = 0; ok && i < header.size(); ++i) {
    ok = header[i] == kInputColumns[i];
  }
  if (ok) return true;
  if (s == CsvReader::Status::kError) {
    *error = "line " + std::to_string(csv_->line()) + ": " + csv_->error();
  } else if (s == CsvReader::Status::kEnd) {
    *error = "empty input: the header line is missing";
  } else if (std::string_view e = foreign_bom(header.empty() ? "" : header[0]);
             !e.empty()) {
    *error = "the input is " + std::string(e) +
             " text (it starts with a byte-order mark); save it as UTF-8 "
             "or Latin-1";
  } else {
    *error =
        "line 1: expected the header "
        "refcode,premno,street,building,unit,extra,district,region,mode";
  }
  return false;
}

bool RowSource::next_csv(InputRow *row) {
  CsvReader::Status s = csv_->next(&row->fields);
  if (s == CsvReader::Status::kEnd) return false;
  row->line = csv_->line();
  if (s == CsvReader::Status::kError) {
    // The reader cannot find the next row after malformed input.
    row->error = "malformed CSV (" + csv_->error() +
                 "); the rest of the input is not read";
    row->fields.clear();
    ended_ = true;
    return true;
  }
  if (lines_) {
    row->is_line = true;
    if (column_index_ < row->fields.size()) {
      row->address = row->fields[column_index_];
    } else {
      row->error = "expected " + std::to_string(columns_.size()) +
                   " fields, found " + std::to_string(row->fields.size());
    }
  }
  return true;
}

// One address a line of text: the line without its line end (a CR before
// it too); a byte-order mark before the first is dropped.
bool RowSource::next_text_line(InputRow *row) {
  std::string text;
  int c;
  bool any = false;
  while ((c = std::getc(in_)) != EOF) {
    any = true;
    if (c == '\n') break;
    text.push_back(static_cast<char>(c));
  }
  if (!any) return false;
  if (!text.empty() && text.back() == '\r') text.pop_back();
  if (++records_ == 1 && text.starts_with(kUtf8Bom))
    text.erase(0, kUtf8Bom.size());
  row->line = records_;
  row->is_line = true;
  row->fields = {text};
  row->address = std::move(text);
  return true;
}

bool RowSource::next_fixed(InputRow *row) {
  std::string rec(HKINREC_SIZE, ' ');
  size_t n = std::fread(rec.data(), 1, rec.size(), in_);
  if (n == 0) return false;
  rec.resize(n);
  row->line = ++records_;
  if (records_ == 1 &&
      (rec.starts_with(kUtf8Bom) || !foreign_bom(rec).empty())) {
    row->error =
        "the input starts with a byte-order mark, as text files do; "
        "--fixed reads raw 200-byte records";
  } else if (check_raw_record(rec, &row->error)) {
    row->record = rec;
  }
  if (n < HKINREC_SIZE) ended_ = true;
  return true;
}

size_t RowSource::read_batch(size_t n, std::vector<InputRow> *rows) {
  size_t added = 0;
  while (added < n && !ended_) {
    if (rows->size() == added) rows->emplace_back();
    InputRow &row = (*rows)[added];
    row.line = 0;
    row.record.clear();
    row.error.clear();
    row.is_line = false;
    row.address.clear();
    row.split = 0;
    row.tries = 0;
    row.note.clear();
    bool got = fixed_                      ? next_fixed(&row)
               : lines_ && column_.empty() ? next_text_line(&row)
                                           : next_csv(&row);

    if (!got) {
      ended_ = true;
      break;
    }
    ++added;
  }
  return added;
}

void make_record(InputRow *row, bool raw) {
  if (raw) {
    record_from_fields(row->fields, &row->record, &row->error);
  } else {
    normalised_record(row->fields, &row->record, &row->error);
  }
}

uint64_t RowSource::bytes_read() const {
  long pos = std::ftell(in_);
  return pos > 0 ? static_cast<uint64_t>(pos) : 0;
}

}  // namespace orlo::tools::hkgeocode
