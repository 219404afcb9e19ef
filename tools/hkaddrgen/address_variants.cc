#include "hkaddrgen/address_variants.h"

#include <cctype>
#include <string_view>

namespace orlo::tools::hkaddrgen {
namespace {

// The columns of an address row that the forms fill.
enum Column {
  kRefcode = 0,
  kPremno = 1,
  kStreet = 2,
  kBuilding = 3,
  kUnit = 4,
  kRegion = 7
};

struct Abbreviation {
  std::string_view word, abbreviation;
};

constexpr Abbreviation kAbbreviations[] = {
    {"ROAD", "RD"},       {"STREET", "ST"},   {"AVENUE", "AVE"},
    {"LANE", "LN"},       {"TERRACE", "TER"}, {"DRIVE", "DR"},
    {"CRESCENT", "CRES"}, {"CIRCUIT", "CCT"}, {"HIGHWAY", "HWY"},
};

constexpr std::string_view kUnknownStreets[] = {
    "HAPPY DRAGON ROAD", "MOON RIVER AVENUE", "SUNSHINE BOULEVARD",
    "PEARL ESPLANADE",   "GOLDEN CARP LANE",  "SILVER CLOUD STREET",
};

// How often each form is made, out of 100.
enum class Form {
  kFull,
  kAbbreviated,
  kWithBuilding,
  kTypo,
  kBuildingOnly,
  kUnknown
};
struct FormShare {
  Form form;
  int percent;
};
constexpr FormShare kForms[] = {
    {Form::kFull, 45}, {Form::kAbbreviated, 20}, {Form::kWithBuilding, 15},
    {Form::kTypo, 10}, {Form::kBuildingOnly, 5}, {Form::kUnknown, 5},
};

int pick(std::mt19937_64 &rng, int lo, int hi) {
  return std::uniform_int_distribution<int>(lo, hi)(rng);
}

long number_of(const std::string &text) {
  long n = 0;
  bool any = false;
  for (char c : text) {
    if (!std::isdigit(static_cast<unsigned char>(c))) continue;
    n = n * 10 + (c - '0');
    any = true;
    if (n > 99999) break;
  }
  return any ? n : -1;
}

// A house number inside the place's range, on its side of the street.
std::string premise_number(const ReferencePlace &p, std::mt19937_64 &rng) {
  if (!p.qual1.empty()) return "";
  long lo = number_of(p.low), hi = number_of(p.high);
  if (lo < 0) return "";
  if (hi < lo) return p.low.size() <= 8 ? p.low : "";
  long step = p.parity.empty() ? 1 : 2;
  long n = lo + step * pick(rng, 0, static_cast<int>((hi - lo) / step));
  return std::to_string(n);
}

std::string abbreviated(const std::string &street) {
  size_t space = street.rfind(' ');
  std::string_view last = std::string_view(street).substr(space + 1);
  for (const Abbreviation &a : kAbbreviations) {
    if (last == a.word) {
      return street.substr(0, space + 1) + std::string(a.abbreviation);
    }
  }
  return street;
}

// Drops, doubles or swaps one letter inside the name.
std::string with_typo(std::string s, std::mt19937_64 &rng) {
  if (s.size() < 4) return s;
  size_t i = static_cast<size_t>(pick(rng, 1, static_cast<int>(s.size()) - 3));
  switch (pick(rng, 0, 2)) {
    case 0:
      s.erase(i, 1);
      break;
    case 1:
      if (s.size() < 30) s.insert(i, 1, s[i]);
      break;
    default:
      std::swap(s[i], s[i + 1]);
      break;
  }
  return s;
}

std::string floor_unit(std::mt19937_64 &rng) {
  int floor = pick(rng, 1, 40);
  char flat = static_cast<char>('A' + pick(rng, 0, 7));
  switch (pick(rng, 0, 4)) {
    case 0:
      return std::to_string(floor) + "/F FLAT " + flat;
    case 1:
      return "FLAT " + std::string(1, flat) + " " + std::to_string(floor) +
             "/F";
    case 2:
      return "RM " + std::to_string(floor * 100 + pick(rng, 1, 20)) + " " +
             std::to_string(floor) + "/F";
    case 3:
      return "G/F SHOP " + std::to_string(pick(rng, 1, 30));
    default:
      return std::to_string(floor) + "/F";
  }
}

Form choose_form(std::mt19937_64 &rng) {
  int roll = pick(rng, 0, 99);
  for (const FormShare &f : kForms) {
    if (roll < f.percent) return f.form;
    roll -= f.percent;
  }
  return Form::kFull;
}

}  // namespace

AddressRow make_address(const ReferencePlace &p, std::mt19937_64 &rng) {
  AddressRow row;
  row[kRegion] = p.region;
  Form form = choose_form(rng);
  if (p.building.empty() &&
      (form == Form::kWithBuilding || form == Form::kBuildingOnly)) {
    form = Form::kFull;
  }
  switch (form) {
    case Form::kFull:
      row[kPremno] = premise_number(p, rng);
      row[kStreet] = p.street;
      break;
    case Form::kAbbreviated:
      row[kPremno] = premise_number(p, rng);
      row[kStreet] = abbreviated(p.street);
      break;
    case Form::kWithBuilding:
      row[kPremno] = premise_number(p, rng);
      row[kStreet] = p.street;
      row[kBuilding] = p.building;
      row[kUnit] = floor_unit(rng);
      break;
    case Form::kTypo:
      row[kPremno] = premise_number(p, rng);
      row[kStreet] = with_typo(p.street, rng);
      break;
    case Form::kBuildingOnly:
      row[kBuilding] = p.building;
      row[kUnit] = floor_unit(rng);
      break;
    case Form::kUnknown:
      row[kPremno] = std::to_string(pick(rng, 1, 200));
      row[kStreet] = std::string(kUnknownStreets[static_cast<size_t>(
          pick(rng, 0, std::size(kUnknownStreets) - 1))]);
      break;
  }
  // Without a house number people name the building.
  if (row[kPremno].empty() && row[kBuilding].empty() && form != Form::kUnknown)
    row[kBuilding] = p.building;
  // Some callers know the district's reference code.
  if (pick(rng, 0, 9) < 3 && form != Form::kUnknown) row[kRefcode] = p.refcode;
  return row;
}

}  // namespace orlo::tools::hkaddrgen
