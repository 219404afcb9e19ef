// The reference CSV reader and builder on arbitrary text: a build either
// succeeds or names a line, and never leaves files behind on failure.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "lib/csv_reader.h"
#include "lib/refdb_builder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  static std::string dir = [] {
    char tmpl[] = "/tmp/orlo-fuzz-build-XXXXXX";
    const char *d = mkdtemp(tmpl);
    return std::string(d ? d : "/tmp");
  }();
  std::string_view text(reinterpret_cast<const char *>(data), size);

  orlo::tools::CsvReader reader(text);
  reader.set_max_row_bytes(4096);
  std::vector<std::string> fields;
  for (int rows = 0; rows < 10000; ++rows) {
    auto status = reader.next(&fields);
    if (status == orlo::tools::CsvReader::Status::kEnd) break;
    if (status == orlo::tools::CsvReader::Status::kError) {
      if (reader.line() < 1 || reader.error().empty()) __builtin_trap();
      break;
    }
  }

  orlo::tools::BuildError err;
  bool ok = orlo::tools::build_reference_db(text, dir, "20260101", &err);
  // Successful builds are removed below, so any file found after a failed
  // build was left behind by it.
  for (const char *name : {"/LEVEL1", "/LEVEL2", "/BASEDATA"}) {
    if (!ok && access((dir + name).c_str(), F_OK) == 0) __builtin_trap();
  }
  if (ok) {
    unlink((dir + "/LEVEL1").c_str());
    unlink((dir + "/LEVEL2").c_str());
    unlink((dir + "/BASEDATA").c_str());
  } else if (err.message.empty()) {
    __builtin_trap();
  }
  return 0;
}
