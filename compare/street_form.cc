// The prepared form of a street and the cascade over two forms: each stage
// either settles the score or hands over to the next, looser one.
#include "compare/street_form.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "compare/latin1_fold.h"
#include "compare/street_words.h"
#include "compare/text_bytes.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

static_assert(kStreetWorkLen <= kFoldMaxLen,
              "letter folding covers a whole work copy");
static_assert(kStreetWorkLen <= 255, "word places fit in a byte");

// --- normalisation and recoding ----------------------------------------------

// Leading zeros of every word go, as do full stops; '+' means '&'.
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

// --- strict classes ----------------------------------------------------------

// Highways, state and county roads, avenues and calles must match closely.
constexpr std::array<std::string_view, 7> kStrictStarts = {
    "USHWY", "AVE", "STATERD", "COUNTYRD", "HWY", "CALLE", "CLL"};

// Class of one packed street (the area as packing left it).
StrictClass strict_class(const StreetArea &s, int32_t packed_len) {
  const std::string_view text(s.data(), kStreetWorkLen);
  for (std::string_view start : kStrictStarts) {
    if (text.starts_with(start)) return kStrict;
  }
  // A court followed by a single letter: 'COURTB'.
  if (text.starts_with("COURT") && !is_blank(text[5]) && is_blank(text[6])) {
    return kLetteredCourt;
  }
  return m_isnumb(s.data(), packed_len) ? kStrict : kOrdinary;
}

// --- character stage ---------------------------------------------------------

// Score when one packed street is a prefix of the other and long enough.
std::optional<int32_t> prefix_score(const StreetView &a, const StreetView &b) {
  const int32_t len_a = a.packed_len;
  const int32_t len_b = b.packed_len;
  const int32_t shorter = std::min(len_a, len_b);
  if (std::memcmp(a.packed, b.packed, static_cast<size_t>(shorter)) != 0) {
    return std::nullopt;
  }
  const int32_t gap = std::abs(len_a - len_b);
  if (shorter >= 6 && gap <= 2) return 95;
  if (shorter >= 4 && gap == 2) return 90;
  if (shorter >= 4 && gap == 1) return 95;
  return std::nullopt;
}

