// Transliteration of Latin-1 text into plain upper-case letters.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "orlo_compare.h"

namespace orlo {
namespace {

struct ByteRange {
  unsigned char first;
  unsigned char last;
};

// One row of the transliteration table: the bytes of its ranges become text.
struct Transliteration {
  char text[3];
  int count;
  ByteRange bytes[6];
};

// Rows are tried in this order; a byte that no row names is kept. Of the
// lower-case ASCII letters only a, c, e, i, n, o, u and y are named.
constexpr Transliteration kTable[] = {
    {"A", 4, {{0xC0, 0xC3}, {0xE0, 0xE3}, {0xAA, 0xAA}, {'a', 'a'}}},
    {"AE", 2, {{0xC6, 0xC6}, {0xE6, 0xE6}}},
    {"C", 3, {{0xC7, 0xC7}, {0xE7, 0xE7}, {'c', 'c'}}},
    {"E", 3, {{0xC8, 0xCB}, {0xE8, 0xEB}, {'e', 'e'}}},
    {"I", 3, {{0xCC, 0xCF}, {0xEC, 0xEF}, {'i', 'i'}}},
    {"TH", 3, {{0xD0, 0xD0}, {0xF0, 0xF0}, {0xDE, 0xDE}}},
    {"N", 3, {{0xD1, 0xD1}, {0xF1, 0xF1}, {'n', 'n'}}},
    {"O", 4, {{0xD2, 0xD5}, {0xF2, 0xF5}, {0xBA, 0xBA}, {'o', 'o'}}},
    {"U", 3, {{0xD9, 0xDB}, {0xF9, 0xFB}, {'u', 'u'}}},
    {"Y", 4, {{0xDD, 0xDD}, {0xFD, 0xFD}, {0xFF, 0xFF}, {'y', 'y'}}},
    {"SS", 1, {{0xDF, 0xDF}}},
    {"AE", 2, {{0xC4, 0xC4}, {0xE4, 0xE4}}},
    {"OE", 2, {{0xD8, 0xD8}, {0xF8, 0xF8}}},
    {"AA", 2, {{0xC5, 0xC5}, {0xE5, 0xE5}}},
    {"OE", 2, {{0xD6, 0xD6}, {0xF6, 0xF6}}},
    {"UE", 2, {{0xDC, 0xDC}, {0xFC, 0xFC}}},
    {" ",
     6,
     {{'+', '+'},
      {'&', '&'},
      {'-', '-'},
      {'\'', '\''},
      {',', ','},
      {'.', '.'}}},
};

constexpr uint8_t kKeep = 0xFF;

// For each byte, the index of the first table row that names it, or kKeep.
constexpr std::array<uint8_t, 256> row_of_each_byte() {
  std::array<uint8_t, 256> rows{};
  rows.fill(kKeep);
  for (int r = static_cast<int>(std::size(kTable)) - 1; r >= 0; --r) {
    for (int k = 0; k < kTable[r].count; ++k) {
      for (int b = kTable[r].bytes[k].first; b <= kTable[r].bytes[k].last; ++b)
        rows[b] = static_cast<uint8_t>(r);
    }
  }
  return rows;
}

constexpr std::array<uint8_t, 256> kRowOf = row_of_each_byte();

// Writes the one or two characters that stand for byte into out and returns
// how many.
int32_t transliterate(unsigned char byte, char out[2]) {
  uint8_t row = kRowOf[byte];
  if (row == kKeep) {
    out[0] = static_cast<char>(byte);
    return 1;
  }
  out[0] = kTable[row].text[0];
  out[1] = kTable[row].text[1];
  return out[1] == '\0' ? 1 : 2;
}

}  // namespace
}  // namespace orlo

extern "C" char *tg_isostd(unsigned char ch) {
  auto *text = static_cast<char *>(std::malloc(3));
  if (text == nullptr) return nullptr;
  char chars[2];
  int32_t n = orlo::transliterate(ch, chars);
  std::memcpy(text, chars, static_cast<size_t>(n));
  text[n] = '\0';
  return text;
}

// Rewrites the NUL-terminated text inside a buffer of size bytes. The bytes
// are looked up in the same table as tg_isostd, without allocating a text
// per byte. A text that grows is cut at size bytes, which may leave the
// buffer without a terminator.
extern "C" void tg_remac(char *text, int32_t size) {
  if (text == nullptr || size <= 0) return;
  auto *work = static_cast<char *>(calloc(static_cast<size_t>(size), 1));
  if (work == nullptr) return;  // no work area: the text stays as it was
  int32_t out = 0;
  for (int32_t in = 0; in < size && text[in] != '\0' && out < size; ++in) {
    char chars[2];
    int32_t n =
        orlo::transliterate(static_cast<unsigned char>(text[in]), chars);
    // At the last byte of the buffer a pair keeps only its first character.
    for (int32_t k = 0; k < n && out < size; ++k) work[out++] = chars[k];
  }
  std::memcpy(text, work, static_cast<size_t>(size));
  std::free(work);
}
