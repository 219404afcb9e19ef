// The steps of comparing one reference record with the prepared input that
// live in files of their own: the floor and unit check and the likeness of
// two building names. hk_mcte runs them in order.
#ifndef ORLO_HKMATCH_EVALUATE_CANDIDATE_CHECKS_H
#define ORLO_HKMATCH_EVALUATE_CANDIDATE_CHECKS_H

#include <cstdint>

#include "orlo_matcher.h"

namespace orlo {

// A parsed premise number: two values, each with its kind.
struct PremiseNumber {
  int32_t v1;
  char k1;
  int32_t v2;
  char k2;
};

// The range test of `in`, on input side `side`, against [low, high] of a
// record whose side is `record_side`; may change *score.
bool in_range(const PremiseNumber &in, char side, const PremiseNumber &low,
              const PremiseNumber &high, int32_t *score, char record_side);

enum class UnitVerdict {
  kUndecided,   // no number in the unit line settled it
  kInRange,     // a floor or unit number lies in the record's range
  kOutOfRange,  // a floor or unit number lies outside it
};

// Looks for a floor or unit number in the input's floor and unit line and
// tests it against the record's range. Range tests may change *score (the
// caller adds the bonus for kInRange); every converted number leaves its
// parser result in work->wk_premrc. rec.bqual1 must be a non-empty unit
// word that does not begin with a blank.
UnitVerdict check_unit(const HKBASEREC &rec, HKWORKREC *work,
                       const PremiseNumber &low, const PremiseNumber &high,
                       int32_t *score);

// Likeness of two non-empty building names (the input's and the record's,
// NUL-terminated, at most 30 characters each): 100, 99 or 91 accept, any
// other value rejects.
int32_t building_likeness(const char *input, const char *record);

}  // namespace orlo

#endif  // ORLO_HKMATCH_EVALUATE_CANDIDATE_CHECKS_H
