// The blank squeezing shared by the byte and wide justification routines.
#ifndef ORLO_COMMON_SQUEEZE_H
#define ORLO_COMMON_SQUEEZE_H

#include <cstdint>
#include <cstring>

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

// cm_lftadj without a work area: moves the text of a byte field to its
// start with each run of blanks reduced to one blank and blanks behind it,
// and returns the significant length (0 for an all-blank field, which is
// left as it is). Each byte is written at or before the place it is read
// from, so nothing is overwritten before it is read; the field and the
// result are those of cm_lftadj, which cannot fail here whatever the
// length. A blank is 0x20 only.
inline int32_t squeeze_in_place(char *field, int32_t len) {
  int32_t out = 0;
  bool seen_text = false;
  bool after_text = false;
  for (int32_t i = 0; i < len; ++i) {
    if (field[i] != ' ') {
      field[out++] = field[i];
      seen_text = after_text = true;
    } else if (after_text) {
      field[out++] = ' ';
      after_text = false;
    }
  }
  if (!seen_text) return 0;
  for (int32_t i = out; i < len; ++i) field[i] = ' ';
  return after_text ? out : out - 1;
}

// The first `want` bytes that squeeze_in_place would leave at the start of
// the field, written there (the rest of the field is left in an unspecified
// state). Runs of blanks are skipped eight bytes at a time, so a long line
// that is mostly blank costs little.
inline void squeeze_prefix(char *field, int32_t len, int32_t want) {
  constexpr uint64_t kBlanks = 0x2020202020202020ull;
  int32_t out = 0;
  bool after_text = false;
  int32_t i = 0;
  while (i < len && out < want) {
    if (field[i] != ' ') {
      field[out++] = field[i++];
      after_text = true;
      continue;
    }
    if (after_text) {
      field[out++] = ' ';
      after_text = false;
    }
    ++i;
    uint64_t word;
    while (i + 8 <= len &&
           (std::memcpy(&word, field + i, 8), word == kBlanks)) {
      i += 8;
    }
  }
  // A blank written last is a trailing blank of the squeezed text.
  for (int32_t k = out; k < want; ++k) field[k] = ' ';
}

}  // namespace orlo

#endif  // ORLO_COMMON_SQUEEZE_H
