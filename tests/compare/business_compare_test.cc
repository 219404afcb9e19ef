// Business name comparison and its word-level routines.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

// A word list over its own copy of the text, split at blanks and linked in
// both directions (built here rather than by m_iwrdls, so that the word
// routines are tested on lists of known shape).
class Words {
 public:
  explicit Words(std::string text) : text_(std::move(text)) {
    nodes_.reserve(text_.size());
    for (size_t i = 0; i < text_.size();) {
      if (text_[i] == ' ') {
        ++i;
        continue;
      }
      const size_t start = i;
      while (i < text_.size() && text_[i] != ' ') ++i;
      nodes_.push_back(MWORD{nullptr, nullptr, text_.data() + start,
                             static_cast<int32_t>(i - start)});
    }
    for (size_t k = 0; k < nodes_.size(); ++k) {
      nodes_[k].prev = k > 0 ? &nodes_[k - 1] : nullptr;
      nodes_[k].next = k + 1 < nodes_.size() ? &nodes_[k + 1] : nullptr;
    }
    head = nodes_.empty() ? nullptr : &nodes_.front();
    tail = nodes_.empty() ? nullptr : &nodes_.back();
  }
  Words(const Words &) = delete;
  Words &operator=(const Words &) = delete;

  MWORD *at(size_t k) { return &nodes_.at(k); }

  MWORD *head = nullptr;
  MWORD *tail = nullptr;

 private:
  std::string text_;
  std::vector<MWORD> nodes_;
};

std::string word(const MWORD *w) {
  return w ? std::string(w->text, static_cast<size_t>(w->len)) : "<none>";
}

// The words from head to tail, checked against the walk from tail to head.
std::string spelled(const MWORD *head, const MWORD *tail) {
  std::string forward, backward;
  for (const MWORD *w = head; w; w = w->next) forward += word(w) + ' ';
  for (const MWORD *w = tail; w; w = w->prev)
    backward = word(w) + ' ' + backward;
  EXPECT_EQ(forward, backward);
  return forward;
}

using WordTest = int32_t (*)(const MWORD *, const MWORD *);

// The word-level tests: an extra word, two swapped words, a word written
// as its separate letters.
TEST(WordTests, InsertionTranspositionAndSeparateLetters) {
  struct Row {
    WordTest fn;
    const char *p, *q;
    int32_t expected;
    const char *note;
  } rows[] = {
      {m_insrtw, "WIDGET CORP", "CORP", 1, "p has an extra word"},
      {m_insrtw, "CORP", "WIDGET CORP", 0, "p has no following word"},
      {m_insrtw, "WIDGET CORPS", "CORP", 0, "following word differs"},
      {m_trnsps, "SMITH JONES", "JONES SMITH", 1, "swapped"},
      {m_trnsps, "SMITH JONES", "JONES SMYTH", 0, "swapped but misspelt"},
      {m_trnsps, "SMITH", "JONES SMITH", 0, "p has one word"},
      {m_spltwd, "IBM", "I B M", 1, "separate letters"},
      {m_spltwd, "IB", "I B M", 1, "as many letters as the word has"},
      {m_spltwd, "IBM", "I B X", 0, "a wrong letter"},
      {m_spltwd, "IBM", "I B", 0, "too few letters"},
      {m_spltwd, "IBM", "I BM", 0, "not all single letters"},
      {m_spltwd, "I B M", "I B M", 0, "a single letter is not split"},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.note) + ": " + r.p + " / " + r.q);
    Words p(r.p), q(r.q);
    EXPECT_EQ(r.fn(p.head, q.head), r.expected);
  }
  Words q("CORP");
  EXPECT_EQ(m_insrtw(nullptr, q.head), 0);
}

