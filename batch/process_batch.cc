// orlo_process_batch: a batch of records through the "P" call of hk_mtci,
// one after the other on one instance. Going through the call itself (and
// not a copy of what it does) keeps every result and counter the same as
// record-by-record calls by construction.
#include <cstddef>

#include "orlo_batch.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"
#include "orlo_records.h"

namespace {

bool processed(const char *outrec) {
  char rc = outrec[HKOUT_RETCODE_OFF];
  return rc == HKRC_OK || rc == HKRC_REFERENCE;
}

}  // namespace

extern "C" int32_t orlo_process_batch(void *handle, const char *in_recs,
                                      char *out_recs, int32_t count) {
  if (count <= 0) return 0;
  if (in_recs == nullptr || out_recs == nullptr) return -1;
  int32_t done = 0;
  for (int32_t i = 0; i < count; ++i) {
    const char *in = in_recs + static_cast<size_t>(i) * HKINREC_SIZE;
    char *out = out_recs + static_cast<size_t>(i) * HKOUTREC_SIZE;
    // No list areas: the search writes them only in listing mode 3, where
    // each record would overwrite the lists of the one before.
    hk_mtci("P", handle, in, out, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr);
    if (processed(out)) ++done;
  }
  return done;
}
