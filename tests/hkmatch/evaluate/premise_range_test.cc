// The premise number range test, one row per (input shape, reference shape,
// outcome). Values are those the parser gives: letters A=65, B=66, C=67,
// D=68; fraction codes 1/4=1, 1/2=3, 3/4=5; grid N=1000000, E=3000000.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "orlo_matcher.h"

namespace {

struct Num {
  int32_t v1;
  char k1;
  int32_t v2;
  char k2;
};

constexpr Num kNone{0, ' ', 0, ' '};
constexpr Num n(int32_t v) {
  return {v, 'N', 0, ' '};
}
constexpr Num na(int32_t v, int32_t letter) {
  return {v, 'N', letter, 'A'};
}
constexpr Num nn(int32_t a, int32_t b) {
  return {a, 'N', b, 'N'};
}
constexpr Num nf(int32_t v, int32_t fraction) {
  return {v, 'N', fraction, 'F'};
}
constexpr Num a(int32_t letters) {
  return {letters, 'A', 0, ' '};
}
constexpr Num an(int32_t letters, int32_t v) {
  return {letters, 'A', v, 'N'};
}
constexpr Num gg(int32_t a, int32_t b) {
  return {a, 'G', b, 'G'};
}
constexpr Num e(int32_t code) {
  return {code, 'E', 0, ' '};
}

constexpr int32_t A = 65, B = 66, C = 67, D = 68;
constexpr int32_t kNorth = 1000000, kEast = 3000000;

struct Case {
  const char *what;
  Num in;
  char side;  // input side P
  Num low;
  Num high;
  char rside;  // record side R
  int32_t result;
  int32_t score_change;
};

// clang-format off
const Case kCases[] = {
  // A plain number.
  {"N: 13 in 11/21, both odd",            n(13), 'O', n(11), n(21), 'O', 1, 2},
  {"N: 11 at the low end",                n(11), 'O', n(11), n(21), 'O', 1, 2},
  {"N: 21 at the high end",               n(21), 'O', n(11), n(21), 'O', 1, 2},
  {"N: 23 above 11/21",                   n(23), 'O', n(11), n(21), 'O', 0, 0},
  {"N: even input, odd record",           n(12), 'E', n(11), n(21), 'O', 0, 0},
  {"N: even input, record of both sides", n(12), 'E', n(11), n(21), 'B', 1, 2},
  {"N: input of both sides, odd record",  n(12), 'B', n(11), n(21), 'O', 1, 2},
  {"N: N./NA within",                     n(13), 'O', n(10), na(14, A), 'B', 1, 2},
  {"N: N./NA at the low, high below it",  n(10), 'E', n(10), na(8, A), 'B', 1, 2},
  {"N: N./NA outside",                    n(9), 'O', n(10), na(8, A), 'B', 0, 0},
  {"N: N./NF at the low",                 n(10), 'E', n(10), nf(8, 3), 'B', 1, 2},
  {"N: N./NN within",                     n(12), 'E', n(10), nn(14, 16), 'B', 1, 2},
  {"N: N./NN at the low, sides differ",   n(10), 'E', n(10), nn(8, 9), 'O', 0, 0},
  {"N: NA/N. at the high, below the low", n(8), 'E', na(12, A), n(8), 'B', 1, 2},
  {"N: NA/N. outside",                    n(10), 'E', na(12, A), n(8), 'B', 0, 0},
  {"N: NN/N. at the high",                n(8), 'E', nn(12, 14), n(8), 'B', 1, 2},
  {"N: NF/N. within",                     n(11), 'O', nf(10, 3), n(20), 'B', 1, 2},
  {"N: NF/N. only the first value counts", n(20), 'E', nf(20, 3), n(20), 'B', 1, 2},
  {"N: NF/NF outside",                    n(21), 'O', nf(10, 3), nf(20, 1), 'B', 0, 0},
  {"N: NA/NA within",                     n(15), 'O', na(10, A), na(20, B), 'B', 1, 2},
  {"N: NA/NA, the high end needs within", n(8), 'E', na(10, A), na(8, B), 'B', 0, 0},
  {"N: N./A. is not a listed shape",      n(5), 'O', n(1), a(A), 'B', 0, 0},
  {"N: NN/NN is not listed for N.",       n(5), 'O', nn(1, 2), nn(9, 9), 'B', 0, 0},
  // A pair of numbers.
  {"NN: 12 14 in 10/20 of side B, accept 0", nn(12, 14), 'E', n(10), n(20), 'B', 1, 0},
  {"NN: N./N. sides differ",                 nn(12, 14), 'E', n(10), n(20), 'O', 0, 0},
  {"NN: N./N. outside",                      nn(22, 24), 'E', n(10), n(20), 'B', 0, 0},
  {"NN: N./NN at the high",                  nn(20, 22), 'E', n(10), nn(20, 22), 'B', 1, 2},
  {"NN: N./NN otherwise within",             nn(12, 14), 'E', n(10), nn(20, 22), 'B', 1, 1},
  {"NN: N./NN second differs, within",       nn(20, 24), 'E', n(10), nn(20, 22), 'B', 1, 1},
  {"NN: N./NN at the high, sides differ",    nn(20, 22), 'E', n(10), nn(20, 22), 'O', 0, 0},
  {"NN: N./NN outside",                      nn(21, 23), 'O', n(10), nn(20, 22), 'B', 0, 0},
  {"NN: NN/N. at the low",                   nn(10, 12), 'E', nn(10, 12), n(20), 'B', 1, 2},
  {"NN: NN/N. otherwise from the low",       nn(15, 13), 'O', nn(10, 12), n(20), 'B', 1, 1},
  {"NN: NN/N. second below the low's",       nn(15, 11), 'O', nn(10, 12), n(20), 'B', 0, 0},
  {"NN: NN/N. first above the high",         nn(21, 13), 'O', nn(10, 12), n(20), 'B', 0, 0},
  {"NN: NN/NN both within",                  nn(15, 3), 'O', nn(10, 1), nn(20, 5), 'B', 1, 2},
  {"NN: NN/NN all four equal",               nn(10, 2), 'E', nn(10, 2), nn(10, 2), 'B', 1, 2},
  {"NN: NN/NN second outside",               nn(15, 6), 'B', nn(10, 1), nn(20, 5), 'B', 0, 0},
  {"NN: N./NA is not listed for NN",         nn(12, 14), 'E', n(10), na(20, A), 'B', 0, 0},
  // A number with a letter suffix.
  {"NA: 12A in 12/14A",                na(12, A), 'E', n(12), na(14, A), 'B', 1, 2},
  {"NA: 12B beyond the high letter",   na(12, B), 'E', n(12), na(14, A), 'B', 0, 0},
  {"NA: 14A at the high of N./NA",     na(14, A), 'E', n(12), na(14, A), 'B', 1, 2},
  {"NA: N./NA below the low",          na(11, A), 'O', n(12), na(14, A), 'B', 0, 0},
  {"NA: NA/NA at the low, low > high", na(30, A), 'E', na(30, A), na(20, B), 'B', 1, 2},
  {"NA: NA/NA at the high",            na(20, C), 'E', na(10, A), na(20, C), 'B', 1, 2},
  {"NA: NA/NA both within",            na(15, B), 'O', na(10, A), na(20, C), 'B', 1, 2},
  {"NA: NA/NA letter beyond",          na(15, D), 'O', na(10, A), na(20, C), 'B', 0, 0},
  {"NA: NA/NA sides differ",           na(15, B), 'O', na(10, A), na(20, C), 'E', 0, 0},
  {"NA: NA/N. at the low",             na(12, B), 'E', na(12, B), n(20), 'B', 1, 2},
  {"NA: NA/N. otherwise from the low", na(15, C), 'O', na(12, B), n(20), 'B', 1, 2},
  {"NA: NA/N. letter below the low's", na(15, A), 'O', na(12, B), n(20), 'B', 0, 0},
  {"NA: N./N. within gives 1",         na(12, A), 'E', n(10), n(20), 'B', 1, 1},
  {"NA: N./NF within gives 1",         na(12, A), 'E', n(10), nf(20, 3), 'B', 1, 1},
  {"NA: NF/NF within gives 1",         na(12, A), 'E', nf(10, 1), nf(20, 3), 'B', 1, 1},
  {"NA: NF/N. within gives 1",         na(12, A), 'E', nf(10, 1), n(20), 'B', 1, 1},
  {"NA: N./N. outside",                na(22, A), 'E', n(10), n(20), 'B', 0, 0},
  // A number with a fraction.
  {"NF: 12 1/2 against 10/12A",          nf(12, 3), 'E', n(10), na(12, A), 'B', 0, 0},
  {"NF: 11 1/2 against 10/12A",          nf(11, 3), 'O', n(10), na(12, A), 'B', 1, 2},
  {"NF: NA/N. excludes the high",        nf(12, 3), 'E', na(10, A), n(12), 'B', 0, 0},
  {"NF: NA/N. within",                   nf(10, 3), 'E', na(10, A), n(12), 'B', 1, 2},
  {"NF: NF/NF both within",              nf(15, 3), 'O', nf(10, 1), nf(20, 5), 'B', 1, 2},
  {"NF: NF/NF fraction outside",         nf(15, 5), 'O', nf(10, 1), nf(20, 3), 'B', 0, 0},
  {"NF: N./NF at the high",              nf(12, 3), 'E', n(10), nf(12, 3), 'B', 1, 2},
  {"NF: N./NF fraction above the high's", nf(11, 5), 'O', n(10), nf(12, 3), 'B', 0, 0},
  {"NF: N./NF otherwise within",         nf(11, 1), 'O', n(10), nf(12, 3), 'B', 1, 2},
  {"NF: NF/N. at the low",               nf(10, 3), 'E', nf(10, 3), n(20), 'B', 1, 2},
  {"NF: NF/N. fraction below the low's", nf(15, 1), 'O', nf(10, 3), n(20), 'B', 0, 0},
  {"NF: NA/NA includes the high",        nf(20, 3), 'E', na(10, A), na(20, B), 'B', 1, 2},
  {"NF: N./N. within gives 1",           nf(15, 3), 'O', n(10), n(20), 'B', 1, 1},
  {"NF: N./N. sides differ",             nf(15, 3), 'O', n(10), n(20), 'E', 0, 0},
  // Letters, and letters before a number.
  {"A: B in A/C",                     a(B), 'B', a(A), a(C), 'B', 1, 2},
  {"A: A below C/D",                  a(A), 'B', a(C), a(D), 'B', 0, 0},
  {"A: record without a number",      a(A), 'B', kNone, kNone, 'B', 0, 0},
  {"A: numbered record",              a(A), 'B', n(1), n(9), 'B', 0, 0},
  {"AN: AN/AN, high second not tested", an(A, 12), 'E', an(A, 10), an(B, 5), 'B', 1, 2},
  {"AN: AN/AN second below the low's", an(A, 9), 'O', an(A, 10), an(B, 5), 'B', 0, 0},
  {"AN: AN/AN letters above the high", an(C, 12), 'E', an(A, 10), an(B, 5), 'B', 0, 0},
  {"AN: A./A. gives 1",               an(B, 3), 'O', a(A), a(C), 'B', 1, 1},
  {"AN: A./A. sides differ",          an(B, 3), 'O', a(A), a(C), 'E', 0, 0},
  {"AN: record without a number",     an(B, 3), 'O', kNone, kNone, 'E', 1, -1},
  // Grid references and free text.
  {"GG: at the low corner",      gg(kNorth + 12, kEast + 5), 'O', gg(kNorth + 12, kEast + 5), gg(kNorth + 20, kEast + 9), 'B', 1, 2},
  {"GG: at the high corner",     gg(kNorth + 20, kEast + 9), 'O', gg(kNorth + 12, kEast + 5), gg(kNorth + 20, kEast + 9), 'B', 1, 2},
  {"GG: on a one-line range",    gg(kNorth + 12, kEast + 7), 'O', gg(kNorth + 12, kEast + 5), gg(kNorth + 12, kEast + 9), 'B', 1, 2},
  {"GG: between corners, not one line", gg(kNorth + 15, kEast + 7), 'O', gg(kNorth + 12, kEast + 5), gg(kNorth + 20, kEast + 9), 'B', 0, 0},
  {"GG: sides differ",           gg(kNorth + 12, kEast + 5), 'O', gg(kNorth + 12, kEast + 5), gg(kNorth + 20, kEast + 9), 'E', 0, 0},
  {"GG: record without a number", gg(kNorth + 12, kEast + 5), 'O', kNone, kNone, 'B', 1, -1},
  {"E: equal to the low code, sides differ", e(7425), 'E', e(7425), e(9999), 'O', 1, 2},
  {"E: equal to the high code",  e(9999), 'B', e(7425), e(9999), 'B', 1, 2},
  {"E: no equal code",           e(8000), 'B', e(7425), e(9999), 'B', 0, 0},
  {"E: numbered record",         e(7425), 'B', n(1), n(9), 'B', 0, 0},
  {"E: record without a number", e(7425), 'B', kNone, kNone, 'B', 1, -1},
  // Records without a number, and shapes no rule lists.
  {"N: record without a number, sides differ", n(12), 'E', kNone, kNone, 'O', 1, -1},
  {"NN: record without a number",  nn(12, 14), 'E', kNone, kNone, 'B', 1, -1},
  {"NA: record without a number",  na(12, A), 'E', kNone, kNone, 'B', 1, -1},
  {"NF: record without a number",  nf(12, 3), 'E', kNone, kNone, 'B', 1, -1},
  {"N: lettered record",           n(12), 'E', a(A), a(C), 'B', 0, 0},
  {"N: free-text record",          n(12), 'E', e(7425), e(7425), 'B', 0, 0},
  {"no input number, numbered record, sides differ", kNone, 'E', n(11), n(21), 'O', 1, 0},
  {"no input number, record without a number", kNone, 'B', kNone, kNone, 'B', 1, 0},
  {"unlisted input shape NG",      {12, 'N', 5, 'G'}, 'E', n(10), n(20), 'B', 0, 0},
  {"unlisted input shape AA",      {65, 'A', 66, 'A'}, 'B', a(A), a(C), 'B', 0, 0},
  {"unlisted input shape G.",      {12, 'G', 0, ' '}, 'B', gg(1, 2), gg(3, 4), 'B', 0, 0},
};
// clang-format on

// Every row: the decision, and the change it makes to a score of 100.
TEST(RangeTest, DecidesAndAdjustsScore) {
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.what);
    int32_t score = 100;
    EXPECT_EQ(hk_mvir(c.in.v1, c.in.k1, c.in.v2, c.in.k2, c.side, c.low.v1,
                      c.low.k1, c.low.v2, c.low.k2, c.high.v1, c.high.k1,
                      c.high.v2, c.high.k2, &score, c.rside, 'B'),
              c.result);
    EXPECT_EQ(score - 100, c.score_change);
  }
}

// The letter meaning "both sides" is the caller's.
TEST(RangeTestSides, BothIsTheCallersLetter) {
  int32_t score = 0;
  EXPECT_EQ(hk_mvir(13, 'N', 0, ' ', 'O', 11, 'N', 0, ' ', 21, 'N', 0, ' ',
                    &score, 'X', 'X'),
            1);
  EXPECT_EQ(score, 2);
  EXPECT_EQ(hk_mvir(13, 'N', 0, ' ', 'O', 11, 'N', 0, ' ', 21, 'N', 0, ' ',
                    &score, 'B', 'X'),
            0);
  EXPECT_EQ(score, 2);
}

}  // namespace
