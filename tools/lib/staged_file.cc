#include "lib/staged_file.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

namespace orlo::tools {

namespace {
constexpr size_t kStreamBuffer = 1u << 20;

std::string describe(const std::string &what, const std::string &path) {
  return what + " " + path + ": " + std::strerror(errno);
}

std::string temp_template(const std::string &final_path) {
  size_t slash = final_path.rfind('/');
  std::string dir =
      slash == std::string::npos ? "" : final_path.substr(0, slash + 1);
  std::string base =
      slash == std::string::npos ? final_path : final_path.substr(slash + 1);
  return dir + "." + base + ".XXXXXX";
}
}  // namespace

StagedFile::~StagedFile() {
  if (file_ != nullptr) std::fclose(file_);
  if (!temp_path_.empty() && !committed_) ::unlink(temp_path_.c_str());
}

bool StagedFile::open(const std::string &final_path, std::string *error) {
  final_path_ = final_path;
  std::string tmpl = temp_template(final_path);
  std::vector<char> name(tmpl.begin(), tmpl.end());
  name.push_back('\0');
  int fd = ::mkstemp(name.data());
  if (fd < 0) {
    *error = describe("cannot create a temporary file for", final_path);
    return false;
  }
  temp_path_ = name.data();
  // mkstemp creates the file readable by its owner only; reference files are
  // ordinary data files.
  ::fchmod(fd, 0644);
  file_ = ::fdopen(fd, "wb");
  if (file_ == nullptr) {
    ::close(fd);
    *error = describe("cannot open", temp_path_);
    return false;
  }
  std::setvbuf(file_, nullptr, _IOFBF, kStreamBuffer);
  return true;
}

void StagedFile::write(std::string_view bytes) {
  if (bytes.empty()) return;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
    write_failed_ = true;
  size_ += bytes.size();
}

void StagedFile::write_zeros(size_t n) {
  static constexpr char kZeros[4096] = {};
  while (n > 0) {
    size_t k = n < sizeof kZeros ? n : sizeof kZeros;
    write(std::string_view(kZeros, k));
    n -= k;
  }
}

bool StagedFile::finish(std::string *error) {
  bool ok = !write_failed_ && std::fflush(file_) == 0;
  if (!ok) *error = describe("cannot write", final_path_);
  if (std::fclose(file_) != 0 && ok) {
    *error = describe("cannot close", final_path_);
    ok = false;
  }
  file_ = nullptr;
  return ok;
}

bool StagedFile::commit(std::string *error) {
  if (std::rename(temp_path_.c_str(), final_path_.c_str()) != 0) {
    *error = describe("cannot rename the temporary file to", final_path_);
    return false;
  }
  committed_ = true;
  return true;
}

}  // namespace orlo::tools
