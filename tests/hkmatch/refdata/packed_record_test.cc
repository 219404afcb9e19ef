// Packed base records: the item decoder, the unpacker and its bounded
// variant.
#include "hkmatch/refdata/packed_record.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "common/byte_order.h"
#include "hkmatch/refdata/reference_access.h"
#include "lib/refdb_format.h"
#include "support/test_db.h"

namespace {

namespace refdb = orlo::tools::refdb;
using Bytes = std::vector<unsigned char>;

Bytes text_item(const std::string &s) {
  Bytes item(s.size() + 1);
  item[0] = static_cast<unsigned char>(0xE0 | s.size());
  for (size_t i = 0; i < s.size(); ++i)
    item[i + 1] = static_cast<unsigned char>(s[i]);
  return item;
}

// Each item type at its bounds; the types 000, 001 and 010 are unknown and
// decode to nothing (the type bits overlap, so their order of testing
// matters). Stale text must not show through.
TEST(ItemDecoding, GivesTheText) {
  const struct {
    const char *note;
    Bytes item;
    std::string text;
  } cases[] = {
      {"number", {0x82, 0x01, 0x2C}, "300"},
      {"number, type 101", {0xA2, 0x00, 0x0A}, "10"},
      {"number max", {0x82, 0xFF, 0xFF}, "65535"},
      {"long", {0x64, 0x00, 0x01, 0x86, 0xA0}, "100000"},
      {"long max unsigned", {0x64, 0xFF, 0xFF, 0xFF, 0xFF}, "4294967295"},
      {"small max", {0xC1, 0xFF}, "255"},
      {"small zero", {0xC1, 0x00}, "0"},
      {"text empty", {0xE0}, ""},
      {"text", text_item("G/F"), "G/F"},
      {"text 31 bytes", text_item(std::string(31, 'Q')), std::string(31, 'Q')},
      {"unknown 000", {0x02, 'A', 'B'}, ""},
      {"unknown 001", {0x22, 'A', 'B'}, ""},
      {"unknown 010", {0x42, 'A', 'B'}, ""},
  };
  for (const auto &c : cases) {
    char text[40];
    std::memset(text, '#', sizeof text);
    hk_stsd(c.item.data(), text);
    EXPECT_EQ(std::string(text), c.text) << c.note;
  }
}

// ---- packed record builder

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

// Absent fields are emptied with the defaults of an empty range; the
// search's own fields (score, candidate, penalty) are left alone.
TEST(Unpack, AbsentFieldsAreEmptyAndSearchFieldsKept) {
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
  // Long texts are cut to their fields (field 9 to four characters) and the
  // items after them are still found where they start.
  r = unpacked(Packed()
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
  EXPECT_STREQ(r.baddr, "END");
  // Presence byte 2 holds only fields 9 and 10; byte 3 is not read at all.
  Bytes packed10 = Packed().text(10, "ADDR").bytes();
  packed10[2] |= 0xFC;
  packed10[3] = 0xFF;
  r = unpacked(packed10);
  EXPECT_STREQ(r.bfld9, "");
  EXPECT_STREQ(r.baddr, "ADDR");
}

// Only an upper-case E or O names a side; anything else is both sides.
TEST(Unpack, SideFollowsTheParityField) {
  const struct {
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

// A plain numeric range written high to low is put in order (a fraction is
// neither a number nor letters, so it travels with its number); a second
// part of number or letters, a non-numeric end or an ordered range stays.
TEST(UnpackRange, OnlyPlainHighToLowRangesAreExchanged) {
  const struct {
    const char *lo, *hi, *shown_lo, *shown_hi;
  } cases[] = {
      {"12", "8", "8", "12"},     {"9 1/2", "8", "8", "9 1/2"},
      {"12A", "8", "12A", "8"},   {"12", "8B", "12", "8B"},
      {"12-1", "8", "12-1", "8"}, {"12", "8 3", "12", "8 3"},
      {"8", "12", "8", "12"},     {"8", "8", "8", "8"},
      {"B", "A", "B", "A"},       {"12", "", "12", ""},
      {"", "8", "", "8"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(std::string(c.lo) + " to " + c.hi);
    HKBASEREC r = unpacked(Packed().text(6, c.lo).text(8, c.hi).bytes());
    EXPECT_STREQ(r.blotext, c.shown_lo);
    EXPECT_STREQ(r.bhitext, c.shown_hi);
  }
  // The parsed numbers and second parts are exchanged with the texts.
  HKBASEREC r = unpacked(Packed().text(6, "9 1/2").text(8, "8").bytes());
  EXPECT_EQ(r.blonum, 8);
  EXPECT_EQ(r.blosub, 0);
  EXPECT_EQ(r.blosubtyp, ' ');
  EXPECT_EQ(r.bhinum, 9);
  EXPECT_EQ(r.bhisub, 3);
  EXPECT_EQ(r.bhisubtyp, 'F');
  EXPECT_EQ(r.bhityp, 'N');
  // Numeric items are exchanged like texts.
  r = unpacked(
      Packed().item(6, {0x82, 0x01, 0x2C}).item(8, {0xC1, 40}).bytes());
  EXPECT_STREQ(r.blotext, "40");
  EXPECT_STREQ(r.bhitext, "300");
}

// ---- unpack_checked

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

// On a sound record the bounded unpack gives exactly what hk_unpk gives
// (both start from the same bytes, so even padding compares equal).
TEST(UnpackChecked, AgreesWithUnpack) {
  Bytes packed = full_record();
  HKBASEREC checked, plain;
  std::memset(&checked, 'Z', sizeof checked);
  std::memset(&plain, 'Z', sizeof plain);
  ASSERT_TRUE(orlo::unpack_checked(&checked, packed.data(), packed.size()));
  hk_unpk(&plain, packed.data());
  EXPECT_EQ(std::memcmp(&checked, &plain, sizeof plain), 0);
  EXPECT_STREQ(checked.blotext, "8");
  EXPECT_STREQ(checked.brefid, "12345");
}

// It reads only its own length of a block and counts only the records it
// unpacks.
TEST(UnpackChecked, ReadsOnlyItsOwnLengthAndCountsWhatItUnpacks) {
  Bytes block = full_record();
  size_t first = block.size();
  Bytes second = Packed().text(1, "XYZ").bytes();
  block.insert(block.end(), second.begin(), second.end());
  Bytes bad = {2, 0, 0, 0};
  HKBASEREC r;
  uint64_t before = orlo::access_counters().unpacks;
  ASSERT_TRUE(orlo::unpack_checked(&r, block.data(), block.size()));
  EXPECT_STREQ(r.brefcode, "R01");
  ASSERT_FALSE(orlo::unpack_checked(&r, bad.data(), bad.size()));
  ASSERT_TRUE(
      orlo::unpack_checked(&r, block.data() + first, block.size() - first));
  EXPECT_STREQ(r.brefcode, "XYZ");
  EXPECT_STREQ(r.baddr, "");
  EXPECT_EQ(orlo::access_counters().unpacks - before, 2u);
  // A record may fill its block exactly, and hold no field at all.
  Bytes full = Packed().text(10, std::string(30, 'A')).bytes();
  ASSERT_TRUE(orlo::unpack_checked(&r, full.data(), full.size()));
  EXPECT_EQ(std::string(r.baddr), std::string(30, 'A'));
  Bytes empty = Packed().bytes();
  EXPECT_TRUE(orlo::unpack_checked(&r, empty.data(), empty.size()));
}

Bytes with_length(Bytes b, unsigned char length) {
  b[0] = length;
  return b;
}

// Every malformed shape is refused. Each record sits at the end of a heap
// buffer of exactly its size, so that a read past it is also caught by the
// address sanitizer.
TEST(UnpackChecked, RejectsMalformedRecords) {
  const struct {
    const char *note;
    Bytes bytes;
    size_t avail;  // 0: the size of bytes
  } cases[] = {
      {"length zero", {0, 0, 0, 0}, 0},
      {"length below header", {3, 0, 0, 0}, 0},
      {"length negative", with_length(Packed().bytes(), 0x84), 0},
      {"length beyond block", Packed().text(1, "ABC").bytes(), 6},
      {"block shorter than header", {4, 0, 0}, 0},
      {"item header past end", with_length(Packed().text(1, "ABC").bytes(), 4),
       0},
      {"text past end", with_length(Packed().text(1, "ABC").bytes(), 7), 0},
      {"number past end", {6, 0x20, 0, 0, 0x82, 0x01}, 0},
      {"long past end", {8, 0x20, 0, 0, 0x64, 0, 1, 2}, 0},
      {"number wider than its item", {6, 0x20, 0, 0, 0xC0, 0x07}, 0},
      {"later field past end",
       with_length(Packed().text(1, "AB").text(10, "CD").bytes(), 9), 0},
      {"unknown type", {7, 0x01, 0, 0, 0x42, 'A', 'B'}, 0},
  };
  for (const auto &c : cases) {
    size_t avail = c.avail != 0 ? c.avail : c.bytes.size();
    std::vector<unsigned char> buf(c.bytes.begin(),
                                   c.bytes.begin() + static_cast<long>(avail));
    HKBASEREC r;
    EXPECT_FALSE(orlo::unpack_checked(&r, buf.data(), buf.size())) << c.note;
  }
}

// ---- records written by the database builder

// The text fields of a record and its side, joined with '|'.
std::string summary(const HKBASEREC &r) {
  std::string s;
  for (const char *text : {r.brefcode, r.brefid, r.bbldg, r.bqual1, r.blotext,
                           r.bqual2, r.bhitext, r.bfld9, r.baddr})
    s += std::string(text) + "|";
  return s + r.bside;
}

// The builder's records read back through the bounded reads of an open
// instance, walked by their length bytes as the search walks a block.
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
    const L1ENTRY &region = mcb->lvl1tab[0];
    std::string segment(region.l2len, '\0');
    ASSERT_EQ(
        orlo::read_level2(mcb, region.l2off, region.l2len, segment.data()),
        '0');
    auto *street = reinterpret_cast<const unsigned char *>(segment.data());
    EXPECT_STREQ(reinterpret_cast<const char *>(street + 10), "NATHAN ROAD");
    uint32_t blen = orlo::load_be32(street + 4);
    ASSERT_EQ(orlo::load_be16(street + 8), 3);
    std::vector<unsigned char> block(blen);
    ASSERT_EQ(orlo::read_basedata(mcb, orlo::load_be32(street), blen,
                                  reinterpret_cast<char *>(block.data())),
              '0');
    hk_mclo(&mcb, nullptr);
    std::map<std::string, HKBASEREC> records;
    size_t pos = 0;
    for (int i = 0; i < 3; ++i) {
      HKBASEREC r;
      ASSERT_LT(pos, blen);
      ASSERT_TRUE(orlo::unpack_checked(&r, block.data() + pos, blen - pos));
      records[r.brefcode] = r;
      pos += block[pos];
    }
    EXPECT_EQ(pos, blen);
    EXPECT_EQ(summary(records["R01"]),
              "R01|12345|GOLDEN TOWER|G/F|11|UPPER|27|KLN|1 NATHAN ROAD|O");
    EXPECT_EQ(summary(records["R02"]), "R02|70000|||12||30|||E");
    EXPECT_EQ(summary(records["R03"]), "R03||||0012|||||B");
    EXPECT_EQ(records["R03"].blonum, 12);
    EXPECT_EQ(records["R03"].bhirc, 2);
  }
}

}  // namespace
