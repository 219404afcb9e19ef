// The handle table and the open, process and close calls made on it.
#include "native/geocoder_service.h"

#include <cstdio>
#include <mutex>

#include "orlo_batch.h"
#include "orlo_codes.h"

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
  hk_mtci(type, handle, a.in_rec, a.out_rec, a.options, a.skip_base_date,
          a.report_lines[0], a.report_lines[1], a.report_lines[2],
          a.report_lines[3], a.report_lines[4], a.report_lines[5],
          a.report_path, a.level1_path, a.level2_path, a.basedata_path,
          a.namelist, a.reclist);
}

}  // namespace

CallArgs GivenArgs::obtain(unsigned needs) {
  asked_ |= needs;
  CallArgs a;
  if (needs & kNeedInRec) a.in_rec = args_.in_rec;
  if (needs & kNeedOutRec) a.out_rec = args_.out_rec;
  if (needs & kNeedLists) {
    a.namelist = args_.namelist;
    a.reclist = args_.reclist;
  }
  if (needs & (kNeedFiles | kNeedReport)) a.options = args_.options;
  if (needs & kNeedFiles) {
    a.level1_path = args_.level1_path;
    a.level2_path = args_.level2_path;
    a.basedata_path = args_.basedata_path;
  }
  if (needs & kNeedReport) {
    a.skip_base_date = args_.skip_base_date;
    for (int i = 0; i < 6; ++i) a.report_lines[i] = args_.report_lines[i];
    a.report_path = args_.report_path;
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
    source.obtain(kNeedOutRec).out_rec[0] = HKRC_NO_SLOT;
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
    source.obtain(kNeedOutRec).out_rec[0] = HKRC_NOT_OPEN;
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

int32_t process_batch(int handle, const char *in_recs, char *out_recs,
                      int32_t count) {
  HKHANDLE local{};
  if (handle_in_use(handle)) local.mcb = slot_word(handle);
  return orlo_process_batch(&local, in_recs, out_recs, count);
}

int32_t geocode_line(int handle, const char *line, size_t len, char *inRec,
                     char *outRec, ORLO_LINE_INFO *info) {
  HKHANDLE local{};
  if (handle_in_use(handle)) local.mcb = slot_word(handle);
  return orlo_line_geocode(&local, line, len, inRec, outRec, nullptr, nullptr,
                           info);
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
