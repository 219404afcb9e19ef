// The command line of hkgeocode.
#ifndef ORLO_TOOLS_HKGEOCODE_COMMAND_LINE_H
#define ORLO_TOOLS_HKGEOCODE_COMMAND_LINE_H

#include <string>
#include <vector>

#include "lib/command_line.h"

namespace orlo::tools::hkgeocode {

// Exit statuses, as --help lists them.
inline constexpr int kExitOk = 0;
inline constexpr int kExitBadRows = 1;
inline constexpr int kExitNoDatabase = 3;
inline constexpr int kExitFailedRows = 4;

inline constexpr int kMaxThreads = 64;
inline constexpr int kMaxReportLines = 6;

struct Options {
  std::string input = "-";  // "-": standard input
  std::string db_dir;       // empty: the sample database next to the tool
  std::string open_options;
  int threads = 1;
  bool fixed = false;
  bool raw = false;         // CSV fields as given, not normalised
  bool lines = false;       // addresses written as one line each
  std::string column;       // with lines: the CSV column holding them
  bool table = false;       // a readable table instead of CSV
  std::string out_path;     // empty: standard output
  std::string report_path;  // empty: no accuracy statement
  std::vector<std::string> report_lines;
  bool quiet = false;
};

// Defines the options of hkgeocode on app, parsed into *options, with their
// help, the exit statuses and the checks of options that exclude each other.
// *options must outlive app.
void define_command_line(CLI::App *app, Options *options);

// The sample database that the build places beside the tool's bin folder,
// <folder of the executable>/../data/sample, or else the installed one.
std::string default_db_dir();

}  // namespace orlo::tools::hkgeocode

#endif  // ORLO_TOOLS_HKGEOCODE_COMMAND_LINE_H
