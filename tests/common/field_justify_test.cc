// Byte field justification and packing.
#include <gtest/gtest.h>

#include <string>

#include "common/work_area.h"
#include "orlo_fields.h"

namespace {

using Fn = int32_t (*)(char *, int32_t);

struct Case {
  const char *name;
  Fn fn;
  std::string in;
  std::string out;
  int32_t result;
};

class FieldRoutine : public ::testing::TestWithParam<Case> {};

TEST_P(FieldRoutine, RewritesFieldAndReturnsLength) {
  const Case &c = GetParam();
  std::string field = c.in;
  EXPECT_EQ(c.fn(field.data(), static_cast<int32_t>(field.size())), c.result);
  EXPECT_EQ(field, c.out);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FieldRoutine,
    ::testing::Values(
        Case{"lftadj_squeezes", cm_lftadj, "  MAIN   ST  ", "MAIN ST      ", 7},
        Case{"lftadj_last_byte_text", cm_lftadj, "AB   CD", "AB CD  ", 5},
        Case{"lftadj_char_at_end", cm_lftadj, "      X", "X      ", 1},
        Case{"lftadj_all_blank", cm_lftadj, "     ", "     ", 0},
        Case{"lftadj_tab_is_text", cm_lftadj, " A\t B", "A\t B ", 4},
        Case{"lftadj_nul_is_text", cm_lftadj, std::string(" A\0B", 4),
             std::string("A\0B ", 4), 3},
        Case{"rhtadj_squeezes", cm_rhtadj, "  MAIN   ST  ", "      MAIN ST", 7},
        Case{"rhtadj_short", cm_rhtadj, "A B   ", "   A B", 3},
        Case{"rhtadj_all_blank", cm_rhtadj, "    ", "    ", 0},
        Case{"lftpck_packs", cm_lftpck, "12 A  B", "12AB   ", 4},
        Case{"lftpck_full_field", cm_lftpck, "ABCDEF", "ABCDEF", 6},
        Case{"lftpck_tab_kept", cm_lftpck, "A\tB", "A\tB", 3},
        Case{"lftpck_all_blank", cm_lftpck, "   ", "   ", 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(FieldRoutines, ZeroAndNegativeLengths) {
  char field[] = "ABC";
  for (Fn fn : {cm_lftadj, cm_rhtadj, cm_lftpck}) {
    EXPECT_EQ(fn(field, 0), 0);
    EXPECT_EQ(fn(nullptr, 0), 0);
    EXPECT_EQ(fn(field, -1), -1);
  }
  EXPECT_STREQ(field, "ABC");
}

// A field longer than the fixed work area takes the allocating path and must
// give exactly what a short field gives.
TEST(FieldRoutines, LongFieldsMatchShortOnes) {
  std::string text = "  KING   GEORGE V  MEMORIAL   PARK  ";
  std::string long_field = text + std::string(300, ' ');
  std::string short_field = text + std::string(20, ' ');
  int32_t n_long = cm_lftadj(long_field.data(), 336);
  int32_t n_short = cm_lftadj(short_field.data(), 56);
  EXPECT_EQ(n_long, n_short);
  EXPECT_EQ(long_field.substr(0, 56), short_field);
  EXPECT_EQ(long_field.find_first_not_of(' ', 56), std::string::npos);

  std::string packed(300, ' ');
  packed[299] = 'Z';
  packed[10] = 'A';
  EXPECT_EQ(cm_lftpck(packed.data(), 300), 2);
  EXPECT_EQ(packed.substr(0, 3), "AZ ");

  std::string right(300, ' ');
  right[0] = 'Q';
  EXPECT_EQ(cm_rhtadj(right.data(), 300), 1);
  EXPECT_EQ(right[299], 'Q');
  EXPECT_EQ(right[0], ' ');
}

TEST(FieldRoutines, FailedWorkAreaLeavesFieldUntouched) {
  std::string field = "  A  B" + std::string(300, ' ');
  const std::string before = field;
  for (Fn fn : {cm_lftadj, cm_rhtadj, cm_lftpck}) {
    orlo::FailWorkAreasForTesting fail(1);
    EXPECT_EQ(fn(field.data(), static_cast<int32_t>(field.size())), -1);
    EXPECT_EQ(field, before);
  }
  // Short fields never need the heap, so the failure does not touch them.
  orlo::FailWorkAreasForTesting fail(1);
  char small[] = " X ";
  EXPECT_EQ(cm_lftadj(small, 3), 1);
}

}  // namespace
