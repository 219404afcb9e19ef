// The region index and the street table of the current region.
#ifndef ORLO_HKMATCH_REFDATA_STREET_TABLE_H
#define ORLO_HKMATCH_REFDATA_STREET_TABLE_H

#include <cstdint>

#include "orlo_matcher.h"

namespace orlo {

// Width of a street name compared blank-padded (30 characters and one more
// blank, so that a name never equals a longer one that it begins).
inline constexpr int kPaddedName = 31;

// Copies a NUL-terminated name of at most 30 characters into out, padded
// with blanks to kPaddedName bytes.
void pad_name(const char *name, char *out);

// Index of the 30-byte key in the region index, or -1 when it is not there.
int32_t find_region(const HKMCB *mcb, const char *key);

// Makes the street table of region idx the instance's current one: lvl2tab
// and lvl2cnt point at the table the instance's store holds for the region
// (built the first time any instance of the store needs it), lvl2initials
// says whether it is in order of initials. Returns '0', '3' when storage
// fails, '4' when the segment lies outside LEVEL2, cannot be read or does
// not hold its records. On failure the table is empty (lvl2cnt 0).
char select_street_table(HKMCB *mcb, int32_t idx);

// First byte of an entry's name padded with blanks (a blank for an empty
// name), as an unsigned value.
inline unsigned char padded_initial(const STREETENT &e) {
  return e.sname[0] != '\0' ? static_cast<unsigned char>(e.sname[0]) : ' ';
}

// Index of the first entry whose padded initial is not below c, when the
// table is in order of initials.
int32_t first_with_initial(const HKMCB *mcb, unsigned char c);

// Index of the street table entry whose padded name equals the padded
// input name, as bisection of the table finds it, or -1.
int32_t find_street(const HKMCB *mcb, const char *padded);

// Leaves the instance without a current street table.
void drop_region(HKMCB *mcb);

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_STREET_TABLE_H
