// The inverse of the builder: the reference CSV of a database, in file
// order, so that building it again gives the same files.
#ifndef ORLO_TOOLS_REFDB_DUMP_H
#define ORLO_TOOLS_REFDB_DUMP_H

#include <functional>
#include <string_view>

#include "lib/refdb_walk.h"

namespace orlo::tools {

// Passes the CSV text (header first) to sink in pieces. Records that do not
// decode are left out, so dump only databases that pass the check.
void dump_reference_images(const RefdbImages &images,
                           const std::function<void(std::string_view)> &sink,
                           WalkTotals *totals);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_DUMP_H
