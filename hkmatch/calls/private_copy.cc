// The "R" call: one record processed in a private copy of an instance, so
// that the instance itself is left exactly as it was. The copy starts with
// empty search caches and zero counters, shares the instance's LEVEL1 index,
// and reads the reference data through files of its own unless the call
// asks for memory mode, in which case it shares the instance's images.
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "hkmatch/calls/call_dispatch.h"
#include "hkmatch/refdata/reference_store.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo {

namespace detail {
thread_local int fail_copy_block_number = 0;
}  // namespace detail

namespace {

constexpr int32_t kCacheCeiling = 3000000;

HKMCB *new_block() {
  if (detail::fail_copy_block_number > 0 &&
      --detail::fail_copy_block_number == 0) {
    return nullptr;
  }
  return static_cast<HKMCB *>(std::calloc(1, sizeof(HKMCB)));
}

// Clears everything the copy must not share with the instance, so that
// closing the copy cannot release the instance's search buffers.
void detach_search_state(HKMCB *copy) {
  copy->lvl2cnt = 0;
  copy->baserecs = nullptr;
  copy->basecur = nullptr;
  copy->blockbuf = nullptr;
  copy->lvl2tab = nullptr;
  copy->lvl2buf = nullptr;
  copy->cands = nullptr;
  copy->candscore = nullptr;
  copy->candcap = 0;
  copy->reccap = 0;
  copy->blockcap = 0;
  copy->lvl2bufcap = 0;
  copy->lvl2tabcap = 0;
  copy->lvl2initials = 0;
  std::memset(copy->lastkey, 0, sizeof copy->lastkey);
  std::memset(copy->lastname, 0, sizeof copy->lastname);
  copy->lastidx = 0;
  copy->lastcnt = 0;
  copy->laststat = 0;
  copy->cachemax = kCacheCeiling;
  copy->cacheused = 0;
  copy->nread = 0;
  copy->nmatched = 0;
  copy->state = 'R';
}

bool memory_mode_requested(const char *options) {
  return options != nullptr && options[0] != '\0' &&
         (options[1] == 'M' || options[1] == 'm');
}

int64_t file_size(FILE *f) {
  struct stat st;
  if (fstat(fileno(f), &st) != 0) return 0;
  return static_cast<int64_t>(st.st_size);
}

FILE *open_or_null(const char *path, const char *mode) {
  return path != nullptr ? std::fopen(path, mode) : nullptr;
}

void close_if_open(FILE *f) {
  if (f != nullptr) std::fclose(f);
}

// The files a copy opened for itself. The copy's close releases BASEDATA
// and LEVEL2; the extract file is closed when the copy is released.
struct OwnFiles {
  FILE *extract = nullptr;
  FILE *base = nullptr;
  FILE *level2 = nullptr;

  void close_all() {
    close_if_open(extract);
    close_if_open(base);
    close_if_open(level2);
  }
};

// Opens the copy's own extract file (when the instance writes one), BASEDATA
// and LEVEL2 in that order. Returns '0', or the code of the first failure
// with every file this call opened closed again.
char open_own_files(const CallArgs &a, HKMCB *copy, OwnFiles *files) {
  copy->inmem = 0;
  copy->lvl2mem = nullptr;
  copy->basemem = nullptr;
  char rc = HKRC_OK;
  if (copy->outmode == 1 || copy->outmode == 2) {
    files->extract = std::fopen(copy->outpath, "wb");
    if (files->extract == nullptr) rc = HKRC_BASEDATA_OPEN;
  }
  if (rc == HKRC_OK) {
    files->base = open_or_null(a.basedata_path, "rb");
    if (files->base == nullptr) rc = HKRC_BASEDATA_OPEN;
  }
  if (rc == HKRC_OK) {
    files->level2 = open_or_null(a.level2_path, "rb");
    if (files->level2 == nullptr) rc = HKRC_LEVEL2_OPEN;
  }
  if (rc != HKRC_OK) {
    files->close_all();
    return rc;
  }
  if (files->extract != nullptr) copy->outfp = files->extract;
  copy->basefp = files->base;
  copy->lvl2fp = files->level2;
  copy->basesize = file_size(files->base);
  copy->lvl2size = file_size(files->level2);
  return HKRC_OK;
}

// The nested "P" and "C" on the second block; the close releases it.
void run_nested_calls(const CallArgs &a, const MatcherSteps &steps,
                      HKMCB *block) {
  HKHANDLE copy_handle{};
  copy_handle.mcb = block;
  CallArgs nested = a;
  nested.handle = &copy_handle;
  nested.call_type = "P";
  dispatch(nested, steps);
  nested.call_type = "C";
  dispatch(nested, steps);
}

}  // namespace

void process_in_private_copy(const CallArgs &a, const MatcherSteps &steps) {
  char *rc = &a.out_rec[HKOUT_RETCODE_OFF];
  const HKMCB *instance = a.handle != nullptr ? a.handle->mcb : nullptr;
  if (instance == nullptr || !open_succeeded(*instance)) {
    *rc = HKRC_NOT_OPEN;
    return;
  }
  // Both blocks are had before anything else happens, so that running out
  // of storage leaves the instance and the caller's files untouched.
  HKMCB *first = new_block();
  HKMCB *second = first != nullptr ? new_block() : nullptr;
  if (second == nullptr) {
    std::free(first);
    *rc = HKRC_STORAGE;
    return;
  }
  std::memcpy(first, instance, sizeof *first);
  if (first->state != 'O') {
    std::free(first);
    std::free(second);
    *rc = HKRC_NOT_OPEN;
    return;
  }
  detach_search_state(first);
  OwnFiles files;
  if (memory_mode_requested(a.options)) {
    first->inmem = 1;
  } else if (char code = open_own_files(a, first, &files); code != HKRC_OK) {
    std::free(first);
    std::free(second);
    *rc = code;
    return;
  }
  // The copy reads through the instance's store when it reads the same
  // files, else through a store of its own; its close drops the reference.
  if (store_open_copy(first, instance) != HKRC_OK) {
    files.close_all();
    std::free(first);
    std::free(second);
    *rc = HKRC_STORAGE;
    return;
  }
  std::memcpy(second, first, sizeof *second);
  run_nested_calls(a, steps, second);
  close_if_open(files.extract);
  std::free(first);
}

}  // namespace orlo
