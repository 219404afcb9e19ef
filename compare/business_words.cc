// Word-level tests and charges of the business name comparison: insertions,
// swaps, words written as separate letters or as acronyms, spelling inside a
// word, and the final deductions.
#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "compare/word_nodes.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

struct ListSize {
  int32_t words = 0;
  int32_t chars = 0;
};

ListSize measure(const MWORD *head) {
  ListSize s;
  for (const MWORD *w = head; w != nullptr; w = w->next) {
    ++s.words;
    s.chars += w->len;
  }
  return s;
}

// A deduction of 25 when errors exceed half of the smaller count, else of 10
// when they exceed the larger count divided by `share`.
int32_t deduction(int32_t errors, int32_t count_a, int32_t count_b,
                  int32_t share) {
  if (errors > std::min(count_a, count_b) / 2) return 25;
  if (errors > std::max(count_a, count_b) / share) return 10;
  return 0;
}

// Charges the differences between two words that do not begin one another.
void charge_spelling(int32_t *charerrs, int32_t *score, const char *p,
                     int32_t lenp, const char *q, int32_t lenq) {
  int32_t i = 0;
  int32_t j = 0;
  while (i < lenp && j < lenq) {
    if (p[i] == q[j]) {
      ++i, ++j;
      continue;
    }
    ++*charerrs;
    if (i + 1 < lenp && j + 1 < lenq && p[i] == q[j + 1] && p[i + 1] == q[j]) {
      *score -= 2, i += 2, j += 2;  // two letters swapped
    } else if (i > 0 && p[i] == p[i - 1]) {
      *score -= 1, ++i;  // a doubled letter in p
    } else if (j > 0 && q[j] == q[j - 1]) {
      *score -= 1, ++j;  // a doubled letter in q
    } else if (i < lenp - 1 && p[i + 1] == q[j]) {
      *score -= 2, i += 2, ++j;  // an extra letter in p
    } else if (j < lenq - 1 && p[i] == q[j + 1]) {
      *score -= 2, ++i, j += 2;  // an extra letter in q
    } else {
      *score -= 2, ++i, ++j;  // a substitution
    }
  }
  const int32_t left = (lenp - i) + (lenq - j);  // only one word has any
  *charerrs += left;
  *score -= 2 * left;
}

}  // namespace
}  // namespace orlo

using orlo::same_word;

extern "C" int32_t m_insrtw(const MWORD *p, const MWORD *q) {
  if (p == nullptr || q == nullptr || p->next == nullptr) return 0;
  return same_word(p->next, q) ? 1 : 0;
}

extern "C" int32_t m_trnsps(const MWORD *p, const MWORD *q) {
  if (p == nullptr || q == nullptr || p->next == nullptr || q->next == nullptr)
    return 0;
  return same_word(p, q->next) && same_word(p->next, q) ? 1 : 0;
}

extern "C" int32_t m_spltwd(const MWORD *p, const MWORD *q) {
  if (p == nullptr || p->len < 2) return 0;
  const MWORD *letter = q;
  for (int32_t k = 0; k < p->len; ++k, letter = letter->next) {
    if (letter == nullptr || letter->len != 1 || letter->text[0] != p->text[k])
      return 0;
  }
  return 1;
}

extern "C" int32_t m_allino(const MWORD *p, MWORD **q) {
  if (p == nullptr || q == nullptr || p->len <= 2) return 0;
  MWORD *word = *q;
  for (int32_t k = 0; k < p->len; ++k, word = word->next) {
    if (word == nullptr || word->len < 1 || word->text[0] != p->text[k])
      return 0;
  }
  *q = word;  // past the words that the initials stand for
  return 1;
}

extern "C" void m_spltnd(MWORD *p, MWORD *pool, MWORD **head,
                         int32_t *poolcount, MWORD **tail) {
  if (p == nullptr || pool == nullptr || poolcount == nullptr || p->len < 1)
    return;
  // A word that needs more nodes than the pool has left stays whole.
  if (*poolcount < 0 ||
      static_cast<int64_t>(*poolcount) + p->len > orlo::kSplitPoolNodes)
    return;
  MWORD *first = pool + *poolcount;
  MWORD *last = first + p->len - 1;
  for (int32_t k = 0; k < p->len; ++k) {
    MWORD *letter = first + k;
    letter->text = p->text + k;
    letter->len = 1;
    letter->prev = k == 0 ? p->prev : letter - 1;
    letter->next = letter == last ? p->next : letter + 1;
  }
  if (p->prev != nullptr) {
    p->prev->next = first;
  } else if (head != nullptr) {
    *head = first;
  }
  if (p->next != nullptr) {
    p->next->prev = last;
  } else if (tail != nullptr) {
    *tail = last;
  }
  *poolcount += p->len;
}

extern "C" void m_chcmp3(int32_t *charerrs, int32_t *score, const MWORD *p,
                         const MWORD *q, int32_t *initials, int32_t *noexact) {
  if (p == nullptr || q == nullptr) return;
  const int32_t shorter = std::min(p->len, q->len);
  if (std::memcmp(p->text, q->text, static_cast<size_t>(shorter)) == 0) {
    // One word begins the other: an initial or an abbreviation.
    *score -= 2;
    if (shorter == 1) {
      ++*initials;
    } else {
      *noexact = 0;
    }
    return;
  }
  orlo::charge_spelling(charerrs, score, p->text, p->len, q->text, q->len);
}

extern "C" void m_fnlscr(int32_t *score, const MWORD *head1, const MWORD *head2,
                         int32_t worderrs, int32_t charerrs) {
  const orlo::ListSize a = orlo::measure(head1);
  const orlo::ListSize b = orlo::measure(head2);
  *score -= orlo::deduction(worderrs, a.words, b.words, 3);
  *score -= orlo::deduction(charerrs, a.chars, b.chars, 4);
}

extern "C" void m_dsplay(MWORD *head) {
  for (const MWORD *w = head; w != nullptr; w = w->next) {
    std::printf("%d", static_cast<int>(w->len));
    if (w->len > 0)
      std::fwrite(w->text, 1, static_cast<size_t>(w->len), stdout);
    std::putchar(' ');
  }
  std::putchar('\n');
}
