// Opening and closing a geocoder instance: the match control block, the
// option string, the three reference files, the LEVEL1 index and, in memory
// mode, the images of LEVEL2 and BASEDATA.
#include <sys/stat.h>
#include <sys/types.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "common/byte_order.h"
#include "hkmatch/refdata/reference_format.h"
#include "hkmatch/refdata/street_names.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"

namespace orlo {

namespace {

// '0' when a step succeeded, otherwise the return code of its failure.
using Code = char;
constexpr Code kOk = HKRC_OK;
constexpr Code kNoStorage = HKRC_STORAGE;
constexpr Code kLevel2Seek = HKRC_LEVEL2_SEEK;
constexpr Code kBasedataSeek = HKRC_BASEDATA_SEEK;
constexpr Code kBadBasedata = HKRC_BASEDATA_OPEN;
constexpr Code kBadExtract = HKRC_BASEDATA_OPEN;
constexpr Code kBadLevel1 = HKRC_LEVEL1_OPEN;
constexpr Code kBadLevel2 = HKRC_LEVEL2_OPEN;

constexpr int32_t kCacheMax = 3000000;
constexpr size_t kLevel1RecordSize = refdb::kLevel1RecordBytes;
constexpr size_t kLevel1KeySize = sizeof(L1ENTRY::l1key);
static_assert(kLevel1KeySize == refdb::kKeyBytes);
constexpr size_t kImageUnit = refdb::kUnitBytes;
constexpr size_t kOutpathMax = sizeof(HKMCB::outpath) - 1;

// What the first character of the open option string selects; a character
// that is not in the table selects nothing. Extract modes take their path
// from the rest of the string.
struct OptionRow {
  char first;
  int32_t listmode;
  int32_t passopt;
  int32_t outmode;
};

constexpr OptionRow kOptionTable[] = {
    // first  listmode  passopt  outmode
    {'Y', 1, 0, 0},  //
    {'y', 1, 0, 0},  //
    {'2', 2, 0, 0},  //
    {'3', 3, 0, 0},  //
    {'4', 0, 1, 0},  //
    {'5', 0, 2, 0},  //
    {'6', 1, 1, 0},  //
    {'7', 1, 2, 0},  //
    {'8', 2, 1, 0},  //
    {'9', 2, 2, 0},  //
    {'A', 3, 1, 0},  //
    {'B', 3, 2, 0},  //
    {'W', 0, 0, 1},  // street extract
    {'w', 0, 0, 1},  //
    {'R', 0, 0, 1},  //
    {'r', 0, 0, 1},  //
    {'X', 0, 0, 2},  // base record extract
    {'x', 0, 0, 2},  //
};

struct FreeDeleter {
  void operator()(void *p) const { std::free(p); }
};
using Buffer = std::unique_ptr<char, FreeDeleter>;

const OptionRow *find_option(char first) {
  for (const OptionRow &row : kOptionTable)
    if (row.first == first) return &row;
  return nullptr;
}

// Applies the option string. Returns false when an extract mode names a
// path too long for outpath; the open then fails where it would create the
// file, as a path cut short would name a different file.
bool apply_options(HKMCB *m, const char *options) {
  if (options == nullptr || options[0] == '\0') return true;
  bool path_fits = true;
  if (const OptionRow *row = find_option(options[0])) {
    m->listmode = row->listmode;
    m->passopt = row->passopt;
    m->outmode = row->outmode;
    if (row->outmode != 0) {
      size_t n = strnlen(options + 1, kOutpathMax + 1);
      path_fits = n <= kOutpathMax;
      if (path_fits) std::memcpy(m->outpath, options + 1, n + 1);
    }
  }
  if (options[1] == 'M' || options[1] == 'm') m->inmem = 1;
  return path_fits;
}

Code open_extract(HKMCB *m, bool path_fits) {
  if (m->outmode != 1 && m->outmode != 2) return kOk;
  if (!path_fits) return kBadExtract;
  m->outfp = std::fopen(m->outpath, "wb");
  return m->outfp != nullptr ? kOk : kBadExtract;
}

// Opens a reference file for reading and reports its size (0 for anything
// but a regular file, so that no read from it can pass the bounds checks).
// A directory opens as a stream but cannot be read: it counts as a failed
// open.
FILE *open_reference(const char *path, int64_t *size) {
  if (path == nullptr) return nullptr;
  FILE *fp = std::fopen(path, "rb");
  if (fp == nullptr) return nullptr;
  struct stat st {};
  if (fstat(fileno(fp), &st) != 0 || S_ISDIR(st.st_mode)) {
    std::fclose(fp);
    return nullptr;
  }
  if (size != nullptr) *size = S_ISREG(st.st_mode) ? st.st_size : 0;
  return fp;
}

void close_file(FILE *&fp) {
  if (fp != nullptr) std::fclose(fp);
  fp = nullptr;
}

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
    std::memcpy(e.l1key, rec, kLevel1KeySize);
    e.l2off = load_be32(rec + refdb::kLevel1OffsetAt);
    e.l2len = load_be32(rec + refdb::kLevel1LengthAt);
    e.l2cnt = load_be16(rec + refdb::kLevel1CountAt);
  }
  return n;
}

