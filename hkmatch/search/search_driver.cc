// hk_mpro: one address search. It finds the region in the index, keeps the
// region's street table from search to search, collects candidate streets
// in up to two passes (exact, then fuzzy) and has their base records
// scored; the state it leaves lets the next search on the same region and
// street reuse the candidates and their unpacked records.
#include <cstdio>
#include <cstring>

#include "hkmatch/refdata/street_table.h"
#include "hkmatch/search/diagnostics.h"
#include "hkmatch/search/record_scoring.h"
#include "hkmatch/search/street_scan.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"
#include "orlo_records.h"

namespace orlo {
namespace {

constexpr int kKeyLen = 30;

struct Search {
  HKMCB *mcb;
  HKWORKREC *work;
  char *outrec;
  const char *inrec;
  char *namelist;
  char *reclist;
  int32_t level;
  bool reuse = false;
  bool exact = false;  // a street of score 100 has been found
  int32_t count = 0;   // candidates of the latest pass
  HKBASEREC *chosen = nullptr;
};

char in_mode(const Search &s) {
  return s.inrec[HKIN_MODE_OFF];
}
char &matchstat(const Search &s) {
  return s.outrec[HKOUT_MATCHSTAT_OFF];
}

// An error ends the search; the candidates it may have replaced must not
// be reused by the next one.
int32_t fail(Search &s, char code) {
  s.outrec[HKOUT_RETCODE_OFF] = code;
  s.mcb->laststat = 2;
  return 1;
}

void forget_last(HKMCB *mcb) {
  std::memset(mcb->lastkey, 0, sizeof mcb->lastkey);
  std::memset(mcb->lastname, 0, sizeof mcb->lastname);
}

// No region to search: the output echoes the input.
int32_t no_region(Search &s) {
  forget_last(s.mcb);
  s.mcb->laststat = 2;
  s.mcb->lastcnt = 0;
  matchstat(s) = HKMS_NO_KEY;
  s.outrec[HKOUT_RETCODE_OFF] = HKRC_OK;
  hk_fret(s.work, nullptr, s.inrec, s.mcb, s.outrec);
  return 1;
}

// select_region's answer for a key that is not in the index (no return code
// of the matcher is a NUL).
constexpr char kKeyNotFound = '\0';

// Makes the street table of the key current. Returns '0', kKeyNotFound, or
// an error code.
char select_region(Search &s, const char *key) {
  HKMCB *mcb = s.mcb;
  const char *street = s.work->wk_street;
  if (std::memcmp(key, mcb->lastkey, kKeyLen) == 0) {
    if (street[0] != '\0' &&
        std::strncmp(street, mcb->lastname, sizeof mcb->lastname) == 0) {
      s.reuse = true;
    } else {
      std::strncpy(mcb->lastname, street, sizeof mcb->lastname);
    }
    return HKRC_OK;
  }
  forget_last(mcb);
  drop_region(mcb);
  int32_t idx = find_region(mcb, key);
  if (idx < 0) return kKeyNotFound;
  std::memcpy(mcb->lastkey, key, kKeyLen);
  mcb->lastidx = idx;
  std::strncpy(mcb->lastname, street, sizeof mcb->lastname);
  char code = select_street_table(mcb, idx);
  // Without its table the key must not look loaded to the next search.
  if (code != HKRC_OK) forget_last(mcb);
  return code;
}

enum class Step { kNextPass, kEnd, kReturn };

// What a pass leaves the search to do; `ret` is hk_mpro's result when the
// search returns at once.
struct PassStep {
  Step step;
  int32_t ret = 0;
};

PassStep returning(int32_t ret) {
  return {Step::kReturn, ret};
}

// One pass: its candidates, then their records.
PassStep run_pass(Search &s, int32_t pass) {
  HKMCB *mcb = s.mcb;
  matchstat(s) = HKMS_NONE;
  if (s.reuse) {
    s.count = mcb->lastcnt;
    if (s.count > 0) s.exact = true;
  } else {
    char code = reset_candidates(mcb);
    if (code != HKRC_OK) return returning(fail(s, code));
    s.count = 0;
    if (mcb->listmode == 2) {
      list_street_names(stderr, *mcb);
      return returning(0);
    }
    ScanRequest req{s.work->wk_street, s.work->wk_region, pass, s.level,
                    in_mode(s)};
    code = collect_candidates(mcb, req, &s.count, &s.exact);
    if (code != HKRC_OK) return returning(fail(s, code));
  }
  if (s.count == 0) {
    s.outrec[HKOUT_RETCODE_OFF] = HKRC_OK;
    matchstat(s) = HKMS_NO_STREET;
    return {Step::kNextPass};
  }
  PassInput in{s.work,  s.outrec, s.inrec, s.reclist,
               s.count, s.exact,  s.level, s.reuse};
  PassResult r = score_candidates(mcb, in);
  switch (r.end) {
    case PassEnd::kChosen:
      s.chosen = r.chosen;
      return {Step::kEnd};
    case PassEnd::kNoChoice:
      return {Step::kNextPass};
    case PassEnd::kExtractDone:
      return returning(0);
    case PassEnd::kFailed:
      break;
  }
  return returning(fail(s, r.code));
}

// Whether the search stops before pass `pass`.
bool stops_before(const Search &s, int32_t pass) {
  const HKMCB *mcb = s.mcb;
  if (pass > 0) {
    if (mcb->outmode == 1 || mcb->outmode == 2) return true;
    if (in_mode(s) == '3') return true;
    if (s.exact && mcb->passopt != 2) return true;
  }
  return pass == 1 && mcb->passopt == 1;
}

int32_t run_search(Search &s) {
  HKMCB *mcb = s.mcb;
  if (mcb->listmode == 3) {
    if (s.namelist != nullptr) std::memset(s.namelist, ' ', kNameListSize);
    if (s.reclist != nullptr) std::memset(s.reclist, ' ', kRecListSize);
  }
  const char *region = s.work->wk_region;
  if (region[0] == ' ' || region[0] == '\0' || in_mode(s) == 'F') {
    return no_region(s);
  }
  char key[kKeyLen];
  std::memset(key, ' ', sizeof key);
  std::memcpy(key, region, strnlen(region, kKeyLen));
  char code = select_region(s, key);
  if (code == kKeyNotFound) return no_region(s);
  if (code != HKRC_OK) return fail(s, code);
  if (mcb->listmode == 3 && s.namelist != nullptr) {
    fill_name_list(*mcb, s.work->wk_street, s.namelist);
  }
  s.reuse = s.reuse && mcb->laststat == 0;
  int32_t pass = 0;
  for (; pass <= 1; ++pass) {
    if (pass > 0) s.reuse = false;  // only a first pass reuses
    if (stops_before(s, pass)) break;
    PassStep next = run_pass(s, pass);
    if (next.step == Step::kReturn) return next.ret;
    if (next.step == Step::kEnd) break;
  }
  hk_fret(s.work, s.chosen, s.inrec, mcb, s.outrec);
  // A search that starts fuzzy never counts as settled by its first pass.
  if (s.level != 0 && pass == 0) pass = 1;
  mcb->laststat = pass;
  mcb->lastcnt = s.count;
  return 0;
}

}  // namespace
}  // namespace orlo

extern "C" ORLO_API int32_t hk_mpro(void *handle, HKWORKREC *work, char *outrec,
                                    const char *inrec, char *namelist,
                                    char *reclist, int32_t level,
                                    char * /*area*/, int32_t /*zero*/,
                                    char * /*area30*/) {
  HKMCB *mcb = handle != nullptr ? *static_cast<HKMCB **>(handle) : nullptr;
  if (mcb == nullptr) return 1;
  orlo::Search s{mcb, work, outrec, inrec, namelist, reclist, level};
  int32_t ret = orlo::run_search(s);
  // The extract file is never closed by the library; flushing it after each
  // search means a crash loses nothing that was written.
  if (mcb->outfp != nullptr) std::fflush(mcb->outfp);
  return ret;
}
