// Collection of the candidate streets of one search pass.
#ifndef ORLO_HKMATCH_SEARCH_STREET_SCAN_H
#define ORLO_HKMATCH_SEARCH_STREET_SCAN_H

#include <cstdint>

#include "orlo_matcher.h"

namespace orlo {

// What one pass looks for.
struct ScanRequest {
  const char *street;  // wk_street, NUL-terminated
  const char *region;  // wk_region, for the street extract
  int32_t pass;        // 0 or 1
  int32_t level;       // search level of the call
  char in_mode;        // in_mode of the input record
};

// Makes the candidate list empty, allocating it (1000 entries) when the
// instance has none. Returns '0' or '3'.
char reset_candidates(HKMCB *mcb);

// Scans the street table and appends every street whose score is 90 or
// more to cands (growing it by 1000 entries when full), with that score in
// the same place of candscore. *count receives the number of candidates; *exact
// is set when one scored 100. In street extract mode every street is written to
// the extract file and taken with score 100. Returns '0' or '3'.
char collect_candidates(HKMCB *mcb, const ScanRequest &req, int32_t *count,
                        bool *exact);

namespace detail {
// Test hook: when true, the fuzzy pass on this thread walks the street table
// name by name instead of taking the names through the prepared index (the
// path it takes when the prepared names cannot be had).
extern thread_local bool walk_fuzzy_pass;
}  // namespace detail

// True when the padded input name begins with a street-type word, the
// words that let the fuzzy pass compare every name with the same initial.
bool begins_with_street_type(const char *padded);

}  // namespace orlo

#endif  // ORLO_HKMATCH_SEARCH_STREET_SCAN_H
