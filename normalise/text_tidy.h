// Tidying one text that a person wrote into the upper-case Latin-1 form of
// the reference data. The C routines of orlo_normalise.h are built on this,
// and so is the line splitter, which tidies a whole line at once.
#ifndef ORLO_NORMALISE_TEXT_TIDY_H
#define ORLO_NORMALISE_TEXT_TIDY_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlo::norm {

// The upper case of one Latin-1 byte: a-z and the lower-case letters
// 0xE0-0xFE (but 0xF7, the division sign) move down by 0x20. 0xDF and 0xFF
// have no capital in Latin-1 and stay, as does every other byte.
constexpr unsigned char upper_latin1(unsigned char c) {
  if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 0x20);
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7)
    return static_cast<unsigned char>(c - 0x20);
  return c;
}

// The work areas of a tidy. A caller that keeps one and passes it to every
// call tidies without touching the heap once the areas have grown to the
// longest text seen (a refusal included: its reason is written in place).
struct TidyScratch {
  std::vector<int32_t> code_points;
  std::vector<int32_t> formed;
  std::string utf8;
};

// Tidies text into *out (Latin-1 bytes). Returns an ORLO_NORM_STATUS; on a
// fault *reason says why in one sentence (UTF-8) and *out is unspecified.
// May throw std::bad_alloc.
int32_t tidy_text(std::string_view text, std::string *out, std::string *reason,
                  TidyScratch *scratch);

// The same with work areas of its own.
inline int32_t tidy_text(std::string_view text, std::string *out,
                         std::string *reason) {
  TidyScratch scratch;
  return tidy_text(text, out, reason, &scratch);
}

}  // namespace orlo::norm

#endif  // ORLO_NORMALISE_TEXT_TIDY_H
