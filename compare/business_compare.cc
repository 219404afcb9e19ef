// Business name comparison: aligns two names word by word and charges each
// word-level difference, or, by option, compares consonant skeletons
// ("COMPACT") or word sets ("SORT").
#include <cstdint>
#include <cstring>

#include "compare/latin1_fold.h"
#include "compare/option_keywords.h"
#include "compare/word_nodes.h"
#include "orlo_compare.h"
#include "orlo_fields.h"

namespace orlo {
namespace {

constexpr int32_t kWorkLen = 100;
constexpr char kBlank = ' ';

int32_t significant_length(const char *field, int32_t len) {
  while (len > 0 && field[len - 1] == kBlank) --len;
  return len;
}

// Copies a name into a blank-filled work area; a name of 100 bytes or more
// keeps 99 bytes and a blank. Returns the length to work with.
int32_t make_work_copy(char *work, const char *name, int32_t len) {
  std::memset(work, kBlank, kWorkLen);
  if (len <= 0) return 0;
  if (len >= kWorkLen) {
    std::memcpy(work, name, kWorkLen);
    work[kWorkLen - 1] = kBlank;
    return kWorkLen;
  }
  std::memcpy(work, name, static_cast<size_t>(len));
  return len;
}

bool is_vowel(char c) {
  return c == 'A' || c == 'E' || c == 'I' || c == 'O' || c == 'U';
}

// Consonant skeleton of a name for "COMPACT": vowels after the first byte
// go, then every byte that repeats the one before it. Returns its length.
int32_t compact_skeleton(char *name, int32_t len) {
  for (int32_t i = 1; i < len; ++i) {
    if (is_vowel(name[i])) name[i] = kBlank;
  }
  cm_lftpck(name, len);
  for (int32_t i = 1; i < len; ++i) {
    if (name[i] == name[i - 1]) name[i] = kBlank;
  }
  return cm_lftpck(name, len);
}

int32_t compact_score(char *a, char *b, int32_t len) {
  const size_t n = static_cast<size_t>(len);
  const bool any_text =
      significant_length(a, len) > 0 || significant_length(b, len) > 0;
  if (any_text && std::memcmp(a, b, n) == 0) return 100;
  const int32_t lena = compact_skeleton(a, len);
  compact_skeleton(b, len);
  if (std::memcmp(a, b, n) != 0 || lena <= 0) return 0;
  if (lena <= 4) return 75;
  return lena <= 8 ? 85 : 90;
}

// The words of one name.
struct WordList {
  MWORD nodes[kWordListNodes];
  MWORD *head = nullptr;
  MWORD *tail = nullptr;

  explicit WordList(char *name, int32_t len) {
    m_iwrdls(nodes, &head, &tail, len, name);
  }
  int32_t count() const {
    int32_t n = 0;
    for (const MWORD *w = head; w != nullptr; w = w->next) ++n;
    return n;
  }
};

// "SORT": the same words in any order.
int32_t word_set_score(char *a, char *b, int32_t len) {
  WordList list_a(a, len);
  WordList list_b(b, len);
  if (list_a.count() != list_b.count()) return 0;
  bool used[kWordListNodes] = {};
  for (const MWORD *wa = list_a.head; wa != nullptr; wa = wa->next) {
    const MWORD *found = nullptr;
    for (const MWORD *wb = list_b.head; wb != nullptr; wb = wb->next) {
      if (!used[wb - list_b.nodes] && same_word(wa, wb)) {
        found = wb;
        break;
      }
    }
    if (found == nullptr) return 0;
    used[found - list_b.nodes] = true;
  }
  return 95;
}

// The running state of the default comparison.
struct Alignment {
  WordList list_a;
  WordList list_b;
  MWORD pool[kSplitPoolNodes] = {};
  int32_t pool_used = 0;
  int32_t score = 100;
  int32_t unmatched = 0;
  int32_t word_errors = 0;
  int32_t char_errors = 0;
  int32_t initials = 0;
  int32_t no_exact = 1;

