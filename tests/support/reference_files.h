// Small helpers for tests that write reference files byte by byte: a
// temporary directory, whole-file writes and LEVEL1 records.
#ifndef ORLO_TESTS_SUPPORT_REFERENCE_FILES_H
#define ORLO_TESTS_SUPPORT_REFERENCE_FILES_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/file_util.h"

namespace orlo::testfiles {

// A fresh directory under the system's temporary directory, removed with
// everything in it at destruction.
class TempDir {
 public:
  TempDir() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "orlo-refdb-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) ADD_FAILURE() << "mkdtemp";
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempDir(const TempDir &) = delete;
  TempDir &operator=(const TempDir &) = delete;

  const std::string &path() const { return path_; }
  std::string file(const std::string &name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

using orlo::testing::read_file;
using orlo::testing::write_file;

inline void put_be(std::string &out, uint64_t v, int bytes) {
  for (int i = bytes - 1; i >= 0; --i)
    out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}

// One 40-byte LEVEL1 record: the key blank-padded to 30 bytes, then the
// segment offset, length and record count, big-endian.
inline std::string level1_record(std::string key, uint32_t off, uint32_t len,
                                 uint16_t count) {
  key.resize(30, ' ');
  put_be(key, off, 4);
  put_be(key, len, 4);
  put_be(key, count, 2);
  return key;
}

// The end record: its first four bytes are zero.
inline std::string level1_end() {
  return std::string(40, '\0');
}

// n bytes whose values cycle through 0..250, so that any misplaced copy
// shows.
inline std::string patterned(size_t n) {
  std::string s(n, '\0');
  for (size_t i = 0; i < n; ++i) s[i] = static_cast<char>(i % 251);
  return s;
}

// Number of file descriptors open in this process.
inline long open_descriptors() {
  long n = 0;
  for ([[maybe_unused]] const auto &e :
       std::filesystem::directory_iterator("/proc/self/fd"))
    ++n;
  return n;
}

}  // namespace orlo::testfiles

#endif  // ORLO_TESTS_SUPPORT_REFERENCE_FILES_H
