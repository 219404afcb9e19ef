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

// One row per word rule and per way it fails.
TEST(StreetWords, Rules) {
  struct Row {
    const char *s1, *s2;
    int32_t score;
    const char *note;
  } rows[] = {
      {"N", "NORTH", 90, "compass letter"},
      {"SOUTH", "S", 90, "compass letter second"},
      {"   N  ", "  NORTH", 90, "blanks around the words"},
      {"N", "SOUTH", 0, "another compass word"},
      {"N", "NORTHERN", 0, "only the compass word"},
      {"NO", "NORTH", 0, "only a single letter"},
      {"N", "N", 0, "paired, not a compass letter"},
      {"N", "NORTH X", 0, "one word each"},
      {"N", "", 0, "no word"},
      {"LOK FU", "LOK FU", 90, "2 words, 2 paired"},
      {"LOK FU RD", "LOK FU ST", 90, "3 words, 2 paired"},
      {"LOK FU RD", "LOK FU RD", 0, "3 words need exactly 2"},
      {"A B C D", "A B C X", 90, "4 words, 3 paired"},
      {"A B C D", "A B X Y", 0, "4 words, 2 paired"},
      {"A B C D E", "A B C D X", 90, "5 words, 4 paired"},
      {"A B C D E", "A B C X Y", 0, "5 words, 3 paired"},
      {"A B C D E F", "A B C D E X", 0, "no rule for 6 words"},
      {"LOK", "LOK FU", 0, "1 paired"},
      {"12 MAIN RD", "12 MAIN ST", 90, "digit word paired"},
      {"12 MAIN RD", "14 MAIN RD", 0, "digit word unpaired"},
      {"MAIN RD 9", "MAIN RD", 0, "digit word alone"},
      {"RT 9", "HW 9", 90, "route words pair"},
      {"RD 9", "RT 9", 90, "RD is a route word"},
      {"RX 9", "RT 9", 0, "RX is none"},
      {"ST 9", "RD 9", 0, "nor is ST"},
      {"A A", "A B", 0, "each word pairs once"},
      {"A B", "B A", 90, "order within street 2 is free"},
      {"KAM-TIN RD", "KAMTIN RD", 90, "hyphen closes up"},
      {"KAM/TIN RD", "KAMTIN RD", 90, "slash closes up"},
      {"KAM TIN RD", "KAMTIN RD", 0, "a blank does not"},
      {"LOK AND FU RD", "LOK & FU ST", 90, "AND means &"},
      {"KING GEORGE RD", "KING G RD", 90, "initial for a word"},
      {"J F KENNEDY", "JOHN FITZGERALD KENNEDY", 90, "two initials"},
      {"J F", "JOHN FITZGERALD", 90, "initials only"},
      {"KENNEDY J F", "JOHN FITZGERALD KENNEDY", 0, "side by side only"},
      {"J X KENNEDY", "JOHN FITZGERALD KENNEDY", 0, "every word accounted"},
      {"KING X RD", "KING GEORGE RD", 90, "pairing decides anyway"},
      {"G", "GEORGE", 0, "one word each: no initials"},
  };
  for (const Row &r : rows) {
    EXPECT_EQ(words(r.s1, r.s2), r.score)
        << r.note << ": " << r.s1 << " / " << r.s2;
  }
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

// 29 words each: no rule for so many.
TEST(StreetWordsText, ManyWords) {
  std::string a;
  std::string b;
  for (int i = 0; i < 40; ++i) {
    a += "AB ";
    b += "AB ";
  }
  EXPECT_EQ(words(a, b, 100), 0);
}

}  // namespace
