// The blank squeezing shared by the byte and wide justification routines.
#ifndef ORLO_COMMON_SQUEEZE_H
#define ORLO_COMMON_SQUEEZE_H

#include <cstdint>

namespace orlo {

// Writes the text of field[0..len) into work (already blank-filled over len
// units) from its first non-blank on, each run of blanks reduced to one
// blank. `is_blank` says what counts as a blank. Returns the significant
// length: the units written, less a trailing blank. Returns -1 when the field
// holds only blanks.
template <typename T, typename IsBlank>
int32_t squeeze_into(const T *field, int32_t len, T *work, IsBlank is_blank) {
  // One pass that looks at each unit once and in order, so that is_blank may
  // depend on what it has seen before.
  int32_t out = 0;
  bool seen_text = false;
  bool after_text = false;
  for (int32_t i = 0; i < len; ++i) {
    if (!is_blank(field[i])) {
      work[out++] = field[i];
      seen_text = after_text = true;
    } else if (after_text) {
      ++out;  // the work area already holds a blank here
      after_text = false;
    }
  }
  if (!seen_text) return -1;
  return after_text ? out : out - 1;
}

}  // namespace orlo

#endif  // ORLO_COMMON_SQUEEZE_H
