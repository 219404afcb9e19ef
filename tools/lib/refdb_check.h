// Validation of a reference database: every structural fault of the three
// files with its file and byte offset, and what the files hold.
#ifndef ORLO_TOOLS_REFDB_CHECK_H
#define ORLO_TOOLS_REFDB_CHECK_H

#include <cstdint>
#include <string>
#include <vector>

#include "lib/refdb_walk.h"

namespace orlo::tools {

struct CheckFault {
  std::string file;
  uint64_t offset = 0;
  std::string message;
};

struct CheckReport {
  std::vector<CheckFault> faults;  // the first max_faults faults
  uint64_t fault_count = 0;        // all of them
  WalkTotals totals;
};

CheckReport check_reference_images(const RefdbImages &images,
                                   size_t max_faults = 1000);

// "FILE offset N: message"
std::string format_fault(const CheckFault &fault);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_CHECK_H
