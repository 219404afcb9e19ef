// Character alignment: errors, repeats and tail of m_chcmp1.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "orlo_compare.h"

namespace {

struct Counts {
  int32_t errors;
  int32_t tail;
  int32_t repeats;
  int32_t mismatch;
  bool operator==(const Counts &) const = default;
};

void PrintTo(const Counts &c, std::ostream *os) {
  *os << "{errors " << c.errors << ", tail " << c.tail << ", repeats "
      << c.repeats << ", mismatch " << c.mismatch << "}";
}

// Aligns two texts held the way the callers hold them: followed by two NUL
// bytes of look-ahead and nothing more (so that the address sanitizer
// catches any read further out).
Counts align(const std::string &a, const std::string &b) {
  std::vector<char> wa(a.begin(), a.end());
  std::vector<char> wb(b.begin(), b.end());
  wa.resize(a.size() + 2, '\0');
  wb.resize(b.size() + 2, '\0');
  Counts c{-1, -1, -1, -1};
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch,
           static_cast<int32_t>(a.size()), static_cast<int32_t>(b.size()),
           wa.data(), wb.data());
  return c;
}

struct AlignCase {
  const char *a;
  const char *b;
  Counts expected;
};

class Chcmp1 : public ::testing::TestWithParam<AlignCase> {};

TEST_P(Chcmp1, CountsDifferences) {
  const AlignCase &c = GetParam();
  EXPECT_EQ(align(c.a, c.b), c.expected) << c.a << " / " << c.b;
}

INSTANTIATE_TEST_SUITE_P(
    Examples, Chcmp1,
    ::testing::Values(
        AlignCase{"SMITH", "SMYTH", {1, 0, 0, 0}},
        AlignCase{"MILLER", "MILER", {0, 0, 1, 0}},
        AlignCase{"MILER", "MILLER", {0, 0, 1, 0}},
        AlignCase{"JOHNSON", "JONHSON", {1, 0, 0, 0}},  // transposition
        AlignCase{"ABC", "ABCDE", {0, 2, 0, 0}},
        AlignCase{"ABCDE", "ABC", {0, 2, 0, 0}},
        AlignCase{"KOWLOON", "KOWLOON", {0, 0, 0, 0}},
        AlignCase{"ABC", "ABD", {1, 0, 0, 1}},  // last step disagreed
        AlignCase{"ABC", "XBC", {1, 0, 0, 0}},
        // b has one extra character
        AlignCase{"ABC", "AXBC", {1, 0, 0, 0}},
        // a has one extra character
        AlignCase{"AXBC", "ABC", {1, 0, 0, 0}},
        // a swap with an extra character in front of it in a
        AlignCase{"YXYZ", "XYZ", {1, 0, 0, 0}},
        // a swap with an extra character behind it in b
        AlignCase{"YXZ", "XYXZ", {1, 0, 0, 0}},
        // a doubled letter left over at the end of either string
        AlignCase{"ABB", "AB", {0, 0, 1, 0}},
        AlignCase{"AB", "ABBB", {0, 0, 2, 0}},
        // nothing alike: one substitution per position
        AlignCase{"ABCD", "WXYZ", {4, 0, 0, 1}},
        AlignCase{"N", "NORTH", {0, 4, 0, 0}}));

TEST(Chcmp1, EmptyAndNegativeLengths) {
  Counts c{-1, -1, -1, -1};
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, 0, 5, "", "ABCDE");
  EXPECT_EQ(c, (Counts{0, 5, 0, 0}));
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, 3, 0, "ABC", "");
  EXPECT_EQ(c, (Counts{0, 3, 0, 0}));
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, -2, 4, "", "ABCD");
  EXPECT_EQ(c, (Counts{0, 4, 0, 0}));
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, 0, 0, "", "");
  EXPECT_EQ(c, (Counts{0, 0, 0, 0}));
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, -1, -7, "", "");
  EXPECT_EQ(c, (Counts{0, 0, 0, 0}));
}

// Random pairs over a small alphabet exercise every branch; the results must
// stay within the strings' sizes and the look-ahead inside its two bytes.
TEST(Chcmp1, RandomPairsStayInBounds) {
  std::mt19937 rng(20240611);
  std::uniform_int_distribution<int> length(0, 12);
  std::uniform_int_distribution<int> letter(0, 3);
  for (int round = 0; round < 20000; ++round) {
    std::string a(static_cast<size_t>(length(rng)), ' ');
    std::string b(static_cast<size_t>(length(rng)), ' ');
    for (char &ch : a) ch = static_cast<char>('A' + letter(rng));
    for (char &ch : b) ch = static_cast<char>('A' + letter(rng));
    const Counts c = align(a, b);
    const int32_t total = static_cast<int32_t>(a.size() + b.size());
    const int32_t longer = static_cast<int32_t>(std::max(a.size(), b.size()));
    ASSERT_GE(c.errors, 0);
    ASSERT_GE(c.repeats, 0);
    ASSERT_LE(c.errors + c.repeats, total) << a << " / " << b;
    ASSERT_GE(c.tail, 0);
    ASSERT_LE(c.tail, longer);
    if (a == b) {
      ASSERT_EQ(c, (Counts{0, 0, 0, 0}));
    }
  }
}

}  // namespace
