// Leading-zero blanking and thousands separators.
#include <gtest/gtest.h>

#include <string>

#include "orlo_fields.h"

namespace {

TEST(BlankLeadingZeros, BlanksOnlyTheLeadingRun) {
  std::string a = "00120";
  EXPECT_EQ(cm_bllz(a.data(), 5), 2);
  EXPECT_EQ(a, "  120");
  std::string b = "0000";
  EXPECT_EQ(cm_bllz(b.data(), 4), 4);
  EXPECT_EQ(b, "    ");
  std::string c = " 012";
  EXPECT_EQ(cm_bllz(c.data(), 4), 0);
  EXPECT_EQ(c, " 012");
  std::string d = "0";
  EXPECT_EQ(cm_bllz(d.data(), 1), 1);
  EXPECT_EQ(d, " ");
}

TEST(BlankLeadingZeros, StaysInsideTheField) {
  std::string e = "000";
  EXPECT_EQ(cm_bllz(e.data(), 2), 2);
  EXPECT_EQ(e, "  0");
  EXPECT_EQ(cm_bllz(e.data(), 0), -1);
  EXPECT_EQ(cm_bllz(e.data(), -3), -1);
}

std::string format(const char *src, int32_t outlen,
                   std::string *area = nullptr) {
  std::string out(static_cast<size_t>(outlen), 'x');
  char *p = cm_cfrmt(src, out.data(), outlen);
  if (area) *area = out;
  EXPECT_NE(p, nullptr);
  if (p == nullptr) return "<null>";
  EXPECT_GE(p, out.data());
  EXPECT_LT(p, out.data() + outlen);
  return p;
}

TEST(ThousandsFormat, InsertsCommasBetweenGroups) {
  EXPECT_EQ(format("1234567", 21), "1,234,567");
  EXPECT_EQ(format("1000", 21), "1,000");
  EXPECT_EQ(format("100", 21), "100");
  EXPECT_EQ(format("999", 21), "999");
  EXPECT_EQ(format("123456", 21), "123,456");
  EXPECT_EQ(format("-1234", 21), "-1,234");
  EXPECT_EQ(format("7", 21), "7");
  EXPECT_EQ(format("12.5000", 21), "12.5,000");
}

TEST(ThousandsFormat, TextEndsJustBeforeTheTerminator) {
  std::string area;
  EXPECT_EQ(format("1234", 10, &area), "1,234");
  EXPECT_EQ(area, std::string("    1,234\0", 10));
}

TEST(ThousandsFormat, NullEmptyAndShortAreas) {
  char out[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(cm_cfrmt(nullptr, out, 4), nullptr);
  EXPECT_EQ(out[0], 'x');
  EXPECT_EQ(cm_cfrmt("12", out, 0), nullptr);
  EXPECT_EQ(format("", 5), "");
  // Too long for the area: cut on the left, never written before it.
  std::string area;
  EXPECT_EQ(format("1234567", 6, &area), "4,567");
  EXPECT_EQ(format("12", 1), "");
}

}  // namespace
