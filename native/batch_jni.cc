// The JNI entry point of class pkgs.natives.BatchProcessor: many records in
// one crossing. The records are copied in and out with
// Get/SetByteArrayRegion (nothing stays pinned while the matcher runs), and
// no exception reaches Java: a failure prints its fixed line on standard
// output and the method returns -1.
#include <jni.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "native/geocoder_service.h"
#include "native/jni_arrays.h"
#include "orlo_records.h"

namespace {

using orlo::native::check;

// True when the array holds at least `bytes` bytes.
bool holds(JNIEnv *env, jbyteArray array, int64_t bytes) {
  return array != nullptr && env->GetArrayLength(array) >= bytes;
}

jint process_batch(JNIEnv *env, jint handle, jbyteArray inRecs,
                   jbyteArray outRecs, jint count) {
  if (count <= 0) return 0;
  const int64_t in_bytes = int64_t{count} * HKINREC_SIZE;
  const int64_t out_bytes = int64_t{count} * HKOUTREC_SIZE;
  if (!holds(env, inRecs, in_bytes) || !holds(env, outRecs, out_bytes))
    return -1;
  std::vector<char> in(static_cast<size_t>(in_bytes));
  std::vector<char> out(static_cast<size_t>(out_bytes));
  env->GetByteArrayRegion(inRecs, 0, static_cast<jsize>(in_bytes),
                          reinterpret_cast<jbyte *>(in.data()));
  check(env);
  int32_t done =
      orlo::native::process_batch(handle, in.data(), out.data(), count);
  env->SetByteArrayRegion(outRecs, 0, static_cast<jsize>(out_bytes),
                          reinterpret_cast<const jbyte *>(out.data()));
  check(env);
  return done;
}

}  // namespace

extern "C" JNIEXPORT jint JNICALL Java_pkgs_natives_BatchProcessor_processBatch(
    JNIEnv *env, jclass, jint handle, jbyteArray inRecs, jbyteArray outRecs,
    jint count) {
  try {
    return process_batch(env, handle, inRecs, outRecs, count);
  } catch (const orlo::native::BadArgument &) {
    return -1;  // the virtual machine refused an array access
  } catch (...) {
    if (env->ExceptionCheck()) env->ExceptionClear();
    std::fputs("orloHKGeocoder : exception in processBatch\n", stdout);
    std::fflush(stdout);
    return -1;
  }
}
