// Processes batches of rows on several geocoder instances at once: each
// worker takes a contiguous slice of the batch on its own instance, and the
// results land in input order whatever the number of workers.
#ifndef ORLO_TOOLS_HKGEOCODE_BATCH_RUNNER_H
#define ORLO_TOOLS_HKGEOCODE_BATCH_RUNNER_H

#include <memory>
#include <vector>

#include "hkgeocode/geocoder.h"
#include "hkgeocode/input_rows.h"

namespace orlo::tools::hkgeocode {

class BatchRunner {
 public:
  explicit BatchRunner(std::vector<std::unique_ptr<Geocoder>> *instances);

  // Fills outrecs with one 300-byte output record per row, in row order.
  // Bad rows are not processed; their records are left blank. A row of an
  // address line gets the record of its split and how it was split, or
  // (refused) its error.
  void run(std::vector<InputRow> *rows, std::vector<char> *outrecs);

 private:
  std::vector<std::unique_ptr<Geocoder>> *instances_;
};

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_BATCH_RUNNER_H
