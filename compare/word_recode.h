// Internal entry points of the word recoding helpers, for the street
// comparison's own work copies.
#ifndef ORLO_COMPARE_WORD_RECODE_H
#define ORLO_COMPARE_WORD_RECODE_H

#include <cstdint>

namespace orlo {

// Bytes behind a field that m_recode and m_recode_new may write (the widened
// text and its NUL) and that m_wrdrec reads looking for the text's NUL.
inline constexpr int32_t kRecodeRoom = 3;

// m_fixord over a field of len bytes. With byte_behind_readable, the byte
// behind the field takes part in the test for the blank that must follow a
// suffix (a work copy whose text widening pushed past the field); without,
// a suffix that ends the field is kept and nothing behind it is read.
void drop_ordinals(char *field, int32_t len, bool byte_behind_readable);

}  // namespace orlo

#endif  // ORLO_COMPARE_WORD_RECODE_H
