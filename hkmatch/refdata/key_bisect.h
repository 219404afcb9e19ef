// Bisection over a sorted array of fixed-width byte keys, shared by the
// region index and the street tables: the same probe order, so that with
// repeated or unsorted keys both find the entry the matcher always found.
#ifndef ORLO_HKMATCH_REFDATA_KEY_BISECT_H
#define ORLO_HKMATCH_REFDATA_KEY_BISECT_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orlo {

// The index of an entry of `count` whose `len` key bytes, found at
// first + i * stride, equal key; -1 when bisection meets none. Keys compare
// as unsigned bytes.
inline int32_t bisect_keys(const char *first, size_t stride, int32_t count,
                           const char *key, size_t len) {
  int32_t low = 0;
  int32_t high = count - 1;
  while (low <= high) {
    const int32_t mid = low + (high - low) / 2;
    const int c =
        std::memcmp(first + stride * static_cast<size_t>(mid), key, len);
    if (c > 0) {
      high = mid - 1;
    } else if (c < 0) {
      low = mid + 1;
    } else {
      return mid;
    }
  }
  return -1;
}

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_KEY_BISECT_H
