// The hkdb subcommands, and what they share: exit codes, messages and
// progress on standard error.
#ifndef ORLO_TOOLS_HKDB_COMMANDS_H
#define ORLO_TOOLS_HKDB_COMMANDS_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace orlo::tools::hkdb {

inline constexpr int kExitOk = 0;
inline constexpr int kExitData = 1;

// The footer of every hkdb help text.
inline constexpr const char *kExitStatusHelp =
    "\nExit status: 0 success, 1 bad or damaged data (or a file that cannot\n"
    "be read or written), 2 wrong usage.\n";

// A subcommand added to the hkdb command line: run it when `app` was parsed.
struct Command {
  CLI::App *app = nullptr;
  std::function<int()> run;
};

// Each adds its subcommand, with its options, help and exit statuses, to
// hkdb; the returned run reads the options parsed into it.
Command add_build_command(CLI::App *hkdb);
Command add_dump_command(CLI::App *hkdb);
Command add_check_command(CLI::App *hkdb);
Command add_generate_command(CLI::App *hkdb);

// "1 fault", "594 faults": a count with its noun, plural when not 1.
std::string counted(uint64_t n, std::string_view noun);

// Prints "hkdb CMD: message"; returns kExitData.
int data_error(std::string_view cmd, const std::string &message);

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

}  // namespace orlo::tools::hkdb

#endif  // ORLO_TOOLS_HKDB_COMMANDS_H
