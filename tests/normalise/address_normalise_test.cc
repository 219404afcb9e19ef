// The input normalisation through its C interface, as the front ends call
// it: texts as people type them, region spellings and districts, and whole
// addresses turned into input records.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "orlo_normalise.h"
#include "orlo_records.h"

namespace {

struct Tidied {
  int32_t status;
  std::string text;
  std::string reason;
};

Tidied tidy(const std::string &in, size_t cap = 30) {
  std::string out(cap, '#');
  size_t len = 0;
  ORLO_NORM_FAULT fault{};
  int32_t st =
      orlo_norm_text(in.data(), in.size(), out.data(), cap, &len, &fault);
  EXPECT_EQ(fault.status, st);
  out.resize(st == ORLO_NORM_OK ? len : std::min(len, cap));
  return {st, out, fault.reason};
}

TEST(NormaliseText, TidiesWhatPeopleWrite) {
  struct Case {
    std::string in;
    std::string want;
  } cases[] = {
      {"  23  whitfield   road ", "23 WHITFIELD ROAD"},
      {"King's Road", "KING'S ROAD"},
      {"King\u2019s Road", "KING'S ROAD"},  // typographic apostrophe
      {"Mid\u2010Levels", "MID-LEVELS"},    // Unicode hyphen
      {"\uFF2E\uFF21\uFF34\uFF28\uFF21\uFF2E \uFF32\uFF24", "NATHAN RD"},
      {"\uFF11\uFF12\uFF41", "12A"},     // full-width digits
      {"caf\u00e9", "CAF\xC9"},          // UTF-8 to Latin-1
      {"caf\xE9", "CAF\xC9"},            // Latin-1 as it is
      {"cafe\u0301", "CAF\xC9"},         // letter and accent
      {"\xEF\xBB\xBFNathan", "NATHAN"},  // byte-order mark
      {"\u0100mber Rd", "AMBER RD"},     // accent dropped
      {"stra\u00dfe \u00ff",
       "STRA\xDF"
       "E \xFF"},  // no Latin-1 capital
      {"a\tb\r\nc", "A B C"},
      {"\u00a0x\u3000y\u200b", "X Y"},  // odd spaces, an invisible one
      {"", ""},
      {"   ", ""},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.in);
    Tidied t = tidy(c.in);
    EXPECT_EQ(t.status, ORLO_NORM_OK) << t.reason;
    EXPECT_EQ(t.text, c.want);
    EXPECT_EQ(t.reason, "");
  }
}

TEST(NormaliseText, RefusesWhatTheMatcherCannotRead) {
  struct Case {
    std::string in;
    size_t cap;
    int32_t status;
    std::string reason;
  } cases[] = {
      {"\u4e5d\u9f8d", 30, ORLO_NORM_NOT_LATIN1,
       "'\u4e5d' (U+4E5D) has no Latin-1 form; write the address in English"},
      {"Road \u0394", 30, ORLO_NORM_NOT_LATIN1, "'\u0394' (U+0394)"},
      {std::string("a\0b", 3), 30, ORLO_NORM_CONTROL,
       "control character U+0000 at character 2"},
      {"ab\x7F", 30, ORLO_NORM_CONTROL, "U+007F at character 3"},
      {"\u00e9\x1b", 30, ORLO_NORM_CONTROL, "U+001B at character 2"},
      {"nathan  road", 10, ORLO_NORM_TOO_LONG,
       "11 characters after tidying, at most 10"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.in);
    Tidied t = tidy(c.in, c.cap);
    EXPECT_EQ(t.status, c.status);
    EXPECT_NE(t.reason.find(c.reason), std::string::npos) << t.reason;
  }
  // Too long still gives the first cap bytes and the length needed.
  size_t len = 0;
  char out[4];
  EXPECT_EQ(orlo_norm_text("abcdef", 6, out, 4, &len, nullptr),
            ORLO_NORM_TOO_LONG);
  EXPECT_EQ(std::string(out, 4), "ABCD");
  EXPECT_EQ(len, 6u);
  EXPECT_EQ(orlo_norm_text("a", 1, out, 4, nullptr, nullptr),
            ORLO_NORM_BAD_CALL);
}

TEST(NormaliseText, UpperFoldsLatin1Letters) {
  std::string text = "a-z\xE0\xF7\xFE\xDF\xFF\xB5 \xE9";
  EXPECT_EQ(orlo_norm_upper(text.data(), text.size()), 5u);
  EXPECT_EQ(text, "A-Z\xC0\xF7\xDE\xDF\xFF\xB5 \xC9");
  EXPECT_EQ(orlo_norm_upper(nullptr, 3), 0u);
}

