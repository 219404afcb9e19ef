// The names people give Hong Kong's three regions, and the districts and
// areas whose region goes without saying.
#ifndef ORLO_NORMALISE_REGION_NAMES_H
#define ORLO_NORMALISE_REGION_NAMES_H

#include <string_view>

namespace orlo::norm {

// The region keys of the reference index, in the order of
// orlo_norm_region_keys.
inline constexpr const char *kRegionKeys[] = {"HK", "KLN", "NT", nullptr};

// The key that a region spelling names, or nullptr.
const char *region_of_spelling(std::string_view text);

// The key of the district, area or region spelling that text names, or
// nullptr.
const char *region_of_place(std::string_view text);

}  // namespace orlo::norm

#endif  // ORLO_NORMALISE_REGION_NAMES_H
