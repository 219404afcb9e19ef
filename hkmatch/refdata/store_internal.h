// The inside of a reference store, shared by the files that build it (the
// registry and its loading, and the region tables built on demand).
#ifndef ORLO_HKMATCH_REFDATA_STORE_INTERNAL_H
#define ORLO_HKMATCH_REFDATA_STORE_INTERNAL_H

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <ctime>
#include <memory>

#include "hkmatch/refdata/reference_names.h"
#include "hkmatch/refdata/reference_store.h"
#include "orlo_matcher.h"

namespace orlo {

class RegionStreetNames;

// What makes two opens read the same data: the three files, and whether the
// images are held in memory.
struct FileIdentity {
  dev_t dev = 0;
  ino_t ino = 0;
  off_t size = 0;
  timespec mtime{};
};
bool operator==(const FileIdentity &a, const FileIdentity &b);

struct StoreIdentity {
  FileIdentity level1, level2, basedata;
  bool memory = false;
};
bool operator==(const StoreIdentity &a, const StoreIdentity &b);

// A region table with what only the store needs: the lookup of a name to
// the entry bisection finds, and the published records of each entry.
struct BuiltRegion {
  RegionTable table{};
  STREETENT *entries = nullptr;  // from search_alloc
  char *padded = nullptr;        // from search_alloc
  // The name lookup: an open-addressing table of entry numbers plus one (0
  // marks a free slot), `mask` + 1 slots, and for each entry the entry that
  // bisection finds for its name.
  int32_t *slots = nullptr;  // from search_alloc
  uint32_t mask = 0;
  int32_t *found = nullptr;                           // from search_alloc
  std::atomic<const HKBASEREC *> *records = nullptr;  // one per entry
  // The names prepared for the fuzzy pass, made on first need.
  std::atomic<RegionStreetNames *> names{nullptr};

  BuiltRegion() = default;
  BuiltRegion(const BuiltRegion &) = delete;
  BuiltRegion &operator=(const BuiltRegion &) = delete;
  ~BuiltRegion();
};

}  // namespace orlo

// The store itself (opaque to C through HKMCB::store).
struct HKSTORE {
  orlo::StoreIdentity identity;
  bool registered = false;  // found by later opens of the same files
  int64_t references = 0;   // guarded by the registry's mutex
  L1ENTRY *index = nullptr;
  int32_t index_count = 0;
  long level1_end = 0;  // LEVEL1 offset after the last record read
  char *level2_image = nullptr;
  char *basedata_image = nullptr;
  int64_t level2_size = 0;
  int64_t basedata_size = 0;
  std::unique_ptr<std::atomic<orlo::BuiltRegion *>[]> regions;
  std::atomic<int64_t> record_bytes{0};  // published records, bytes
  // What a front end derived from the names of the store (owning).
  std::atomic<orlo::StoreAttachment *> attachment{nullptr};

  ~HKSTORE();
};

namespace orlo {

// Most bytes of unpacked records that one store publishes; beyond it a
// street's records are unpacked by each search that needs them.
inline constexpr int64_t kStoreRecordBudget = int64_t{512} << 20;

// Builds the street table of region idx from LEVEL2 as read through m.
// Returns NULL with *code set on failure.
BuiltRegion *build_region(const HKMCB *m, int32_t idx, char *code);

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_STORE_INTERNAL_H
