#include "lib/csv_writer.h"

namespace orlo::tools {

void append_csv_field(std::string *out, std::string_view field,
                      bool quote_edge_blanks) {
  bool edge = quote_edge_blanks && !field.empty() &&
              (field.front() == ' ' || field.back() == ' ');
  if (!edge && field.find_first_of(",\"\r\n") == std::string_view::npos) {
    out->append(field);
    return;
  }
  out->push_back('"');
  for (char c : field) {
    if (c == '"') out->push_back('"');
    out->push_back(c);
  }
  out->push_back('"');
}

}  // namespace orlo::tools
