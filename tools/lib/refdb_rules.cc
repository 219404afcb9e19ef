#include "lib/refdb_rules.h"

#include <string_view>

#include "lib/refdb_format.h"
#include "orlo_normalise.h"

namespace orlo::tools {
namespace {

enum Column : size_t { kRegion = 0, kRefcode = 2, kRefid = 3, kParity = 5 };
constexpr size_t kLow = 7, kHigh = 9;

bool fail(BuildError *err, long line, size_t column, std::string message) {
  err->line = line;
  err->field = std::string(refdb::kColumnNames[column]);
  err->message = std::move(message);
  return false;
}

std::string quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

// Empty, or exactly `width` letters and digits.
bool code_shape(std::string_view text, size_t width) {
  if (text.empty()) return true;
  if (text.size() != width) return false;
  for (char c : text) {
    bool ok = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (!ok) return false;
  }
  return true;
}

// The number a premise number starts with ("12" of "12A"); -1 for none.
long leading_number(std::string_view text) {
  long n = -1;
  for (char c : text) {
    if (c < '0' || c > '9') break;
    n = (n < 0 ? 0 : n * 10) + (c - '0');
  }
  return n;
}

std::string region_keys() {
  std::string keys;
  for (const char *const *k = orlo_norm_region_keys(); *k != nullptr; ++k)
    keys += (keys.empty() ? "" : ", ") + std::string(*k);
  return keys;
}

bool known_region(std::string_view region) {
  size_t end = region.find_last_not_of(' ');
  region = region.substr(0, end == std::string_view::npos ? 0 : end + 1);
  for (const char *const *k = orlo_norm_region_keys(); *k != nullptr; ++k)
    if (region == *k) return true;
  return false;
}

}  // namespace

bool fold_row_case(std::vector<std::string> *row) {
  bool changed = false;
  for (std::string &f : *row)
    changed |= orlo_norm_upper(f.data(), f.size()) > 0;
  return changed;
}

bool check_row_values(const std::vector<std::string> &row, long line,
                      const ContentRules &rules, BuildError *err) {
  if (rules.known_regions && !known_region(row[kRegion]))
    return fail(err, line, kRegion,
                quoted(row[kRegion]) + " is not a region key the front ends " +
                    "route to (" + region_keys() +
                    "); write the key, or build with --any-region");
  if (!rules.check_values) return true;
  const std::string &parity = row[kParity];
  if (!parity.empty() && parity != "E" && parity != "O")
    return fail(err, line, kParity,
                "is " + quoted(parity) +
                    "; the side of the street is E (even), O (odd) or empty "
                    "(both)");
  if (!code_shape(row[kRefcode], 3))
    return fail(err, line, kRefcode,
                quoted(row[kRefcode]) + " is not 3 letters or digits");
  if (!code_shape(row[kRefid], 5))
    return fail(err, line, kRefid,
                quoted(row[kRefid]) + " is not 5 letters or digits");
  long low = leading_number(row[kLow]), high = leading_number(row[kHigh]);
  if (low >= 0 && high >= 0 && low > high)
    return fail(err, line, kLow,
                row[kLow] + " is above the high number " + row[kHigh]);
  return true;
}

}  // namespace orlo::tools
