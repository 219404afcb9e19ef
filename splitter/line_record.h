// The input record of a reading: its words placed in their fields.
#ifndef ORLO_SPLITTER_LINE_RECORD_H
#define ORLO_SPLITTER_LINE_RECORD_H

#include <cstdint>
#include <string_view>

#include "splitter/line_parse.h"

namespace orlo::lines {

// Fills the 200-byte inrec from the words of the reading, each part's
// words in line order separated by blanks: premise number, street,
// building, the floor and unit line (in its two pieces), the district, the
// region key `region` (may be empty) and, in the extra line, the estate's
// parts followed by the words no part claimed. A street or building that
// the reference data names goes in as the data spells it, and in one that
// it does not an abbreviated street or building type is written out;
// `as_written` places every word as the line has it instead. Words of the
// street, the building, the unit line or the district that do not fit
// their field go to the extra line. Returns ORLO_LINE_OK;
// ORLO_LINE_TOO_LONG, with inrec all blanks and the reason in why, when
// the extra line cannot hold what is left.
int32_t place_reading(const Words &words, const Reading &reading,
                      std::string_view region, bool as_written, char *inrec,
                      char (&why)[200]);

}  // namespace orlo::lines

#endif  // ORLO_SPLITTER_LINE_RECORD_H