// An acronym moves q past the words it stands for; on failure q stays.
TEST(WordTests, AcronymMovesPastItsWords) {
  Words ibm("IBM"), full("INTERNATIONAL BUSINESS MACHINES CORP");
  MWORD *q = full.head;
  EXPECT_EQ(m_allino(ibm.head, &q), 1);
  EXPECT_EQ(word(q), "CORP");

  Words exact("INTERNATIONAL BUSINESS MACHINES");
  q = exact.head;
  EXPECT_EQ(m_allino(ibm.head, &q), 1);
  EXPECT_EQ(q, nullptr);

  Words few("INTERNATIONAL BUSINESS"), other("INTERNATIONAL BANK CORP");
  for (Words *w : {&few, &other}) {
    q = w->head;
    EXPECT_EQ(m_allino(ibm.head, &q), 0);
    EXPECT_EQ(q, w->head);
  }
  Words ib("IB");  // two letters are no acronym
  q = exact.head;
  EXPECT_EQ(m_allino(ib.head, &q), 0);
}

// A split word is replaced by letter nodes from the pool, in the middle, at
// the head and at the tail of the list.
TEST(WordTests, SplitReplacesTheNodeByLetters) {
  MWORD pool[100];
  int32_t used = 0;
  Words middle("ACME IBM CORP");
  m_spltnd(middle.at(1), pool, &middle.head, &used, &middle.tail);
  EXPECT_EQ(used, 3);
  EXPECT_EQ(spelled(middle.head, middle.tail), "ACME I B M CORP ");

  Words first("IBM CORP");
  m_spltnd(first.head, pool, &first.head, &used, &first.tail);
  EXPECT_EQ(used, 6);
  EXPECT_EQ(first.head, &pool[3]);
  EXPECT_EQ(spelled(first.head, first.tail), "I B M CORP ");

  Words last("ACME IBM");
  m_spltnd(last.tail, pool, &last.head, &used, &last.tail);
  EXPECT_EQ(last.tail, &pool[8]);
  EXPECT_EQ(spelled(last.head, last.tail), "ACME I B M ");
}

// Regression: a split that needs more nodes than are left must leave the
// list alone rather than write past the pool.
TEST(WordTests, SplitNeverOverrunsThePool) {
  MWORD pool[100];
  Words name("ACME IBM");
  int32_t used = 98;
  m_spltnd(name.tail, pool, &name.head, &used, &name.tail);
  EXPECT_EQ(used, 98);
  EXPECT_EQ(spelled(name.head, name.tail), "ACME IBM ");
  used = 97;  // exactly enough
  m_spltnd(name.tail, pool, &name.head, &used, &name.tail);
  EXPECT_EQ(used, 100);
  EXPECT_EQ(spelled(name.head, name.tail), "ACME I B M ");
}

// Charges inside one word pair: spelling differences, abbreviations
// (clear the no-exact flag) and initials (counted).
TEST(WordComparison, ChargesPerKindOfDifference) {
  struct Row {
    const char *p, *q;
    int32_t charerrs, score, initials, noexact;
    const char *note;
  } rows[] = {
      {"MILLER", "MILER", 1, 99, 0, 1, "doubled letter in p"},
      {"MILER", "MILLER", 1, 99, 0, 1, "doubled letter in q"},
      {"JOHNSON", "JONHSON", 1, 98, 0, 1, "swap"},
      {"SMTH", "SMITH", 1, 98, 0, 1, "extra letter in q"},
      {"SMIITH", "SMXTH", 2, 97, 0, 1, "substitution, then doubled letter"},
      {"ACME", "ACMI", 1, 98, 0, 1, "substitution"},
      {"ABCXYZ", "ABD", 4, 92, 0, 1, "substitution, three left over"},
      {"CO", "CORP", 0, 98, 0, 0, "abbreviation"},
      {"IBM", "I", 0, 98, 1, 1, "initial"},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.note) + ": " + r.p + " / " + r.q);
    Words p(r.p), q(r.q);
    int32_t charerrs = 0, score = 100, initials = 0, noexact = 1;
    m_chcmp3(&charerrs, &score, p.head, q.head, &initials, &noexact);
    EXPECT_EQ(charerrs, r.charerrs);
    EXPECT_EQ(score, r.score);
    EXPECT_EQ(initials, r.initials);
    EXPECT_EQ(noexact, r.noexact);
  }
}

