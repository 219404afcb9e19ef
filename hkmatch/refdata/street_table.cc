// Region lookup by bisection of the index held in memory, and loading of a
// region's street table from its LEVEL2 segment with every record checked
// against the segment before it is used.
#include "hkmatch/refdata/street_table.h"

#include <cstdlib>
#include <cstring>

#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/search_alloc.h"

namespace orlo {
namespace {

constexpr size_t kRecordHead = 10;  // block offset, length, record count
constexpr size_t kMaxName = 30;

uint32_t be32(const unsigned char *p) {
  return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) |
         (uint32_t{p[2]} << 8) | uint32_t{p[3]};
}

uint16_t be16(const unsigned char *p) {
  return static_cast<uint16_t>((p[0] << 8) | p[1]);
}

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
    e.boff = be32(seg + pos);
    e.blen = be32(seg + pos + 4);
    e.bcnt = be16(seg + pos + 8);
    e.bpack = nullptr;
    e.bunpk = nullptr;
    e.sscore = 0;
    pos += kRecordHead + static_cast<size_t>(n) + 1;
  }
  return true;
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
  int32_t low = 0;
  int32_t high = mcb->lvl1cnt - 1;
  while (low <= high) {
    int32_t mid = low + (high - low) / 2;
    int c = std::memcmp(mcb->lvl1tab[mid].l1key, key, 30);
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

char load_street_table(HKMCB *mcb, int32_t idx) {
  const L1ENTRY &region = mcb->lvl1tab[idx];
  if (!reserve(&mcb->lvl2buf, &mcb->lvl2bufcap, region.l2len)) return '3';
  if (region.l2len > 0 &&
      read_level2(mcb, region.l2off, region.l2len, mcb->lvl2buf) != '0') {
    return '4';
  }
  // Not zero-filled: the walk sets every field that is read, and an entry
  // counts only once lvl2cnt says so.
  if (!reserve(&mcb->lvl2tab, &mcb->lvl2tabcap, region.l2cnt)) return '3';
  if (!walk_segment(reinterpret_cast<const unsigned char *>(mcb->lvl2buf),
                    region.l2len, mcb->lvl2tab, region.l2cnt)) {
    return '4';
  }
  mcb->cacheused = 0;
  mcb->lvl2cnt = region.l2cnt;
  mcb->lvl2initials = in_order_of_initials(mcb->lvl2tab, mcb->lvl2cnt);
  return '0';
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
  int32_t low = 0;
  int32_t high = static_cast<int32_t>(mcb->lvl2cnt) - 1;
  while (low <= high) {
    int32_t mid = low + (high - low) / 2;
    pad_name(mcb->lvl2tab[mid].sname, name);
    int c = std::memcmp(name, padded, kPaddedName);
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
