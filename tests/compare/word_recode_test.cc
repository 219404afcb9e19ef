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

using namespace std::literals;

using orlo_test::WorkCopy;
using Routine = void (*)(char *, int32_t);

struct Result {
  std::string text;    // the field without trailing blanks
  std::string behind;  // the text written behind the field, up to its NUL
};

Result run_full(Routine routine, std::string_view text, size_t width) {
  WorkCopy f(text, width);
  routine(f.data(), f.len());
  return {f.text(), f.behind()};
}

// Runs the routine over text in a work copy of the given width; returns the
// field without trailing blanks and checks that nothing moved behind it.
std::string run(Routine routine, std::string_view text, size_t width) {
  const Result r = run_full(routine, text, width);
  EXPECT_EQ(r.behind, "") << text;
  return r.text;
}

struct Row {
  Routine routine;
  std::string_view text;
  size_t width;
  std::string_view expected;  // without trailing blanks
  const char *note;
  std::string_view behind = "";  // written behind the field, before its NUL
};

// One row per rule of each routine and per boundary of its field.
constexpr Row kRows[] = {
    {m_fixord, "21ST ST", 31, "21   ST", "suffix after a digit"},
    {m_fixord, "3RD 4TH X", 31, "3   4   X", "every suffix"},
    {m_fixord, "2ND AVE", 31, "2   AVE", "ND"},
    {m_fixord, "A1ST B", 31, "A1   B", "digit inside a word"},
    {m_fixord, "STREET", 31, "STREET", "no digit"},
    {m_fixord, "EAST ST 9", 31, "EAST ST 9", "suffix not after a digit"},
    {m_fixord, "1 ST X", 31, "1 ST X", "blank between"},
    {m_fixord, "1STX Y", 31, "1STX Y", "no blank behind"},
    {m_fixord, "1ST", 3, "1ST", "ending a full field: kept"},
    {m_fixord, "12 42ND", 7, "12 42ND", "ending a full field, later word"},
    {m_fixord, "1ST", 4, "1", "one blank behind is enough"},
    {m_fixord, "RUE 3IEME", 9, "RUE 3", "French ordinal"},
    {m_fixord, "IEME", 8, "IEME", "IEME must lie past position 3"},
    {m_fixord, "1ST 2IEME", 31, "1ST 2", "after IEME nothing else changes"},
    {m_fixord, "", 10, "", "blank field"},
    {m_fixord, "1ST", 0, "", "zero width"},
    {m_wrdrec, "MAIN STREET", 31, "MAIN ST", "street type"},
    {m_wrdrec, "HIGHWAY 9", 31, "HW      9", "shorter form, blanks behind"},
    {m_wrdrec, "HWY 9", 31, "HW  9", "abbreviation abbreviated"},
    {m_wrdrec, "SAINT JOHN ST", 31, "ST    JOHN ST", "first word"},
    {m_wrdrec, "A AND B", 31, "A &   B", "AND"},
    {m_wrdrec, "FIVE CROSSROADS", 31, "FIVE XRDS", "X forms"},
    {m_wrdrec, "PARK AVENUE ROAD", 31, "PARK AVE    RD", "two rows"},
    {m_wrdrec, "MAIN STREET", 13, "MAIN STREET", "scan stops 4 short"},
    {m_wrdrec, "MAIN STREET", 14, "MAIN ST", "room behind the word"},
    {m_wrdrec, "MAINSTREET X", 31, "MAINSTREET X", "only word starts"},
    {m_wrdrec, "BROADWAY ROAD", 31, "BROADWAY ROAD",
     "only the first place of the first four bytes counts"},
    {m_wrdrec, "NEW ROAD", 31, "NEW RD", "ROAD at a word start"},
    {m_wrdrec, "ROAD ROAD X", 31, "RD   ROAD X", "one occurrence a row"},
    {m_wrdrec, "ROADS ROAD X", 31, "ROADS RD   X", "search goes on right"},
    {m_wrdrec, "X   MAIN STREET", 31, "X   MAIN STREET",
     "three blanks end the scan"},
    {m_wrdrec, "X  MAIN STREET", 31, "X  MAIN ST", "two blanks do not"},
    {m_wrdrec, "LUK HOP STREETX", 31, "LUK HOP STREETX", "no trigger letter"},
    {m_wrdrec, "MAIN\0STREET X"sv, 31, "MAIN\0STREET X"sv, "stops at a NUL"},
    {m_wrdrec, "HWY", 3, "HWY", "field too short to scan"},
    {m_wrdrec, "HWY ", 0, "", "zero width"},
    {m_recode, "FIRST ST", 31, "1ST   ST", "first word"},
    {m_recode, "FIRST AVE", 31, "1ST", "second word dropped"},
    {m_recode, "RUE DES LILAS", 31, "        LILAS", "both words dropped"},
    {m_recode, "NORTHWEST SECOND X", 31, "NW        2ND    X", "both recoded"},
    {m_recode, "X Y FIRST", 31, "X Y FIRST", "only the first two words"},
    {m_recode, "FIRST AVE", 15, "1ST   AVE", "no second word below 16"},
    {m_recode, "FIRST AVE", 16, "1ST", "second word from 16"},
    {m_recode, "RUE DES LILAS", 13, "    DES LILAS", "short field"},
    {m_recode, "X  FIRST", 31, "X  FIRST", "two blanks: no second word"},
    {m_recode, "PLZ X", 5, "PZ  X", "keeps the field length"},
    {m_recode, "APARTMENTS", 10, "APARTMENTS", "needs its closing blank"},
    {m_recode, "AV FOCH", 31, "AVE FOCH", "AV widened", " "},
    {m_recode, "BL FOCH", 31, "BLVD FOCH", "BL widened", "  "},
    {m_recode, "AV FOCH", 7, "AVE FOC", "widening pushes text behind", "H"},
    {m_recode, "BL X", 4, "BLVD", "widening fills the field", " X"},
    {m_recode, "AV ", 3, "AVE", "three bytes", " "},
    {m_recode, "AV X\0\0Y"sv, 7, "AVE X\0Y"sv, "the text ends at its NUL"},
    {m_recode, "AVX FOCH", 31, "AVX FOCH", "AVX is no AV"},
    {m_recode, "BOUL X", 31, "BLVD X", "a recoded BOUL is not widened"},
    {m_recode, "", 31, "", "blank field"},
    {m_recode_new, "RUE DES LILAS", 31, "RUE DES LILAS", "type words kept"},
    {m_recode_new, "FIRST AVE", 31, "1ST   AVE", "ordinal recoded"},
    {m_recode_new, "AVENUE FOCH", 31, "AVE    FOCH", "short type form"},
    {m_recode_new, "AV FOCH", 31, "AVE FOCH", "AV widened", " "},
    {m_recode_new, "BL X", 5, "BLVD", "BL widened", "X "},
};

