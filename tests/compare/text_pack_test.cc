// Digit test, blank packing and consonant skeletons.
#include <gtest/gtest.h>

#include <string>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using orlo_test::padded;
using orlo_test::WorkCopy;

TEST(IsNumb, FindsAnyDigitWithinLength) {
  EXPECT_EQ(m_isnumb("MAIN ST", 7), 0);
  EXPECT_EQ(m_isnumb("12 MAIN", 7), 1);
  EXPECT_EQ(m_isnumb("MAIN 9", 6), 1);
  EXPECT_EQ(m_isnumb("MAIN 9", 5), 0);  // the digit lies beyond the length
  EXPECT_EQ(m_isnumb("0", 1), 1);
  EXPECT_EQ(m_isnumb("9", 1), 1);
}

TEST(IsNumb, NonPositiveLengthsAndHighBytes) {
  EXPECT_EQ(m_isnumb("123", 0), 0);
  EXPECT_EQ(m_isnumb("123", -5), 0);
  EXPECT_EQ(m_isnumb(nullptr, 0), 0);
  // Superscript digits and other Latin-1 bytes are not digits.
  EXPECT_EQ(m_isnumb("\xB9\xB2\xB3\xBC/:", 6), 0);
}

TEST(Lpck, RemovesBlanksAndPadsRight) {
  WorkCopy f("12 A  B", 9);
  EXPECT_EQ(xm_lpck(f.data(), f.len()), 4);
  EXPECT_EQ(f.field(), padded("12AB", 9));
  EXPECT_TRUE(f.tail_intact());
}

TEST(Lpck, OnlyBlankIsABlank) {
  std::string f("A\tB\0C D", 7);
  EXPECT_EQ(xm_lpck(f.data(), 7), 6);
  EXPECT_EQ(f, std::string("A\tB\0CD ", 7));
}

TEST(Lpck, AllBlankAndEmptyFieldsAreLeftAlone) {
  std::string f = "     ";
  EXPECT_EQ(xm_lpck(f.data(), 5), 0);
  EXPECT_EQ(f, "     ");
  std::string g = "AB";
  EXPECT_EQ(xm_lpck(g.data(), 0), 0);
  EXPECT_EQ(xm_lpck(g.data(), -1), 0);
  EXPECT_EQ(g, "AB");
}

TEST(Lpck, TouchesOnlyTheGivenLength) {
  std::string f = " A B|  C";
  EXPECT_EQ(xm_lpck(f.data(), 4), 2);
  EXPECT_EQ(f, "AB  |  C");
}

TEST(Lpck, LongFieldsNeedNoWorkArea) {
  std::string f(400, ' ');
  f[0] = 'X';
  f[399] = 'Y';
  EXPECT_EQ(xm_lpck(f.data(), 400), 2);
  EXPECT_EQ(f.substr(0, 3), "XY ");
  EXPECT_EQ(f.find_first_not_of(' ', 2), std::string::npos);
}

struct SkeletonCase {
  const char *text;
  int32_t width;
  const char *skeleton;
};

class Comprs : public ::testing::TestWithParam<SkeletonCase> {};

TEST_P(Comprs, LeavesSkeletonAtStart) {
  const SkeletonCase &c = GetParam();
  WorkCopy f(c.text, static_cast<size_t>(c.width));
  const int32_t n = m_comprs(f.data(), f.len());
  EXPECT_EQ(n, static_cast<int32_t>(std::string(c.skeleton).size()));
  EXPECT_EQ(f.field(), padded(c.skeleton, static_cast<size_t>(c.width)));
  EXPECT_TRUE(f.tail_intact());
}

INSTANTIATE_TEST_SUITE_P(
    Skeletons, Comprs,
    ::testing::Values(
        SkeletonCase{"MILLER", 6, "MLR"},
        SkeletonCase{"MILLER", 20, "MLR"},  // trailing blanks do not count
        SkeletonCase{"STREET", 6, "STRT"},
        SkeletonCase{"AVE", 3, "AVE"},    // first and last are never dropped
        SkeletonCase{"LLOYD", 5, "LYD"},  // Y is not a vowel
        // A letter after a dropped vowel is compared with the blank that
        // now stands before it, so it stays.
        SkeletonCase{"TATA", 4, "TTA"}, SkeletonCase{"BOOKKEEPER", 10, "BKPR"},
        SkeletonCase{"A", 1, "A"}, SkeletonCase{"E", 8, "E"},
        SkeletonCase{"MAIN ST", 7, "MNST"}));

TEST(Comprs, BlankAndEmptyFields) {
  WorkCopy one(" ", 1);
  EXPECT_EQ(m_comprs(one.data(), 1), 0);
  EXPECT_EQ(one.field(), " ");
  WorkCopy blank("", 6);
  EXPECT_EQ(m_comprs(blank.data(), 6), 0);
  EXPECT_EQ(blank.field(), padded("", 6));
  std::string g = "EAU";
  EXPECT_EQ(m_comprs(g.data(), 0), 0);
  EXPECT_EQ(m_comprs(g.data(), -3), 0);
  EXPECT_EQ(g, "EAU");
}

TEST(Comprs, LeavesBytesBeyondSignificantTextAlone) {
  // Only the significant text is packed; the blanks behind it stay blanks.
  std::string f = "KOWLOON  ";
  EXPECT_EQ(m_comprs(f.data(), 9), 4);
  EXPECT_EQ(f, "KWLN     ");
}

}  // namespace
