// Thousands separators for printing counts.
#include <cstring>

#include "orlo_fields.h"

namespace {

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

// The text is built from its last character leftwards so that it ends just
// before the terminator at out[outlen - 1]. Writing stops at out[0]: a text
// too long for the area is cut on the left rather than written before it.
extern "C" char *cm_cfrmt(const char *src, char *out, int32_t outlen) {
  if (src == nullptr || outlen < 1) return nullptr;
  std::memset(out, ' ', static_cast<size_t>(outlen));
  out[outlen - 1] = '\0';
  size_t n = std::strlen(src);
  int32_t pos = outlen - 1;  // the last position written so far
  if (n == 0) return out + pos;
  auto put = [&](char c) {
    if (pos > 0) out[--pos] = c;
  };
  int digits = 0;
  for (size_t i = n - 1; i >= 1; --i) {
    put(src[i]);
    if (!is_digit(src[i])) continue;
    if (++digits == 3 && is_digit(src[i - 1])) {
      put(',');
      digits = 0;
    }
  }
  put(src[0]);
  return out + pos;
}
