#include "lib/hk_name_parts.h"

#include <array>

namespace orlo::tools::hknames {

namespace {

constexpr std::array<std::string_view, 64> kSyllables = {
    "TAI",  "PO",     "SHA",  "TIN",  "WAN",   "CHAI", "KWUN",  "TONG",
    "MONG", "KOK",    "YAU",  "MA",   "TEI",   "SHAM", "SHUI",  "PING",
    "LAI",  "CHI",    "CHOI", "WONG", "HOM",   "HUNG", "HOI",   "KING",
    "FUK",  "WING",   "ON",   "LOK",  "SHING", "KAM",  "TSUEN", "WAI",
    "LUNG", "CHEUNG", "SAI",  "YING", "PUN",   "SHAN", "FU",    "YUEN",
    "TSZ",  "WO",     "HING", "NGAU", "CHUK",  "LAM",  "KWAI",  "TSING",
    "YI",   "TUEN",   "MUN",  "KONG", "LONG",  "SHEK", "KIP",   "MEI",
    "HANG", "FA",     "YAN",  "PAK",  "KEI",   "TAK",  "CHUN",  "SUN"};

constexpr std::array<StreetKind, 12> kStreetKinds = {{{"ROAD", "RD"},
                                                      {"STREET", "ST"},
                                                      {"LANE", "LN"},
                                                      {"AVENUE", "AVE"},
                                                      {"TERRACE", "TER"},
                                                      {"PATH", "PATH"},
                                                      {"CRESCENT", "CRES"},
                                                      {"DRIVE", "DR"},
                                                      {"SQUARE", "SQ"},
                                                      {"WAY", "WAY"},
                                                      {"CIRCUIT", "CCT"},
                                                      {"ROAD EAST", "RD E"}}};

constexpr std::array<std::string_view, 11> kBuildingKinds = {
    "BUILDING",
    "MANSION",
    "MANSIONS",
    "HOUSE",
    "CENTRE",
    "COURT",
    "GARDEN",
    "TOWER",
    "PLAZA",
    "INDUSTRIAL BUILDING",
    "COMMERCIAL BUILDING"};

constexpr std::array<District, 8> kHongKongIsland = {{{"CENTRAL", "CEN"},
                                                      {"SHEUNG WAN", "SWN"},
                                                      {"WAN CHAI", "WCH"},
                                                      {"CAUSEWAY BAY", "CWB"},
                                                      {"NORTH POINT", "NPT"},
                                                      {"QUARRY BAY", "QBY"},
                                                      {"ABERDEEN", "ABD"},
                                                      {"CHAI WAN", "CWN"}}};

constexpr std::array<District, 8> kKowloon = {{{"TSIM SHA TSUI", "TST"},
                                               {"YAU MA TEI", "YMT"},
                                               {"MONG KOK", "MKK"},
                                               {"SHAM SHUI PO", "SSP"},
                                               {"KOWLOON CITY", "KLC"},
                                               {"HUNG HOM", "HHM"},
                                               {"KWUN TONG", "KWT"},
                                               {"WONG TAI SIN", "WTS"}}};

constexpr std::array<District, 8> kNewTerritories = {{{"SHA TIN", "STN"},
                                                      {"TAI PO", "TPO"},
                                                      {"TSUEN WAN", "TSW"},
                                                      {"KWAI CHUNG", "KWC"},
                                                      {"TUEN MUN", "TMN"},
                                                      {"YUEN LONG", "YLG"},
                                                      {"FANLING", "FLG"},
                                                      {"SAI KUNG", "SKG"}}};

constexpr std::array<Region, 3> kRegions = {
    {{"HK", kHongKongIsland}, {"KLN", kKowloon}, {"NT", kNewTerritories}}};

}  // namespace

std::span<const std::string_view> syllables() {
  return kSyllables;
}
std::span<const StreetKind> street_kinds() {
  return kStreetKinds;
}
std::span<const std::string_view> building_kinds() {
  return kBuildingKinds;
}
std::span<const Region> regions() {
  return kRegions;
}

}  // namespace orlo::tools::hknames
