// Word recoding of a street work copy, driven by byte tables. Each step
// makes exactly the change of its exported counterpart in word_recode.cc
// (which stays the plain statement of the rules); what differs is how a
// table word is looked for: a byte table says which letters can start or
// end one, and the street-type words are found in one scan of the text.
#include "compare/street_recode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "compare/text_bytes.h"
#include "compare/word_recode.h"
#include "compare/word_tables.h"

namespace orlo {
namespace {

constexpr auto npos = std::string_view::npos;

// A 256-entry membership table of the bytes of `letters`.
constexpr std::array<bool, 256> byte_set(std::string_view letters) {
  std::array<bool, 256> set{};
  for (char c : letters) set[static_cast<unsigned char>(c)] = true;
  return set;
}

constexpr bool in(const std::array<bool, 256> &set, char c) {
  return set[static_cast<unsigned char>(c)];
}

// First letters of the words of the first/second-word table: a word that
// starts with any other byte is not in it.
constexpr std::array<bool, 256> kRecodeInitials = [] {
  std::array<bool, 256> set{};
  for (std::string_view w : word_table::words) {
    set[static_cast<unsigned char>(w[0])] = true;
  }
  return set;
}();

// Last letters of the street-type words (before their blank).
constexpr std::array<bool, 256> kTypeLastLetters =
    byte_set(street_types::kLastLetters);

// --- first and second word -----------------------------------------------

int32_t second_word_start(const char *f, int32_t len) {
  for (int32_t k = 1; k <= len - 11; ++k) {
    if (is_blank(f[k])) return is_blank(f[k + 1]) ? -1 : k + 1;
  }
  return -1;
}

// The word against the field's bytes at pos as unsigned bytes; where the
// word runs past the field, the field compares lower.
int compare_at(const char *f, int32_t len, int32_t pos, std::string_view w) {
  const size_t room = static_cast<size_t>(len - pos);
  const size_t n = std::min(w.size(), room);
  for (size_t i = 0; i < n; ++i) {
    const auto a = static_cast<unsigned char>(f[pos + static_cast<int32_t>(i)]);
    const auto b = static_cast<unsigned char>(w[i]);
    if (a != b) return a < b ? -1 : 1;
  }
  return n < w.size() ? -1 : 0;
}

// The binary search of m_recode; only a hit changes the field, and a hit
// needs the first byte to start some word of the table.
template <typename Column>
void recode_word_at(char *f, int32_t len, int32_t pos, const Column &col) {
  if (!in(kRecodeInitials, f[pos])) return;
  int32_t low = 0;
  int32_t high = static_cast<int32_t>(word_table::kRows) - 1;
  while (low <= high) {
    const int32_t middle = (low + high) / 2;
    const int c = compare_at(f, len, pos, word_table::words[middle]);
    if (c == 0) {
      std::memcpy(f + pos, col[middle].data(), col[middle].size());
      return;
    }
    if (c > 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
}

// "AV " and "BL " as a first word widen to "AVE " and "BLVD ", the text
// moving right up to three bytes behind the field.
void widen_start(char *f, int32_t len, std::string_view prefix) {
  const size_t rest = text_before_nul(f + 3, len - 3).size();
  std::memmove(f + prefix.size(), f + 3, rest);
  std::memcpy(f, prefix.data(), prefix.size());
  f[prefix.size() + rest] = '\0';
}

template <typename Column>
void recode_first_words(char *f, int32_t len, const Column &col) {
  if (len <= 0) return;
  const int32_t second = second_word_start(f, len);
  recode_word_at(f, len, 0, col);
  if (second > 0) recode_word_at(f, len, second, col);
  if (len < 3 || f[2] != ' ') return;
  if (f[0] == 'A' && f[1] == 'V') {
    widen_start(f, len, "AVE ");
  } else if (f[0] == 'B' && f[1] == 'L') {
    widen_start(f, len, "BLVD ");
  }
}

// --- street-type words ---------------------------------------------------

constexpr size_t kTypeRows = street_types::kRows;

bool may_hold_street_type(const char *f, int32_t len) {
  for (int32_t p = 0; p <= len - 4; ++p) {
    if (is_blank(f[p + 1]) && in(kTypeLastLetters, f[p])) return true;
    if (is_blank(f[p]) && is_blank(f[p + 1]) && is_blank(f[p + 2])) {
      return false;
    }
  }
  return false;
}

// The first four bytes of each street-type word as one number, and for
// every byte the rows whose word starts with it (a bit per row).
uint32_t head_of(std::string_view w) {
  uint32_t v;
  std::memcpy(&v, w.data(), 4);
  return v;
}

constexpr std::array<uint16_t, 256> kRowsByInitial = [] {
  std::array<uint16_t, 256> rows{};
  for (size_t r = 0; r < kTypeRows; ++r) {
    rows[static_cast<unsigned char>(street_types::words[r][0])] |=
        static_cast<uint16_t>(1u << r);
  }
  return rows;
}();
static_assert(kTypeRows <= 16, "a row mask fits in 16 bits");

// For every row, the first place in text[0, limit) where its word's first
// four bytes stand, or npos. Returns the rows found, a bit each.
uint32_t find_heads(std::string_view text, size_t limit,
                    std::array<size_t, kTypeRows> &first) {
  first.fill(npos);
  limit = std::min(limit, text.size());
  uint32_t open = (1u << kTypeRows) - 1;
  for (size_t p = 0; p + 4 <= limit && open != 0; ++p) {
    uint32_t rows = kRowsByInitial[static_cast<unsigned char>(text[p])] & open;
    if (rows == 0) continue;
    const uint32_t here = head_of(text.substr(p, 4));
    for (; rows != 0; rows &= rows - 1) {
      const size_t r = static_cast<size_t>(__builtin_ctz(rows));
      if (here == head_of(street_types::words[r])) {
        first[r] = p;
        open &= ~(1u << r);
      }
    }
  }
  return ((1u << kTypeRows) - 1) & ~open;
}

// m_wrdrec: each row replaces at most one occurrence of its word, found by
// its first four bytes at a word start before `last`.
void abbreviate_street_types(char *f, int32_t len) {
  if (!may_hold_street_type(f, len)) return;
  const int32_t last = text_end(f, len - 3) - 1;
  const std::string_view text = text_before_nul(f, len + kRecodeRoom);
  const size_t limit = static_cast<size_t>(last) + 3;
  std::array<size_t, kTypeRows> first;
  uint32_t found = find_heads(text, limit, first);
  // Rows in order; a row whose head is nowhere does nothing.
  while (found != 0) {
    const auto r = static_cast<size_t>(__builtin_ctz(found));
    found &= found - 1;
    const size_t p = first[r];
    if (p > 0 && !is_blank(text[p - 1])) continue;
    const std::string_view word = street_types::words[r];
    const size_t target =
        text.compare(p, word.size(), word) == 0 ? p : text.find(word, p);
    if (target == npos) continue;
    const std::string_view recode = street_types::recodes[r];
    std::memcpy(f + target, recode.data(), recode.size());
    // The text changed: later rows look again.
    found = find_heads(text, limit, first) & ~((2u << r) - 1);
  }
}

// --- ordinal suffixes ----------------------------------------------------

// m_fixord reading the byte behind the field: drops IEME at the end, or
// ST, ND, RD, TH between a digit and a blank.
void drop_ordinal_suffixes(char *f, int32_t len) {
  if (len <= 0) return;
  const int32_t last = text_end(f, len) - 1;
  if (last > 3 && std::memcmp(f + last - 3, "IEME", 4) == 0) {
    std::memset(f + last - 3, ' ', 4);
    return;
  }
  if (std::none_of(f, f + std::max(last, 0), is_digit)) return;
  for (int32_t k = 1; k < last && k + 3 <= len + 1; ++k) {
    if (!is_digit(f[k - 1]) || !is_blank(f[k + 2])) continue;
    const char a = f[k];
    const char b = f[k + 1];
    if ((a == 'S' && b == 'T') || (a == 'N' && b == 'D') ||
        (a == 'R' && b == 'D') || (a == 'T' && b == 'H')) {
      f[k] = f[k + 1] = ' ';
    }
  }
}

}  // namespace

void recode_street_words(char *s, int32_t len, bool keep_types) {
  if (keep_types) {
    recode_first_words(s, len, word_table::recodes_new);
  } else {
    recode_first_words(s, len, word_table::recodes);
  }
  abbreviate_street_types(s, len);
  drop_ordinal_suffixes(s, len);
}

}  // namespace orlo
