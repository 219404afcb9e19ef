#include "splitter/name_lexicon.h"

#include <cstring>
#include <memory>
#include <new>

#include "orlo_codes.h"
#include "splitter/line_words.h"

namespace orlo::lines {
namespace {

RegionMask bit_of(int32_t region) {
  return region >= 0 && region < 32 ? RegionMask{1} << region : 0;
}

void add_name(void *lexicon, NameKind kind, int32_t region,
              std::string_view name) {
  static_cast<NameLexicon *>(lexicon)->add(kind, region, name);
}

}  // namespace

size_t canonical_name(std::string_view name, char (&key)[kKeyMax],
                      uint8_t *words) {
  size_t len = 0;
  uint8_t count = 0;
  bool after_type = false;
  while (!name.empty()) {
    size_t blank = name.find(' ');
    std::string_view word = name.substr(0, blank);
    name = blank == std::string_view::npos ? "" : name.substr(blank + 1);
    if (word.empty()) continue;
    char canon[kCanonMax];
    size_t n = canonical_word(word, after_type, canon);
    if (n == 0) continue;
    after_type = street_type({canon, n});
    if (len + n + (len > 0) > kKeyMax) break;
    if (len > 0) key[len++] = ' ';
    std::memcpy(key + len, canon, n);
    len += n;
    ++count;
  }
  *words = count;
  return len;
}

uint32_t NameLexicon::slot_of(std::string_view key, uint64_t hash) const {
  const uint32_t mask = static_cast<uint32_t>(slots_.size() - 1);
  uint32_t s = static_cast<uint32_t>(hash) & mask;
  while (slots_[s] != 0) {
    const NameEntry &e = entries_[slots_[s] - 1];
    if (std::string_view(text_.data() + e.text, e.length) == key) break;
    s = (s + 1) & mask;
  }
  return s;
}

void NameLexicon::grow() {
  std::vector<uint32_t> old;
  old.swap(slots_);
  slots_.assign(old.empty() ? 1024 : old.size() * 2, 0);
  for (uint32_t i = 0; i < entries_.size(); ++i) {
    const NameEntry &e = entries_[i];
    std::string_view key(text_.data() + e.text, e.length);
    slots_[slot_of(key, name_hash(key))] = i + 1;
  }
}

void NameLexicon::add(NameKind kind, int32_t region, std::string_view name) {
  char key[kKeyMax];
  uint8_t words = 0;
  std::string_view k(key, canonical_name(name, key, &words));
  if (k.empty()) return;
  if ((entries_.size() + 1) * 2 > slots_.size()) grow();
  uint32_t s = slot_of(k, name_hash(k));
  if (slots_[s] == 0) {
    NameEntry e{};
    e.text = static_cast<uint32_t>(text_.size());
    e.length = static_cast<uint16_t>(k.size());
    e.words = words;
    entries_.push_back(e);
    text_.insert(text_.end(), k.begin(), k.end());
    slots_[s] = static_cast<uint32_t>(entries_.size());
    if (words > max_words_) max_words_ = words;
  }
  NameEntry &e = entries_[slots_[s] - 1];
  const bool street = kind == NameKind::kStreet;
  (street ? e.streets : e.buildings) |= bit_of(region);
  uint8_t &spelt = street ? e.street_length : e.building_length;
  if (spelt == 0 && name.size() <= 255) {
    (street ? e.street_spelling : e.building_spelling) =
        static_cast<uint32_t>(text_.size());
    spelt = static_cast<uint8_t>(name.size());
    text_.insert(text_.end(), name.begin(), name.end());
  }
}

std::string_view NameLexicon::spelling(const NameEntry &e,
                                       NameKind kind) const {
  return kind == NameKind::kStreet
             ? std::string_view(text_.data() + e.street_spelling,
                                e.street_length)
             : std::string_view(text_.data() + e.building_spelling,
                                e.building_length);
}

const NameEntry *NameLexicon::find(std::string_view key) const {
  return find(key, name_hash(key));
}

const NameEntry *NameLexicon::find(std::string_view key, uint64_t hash) const {
  if (slots_.empty() || key.empty()) return nullptr;
  uint32_t s = slot_of(key, hash);
  return slots_[s] != 0 ? &entries_[slots_[s] - 1] : nullptr;
}

const NameLexicon *lexicon_of(HKMCB *m) {
  if (m == nullptr || m->store == nullptr || m->opened != 1 || m->state != 'O')
    return nullptr;
  if (const StoreAttachment *a = store_attachment(m))
    return dynamic_cast<const NameLexicon *>(a);
  try {
    auto made = std::make_unique<NameLexicon>();
    // Names of a region or block that cannot be read are left out: the
    // searches that need them report the damage themselves.
    if (visit_reference_names(m, add_name, made.get(), nullptr) != HKRC_OK)
      return nullptr;
    return dynamic_cast<const NameLexicon *>(
        publish_store_attachment(m, std::move(made)));
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}

}  // namespace orlo::lines
