// Ordinal suffixes, street-type abbreviation and first/second word recoding.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "compare/word_tables.h"
#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::padded;
using orlo_test::WorkCopy;
using Routine = void (*)(char *, int32_t);

// Runs the routine over text in a work copy of the given width; returns the
// field without trailing blanks and checks that nothing moved behind it.
std::string run(Routine routine, std::string_view text, size_t width) {
  WorkCopy f(text, width);
  routine(f.data(), f.len());
  EXPECT_TRUE(f.tail_intact()) << text;
  return f.text();
}

// --- m_fixord ----------------------------------------------------------------

TEST(Fixord, DropsSuffixesAfterDigits) {
  EXPECT_EQ(run(m_fixord, "21ST ST", 31), "21   ST");
  EXPECT_EQ(run(m_fixord, "2ND AVE", 31), "2   AVE");
  EXPECT_EQ(run(m_fixord, "3RD 4TH X", 31), "3   4   X");
  EXPECT_EQ(run(m_fixord, "21ST", 31), "21");
  EXPECT_EQ(run(m_fixord, "A1ST B", 31), "A1   B");
}

TEST(Fixord, KeepsSuffixesNotAfterADigit) {
  EXPECT_EQ(run(m_fixord, "STREET", 31), "STREET");
  EXPECT_EQ(run(m_fixord, "EAST ST 9", 31), "EAST ST 9");
  EXPECT_EQ(run(m_fixord, "1 ST X", 31), "1 ST X");
  EXPECT_EQ(run(m_fixord, "1STX Y", 31), "1STX Y");  // no blank behind
}

TEST(Fixord, SuffixEndingAFullFieldIsKept) {
  EXPECT_EQ(run(m_fixord, "1ST", 3), "1ST");
  EXPECT_EQ(run(m_fixord, "12 42ND", 7), "12 42ND");
  EXPECT_EQ(run(m_fixord, "1ST", 4), "1");
}

TEST(Fixord, FrenchOrdinal) {
  EXPECT_EQ(run(m_fixord, "RUE 3IEME", 31), "RUE 3");
  EXPECT_EQ(run(m_fixord, "RUE 3IEME", 9), "RUE 3");
  // The ending must lie past position 3.
  EXPECT_EQ(run(m_fixord, "IEME", 8), "IEME");
  // Only a final IEME goes, and then nothing else changes.
  EXPECT_EQ(run(m_fixord, "1ST 2IEME", 31), "1ST 2");
}

TEST(Fixord, DegenerateFields) {
  EXPECT_EQ(run(m_fixord, "", 10), "");
  EXPECT_EQ(run(m_fixord, "1ST", 0), "");
  std::string f = "1ST X";
  m_fixord(f.data(), -4);
  EXPECT_EQ(f, "1ST X");
}

// --- m_wrdrec ----------------------------------------------------------------

TEST(Wrdrec, AbbreviatesStreetTypes) {
  EXPECT_EQ(run(m_wrdrec, "MAIN STREET", 31), "MAIN ST");
  EXPECT_EQ(run(m_wrdrec, "HIGHWAY 9", 31), "HW      9");
  EXPECT_EQ(run(m_wrdrec, "HWY 9", 31), "HW  9");
  EXPECT_EQ(run(m_wrdrec, "SAINT JOHN ST", 31), "ST    JOHN ST");
  EXPECT_EQ(run(m_wrdrec, "A AND B", 31), "A &   B");
  EXPECT_EQ(run(m_wrdrec, "FIVE CROSSROADS", 31), "FIVE XRDS");
  EXPECT_EQ(run(m_wrdrec, "OLD CROSSING RD", 31), "OLD XING     RD");
  EXPECT_EQ(run(m_wrdrec, "PARK AVENUE ROAD", 31), "PARK AVE    RD");
}

TEST(Wrdrec, NeedsRoomBehindTheLastWord) {
  // The quick scan stops four bytes short of the end, and the word must be
  // followed by its blank inside the field.
  EXPECT_EQ(run(m_wrdrec, "MAIN STREET", 11), "MAIN STREET");
  EXPECT_EQ(run(m_wrdrec, "MAIN STREET", 13), "MAIN STREET");
  EXPECT_EQ(run(m_wrdrec, "MAIN STREET", 14), "MAIN ST");
}

