// hkpremise: shows how premise number texts convert.
//
//   hkpremise TEXT...
//
// Prints one line per text: the text, the result code and the two
// (value, kind) pairs. Result 1 (text too long) leaves the pairs as preset,
// 0 and blank.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "lib/command_line.h"
#include "orlo_matcher.h"

namespace {

constexpr const char *kDescription =
    "Usage: hkpremise [OPTIONS] TEXT...\n"
    "\n"
    "Converts each premise number TEXT and prints the result code (0\n"
    "converted, 1 longer than 99 characters, 2 empty) and the two (value,\n"
    "kind) pairs. Kinds: N number, A letters, F fraction, G grid, E free\n"
    "text, ' ' none. Texts that start with '--' follow the argument '--'.\n";

constexpr const char *kExitStatus =
    "\nExit status: 0 success, 2 wrong usage.\n";

int text_width(const std::vector<std::string> &texts) {
  size_t width = std::string("TEXT").size();
  for (const std::string &t : texts) width = std::max(width, t.size());
  return static_cast<int>(width);
}

void print_row(const std::string &text, int width) {
  int32_t v1 = 0, v2 = 0;
  char k1 = ' ', k2 = ' ';
  const int32_t rc = hk_cvtr(text.c_str(), &v1, &k1, &v2, &k2);
  std::printf("%-*s  %2d  %11d '%c'  %11d '%c'\n", width, text.c_str(), rc, v1,
              k1, v2, k2);
}

}  // namespace

int main(int argc, char **argv) {
  std::vector<std::string> texts;
  CLI::App app(kDescription, "hkpremise");
  orlo::tools::use_tool_help(&app, kExitStatus);
  app.add_option("TEXT", texts, "a premise number text")->required();
  if (int status = orlo::tools::parse_command_line(&app, argc, argv);
      status >= 0)
    return status;
  const int width = text_width(texts);
  std::printf("%-*s  %2s  %11s %3s  %11s %3s\n", width, "TEXT", "RC", "VALUE1",
              "K1", "VALUE2", "K2");
  for (const std::string &text : texts) print_row(text, width);
  return 0;
}
