// Internal helpers for fixed-width, blank-padded fields inside records.
#ifndef ORLO_COMMON_FIXED_FIELD_H
#define ORLO_COMMON_FIXED_FIELD_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace orlo {

inline constexpr char kBlank = ' ';

// A field of a record: its offset and width in bytes.
struct FieldRef {
  int32_t off;
  int32_t len;
};

// The bytes of field f inside record rec, padding included.
inline std::string_view field_view(const char *rec, FieldRef f) {
  return {rec + f.off, static_cast<size_t>(f.len)};
}

// Fills n bytes with blanks.
inline void fill_blanks(char *p, size_t n) {
  std::memset(p, kBlank, n);
}

// Copies text into field f, cut to the width and blank-padded.
inline void put_field(char *rec, FieldRef f, std::string_view text) {
  size_t n = std::min(text.size(), static_cast<size_t>(f.len));
  std::memcpy(rec + f.off, text.data(), n);
  fill_blanks(rec + f.off + n, static_cast<size_t>(f.len) - n);
}

// Copies the characters of a NUL-terminated string, without its terminator,
// over the start of field f (at most its width); the rest stays as it was.
inline void put_string(char *rec, FieldRef f, const char *s) {
  size_t n = strnlen(s, static_cast<size_t>(f.len));
  std::memcpy(rec + f.off, s, n);
}

// Length of text without its trailing blanks.
inline size_t significant_length(std::string_view text) {
  size_t n = text.size();
  while (n > 0 && text[n - 1] == kBlank) --n;
  return n;
}

// True when every byte is a blank (an empty view counts as blank).
inline bool all_blank(std::string_view text) {
  return significant_length(text) == 0;
}

}  // namespace orlo

#endif  // ORLO_COMMON_FIXED_FIELD_H
