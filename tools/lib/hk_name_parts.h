// Word lists from which the generator composes Hong Kong-style names:
// romanised Cantonese syllables, street and building kinds, and the
// districts of each region with their reference codes.
#ifndef ORLO_TOOLS_HK_NAME_PARTS_H
#define ORLO_TOOLS_HK_NAME_PARTS_H

#include <span>
#include <string_view>

namespace orlo::tools::hknames {

struct StreetKind {
  std::string_view word;  // "ROAD"
  std::string_view abbr;  // "RD", as written in address lines
};

struct District {
  std::string_view name;  // "TSIM SHA TSUI"
  std::string_view code;  // "TST", three characters
};

struct Region {
  std::string_view key;  // "HK", "KLN", "NT"
  std::span<const District> districts;
};

std::span<const std::string_view> syllables();
std::span<const StreetKind> street_kinds();
std::span<const std::string_view> building_kinds();
std::span<const Region> regions();

}  // namespace orlo::tools::hknames

#endif  // ORLO_TOOLS_HK_NAME_PARTS_H
