// Listings and extract records that an instance writes when its open
// options ask for them: street names on standard error, the name list of
// the caller's area, and the two extract record layouts.
#ifndef ORLO_HKMATCH_SEARCH_DIAGNOSTICS_H
#define ORLO_HKMATCH_SEARCH_DIAGNOSTICS_H

#include <cstdio>

#include "orlo_matcher.h"

namespace orlo {

inline constexpr int kStreetExtractSize = 35;
inline constexpr int kBaseExtractSize = 136;
inline constexpr int kSummarySize = 150;
inline constexpr int kSummarySlots = 49;
inline constexpr int kNameListSize = 30000;
inline constexpr int kRecListSize = 7500;
inline constexpr int kNameSlots = 999;
inline constexpr int kNameSlotSize = 30;

// Street extract: the street name in 30 bytes and the first five
// characters of the region key, both blank-padded.
void write_street_extract(FILE *out, const char *name, const char *region);

// Base record extract: the 136-byte record of one base record.
void write_base_extract(FILE *out, const HKBASEREC &rec,
                        const STREETENT &street);

// Every street name of the current table, one per line.
void list_street_names(FILE *out, const HKMCB &mcb);

// Fills the caller's name list (already blank) with the names of the
// current table that begin with the input street's first character.
void fill_name_list(const HKMCB &mcb, const char *street, char *namelist);

// The six lines of hk_disd, written to out.
void write_record_lines(FILE *out, const HKBASEREC &rec,
                        const STREETENT &street);

}  // namespace orlo

#endif  // ORLO_HKMATCH_SEARCH_DIAGNOSTICS_H
