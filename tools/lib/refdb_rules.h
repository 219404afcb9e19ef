// What the reference builder demands of a row beyond the widths that the
// file layout holds: values the matcher can use, and one case. hkdb build
// applies them; tests that build odd data on purpose switch them off.
#ifndef ORLO_TOOLS_REFDB_RULES_H
#define ORLO_TOOLS_REFDB_RULES_H

#include <string>
#include <vector>

#include "lib/refdb_builder.h"

namespace orlo::tools {

struct ContentRules {
  // Parity E, O or empty; low not above high; a refcode of 3 and a refid
  // of 5 letters or digits (or empty).
  bool check_values = true;
  // Region keys limited to those the front ends route to (HK, KLN, NT).
  bool known_regions = true;
  // Lower-case letters folded to upper case, as input is.
  bool fold_case = true;
  // Exact duplicate rows kept once.
  bool drop_duplicates = true;
};

// Rows exactly as given.
inline constexpr ContentRules kRowsAsGiven{false, false, false, false};

// Folds the row's lower-case ASCII and Latin-1 letters to upper case (the
// input normalisation's fold). True when anything changed.
bool fold_row_case(std::vector<std::string> *row);

// Checks a row of kColumns fields (line `line`) against the value rules
// that `rules` switches on. False with *err naming the field.
bool check_row_values(const std::vector<std::string> &row, long line,
                      const ContentRules &rules, BuildError *err);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_RULES_H
