// Candidate comparison: can this reference record stand for the input
// address, and how good is it? The premise number (or, for records that
// number floors or units, the number in the floor and unit line), the
// building names and the reference code are compared in turn; the first
// test that fails rejects the record. The score and penalties of an accepted
// record decide, with its street score, which reference address the search
// returns.
#include <cstdint>
#include <cstring>

#include "hkmatch/evaluate/candidate_checks.h"
#include "orlo_matcher.h"

namespace orlo {
namespace {

// Results of the comparison.
constexpr uint32_t kAcceptable = 0;
constexpr uint32_t kRejectedNumber = 3;
constexpr uint32_t kRejectedBuilding = 4;

constexpr int32_t kStartScore = 100;
constexpr int32_t kExactStreet = 100;  // a lower street score costs a penalty
constexpr int32_t kUnitBonus = 4;
constexpr int32_t kRefcodeBonus = 6;

// Parser results of a premise number.
constexpr int32_t kTooLong = 1;
constexpr int32_t kEmpty = 2;

// Building likeness → score and penalty; any other likeness rejects.
struct BuildingScore {
  int32_t likeness;
  int32_t score;
  int32_t penalties;
};
constexpr BuildingScore kBuildingScores[] = {
    {100, 6, 0},
    {99, 5, 1},
    {91, 3, 1},
};

struct Comparison {
  int32_t score = kStartScore;
  int32_t penalties = 0;
};

bool odd(int32_t v) {
  return v % 2 != 0;
}

char side_of(int32_t v) {
  return odd(v) ? 'O' : 'E';
}

// The side of the street that the input's premise number lies on.
char input_side(int32_t premrc, const PremiseNumber &in) {
  if (premrc == kEmpty) return 'B';
  if (in.k1 == 'N' && in.k2 == 'N') {
    if (odd(in.v1) != odd(in.v2)) return 'B';
    return side_of(in.v1);
  }
  if (in.k1 == 'N') return side_of(in.v1);
  if (in.k2 == 'G') return side_of(in.v2);
  return 'B';
}

// The record's bounds. A record with only a high number is taken to start
// at 0. False when a bound could not be parsed.
bool reference_bounds(const HKBASEREC &rec, PremiseNumber &low,
                      PremiseNumber &high) {
  if (rec.blorc == kTooLong || rec.bhirc == kTooLong) return false;
  low = {rec.blonum, rec.blotyp, rec.blosub, rec.blosubtyp};
  high = rec.bhirc == kEmpty
             ? low
             : PremiseNumber{rec.bhinum, rec.bhityp, rec.bhisub, rec.bhisubtyp};
  if (low.k1 == ' ' && high.k1 != ' ') low.k1 = 'N';
  return true;
}

// Records whose unit word begins with 'F' number floors: their premise
// number is not tested, their floor always is.
bool numbers_floors(const HKBASEREC &rec) {
  return rec.bqual1[0] == 'F';
}

// The premise number test; false when the number is out of range.
bool premise_in_range(const HKBASEREC &rec, const PremiseNumber &in, char side,
                      const PremiseNumber &low, const PremiseNumber &high,
                      int32_t *score) {
  if (numbers_floors(rec)) return true;
  // A plain number below the record's low number cannot be in range.
  if (in.k1 == 'N' && in.k2 == ' ' && low.k1 == 'N' && in.v1 < low.v1) {
    return false;
  }
  return in_range(in, side, low, high, score, rec.bside);
}

bool wants_unit_check(const HKBASEREC &rec, const PremiseNumber &in,
                      const PremiseNumber &low, const PremiseNumber &high) {
  const bool unit_word = rec.bqual1[0] != '\0' && rec.bqual1[0] != ' ';
  const bool no_premise = in.k1 == ' ' && low.k1 != ' ' && high.k1 != ' ';
  return unit_word && (numbers_floors(rec) || no_premise);
}

// Building names; false rejects the record.
bool compare_buildings(const char *input, const char *record, Comparison &c) {
  if (input[0] == '\0') return record[0] == '\0';
  if (record[0] == '\0') {
    ++c.penalties;
    return true;
  }
  const int32_t likeness = building_likeness(input, record);
  for (const BuildingScore &b : kBuildingScores) {
    if (b.likeness == likeness) {
      c.score += b.score;
      c.penalties += b.penalties;
      return true;
    }
  }
  return false;
}

void compare_refcode(const char *input, const char *record, Comparison &c) {
  if (input[0] == '\0') return;
  if (std::strncmp(input, record, sizeof(HKWORKREC::wk_refcode)) == 0) {
    c.score += kRefcodeBonus;
  } else {
    ++c.penalties;
    c.score -= kRefcodeBonus;
  }
}

uint32_t compare(HKBASEREC &rec, HKWORKREC &work, Comparison &c) {
  const PremiseNumber in{work.wk_prem1, work.wk_prem1kind, work.wk_prem2,
                         work.wk_prem2kind};
  if (work.wk_premrc == kTooLong) return kRejectedNumber;
  if (rec.bscore < kExactStreet) c.penalties = 1;
  const char side = input_side(work.wk_premrc, in);
  PremiseNumber low;
  PremiseNumber high;
  if (!reference_bounds(rec, low, high)) return kRejectedNumber;
  if (!premise_in_range(rec, in, side, low, high, &c.score)) {
    return kRejectedNumber;
  }
  if (wants_unit_check(rec, in, low, high)) {
    switch (check_unit(rec, &work, low, high, &c.score)) {
      case UnitVerdict::kOutOfRange:
        return kRejectedNumber;
      case UnitVerdict::kInRange:
        c.score += kUnitBonus;
        break;
      case UnitVerdict::kUndecided:
        break;
    }
  }
  if (!compare_buildings(work.wk_bldg, rec.bbldg, c)) return kRejectedBuilding;
  compare_refcode(work.wk_refcode, rec.brefcode, c);
  return kAcceptable;
}

}  // namespace

bool in_range(const PremiseNumber &in, char side, const PremiseNumber &low,
              const PremiseNumber &high, int32_t *score, char record_side) {
  return hk_mvir(in.v1, in.k1, in.v2, in.k2, side, low.v1, low.k1, low.v2,
                 low.k2, high.v1, high.k1, high.v2, high.k2, score, record_side,
                 'B') == 1;
}

}  // namespace orlo

extern "C" uint32_t hk_mcte(HKBASEREC *rec, HKWORKREC *work) {
  orlo::Comparison c;
  const uint32_t result = orlo::compare(*rec, *work, c);
  if (result != orlo::kAcceptable) c = {0, 0};
  rec->bmscore = static_cast<int16_t>(c.score);
  rec->bpen = c.penalties;
  return result;
}
