// Mapping of the caller's source record into the input record (hk_amat):
// each row places texts at source offsets and names the input fields it
// expects; fields not named must be blank.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orlo_matcher.h"

namespace {

struct Field {
  const char *name;
  size_t off, len;
};
constexpr Field kRefcode{"refcode", 7, 3}, kPremno{"premno", 10, 8},
    kStreet{"street", 18, 30}, kBldg{"bldg", 48, 30}, kUnit{"unit", 78, 25},
    kExtra{"extra", 103, 30}, kDistrict{"district", 133, 30},
    kRegion{"region", 163, 30}, kUnitext{"unitext", 193, 5},
    kMode{"mode", 199, 1};
constexpr Field kFields[] = {kRefcode, kPremno,   kStreet, kBldg,    kUnit,
                             kExtra,   kDistrict, kRegion, kUnitext, kMode};

// Offset of `off` inside further-line group k of the source record.
constexpr size_t group(size_t k, size_t off) {
  return 2818 + 571 * k + off;
}

struct Put {
  size_t off;
  std::string text;
};
struct Want {
  Field field;
  std::string text;  // padded with blanks to the field's width
};
struct Case {
  const char *note;
  std::vector<Put> puts;
  std::vector<Want> want;  // mode 4 (no branch) unless given
};

// clang-format off
const Case kCases[] = {
  {"an empty source gives a blank record with mode 4", {}, {}},
  {"branch 827 wins over the others and orders its street pieces",
     {{937, "88"}, {827, "NATHAN"}, {877, "ROAD"}, {961, "TST"},
        {985, "OTHER STREET"}, {1042, "OTHER BLDG"}, {1103, "CHUNGKING"},
        {1153, "MANSIONS"}, {781, "36"}},
     {{kStreet, "88 NATHAN ROAD TST"}, {kBldg, "CHUNGKING MANSIONS"},
        {kPremno, "36"}, {kMode, "1"}}},
  // The street fills the work area far enough that a building composed in
  // the same area would carry part of it.
  {"branch 985 composes the building in a fresh area",
     {{985, "KWUN TONG ROAD EAST"}, {1025, "SECTION"}, {1103, "APM"},
        {781, "418"}},
     {{kStreet, "KWUN TONG ROAD EAST SECTION"}, {kBldg, "APM"},
        {kPremno, "418"}, {kMode, "1"}}},
  {"branch 1042 takes building and street from other pieces",
     {{1042, "TIMES SQUARE"}, {1103, "MATHESON"}, {1153, "STREET"}, {1082, "1"},
        {781, "9"}},
     {{kStreet, "MATHESON STREET"}, {kBldg, "TIMES SQUARE"}, {kPremno, "1"},
        {kMode, "3"}}},
  {"branch 1103 leaves building and number blank",
     {{1103, "X"}, {1128, "QUEEN'S ROAD"}, {1168, "CENTRAL"}, {781, "99"}},
     {{kStreet, "QUEEN'S ROAD CENTRAL"}, {kMode, "1"}}},
  {"the unit line is squeezed and split over unit and unitext",
     {{1103, "X"}, {1343, "TWENTY-THIRD FLOOR"}, {1383, "FLAT"},
        {1404, "BLOCK B"}, {1444, "ROOM 12"}},
     {{kUnit, "TWENTY-THIRD FLOOR FLAT B"}, {kUnitext, "LOCK"}, {kMode, "1"}}},
  {"without a branch the unit line is not mapped", {{1343, "12/F"}}, {}},
  {"flag 00 at 725 takes the further line from 1526, not from a group",
     {{725, "00"}, {1526, "NEAR MTR EXIT B"}, {group(0, 362), "IGNORED"}},
     {{kExtra, "NEAR MTR EXIT B"}}},
  {"flag 00 with nothing at 1526 gives a blank further line",
     {{725, "00"}, {group(0, 362), "IGNORED"}}, {}},
  {"the further line comes from the first group of type 2",
     {{group(0, 0), "1"}, {group(1, 0), "1"}, {group(2, 0), "2"},
        {group(2, 362), "GROUP TWO LINE"}, {group(0, 16), "GROUP ZERO"}},
     {{kExtra, "GROUP TWO LINE"}}},
  {"a type 1 group 0 composes its pieces in their own order",
     {{group(0, 0), "1"}, {group(0, 16), "PIECE1"}, {group(0, 46), "PIECE2"},
        {group(0, 181), "LONG"}, {group(0, 251), "TEN"},
        {group(0, 226), "LAST"}, {group(0, 362), "NOT THIS"}},
     {{kExtra, "PIECE1 PIECE2 LONG TEN LAST"}}},
  {"another group type copies its line as one",
     {{group(0, 0), "3"}, {group(0, 362), "AS ONE"}}, {{kExtra, "AS ONE"}}},
  // Region and district.
  {"KOWLOON becomes KLN, the district is copied",
     {{2338, "KOWLOON"}, {2241, "MONG KOK"}},
     {{kRegion, "KLN"}, {kDistrict, "MONG KOK"}}},
  {"HONG KONG becomes HK", {{2338, "HONG KONG"}}, {{kRegion, "HK"}}},
  {"NEW TERRITORIES becomes NT", {{2338, "NEW TERRITORIES"}},
     {{kRegion, "NT"}}},
  {"a region name followed by one blank only is kept as given",
     {{2338, "HONG KONG ISLAND"}}, {{kRegion, "HONG KONG ISLAND"}}},
  {"a given region with a blank district takes the alternative district",
     {{2338, "NT"}, {2271, "SAI KUNG"}},
     {{kRegion, "NT"}, {kDistrict, "SAI KUNG"}}},
  {"district HK gives region HK", {{2241, "HK"}},
     {{kRegion, "HK"}, {kDistrict, "HK"}}},
  {"district KOWLOON CITY names no region", {{2241, "KOWLOON CITY"}},
     {{kDistrict, "KOWLOON CITY"}}},
  {"district KOWLOON gives KLN", {{2241, "KOWLOON"}},
     {{kRegion, "KLN"}, {kDistrict, "KOWLOON"}}},
  {"a district naming a region wins over the region number",
     {{2241, "NT"}, {2469, "00001 "}}, {{kRegion, "NT"}, {kDistrict, "NT"}}},
  {"region number 00002 gives KLN", {{2241, "SHATIN"}, {2469, "00002 "}},
     {{kRegion, "KLN"}, {kDistrict, "SHATIN"}}},
  {"an unknown region number gives no region",
     {{2241, "SHATIN"}, {2469, "00004 "}}, {{kDistrict, "SHATIN"}}},
  {"a blank district ignores the region number", {{2469, "00003 "}}, {}},
  // Reference code and mode overrides.
  {"code 004 at 778 gives mode F even in branch 1042; refcode from 2429",
     {{1042, "X"}, {778, "004"}, {2429, "YTM"}},
     {{kBldg, "X"}, {kMode, "F"}, {kRefcode, "YTM"}}},
  {"a reference code with a leading blank is still given", {{2429, " AB"}},
     {{kRefcode, " AB"}}},
  {"a further line at 1526 with a leading blank is taken",
     {{725, "00"}, {1527, "QUEEN'S ROAD"}}, {{kExtra, " QUEEN'S ROAD"}}},
  {"F at 728 gives mode F", {{1103, "X"}, {728, "F"}}, {{kMode, "F"}}},
  {"code 011 gives mode E", {{1103, "X"}, {778, "011"}}, {{kMode, "E"}}},
  {"other codes leave the mode", {{778, "012"}}, {}},
};
// clang-format on

TEST(InputMapping, SourceRecordsMapToTheirFields) {
  for (const Case &c : kCases) {
    SCOPED_TRACE(c.note);
    std::string src(HKSRCREC_SIZE, ' ');
    for (const Put &p : c.puts) src.replace(p.off, p.text.size(), p.text);
    std::string in(HKINREC_SIZE, '#');
    hk_amat(src.data(), in.data());
    std::string expected(HKINREC_SIZE, ' ');
    expected[kMode.off] = '4';
    for (const Want &w : c.want) {
      std::string text = w.text;
      text.resize(w.field.len, ' ');
      expected.replace(w.field.off, w.field.len, text);
    }
    for (const Field &f : kFields)
      EXPECT_EQ(in.substr(f.off, f.len), expected.substr(f.off, f.len))
          << f.name;
    EXPECT_EQ(in, expected) << "bytes outside the named fields";
  }
}

}  // namespace
