// Likeness of the input's building name and a reference record's. Names
// that start alike are compared as street names after their building-type
// endings are shortened ("CHUNG KING BUILDING" against "CHUNG KING BLDG");
// other names only count when one is the tail of the other.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "common/fixed_field.h"
#include "hkmatch/evaluate/candidate_checks.h"
#include "orlo_compare.h"
#include "orlo_fields.h"

namespace orlo {
namespace {

constexpr size_t kNameLen = 62;
constexpr int32_t kTailMatch = 91;

using Name = std::array<char, kNameLen>;

struct Suffix {
  std::string_view long_form;
  std::string_view short_form;
};

// Applied in this order to the end of a right-justified name.
constexpr Suffix kSuffixes[] = {
    {"INDUSTRIAL BUILDING", "IND BLDG"},
    {"INDUSTRIAL BLDG", "IND BLDG"},
    {"BUILDING", "BLDG"},
    {"MANSIONS", "MANSION"},
    {"SCHOOL", "SCH"},
    {"VILLAS", "VILLA"},
    {"CENTER", "CTR"},
    {"CENTRE", "CTR"},
    {"HOUSE", "HSE"},
    {"GARDEN", "GDN"},
};

Name blank_name(std::string_view text) {
  Name name;
  fill_blanks(name.data(), name.size());
  std::memcpy(name.data(), text.data(), std::min(text.size(), name.size()));
  return name;
}

// Writes the short form of the first long form that ends the name over it,
// padded with blanks. Once the end has been replaced no later row can match.
void shorten_suffix(Name &name) {
  for (const Suffix &s : kSuffixes) {
    char *tail = name.data() + name.size() - s.long_form.size();
    if (std::string_view(tail, s.long_form.size()) != s.long_form) continue;
    std::memcpy(tail, s.short_form.data(), s.short_form.size());
    fill_blanks(tail + s.short_form.size(),
                s.long_form.size() - s.short_form.size());
    return;
  }
}

// Names whose first characters agree, or that begin with a quote or with TH
// (which a name may carry or omit), are compared closely.
bool close_names(const Name &a, const Name &b) {
  const auto quoted = [](char c) { return c == '\'' || c == '"'; };
  const auto starts_th = [](const Name &n) {
    return n[0] == 'T' && n[1] == 'H';
  };
  return a[0] == b[0] || quoted(a[0]) || quoted(b[0]) || starts_th(a) ||
         starts_th(b);
}

bool same_start(const Name &a, const Name &b, size_t n) {
  return std::memcmp(a.data(), b.data(), n) == 0;
}

// A name as the close comparison sees it: right-justified, its ending
// shortened, left-justified again.
void adjust(Name &name) {
  cm_rhtadj(name.data(), kNameLen);
  shorten_suffix(name);
  cm_lftadj(name.data(), kNameLen);
}

// The input's adjusted name, kept per thread: one input is compared with
// every record of its candidate streets.
const Name &adjusted_input(std::string_view text) {
  struct Cache {
    char text[31];
    size_t len = SIZE_MAX;
    Name adjusted;
  };
  thread_local Cache cache;
  if (cache.len != text.size() ||
      std::memcmp(cache.text, text.data(), text.size()) != 0) {
    std::memcpy(cache.text, text.data(), text.size());
    cache.len = text.size();
    cache.adjusted = blank_name(text);
    adjust(cache.adjusted);
  }
  return cache.adjusted;
}

// A shorter name that agrees with the start of a longer one, at least half
// as long, still counts as a tail match. The lengths are those of the names
// as they came; the compared characters are those of the adjusted names.
int32_t close_likeness(std::string_view input, Name b, size_t len_a,
                       size_t len_b) {
  const Name &a = adjusted_input(input);
  adjust(b);
  const int32_t s = m_street(a.data(), b.data(), kNameLen, nullptr);
  if (s <= 98 && len_a < len_b && len_b - len_a <= len_a &&
      same_start(a, b, len_a)) {
    return kTailMatch;
  }
  if (s <= 94 && len_b < len_a && len_a - len_b <= len_b &&
      same_start(a, b, len_b)) {
    return kTailMatch;
  }
  return s;
}

bool ends_with(std::string_view text, std::string_view tail) {
  return tail.size() < text.size() &&
         text.substr(text.size() - tail.size()) == tail;
}

}  // namespace

int32_t building_likeness(const char *input, const char *record) {
  const std::string_view a(input, strnlen(input, 30));
  const std::string_view b(record, strnlen(record, 30));
  // Equal names stay equal through the adjustment and compare as 100.
  if (a == b && !a.empty()) return 100;
  const Name name_a = blank_name(a);
  const Name name_b = blank_name(b);
  if (close_names(name_a, name_b)) {
    return close_likeness(a, name_b, a.size(), b.size());
  }
  return ends_with(b, a) || ends_with(a, b) ? kTailMatch : 0;
}

}  // namespace orlo
