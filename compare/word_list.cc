// Splitting a text into a doubly linked list of word nodes.
#include <cstring>
#include <string_view>

#include "compare/text_bytes.h"
#include "compare/word_tables.h"
#include "orlo_compare.h"

namespace orlo {
namespace {

// A list never holds more words than this; later words are ignored.
constexpr int32_t kMaxWords = 29;

// Shortens a business word in place (the freed bytes become blanks) and
// returns the word's new length.
int32_t shorten_business_word(char *word, int32_t len) {
  const std::string_view text(word, static_cast<size_t>(len));
  for (const BusinessWord &b : business_words) {
    if (text == b.word) {
      std::memset(word, ' ', static_cast<size_t>(len));
      std::memcpy(word, b.shortened.data(), b.shortened.size());
      return static_cast<int32_t>(b.shortened.size());
    }
  }
  return len;
}

void build_word_list(MWORD *nodes, MWORD **head, MWORD **tail, int32_t len,
                     char *text) {
  MWORD *prev = nullptr;
  int32_t count = 0;
  int32_t i = 0;
  while (count < kMaxWords) {
    while (i < len && is_blank(text[i])) ++i;
    if (i >= len) break;
    const int32_t start = i;
    while (i < len && !is_blank(text[i])) ++i;
    MWORD *node = &nodes[count++];
    node->text = text + start;
    node->len = shorten_business_word(text + start, i - start);
    node->prev = prev;
    node->next = nullptr;
    if (prev != nullptr) {
      prev->next = node;
    } else {
      *head = node;
    }
    prev = node;
  }
  *tail = prev;
}

}  // namespace
}  // namespace orlo

extern "C" void m_iwrdls(MWORD *nodes, MWORD **head, MWORD **tail, int32_t len,
                         char *text) {
  *head = nullptr;
  *tail = nullptr;
  orlo::build_word_list(nodes, head, tail, len, text);
}
