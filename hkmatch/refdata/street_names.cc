// Prepared street names of a region and their index for the fuzzy pass.
#include "hkmatch/refdata/street_names.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <string_view>

#include "hkmatch/refdata/reference_store.h"
#include "hkmatch/refdata/street_table.h"

namespace orlo {
namespace {

constexpr std::string_view kPoBox = "PO BOX ";

}  // namespace

RegionStreetNames::RegionStreetNames(const STREETENT *tab, int32_t count)
    : names_([&] {
        std::vector<std::array<char, kPaddedName>> padded(
            static_cast<size_t>(count));
        std::vector<const char *> fields;
        for (size_t i = 0; i < padded.size(); ++i) {
          pad_name(tab[i].sname, padded[i].data());
          fields.push_back(padded[i].data());
        }
        return PreparedStreetNames(fields.data(), count, kPaddedName, nullptr);
      }()) {
  keys_.resize(static_cast<size_t>(count));
  // stop[c]: the first name, not a "PO BOX " one, whose initial sorts after
  // c; the fuzzy pass ends there for an input with initial c.
  std::array<int32_t, 256> stop;
  stop.fill(count);
  unsigned lowest_open = 0;
  for (int32_t i = 0; i < count; ++i) {
    const STREETENT &e = tab[i];
    char p[kPaddedName];
    pad_name(e.sname, p);
    const auto *u = reinterpret_cast<const unsigned char *>(p);
    const size_t n = strnlen(e.sname, sizeof e.sname);
    Key &k = keys_[static_cast<size_t>(i)];
    k = {u[0],
         u[1],
         u[2],
         u[4],
         n > 0 ? u[n - 1] : u[0],
         n > 0,
         std::string_view(e.sname, n).starts_with(kPoBox)};
    if (k.po_box) continue;
    for (; lowest_open < k.c0; ++lowest_open) stop[lowest_open] = i;
  }
  for (int32_t i = 0; i < count; ++i) {
    const Key &k = keys_[static_cast<size_t>(i)];
    if (k.po_box || i >= stop[k.c0]) continue;
    const uint64_t at = static_cast<uint32_t>(i);
    const uint64_t c0 = k.c0;
    by_initial_.push_back((c0 << 32) | at);
    by_second_.push_back((((c0 << 8) | k.c1) << 32) | at);
    by_third_fifth_.push_back(
        (((c0 << 16) | (uint64_t{k.c2} << 8) | k.c4) << 32) | at);
  }
  std::sort(by_initial_.begin(), by_initial_.end());
  std::sort(by_second_.begin(), by_second_.end());
  std::sort(by_third_fifth_.begin(), by_third_fifth_.end());
}

std::pair<RegionStreetNames::Listing::const_iterator,
          RegionStreetNames::Listing::const_iterator>
RegionStreetNames::range(const Listing &l, uint32_t key) {
  const uint64_t low = uint64_t{key} << 32;
  const uint64_t high = low | 0xFFFFFFFFu;
  return {std::lower_bound(l.begin(), l.end(), low),
          std::upper_bound(l.begin(), l.end(), high)};
}

// The character tests after the initial: second and third, second and
// fifth, third and fifth, or second and last characters equal.
bool RegionStreetNames::admitted(const FuzzyInput &in, int32_t i) const {
  const Key &k = keys_[static_cast<size_t>(i)];
  const auto *p = reinterpret_cast<const unsigned char *>(in.padded);
  const bool second = p[1] == k.c1;
  const bool third = p[2] == k.c2;
  const bool fifth = p[4] == k.c4;
  if ((second && third) || (second && fifth) || (third && fifth)) return true;
  return second && in.len > 0 && k.has_last && p[in.len - 1] == k.last;
}

const RegionStreetNames *current_street_names(HKMCB *mcb) {
  return store_street_names(mcb);
}

}  // namespace orlo