  Alignment(char *a, char *b, int32_t len) : list_a(a, len), list_b(b, len) {}
};

// Replaces word by its letters from the pool and moves word to the first of
// them. False, with nothing changed, when the pool has too few nodes left.
bool split_into_letters(Alignment &st, MWORD *&word, WordList &list) {
  const int32_t before = st.pool_used;
  m_spltnd(word, st.pool, &list.head, &st.pool_used, &list.tail);
  if (st.pool_used == before) return false;
  word = st.pool + before;
  return true;
}

// Tries the word-level rules on the words at p and q in order; true when one
// of them settled the pair (p and q have then moved on).
bool settle_by_rule(Alignment &st, MWORD *&p, MWORD *&q) {
  if (same_word(p, q)) {
    p = p->next, q = q->next;
    return true;
  }
  if (p == st.list_a.head && q == st.list_b.head) {
    if (m_allino(p, &q)) {  // p's letters begin the words from q on
      p = p->next;
      return true;
    }
    if (m_allino(q, &p)) {
      q = q->next;
      return true;
    }
  }
  if (m_trnsps(p, q)) {
    st.score -= 4, ++st.word_errors;
    p = p->next->next, q = q->next->next;
    return true;
  }
  if (m_insrtw(p, q)) {  // p's word is an extra word
    st.score -= 3, ++st.word_errors;
    p = p->next->next, q = q->next;
    return true;
  }
  if (m_insrtw(q, p)) {  // q's word is an extra word
    st.score -= 3, ++st.word_errors;
    p = p->next, q = q->next->next;
    return true;
  }
  if (m_spltwd(p, q) && split_into_letters(st, p, st.list_a)) return true;
  if (m_spltwd(q, p) && split_into_letters(st, q, st.list_b)) return true;
  return false;
}

// No rule applies: compare the two words letter by letter. When one name
// has a single word and the other several, the other's further words are
// word errors.
void compare_spelling(Alignment &st, MWORD *&p, MWORD *&q) {
  m_chcmp3(&st.char_errors, &st.score, p, q, &st.initials, &st.no_exact);
  if (p == st.list_a.head && q == st.list_b.head &&
      (p->next == nullptr) != (q->next == nullptr)) {
    const MWORD *longer = p->next != nullptr ? p : q;
    for (const MWORD *w = longer->next; w != nullptr; w = w->next) {
      ++st.word_errors;
    }
  }
  p = p->next, q = q->next;
}

// Words left over on one side cost more when anything else was wrong.
void charge_unmatched(Alignment &st) {
  if (st.unmatched == 0) return;
  if (st.no_exact != 0 || st.word_errors != 0 || st.char_errors != 0) {
    st.score -= 3 * st.unmatched;
    ++st.word_errors;
    if (st.no_exact != 0 && st.initials <= 2) st.score -= 15;
  } else {
    st.score -= st.unmatched;
  }
}

int32_t alignment_score(char *a, char *b, int32_t len) {
  Alignment st(a, b, len);
  MWORD *p = st.list_a.head;
  MWORD *q = st.list_b.head;
  bool settled = false;
  while (p != nullptr || q != nullptr) {
    if (settled) st.no_exact = 0;
    if (st.score < 50) break;
    settled = false;
    if (q == nullptr) {
      ++st.unmatched, p = p->next;
    } else if (p == nullptr) {
      ++st.unmatched, q = q->next;
    } else {
      settled = settle_by_rule(st, p, q);
      if (!settled) compare_spelling(st, p, q);
    }
  }
  charge_unmatched(st);
  m_fnlscr(&st.score, st.list_a.head, st.list_b.head, st.word_errors,
           st.char_errors);
  return st.score;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t m_busnam(const char *n1, const char *n2, int32_t len,
                            const char *options) {
  using namespace orlo;
  char a[kWorkLen];
  char b[kWorkLen];
  len = make_work_copy(a, n1, len);
  make_work_copy(b, n2, len);

  if (keyword_exact_or_listed(options, "COMPACT")) {
    return compact_score(a, b, len);
  }
  const bool sort = keyword_exact_or_listed(options, "SORT");
  if (!sort && keyword_exact_or_listed(options, "DI")) {
    fold_latin1_letters(a, len);
    fold_latin1_letters(b, len);
  }
  if (significant_length(a, len) == 0 || significant_length(b, len) == 0) {
    return 50;
  }
  if (std::memcmp(a, b, static_cast<size_t>(len)) == 0) return 100;
  return sort ? word_set_score(a, b, len) : alignment_score(a, b, len);
}
