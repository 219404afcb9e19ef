// The word stage of the street comparison: rules over whole words that
// accept two writings of a street the character stages rate too low.
#ifndef ORLO_COMPARE_STREET_WORDS_H
#define ORLO_COMPARE_STREET_WORDS_H

#include <cstdint>

#include "compare/street_form.h"

namespace orlo {

// The words of one street as the word stage reads them.
struct StreetWordList {
  StreetWord *words;  // room for kStreetWords
  uint8_t count = 0;
  uint8_t digit_words = 0;  // words that hold a digit
  // A bit per word, chosen by its bytes (two equal words set the same
  // bit), and two more for a one-letter word and for RT, RD or HW: two
  // lists whose bits do not meet can satisfy no rule but the compass one.
  uint64_t bits = 0;
};

inline constexpr uint64_t kSingleLetterBit = uint64_t{1} << 63;
inline constexpr uint64_t kRouteWordBit = uint64_t{1} << 62;

// Splits a recoded (not yet packed) street of len bytes (0..kStreetWorkLen):
// the text is cut after its last byte that is neither blank nor NUL, '-'
// and '/' are removed so that the parts of a hyphenated name close up, and
// the words (business words shortened as m_iwrdls does) are written into
// word_text (kStreetWorkLen bytes) and listed in `list`.
void split_street_words(const char *recoded, int32_t len, char *word_text,
                        StreetWordList &list);

// 90 when a compass letter, the pairing of equal words or initials account
// for both streets' words, else 0.
int32_t word_stage_score(const StreetView &a, const StreetView &b);

// The word stage on two recoded streets of len bytes (at most
// kStreetWorkLen). The texts are not changed.
int32_t street_word_score(const char *street1, const char *street2,
                          int32_t len);

}  // namespace orlo

#endif  // ORLO_COMPARE_STREET_WORDS_H
