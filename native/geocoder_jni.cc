// The JNI entry points of class pkgs.natives.OrloHKGeocoder.
//
// Each method copies the bytes of its Java arrays that the call uses (and
// the strings it uses), makes one call on the handle table or the matcher,
// and copies back what the call wrote. A failure that
// escapes (a C++ exception, the virtual machine refusing an array) never
// reaches Java: the method prints its fixed line on standard output and
// writes its one-letter marker into byte 0 of the caller's record.
#include <jni.h>

#include <array>
#include <cstdio>
#include <exception>

#include "native/geocoder_service.h"
#include "native/jni_arrays.h"
#include "orlo_codes.h"
#include "orlo_matcher.h"

namespace orlo::native {
namespace {

constexpr jsize kNamelistSize = 30000;
constexpr jsize kReclistSize = 7500;

void say(const char *line) {
  std::fputs(line, stdout);
  std::fflush(stdout);
}

// Thrown when an argument cannot be obtained or is too short.
using orlo::native::BadArgument;

// A Java byte array of which a call uses the first `size` bytes: they are
// copied into a buffer of the caller's when the call obtains them, and
// copied back (when the call may write them) when it releases them, so a
// call costs the bytes it uses and no more, however long the array.
class ByteArg {
 public:
  ByteArg(JNIEnv *env, jbyteArray array) : env_(env), array_(array) {}
  ~ByteArg() { release(); }
  ByteArg(const ByteArg &) = delete;
  ByteArg &operator=(const ByteArg &) = delete;

  // Copies the first `size` bytes into `buffer` and returns it; the array
  // must hold at least `size` bytes. With `written`, release() copies them
  // back.
  char *obtain(jsize size, char *buffer, bool written = true) {
    if (array_ == nullptr || env_->GetArrayLength(array_) < size) {
      throw BadArgument();
    }
    env_->GetByteArrayRegion(array_, 0, size,
                             reinterpret_cast<jbyte *>(buffer));
    if (env_->ExceptionCheck()) {
      env_->ExceptionClear();
      throw BadArgument();
    }
    buffer_ = buffer;
    size_ = written ? size : 0;
    return buffer;
  }
  bool is_null() const { return array_ == nullptr; }
  // Writes a marker into byte 0, through the copy when one is held.
  void mark(char marker) {
    if (buffer_ != nullptr && size_ > 0) {
      buffer_[0] = marker;
    } else if (array_ != nullptr && env_->GetArrayLength(array_) >= 1) {
      jbyte b = marker;
      env_->SetByteArrayRegion(array_, 0, 1, &b);
    }
  }
  void release() {
    if (buffer_ != nullptr && size_ > 0) {
      env_->SetByteArrayRegion(array_, 0, size_,
                               reinterpret_cast<const jbyte *>(buffer_));
    }
    buffer_ = nullptr;
    size_ = 0;
  }

 private:
  JNIEnv *env_;
  jbyteArray array_;
  char *buffer_ = nullptr;
  jsize size_ = 0;  // bytes to copy back
};

// A Java string held as modified UTF-8; a null string stays NULL.
class StringArg {
 public:
  StringArg(JNIEnv *env, jstring s) : env_(env), string_(s) {}
  ~StringArg() { release(); }
  StringArg(const StringArg &) = delete;
  StringArg &operator=(const StringArg &) = delete;

  const char *obtain() {
    if (string_ == nullptr) return nullptr;
    chars_ = env_->GetStringUTFChars(string_, nullptr);
    if (chars_ == nullptr) throw BadArgument();
    return chars_;
  }
  void release() {
    if (chars_ == nullptr) return;
    env_->ReleaseStringUTFChars(string_, chars_);
    chars_ = nullptr;
  }

 private:
  JNIEnv *env_;
  jstring string_;
  const char *chars_ = nullptr;
};

// The sixteen Java parameters shared by open, process, minProcess, close.
// Each part is obtained only when the call asks for it (see ArgNeed), so an
// array that the call does not use is never obtained nor length-checked.
struct JavaArgs final : ArgSource {
  JavaArgs(JNIEnv *env, jbyteArray in, jbyteArray out, jstring opts,
           jstring skip, const std::array<jstring, 6> &lines, jstring report,
           jstring level1, jstring level2, jstring basedata, jbyteArray names,
           jbyteArray recs)
      : inRec(env, in),
        outRec(env, out),
        options(env, opts),
        skipBaseDate(env, skip),
        line1(env, lines[0]),
        line2(env, lines[1]),
        line3(env, lines[2]),
        line4(env, lines[3]),
        line5(env, lines[4]),
        line6(env, lines[5]),
        reportPath(env, report),
        level1Path(env, level1),
        level2Path(env, level2),
        basedataPath(env, basedata),
        namelist(env, names),
        reclist(env, recs) {}

