// Byte tests shared by the comparison routines. Texts are raw bytes: a blank
// is 0x20 only and a digit is '0'..'9' only, whatever the locale.
#ifndef ORLO_COMPARE_TEXT_BYTES_H
#define ORLO_COMPARE_TEXT_BYTES_H

#include <cstdint>
#include <cstring>
#include <string_view>

namespace orlo {

constexpr bool is_blank(char c) {
  return c == ' ';
}

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// One past the last byte of s[0, len) that is not a blank (0 for none);
// trailing blanks are passed eight at a time.
inline int32_t text_end(const char *s, int32_t len) {
  constexpr uint64_t kBlanks = 0x2020202020202020ULL;
  while (len >= 8) {
    uint64_t w;
    std::memcpy(&w, s + len - 8, 8);
    if (w != kBlanks) break;
    len -= 8;
  }
  while (len > 0 && is_blank(s[len - 1])) --len;
  return len;
}

// The field's bytes up to its first NUL: the part of a work copy that a
// NUL-terminated search sees.
inline std::string_view text_before_nul(const char *field, int32_t len) {
  if (len <= 0) return {};
  std::string_view all(field, static_cast<size_t>(len));
  return all.substr(0, all.find('\0'));
}

}  // namespace orlo

#endif  // ORLO_COMPARE_TEXT_BYTES_H