// Final deductions at their thresholds: 25 above half the smaller count,
// else 10 above the larger count over 3 (words) or 4 (characters).
TEST(FinalScore, DeductionsAtTheirThresholds) {
  struct Row {
    const char *a, *b;
    int32_t worderrs, charerrs, score;
  } rows[] = {
      {"A B", "C D", 2, 0, 75},
      {"A B", "C D", 1, 0, 90},
      {"A B C", "D E F", 1, 0, 100},
      {"A", "B C D E F G", 1, 0, 75},
      {"ABCDEFGH", "ABCDEFGH", 0, 2, 100},
      {"ABCDEFGH", "ABCDEFGH", 0, 3, 90},
      {"ABCDEFGH", "ABCDEFGH", 0, 5, 75},
      {"A B", "C D", 2, 2, 50},
  };
  for (const Row &r : rows) {
    Words a(r.a), b(r.b);
    int32_t score = 100;
    m_fnlscr(&score, a.head, b.head, r.worderrs, r.charerrs);
    EXPECT_EQ(score, r.score)
        << r.a << " / " << r.b << " " << r.worderrs << " " << r.charerrs;
  }
}

TEST(Display, PrintsLengthAndTextOfEachWord) {
  Words name("ACME IBM");
  ::testing::internal::CaptureStdout();
  m_dsplay(name.head);
  m_dsplay(nullptr);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "4ACME 3IBM \n\n");
}

// len 0: one byte more than the longer name.
int32_t busnam(std::string_view a, std::string_view b, size_t len = 0,
               const char *options = nullptr) {
  if (len == 0) len = std::max(a.size(), b.size()) + 1;
  std::vector<char> fa = orlo_test::exact_field(a, len);
  std::vector<char> fb = orlo_test::exact_field(b, len);
  return m_busnam(fa.data(), fb.data(), static_cast<int32_t>(len), options);
}

struct Row {
  const char *a, *b;
  size_t len;
  const char *options;
  int32_t score;
  const char *note;
};

