// The handle table and the open, process and close calls made on it.
#include "native/geocoder_service.h"

#include <cstdio>

HKHANDLE HKCONTROL[kMaxGeocoders];
pthread_mutex_t hkGeoMutex = PTHREAD_MUTEX_INITIALIZER;

namespace orlo::native {
namespace {

// Holds hkGeoMutex for a scope, so that a failure escaping the matcher still
// releases it.
class TableLock {
 public:
  TableLock() { pthread_mutex_lock(&hkGeoMutex); }
  ~TableLock() { pthread_mutex_unlock(&hkGeoMutex); }
  TableLock(const TableLock &) = delete;
  TableLock &operator=(const TableLock &) = delete;
};

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

int open_geocoder(const CallArgs &args) {
  TableLock lock;
  int slot = 0;
  while (slot < kMaxGeocoders && slot_word(slot) != nullptr) ++slot;
  if (slot == kMaxGeocoders) {
    std::printf("\n Cannot run more than %d HKGeocoders on one server",
                kMaxGeocoders);
    std::fflush(stdout);
    args.outRec[0] = 'L';
    return -1;
  }
  HKHANDLE handle{};
  call("O", &handle, args);
  set_slot(slot, handle);
  return slot;
}

bool handle_in_use(int handle) {
  return handle >= 0 && handle < kMaxGeocoders && slot_word(handle) != nullptr;
}

void process_geocoder(int handle, const CallArgs &args, const char *callType) {
  if (!handle_in_use(handle)) {
    args.outRec[0] = 'A';
    return;
  }
  HKHANDLE local{};
  local.mcb = slot_word(handle);
  call(callType, &local, args);
}

void close_geocoder(int handle, const CallArgs &args) {
  if (handle < 0 || handle >= kMaxGeocoders) return;
  TableLock lock;
  HKHANDLE local{};
  local.mcb = slot_word(handle);
  if (local.mcb == nullptr) return;
  call("C", &local, args);
  set_slot(handle, HKHANDLE{});
}

}  // namespace orlo::native
