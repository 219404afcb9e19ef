// The JNI entry point of class pkgs.natives.Normaliser: the Address builder's
// way to the input normalisation, so that Java tidies addresses exactly as
// the batch tool does.
//
// Arrays are copied in and out with Get/SetByteArrayRegion, nothing stays
// pinned, and no exception reaches Java: a Java exception raised by a JNI
// call is cleared, a C++ one is caught, and the method answers with a
// status instead.
#include <jni.h>

#include <array>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "native/jni_arrays.h"
#include "orlo_normalise.h"
#include "orlo_records.h"

namespace {

using orlo::native::BadArgument;
using orlo::native::check;
using orlo::native::give_text;

// The bytes of element i of a byte[][]; a null element is empty.
std::string field_bytes(JNIEnv *env, jobjectArray fields, jsize i) {
  auto array = static_cast<jbyteArray>(env->GetObjectArrayElement(fields, i));
  check(env);
  std::string bytes;
  if (array != nullptr) {
    bytes.resize(static_cast<size_t>(env->GetArrayLength(array)));
    env->GetByteArrayRegion(array, 0, static_cast<jsize>(bytes.size()),
                            reinterpret_cast<jbyte *>(bytes.data()));
    env->DeleteLocalRef(array);
    check(env);
  }
  return bytes;
}

jint normalise(JNIEnv *env, jobjectArray fields, jbyteArray inRec,
               jbyteArray reason) {
  if (fields == nullptr || inRec == nullptr ||
      env->GetArrayLength(fields) != ORLO_NF_COUNT ||
      env->GetArrayLength(inRec) < HKINREC_SIZE) {
    give_text(env, reason, "normalise needs 9 fields and a 200-byte record");
    return ORLO_NORM_BAD_CALL;
  }
  std::array<std::string, ORLO_NF_COUNT> bytes;
  std::array<const char *, ORLO_NF_COUNT> ptrs;
  std::array<size_t, ORLO_NF_COUNT> lengths;
  for (jsize i = 0; i < ORLO_NF_COUNT; ++i) {
    bytes[i] = field_bytes(env, fields, i);
    ptrs[i] = bytes[i].data();
    lengths[i] = bytes[i].size();
  }
  char record[HKINREC_SIZE];
  ORLO_NORM_FAULT fault{};
  int32_t st = orlo_norm_address(ptrs.data(), lengths.data(), record, &fault);
  env->SetByteArrayRegion(inRec, 0, HKINREC_SIZE,
                          reinterpret_cast<const jbyte *>(record));
  check(env);
  give_text(env, reason, fault.reason);
  return st;
}

}  // namespace

extern "C" JNIEXPORT jint JNICALL
Java_pkgs_natives_Normaliser_normalise(JNIEnv *env, jclass, jobjectArray fields,
                                       jbyteArray inRec, jbyteArray reason) {
  try {
    return normalise(env, fields, inRec, reason);
  } catch (const std::bad_alloc &) {
    if (env->ExceptionCheck()) env->ExceptionClear();
    return ORLO_NORM_NO_MEMORY;
  } catch (...) {
    if (env->ExceptionCheck()) env->ExceptionClear();
    return ORLO_NORM_BAD_CALL;
  }
}
