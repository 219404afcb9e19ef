// Word recoding of street names: ordinal suffixes, street-type words
// anywhere in the text, and the first and second word through the sorted
// word table.
//
// The fields are work copies followed by NUL bytes. Widening a leading "AV"
// or "BL" rebuilds the text as a NUL-terminated string one or two bytes
// longer than the field, so up to three bytes behind the field are written;
// the street-type search that follows is a NUL-terminated search and so sees
// those bytes. The comparison's work copies keep room for them.
#include "compare/word_recode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "compare/text_bytes.h"
#include "compare/word_tables.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

constexpr auto npos = std::string_view::npos;

// Position of the last non-blank among field[0..end], or -1.
int32_t last_non_blank(const char *field, int32_t end) {
  int32_t p = end;
  while (p >= 0 && is_blank(field[p])) --p;
  return p;
}

void blank_out(char *p, size_t n) {
  std::memset(p, ' ', n);
}

// --- ordinal suffixes --------------------------------------------------------

constexpr std::string_view kFrenchOrdinal = "IEME";

bool is_ordinal_suffix(std::string_view three) {
  return std::find(keywords.begin(), keywords.end(), three) != keywords.end();
}

}  // namespace

// A suffix must be followed by a blank. The suffix that ends a full field is
// followed by the byte behind the field: a work copy's NUL, or the text that
// widening pushed there, so it is looked at only where that byte may be read.
void drop_ordinals(char *field, int32_t len, bool byte_behind_readable) {
  if (len <= 0) return;
  const int32_t last = last_non_blank(field, len - 1);
  if (last > 3 && std::string_view(field + last - 3, 4) == kFrenchOrdinal) {
    blank_out(field + last - 3, 4);
    return;
  }
  if (!m_isnumb(field, last)) return;
  const int32_t readable = len + (byte_behind_readable ? 1 : 0);
  for (int32_t k = 1; k < last && k + 3 <= readable; ++k) {
    if (is_digit(field[k - 1]) &&
        is_ordinal_suffix(std::string_view(field + k, 3))) {
      blank_out(field + k, 2);
    }
  }
}

namespace {

// --- street-type words -------------------------------------------------------

// Cheap filter: a street-type word ends in one of a few letters followed by
// a blank. Three blanks in a row end the text for this purpose.
bool may_hold_street_type(const char *field, int32_t len) {
  for (int32_t p = 0; p <= len - 4; ++p) {
    if (is_blank(field[p + 1]) && field[p] != '\0' &&
        street_types::kLastLetters.find(field[p]) != npos) {
      return true;
    }
    if (is_blank(field[p]) && is_blank(field[p + 1]) &&
        is_blank(field[p + 2])) {
      return false;
    }
  }
  return false;
}

// Replaces at most one occurrence of row r's word. The word is looked for by
// its first four bytes, which must start a word before `last`; a match of
// those four that is not the whole word sends the search on for the whole
// word further right.
void abbreviate_row(char *field, std::string_view text, int32_t last,
                    size_t r) {
  const std::string_view word = street_types::words[r];
  const std::string_view head = word.substr(0, 4);
  const size_t p = text.substr(0, static_cast<size_t>(last) + 3).find(head);
  if (p == npos) return;
  if (p > 0 && !is_blank(text[p - 1])) return;
  const size_t target =
      text.compare(p, word.size(), word) == 0 ? p : text.find(word, p);
  if (target == npos) return;
  const std::string_view recode = street_types::recodes[r];
  std::memcpy(field + target, recode.data(), recode.size());
}

void abbreviate_street_types(char *field, int32_t len) {
  if (!may_hold_street_type(field, len)) return;
  const int32_t last = last_non_blank(field, len - 4);
  // The whole-word search runs to the text's NUL, which widening may have
  // moved up to three bytes behind the field.
  const std::string_view text = text_before_nul(field, len + kRecodeRoom);
  for (size_t r = 0; r < street_types::kRows; ++r) {
    abbreviate_row(field, text, last, r);
  }
}

// --- first and second word ---------------------------------------------------

using RecodeColumn = std::array<std::string_view, word_table::kRows>;

// Start of the second word: the byte after the first blank met at positions
// 1 .. len-11, if that byte is not a blank. Short fields have none.
int32_t second_word_start(const char *field, int32_t len) {
  for (int32_t k = 1; k <= len - 11; ++k) {
    if (is_blank(field[k])) return is_blank(field[k + 1]) ? -1 : k + 1;
  }
  return -1;
}

// Compares the word with the field's bytes at pos as unsigned bytes. Where
// the word runs past the field, the field reads as the NUL that ends it and
// so compares lower.
int compare_at(const char *field, int32_t len, int32_t pos,
               std::string_view word) {
  const size_t room = static_cast<size_t>(len - pos);
  const size_t n = std::min(word.size(), room);
  const int c = std::string_view(field + pos, n).compare(word.substr(0, n));
  if (c != 0) return c;
  return n < word.size() ? -1 : 0;
}

void recode_word_at(char *field, int32_t len, int32_t pos,
                    const RecodeColumn &recodes) {
  int32_t low = 0;
  int32_t high = static_cast<int32_t>(word_table::kRows) - 1;
  while (low <= high) {
    const int32_t middle = (low + high) / 2;
    const int c = compare_at(field, len, pos, word_table::words[middle]);
    if (c == 0) {
      const std::string_view recode = recodes[middle];
      std::memcpy(field + pos, recode.data(), recode.size());
      return;
    }
    if (c > 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
    }
  }
}

// Rebuilds the text as `prefix` followed by the old text from position 3 up
// to its NUL (or the field's end), and a NUL: the text grows by one or two
// bytes and its end and NUL land up to three bytes behind the field.
void widen_start(char *field, int32_t len, std::string_view prefix) {
  const size_t rest = text_before_nul(field + 3, len - 3).size();
  std::memmove(field + prefix.size(), field + 3, rest);
  std::memcpy(field, prefix.data(), prefix.size());
  field[prefix.size() + rest] = '\0';
}

// "AV" and "BL" as a first word stand for the avenue and boulevard forms.
void expand_short_type(char *field, int32_t len) {
  if (len < 3) return;
  const std::string_view start(field, 3);
  if (start == "AV ") {
    widen_start(field, len, "AVE ");
  } else if (start == "BL ") {
    widen_start(field, len, "BLVD ");
  }
}

void recode_first_words(char *field, int32_t len, const RecodeColumn &recodes) {
  if (len <= 0) return;
  const int32_t second = second_word_start(field, len);
  recode_word_at(field, len, 0, recodes);
  if (second > 0) recode_word_at(field, len, second, recodes);
  expand_short_type(field, len);
}

}  // namespace
}  // namespace orlo

extern "C" void m_fixord(char *field, int32_t len) {
  orlo::drop_ordinals(field, len, false);
}

extern "C" void m_wrdrec(char *field, int32_t len) {
  orlo::abbreviate_street_types(field, len);
}

extern "C" void m_recode(char *field, int32_t len) {
  orlo::recode_first_words(field, len, orlo::word_table::recodes);
}

extern "C" void m_recode_new(char *field, int32_t len) {
  orlo::recode_first_words(field, len, orlo::word_table::recodes_new);
}
