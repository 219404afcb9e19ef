// Street names prepared once, and the exported prepared comparison: one
// input street scored against every name of a set in one call.
#include "compare/prepared_streets.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "compare/street_words.h"
#include "orlo_compare.h"

namespace orlo {

PreparedStreetNames::PreparedStreetNames(const char *const *names,
                                         int32_t count, int32_t len,
                                         const char *options) {
  std::string upper = options != nullptr ? options : "";
  opt_ = read_street_options(upper.data());
  len_ = std::clamp(len, 0, kStreetWorkLen);
  const size_t n = static_cast<size_t>(std::max(count, 0));
  entries_.reserve(n);
  // Room for the fixed part of every name and a short skeleton and word
  // list, so that the pool seldom grows.
  pool_.reserve(n * (std::max<size_t>(len_, 1) + 2 * len_ + kLookAhead + 12));
  words_.reserve(n * 4);
  const size_t raw = static_cast<size_t>(std::max(len_, 1));
  StreetForm form;
  for (size_t i = 0; i < n; ++i) {
    prepare_street(names[i], len, opt_, form);
    Entry e{static_cast<uint32_t>(pool_.size()),
            static_cast<uint32_t>(words_.size()),
            form.packed_len,
            form.skeleton_len,
            form.word_count,
            form.digit_words,
            form.word_bits,
            form.strict,
            form.blank};
    pool_.insert(pool_.end(), form.raw, form.raw + raw);
    pool_.insert(pool_.end(), form.packed, form.packed + len_ + kLookAhead);
    pool_.insert(pool_.end(), form.word_text, form.word_text + len_);
    pool_.insert(pool_.end(), form.skeleton,
                 form.skeleton + form.skeleton_len + 1);
    words_.insert(words_.end(), form.words, form.words + form.word_count);
    entries_.push_back(e);
  }
}

StreetView PreparedStreetNames::view(int32_t i) const {
  const Entry &e = entries_[static_cast<size_t>(i)];
  const char *raw = pool_.data() + e.bytes;
  const char *packed = raw + std::max(len_, 1);
  const char *word_text = packed + len_ + kLookAhead;
  const char *skeleton = word_text + len_;
  return {raw,
          packed,
          skeleton,
          word_text,
          words_.data() + e.words,
          e.packed_len,
          e.skeleton_len,
          e.word_count,
          e.digit_words,
          e.word_bits,
          e.strict,
          e.blank};
}

int32_t PreparedStreetNames::score(FirstStreet &first, int32_t i,
                                   bool only_90_up) const {
  const StreetView b = view(i);
  const size_t n = static_cast<size_t>(len_);
  // Raw identity settles before the first street's form is needed.
  if (same_field(first.raw(), b.raw, n) && first.raw()[0] != ' ') {
    return 100;
  }
  return score_forms(first.view(), b, len_, only_90_up);
}

}  // namespace orlo

struct MSTREETS {
  orlo::PreparedStreetNames names;
};

extern "C" MSTREETS *m_stprep(const char *const *names, int32_t count,
                              int32_t len, const char *options) {
  if (count < 0 || (count > 0 && names == nullptr)) return nullptr;
  try {
    return new MSTREETS{orlo::PreparedStreetNames(names, count, len, options)};
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}

extern "C" int32_t m_stmany(const MSTREETS *set, const char *street,
                            int32_t *scores) {
  if (set == nullptr || scores == nullptr) return -1;
  const orlo::PreparedStreetNames &names = set->names;
  orlo::FirstStreet first(street, names.len(), names.options());
  for (int32_t i = 0; i < names.size(); ++i) {
    scores[i] = names.score(first, i);
  }
  return names.size();
}

extern "C" void m_stfree(MSTREETS *set) {
  delete set;
}
