// Word rules of the street comparison: compass letters, pairing of equal
// words, and initials standing for words.
#include "compare/street_words.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "orlo_compare.h"

namespace orlo {
namespace {

// m_iwrdls fills at most 29 nodes; one spare keeps the array safe whatever
// it does.
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

// Road-type abbreviations that pair with one another.
constexpr std::array<std::string_view, 3> kRouteWords = {"RT", "RD", "HW"};

// One word of a street with what the rules need to know about it.
struct Word {
  std::string_view text;
  bool digit = false;
  bool paired = false;
  // Once paired, a word takes no further part: its length counts as 0.
  size_t live_length() const { return paired ? 0 : text.size(); }
};

struct WordList {
  std::array<Word, kWordNodes> words;
  int32_t count = 0;
};

// The recoded street as the word stage reads it: cut after its last byte
// that is neither blank nor NUL, with '-' and '/' removed so that the parts
// of a hyphenated name close up. Returns the new length.
int32_t tidy_street(char *text, int32_t len) {
  int32_t end = len;
  while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\0')) --end;
  int32_t out = 0;
  for (int32_t i = 0; i < end; ++i) {
    if (text[i] != '-' && text[i] != '/') text[out++] = text[i];
  }
  return out;
}

// Splits the street (copied into `area`, which must outlive the list).
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

// Greedy, in order: each word of street 1 takes the first unpaired word of
// street 2 of its length that equals it, or that is another of RT, RD, HW.
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

// Positions, side by side, where an unpaired single letter stands for an
// unpaired word with the same first letter.
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

// One word each: a single compass letter against its compass word.
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

// Enough words paired for the size of the longer name, and every word that
// holds a digit paired with its equal.
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

}  // namespace

int32_t street_word_score(const char *street1, const char *street2,
                          int32_t len) {
  len = std::clamp(len, 0, kStreetWorkLen);
  char area1[kStreetWorkLen];
  char area2[kStreetWorkLen];
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

}  // namespace orlo
