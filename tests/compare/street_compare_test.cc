// Street name likeness: the stages of the cascade, options, lengths and
// awkward input.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::padded;

// Makes the next call's first street new to this thread's cache, so that a
// test sees what a first call would give. (The cache is keyed on the first
// street's bytes alone, whatever the length and options.)
void forget_cached_street() {
  char a[1] = {'\x7F'};
  char b[1] = {' '};
  m_street(a, b, 1, nullptr);
}

// Compares two streets padded to len, as the first call with that first
// street, each in a buffer of exactly len bytes
// (so the address sanitizer sees any read past a caller's field). options
// is copied into a writable string; nullptr passes NULL.
int32_t street(std::string_view s1, std::string_view s2, int32_t len = 31,
               const char *options = nullptr) {
  std::vector<char> a(static_cast<size_t>(len));
  std::vector<char> b(static_cast<size_t>(len));
  const std::string pa = padded(s1, static_cast<size_t>(len));
  const std::string pb = padded(s2, static_cast<size_t>(len));
  a.assign(pa.begin(), pa.end());
  b.assign(pb.begin(), pb.end());
  forget_cached_street();
  if (options == nullptr) return m_street(a.data(), b.data(), len, nullptr);
  std::string opt = options;
  return m_street(a.data(), b.data(), len, opt.data());
}

struct Pair {
  const char *s1;
  const char *s2;
  int32_t score;
};

void PrintTo(const Pair &p, std::ostream *os) {
  *os << "'" << p.s1 << "' / '" << p.s2 << "' -> " << p.score;
}

class StreetScore : public ::testing::TestWithParam<Pair> {};

TEST_P(StreetScore, InFieldsOf31And62) {
  const Pair &p = GetParam();
  EXPECT_EQ(street(p.s1, p.s2, 31), p.score);
  EXPECT_EQ(street(p.s1, p.s2, 62), p.score);
}

INSTANTIATE_TEST_SUITE_P(
    Identity, StreetScore,
    ::testing::Values(
        Pair{"MAIN", "MAIN", 100},
        // a leading blank rules out the raw identity
        Pair{" MAIN", " MAIN", 98}, Pair{"FIRST ST", "1ST ST", 98},
        Pair{"MAIN STREET", "MAIN ST", 98}, Pair{"HIGHWAY 9", "HWY 9", 98},
        Pair{"A+B ST", "A&B ST", 98},
        Pair{"007 MAIN", "7 MAIN", 98},  // leading zeros
        Pair{"10 MAIN ST", "010 MAIN ST", 98}, Pair{"ST. JOHN", "ST JOHN", 98},
        Pair{"MAIN  ST", "MA IN ST", 98},  // blanks packed
        Pair{"AVENUE FOCH", "AVE FOCH", 98}, Pair{"RUE DES LILAS", "LILAS", 98},
        // packed identity comes before the lettered court
        Pair{"COURT A", "COURTA", 98}));

INSTANTIATE_TEST_SUITE_P(Blank, StreetScore,
                         ::testing::Values(Pair{"", "", 88},
                                           Pair{"", "MAIN", 80},
                                           Pair{"MAIN", "", 80},
                                           // blank after normalisation
                                           Pair{"0 .", "", 88},
                                           Pair{".", "MAIN", 80},
                                           // the digit makes the pair strict
                                           Pair{"", "12 MAIN", 0}));

INSTANTIATE_TEST_SUITE_P(
    Characters, StreetScore,
    ::testing::Values(
        Pair{"SMITH ST", "SMYTH ST", 96},
        Pair{"MAIN", "MAINS", 95},   // prefix one short
        Pair{"MAIN", "MAINST", 90},  // prefix two short
        Pair{"MAINSTREET", "MAINSTREE", 95}, Pair{"MAINSTREET", "MAINSTRE", 95},
        // too short for the prefix rules: alignment
        Pair{"ABC", "ABCD", 82}, Pair{"MILLER RD", "MILLAR RD", 96},
        Pair{"HOLLYWOOD RD", "HOLYWOD RD", 96},
        // one deletion, both long: +2
        Pair{"BONHAM STRAND", "BONHAM STRND", 98}, Pair{"N", "SOUTH", 70},
        Pair{"TSIM SHA TSUI", "TSEM XHE TSOY", 72}));

