// Fields for the comparison tests: callers' fields of an exact size, and
// work copies laid out the way the routines' own work areas are.
#ifndef ORLO_TESTS_COMPARE_WORK_COPY_H
#define ORLO_TESTS_COMPARE_WORK_COPY_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "orlo_compare.h"

namespace orlo_test {

inline constexpr size_t kTrailingNuls = 4;

// The text blank-padded (or cut) to width.
inline std::string padded(std::string_view text, size_t width) {
  std::string s(text.substr(0, width));
  s.resize(width, ' ');
  return s;
}

// The text blank-padded to len bytes in a heap block of exactly len bytes,
// so that the sanitizer build catches any read past a caller's field.
inline std::vector<char> exact_field(std::string_view text, size_t len) {
  const std::string p = padded(text, len);
  return std::vector<char>(p.begin(), p.end());
}

// The text blank-padded to the field width and followed by NUL bytes for
// the look-ahead, as inside the comparison routines.
class WorkCopy {
 public:
  WorkCopy(std::string_view text, size_t width)
      : bytes_(padded(text, width)), width_(width) {
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
  // The text behind the field up to its NUL, or "!" when something other
  // than NULs follows that NUL (a write further behind than the text).
  std::string behind() const {
    const std::string tail = bytes_.substr(width_);
    const size_t nul = tail.find('\0');
    if (nul == std::string::npos ||
        tail.find_first_not_of('\0', nul) != std::string::npos) {
      return "!";
    }
    return tail.substr(0, nul);
  }
  // Puts text behind the field, as an earlier routine may have left it.
  void set_behind(std::string_view text) {
    bytes_.replace(width_, text.size(), text);
  }

 private:
  std::string bytes_;
  size_t width_;
};

// m_street on s1 and s2 padded to len, in fields of exactly len bytes;
// options (NULL for nullptr) is passed as a writable copy.
inline int32_t street_score(std::string_view s1, std::string_view s2,
                            int32_t len, const char *options = nullptr) {
  std::vector<char> a = exact_field(s1, static_cast<size_t>(len));
  std::vector<char> b = exact_field(s2, static_cast<size_t>(len));
  std::string opt = options ? options : "";
  return m_street(a.data(), b.data(), len, options ? opt.data() : nullptr);
}

// Makes the next call's first street new to this thread's street cache
// (keyed on the first street's bytes alone, whatever length and options).
inline void forget_cached_street() {
  street_score("\x7F", "", 1);
}

}  // namespace orlo_test

#endif  // ORLO_TESTS_COMPARE_WORK_COPY_H
