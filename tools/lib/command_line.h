// The command line of every tool: options parsed by CLI11, --help laid out
// alike (usage line and prose, the options, then the exit statuses), and
// usage errors reported alike on standard error with exit status 2.
#ifndef ORLO_TOOLS_LIB_COMMAND_LINE_H
#define ORLO_TOOLS_LIB_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

namespace orlo::tools {

// The exit status of wrong usage, the same for every tool.
inline constexpr int kExitUsage = 2;

// Gives app the tools' help: its description (which starts with the usage
// line), "Options:" with every option, its value name and description
// (continuation lines of a description are indented under its first), then
// footer. Adds -h/--help. Call before adding subcommands: they inherit the
// layout and take their own description and footer.
void use_tool_help(CLI::App *app, const std::string &footer);

// Parses argc/argv into app (and its subcommands, whose callbacks run).
// Returns -1 when the program goes on. For --help, prints the help of the
// innermost command named and returns 0. On wrong usage prints
// "PROGRAM[ COMMAND]: message" and "Try 'PROGRAM[ COMMAND] --help'." on
// standard error and returns kExitUsage. Never throws.
int parse_command_line(CLI::App *app, int argc, char **argv);

// Accepts decimal digits only (no sign, no blanks), at most 19 of them, so
// that the value always fits a uint64_t.
CLI::Validator whole_number();

// Accepts a whole number from low to high; the message names the range.
CLI::Validator whole_number_in(uint64_t low, uint64_t high);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_LIB_COMMAND_LINE_H
