// The street comparison in its plain form, kept as the reference that the
// library's prepared comparison must equal score for score.
#ifndef ORLO_TESTS_SUPPORT_PLAIN_STREET_H
#define ORLO_TESTS_SUPPORT_PLAIN_STREET_H

#include <cstdint>

namespace orlo_test {

// m_street's contract: the same score, the same per-thread cache of the first
// street (keyed on its bytes alone), the same writes to the option string.
int32_t plain_street(const char *s1, const char *s2, int32_t len,
                     char *options);

}  // namespace orlo_test

#endif  // ORLO_TESTS_SUPPORT_PLAIN_STREET_H
