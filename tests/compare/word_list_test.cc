// Word lists built by m_iwrdls.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orlo_compare.h"

namespace {

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

using Words = std::vector<std::string>;

TEST(Iwrdls, SplitsOnBlankRuns) {
  List l;
  std::string text = "  A B";
  m_iwrdls(l.nodes, &l.head, &l.tail, 5, text.data());
  EXPECT_EQ(words_of(l), (Words{"A", "B"}));
  EXPECT_EQ(l.head->text, text.data() + 2);
  EXPECT_EQ(l.tail->text, text.data() + 4);
  EXPECT_EQ(l.head, &l.nodes[0]);
}

TEST(Iwrdls, OnlyBlankSeparates) {
  List l;
  std::string text("KAM-TIN\tRD  X\0Y  ", 17);
  m_iwrdls(l.nodes, &l.head, &l.tail, 17, text.data());
  EXPECT_EQ(words_of(l), (Words{"KAM-TIN\tRD", std::string("X\0Y", 3)}));
}

TEST(Iwrdls, StopsAtLength) {
  List l;
  std::string text = "ONE TWO THREE";
  m_iwrdls(l.nodes, &l.head, &l.tail, 6, text.data());
  EXPECT_EQ(words_of(l), (Words{"ONE", "TW"}));
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

TEST(Iwrdls, NoWords) {
  List l;
  l.head = l.tail = &l.nodes[0];
  std::string text = "     ";
  m_iwrdls(l.nodes, &l.head, &l.tail, 5, text.data());
  EXPECT_EQ(l.head, nullptr);
  EXPECT_EQ(l.tail, nullptr);
  l.head = l.tail = &l.nodes[0];
  m_iwrdls(l.nodes, &l.head, &l.tail, 0, text.data());
  EXPECT_EQ(l.head, nullptr);
  EXPECT_EQ(l.tail, nullptr);
  l.head = l.tail = &l.nodes[0];
  m_iwrdls(l.nodes, &l.head, &l.tail, -3, text.data());
  EXPECT_EQ(l.head, nullptr);
}

TEST(Iwrdls, SingleWordFillingTheField) {
  List l;
  std::string text = "NATHAN";
  m_iwrdls(l.nodes, &l.head, &l.tail, 6, text.data());
  EXPECT_EQ(words_of(l), (Words{"NATHAN"}));
  EXPECT_EQ(l.head, l.tail);
  EXPECT_EQ(l.head->next, nullptr);
  EXPECT_EQ(l.head->prev, nullptr);
}

}  // namespace
