#include "hkgeocode/run_summary.h"

#include <unistd.h>

#include "hkgeocode/legend.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo::tools::hkgeocode {
namespace {

constexpr auto kRedrawEvery = std::chrono::milliseconds(250);

void print_duration(std::FILE *to, double seconds) {
  auto s = static_cast<unsigned long>(seconds + 0.5);
  std::fprintf(to, "%lu:%02lu:%02lu", s / 3600, s / 60 % 60, s % 60);
}

// "         12  '0' accepted: ..." for every code seen, in byte order.
template <typename MeaningFn>
void print_counts(std::FILE *to, const char *title,
                  const std::array<uint64_t, 256> &counts, MeaningFn meaning) {
  std::fprintf(to, "  %s:\n", title);
  for (size_t c = 0; c < counts.size(); ++c) {
    if (counts[c] == 0) continue;
    char code = static_cast<char>(c);
    std::string_view text = meaning(code);
    std::fprintf(to, "    %12llu  '%c' %.*s\n",
                 static_cast<unsigned long long>(counts[c]), code,
                 static_cast<int>(text.size()), text.data());
  }
}

}  // namespace

void Totals::add(const InputRow &row, const char *outrec) {
  ++read;
  if (row.bad()) {
    ++bad;
    return;
  }
  ++processed;
  ++by_code[static_cast<unsigned char>(outrec[HKOUT_RETCODE_OFF])];
  ++by_status[static_cast<unsigned char>(outrec[HKOUT_MATCHSTAT_OFF])];
}

Progress::Progress(bool wanted, uint64_t total_bytes)
    : enabled_(wanted && ::isatty(STDERR_FILENO) == 1),
      total_bytes_(total_bytes) {}

Progress::~Progress() {
  finish();
}

void Progress::update(uint64_t records, uint64_t bytes_done) {
  if (!enabled_) return;
  Clock::time_point now = Clock::now();
  if (shown_ && now - last_ < kRedrawEvery) return;
  last_ = now;
  double seconds = std::chrono::duration<double>(now - start_).count();
  double rate = seconds > 0 ? static_cast<double>(records) / seconds : 0;
  std::fprintf(stderr, "\rhkgeocode: %llu records, %.0f/s",
               static_cast<unsigned long long>(records), rate);
  if (total_bytes_ > 0 && bytes_done > 0 && bytes_done <= total_bytes_) {
    double share = static_cast<double>(bytes_done) / total_bytes_;
    std::fprintf(stderr, ", %3.0f%%, ", share * 100);
    print_duration(stderr, seconds / share - seconds);
    std::fputs(" left", stderr);
  }
  std::fputs("\033[K", stderr);  // clear what a longer line left behind
  shown_ = true;
}

void Progress::finish() {
  if (!shown_) return;
  std::fputs("\r\033[K", stderr);
  shown_ = false;
}

void print_summary(std::FILE *to, const Totals &t, double seconds) {
  std::fprintf(to,
               "hkgeocode: %llu records read, %llu processed, %llu matched "
               "(match status '0'), %llu bad\n",
               static_cast<unsigned long long>(t.read),
               static_cast<unsigned long long>(t.processed),
               static_cast<unsigned long long>(
                   t.by_status[static_cast<unsigned char>(HKMS_ACCEPTED)]),
               static_cast<unsigned long long>(t.bad));
  print_counts(to, "match status", t.by_status, match_status_meaning);
  print_counts(to, "return code", t.by_code, return_code_meaning);
  double rate = seconds > 0 ? static_cast<double>(t.processed) / seconds : 0;
  std::fprintf(to, "  elapsed %.2f s, %.0f records per second\n", seconds,
               rate);
}

}  // namespace orlo::tools::hkgeocode
