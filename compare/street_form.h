// The prepared form of one street for the street comparison: everything the
// cascade needs of one side (its packed text, strict class, consonant
// skeleton and word list), made once and compared with any other street's
// form without touching either again.
#ifndef ORLO_COMPARE_STREET_FORM_H
#define ORLO_COMPARE_STREET_FORM_H

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "compare/word_recode.h"

namespace orlo {

// Longest street text the comparison looks at, in bytes.
inline constexpr int32_t kStreetWorkLen = 100;

// Bytes behind a packed street's length that the character alignment reads.
inline constexpr int32_t kLookAhead = 2;

// Most words of a street that the word stage sees.
inline constexpr int32_t kStreetWords = 29;

// A work copy of a street: the text area, zero-filled so that the text is
// followed by NULs, with room behind it for what the recoding writes behind
// the field (the widened "AV"/"BL" and its NUL) and the alignment reads.
using StreetArea = std::array<char, kStreetWorkLen + kRecodeRoom + 1>;

struct StreetOptions {
  bool fold_letters = false;  // "DI": fold Latin-1 letters to plain ones
  bool keep_types = false;    // "TYPE": recode with the short type forms
};

// Reads an option string that is already upper case.
StreetOptions parse_street_options(std::string_view upper);

// Upper-cases options in place (NULL gives no options) and reads them.
StreetOptions read_street_options(char *options);

// Copies a street into a zero-filled area and returns the length to work
// with: len clamped to 0..kStreetWorkLen; at full length the last byte is a
// NUL. Letters are folded when the options say so. street may be NULL when
// len <= 0.
int32_t copy_street(StreetArea &area, const char *street, int32_t len,
                    const StreetOptions &opt);

// A word of the word stage: its place in the form's word text.
struct StreetWord {
  uint8_t at;
  uint8_t len;
  bool digit;  // holds a digit
  bool route;  // one of RT, RD, HW
};

// Two fields of n bytes are equal; eight bytes at a time, as the fields
// compared are short and mostly differ early.
inline bool same_field(const char *a, const char *b, size_t n) {
  size_t k = 0;
  for (; k + 8 <= n; k += 8) {
    uint64_t x, y;
    std::memcpy(&x, a + k, 8);
    std::memcpy(&y, b + k, 8);
    if (x != y) return false;
  }
  for (; k < n; ++k) {
    if (a[k] != b[k]) return false;
  }
  return true;
}

// Strict class of a street: 0 ordinary, 1 strict (highway, state or county
// road, avenue, calle, a digit), 2 lettered court.
enum StrictClass : uint8_t { kOrdinary = 0, kStrict = 1, kLetteredCourt = 2 };

// A read-only view of one street's prepared form for fields of a given
// length. The bytes it points to belong to whoever made the form.
struct StreetView {
  const char *raw;        // the copied street, max(len, 1) bytes
  const char *packed;     // packed text, len + kLookAhead bytes as they stand
  const char *skeleton;   // consonant skeleton and one blank behind it
  const char *word_text;  // the text the words point into
  const StreetWord *words;
  int16_t packed_len;
  int16_t skeleton_len;  // 0 when the packed text holds a digit
  uint8_t word_count;
  uint8_t digit_words;  // words that hold a digit
  uint64_t word_bits;   // see street_words.h: what the words could pair
  StrictClass strict;
  bool blank;  // packed text blank over the whole field
};

// A street's prepared form with its own storage.
struct StreetForm {
  char raw[kStreetWorkLen];
  char packed[kStreetWorkLen + kLookAhead];
  char skeleton[kStreetWorkLen + 1];
  char word_text[kStreetWorkLen];
  StreetWord words[kStreetWords];
  int16_t packed_len = 0;
  int16_t skeleton_len = 0;
  uint8_t word_count = 0;
  uint8_t digit_words = 0;
  uint64_t word_bits = 0;
  StrictClass strict = kOrdinary;
  bool blank = false;

  StreetView view() const {
    return {raw,         packed,     skeleton,     word_text,
            words,       packed_len, skeleton_len, word_count,
            digit_words, word_bits,  strict,       blank};
  }
};

// The recoded and packed areas of a street, from which its form is made.
struct StreetAreas {
  StreetArea recoded;
  StreetArea packed;
  int32_t packed_len = 0;
  bool digit = false;  // the packed text holds a digit
};

// Normalises, recodes and packs the copied street `area` (len bytes, from
// copy_street) into `out`.
void recode_and_pack(const StreetArea &area, int32_t len,
                     const StreetOptions &opt, StreetAreas &out);

// Makes the form of a street from its areas for fields of len bytes; raw is
// the copied street (max(len, 1) bytes). The form does not point into the
// areas.
void make_form(const char *raw, const StreetAreas &areas, int32_t len,
               StreetForm &form);

// Copies, recodes, packs and forms one street in one go.
void prepare_street(const char *street, int32_t len, const StreetOptions &opt,
                    StreetForm &form);

// The street comparison's score of street 1 (a) against street 2 (b), both
// made for fields of len bytes with the same options. With only_90_up, a
// score below 90 may come out as another score below 90 (a bound on the
// lengths spares the character alignment); 90 and above are exact.
int32_t score_forms(const StreetView &a, const StreetView &b, int32_t len,
                    bool only_90_up = false);

}  // namespace orlo

#endif  // ORLO_COMPARE_STREET_FORM_H
