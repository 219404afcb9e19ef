#include "hkgeocode/output_format.h"

#include <initializer_list>
#include <string>

#include "common/fixed_field.h"
#include "hkmatch/input/record_fields.h"
#include "lib/csv_writer.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

struct Meaning {
  char code;
  std::string_view text;
};

#define ORLO_RETURN_MEANING(name, code, message, meaning) {code, meaning},
#define ORLO_STATUS_MEANING(name, code, meaning) {code, meaning},
constexpr Meaning kReturnCodes[] = {
    ORLO_RETURN_CODES(ORLO_RETURN_MEANING){kBadRowCode, "bad input row"}};
constexpr Meaning kMatchStatuses[] = {ORLO_MATCH_STATUSES(ORLO_STATUS_MEANING)};
#undef ORLO_RETURN_MEANING
#undef ORLO_STATUS_MEANING

template <size_t N>
std::string_view meaning_of(const Meaning (&table)[N], char code,
                            std::string_view otherwise) {
  for (const Meaning &m : table) {
    if (m.code == code) return m.text;
  }
  return otherwise;
}

// The output fields after the input columns, in order. The unit line is
// shown whole: in_unit's 25 characters joined with in_unitext's 5.
enum class Kind { kField, kUnitLine, kReturnMeaning, kStatusMeaning };
struct OutputColumn {
  std::string_view name;
  Kind kind;
  FieldRef field;
};

constexpr OutputColumn kOutputColumns[] = {
    {"return_code", Kind::kField, out::retcode},
    {"return_meaning", Kind::kReturnMeaning, out::retcode},
    {"match_status", Kind::kField, out::matchstat},
    {"match_meaning", Kind::kStatusMeaning, out::matchstat},
    {"out_premno", Kind::kField, out::premno},
    {"out_street", Kind::kField, out::street},
    {"out_building", Kind::kField, out::bldg},
    {"out_unit", Kind::kUnitLine, out::unit},
    {"out_district", Kind::kField, out::district},
    {"out_region", Kind::kField, out::region},
    {"line1", Kind::kField, out::line1},
    {"line2", Kind::kField, out::line2},
    {"ref_code", Kind::kField, out::refcode},
    {"ref_id", Kind::kField, out::refid},
    {"area_changed", Kind::kField, out::areachg},
    {"street_changed", Kind::kField, out::streetchg},
    {"premise_changed", Kind::kField, out::premchg},
    {"ref_line", Kind::kField, out::refline},
    {"grade", Kind::kField, out::grade},
    {"building_source", Kind::kField, out::bldgsrc},
};

std::string_view trimmed(std::string_view text) {
  return text.substr(0, significant_length(text));
}

// Appends one CSV field; edge blanks are quoted because the output keeps
// the blanks of fixed-width fields that matter to the reader.
void append_field(std::string_view value, std::string *out) {
  append_csv_field(out, value, /*quote_edge_blanks=*/true);
}

void append_input_columns(const InputRow &row, bool mask, std::string *out) {
  for (size_t i = 0; i < kInputColumns.size(); ++i) {
    if (i > 0) out->push_back(',');
    if (i >= row.fields.size()) continue;
    std::string value = row.fields[i];
    if (mask) {
      for (char &c : value) {
        auto b = static_cast<unsigned char>(c);
        if (b < 0x20 || b >= 0x7F) c = '?';
      }
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
      return std::string(trimmed(line));
    }
    case Kind::kField:
      break;
  }
  return std::string(trimmed(field_view(rec, col.field)));
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
  cell.resize(width, ' ');
  return cell;
}

// The address as given: premise number and street, building, unit, region.
std::string given_address(const InputRow &row) {
  auto f = [&row](size_t i) -> std::string_view {
    return i < row.fields.size() ? std::string_view(row.fields[i]) : "";
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
    out->append("     bad input row: " + row.error + "\n");
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
  result.resize(kTableResult, ' ');
  out->append(result);
  out->append(" ");
  out->append(trimmed(field_view(outrec, out::refcode)));
  out->append(" ");
  out->append(trimmed(field_view(outrec, out::refid)));
  while (!out->empty() && out->back() == ' ') out->pop_back();
  out->push_back('\n');
}

std::string_view return_code_meaning(char code) {
  return meaning_of(kReturnCodes, code, "unknown return code");
}

std::string_view match_status_meaning(char status) {
  return meaning_of(kMatchStatuses, status, "unknown match status");
}

std::string csv_header() {
  std::string h;
  for (std::string_view name : kInputColumns) {
    h.append(name);
    h.push_back(',');
  }
  for (const OutputColumn &col : kOutputColumns) {
    h.append(col.name);
    h.push_back(',');
  }
  h.back() = '\n';
  return h;
}

void append_result_row(const InputRow &row, const char *outrec,
                       std::string *out) {
  append_input_columns(row, false, out);
  for (const OutputColumn &col : kOutputColumns) {
    out->push_back(',');
    append_field(column_value(col, outrec), out);
  }
  out->push_back('\n');
}

void append_bad_row(const InputRow &row, std::string *out) {
  append_input_columns(row, true, out);
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
