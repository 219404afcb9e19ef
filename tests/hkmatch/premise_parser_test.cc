// Tests of hk_cvtr, the premise number parser.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

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

Premise ok(int32_t v1, char k1, int32_t v2, char k2) {
  return {0, v1, k1, v2, k2};
}
Premise number(int32_t v) {
  return ok(v, 'N', 0, ' ');
}
Premise free_text(int32_t v) {
  return ok(v, 'E', 0, ' ');
}
constexpr Premise kEmpty{2, 0, ' ', 0, ' '};

// ---- The table of sample results -------------------------------------------

struct Sample {
  const char *text;
  Premise expected;
};

class SampleResults : public testing::TestWithParam<Sample> {};

TEST_P(SampleResults, Convert) {
  EXPECT_EQ(convert(GetParam().text), GetParam().expected)
      << "text \"" << GetParam().text << "\"";
}

INSTANTIATE_TEST_SUITE_P(
    Table, SampleResults,
    testing::Values(Sample{"12", number(12)}, Sample{"0012", number(12)},
                    Sample{"12A", ok(12, 'N', 65, 'A')},
                    Sample{"12 AB", ok(12, 'N', 716, 'A')},
                    Sample{"A12", ok(65, 'A', 12, 'N')},
                    Sample{"12-14", ok(12, 'N', 14, 'N')},
                    Sample{"12.5", ok(12, 'N', 5, 'N')},
                    Sample{"12 1/2", ok(12, 'N', 3, 'F')},
                    Sample{"12 5/8", ok(12, 'N', 0, ' ')},
                    Sample{"12/14", ok(12, 'N', 14, 'N')},
                    Sample{"N12E5", ok(1000012, 'G', 3000005, 'G')},
                    Sample{"1N234", ok(1, 'G', 1000234, 'G')},
                    Sample{"X12E5", free_text(604578)},
                    Sample{"ABC", free_text(7425)},
                    Sample{"G/F", free_text(7541)},
                    Sample{"12-", free_text(3749)}, Sample{"", kEmpty},
                    Sample{"-", kEmpty}));

// ---- Length limits and empty texts -----------------------------------------

TEST(PremiseLength, NinetyNineCharactersConvert) {
  EXPECT_EQ(convert(std::string(99, 'X')), free_text(1908874344));
  EXPECT_EQ(convert("1" + std::string(98, '0')), number(INT32_MAX));
  EXPECT_EQ(convert(std::string(98, ' ') + "7"), number(7));
}

TEST(PremiseLength, LongerTextsLeaveEveryOutputAsItWas) {
  for (const std::string &text :
       {std::string(100, 'X'), std::string(100, '1'), std::string(100, ' '),
        std::string(99, ' ') + "7", std::string(300, 'A')}) {
    Premise p = convert(text);
    EXPECT_EQ(p.rc, 1) << text.size() << " characters";
    p.rc = kUntouched.rc;
    EXPECT_EQ(p, kUntouched) << text.size() << " characters";
  }
}

TEST(PremiseLength, TextsThatCleaningEmptiesAreEmpty) {
  for (const char *text : {"-", "  ", "#", " ", "---", "- . ,", "abc",
                           "\x80\xff", "\t", "?@:;", "[`{~\x7f"}) {
    EXPECT_EQ(convert(text), kEmpty) << "text \"" << text << "\"";
  }
}

TEST(PremiseLength, TheTextIsNotModified) {
  char text[] = " a-12 ";
  int32_t v1, v2;
  char k1, k2;
  ASSERT_EQ(hk_cvtr(text, &v1, &k1, &v2, &k2), 0);
  EXPECT_STREQ(text, " a-12 ");
}

// ---- Plain numbers
// ------------------------------------------------------------

TEST(PremiseNumber, DigitsConvertAsStrtolWithThirtyTwoBitLong) {
  EXPECT_EQ(convert("0"), number(0));
  EXPECT_EQ(convert("000"), number(0));
  EXPECT_EQ(convert("2147483647"), number(INT32_MAX));
  EXPECT_EQ(convert("2147483648"), number(INT32_MAX));
  EXPECT_EQ(convert("99999999999999999999"), number(INT32_MAX));
  EXPECT_EQ(convert("0000002147483646"), number(2147483646));
}

