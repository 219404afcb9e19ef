// The base records of a pass's candidate streets: their unpacked records
// (from the reference store, or unpacked from their blocks and offered to
// the store), comparison with the input, the match status, and the choice
// of one record.
//
// The value of a record is the mean of its street score and its comparison
// score; it is compared here as the sum of the two, which is exact (the
// mean of two integers is a whole or half number) and needs no floating
// point: a mean of 93.0 is a sum of 186.
#include "hkmatch/search/record_scoring.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "hkmatch/refdata/packed_record.h"
#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/reference_format.h"
#include "hkmatch/refdata/reference_store.h"
#include "hkmatch/refdata/search_alloc.h"
#include "hkmatch/search/diagnostics.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo {
namespace {

struct Pass {
  HKMCB *mcb;
  const PassInput &in;
  int32_t slot = 0;  // summaries offered to listing mode 3
  int64_t k = 0;     // next record of baserecs
};

int32_t sum_of(const HKBASEREC &r) {
  return r.bscore + r.bmscore;
}

// First pass over fresh records: an accepted record ('0') is never
// downgraded, and a building rejection outranks a number rejection.
void note_fresh(char &stat, uint32_t r) {
  if (r == 4 && stat != HKMS_ACCEPTED) {
    stat = HKMS_REJECTED;
  } else if (r == 3 && stat != HKMS_REJECTED && stat != HKMS_ACCEPTED) {
    stat = HKMS_PREMISE;
  } else if (r == 0) {
    stat = HKMS_ACCEPTED;
  }
}

// Reuse pass: the same, except that an earlier '0' is not protected.
void note_reused(char &stat, uint32_t r) {
  if (r == 4) {
    stat = HKMS_REJECTED;
  } else if (r == 3 && stat != HKMS_REJECTED) {
    stat = HKMS_PREMISE;
  } else if (r == 0) {
    stat = HKMS_ACCEPTED;
  }
}

void list_record(Pass &p, const HKBASEREC &rec, const STREETENT &e,
                 uint32_t r) {
  const HKMCB *mcb = p.mcb;
  if (mcb->listmode == 1) {
    hk_disd(&rec, &e, mcb);
    return;
  }
  if (mcb->listmode != 3 || (r != 0 && r != 4 && r != 5)) return;
  // With an exact street in hand, records of other streets are not shown.
  if (p.in.exact && p.in.level <= 1 && rec.bscore != 100) return;
  if (p.slot < kSummarySlots && p.in.reclist != nullptr) {
    hk_dsus(&rec, &e, p.in.inrec, mcb, p.in.reclist + p.slot * kSummarySize);
  }
  ++p.slot;
}

void compare(Pass &p, HKBASEREC &rec, const STREETENT &e, bool reused) {
  uint32_t r = hk_mcte(&rec, p.in.work);
  char &stat = p.in.outrec[HKOUT_MATCHSTAT_OFF];
  if (reused) {
    note_reused(stat, r);
  } else {
    note_fresh(stat, r);
  }
  list_record(p, rec, e, r);
}

// Reads the street's packed block into blockbuf.
char fetch_block(HKMCB *mcb, const STREETENT &e, const unsigned char **block) {
  if (e.blen > 0 &&
      read_basedata(mcb, e.boff, e.blen, mcb->blockbuf) != HKRC_OK) {
    return HKRC_BASEDATA_SEEK;
  }
  *block = reinterpret_cast<const unsigned char *>(mcb->blockbuf);
  return HKRC_OK;
}

// Unpacks the record at *pos of the block into rec and steps past it.
// Returns false when the record is malformed or lies outside the block.
bool unpack_next(const unsigned char *block, uint32_t blen, size_t *pos,
                 HKBASEREC *rec) {
  if (*pos >= blen || !unpack_checked(rec, block + *pos, blen - *pos)) {
    return false;
  }
  *pos += static_cast<size_t>(static_cast<signed char>(block[*pos]));
  return true;
}

// Compares record p.k, which holds record j of candidate i, and moves on.
void compare_next(Pass &p, const STREETENT &e, int32_t i) {
  HKBASEREC &rec = p.mcb->baserecs[p.k++];
  rec.bscore = p.mcb->candscore[i];
  rec.bcand = i;
  compare(p, rec, e, /*reused=*/false);
}

// Compares the street's records, placed in baserecs from p.k on: copied
// from the store when some search has unpacked them, else unpacked from the
// block one by one (each compared before the next is unpacked, so that a
// record that does not decode stops the pass where it stands) and then
// offered to the store. Returns '0', or '5' when the block cannot be read
// or walked.
char compare_street(Pass &p, const STREETENT &e, int32_t i) {
  HKMCB *mcb = p.mcb;
  HKBASEREC *out = mcb->baserecs + p.k;
  const int32_t entry = static_cast<int32_t>(&e - mcb->lvl2tab);
  if (const HKBASEREC *shared = store_street_records(mcb, entry)) {
    std::memcpy(out, shared, size_t{e.bcnt} * sizeof(HKBASEREC));
    for (uint16_t j = 0; j < e.bcnt; ++j) compare_next(p, e, i);
    return HKRC_OK;
  }
  const unsigned char *block = nullptr;
  if (char code = fetch_block(mcb, e, &block); code != HKRC_OK) return code;
  size_t pos = 0;
  for (uint16_t j = 0; j < e.bcnt; ++j) {
    if (!unpack_next(block, e.blen, &pos, &out[j])) return HKRC_BASEDATA_SEEK;
    out[j].bpen = 0;  // the unpacker leaves the search's fields alone
    compare_next(p, e, i);
  }
  store_publish_records(mcb, entry, out, e.bcnt);
  return HKRC_OK;
}

char extract_block(const HKMCB *mcb, const STREETENT &e,
                   const unsigned char *block) {
  HKBASEREC rec;
  size_t pos = 0;
  for (uint16_t j = 0; j < e.bcnt; ++j) {
    if (!unpack_next(block, e.blen, &pos, &rec)) return HKRC_BASEDATA_SEEK;
    if (mcb->outfp != nullptr) write_base_extract(mcb->outfp, rec, e);
  }
  return HKRC_OK;
}

char score_street(Pass &p, const STREETENT &e, int32_t i) {
  HKMCB *mcb = p.mcb;
  if (mcb->outmode == 0) return compare_street(p, e, i);
  // The extracts read every block and compare nothing.
  const unsigned char *block = nullptr;
  if (char code = fetch_block(mcb, e, &block); code != HKRC_OK) return code;
  return mcb->outmode == 2 ? extract_block(mcb, e, block) : HKRC_OK;
}

// The most records of the candidates that a fresh pass can write. A block
// outside BASEDATA fails its read before any record is written, a walk fails
// at the first record that does not fit, and records take at least
// refdb::kMinRecordBytes bytes, so a street not yet unpacked yields at most
// blen / refdb::kMinRecordBytes records before its walk succeeds or fails. A
// corrupt count beyond that must not make the pass reserve (and zero) room
// it can never fill. On sound data this is the sum of the counts.
int64_t writable_records(const HKMCB *mcb, int32_t count) {
  int64_t n = 0;
  for (int32_t i = 0; i < count; ++i) {
    const STREETENT &e = *mcb->cands[i];
    const int32_t entry = static_cast<int32_t>(&e - mcb->lvl2tab);
    if (store_street_records(mcb, entry) != nullptr) {
      n += e.bcnt;
      continue;
    }
    bool inside = basedata_range_inside(mcb, e.boff, e.blen);
    int64_t fit =
        inside ? e.blen / static_cast<int64_t>(refdb::kMinRecordBytes) + 1 : 0;
    n += std::min<int64_t>(e.bcnt, fit);
  }
  return n;
}

char score_fresh(Pass &p, uint32_t maxlen) {
  HKMCB *mcb = p.mcb;
  if (mcb->outmode == 0 && !reserve(&mcb->baserecs, &mcb->reccap,
                                    writable_records(mcb, p.in.count))) {
    return HKRC_STORAGE;
  }
  mcb->basecur = mcb->baserecs;
  // A block longer than BASEDATA fails its bounds check before anything is
  // read, so the buffer never needs to be larger than the file: a corrupt
  // length must not make the pass allocate gigabytes first.
  int64_t buflen = std::clamp<int64_t>(mcb->basesize, 0, maxlen);
  if (!reserve(&mcb->blockbuf, &mcb->blockcap, buflen)) return HKRC_STORAGE;
  for (int32_t i = 0; i < p.in.count; ++i) {
    char code = score_street(p, *mcb->cands[i], i);
    if (code != HKRC_OK) return code;
  }
  return HKRC_OK;
}

// Compares again the records that the last search left in baserecs.
char score_again(Pass &p, int64_t total) {
  HKMCB *mcb = p.mcb;
  if (mcb->baserecs == nullptr || mcb->reccap < total) return HKRC_STORAGE;
  for (int32_t i = 0; i < p.in.count; ++i) {
    const STREETENT &e = *mcb->cands[i];
    for (uint16_t j = 0; j < e.bcnt; ++j) {
      HKBASEREC &rec = mcb->baserecs[p.k++];
      rec.bmscore = 0;
      compare(p, rec, e, /*reused=*/true);
    }
  }
  return HKRC_OK;
}

// The reference code and identifier, each blank-padded, side by side.
void ref_pair(const HKBASEREC &r, char *out) {
  std::memset(out, ' ', 8);
  std::memcpy(out, r.brefcode, strnlen(r.brefcode, 3));
  std::memcpy(out + 3, r.brefid, strnlen(r.brefid, 5));
}

}  // namespace

