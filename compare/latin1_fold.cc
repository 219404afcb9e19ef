// Folding of Latin-1 capitals into plain letter pairs.
#include "compare/latin1_fold.h"

#include <cstring>

namespace orlo {
namespace {

struct LetterFold {
  unsigned char from;
  char to[3];
};

// The letters that are written out; every other byte stays as it is.
constexpr LetterFold kFolds[] = {
    {0xC4, "AE"}, {0xC6, "AE"}, {0xC5, "AA"}, {0xD6, "OE"},
    {0xD8, "OE"}, {0xDC, "UE"}, {0xDF, "SS"},
};

// The lowest byte folded: every byte below it stays, which most text shows
// at the first test.
constexpr unsigned char kFirstFolded = [] {
  unsigned char low = 0xFF;
  for (const LetterFold &f : kFolds) low = f.from < low ? f.from : low;
  return low;
}();

const char *fold_of(unsigned char byte) {
  if (byte < kFirstFolded) return nullptr;
  for (const LetterFold &f : kFolds) {
    if (f.from == byte) return f.to;
  }
  return nullptr;
}

}  // namespace

void fold_latin1_letters(char *field, int32_t len) {
  if (len <= 0 || len > kFoldMaxLen) return;
  // Most fields hold no letter to fold: find the first before copying.
  int32_t first = 0;
  while (first < len &&
         fold_of(static_cast<unsigned char>(field[first])) == nullptr) {
    ++first;
  }
  if (first == len) return;
  // From there every byte expands to at most two, so twice the longest
  // field suffices; what is written beyond len is cut off.
  char scratch[2 * kFoldMaxLen] = {};
  int32_t out = 0;
  for (int32_t i = first; i < len && out < len - first; ++i) {
    const char *pair = fold_of(static_cast<unsigned char>(field[i]));
    if (pair != nullptr) {
      scratch[out++] = pair[0];
      scratch[out++] = pair[1];
    } else {
      scratch[out++] = field[i];
    }
  }
  std::memcpy(field + first, scratch, static_cast<size_t>(len - first));
}

}  // namespace orlo
