// Street name likeness: the stages of the cascade, options, lengths and
// awkward input.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::forget_cached_street;
using orlo_test::padded;
using orlo_test::street_score;

// A first call with a new first street (the cache is tested on its own).
int32_t street(std::string_view s1, std::string_view s2, int32_t len,
               const char *options = nullptr) {
  forget_cached_street();
  return street_score(s1, s2, len, options);
}

// One row per stage and rule of the cascade; len 0 runs the row in fields
// of both 31 and 62 bytes, which must score alike.
struct Row {
  const char *s1, *s2;
  int32_t len;
  const char *options;
  int32_t score;
  const char *note;
};

constexpr Row kRows[] = {
    {"MAIN", "MAIN", 0, nullptr, 100, "raw identity"},
    {" MAIN", " MAIN", 0, nullptr, 98, "leading blank: no raw identity"},
    {"FIRST ST", "1ST ST", 0, nullptr, 98, "first word recoded"},
    {"MAIN STREET", "MAIN ST", 0, nullptr, 98, "street type abbreviated"},
    {"A+B ST", "A&B ST", 0, nullptr, 98, "plus means ampersand"},
    {"007 MAIN", "7 MAIN", 0, nullptr, 98, "leading zeros dropped"},
    {"ST. JOHN", "ST JOHN", 0, nullptr, 98, "full stops dropped"},
    {"MAIN  ST", "MA IN ST", 0, nullptr, 98, "blanks packed"},
    {"AVENUE FOCH", "AVE FOCH", 0, nullptr, 98, "type word dropped"},
    {"RUE DES LILAS", "LILAS", 0, nullptr, 98, "second word recoded"},
    {"COURT A", "COURTA", 0, nullptr, 98, "packed identity before court"},
    {"", "", 0, nullptr, 88, "both blank"},
    {"0 .", "", 0, nullptr, 88, "blank after normalisation"},
    {"", "MAIN", 0, nullptr, 80, "one blank"},
    {"", "12 MAIN", 0, nullptr, 0, "the digit makes the pair strict"},
    {"SMITH ST", "SMYTH ST", 0, nullptr, 96, "one substitution"},
    {"MAIN", "MAINS", 0, nullptr, 95, "prefix, 4 long, one short"},
    {"MAIN", "MAINST", 0, nullptr, 90, "prefix, 4 long, two short"},
    {"MAINSTREET", "MAINSTRE", 0, nullptr, 95, "prefix, 6 long, two short"},
    {"ABC", "ABCD", 0, nullptr, 82, "too short for the prefix rules"},
    {"HOLLYWOOD RD", "HOLYWOD RD", 0, nullptr, 96, "repeats, both long"},
    {"BONHAM STRAND", "BONHAM STRND", 0, nullptr, 98, "deletion, both long"},
    {"N", "SOUTH", 0, nullptr, 70, "alignment score stands"},
    {"TSIM SHA TSUI", "TSEM XHE TSOY", 0, nullptr, 72, "no later stage"},
    {"COURT A", "COURT B", 0, nullptr, 0, "lettered courts settle at 0"},
    {"HWY 9", "HWY 8", 0, nullptr, 0, "strict pair, different numbers"},
    {"CALLE SOL", "CALLE SAL", 0, nullptr, 95, "strict pair, skeleton"},
    {"12 MAIN ST", "12 MAIN RD", 0, nullptr, 90, "strict pair, words"},
    {"ROUTE 9", "HWY 9", 0, nullptr, 90, "route words pair"},
    {"TSIM SHA TSUI", "TSEM SHE TSOI", 0, nullptr, 95, "equal skeletons"},
    {"TSIM SHA TSUI", "TSEM SHE TSOX", 0, nullptr, 90, "skeletons differ"},
    {"TSIM SHA TSUI", "TSEM SHE TS", 0, nullptr, 90, "skeleton one longer"},
    {"N", "NORTH", 0, nullptr, 90, "compass letter"},
    {"NORTH", "N", 0, nullptr, 90, "compass letter second"},
    {"KING GEORGE RD", "KING G RD", 0, nullptr, 90, "initial for a word"},
    {"10 MAIN", "1 MAIN", 0, nullptr, 90, "zero inside a number stays"},
    {"AVE FOCH", "FOCH", 31, "TYPE", 0, "TYPE keeps AVE: strict"},
    {"AVE FOCH", "FOCH", 31, "type", 0, "options are upper-cased"},
    {"AVE FOCH", "FOCH", 31, "TYP", 98, "TYPE needs all four letters"},
    {"AVE FOCH", "FOCH", 31, "XTYPE", 98, "TYPE must open the options"},
    {"AVENUE FOCH", "AVE FOCH", 31, "TYPE", 98, "short type form"},
    {"M\xDCLLER", "MUELLER", 31, nullptr, 79, "no folding by default"},
    {"M\xDCLLER", "MUELLER", 31, "DI", 100, "DI folds letters"},
    {"M\xDCLLER", "MUELLER", 31, "TYPE;DI", 100, "DI after a semicolon"},
    {"M\xDCLLER", "MUELLER", 31, "DIX", 100, "DI opening a longer word"},
    {"M\xDCLLER", "MUELLER", 31, "D", 79, "D alone is no DI"},
    {"M\xDCLLER", "MUELLER", 31, "XDI", 79, "DI inside a word"},
    {"\xC4\xC6\xC5\xD6\xD8\xDC\xDF", "AEAEAAOEOEUESS", 31, "DI", 100,
     "every folded letter"},
    {"M\xDCLLER", "MUELLE", 6, "DI", 100, "folding pushes R out of 6 bytes"},
    {"A", "A", 1, nullptr, 100, "one byte, equal"},
    {" ", " ", 1, nullptr, 88, "one byte, blank"},
    {"A", "B", 1, nullptr, 86, "one byte, substitution"},
};

