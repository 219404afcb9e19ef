// General string comparison: the cascade of the street comparison (raw
// identity, zero normalisation, packed character comparison, consonant
// skeletons, word pairing) for names that are not street names, without word
// tables, street classes or compass words, and with its own weights.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "compare/word_nodes.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

constexpr int32_t kWorkLen = 100;
// Zero bytes behind the longest text, for the alignment's look-ahead.
constexpr int32_t kAreaSize = kWorkLen + 4;
constexpr char kBlank = ' ';

// Scores the next stage may still improve; anything else is final.
bool goes_on(int32_t score) {
  return score >= 66 && score <= 89;
}

// A '0' that opens a word (at the start or behind a blank, as the text now
// stands) becomes a blank, so "007" reads "  7" and "10" stays.
void blank_leading_zeros(char *text, int32_t len) {
  for (int32_t i = 0; i < len; ++i) {
    if (text[i] == '0' && (i == 0 || text[i - 1] == kBlank)) text[i] = kBlank;
  }
}

// Calls visit(start, length) for each run of non-blanks in text[0, len).
template <typename Visit>
void for_each_word(const char *text, int32_t len, Visit visit) {
  int32_t i = 0;
  while (i < len) {
    if (text[i] == kBlank) {
      ++i;
      continue;
    }
    int32_t start = i;
    while (i < len && text[i] != kBlank) ++i;
    visit(start, i - start);
  }
}

int32_t count_words(const char *text, int32_t len) {
  int32_t n = 0;
  for_each_word(text, len, [&](int32_t, int32_t) { ++n; });
  return n;
}

// Blanks out the words of one to three characters that have a blank behind
// them inside the field (a last word that fills the field is kept).
void drop_short_words(char *text, int32_t len) {
  for_each_word(text, len, [&](int32_t start, int32_t n) {
    if (n <= 3 && start + n < len) {
      std::memset(text + start, kBlank, static_cast<size_t>(n));
    }
  });
}

// The prefix rules for two packed texts of which one begins the other;
// 0 when none applies.
int32_t prefix_score(int32_t lena, int32_t lenb) {
  int32_t diff = std::abs(lena - lenb);
  if (lena >= 6 && lenb >= 6 && diff <= 2) return 95;
  if (lena >= 4 && lenb >= 4 && diff == 2) return 90;
  if (lena >= 4 && lenb >= 4 && diff == 1) return 95;
  return 0;
}

// Scores two packed texts character by character.
int32_t character_score(const char *a, int32_t lena, const char *b,
                        int32_t lenb) {
  if (lena == 0 || lenb == 0) return 80;
  if (std::memcmp(a, b, static_cast<size_t>(lena)) == 0 ||
      std::memcmp(a, b, static_cast<size_t>(lenb)) == 0) {
    if (int32_t s = prefix_score(lena, lenb); s != 0) return s;
  }
  int32_t errors = 0, tail = 0, repeats = 0, mismatch = 0;
  m_chcmp1(&errors, &tail, &repeats, &mismatch, lena, lenb, a, b);
  if (tail > 0) {
    // An unmatched tail counts as one error, plus one per character beyond
    // two, plus one more when either text is short.
    ++errors;
    if (tail > 2) errors += tail - 2;
    if (lena < 6 || lenb < 6) ++errors;
  }
  int32_t score = 98 - repeats - 2 * errors;
  if (2 * errors > lena || 2 * errors > lenb) score -= 10;
  if (lena >= 9 && lenb >= 9) score = std::min(score + 2, 100);
  return score;
}

// Skeletons of equal length that differ in at most one position after the
// first, or of lengths one apart where the longer has at most one character
// that the shorter lacks. Both begin with the same character.
bool skeletons_one_apart(const char *a, int32_t ca, const char *b, int32_t cb) {
  if (ca == cb) {
    int32_t differ = 0;
    for (int32_t k = 1; k < ca; ++k) differ += a[k] != b[k];
    return differ <= 1;
  }
  if (std::abs(ca - cb) != 1) return false;
  const char *x = ca > cb ? a : b;
  const char *y = ca > cb ? b : a;
  int32_t lx = std::max(ca, cb);
  int32_t ly = std::min(ca, cb);
  int32_t errors = 0;
  for (int32_t i = 1, j = 1; i < lx && errors < 2; ++i) {
    if (j < ly && x[i] == y[j]) {
      ++j;
    } else {
      ++errors;
    }
  }
  return errors <= 1;
}

// Reduces both texts to their consonant skeletons and scores them; returns
// `score` unchanged when no skeleton rule applies.
int32_t skeleton_score(char *a, int32_t lena, char *b, int32_t lenb,
                       int32_t score, int32_t penalty) {
  const int32_t ca = m_comprs(a, lena);
  const int32_t cb = m_comprs(b, lenb);
  if (ca <= 3 || cb <= 3) return score;
  if (std::memcmp(a, b, static_cast<size_t>(std::max(ca, cb))) == 0) {
    return 95 - penalty;
  }
  if (a[0] == b[0] && skeletons_one_apart(a, ca, b, cb)) return 90 - penalty;
  return score;
}

// A word list over a normalised copy, with the pairing marks of the word
// stage.
struct WordList {
  MWORD nodes[kWordListNodes];
  MWORD *head = nullptr;
  MWORD *tail = nullptr;
  int32_t count = 0;
  bool paired[kWordListNodes] = {};

