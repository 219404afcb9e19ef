// What hkgeocode tells people while it runs and when it ends: a progress
// line on a terminal, and a summary of the counts and the speed.
#ifndef ORLO_TOOLS_HKGEOCODE_RUN_SUMMARY_H
#define ORLO_TOOLS_HKGEOCODE_RUN_SUMMARY_H

#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>

#include "hkgeocode/input_rows.h"

namespace orlo::tools::hkgeocode {

struct Totals {
  uint64_t read = 0;       // rows read, bad ones included
  uint64_t processed = 0;  // rows handed to the matcher
  uint64_t bad = 0;
  std::array<uint64_t, 256> by_status{};  // processed rows by match status
  std::array<uint64_t, 256> by_code{};    // processed rows by return code

  // Counts one row with its output record (ignored for a bad row).
  void add(const InputRow &row, const char *outrec);
};

// A progress line on standard error, redrawn at most a few times a second,
// when standard error is a terminal.
class Progress {
 public:
  // total_bytes: size of the input when known (0 when not), for the share
  // done and the time left.
  Progress(bool wanted, uint64_t total_bytes);
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;

  void update(uint64_t records, uint64_t bytes_done);
  // Clears the line; the next update draws it again.
  void finish();

 private:
  using Clock = std::chrono::steady_clock;
  bool enabled_;
  bool shown_ = false;
  uint64_t total_bytes_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_ = start_;
};

// Prints the summary: rows read, processed, matched and bad, the counts per
// match status and per return code, the elapsed time and the rate.
void print_summary(std::FILE *to, const Totals &totals, double seconds);

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_RUN_SUMMARY_H
