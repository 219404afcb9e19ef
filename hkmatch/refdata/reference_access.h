// Bounds-checked access to the reference files of an open instance.
//
// Every offset and length that comes from the reference data goes through
// these routines, which check it against the size of LEVEL2 or BASEDATA
// recorded at open (HKMCB::lvl2size, HKMCB::basesize) before reading from
// the memory image (memory mode) or with a positioned read (file mode).
#ifndef ORLO_HKMATCH_REFDATA_REFERENCE_ACCESS_H
#define ORLO_HKMATCH_REFDATA_REFERENCE_ACCESS_H

#include <cstdint>

#include "orlo_matcher.h"

namespace orlo {

// Reads len bytes of LEVEL2 at offset off into dst. Returns '0' on success,
// '4' when the range lies outside LEVEL2 or the seek or read fails.
char read_level2(const HKMCB *mcb, uint32_t off, uint32_t len, char *dst);

// Reads len bytes of BASEDATA at offset off into dst. Returns '0' on success,
// '5' when the range lies outside BASEDATA or the seek or read fails.
char read_basedata(const HKMCB *mcb, uint32_t off, uint32_t len, char *dst);

// Whether the len bytes at offset off lie inside BASEDATA, the check that
// read_basedata makes before it reads (so that callers can size buffers by
// what a read could deliver).
bool basedata_range_inside(const HKMCB *mcb, uint32_t off, uint32_t len);

// Counters of the work done on reference data by the calling thread, so that
// tests can prove which searches reuse what they have.
struct AccessCounters {
  uint64_t level2_reads = 0;    // read_level2 calls
  uint64_t basedata_reads = 0;  // read_basedata calls
  uint64_t unpacks = 0;         // records unpacked by unpack_checked
};
AccessCounters &access_counters();

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_REFERENCE_ACCESS_H
