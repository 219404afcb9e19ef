// Spelling comparison.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using namespace std::literals;

// len 0: the longer of the two texts.
int32_t spell(std::string_view a, std::string_view b, size_t len = 0,
              const char *options = nullptr) {
  if (len == 0) len = std::max(a.size(), b.size());
  std::vector<char> fa = orlo_test::exact_field(a, len);
  std::vector<char> fb = orlo_test::exact_field(b, len);
  return m_spllng(fa.data(), fb.data(), static_cast<int32_t>(len), options);
}

struct Row {
  std::string_view a, b;
  size_t len;
  const char *options;
  int32_t score;
  const char *note;
};

// One row per rule of the score: blanks, identity, the weights of errors,
// tails and long names, the floor, hyphenated names and the options.
constexpr Row kRows[] = {
    {"", "", 6, nullptr, 0, "both blank"},
    {"", "SMITH", 6, nullptr, 1, "one blank"},
    {"X", " ", 1, nullptr, 1, "one blank, one byte"},
    {" SMITH", " SMITH", 0, nullptr, 100, "identity, leading blank"},
    {"A\0B"sv, "A\0B"sv, 0, nullptr, 100, "identity with a NUL"},
    {"SMITH", "SMYTH", 5, nullptr, 98, "substitution: 2"},
    {"SMITH", "SMYTH", 9, nullptr, 98, "padding does not make a long name"},
    {"SMITHSONS", "SMYTHSONS", 0, nullptr, 99, "long name: one back"},
    {"JOHN", "JOHNSTON", 8, nullptr, 65, "tail of 4: 10, and 25"},
    {"AB-CD", "CD-X", 0, nullptr, 63, "tail ending on a disagreement"},
    {"JONES-", "JONES", 0, nullptr, 99, "tail after full agreement"},
    {"ABCDEFGH", "STUVWXYZ", 0, nullptr, 59, "eight substitutions"},
    {"A", "ZZZZZZZZZZZZZZZZZZZZ", 0, nullptr, 2, "never below 2"},
    {"A\0B"sv, "A B", 0, nullptr, 88, "a NUL is a character"},
    {"M\xDCLLER", "M\xDELLER", 0, nullptr, 98, "high bytes are characters"},
    {"SMITH-JONES", "JONES", 0, nullptr, 96, "half after the hyphen"},
    {"SMITH-JONES", "SMITH", 0, nullptr, 96, "half before the hyphen"},
    {"JONES", "SMITH-JONES", 0, nullptr, 96, "second name hyphenated"},
    {"SMITH-JONES", "SMITHSON", 0, nullptr, 96, "the half begins the other"},
    {"-JONES", "JONES", 0, nullptr, 98, "hyphen at the start splits nothing"},
    {"O'NEIL", "ONEIL", 0, nullptr, 98, "apostrophe counts by default"},
    {"O'NEIL", "ONEIL", 0, "SQUISH", 100, "SQUISH drops apostrophes"},
    {"VAN DER BERG", "VANDERBERG", 0, "SQUISH", 100, "and blanks"},
    {"O'NEIL", "ONEIL", 0, "DI;SQUISH", 100, "keyword after a semicolon"},
    {"O'NEIL", "ONEIL", 0, "squish", 98, "keywords are upper case"},
    {"O'NEIL", "ONEIL", 0, "XSQUISH", 98, "keyword inside a word"},
    {"M\xDCLLER", "MUELLER", 7, nullptr, 85, "no folding by default"},
    {"M\xDCLLER", "MUELLER", 7, "DI", 100, "DI folds Latin-1 capitals"},
    {"M\xDCLLER", "MUELLER", 7, "di", 85, "di is no DI"},
    {"\xC5S", "AAS", 3, "SQUISH;DI", 100, "DI after a semicolon"},
    {"M\xDCLLER", "MUELLE", 6, "DI", 100, "folding pushes R out of 6 bytes"},
    {"\xD6'NEIL", "OENEIL", 8, "DI;SQUISH", 100, "folded, then squished"},
    {"\xD6'NEIL", "OENEIL", 8, "SQUISH", 86, "squished only"},
    {"O'NEIL", "ONEIL", 100, "SQUISH", 100, "options up to 100 bytes"},
    {"O'NEIL", "ONEIL", 101, "SQUISH", 98, "ignored from 101 bytes"},
    {"M\xDCLLER", "MUELLER", 150, "DI", 85, "DI ignored too"},
};

TEST(Spelling, ScoreRules) {
  for (const Row &r : kRows) {
    SCOPED_TRACE(r.note);
    EXPECT_EQ(spell(r.a, r.b, r.len, r.options), r.score);
  }
}

TEST(Spelling, EmptyAndNegativeLengthsAreBlank) {
  EXPECT_EQ(m_spllng(nullptr, nullptr, 0, nullptr), 0);
  EXPECT_EQ(m_spllng("SMITH", "JONES", 0, "DI"), 0);
  EXPECT_EQ(m_spllng("SMITH", "JONES", -5, nullptr), 0);
}

// Full fields at and around the work area size: the look-ahead and the
// in-place path stay inside the caller's field.
TEST(Spelling, FullFieldsAroundTheWorkAreaSize) {
  for (size_t len : {size_t{99}, size_t{100}, size_t{101}, size_t{250}}) {
    std::string a;
    for (size_t i = 0; i < len; ++i) a += static_cast<char>('A' + i % 3);
    std::string b = a;
    b.back() = 'Z';
    EXPECT_EQ(spell(a, b), 99) << len;  // a substitution, one back
    EXPECT_EQ(spell(a, a), 100) << len;
    EXPECT_EQ(spell(a, a.substr(0, len - 1)), 100) << len;  // tail of one
  }
}

// Beyond 100 bytes the fields are compared where they stand, without the
// work areas; blank padding is neutral, so a field padded past 100 bytes
// must score as the short one does.
TEST(Spelling, PaddingPast100ScoresAsTheShortField) {
  std::mt19937 rng(20240611);
  const std::string_view alphabet = "AABBE -'\0\xFF"sv;
  std::uniform_int_distribution<size_t> pick(0, alphabet.size() - 1);
  std::uniform_int_distribution<size_t> length(1, 12);
  for (int round = 0; round < 4000; ++round) {
    std::string a, b;
    for (size_t n = length(rng); n > 0; --n) a += alphabet[pick(rng)];
    for (size_t n = length(rng); n > 0; --n) b += alphabet[pick(rng)];
    size_t len = std::max(a.size(), b.size());
    ASSERT_EQ(spell(a, b, len), spell(a, b, len + 120))
        << '"' << a << "\" / \"" << b << '"';
  }
}

}  // namespace
