// The 16-bit twins of the justification routines. Both U+0020 and the
// ideographic space U+3000 count as blanks; the blank written is U+0020.
#include <algorithm>

#include "common/squeeze.h"
#include "common/work_area.h"
#include "orlo_fields.h"

namespace {

constexpr uint16_t kSpace = 0x0020;
constexpr uint16_t kIdeographicSpace = 0x3000;

constexpr bool is_wide_blank(uint16_t u) {
  return u == kSpace || u == kIdeographicSpace;
}

void fill_spaces(uint16_t *p, int32_t n) {
  std::fill(p, p + n, kSpace);
}

}  // namespace

using orlo::with_blank_work_area;

extern "C" int32_t cmulftadj(uint16_t *field, int32_t len) {
  return with_blank_work_area(len, kSpace, [&](uint16_t *work) {
    int32_t n = orlo::squeeze_into(field, len, work, is_wide_blank);
    if (n < 0) return 0;
    std::copy(work, work + len, field);
    return n;
  });
}

// Unlike the byte routine, the work area is always copied back, so an
// all-blank field comes back as U+0020 blanks.
extern "C" int32_t cmulftpck(uint16_t *field, int32_t len) {
  return with_blank_work_area(len, kSpace, [&](uint16_t *work) {
    int32_t n = 0;
    for (int32_t i = 0; i < len; ++i) {
      if (!is_wide_blank(field[i])) work[n++] = field[i];
    }
    std::copy(work, work + len, field);
    return n;
  });
}

// A U+0000 unit inside the text separates words like a blank: wide texts
// from outside often end in NULs instead of blanks.
extern "C" int32_t cmurhtadj(uint16_t *field, int32_t len) {
  return with_blank_work_area(len, kSpace, [&](uint16_t *work) {
    bool in_text = false;
    auto separator = [&in_text](uint16_t u) {
      bool blank = is_wide_blank(u) || (in_text && u == 0);
      if (!blank) in_text = true;
      return blank;
    };
    int32_t n = orlo::squeeze_into(field, len, work, separator);
    if (n < 0) {
      fill_spaces(field, len);
      return 0;
    }
    fill_spaces(field, len - n);
    std::copy(work, work + n, field + (len - n));
    return n;
  });
}
