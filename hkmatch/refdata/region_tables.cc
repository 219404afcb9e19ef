// The parts of a reference store built the first time a search needs them:
// a region's street table, walked from its LEVEL2 segment with every record
// checked against the segment before it is used, with the lookup of a name
// to its entry; and the unpacked records of a street.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "common/byte_order.h"
#include "hkmatch/refdata/key_bisect.h"
#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/reference_format.h"
#include "hkmatch/refdata/search_alloc.h"
#include "hkmatch/refdata/store_internal.h"
#include "hkmatch/refdata/street_names.h"
#include "hkmatch/refdata/street_table.h"
#include "orlo_codes.h"

namespace orlo {

namespace detail {
thread_local int64_t store_record_budget = 0;
}  // namespace detail

namespace {

constexpr size_t kRecordHead = refdb::kLevel2FixedBytes;
constexpr size_t kMaxName = refdb::kMaxNameBytes;

struct FreeDeleter {
  void operator()(void *p) const { std::free(p); }
};

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

bool in_order_of_initials(const STREETENT *tab, uint16_t count) {
  for (uint16_t i = 1; i < count; ++i) {
    if (padded_initial(tab[i]) < padded_initial(tab[i - 1])) return false;
  }
  return true;
}

// The entry that bisection of the padded names finds for `key` (with the
// matcher's midpoint rule), or -1: with duplicate names, or names out of
// order, it is that entry and no other that the exact pass starts from.
int32_t bisect(const char *padded, uint16_t count, const char *key) {
  return bisect_keys(padded, kPaddedName, count, key, kPaddedName);
}

// A hash of a 31-byte padded name: three 8-byte words and the last seven
// bytes, each mixed in with a multiply.
uint32_t hash_name(const char *name) {
  constexpr uint64_t kMul = 0xFF51AFD7ED558CCDull;
  uint64_t h = 0x9E3779B97F4A7C15ull;
  for (int at = 0; at < 24; at += 8) {
    uint64_t w;
    std::memcpy(&w, name + at, 8);
    h = (h ^ w) * kMul;
    h ^= h >> 32;
  }
  uint64_t w = 0;
  std::memcpy(&w, name + 24, 7);
  h = (h ^ w) * kMul;
  return static_cast<uint32_t>(h ^ (h >> 29));
}

const char *padded_of(const BuiltRegion &r, int32_t entry) {
  return &r.padded[size_t{kPaddedName} * static_cast<size_t>(entry)];
}

// The slot that holds `name`, or the free slot where it would go.
uint32_t probe(const BuiltRegion &r, const char *name) {
  uint32_t h = hash_name(name) & r.mask;
  while (r.slots[h] != 0 &&
         std::memcmp(padded_of(r, r.slots[h] - 1), name, kPaddedName) != 0) {
    h = (h + 1) & r.mask;
  }
  return h;
}

// The padded names and the name lookup of a walked table.
bool index_names(BuiltRegion *r) {
  const uint16_t n = r->table.count;
  uint32_t slots = 2;
  while (slots < 2u * n) slots *= 2;
  r->padded = static_cast<char *>(search_alloc(n, kPaddedName));
  r->found = static_cast<int32_t *>(search_alloc(n, sizeof(int32_t)));
  r->slots = static_cast<int32_t *>(
      search_alloc(slots, sizeof(int32_t), /*zero=*/true));
  if (r->padded == nullptr || r->found == nullptr || r->slots == nullptr) {
    return false;
  }
  r->mask = slots - 1;
  for (uint16_t i = 0; i < n; ++i) {
    pad_name(r->entries[i].sname, r->padded + size_t{kPaddedName} * i);
  }
  for (uint16_t i = 0; i < n; ++i) {
    const char *name = padded_of(*r, i);
    r->found[i] = bisect(r->padded, n, name);
    const uint32_t slot = probe(*r, name);
    if (r->slots[slot] == 0) r->slots[slot] = i + 1;
  }
  return true;
}

const BuiltRegion *current_region(const HKMCB *m) {
  if (m->store == nullptr || m->lastidx < 0 ||
      m->lastidx >= std::max(m->store->index_count, 1)) {
    return nullptr;
  }
  return m->store->regions[m->lastidx].load(std::memory_order_acquire);
}

}  // namespace

BuiltRegion *build_region(const HKMCB *m, int32_t idx, char *code) {
  const L1ENTRY &l1 = m->lvl1tab[idx];
  std::unique_ptr<char, FreeDeleter> segment(
      static_cast<char *>(search_alloc(l1.l2len, 1)));
  auto fail = [code](char c) -> BuiltRegion * {
    *code = c;
    return nullptr;
  };
  if (!segment) return fail(HKRC_STORAGE);
  if (l1.l2len > 0 &&
      read_level2(m, l1.l2off, l1.l2len, segment.get()) != HKRC_OK) {
    return fail(HKRC_LEVEL2_SEEK);
  }
  std::unique_ptr<BuiltRegion> r(new (std::nothrow) BuiltRegion);
  if (r) {
    r->entries =
        static_cast<STREETENT *>(search_alloc(l1.l2cnt, sizeof(STREETENT)));
  }
  if (!r || r->entries == nullptr) return fail(HKRC_STORAGE);
  if (!walk_segment(reinterpret_cast<const unsigned char *>(segment.get()),
                    l1.l2len, r->entries, l1.l2cnt)) {
    return fail(HKRC_LEVEL2_SEEK);
  }
  r->table.entries = r->entries;
  r->table.count = l1.l2cnt;
  r->table.initials = in_order_of_initials(r->entries, l1.l2cnt);
  r->records =
      new (std::nothrow) std::atomic<const HKBASEREC *>[l1.l2cnt + 1]();
  if (r->records == nullptr || !index_names(r.get())) {
    return fail(HKRC_STORAGE);
  }
  r->table.padded = r->padded;
  return r.release();
}

const RegionTable *store_region(HKMCB *m, int32_t idx, char *code) {
  std::atomic<BuiltRegion *> &slot = m->store->regions[idx];
  BuiltRegion *r = slot.load(std::memory_order_acquire);
  if (r != nullptr) return &r->table;
  r = build_region(m, idx, code);
  if (r == nullptr) return nullptr;
  BuiltRegion *expected = nullptr;
  if (!slot.compare_exchange_strong(expected, r, std::memory_order_acq_rel)) {
    delete r;  // another search built it first
    r = expected;
  }
  return &r->table;
}

int32_t region_find_street(const HKMCB *m, const char *padded) {
  const BuiltRegion *r = current_region(m);
  if (r == nullptr || r->slots == nullptr) return -1;
  const int32_t slot = r->slots[probe(*r, padded)];
  return slot != 0 ? r->found[slot - 1] : -1;
}

const RegionStreetNames *store_street_names(const HKMCB *m) {
  const BuiltRegion *r = current_region(m);
  if (r == nullptr) return nullptr;
  // The region is the store's and never changes once published; only its
  // names slot is filled in here, once.
  std::atomic<RegionStreetNames *> &slot = const_cast<BuiltRegion *>(r)->names;
  RegionStreetNames *names = slot.load(std::memory_order_acquire);
  if (names != nullptr) return names;
  try {
    names = new RegionStreetNames(r->table.entries, r->table.count);
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
  RegionStreetNames *expected = nullptr;
  if (!slot.compare_exchange_strong(expected, names,
                                    std::memory_order_acq_rel)) {
    delete names;  // another search made them first
    names = expected;
  }
  return names;
}

const HKBASEREC *store_street_records(const HKMCB *m, int32_t entry) {
  const BuiltRegion *r = current_region(m);
  if (r == nullptr || entry < 0 || entry >= r->table.count) return nullptr;
  return r->records[entry].load(std::memory_order_acquire);
}

void store_publish_records(const HKMCB *m, int32_t entry,
                           const HKBASEREC *records, uint16_t count) {
  const BuiltRegion *r = current_region(m);
  if (r == nullptr || entry < 0 || entry >= r->table.count) return;
  std::atomic<const HKBASEREC *> &slot = r->records[entry];
  if (slot.load(std::memory_order_acquire) != nullptr) return;
  const int64_t bytes = int64_t{count} * int64_t{sizeof(HKBASEREC)};
  std::atomic<int64_t> &used = m->store->record_bytes;
  const int64_t budget = detail::store_record_budget > 0
                             ? detail::store_record_budget
                             : kStoreRecordBudget;
  if (used.fetch_add(bytes) + bytes > budget) {
    used.fetch_sub(bytes);
    return;
  }
  auto *copy = static_cast<HKBASEREC *>(
      std::malloc(std::max<size_t>(count, 1) * sizeof(HKBASEREC)));
  if (copy == nullptr) {
    used.fetch_sub(bytes);
    return;
  }
  for (uint16_t j = 0; j < count; ++j) {
    copy[j] = records[j];
    copy[j].bscore = 0;
    copy[j].bcand = 0;
    copy[j].bmscore = 0;
    copy[j].bpen = 0;
  }
  const HKBASEREC *expected = nullptr;
  if (!slot.compare_exchange_strong(expected, copy,
                                    std::memory_order_acq_rel)) {
    std::free(copy);
    used.fetch_sub(bytes);
  }
}

}  // namespace orlo
