// Character alignment: errors, repeats and tail of m_chcmp1.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
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

// One row per branch of the alignment.
TEST(Chcmp1, CountsEachKindOfDifference) {
  struct Row {
    const char *a, *b;
    Counts expected;
    const char *note;
  } rows[] = {
      {"KOWLOON", "KOWLOON", {0, 0, 0, 0}, "equal"},
      {"SMITH", "SMYTH", {1, 0, 0, 0}, "substitution"},
      {"ABC", "XBC", {1, 0, 0, 0}, "substitution first"},
      {"ABC", "ABD", {1, 0, 0, 1}, "the last step disagreed"},
      {"ABCD", "WXYZ", {4, 0, 0, 1}, "one substitution per position"},
      {"MILLER", "MILER", {0, 0, 1, 0}, "doubled letter in a"},
      {"MILER", "MILLER", {0, 0, 1, 0}, "doubled letter in b"},
      {"ABB", "AB", {0, 0, 1, 0}, "doubled letter left over in a"},
      {"AB", "ABBB", {0, 0, 2, 0}, "doubled letters left over in b"},
      {"JOHNSON", "JONHSON", {1, 0, 0, 0}, "transposition"},
      {"ABC", "AXBC", {1, 0, 0, 0}, "extra character in b"},
      {"AXBC", "ABC", {1, 0, 0, 0}, "extra character in a"},
      {"YXYZ", "XYZ", {1, 0, 0, 0}, "swap after an extra character in a"},
      {"YXZ", "XYXZ", {1, 0, 0, 0}, "swap before an extra character in b"},
      {"ABC", "ABCDE", {0, 2, 0, 0}, "tail in b"},
      {"ABCDE", "ABC", {0, 2, 0, 0}, "tail in a"},
      {"N", "NORTH", {0, 4, 0, 0}, "one letter against a word"},
      {"", "ABCDE", {0, 5, 0, 0}, "a empty: all of b is tail"},
      {"ABC", "", {0, 3, 0, 0}, "b empty: all of a is tail"},
      {"", "", {0, 0, 0, 0}, "both empty"},
  };
  for (const Row &r : rows) {
    EXPECT_EQ(align(r.a, r.b), r.expected) << r.note;
  }
}

// A negative length counts as empty.
TEST(Chcmp1, NegativeLengths) {
  Counts c{-1, -1, -1, -1};
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, -2, 4, "", "ABCD");
  EXPECT_EQ(c, (Counts{0, 4, 0, 0}));
  m_chcmp1(&c.errors, &c.tail, &c.repeats, &c.mismatch, -1, -7, "", "");
  EXPECT_EQ(c, (Counts{0, 0, 0, 0}));
}

}  // namespace
