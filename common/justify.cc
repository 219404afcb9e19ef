// Left and right justification and blank packing of byte fields.
#include <cstring>

#include "common/squeeze.h"
#include "common/work_area.h"
#include "orlo_fields.h"

namespace orlo {
namespace detail {
thread_local int fail_work_areas = 0;
}  // namespace detail

namespace {

constexpr bool is_blank(char c) {
  return c == ' ';
}

}  // namespace
}  // namespace orlo

using orlo::with_blank_work_area;

namespace orlo {
namespace {

bool fits_fixed_area(int32_t len) {
  return len >= 0 && static_cast<size_t>(len) <= kFixedWorkUnits;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t cm_lftadj(char *field, int32_t len) {
  if (orlo::fits_fixed_area(len)) return orlo::squeeze_in_place(field, len);
  return with_blank_work_area(len, ' ', [&](char *work) {
    int32_t n = orlo::squeeze_into(field, len, work, orlo::is_blank);
    if (n < 0) return 0;
    std::memcpy(field, work, static_cast<size_t>(len));
    return n;
  });
}

extern "C" int32_t cm_rhtadj(char *field, int32_t len) {
  if (orlo::fits_fixed_area(len)) {
    const int32_t n = orlo::squeeze_in_place(field, len);
    if (n == 0) return 0;
    std::memmove(field + (len - n), field, static_cast<size_t>(n));
    std::memset(field, ' ', static_cast<size_t>(len - n));
    return n;
  }
  return with_blank_work_area(len, ' ', [&](char *work) {
    int32_t n = orlo::squeeze_into(field, len, work, orlo::is_blank);
    if (n < 0) return 0;
    std::memset(field, ' ', static_cast<size_t>(len - n));
    std::memcpy(field + (len - n), work, static_cast<size_t>(n));
    return n;
  });
}

extern "C" int32_t cm_lftpck(char *field, int32_t len) {
  if (orlo::fits_fixed_area(len)) {
    // In place: each byte is written at or before the place it is read
    // from. An all-blank field stays as it is.
    int32_t n = 0;
    for (int32_t i = 0; i < len; ++i) {
      if (!orlo::is_blank(field[i])) field[n++] = field[i];
    }
    if (n > 0) std::memset(field + n, ' ', static_cast<size_t>(len - n));
    return n;
  }
  return with_blank_work_area(len, ' ', [&](char *work) {
    int32_t n = 0;
    for (int32_t i = 0; i < len; ++i) {
      if (!orlo::is_blank(field[i])) work[n++] = field[i];
    }
    if (n > 0) std::memcpy(field, work, static_cast<size_t>(len));
    return n;
  });
}
