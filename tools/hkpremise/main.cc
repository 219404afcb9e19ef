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
#include <cstring>

#include "orlo_matcher.h"

namespace {

constexpr const char *kUsage =
    "Usage: hkpremise TEXT...\n"
    "Converts each premise number TEXT and prints the result code (0 "
    "converted,\n"
    "1 longer than 99 characters, 2 empty) and the two (value, kind) pairs.\n"
    "Kinds: N number, A letters, F fraction, G grid, E free text, ' ' none.\n";

int text_width(int argc, char **argv) {
  size_t width = std::strlen("TEXT");
  for (int i = 1; i < argc; ++i) width = std::max(width, std::strlen(argv[i]));
  return static_cast<int>(width);
}

void print_row(const char *text, int width) {
  int32_t v1 = 0, v2 = 0;
  char k1 = ' ', k2 = ' ';
  const int32_t rc = hk_cvtr(text, &v1, &k1, &v2, &k2);
  std::printf("%-*s  %2d  %11d '%c'  %11d '%c'\n", width, text, rc, v1, k1, v2,
              k2);
}

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    std::fputs(
        "hkpremise: no premise number TEXT given\n"
        "Try 'hkpremise --help'.\n",
        stderr);
    return 2;
  }
  if (std::strcmp(argv[1], "--help") == 0) {
    std::fputs(kUsage, stdout);
    return 0;
  }
  const int width = text_width(argc, argv);
  std::printf("%-*s  %2s  %11s %3s  %11s %3s\n", width, "TEXT", "RC", "VALUE1",
              "K1", "VALUE2", "K2");
  for (int i = 1; i < argc; ++i) print_row(argv[i], width);
  return 0;
}
