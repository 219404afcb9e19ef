// Fields for the comparison tests, laid out the way the comparison routines'
// own work areas are: the text, blank-padded to the field width, followed by
// NUL bytes for the look-ahead.
#ifndef ORLO_TESTS_COMPARE_WORK_COPY_H
#define ORLO_TESTS_COMPARE_WORK_COPY_H

#include <cstdint>
#include <string>
#include <string_view>

namespace orlo_test {

inline constexpr size_t kTrailingNuls = 4;

class WorkCopy {
 public:
  WorkCopy(std::string_view text, size_t width)
      : bytes_(text.substr(0, width)), width_(width) {
    bytes_.resize(width, ' ');
    bytes_.append(kTrailingNuls, '\0');
  }

  char *data() { return bytes_.data(); }
  int32_t len() const { return static_cast<int32_t>(width_); }
  // The field's bytes, padding included.
  std::string field() const { return bytes_.substr(0, width_); }
  // The field without its trailing blanks.
  std::string text() const {
    std::string f = field();
    return f.erase(f.find_last_not_of(' ') + 1);
  }
  // True when nothing was written behind the field.
  bool tail_intact() const {
    return bytes_.substr(width_) == std::string(kTrailingNuls, '\0');
  }

 private:
  std::string bytes_;
  size_t width_;
};

// The text blank-padded to width.
inline std::string padded(std::string_view text, size_t width) {
  std::string s(text.substr(0, width));
  s.resize(width, ' ');
  return s;
}

}  // namespace orlo_test

#endif  // ORLO_TESTS_COMPARE_WORK_COPY_H
