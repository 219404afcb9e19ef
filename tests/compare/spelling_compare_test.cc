// Spelling comparison.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "orlo_compare.h"

namespace {

// The text blank-padded to len bytes, in a heap block of exactly len bytes so
// that the sanitizer build catches any read past the field.
std::vector<char> field(std::string_view text, size_t len) {
  std::vector<char> f(len, ' ');
  text.copy(f.data(), std::min(text.size(), len));
  return f;
}

int32_t spell(std::string_view a, std::string_view b, size_t len,
              const char *options = nullptr) {
  std::vector<char> fa = field(a, len);
  std::vector<char> fb = field(b, len);
  return m_spllng(fa.data(), fb.data(), static_cast<int32_t>(len), options);
}

int32_t spell(std::string_view a, std::string_view b,
              const char *options = nullptr) {
  return spell(a, b, std::max(a.size(), b.size()), options);
}

TEST(SpellingBlankFields, BothBlankScoreZeroOneBlankScoresOne) {
  EXPECT_EQ(spell("", "", 6), 0);
  EXPECT_EQ(spell("      ", "SMITH ", 6), 1);
  EXPECT_EQ(spell("SMITH", "     ", 5), 1);
  EXPECT_EQ(spell("X", " ", 1), 1);
  EXPECT_EQ(spell(" ", "X", 1), 1);
}

TEST(SpellingBlankFields, EmptyAndNegativeLengthsAreBlank) {
  EXPECT_EQ(m_spllng(nullptr, nullptr, 0, nullptr), 0);
  EXPECT_EQ(m_spllng("SMITH", "JONES", 0, "DI"), 0);
  EXPECT_EQ(m_spllng("SMITH", "JONES", -5, nullptr), 0);
}

TEST(SpellingIdentity, EqualFieldsScore100) {
  EXPECT_EQ(spell("SMITH", "SMITH"), 100);
  EXPECT_EQ(spell(" SMITH", " SMITH"), 100);
  EXPECT_EQ(spell(std::string_view("A\0B", 3), std::string_view("A\0B", 3)),
            100);
  EXPECT_EQ(spell("\xC4\xFF", "\xC4\xFF"), 100);
}

TEST(SpellingCharacters, WorkedExamples) {
  // One substitution: 100 - 2.
  EXPECT_EQ(spell("SMITH", "SMYTH", 5), 98);
  // Tail of 4: 100 - 10, and 2 * (0 + 4) > 4 costs 25.
  EXPECT_EQ(spell("JOHN", "JOHNSTON", 8), 65);
  // The same, longer than eight characters: one point back.
  EXPECT_EQ(spell("SMITH", "SMYTH", 9), 98);
  EXPECT_EQ(spell("SMITHSONS", "SMYTHSONS"), 99);
}

TEST(SpellingCharacters, TailEndingOnDisagreementCostsMore) {
  // 'CD-X' against 'AB-CD': errors 3, tail 1 ending on a disagreement:
  // 100 - 6 - 1 = 93, - 25 (8 > 4), - (3 + 2) = 63.
  EXPECT_EQ(spell("AB-CD", "CD-X"), 63);
  // A trailing extra character after full agreement: 100 - 1.
  EXPECT_EQ(spell("JONES-", "JONES"), 99);
}

TEST(SpellingCharacters, NeverBelowTwo) {
  // Eight substitutions still score: 100 - 16 - 25.
  EXPECT_EQ(spell("ABCDEFGH", "STUVWXYZ"), 59);
  // A tail of 19 would take the score far below zero.
  EXPECT_EQ(spell("A", std::string(20, 'Z')), 2);
}

TEST(SpellingCharacters, HighBytesAndNulsAreOrdinaryCharacters) {
  // A NUL does not end the text: one substitution in three bytes, and
  // 2 * 2 >= 3 costs 10.
  EXPECT_EQ(spell(std::string_view("A\0B", 3), "A B"), 88);
  EXPECT_EQ(spell("M\xDCLLER", "M\xDELLER"), 98);
}

TEST(SpellingHyphens, OneHalfOfAHyphenatedNameScores96) {
  EXPECT_EQ(spell("SMITH-JONES", "JONES"), 96);
  EXPECT_EQ(spell("SMITH-JONES", "SMITH"), 96);
  EXPECT_EQ(spell("JONES", "SMITH-JONES"), 96);
  // The other name only has to begin with the half.
  EXPECT_EQ(spell("SMITH-JONES", "SMITHSON"), 96);
  EXPECT_EQ(spell("AB-CD", "CDX"), 96);
}

TEST(SpellingHyphens, HyphenAtEitherEndOrOnBothSidesSplitsNothing) {
  EXPECT_EQ(spell("-JONES", "JONES"), 98);  // one extra character
  EXPECT_EQ(spell("JONES-", "JONES"), 99);
  // Both hyphenated: 'CD-X' begins with the part after A's hyphen, but the
  // character comparison decides.
  EXPECT_EQ(spell("AB-CD", "CD-X"), 63);
}

TEST(SpellingOptions, SquishDropsApostrophesAndBlanks) {
  EXPECT_EQ(spell("O'NEIL", "ONEIL", "SQUISH"), 100);
  EXPECT_EQ(spell("O'NEIL", "ONEIL"), 98);
  EXPECT_EQ(spell("VAN DER BERG", "VANDERBERG", "SQUISH"), 100);
  EXPECT_EQ(spell("O'NEIL", "ONEIL", "DI;SQUISH"), 100);
  EXPECT_EQ(spell("O'NEIL", "ONEIL", "X;SQUISH"), 100);
  // Read as written: neither lower case nor a keyword inside a word counts.
  EXPECT_EQ(spell("O'NEIL", "ONEIL", "squish"), 98);
  EXPECT_EQ(spell("O'NEIL", "ONEIL", "XSQUISH"), 98);
  EXPECT_EQ(spell("O'NEIL", "ONEIL", ""), 98);
}

TEST(SpellingOptions, DiFoldsLatin1Capitals) {
  EXPECT_EQ(spell("M\xDCLLER", "MUELLER", 7, "DI"), 100);
  EXPECT_EQ(spell("\xC5S", "AAS", 3, "SQUISH;DI"), 100);
  EXPECT_EQ(spell("STRA\xDF"
                  "E",
                  "STRASSE", 7, "DI"),
            100);
  EXPECT_LT(spell("M\xDCLLER", "MUELLER", 7, nullptr), 100);
  EXPECT_LT(spell("M\xDCLLER", "MUELLER", 7, "di"), 100);
  // The fold keeps the field's length: the R is pushed out of six bytes.
  EXPECT_EQ(spell("M\xDCLLER", "MUELLE", 6, "DI"), 100);
}

TEST(SpellingOptions, DiAndSquishApplyInOrder) {
  // Folded first ("OE'NEIL"), then squished ("OENEIL").
  EXPECT_EQ(spell("\xD6'NEIL", "OENEIL", 8, "DI;SQUISH"), 100);
  EXPECT_LT(spell("\xD6'NEIL", "OENEIL", 8, "SQUISH"), 100);
  EXPECT_LT(spell("\xD6'NEIL", "OENEIL", 8, "DI"), 100);
}

TEST(SpellingLongFields, OptionsAreIgnoredAbove100) {
  EXPECT_EQ(spell("O'NEIL", "ONEIL", 100, "SQUISH"), 100);
  EXPECT_EQ(spell("O'NEIL", "ONEIL", 101, "SQUISH"), 98);
  EXPECT_EQ(spell("M\xDCLLER", "MUELLER", 150, "DI"),
            spell("M\xDCLLER", "MUELLER", 150, nullptr));
}

TEST(SpellingLongFields, FullFieldsAtAndAroundTheWorkAreaSize) {
  for (size_t len : {size_t{99}, size_t{100}, size_t{101}, size_t{250}}) {
    std::string a;
    for (size_t i = 0; i < len; ++i) a += static_cast<char>('A' + i % 3);
    std::string b = a;
    b.back() = 'Z';
    // One substitution in the last byte, plus one for a long name.
    EXPECT_EQ(spell(a, b), 99) << len;
    EXPECT_EQ(spell(a, a), 100) << len;
    // A tail of one costs one point, which the long name wins back.
    EXPECT_EQ(spell(a, a.substr(0, len - 1)), 100) << len;
  }
}

// Beyond 100 bytes the fields are compared where they stand, without the
// work areas; the score must not depend on which way was taken. Blank
// padding is neutral, so a field padded past 100 bytes scores as the short
// one does.
TEST(SpellingLongFields, PaddingPast100ScoresAsTheShortField) {
  std::mt19937 rng(20240611);
  const std::string_view alphabet("AABBE -'\0\xFF", 10);
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
