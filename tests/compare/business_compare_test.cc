// Business name comparison and its word-level routines.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "orlo_compare.h"

namespace {

// A word list over its own copy of the text, split at blanks and linked in
// both directions (built here rather than by m_iwrdls, so that the word
// routines are tested on lists of known shape).
class Words {
 public:
  explicit Words(std::string text) : text_(std::move(text)) {
    nodes_.reserve(text_.size());
    size_t i = 0;
    while (i < text_.size()) {
      if (text_[i] == ' ') {
        ++i;
        continue;
      }
      size_t start = i;
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

// The words from head to tail, and checked again from tail to head.
std::string spelled(const MWORD *head, const MWORD *tail) {
  std::string forward, backward;
  for (const MWORD *w = head; w; w = w->next) forward += word(w) + ' ';
  for (const MWORD *w = tail; w; w = w->prev)
    backward = word(w) + ' ' + backward;
  EXPECT_EQ(forward, backward);
  return forward;
}

TEST(WordTests, Insertion) {
  Words a("WIDGET CORP"), b("CORP");
  EXPECT_EQ(m_insrtw(a.head, b.head), 1);
  EXPECT_EQ(m_insrtw(b.head, a.head), 0);  // CORP has no following word
  Words c("WIDGET CORPS");
  EXPECT_EQ(m_insrtw(c.head, b.head), 0);
  EXPECT_EQ(m_insrtw(nullptr, b.head), 0);
}

TEST(WordTests, Transposition) {
  Words a("SMITH JONES"), b("JONES SMITH"), c("JONES SMYTH"), d("SMITH");
  EXPECT_EQ(m_trnsps(a.head, b.head), 1);
  EXPECT_EQ(m_trnsps(a.head, c.head), 0);
  EXPECT_EQ(m_trnsps(d.head, b.head), 0);
}

TEST(WordTests, WordWrittenAsSeparateLetters) {
  Words ibm("IBM"), letters("I B M"), wrong("I B X"), few("I B"), ib("IB");
  EXPECT_EQ(m_spltwd(ibm.head, letters.head), 1);
  EXPECT_EQ(m_spltwd(ibm.head, wrong.head), 0);
  EXPECT_EQ(m_spltwd(ibm.head, few.head), 0);
  // Only as many letters as the word has are needed.
  EXPECT_EQ(m_spltwd(ib.head, letters.head), 1);
  // A single letter is not split.
  EXPECT_EQ(m_spltwd(letters.head, letters.head), 0);
  Words joined("I BM");
  EXPECT_EQ(m_spltwd(ibm.head, joined.head), 0);
}

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
  // Two letters are no acronym.
  Words ib("IB");
  q = exact.head;
  EXPECT_EQ(m_allino(ib.head, &q), 0);
}

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

TEST(WordTests, SplitNeverOverrunsThePool) {
  MWORD pool[100];
  Words name("ACME IBM");
  int32_t used = 98;
  m_spltnd(name.tail, pool, &name.head, &used, &name.tail);
  EXPECT_EQ(used, 98);
  EXPECT_EQ(spelled(name.head, name.tail), "ACME IBM ");
  used = 97;
  m_spltnd(name.tail, pool, &name.head, &used, &name.tail);
  EXPECT_EQ(used, 100);
  EXPECT_EQ(spelled(name.head, name.tail), "ACME I B M ");
}

struct Charge {
  int32_t charerrs = 0;
  int32_t score = 100;
  int32_t initials = 0;
  int32_t noexact = 1;
};

Charge chcmp3(const std::string &p, const std::string &q) {
  Words wp(p), wq(q);
  Charge c;
  m_chcmp3(&c.charerrs, &c.score, wp.head, wq.head, &c.initials, &c.noexact);
  return c;
}

TEST(WordComparison, SpellingDifferencesInsideAWord) {
  struct Case {
    const char *p, *q;
    int32_t charerrs, score;
  } cases[] = {
      {"MILLER", "MILER", 1, 99},     // doubled letter
      {"MILER", "MILLER", 1, 99},     // doubled letter on the other side
      {"JOHNSON", "JONHSON", 1, 98},  // swap
      {"SMTH", "SMITH", 1, 98},       // extra letter in q
      {"SMIITH", "SMXTH", 2, 97},     // substitution, then a doubled letter
      {"ACME", "ACMI", 1, 98},        // substitution
      {"ABCXYZ", "ABD", 4, 92},       // substitution, three left over
  };
  for (const Case &c : cases) {
    Charge r = chcmp3(c.p, c.q);
    EXPECT_EQ(r.charerrs, c.charerrs) << c.p << " / " << c.q;
    EXPECT_EQ(r.score, c.score) << c.p << " / " << c.q;
    EXPECT_EQ(r.noexact, 1) << c.p << " / " << c.q;
    EXPECT_EQ(r.initials, 0) << c.p << " / " << c.q;
  }
}

TEST(WordComparison, BeginningOfTheOtherWord) {
  Charge abbreviation = chcmp3("CO", "CORP");
  EXPECT_EQ(abbreviation.score, 98);
  EXPECT_EQ(abbreviation.noexact, 0);
  EXPECT_EQ(abbreviation.initials, 0);
  EXPECT_EQ(abbreviation.charerrs, 0);

  Charge initial = chcmp3("IBM", "I");
  EXPECT_EQ(initial.score, 98);
  EXPECT_EQ(initial.noexact, 1);
  EXPECT_EQ(initial.initials, 1);
}

int32_t fnlscr(const std::string &a, const std::string &b, int32_t worderrs,
               int32_t charerrs) {
  Words wa(a), wb(b);
  int32_t score = 100;
  m_fnlscr(&score, wa.head, wb.head, worderrs, charerrs);
  return score;
}

TEST(FinalScore, WordErrorDeductions) {
  EXPECT_EQ(fnlscr("A B", "C D", 2, 0), 75);  // 2 > 2 / 2
  EXPECT_EQ(fnlscr("A B", "C D", 1, 0), 90);  // 1 > 2 / 3
  EXPECT_EQ(fnlscr("A B C", "D E F", 1, 0), 100);
  EXPECT_EQ(fnlscr("A", "B C D E F G", 1, 0), 75);  // min 1 / 2 = 0
}

TEST(FinalScore, CharacterErrorDeductions) {
  EXPECT_EQ(fnlscr("ABCDEFGH", "ABCDEFGH", 0, 2), 100);
  EXPECT_EQ(fnlscr("ABCDEFGH", "ABCDEFGH", 0, 3), 90);  // 3 > 8 / 4
  EXPECT_EQ(fnlscr("ABCDEFGH", "ABCDEFGH", 0, 5), 75);  // 5 > 8 / 2
  EXPECT_EQ(fnlscr("A B", "C D", 2, 2), 50);            // both deductions
}

TEST(Display, PrintsLengthAndTextOfEachWord) {
  Words name("ACME IBM");
  ::testing::internal::CaptureStdout();
  m_dsplay(name.head);
  m_dsplay(nullptr);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "4ACME 3IBM \n\n");
}

// ---- m_busnam ------------------------------------------------------------

std::vector<char> field(std::string_view text, size_t len) {
  std::vector<char> f(len, ' ');
  text.copy(f.data(), std::min(text.size(), len));
  return f;
}

int32_t busnam(std::string_view a, std::string_view b, size_t len,
               const char *options = nullptr) {
  std::vector<char> fa = field(a, len);
  std::vector<char> fb = field(b, len);
  return m_busnam(fa.data(), fb.data(), static_cast<int32_t>(len), options);
}

int32_t busnam(std::string_view a, std::string_view b,
               const char *options = nullptr) {
  return busnam(a, b, std::max(a.size(), b.size()) + 1, options);
}

TEST(BusinessNames, BlankNamesScore50) {
  EXPECT_EQ(busnam("", "ACME", 8), 50);
  EXPECT_EQ(busnam("ACME", "", 8), 50);
  EXPECT_EQ(busnam("", "", 8), 50);
  EXPECT_EQ(busnam("", "ACME", 8, "SORT"), 50);
  EXPECT_EQ(m_busnam("ACME", "ACME", 0, nullptr), 50);
  EXPECT_EQ(m_busnam("ACME", "ACME", -1, nullptr), 50);
}

TEST(BusinessNames, WordRecodesMakeNamesEqual) {
  EXPECT_EQ(busnam("ACME LIMITED", "ACME LTD"), 100);
  EXPECT_EQ(busnam("SMITH AND JONES", "SMITH + JONES"), 100);
}

TEST(BusinessNames, AcronymsAndSeparateLetters) {
  EXPECT_EQ(busnam("IBM", "I B M"), 100);
  EXPECT_EQ(busnam("I B M", "IBM"), 100);
  EXPECT_EQ(busnam("ACME IBM", "ACME I B M"), 100);
  EXPECT_EQ(busnam("ACME I B M", "ACME IBM"), 100);
  EXPECT_EQ(busnam("INTERNATIONAL BUSINESS MACHINES", "IBM"), 100);
  EXPECT_EQ(busnam("IBM CORP", "I B M CORP"), 100);
}

TEST(BusinessNames, SwappedAndInsertedWords) {
  // The swap costs 4; one word error exceeds 2 / 3 = 0: 10 more.
  EXPECT_EQ(busnam("SMITH JONES", "JONES SMITH"), 86);
  EXPECT_EQ(busnam("ACME WIDGET CORP", "ACME CORP"), 97);
  EXPECT_EQ(busnam("ACME CORP", "ACME WIDGET CORP"), 97);
}

TEST(BusinessNames, UnmatchedWords) {
  // After an exact match a missing word costs 1.
  EXPECT_EQ(busnam("ACME", "ACME WIDGETS"), 99);
  // An abbreviation clears the no-exact flag: 98, one word error for the
  // second word, 3 for the unmatched word, 25 for two word errors.
  EXPECT_EQ(busnam("ACM", "ACME WIDGETS"), 70);
  // A misspelling does not: 15 more.
  EXPECT_EQ(busnam("ACMX", "ACME WIDGETS"), 55);
}

TEST(BusinessNames, Initials) {
  EXPECT_EQ(busnam("J SMITH", "JOHN SMITH"), 98);
  // Three initials and an unmatched word: 94 - 3.
  EXPECT_EQ(busnam("J K L", "JOHN KARL LEE SMITH"), 91);
  // Only two initials: the unmatched word costs 15 more.
  EXPECT_EQ(busnam("J K", "JOHN KARL LEE"), 78);
}

TEST(BusinessNames, StopsOnceTheScoreFallsBelow50) {
  // Each pair of words costs 8; the eighth pair is never compared, so only
  // 28 character errors are counted (more than 32 / 2: 25 off).
  EXPECT_EQ(busnam("ABCD EFGH IJKL ABCD EFGH IJKL ABCD EFGH",
                   "NOPQ RSTU VWXY NOPQ RSTU VWXY NOPQ RSTU"),
            19);
}

TEST(BusinessNames, DiFoldsLatin1Letters) {
  EXPECT_EQ(busnam("M\xDCLLER & CO", "MUELLER & CO"), 96);
  EXPECT_EQ(busnam("M\xDCLLER & CO", "MUELLER & CO", "DI"), 100);
  EXPECT_EQ(busnam("M\xDCLLER & CO", "MUELLER & CO", "X;DI"), 100);
  EXPECT_EQ(busnam("M\xDCLLER & CO", "MUELLER & CO", "DIX"), 96);
  EXPECT_EQ(busnam("M\xDCLLER & CO", "MUELLER & CO", "di"), 96);
  EXPECT_EQ(busnam("M\xDCLLER & CO", "MUELLER & CO", ""), 96);
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

TEST(BusinessNames, LongFieldsKeep99Bytes) {
  std::string a(99, 'A');
  a[40] = ' ';
  std::string b = a + "B" + std::string(50, 'C');
  a += "X" + std::string(50, 'Y');
  // The hundredth byte becomes a blank in both.
  EXPECT_EQ(busnam(a, b, 150), 100);
  EXPECT_EQ(busnam(a, b, 100), 100);
  EXPECT_EQ(busnam(a, b, 100, "SORT"), 100);
}

TEST(BusinessCompact, SkeletonsOfEqualNames) {
  EXPECT_EQ(busnam("MILLER", "MILER", "COMPACT"), 75);
  EXPECT_EQ(busnam("ROBERTSON", "ROBERTSEN", "COMPACT"), 85);
  EXPECT_EQ(busnam("CHRISTOPHERSON", "CHRISTOPHERSEN", "COMPACT"), 90);
  EXPECT_EQ(busnam("MILLER", "MILLER", "COMPACT"), 100);
  EXPECT_EQ(busnam("MILLER", "MULLER", "X;COMPACT"), 75);
  EXPECT_EQ(busnam("MILLER", "MOLLAR", "COMPACT"), 75);
  EXPECT_EQ(busnam("MILLER", "MILNER", "COMPACT"), 0);
}

TEST(BusinessCompact, BlankNamesScoreZero) {
  EXPECT_EQ(busnam("", "", 8, "COMPACT"), 0);
  EXPECT_EQ(busnam("", "ACME", 8, "COMPACT"), 0);
  EXPECT_EQ(m_busnam("A", "A", 0, "COMPACT"), 0);
}

TEST(BusinessSort, SameWordsInAnyOrder) {
  EXPECT_EQ(busnam("JONES SMITH", "SMITH JONES", "SORT"), 95);
  EXPECT_EQ(busnam("JONES SMITH", "SMITH JONES", "X;SORT"), 95);
  EXPECT_EQ(busnam("ACME LIMITED", "LTD ACME", "SORT"), 95);
  EXPECT_EQ(busnam("JONES SMITH", "JONES SMITH", "SORT"), 100);
  EXPECT_EQ(busnam("JONES SMITH X", "SMITH JONES", "SORT"), 0);
  EXPECT_EQ(busnam("JONES SMITH", "SMITH JONES X", "SORT"), 0);
  // Each word is used once.
  EXPECT_EQ(busnam("SMITH SMITH", "SMITH JONES", "SORT"), 0);
}

TEST(BusinessOptions, TestedInOrderAndMatchedExactly) {
  // ";COMPACT" selects the skeletons, which differ.
  EXPECT_EQ(busnam("JONES SMITH", "SMITH JONES", "SORT;COMPACT"), 0);
  // "COMPACT;SORT" is not the exact keyword COMPACT, but holds ";SORT".
  EXPECT_EQ(busnam("JONES SMITH", "SMITH JONES", "COMPACT;SORT"), 95);
  // The word-set mode does not fold letters; "SORT;DI" is no SORT option.
  EXPECT_EQ(busnam("\xC5S", "AAS", "DI;SORT"), 0);
  EXPECT_EQ(busnam("\xC5S", "AAS", "SORT;DI"), 100);
  EXPECT_EQ(busnam("JONES SMITH", "SMITH JONES", "SORTED"), 86);
}

}  // namespace
