#include "splitter/line_words.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace orlo::lines {
namespace {

struct Abbreviation {
  std::string_view word, full;
};

// Abbreviations of street types, building types and the words of names.
constexpr Abbreviation kAbbreviations[] = {
    {"RD", "ROAD"},         {"ST", "STREET"},       {"STR", "STREET"},
    {"AVE", "AVENUE"},      {"AV", "AVENUE"},       {"LN", "LANE"},
    {"TER", "TERRACE"},     {"TERR", "TERRACE"},    {"DR", "DRIVE"},
    {"CRES", "CRESCENT"},   {"CCT", "CIRCUIT"},     {"HWY", "HIGHWAY"},
    {"SQ", "SQUARE"},       {"PL", "PLACE"},        {"BLVD", "BOULEVARD"},
    {"ESP", "ESPLANADE"},   {"BLDG", "BUILDING"},   {"BLD", "BUILDING"},
    {"BLDGS", "BUILDINGS"}, {"CTR", "CENTRE"},      {"CTRE", "CENTRE"},
    {"CENTER", "CENTRE"},   {"CT", "COURT"},        {"CRT", "COURT"},
    {"GDN", "GARDEN"},      {"GDNS", "GARDENS"},    {"HSE", "HOUSE"},
    {"PLZ", "PLAZA"},       {"TWR", "TOWER"},       {"TWRS", "TOWERS"},
    {"EST", "ESTATE"},      {"IND", "INDUSTRIAL"},  {"INDL", "INDUSTRIAL"},
    {"COMM", "COMMERCIAL"}, {"COML", "COMMERCIAL"}, {"HTS", "HEIGHTS"},
    {"APTS", "APARTMENTS"}, {"MT", "MOUNT"},
};

// Single letters after a street type.
constexpr Abbreviation kDirections[] = {
    {"E", "EAST"},  {"W", "WEST"},    {"N", "NORTH"},
    {"S", "SOUTH"}, {"C", "CENTRAL"},
};

constexpr std::string_view kStreetTypes[] = {
    "ROAD",      "STREET",    "AVENUE",   "LANE",   "TERRACE", "DRIVE",
    "CRESCENT",  "CIRCUIT",   "HIGHWAY",  "PATH",   "SQUARE",  "PLACE",
    "BOULEVARD", "ESPLANADE", "PRAYA",    "STRAND", "ROW",     "WAY",
    "BYPASS",    "PROMENADE", "QUADRANT",
};

constexpr std::string_view kDirectionWords[] = {"EAST", "WEST", "NORTH",
                                                "SOUTH", "CENTRAL"};

constexpr std::string_view kBuildingTypes[] = {
    "BUILDING", "BUILDINGS", "CENTRE", "COURT",   "HOUSE",      "PLAZA",
    "MANSION",  "MANSIONS",  "GARDEN", "GARDENS", "TOWER",      "TOWERS",
    "ESTATE",   "VILLA",     "VILLAS", "HEIGHTS", "APARTMENTS", "ARCADE",
    "CHAMBERS", "MALL",      "LODGE",  "MANOR",   "HALL",       "COMPLEX",
};

constexpr std::string_view kUnitKeywords[] = {
    "FLAT", "FLT", "ROOM", "RM", "UNIT", "SHOP", "SUITE", "APARTMENT", "APT",
};

constexpr std::string_view kFloorNouns[] = {"FLOOR", "FL", "FLR", "F"};

constexpr std::string_view kEstateKeywords[] = {
    "BLOCK", "BLK", "TOWER", "TWR", "PHASE", "PH", "WING",
};

constexpr std::string_view kCompassWords[] = {"EAST", "WEST", "NORTH", "SOUTH"};

constexpr std::string_view kRoman[] = {"I",  "II",  "III",  "IV", "V",
                                       "VI", "VII", "VIII", "IX", "X"};

// Letters before "/F" in a floor word.
constexpr std::string_view kFloorLetters[] = {"G", "UG", "LG", "M", "B"};

constexpr std::string_view kTerritoryWords[] = {"SAR", "CHINA", "PRC", "HKSAR"};

// Every word of the tables above with what it is (as a word and as a
// canonical word) and, for an abbreviation, its written-out form: an open
// hash table built when the library is compiled, so that classifying a word
// of a line costs a probe or two.
struct Keyword {
  std::string_view word;
  uint16_t as_word = 0;        // WordClass bits of the word as written
  uint16_t as_canon = 0;       // WordClass bits of the word as canonical form
  std::string_view full;       // written out, for an abbreviation
  std::string_view direction;  // written out after a street type
  bool roman = false;
  bool floor_letters = false;  // before "/F": G/F, UG/F, LG/F, M/F, B/F
};

constexpr size_t kKeywordSlots = 512;

constexpr size_t keyword_hash(std::string_view w) {
  size_t h = w.size();
  for (char c : w) h = h * 131 + static_cast<unsigned char>(c);
  return h % kKeywordSlots;
}

struct KeywordTable {
  std::array<Keyword, kKeywordSlots> slots{};