TEST(WordRecode, Rules) {
  for (const Row &r : kRows) {
    SCOPED_TRACE(std::string(r.note) + ": '" + std::string(r.text) + "'");
    const Result got = run_full(r.routine, r.text, r.width);
    EXPECT_EQ(got.text, r.expected) << r.width;
    EXPECT_EQ(got.behind, r.behind) << r.width;
  }
}

// The street comparison recodes, abbreviates and drops ordinals in one work
// copy: text that widening pushed behind the field takes part in the
// whole-word search and is the blank that must follow a suffix.
TEST(WordRecode, WideningFeedsTheLaterRoutines) {
  struct Case {
    std::string_view text;
    int32_t width;
    std::string_view same_street;
  } cases[] = {
      {"BL BOULEVARD", 13, "BLVD BLVD"},  // "BOULEVARD " ends behind the field
      {"AV 21ST", 8, "AVE 21"},           // the blank after ST is behind it
      {"BL 21ST", 9, "BLVD 21"},
      {"AV 21ST", 9, "AVE 21"},  // the blank is inside the field anyway
  };
  for (const Case &c : cases) {
    EXPECT_EQ(orlo_test::street_score(c.text, c.same_street, c.width, "TYPE"),
              98)
        << c.text << " in " << c.width;
  }
  // m_wrdrec on its own sees the text behind the field up to its NUL.
  WorkCopy f("BLVD BOULEVAR", 13);
  f.set_behind("D ");
  m_wrdrec(f.data(), f.len());
  EXPECT_EQ(f.text(), "BLVD BLVD");
  EXPECT_EQ(f.behind(), "  ");
}

// A negative length leaves the field alone.
TEST(WordRecode, NegativeLengths) {
  std::string f = "1ST FIRST HWY 9";
  for (Routine routine : {m_fixord, m_wrdrec, m_recode, m_recode_new}) {
    routine(f.data(), -1);
  }
  EXPECT_EQ(f, "1ST FIRST HWY 9");
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
  for (std::string_view text : {"AAA X"sv, "ZZZ X"sv, "FIRSTS X"sv, "TW X"sv,
                                "\xC9TOILE X"sv, "\xFF\xFF X"sv, "\0\0 X"sv}) {
    EXPECT_EQ(run(m_recode, text, 31), text) << text;
  }
}

// Random texts built from table words, in fields of every width: m_fixord
// and m_wrdrec never write behind the field; m_recode and m_recode_new write
// at most the three bytes behind it, and only for a text that began with
// "AV " or "BL ". None reads behind an exact-size field except m_wrdrec,
// which looks for the text's NUL in the three bytes behind (the sanitizer
// build sees the buffers of exactly len + 3 bytes).
TEST(WordRoutines, WriteBehindTheFieldOnlyWhenWidening) {
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
      const std::string head = orlo_test::padded(text, 3);
      const bool widens = width >= 3 && (head == "AV " || head == "BL ");
      for (Routine routine : {m_fixord, m_wrdrec, m_recode, m_recode_new}) {
        const bool recodes = routine == m_recode || routine == m_recode_new;
        std::vector<char> exact = orlo_test::exact_field(text, width);
        exact.insert(exact.end(), 3, '\0');
        routine(exact.data(), width);
        WorkCopy f(text, static_cast<size_t>(width));
        routine(f.data(), f.len());
        if (recodes && widens) {
          ASSERT_NE(f.behind(), "!") << text << " in " << width;
          ASSERT_LE(f.behind().size(), 2u) << text << " in " << width;
        } else {
          ASSERT_TRUE(f.tail_intact()) << text << " in " << width;
        }
      }
    }
  }
}

}  // namespace
