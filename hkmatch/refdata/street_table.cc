// Region lookup by bisection of the index held in memory, and loading of a
// region's street table from its LEVEL2 segment with every record checked
// against the segment before it is used.
#include "hkmatch/refdata/street_table.h"

#include <cstdlib>
#include <cstring>

#include "common/byte_order.h"
#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/reference_format.h"
#include "hkmatch/refdata/search_alloc.h"
#include "orlo_codes.h"

namespace orlo {
namespace {

constexpr size_t kRecordHead = refdb::kLevel2FixedBytes;
constexpr size_t kMaxName = refdb::kMaxNameBytes;

// Copies the NUL-terminated name at `name`, of which `room` bytes lie in
// the segment, into sname. Returns its length, or -1 when no NUL ends it
// within the segment and within 30 characters.
int copy_name(const unsigned char *name, size_t room, char *sname) {
  size_t limit = room < kMaxName + 1 ? room : kMaxName + 1;
  for (size_t k = 0; k < limit; ++k) {
    sname[k] = static_cast<char>(name[k]);
    if (name[k] == 0) return static_cast<int>(k);
  }
  return -1;
}

// Fills every field of the table's entries from the segment. Returns false
// when a record's head or its name does not lie inside the segment, or the
// segment ends before the last record.
bool walk_segment(const unsigned char *seg, size_t len, STREETENT *tab,
                  uint16_t count) {
  size_t pos = 0;
  for (uint16_t i = 0; i < count; ++i) {
    if (len - pos < kRecordHead + 1) return false;
    STREETENT &e = tab[i];
    int n =
        copy_name(seg + pos + kRecordHead, len - pos - kRecordHead, e.sname);
    if (n < 0) return false;
    e.boff = load_be32(seg + pos + refdb::kLevel2OffsetAt);
    e.blen = load_be32(seg + pos + refdb::kLevel2LengthAt);
    e.bcnt = load_be16(seg + pos + refdb::kLevel2CountAt);
    e.bpack = nullptr;
    e.bunpk = nullptr;
    e.sscore = 0;
    pos += kRecordHead + static_cast<size_t>(n) + 1;
  }
  return true;
}

// Bisection over `count` sorted entries, with the matcher's own midpoint
// rule; compare(i) orders entry i against the key as memcmp does. Returns
// the index of an equal entry, or -1.
template <typename Compare>
int32_t bisect(int32_t count, Compare compare) {
  int32_t low = 0;
  int32_t high = count - 1;
  while (low <= high) {
    const int32_t mid = low + (high - low) / 2;
    const int c = compare(mid);
    if (c > 0) {
      high = mid - 1;
    } else if (c < 0) {
      low = mid + 1;
    } else {
      return mid;
    }
  }
  return -1;
}

bool in_order_of_initials(const STREETENT *tab, uint16_t count) {
  for (uint16_t i = 1; i < count; ++i) {
    if (padded_initial(tab[i]) < padded_initial(tab[i - 1])) return false;
  }
  return true;
}

}  // namespace

void pad_name(const char *name, char *out) {
  size_t n = strnlen(name, kPaddedName);
  std::memcpy(out, name, n);
  std::memset(out + n, ' ', kPaddedName - n);
}

int32_t find_region(const HKMCB *mcb, const char *key) {
  if (mcb->lvl1tab == nullptr) return -1;
  return bisect(mcb->lvl1cnt, [&](int32_t i) {
    return std::memcmp(mcb->lvl1tab[i].l1key, key, refdb::kKeyBytes);
  });
}

char load_street_table(HKMCB *mcb, int32_t idx) {
  const L1ENTRY &region = mcb->lvl1tab[idx];
  if (!reserve(&mcb->lvl2buf, &mcb->lvl2bufcap, region.l2len)) {
    return HKRC_STORAGE;
  }
  if (region.l2len > 0 &&
      read_level2(mcb, region.l2off, region.l2len, mcb->lvl2buf) != HKRC_OK) {
    return HKRC_LEVEL2_SEEK;
  }
  // Not zero-filled: the walk sets every field that is read, and an entry
  // counts only once lvl2cnt says so.
  if (!reserve(&mcb->lvl2tab, &mcb->lvl2tabcap, region.l2cnt)) {
    return HKRC_STORAGE;
  }
  if (!walk_segment(reinterpret_cast<const unsigned char *>(mcb->lvl2buf),
                    region.l2len, mcb->lvl2tab, region.l2cnt)) {
    return HKRC_LEVEL2_SEEK;
  }
  mcb->cacheused = 0;
  mcb->lvl2cnt = region.l2cnt;
  mcb->lvl2initials = in_order_of_initials(mcb->lvl2tab, mcb->lvl2cnt);
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
  char name[kPaddedName];
  return bisect(mcb->lvl2cnt, [&](int32_t i) {
    pad_name(mcb->lvl2tab[i].sname, name);
    return std::memcmp(name, padded, kPaddedName);
  });
}

void drop_region(HKMCB *mcb) {
  for (uint16_t i = 0; i < mcb->lvl2cnt; ++i) {
    STREETENT &e = mcb->lvl2tab[i];
    if (e.bpack != nullptr) std::free(e.bpack);
    if (e.bunpk != nullptr) std::free(e.bunpk);
  }
  mcb->lvl2cnt = 0;
  mcb->lvl2initials = 0;
  mcb->cacheused = 0;
}

}  // namespace orlo
