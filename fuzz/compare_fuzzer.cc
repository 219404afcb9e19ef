// The four comparison routines on arbitrary fields, lengths and option
// strings, and the street comparison through a prepared set as well. Each field
// is allocated exactly as long as the length passed, so that a read or write
// beyond the caller's field is caught.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "orlo_compare.h"

namespace {

// Splits the input: selector, length, option text, then the two fields.
struct Input {
  const uint8_t *p;
  size_t n;
  uint8_t take() {
    if (n == 0) return 0;
    --n;
    return *p++;
  }
  // A heap block of exactly len bytes (a zero-length block is a distinct
  // pointer with no usable bytes), blank-filled, then the next input bytes.
  std::unique_ptr<char[]> field(size_t len) {
    std::unique_ptr<char[]> f(new char[len]);
    std::memset(f.get(), ' ', len);
    size_t k = len < n ? len : n;
    if (k) std::memcpy(f.get(), p, k);
    p += k;
    n -= k;
    return f;
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  Input in{data, size};
  uint8_t which = in.take() % 4;
  // Lengths from -2 to 253: negative, zero, short, 99, 100 and long fields.
  int32_t len = static_cast<int32_t>(in.take()) - 2;
  size_t optlen = in.take() % 16;
  std::unique_ptr<char[]> raw = in.field(optlen);
  std::string opt(raw.get(), optlen);  // a writable, NUL-terminated copy
  bool null_options = optlen == 15;
  size_t flen = len > 0 ? static_cast<size_t>(len) : 0;
  std::unique_ptr<char[]> a = in.field(flen);
  std::unique_ptr<char[]> b = in.field(flen);
  const char *pa = a.get();
  const char *pb = b.get();
  int32_t score = 0;
  switch (which) {
    case 0: {
      score = m_street(pa, pb, len, null_options ? nullptr : opt.data());
      if (score < 0 || score > 100) __builtin_trap();
      // The same pair through a prepared set of one name scores the same.
      MSTREETS *set =
          m_stprep(&pb, 1, len, null_options ? nullptr : opt.c_str());
      int32_t prepared = -1;
      if (set == nullptr || m_stmany(set, pa, &prepared) != 1 ||
          prepared != score) {
        __builtin_trap();
      }
      m_stfree(set);
      break;
    }
    case 1:
      score = m_spllng(pa, pb, len, null_options ? nullptr : opt.data());
      if (score > 100) __builtin_trap();
      break;
    case 2:
      score = m_tgstr(pa, pb, len);
      if (score > 100) __builtin_trap();
      break;
    default:
      score = m_busnam(pa, pb, len, null_options ? nullptr : opt.data());
      if (score > 100) __builtin_trap();
      break;
  }
  return 0;
}
