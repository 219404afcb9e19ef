// Small file helpers shared by the tool tests.
#ifndef ORLO_TESTS_TOOLS_FILE_UTIL_H
#define ORLO_TESTS_TOOLS_FILE_UTIL_H

#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace orlo::testing {

inline std::string read_file(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void write_file(const std::string &path, const std::string &bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline bool file_exists(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

// Bytes given as a string of hex digit pairs; blanks are ignored.
inline std::string hex_bytes(const std::string &hex) {
  std::string out;
  std::string digits;
  for (char c : hex)
    if (c != ' ') digits += c;
  for (size_t i = 0; i + 1 < digits.size(); i += 2)
    out.push_back(
        static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  return out;
}

}  // namespace orlo::testing

#endif  // ORLO_TESTS_TOOLS_FILE_UTIL_H
