// Region lookup by bisection of the index held in memory, and the current
// region's street table, which the instance's reference store holds.
#include "hkmatch/refdata/street_table.h"

#include <cstring>

#include "hkmatch/refdata/key_bisect.h"
#include "hkmatch/refdata/reference_format.h"
#include "hkmatch/refdata/reference_store.h"
#include "orlo_codes.h"

namespace orlo {

void pad_name(const char *name, char *out) {
  size_t n = strnlen(name, kPaddedName);
  std::memcpy(out, name, n);
  std::memset(out + n, ' ', kPaddedName - n);
}

int32_t find_region(const HKMCB *mcb, const char *key) {
  if (mcb->lvl1tab == nullptr) return -1;
  return bisect_keys(mcb->lvl1tab[0].l1key, sizeof mcb->lvl1tab[0],
                     mcb->lvl1cnt, key, refdb::kKeyBytes);
}

char select_street_table(HKMCB *mcb, int32_t idx) {
  drop_region(mcb);
  char code = HKRC_OK;
  const RegionTable *t = store_region(mcb, idx, &code);
  if (t == nullptr) return code;
  // The table is the store's and never written; STREETENT is the record
  // layout callers know, hence the pointer without const.
  mcb->lvl2tab = const_cast<STREETENT *>(t->entries);
  mcb->lvl2cnt = t->count;
  mcb->lvl2initials = t->initials;
  return HKRC_OK;
}

int32_t first_with_initial(const HKMCB *mcb, unsigned char c) {
  int32_t low = 0;
  int32_t high = mcb->lvl2cnt;
  while (low < high) {
    int32_t mid = low + (high - low) / 2;
    if (padded_initial(mcb->lvl2tab[mid]) < c) {
      low = mid + 1;
    } else {
      high = mid;
    }
  }
  return low;
}

int32_t find_street(const HKMCB *mcb, const char *padded) {
  return region_find_street(mcb, padded);
}

void drop_region(HKMCB *mcb) {
  mcb->lvl2tab = nullptr;
  mcb->lvl2cnt = 0;
  mcb->lvl2initials = 0;
  mcb->cacheused = 0;
}

}  // namespace orlo
