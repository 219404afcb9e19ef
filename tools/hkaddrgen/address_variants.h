// Input addresses derived from reference records the way people write
// them: the street in full or abbreviated, a house number inside the
// reference range, floor and unit lines, building names with or without the
// street, the odd typing error, and a share that should not match at all.
#ifndef ORLO_TOOLS_HKADDRGEN_ADDRESS_VARIANTS_H
#define ORLO_TOOLS_HKADDRGEN_ADDRESS_VARIANTS_H

#include <array>
#include <random>
#include <string>

namespace orlo::tools::hkaddrgen {

// The parts of a reference record an address is made from.
struct ReferencePlace {
  std::string region;
  std::string street;
  std::string refcode;
  std::string building;
  std::string parity;  // "E", "O" or empty
  std::string qual1;   // "FLOOR", "SHOP" or empty
  std::string low;
  std::string high;
};

// One input row: refcode, premno, street, building, unit, extra, district,
// region, mode.
using AddressRow = std::array<std::string, 9>;

// Makes one address from the place, choosing the form with rng.
AddressRow make_address(const ReferencePlace &place, std::mt19937_64 &rng);

}  // namespace orlo::tools::hkaddrgen

#endif  // ORLO_TOOLS_HKADDRGEN_ADDRESS_VARIANTS_H
