// Builders for the records the search tests feed to the matcher: a blank
// 200-byte input record filled field by field, and a reference record set up
// as the unpacker leaves it (texts, parsed premise numbers, side).
#ifndef ORLO_TESTS_SUPPORT_RECORD_BUILDERS_H
#define ORLO_TESTS_SUPPORT_RECORD_BUILDERS_H

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "hkmatch/input/record_fields.h"
#include "orlo_matcher.h"

namespace orlo::testing {

// Sets a NUL-terminated text field of a structure, cut to fit.
template <size_t N>
void set_text(char (&dst)[N], std::string_view text) {
  std::memset(dst, 0, N);
  std::memcpy(dst, text.data(), std::min(text.size(), N - 1));
}

// A 200-byte input record, blank until fields are set.
class InputRecord {
 public:
  InputRecord() { bytes_.fill(' '); }

  // Writes text at the start of the field, cut to its width.
  InputRecord &set(FieldRef f, std::string_view text) {
    std::memcpy(bytes_.data() + f.off, text.data(),
                std::min(text.size(), static_cast<size_t>(f.len)));
    return *this;
  }
  InputRecord &premno(std::string_view t) { return set(in::premno, t); }
  InputRecord &street(std::string_view t) { return set(in::street, t); }
  InputRecord &bldg(std::string_view t) { return set(in::bldg, t); }
  InputRecord &unit(std::string_view t) { return set(in::unit, t); }
  InputRecord &unitext(std::string_view t) { return set(in::unitext, t); }
  InputRecord &district(std::string_view t) { return set(in::district, t); }
  InputRecord &region(std::string_view t) { return set(in::region, t); }
  InputRecord &refcode(std::string_view t) { return set(in::refcode, t); }
  InputRecord &mode(char m) {
    bytes_[in::mode.off] = m;
    return *this;
  }

  const char *data() const { return bytes_.data(); }
  char *data() { return bytes_.data(); }
  std::string str() const { return {bytes_.data(), bytes_.size()}; }
  std::string_view field(FieldRef f) const { return field_view(data(), f); }

  HKWORKREC prepared() const {
    HKWORKREC work;
    hk_pad(data(), &work, nullptr);
    return work;
  }

 private:
  std::array<char, HKINREC_SIZE> bytes_;
};

// A reference record as the unpacker leaves it: premise numbers parsed from
// lo and hi, side from the parity, street score 100.
struct ReferenceRecord {
  std::string lo, hi, qual1, bldg, refcode, parity;

  HKBASEREC build() const {
    HKBASEREC rec;
    std::memset(&rec, 0, sizeof rec);
    set_text(rec.blotext, lo);
    set_text(rec.bhitext, hi);
    set_text(rec.bqual1, qual1);
    set_text(rec.bbldg, bldg);
    set_text(rec.brefcode, refcode);
    set_text(rec.bparity, parity);
    rec.blorc = hk_cvtr(rec.blotext, &rec.blonum, &rec.blotyp, &rec.blosub,
                        &rec.blosubtyp);
    rec.bhirc = hk_cvtr(rec.bhitext, &rec.bhinum, &rec.bhityp, &rec.bhisub,
                        &rec.bhisubtyp);
    rec.bside = parity == "E" ? 'E' : parity == "O" ? 'O' : 'B';
    rec.bscore = 100;
    return rec;
  }
};

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_RECORD_BUILDERS_H
