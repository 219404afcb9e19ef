// Character-by-character alignment of two strings, counting substitutions,
// insertions, deletions, transpositions, doubled letters and the unmatched
// tail.
#include <cstdint>

#include "orlo_compare.h"

namespace orlo {
namespace {

// "No agreed character yet" is the NUL byte.
constexpr unsigned char kNone = '\0';

struct Alignment {
  int32_t errors = 0;
  int32_t tail = 0;
  int32_t repeats = 0;
  int32_t mismatch = 0;
};

// Walks a and b together. The look-ahead reads up to two bytes past each
// length; the callers' work copies provide them.
Alignment align(const unsigned char *a, int32_t lena, const unsigned char *b,
                int32_t lenb) {
  Alignment r;
  int32_t i = 0;
  int32_t j = 0;
  unsigned char last_a = kNone;
  unsigned char last_b = kNone;
  while (i < lena && j < lenb) {
    if (a[i] == b[j]) {
      last_a = last_b = a[i];
      r.mismatch = 0;
      ++i;
      ++j;
      continue;
    }
    r.mismatch = 1;
    if (a[i] == last_a) {  // a doubles a letter that b has once
      ++r.repeats;
      ++i;
    } else if (b[j] == last_b) {  // b doubles a letter that a has once
      ++r.repeats;
      ++j;
    } else if (a[i] == b[j + 1] && a[i + 1] != b[j + 1]) {
      ++r.errors;
      if (a[i + 1] == b[j]) {  // two characters swapped
        // a[i + 1] == b[j] and a[i] == b[j + 1] hold already; one more
        // byte tells whether either side has an extra character around them.
        if (a[i + 2] == b[j + 1]) {
          i += 3;  // a has one extra character in front of the swap
          j += 2;
        } else if (a[i + 1] == b[j + 2]) {
          i += 2;  // b has one extra character
          j += 3;
        } else {
          i += 2;  // a plain transposition
          j += 2;
        }
        last_a = last_b = kNone;
      } else {  // b has an extra character
        last_a = kNone;
        last_b = b[j + 1];
        i += 1;
        j += 2;
      }
    } else if (a[i + 1] == b[j] && a[i + 1] != b[j + 1]) {
      ++r.errors;  // a has an extra character
      last_a = a[i + 1];
      last_b = kNone;
      i += 2;
      j += 1;
    } else {
      ++r.errors;  // a substitution
      last_a = last_b = kNone;
      ++i;
      ++j;
    }
  }
  while (i < lena && a[i] == last_a) {
    ++r.repeats;
    ++i;
  }
  while (j < lenb && b[j] == last_b) {
    ++r.repeats;
    ++j;
  }
  if (i < lena) {
    r.tail = lena - i;
  } else if (j < lenb) {
    r.tail = lenb - j;
  }
  return r;
}

}  // namespace
}  // namespace orlo

extern "C" void m_chcmp1(int32_t *errors, int32_t *tail, int32_t *repeats,
                         int32_t *mismatch, int32_t lena, int32_t lenb,
                         const char *a, const char *b) {
  const orlo::Alignment r =
      orlo::align(reinterpret_cast<const unsigned char *>(a), lena,
                  reinterpret_cast<const unsigned char *>(b), lenb);
  *errors = r.errors;
  *tail = r.tail;
  *repeats = r.repeats;
  *mismatch = r.mismatch;
}
