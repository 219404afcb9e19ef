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

const char *fold_of(unsigned char byte) {
  for (const LetterFold &f : kFolds) {
    if (f.from == byte) return f.to;
  }
  return nullptr;
}

}  // namespace

void fold_latin1_letters(char *field, int32_t len) {
  if (len <= 0 || len > kFoldMaxLen) return;
  // Every byte expands to at most two, so twice the longest field suffices.
  char scratch[2 * kFoldMaxLen];
  std::memset(scratch, ' ', sizeof scratch);
  int32_t out = 0;
  for (int32_t i = 0; i < len; ++i) {
    const char *pair = fold_of(static_cast<unsigned char>(field[i]));
    if (pair != nullptr) {
      scratch[out++] = pair[0];
      scratch[out++] = pair[1];
    } else {
      scratch[out++] = field[i];
    }
  }
  std::memcpy(field, scratch, static_cast<size_t>(len));
}

}  // namespace orlo
