// Texts of the matcher's return codes, printed to standard error on request.
// Java reads the code in byte 0 of the output record; when it wants the text
// it hands the record back here. The plain meanings of the codes are served
// from the same table to bindings that cannot read the header.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "orlo_codes.h"
#include "orlo_matcher.h"

namespace orlo {
namespace {

// The message of every code that has one (the codes '2'..'8'), from the one
// table of codes. Each is blank-padded to 49 characters, and the padding is
// printed.
struct CodeMessage {
  char code;
  const char *text;
};

#define ORLO_MESSAGE_ROW(name, code, message, meaning) {code, message},
constexpr CodeMessage kRows[] = {ORLO_RETURN_CODES(ORLO_MESSAGE_ROW)};
#undef ORLO_MESSAGE_ROW

constexpr size_t kMessageWidth = 49;

constexpr bool all_padded_to_width() {
  for (const CodeMessage &row : kRows) {
    if (row.text != nullptr &&
        std::string_view(row.text).size() != kMessageWidth) {
      return false;
    }
  }
  return true;
}
static_assert(all_padded_to_width(), "messages are 49 characters wide");

// Every other byte, '0' and '1' included; not padded.
constexpr const char *kUnknownMessage = "QMV-UNKNOWN ERROR MSG";

// Byte 0 is taken as a signed character, so bytes above 127 are negative and
// match no code of the table.
const char *message_for(signed char code) {
  for (const CodeMessage &row : kRows) {
    if (row.code == code && row.text != nullptr) return row.text;
  }
  return kUnknownMessage;
}

struct CodeMeaning {
  char code;
  const char *meaning;
};

#define ORLO_RETURN_MEANING(name, code, message, meaning) {code, meaning},
#define ORLO_STATUS_MEANING(name, code, meaning) {code, meaning},
constexpr CodeMeaning kReturnMeanings[] = {
    ORLO_RETURN_CODES(ORLO_RETURN_MEANING)};
constexpr CodeMeaning kStatusMeanings[] = {
    ORLO_MATCH_STATUSES(ORLO_STATUS_MEANING)};
#undef ORLO_RETURN_MEANING
#undef ORLO_STATUS_MEANING

template <size_t N>
const char *meaning_in(const CodeMeaning (&table)[N], char code) {
  for (const CodeMeaning &row : table) {
    if (row.code == code) return row.meaning;
  }
  return nullptr;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t hk_doem(const char *rec) {
  const signed char code = rec ? static_cast<signed char>(rec[0]) : 0;
  return std::fprintf(stderr, " POSTAL-MATCH_ERROR %s\n",
                      orlo::message_for(code));
}

extern "C" const char *orlo_return_meaning(char code) {
  return orlo::meaning_in(orlo::kReturnMeanings, code);
}

extern "C" const char *orlo_status_meaning(char status) {
  return orlo::meaning_in(orlo::kStatusMeanings, status);
}
