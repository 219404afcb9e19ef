// Tests of hk_doem, the return-code messages on standard error.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "orlo_matcher.h"

namespace {

constexpr const char *kPrefix = " POSTAL-MATCH_ERROR ";
constexpr const char *kUnknownLine =
    " POSTAL-MATCH_ERROR QMV-UNKNOWN ERROR MSG\n";

struct Printed {
  std::string text;
  int32_t result;
};

// Calls hk_doem on a 300-byte output record whose byte 0 is code and returns
// what reached standard error.
Printed print_code(char code) {
  std::array<char, 300> rec;
  rec.fill(' ');
  rec[0] = code;
  testing::internal::CaptureStderr();
  const int32_t result = hk_doem(rec.data());
  return {testing::internal::GetCapturedStderr(), result};
}

// The expected line: the message, blank-padded to 49 characters.
std::string padded_line(const std::string &message) {
  return kPrefix + message + std::string(49 - message.size(), ' ') + "\n";
}

TEST(ErrorMessages, EachCodeTwoToEightPrintsItsPaddedMessage) {
  const struct {
    char code;
    const char *message;
  } table[] = {
      {'2', "QMV-INVALID DEMATCH CALL TYPE"},
      {'3', "QMV-INSUFFICIENT STORAGE AVAILABLE HKMATCH"},
      {'4', "QMV-LEVEL2 SEEK ERROR HKMATCH"},
      {'5', "QMV-BASEDATASEEK ERROR HKMATCH"},
      {'6', "QMV-BAD OPEN ON BASEDATA HKMATCH"},
      {'7', "QMV-BAD OPEN ON LEVEL1 HKMATCH"},
      {'8', "QMV-BAD OPEN ON LEVEL2 HKMATCH"},
  };
  for (const auto &row : table) {
    const Printed p = print_code(row.code);
    EXPECT_EQ(p.text, padded_line(row.message)) << "code " << row.code;
    EXPECT_EQ(p.result, 70) << "code " << row.code;
  }
}

// Other codes, and bytes above 127 ('2' + 128 is negative as a signed byte,
// not a code), print the unpadded default.
TEST(ErrorMessages, OtherCodesPrintTheUnpaddedDefault) {
  for (char code : {'0', '1', '9', '/', 'A', 'L', 'X', '\0', ' ', '\x80',
                    '\xB2', '\xB6', '\xFF'}) {
    const Printed p = print_code(code);
    EXPECT_EQ(p.text, kUnknownLine) << "code " << static_cast<int>(code);
    EXPECT_EQ(p.result, static_cast<int32_t>(std::strlen(kUnknownLine)));
  }
}

TEST(ErrorMessages, OnlyByteZeroIsReadAndTheRecordIsNotWritten) {
  std::array<char, 300> rec;
  for (size_t i = 0; i < rec.size(); ++i)
    rec[i] = static_cast<char>('2' + i % 7);
  rec[0] = 'A';
  const std::array<char, 300> before = rec;
  testing::internal::CaptureStderr();
  hk_doem(rec.data());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), kUnknownLine);
  EXPECT_EQ(rec, before);
}

}  // namespace
