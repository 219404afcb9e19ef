// Packed base records: the item decoder, the unpacker and its bounded
// variant.
#include "hkmatch/packed_record.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "hkmatch/reference_access.h"
#include "lib/refdb_format.h"
#include "support/test_db.h"

namespace {

namespace refdb = orlo::tools::refdb;
using Bytes = std::vector<unsigned char>;

// ---- hk_stsd ----------------------------------------------------------------

struct ItemCase {
  const char *name;
  Bytes item;
  std::string text;
};

class ItemDecoding : public ::testing::TestWithParam<ItemCase> {};

TEST_P(ItemDecoding, GivesTheText) {
  const ItemCase &c = GetParam();
  char text[40];
  std::memset(text, '#', sizeof text);  // stale text must not show through
  hk_stsd(c.item.data(), text);
  EXPECT_EQ(std::string(text), c.text);
}

Bytes text_item(const std::string &s) {
  Bytes item(s.size() + 1);
  item[0] = static_cast<unsigned char>(0xE0 | s.size());
  for (size_t i = 0; i < s.size(); ++i)
    item[i + 1] = static_cast<unsigned char>(s[i]);
  return item;
}

INSTANTIATE_TEST_SUITE_P(
    Items, ItemDecoding,
    ::testing::Values(ItemCase{"number_16", {0x82, 0x01, 0x2C}, "300"},
                      ItemCase{"number_16_type_101", {0xA2, 0x00, 0x0A}, "10"},
                      ItemCase{"number_16_max", {0x82, 0xFF, 0xFF}, "65535"},
                      ItemCase{
                          "long_32", {0x64, 0x00, 0x01, 0x86, 0xA0}, "100000"},
                      ItemCase{"long_32_max_unsigned",
                               {0x64, 0xFF, 0xFF, 0xFF, 0xFF},
                               "4294967295"},
                      ItemCase{"small_8", {0xC1, 0xFF}, "255"},
                      ItemCase{"small_8_zero", {0xC1, 0x00}, "0"},
                      ItemCase{"text_empty", {0xE0}, ""},
                      ItemCase{"text", text_item("G/F"), "G/F"},
                      ItemCase{"text_31_bytes", text_item(std::string(31, 'Q')),
                               std::string(31, 'Q')},
                      ItemCase{"unknown_000", {0x02, 'A', 'B'}, ""},
                      ItemCase{"unknown_001", {0x22, 'A', 'B'}, ""},
                      ItemCase{"unknown_010", {0x42, 'A', 'B'}, ""}),
    [](const auto &info) { return std::string(info.param.name); });

// ---- packed record builder --------------------------------------------------

// A packed base record built from items per field (1 to 10): presence bits,
// length byte and the items in field order.
class Packed {
 public:
  Packed &item(int field, Bytes bytes) {
    items_[field] = std::move(bytes);
    return *this;
  }
  Packed &text(int field, const std::string &s) {
    return item(field, text_item(s));
  }
  Bytes bytes() const {
    Bytes out{0, 0, 0, 0};
    for (const auto &[field, item] : items_) {
      if (field <= 8)
        out[1] |= static_cast<unsigned char>(1u << (field - 1));
      else
        out[2] |= static_cast<unsigned char>(1u << (field - 9));
      out.insert(out.end(), item.begin(), item.end());
    }
    out[0] = static_cast<unsigned char>(out.size());
    return out;
  }

