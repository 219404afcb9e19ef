// The 16-bit twins of the justification routines.
#include <gtest/gtest.h>

#include <vector>

#include "common/work_area.h"
#include "orlo_fields.h"

namespace {

using Units = std::vector<uint16_t>;
constexpr uint16_t S = 0x0020;  // blank
constexpr uint16_t I = 0x3000;  // ideographic space
constexpr uint16_t A = 0x5927, B = 0x9053, C = 'C';

TEST(WideLeftAdjust, SqueezesBothBlanksToSpace) {
  Units f{I, S, A, I, I, B, S, C, I};
  EXPECT_EQ(cmulftadj(f.data(), static_cast<int32_t>(f.size())), 5);
  EXPECT_EQ(f, (Units{A, S, B, S, C, S, S, S, S}));
}

TEST(WideLeftAdjust, AllBlankIsLeftAsItWas) {
  Units f{I, S, I};
  EXPECT_EQ(cmulftadj(f.data(), 3), 0);
  EXPECT_EQ(f, (Units{I, S, I}));
  EXPECT_EQ(cmulftadj(f.data(), 0), 0);
  EXPECT_EQ(cmulftadj(f.data(), -2), -1);
}

TEST(WidePack, RemovesBlanksAndAlwaysWritesBack) {
  Units f{A, I, B, S, C};
  EXPECT_EQ(cmulftpck(f.data(), 5), 3);
  EXPECT_EQ(f, (Units{A, B, C, S, S}));
  Units blank{I, I, S};
  EXPECT_EQ(cmulftpck(blank.data(), 3), 0);
  EXPECT_EQ(blank, (Units{S, S, S}));
}

TEST(WideRightAdjust, NulInsideTextSeparatesWords) {
  Units f{A, 0, 0, B, S, S};
  EXPECT_EQ(cmurhtadj(f.data(), 6), 3);
  EXPECT_EQ(f, (Units{S, S, S, A, S, B}));
}

TEST(WideRightAdjust, LeadingNulIsText) {
  Units f{0, A, S, S};
  EXPECT_EQ(cmurhtadj(f.data(), 4), 2);
  EXPECT_EQ(f, (Units{S, S, 0, A}));
}

TEST(WideRightAdjust, AllBlankComesBackAsSpaces) {
  Units f{I, S, I};
  EXPECT_EQ(cmurhtadj(f.data(), 3), 0);
  EXPECT_EQ(f, (Units{S, S, S}));
}

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
