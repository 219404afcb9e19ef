// The names of the reference files, walked for front ends, and the one
// attachment a store keeps for them.
#include "hkmatch/refdata/reference_names.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "hkmatch/refdata/packed_record.h"
#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/search_alloc.h"
#include "hkmatch/refdata/store_internal.h"
#include "orlo_codes.h"

namespace orlo {
namespace {

struct FreeDeleter {
  void operator()(void *p) const { std::free(p); }
};

// A block buffer that keeps its capacity from street to street.
struct BlockBuffer {
  std::unique_ptr<char, FreeDeleter> data;
  uint32_t cap = 0;

  bool reserve(uint32_t n) {
    if (data && cap >= n) return true;
    data.reset(static_cast<char *>(search_alloc(n, 1)));
    cap = data ? n : 0;
    return data != nullptr;
  }
};

// Visits the building names of one street's records. False when the block
// lies outside BASEDATA, cannot be read or does not hold its records.
bool visit_buildings(HKMCB *m, const STREETENT &e, int32_t region,
                     BlockBuffer *buf, NameVisitor visit, void *context) {
  if (e.blen == 0) return e.bcnt == 0;
  if (read_basedata(m, e.boff, e.blen, buf->data.get()) != HKRC_OK)
    return false;
  const auto *block = reinterpret_cast<const unsigned char *>(buf->data.get());
  size_t pos = 0;
  HKBASEREC rec;
  for (uint16_t j = 0; j < e.bcnt; ++j) {
    if (pos >= e.blen || !unpack_checked(&rec, block + pos, e.blen - pos))
      return false;
    pos += static_cast<size_t>(static_cast<signed char>(block[pos]));
    size_t n = strnlen(rec.bbldg, sizeof rec.bbldg - 1);
    while (n > 0 && rec.bbldg[n - 1] == ' ') --n;
    if (n > 0) visit(context, NameKind::kBuilding, region, {rec.bbldg, n});
  }
  return true;
}

}  // namespace

char visit_reference_names(HKMCB *m, NameVisitor visit, void *context,
                           int64_t *skipped) {
  if (m == nullptr || m->store == nullptr) return HKRC_NOT_OPEN;
  int64_t left_out = 0;
  BlockBuffer buf;
  char code = HKRC_OK;
  for (int32_t idx = 0; idx < m->lvl1cnt && code == HKRC_OK; ++idx) {
    char why = HKRC_OK;
    const RegionTable *t = store_region(m, idx, &why);
    if (t == nullptr) {
      ++left_out;
      continue;
    }
    for (uint16_t i = 0; i < t->count; ++i) {
      const STREETENT &e = t->entries[i];
      visit(context, NameKind::kStreet, idx,
            {e.sname, strnlen(e.sname, sizeof e.sname - 1)});
    }
    for (uint16_t i = 0; i < t->count; ++i) {
      const STREETENT &e = t->entries[i];
      // A block cannot be longer than BASEDATA; a longer one is damaged and
      // is not worth its buffer.
      if (!basedata_range_inside(m, e.boff, e.blen)) {
        ++left_out;
        continue;
      }
      if (!buf.reserve(e.blen)) {
        code = HKRC_STORAGE;
        break;
      }
      if (!visit_buildings(m, e, idx, &buf, visit, context)) ++left_out;
    }
  }
  if (skipped != nullptr) *skipped = left_out;
  return code;
}

const StoreAttachment *store_attachment(const HKMCB *m) {
  if (m == nullptr || m->store == nullptr) return nullptr;
  return m->store->attachment.load(std::memory_order_acquire);
}

const StoreAttachment *publish_store_attachment(
    const HKMCB *m, std::unique_ptr<StoreAttachment> made) {
  if (m == nullptr || m->store == nullptr) return nullptr;
  StoreAttachment *expected = nullptr;
  if (m->store->attachment.compare_exchange_strong(expected, made.get(),
                                                   std::memory_order_acq_rel)) {
    return made.release();
  }
  return expected;  // another thread's; `made` goes with this scope
}

}  // namespace orlo
