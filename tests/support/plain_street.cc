// The street comparison as it stood before its prepared forms: a cascade
// over work copies that normalises, recodes and packs both streets on every
// call (the first one cached per thread), built from the exported helper
// routines. The differential tests hold the library to it.
#include "support/plain_street.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "compare/latin1_fold.h"
#include "compare/text_bytes.h"
#include "compare/word_recode.h"
#include "orlo_compare.h"

namespace orlo_test::plain {
using namespace orlo;
constexpr int32_t kWorkLen = 100;
}  // namespace orlo_test::plain

namespace orlo_test::plain {
namespace {

constexpr int32_t kWordNodes = 30;

struct CompassWord {
  std::string_view letter;
  std::string_view word;
};

constexpr std::array<CompassWord, 4> kCompass = {{
    {"N", "NORTH"},
    {"S", "SOUTH"},
    {"E", "EAST"},
    {"W", "WEST"},
}};

constexpr std::array<std::string_view, 3> kRouteWords = {"RT", "RD", "HW"};

struct Word {
  std::string_view text;
  bool digit = false;
  bool paired = false;
  size_t live_length() const { return paired ? 0 : text.size(); }
};

struct WordList {
  std::array<Word, kWordNodes> words;
  int32_t count = 0;
};

int32_t tidy_street(char *text, int32_t len) {
  int32_t end = len;
  while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\0')) --end;
  int32_t out = 0;
  for (int32_t i = 0; i < end; ++i) {
    if (text[i] != '-' && text[i] != '/') text[out++] = text[i];
  }
  return out;
}

void split_street(const char *street, int32_t len, char *area, WordList &list) {
  std::memcpy(area, street, static_cast<size_t>(len));
  const int32_t n = tidy_street(area, len);
  MWORD nodes[kWordNodes];
  MWORD *head = nullptr;
  MWORD *tail = nullptr;
  m_iwrdls(nodes, &head, &tail, n, area);
  for (const MWORD *p = head; p != nullptr; p = p->next) {
    Word &w = list.words[static_cast<size_t>(list.count++)];
    w.text = std::string_view(p->text, static_cast<size_t>(p->len));
    w.digit = m_isnumb(p->text, p->len) != 0;
  }
}

bool is_route_word(std::string_view w) {
  return std::find(kRouteWords.begin(), kRouteWords.end(), w) !=
         kRouteWords.end();
}

struct Pairing {
  int32_t paired = 0;
  int32_t digit_paired = 0;
};

Pairing pair_words(WordList &a, WordList &b) {
  Pairing r;
  for (int32_t i = 0; i < a.count; ++i) {
    Word &wa = a.words[static_cast<size_t>(i)];
    for (int32_t j = 0; j < b.count; ++j) {
      Word &wb = b.words[static_cast<size_t>(j)];
      if (wb.live_length() != wa.live_length()) continue;
      const bool same = wa.text == wb.text;
      if (!same && !(wa.text.size() == 2 && is_route_word(wa.text) &&
                     is_route_word(wb.text))) {
        continue;
      }
      if (same && wa.digit) ++r.digit_paired;
      ++r.paired;
      wa.paired = wb.paired = true;
      break;
    }
  }
  return r;
}

int32_t count_initials(const WordList &a, const WordList &b) {
  int32_t initials = 0;
  const int32_t n = std::min(a.count, b.count);
  for (int32_t k = 0; k < n; ++k) {
    const Word &wa = a.words[static_cast<size_t>(k)];
    const Word &wb = b.words[static_cast<size_t>(k)];
    if (wa.paired || wb.paired) continue;
    if (wa.text.size() != 1 && wb.text.size() != 1) continue;
    if (wa.text[0] == wb.text[0]) ++initials;
  }
  return initials;
}

bool compass_rule(const WordList &a, const WordList &b) {
  if (a.count != 1 || b.count != 1) return false;
  const Word &wa = a.words[0];
  const Word &wb = b.words[0];
  const bool a_shorter = wa.text.size() <= wb.text.size();
  const Word &shorter = a_shorter ? wa : wb;
  const Word &longer = a_shorter ? wb : wa;
  if (shorter.text.size() != 1 || shorter.paired) return false;
  return std::any_of(kCompass.begin(), kCompass.end(), [&](const auto &c) {
    return shorter.text == c.letter && longer.text == c.word;
  });
}

bool pairing_rule(const Pairing &p, int32_t digit_words, int32_t longest) {
  if (p.paired <= 0 || 2 * p.digit_paired != digit_words) return false;
  switch (longest) {
    case 2:
    case 3:
      return p.paired == 2;
    case 4:
      return p.paired >= 3;
    case 5:
      return p.paired >= 4;
    default:
      return false;
  }
}

int32_t count_digit_words(const WordList &l) {
  return static_cast<int32_t>(
      std::count_if(l.words.begin(), l.words.begin() + l.count,
                    [](const Word &w) { return w.digit; }));
}

int32_t plain_word_score(const char *street1, const char *street2,
                         int32_t len) {
  len = std::clamp(len, 0, kWorkLen);
  char area1[kWorkLen];
  char area2[kWorkLen];
  WordList a;
  WordList b;
  split_street(street1, len, area1, a);
  split_street(street2, len, area2, b);

  const int32_t digit_words = count_digit_words(a) + count_digit_words(b);
  const Pairing p = pair_words(a, b);
  const int32_t initials = count_initials(a, b);
  const int32_t longest = std::max(a.count, b.count);

  const bool initials_rule = initials > 0 && a.count > 1 && b.count > 1 &&
                             initials + p.paired == longest;
  if (compass_rule(a, b) || pairing_rule(p, digit_words, longest) ||
      initials_rule) {
    return 90;
  }
  return 0;
}

static_assert(kWorkLen <= kFoldMaxLen,
              "letter folding covers a whole work copy");

using StreetArea = std::array<char, kWorkLen + kRecodeRoom + 1>;

struct StreetCache {
  char lastra1[kWorkLen];  // first street as it came, after folding
  StreetArea lastra2;      // ... after normalisation and word recoding
  StreetArea lastra3;      // ... after packing
  int32_t lasterrs;        // its packed length
};

thread_local StreetCache street_cache{};

struct StreetOptions {
  bool fold_letters = false;  // "DI": fold Latin-1 letters to plain ones
  bool keep_types = false;    // "TYPE": recode with the short type forms
};

StreetOptions read_options(char *options) {
  StreetOptions o;
  if (options == nullptr) return o;
  size_t n = 0;
  for (; options[n] != '\0'; ++n) {
    if (options[n] >= 'a' && options[n] <= 'z') options[n] -= 'a' - 'A';
  }
  const std::string_view text(options, n);
  o.fold_letters = (n > 1 && text.starts_with("DI")) ||
                   text.find(";DI") != std::string_view::npos;
  o.keep_types = n > 3 && text.starts_with("TYPE");
  return o;
}

int32_t copy_street(StreetArea &area, const char *street, int32_t len) {
  len = std::max(len, 0);
  const int32_t n = std::min(len, kWorkLen);
  if (n > 0 && street != nullptr) {
    std::memcpy(area.data(), street, static_cast<size_t>(n));
  }
  if (len >= kWorkLen) area[kWorkLen - 1] = '\0';
  return n;
}

void normalise(char *s, int32_t len) {
  for (int32_t i = 0; i < len; ++i) {
    if (s[i] == '0' && (i == 0 || is_blank(s[i - 1]))) {
      s[i] = ' ';
    } else if (s[i] == '.') {
      s[i] = ' ';
    } else if (s[i] == '+') {
      s[i] = '&';
    }
  }
}

void recode_words(char *s, int32_t len, bool keep_types) {
  if (keep_types) {
    m_recode_new(s, len);
  } else {
    m_recode(s, len);
  }
  m_wrdrec(s, len);
  drop_ordinals(s, len, true);
}

enum StrictClass { kOrdinary = 0, kStrict = 1, kLetteredCourt = 2 };

constexpr std::array<std::string_view, 7> kStrictStarts = {
    "USHWY", "AVE", "STATERD", "COUNTYRD", "HWY", "CALLE", "CLL"};

StrictClass strict_class(const StreetArea &s, int32_t packed_len) {
  const std::string_view text(s.data(), kWorkLen);
  for (std::string_view start : kStrictStarts) {
    if (text.starts_with(start)) return kStrict;
  }
  if (text.starts_with("COURT") && !is_blank(text[5]) && is_blank(text[6])) {
    return kLetteredCourt;
  }
  return m_isnumb(s.data(), packed_len) ? kStrict : kOrdinary;
}

std::optional<int32_t> prefix_score(const StreetArea &a, int32_t len_a,
                                    const StreetArea &b, int32_t len_b) {
  const bool prefix_a =
      std::memcmp(a.data(), b.data(), static_cast<size_t>(len_a)) == 0;
  const bool prefix_b =
      std::memcmp(a.data(), b.data(), static_cast<size_t>(len_b)) == 0;
  if (!prefix_a && !prefix_b) return std::nullopt;
  const int32_t gap = std::abs(len_a - len_b);
  const int32_t shorter = std::min(len_a, len_b);
  if (shorter >= 6 && gap <= 2) return 95;
  if (shorter >= 4 && gap == 2) return 90;
  if (shorter >= 4 && gap == 1) return 95;
  return std::nullopt;
}

int32_t alignment_score(const StreetArea &a, int32_t len_a, const StreetArea &b,
                        int32_t len_b) {
  int32_t errors = 0;
  int32_t tail = 0;
  int32_t repeats = 0;
  int32_t mismatch = 0;
  m_chcmp1(&errors, &tail, &repeats, &mismatch, len_a, len_b, a.data(),
           b.data());
  if (tail > 0) {
    errors += 1;
    if (tail > 2) errors += tail - 2;
    if (len_a < 6 || len_b < 6) errors += 1;
  }
  int32_t score = 100 - 3 * repeats - 4 * errors;
  if (4 * errors > len_a || 4 * errors > len_b) score -= 10;
  if (len_a >= 9 && len_b >= 9) score = std::min(score + 2, 100);
  return score;
}

struct Stage {
  int32_t score;
  bool settled;  // true: the score is the result
};

Stage character_stage(const StreetArea &a, int32_t len_a, const StreetArea &b,
                      int32_t len_b, StrictClass strict) {
  if (strict == kStrict) return {0, false};
  if (strict == kLetteredCourt) return {0, true};
  if (len_a == 0 || len_b == 0) return {80, false};
  if (auto s = prefix_score(a, len_a, b, len_b)) return {*s, true};
  const int32_t score = alignment_score(a, len_a, b, len_b);
  return {score, score >= 90};
}

bool one_extra_character(const char *x, int32_t len_x, const char *y) {
  int32_t errors = 0;
  int32_t k = 1;
  for (int32_t i = 1; i < len_x && errors < 2; ++i) {
    if (x[i] == y[k]) {
      ++k;
    } else {
      ++errors;
    }
  }
  return errors <= 1;
}

std::optional<int32_t> skeleton_score(StreetArea &a, int32_t len_a,
                                      StreetArea &b, int32_t len_b) {
  if (m_isnumb(a.data(), len_a) || m_isnumb(b.data(), len_b)) {
    return std::nullopt;
  }
  const int32_t ca = m_comprs(a.data(), len_a);
  const int32_t cb = m_comprs(b.data(), len_b);
  if (ca <= 3 || cb <= 3) return std::nullopt;
  if (std::memcmp(a.data(), b.data(), std::max(ca, cb)) == 0) return 95;
  if (a[0] != b[0]) return std::nullopt;
  if (ca == cb) {
    int32_t differences = 0;
    for (int32_t i = 1; i < ca; ++i) differences += a[i] != b[i];
    if (differences <= 1) return 90;
  } else if (std::abs(ca - cb) == 1) {
    const bool a_longer = ca > cb;
    const char *x = a_longer ? a.data() : b.data();
    const char *y = a_longer ? b.data() : a.data();
    if (one_extra_character(x, std::max(ca, cb), y)) return 90;
  }
  return std::nullopt;
}

bool all_blank(const StreetArea &s, int32_t len) {
  return std::all_of(s.begin(), s.begin() + len, is_blank);
}

int32_t compare_streets_impl(const char *s1, const char *s2, int32_t len,
                             char *options) {
  StreetArea a{};
  StreetArea b{};
  len = copy_street(a, s1, len);
  copy_street(b, s2, len);
  const StreetOptions opt = read_options(options);
  if (opt.fold_letters) {
    fold_latin1_letters(a.data(), len);
    fold_latin1_letters(b.data(), len);
  }
  if (std::memcmp(a.data(), b.data(), len) == 0 && !is_blank(a[0])) {
    return 100;
  }

  StreetCache &cache = street_cache;
  const bool fresh = std::memcmp(a.data(), cache.lastra1, len) != 0;
  if (fresh) {
    std::memcpy(cache.lastra1, a.data(), kWorkLen);
    normalise(a.data(), len);
    recode_words(a.data(), len, opt.keep_types);
    cache.lastra2 = a;
  } else {
    a = cache.lastra2;
  }
  normalise(b.data(), len);
  recode_words(b.data(), len, opt.keep_types);

  const StreetArea recoded_a = a;
  const StreetArea recoded_b = b;

  int32_t len_a = 0;
  if (fresh) {
    len_a = xm_lpck(a.data(), len);
    cache.lastra3 = a;
    cache.lasterrs = len_a;
  } else {
    a = cache.lastra3;
    len_a = cache.lasterrs;
  }
  int32_t len_b = xm_lpck(b.data(), len);

  StrictClass strict = strict_class(a, len_a);
  if (strict == kOrdinary) strict = strict_class(b, len_b);

  int32_t score = 0;
  if (std::memcmp(a.data(), b.data(), len) == 0) {
    if (!all_blank(a, len)) return 98;
    score = 88;  // both blank: only the word stage could say more
    len_a = len_b = len;
  } else {
    const Stage s = character_stage(a, len_a, b, len_b, strict);
    if (s.settled) return s.score;
    score = s.score;
  }

  if (auto s = skeleton_score(a, len_a, b, len_b)) return *s;

  const int32_t words =
      plain_word_score(recoded_a.data(), recoded_b.data(), len);
  return std::max(words, score);
}

}  // namespace
}  // namespace orlo_test::plain

namespace orlo_test {

int32_t plain_street(const char *s1, const char *s2, int32_t len,
                     char *options) {
  return plain::compare_streets_impl(s1, s2, len, options);
}

}  // namespace orlo_test
