#include "hkgeocode/output_format.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>

#include "common/fixed_field.h"
#include "hkmatch/input/record_fields.h"
#include "lib/csv_writer.h"
#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

// The output fields after the input columns, in order, with what each
// holds; "as read" is the input record the matcher received, after the
// input normalisation (or as given with --raw). The unit line is shown whole:
// in_unit's 25 characters joined with in_unitext's 5.
enum class Kind { kField, kUnitLine, kReturnMeaning, kStatusMeaning };
struct OutputColumn {
  std::string_view name;
  Kind kind;
  FieldRef field;
  std::string_view meaning;
};

constexpr OutputColumn kOutputColumns[] = {
    {"return_code", Kind::kField, out::retcode,
     "the return code: 0 or 1 the row was processed, E a bad input row, "
     "any other a failure (see the codes below)"},
    {"return_meaning", Kind::kReturnMeaning, out::retcode,
     "the return code in words; for E, why the row is bad"},
    {"match_status", Kind::kField, out::matchstat,
     "how the search ended (see the codes below)"},
    {"match_meaning", Kind::kStatusMeaning, out::matchstat,
     "the match status in words"},
    {"out_premno", Kind::kField, out::premno,
     "the premise number as the matcher read it"},
    {"out_street", Kind::kField, out::street,
     "the reference street when an address was written, else the street "
     "as read"},
    {"out_building", Kind::kField, out::bldg,
     "the reference building when the reference has one, else the "
     "building as read"},
    {"out_unit", Kind::kUnitLine, out::unit, "the floor and unit line as read"},
    {"out_district", Kind::kField, out::district, "the district as read"},
    {"out_region", Kind::kField, out::region,
     "the region as read: its key (HK, KLN, NT) when the input "
     "normalisation knew the spelling or the district"},
    {"line1", Kind::kField, out::line1,
     "the first line of the standardised address"},
    {"line2", Kind::kField, out::line2,
     "the second line of the standardised address"},
    {"ref_code", Kind::kField, out::refcode,
     "the 3-character code of the reference address written (its "
     "district); empty when none"},
    {"ref_id", Kind::kField, out::refid,
     "the 5-character identifier of the reference address written"},
    {"area_changed", Kind::kField, out::areachg,
     "Y when the district or region written differs from the one read"},
    {"street_changed", Kind::kField, out::streetchg,
     "Y when the street written differs from the one read (the reference "
     "spelling replaced it)"},
    {"premise_changed", Kind::kField, out::premchg,
     "Y when the premise number or the unit line written differs from the "
     "one read"},
    {"ref_line", Kind::kField, out::refline,
     "the first 25 characters of the reference address text"},
    {"grade", Kind::kField, out::grade,
     "how many penalties the written reference took in the comparison, as "
     "one digit: 0 a clean fit, higher a looser one (10 or more show their "
     "first digit); 9 when no reference address was written"},
    {"building_source", Kind::kField, out::bldgsrc,
     "Y when out_building is the reference record's building name"},
};

// The columns that --lines adds: the fields of the input record that the
// line was split into, and which split the result is from.
struct SplitColumn {
  std::string_view name;
  FieldRef field;  // width 0: not a field of the record
  std::string_view meaning;
};

constexpr SplitColumn kSplitColumns[] = {
    {"split_premno", in::premno, "the premise number the line was split into"},
    {"split_street", in::street,
     "the street (as the reference data spells it when it named it)"},
    {"split_building", in::bldg, "the building"},
    {"split_unit", in::unit,
     "the floor and unit line (flat, room, shop, floor)"},
    {"split_extra", in::extra,
     "block, tower, phase and wing, and words no part took"},
    {"split_district", in::district, "the district"},
    {"split_region", in::region,
     "the region key the kept split was geocoded in"},
    {"split",
     {0, 0},
     "which split of the line the result is from: 1 the most likely, 2 "
     "the next, ..."},
    {"splits_tried", {0, 0}, "how many splits went to the matcher"},
    {"split_note", {0, 0}, "how the kept split read the line"},
};

std::string_view trimmed(std::string_view text) {
  return text.substr(0, significant_length(text));
}

