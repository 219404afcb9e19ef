// Input preparation: turns the fixed-width 200-byte input record into the
// prepared input address that the search and the candidate comparison read.
// Every text field comes out left-justified, with its blank runs collapsed,
// cut at its significant length and NUL-terminated; the premise number also
// loses its leading zeros and is parsed into numbers.
#include <algorithm>
#include <array>
#include <cstring>

#include "common/fixed_field.h"
#include "hkmatch/input/record_fields.h"
#include "orlo_fields.h"
#include "orlo_matcher.h"

namespace orlo {
namespace {

constexpr size_t kWorkLen = 200;

// A blank-filled work buffer in which one field at a time is tidied.
using WorkBuffer = std::array<char, kWorkLen>;

// Copies the NUL-terminated text at the start of buf into dest (of dest_size
// bytes, terminator included). dest is zero beforehand, so whatever the text
// does not fill stays zero. A NUL byte inside a field ends its text early,
// possibly just after a blank, which is dropped so that no text ends in one.
void copy_text(const WorkBuffer &buf, char *dest, size_t dest_size) {
  const size_t n = significant_length(
      std::string_view(buf.data(), strnlen(buf.data(), dest_size - 1)));
  std::memcpy(dest, buf.data(), n);
}

// Left-justifies the len bytes at the start of buf, collapsing blank runs,
// and ends the text at its significant length.
void justify(WorkBuffer &buf, int32_t len) {
  const int32_t n = cm_lftadj(buf.data(), len);
  buf[static_cast<size_t>(n > 0 ? n : 0)] = '\0';
}

// Premise number: blanks before the number go first, so that a blank
// followed by 012 loses its zero too; then the zeros, then the blanks that
// replaced them.
void prepare_premno(const char *inrec, HKWORKREC *work) {
  WorkBuffer buf;
  fill_blanks(buf.data(), buf.size());
  std::memcpy(buf.data(), inrec + in::premno.off, in::premno.len);
  cm_lftadj(buf.data(), in::premno.len);
  cm_bllz(buf.data(), in::premno.len);
  justify(buf, in::premno.len);
  copy_text(buf, work->wk_premno, sizeof work->wk_premno);
  work->wk_premrc =
      hk_cvtr(work->wk_premno, &work->wk_prem1, &work->wk_prem1kind,
              &work->wk_prem2, &work->wk_prem2kind);
}

// Tidies the bytes of one field (given in up to two pieces, which are
// joined) and copies the text into dest.
void prepare_text(WorkBuffer &buf, std::string_view first,
                  std::string_view second, char *dest, size_t dest_size) {
  // A blank field gives an empty text, and dest is zero already.
  if (all_blank(first) && all_blank(second)) return;
  std::copy(first.begin(), first.end(), buf.begin());
  std::copy(second.begin(), second.end(), buf.begin() + first.size());
  const size_t len = first.size() + second.size();
  buf[len] = '\0';
  justify(buf, static_cast<int32_t>(len));
  copy_text(buf, dest, dest_size);
}

void prepare_fields(const char *inrec, HKWORKREC *work) {
  WorkBuffer buf;
  fill_blanks(buf.data(), buf.size());
  const auto field = [inrec](FieldRef f) { return field_view(inrec, f); };
  prepare_text(buf, field(in::street), {}, work->wk_street,
               sizeof work->wk_street);
  prepare_text(buf, field(in::bldg), {}, work->wk_bldg, sizeof work->wk_bldg);
  // The floor and unit line is stored in two pieces: in_unit, then
  // in_unitext near the end of the record.
  prepare_text(buf, field(in::unit), field(in::unitext), work->wk_unit,
               sizeof work->wk_unit);
  prepare_text(buf, field(in::extra), {}, work->wk_extra,
               sizeof work->wk_extra);
  prepare_text(buf, field(in::district), {}, work->wk_district,
               sizeof work->wk_district);
  prepare_text(buf, field(in::region), {}, work->wk_region,
               sizeof work->wk_region);
  prepare_text(buf, field(in::refcode), {}, work->wk_refcode,
               sizeof work->wk_refcode);
}

}  // namespace
}  // namespace orlo

extern "C" void hk_pad(const char *inrec, HKWORKREC *work, HKMCB * /*mcb*/) {
  std::memset(work, 0, sizeof *work);
  orlo::prepare_premno(inrec, work);
  orlo::prepare_fields(inrec, work);
  work->wk_mode = inrec[orlo::in::mode.off];
}
