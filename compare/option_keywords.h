// Recognition of the keywords in the option strings of the comparison
// routines. Option strings are NUL-terminated or null and are read as written
// (no case folding).
#ifndef ORLO_COMPARE_OPTION_KEYWORDS_H
#define ORLO_COMPARE_OPTION_KEYWORDS_H

#include <cstring>
#include <string_view>

namespace orlo {

// True when `keyword` follows a semicolon somewhere in the options.
inline bool keyword_after_semicolon(const char *options,
                                    std::string_view keyword) {
  std::string_view opts(options);
  for (size_t at = opts.find(';'); at != std::string_view::npos;
       at = opts.find(';', at + 1)) {
    if (opts.substr(at + 1).starts_with(keyword)) return true;
  }
  return false;
}

// The spelling comparison's rule: the keyword opens the option string or
// follows a semicolon.
inline bool keyword_leading_or_listed(const char *options,
                                      std::string_view keyword) {
  if (options == nullptr) return false;
  return std::string_view(options).starts_with(keyword) ||
         keyword_after_semicolon(options, keyword);
}

// The business name comparison's rule: the option string is exactly the
// keyword, or the keyword follows a semicolon.
inline bool keyword_exact_or_listed(const char *options,
                                    std::string_view keyword) {
  if (options == nullptr) return false;
  return std::string_view(options) == keyword ||
         keyword_after_semicolon(options, keyword);
}

}  // namespace orlo

#endif  // ORLO_COMPARE_OPTION_KEYWORDS_H