TEST(Wrdrec, OnlyWordStartsMatch) {
  EXPECT_EQ(run(m_wrdrec, "MAINSTREET X", 31), "MAINSTREET X");
  // Only the first place where a word's first four bytes appear counts: ROAD
  // inside BROADWAY is not at a word start, so the later ROAD stays too.
  EXPECT_EQ(run(m_wrdrec, "BROADWAY ROAD", 31), "BROADWAY ROAD");
  EXPECT_EQ(run(m_wrdrec, "BROAD ROAD", 31), "BROAD ROAD");
  EXPECT_EQ(run(m_wrdrec, "NEW ROAD", 31), "NEW RD");
}

TEST(Wrdrec, OneOccurrencePerRow) {
  EXPECT_EQ(run(m_wrdrec, "ROAD ROAD X", 31), "RD   ROAD X");
  // A word start that is not the whole word sends the search further right.
  EXPECT_EQ(run(m_wrdrec, "ROADS ROAD X", 31), "ROADS RD   X");
}

TEST(Wrdrec, TextAfterThreeBlanksIsNotScanned) {
  // No word ending before a blank comes ahead of the triple blank.
  EXPECT_EQ(run(m_wrdrec, "X   MAIN STREET", 31), "X   MAIN STREET");
  // Without the triple blank the same text is recoded.
  EXPECT_EQ(run(m_wrdrec, "X  MAIN STREET", 31), "X  MAIN ST");
}

TEST(Wrdrec, NoTriggerLetterMeansNoChange) {
  EXPECT_EQ(run(m_wrdrec, "LUK HOP STREETX", 31), "LUK HOP STREETX");
}

TEST(Wrdrec, SearchStopsAtANul) {
  const std::string text("MAIN\0STREET X", 13);
  EXPECT_EQ(run(m_wrdrec, text, 31), text);
}

TEST(Wrdrec, DegenerateFields) {
  EXPECT_EQ(run(m_wrdrec, "", 31), "");
  EXPECT_EQ(run(m_wrdrec, "HWY", 3), "HWY");
  EXPECT_EQ(run(m_wrdrec, "HWY ", 0), "");
  std::string f = "HWY 9   ";
  m_wrdrec(f.data(), -1);
  EXPECT_EQ(f, "HWY 9   ");
}

// --- m_recode and m_recode_new
// -------------------------------------------------

TEST(Recode, FirstAndSecondWord) {
  EXPECT_EQ(run(m_recode, "FIRST ST", 31), "1ST   ST");
  EXPECT_EQ(run(m_recode, "FIRST AVE", 31), "1ST");
  EXPECT_EQ(run(m_recode, "RUE DES LILAS", 31), "        LILAS");
  EXPECT_EQ(run(m_recode, "AVENUE FOCH", 31), "       FOCH");
  EXPECT_EQ(run(m_recode, "NORTHWEST SECOND X", 31), "NW        2ND    X");
  // Only the first two words are looked at.
  EXPECT_EQ(run(m_recode, "X Y FIRST", 31), "X Y FIRST");
}

TEST(Recode, SecondWordNeedsALongField) {
  EXPECT_EQ(run(m_recode, "FIRST AVE", 15), "1ST   AVE");
  EXPECT_EQ(run(m_recode, "FIRST AVE", 16), "1ST");
  EXPECT_EQ(run(m_recode, "RUE DES LILAS", 13), "    DES LILAS");
  EXPECT_EQ(run(m_recode, "RUE DES LILAS", 14), "        LILAS");
  // Two blanks after the first word: no second word.
  EXPECT_EQ(run(m_recode, "X  FIRST", 31), "X  FIRST");
}

TEST(Recode, KeepsFieldLength) {
  EXPECT_EQ(run(m_recode, "PLZ X", 5), "PZ  X");
  EXPECT_EQ(run(m_recode, "APARTMENTS X", 31), "APTS       X");
  // A word needs its closing blank inside the field.
  EXPECT_EQ(run(m_recode, "APARTMENTS", 10), "APARTMENTS");
  EXPECT_EQ(run(m_recode, "TWO", 3), "TWO");
}

