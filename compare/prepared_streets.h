// Street comparison against names prepared once: the interface that the
// matcher's search and the exported prepared comparison share.
//
// A PreparedStreetNames holds the form of every name of a list, made once;
// it is immutable after construction and may be read from any number of
// threads at once. A FirstStreet is one input street as m_street takes its
// first street: its form comes from the calling thread's street cache on the
// first comparison that needs it, so a run of scores equals, score for score
// and in its effect on that cache, the run of m_street calls it replaces.
#ifndef ORLO_COMPARE_PREPARED_STREETS_H
#define ORLO_COMPARE_PREPARED_STREETS_H

#include <cstdint>
#include <string_view>
#include <vector>

#include "compare/street_form.h"

namespace orlo {

// Street 1 of a run of comparisons on the calling thread. Not copyable; use
// on the thread that made it, with no other m_street call in between.
class FirstStreet {
 public:
  // Copies len bytes of street (NULL when len <= 0) as m_street does. The
  // options were read already (read_street_options).
  FirstStreet(const char *street, int32_t len, const StreetOptions &opt);
  FirstStreet(const FirstStreet &) = delete;
  FirstStreet &operator=(const FirstStreet &) = delete;

  int32_t len() const { return len_; }
  const char *raw() const { return area_.data(); }
  // The prepared form, taken through the thread's cache on first use.
  const StreetView &view();

 private:
  StreetArea area_;
  int32_t len_;
  StreetOptions opt_;
  bool formed_ = false;
  StreetView view_{};
};

class PreparedStreetNames {
 public:
  // Prepares count names, each a field of len bytes (clamped as m_street
  // clamps it) read from names[i], with the options read from `options`
  // (upper-cased on a copy; NULL for none). Allocates; throws
  // std::bad_alloc when storage fails.
  PreparedStreetNames(const char *const *names, int32_t count, int32_t len,
                      const char *options);

  int32_t size() const { return static_cast<int32_t>(entries_.size()); }
  int32_t len() const { return len_; }
  const StreetOptions &options() const { return opt_; }

  // m_street's score of the first street against name i (0 <= i < size()),
  // with the set's length and options. With only_90_up, a score below 90
  // may come out as another score below 90, for callers that keep only
  // names scoring 90 or more.
  int32_t score(FirstStreet &first, int32_t i, bool only_90_up = false) const;

 private:
  struct Entry {
    uint32_t bytes;  // raw, packed, skeleton, word text in pool_
    uint32_t words;  // first word in words_
    int16_t packed_len;
    int16_t skeleton_len;
    uint8_t word_count;
    uint8_t digit_words;
    uint64_t word_bits;
    StrictClass strict;
    bool blank;
  };
  StreetView view(int32_t i) const;

  int32_t len_;
  StreetOptions opt_;
  std::vector<Entry> entries_;
  std::vector<char> pool_;
  std::vector<StreetWord> words_;
};

}  // namespace orlo

#endif  // ORLO_COMPARE_PREPARED_STREETS_H
