// Region lookup by bisection of the index held in memory, and loading of a
// region's street table from its LEVEL2 segment with every record checked
// against the segment before it is used.
#include "hkmatch/street_table.h"

#include <cstdlib>
#include <cstring>

#include "hkmatch/reference_access.h"
#include "hkmatch/search_alloc.h"

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

// Fills the table from the segment. Returns false when a record's head or
// its NUL-terminated name (at most 30 characters) does not lie inside the
// segment, or the segment ends before the last record.
bool walk_segment(const unsigned char *seg, size_t len, STREETENT *tab,
                  uint16_t count) {
  size_t pos = 0;
  for (uint16_t i = 0; i < count; ++i) {
    if (len - pos < kRecordHead + 1) return false;
    const unsigned char *name = seg + pos + kRecordHead;
    size_t room = len - pos - kRecordHead;
    const void *nul =
        std::memchr(name, 0, room < kMaxName + 1 ? room : kMaxName + 1);
    if (nul == nullptr) return false;
    size_t n = static_cast<const unsigned char *>(nul) - name;
    STREETENT &e = tab[i];
    e.boff = be32(seg + pos);
    e.blen = be32(seg + pos + 4);
    e.bcnt = be16(seg + pos + 8);
    std::memcpy(e.sname, name, n + 1);
    pos += kRecordHead + n + 1;
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
  mcb->lvl2buf = static_cast<char *>(search_alloc(region.l2len, 1));
  if (mcb->lvl2buf == nullptr) return '3';
  if (region.l2len > 0 &&
      read_level2(mcb, region.l2off, region.l2len, mcb->lvl2buf) != '0') {
    drop_region_data(mcb);
    return '4';
  }
  mcb->lvl2tab = static_cast<STREETENT *>(
      search_alloc(region.l2cnt, sizeof(STREETENT), /*zero=*/true));
  if (mcb->lvl2tab == nullptr) {
    drop_region_data(mcb);
    return '3';
  }
  mcb->cacheused = 0;
  if (!walk_segment(reinterpret_cast<const unsigned char *>(mcb->lvl2buf),
                    region.l2len, mcb->lvl2tab, region.l2cnt)) {
    drop_region_data(mcb);
    return '4';
  }
  mcb->lvl2cnt = region.l2cnt;
  return '0';
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

void drop_candidates(HKMCB *mcb) {
  std::free(mcb->baserecs);
  mcb->baserecs = nullptr;
  mcb->basecur = nullptr;
  std::free(mcb->blockbuf);
  mcb->blockbuf = nullptr;
  std::free(mcb->cands);
  mcb->cands = nullptr;
}

void drop_region_data(HKMCB *mcb) {
  drop_candidates(mcb);
  if (mcb->lvl2tab != nullptr) {
    for (uint16_t i = 0; i < mcb->lvl2cnt; ++i) {
      std::free(mcb->lvl2tab[i].bpack);
      std::free(mcb->lvl2tab[i].bunpk);
    }
    std::free(mcb->lvl2tab);
    mcb->lvl2tab = nullptr;
  }
  mcb->lvl2cnt = 0;
  std::free(mcb->lvl2buf);
  mcb->lvl2buf = nullptr;
  mcb->cacheused = 0;
}

}  // namespace orlo
