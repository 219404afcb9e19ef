// Tests of hk_cvtr, the premise number parser.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>

#include "orlo_matcher.h"

namespace {

// One conversion: the result code and the two (value, kind) pairs.
struct Premise {
  int32_t rc;
  int32_t v1;
  char k1;
  int32_t v2;
  char k2;

  bool operator==(const Premise &) const = default;
};

void PrintTo(const Premise &p, std::ostream *os) {
  *os << "rc " << p.rc << ", " << p.v1 << " '" << p.k1 << "', " << p.v2 << " '"
      << p.k2 << "'";
}

// Outputs preset to values that no conversion produces, so that a test sees
// whether they were written.
constexpr Premise kUntouched{-99, -7, '?', -8, '!'};

Premise convert(const std::string &text) {
  Premise p = kUntouched;
  p.rc = hk_cvtr(text.c_str(), &p.v1, &p.k1, &p.v2, &p.k2);
  return p;
}

constexpr Premise ok(int32_t v1, char k1, int32_t v2, char k2) {
  return {0, v1, k1, v2, k2};
}
constexpr Premise number(int32_t v) {
  return ok(v, 'N', 0, ' ');
}
constexpr Premise free_text(int32_t v) {
  return ok(v, 'E', 0, ' ');
}
constexpr Premise kEmpty{2, 0, ' ', 0, ' '};

// One row per shape the parser knows, its limits, and the cleaning rules:
// lower case, punctuation, control and high bytes become blanks, blank runs
// collapse, and a cleaned text matching no shape is free text.
TEST(PremiseParser, Table) {
  const struct {
    const char *text;
    Premise want;
  } rows[] = {
      {"12", number(12)},
      {"0", number(0)},
      {"2147483647", number(INT32_MAX)},
      {"2147483648", number(INT32_MAX)},  // saturates like a 32-bit strtol
      {"99999999999999999999", number(INT32_MAX)},
      {"0000002147483646", number(2147483646)},
      {" 12", number(12)},
      {"--0042", number(42)},
      {"\xc1"
       "12",
       number(12)},  // 'A' + 128 is no letter
      {"12A", ok(12, 'N', 65, 'A')},
      {"12 AB", ok(12, 'N', 716, 'A')},
      {"1234567890A", free_text(-53648895)},
      {"12 ABC", free_text(7428749)},
      {"A12", ok(65, 'A', 12, 'N')},
      {"ABC 12", free_text(5529425)},
      {"A", ok(65, 'A', 0, ' ')},
      {"BA", ok(725, 'A', 0, ' ')},
      {"ZZ", ok(990, 'A', 0, ' ')},
      {"-ab Z", ok(90, 'A', 0, ' ')},
      {"12-14", ok(12, 'N', 14, 'N')},
      {"12.5", ok(12, 'N', 5, 'N')},
      {"12 - 14", ok(12, 'N', 14, 'N')},
      {"1\x1b"
       "2",
       ok(1, 'N', 2, 'N')},
      {"n12e5", ok(12, 'N', 5, 'N')},  // lower case: no grid
      {"12 12345", free_text(587652749)},
      {"12345678 1234", free_text(1474973441)},
      {"12 1/2", ok(12, 'N', 3, 'F')},
      {"12 5/8", ok(12, 'N', 0, ' ')},  // unknown fraction: number only
      {"12 0/0", ok(12, 'N', 0, ' ')},
      {"12345678 1/2", free_text(-506955007)},
      {"12 10/3", free_text(56232749)},
      {"12 1/2 ", free_text(37522749)},
      {"1/2", ok(1, 'N', 2, 'N')},
      {"1/23", ok(1, 'N', 23, 'N')},
      {"12/14", ok(12, 'N', 14, 'N')},
      {"12/345", ok(12, 'N', 345, 'N')},
      {"123/456", ok(123, 'N', 456, 'N')},
      {"123/4567", ok(123, 'N', 4567, 'N')},
      {"1234/56789", ok(1234, 'N', 56789, 'N')},
      {"12/4", free_text(57249)},
      {"/", free_text(47)},
      {"N12E5", ok(1000012, 'G', 3000005, 'G')},
      {"S1W99999", ok(2000001, 'G', 4099999, 'G')},
      {"W12345N1", ok(4012345, 'G', 1000001, 'G')},
      {"N0N0", ok(1000000, 'G', 1000000, 'G')},
      {"E5S3", ok(3000005, 'G', 2000003, 'G')},
      {"1N234", ok(1, 'G', 1000234, 'G')},
      {"12N345", ok(12, 'G', 1000345, 'G')},
      {"X12E5", free_text(604578)},
      {"N12X5", free_text(623568)},
      {"1X234", free_text(576929)},
      {"N123456E1", free_text(1354909272)},
      {"E12N", free_text(83559)},
      {"ABC", free_text(7425)},
      {"G/F", free_text(7541)},
      {"A/B", free_text(7135)},
      {"AB12CD", free_text(7525625)},
      {"ABCDEFGHIJ", free_text(494386801)},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", free_text(-2093630863)},  // wraps
      {"12-", free_text(3749)},  // a trailing blank fits no shape
      {"12  ", free_text(3749)},
      {" 12 ", free_text(3749)},
      {"", kEmpty},
      {"-", kEmpty},
      {"- . ,", kEmpty},
      {"abc", kEmpty},
  };
  for (const auto &r : rows) {
    EXPECT_EQ(convert(r.text), r.want) << "text \"" << r.text << "\"";
  }
}

// 99 characters are the most that convert; longer texts give 1 and leave
// every output as it was.
TEST(PremiseParser, LengthLimit) {
  EXPECT_EQ(convert(std::string(99, 'X')), free_text(1908874344));
  EXPECT_EQ(convert("1" + std::string(98, '0')), number(INT32_MAX));
  EXPECT_EQ(convert(std::string(98, ' ') + "7"), number(7));
  for (const std::string &text :
       {std::string(100, 'X'), std::string(100, '1'), std::string(100, ' '),
        std::string(99, ' ') + "7"}) {
    Premise p = convert(text);
    EXPECT_EQ(p.rc, 1) << text.size() << " characters";
    p.rc = kUntouched.rc;
    EXPECT_EQ(p, kUntouched) << text.size() << " characters";
  }
  char text[] = " a-12 ";
  Premise p;
  ASSERT_EQ(hk_cvtr(text, &p.v1, &p.k1, &p.v2, &p.k2), 0);
  EXPECT_STREQ(text, " a-12 ");  // the text is not modified
}

// Every byte alone and after "12": digits and capitals survive cleaning, a
// slash is free text, anything else is a blank.
TEST(PremiseParser, EveryByteValue) {
  for (int b = 1; b < 256; ++b) {
    SCOPED_TRACE(b);
    const std::string byte(1, static_cast<char>(b));
    const Premise alone = convert(byte);
    const Premise after = convert("12" + byte);
    if (b >= '0' && b <= '9') {
      EXPECT_EQ(alone, number(b - '0'));
      EXPECT_EQ(after, number(120 + b - '0'));
    } else if (b >= 'A' && b <= 'Z') {
      EXPECT_EQ(alone, ok(b, 'A', 0, ' '));
      EXPECT_EQ(after, ok(12, 'N', b, 'A'));
    } else if (b == '/') {
      EXPECT_EQ(alone, free_text(47));
      EXPECT_EQ(after, free_text(49 + 500 + 4700));
    } else {
      EXPECT_EQ(alone, kEmpty);
      EXPECT_EQ(after, free_text(3749));
    }
  }
}

std::string digits(int k) {
  return std::string("123456789012").substr(0, k);
}
int32_t value_of(int k) {
  return std::stoi(digits(k));
}

// The digit limits of each shape: a number with a letter suffix or prefix up
// to nine digits, two numbers up to seven and four, a known fraction after
// up to seven.
TEST(PremiseParser, ShapesUpToTheirDigitLimits) {
  for (int k = 1; k <= 9; ++k) {
    SCOPED_TRACE(k);
    const int32_t v = value_of(k);
    EXPECT_EQ(convert(digits(k) + "B"), ok(v, 'N', 66, 'A'));
    EXPECT_EQ(convert(digits(k) + " BA"), ok(v, 'N', 725, 'A'));
    EXPECT_EQ(convert("B" + digits(k)), ok(66, 'A', v, 'N'));
    EXPECT_EQ(convert("BA-" + digits(k)), ok(725, 'A', v, 'N'));
  }
  for (int i = 1; i <= 7; ++i) {
    for (int j = 1; j <= 4; ++j) {
      EXPECT_EQ(convert(digits(i) + " " + digits(j)),
                ok(value_of(i), 'N', value_of(j), 'N'))
          << i << " " << j;
    }
    const struct {
      const char *fraction;
      int32_t code;
    } fractions[] = {
        {"1/4", 1}, {"1/3", 2}, {"1/2", 3}, {"2/3", 4}, {"3/4", 5}};
    for (const auto &f : fractions) {
      EXPECT_EQ(convert(digits(i) + " " + f.fraction),
                ok(value_of(i), 'N', f.code, 'F'))
          << digits(i) << " " << f.fraction;
    }
  }
}

// Free text weights grow by powers of ten from the left and wrap in 32 bits,
// so equal texts give equal values and characters from position 32 on add
// nothing (10^32 is a multiple of 2^32).
TEST(PremiseParser, FreeTextValue) {
  const std::string text =
      "FLAT ROOF TOP FLOOR REAR BLOCK " + std::string(60, 'Q');
  ASSERT_EQ(convert(text).k1, 'E');
  EXPECT_EQ(convert(text + "-"), convert(text + "."));
  const std::string head(32, 'Z');
  EXPECT_EQ(convert(head + "ABC").v1, convert(head + "XYZ").v1);
  EXPECT_NE(convert(std::string(31, 'Z') + "A").v1,
            convert(std::string(31, 'Z') + "B").v1);
}

}  // namespace
