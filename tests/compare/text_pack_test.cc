// Digit test, blank packing and consonant skeletons.
#include <gtest/gtest.h>

#include <string>

#include "compare/work_copy.h"
#include "orlo_compare.h"

namespace {

using namespace std::literals;
using orlo_test::padded;
using orlo_test::WorkCopy;

// Any ASCII digit within the length counts; nothing else does.
TEST(IsNumb, FindsAnyDigitWithinLength) {
  EXPECT_EQ(m_isnumb("MAIN ST", 7), 0);
  EXPECT_EQ(m_isnumb("12 MAIN", 7), 1);
  EXPECT_EQ(m_isnumb("MAIN 9", 6), 1);
  EXPECT_EQ(m_isnumb("MAIN 9", 5), 0);  // the digit lies beyond the length
  EXPECT_EQ(m_isnumb("0", 1), 1);
  EXPECT_EQ(m_isnumb("9", 1), 1);
  EXPECT_EQ(m_isnumb("\xB9\xB2\xB3\xBC/:", 6), 0);  // neighbours of digits
  EXPECT_EQ(m_isnumb("123", 0), 0);
  EXPECT_EQ(m_isnumb("123", -5), 0);
  EXPECT_EQ(m_isnumb(nullptr, 0), 0);
}

// Packing removes only 0x20, touches only the given length, needs no work
// area for long fields and leaves all-blank and empty fields alone.
TEST(Lpck, PacksWithinTheLength) {
  struct Row {
    std::string in;
    int32_t len, result;
    std::string out;
  } rows[] = {
      {"12 A  B   ", 10, 4, "12AB      "},
      {"A\tB\0C D"s, 7, 6, "A\tB\0CD "s},
      {" A B|  C", 4, 2, "AB  |  C"},
      {"     ", 5, 0, "     "},
      {"AB", 0, 0, "AB"},
      {"AB", -1, 0, "AB"},
      {"X" + std::string(398, ' ') + "Y", 400, 2, "XY" + std::string(398, ' ')},
  };
  for (Row &r : rows) {
    EXPECT_EQ(xm_lpck(r.in.data(), r.len), r.result) << r.out;
    EXPECT_EQ(r.in, r.out);
  }
  WorkCopy f("1 2", 5);
  xm_lpck(f.data(), f.len());
  EXPECT_TRUE(f.tail_intact());
}

// Skeletons: vowels between the first and the last letter go, and letters
// that repeat the byte before them as it now stands.
TEST(Comprs, LeavesSkeletonAtStart) {
  struct Row {
    const char *text;
    int32_t width;
    const char *skeleton;
  } rows[] = {
      {"MILLER", 6, "MLR"},
      {"MILLER", 20, "MLR"},  // trailing blanks do not count
      {"STREET", 6, "STRT"},
      {"AVE", 3, "AVE"},    // first and last are never dropped
      {"LLOYD", 5, "LYD"},  // Y is not a vowel
      // A letter after a dropped vowel is compared with the blank that now
      // stands before it, so it stays.
      {"TATA", 4, "TTA"},
      {"BOOKKEEPER", 10, "BKPR"},
      {"A", 1, "A"},
      {"E", 8, "E"},
      {"MAIN ST", 7, "MNST"},
      {"KOWLOON  ", 9, "KWLN"},
      {" ", 1, ""},
      {"", 6, ""},
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(r.text);
    WorkCopy f(r.text, static_cast<size_t>(r.width));
    EXPECT_EQ(m_comprs(f.data(), f.len()),
              static_cast<int32_t>(std::string(r.skeleton).size()));
    EXPECT_EQ(f.field(), padded(r.skeleton, static_cast<size_t>(r.width)));
    EXPECT_TRUE(f.tail_intact());
  }
  std::string g = "EAU";
  EXPECT_EQ(m_comprs(g.data(), 0), 0);
  EXPECT_EQ(m_comprs(g.data(), -3), 0);
  EXPECT_EQ(g, "EAU");
}

}  // namespace
