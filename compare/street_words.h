// The word stage of the street comparison: rules over whole words that
// accept two writings of a street the character stages rate too low.
#ifndef ORLO_COMPARE_STREET_WORDS_H
#define ORLO_COMPARE_STREET_WORDS_H

#include <cstdint>

namespace orlo {

// Longest street text the comparison looks at, in bytes.
inline constexpr int32_t kStreetWorkLen = 100;

// Scores two recoded (not yet packed) streets of len bytes (at most
// kStreetWorkLen) word by word: 90 when a compass letter, the pairing of
// equal words or initials account for both names, else 0. The texts are
// not changed.
int32_t street_word_score(const char *street1, const char *street2,
                          int32_t len);

}  // namespace orlo

#endif  // ORLO_COMPARE_STREET_WORDS_H
