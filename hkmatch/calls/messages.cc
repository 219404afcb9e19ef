// Texts of the matcher's return codes, printed to standard error on request.
// Java reads the code in byte 0 of the output record; when it wants the text
// it hands the record back here.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "orlo_matcher.h"

namespace orlo {
namespace {

// Messages of the codes '2'..'8', indexed by the code minus '2'. Each is
// blank-padded to 49 characters, and the padding is printed.
constexpr char kFirstCode = '2';
constexpr char kLastCode = '8';
constexpr size_t kMessageCount = kLastCode - kFirstCode + 1;
constexpr size_t kMessageWidth = 49;

constexpr std::array<std::string_view, kMessageCount> kMessages = {{
    "QMV-INVALID DEMATCH CALL TYPE                    ",  // '2'
    "QMV-INSUFFICIENT STORAGE AVAILABLE HKMATCH       ",  // '3'
    "QMV-LEVEL2 SEEK ERROR HKMATCH                    ",  // '4'
    "QMV-BASEDATASEEK ERROR HKMATCH                   ",  // '5'
    "QMV-BAD OPEN ON BASEDATA HKMATCH                 ",  // '6'
    "QMV-BAD OPEN ON LEVEL1 HKMATCH                   ",  // '7'
    "QMV-BAD OPEN ON LEVEL2 HKMATCH                   ",  // '8'
}};

// Every other byte, '0' and '1' included; not padded.
constexpr const char *kUnknownMessage = "QMV-UNKNOWN ERROR MSG";

constexpr bool all_padded_to_width() {
  for (std::string_view m : kMessages) {
    if (m.size() != kMessageWidth) return false;
  }
  return true;
}
static_assert(all_padded_to_width(), "messages are 49 characters wide");

// Byte 0 is taken as a signed character, so bytes above 127 are negative and
// fall outside the table like any other unknown code.
const char *message_for(signed char code) {
  if (code < kFirstCode || code > kLastCode) return kUnknownMessage;
  // The texts are literals, so data() is terminated.
  return kMessages[static_cast<size_t>(code - kFirstCode)].data();
}

}  // namespace
}  // namespace orlo

extern "C" int32_t hk_doem(const char *rec) {
  const signed char code = rec ? static_cast<signed char>(rec[0]) : 0;
  return std::fprintf(stderr, " POSTAL-MATCH_ERROR %s\n",
                      orlo::message_for(code));
}