TEST(PremiseNumber, DigitsLeftAfterCleaningConvertTheSameWay) {
  EXPECT_EQ(convert(" 12"), number(12));
  EXPECT_EQ(convert("#12"), number(12));
  EXPECT_EQ(convert("a12"), number(12));
  EXPECT_EQ(convert("--0042"), number(42));
  EXPECT_EQ(convert("#2147483648"), number(INT32_MAX));
}

// ---- Cleaning
// ------------------------------------------------------------------

TEST(PremiseCleaning, SeparatorsBetweenNumbersBecomeOneBlank) {
  for (const char *text : {"12-14", "12,14", "12.14", "12 14", "12 - 14",
                           "12--14", "12:14", "12\t14",
                           "12\x7f"
                           "14"}) {
    EXPECT_EQ(convert(text), ok(12, 'N', 14, 'N')) << "text \"" << text << "\"";
  }
}

TEST(PremiseCleaning, ABlankedCharacterAtTheEndLeavesATrailingBlank) {
  // All of these clean to "12 ", which no table holds.
  for (const char *text :
       {"12a", "12-", "12 ", "12  ", "12 -", "12@", "12\xff", "12\n", " 12 "}) {
    EXPECT_EQ(convert(text), free_text(3749)) << "text \"" << text << "\"";
  }
}

TEST(PremiseCleaning, LowerCaseLettersAreBlanked) {
  EXPECT_EQ(convert("a12"), number(12));
  EXPECT_EQ(convert("12a"), free_text(3749));
  EXPECT_EQ(convert("12A"), ok(12, 'N', 65, 'A'));
  // n12e5 cleans to "12 5": two numbers, no grid.
  EXPECT_EQ(convert("n12e5"), ok(12, 'N', 5, 'N'));
  EXPECT_EQ(convert("ab"), kEmpty);
}

TEST(PremiseCleaning, HighBytesAndControlCharactersAreBlanks) {
  EXPECT_EQ(convert("\x01"
                    "A"),
            ok(65, 'A', 0, ' '));
  EXPECT_EQ(convert("\x80\x81"
                    "12"
                    "\xc1"),
            free_text(3749));
  // 0xC1 is 'A' + 128 and must not pass for a letter.
  EXPECT_EQ(convert("\xc1"
                    "12"),
            number(12));
  EXPECT_EQ(convert("1\x1b"
                    "2"),
            ok(1, 'N', 2, 'N'));
  EXPECT_EQ(convert("\x01\x02\x03"), kEmpty);
}

TEST(PremiseCleaning, EveryByteValueGivesADefinedResult) {
  for (int b = 1; b < 256; ++b) {
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
      EXPECT_EQ(alone, kEmpty) << "byte " << b;
      EXPECT_EQ(after, free_text(3749)) << "byte " << b;
    }
  }
}

TEST(PremiseCleaning, RandomByteStringsConvertToKnownKinds) {
  // Any byte string within the limit converts or is empty; the kinds come
  // from the known set and pair up as the classes allow.
  std::mt19937 gen(20240601);
  // Mostly characters that survive cleaning, so that every class is reached.
  constexpr std::string_view kLikely = "0123456789NSEWAB /-";
  std::uniform_int_distribution<int> byte(1, 255);
  std::uniform_int_distribution<size_t> likely(0, kLikely.size() - 1);
  std::uniform_int_distribution<size_t> length(1, 99);
  std::uniform_int_distribution<size_t> short_length(1, 8);
  const std::string_view pair_kinds[] = {"N ", "NA", "AN", "NN", "A ",
                                         "NF", "GG", "E ", "  "};
  for (int round = 0; round < 20000; ++round) {
    std::string text(round % 2 ? length(gen) : short_length(gen), ' ');
    for (char &c : text) {
      c = gen() % 4 ? kLikely[likely(gen)] : static_cast<char>(byte(gen));
    }
    const Premise p = convert(text);
    ASSERT_TRUE(p.rc == 0 || p.rc == 2) << round;
    const std::string kinds{p.k1, p.k2};
    ASSERT_NE(std::find(std::begin(pair_kinds), std::end(pair_kinds), kinds),
              std::end(pair_kinds))
        << "kinds '" << kinds << "' in round " << round;
    if (p.k2 == ' ') {
      EXPECT_EQ(p.v2, 0);
    }
    if (p.rc == 2) {
      EXPECT_EQ(p, kEmpty);
    }
    EXPECT_EQ(convert(text), p);
  }
}

