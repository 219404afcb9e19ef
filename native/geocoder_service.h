// The table of open geocoder instances and the calls that the JNI entry
// points make on it, free of JNI types so that they can also be driven
// directly (tests, and the race checks of the handle table).
#ifndef ORLO_NATIVE_GEOCODER_SERVICE_H
#define ORLO_NATIVE_GEOCODER_SERVICE_H

#include <pthread.h>

#include "orlo_matcher.h"

// The process-wide table of 200 geocoder handles (slot index = the handle
// Java holds; a slot is free while its word 0 is zero) and the mutex that
// guards it over every open and close.
inline constexpr int kMaxGeocoders = 200;
extern HKHANDLE HKCONTROL[kMaxGeocoders];
extern pthread_mutex_t hkGeoMutex;

namespace orlo::native {

// The sixteen arguments that every dispatcher call from Java carries.
struct CallArgs {
  const char *inRec = nullptr;
  char *outRec = nullptr;
  const char *options = nullptr;
  const char *skipBaseDate = nullptr;
  const char *reportLine[6] = {};
  const char *reportPath = nullptr;
  const char *level1Path = nullptr;
  const char *level2Path = nullptr;
  const char *basedataPath = nullptr;
  char *namelist = nullptr;
  char *reclist = nullptr;
};

// Takes the lowest free slot and opens an instance in it under hkGeoMutex.
// Returns the slot, whatever the open's return code in outRec; or -1 with
// the limit message on standard output and 'L' in outRec[0] when all slots
// are taken.
int open_geocoder(const CallArgs &args);

// True when handle names a slot in use.
bool handle_in_use(int handle);

// Runs call type "P" or "R" on the instance in slot `handle` without taking
// the lock. An invalid handle is answered with 'A' in outRec[0].
void process_geocoder(int handle, const CallArgs &args, const char *callType);

// Closes the instance in slot `handle` under hkGeoMutex and frees the slot;
// does nothing for an invalid handle.
void close_geocoder(int handle, const CallArgs &args);

}  // namespace orlo::native

#endif  // ORLO_NATIVE_GEOCODER_SERVICE_H
