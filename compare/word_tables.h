// The word tables of the recoding helpers. Every replacement has exactly the
// length of the word it replaces, so recoding never moves the rest of a field;
// the static_asserts below hold the tables to that.
#ifndef ORLO_COMPARE_WORD_TABLES_H
#define ORLO_COMPARE_WORD_TABLES_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orlo {

namespace detail {

// Picks one column out of a table of rows.
template <typename Row, size_t N, typename T>
constexpr std::array<T, N> column(const std::array<Row, N> &rows,
                                  T Row::*member) {
  std::array<T, N> out{};
  for (size_t i = 0; i < N; ++i) out[i] = rows[i].*member;
  return out;
}

}  // namespace detail

// Street-type words that m_wrdrec abbreviates anywhere in a text, tried in
// this order. Each word carries its closing blank except the last, so that
// only whole words match.
namespace street_types {

struct Row {
  std::string_view word;
  std::string_view recode;
  int32_t length;
};

// clang-format off
inline constexpr std::array<Row, 14> rows = {{
    {"HWY ",       "HW  ",       4},
    {"HIGHWAY ",   "HW      ",   8},
    {"AVENUE ",    "AVE    ",    7},
    {"BOULEVARD ", "BLVD      ", 10},
    {"CALLE ",     "CLL   ",     6},
    {"CAMINO ",    "CAM    ",    7},
    {"VILLA ",     "VIL   ",     6},
    {"STREET ",    "ST     ",    7},
    {"ROAD ",      "RD   ",      5},
    {"ROUTE ",     "RT    ",     6},
    {"SAINT ",     "ST    ",     6},
    {"AND ",       "&   ",       4},
    {"CROSSING ",  "XING     ",  9},
    {"CROSSROADS", "XRDS      ", 10},
}};
// clang-format on

inline constexpr size_t kRows = rows.size();
inline constexpr auto words = detail::column(rows, &Row::word);
inline constexpr auto recodes = detail::column(rows, &Row::recode);
inline constexpr auto lengths = detail::column(rows, &Row::length);

// The last letters of the words above: a text with none of them before a
// blank cannot hold a street-type word.
inline constexpr std::string_view kLastLetters = "YEADOTSG";

}  // namespace street_types

