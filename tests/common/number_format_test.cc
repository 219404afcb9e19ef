// Leading-zero blanking and thousands separators.
#include <gtest/gtest.h>

#include <string>

#include "orlo_fields.h"

namespace {

// Only the leading run of zeros goes, never past the length; a length of 0
// or less is refused.
TEST(BlankLeadingZeros, BlanksOnlyTheLeadingRunInsideTheField) {
  struct Row {
    std::string in;
    int32_t len, result;
    std::string out;
  } rows[] = {
      {"00120", 5, 2, "  120"}, {"0000", 4, 4, "    "}, {" 012", 4, 0, " 012"},
      {"0", 1, 1, " "},         {"000", 2, 2, "  0"},   {"000", 0, -1, "000"},
      {"000", -3, -1, "000"},
  };
  for (Row &r : rows) {
    EXPECT_EQ(cm_bllz(r.in.data(), r.len), r.result) << r.out;
    EXPECT_EQ(r.in, r.out);
  }
}

// The whole output area after formatting src into outlen bytes; the result
// must point inside it at the formatted text.
std::string format(const char *src, int32_t outlen, std::string *text) {
  std::string out(static_cast<size_t>(outlen), 'x');
  char *p = cm_cfrmt(src, out.data(), outlen);
  EXPECT_NE(p, nullptr);
  if (p == nullptr) return "<null>";
  EXPECT_GE(p, out.data());
  EXPECT_LT(p, out.data() + outlen);
  *text = p;
  return out;
}

// Commas between groups of three digits, right-aligned before the NUL; a
// text too long for the area is cut on the left, never written before it.
TEST(ThousandsFormat, GroupsDigitsInsideTheArea) {
  struct Row {
    const char *src;
    int32_t outlen;
    const char *text;
  } rows[] = {
      {"1234567", 21, "1,234,567"},
      {"1000", 21, "1,000"},
      {"999", 21, "999"},
      {"123456", 21, "123,456"},
      {"-1234", 21, "-1,234"},
      {"-123", 21, "-123"},
      {"7", 21, "7"},
      {"12.5000", 21, "12.5,000"},
      {"", 5, ""},
      {"1234567", 6, "4,567"},
      {"12", 1, ""},
  };
  for (const Row &r : rows) {
    std::string text;
    const std::string area = format(r.src, r.outlen, &text);
    EXPECT_EQ(text, r.text) << r.src << " in " << r.outlen;
    EXPECT_EQ(area.back(), '\0');
  }
  std::string text;
  EXPECT_EQ(format("1234", 10, &text), std::string("    1,234\0", 10));
}

TEST(ThousandsFormat, NullSourceAndEmptyArea) {
  char out[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(cm_cfrmt(nullptr, out, 4), nullptr);
  EXPECT_EQ(cm_cfrmt("12", out, 0), nullptr);
  EXPECT_EQ(std::string(out, 4), "xxxx");
}

}  // namespace
