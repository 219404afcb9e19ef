// Folding of the Latin-1 capitals that the comparison routines write out as
// two plain letters ("DI" option).
#ifndef ORLO_COMPARE_LATIN1_FOLD_H
#define ORLO_COMPARE_LATIN1_FOLD_H

#include <cstdint>

namespace orlo {

// Largest field that fold_latin1_letters accepts: the comparison work areas
// hold 100 bytes.
inline constexpr int32_t kFoldMaxLen = 100;

// Rewrites the first len bytes of field with 0xC4 and 0xC6 as "AE", 0xC5 as
// "AA", 0xD6 and 0xD8 as "OE", 0xDC as "UE" and 0xDF as "SS"; every other byte
// is kept. The field keeps its length: text pushed past len is lost. len must
// be at most kFoldMaxLen; longer fields are left unchanged.
void fold_latin1_letters(char *field, int32_t len);

}  // namespace orlo

#endif  // ORLO_COMPARE_LATIN1_FOLD_H
