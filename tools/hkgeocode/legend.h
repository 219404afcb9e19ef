// What hkgeocode's codes mean, in words: the return codes and match statuses
// of the matcher's one table (orlo_codes.h) and the tool's own code for a
// bad row, as legends for --table and --help, and the one-line reasons
// given when rows fail.
#ifndef ORLO_TOOLS_HKGEOCODE_LEGEND_H
#define ORLO_TOOLS_HKGEOCODE_LEGEND_H

#include <cstdint>
#include <string>
#include <string_view>

#include "orlo_codes.h"

namespace orlo::tools::hkgeocode {

// The return code that marks a bad input row in the output.
inline constexpr char kBadRowCode = HKRC_INPUT_REFUSED;

std::string_view return_code_meaning(char code);
std::string_view match_status_meaning(char status);

// Appends "  LEAD  TEXT", TEXT wrapped to 79 columns under itself.
void append_item(std::string *out, std::string_view lead,
                 std::string_view text);

// The legend of the given return codes and match statuses, in table order,
// one item each with its meaning and, where the matcher has one, its own
// message. Empty strings list every code.
std::string code_legend(std::string_view return_codes,
                        std::string_view statuses);

// Why `failed` of `processed` rows got the failure code `code`, in one
// line without a line end, e.g. "BASEDATA is damaged: 186 of 224 records
// could not be read; run `hkdb check DIR`".
std::string failure_reason(char code, uint64_t failed, uint64_t processed,
                           const std::string &db_dir);

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_LEGEND_H
