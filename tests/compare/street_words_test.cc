// The word stage of the street comparison, on recoded (unpacked) streets.
#include "compare/street_words.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "compare/work_copy.h"

namespace {

using orlo_test::WorkCopy;

int32_t words(std::string_view s1, std::string_view s2, size_t len = 31) {
  WorkCopy a(s1, len);
  WorkCopy b(s2, len);
  const std::string before_a = a.field();
  const std::string before_b = b.field();
  const int32_t score =
      orlo::street_word_score(a.data(), b.data(), static_cast<int32_t>(len));
  EXPECT_EQ(a.field(), before_a);  // the caller's copies stay as they were
  EXPECT_EQ(b.field(), before_b);
  return score;
}

TEST(StreetWordsCompass, LetterForCompassWord) {
  EXPECT_EQ(words("N", "NORTH"), 90);
  EXPECT_EQ(words("SOUTH", "S"), 90);
  EXPECT_EQ(words("E", "EAST"), 90);
  EXPECT_EQ(words("W", "WEST"), 90);
  EXPECT_EQ(words("   N  ", "  NORTH"), 90);
}

TEST(StreetWordsCompass, OnlyTheMatchingWordAndOnlyOneWordEach) {
  EXPECT_EQ(words("N", "SOUTH"), 0);
  EXPECT_EQ(words("N", "NORTHERN"), 0);
  EXPECT_EQ(words("NO", "NORTH"), 0);
  EXPECT_EQ(words("N", "N"), 0);  // paired, not a compass letter
  EXPECT_EQ(words("N", "NORTH X"), 0);
  EXPECT_EQ(words("N", ""), 0);
}

TEST(StreetWordsPairing, EnoughWordsPaired) {
  EXPECT_EQ(words("LOK FU", "LOK FU"), 90);        // W 2, paired 2
  EXPECT_EQ(words("LOK FU RD", "LOK FU ST"), 90);  // W 3, paired 2
  EXPECT_EQ(words("LOK FU RD", "LOK FU RD"), 0);   // W 3 needs exactly 2
  EXPECT_EQ(words("A B C D", "A B C X"), 90);      // W 4, paired 3
  EXPECT_EQ(words("A B C D", "A B X Y"), 0);
  EXPECT_EQ(words("A B C D E", "A B C D X"), 90);  // W 5, paired 4
  EXPECT_EQ(words("A B C D E", "A B C X Y"), 0);
  EXPECT_EQ(words("A B C D E F", "A B C D E X"), 0);  // W 6: no rule
  EXPECT_EQ(words("LOK", "LOK FU"), 0);               // paired 1
}

TEST(StreetWordsPairing, DigitsMustPairWithTheirEquals) {
  EXPECT_EQ(words("12 MAIN RD", "12 MAIN ST"), 90);
  EXPECT_EQ(words("12 MAIN RD", "14 MAIN RD"), 0);
  EXPECT_EQ(words("MAIN RD 9", "MAIN RD"), 0);
}

TEST(StreetWordsPairing, RoadAbbreviationsPairWithEachOther) {
  EXPECT_EQ(words("RT 9", "HW 9"), 90);
  EXPECT_EQ(words("RD 9", "RT 9"), 90);
  EXPECT_EQ(words("RX 9", "RT 9"), 0);
  EXPECT_EQ(words("ST 9", "RD 9"), 0);
}

TEST(StreetWordsPairing, GreedyInOrderAndEachWordOnce) {
  // The first A pairs with the only A; the second A finds none.
  EXPECT_EQ(words("A A", "A B"), 0);
  EXPECT_EQ(words("A B", "B A"), 90);  // order within street 2 is free
}

TEST(StreetWordsPairing, HyphensAndSlashesCloseUp) {
  EXPECT_EQ(words("KAM-TIN RD", "KAMTIN RD"), 90);
  EXPECT_EQ(words("KAM/TIN RD", "KAMTIN RD"), 90);
  EXPECT_EQ(words("KAM TIN RD", "KAMTIN RD"), 0);
}

TEST(StreetWordsPairing, AndMeansAmpersand) {
  EXPECT_EQ(words("LOK AND FU RD", "LOK & FU ST"), 90);
  EXPECT_EQ(words("LOK + FU RD", "LOK & FU ST"), 90);
}

TEST(StreetWordsInitials, InitialsStandForWords) {
  EXPECT_EQ(words("KING GEORGE RD", "KING G RD"), 90);
  EXPECT_EQ(words("J F KENNEDY", "JOHN FITZGERALD KENNEDY"), 90);
  EXPECT_EQ(words("J F", "JOHN FITZGERALD"), 90);
  // Initials are compared side by side, not searched for.
  EXPECT_EQ(words("KENNEDY J F", "JOHN FITZGERALD KENNEDY"), 0);
  // Every word must be paired or stand for its initial.
  EXPECT_EQ(words("J X KENNEDY", "JOHN FITZGERALD KENNEDY"), 0);
  // With two words paired out of three the pairing rule decides anyway.
  EXPECT_EQ(words("KING X RD", "KING GEORGE RD"), 90);
  // A single word each is no case for initials.
  EXPECT_EQ(words("G", "GEORGE"), 0);
}

TEST(StreetWordsText, CutAtLastTextAndLimitedToLength) {
  // Text behind the length is not read.
  EXPECT_EQ(words("N", "NORTHX", 5), 90);
  // NUL bytes after the text are cut off like blanks.
  std::string a("N\0\0", 3);
  EXPECT_EQ(words(a, "NORTH", 8), 90);
  EXPECT_EQ(words("", "", 31), 0);
  EXPECT_EQ(orlo::street_word_score("N", "S", 0), 0);
}

TEST(StreetWordsText, ManyWords) {
  std::string a;
  std::string b;
  for (int i = 0; i < 40; ++i) {
    a += "AB ";
    b += "AB ";
  }
  EXPECT_EQ(words(a, b, 100), 0);  // 29 words each: no rule for so many
}

}  // namespace
