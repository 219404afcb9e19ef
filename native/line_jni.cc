// The JNI entry point of class pkgs.natives.LineGeocoder, through which
// Geocoder.geocode(String) reaches the line splitter: one address line in,
// the input record of the split kept, the output record, which split was
// kept and a text (the note, or why the line was refused) out.
//
// Arrays are copied with Get/SetByteArrayRegion, nothing stays pinned, and
// no exception reaches Java: a Java exception raised by a JNI call is
// cleared, a C++ one is caught, and the method answers with a status.
#include <jni.h>

#include <array>
#include <cstring>
#include <exception>
#include <new>

#include "native/geocoder_service.h"
#include "native/jni_arrays.h"
#include "orlo_codes.h"
#include "orlo_lines.h"
#include "orlo_records.h"

namespace {

using orlo::native::BadArgument;
using orlo::native::check;
using orlo::native::give_text;

jint geocode(JNIEnv *env, jint handle, jbyteArray line, jbyteArray inRec,
             jbyteArray outRec, jintArray split, jbyteArray text) {
  if (line == nullptr || outRec == nullptr ||
      env->GetArrayLength(outRec) < HKOUTREC_SIZE ||
      (inRec != nullptr && env->GetArrayLength(inRec) < HKINREC_SIZE) ||
      (split != nullptr && env->GetArrayLength(split) < 2)) {
    give_text(env, text,
              "geocodeLine needs a line, a 300-byte output record and, when "
              "given, a 200-byte input record and two split counts");
    return ORLO_LINE_BAD_CALL;
  }
  // A line longer than the splitter takes is refused by it from its length
  // alone: only that much is copied.
  jsize given = env->GetArrayLength(line);
  jsize take = given > ORLO_LINE_MAX_BYTES ? ORLO_LINE_MAX_BYTES + 1 : given;
  thread_local std::array<char, ORLO_LINE_MAX_BYTES + 1> bytes;
  env->GetByteArrayRegion(line, 0, take,
                          reinterpret_cast<jbyte *>(bytes.data()));
  check(env);
  char in[HKINREC_SIZE], out[HKOUTREC_SIZE];
  ORLO_LINE_INFO info{};
  int32_t st = orlo::native::geocode_line(
      handle, bytes.data(), static_cast<size_t>(take), in, out, &info);
  env->SetByteArrayRegion(outRec, 0, HKOUTREC_SIZE,
                          reinterpret_cast<const jbyte *>(out));
  if (inRec != nullptr)
    env->SetByteArrayRegion(inRec, 0, HKINREC_SIZE,
                            reinterpret_cast<const jbyte *>(in));
  if (split != nullptr) {
    jint counts[2] = {info.split, info.tries};
    env->SetIntArrayRegion(split, 0, 2, counts);
  }
  check(env);
  give_text(env, text, st == ORLO_LINE_OK ? info.note : info.reason);
  return st;
}

// Marks the output record after a failure that escaped, when it can.
void mark(JNIEnv *env, jbyteArray outRec) {
  if (env->ExceptionCheck()) env->ExceptionClear();
  if (outRec == nullptr || env->GetArrayLength(outRec) < 1) return;
  jbyte marker = HKRC_PROCESS_FAILED;
  env->SetByteArrayRegion(outRec, 0, 1, &marker);
  if (env->ExceptionCheck()) env->ExceptionClear();
}

}  // namespace

extern "C" JNIEXPORT jint JNICALL Java_pkgs_natives_LineGeocoder_geocodeLine(
    JNIEnv *env, jclass, jint handle, jbyteArray line, jbyteArray inRec,
    jbyteArray outRec, jintArray split, jbyteArray text) {
  try {
    return geocode(env, handle, line, inRec, outRec, split, text);
  } catch (const std::bad_alloc &) {
    mark(env, outRec);
    return ORLO_LINE_NO_MEMORY;
  } catch (...) {
    mark(env, outRec);
    return ORLO_LINE_BAD_CALL;
  }
}