// Score from the character alignment of the two packed streets.
int32_t alignment_score(const StreetView &a, const StreetView &b) {
  const int32_t len_a = a.packed_len;
  const int32_t len_b = b.packed_len;
  int32_t errors = 0;
  int32_t tail = 0;
  int32_t repeats = 0;
  int32_t mismatch = 0;
  m_chcmp1(&errors, &tail, &repeats, &mismatch, len_a, len_b, a.packed,
           b.packed);
  if (tail > 0) {
    // An unmatched tail costs one error, one more per character beyond two,
    // and one more when either name is short.
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

Stage character_stage(const StreetView &a, const StreetView &b,
                      StrictClass strict) {
  if (strict == kStrict) return {0, false};
  if (strict == kLetteredCourt) return {0, true};
  if (a.packed_len == 0 || b.packed_len == 0) return {80, false};
  if (auto s = prefix_score(a, b)) return {*s, true};
  const int32_t score = alignment_score(a, b);
  return {score, score >= 90};
}

// --- skeleton stage ----------------------------------------------------------

// At most one character of the longer skeleton x has no partner in y (one
// shorter, with a blank behind it), walking both from their second character.
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

// 95 for equal consonant skeletons, 90 for skeletons one character apart,
// nothing otherwise. A street whose packed text holds a digit has none.
std::optional<int32_t> skeleton_score(const StreetView &a,
                                      const StreetView &b) {
  const int32_t ca = a.skeleton_len;
  const int32_t cb = b.skeleton_len;
  if (ca <= 3 || cb <= 3) return std::nullopt;
  if (ca == cb &&
      std::memcmp(a.skeleton, b.skeleton, static_cast<size_t>(ca)) == 0) {
    return 95;
  }
  if (a.skeleton[0] != b.skeleton[0]) return std::nullopt;
  if (ca == cb) {
    int32_t differences = 0;
    for (int32_t i = 1; i < ca; ++i)
      differences += a.skeleton[i] != b.skeleton[i];
    if (differences <= 1) return 90;
  } else if (std::abs(ca - cb) == 1) {
    const bool a_longer = ca > cb;
    const char *x = a_longer ? a.skeleton : b.skeleton;
    const char *y = a_longer ? b.skeleton : a.skeleton;
    if (one_extra_character(x, std::max(ca, cb), y)) return 90;
  }
  return std::nullopt;
}

}  // namespace

// --- options and work copies -------------------------------------------------

StreetOptions parse_street_options(std::string_view upper) {
  StreetOptions o;
  o.fold_letters = (upper.size() > 1 && upper.starts_with("DI")) ||
                   upper.find(";DI") != std::string_view::npos;
  o.keep_types = upper.size() > 3 && upper.starts_with("TYPE");
  return o;
}

StreetOptions read_street_options(char *options) {
  if (options == nullptr) return {};
  size_t n = 0;
  for (; options[n] != '\0'; ++n) {
    if (options[n] >= 'a' && options[n] <= 'z') options[n] -= 'a' - 'A';
  }
  return parse_street_options(std::string_view(options, n));
}

int32_t copy_street(StreetArea &area, const char *street, int32_t len,
                    const StreetOptions &opt) {
  area.fill('\0');
  len = std::max(len, 0);
  const int32_t n = std::min(len, kStreetWorkLen);
  if (n > 0 && street != nullptr) {
    std::memcpy(area.data(), street, static_cast<size_t>(n));
  }
  if (len >= kStreetWorkLen) area[kStreetWorkLen - 1] = '\0';
  if (opt.fold_letters) fold_latin1_letters(area.data(), n);
  return n;
}

void recode_and_pack(const StreetArea &area, int32_t len,
                     const StreetOptions &opt, StreetAreas &out) {
  out.recoded = area;
  normalise(out.recoded.data(), len);
  recode_words(out.recoded.data(), len, opt.keep_types);
  out.packed = out.recoded;
  out.packed_len = xm_lpck(out.packed.data(), len);
}

void make_form(const char *raw, const StreetAreas &areas, int32_t len,
               StreetForm &form) {
  std::memcpy(form.raw, raw, static_cast<size_t>(std::max(len, 1)));
  std::memcpy(form.packed, areas.packed.data(),
              static_cast<size_t>(len + kLookAhead));
  form.packed_len = static_cast<int16_t>(areas.packed_len);
  form.strict = strict_class(areas.packed, areas.packed_len);
  form.blank =
      std::all_of(areas.packed.begin(), areas.packed.begin() + len, is_blank);
  // The skeleton stage passes over streets whose packed text holds a digit;
  // a skeleton of length 0 says so.
  form.skeleton_len = 0;
  if (!m_isnumb(areas.packed.data(), areas.packed_len)) {
    StreetArea skeleton = areas.packed;
    form.skeleton_len =
        static_cast<int16_t>(m_comprs(skeleton.data(), areas.packed_len));
    std::memcpy(form.skeleton, skeleton.data(),
                static_cast<size_t>(form.skeleton_len));
  }
  form.skeleton[form.skeleton_len] = ' ';
  StreetWordList words{form.words};
  split_street_words(areas.recoded.data(), len, form.word_text, words);
  form.word_count = words.count;
  form.digit_words = words.digit_words;
}

void prepare_street(const char *street, int32_t len, const StreetOptions &opt,
                    StreetForm &form) {
  StreetArea area;
  len = copy_street(area, street, len, opt);
  StreetAreas areas;
  recode_and_pack(area, len, opt, areas);
  make_form(area.data(), areas, len, form);
}

int32_t score_forms(const StreetView &a, const StreetView &b, int32_t len) {
  const size_t n = static_cast<size_t>(len);
  if (std::memcmp(a.raw, b.raw, n) == 0 && !is_blank(a.raw[0])) return 100;
  const StrictClass strict = a.strict != kOrdinary ? a.strict : b.strict;
  int32_t score = 0;
  if (std::memcmp(a.packed, b.packed, n) == 0) {
    if (!a.blank) return 98;
    // Both blank: no skeleton, only the word stage could say more.
    score = 88;
  } else {
    const Stage s = character_stage(a, b, strict);
    if (s.settled) return s.score;
    score = s.score;
    if (auto k = skeleton_score(a, b)) return *k;
  }
  return std::max(word_stage_score(a, b), score);
}

}  // namespace orlo
