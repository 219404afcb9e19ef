// General string comparison.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using namespace std::literals;

// len 0: the longer of the two texts.
int32_t tgstr(std::string_view a, std::string_view b, size_t len = 0) {
  if (len == 0) len = std::max(a.size(), b.size());
  std::vector<char> fa = orlo_test::exact_field(a, len);
  std::vector<char> fb = orlo_test::exact_field(b, len);
  return m_tgstr(fa.data(), fb.data(), static_cast<int32_t>(len));
}

struct Row {
  std::string_view a, b;
  size_t len;
  int32_t score;
  const char *note;
};

// One row per stage of the cascade and its thresholds.
constexpr Row kRows[] = {
    {"MAIN", "MAIN", 0, 100, "raw identity"},
    {"\xC9TOILE", "\xC9TOILE", 0, 100, "raw identity, high byte"},
    {" ABC", " ABC", 0, 88, "identical but beginning blank"},
    {"0", " ", 0, 88, "a leading zero leaves a blank first byte"},
    {"MAIN 007", "MAIN   7", 0, 98, "leading zeros of words vanish"},
    {"0012 MAIN", "12 MAIN", 0, 95, "packed prefix one longer"},
    {"10 MAIN", "1  MAIN", 0, 96, "a zero inside a number stays"},
    {"AB-CD", "ABCD", 0, 96, "one extra character"},
    {"A", "B", 0, 86, "one byte substitution: 98 - 2 - 10"},
    {"MAIN\0"sv, "MAIN", 0, 95, "a NUL is a character"},
    {"ABCDEFGHIJKLMNOPQRST", "abcdefghijklmnopqrst", 0, 50,
     "below 66: the character score is final"},
    {"A SMITH", "SMITH", 0, 94, "short word dropped, 4 off"},
    {"SMITH J", "SMITH", 7, 91, "a short word filling the field stays"},
    {"SMITH J", "SMITH", 8, 94, "with a blank behind it it goes"},
    {"KARAMAZOV", "KRMZV", 0, 95, "equal skeletons"},
    {"KARAMAZOV", "KRMSV", 0, 90, "skeletons one position apart"},
    {"KARAMAZOV", "KRMV", 0, 90, "skeleton one character shorter"},
    {"JOHN SMITH", "SMITH JOHN", 0, 89, "all words paired"},
    {"JOHN SMITH XYZ", "SMITH JOHN ABC", 0, 89, "two of three paired"},
    {"JOHN SMITH 123", "SMITH JOHN 123", 0, 72, "three of three: no rule"},
    {"JOHN SMITH 123", "SMITH JOHN 124", 0, 70, "unpaired digit words"},
    {"ALPHA BRAVO CHARLIE DELTA", "ALPHA BRAVO CHARLIE ECHOS", 0, 89,
     "four words need three pairs"},
    {"ALPHA BRAVO CHARLIE DELTA", "ALPHA BRAVO XYZQW ECHOS", 0, 68,
     "two pairs of four are not enough"},
    {"AB CDEF", "CDEF AB", 0, 76, "two-character words never pair"},
    {"ABC CDEF", "CDEF ABC", 0, 89, "three-character words do"},
    {"J SMITH", "JOHN SMITH", 0, 89, "initial stands for a word"},
    {"K SMITH", "JOHN SMITH", 0, 72, "K is no initial of JOHN"},
};

TEST(String, CascadeRules) {
  for (const Row &r : kRows) {
    SCOPED_TRACE(r.note);
    EXPECT_EQ(tgstr(r.a, r.b, r.len), r.score);
  }
}

TEST(String, EmptyAndNegativeLengthsAreIdentical) {
  EXPECT_EQ(m_tgstr(nullptr, nullptr, 0), 100);
  EXPECT_EQ(m_tgstr("ABC", "XYZ", 0), 100);
  EXPECT_EQ(m_tgstr("ABC", "XYZ", -3), 100);
}

// 60 substitutions in high bytes take the score below zero, and it stays
// there (no floor, no wrap).
TEST(String, VeryDifferentTextsGoBelowZero) {
  std::string a, b;
  for (int k = 0; k < 60; ++k) {
    a += static_cast<char>(0x80 + k);
    b += static_cast<char>(0xC0 + k);
  }
  EXPECT_EQ(tgstr(a, b), 98 - 120 - 10 + 2);
}

// Only 99 bytes count: the hundredth becomes a NUL in both.
TEST(String, OnlyTheFirst99BytesCount) {
  std::string a;
  for (int i = 0; i < 150; ++i) a += static_cast<char>('A' + i % 3);
  std::string b = a;
  b[99] = 'Z';
  b[140] = 'Z';
  EXPECT_EQ(tgstr(a, b, 150), 100);
  EXPECT_EQ(tgstr(a, b, 100), 100);
  b[98] = 'Z';
  // One substitution in 100 characters (the NUL included): 98 - 2 + 2.
  EXPECT_EQ(tgstr(a, b, 150), 98);
  EXPECT_EQ(tgstr(a.substr(0, 99), b.substr(0, 99), 99), 98);
}

}  // namespace
