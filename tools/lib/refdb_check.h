// Validation of a reference database: every structural fault of the three
// files with its kind, file and byte offset, and what the files hold.
#ifndef ORLO_TOOLS_REFDB_CHECK_H
#define ORLO_TOOLS_REFDB_CHECK_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "lib/refdb_walk.h"

namespace orlo::tools {

struct CheckFault {
  FaultKind kind;
  std::string file;
  uint64_t offset = 0;
  std::string message;
};

struct CheckReport {
  // The first faults of each kind (at most the number asked for), in the
  // order the walk met them.
  std::vector<CheckFault> faults;
  std::array<uint64_t, kFaultKinds> by_kind{};  // all of them, by kind
  uint64_t fault_count = 0;                     // all of them
  WalkTotals totals;
};

CheckReport check_reference_images(const RefdbImages &images,
                                   size_t max_per_kind = 10);

// "FILE offset N: message", each byte outside printable ASCII (from names
// in damaged data) written as \xNN.
std::string format_fault(const CheckFault &fault);

// text with each byte outside printable ASCII written as \xNN.
std::string printable_text(std::string_view text);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_CHECK_H
