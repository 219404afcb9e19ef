#include "splitter/line_words.h"

#include <algorithm>
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

constexpr std::string_view kCompass[] = {"EAST", "WEST", "NORTH", "SOUTH"};

constexpr std::string_view kRoman[] = {"I",  "II",  "III",  "IV", "V",
                                       "VI", "VII", "VIII", "IX", "X"};

// Letters before "/F" in a floor word.
constexpr std::string_view kFloorLetters[] = {"G", "UG", "LG", "M", "B"};

constexpr std::string_view kTerritory[] = {"SAR", "CHINA", "PRC", "HKSAR"};

template <size_t N>
bool among(std::string_view word, const std::string_view (&set)[N]) {
  return std::find(std::begin(set), std::end(set), word) != std::end(set);
}

template <size_t N>
const Abbreviation *lookup(std::string_view word,
                           const Abbreviation (&table)[N]) {
  for (const Abbreviation &a : table)
    if (a.word == word) return &a;
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
  const Abbreviation *a = lookup(w, kAbbreviations);
  if (a == nullptr && after_street_type) a = lookup(w, kDirections);
  if (a != nullptr) w = a->full;
  std::memcpy(out, w.data(), w.size());
  return w.size();
}

bool street_type(std::string_view canon) {
  return among(canon, kStreetTypes);
}

bool direction(std::string_view canon) {
  return among(canon, kDirectionWords);
}

bool building_type(std::string_view canon) {
  return among(canon, kBuildingTypes);
}

bool unit_keyword(std::string_view word) {
  return among(word, kUnitKeywords);
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
      among(head.substr(0, head.size() - 1), kFloorLetters))
    return true;
  return among(head, kFloorLetters);
}

bool ordinal(std::string_view w) {
  size_t d = count_digits(w, 0);
  if (d == 0 || d > 3 || w.size() != d + 2) return false;
  std::string_view s = w.substr(d);
  return s == "ST" || s == "ND" || s == "RD" || s == "TH";
}

bool floor_noun(std::string_view word) {
  return among(word, kFloorNouns);
}

bool estate_keyword(std::string_view word) {
  return among(word, kEstateKeywords);
}

bool compass(std::string_view word) {
  return among(word, kCompass);
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
  return any_digit || w.size() <= 2 || among(w, kRoman);
}

bool estate_designator(std::string_view w) {
  if (w.empty() || w.size() > 4) return false;
  size_t d = count_digits(w, 0);
  if (d == w.size()) return d <= 3;
  if (d > 0) return d + 1 == w.size() && letter(w.back());  // 2B
  if (!letter(w[0])) return false;
  if (w.size() == 1 || among(w, kRoman)) return true;
  return count_digits(w, 1) == w.size() - 1;  // A1
}

std::string_view written_out_type(std::string_view word,
                                  bool after_street_type) {
  const Abbreviation *a = lookup(word, kAbbreviations);
  if (a == nullptr && after_street_type) a = lookup(word, kDirections);
  if (a == nullptr) return {};
  return street_type(a->full) || building_type(a->full) || direction(a->full)
             ? a->full
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
  return word == "NO";
}

bool territory_word(std::string_view word) {
  return among(word, kTerritory);
}

}  // namespace orlo::lines
