// Word rules of the street comparison: compass letters, pairing of equal
// words, and initials standing for words. The words of each street are split
// once, when its form is made; the rules then compare two lists.
#include "compare/street_words.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "compare/word_tables.h"
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

// Copies the text up to its last byte that is neither blank nor NUL, less
// every '-' and '/'. Returns the length copied.
int32_t tidy_street(const char *from, int32_t len, char *to) {
  // Eight bytes that are all blanks or NULs have no bit but 0x20 set.
  constexpr uint64_t kOtherBits = 0xDFDFDFDFDFDFDFDFULL;
  int32_t end = len;
  while (end >= 8) {
    uint64_t w;
    std::memcpy(&w, from + end - 8, 8);
    if ((w & kOtherBits) != 0) break;
    end -= 8;
  }
  while (end > 0 && (from[end - 1] == ' ' || from[end - 1] == '\0')) --end;
  int32_t out = 0;
  for (int32_t i = 0; i < end; ++i) {
    to[out] = from[i];
    out += from[i] != '-' && from[i] != '/';
  }
  std::memset(to + out, ' ', static_cast<size_t>(len - out));
  return out;
}

// The business words that m_iwrdls shortens, looked at only when the length
// fits: the word is rewritten in place and its new length returned.
constexpr uint32_t kBusinessLengths = [] {
  uint32_t lengths = 0;
  for (const BusinessWord &b : business_words) lengths |= 1u << b.word.size();
  return lengths;
}();

int32_t shorten_business_word(char *word, int32_t len) {
  if (len >= 32 || ((kBusinessLengths >> len) & 1u) == 0) return len;
  const std::string_view text(word, static_cast<size_t>(len));
  for (const BusinessWord &b : business_words) {
    if (text == b.word) {
      std::memset(word, ' ', static_cast<size_t>(len));
      std::memcpy(word, b.shortened.data(), b.shortened.size());
      return static_cast<int32_t>(b.shortened.size());
    }
  }
  return len;
}

// One of 62 bits, chosen by the word's bytes.
uint64_t word_bit(const char *w, uint32_t len) {
  uint32_t h = 2166136261u;
  for (uint32_t k = 0; k < len; ++k) {
    h = (h ^ static_cast<unsigned char>(w[k])) * 16777619u;
  }
  return uint64_t{1} << (h % 62);
}

bool is_route_word(std::string_view w) {
  return w.size() == 2 && std::find(kRouteWords.begin(), kRouteWords.end(),
                                    w) != kRouteWords.end();
}

// A street's words with the pairing marks of one comparison.
struct Side {
  const StreetView &v;
  uint32_t paired = 0;  // a bit per word

  std::string_view text(int32_t i) const {
    const StreetWord &w = v.words[i];
    return {v.word_text + w.at, w.len};
  }
  bool is_paired(int32_t i) const { return (paired >> i) & 1u; }
  // Once paired, a word takes no further part: its length counts as 0.
  uint32_t live_length(int32_t i) const {
    return is_paired(i) ? 0 : v.words[i].len;
  }
};
static_assert(kStreetWords <= 32, "a word mask fits in 32 bits");

bool same_bytes(const char *a, const char *b, uint32_t n) {
  for (uint32_t k = 0; k < n; ++k) {
    if (a[k] != b[k]) return false;
  }
  return true;
}

struct Pairing {
  int32_t paired = 0;
  int32_t digit_paired = 0;
};

// Greedy, in order: each word of street 1 takes the first unpaired word of
// street 2 of its length that equals it, or that is another of RT, RD, HW.
Pairing pair_words(Side &a, Side &b) {
  Pairing r;
  for (int32_t i = 0; i < a.v.word_count; ++i) {
    const StreetWord &wa = a.v.words[i];
    const char *ta = a.v.word_text + wa.at;
    for (int32_t j = 0; j < b.v.word_count; ++j) {
      if (b.live_length(j) != wa.len) continue;
      const StreetWord &wb = b.v.words[j];
      const bool same = same_bytes(ta, b.v.word_text + wb.at, wa.len);
      if (!same && !(wa.route && wb.route)) continue;
      if (same && wa.digit) ++r.digit_paired;
      ++r.paired;
      a.paired |= 1u << i;
      b.paired |= 1u << j;
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
    if (a.is_paired(k) || b.is_paired(k)) continue;
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
  if (shorter.v.words[0].len != 1 || shorter.is_paired(0)) return false;
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
  const int32_t n = tidy_street(recoded, len, word_text);
  list.count = 0;
  list.digit_words = 0;
  list.bits = 0;
  int32_t i = 0;
  while (list.count < kStreetWords) {
    while (i < n && word_text[i] == ' ') ++i;
    if (i >= n) break;
    const int32_t start = i;
    while (i < n && word_text[i] != ' ') ++i;
    StreetWord &w = list.words[list.count++];
    w.at = static_cast<uint8_t>(start);
    w.len = static_cast<uint8_t>(
        shorten_business_word(word_text + start, i - start));
    w.digit = std::any_of(word_text + start, word_text + start + w.len,
                          [](char c) { return c >= '0' && c <= '9'; });
    w.route = is_route_word(std::string_view(word_text + start, w.len));
    list.digit_words += w.digit;
    list.bits |= word_bit(word_text + start, w.len);
    if (w.len == 1) list.bits |= kSingleLetterBit;
    if (w.route) list.bits |= kRouteWordBit;
  }
}

int32_t word_stage_score(const StreetView &va, const StreetView &vb) {
  // No word in common, no route words on both sides, no initial and not one
  // word each: no pairing, initials or compass rule can hold.
  const bool one_each = va.word_count == 1 && vb.word_count == 1;
  const uint64_t common = va.word_bits & vb.word_bits;
  if (!one_each && (common & ~(kSingleLetterBit | kRouteWordBit)) == 0 &&
      (common & kRouteWordBit) == 0 &&
      ((va.word_bits | vb.word_bits) & kSingleLetterBit) == 0) {
    return 0;
  }
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
  a.word_bits = la.bits;
  b.word_count = lb.count;
  b.digit_words = lb.digit_words;
  b.word_bits = lb.bits;
  return word_stage_score(a.view(), b.view());
}

}  // namespace orlo
