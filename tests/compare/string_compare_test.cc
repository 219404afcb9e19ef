// General string comparison.
#include <gtest/gtest.h>

#include <cstdint>
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

int32_t tgstr(std::string_view a, std::string_view b, size_t len) {
  std::vector<char> fa = field(a, len);
  std::vector<char> fb = field(b, len);
  return m_tgstr(fa.data(), fb.data(), static_cast<int32_t>(len));
}

int32_t tgstr(std::string_view a, std::string_view b) {
  return tgstr(a, b, std::max(a.size(), b.size()));
}

TEST(StringIdentity, IdenticalFieldsScore100UnlessTheyBeginBlank) {
  EXPECT_EQ(tgstr("MAIN", "MAIN"), 100);
  EXPECT_EQ(tgstr("\xC9TOILE", "\xC9TOILE"), 100);
  // Blank first byte: identical after zero normalisation gives 88, and no
  // later stage finds more.
  EXPECT_EQ(tgstr(" ABC", " ABC"), 88);
}

TEST(StringIdentity, EmptyAndNegativeLengthsAreIdentical) {
  EXPECT_EQ(m_tgstr(nullptr, nullptr, 0), 100);
  EXPECT_EQ(m_tgstr("ABC", "XYZ", 0), 100);
  EXPECT_EQ(m_tgstr("ABC", "XYZ", -3), 100);
}

TEST(StringZeros, LeadingZerosOfWordsVanish) {
  // '  12 MAIN' and '12 MAIN' both pack to '12MAIN': the first prefix rule.
  EXPECT_EQ(tgstr("0012 MAIN", "12 MAIN"), 95);
  // Equal after normalisation and not beginning blank.
  EXPECT_EQ(tgstr("MAIN 007", "MAIN   7"), 98);
  // A leading zero at position 0 leaves a blank first byte: 88.
  EXPECT_EQ(tgstr("0", " "), 88);
  // A zero inside a number stays: '10MAIN' has one character more.
  EXPECT_EQ(tgstr("10 MAIN", "1  MAIN"), 96);
}

TEST(StringCharacters, OneExtraCharacter) {
  EXPECT_EQ(tgstr("AB-CD", "ABCD"), 96);
}

TEST(StringCharacters, ShortTexts) {
  // One substitution in one byte: 98 - 2 - 10; nothing later applies.
  EXPECT_EQ(tgstr("A", "B"), 86);
  // A NUL is a character: 'MAIN' begins 'MAIN\0', one longer.
  EXPECT_EQ(tgstr(std::string_view("MAIN\0", 5), "MAIN"), 95);
}

TEST(StringCharacters, VeryDifferentTextsReturnTheLowScoreAtOnce) {
  // 20 substitutions: 98 - 40 - 10 + 2.
  EXPECT_EQ(tgstr("ABCDEFGHIJKLMNOPQRST", "abcdefghijklmnopqrst"), 50);
  // 60 substitutions in high bytes go below zero and stay there.
  std::string a, b;
  for (int k = 0; k < 60; ++k) {
    a += static_cast<char>(0x80 + k);
    b += static_cast<char>(0xC0 + k);
  }
  EXPECT_EQ(tgstr(a, b), 98 - 120 - 10 + 2);
}

TEST(StringShortWords, DifferentWordCountsDropShortWordsAndCost4) {
  // 'A' goes; 'SMITH' against 'SMITH' is 98, less 4.
  EXPECT_EQ(tgstr("A SMITH", "SMITH"), 94);
  // A short last word that fills the field has no blank behind it and
  // stays: 'SMITHJ' against 'SMITH' is a prefix one longer, 95 - 4.
  EXPECT_EQ(tgstr("SMITH J", "SMITH", 7), 91);
  EXPECT_EQ(tgstr("SMITH J", "SMITH", 8), 94);
}

TEST(StringSkeletons, EqualSkeletonsScore95) {
  // Character stage 80 (four extra letters); both skeletons 'KRMZV'.
  EXPECT_EQ(tgstr("KARAMAZOV", "KRMZV"), 95);
}

TEST(StringSkeletons, SkeletonsOneApartScore90) {
  // 'KRMZV' against 'KRMSV': one differing position.
  EXPECT_EQ(tgstr("KARAMAZOV", "KRMSV"), 90);
  // 'KRMZV' against 'KRMV': one skipped character.
  EXPECT_EQ(tgstr("KARAMAZOV", "KRMV"), 90);
}

TEST(StringWords, PairedWordsScore89) {
  // The character stage gives 72; both words pair.
  EXPECT_EQ(tgstr("JOHN SMITH", "SMITH JOHN"), 89);
  // Three words, two paired.
  EXPECT_EQ(tgstr("JOHN SMITH XYZ", "SMITH JOHN ABC"), 89);
}

TEST(StringWords, UnpairedDigitWordsBlockThePairingRule) {
  EXPECT_EQ(tgstr("JOHN SMITH 123", "SMITH JOHN 124"), 70);
}

TEST(StringWords, ThreeWordsNeedExactlyTwoPairs) {
  // All three words pair, which the rule for three words does not accept.
  EXPECT_EQ(tgstr("JOHN SMITH 123", "SMITH JOHN 123"), 72);
}

TEST(StringWords, TwoCharacterWordsNeverPair) {
  EXPECT_EQ(tgstr("AB CDEF", "CDEF AB"), 76);
  EXPECT_EQ(tgstr("ABC CDEF", "CDEF ABC"), 89);
}

TEST(StringWords, InitialsMatchWords) {
  // Character stage 74; SMITH pairs and J stands for JOHN: 1 + 1 = 2 words.
  EXPECT_EQ(tgstr("J SMITH", "JOHN SMITH"), 89);
  // K is no initial of JOHN: the character stage's 72 stands.
  EXPECT_EQ(tgstr("K SMITH", "JOHN SMITH"), 72);
}

TEST(StringLongFields, OnlyTheFirst99BytesCount) {
  std::string a;
  for (int i = 0; i < 150; ++i) a += static_cast<char>('A' + i % 3);
  std::string b = a;
  b[99] = 'Z';  // the hundredth byte is replaced by a NUL in both
  b[140] = 'Z';
  EXPECT_EQ(tgstr(a, b, 150), 100);
  EXPECT_EQ(tgstr(a, b, 100), 100);
  b[98] = 'Z';
  // One substitution in 100 characters (the NUL included): 98 - 2 + 2.
  EXPECT_EQ(tgstr(a, b, 150), 98);
  EXPECT_EQ(tgstr(a.substr(0, 99), b.substr(0, 99), 99), 98);
}

}  // namespace
