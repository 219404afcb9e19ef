// The street names of a region prepared once for the fuzzy pass: the
// comparison form of every name, and an index of the names by initial and
// leading characters that yields exactly the names the fuzzy pass's
// character tests let through, in table order and within its stop rule.
//
// A RegionStreetNames is built from a region's street table and immutable
// after construction, so any number of searches may read it at once: the
// reference store keeps one per region, built on first need and shared by
// every instance of the store.
#ifndef ORLO_HKMATCH_REFDATA_STREET_NAMES_H
#define ORLO_HKMATCH_REFDATA_STREET_NAMES_H

#include <cstdint>
#include <memory>
#include <vector>

#include "compare/prepared_streets.h"
#include "orlo_matcher.h"

namespace orlo {

// The input street of a fuzzy pass as its character tests read it.
struct FuzzyInput {
  const char *padded;  // 31 bytes, blank-padded
  size_t len;          // characters before the padding
  bool street_type;    // begins with a street-type word
};

class RegionStreetNames {
 public:
  // Prepares the count names of tab (blank-padded to 31 bytes, no options).
  // Throws std::bad_alloc when storage fails.
  RegionStreetNames(const STREETENT *tab, int32_t count);

  const PreparedStreetNames &names() const { return names_; }

  // Calls visit(i) for every entry i that the fuzzy pass hands to the
  // street comparison when the pass takes names by their characters (the
  // pass option is not 2): not a "PO BOX " name, the input's initial, one of
  // the character tests passed, and before the first other name whose
  // initial sorts after the input's. In table order; stops when visit
  // returns false. The input must not begin with a blank.
  template <typename Visit>
  void for_each_admitted(const FuzzyInput &in, Visit visit) const;

  // True for a "PO BOX " name, which the fuzzy pass never compares.
  bool po_box(int32_t i) const { return keys_[static_cast<size_t>(i)].po_box; }

 private:
  // The characters of a padded name that the tests read.
  struct Key {
    unsigned char c0, c1, c2, c4, last;  // last: the name's last character
    bool has_last;                       // the name is not empty
    bool po_box;
  };
  // Entries listed as (key << 32 | index), in order of key, then index.
  using Listing = std::vector<uint64_t>;

  bool admitted(const FuzzyInput &in, int32_t i) const;
  static std::pair<Listing::const_iterator, Listing::const_iterator> range(
      const Listing &l, uint32_t key);

  PreparedStreetNames names_;
  std::vector<Key> keys_;
  Listing by_initial_;      // key: initial
  Listing by_second_;       // key: initial, second character
  Listing by_third_fifth_;  // key: initial, third and fifth characters
};

template <typename Visit>
void RegionStreetNames::for_each_admitted(const FuzzyInput &in,
                                          Visit visit) const {
  const auto *p = reinterpret_cast<const unsigned char *>(in.padded);
  if (in.street_type) {
    // Every name with the input's initial is compared.
    auto [it, end] = range(by_initial_, p[0]);
    for (; it != end; ++it) {
      if (!visit(static_cast<int32_t>(*it & 0xFFFFFFFFu))) return;
    }
    return;
  }
  // Every test but the last-character one needs the second character or
  // both the third and fifth: the two listings merged in table order hold
  // every name that can pass.
  auto [a, a_end] = range(by_second_, (uint32_t{p[0]} << 8) | p[1]);
  auto [b, b_end] = range(
      by_third_fifth_, (uint32_t{p[0]} << 16) | (uint32_t{p[2]} << 8) | p[4]);
  while (a != a_end || b != b_end) {
    const uint32_t ia = a != a_end ? static_cast<uint32_t>(*a) : UINT32_MAX;
    const uint32_t ib = b != b_end ? static_cast<uint32_t>(*b) : UINT32_MAX;
    const uint32_t i = ia < ib ? ia : ib;
    if (ia == i) ++a;
    if (ib == i) ++b;
    if (admitted(in, static_cast<int32_t>(i)) &&
        !visit(static_cast<int32_t>(i))) {
      return;
    }
  }
}

// The prepared names of the instance's current region (lastidx, with its
// street table selected): the reference store's, made the first time any
// instance of the store needs them. nullptr when storage fails; the caller
// then compares name by name.
const RegionStreetNames *current_street_names(HKMCB *mcb);

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_STREET_NAMES_H
