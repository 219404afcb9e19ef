// Premise number parser: turns the free text of a premise (house) number into
// a result code and two (value, kind) pairs, so that input and reference
// numbers can be compared arithmetically, tested against ranges and checked
// for odd or even sides.
//
// The text is cleaned down to digits, capital letters, '/' and single blanks,
// mapped to a pattern ('N' digit, 'A' letter, ' ', '/') and looked up in eight
// pattern tables, one per class of text. Anything that fits no table is
// encoded as one number, so every text converts.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

#include "orlo_fields.h"
#include "orlo_matcher.h"

namespace orlo {
namespace {

// Longest text that converts; the work buffer holds it, its terminator and
// room to spare.
constexpr size_t kMaxText = 99;
constexpr size_t kWorkSize = 128;

constexpr int32_t kConverted = 0;
constexpr int32_t kTooLong = 1;
constexpr int32_t kEmpty = 2;

// Kinds of the two values.
constexpr char kNumber = 'N';
constexpr char kLetters = 'A';
constexpr char kFractionCode = 'F';
constexpr char kGrid = 'G';
constexpr char kFreeText = 'E';
constexpr char kNone = ' ';

constexpr char kBlank = ' ';

struct Parsed {
  int32_t v1 = 0;
  char k1 = kNone;
  int32_t v2 = 0;
  char k2 = kNone;
};

// ---- Pattern tables ---------------------------------------------------------

// Longest table entry: nine digits, a blank and two letters (12 characters).
constexpr size_t kPatternMax = 16;

struct Pattern {
  std::array<char, kPatternMax> text{};
  size_t len = 0;

  constexpr Pattern() = default;
  // Implicit on purpose, so that the tables can say digits(k) + " A".
  constexpr Pattern(const char *s) {  // NOLINT(google-explicit-constructor)
    while (*s != '\0') text[len++] = *s++;
  }
  constexpr std::string_view view() const { return {text.data(), len}; }
};

constexpr Pattern operator+(Pattern a, const Pattern &b) {
  for (size_t i = 0; i < b.len; ++i) a.text[a.len++] = b.text[i];
  return a;
}

// N×k: k digits in a row.
constexpr Pattern digits(int k) {
  Pattern p;
  for (int i = 0; i < k; ++i) p.text[p.len++] = 'N';
  return p;
}

// A table of exactly Count patterns; filling past Count does not compile.
template <size_t Count>
struct PatternTable {
  std::array<Pattern, Count> entries{};
  size_t filled = 0;

