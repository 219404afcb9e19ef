// The table of open geocoder instances and the calls that the JNI entry
// points make on it, free of JNI types so that they can also be driven
// directly (tests, and the race checks of the handle table).
#ifndef ORLO_NATIVE_GEOCODER_SERVICE_H
#define ORLO_NATIVE_GEOCODER_SERVICE_H

#include <pthread.h>

#include <cstddef>

#include "hkmatch/calls/call_args.h"
#include "orlo_lines.h"
#include "orlo_matcher.h"

// The process-wide table of 200 geocoder handles (slot index = the handle
// Java holds; a slot is free while its word 0 is zero) and the mutex that
// guards it over every open and close.
inline constexpr int kMaxGeocoders = 200;
extern HKHANDLE HKCONTROL[kMaxGeocoders];
extern pthread_mutex_t hkGeoMutex;

namespace orlo::native {

// The arguments of a call from Java: those of hk_mtci without the call type
// and the handle, which the table fills in.
using ::orlo::CallArgs;

// The parts of the arguments that a call reads or writes.
enum ArgNeed : unsigned {
  kNeedInRec = 1u << 0,   // in_rec, 200 bytes, read
  kNeedOutRec = 1u << 1,  // out_rec, 300 bytes, written
  kNeedLists = 1u << 2,   // namelist (30000) and reclist (7500), written
  kNeedFiles = 1u << 3,   // options and the three file paths
  kNeedReport = 1u << 4,  // options, skip_base_date, report lines and path
};

// Where a call's arguments come from. A call asks once, when it knows that
// it goes ahead and what it needs; the source hands out the parts asked for
// (NULL for the others) and throws when one of them cannot be had (an
// array too short, the virtual machine refusing it). What it hands out
// stays valid until the source releases it, after the call.
class ArgSource {
 public:
  virtual CallArgs obtain(unsigned needs) = 0;

 protected:
  ~ArgSource() = default;
};

// Arguments already in memory: obtain() gives the parts asked for and NULL
// for the rest, so that a call cannot use what it did not ask for.
class GivenArgs final : public ArgSource {
 public:
  explicit GivenArgs(const CallArgs &args) : args_(args) {}
  CallArgs obtain(unsigned needs) override;
  // The needs of every obtain() so far, or-ed together.
  unsigned asked() const { return asked_; }

 private:
  CallArgs args_;
  unsigned asked_ = 0;
};

// Takes the lowest free slot under hkGeoMutex and opens an instance in it.
// Returns the slot, whatever the open's return code in outRec. When all
// slots are taken: prints the limit message on standard output, unlocks,
// writes 'L' into outRec[0] (asking only for outRec) and returns -1. A
// throwing source leaves the slot free and hkGeoMutex unlocked.
int open_geocoder(ArgSource &source);

// True when handle names a slot in use.
bool handle_in_use(int handle);

// Runs call type "P" or "R" on the instance in slot `handle` without taking
// the lock. An invalid handle is answered with 'A' in outRec[0]. The list
// areas are asked for only when the instance lists into them (listing mode
// 3); "R" also asks for the options, paths and report texts of its copy.
void process_geocoder(int handle, ArgSource &source, const char *callType);

// Geocodes one address line on the instance in slot `handle` without
// taking the lock (orlo_line_geocode, with no list areas). An invalid
// handle is answered as the matcher answers it: 'A' in outRec[0].
int32_t geocode_line(int handle, const char *line, size_t len, char *inRec,
                     char *outRec, ORLO_LINE_INFO *info);

// Closes the instance in slot `handle` under hkGeoMutex and frees the slot;
// does nothing (and asks for nothing) for an invalid handle. The arguments
// are obtained before the lock is taken; a throwing source leaves the
// instance open.
void close_geocoder(int handle, ArgSource &source);

// Runs orlo_process_batch on the instance in slot `handle` without taking
// the lock: count 200-byte records of in_recs into count 300-byte records of
// out_recs. An invalid handle gives 'A' in every output record. Returns
// what orlo_process_batch returns.
int32_t process_batch(int handle, const char *in_recs, char *out_recs,
                      int32_t count);

// The same calls on arguments in memory.
inline int open_geocoder(const CallArgs &args) {
  GivenArgs given(args);
  return open_geocoder(given);
}
inline void process_geocoder(int handle, const CallArgs &args,
                             const char *callType) {
  GivenArgs given(args);
  process_geocoder(handle, given, callType);
}
inline void close_geocoder(int handle, const CallArgs &args) {
  GivenArgs given(args);
  close_geocoder(handle, given);
}

}  // namespace orlo::native

#endif  // ORLO_NATIVE_GEOCODER_SERVICE_H
