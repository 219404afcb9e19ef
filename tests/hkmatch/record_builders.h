// Builders for the records that the candidate evaluation tests feed to the
// matcher: a blank 200-byte input record filled field by field, and a
// reference record set up as the unpacker leaves it (texts, parsed premise
// numbers, side), without any database.
#ifndef ORLO_TESTS_HKMATCH_RECORD_BUILDERS_H
#define ORLO_TESTS_HKMATCH_RECORD_BUILDERS_H

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "hkmatch/record_fields.h"
#include "orlo_matcher.h"

namespace orlo::testing {

// A 200-byte input record, blank until fields are set.
class InputRecord {
 public:
  InputRecord() { bytes_.fill(' '); }

  // Writes text at the start of the field, cut to its width; the rest of the
  // field stays as it was.
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
  std::string_view field(FieldRef f) const { return field_view(data(), f); }

  // The prepared input of this record.
  HKWORKREC prepared() const {
    HKWORKREC work;
    hk_pad(data(), &work, nullptr);
    return work;
  }

 private:
  std::array<char, HKINREC_SIZE> bytes_;
};

// A reference record as the unpacker leaves it: texts set, premise numbers
// parsed from lo and hi, side from the parity, street score 100.
struct ReferenceRecord {
  std::string lo;
  std::string hi;
  std::string qual1;
  std::string bldg;
  std::string refcode;
  std::string parity;

  HKBASEREC build() const {
    HKBASEREC rec;
    std::memset(&rec, 0, sizeof rec);
    copy(rec.blotext, lo);
    copy(rec.bhitext, hi);
    copy(rec.bqual1, qual1);
    copy(rec.bbldg, bldg);
    copy(rec.brefcode, refcode);
    copy(rec.bparity, parity);
    rec.blorc = hk_cvtr(rec.blotext, &rec.blonum, &rec.blotyp, &rec.blosub,
                        &rec.blosubtyp);
    rec.bhirc = hk_cvtr(rec.bhitext, &rec.bhinum, &rec.bhityp, &rec.bhisub,
                        &rec.bhisubtyp);
    rec.bside = parity == "E" ? 'E' : parity == "O" ? 'O' : 'B';
    rec.bscore = 100;
    return rec;
  }

  template <size_t N>
  static void copy(char (&dest)[N], const std::string &text) {
    const size_t n = std::min(text.size(), N - 1);
    std::memcpy(dest, text.data(), n);
    dest[n] = '\0';
  }
};

}  // namespace orlo::testing

#endif  // ORLO_TESTS_HKMATCH_RECORD_BUILDERS_H