INSTANTIATE_TEST_SUITE_P(
    Strict, StreetScore,
    ::testing::Values(Pair{"COURT A", "COURT B", 0},
                      Pair{"COURT B", "COURT C", 0}, Pair{"HWY 9", "HWY 8", 0},
                      Pair{"12 MAIN ST", "14 MAIN ST", 0},
                      Pair{"STATE RD 7", "STATE RD 17", 0},
                      // strict pairs still reach the skeleton and word stages
                      Pair{"CALLE SOL", "CALLE SAL", 95},
                      Pair{"12 MAIN ST", "12 MAIN RD", 90},
                      Pair{"ROUTE 9", "HWY 9", 90}));

INSTANTIATE_TEST_SUITE_P(
    Skeleton, StreetScore,
    ::testing::Values(Pair{"TSIM SHA TSUI", "TSEM SHE TSOI", 95},
                      Pair{"CAUSEWAY BAY", "COSWAY BAY", 95},
                      Pair{"TSIM SHA TSUI", "TSEM SHE TSOX", 90},
                      Pair{"TSIM SHA TSUI", "TSEM SHE TS", 90}));

INSTANTIATE_TEST_SUITE_P(
    Words, StreetScore,
    ::testing::Values(Pair{"N", "NORTH", 90}, Pair{"NORTH", "N", 90},
                      Pair{"W", "WEST", 90},
                      Pair{"KING GEORGE RD", "KING G RD", 90},
                      Pair{"J F KENNEDY", "JOHN FITZGERALD KENNEDY", 90},
                      Pair{"10 MAIN", "1 MAIN", 90}));

TEST(StreetOptions, TypeKeepsTypeWords) {
  EXPECT_EQ(street("AVENUE FOCH", "AVE FOCH", 31, "TYPE"), 98);
  EXPECT_EQ(street("AVENUE FOCH", "AVE FOCH", 31, "type"), 98);
  // Kept, AVE makes the pair strict; dropped, the names are equal.
  EXPECT_EQ(street("AVE FOCH", "FOCH", 31, "TYPE"), 0);
  EXPECT_EQ(street("AVE FOCH", "FOCH", 31, nullptr), 98);
  EXPECT_EQ(street("AVE FOCH", "FOCH", 31, "TYP"), 98);
  EXPECT_EQ(street("AVE FOCH", "FOCH", 31, "XTYPE"), 98);
}

TEST(StreetOptions, DiFoldsLatinLetters) {
  const std::string muller = "M\xDCLLER";
  EXPECT_EQ(street(muller, "MUELLER", 31, "DI"), 100);
  EXPECT_EQ(street(muller, "MUELLER", 31, "TYPE;DI"), 100);
  EXPECT_EQ(street(muller, "MUELLER", 31, "DIX"), 100);
  EXPECT_LT(street(muller, "MUELLER", 31, nullptr), 100);
  EXPECT_LT(street(muller, "MUELLER", 31, "D"), 100);
  EXPECT_LT(street(muller, "MUELLER", 31, "XDI"), 100);
  EXPECT_LT(street(muller, "MUELLER", 31, ""), 100);
  EXPECT_EQ(street("\xC4\xC6\xC5\xD6\xD8\xDC\xDF", "AEAEAAOEOEUESS", 31, "DI"),
            100);
}

TEST(StreetOptions, OptionStringIsUpperCasedInPlace) {
  std::string opt = "di;type";
  std::string a = padded("M\xDCLLER", 31);
  std::string b = padded("MUELLER", 31);
  forget_cached_street();
  EXPECT_EQ(m_street(a.data(), b.data(), 31, opt.data()), 100);
  EXPECT_EQ(opt, "DI;TYPE");
  // The streets themselves are never changed.
  EXPECT_EQ(a, padded("M\xDCLLER", 31));
  EXPECT_EQ(b, padded("MUELLER", 31));
}

TEST(StreetOptions, FoldingLosesTextPushedPastTheField) {
  // Folded, the 6-byte field holds "MUELLE": equal to the second street.
  EXPECT_EQ(street("M\xDCLLER", "MUELLE", 6, "DI"), 100);
}

