// The shared reference store: what the search derives from one set of
// reference files, prepared once and shared by every instance in the
// process that opened the same files.
//
// Instances of the same three files (same device, inode, size and time of
// last change, and the same mode: file or memory) attach to one store; the
// store is freed when its last instance closes. It holds the LEVEL1 index,
// in memory mode the images of LEVEL2 and BASEDATA, and, built the first
// time a search needs them and never changed after: each region's street
// table with a lookup from a street name to its entry, and each street's
// unpacked records. Nothing in a store is written once it is published, so
// searches on any number of threads read it without a lock; the parts built
// lazily are published with an atomic exchange (two threads that build the
// same part at once both succeed, one copy is kept).
//
// A part that cannot be built (a segment outside LEVEL2, a block that does
// not decode, storage that fails) is not kept: every search that needs it
// fails again with the same code, as it would without a store.
#ifndef ORLO_HKMATCH_REFDATA_REFERENCE_STORE_H
#define ORLO_HKMATCH_REFDATA_REFERENCE_STORE_H

#include <cstdint>

#include "orlo_matcher.h"

namespace orlo {

// One region's street table as the store holds it.
struct RegionTable {
  const STREETENT *entries;  // count entries; bpack and bunpk are NULL
  uint16_t count;
  bool initials;  // entries in order of their padded first bytes
  // The names padded with blanks to 31 bytes, entry i at 31 * i.
  const char *padded;
};

// Opens (attaches to or builds) the store of an instance whose BASEDATA,
// LEVEL1 and LEVEL2 files are open in m (lvl1fp positioned at its start)
// and whose options are applied, and sets m->store, lvl1tab, lvl1cnt and,
// in memory mode, lvl2mem and basemem; lvl2size and basesize are the sizes
// the reads are checked against. level1_path is the LEVEL1 path, opened
// again when the index is read. Returns '0' or the open's failure code
// ('3', '4', '5', '7'); on failure m holds no store.
char store_open(HKMCB *m, const char *level1_path);

// The store for the private copy of an "R" call, which holds either the
// instance's files and images (memory mode) or BASEDATA and LEVEL2 files of
// its own: the instance's store when the copy reads the same files,
// otherwise a store of its own over the instance's index and the copy's
// files. Sets copy->store. Returns '0' or '3'.
char store_open_copy(HKMCB *copy, const HKMCB *instance);

// Drops the block's reference to its store (freeing the store with its last
// reference) and clears the fields that pointed into it.
void store_release(HKMCB *m);

// The street table of region idx of the block's index, built the first time
// any instance needs it. NULL with *code set ('3' or '4') when it cannot be
// built; the next call tries again.
const RegionTable *store_region(HKMCB *m, int32_t idx, char *code);

// Index of the entry whose padded name equals the 31-byte padded input, as
// bisection of the table finds it (so with duplicates or an unsorted table
// the same entry, or none, as the bisection), or -1.
int32_t region_find_street(const HKMCB *m, const char *padded);

// The unpacked records of entry `entry` of the current region's table when
// some search has published them, else NULL. Records carry bscore, bcand,
// bmscore and bpen as zero.
const HKBASEREC *store_street_records(const HKMCB *m, int32_t entry);

// Publishes the `count` unpacked records of entry `entry` of the current
// region (copied, with the search's fields cleared) for every instance of
// the store, within the store's memory budget. Does nothing when they are
// already there, do not fit the budget or storage fails: publishing is an
// optimisation, never an outcome.
void store_publish_records(const HKMCB *m, int32_t entry,
                           const HKBASEREC *records, uint16_t count);

class RegionStreetNames;

// The names of the current region's table prepared for the fuzzy pass, made
// the first time any instance of the store needs them. NULL when storage
// fails (the next call tries again).
const RegionStreetNames *store_street_names(const HKMCB *m);

// Test and measurement hooks.
namespace detail {
// When positive, the record budget in bytes of every store, on this thread,
// instead of the store's own.
extern thread_local int64_t store_record_budget;
}  // namespace detail

// The number of live stores in the process, and the references they hold.
struct StoreCounts {
  int32_t stores = 0;
  int64_t references = 0;
};
StoreCounts store_counts();

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_REFERENCE_STORE_H
