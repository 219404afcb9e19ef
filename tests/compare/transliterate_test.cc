// Transliteration of Latin-1 text.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orlo_compare.h"

namespace {

using namespace std::literals;

std::string isostd(unsigned char ch) {
  std::unique_ptr<char, decltype(&std::free)> text(tg_isostd(ch), &std::free);
  return text ? std::string(text.get()) : std::string("<null>");
}

struct Expected {
  unsigned char byte;
  const char *text;
};

TEST(Isostd, TableRows) {
  const Expected cases[] = {
      {0xC0, "A"},  {0xC3, "A"},  {0xE0, "A"},  {0xE3, "A"},  {0xAA, "A"},
      {'a', "A"},   {0xC6, "AE"}, {0xE6, "AE"}, {0xC7, "C"},  {0xE7, "C"},
      {'c', "C"},   {0xC8, "E"},  {0xCB, "E"},  {0xE9, "E"},  {'e', "E"},
      {0xCC, "I"},  {0xEF, "I"},  {'i', "I"},   {0xD0, "TH"}, {0xF0, "TH"},
      {0xDE, "TH"}, {0xD1, "N"},  {0xF1, "N"},  {'n', "N"},   {0xD2, "O"},
      {0xD5, "O"},  {0xF5, "O"},  {0xBA, "O"},  {'o', "O"},   {0xD9, "U"},
      {0xFB, "U"},  {'u', "U"},   {0xDD, "Y"},  {0xFD, "Y"},  {0xFF, "Y"},
      {'y', "Y"},   {0xDF, "SS"}, {0xC4, "AE"}, {0xE4, "AE"}, {0xD8, "OE"},
      {0xF8, "OE"}, {0xC5, "AA"}, {0xE5, "AA"}, {0xD6, "OE"}, {0xF6, "OE"},
      {0xDC, "UE"}, {0xFC, "UE"}, {'+', " "},   {'&', " "},   {'-', " "},
      {'\'', " "},  {',', " "},   {'.', " "},
  };
  for (const Expected &c : cases) {
    EXPECT_EQ(isostd(c.byte), c.text) << std::hex << int{c.byte};
  }
}

TEST(Isostd, BytesNoRowNamesAreKept) {
  // 0xD7 and 0xF7 sit inside the letter ranges, 0xFE next to 0xFD and 0xFF.
  const unsigned char kept[] = {0xFE, 0xD7, 0xF7, 0xBF, 0x80, 0xA0, 'b',
                                'z',  'A',  'Z',  '0',  ' ',  '/'};
  for (unsigned char ch : kept) {
    EXPECT_EQ(isostd(ch), std::string(1, static_cast<char>(ch)))
        << std::hex << int{ch};
  }
  // The NUL byte is kept as well, which leaves an empty text.
  EXPECT_EQ(isostd(0), "");
}

TEST(Isostd, EveryByteGivesOneOrTwoCharacters) {
  for (int ch = 1; ch < 256; ++ch) {
    std::string text = isostd(static_cast<unsigned char>(ch));
    EXPECT_TRUE(text.size() == 1 || text.size() == 2) << ch;
  }
}

// Runs tg_remac over text placed in a buffer of size bytes and returns the
// whole buffer.
std::string remac(const std::string &text, size_t size) {
  std::vector<char> buffer(size, '\0');
  std::memcpy(buffer.data(), text.data(), std::min(text.size(), size));
  tg_remac(buffer.data(), static_cast<int32_t>(size));
  return std::string(buffer.data(), size);
}

// Rewriting stops at the NUL and clears what follows; output that fills
// the buffer is cut there without a terminator, and without a NUL the input
// ends with the buffer.
TEST(Remac, RewritesInsideTheBuffer) {
  struct Row {
    std::string text;
    size_t size;
    std::string buffer;
  } rows[] = {
      {"M\xFCller", 16, "MUEllEr" + std::string(9, '\0')},
      {"caf\xE9", 8, "CAfE" + std::string(4, '\0')},
      {"O'NEIL & SONS", 16, "O NEIL   SONS" + std::string(3, '\0')},
      {"AB\0XYZ"s, 6, "AB\0\0\0\0"s},
      {"M\xFCller", 7, "MUEllEr"},
      {"AB\xDF", 3, "ABS"},  // a pair at the last byte keeps its first
      {"\xC6\xC6", 3, "AEA"},
      {"abc", 3, "AbC"},
      {"", 4, std::string(4, '\0')},
  };
  for (const Row &r : rows) EXPECT_EQ(remac(r.text, r.size), r.buffer);
}

TEST(Remac, EmptyAndDegenerateBuffers) {
  char text[] = "abc";
  tg_remac(text, 0);
  tg_remac(text, -1);
  tg_remac(nullptr, 4);
  EXPECT_STREQ(text, "abc");
}

}  // namespace
