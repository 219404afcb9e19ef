// The handle table and the open, process and close calls made on it.
#include "native/geocoder_service.h"

#include <cstdio>
#include <mutex>

HKHANDLE HKCONTROL[kMaxGeocoders];
pthread_mutex_t hkGeoMutex = PTHREAD_MUTEX_INITIALIZER;

namespace orlo::native {
namespace {

// hkGeoMutex as a lockable, so that a failure escaping the matcher still
// releases it and the open can release it early.
struct TableLock {
  void lock() { pthread_mutex_lock(&hkGeoMutex); }
  void unlock() { pthread_mutex_unlock(&hkGeoMutex); }
};

// The one lockable over hkGeoMutex (it holds no state of its own).
TableLock &table_lock() {
  static TableLock lock;
  return lock;
}

// Word 0 of a slot is read without the lock by process calls while opens and
// closes of other slots write theirs; atomic access keeps those reads exact.
HKMCB *slot_word(int slot) {
  return __atomic_load_n(&HKCONTROL[slot].mcb, __ATOMIC_ACQUIRE);
}

void set_slot(int slot, const HKHANDLE &value) {
  for (size_t i = 0; i < sizeof value.reserved; ++i)
    HKCONTROL[slot].reserved[i] = value.reserved[i];
  __atomic_store_n(&HKCONTROL[slot].mcb, value.mcb, __ATOMIC_RELEASE);
}

void call(const char *type, HKHANDLE *handle, const CallArgs &a) {
  hk_mtci(type, handle, a.inRec, a.outRec, a.options, a.skipBaseDate,
          a.reportLine[0], a.reportLine[1], a.reportLine[2], a.reportLine[3],
          a.reportLine[4], a.reportLine[5], a.reportPath, a.level1Path,
          a.level2Path, a.basedataPath, a.namelist, a.reclist);
}

}  // namespace

CallArgs GivenArgs::obtain(unsigned needs) {
  asked_ |= needs;
  CallArgs a;
  if (needs & kNeedInRec) a.inRec = args_.inRec;
  if (needs & kNeedOutRec) a.outRec = args_.outRec;
  if (needs & kNeedLists) {
    a.namelist = args_.namelist;
    a.reclist = args_.reclist;
  }
  if (needs & (kNeedFiles | kNeedReport)) a.options = args_.options;
  if (needs & kNeedFiles) {
    a.level1Path = args_.level1Path;
    a.level2Path = args_.level2Path;
    a.basedataPath = args_.basedataPath;
  }
  if (needs & kNeedReport) {
    a.skipBaseDate = args_.skipBaseDate;
    for (int i = 0; i < 6; ++i) a.reportLine[i] = args_.reportLine[i];
    a.reportPath = args_.reportPath;
  }
  return a;
}

int open_geocoder(ArgSource &source) {
  std::unique_lock<TableLock> lock(table_lock());
  int slot = 0;
  while (slot < kMaxGeocoders && slot_word(slot) != nullptr) ++slot;
  if (slot == kMaxGeocoders) {
    std::printf("\n Cannot run more than %d HKGeocoders on one server",
                kMaxGeocoders);
    std::fflush(stdout);
    lock.unlock();
    source.obtain(kNeedOutRec).outRec[0] = 'L';
    return -1;
  }
  const CallArgs args = source.obtain(kNeedOutRec | kNeedFiles);
  HKHANDLE handle{};
  call("O", &handle, args);
  set_slot(slot, handle);
  return slot;
}

bool handle_in_use(int handle) {
  return handle >= 0 && handle < kMaxGeocoders && slot_word(handle) != nullptr;
}

void process_geocoder(int handle, ArgSource &source, const char *callType) {
  if (!handle_in_use(handle)) {
    source.obtain(kNeedOutRec).outRec[0] = 'A';
    return;
  }
  HKHANDLE local{};
  local.mcb = slot_word(handle);
  unsigned needs = kNeedInRec | kNeedOutRec;
  // Only listing mode 3 writes the list areas; a private copy lists as its
  // instance does, and opens files and closes (with its report) itself.
  if (local.mcb->listmode == 3) needs |= kNeedLists;
  if (callType[0] == 'R') needs |= kNeedFiles | kNeedReport;
  call(callType, &local, source.obtain(needs));
}

void close_geocoder(int handle, ArgSource &source) {
  if (!handle_in_use(handle)) return;
  HKHANDLE local{};
  local.mcb = slot_word(handle);
  const CallArgs args = source.obtain(kNeedOutRec | kNeedReport);
  std::lock_guard<TableLock> lock(table_lock());
  call("C", &local, args);
  set_slot(handle, HKHANDLE{});
}

}  // namespace orlo::native
