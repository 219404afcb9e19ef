// Word rules of the street comparison: compass letters, pairing of equal
// words, and initials standing for words. The words of each street are split
// once, when its form is made; the rules then compare two lists.
#include "compare/street_words.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "compare/word_nodes.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

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

// Cuts the text after its last byte that is neither blank nor NUL and
// removes '-' and '/'. Returns the new length.
int32_t tidy_street(char *text, int32_t len) {
  int32_t end = len;
  while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\0')) --end;
  int32_t out = 0;
  for (int32_t i = 0; i < end; ++i) {
    if (text[i] != '-' && text[i] != '/') text[out++] = text[i];
  }
  return out;
}

bool is_route_word(std::string_view w) {
  return w.size() == 2 && std::find(kRouteWords.begin(), kRouteWords.end(),
                                    w) != kRouteWords.end();
}

// A street's words with the pairing marks of one comparison.
struct Side {
  const StreetView &v;
  std::array<bool, kStreetWords> paired{};

  std::string_view text(int32_t i) const {
    const StreetWord &w = v.words[i];
    return {v.word_text + w.at, w.len};
  }
  // Once paired, a word takes no further part: its length counts as 0.
  size_t live_length(int32_t i) const {
    return paired[static_cast<size_t>(i)] ? 0 : v.words[i].len;
  }
};

struct Pairing {
  int32_t paired = 0;
  int32_t digit_paired = 0;
};

// Greedy, in order: each word of street 1 takes the first unpaired word of
// street 2 of its length that equals it, or that is another of RT, RD, HW.
Pairing pair_words(Side &a, Side &b) {
  Pairing r;
  for (int32_t i = 0; i < a.v.word_count; ++i) {
    const std::string_view wa = a.text(i);
    for (int32_t j = 0; j < b.v.word_count; ++j) {
      if (b.live_length(j) != a.live_length(i)) continue;
      const std::string_view wb = b.text(j);
      const bool same = wa == wb;
      if (!same && !(is_route_word(wa) && is_route_word(wb))) continue;
      if (same && a.v.words[i].digit) ++r.digit_paired;
      ++r.paired;
      a.paired[static_cast<size_t>(i)] = b.paired[static_cast<size_t>(j)] =
          true;
      break;
    }
  }
  return r;
}

// Positions, side by side, where an unpaired single letter stands for an
// unpaired word with the same first letter.
int32_t count_initials(const Side &a, const Side &b) {
  int32_t initials = 0;
  const int32_t n = std::min(a.v.word_count, b.v.word_count);
  for (int32_t k = 0; k < n; ++k) {
    const size_t u = static_cast<size_t>(k);
    if (a.paired[u] || b.paired[u]) continue;
    const StreetWord &wa = a.v.words[k];
    const StreetWord &wb = b.v.words[k];
    if (wa.len != 1 && wb.len != 1) continue;
    if (a.v.word_text[wa.at] == b.v.word_text[wb.at]) ++initials;
  }
  return initials;
}

// One word each: a single compass letter against its compass word.
bool compass_rule(const Side &a, const Side &b) {
  if (a.v.word_count != 1 || b.v.word_count != 1) return false;
  const bool a_shorter = a.v.words[0].len <= b.v.words[0].len;
  const Side &shorter = a_shorter ? a : b;
  const Side &longer = a_shorter ? b : a;
  if (shorter.v.words[0].len != 1 || shorter.paired[0]) return false;
  return std::any_of(kCompass.begin(), kCompass.end(), [&](const auto &c) {
    return shorter.text(0) == c.letter && longer.text(0) == c.word;
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

}  // namespace

void split_street_words(const char *recoded, int32_t len, char *word_text,
                        StreetWordList &list) {
  len = std::clamp(len, 0, kStreetWorkLen);
  std::memcpy(word_text, recoded, static_cast<size_t>(len));
  const int32_t n = tidy_street(word_text, len);
  MWORD nodes[kWordListNodes];
  MWORD *head = nullptr;
  MWORD *tail = nullptr;
  m_iwrdls(nodes, &head, &tail, n, word_text);
  list.count = 0;
  list.digit_words = 0;
  for (const MWORD *p = head; p != nullptr; p = p->next) {
    StreetWord &w = list.words[list.count++];
    w.at = static_cast<uint8_t>(p->text - word_text);
    w.len = static_cast<uint8_t>(p->len);
    w.digit = m_isnumb(p->text, p->len) != 0;
    list.digit_words += w.digit;
  }
}

int32_t word_stage_score(const StreetView &va, const StreetView &vb) {
  Side a{va};
  Side b{vb};
  const Pairing p = pair_words(a, b);
  const int32_t initials = count_initials(a, b);
  const int32_t longest = std::max(va.word_count, vb.word_count);
  const bool initials_rule = initials > 0 && va.word_count > 1 &&
                             vb.word_count > 1 &&
                             initials + p.paired == longest;
  if (compass_rule(a, b) ||
      pairing_rule(p, va.digit_words + vb.digit_words, longest) ||
      initials_rule) {
    return 90;
  }
  return 0;
}

int32_t street_word_score(const char *street1, const char *street2,
                          int32_t len) {
  StreetForm a;
  StreetForm b;
  StreetWordList la{a.words};
  StreetWordList lb{b.words};
  split_street_words(street1, len, a.word_text, la);
  split_street_words(street2, len, b.word_text, lb);
  a.word_count = la.count;
  a.digit_words = la.digit_words;
  b.word_count = lb.count;
  b.digit_words = lb.digit_words;
  return word_stage_score(a.view(), b.view());
}

}  // namespace orlo
