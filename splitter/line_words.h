// The words that give an address line its shape: street and building
// types with their abbreviations, the words of the floor and unit line and
// of an estate's parts, premise numbers, and the words that name the
// territory rather than a place in it. Words are tidied (upper case) and
// compared without trailing dots.
#ifndef ORLO_SPLITTER_LINE_WORDS_H
#define ORLO_SPLITTER_LINE_WORDS_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orlo::lines {

// Room for a canonical word; longer words cannot be part of a name of the
// reference data (30 characters) and are cut, so that they match nothing.
inline constexpr size_t kCanonMax = 31;

// The form in which names are compared: apostrophes and dots dropped, and
// an abbreviation written out ("RD" is "ROAD", "BLDG" is "BUILDING",
// "QUEEN'S" is "QUEENS"). A single letter that follows a street type is a
// direction ("RD E" is "ROAD EAST"). Writes at most kCanonMax bytes into
// out and returns how many.
size_t canonical_word(std::string_view word, bool after_street_type, char *out);

// Canonical words that end a street name (ROAD, STREET, AVENUE, ...), and
// that may follow such a word to close it (EAST, WEST, ... CENTRAL).
bool street_type(std::string_view canon);
bool direction(std::string_view canon);

// Canonical words that end a building name (BUILDING, COURT, CENTRE, ...).
bool building_type(std::string_view canon);

// Words that open a flat, room, unit, shop or suite number (FLAT, RM, ...).
bool unit_keyword(std::string_view word);

// A floor written in one word: 12/F, G/F, UG/F, LG/F, B1/F, M/F, 3/FL,
// LG1, UG2.
bool floor_word(std::string_view word);

// An ordinal number: 1ST, 2ND, 12TH (and 1TH, as people write it).
bool ordinal(std::string_view word);

// The words that name a floor after an ordinal or before its number.
bool floor_noun(std::string_view word);

// Words that open a block, tower, phase or wing (BLOCK, BLK, PHASE, ...),
// and the compass words that come before WING.
bool estate_keyword(std::string_view word);
bool compass(std::string_view word);

// What may follow a unit keyword: a short code with a digit (1203, 6C, A1,
// 5-6), one or two letters, or a roman numeral.
bool designator(std::string_view word);

// What may follow an estate keyword: a number of up to three digits, one
// letter, a letter and a number or a number and a letter (A1, 2B), or a
// roman numeral; not a word such as the "WO" of "WING WO STREET".
bool estate_designator(std::string_view word);

// The written-out form of a street or building type, or of a direction
// after a street type, when word abbreviates one ("RD" gives "ROAD", "E"
// after a street type "EAST"); empty for any other word.
std::string_view written_out_type(std::string_view word,
                                  bool after_street_type);

// A premise number or range: 28, 28A, 28-32, 2A-2C (at most 8 characters).
bool premise_number(std::string_view word);

// "NO" as in "NO. 28".
bool number_sign(std::string_view word);

// Words that name the territory after a region or district ("SAR",
// "CHINA", "PRC", "HKSAR"); they place nothing.
bool territory_word(std::string_view word);

// What a word can be, by the tests above (those marked canonical on its
// canonical form), worked out once when a line is read; whether it is a
// designator is asked only after a keyword.
enum WordClass : uint16_t {
  kStreetType = 1 << 0,    // canonical
  kDirection = 1 << 1,     // canonical
  kBuildingType = 1 << 2,  // canonical
  kTerritory = 1 << 3,     // canonical
  kUnitKeyword = 1 << 4,
  kFloorWord = 1 << 5,
  kOrdinal = 1 << 6,
  kFloorNoun = 1 << 7,
  kEstateKeyword = 1 << 8,
  kCompass = 1 << 9,
  kPremiseNumber = 1 << 10,  // a premise number that is not an ordinal
  kNumberSign = 1 << 11,
};
uint16_t classify(std::string_view word, std::string_view canon);

}  // namespace orlo::lines

#endif  // ORLO_SPLITTER_LINE_WORDS_H
