// The 16-bit twins of the justification routines.
#include <gtest/gtest.h>

#include <vector>

#include "common/work_area.h"
#include "orlo_fields.h"

namespace {

using Units = std::vector<uint16_t>;
using Fn = int32_t (*)(uint16_t *, int32_t);
constexpr uint16_t S = 0x0020;  // blank
constexpr uint16_t I = 0x3000;  // ideographic space
constexpr uint16_t A = 0x5927, B = 0x9053, C = 'C';

// Both blanks count and U+0020 is written. Only the left adjustment leaves
// an all-blank field as it was; inside a text the right adjustment takes
// U+0000 for a blank, but not before it.
TEST(WideRoutines, RewriteFieldAndReturnLength) {
  struct Row {
    Fn fn;
    Units in;
    int32_t result;
    Units out;
    const char *note;
  } rows[] = {
      {cmulftadj,
       {I, S, A, I, I, B, S, C, I},
       5,
       {A, S, B, S, C, S, S, S, S},
       "left: squeezed"},
      {cmulftadj, {I, S, I}, 0, {I, S, I}, "left: all blank untouched"},
      {cmulftpck, {A, I, B, S, C}, 3, {A, B, C, S, S}, "pack"},
      {cmulftpck, {I, I, S}, 0, {S, S, S}, "pack: all blank rewritten"},
      {cmurhtadj, {A, 0, 0, B, S, S}, 3, {S, S, S, A, S, B}, "right: NUL"},
      {cmurhtadj, {0, A, S, S}, 2, {S, S, 0, A}, "right: leading NUL is text"},
      {cmurhtadj, {I, S, I}, 0, {S, S, S}, "right: all blank rewritten"},
  };
  for (Row &r : rows) {
    EXPECT_EQ(r.fn(r.in.data(), static_cast<int32_t>(r.in.size())), r.result)
        << r.note;
    EXPECT_EQ(r.in, r.out) << r.note;
  }
}

TEST(WideRoutines, ZeroAndNegativeLengths) {
  Units f{A, S};
  for (Fn fn : {cmulftadj, cmulftpck, cmurhtadj}) {
    EXPECT_EQ(fn(f.data(), 0), 0);
    EXPECT_EQ(fn(f.data(), -2), -1);
  }
  EXPECT_EQ(f, (Units{A, S}));
}

// Fields longer than the fixed work area allocate one; when that fails the
// routines return -1 and leave the field as it was.
TEST(WideRoutines, LongFieldsAndFailedWorkArea) {
  Units f(400, I);
  f[399] = A;
  f[0] = B;
  EXPECT_EQ(cmulftadj(f.data(), 400), 3);
  EXPECT_EQ(f[0], B);
  EXPECT_EQ(f[1], S);
  EXPECT_EQ(f[2], A);
  const Units before = f;
  orlo::FailWorkAreasForTesting fail(3);
  EXPECT_EQ(cmulftadj(f.data(), 400), -1);
  EXPECT_EQ(cmulftpck(f.data(), 400), -1);
  EXPECT_EQ(cmurhtadj(f.data(), 400), -1);
  EXPECT_EQ(f, before);
}

}  // namespace
