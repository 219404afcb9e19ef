// Digit test, blank packing and consonant skeletons of fixed-width fields.
#include <cstring>
#include <string_view>

#include "compare/text_bytes.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

// Vowels that the skeleton drops between the first and the last letter; Y is
// kept because it so often stands for a consonant in names.
constexpr std::string_view kVowels = "EAIOU";

constexpr bool is_vowel(char c) {
  return c != '\0' && kVowels.find(c) != std::string_view::npos;
}

// Length of the field up to its last non-blank; an all-blank field counts as
// one byte so that the skeleton of a blank is the empty text.
int32_t skeleton_extent(const char *field, int32_t len) {
  int32_t n = len;
  while (n > 0 && is_blank(field[n - 1])) --n;
  return n == 0 ? 1 : n;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t m_isnumb(const char *text, int32_t len) {
  for (int32_t i = 0; i < len; ++i) {
    if (orlo::is_digit(text[i])) return 1;
  }
  return 0;
}

// Packs in place: the write index never overtakes the read index, so no work
// area is needed and any length is fine.
extern "C" int32_t xm_lpck(char *field, int32_t len) {
  int32_t n = 0;
  for (int32_t i = 0; i < len; ++i) {
    if (!orlo::is_blank(field[i])) field[n++] = field[i];
  }
  if (n > 0) std::memset(field + n, ' ', static_cast<size_t>(len - n));
  return n;
}

extern "C" int32_t m_comprs(char *field, int32_t len) {
  if (len <= 0) return 0;
  const int32_t n = orlo::skeleton_extent(field, len);
  if (n <= 1) return xm_lpck(field, n);
  for (int32_t i = 1; i < n; ++i) {
    const bool inner = i < n - 1;
    // The comparison with the byte before sees that byte as it now stands,
    // so a letter after a dropped vowel is kept even if it repeats the one
    // before the vowel.
    if ((inner && orlo::is_vowel(field[i])) || field[i] == field[i - 1]) {
      field[i] = ' ';
    }
  }
  return xm_lpck(field, n);
}