// The record holds Latin-1; the output is UTF-8.
std::string latin1_to_utf8(std::string_view text) {
  std::string out;
  for (char ch : text) {
    auto c = static_cast<unsigned char>(ch);
    if (c < 0x80) {
      out.push_back(ch);
    } else {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

bool valid_utf8(std::string_view text) {
  const auto *p = reinterpret_cast<const utf8proc_uint8_t *>(text.data());
  auto left = static_cast<utf8proc_ssize_t>(text.size());
  while (left > 0) {
    utf8proc_int32_t cp;
    utf8proc_ssize_t n = utf8proc_iterate(p, left, &cp);
    if (n <= 0) return false;
    p += n;
    left -= n;
  }
  return true;
}

// Input text for the table: UTF-8 as it is, anything else read as
// Latin-1, control bytes shown as \xNN so that they cannot upset a
// terminal.
std::string display_text(std::string_view text) {
  std::string utf8 =
      valid_utf8(text) ? std::string(text) : latin1_to_utf8(text);
  std::string out;
  for (char ch : utf8) {
    auto c = static_cast<unsigned char>(ch);
    if (c < 0x20 || c == 0x7F) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\x%02X", c);
      out += buf;
    } else {
      out.push_back(ch);
    }
  }
  return out;
}

// UTF-8 text cut to width columns of a terminal and padded to them (a
// Chinese character takes two).
std::string fit(std::string text, size_t width) {
  const auto *p = reinterpret_cast<const utf8proc_uint8_t *>(text.data());
  size_t used = 0, end = 0;
  while (end < text.size()) {
    utf8proc_int32_t cp;
    utf8proc_ssize_t n = utf8proc_iterate(
        p + end, static_cast<utf8proc_ssize_t>(text.size() - end), &cp);
    if (n <= 0) break;
    auto w = static_cast<size_t>(std::max(0, utf8proc_charwidth(cp)));
    if (used + w > width) break;
    used += w;
    end += static_cast<size_t>(n);
  }
  text.resize(end);
  text.append(width - used, ' ');
  return text;
}

// Appends one CSV field; edge blanks are quoted because the output keeps
// the blanks of fixed-width fields that matter to the reader.
void append_field(std::string_view value, std::string *out) {
  append_csv_field(out, value, /*quote_edge_blanks=*/true);
}

// The input columns, byte for byte as read.
void append_input_columns(const OutputLayout &layout, const InputRow &row,
                          std::string *out) {
  for (size_t i = 0; i < layout.input_columns.size(); ++i) {
    if (i > 0) out->push_back(',');
    if (i < row.fields.size()) append_field(row.fields[i], out);
  }
}

// The split columns of a line's row (each after a comma).
void append_split_columns(const InputRow &row, std::string *out) {
  for (const SplitColumn &col : kSplitColumns) {
    out->push_back(',');
    std::string value;
    if (col.name == "split_unit") {
      std::string line(field_view(row.record.data(), in::unit));
      line.append(field_view(row.record.data(), in::unitext));
      value = latin1_to_utf8(trimmed(line));
    } else if (col.field.len > 0) {
      value = latin1_to_utf8(trimmed(field_view(row.record.data(), col.field)));
    } else if (col.name == "split") {
      value = std::to_string(row.split);
    } else if (col.name == "splits_tried") {
      value = std::to_string(row.tries);
    } else {
      value = row.note;
    }
    append_field(value, out);
  }
}

std::string column_value(const OutputColumn &col, const char *rec) {
  switch (col.kind) {
    case Kind::kReturnMeaning:
      return std::string(return_code_meaning(rec[col.field.off]));
    case Kind::kStatusMeaning:
      return std::string(match_status_meaning(rec[col.field.off]));
    case Kind::kUnitLine: {
      std::string line(field_view(rec, out::unit));
      line.append(field_view(rec, out::unitext));
      return latin1_to_utf8(trimmed(line));
    }
    case Kind::kField:
      break;
  }
  return latin1_to_utf8(trimmed(field_view(rec, col.field)));
}

// Widths of the table's text columns; longer texts are cut.
constexpr size_t kTableAddress = 46;
constexpr size_t kTableResult = 62;

// The non-empty texts joined with ", ", cut to width and padded to it.
std::string table_cell(std::initializer_list<std::string_view> parts,
                       size_t width) {
  std::string cell;
  for (std::string_view p : parts) {
    p = trimmed(p);
    if (p.empty()) continue;
    if (!cell.empty()) cell += ", ";
    cell.append(p);
  }
  return fit(cell, width);
}

// The address as given: premise number and street, building, unit, region;
// or the line.
std::string given_address(const InputRow &row) {
  if (row.is_line)
    return table_cell({display_text(row.address)}, kTableAddress);
  auto f = [&row](size_t i) -> std::string {
    return i < row.fields.size() ? display_text(row.fields[i]) : "";
  };
  std::string street(trimmed(f(1)));
  if (!street.empty() && !trimmed(f(2)).empty()) street += ' ';
  street.append(trimmed(f(2)));
  return table_cell({street, f(3), f(4), f(7)}, kTableAddress);
}

}  // namespace

std::string table_header() {
  return table_cell({"LINE"}, 6) +
         table_cell({"ADDRESS AS GIVEN"}, kTableAddress) + " RC MS " +
         table_cell({"RESULT (LINE 1 / LINE 2)"}, kTableResult) + " REF\n";
}

void append_table_row(const InputRow &row, const char *outrec,
                      std::string *out) {
  out->append(table_cell({std::to_string(row.line)}, 6));
  out->append(given_address(row));
  if (row.bad()) {
    out->append(" ");
    out->push_back(kBadRowCode);
    out->append("     bad input row: " + display_text(row.error) + "\n");
    return;
  }
  out->append(" ");
  out->push_back(outrec[out::retcode.off]);
  out->append("  ");
  out->push_back(outrec[out::matchstat.off]);
  out->append("  ");
  std::string_view line2 = trimmed(field_view(outrec, out::line2));
  std::string result(trimmed(field_view(outrec, out::line1)));
  if (!line2.empty()) result += " / " + std::string(line2);
  out->append(fit(latin1_to_utf8(result), kTableResult));
  out->append(" ");
  out->append(trimmed(field_view(outrec, out::refcode)));
  out->append(" ");
  out->append(trimmed(field_view(outrec, out::refid)));
  while (!out->empty() && out->back() == ' ') out->pop_back();
  out->push_back('\n');
}

std::string csv_header(const OutputLayout &layout) {
  std::string h;
  for (const std::string &name : layout.input_columns) {
    append_field(name, &h);
    h.push_back(',');
  }
  if (layout.lines) {
    for (const SplitColumn &col : kSplitColumns) {
      h.append(col.name);
      h.push_back(',');
    }
  }
  for (const OutputColumn &col : kOutputColumns) {
    h.append(col.name);
    h.push_back(',');
  }
  h.back() = '\n';
  return h;
}

std::string columns_help() {
  std::string out;
  size_t width = 0;
  for (const OutputColumn &col : kOutputColumns)
    width = std::max(width, col.name.size());
  for (const OutputColumn &col : kOutputColumns) {
    std::string name(col.name);
    name.resize(width, ' ');
    append_item(&out, name, col.meaning);
  }
  return out;
}

std::string split_columns_help() {
  std::string out;
  size_t width = 0;
  for (const SplitColumn &col : kSplitColumns)
    width = std::max(width, col.name.size());
  for (const SplitColumn &col : kSplitColumns) {
    std::string name(col.name);
    name.resize(width, ' ');
    append_item(&out, name, col.meaning);
  }
  return out;
}

void append_result_row(const OutputLayout &layout, const InputRow &row,
                       const char *outrec, std::string *out) {
  append_input_columns(layout, row, out);
  if (layout.lines) append_split_columns(row, out);
  for (const OutputColumn &col : kOutputColumns) {
    out->push_back(',');
    append_field(column_value(col, outrec), out);
  }
  out->push_back('\n');
}

void append_bad_row(const OutputLayout &layout, const InputRow &row,
                    std::string *out) {
  append_input_columns(layout, row, out);
  if (layout.lines) out->append(std::size(kSplitColumns), ',');
  out->push_back(',');
  out->push_back(kBadRowCode);
  out->push_back(',');
  append_field("bad input row: " + row.error, out);
  // The remaining output columns stay empty.
  out->append(std::size(kOutputColumns) - 2, ',');
  out->push_back('\n');
}

void append_raw_record(const InputRow &row, const char *outrec,
                       std::string *out) {
  if (row.bad()) {
    out->push_back(kBadRowCode);
    out->append(HKOUTREC_SIZE - 1, ' ');
    return;
  }
  out->append(outrec, HKOUTREC_SIZE);
}

}  // namespace orlo::tools::hkgeocode
