// Small file and process helpers shared by the tool tests.
#ifndef ORLO_TESTS_SUPPORT_FILE_UTIL_H
#define ORLO_TESTS_SUPPORT_FILE_UTIL_H

#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace orlo::testing {

// The header line of a reference CSV.
inline const std::string kRefHeader =
    "region,street,refcode,refid,building,parity,qual1,low,qual2,high,code9,"
    "address\n";

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

// What a program run through the shell left behind.
struct ToolRun {
  int status = -1;  // exit status, -1 when killed by a signal
  std::string out;
  std::string err;
};

// Runs `command` (a shell command line, no redirections of its own) with
// standard input closed, capturing its outputs through files in `scratch`.
inline ToolRun run_tool(const std::string &command,
                        const std::string &scratch) {
  std::string cmd =
      command + " >" + scratch + "/stdout 2>" + scratch + "/stderr </dev/null";
  int raw = std::system(cmd.c_str());
  ToolRun r;
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = read_file(scratch + "/stdout");
  r.err = read_file(scratch + "/stderr");
  return r;
}

// True when `text` contains `part`; for EXPECT_TRUE(has(...)) << text.
inline bool has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_FILE_UTIL_H