TEST(NormaliseRegion, SpellingsAndPlaces) {
  struct Case {
    const char *text;
    const char *region;    // orlo_norm_region
    const char *district;  // orlo_norm_district_region
  } cases[] = {
      {"HK", "HK", "HK"},
      {"Hong Kong", "HK", "HK"},
      {"hong kong island", "HK", "HK"},
      {"HK Island", "HK", "HK"},
      {"H.K.", "HK", "HK"},
      {"Kowloon", "KLN", "KLN"},
      {"Kln.", "KLN", "KLN"},
      {"New Territories", "NT", "NT"},
      {"N. T.", "NT", "NT"},
      {"Tsim Sha Tsui", nullptr, "KLN"},
      {"CWB", nullptr, "HK"},
      {"TST", nullptr, "KLN"},
      {"Causeway Bay", nullptr, "HK"},
      {"Mid Levels", nullptr, "HK"},
      {"Shatin", nullptr, "NT"},
      {"Islands", nullptr, "NT"},
      {"Kowloon City", nullptr, "KLN"},
      {"Kowloon Tong", nullptr, "KLN"},
      {"Macau", nullptr, nullptr},
      {"Island", nullptr, nullptr},
      {"", nullptr, nullptr},
      {"...", nullptr, nullptr},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.text);
    size_t n = std::string(c.text).size();
    const char *r = orlo_norm_region(c.text, n);
    const char *d = orlo_norm_district_region(c.text, n);
    EXPECT_STREQ(r, c.region);
    EXPECT_STREQ(d, c.district);
  }
}

std::string field(const std::string &rec, int off, int len) {
  return rec.substr(static_cast<size_t>(off), static_cast<size_t>(len));
}

std::string padded(const std::string &text, size_t width) {
  std::string s = text;
  s.resize(width, ' ');
  return s;
}

struct Built {
  int32_t status;
  std::string record;
  ORLO_NORM_FAULT fault;
};

Built build(const std::array<std::string, ORLO_NF_COUNT> &fields) {
  std::array<const char *, ORLO_NF_COUNT> ptrs;
  std::array<size_t, ORLO_NF_COUNT> lengths;
  for (size_t i = 0; i < fields.size(); ++i) {
    ptrs[i] = fields[i].data();
    lengths[i] = fields[i].size();
  }
  Built b{0, std::string(HKINREC_SIZE, '#'), {}};
  b.status =
      orlo_norm_address(ptrs.data(), lengths.data(), b.record.data(), &b.fault);
  return b;
}

TEST(NormaliseAddress, FieldsBecomeTheRecord) {
  Built b =
      build({"tst", " 12a ", "nathan  road", "Chungking Mansions",
             "Flat A,  12/F, Block 3, Phase 2", "", "Tsim Sha Tsui", "", "1"});
  ASSERT_EQ(b.status, ORLO_NORM_OK) << b.fault.reason;
  EXPECT_EQ(b.fault.field, -1);
  std::string want(HKINREC_SIZE, ' ');
  want.replace(HKIN_REFCODE_OFF, 3, "TST");
  want.replace(HKIN_PREMNO_OFF, 3, "12A");
  want.replace(HKIN_STREET_OFF, 11, "NATHAN ROAD");
  want.replace(HKIN_BLDG_OFF, 18, "CHUNGKING MANSIONS");
  want.replace(HKIN_UNIT_OFF, 25, "FLAT A, 12/F, BLOCK 3, PH");
  want.replace(HKIN_UNITEXT_OFF, 5, "ASE 2");
  want.replace(HKIN_DISTRICT_OFF, 13, "TSIM SHA TSUI");
  want.replace(HKIN_REGION_OFF, 3, "KLN");
  want.replace(HKIN_MODE_OFF, 1, "1");
  EXPECT_EQ(b.record, want);
}

