// Bounds-checked reads of LEVEL2 and BASEDATA, from the memory image or the
// open file of an instance.
#include "hkmatch/refdata/reference_access.h"

#include <sys/types.h>

#include <cstdio>
#include <cstring>

#include "orlo_codes.h"

namespace orlo {

namespace {

// One reference file as seen by a read: its image (memory mode) or its open
// stream, and its size as found at open.
struct Source {
  const char *mem;
  FILE *fp;
  int64_t size;
};

// The sum is formed in 64 bits so that an offset and a length that wrap
// around in 32 bits cannot pass for a range inside the file.
bool range_inside(int64_t size, uint32_t off, uint32_t len) {
  if (size < 0) return false;
  return static_cast<uint64_t>(off) + len <= static_cast<uint64_t>(size);
}

bool read_range(const Source &src, uint32_t off, uint32_t len, char *dst) {
  if (!range_inside(src.size, off, len)) return false;
  if (len == 0) return true;
  if (dst == nullptr) return false;
  if (src.mem != nullptr) {
    std::memcpy(dst, src.mem + off, len);
    return true;
  }
  if (src.fp == nullptr) return false;
  if (fseeko(src.fp, static_cast<off_t>(off), SEEK_SET) != 0) return false;
  return std::fread(dst, 1, len, src.fp) == len;
}

}  // namespace

AccessCounters &access_counters() {
  // Per thread, so that tests running searches in parallel each see only
  // their own work and the search needs no lock to count.
  thread_local AccessCounters counters;
  return counters;
}

char read_level2(const HKMCB *mcb, uint32_t off, uint32_t len, char *dst) {
  ++access_counters().level2_reads;
  if (mcb == nullptr) return HKRC_LEVEL2_SEEK;
  const Source src{mcb->lvl2mem, mcb->lvl2fp, mcb->lvl2size};
  return read_range(src, off, len, dst) ? HKRC_OK : HKRC_LEVEL2_SEEK;
}

bool basedata_range_inside(const HKMCB *mcb, uint32_t off, uint32_t len) {
  return mcb != nullptr && range_inside(mcb->basesize, off, len);
}

char read_basedata(const HKMCB *mcb, uint32_t off, uint32_t len, char *dst) {
  ++access_counters().basedata_reads;
  if (mcb == nullptr) return HKRC_BASEDATA_SEEK;
  const Source src{mcb->basemem, mcb->basefp, mcb->basesize};
  return read_range(src, off, len, dst) ? HKRC_OK : HKRC_BASEDATA_SEEK;
}

}  // namespace orlo