 private:
  std::map<int, Bytes> items_;
};

// A record whose every field is filled with a marker, so that fields the
// unpacker should not touch, and fields it should empty, both show.
HKBASEREC stale_record() {
  HKBASEREC r;
  std::memset(&r, 'Z', sizeof r);
  r.bscore = 91;
  r.bcand = 7;
  r.bpen = 3;
  r.bmscore = 55;
  return r;
}

HKBASEREC unpacked(const Bytes &packed) {
  HKBASEREC r = stale_record();
  hk_unpk(&r, packed.data());
  return r;
}

// ---- hk_unpk
// ------------------------------------------------------------------

TEST(Unpack, AbsentFieldsAreEmpty) {
  HKBASEREC r = unpacked(Packed().bytes());
  for (const char *text : {r.brefcode, r.brefid, r.bbldg, r.bparity, r.bqual1,
                           r.blotext, r.bqual2, r.bhitext, r.bfld9, r.baddr})
    EXPECT_STREQ(text, "");
  EXPECT_EQ(r.bside, 'B');
  EXPECT_EQ(r.blorc, 2);
  EXPECT_EQ(r.bhirc, 2);
  EXPECT_EQ(r.blotyp, ' ');
  EXPECT_EQ(r.bhisubtyp, ' ');
  EXPECT_EQ(r.bmscore, 0);
}

TEST(Unpack, LeavesTheSearchFieldsAlone) {
  HKBASEREC r = unpacked(Packed().text(1, "ABC").bytes());
  EXPECT_EQ(r.bscore, 91);
  EXPECT_EQ(r.bcand, 7);
  EXPECT_EQ(r.bpen, 3);
}

TEST(Unpack, PutsEachFieldInItsPlace) {
  Bytes packed = Packed()
                     .text(1, "R01")
                     .item(2, {0x82, 0x30, 0x39})
                     .text(3, "GOLDEN TOWER")
                     .text(4, "O")
                     .text(5, "G/F")
                     .item(6, {0xC1, 11})
                     .text(7, "UPPER")
                     .text(8, "27")
                     .text(9, "KLN")
                     .text(10, "1 NATHAN ROAD")
                     .bytes();
  HKBASEREC r = unpacked(packed);
  EXPECT_STREQ(r.brefcode, "R01");
  EXPECT_STREQ(r.brefid, "12345");
  EXPECT_STREQ(r.bbldg, "GOLDEN TOWER");
  EXPECT_STREQ(r.bparity, "O");
  EXPECT_STREQ(r.bqual1, "G/F");
  EXPECT_STREQ(r.blotext, "11");
  EXPECT_STREQ(r.bqual2, "UPPER");
  EXPECT_STREQ(r.bhitext, "27");
  EXPECT_STREQ(r.bfld9, "KLN");
  EXPECT_STREQ(r.baddr, "1 NATHAN ROAD");
  EXPECT_EQ(r.bside, 'O');
  EXPECT_EQ(r.blorc, 0);
  EXPECT_EQ(r.blonum, 11);
  EXPECT_EQ(r.blotyp, 'N');
  EXPECT_EQ(r.bhirc, 0);
  EXPECT_EQ(r.bhinum, 27);
  EXPECT_EQ(r.bhityp, 'N');
  EXPECT_EQ(r.bmscore, 0);
}

// Presence byte 2 holds only fields 9 and 10; byte 3 is not read at all.
TEST(Unpack, IgnoresTheUnusedPresenceBits) {
  Bytes packed = Packed().text(10, "ADDR").bytes();
  packed[2] |= 0xFC;
  packed[3] = 0xFF;
  HKBASEREC r = unpacked(packed);
  EXPECT_STREQ(r.bfld9, "");
  EXPECT_STREQ(r.baddr, "ADDR");
}

TEST(Unpack, CutsTextsToTheirFieldWidths) {
  HKBASEREC r = unpacked(Packed()
                             .text(1, "ABCDEF")
                             .text(2, "1234567")
                             .text(3, std::string(31, 'B'))
                             .text(4, "EVEN")
                             .text(9, "ABCDEFG")
                             .text(10, "END")
                             .bytes());
  EXPECT_STREQ(r.brefcode, "ABC");
  EXPECT_STREQ(r.brefid, "12345");
  EXPECT_EQ(std::string(r.bbldg), std::string(30, 'B'));
  EXPECT_STREQ(r.bparity, "E");
  EXPECT_STREQ(r.bfld9, "ABCD");
  // The items after the long ones are still found where they start.
  EXPECT_STREQ(r.baddr, "END");
}

TEST(Unpack, SideFollowsTheParityField) {
  struct {
    const char *parity;  // nullptr: field 4 absent
    char side;
  } cases[] = {{"E", 'E'}, {"O", 'O'}, {"X", 'B'},
               {"e", 'B'}, {"", 'B'},  {nullptr, 'B'}};
  for (const auto &c : cases) {
    Packed p;
    if (c.parity != nullptr) p.text(4, c.parity);
    EXPECT_EQ(unpacked(p.bytes()).bside, c.side)
        << (c.parity ? c.parity : "absent");
  }
}

// ---- the range check
// ------------------------------------------------------------

HKBASEREC range(const std::string &lo, const std::string &hi) {
  return unpacked(Packed().text(6, lo).text(8, hi).bytes());
}

TEST(UnpackRange, HighToLowIsExchanged) {
  HKBASEREC r = range("12", "8");
  EXPECT_STREQ(r.blotext, "8");
  EXPECT_STREQ(r.bhitext, "12");
  EXPECT_EQ(r.blonum, 8);
  EXPECT_EQ(r.bhinum, 12);
  EXPECT_EQ(r.blotyp, 'N');
  EXPECT_EQ(r.bhityp, 'N');
}

// A fraction is neither a number nor letters: the range is exchanged and the
// fraction moves with its number.
TEST(UnpackRange, SecondPartsTravelWithTheirNumbers) {
  HKBASEREC r = range("9 1/2", "8");
  EXPECT_STREQ(r.blotext, "8");
  EXPECT_STREQ(r.bhitext, "9 1/2");
  EXPECT_EQ(r.blonum, 8);
  EXPECT_EQ(r.blosub, 0);
  EXPECT_EQ(r.blosubtyp, ' ');
  EXPECT_EQ(r.bhinum, 9);
  EXPECT_EQ(r.bhisub, 3);
  EXPECT_EQ(r.bhisubtyp, 'F');
}

TEST(UnpackRange, NumericItemsAreExchangedLikeTexts) {
  HKBASEREC r = unpacked(
      Packed().item(6, {0x82, 0x01, 0x2C}).item(8, {0xC1, 40}).bytes());
  EXPECT_STREQ(r.blotext, "40");
  EXPECT_STREQ(r.bhitext, "300");
}

TEST(UnpackRange, SecondPartOfNumberOrLettersIsNeverExchanged) {
  struct {
    const char *lo, *hi;
  } cases[] = {{"12A", "8"}, {"12", "8B"}, {"12-1", "8"}, {"12", "8 3"}};
  for (const auto &c : cases) {
    HKBASEREC r = range(c.lo, c.hi);
    EXPECT_STREQ(r.blotext, c.lo);
    EXPECT_STREQ(r.bhitext, c.hi);
    EXPECT_EQ(r.blonum, 12) << c.lo;
    EXPECT_EQ(r.bhinum, 8) << c.hi;
  }
}

TEST(UnpackRange, OrderedOrNonNumericRangesStay) {
  struct {
    const char *lo, *hi;
  } cases[] = {{"8", "12"}, {"8", "8"}, {"B", "A"}, {"12", ""}, {"", "8"}};
  for (const auto &c : cases) {
    HKBASEREC r = range(c.lo, c.hi);
    EXPECT_STREQ(r.blotext, c.lo);
    EXPECT_STREQ(r.bhitext, c.hi);
  }
}

// ---- unpack_checked
// ---------------------------------------------------------------

Bytes full_record() {
  return Packed()
      .text(1, "R01")
      .item(2, {0x64, 0x00, 0x00, 0x30, 0x39})
      .text(3, "TOWER")
      .text(6, "12")
      .item(8, {0xC1, 8})
      .text(9, "HKG")
      .text(10, "ADDR")
      .bytes();
}

TEST(UnpackChecked, AgreesWithUnpack) {
  Bytes packed = full_record();
  // Both start from the same bytes and are unpacked in place, so that even
  // their padding compares equal.
  HKBASEREC checked, plain;
  std::memset(&checked, 'Z', sizeof checked);
  std::memset(&plain, 'Z', sizeof plain);
  ASSERT_TRUE(orlo::unpack_checked(&checked, packed.data(), packed.size()));
  hk_unpk(&plain, packed.data());
  EXPECT_EQ(std::memcmp(&checked, &plain, sizeof plain), 0);
  EXPECT_STREQ(checked.blotext, "8");
  EXPECT_STREQ(checked.brefid, "12345");
}

TEST(UnpackChecked, ReadsOnlyItsOwnLength) {
  Bytes block = full_record();
  size_t first = block.size();
  Bytes second = Packed().text(1, "XYZ").bytes();
  block.insert(block.end(), second.begin(), second.end());
  HKBASEREC r;
  ASSERT_TRUE(orlo::unpack_checked(&r, block.data(), block.size()));
  EXPECT_STREQ(r.brefcode, "R01");
  ASSERT_TRUE(
      orlo::unpack_checked(&r, block.data() + first, block.size() - first));
  EXPECT_STREQ(r.brefcode, "XYZ");
  EXPECT_STREQ(r.baddr, "");
}

TEST(UnpackChecked, CountsOnlyRecordsItUnpacks) {
  Bytes good = full_record();
  Bytes bad = {2, 0, 0, 0};
  HKBASEREC r;
  uint64_t before = orlo::access_counters().unpacks;
  ASSERT_TRUE(orlo::unpack_checked(&r, good.data(), good.size()));
  ASSERT_FALSE(orlo::unpack_checked(&r, bad.data(), bad.size()));
  ASSERT_TRUE(orlo::unpack_checked(&r, good.data(), good.size()));
  EXPECT_EQ(orlo::access_counters().unpacks - before, 2u);
}

struct Malformed {
  const char *name;
  Bytes bytes;
  size_t avail;  // 0: the size of bytes
};

class UnpackCheckedRejects : public ::testing::TestWithParam<Malformed> {};

TEST_P(UnpackCheckedRejects, Shape) {
  const Malformed &c = GetParam();
  // The record sits at the end of a heap buffer of exactly its size, so a
  // read past it is also caught by the address sanitizer.
  size_t avail = c.avail != 0 ? c.avail : c.bytes.size();
  std::vector<unsigned char> buf(c.bytes.begin(),
                                 c.bytes.begin() + static_cast<long>(avail));
  HKBASEREC r;
  EXPECT_FALSE(orlo::unpack_checked(&r, buf.data(), buf.size()));
}

Bytes with_length(Bytes b, unsigned char length) {
  b[0] = length;
  return b;
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, UnpackCheckedRejects,
    ::testing::Values(
        Malformed{"length_zero", {0, 0, 0, 0}, 0},
        Malformed{"length_below_header", {3, 0, 0, 0}, 0},
        Malformed{"length_negative", with_length(Packed().bytes(), 0x84), 0},
        Malformed{"length_beyond_block", Packed().text(1, "ABC").bytes(), 6},
        Malformed{"block_shorter_than_header", {4, 0, 0}, 0},
        Malformed{"item_header_past_end",
                  with_length(Packed().text(1, "ABC").bytes(), 4), 0},
        Malformed{"text_past_end",
                  with_length(Packed().text(1, "ABC").bytes(), 7), 0},
        Malformed{"number_past_end", Bytes{6, 0x20, 0, 0, 0x82, 0x01}, 0},
        Malformed{"long_past_end", Bytes{8, 0x20, 0, 0, 0x64, 0, 1, 2}, 0},
        Malformed{"number_wider_than_its_item",
                  Bytes{6, 0x20, 0, 0, 0xC0, 0x07}, 0},
        Malformed{"later_field_past_end",
                  with_length(Packed().text(1, "AB").text(10, "CD").bytes(), 9),
                  0},
        Malformed{"unknown_type_000", Bytes{7, 0x01, 0, 0, 0x02, 'A', 'B'}, 0},
        Malformed{"unknown_type_001", Bytes{7, 0x01, 0, 0, 0x22, 'A', 'B'}, 0},
        Malformed{"unknown_type_010", Bytes{7, 0x01, 0, 0, 0x42, 'A', 'B'}, 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(UnpackChecked, AcceptsARecordThatFillsTheBlockExactly) {
  Bytes packed = Packed().text(10, std::string(30, 'A')).bytes();
  HKBASEREC r;
  ASSERT_TRUE(orlo::unpack_checked(&r, packed.data(), packed.size()));
  EXPECT_EQ(std::string(r.baddr), std::string(30, 'A'));
  Bytes empty = Packed().bytes();
  EXPECT_TRUE(orlo::unpack_checked(&r, empty.data(), empty.size()));
}

// ---- records written by the database builder --------------------------------

// Reads the block of the first street of the only region through the
// bounded reads of an open instance and unpacks its records by their length
// bytes, as the search walks a block.
std::map<std::string, HKBASEREC> first_block(const HKMCB *mcb) {
  std::map<std::string, HKBASEREC> records;
  const L1ENTRY &region = mcb->lvl1tab[0];
  std::string segment(region.l2len, '\0');
  EXPECT_EQ(orlo::read_level2(mcb, region.l2off, region.l2len, segment.data()),
            '0');
  auto *street = reinterpret_cast<const unsigned char *>(segment.data());
  uint32_t boff = refdb::get_be32(street);
  uint32_t blen = refdb::get_be32(street + 4);
  uint16_t bcnt = refdb::get_be16(street + 8);
  EXPECT_STREQ(reinterpret_cast<const char *>(street + 10), "NATHAN ROAD");
  std::vector<unsigned char> block(blen);
  EXPECT_EQ(orlo::read_basedata(mcb, boff, blen,
                                reinterpret_cast<char *>(block.data())),
            '0');
  size_t pos = 0;
  for (uint16_t i = 0; i < bcnt && pos < blen; ++i) {
    HKBASEREC r;
    if (!orlo::unpack_checked(&r, block.data() + pos, blen - pos)) {
      ADD_FAILURE() << "record " << i << " at " << pos;
      break;
    }
    records[r.brefcode] = r;
    pos += block[pos];
  }
  EXPECT_EQ(pos, blen);
  return records;
}

TEST(UnpackBuiltDatabase, GivesBackTheRowsInBothModes) {
  orlo::testing::TestDb db(
      "KOWLOON,NATHAN ROAD,R01,12345,GOLDEN TOWER,O,G/F,11,UPPER,27,KLN,"
      "1 NATHAN ROAD\n"
      "KOWLOON,NATHAN ROAD,R02,70000,,E,,30,,12,,\n"
      "KOWLOON,NATHAN ROAD,R03,,,,,0012,,,,\n");
  for (const char *options : {"", "YM"}) {
    SCOPED_TRACE(options);
    HKMCB *mcb = nullptr;
    char rc = '0';
    ASSERT_EQ(hk_mopn(&mcb, &rc, options, db.level1().c_str(),
                      db.level2().c_str(), db.basedata().c_str()),
              0)
        << rc;
    ASSERT_EQ(mcb->lvl1cnt, 1);
    std::map<std::string, HKBASEREC> records = first_block(mcb);
    hk_mclo(&mcb, nullptr);
    ASSERT_EQ(records.size(), 3u);

    const HKBASEREC &r1 = records["R01"];
    EXPECT_STREQ(r1.brefid, "12345");
    EXPECT_STREQ(r1.bbldg, "GOLDEN TOWER");
    EXPECT_EQ(r1.bside, 'O');
    EXPECT_STREQ(r1.bqual1, "G/F");
    EXPECT_STREQ(r1.blotext, "11");
    EXPECT_STREQ(r1.bqual2, "UPPER");
    EXPECT_STREQ(r1.bhitext, "27");
    EXPECT_STREQ(r1.bfld9, "KLN");
    EXPECT_STREQ(r1.baddr, "1 NATHAN ROAD");

    const HKBASEREC &r2 = records["R02"];
    EXPECT_STREQ(r2.brefid, "70000");
    EXPECT_EQ(r2.bside, 'E');
    EXPECT_STREQ(r2.blotext, "12");
    EXPECT_STREQ(r2.bhitext, "30");
    EXPECT_STREQ(r2.baddr, "");

    const HKBASEREC &r3 = records["R03"];
    EXPECT_STREQ(r3.blotext, "0012");
    EXPECT_EQ(r3.blonum, 12);
    EXPECT_EQ(r3.bhirc, 2);
    EXPECT_EQ(r3.bside, 'B');
  }
}

}  // namespace
