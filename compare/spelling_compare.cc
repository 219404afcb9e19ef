// Spelling comparison: a character-level likeness score for two spellings of
// a name, tolerant of typing errors, doubled letters and one half of a
// hyphenated name.
#include <cstdint>
#include <cstring>

#include "compare/latin1_fold.h"
#include "compare/option_keywords.h"
#include "orlo_compare.h"
#include "orlo_fields.h"

namespace orlo {
namespace {

// Fields up to this length are copied into work areas and take the options.
constexpr int32_t kWorkLen = 100;
// The character alignment looks up to two bytes past the end of a text.
constexpr int32_t kLookAhead = 2;

constexpr char kBlank = ' ';

// Result of aligning two texts character by character.
struct Alignment {
  int32_t errors = 0;
  int32_t tail = 0;
  int32_t repeats = 0;
  int32_t mismatch = 0;  // 1 when the last step was a disagreement
};

bool all_blank(const char *field, int32_t len) {
  for (int32_t i = 0; i < len; ++i) {
    if (field[i] != kBlank) return false;
  }
  return true;
}

int32_t significant_length(const char *field, int32_t len) {
  while (len > 0 && field[len - 1] == kBlank) --len;
  return len;
}

int32_t last_hyphen(const char *field, int32_t len) {
  for (int32_t i = len - 1; i >= 0; --i) {
    if (field[i] == '-') return i;
  }
  return -1;
}

// True when the hyphenated field's part before or after its last hyphen
// (at pos) opens the other field. A hyphen at either end of the text splits
// nothing.
bool half_of_hyphenated(const char *hyphenated, int32_t pos, const char *other,
                        int32_t len) {
  int32_t sig = significant_length(hyphenated, len);
  if (pos <= 0 || pos >= sig - 1) return false;
  if (std::memcmp(other, hyphenated, static_cast<size_t>(pos)) == 0) {
    return true;
  }
  const char *after = hyphenated + pos + 1;
  return std::memcmp(other, after, static_cast<size_t>(sig - pos - 1)) == 0;
}

// Work copy of a field of at most kWorkLen bytes, blank-padded behind so
// that the alignment's look-ahead reads blanks, with the options applied.
void prepare_work_copy(char *work, const char *field, int32_t len, bool fold,
                       bool squish) {
  std::memset(work, kBlank, kWorkLen + kLookAhead);
  if (len > 0) std::memcpy(work, field, static_cast<size_t>(len));
  if (fold) fold_latin1_letters(work, len);
  if (squish) {
    for (int32_t i = 0; i < len; ++i) {
      if (work[i] == '\'') work[i] = kBlank;
    }
    cm_lftpck(work, len);
  }
}

Alignment align_padded(const char *a, int32_t lena, const char *b,
                       int32_t lenb) {
  Alignment r;
  m_chcmp1(&r.errors, &r.tail, &r.repeats, &r.mismatch, lena, lenb, a, b);
  return r;
}

// The same alignment as m_chcmp1 for texts that cannot be copied into a work
// area: bytes past the end of a text read as blanks instead of being read
// from memory that is not the caller's field.
Alignment align_in_place(const char *a, int32_t lena, const char *b,
                         int32_t lenb) {
  auto at = [](const char *s, int32_t n, int32_t k) {
    return static_cast<unsigned char>(k < n ? s[k] : kBlank);
  };
  Alignment r;
  int32_t i = 0;
  int32_t j = 0;
  unsigned char last_a = 0;  // 0: no agreement to repeat
  unsigned char last_b = 0;
  while (i < lena && j < lenb) {
    unsigned char a0 = at(a, lena, i), a1 = at(a, lena, i + 1);
    unsigned char b0 = at(b, lenb, j), b1 = at(b, lenb, j + 1);
    if (a0 == b0) {
      last_a = last_b = a0;
      r.mismatch = 0;
      ++i, ++j;
      continue;
    }
    r.mismatch = 1;
    if (a0 == last_a) {
      ++r.repeats, ++i;
    } else if (b0 == last_b) {
      ++r.repeats, ++j;
    } else if (a0 == b1 && a1 != b1) {
      ++r.errors;
      if (a1 == b0) {
        if (at(a, lena, i + 2) == b1) {
          i += 3, j += 2;  // an extra character in A before the swap
        } else if (a1 == at(b, lenb, j + 2)) {
          i += 2, j += 3;  // an extra character in B before the swap
        } else {
          i += 2, j += 2;  // two characters swapped
        }
        last_a = last_b = 0;
      } else {
        last_a = 0, last_b = b1;
        ++i, j += 2;  // an extra character in B
      }
    } else if (a1 == b0 && a1 != b1) {
      ++r.errors;
      last_a = a1, last_b = 0;
      i += 2, ++j;  // an extra character in A
    } else {
      ++r.errors;
      last_a = last_b = 0;
      ++i, ++j;  // a substitution
    }
  }
  while (i < lena && at(a, lena, i) == last_a) ++r.repeats, ++i;
  while (j < lenb && at(b, lenb, j) == last_b) ++r.repeats, ++j;
  r.tail = i < lena ? lena - i : (j < lenb ? lenb - j : 0);
  return r;
}

// Turns an alignment into the score: errors cost two points, repeats one,
// and an unmatched tail of T characters 1 + 2 + ... + T.
int32_t weigh(const Alignment &r, int32_t lena, int32_t lenb) {
  // 64 bits: the tail of a long field squared does not fit in 32.
  const int64_t errors = r.errors;
  const int64_t tail = r.tail;
  int64_t score = 100 - 2 * errors - r.repeats - tail * (tail + 1) / 2;
  const int64_t charged = 2 * (errors + tail);
  if (charged > lena || charged > lenb) {
    score -= 25;
  } else if (2 * charged >= lena || 2 * charged >= lenb) {
    score -= 10;
  }
  if (tail > 0 && r.mismatch != 0) score -= errors + 2 * tail;
  if (lena > 8 || lenb > 8) score += 1;
  return score <= 1 ? 2 : static_cast<int32_t>(score);
}

using AlignFn = Alignment (*)(const char *, int32_t, const char *, int32_t);

// Scores two fields of len bytes that the options have already reached.
int32_t score_spellings(const char *a, const char *b, int32_t len,
                        AlignFn align) {
  bool blank_a = all_blank(a, len);
  bool blank_b = all_blank(b, len);
  if (blank_a && blank_b) return 0;
  if (blank_a || blank_b) return 1;
  if (std::memcmp(a, b, static_cast<size_t>(len)) == 0) return 100;

  int32_t lena = significant_length(a, len);
  int32_t lenb = significant_length(b, len);
  int32_t hyphen_a = last_hyphen(a, len);
  int32_t hyphen_b = last_hyphen(b, len);
  if (hyphen_a >= 0 && hyphen_b < 0 && half_of_hyphenated(a, hyphen_a, b, len))
    return 96;
  if (hyphen_b >= 0 && hyphen_a < 0 && half_of_hyphenated(b, hyphen_b, a, len))
    return 96;
  return weigh(align(a, lena, b, lenb), lena, lenb);
}

}  // namespace
}  // namespace orlo

extern "C" int32_t m_spllng(const char *f1, const char *f2, int32_t len,
                            const char *options) {
  using namespace orlo;
  if (len <= 0) return 0;  // two empty fields are two blank fields
  if (len > kWorkLen) {
    // Too long for the work areas: no options, the fields as they are.
    return score_spellings(f1, f2, len, align_in_place);
  }
  bool fold = keyword_leading_or_listed(options, "DI");
  bool squish = keyword_leading_or_listed(options, "SQUISH");
  char work1[kWorkLen + kLookAhead];
  char work2[kWorkLen + kLookAhead];
  prepare_work_copy(work1, f1, len, fold, squish);
  prepare_work_copy(work2, f2, len, fold, squish);
  return score_spellings(work1, work2, len, align_padded);
}