// ---- Classes by their rules
// ----------------------------------------------------

std::string digits(int k) {
  return std::string("123456789012").substr(0, k);
}
int32_t value_of(int k) {
  return std::stoi(digits(k));
}

TEST(PremiseClasses, NumberWithSuffixUpToNineDigits) {
  for (int k = 1; k <= 9; ++k) {
    SCOPED_TRACE(k);
    EXPECT_EQ(convert(digits(k) + "B"), ok(value_of(k), 'N', 66, 'A'));
    EXPECT_EQ(convert(digits(k) + "AB"), ok(value_of(k), 'N', 716, 'A'));
    EXPECT_EQ(convert(digits(k) + " B"), ok(value_of(k), 'N', 66, 'A'));
    EXPECT_EQ(convert(digits(k) + " BA"), ok(value_of(k), 'N', 725, 'A'));
  }
  EXPECT_EQ(convert("1234567890A"), free_text(-53648895));
  EXPECT_EQ(convert("12 ABC"), free_text(7428749));
}

TEST(PremiseClasses, LettersBeforeNumberUpToNineDigits) {
  for (int k = 1; k <= 9; ++k) {
    SCOPED_TRACE(k);
    EXPECT_EQ(convert("B" + digits(k)), ok(66, 'A', value_of(k), 'N'));
    EXPECT_EQ(convert("BA" + digits(k)), ok(725, 'A', value_of(k), 'N'));
    EXPECT_EQ(convert("B " + digits(k)), ok(66, 'A', value_of(k), 'N'));
    EXPECT_EQ(convert("BA-" + digits(k)), ok(725, 'A', value_of(k), 'N'));
  }
  EXPECT_EQ(convert("ABC 12"), free_text(5529425));
}

TEST(PremiseClasses, TwoNumbersUpToSevenAndFourDigits) {
  for (int i = 1; i <= 7; ++i) {
    for (int j = 1; j <= 4; ++j) {
      SCOPED_TRACE(testing::Message() << i << " " << j);
      EXPECT_EQ(convert(digits(i) + " " + digits(j)),
                ok(value_of(i), 'N', value_of(j), 'N'));
    }
  }
  EXPECT_EQ(convert("12 12345"), free_text(587652749));
  EXPECT_EQ(convert("12345678 1234"), free_text(1474973441));
}

TEST(PremiseClasses, LettersOnly) {
  EXPECT_EQ(convert("A"), ok(65, 'A', 0, ' '));
  EXPECT_EQ(convert("BA"), ok(725, 'A', 0, ' '));
  EXPECT_EQ(convert("ZZ"), ok(990, 'A', 0, ' '));
  EXPECT_EQ(convert("-ab Z"), ok(90, 'A', 0, ' '));
}

TEST(PremiseClasses, EveryKnownFractionHasItsCode) {
  const struct {
    const char *fraction;
    int32_t code;
  } fractions[] = {{"1/4", 1}, {"1/3", 2}, {"1/2", 3}, {"2/3", 4}, {"3/4", 5}};
  for (const auto &f : fractions) {
    for (int i = 1; i <= 7; ++i) {
      EXPECT_EQ(convert(digits(i) + " " + f.fraction),
                ok(value_of(i), 'N', f.code, 'F'))
          << digits(i) << " " << f.fraction;
    }
  }
}