  constexpr void add(const Pattern &p) { entries[filled++] = p; }
  constexpr bool full() const { return filled == Count; }
};

template <size_t Count>
constexpr PatternTable<Count> listed(std::initializer_list<const char *> ps) {
  PatternTable<Count> t;
  for (const char *p : ps) t.add(p);
  return t;
}

// Number with a suffix of one or two letters, with or without a blank:
// N×k A; N×k AA; N×k, blank, A; N×k, blank, AA; k = 1..9 in each group.
constexpr auto type1_tab = [] {
  PatternTable<36> t;
  for (int k = 1; k <= 9; ++k) t.add(digits(k) + "A");
  for (int k = 1; k <= 9; ++k) t.add(digits(k) + "AA");
  for (int k = 1; k <= 9; ++k) t.add(digits(k) + " A");
  for (int k = 1; k <= 9; ++k) t.add(digits(k) + " AA");
  return t;
}();

// One or two letters before a number:
// A N×k; AA N×k; A, blank, N×k; AA, blank, N×k; k = 1..9 in each group.
constexpr auto type2_tab = [] {
  PatternTable<36> t;
  for (int k = 1; k <= 9; ++k) t.add("A" + digits(k));
  for (int k = 1; k <= 9; ++k) t.add("AA" + digits(k));
  for (int k = 1; k <= 9; ++k) t.add("A " + digits(k));
  for (int k = 1; k <= 9; ++k) t.add("AA " + digits(k));
  return t;
}();

// Two numbers separated by a blank: N×i, blank, N×j; i = 1..7, j = 1..4.
constexpr auto type3_tab = [] {
  PatternTable<28> t;
  for (int i = 1; i <= 7; ++i) {
    for (int j = 1; j <= 4; ++j) t.add(digits(i) + " " + digits(j));
  }
  return t;
}();

// Letters only.
constexpr auto type4_tab = listed<2>({"A", "AA"});

// Number and a one-digit fraction: N×i, blank, N, slash, N; i = 1..7.
constexpr auto type5_tab = [] {
  PatternTable<7> t;
  for (int i = 1; i <= 7; ++i) t.add(digits(i) + " N/N");
  return t;
}();

// Letter, number, letter, number: A, N×i, A, N×j; i = 1..5, j = 1..5.
constexpr auto type6_tab = [] {
  PatternTable<25> t;
  for (int i = 1; i <= 5; ++i) {
    for (int j = 1; j <= 5; ++j) t.add("A" + digits(i) + "A" + digits(j));
  }
  return t;
}();

// Number, letter, number.
constexpr auto type8_tab = listed<2>({"NNANNN", "NANNN"});

// Two numbers separated by a slash.
constexpr auto type9_tab = listed<7>(
    {"N/N", "N/NN", "NN/NN", "NN/NNN", "NNN/NNN", "NNN/NNNN", "NNNN/NNNNN"});

static_assert(type1_tab.full() && type2_tab.full() && type3_tab.full() &&
                  type4_tab.full() && type5_tab.full() && type6_tab.full() &&
                  type8_tab.full() && type9_tab.full(),
              "each rule gives exactly the entries of its table");

enum class TextClass {
  kNumberSuffix,    // type1_tab
  kLettersNumber,   // type2_tab
  kNumberPair,      // type3_tab
  kLettersOnly,     // type4_tab
  kNumberFraction,  // type5_tab
  kGridPair,        // type6_tab
  kNumberGrid,      // type8_tab
  kSlashPair,       // type9_tab
  kFreeText,        // no table
};

struct ClassTable {
  TextClass cls;
  std::span<const Pattern> patterns;
};

// The tables in the order they are searched.
constexpr std::array<ClassTable, 8> kClassTables = {{
    {TextClass::kNumberSuffix, type1_tab.entries},
    {TextClass::kLettersNumber, type2_tab.entries},
    {TextClass::kNumberPair, type3_tab.entries},
    {TextClass::kLettersOnly, type4_tab.entries},
    {TextClass::kNumberFraction, type5_tab.entries},
    {TextClass::kGridPair, type6_tab.entries},
    {TextClass::kNumberGrid, type8_tab.entries},
    {TextClass::kSlashPair, type9_tab.entries},
}};

// The search order would matter if a pattern stood twice; it must not.
constexpr bool every_pattern_once() {
  for (const ClassTable &a : kClassTables) {
    for (const Pattern &p : a.patterns) {
      for (const ClassTable &b : kClassTables) {
        for (const Pattern &q : b.patterns) {
          if (&p != &q && p.view() == q.view()) return false;
        }
      }
    }
  }
  return true;
}
static_assert(every_pattern_once(), "no pattern stands in two tables");

// ---- Value tables -----------------------------------------------------------

struct CompassOffset {
  char letter;
  int32_t offset;
};

constexpr std::array<CompassOffset, 4> kCompass = {{
    {'N', 1000000},
    {'S', 2000000},
    {'E', 3000000},
    {'W', 4000000},
}};

struct FractionCode {
  std::string_view text;
  int32_t code;
};

constexpr std::array<FractionCode, 5> kFractions = {{
    {"1/4", 1},
    {"1/3", 2},
    {"1/2", 3},
    {"2/3", 4},
    {"3/4", 5},
}};

// ---- Helpers ----------------------------------------------------------------

constexpr bool is_digit(unsigned char c) {
  return c >= '0' && c <= '9';
}
constexpr bool is_capital(unsigned char c) {
  return c >= 'A' && c <= 'Z';
}

// Bytes that can be part of a premise number; every other byte is blanked.
constexpr bool survives_cleaning(unsigned char c) {
  return is_digit(c) || is_capital(c) || c == '/';
}

bool all_digits(std::string_view s) {
  for (unsigned char c : s) {
    if (!is_digit(c)) return false;
  }
  return true;
}

// The value of a run of digits as strtol gives it with a 32-bit long: large
// values stop at 2147483647.
int32_t decimal_value(std::string_view run) {
  constexpr int64_t kLongMax = INT32_MAX;
  int64_t v = 0;
  for (unsigned char c : run) {
    v = v * 10 + (c - '0');
    if (v > kLongMax) return INT32_MAX;
  }
  return static_cast<int32_t>(v);
}

Parsed plain_number(std::string_view run) {
  return {decimal_value(run), kNumber, 0, kNone};
}

// Blanks the bytes that cannot be part of a premise number, then, if any was
// blanked (a blank counts), left-justifies and squeezes the text. The
// terminator is justified along with the text as an ordinary byte, so a blank
// just before the end of the text survives. Returns the cleaned text.
std::string_view clean(char *buf, size_t len) {
  bool blanked = false;
  for (size_t i = 0; i < len; ++i) {
    if (!survives_cleaning(static_cast<unsigned char>(buf[i]))) {
      buf[i] = kBlank;
      blanked = true;
    }
  }
  if (blanked) cm_lftadj(buf, static_cast<int32_t>(len + 1));
  return {buf, strnlen(buf, len + 1)};
}

char pattern_char(unsigned char c) {
  if (is_digit(c)) return 'N';
  if (c == kBlank || c == '/') return static_cast<char>(c);
  return 'A';
}

TextClass classify(std::string_view cleaned) {
  Pattern pattern;
  if (cleaned.size() > kPatternMax) return TextClass::kFreeText;
  for (unsigned char c : cleaned) pattern.text[pattern.len++] = pattern_char(c);
  for (const ClassTable &t : kClassTables) {
    for (const Pattern &p : t.patterns) {
      if (p.view() == pattern.view()) return t.cls;
    }
  }
  return TextClass::kFreeText;
}

// The numbers and the letters of a text that matched a table, in order. No
// table entry holds more than two of either.
struct Pieces {
  std::array<int32_t, 2> numbers{};
  std::array<char, 2> letters{};
  size_t number_count = 0;
  size_t letter_count = 0;
};

Pieces pieces_of(std::string_view s) {
  Pieces p;
  size_t i = 0;
  while (i < s.size()) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (is_digit(c)) {
      size_t end = i;
      while (end < s.size() && is_digit(static_cast<unsigned char>(s[end])))
        ++end;
      if (p.number_count < 2)
        p.numbers[p.number_count++] = decimal_value(s.substr(i, end - i));
      i = end;
      continue;
    }
    if (is_capital(c) && p.letter_count < 2) p.letters[p.letter_count++] = s[i];
    ++i;
  }
  return p;
}

// Character codes weighted by powers of ten from the right: AB is 65*10+66.
int32_t letter_value(const Pieces &p) {
  int32_t v = 0;
  for (size_t i = 0; i < p.letter_count; ++i) v = v * 10 + p.letters[i];
  return v;
}

// Character codes weighted by powers of ten from the left, in 32-bit
// arithmetic that wraps: a long text still gives a value, and equal texts
// give equal values.
int32_t free_text_value(std::string_view s) {
  uint32_t sum = 0;
  uint32_t weight = 1;
  for (unsigned char c : s) {
    sum += c * weight;
    weight *= 10;
  }
  return static_cast<int32_t>(sum);
}

Parsed free_text(std::string_view s) {
  return {free_text_value(s), kFreeText, 0, kNone};
}

std::optional<int32_t> compass_offset(char letter) {
  for (const CompassOffset &c : kCompass) {
    if (c.letter == letter) return c.offset;
  }
  return std::nullopt;
}

// A number and the fraction after its blank; an unknown fraction gives no
// second value.
Parsed number_fraction(const Pieces &p, std::string_view s) {
  const std::string_view fraction = s.substr(s.find(kBlank) + 1);
  for (const FractionCode &f : kFractions) {
    if (f.text == fraction)
      return {p.numbers[0], kNumber, f.code, kFractionCode};
  }
  return {p.numbers[0], kNumber, 0, kNone};
}

// Compass letter, number, compass letter, number.
std::optional<Parsed> grid_pair(const Pieces &p) {
  const auto first = compass_offset(p.letters[0]);
  const auto second = compass_offset(p.letters[1]);
  if (!first || !second) return std::nullopt;
  return Parsed{*first + p.numbers[0], kGrid, *second + p.numbers[1], kGrid};
}

// Number, compass letter, number; the first number takes no offset.
std::optional<Parsed> number_grid(const Pieces &p) {
  const auto offset = compass_offset(p.letters[0]);
  if (!offset) return std::nullopt;
  return Parsed{p.numbers[0], kGrid, *offset + p.numbers[1], kGrid};
}

// Converts a cleaned text by its class; nullopt when a grid text turns out
// not to have compass letters.
std::optional<Parsed> convert_class(TextClass cls, std::string_view s) {
  const Pieces p = pieces_of(s);
  switch (cls) {
    case TextClass::kNumberSuffix:
      return Parsed{p.numbers[0], kNumber, letter_value(p), kLetters};
    case TextClass::kLettersNumber:
      return Parsed{letter_value(p), kLetters, p.numbers[0], kNumber};
    case TextClass::kNumberPair:
    case TextClass::kSlashPair:
      return Parsed{p.numbers[0], kNumber, p.numbers[1], kNumber};
    case TextClass::kLettersOnly:
      return Parsed{letter_value(p), kLetters, 0, kNone};
    case TextClass::kNumberFraction:
      return number_fraction(p, s);
    case TextClass::kGridPair:
      return grid_pair(p);
    case TextClass::kNumberGrid:
      return number_grid(p);
    case TextClass::kFreeText:
      break;
  }
  return std::nullopt;
}

int32_t parse_premise(const char *text, Parsed &out) {
  const size_t len = strnlen(text, kMaxText + 1);
  if (len == 0) {
    out = Parsed{};
    return kEmpty;
  }
  if (len > kMaxText) return kTooLong;

  std::array<char, kWorkSize> work{};
  std::memcpy(work.data(), text, len);
  if (all_digits({work.data(), len})) {
    out = plain_number({work.data(), len});
    return kConverted;
  }

  const std::string_view cleaned = clean(work.data(), len);
  if (cleaned.empty()) {
    out = Parsed{};
    return kEmpty;
  }
  if (all_digits(cleaned)) {
    out = plain_number(cleaned);
    return kConverted;
  }
  const std::optional<Parsed> converted =
      convert_class(classify(cleaned), cleaned);
  out = converted ? *converted : free_text(cleaned);
  return kConverted;
}

}  // namespace
}  // namespace orlo

extern "C" int32_t hk_cvtr(const char *text, int32_t *v1, char *k1, int32_t *v2,
                           char *k2) {
  orlo::Parsed parsed;
  const int32_t rc = orlo::parse_premise(text, parsed);
  if (rc == orlo::kTooLong) return rc;  // the caller's values stay
  *v1 = parsed.v1;
  *k1 = parsed.k1;
  *v2 = parsed.v2;
  *k2 = parsed.k2;
  return rc;
}
