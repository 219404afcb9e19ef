// What the JNI entry points that copy arrays share: a Java exception raised
// by a JNI call becomes a C++ BadArgument (cleared first, so that none
// reaches Java; the entry point catches it and answers with a status), and
// a NUL-terminated text written into a caller's byte array.
#ifndef ORLO_NATIVE_JNI_ARRAYS_H
#define ORLO_NATIVE_JNI_ARRAYS_H

#include <jni.h>

#include <cstring>
#include <exception>

namespace orlo::native {

// Thrown when the virtual machine refuses an argument or an access.
struct BadArgument : std::exception {};

// Clears a pending Java exception and throws BadArgument instead.
inline void check(JNIEnv *env) {
  if (env->ExceptionCheck()) {
    env->ExceptionClear();
    throw BadArgument();
  }
}

// Writes text, NUL-terminated and cut to fit, into the caller's array; does
// nothing when the array is null or empty.
inline void give_text(JNIEnv *env, jbyteArray to, const char *text) {
  if (to == nullptr) return;
  const jsize room = env->GetArrayLength(to);
  if (room <= 0) return;
  auto n = static_cast<jsize>(std::strlen(text));
  if (n > room - 1) n = room - 1;
  env->SetByteArrayRegion(to, 0, n, reinterpret_cast<const jbyte *>(text));
  const jbyte nul = 0;
  env->SetByteArrayRegion(to, n, 1, &nul);
  check(env);
}

}  // namespace orlo::native

#endif  // ORLO_NATIVE_JNI_ARRAYS_H
