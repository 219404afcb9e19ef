#include "hkgeocode/legend.h"

#include "orlo_codes.h"

namespace orlo::tools::hkgeocode {
namespace {

struct Code {
  char code;
  const char *message;  // hk_doem's text, blank-padded; NULL for none
  std::string_view meaning;
};

#define ORLO_RETURN_ROW(name, code, message, meaning) {code, message, meaning},
#define ORLO_STATUS_ROW(name, code, meaning) {code, nullptr, meaning},
constexpr Code kReturnCodes[] = {ORLO_RETURN_CODES(ORLO_RETURN_ROW)};
constexpr Code kMatchStatuses[] = {ORLO_MATCH_STATUSES(ORLO_STATUS_ROW)};
#undef ORLO_RETURN_ROW
#undef ORLO_STATUS_ROW

template <size_t N>
const Code *find(const Code (&table)[N], char code) {
  for (const Code &c : table)
    if (c.code == code) return &c;
  return nullptr;
}

constexpr size_t kWidth = 79;

std::string_view trimmed(std::string_view text) {
  size_t end = text.find_last_not_of(' ');
  return end == std::string_view::npos ? "" : text.substr(0, end + 1);
}

template <size_t N>
void append_codes(std::string *out, const Code (&table)[N],
                  std::string_view wanted, bool returns) {
  for (const Code &c : table) {
    if (!wanted.empty() && wanted.find(c.code) == std::string_view::npos)
      continue;
    std::string text(c.meaning);
    if (c.message != nullptr)
      text += " [" + std::string(trimmed(c.message)) + "]";
    std::string lead(returns ? "RC " : "MS ");
    lead.push_back(c.code);
    append_item(out, lead, text);
  }
}

// What a failure code says about the database, for the one-line reason.
struct Failure {
  char code;
  std::string_view headline;
  std::string_view what;
  bool check;  // hkdb check can say more
};

constexpr Failure kFailures[] = {
    {HKRC_LEVEL2_SEEK, "LEVEL2 is damaged", "could not be read", true},
    {HKRC_BASEDATA_SEEK, "BASEDATA is damaged", "could not be read", true},
    {HKRC_STORAGE, "out of memory", "could not be processed", false},
};

}  // namespace

std::string_view return_code_meaning(char code) {
  const Code *c = find(kReturnCodes, code);
  return c != nullptr ? c->meaning : "unknown return code";
}

std::string_view match_status_meaning(char status) {
  const Code *c = find(kMatchStatuses, status);
  return c != nullptr ? c->meaning : "unknown match status";
}

void append_item(std::string *out, std::string_view lead,
                 std::string_view text) {
  std::string line = "  " + std::string(lead) + "  ";
  size_t indent = line.size();
  bool first = true;
  while (!text.empty()) {
    size_t word_end = text.find(' ');
    std::string_view word = text.substr(0, word_end);
    text = word_end == std::string_view::npos ? "" : text.substr(word_end + 1);
    if (!first && line.size() + 1 + word.size() > kWidth) {
      out->append(line).push_back('\n');
      line.assign(indent, ' ');
      first = true;
    }
    if (!first) line.push_back(' ');
    line.append(word);
    first = false;
  }
  out->append(line).push_back('\n');
}

std::string code_legend(std::string_view return_codes,
                        std::string_view statuses) {
  std::string out;
  append_codes(&out, kReturnCodes, return_codes, true);
  append_codes(&out, kMatchStatuses, statuses, false);
  return out;
}

std::string failure_reason(char code, uint64_t failed, uint64_t processed,
                           const std::string &db_dir) {
  std::string counts =
      std::to_string(failed) + " of " + std::to_string(processed) + " records";
  for (const Failure &f : kFailures) {
    if (f.code != code) continue;
    std::string line =
        std::string(f.headline) + ": " + counts + " " + std::string(f.what);
    if (f.check) line += "; run `hkdb check " + db_dir + "`";
    return line;
  }
  return counts + " failed with return code '" + std::string(1, code) +
         "': " + std::string(return_code_meaning(code));
}

}  // namespace orlo::tools::hkgeocode
