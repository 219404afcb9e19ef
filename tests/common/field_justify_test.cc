// Byte field justification and packing.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "common/squeeze.h"
#include "common/work_area.h"
#include "orlo_fields.h"

namespace {

using namespace std::literals;

using Fn = int32_t (*)(char *, int32_t);

// Inner blank runs squeezed to one and the text moved left or right, or
// every blank removed; only 0x20 is a blank, and an all-blank field is
// left alone.
TEST(FieldRoutines, RewriteFieldAndReturnLength) {
  struct Row {
    Fn fn;
    std::string in, out;
    int32_t result;
  } rows[] = {
      {cm_lftadj, "  MAIN   ST  ", "MAIN ST      ", 7},
      {cm_lftadj, "AB   CD", "AB CD  ", 5},
      {cm_lftadj, "      X", "X      ", 1},
      {cm_lftadj, "     ", "     ", 0},
      {cm_lftadj, " A\t B", "A\t B ", 4},
      {cm_lftadj, " A\0B"s, "A\0B "s, 3},
      {cm_rhtadj, "  MAIN   ST  ", "      MAIN ST", 7},
      {cm_rhtadj, "A B   ", "   A B", 3},
      {cm_rhtadj, "    ", "    ", 0},
      {cm_lftpck, "12 A  B", "12AB   ", 4},
      {cm_lftpck, "ABCDEF", "ABCDEF", 6},
      {cm_lftpck, "  X ", "X   ", 1},
      {cm_lftpck, "A\tB", "A\tB", 3},
      {cm_lftpck, "   ", "   ", 0},
  };
  for (Row &r : rows) {
    std::string field = r.in;
    EXPECT_EQ(r.fn(field.data(), static_cast<int32_t>(field.size())), r.result)
        << r.out;
    EXPECT_EQ(field, r.out);
  }
}

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

// The in-place squeezes give what the work-area path gives: on fields up to
// the fixed area in full, and on long lines as their first bytes. Random
// fields of blanks, letters and other bytes, of every length up to 300.
TEST(FieldRoutines, InPlaceSqueezesMatchTheWorkAreaPath) {
  std::mt19937 rng(11);
  const std::string alphabet = "     AB\t\0."s;
  for (int round = 0; round < 20000; ++round) {
    const int32_t len = static_cast<int32_t>(rng() % 301);
    std::string field(static_cast<size_t>(len), ' ');
    for (char &c : field) c = alphabet[rng() % alphabet.size()];
    if (rng() % 4 == 0) field.assign(static_cast<size_t>(len), ' ');
    // The reference: the field padded to the long path of cm_lftadj.
    std::string reference = field + std::string(300, ' ');
    const int32_t want = cm_lftadj(reference.data(), len + 300);
    std::string in_place = field;
    ASSERT_EQ(orlo::squeeze_in_place(in_place.data(), len), want) << field;
    ASSERT_EQ(in_place, reference.substr(0, static_cast<size_t>(len)));
    std::string prefix = field + std::string(50, ' ');
    orlo::squeeze_prefix(prefix.data(), len, 50);
    ASSERT_EQ(prefix.substr(0, 50), reference.substr(0, 50)) << field;
  }
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
