// Small helpers over the word nodes of the comparison routines.
#ifndef ORLO_COMPARE_WORD_NODES_H
#define ORLO_COMPARE_WORD_NODES_H

#include <cstring>

#include "orlo_compare.h"

namespace orlo {

// Room for the words of one name: m_iwrdls fills at most 29 nodes.
inline constexpr int kWordListNodes = 30;

// Nodes that the business name comparison can take for words split into
// single letters; m_spltnd does not split a word that would need more.
inline constexpr int kSplitPoolNodes = 100;

// Same length and the same bytes.
inline bool same_word(const MWORD *a, const MWORD *b) {
  return a->len == b->len &&
         std::memcmp(a->text, b->text, static_cast<size_t>(a->len)) == 0;
}

}  // namespace orlo

#endif  // ORLO_COMPARE_WORD_NODES_H
