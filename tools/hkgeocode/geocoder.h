// One geocoder instance driven through hk_mtci, with the list areas that
// every process call hands to the search.
#ifndef ORLO_TOOLS_HKGEOCODE_GEOCODER_H
#define ORLO_TOOLS_HKGEOCODE_GEOCODER_H

#include <cstdint>
#include <string>
#include <vector>

#include "orlo_lines.h"
#include "orlo_matcher.h"

namespace orlo::tools::hkgeocode {

// Where the statement goes and what it says, for the one close that writes
// it.
struct StatementRequest {
  std::string path;
  std::vector<std::string> lines;  // at most six
};

class Geocoder {
 public:
  Geocoder();
  ~Geocoder();  // closes without a statement if still open
  Geocoder(const Geocoder &) = delete;
  Geocoder &operator=(const Geocoder &) = delete;

  // Opens the database in dir. Returns the return code, '0' on success; the
  // 300-byte output record of the open is kept for hk_doem.
  char open(const std::string &dir, const std::string &options);
  const char *open_record() const { return open_record_.data(); }

  // Processes one 200-byte input record into a 300-byte output record.
  void process(const char *inrec, char *outrec);

  // Splits and geocodes one address line (orlo_line_geocode): the 200-byte
  // record of the split kept into inrec, the result into outrec. Returns an
  // ORLO_LINE_STATUS with *info filled.
  int32_t process_line(const std::string &line, char *inrec, char *outrec,
                       ORLO_LINE_INFO *info);

  // The instance's counters, and a way to fold another's into them so that
  // one close can report for all.
  int32_t records_read() const;
  int32_t records_matched() const;
  void add_counts(int32_t read, int32_t matched);
  // True when a close with these options would write the statement.
  bool statement_allowed(const std::string &options) const;

  // Closes without a statement. Returns the return code of the close.
  char close_quietly();
  // Closes, writing the statement when the options allow it.
  char close_with_statement(const std::string &options,
                            const StatementRequest &statement);

 private:
  char close_call(const char *options, const StatementRequest *statement);

  HKHANDLE handle_{};
  std::vector<char> namelist_;
  std::vector<char> reclist_;
  std::string open_record_;
};

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_GEOCODER_H
