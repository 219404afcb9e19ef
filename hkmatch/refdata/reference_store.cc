// The registry of reference stores and what a store loads when it is made:
// the LEVEL1 index and, in memory mode, the images of LEVEL2 and BASEDATA.
//
// The registry is the one piece of process-wide state besides the handle
// table: instances that open the same files must find each other's store.
// It is guarded by its own mutex, held over the whole of an open's attach or
// build (so that two opens of the same files never build twice) and over
// the release of a reference; searches never touch it.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <vector>

#include "common/byte_order.h"
#include "hkmatch/refdata/reference_format.h"
#include "hkmatch/refdata/search_alloc.h"
#include "hkmatch/refdata/store_internal.h"
#include "hkmatch/refdata/street_names.h"
#include "orlo_codes.h"

namespace orlo {

bool operator==(const FileIdentity &a, const FileIdentity &b) {
  return a.dev == b.dev && a.ino == b.ino && a.size == b.size &&
         a.mtime.tv_sec == b.mtime.tv_sec && a.mtime.tv_nsec == b.mtime.tv_nsec;
}

bool operator==(const StoreIdentity &a, const StoreIdentity &b) {
  return a.level1 == b.level1 && a.level2 == b.level2 &&
         a.basedata == b.basedata && a.memory == b.memory;
}

BuiltRegion::~BuiltRegion() {
  if (records != nullptr) {
    for (uint16_t i = 0; i < table.count; ++i) {
      std::free(const_cast<HKBASEREC *>(records[i].load()));
    }
    delete[] records;
  }
  std::free(entries);
  std::free(padded);
  std::free(slots);
  std::free(found);
  delete names.load();
}

namespace {

constexpr size_t kImageUnit = refdb::kUnitBytes;
constexpr size_t kLevel1RecordSize = refdb::kLevel1RecordBytes;

struct Registry {
  std::mutex mutex;
  std::vector<HKSTORE *> stores;  // registered stores, any order
  int32_t live = 0;               // registered or not
};

Registry &registry() {
  static Registry r;
  return r;
}

// The identity of an open file, or false for anything but a regular file
// (a pipe or a device has no identity worth sharing).
bool identify(FILE *fp, FileIdentity *id) {
  struct stat st {};
  if (fp == nullptr || fstat(fileno(fp), &st) != 0 || !S_ISREG(st.st_mode)) {
    return false;
  }
  id->dev = st.st_dev;
  id->ino = st.st_ino;
  id->size = st.st_size;
  id->mtime = st.st_mtim;
  return true;
}

// ---- LEVEL1 ------------------------------------------------------------

// Reads the next LEVEL1 record into rec. False at the end of the index: a
// read that does not return a whole record, or the end record (first four
// bytes zero). Read errors end the index like the end of the file.
bool next_level1(FILE *fp, unsigned char (&rec)[kLevel1RecordSize]) {
  if (std::fread(rec, 1, sizeof rec, fp) != sizeof rec) return false;
  static_assert(refdb::kEndRecordZeros == 4);
  return load_be32(rec) != 0;
}

int64_t count_level1(FILE *fp) {
  unsigned char rec[kLevel1RecordSize];
  int64_t n = 0;
  while (next_level1(fp, rec)) ++n;
  return n;
}

// Loads the records with the stop rule of the count, but never more than
// cap of them: a file that grew since the count cannot overrun the index.
int32_t read_level1(FILE *fp, L1ENTRY *tab, int64_t cap) {
  unsigned char rec[kLevel1RecordSize];
  int32_t n = 0;
  while (next_level1(fp, rec) && n < cap) {
    L1ENTRY &e = tab[n++];
    static_assert(sizeof e.l1key == refdb::kKeyBytes);
    std::memcpy(e.l1key, rec, refdb::kKeyBytes);
    e.l2off = load_be32(rec + refdb::kLevel1OffsetAt);
    e.l2len = load_be32(rec + refdb::kLevel1LengthAt);
    e.l2cnt = load_be16(rec + refdb::kLevel1CountAt);
  }
  return n;
}

// Counts the index on the instance's LEVEL1 file, then opens LEVEL1 again
// and loads it. The file stays open, positioned after the last record read.
char load_level1(HKMCB *m, HKSTORE *s, const char *path) {
  int64_t n = count_level1(m->lvl1fp);
  std::fclose(m->lvl1fp);
  m->lvl1fp = nullptr;
  if (n > INT32_MAX) return HKRC_STORAGE;
  // At least one entry, so that an empty index is still a valid table.
  s->index = static_cast<L1ENTRY *>(std::calloc(
      static_cast<size_t>(std::max<int64_t>(n, 1)), sizeof(L1ENTRY)));
  if (s->index == nullptr) return HKRC_STORAGE;
  m->lvl1fp = path != nullptr ? std::fopen(path, "rb") : nullptr;
  if (m->lvl1fp == nullptr) return HKRC_LEVEL1_OPEN;
  s->index_count = read_level1(m->lvl1fp, s->index, n);
  s->level1_end = std::ftell(m->lvl1fp);
  return HKRC_OK;
}

// ---- memory images -------------------------------------------------------

// Reads the whole 23200-byte units of fp into a new image; a final partial
// unit is left out. *size becomes the number of bytes loaded.
char load_image(FILE *fp, char seek_code, char **image, int64_t *size) {
  if (fseeko(fp, 0, SEEK_SET) != 0) return seek_code;
  char *unit = static_cast<char *>(std::malloc(kImageUnit));
  if (unit == nullptr) return HKRC_STORAGE;
  size_t units = 0;
  while (std::fread(unit, 1, kImageUnit, fp) == kImageUnit) ++units;
  std::free(unit);
  // At least one byte, so that an empty image still marks memory mode.
  *image =
      static_cast<char *>(std::malloc(std::max<size_t>(units, 1) * kImageUnit));
  if (*image == nullptr) return HKRC_STORAGE;
  if (fseeko(fp, 0, SEEK_SET) != 0) return seek_code;
  size_t loaded = 0;
  while (loaded < units && std::fread(*image + loaded * kImageUnit, 1,
                                      kImageUnit, fp) == kImageUnit)
    ++loaded;
  *size = static_cast<int64_t>(loaded * kImageUnit);
  return HKRC_OK;
}

char load_images(HKMCB *m, HKSTORE *s) {
  char c = load_image(m->lvl2fp, HKRC_LEVEL2_SEEK, &s->level2_image,
                      &s->level2_size);
  if (c != HKRC_OK) return c;
  return load_image(m->basefp, HKRC_BASEDATA_SEEK, &s->basedata_image,
                    &s->basedata_size);
}

// ---- making, finding and releasing stores ----------------------------------

// A new store with room for one slot per region of an index of n entries.
HKSTORE *new_store(int32_t n) {
  auto *s = new (std::nothrow) HKSTORE;
  if (s == nullptr) return nullptr;
  const size_t slots = static_cast<size_t>(std::max(n, 1));
  s->regions.reset(new (std::nothrow) std::atomic<BuiltRegion *>[slots]);
  if (!s->regions) {
    delete s;
    return nullptr;
  }
  for (size_t i = 0; i < slots; ++i) s->regions[i].store(nullptr);
  return s;
}

// Loads the index (and the images) into a store made for them.
char build_store(HKMCB *m, const char *level1_path, HKSTORE **out) {
  HKSTORE probe;
  char code = load_level1(m, &probe, level1_path);
  if (code == HKRC_OK && m->inmem == 1) code = load_images(m, &probe);
  if (code != HKRC_OK) return code;
  HKSTORE *s = new_store(probe.index_count);
  if (s == nullptr) return HKRC_STORAGE;
  std::swap(s->index, probe.index);
  std::swap(s->level2_image, probe.level2_image);
  std::swap(s->basedata_image, probe.basedata_image);
  s->index_count = probe.index_count;
  s->level1_end = probe.level1_end;
  s->level2_size = probe.level2_size;
  s->basedata_size = probe.basedata_size;
  *out = s;
  return HKRC_OK;
}

// Points the block's index, images and read limits at the store.
void attach(HKMCB *m, HKSTORE *s) {
  m->store = s;
  m->lvl1tab = s->index;
  m->lvl1cnt = s->index_count;
  if (m->inmem == 1) {
    m->lvl2mem = s->level2_image;
    m->basemem = s->basedata_image;
    m->lvl2size = s->level2_size;
    m->basesize = s->basedata_size;
  }
}

HKSTORE *find_registered(Registry &r, const StoreIdentity &id) {
  for (HKSTORE *s : r.stores) {
    if (s->identity == id) return s;
  }
  return nullptr;
}

}  // namespace

char store_open(HKMCB *m, const char *level1_path) {
  StoreIdentity id;
  id.memory = m->inmem == 1;
  const bool shareable = identify(m->lvl1fp, &id.level1) &&
                         identify(m->lvl2fp, &id.level2) &&
                         identify(m->basefp, &id.basedata);
  Registry &r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  HKSTORE *s = shareable ? find_registered(r, id) : nullptr;
  if (s != nullptr) {
    // The same files: only the position LEVEL1 would have after a load.
    if (std::fseek(m->lvl1fp, s->level1_end, SEEK_SET) != 0) {
      return HKRC_LEVEL1_OPEN;
    }
  } else {
    char code = build_store(m, level1_path, &s);
    if (code != HKRC_OK) return code;
    s->identity = id;
    s->registered = shareable;
    if (shareable) {
      try {
        r.stores.push_back(s);
      } catch (const std::bad_alloc &) {
        s->registered = false;  // works alone, unshared
      }
    }
    ++r.live;
  }
  ++s->references;
  attach(m, s);
  return HKRC_OK;
}

char store_open_copy(HKMCB *copy, const HKMCB *instance) {
  HKSTORE *shared = instance->store;
  Registry &r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  StoreIdentity id = shared->identity;
  const bool same_files =
      copy->inmem == 1 ||
      (!id.memory && identify(copy->lvl2fp, &id.level2) &&
       identify(copy->basefp, &id.basedata) && id == shared->identity);
  if (same_files) {
    ++shared->references;
    copy->store = shared;
    return HKRC_OK;
  }
  // Other files under the instance's index: a store of the copy's own.
  HKSTORE *s = new_store(shared->index_count);
  if (s == nullptr) return HKRC_STORAGE;
  const size_t n = static_cast<size_t>(std::max(shared->index_count, 1));
  s->index = static_cast<L1ENTRY *>(std::calloc(n, sizeof(L1ENTRY)));
  if (s->index == nullptr) {
    delete s;
    return HKRC_STORAGE;
  }
  std::memcpy(s->index, shared->index,
              static_cast<size_t>(shared->index_count) * sizeof(L1ENTRY));
  s->index_count = shared->index_count;
  s->references = 1;
  ++r.live;
  copy->store = s;
  return HKRC_OK;
}

void store_release(HKMCB *m) {
  HKSTORE *s = m->store;
  if (s == nullptr) return;
  if (m->lvl1tab == s->index) {
    m->lvl1tab = nullptr;
    m->lvl1cnt = 0;
  }
  if (m->lvl2mem == s->level2_image) m->lvl2mem = nullptr;
  if (m->basemem == s->basedata_image) m->basemem = nullptr;
  m->lvl2tab = nullptr;
  m->lvl2cnt = 0;
  m->store = nullptr;
  Registry &r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  if (--s->references > 0) return;
  auto it = std::find(r.stores.begin(), r.stores.end(), s);
  if (it != r.stores.end()) r.stores.erase(it);
  --r.live;
  delete s;
}

StoreCounts store_counts() {
  Registry &r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  StoreCounts c;
  c.stores = r.live;
  for (const HKSTORE *s : r.stores) c.references += s->references;
  return c;
}

}  // namespace orlo

HKSTORE::~HKSTORE() {
  if (regions) {
    for (int32_t i = 0; i < std::max(index_count, 1); ++i) {
      delete regions[i].load();
    }
  }
  delete attachment.load();
  std::free(index);
  std::free(level2_image);
  std::free(basedata_image);
}