TEST(StreetScore, EveryStageOfTheCascade) {
  for (const Row &r : kRows) {
    SCOPED_TRACE(std::string(r.note) + ": '" + r.s1 + "' / '" + r.s2 + "'");
    for (int32_t len :
         r.len ? std::vector<int32_t>{r.len} : std::vector<int32_t>{31, 62}) {
      EXPECT_EQ(street(r.s1, r.s2, len, r.options), r.score) << len;
    }
  }
}

// The options are upper-cased in place; the streets are never changed.
TEST(StreetScore, OnlyTheOptionStringIsWritten) {
  std::string opt = "di;type";
  std::string a = padded("M\xDCLLER", 31);
  std::string b = padded("MUELLER", 31);
  forget_cached_street();
  EXPECT_EQ(m_street(a.data(), b.data(), 31, opt.data()), 100);
  EXPECT_EQ(opt, "DI;TYPE");
  EXPECT_EQ(a, padded("M\xDCLLER", 31));
  EXPECT_EQ(b, padded("MUELLER", 31));
}

TEST(StreetLengths, ZeroAndNegativeLengthsAreIdentical) {
  EXPECT_EQ(m_street("A", "B", 0, nullptr), 100);
  EXPECT_EQ(m_street("A", "B", -5, nullptr), 100);
  EXPECT_EQ(m_street(nullptr, nullptr, 0, nullptr), 100);
}

// Only 99 bytes count: the hundredth and later bytes are dropped.
TEST(StreetLengths, OnlyTheFirst99BytesCount) {
  std::string a(150, 'K');
  std::string b(150, 'K');
  b[120] = 'Q';
  b[99] = 'Q';
  EXPECT_EQ(m_street(a.data(), b.data(), 150, nullptr), 100);
  EXPECT_EQ(m_street(a.data(), b.data(), 100, nullptr), 100);
  b[98] = 'Q';
  EXPECT_LT(m_street(a.data(), b.data(), 150, nullptr), 100);
}

// Packed names of 98 to 150 bytes push the alignment's look-ahead to the end
// of the work areas (the sanitizer build sees any read past them).
TEST(StreetLengths, FullLengthFieldsKeepLookAheadInside) {
  for (int32_t len : {98, 99, 100, 101, 150}) {
    std::string a(static_cast<size_t>(len), 'A');
    std::string b(static_cast<size_t>(len), 'B');
    for (size_t i = 1; i < a.size(); i += 2) a[i] = 'X';
    const int32_t s = m_street(a.data(), b.data(), len, nullptr);
    EXPECT_GE(s, 0);
    EXPECT_LE(s, 100);
  }
}

}  // namespace
