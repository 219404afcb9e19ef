// The street and building names of a reference database in the form the
// splitter looks them up: each name as its canonical words (abbreviations
// written out, apostrophes and dots dropped) joined by single blanks, with
// the regions it occurs in. Built once per reference store from its files
// and kept with the store, read-only, for every instance and thread.
#ifndef ORLO_SPLITTER_NAME_LEXICON_H
#define ORLO_SPLITTER_NAME_LEXICON_H

#include <cstdint>
#include <string_view>
#include <vector>

#include "hkmatch/refdata/reference_names.h"
#include "orlo_matcher.h"

namespace orlo::lines {

// Regions beyond the 32nd of an index are not told apart.
using RegionMask = uint32_t;

struct NameEntry {
  uint32_t text;       // offset of the canonical name in the lexicon's text
  uint16_t length;     // its length
  uint8_t words;       // its number of words
  RegionMask streets;  // bit r: a street of region r of the index
  RegionMask buildings;
  // The name as the reference data spells it, as a street and as a
  // building (the first spelling met; length 0 when not one).
  uint32_t street_spelling = 0;
  uint32_t building_spelling = 0;
  uint8_t street_length = 0;
  uint8_t building_length = 0;
};

// Room for a canonical name: 30 characters of the reference data with
// their abbreviations written out.
inline constexpr size_t kKeyMax = 96;

// The hash of a canonical name, and of it with more bytes appended.
inline constexpr uint64_t kNameHashStart = 0xCBF29CE484222325ull;  // FNV-1a
constexpr uint64_t name_hash_more(uint64_t h, std::string_view more) {
  for (char c : more) {
    h ^= static_cast<unsigned char>(c);
    h *= 0x100000001B3ull;
  }
  return h;
}
constexpr uint64_t name_hash(std::string_view key) {
  return name_hash_more(kNameHashStart, key);
}

// Writes the canonical form of a name (words separated by blanks) into
// key; returns its length and the number of words in *words.
size_t canonical_name(std::string_view name, char (&key)[kKeyMax],
                      uint8_t *words);

class NameLexicon final : public StoreAttachment {
 public:
  // An empty lexicon: every lookup fails.
  NameLexicon() = default;

  // Adds a name of the given kind and region. May throw std::bad_alloc.
  void add(NameKind kind, int32_t region, std::string_view name);

  // The entry whose canonical name is key, or NULL. hash is
  // name_hash(key), which a caller that extends a key word by word can
  // carry forward with name_hash_more.
  const NameEntry *find(std::string_view key) const;
  const NameEntry *find(std::string_view key, uint64_t hash) const;

  // How the reference data spells the entry's name as a street or building
  // (empty when it is not one). Valid as long as the lexicon.
  std::string_view spelling(const NameEntry &e, NameKind kind) const;

  // The most words of any name.
  uint8_t max_words() const { return max_words_; }
  size_t size() const { return entries_.size(); }

 private:
  uint32_t slot_of(std::string_view key, uint64_t hash) const;
  void grow();

  std::vector<char> text_;
  std::vector<NameEntry> entries_;
  std::vector<uint32_t> slots_;  // entry index + 1; 0 is free
  uint8_t max_words_ = 0;
};

// The lexicon of instance m's store: the one kept with the store, else one
// built from m's reference files and published there. NULL when m has no
// open store or storage fails (the line is then split by shape alone).
const NameLexicon *lexicon_of(HKMCB *m);

}  // namespace orlo::lines

#endif  // ORLO_SPLITTER_NAME_LEXICON_H