  constexpr Keyword &at(std::string_view w) {
    size_t h = keyword_hash(w);
    while (!slots[h].word.empty() && slots[h].word != w)
      h = (h + 1) % kKeywordSlots;
    slots[h].word = w;
    return slots[h];
  }
  const Keyword *find(std::string_view w) const {
    if (w.empty()) return nullptr;
    size_t h = keyword_hash(w);
    while (!slots[h].word.empty()) {
      if (slots[h].word == w) return &slots[h];
      h = (h + 1) % kKeywordSlots;
    }
    return nullptr;
  }
};

template <size_t N>
constexpr void add_words(KeywordTable &t, const std::string_view (&words)[N],
                         uint16_t as_word, uint16_t as_canon) {
  for (std::string_view w : words) {
    t.at(w).as_word |= as_word;
    t.at(w).as_canon |= as_canon;
  }
}

constexpr KeywordTable make_keywords() {
  KeywordTable t;
  for (const Abbreviation &a : kAbbreviations) t.at(a.word).full = a.full;
  for (const Abbreviation &a : kDirections) t.at(a.word).direction = a.full;
  add_words(t, kStreetTypes, 0, kStreetType);
  add_words(t, kDirectionWords, 0, kDirection);
  add_words(t, kBuildingTypes, 0, kBuildingType);
  add_words(t, kTerritoryWords, 0, kTerritory);
  add_words(t, kUnitKeywords, kUnitKeyword, 0);
  add_words(t, kFloorNouns, kFloorNoun, 0);
  add_words(t, kEstateKeywords, kEstateKeyword, 0);
  add_words(t, kCompassWords, kCompass, 0);
  for (std::string_view w : kRoman) t.at(w).roman = true;
  for (std::string_view w : kFloorLetters) t.at(w).floor_letters = true;
  t.at("NO").as_word |= kNumberSign;
  return t;
}

constexpr KeywordTable kKeywords = make_keywords();

uint16_t canon_classes(std::string_view canon) {
  const Keyword *k = kKeywords.find(canon);
  return k != nullptr ? k->as_canon : 0;
}
uint16_t word_classes(std::string_view word) {
  const Keyword *k = kKeywords.find(word);
  return k != nullptr ? k->as_word : 0;
}
bool roman(std::string_view w) {
  const Keyword *k = kKeywords.find(w);
  return k != nullptr && k->roman;
}
bool floor_letters(std::string_view w) {
  const Keyword *k = kKeywords.find(w);
  return k != nullptr && k->floor_letters;
}

// The written-out form of an abbreviation (a direction only after a street
// type), or NULL.
const std::string_view *written_out(std::string_view w, bool after_type) {
  const Keyword *k = kKeywords.find(w);
  if (k == nullptr) return nullptr;
  if (!k->full.empty()) return &k->full;
  if (after_type && !k->direction.empty()) return &k->direction;
  return nullptr;
}

bool digit(char c) {
  return c >= '0' && c <= '9';
}
bool letter(char c) {
  return c >= 'A' && c <= 'Z';
}

size_t count_digits(std::string_view w, size_t from) {
  size_t n = 0;
  while (from + n < w.size() && digit(w[from + n])) ++n;
  return n;
}

// Digits, then up to `letters` letters, from `from`; the position after.
size_t number_part(std::string_view w, size_t from, size_t letters) {
  size_t d = count_digits(w, from);
  if (d == 0 || d > 5) return std::string_view::npos;
  size_t at = from + d;
  for (size_t k = 0; k < letters && at < w.size() && letter(w[at]); ++k) ++at;
  return at;
}

}  // namespace

size_t canonical_word(std::string_view word, bool after_street_type,
                      char *out) {
  // Dots and apostrophes are dropped first, so that "RD." and "QUEEN'S"
  // are read as "RD" and "QUEENS".
  char plain[kCanonMax];
  size_t n = 0;
  for (char c : word) {
    if (c == '.' || c == '\'') continue;
    if (n == kCanonMax) break;
    plain[n++] = c;
  }
  std::string_view w(plain, n);
  if (const std::string_view *full = written_out(w, after_street_type))
    w = *full;
  std::memcpy(out, w.data(), w.size());
  return w.size();
}

