// The rules of the close that decide and head the accuracy statement, shared
// with tools that run many instances and write one statement for all.
#ifndef ORLO_HKMATCH_CALLS_STATEMENT_RULES_H
#define ORLO_HKMATCH_CALLS_STATEMENT_RULES_H

#include <ctime>

#include "orlo_matcher.h"

namespace orlo {

// "YYYY/MM/DD" of the time in Coordinated Universal Time (empty when the
// time cannot be converted). out receives 11 bytes.
void format_processing_date(time_t now, char *out);

// True when a close with these options writes the accuracy statement.
bool report_wanted(const HKMCB &mcb, const char *options);

// The identity texts that head the accuracy statement: organisation,
// street address, city, country and telephone (29 characters each), and the
// product line (36 characters).
struct IdentityTexts {
  const char *organisation;
  const char *street;
  const char *city;
  const char *country_phone;
  const char *product;
};
const IdentityTexts &identity_texts();

}  // namespace orlo

#endif  // ORLO_HKMATCH_CALLS_STATEMENT_RULES_H
