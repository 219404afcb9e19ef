#include "hkdb/output_sink.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace orlo::tools::hkdb {

bool OutputSink::open(const std::string &path, std::string *error) {
  to_stdout_ = path.empty();
  return to_stdout_ || file_.open(path, error);
}

std::function<void(std::string_view)> OutputSink::writer() {
  return [this](std::string_view bytes) {
    if (!to_stdout_) {
      file_.write(bytes);
    } else if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) !=
               bytes.size()) {
      stdout_failed_ = true;
    }
  };
}

bool OutputSink::close(std::string *error) {
  if (!to_stdout_) return file_.finish(error) && file_.commit(error);
  if (std::fflush(stdout) != 0 || stdout_failed_) {
    *error =
        std::string("cannot write standard output: ") + std::strerror(errno);
    return false;
  }
  return true;
}

}  // namespace orlo::tools::hkdb
