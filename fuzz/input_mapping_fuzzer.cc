// Source record mapping on arbitrary source records (exactly as long as the
// record, so that any read beyond it is caught).
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "orlo_matcher.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  std::vector<char> src(HKSRCREC_SIZE, ' ');
  std::memcpy(src.data(), data, size < src.size() ? size : src.size());
  std::vector<char> in(HKINREC_SIZE);
  hk_amat(src.data(), in.data());
  if (std::strchr("134FE", in[HKIN_MODE_OFF]) == nullptr) __builtin_trap();
  return 0;
}