TEST(PremiseClasses, OtherFractionsKeepOnlyTheNumber) {
  for (const char *text : {"12 5/8", "12 2/4", "12 0/0", "12 4/3", "12 2/1"}) {
    EXPECT_EQ(convert(text), ok(12, 'N', 0, ' ')) << "text \"" << text << "\"";
  }
  EXPECT_EQ(convert("12345678 1/2"), free_text(-506955007));
  EXPECT_EQ(convert("12 10/3"), free_text(56232749));
  EXPECT_EQ(convert("12 1/2 "), free_text(37522749));
}

TEST(PremiseClasses, GridOfCompassLettersAndNumbers) {
  EXPECT_EQ(convert("S1W99999"), ok(2000001, 'G', 4099999, 'G'));
  EXPECT_EQ(convert("W12345N1"), ok(4012345, 'G', 1000001, 'G'));
  EXPECT_EQ(convert("E5S3"), ok(3000005, 'G', 2000003, 'G'));
  EXPECT_EQ(convert("N0N0"), ok(1000000, 'G', 1000000, 'G'));
  EXPECT_EQ(convert("12N345"), ok(12, 'G', 1000345, 'G'));
  EXPECT_EQ(convert("1W234"), ok(1, 'G', 4000234, 'G'));
}

TEST(PremiseClasses, GridWithoutCompassLettersIsFreeText) {
  EXPECT_EQ(convert("X12E5"), free_text(604578));
  EXPECT_EQ(convert("N12X5"), free_text(623568));
  EXPECT_EQ(convert("1X234"), free_text(576929));
  // Beyond the table: six digits in the first number.
  EXPECT_EQ(convert("N123456E1"), free_text(1354909272));
  EXPECT_EQ(convert("E12N"), free_text(83559));
}

TEST(PremiseClasses, NumbersAroundASlash) {
  EXPECT_EQ(convert("1/2"), ok(1, 'N', 2, 'N'));
  EXPECT_EQ(convert("1/23"), ok(1, 'N', 23, 'N'));
  EXPECT_EQ(convert("12/34"), ok(12, 'N', 34, 'N'));
  EXPECT_EQ(convert("12/345"), ok(12, 'N', 345, 'N'));
  EXPECT_EQ(convert("123/456"), ok(123, 'N', 456, 'N'));
  EXPECT_EQ(convert("123/4567"), ok(123, 'N', 4567, 'N'));
  EXPECT_EQ(convert("1234/56789"), ok(1234, 'N', 56789, 'N'));
  // Not in the table.
  EXPECT_EQ(convert("12/4"), free_text(57249));
  EXPECT_EQ(convert("/"), free_text(47));
}

// ---- Free text
// ------------------------------------------------------------------

TEST(PremiseFreeText, WeightsGrowFromTheLeftAndWrapInThirtyTwoBits) {
  EXPECT_EQ(convert("ABCDEFGHIJ"), free_text(494386801));
  EXPECT_EQ(convert("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), free_text(-2093630863));
  EXPECT_EQ(convert("AB12CD"), free_text(7525625));
  EXPECT_EQ(convert("A/B"), free_text(7135));
}

TEST(PremiseFreeText, EqualTextsGiveEqualValues) {
  const std::string text =
      "FLAT ROOF TOP FLOOR REAR BLOCK " + std::string(60, 'Q');
  const Premise first = convert(text);
  ASSERT_EQ(first.k1, 'E');
  EXPECT_EQ(convert(text), first);
  EXPECT_EQ(convert(text + "-"), convert(text + "."));
}

TEST(PremiseFreeText, CharactersFromPositionThirtyTwoOnCarryNoWeight) {
  // 10^32 is a multiple of 2^32, so later characters add nothing.
  const std::string head(32, 'Z');
  EXPECT_EQ(convert(head + "ABC").v1, convert(head + "XYZ").v1);
  EXPECT_NE(convert(std::string(31, 'Z') + "A").v1,
            convert(std::string(31, 'Z') + "B").v1);
}

}  // namespace
