// Street name likeness through prepared forms.
//
// The first street of the last call is cached per thread with its recoded
// and packed areas and its form, because the matcher compares one input
// street with many reference streets in a row: such a run prepares the
// input once. The cache is keyed on the first street's bytes alone (not the
// options or the length), so a cached street is taken as it was prepared;
// when the length differs, its form is made again from the cached areas.
// Threads never see one another's cache and need no lock.
#include <cstring>

#include "compare/prepared_streets.h"
#include "compare/street_form.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

struct StreetCache {
  char lastra1[kStreetWorkLen];  // first street as it came, after folding
  StreetAreas areas;             // ... recoded, and packed
  StreetForm form;               // its form for fields of form_len bytes
  int32_t form_len;
};

// Zero at thread start; constant-initialised, so no per-thread constructor.
thread_local StreetCache street_cache{};

// The form of street 1 (copied into area), from the cache when the cache
// holds the same bytes.
const StreetForm &first_street_form(const StreetArea &area, int32_t len,
                                    const StreetOptions &opt) {
  StreetCache &cache = street_cache;
  if (std::memcmp(area.data(), cache.lastra1, static_cast<size_t>(len)) != 0) {
    std::memcpy(cache.lastra1, area.data(), kStreetWorkLen);
    recode_and_pack(area, len, opt, cache.areas);
  } else if (cache.form_len == len) {
    return cache.form;
  }
  make_form(area.data(), cache.areas, len, cache.form);
  cache.form_len = len;
  return cache.form;
}

int32_t compare_streets(const char *s1, const char *s2, int32_t len,
                        char *options) {
  const StreetOptions opt = read_street_options(options);
  FirstStreet a(s1, len, opt);
  len = a.len();
  StreetArea b;
  copy_street(b, s2, len, opt);
  if (std::memcmp(a.raw(), b.data(), static_cast<size_t>(len)) == 0 &&
      a.raw()[0] != ' ') {
    return 100;
  }
  StreetAreas areas_b;
  recode_and_pack(b, len, opt, areas_b);
  StreetForm fb;
  make_form(b.data(), areas_b, len, fb);
  return score_forms(a.view(), fb.view(), len);
}

}  // namespace

FirstStreet::FirstStreet(const char *street, int32_t len,
                         const StreetOptions &opt)
    : opt_(opt) {
  len_ = copy_street(area_, street, len, opt);
}

const StreetView &FirstStreet::view() {
  if (!formed_) {
    view_ = first_street_form(area_, len_, opt_).view();
    formed_ = true;
  }
  return view_;
}

}  // namespace orlo

extern "C" int32_t m_street(const char *s1, const char *s2, int32_t len,
                            char *options) {
  return orlo::compare_streets(s1, s2, len, options);
}
