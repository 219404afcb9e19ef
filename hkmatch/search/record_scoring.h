// Scoring of the base records of a pass's candidate streets and the choice
// of one of them.
#ifndef ORLO_HKMATCH_SEARCH_RECORD_SCORING_H
#define ORLO_HKMATCH_SEARCH_RECORD_SCORING_H

#include <cstdint>

#include "orlo_matcher.h"

namespace orlo {

// A record qualifies when bscore + bmscore reaches this: the mean of the
// street score and the comparison score is then at least 93.
inline constexpr int32_t kQualifyingSum = 186;

struct PassInput {
  HKWORKREC *work;
  char *outrec;
  const char *inrec;
  char *reclist;  // caller's area for listing mode 3
  int32_t count;  // candidates in cands
  bool exact;     // a candidate street scored 100
  int32_t level;
  bool reuse;  // compare again the records that the last search unpacked
};

enum class PassEnd {
  kChosen,       // out_retcode '1'; `chosen` is the record
  kNoChoice,     // the search goes on with its next pass
  kExtractDone,  // street extract mode: the search ends here
  kFailed,       // `code` is the return code ('3' or '5')
};

struct PassResult {
  PassEnd end;
  HKBASEREC *chosen = nullptr;
  char code = '0';
};

// Reads, unpacks and compares the base records of the candidates of one
// pass, keeps out_matchstat up to date, writes the listings and extracts,
// and chooses a record.
PassResult score_candidates(HKMCB *mcb, const PassInput &in);

// Index of the chosen record among n scored records, or -1 when none
// qualifies. *tie is set when several records share the best value with
// different reference codes or identifiers.
int64_t choose_record(const HKBASEREC *recs, int64_t n, bool *tie);

}  // namespace orlo

#endif  // ORLO_HKMATCH_SEARCH_RECORD_SCORING_H
