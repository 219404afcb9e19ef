// Premise number parser on arbitrary texts: always a defined result, and
// outputs untouched exactly when the text is too long.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "orlo_matcher.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::string text(reinterpret_cast<const char *>(data), size);
  int32_t v1 = 7, v2 = 9;
  char k1 = '?', k2 = '!';
  int32_t rc = hk_cvtr(text.c_str(), &v1, &k1, &v2, &k2);
  size_t len = std::strlen(text.c_str());
  if (rc == 1 && (len <= 99 || v1 != 7 || k1 != '?' || v2 != 9 || k2 != '!'))
    __builtin_trap();
  if (rc == 2 && (v1 != 0 || k1 != ' ' || v2 != 0 || k2 != ' '))
    __builtin_trap();
  if (rc != 0 && rc != 1 && rc != 2) __builtin_trap();
  if (rc == 0 && std::strchr("NAGE", k1) == nullptr) __builtin_trap();
  return 0;
}
