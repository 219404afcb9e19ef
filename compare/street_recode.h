// The word recoding of the street comparison in one pass over table-driven
// tests: the same changes as m_recode (or m_recode_new), m_wrdrec and the
// ordinal rule, byte for byte, with the table searches cut short by the
// letters that can start or end a table word.
#ifndef ORLO_COMPARE_STREET_RECODE_H
#define ORLO_COMPARE_STREET_RECODE_H

#include <cstdint>

namespace orlo {

// Recodes the work copy s of len bytes (0..100; kRecodeRoom bytes behind it
// readable and writable, the text followed by a NUL) as m_recode (keep_types:
// m_recode_new), then m_wrdrec, then m_fixord reading the byte behind the
// field would.
void recode_street_words(char *s, int32_t len, bool keep_types);

}  // namespace orlo

#endif  // ORLO_COMPARE_STREET_RECODE_H
