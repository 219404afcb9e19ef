// Command-line plumbing shared by the hkdb subcommands: argument parsing,
// exit codes, messages and progress on standard error.
#ifndef ORLO_TOOLS_HKDB_CLI_H
#define ORLO_TOOLS_HKDB_CLI_H

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace orlo::tools::hkdb {

inline constexpr int kExitOk = 0;
inline constexpr int kExitData = 1;
inline constexpr int kExitUsage = 2;

struct Args {
  std::vector<std::string> positional;
  std::map<std::string, std::string, std::less<>> options;  // "--date" -> value
  std::set<std::string, std::less<>> flags;                 // "--all"
  bool help = false;
};

// Parses argv[first..]: "--name value" or "--name=value" for the names in
// value_options, the names in flag_options alone, "--help"/"-h", and
// positional arguments. False with *error set on an unknown option or a
// missing value.
bool parse_args(int argc, char **argv, int first,
                const std::vector<std::string_view> &value_options, Args *args,
                std::string *error,
                const std::vector<std::string_view> &flag_options = {});

// What every subcommand does first: parses argv[2..] with value_options,
// prints `help` for --help, and requires `positionals` positional arguments
// (`expected` names them in the usage error). Returns -1 when the command
// goes on with *args, otherwise the exit status to return.
int start_command(int argc, char **argv, std::string_view cmd, const char *help,
                  const std::vector<std::string_view> &value_options,
                  size_t positionals, std::string_view expected, Args *args,
                  const std::vector<std::string_view> &flag_options = {});

// "1 fault", "594 faults": a count with its noun, plural when not 1.
std::string counted(uint64_t n, std::string_view noun);

// Prints "hkdb CMD: message" and a pointer to --help; returns kExitUsage.
int usage_error(std::string_view cmd, const std::string &message);
// Prints "hkdb CMD: message"; returns kExitData.
int data_error(std::string_view cmd, const std::string &message);

// Parses a decimal count without sign or blanks.
bool parse_count(std::string_view text, uint64_t *value);

// A progress line on standard error, shown only when it is a terminal.
class Progress {
 public:
  Progress(std::string_view cmd, std::string_view unit);
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;
  void update(uint64_t count);

 private:
  bool enabled_;
  bool shown_ = false;
  std::string prefix_;
  std::string unit_;
};

int run_build(int argc, char **argv);
int run_dump(int argc, char **argv);
int run_check(int argc, char **argv);
int run_generate(int argc, char **argv);

}  // namespace orlo::tools::hkdb

#endif  // ORLO_TOOLS_HKDB_CLI_H
