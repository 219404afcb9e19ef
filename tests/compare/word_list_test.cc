// Word lists built by m_iwrdls.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orlo_compare.h"

namespace {

using namespace std::literals;

using Words = std::vector<std::string>;

struct List {
  MWORD nodes[29];
  MWORD *head = nullptr;
  MWORD *tail = nullptr;
};

// The words of the list, walked forward, after checking its links.
std::vector<std::string> words_of(const List &l) {
  std::vector<std::string> out;
  const MWORD *prev = nullptr;
  for (const MWORD *p = l.head; p != nullptr; p = p->next) {
    EXPECT_EQ(p->prev, prev);
    out.emplace_back(p->text, static_cast<size_t>(p->len));
    prev = p;
  }
  EXPECT_EQ(l.tail, prev);
  return out;
}

// Only 0x20 separates words, runs of it as one; the list stops at the
// length and its nodes point into the caller's text.
TEST(Iwrdls, SplitsOnBlankRunsWithinTheLength) {
  struct Row {
    std::string text;
    int32_t len;
    Words words;
  } rows[] = {
      {"  A B", 5, {"A", "B"}},
      {"KAM-TIN\tRD  X\0Y  "s, 17, {"KAM-TIN\tRD", "X\0Y"s}},
      {"ONE TWO THREE", 6, {"ONE", "TW"}},
      {"NATHAN", 6, {"NATHAN"}},
  };
  for (Row &r : rows) {
    List l;
    m_iwrdls(l.nodes, &l.head, &l.tail, r.len, r.text.data());
    EXPECT_EQ(words_of(l), r.words);
    EXPECT_EQ(l.head, &l.nodes[0]);
    EXPECT_EQ(l.head->text, r.text.data() + r.text.find_first_not_of(' '));
  }
}

TEST(Iwrdls, ShortensBusinessWordsInPlace) {
  List l;
  std::string text = "A + B AND LIMITED CORPORATION INCORPORATED ANDY";
  m_iwrdls(l.nodes, &l.head, &l.tail, static_cast<int32_t>(text.size()),
           text.data());
  EXPECT_EQ(words_of(l),
            (Words{"A", "&", "B", "&", "LTD", "CORP", "INC", "ANDY"}));
  EXPECT_EQ(text, "A & B &   LTD     CORP        INC          ANDY");
}

TEST(Iwrdls, AtMostTwentyNineWords) {
  std::string text;
  for (int i = 0; i < 35; ++i) text += std::string(1, 'A' + i % 26) + " ";
  text += "AND";
  List l;
  m_iwrdls(l.nodes, &l.head, &l.tail, static_cast<int32_t>(text.size()),
           text.data());
  const Words w = words_of(l);
  ASSERT_EQ(w.size(), 29u);
  EXPECT_EQ(w.back(), "C");  // the 29th letter of A..Z, A..
  EXPECT_EQ(l.tail, &l.nodes[28]);
  // Words past the 29th are not touched.
  EXPECT_EQ(text.substr(text.size() - 3), "AND");
}

// No words: head and tail are cleared, whatever they held.
TEST(Iwrdls, NoWords) {
  std::string text = "     ";
  for (int32_t len : {5, 0, -3}) {
    List l;
    l.head = l.tail = &l.nodes[0];
    m_iwrdls(l.nodes, &l.head, &l.tail, len, text.data());
    EXPECT_EQ(l.head, nullptr) << len;
    EXPECT_EQ(l.tail, nullptr) << len;
  }
}

}  // namespace
