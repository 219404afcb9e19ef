// The prepared form of a street and the cascade over two forms: each stage
// either settles the score or hands over to the next, looser one.
#include "compare/street_form.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "compare/latin1_fold.h"
#include "compare/street_recode.h"
#include "compare/street_words.h"
#include "compare/text_bytes.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

static_assert(kStreetWorkLen <= kFoldMaxLen,
              "letter folding covers a whole work copy");
static_assert(kStreetWorkLen <= 255, "word places fit in a byte");

// --- normalisation and recoding ----------------------------------------------

// Leading zeros of every word go, as do full stops; '+' means '&'. Blanks
// behind the text change nothing, so only the text is walked.
void normalise(char *s, int32_t len) {
  const int32_t end = text_end(s, len);
  for (int32_t i = 0; i < end; ++i) {
    const char c = s[i];
    if (c == '0') {
      if (i == 0 || is_blank(s[i - 1])) s[i] = ' ';
    } else if (c == '.') {
      s[i] = ' ';
    } else if (c == '+') {
      s[i] = '&';
    }
  }
}

// xm_lpck from `from` into `to` (which holds the same bytes): the non-blank
// bytes moved left in order, the rest of the field blank unless nothing was
// kept. Returns the number kept; *digit tells whether one is a digit.
int32_t pack_blanks(const char *from, char *to, int32_t len, bool *digit) {
  const int32_t end = text_end(from, len);
  int32_t n = 0;
  bool d = false;
  for (int32_t i = 0; i < end; ++i) {
    const char c = from[i];
    to[n] = c;
    n += !is_blank(c);
    d |= is_digit(c);
  }
  if (n > 0) std::memset(to + n, ' ', static_cast<size_t>(len - n));
  *digit = d;
  return n;
}

// m_comprs of a packed text of n bytes (no blanks among them): inner vowels
// and letters repeating the byte before (as that byte now stands) dropped.
int32_t skeleton_of(const char *p, int32_t n, char *out) {
  constexpr std::array<bool, 256> kVowel = [] {
    std::array<bool, 256> v{};
    for (char c : std::string_view("EAIOU"))
      v[static_cast<unsigned char>(c)] = true;
    return v;
  }();
  if (n <= 0) return 0;
  out[0] = p[0];
  int32_t k = 1;
  char before = p[0];
  for (int32_t i = 1; i < n; ++i) {
    const char c = p[i];
    const bool drop =
        (i < n - 1 && kVowel[static_cast<unsigned char>(c)]) || c == before;
    before = drop ? ' ' : c;
    if (!drop) out[k++] = c;
  }
  return k;
}

// --- strict classes ----------------------------------------------------------

// Highways, state and county roads, avenues and calles must match closely;
// so must courts named by one letter ('COURTB'), in a class of their own.
// Each start is looked at only under its first letter.
StrictClass strict_class(const StreetArea &s, bool digit) {
  const std::string_view text(s.data(), kStreetWorkLen);
  switch (text[0]) {
    case 'U':
      if (text.starts_with("USHWY")) return kStrict;
      break;
    case 'A':
      if (text.starts_with("AVE")) return kStrict;
      break;
    case 'S':
      if (text.starts_with("STATERD")) return kStrict;
      break;
    case 'H':
      if (text.starts_with("HWY")) return kStrict;
      break;
    case 'C':
      if (text.starts_with("COUNTYRD") || text.starts_with("CALLE") ||
          text.starts_with("CLL")) {
        return kStrict;
      }
      if (text.starts_with("COURT") && !is_blank(text[5]) &&
          is_blank(text[6])) {
        return kLetteredCourt;
      }
      break;
    default:
      break;
  }
  return digit ? kStrict : kOrdinary;
}

// --- character stage ---------------------------------------------------------

// Score when one packed street is a prefix of the other and long enough.
std::optional<int32_t> prefix_score(const StreetView &a, const StreetView &b) {
  const int32_t len_a = a.packed_len;
  const int32_t len_b = b.packed_len;
  const int32_t shorter = std::min(len_a, len_b);
  if (!same_field(a.packed, b.packed, static_cast<size_t>(shorter))) {
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

// Packed lengths this far apart keep the alignment below 90: the walk ends
// with one string consumed (the other overrun by at most two bytes), so
// closing the gap takes repeats or errors (3 or 4 points each) or a tail
// (4 points for up to two bytes, 4 more for each further byte), which for
// seven bytes cost at least 13 points, more than the bonus of 2 can offset;
// and the prefix rules want the lengths at most 2 apart.
constexpr int32_t kFarApart = 7;

Stage character_stage(const StreetView &a, const StreetView &b,
                      StrictClass strict, bool only_90_up) {
  if (strict == kStrict) return {0, false};
  if (strict == kLetteredCourt) return {0, true};
  if (a.packed_len == 0 || b.packed_len == 0) return {80, false};
  if (only_90_up && std::abs(a.packed_len - b.packed_len) >= kFarApart) {
    return {0, false};  // some score below 90; which one does not matter
  }
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
  if (ca == cb && same_field(a.skeleton, b.skeleton, static_cast<size_t>(ca))) {
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
  recode_street_words(out.recoded.data(), len, opt.keep_types);
  out.packed = out.recoded;
  out.packed_len =
      pack_blanks(out.recoded.data(), out.packed.data(), len, &out.digit);
}

void make_form(const char *raw, const StreetAreas &areas, int32_t len,
               StreetForm &form) {
  std::memcpy(form.raw, raw, static_cast<size_t>(std::max(len, 1)));
  std::memcpy(form.packed, areas.packed.data(),
              static_cast<size_t>(len + kLookAhead));
  form.packed_len = static_cast<int16_t>(areas.packed_len);
  form.strict = strict_class(areas.packed, areas.digit);
  // Nothing kept by packing: the field was blank.
  form.blank = areas.packed_len == 0;
  // The skeleton stage passes over streets whose packed text holds a digit;
  // a skeleton of length 0 says so.
  form.skeleton_len =
      areas.digit ? 0
                  : static_cast<int16_t>(skeleton_of(
                        areas.packed.data(), areas.packed_len, form.skeleton));
  form.skeleton[form.skeleton_len] = ' ';
  StreetWordList words{form.words};
  split_street_words(areas.recoded.data(), len, form.word_text, words);
  form.word_count = words.count;
  form.digit_words = words.digit_words;
  form.word_bits = words.bits;
}

void prepare_street(const char *street, int32_t len, const StreetOptions &opt,
                    StreetForm &form) {
  StreetArea area;
  len = copy_street(area, street, len, opt);
  StreetAreas areas;
  recode_and_pack(area, len, opt, areas);
  make_form(area.data(), areas, len, form);
}

int32_t score_forms(const StreetView &a, const StreetView &b, int32_t len,
                    bool only_90_up) {
  const size_t n = static_cast<size_t>(len);
  if (same_field(a.raw, b.raw, n) && !is_blank(a.raw[0])) return 100;
  const StrictClass strict = a.strict != kOrdinary ? a.strict : b.strict;
  int32_t score = 0;
  if (same_field(a.packed, b.packed, n)) {
    if (!a.blank) return 98;
    // Both blank: no skeleton, only the word stage could say more.
    score = 88;
  } else {
    const Stage s = character_stage(a, b, strict, only_90_up);
    if (s.settled) return s.score;
    score = s.score;
    if (auto k = skeleton_score(a, b)) return *k;
  }
  return std::max(word_stage_score(a, b), score);
}

}  // namespace orlo
