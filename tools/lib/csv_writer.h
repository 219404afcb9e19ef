// Writing of RFC 4180 CSV rows: a field is quoted when it holds a comma, a
// quote, CR or LF (or, on request, starts or ends with a blank, so that
// readers that trim cannot lose it), with its quotes doubled; rows end with
// LF.
#ifndef ORLO_TOOLS_CSV_WRITER_H
#define ORLO_TOOLS_CSV_WRITER_H

#include <string>
#include <string_view>

namespace orlo::tools {

void append_csv_field(std::string *out, std::string_view field,
                      bool quote_edge_blanks = false);

// Appends fields separated by commas, then LF.
template <typename Fields>
void append_csv_row(std::string *out, const Fields &fields) {
  bool first = true;
  for (const auto &f : fields) {
    if (!first) out->push_back(',');
    append_csv_field(out, f);
    first = false;
  }
  out->push_back('\n');
}

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_CSV_WRITER_H