  ByteArg inRec, outRec;
  StringArg options, skipBaseDate;
  StringArg line1, line2, line3, line4, line5, line6;
  StringArg reportPath, level1Path, level2Path, basedataPath;
  ByteArg namelist, reclist;

  CallArgs obtain(unsigned needs) override {
    CallArgs a;
    if (needs & kNeedOutRec) {
      a.out_rec = outRec.obtain(HKOUTREC_SIZE, out_copy_.data());
    }
    if (needs & kNeedInRec) {
      a.in_rec = inRec.obtain(HKINREC_SIZE, in_copy_.data(), false);
    }
    if (needs & (kNeedFiles | kNeedReport)) a.options = options.obtain();
    if (needs & kNeedFiles) {
      a.level1_path = level1Path.obtain();
      a.level2_path = level2Path.obtain();
      a.basedata_path = basedataPath.obtain();
    }
    if (needs & kNeedReport) {
      a.skip_base_date = skipBaseDate.obtain();
      StringArg *lines[6] = {&line1, &line2, &line3, &line4, &line5, &line6};
      for (int i = 0; i < 6; ++i) a.report_lines[i] = lines[i]->obtain();
      a.report_path = reportPath.obtain();
    }
    if (needs & kNeedLists) {
      a.namelist = list_area(namelist, kNamelistSize, 0);
      a.reclist = list_area(reclist, kReclistSize, kNamelistSize);
    }
    return a;
  }
  void release() {
    for (ByteArg *b : {&inRec, &outRec, &namelist, &reclist}) b->release();
    for (StringArg *s :
         {&options, &skipBaseDate, &line1, &line2, &line3, &line4, &line5,
          &line6, &reportPath, &level1Path, &level2Path, &basedataPath})
      s->release();
  }

 private:
  // The list areas are copied through one area per thread, so that nothing
  // is allocated per call (a call uses it only while it runs, and calls on
  // one thread never overlap). A listing call given no list area gets the
  // scratch area instead of a crash; a list area too short is refused.
  char *list_area(ByteArg &arg, jsize size, size_t offset) {
    thread_local std::array<char, kNamelistSize + kReclistSize> scratch;
    char *area = scratch.data() + offset;
    return arg.is_null() ? area : arg.obtain(size, area);
  }

  std::array<char, HKINREC_SIZE> in_copy_;
  std::array<char, HKOUTREC_SIZE> out_copy_;
};

// Runs one call, which obtains what it needs from args; a failure prints
// `failed` and leaves `marker` in the record, a failure while releasing
// prints `release`.
template <typename Work>
void run(JavaArgs &args, char marker, const char *failed, const char *release,
         Work work) {
  try {
    work(args);
  } catch (...) {
    say(failed);
    args.outRec.mark(marker);
  }
  try {
    args.release();
  } catch (...) {
    say(release);
  }
}

// The two lines a method prints: on a failure, and on a failure while
// releasing what it obtained.
struct FailureLines {
  const char *failed;
  const char *release;
};
constexpr FailureLines kProcessLines{
    "orloHKGeocoder : exception in process\n",
    "orloHKGeocoder.process : exception while releasing memory\n"};
constexpr FailureLines kMinProcessLines{
    "orloHKGeocoder : exception in minProcess\n",
    "orloHKGeocoder.minProcess : exception while releasing memory\n"};

// process ("P") and minProcess ("R").
void process_call(JavaArgs &args, jint handle, const char *type,
                  const FailureLines &lines) {
  run(args, HKRC_PROCESS_FAILED, lines.failed, lines.release,
      [handle, type](JavaArgs &a) { process_geocoder(handle, a, type); });
}

}  // namespace
}  // namespace orlo::native

using orlo::native::ByteArg;
using orlo::native::JavaArgs;
using orlo::native::StringArg;

