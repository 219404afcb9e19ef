// Where dump and generate write their CSV: standard output, or a file that
// appears only once it is complete.
#ifndef ORLO_TOOLS_HKDB_OUTPUT_SINK_H
#define ORLO_TOOLS_HKDB_OUTPUT_SINK_H

#include <functional>
#include <string>
#include <string_view>

#include "lib/staged_file.h"

namespace orlo::tools::hkdb {

class OutputSink {
 public:
  // path empty: standard output.
  bool open(const std::string &path, std::string *error);
  std::function<void(std::string_view)> writer();
  // Flushes, and renames a file into place. False with *error on failure.
  bool close(std::string *error);

 private:
  bool to_stdout_ = true;
  bool stdout_failed_ = false;
  StagedFile file_;
};

}  // namespace orlo::tools::hkdb

#endif  // ORLO_TOOLS_HKDB_OUTPUT_SINK_H