// Counts the index, then opens LEVEL1 again and loads it. The file stays
// open, positioned after the last record read.
Code load_level1(HKMCB *m, const char *path) {
  int64_t n = count_level1(m->lvl1fp);
  close_file(m->lvl1fp);
  if (n > INT32_MAX) return kNoStorage;
  // At least one entry, so that an empty index is still a valid block.
  m->lvl1tab = static_cast<L1ENTRY *>(std::calloc(
      static_cast<size_t>(std::max<int64_t>(n, 1)), sizeof(L1ENTRY)));
  if (m->lvl1tab == nullptr) return kNoStorage;
  m->lvl1fp = open_reference(path, nullptr);
  if (m->lvl1fp == nullptr) return kBadLevel1;
  m->lvl1cnt = read_level1(m->lvl1fp, m->lvl1tab, n);
  return kOk;
}

// Reads the whole 23200-byte units of fp into a new image; a final partial
// unit is left out. The image goes into *image as soon as it is allocated,
// so that close frees it whatever happens next; *size becomes the number of
// bytes loaded.
Code load_image(FILE *fp, Code seek_code, char **image, int64_t *size) {
  if (fseeko(fp, 0, SEEK_SET) != 0) return seek_code;
  Buffer unit(static_cast<char *>(std::malloc(kImageUnit)));
  if (!unit) return kNoStorage;
  size_t units = 0;
  while (std::fread(unit.get(), 1, kImageUnit, fp) == kImageUnit) ++units;
  // At least one byte, so that an empty image still marks memory mode.
  *image =
      static_cast<char *>(std::malloc(std::max<size_t>(units, 1) * kImageUnit));
  if (*image == nullptr) return kNoStorage;
  if (fseeko(fp, 0, SEEK_SET) != 0) return seek_code;
  size_t loaded = 0;
  while (loaded < units && std::fread(*image + loaded * kImageUnit, 1,
                                      kImageUnit, fp) == kImageUnit)
    ++loaded;
  *size = static_cast<int64_t>(loaded * kImageUnit);
  return kOk;
}

// Open steps 2 to 14 on a block that is already zero-filled and attached to
// the caller's handle word; the first failure ends them.
Code open_instance(HKMCB *m, const char *options, const char *level1,
                   const char *level2, const char *basedata) {
  m->state = 'O';
  bool path_fits = apply_options(m, options);
  m->cachemax = kCacheMax;
  if (Code c = open_extract(m, path_fits); c != kOk) return c;
  m->basefp = open_reference(basedata, &m->basesize);
  if (m->basefp == nullptr) return kBadBasedata;
  m->lvl1fp = open_reference(level1, nullptr);
  if (m->lvl1fp == nullptr) return kBadLevel1;
  m->lvl2fp = open_reference(level2, &m->lvl2size);
  if (m->lvl2fp == nullptr) return kBadLevel2;
  if (Code c = load_level1(m, level1); c != kOk) return c;
  // A segment or block that lies outside what was loaded is not checked
  // here: the search refuses it for its own region ('4') or street ('5').
  if (m->inmem == 1) {
    Code c = load_image(m->lvl2fp, kLevel2Seek, &m->lvl2mem, &m->lvl2size);
    if (c != kOk) return c;
    return load_image(m->basefp, kBasedataSeek, &m->basemem, &m->basesize);
  }
  return kOk;
}

int32_t fail(char *retcode, Code code) {
  if (retcode != nullptr) *retcode = code;
  return 1;
}

// What a block owns in state 'O': every file and the index and images. The
// extract file is closed here too, so that its records reach the disk.
void release_instance_files(HKMCB *m) {
  close_file(m->lvl1fp);
  std::free(m->lvl1tab);
  m->lvl1tab = nullptr;
  std::free(m->lvl2mem);
  std::free(m->basemem);
  m->lvl2mem = m->basemem = nullptr;
  close_file(m->basefp);
  close_file(m->lvl2fp);
  close_file(m->outfp);
}

// The street table with the cache buffers of its entries, the candidates,
// the unpacked records and the block buffers: what every search leaves.
void release_search_data(HKMCB *m) {
  std::free(m->baserecs);
  std::free(m->blockbuf);
  if (m->lvl2tab != nullptr) {
    for (int32_t i = 0; i < m->lvl2cnt; ++i) {
      std::free(m->lvl2tab[i].bpack);
      std::free(m->lvl2tab[i].bunpk);
    }
    std::free(m->lvl2tab);
  }
  std::free(m->lvl2buf);
  std::free(m->cands);
  free_street_names(m);
}

}  // namespace

}  // namespace orlo

extern "C" {

int32_t hk_mopn(HKMCB **handle, char *retcode, const char *options,
                const char *level1, const char *level2, const char *basedata) {
  // Without a handle word there is nowhere to keep the block.
  if (handle == nullptr) return orlo::fail(retcode, orlo::kNoStorage);
  auto *m = static_cast<HKMCB *>(std::calloc(1, sizeof(HKMCB)));
  *handle = m;
  if (m == nullptr) return orlo::fail(retcode, orlo::kNoStorage);
  orlo::Code c = orlo::open_instance(m, options, level1, level2, basedata);
  if (c != orlo::kOk) return orlo::fail(retcode, c);
  m->opened = 1;
  return 0;
}

int32_t hk_mclo(HKMCB **handle, char * /*outrec*/) {
  if (handle == nullptr || *handle == nullptr) return 0;
  HKMCB *m = *handle;
  if (m->state == 'O') {
    orlo::release_instance_files(m);
  } else if (m->state == 'R' && m->inmem != 1) {
    // A copy that opened its own BASEDATA and LEVEL2 closes them; what it
    // shares with its instance (index, images, LEVEL1) stays with that
    // instance. Its extract file is closed by the dispatcher.
    orlo::close_file(m->basefp);
    orlo::close_file(m->lvl2fp);
  }
  orlo::release_search_data(m);
  std::free(m);
  return 0;
}

}  // extern "C"