#define ORLO_JAVA_PARAMS                                                      \
  jbyteArray inRec, jbyteArray outRec, jstring options, jstring skipBaseDate, \
      jstring line1, jstring line2, jstring line3, jstring line4,             \
      jstring line5, jstring line6, jstring reportPath, jstring level1Path,   \
      jstring level2Path, jstring basedataPath, jbyteArray namelist,          \
      jbyteArray reclist

#define ORLO_JAVA_ARGS                                                  \
  JavaArgs args(env, inRec, outRec, options, skipBaseDate,              \
                {line1, line2, line3, line4, line5, line6}, reportPath, \
                level1Path, level2Path, basedataPath, namelist, reclist)

extern "C" {

JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM *vm, void * /*reserved*/) {
  pthread_mutex_init(&hkGeoMutex, nullptr);
  JNIEnv *env = nullptr;
  if (vm->GetEnv(reinterpret_cast<void **>(&env), JNI_VERSION_1_2) != JNI_OK ||
      env == nullptr)
    return JNI_VERSION_1_2;
  return env->GetVersion();
}

JNIEXPORT jint JNICALL Java_pkgs_natives_OrloHKGeocoder_openGeocoder(
    JNIEnv *env, jclass /*cls*/, ORLO_JAVA_PARAMS) {
  ORLO_JAVA_ARGS;
  int slot = -1;
  orlo::native::run(
      args, HKRC_OPEN_FAILED, "orloHKGeocoder : exception in open\n",
      "orloHKGeocoder.open : exception while releasing memory\n",
      [&slot](JavaArgs &a) { slot = orlo::native::open_geocoder(a); });
  return slot;
}

JNIEXPORT void JNICALL Java_pkgs_natives_OrloHKGeocoder_process(
    JNIEnv *env, jclass /*cls*/, jint handle, ORLO_JAVA_PARAMS) {
  ORLO_JAVA_ARGS;
  orlo::native::process_call(args, handle, "P", orlo::native::kProcessLines);
}

JNIEXPORT void JNICALL Java_pkgs_natives_OrloHKGeocoder_minProcess(
    JNIEnv *env, jclass /*cls*/, jint handle, ORLO_JAVA_PARAMS) {
  ORLO_JAVA_ARGS;
  orlo::native::process_call(args, handle, "R", orlo::native::kMinProcessLines);
}

JNIEXPORT void JNICALL Java_pkgs_natives_OrloHKGeocoder_closeGeocoder(
    JNIEnv *env, jclass /*cls*/, jint handle, ORLO_JAVA_PARAMS) {
  ORLO_JAVA_ARGS;
  orlo::native::run(
      args, HKRC_CLOSE_FAILED, "orloHKGeocoder:exception in close\n",
      "orloHKGeocoder.close: exception while releasing memory\n",
      [handle](JavaArgs &a) { orlo::native::close_geocoder(handle, a); });
}

JNIEXPORT jint JNICALL Java_pkgs_natives_OrloHKGeocoder_getErrorMsg(
    JNIEnv *env, jclass /*cls*/, jbyteArray record) {
  ByteArg rec(env, record);
  char code[1];
  try {
    hk_doem(rec.obtain(1, code, false));
  } catch (...) {
    orlo::native::say("orloHKGeocoder:exception in getErrorMsg\n");
    rec.mark(HKRC_ERRMSG_FAILED);
  }
  try {
    rec.release();
  } catch (...) {
    orlo::native::say(
        "orloHKGeocoder.getErrorMsg : exception while releasing memory\n");
  }
  return 0;
}

JNIEXPORT void JNICALL Java_pkgs_natives_OrloHKGeocoder_copyFields(
    JNIEnv *env, jclass /*cls*/, jbyteArray source, jbyteArray inRec) {
  ByteArg in(env, inRec);
  ByteArg src(env, source);
  std::array<char, HKINREC_SIZE> rec_copy;
  // The source record is read only; one copy area per thread.
  thread_local std::array<char, HKSRCREC_SIZE> src_copy;
  try {
    char *rec = in.obtain(HKINREC_SIZE, rec_copy.data());
    hk_amat(src.obtain(HKSRCREC_SIZE, src_copy.data(), false), rec);
  } catch (...) {
    orlo::native::say("orloHKGeocoder : exception in copyFields\n");
    in.mark(HKRC_COPY_FAILED);
  }
  try {
    in.release();
    src.release();
  } catch (...) {
    orlo::native::say(
        "orloHKGeocoder.copyFields :  exception while releasing memory\n");
  }
}

}  // extern "C"
