#include "lib/refdb_format.h"

#include <algorithm>

namespace orlo::tools::refdb {

int compare_padded(std::string_view a, std::string_view b, size_t width) {
  for (size_t i = 0; i < width; ++i) {
    unsigned char ca = i < a.size() ? static_cast<unsigned char>(a[i]) : ' ';
    unsigned char cb = i < b.size() ? static_cast<unsigned char>(b[i]) : ' ';
    if (ca != cb) return ca < cb ? -1 : 1;
  }
  return 0;
}

}  // namespace orlo::tools::refdb