bool street_type(std::string_view canon) {
  return (canon_classes(canon) & kStreetType) != 0;
}

bool direction(std::string_view canon) {
  return (canon_classes(canon) & kDirection) != 0;
}

bool building_type(std::string_view canon) {
  return (canon_classes(canon) & kBuildingType) != 0;
}

bool unit_keyword(std::string_view word) {
  return (word_classes(word) & kUnitKeyword) != 0;
}

bool floor_word(std::string_view w) {
  // LG1, LG2, UG1: a lower or upper ground floor by its number.
  if (w.size() == 3 && (w.starts_with("LG") || w.starts_with("UG")) &&
      digit(w[2]))
    return true;
  size_t slash = w.find('/');
  if (slash == std::string_view::npos || slash == 0) return false;
  std::string_view tail = w.substr(slash + 1);
  if (tail != "F" && tail != "FL") return false;
  std::string_view head = w.substr(0, slash);
  if (count_digits(head, 0) == head.size()) return head.size() <= 3;
  // B1/F, LG2/F: letters with one digit.
  if (head.size() >= 2 && digit(head.back()) &&
      floor_letters(head.substr(0, head.size() - 1)))
    return true;
  return floor_letters(head);
}

bool ordinal(std::string_view w) {
  size_t d = count_digits(w, 0);
  if (d == 0 || d > 3 || w.size() != d + 2) return false;
  std::string_view s = w.substr(d);
  return s == "ST" || s == "ND" || s == "RD" || s == "TH";
}

bool floor_noun(std::string_view word) {
  return (word_classes(word) & kFloorNoun) != 0;
}

bool estate_keyword(std::string_view word) {
  return (word_classes(word) & kEstateKeyword) != 0;
}

bool compass(std::string_view word) {
  return (word_classes(word) & kCompass) != 0;
}

bool designator(std::string_view w) {
  if (w.empty() || w.size() > 6) return false;
  bool any_digit = false;
  for (char c : w) {
    if (!digit(c) && !letter(c) && c != '-' && c != '&' && c != '/')
      return false;
    any_digit = any_digit || digit(c);
  }
  if (!digit(w[0]) && !letter(w[0])) return false;
  return any_digit || w.size() <= 2 || roman(w);
}

bool estate_designator(std::string_view w) {
  if (w.empty() || w.size() > 4) return false;
  size_t d = count_digits(w, 0);
  if (d == w.size()) return d <= 3;
  if (d > 0) return d + 1 == w.size() && letter(w.back());  // 2B
  if (!letter(w[0])) return false;
  if (w.size() == 1 || roman(w)) return true;
  return count_digits(w, 1) == w.size() - 1;  // A1
}

std::string_view written_out_type(std::string_view word,
                                  bool after_street_type) {
  const std::string_view *full = written_out(word, after_street_type);
  if (full == nullptr) return {};
  return canon_classes(*full) & (kStreetType | kBuildingType | kDirection)
             ? *full
             : std::string_view{};
}

bool premise_number(std::string_view w) {
  if (w.empty() || w.size() > 8) return false;
  size_t at = number_part(w, 0, 2);
  if (at == std::string_view::npos) return false;
  if (at == w.size()) return true;
  if (w[at] != '-') return false;
  return number_part(w, at + 1, 2) == w.size();
}

bool number_sign(std::string_view word) {
  return (word_classes(word) & kNumberSign) != 0;
}

bool territory_word(std::string_view word) {
  return (canon_classes(word) & kTerritory) != 0;
}

uint16_t classify(std::string_view word, std::string_view canon) {
  const Keyword *k = kKeywords.find(word);
  uint16_t classes = k != nullptr ? k->as_word : 0;
  if (canon == word) {
    classes |= k != nullptr ? k->as_canon : 0;
  } else {
    classes |= canon_classes(canon);
  }
  // The shapes: floors, ordinals, codes and numbers, none of them longer
  // than a premise number or starting other than with a letter or digit.
  if (word.empty() || word.size() > 8 || (!digit(word[0]) && !letter(word[0])))
    return classes;
  if (floor_word(word)) classes |= kFloorWord;
  if (ordinal(word)) {
    classes |= kOrdinal;
  } else if (premise_number(word)) {
    classes |= kPremiseNumber;
  }
  return classes;
}

}  // namespace orlo::lines
