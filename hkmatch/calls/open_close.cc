// Opening and closing a geocoder instance: the match control block, the
// option string, the three reference files, and the reference store that
// holds the LEVEL1 index and, in memory mode, the images of LEVEL2 and
// BASEDATA.
#include <sys/stat.h>
#include <sys/types.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "hkmatch/refdata/reference_store.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"

namespace orlo {

namespace {

// '0' when a step succeeded, otherwise the return code of its failure.
using Code = char;
constexpr Code kOk = HKRC_OK;
constexpr Code kNoStorage = HKRC_STORAGE;
constexpr Code kBadBasedata = HKRC_BASEDATA_OPEN;
constexpr Code kBadExtract = HKRC_BASEDATA_OPEN;
constexpr Code kBadLevel1 = HKRC_LEVEL1_OPEN;
constexpr Code kBadLevel2 = HKRC_LEVEL2_OPEN;

constexpr int32_t kCacheMax = 3000000;
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
  // The index and, in memory mode, the images come from the reference store
  // of these files: loaded now, or already by another instance. A segment
  // or block that lies outside what was loaded is not checked here: the
  // search refuses it for its own region ('4') or street ('5').
  return store_open(m, level1);
}

int32_t fail(char *retcode, Code code) {
  if (retcode != nullptr) *retcode = code;
  return 1;
}

// What a block owns in state 'O': every file. The extract file is closed
// here too, so that its records reach the disk. The index and the images
// belong to the store.
void release_instance_files(HKMCB *m) {
  close_file(m->lvl1fp);
  close_file(m->basefp);
  close_file(m->lvl2fp);
  close_file(m->outfp);
}

// The candidates, the unpacked records and the block buffer: what every
// search leaves. The street table is the store's.
void release_search_data(HKMCB *m) {
  std::free(m->baserecs);
  std::free(m->blockbuf);
  std::free(m->lvl2buf);
  std::free(m->cands);
  std::free(m->candscore);
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
  orlo::store_release(m);
  orlo::release_search_data(m);
  std::free(m);
  return 0;
}

}  // extern "C"
