// The premise number range test: does a parsed input premise number lie in
// the range of a reference record, on the side of the street that the record
// serves?
//
// The answer depends on the shapes of the three numbers (which kinds each of
// them carries), so the rules are a decision table: one list of rows per
// input shape, each row naming a reference shape (low / high), the test that
// must hold and what follows from it. A shape is written as its two kinds,
// '.' standing for a blank kind: "N." is a plain number, "NA" a number with a
// letter suffix, "NN" two numbers, "NF" a number and a fraction, "A." letters,
// "AN" letters and a number, "GG" a grid reference, "E." free text.
#include <cstdint>
#include <span>
#include <string_view>

#include "orlo_matcher.h"

namespace orlo {
namespace {

// One parsed number: two values, each with its kind.
struct Number {
  int32_t v1;
  char k1;
  int32_t v2;
  char k2;
};

// The three numbers that a test looks at.
struct Operands {
  Number in;
  Number low;
  Number high;
};

// The tests of the table, named by what must hold of the input (I), the low
// bound (L) and the high bound (H).
enum class Test : uint8_t {
  kNone,                  // no test: the row has no "otherwise" part
  kWithin,                // L1 <= I1 <= H1
  kAtLowOrWithin,         // I1 = L1, or L1 <= I1 <= H1
  kAtHighOrWithin,        // I1 = H1, or L1 <= I1 <= H1
  kAtLow,                 // I1 = L1 and I2 = L2
  kAtHigh,                // I1 = H1 and I2 = H2
  kBothWithin,            // L1 <= I1 <= H1 and L2 <= I2 <= H2
  kAtEndOrBothWithin,     // kAtLow, or kAtHigh, or kBothWithin
  kFromLowUpToHighFirst,  // I1 >= L1, I2 >= L2 and I1 <= H1
  kFromLowFirstUpToHigh,  // I1 >= L1, I2 <= H2 and I1 <= H1
  kWithinBelowHigh,       // L1 <= I1 < H1 (the high number itself excluded)
  kOnGrid,                // grid: at the low corner, on a one-line range, or
                          // at the high corner
  kEqualsLowOrHigh,       // I1 = L1 or I1 = H1
};

// What a test that holds leads to.
enum class Outcome : uint8_t {
  kAccept2,         // with side agreement: score + 2, in range
  kAccept1,         // with side agreement: score + 1, in range
  kAccept0,         // with side agreement: in range, score unchanged
  kAccept2AnySide,  // score + 2, in range, whatever the sides
};

struct Rule {
  Test test;
  Outcome outcome;
};

// One row: a reference shape, its test, and the test tried when the first one
// does not hold ("otherwise").
struct Row {
  std::string_view low;
  std::string_view high;
  Rule first;
  Rule otherwise = {Test::kNone, Outcome::kAccept0};
};

// What happens when the low first kind is not the one the input shape needs.
enum class OtherLowKind : uint8_t {
  kNoNumber,  // a record without a number accepts at score - 1; else 0
  kReject,    // 0, a record without a number included
};

struct InputShape {
  std::string_view shape;
  char low_kind;
  OtherLowKind other_low_kind;
  std::span<const Row> rows;
};

using enum Test;
using enum Outcome;

// Input N., a plain number.
constexpr Row kPlainNumberRows[] = {
    {"N.", "N.", {kWithin, kAccept2}},
    {"N.", "NA", {kAtLowOrWithin, kAccept2}},
    {"N.", "NF", {kAtLowOrWithin, kAccept2}},
    {"N.", "NN", {kAtLowOrWithin, kAccept2}},
    {"NA", "N.", {kAtHighOrWithin, kAccept2}},
    {"NN", "N.", {kAtHighOrWithin, kAccept2}},
    {"NF", "N.", {kWithin, kAccept2}},
    {"NF", "NF", {kWithin, kAccept2}},
    {"NA", "NA", {kWithin, kAccept2}},
};

// Input NN, a pair of numbers such as 12 14.
constexpr Row kNumberPairRows[] = {
    {"N.", "N.", {kWithin, kAccept0}},
    {"N.", "NN", {kAtHigh, kAccept2}, {kWithin, kAccept1}},
    {"NN", "N.", {kAtLow, kAccept2}, {kFromLowUpToHighFirst, kAccept1}},
    {"NN", "NN", {kBothWithin, kAccept2}},
};

// Input NA, a number with a letter suffix.
constexpr Row kLetterSuffixRows[] = {
    {"NA", "NA", {kAtEndOrBothWithin, kAccept2}},
    {"N.", "NA", {kAtHigh, kAccept2}, {kFromLowFirstUpToHigh, kAccept2}},
    {"NA", "N.", {kAtLow, kAccept2}, {kFromLowUpToHighFirst, kAccept2}},
    {"N.", "N.", {kWithin, kAccept1}},
    {"N.", "NF", {kWithin, kAccept1}},
    {"NF", "NF", {kWithin, kAccept1}},
    {"NF", "N.", {kWithin, kAccept1}},
};

// Input NF, a number and a fraction.
constexpr Row kFractionRows[] = {
    {"NF", "NF", {kBothWithin, kAccept2}},
    {"N.", "NF", {kAtHigh, kAccept2}, {kFromLowFirstUpToHigh, kAccept2}},
    {"NF", "N.", {kAtLow, kAccept2}, {kFromLowUpToHighFirst, kAccept2}},
    {"N.", "NA", {kWithinBelowHigh, kAccept2}},
    {"NA", "N.", {kWithinBelowHigh, kAccept2}},
    {"NA", "NA", {kWithin, kAccept2}},
    {"N.", "N.", {kWithin, kAccept1}},
};

// Input A., letters only.
constexpr Row kLettersRows[] = {
    {"A.", "A.", {kWithin, kAccept2}},
};

// Input AN, letters and a number. The second value is not tested against
// the high bound.
constexpr Row kLettersNumberRows[] = {
    {"AN", "AN", {kFromLowUpToHighFirst, kAccept2}},
    {"A.", "A.", {kWithin, kAccept1}},
};

// Input GG, a grid reference.
constexpr Row kGridRows[] = {
    {"GG", "GG", {kOnGrid, kAccept2}},
};

// Input E., free text: equal text codes accept whatever the sides.
constexpr Row kFreeTextRows[] = {
    {"E.", "E.", {kEqualsLowOrHigh, kAccept2AnySide}},
};

constexpr InputShape kInputShapes[] = {
    {"N.", 'N', OtherLowKind::kNoNumber, kPlainNumberRows},
    {"NN", 'N', OtherLowKind::kNoNumber, kNumberPairRows},
    {"NA", 'N', OtherLowKind::kNoNumber, kLetterSuffixRows},
    {"NF", 'N', OtherLowKind::kNoNumber, kFractionRows},
    {"A.", 'A', OtherLowKind::kReject, kLettersRows},
    {"AN", 'A', OtherLowKind::kNoNumber, kLettersNumberRows},
    {"GG", 'G', OtherLowKind::kNoNumber, kGridRows},
    {"E.", 'E', OtherLowKind::kNoNumber, kFreeTextRows},
};

// The kind that a shape letter stands for ('.' is the blank kind).
constexpr char kind_of(char shape_letter) {
  return shape_letter == '.' ? ' ' : shape_letter;
}

constexpr bool has_shape(std::string_view shape, char k1, char k2) {
  return kind_of(shape[0]) == k1 && kind_of(shape[1]) == k2;
}

bool within(int32_t v, int32_t lo, int32_t hi) {
  return lo <= v && v <= hi;
}

bool holds(Test test, const Operands &o) {
  const Number &i = o.in;
  const Number &l = o.low;
  const Number &h = o.high;
  switch (test) {
    case kNone:
      return false;
    case kWithin:
      return within(i.v1, l.v1, h.v1);
    case kAtLowOrWithin:
      return i.v1 == l.v1 || within(i.v1, l.v1, h.v1);
    case kAtHighOrWithin:
      return i.v1 == h.v1 || within(i.v1, l.v1, h.v1);
    case kAtLow:
      return i.v1 == l.v1 && i.v2 == l.v2;
    case kAtHigh:
      return i.v1 == h.v1 && i.v2 == h.v2;
    case kBothWithin:
      return within(i.v1, l.v1, h.v1) && within(i.v2, l.v2, h.v2);
    case kAtEndOrBothWithin:
      return holds(kAtLow, o) || holds(kAtHigh, o) || holds(kBothWithin, o);
    case kFromLowUpToHighFirst:
      return i.v1 >= l.v1 && i.v2 >= l.v2 && i.v1 <= h.v1;
    case kFromLowFirstUpToHigh:
      return i.v1 >= l.v1 && i.v2 <= h.v2 && i.v1 <= h.v1;
    case kWithinBelowHigh:
      return l.v1 <= i.v1 && i.v1 < h.v1;
    case kOnGrid:
      return holds(kAtLow, o) ||
             (i.v1 == l.v1 && l.v1 == h.v1 && within(i.v2, l.v2, h.v2)) ||
             holds(kAtHigh, o);
    case kEqualsLowOrHigh:
      return i.v1 == l.v1 || i.v1 == h.v1;
  }
  return false;
}

// The decision of the range test: in range or not, and the change to the
// comparison score.
struct Verdict {
  int32_t in_range;
  int32_t score_change;
};

constexpr Verdict kNotInRange = {0, 0};

struct Sides {
  char input;
  char record;
  char both;
  bool agree() const {
    return input == record || record == both || input == both;
  }
};

Verdict settle(Outcome outcome, const Sides &sides) {
  if (outcome == kAccept2AnySide) return {1, 2};
  if (!sides.agree()) return kNotInRange;
  switch (outcome) {
    case kAccept2:
      return {1, 2};
    case kAccept1:
      return {1, 1};
    case kAccept0:
    case kAccept2AnySide:
      break;
  }
  return {1, 0};
}

// A row decides by its first test that holds; a test that holds with sides
// that disagree still decides (not in range), so "otherwise" is not tried.
Verdict decide(const Row &row, const Operands &o, const Sides &sides) {
  for (const Rule &rule : {row.first, row.otherwise}) {
    if (holds(rule.test, o)) return settle(rule.outcome, sides);
  }
  return kNotInRange;
}

// A reference without any number accepts every numbered input at a cost.
Verdict no_number(char low_kind) {
  return low_kind == ' ' ? Verdict{1, -1} : kNotInRange;
}

Verdict range_test(const Operands &o, const Sides &sides) {
  // Without a premise number there is nothing to test.
  if (o.in.k1 == ' ' && o.in.k2 == ' ') return {1, 0};
  for (const InputShape &input : kInputShapes) {
    if (!has_shape(input.shape, o.in.k1, o.in.k2)) continue;
    if (o.low.k1 != input.low_kind) {
      return input.other_low_kind == OtherLowKind::kNoNumber
                 ? no_number(o.low.k1)
                 : kNotInRange;
    }
    for (const Row &row : input.rows) {
      if (has_shape(row.low, o.low.k1, o.low.k2) &&
          has_shape(row.high, o.high.k1, o.high.k2)) {
        return decide(row, o, sides);
      }
    }
    return kNotInRange;
  }
  return kNotInRange;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t hk_mvir(int32_t i1, char k1, int32_t i2, char k2, char side,
                           int32_t l1, char lk1, int32_t l2, char lk2,
                           int32_t h1, char hk1, int32_t h2, char hk2,
                           int32_t *score, char rside, char both) {
  const orlo::Operands operands{
      {i1, k1, i2, k2}, {l1, lk1, l2, lk2}, {h1, hk1, h2, hk2}};
  const orlo::Verdict verdict =
      orlo::range_test(operands, orlo::Sides{side, rside, both});
  if (score != nullptr && verdict.score_change != 0) {
    // Wrapping addition: a caller's extreme score must not overflow.
    *score = static_cast<int32_t>(static_cast<uint32_t>(*score) +
                                  static_cast<uint32_t>(verdict.score_change));
  }
  return verdict.in_range;
}