TEST(Recode, ShortAvenueAndBoulevard) {
  EXPECT_EQ(run(m_recode, "AV FOCH", 31), "AVE FOCH");
  EXPECT_EQ(run(m_recode, "BL FOCH", 31), "BLVD FOCH");
  EXPECT_EQ(run(m_recode, "AV FOCH", 7), "AVE FOC");  // pushed off the end
  EXPECT_EQ(run(m_recode, "BL X", 4), "BLVD");
  EXPECT_EQ(run(m_recode, "AV ", 3), "AVE");
  EXPECT_EQ(run(m_recode, "AVX FOCH", 31), "AVX FOCH");
  // A recoded BOUL is not expanded again.
  EXPECT_EQ(run(m_recode, "BOUL X", 31), "BLVD X");
}

TEST(RecodeNew, KeepsTypeWordsInShortForm) {
  EXPECT_EQ(run(m_recode_new, "RUE DES LILAS", 31), "RUE DES LILAS");
  EXPECT_EQ(run(m_recode_new, "FIRST AVE", 31), "1ST   AVE");
  EXPECT_EQ(run(m_recode_new, "AVENUE FOCH", 31), "AVE    FOCH");
  EXPECT_EQ(run(m_recode_new, "RANG X", 31), "RG   X");
  EXPECT_EQ(run(m_recode_new, "AV FOCH", 31), "AVE FOCH");
}

// Every row of the table is found by the binary search, as the first and as
// the second word, by both routines.
TEST(Recode, EveryTableRowIsFound) {
  namespace wt = orlo::word_table;
  for (size_t r = 0; r < wt::kRows; ++r) {
    const std::string word(wt::words[r]);
    const std::string old_col(wt::recodes[r]);
    const std::string new_col(wt::recodes_new[r]);
    EXPECT_EQ(run(m_recode, word + "Q", 40), old_col + "Q") << word;
    EXPECT_EQ(run(m_recode_new, word + "Q", 40), new_col + "Q") << word;
    EXPECT_EQ(run(m_recode_new, "Q " + word + "Q", 40), "Q " + new_col + "Q")
        << word;
  }
}

TEST(Recode, WordsOutsideTheTableAndHighBytes) {
  const std::vector<std::string> texts = {"AAA X",
                                          "ZZZ X",
                                          "FIRSTS X",
                                          "TW X",
                                          "\xC9TOILE X",
                                          "\xFF\xFF X",
                                          std::string("\0\0 X", 4)};
  for (const std::string &text : texts) {
    EXPECT_EQ(run(m_recode, text, 31), text) << text;
  }
}

TEST(Recode, DegenerateFields) {
  EXPECT_EQ(run(m_recode, "", 31), "");
  std::string f = "FIRST X";
  m_recode(f.data(), 0);
  m_recode(f.data(), -2);
  m_recode_new(f.data(), -2);
  EXPECT_EQ(f, "FIRST X");
}

// --- all routines
// --------------------------------------------------------------

// Random texts built from table words, in fields of every width, never change
// a byte behind the field (the address sanitizer sees exact-size buffers).
TEST(WordRoutines, NeverWriteBehindTheField) {
  const std::vector<std::string> vocabulary = {
      "FIRST",      "AVE",        "AV",    "BL",  "RUE",  "STREET",
      "ROAD",       "HWY",        "AND",   "1ST", "21ST", "3IEME",
      "PLZ",        "CROSSROADS", "SAINT", "X",   "KING", "GEORGE",
      "APARTMENTS", "BOULEVARD",  "  ",    "."};
  std::mt19937 rng(7);
  std::uniform_int_distribution<size_t> pick(0, vocabulary.size() - 1);
  std::uniform_int_distribution<int> words(0, 6);
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (int w = words(rng); w > 0; --w) text += vocabulary[pick(rng)] + " ";
    for (int32_t width = 0; width <= 40; ++width) {
      for (Routine routine : {m_fixord, m_wrdrec, m_recode, m_recode_new}) {
        std::vector<char> field(text.begin(), text.end());
        field.resize(static_cast<size_t>(width), ' ');
        routine(field.data(), width);
      }
    }
  }
}

}  // namespace