// First- and second-word recodes of m_recode (column recodes) and
// m_recode_new (column recodes_new), in ascending byte order of the word for
// the binary search. The two columns differ only where m_recode drops a word
// (AVE, AVENUE, DES, RANG, RG, RUE) that m_recode_new keeps in short form.
namespace word_table {

struct Row {
  std::string_view word;
  std::string_view recode;
  std::string_view recode_new;
  int32_t length;
};

// clang-format off
inline constexpr std::array<Row, 41> rows = {{
    {"APARTMENTS ", "APTS       ", "APTS       ", 11},
    {"AVE ",        "    ",        "AVE ",        4},
    {"AVENUE ",     "       ",     "AVE    ",     7},
    {"BOUL ",       "BLVD ",       "BLVD ",       5},
    {"CIRCLE ",     "CIR    ",     "CIR    ",     7},
    {"DES ",        "    ",        "DES ",        4},
    {"EIGHT ",      "8     ",      "8     ",      6},
    {"EIGHTH ",     "8TH    ",     "8TH    ",     7},
    {"FIFTH ",      "5TH   ",      "5TH   ",      6},
    {"FIFTIETH ",   "50TH     ",   "50TH     ",   9},
    {"FIRST ",      "1ST   ",      "1ST   ",      6},
    {"FIVE ",       "5    ",       "5    ",       5},
    {"FOUR ",       "4    ",       "4    ",       5},
    {"FOURTH ",     "4TH    ",     "4TH    ",     7},
    {"FOURTIETH ",  "40TH      ",  "40TH      ",  10},
    {"HILL ",       "HL   ",       "HL   ",       5},
    {"MALL ",       "ML   ",       "ML   ",       5},
    {"NINE ",       "9    ",       "9    ",       5},
    {"NINTH ",      "9TH   ",      "9TH   ",      6},
    {"NORTHEAST ",  "NE        ",  "NE        ",  10},
    {"NORTHWEST ",  "NW        ",  "NW        ",  10},
    {"ONE ",        "1   ",        "1   ",        4},
    {"PLAZA ",      "PZ    ",      "PZ    ",      6},
    {"PLZ ",        "PZ  ",        "PZ  ",        4},
    {"RANG ",       "     ",       "RG   ",       5},
    {"RG ",         "   ",         "RG ",         3},
    {"RUE ",        "    ",        "RUE ",        4},
    {"SECOND ",     "2ND    ",     "2ND    ",     7},
    {"SEVEN ",      "7     ",      "7     ",      6},
    {"SEVENTH ",    "7TH     ",    "7TH     ",    8},
    {"SIX ",        "6   ",        "6   ",        4},
    {"SIXTH ",      "6TH   ",      "6TH   ",      6},
    {"SOUTHEAST ",  "SE        ",  "SE        ",  10},
    {"SOUTHWEST ",  "SW        ",  "SW        ",  10},
    {"TEN ",        "10  ",        "10  ",        4},
    {"TENTH ",      "10TH  ",      "10TH  ",      6},
    {"THIRD ",      "3RD   ",      "3RD   ",      6},
    {"THIRTIETH ",  "30TH      ",  "30TH      ",  10},
    {"THREE ",      "3     ",      "3     ",      6},
    {"TWENTIETH ",  "20TH      ",  "20TH      ",  10},
    {"TWO ",        "2   ",        "2   ",        4},
}};
// clang-format on

inline constexpr size_t kRows = rows.size();
inline constexpr auto words = detail::column(rows, &Row::word);
inline constexpr auto recodes = detail::column(rows, &Row::recode);
inline constexpr auto recodes_new = detail::column(rows, &Row::recode_new);
inline constexpr auto lengths = detail::column(rows, &Row::length);

}  // namespace word_table

// Ordinal suffixes that m_fixord drops after a digit, each with the blank
// that must follow it.
inline constexpr std::array<std::string_view, 4> keywords = {"ST ", "ND ",
                                                             "RD ", "TH "};

// Business words that m_iwrdls shortens in place: the word, then what
// replaces its first bytes (the rest of the word becomes blanks).
struct BusinessWord {
  std::string_view word;
  std::string_view shortened;
};

inline constexpr std::array<BusinessWord, 5> business_words = {{
    {"+", "&"},
    {"AND", "&"},
    {"LIMITED", "LTD"},
    {"CORPORATION", "CORP"},
    {"INCORPORATED", "INC"},
}};

namespace detail {

template <size_t N>
constexpr bool lengths_agree(const std::array<std::string_view, N> &words,
                             const std::array<std::string_view, N> &recodes,
                             const std::array<int32_t, N> &lengths) {
  for (size_t i = 0; i < N; ++i) {
    if (words[i].size() != static_cast<size_t>(lengths[i])) return false;
    if (recodes[i].size() != words[i].size()) return false;
  }
  return true;
}

// Strictly ascending as unsigned bytes (char_traits<char> compares so).
template <size_t N>
constexpr bool strictly_ascending(const std::array<std::string_view, N> &w) {
  for (size_t i = 1; i < N; ++i) {
    if (!(w[i - 1] < w[i])) return false;
  }
  return true;
}

}  // namespace detail

static_assert(detail::lengths_agree(street_types::words, street_types::recodes,
                                    street_types::lengths),
              "a street-type replacement differs in length from its word");
static_assert(detail::lengths_agree(word_table::words, word_table::recodes,
                                    word_table::lengths),
              "an m_recode replacement differs in length from its word");
static_assert(detail::lengths_agree(word_table::words, word_table::recodes_new,
                                    word_table::lengths),
              "an m_recode_new replacement differs in length from its word");
static_assert(detail::strictly_ascending(word_table::words),
              "the binary search needs the word table in ascending order");

}  // namespace orlo

#endif  // ORLO_COMPARE_WORD_TABLES_H
