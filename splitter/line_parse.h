// Reading a tidied address line: its words, and the part of the address
// that each word belongs to.
#ifndef ORLO_SPLITTER_LINE_PARSE_H
#define ORLO_SPLITTER_LINE_PARSE_H

#include <cstdint>
#include <string_view>

#include "orlo_lines.h"
#include "splitter/line_words.h"
#include "splitter/name_lexicon.h"

namespace orlo::lines {

// A line of ORLO_LINE_MAX_CHARS characters has at most this many words.
inline constexpr int kMaxWords = ORLO_LINE_MAX_CHARS / 2 + 1;

struct Word {
  std::string_view text;  // as tidied, without trailing dots
  char canon[kCanonMax];  // canonical_word of it
  uint8_t canon_len = 0;
  bool comma_after = false;  // a comma or semicolon follows it
  uint16_t classes = 0;      // its WordClass bits

  std::string_view canonical() const { return {canon, canon_len}; }
  bool is(WordClass c) const { return (classes & c) != 0; }
};

struct Words {
  Word at[kMaxWords];
  int count = 0;
};

// Splits a tidied line into words at blanks, commas and semicolons (words
// beyond kMaxWords are dropped; a line of ORLO_LINE_MAX_CHARS has none).
// The words point into `tidied`.
void read_words(std::string_view tidied, Words *out);

// The part of the address a word belongs to. kExtra is also what a word is
// until a part claims it.
enum class Part : uint8_t {
  kExtra,
  kUnit,
  kEstate,
  kPremno,
  kStreet,
  kBuilding,
  kDistrict,
  kRegion,
  kDropped,  // says nothing the record holds: "SAR", "NO." before a number
};

// How a street or building was recognised (for the note).
enum class Found : uint8_t {
  kNone,
  kNames,  // a name of the reference data
  kType,   // its last word is a street or building type
  kPlace,  // its place in the line: after the number, before the number
};

struct Reading {
  Part part[kMaxWords] = {};
  // The region key ("HK", "KLN", "NT") written or implied by the district,
  // or NULL; from_district when the district gave it.
  const char *region = nullptr;
  bool from_district = false;
  // A "HONG KONG" that may name the territory when a district of another
  // region came before it: its key, tried after the district's.
  const char *second_region = nullptr;
  // The district's words were read as the end of the street's name.
  bool district_in_street = false;
  Found street = Found::kNone;
  Found building = Found::kNone;
  // The regions whose reference data holds the street and the building
  // under these names (0 when not a name of the reference data).
  RegionMask street_regions = 0;
  RegionMask building_regions = 0;
  // The street and building as the reference data spells them, when they
  // are its names (empty otherwise); they point into the lexicon.
  std::string_view street_name;
  std::string_view building_name;
};

// Reads the words into one or two readings, the more likely first (two
// when the last words may name a district or end the street's name, as
// "CONNAUGHT ROAD CENTRAL"). names may be NULL. Returns the number of
// readings.
int read_line(const Words &words, const NameLexicon *names,
              Reading (&readings)[2]);

}  // namespace orlo::lines

#endif  // ORLO_SPLITTER_LINE_PARSE_H