  int32_t index(const MWORD *w) const {
    return static_cast<int32_t>(w - nodes);
  }
};

// Cuts the text after its last byte that is neither blank nor NUL, closes up
// every '-' and '/', and splits what is left into words.
void build_word_list(WordList &list, char *text, int32_t len) {
  int32_t end = len;
  while (end > 0 && (text[end - 1] == kBlank || text[end - 1] == '\0')) --end;
  int32_t kept = 0;
  for (int32_t i = 0; i < end; ++i) {
    if (text[i] != '-' && text[i] != '/') text[kept++] = text[i];
  }
  m_iwrdls(list.nodes, &list.head, &list.tail, kept, text);
  for (MWORD *w = list.head; w != nullptr; w = w->next) ++list.count;
}

bool holds_digit(const MWORD *w) {
  return m_isnumb(w->text, w->len) != 0;
}

struct Pairing {
  int32_t paired = 0;
  int32_t digit_paired = 0;
};

// Pairs each word of a with the first equal, still unpaired word of b.
// Two-character words never pair.
Pairing pair_words(WordList &a, WordList &b) {
  Pairing r;
  for (MWORD *wa = a.head; wa != nullptr; wa = wa->next) {
    if (wa->len == 2) continue;
    for (MWORD *wb = b.head; wb != nullptr; wb = wb->next) {
      if (b.paired[b.index(wb)] || !same_word(wa, wb)) continue;
      a.paired[a.index(wa)] = b.paired[b.index(wb)] = true;
      ++r.paired;
      if (holds_digit(wa)) ++r.digit_paired;
      break;
    }
  }
  return r;
}

// Positions where, side by side, one word is a single character, neither is
// paired, and both begin with the same character.
int32_t count_initials(const WordList &a, const WordList &b) {
  int32_t initials = 0;
  for (const MWORD *wa = a.head, *wb = b.head; wa != nullptr && wb != nullptr;
       wa = wa->next, wb = wb->next) {
    if ((wa->len == 1 || wb->len == 1) && !a.paired[a.index(wa)] &&
        !b.paired[b.index(wb)] && wa->text[0] == wb->text[0]) {
      ++initials;
    }
  }
  return initials;
}

int32_t count_digit_words(const WordList &list) {
  int32_t n = 0;
  for (const MWORD *w = list.head; w != nullptr; w = w->next) {
    n += holds_digit(w);
  }
  return n;
}

// The word stage: 89 when the words pair up or the initials account for the
// rest, else 0. The texts are the zero-normalised copies and are rewritten.
int32_t word_score(char *text_a, char *text_b, int32_t len) {
  WordList a;
  WordList b;
  build_word_list(a, text_a, len);
  build_word_list(b, text_b, len);
  const int32_t digit_words = count_digit_words(a) + count_digit_words(b);
  const Pairing p = pair_words(a, b);
  const int32_t initials = count_initials(a, b);
  const int32_t most = std::max(a.count, b.count);

  bool pairing = p.paired > 0 && 2 * p.digit_paired == digit_words &&
                 (((most == 2 || most == 3) && p.paired == 2) ||
                  (most >= 4 && most <= 8 && p.paired >= most - 1));
  bool by_initials =
      initials > 0 && a.count > 1 && b.count > 1 && initials + p.paired == most;
  return pairing || by_initials ? 89 : 0;
}

// Copies a field into a zero-filled work area; a field of 100 bytes or more
// keeps 99 bytes of text and a NUL. Returns the length to work with.
int32_t make_work_copy(char *work, const char *field, int32_t len) {
  std::memset(work, 0, kAreaSize);
  if (len <= 0) return 0;
  if (len >= kWorkLen) {
    std::memcpy(work, field, kWorkLen);
    work[kWorkLen - 1] = '\0';
    return kWorkLen;
  }
  std::memcpy(work, field, static_cast<size_t>(len));
  return len;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t m_tgstr(const char *s1, const char *s2, int32_t len) {
  using namespace orlo;
  char a[kAreaSize];
  char b[kAreaSize];
  len = make_work_copy(a, s1, len);
  make_work_copy(b, s2, len);
  const size_t n = static_cast<size_t>(len);
  // Equal work copies also have equal NUL-terminated lengths: both are
  // zero-filled behind the copied bytes.
  if (std::memcmp(a, b, n) == 0 && a[0] != kBlank) return 100;

  blank_leading_zeros(a, len);
  blank_leading_zeros(b, len);
  char normal_a[kAreaSize];
  char normal_b[kAreaSize];
  std::memcpy(normal_a, a, kAreaSize);
  std::memcpy(normal_b, b, kAreaSize);

  int32_t score;
  int32_t penalty = 0;
  int32_t lena = len;
  int32_t lenb = len;
  if (std::memcmp(a, b, n) == 0) {
    score = a[0] == kBlank ? 88 : 98;
  } else {
    if (count_words(a, len) != count_words(b, len)) {
      drop_short_words(a, len);
      drop_short_words(b, len);
      penalty = 4;
    }
    lena = xm_lpck(a, len);
    lenb = xm_lpck(b, len);
    score = character_score(a, lena, b, lenb) - penalty;
  }
  if (!goes_on(score)) return score;

  score = skeleton_score(a, lena, b, lenb, score, penalty);
  if (!goes_on(score)) return score;

  return std::max(word_score(normal_a, normal_b, len), score);
}