TEST(StreetLengths, ZeroAndNegativeLengthsAreIdentical) {
  EXPECT_EQ(m_street("A", "B", 0, nullptr), 100);
  EXPECT_EQ(m_street("A", "B", -5, nullptr), 100);
  EXPECT_EQ(m_street(nullptr, nullptr, 0, nullptr), 100);
}

TEST(StreetLengths, OneByteFields) {
  EXPECT_EQ(street("A", "A", 1), 100);
  EXPECT_EQ(street(" ", " ", 1), 88);
  // One substitution in names shorter than four times the errors.
  EXPECT_EQ(street("A", "B", 1), 86);
  EXPECT_EQ(street("N", "S", 1), 86);
}

TEST(StreetLengths, OnlyTheFirst99BytesCount) {
  std::string a(150, 'K');
  std::string b(150, 'K');
  b[120] = 'Q';
  b[99] = 'Q';  // the hundredth byte is dropped too
  EXPECT_EQ(m_street(a.data(), b.data(), 150, nullptr), 100);
  b[98] = 'Q';
  EXPECT_LT(m_street(a.data(), b.data(), 150, nullptr), 100);
  std::string c(100, 'K');
  std::string d(100, 'K');
  d[99] = 'Z';
  EXPECT_EQ(m_street(c.data(), d.data(), 100, nullptr), 100);
}

TEST(StreetLengths, FullLengthFieldsKeepLookAheadInside) {
  // Packed names of 99 and 100 bytes push the alignment's look-ahead to the
  // end of the work areas.
  for (int32_t len : {98, 99, 100, 101, 150}) {
    std::string a(static_cast<size_t>(len), 'A');
    std::string b(static_cast<size_t>(len), 'B');
    for (size_t i = 1; i < b.size(); i += 2) a[i] = 'X';
    const int32_t s = m_street(a.data(), b.data(), len, nullptr);
    EXPECT_GE(s, 0);
    EXPECT_LE(s, 100);
  }
}

// Random fields of every length, with Latin-1 bytes, NULs and the
// characters that the normalisation treats specially: scores stay in 0..100,
// the fields are untouched and a street always matches itself.
TEST(StreetRobustness, ArbitraryBytes) {
  const std::vector<std::string> pieces = {
      "MAIN",  "ST",       "STREET",
      "AVE",   "0",        "007",
      ".",     "+",        "-",
      "/",     "N",        "NORTH",
      "COURT", "A",        "HWY",
      "1ST",   "RUE",      "AND",
      " ",     "   ",      std::string("\0", 1),
      "\xC4",  "\xDC\xDF", "\xFF",
      "IEME",  "BL",       "AV"};
  std::mt19937 rng(31);
  std::uniform_int_distribution<size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int32_t> length(0, 120);
  const std::vector<const char *> options = {nullptr, "", "DI", "TYPE",
                                             "type;di"};
  for (int round = 0; round < 4000; ++round) {
    const int32_t len = length(rng);
    std::string a;
    std::string b;
    while (a.size() < static_cast<size_t>(len)) a += pieces[pick(rng)];
    while (b.size() < static_cast<size_t>(len)) b += pieces[pick(rng)];
    a.resize(static_cast<size_t>(len));
    b.resize(static_cast<size_t>(len));
    const std::vector<char> fa(a.begin(), a.end());
    const std::vector<char> fb(b.begin(), b.end());
    std::string opt = options[static_cast<size_t>(round) % options.size()]
                          ? options[static_cast<size_t>(round) % options.size()]
                          : "";
    char *o = options[static_cast<size_t>(round) % options.size()] ? opt.data()
                                                                   : nullptr;
    const int32_t s = m_street(fa.data(), fb.data(), len, o);
    ASSERT_GE(s, 0);
    ASSERT_LE(s, 100);
    ASSERT_EQ(std::string(fa.begin(), fa.end()), a);
    ASSERT_EQ(std::string(fb.begin(), fb.end()), b);
    forget_cached_street();
    const int32_t self = m_street(fa.data(), fa.data(), len, o);
    if (len > 0 && a[0] != ' ') {
      ASSERT_EQ(self, 100);
    } else {
      ASSERT_GE(self, 88);
    }
  }
}

}  // namespace