// One row per rule of the default comparison and of the COMPACT and SORT
// modes, and per way of reading the options.
constexpr Row kRows[] = {
    {"", "ACME", 8, nullptr, 50, "one name blank"},
    {"", "", 8, nullptr, 50, "both blank"},
    {"", "ACME", 8, "SORT", 50, "blank, sorted"},
    {"ACME LIMITED", "ACME LTD", 0, nullptr, 100, "word shortened"},
    {"SMITH AND JONES", "SMITH + JONES", 0, nullptr, 100, "AND and +"},
    {"IBM", "I B M", 0, nullptr, 100, "letters of the first word"},
    {"I B M", "IBM", 0, nullptr, 100, "letters in the first name"},
    {"ACME IBM", "ACME I B M", 0, nullptr, 100, "letters of a later word"},
    {"ACME I B M", "ACME IBM", 0, nullptr, 100, "the same, other side"},
    {"INTERNATIONAL BUSINESS MACHINES", "IBM", 0, nullptr, 100, "acronym"},
    {"SMITH JONES", "JONES SMITH", 0, nullptr, 86, "swap: 4, and 10"},
    {"ACME WIDGET CORP", "ACME CORP", 0, nullptr, 97, "extra word in a"},
    {"ACME CORP", "ACME WIDGET CORP", 0, nullptr, 97, "extra word in b"},
    {"ACME", "ACME WIDGETS", 0, nullptr, 99, "missing word after a match"},
    {"ACM", "ACME WIDGETS", 0, nullptr, 70, "after an abbreviation"},
    {"ACMX", "ACME WIDGETS", 0, nullptr, 55, "after a misspelling: 15 more"},
    {"J SMITH", "JOHN SMITH", 0, nullptr, 98, "initial"},
    {"J K L", "JOHN KARL LEE SMITH", 0, nullptr, 91, "three initials"},
    {"J K", "JOHN KARL LEE", 0, nullptr, 78, "two initials: 15 more"},
    {"ABCD EFGH IJKL ABCD EFGH IJKL ABCD EFGH",
     "NOPQ RSTU VWXY NOPQ RSTU VWXY NOPQ RSTU", 0, nullptr, 19,
     "stops once the score falls below 50"},
    {"M\xDCLLER & CO", "MUELLER & CO", 0, nullptr, 96, "no folding"},
    {"M\xDCLLER & CO", "MUELLER & CO", 0, "DI", 100, "DI folds"},
    {"M\xDCLLER & CO", "MUELLER & CO", 0, "X;DI", 100, "DI listed"},
    {"M\xDCLLER & CO", "MUELLER & CO", 0, "DIX", 96, "the exact word only"},
    {"M\xDCLLER & CO", "MUELLER & CO", 0, "di", 96, "upper case only"},
    {"MILLER", "MILER", 0, "COMPACT", 75, "skeleton of up to 4"},
    {"ROBERTSON", "ROBERTSEN", 0, "COMPACT", 85, "skeleton of up to 8"},
    {"CHRISTOPHERSON", "CHRISTOPHERSEN", 0, "COMPACT", 90, "longer"},
    {"MILLER", "MILLER", 0, "COMPACT", 100, "equal names"},
    {"MILLER", "MULLER", 0, "X;COMPACT", 75, "COMPACT listed"},
    {"MILLER", "MILNER", 0, "COMPACT", 0, "skeletons differ"},
    {"", "", 8, "COMPACT", 0, "blank names"},
    {"", "ACME", 8, "COMPACT", 0, "one blank name"},
    {"JONES SMITH", "SMITH JONES", 0, "SORT", 95, "same words"},
    {"JONES SMITH", "SMITH JONES", 0, "X;SORT", 95, "SORT listed"},
    {"ACME LIMITED", "LTD ACME", 0, "SORT", 95, "shortened words"},
    {"JONES SMITH", "JONES SMITH", 0, "SORT", 100, "equal names"},
    {"JONES SMITH X", "SMITH JONES", 0, "SORT", 0, "more words in a"},
    {"JONES SMITH", "SMITH JONES X", 0, "SORT", 0, "more words in b"},
    {"SMITH SMITH", "SMITH JONES", 0, "SORT", 0, "each word used once"},
    {"JONES SMITH", "SMITH JONES", 0, "SORT;COMPACT", 0, "COMPACT first"},
    {"JONES SMITH", "SMITH JONES", 0, "COMPACT;SORT", 95, "not exact"},
    {"\xC5S", "AAS", 0, "DI;SORT", 0, "SORT does not fold"},
    {"\xC5S", "AAS", 0, "SORT;DI", 100, "SORT;DI is no SORT"},
    {"JONES SMITH", "SMITH JONES", 0, "SORTED", 86, "no SORT"},
};

TEST(BusinessNames, ScoreRules) {
  for (const Row &r : kRows) {
    SCOPED_TRACE(std::string(r.note) + ": " + r.a + " / " + r.b);
    EXPECT_EQ(busnam(r.a, r.b, r.len, r.options), r.score);
  }
}

TEST(BusinessNames, EmptyAndNegativeLengths) {
  EXPECT_EQ(m_busnam("ACME", "ACME", 0, nullptr), 50);
  EXPECT_EQ(m_busnam("ACME", "ACME", -1, nullptr), 50);
  EXPECT_EQ(m_busnam("A", "A", 0, "COMPACT"), 0);
}

TEST(BusinessNames, OnlyTheFirst29WordsCount) {
  std::string a;
  for (int k = 0; k < 35; ++k) a += std::string(1, 'A' + k % 26) + ' ';
  std::string late = a, early = a;
  late[2 * 33] = 'Q';   // the 34th word
  early[2 * 28] = 'Q';  // the 29th word: C against Q
  EXPECT_EQ(busnam(a, late, a.size()), 100);
  EXPECT_EQ(busnam(a, early, a.size()), 98);
}

// The hundredth and later bytes are dropped (the hundredth becomes a blank).
TEST(BusinessNames, LongFieldsKeep99Bytes) {
  std::string a(99, 'A');
  a[40] = ' ';
  std::string b = a + "B" + std::string(50, 'C');
  a += "X" + std::string(50, 'Y');
  EXPECT_EQ(busnam(a, b, 150), 100);
  EXPECT_EQ(busnam(a, b, 100), 100);
  EXPECT_EQ(busnam(a, b, 100, "SORT"), 100);
}

}  // namespace
