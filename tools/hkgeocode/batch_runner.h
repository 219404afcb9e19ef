// Processes batches of rows on several geocoder instances at once: each
// worker takes a contiguous slice of the batch on its own instance, makes
// its rows' input records (tidying the fields unless told not to), matches
// them and formats their output lines, so that the results land in input
// order whatever the number of workers. A batch runs in the background
// while the caller reads the next one.
#ifndef ORLO_TOOLS_HKGEOCODE_BATCH_RUNNER_H
#define ORLO_TOOLS_HKGEOCODE_BATCH_RUNNER_H

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "hkgeocode/geocoder.h"
#include "hkgeocode/input_rows.h"
#include "hkgeocode/output_format.h"

namespace orlo::tools::hkgeocode {

// What the output of a row looks like.
enum class OutputForm { kCsv, kTable, kFixed };

class BatchRunner {
 public:
  // raw: CSV fields are placed as given, without the input normalisation.
  // layout: the CSV output's columns.
  BatchRunner(std::vector<std::unique_ptr<Geocoder>> *instances, bool raw,
              OutputForm form, OutputLayout layout);
  ~BatchRunner();  // waits for a batch still running
  BatchRunner(const BatchRunner &) = delete;
  BatchRunner &operator=(const BatchRunner &) = delete;

  // Starts the first `count` rows: their records are made (rows of raw
  // records already have theirs; an address line is split, and gets the
  // record of its split and how it was split, or, refused, its error),
  // matched into outrecs (one 300-byte output record per row; bad rows get
  // a blank one) and formatted. The rows and outrecs must stay untouched
  // until wait() returns.
  void start(std::vector<InputRow> *rows, size_t count,
             std::vector<char> *outrecs);

  // Waits for the batch and returns its output, in row order.
  const std::string &wait();

 private:
  void run_slice(size_t worker, size_t begin, size_t end);

  std::vector<std::unique_ptr<Geocoder>> *instances_;
  bool raw_;
  OutputForm form_;
  OutputLayout layout_;
  std::vector<InputRow> *rows_ = nullptr;
  std::vector<char> *outrecs_ = nullptr;
  std::vector<std::string> slices_;  // each worker's formatted output
  std::vector<std::thread> threads_;
  std::string output_;
};

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_BATCH_RUNNER_H
