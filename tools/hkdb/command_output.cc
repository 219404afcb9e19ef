#include <unistd.h>

#include <cstdio>

#include "hkdb/commands.h"

namespace orlo::tools::hkdb {

int data_error(std::string_view cmd, const std::string &message) {
  std::fprintf(stderr, "hkdb %.*s: %s\n", static_cast<int>(cmd.size()),
               cmd.data(), message.c_str());
  return kExitData;
}

std::string counted(uint64_t n, std::string_view noun) {
  return std::to_string(n) + " " + std::string(noun) + (n == 1 ? "" : "s");
}

Progress::Progress(std::string_view cmd, std::string_view unit)
    : enabled_(::isatty(STDERR_FILENO) == 1),
      prefix_("hkdb " + std::string(cmd) + ": "),
      unit_(unit) {}

Progress::~Progress() {
  if (shown_) std::fputc('\n', stderr);
}

void Progress::update(uint64_t count) {
  if (!enabled_) return;
  std::fprintf(stderr, "\r%s%llu %s", prefix_.c_str(),
               static_cast<unsigned long long>(count), unit_.c_str());
  shown_ = true;
}

}  // namespace orlo::tools::hkdb
