// Mapping of the caller's source record into the input record.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "orlo_matcher.h"

namespace {

// A blank source record with texts placed at their offsets.
class Source {
 public:
  Source() : bytes_(HKSRCREC_SIZE, ' ') {}
  Source &put(size_t offset, std::string_view text) {
    bytes_.replace(offset, text.size(), text);
    return *this;
  }
  Source &group(int k, size_t offset, std::string_view text) {
    return put(2818 + 571 * static_cast<size_t>(k) + offset, text);
  }
  std::string map() const {
    std::string in(HKINREC_SIZE, '#');
    hk_amat(bytes_.data(), in.data());
    return in;
  }

 private:
  std::string bytes_;
};

std::string pad(std::string_view s, size_t width) {
  std::string out(s);
  out.resize(width, ' ');
  return out;
}

std::string street(const std::string &in) {
  return in.substr(18, 30);
}
std::string bldg(const std::string &in) {
  return in.substr(48, 30);
}
std::string premno(const std::string &in) {
  return in.substr(10, 8);
}
std::string extra(const std::string &in) {
  return in.substr(103, 30);
}
std::string district(const std::string &in) {
  return in.substr(133, 30);
}
std::string region(const std::string &in) {
  return in.substr(163, 30);
}
char mode(const std::string &in) {
  return in[199];
}

TEST(InputMapping, EmptySourceGivesBlankRecordWithMode4) {
  std::string in = Source().map();
  EXPECT_EQ(in, std::string(199, ' ') + "4");
}

TEST(InputMapping, Branch827WinsAndOrdersItsStreetPieces) {
  std::string in = Source()
                       .put(937, "88")
                       .put(827, "NATHAN")
                       .put(877, "ROAD")
                       .put(961, "TST")
                       .put(985, "OTHER STREET")
                       .put(1042, "OTHER BLDG")
                       .put(1103, "CHUNGKING")
                       .put(1153, "MANSIONS")
                       .put(781, "36")
                       .map();
  EXPECT_EQ(street(in), pad("88 NATHAN ROAD TST", 30));
  EXPECT_EQ(bldg(in), pad("CHUNGKING MANSIONS", 30));
  EXPECT_EQ(premno(in), pad("36", 8));
  EXPECT_EQ(mode(in), '1');
}

TEST(InputMapping, Branch985BuildingComposedInAFreshArea) {
  // A street of 28 characters fills the 100-byte area up to position 28;
  // the building must not carry any of it.
  std::string in = Source()
                       .put(985, "KWUN TONG ROAD EAST")
                       .put(1025, "SECTION")
                       .put(1103, "APM")
                       .put(781, "418")
                       .map();
  EXPECT_EQ(street(in), pad("KWUN TONG ROAD EAST SECTION", 30));
  EXPECT_EQ(bldg(in), pad("APM", 30));
  EXPECT_EQ(mode(in), '1');
}

TEST(InputMapping, Branch1042TakesBuildingAndStreetFromOtherPieces) {
  std::string in = Source()
                       .put(1042, "TIMES SQUARE")
                       .put(1103, "MATHESON")
                       .put(1153, "STREET")
                       .put(1082, "1")
                       .map();
  EXPECT_EQ(street(in), pad("MATHESON STREET", 30));
  EXPECT_EQ(bldg(in), pad("TIMES SQUARE", 30));
  EXPECT_EQ(premno(in), pad("1", 8));
  EXPECT_EQ(mode(in), '3');
}

TEST(InputMapping, Branch1103LeavesBuildingAndNumberBlank) {
  std::string in = Source()
                       .put(1103, "X")
                       .put(1128, "QUEEN'S ROAD")
                       .put(1168, "CENTRAL")
                       .put(781, "99")
                       .map();
  EXPECT_EQ(street(in), pad("QUEEN'S ROAD CENTRAL", 30));
  EXPECT_EQ(bldg(in), pad("", 30));
  EXPECT_EQ(premno(in), pad("", 8));
}

TEST(InputMapping, UnitLineSqueezedAndSplitIntoTwoPieces) {
  std::string in = Source()
                       .put(1103, "X")
                       .put(1343, "TWENTY-THIRD FLOOR")
                       .put(1383, "FLAT")
                       .put(1404, "BLOCK B")
                       .put(1444, "ROOM 12")
                       .map();
  std::string line = "TWENTY-THIRD FLOOR FLAT BLOCK B ROOM 12";
  EXPECT_EQ(in.substr(78, 25), line.substr(0, 25));
  EXPECT_EQ(in.substr(193, 5), line.substr(25, 5));
}

TEST(InputMapping, FurtherLineFromOffset1526WhenFlagged) {
  std::string in = Source().put(725, "00").put(1526, "NEAR MTR EXIT B").map();
  EXPECT_EQ(extra(in), pad("NEAR MTR EXIT B", 30));
  std::string none = Source().put(725, "00").group(0, 362, "IGNORED").map();
  EXPECT_EQ(extra(none), pad("", 30));
}

TEST(InputMapping, FurtherLineFromTheFirstType2Group) {
  std::string in = Source()
                       .group(0, 0, "1")
                       .group(1, 0, "1")
                       .group(2, 0, "2")
                       .group(2, 362, "GROUP TWO LINE")
                       .group(0, 16, "GROUP ZERO")
                       .map();
  EXPECT_EQ(extra(in), pad("GROUP TWO LINE", 30));
}

TEST(InputMapping, Type1GroupZeroComposesItsPieces) {
  std::string in = Source()
                       .group(0, 0, "1")
                       .group(0, 16, "PIECE1")
                       .group(0, 46, "PIECE2")
                       .group(0, 181, "LONG")
                       .group(0, 251, "TEN")
                       .group(0, 226, "LAST")
                       .group(0, 362, "NOT THIS")
                       .map();
  EXPECT_EQ(extra(in), pad("PIECE1 PIECE2 LONG TEN LAST", 30));
  std::string copied = Source().group(0, 0, "3").group(0, 362, "AS ONE").map();
  EXPECT_EQ(extra(copied), pad("AS ONE", 30));
}

struct RegionCase {
  const char *name;
  std::string given_region;
  std::string given_district;
  std::string number;
  std::string region;
  std::string district;
};

class RegionRules : public ::testing::TestWithParam<RegionCase> {};

TEST_P(RegionRules, RegionAndDistrict) {
  const RegionCase &c = GetParam();
  Source s;
  s.put(2338, pad(c.given_region, 30))
      .put(2241, pad(c.given_district, 30))
      .put(2469, c.number);
  std::string in = s.map();
  EXPECT_EQ(region(in), pad(c.region, 30));
  EXPECT_EQ(district(in), pad(c.district, 30));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, RegionRules,
    ::testing::Values(
        RegionCase{"kowloon", "KOWLOON", "MONG KOK", "", "KLN", "MONG KOK"},
        RegionCase{"hong_kong", "HONG KONG", "", "", "HK", ""},
        RegionCase{"new_territories", "NEW TERRITORIES", "", "", "NT", ""},
        RegionCase{"one_blank_then_text", "HONG KONG ISLAND", "", "",
                   "HONG KONG ISLAND", ""},
        RegionCase{"district_hk", "", "HK", "", "HK", "HK"},
        RegionCase{"district_kowloon", "", "KOWLOON CITY", "", "",
                   "KOWLOON CITY"},
        RegionCase{"district_kowloon_two_blanks", "", "KOWLOON", "", "KLN",
                   "KOWLOON"},
        RegionCase{"district_nt", "", "NT", "00001 ", "NT", "NT"},
        RegionCase{"number_00002", "", "SHATIN", "00002 ", "KLN", "SHATIN"},
        RegionCase{"number_unknown", "", "SHATIN", "00004 ", "", "SHATIN"},
        RegionCase{"blank_district_no_number", "", "", "00003 ", "", ""}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(InputMapping, AlternativeDistrictWhenFirstIsBlank) {
  std::string in = Source().put(2338, "NT").put(2271, "SAI KUNG").map();
  EXPECT_EQ(district(in), pad("SAI KUNG", 30));
  EXPECT_EQ(region(in), pad("NT", 30));
}

TEST(InputMapping, ReferenceCodeAndModeOverrides) {
  std::string in =
      Source().put(1042, "X").put(778, "004").put(2429, "YTM").map();
  EXPECT_EQ(mode(in), 'F');
  EXPECT_EQ(in.substr(7, 3), "YTM");
  EXPECT_EQ(mode(Source().put(1103, "X").put(728, "F").map()), 'F');
  EXPECT_EQ(mode(Source().put(1103, "X").put(778, "011").map()), 'E');
  EXPECT_EQ(mode(Source().put(778, "012").map()), '4');
}

}  // namespace