TEST(NormaliseAddress, RegionFromItsSpellingOrTheDistrict) {
  struct Case {
    const char *district;
    const char *region;
    const char *want;
  } cases[] = {
      {"", "Kowloon", "KLN"},
      {"Sha Tin", "n.t.", "NT"},
      {"Causeway Bay", "", "HK"},
      {"Mong Kok", "Hong Kong", "HK"},  // a region given wins
      {"", "Wan Chai", "HK"},           // a district in the region's place
      {"Atlantis", "", ""},
      {"", "Macau", "MACAU"},  // kept, for the matcher to find no key
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.district) + "|" + c.region);
    Built b = build({"", "1", "A ROAD", "", "", "", c.district, c.region, ""});
    ASSERT_EQ(b.status, ORLO_NORM_OK);
    EXPECT_EQ(field(b.record, HKIN_REGION_OFF, HKIN_REGION_LEN),
              padded(c.want, HKIN_REGION_LEN));
  }
}

TEST(NormaliseAddress, FaultNamesTheFieldAndLeavesTheRecordBlank) {
  struct Case {
    std::array<std::string, ORLO_NF_COUNT> fields;
    int32_t status;
    int32_t field;
    const char *reason;
  } cases[] = {
      {{"", "", "", "", "", "", "\u4e5d\u9f8d", "", ""},
       ORLO_NORM_NOT_LATIN1,
       ORLO_NF_DISTRICT,
       "district: '\u4e5d' (U+4E5D) has no Latin-1 form; write the address "
       "in English"},
      {{"", "123456789", "", "", "", "", "", "", ""},
       ORLO_NORM_TOO_LONG,
       ORLO_NF_PREMNO,
       "premno: 9 characters after tidying, at most 8"},
      {{"", "", "", "", std::string(31, 'u'), "", "", "", ""},
       ORLO_NORM_TOO_LONG,
       ORLO_NF_UNIT,
       "unit: 31 characters after tidying, at most 30"},
      {{"", "", "", "", "", "", "", "", std::string("\x01")},
       ORLO_NORM_CONTROL,
       ORLO_NF_MODE,
       "mode: control character U+0001 at character 1"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.reason);
    Built b = build(c.fields);
    EXPECT_EQ(b.status, c.status);
    EXPECT_EQ(b.fault.field, c.field);
    EXPECT_STREQ(b.fault.reason, c.reason);
    EXPECT_EQ(b.record, std::string(HKINREC_SIZE, ' '));
  }
  const char *fields[ORLO_NF_COUNT] = {};
  size_t lengths[ORLO_NF_COUNT] = {};
  char rec[HKINREC_SIZE];
  EXPECT_EQ(orlo_norm_address(fields, lengths, rec, nullptr), ORLO_NORM_OK);
  lengths[3] = 2;
  EXPECT_EQ(orlo_norm_address(fields, lengths, rec, nullptr),
            ORLO_NORM_BAD_CALL);
  EXPECT_EQ(orlo_norm_address(nullptr, lengths, rec, nullptr),
            ORLO_NORM_BAD_CALL);
}

// Many addresses in one call: each record and status what a single call
// gives, a bad address in the middle stopping nothing.
TEST(NormaliseMany, EachAddressAsAlone) {
  const std::array<std::string, ORLO_NF_COUNT> addresses[] = {
      {"", "22", "castle peak road", "", "", "", "Sham Shui Po", "", ""},
      {"", "8", "\u5f4c\u6566\u9053", "", "", "", "", "Kowloon", ""},
      {"", "123456789", "A ROAD", "", "", "", "", "HK", ""},
      {"", "5", "Nanking Street", "", "", "", "", "Kln.", ""},
  };
  constexpr size_t n = std::size(addresses);
  std::vector<const char *> ptrs;
  std::vector<size_t> lengths;
  std::string want;
  std::vector<int32_t> want_status;
  for (const auto &a : addresses) {
    for (const std::string &f : a) {
      ptrs.push_back(f.data());
      lengths.push_back(f.size());
    }
    Built b = build(a);
    want += b.record;
    want_status.push_back(b.status);
  }
  std::string got(n * HKINREC_SIZE, '#');
  std::vector<int32_t> status(n, -7);
  EXPECT_EQ(
      orlo_norm_many(ptrs.data(), lengths.data(), n, got.data(), status.data()),
      2);
  EXPECT_EQ(got, want);
  EXPECT_EQ(status, want_status);
  EXPECT_EQ(status[1], ORLO_NORM_NOT_LATIN1);
  EXPECT_EQ(orlo_norm_many(ptrs.data(), lengths.data(), 0, nullptr, nullptr),
            0);
  EXPECT_EQ(orlo_norm_many(ptrs.data(), lengths.data(), n, got.data(), nullptr),
            -1);
}

}  // namespace