int64_t choose_record(const HKBASEREC *recs, int64_t n, bool *tie) {
  *tie = false;
  if (n <= 0) return -1;
  int64_t best = 0;
  for (int64_t k = 1; k < n; ++k) {
    if (sum_of(recs[k]) > sum_of(recs[best])) best = k;
  }
  int32_t bestsum = sum_of(recs[best]);
  if (bestsum < kQualifyingSum) return -1;
  // Among qualifying records, fewer penalties win over a higher value.
  int32_t bestpen = recs[best].bpen;
  if (bestpen > 1) {
    for (int64_t k = 0; k < n; ++k) {
      if (sum_of(recs[k]) >= kQualifyingSum && recs[k].bpen < bestpen) {
        best = k;
        bestpen = recs[k].bpen;
        bestsum = sum_of(recs[k]);
      }
    }
  }
  char first[8];
  char other[8];
  bool seen = false;
  for (int64_t k = 0; k < n; ++k) {
    if (sum_of(recs[k]) != bestsum) continue;
    if (!seen) {
      ref_pair(recs[k], first);
      seen = true;
      continue;
    }
    ref_pair(recs[k], other);
    if (std::memcmp(first, other, sizeof first) != 0) *tie = true;
  }
  return best;
}

PassResult score_candidates(HKMCB *mcb, const PassInput &in) {
  Pass p{mcb, in};
  if (mcb->listmode == 3 && in.reclist != nullptr) {
    std::memset(in.reclist, ' ', kRecListSize);
  }
  int64_t total = 0;
  uint32_t maxlen = 0;
  for (int32_t i = 0; i < in.count; ++i) {
    total += mcb->cands[i]->bcnt;
    maxlen = std::max(maxlen, mcb->cands[i]->blen);
  }
  char code = in.reuse ? score_again(p, total) : score_fresh(p, maxlen);
  if (code != HKRC_OK) return {PassEnd::kFailed, nullptr, code};
  if (mcb->outmode == 1) return {PassEnd::kExtractDone};
  // The base record extract compares nothing, so there is nothing to
  // choose from.
  if (mcb->outmode == 2) return {PassEnd::kNoChoice};
  bool tie = false;
  int64_t best = choose_record(mcb->baserecs, total, &tie);
  char &stat = in.outrec[HKOUT_MATCHSTAT_OFF];
  if (best < 0) {
    if (stat == HKMS_ACCEPTED) stat = HKMS_REJECTED;
    return {PassEnd::kNoChoice};
  }
  in.outrec[HKOUT_RETCODE_OFF] = HKRC_REFERENCE;
  if (tie) stat = HKMS_TIE;
  return {PassEnd::kChosen, &mcb->baserecs[best]};
}

}  // namespace orlo
