// An output file written under a temporary name in its final directory and
// renamed into place only when the whole result is good, so that a failed
// run leaves no partial file behind.
#ifndef ORLO_TOOLS_STAGED_FILE_H
#define ORLO_TOOLS_STAGED_FILE_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace orlo::tools {

class StagedFile {
 public:
  StagedFile() = default;
  StagedFile(const StagedFile &) = delete;
  StagedFile &operator=(const StagedFile &) = delete;
  // Removes the temporary file unless it was renamed.
  ~StagedFile();

  // Creates a temporary file beside final_path. False with *error set when
  // it cannot be created.
  bool open(const std::string &final_path, std::string *error);

  // Appends bytes; failures are remembered and reported by finish().
  void write(std::string_view bytes);
  void write_zeros(size_t n);
  uint64_t size() const { return size_; }

  // Flushes and closes the temporary file. False with *error set when any
  // write failed.
  bool finish(std::string *error);

  // Renames the finished temporary file to its final name.
  bool commit(std::string *error);

 private:
  std::FILE *file_ = nullptr;
  std::string temp_path_;
  std::string final_path_;
  uint64_t size_ = 0;
  bool write_failed_ = false;
  bool committed_ = false;
};

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_STAGED_FILE_H
