// The reference database builder: exact bytes of the three files, the
// encoding of numbers and texts, ordering, and every rejected input.
#include "lib/refdb_builder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "lib/packed_record_codec.h"
#include "lib/refdb_compiler.h"
#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::tools {
namespace {

using orlo::testing::file_exists;
using orlo::testing::hex_bytes;
using orlo::testing::kRefHeader;
using orlo::testing::make_temp_dir;
using orlo::testing::read_file;
using orlo::testing::TestDb;

std::string pad_zeros(std::string bytes, size_t unit) {
  bytes.resize((bytes.size() + unit - 1) / unit * unit, '\0');
  return bytes;
}

// Two streets of one region, given out of order, with every item type:
// "A ST" holds one record, "B ST" two (kept in CSV order).
TEST(RefdbBuilderBytes, TwoStreetExampleIsEncodedExactly) {
  TestDb db(
      "HK,B ST,C01,300,,E,,2,,12A,,\n"
      "HK,A ST,,00012,,,,70000,,,X1,1 A ST\n"
      "HK,B ST,,,,,,,,,,\n",
      "20260102");
  std::string b_first = hex_bytes(
      "13 AB 00 00  E3 43 30 31  82 01 2C  E1 45"
      "  C1 02  E3 31 32 41");
  std::string a_only = hex_bytes(
      "19 22 03 00  E5 30 30 30 31 32"
      "  64 00 01 11 70  E2 58 31"
      "  E6 31 20 41 20 53 54");
  std::string b_second = hex_bytes("04 00 00 00");
  ASSERT_EQ(a_only.size(), 25u);
  ASSERT_EQ(b_first.size(), 19u);
  EXPECT_EQ(read_file(db.basedata()),
            pad_zeros("20260102" + a_only + b_first + b_second, 23200));

  std::string level2 =
      hex_bytes("00000008 00000019 0001") + "A ST" + std::string(1, '\0') +
      hex_bytes("00000021 00000017 0002") + "B ST" + std::string(1, '\0');
  EXPECT_EQ(read_file(db.level2()), pad_zeros(level2, 23200));

  std::string level1 = "HK" + std::string(28, ' ') +
                       hex_bytes("00000000 0000001E 0002") +
                       std::string(40, '\0');
  EXPECT_EQ(read_file(db.level1()), level1);
}

// Items as the decoder expects them: binary only for texts that print back
// the same, in the smallest of the three widths.
TEST(RefdbBuilderItems, NumbersAndTextsAreEncodedByValueAndForm) {
  struct Case {
    std::string text;
    std::string item;
  };
  const Case cases[] = {
      {"0", hex_bytes("C1 00")},
      {"7", hex_bytes("C1 07")},
      {"255", hex_bytes("C1 FF")},
      {"256", hex_bytes("82 01 00")},
      {"300", hex_bytes("82 01 2C")},
      {"65535", hex_bytes("82 FF FF")},
      {"65536", hex_bytes("64 00 01 00 00")},
      {"100000", hex_bytes("64 00 01 86 A0")},
      {"4294967295", hex_bytes("64 FF FF FF FF")},
      {"4294967296", hex_bytes("EA") + "4294967296"},
      {"00", hex_bytes("E2") + "00"},
      {"0012", hex_bytes("E4") + "0012"},
      {"12A", hex_bytes("E3") + "12A"},
      {"-1", hex_bytes("E2") + "-1"},
      {"+5", hex_bytes("E2") + "+5"},
      {" 5", hex_bytes("E2") + " 5"},
      {std::string(30, 'Z'), hex_bytes("FE") + std::string(30, 'Z')},
  };
  for (const Case &c : cases) {
    std::string out;
    refdb::append_item(&out, c.text);
    EXPECT_EQ(out, c.item) << "text \"" << c.text << "\"";
  }
}

std::string csv_row(std::vector<std::string> fields) {
  std::string row;
  for (size_t i = 0; i < fields.size(); ++i) row += (i ? "," : "") + fields[i];
  return row + "\n";
}

// LEVEL1 keys in the order of the 30-byte blank-padded key; "HK " is the
// same key as "HK".
TEST(RefdbBuilderOrder, RegionsSortByPaddedKeyAsUnsignedBytes) {
  TestDb db(
      "NT,S,,,,,,1,,,,\n"
      "\xC0X,S,,,,,,1,,,,\n"
      "KLN,S,,,,,,1,,,,\n"
      "HK,S,,,,,,1,,,,\n"
      "HK ,S,,,,,,2,,,,\n");
  std::string l1 = read_file(db.level1());
  ASSERT_EQ(l1.size(), 5 * 40u);
  std::vector<std::string> keys;
  for (size_t i = 0; i < 4; ++i) keys.push_back(l1.substr(i * 40, 30));
  EXPECT_EQ(keys,
            (std::vector<std::string>{
                "HK" + std::string(28, ' '), "KLN" + std::string(27, ' '),
                "NT" + std::string(28, ' '), "\xC0X" + std::string(28, ' ')}));
  // HK holds one street with both records.
  EXPECT_EQ(l1.substr(38, 2), hex_bytes("0001"));
  EXPECT_EQ(read_file(db.level2()).substr(8, 2), hex_bytes("0002"));
  EXPECT_EQ(l1.substr(160), std::string(40, '\0'));
}

// Street order compares names padded with blanks: a control byte sorts
// before the padding, and names that differ only by trailing blanks stay
// two streets, the shorter first.
TEST(RefdbBuilderOrder, StreetsSortByNamePaddedTo31Bytes) {
  TestDb db(
      "HK,AB,,,,,,1,,,,\n"
      "HK,A B,,,,,,1,,,,\n"
      "HK,A ,,,,,,1,,,,\n"
      "HK,A,,,,,,1,,,,\n"
      "HK,A\x01,,,,,,1,,,,\n"
      "HK,,,,,,,1,,,,\n");
  std::string l2 = read_file(db.level2());
  std::vector<std::string> names;
  for (size_t pos = 0; names.size() < 6;) {
    size_t nul = l2.find('\0', pos + 10);
    names.push_back(l2.substr(pos + 10, nul - pos - 10));
    pos = nul + 1;
  }
  EXPECT_EQ(names,
            (std::vector<std::string>{"", "A\x01", "A", "A ", "A B", "AB"}));
}

TEST(RefdbBuilderWidths, FieldsAtTheirFullWidthBuild) {
  std::string n30(30, 'N');
  TestDb db(csv_row({n30, n30, "ABC", "12345", n30, "E", std::string(12, 'Q'),
                     "99999", std::string(12, 'R'), "12A", "XYZ", n30}));
  std::string base = read_file(db.basedata());
  EXPECT_EQ(static_cast<unsigned char>(base[8]),
            4 + 4 + 3 + 31 + 2 + 13 + 5 + 13 + 4 + 4 + 31);
  EXPECT_EQ(read_file(db.level1()).substr(0, 30), n30);
}

// Builds csv (header added) into a fresh directory, expects it to fail and
// the directory to stay empty, and returns the error.
BuildError build_failure(const std::string &rows, bool add_header = true) {
  std::string dir = make_temp_dir();
  BuildError err;
  EXPECT_FALSE(build_reference_db((add_header ? kRefHeader : "") + rows, dir,
                                  "20260101", &err));
  EXPECT_TRUE(std::filesystem::is_empty(dir)) << "files left in " << dir;
  std::filesystem::remove_all(dir);
  return err;
}

TEST(RefdbBuilderErrors, FieldTooWideNamesLineAndField) {
  const std::vector<size_t> widths = {30, 30, 3, 5, 30, 1, 12, 5, 12, 5, 3, 30};
  const std::vector<std::string> names = {
      "region", "street", "refcode", "refid", "building", "parity",
      "qual1",  "low",    "qual2",   "high",  "code9",    "address"};
  for (size_t c = 0; c < widths.size(); ++c) {
    std::vector<std::string> row(12, "");
    row[0] = "HK";
    row[c] = std::string(widths[c] + 1, '7');
    BuildError err = build_failure("HK,OK,,,,,,1,,,,\n" + csv_row(row));
    EXPECT_EQ(err.line, 3) << names[c];
    EXPECT_EQ(err.field, names[c]);
    EXPECT_NE(err.message.find(std::to_string(widths[c] + 1) + " bytes"),
              std::string::npos)
        << err.message;
  }
}

// Faulty input rows and headers, each with the line and field named.
TEST(RefdbBuilderErrors, BadRowsAndHeadersNameLineAndField) {
  const struct {
    std::string csv;  // after the header unless `own_header`
    bool own_header;
    long line;
    const char *field;
    const char *message;
  } cases[] = {
      {std::string("HK,S,,,B\0D,,,,,,,\n", 19), false, 2, "building", "NUL"},
      {"HK,S,,,,,,,,,,1\n\"HK\",\"A\nB\",,,,,,,,,,\n", false, 3, "street",
       "line feed"},
      {"HK,S,,,,,,,,,,\"a\rb\"\n", false, 2, "address", "carriage return"},
      {"HK,S,,,,,,,,,,\n,S,,,,,,,,,,\n", false, 3, "region", "empty"},
      {"   ,S,,,,,,,,,,\n", false, 2, "region", "empty"},
      {"HK,S,,,,,,,,,\n", false, 2, "", "found 11"},
      {"HK,S,,,,,,,,,,\nHK,\"S,,,,,,,,,,\n", false, 3, "", "not closed"},
      {"region,street,refcode,refid,building,parity,qual1,low,qual2,high,"
       "code9\nHK,S,,,,,,,,,\n",
       true, 1, "", "header"},
      {"Region" + kRefHeader.substr(6), true, 1, "", "header"},
      {"", true, 1, "", "empty"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.csv);
    BuildError err = build_failure(c.csv, !c.own_header);
    EXPECT_EQ(err.line, c.line);
    EXPECT_EQ(err.field, c.field);
    EXPECT_NE(err.message.find(c.message), std::string::npos) << err.message;
  }
}

TEST(RefdbBuilderErrors, CountsBeyond16BitsAreRejectedOnTheRowThatExceeds) {
  std::string streets;
  for (int i = 0; i <= 65535; ++i)
    streets += "KLN,S" + std::to_string(i) + ",,,,,,,,,,\n";
  BuildError too_many_streets = build_failure(streets);
  EXPECT_EQ(too_many_streets.line, 65537);
  EXPECT_EQ(too_many_streets.field, "street");
  EXPECT_NE(too_many_streets.message.find("65535 streets"), std::string::npos);

  std::string records;
  for (int i = 0; i <= 65535; ++i) records += "KLN,ONE,,,,,,,,,,\n";
  BuildError too_many_records = build_failure(records);
  EXPECT_EQ(too_many_records.line, 65537);
  EXPECT_NE(too_many_records.message.find("65535 records"), std::string::npos);

  // One record fewer of each is accepted.
  records.resize(records.size() - std::string("KLN,ONE,,,,,,,,,,\n").size());
  TestDb full(records);
  EXPECT_EQ(read_file(full.level2()).substr(8, 2), hex_bytes("FFFF"));
}

// The 32-bit offset checks, reached with lowered limits: the row that would
// push a file past the limit is named and nothing is written.
TEST(RefdbBuilderErrors, FilesThatOutgrowTheirOffsetsAreRejected) {
  auto build = [](const std::string &rows, uint64_t max_offset,
                  BuildError *err) {
    BuildOptions options;
    options.date8 = "20260101";
    options.limits.max_file_offset = max_offset;
    std::string dir = make_temp_dir(), csv = kRefHeader + rows;
    CsvReader reader(csv);
    BuildStats stats;
    bool ok = build_reference_db_from(&reader, dir, options, &stats, err);
    if (!ok) {
      EXPECT_TRUE(std::filesystem::is_empty(dir));
    }
    std::filesystem::remove_all(dir);
    return ok;
  };
  const std::string two = "HK,A,,,,,,1,,,,\nHK,A,,,,,,2,,,,\n";
  BuildError err;
  // The date and two 6-byte records fit exactly; a third does not.
  EXPECT_TRUE(build(two, 8 + 6 + 6, &err)) << err.message;
  EXPECT_FALSE(build(two + "HK,A,,,,,,3,,,,\n", 8 + 6 + 6, &err));
  EXPECT_EQ(err.line, 4);
  EXPECT_NE(err.message.find("BASEDATA"), std::string::npos) << err.message;

  // LEVEL2 entries of 12, 41 and 41 bytes: one byte short of the third.
  EXPECT_FALSE(build("HK,A,,,,,,,,,,\nHK," + std::string(30, 'B') +
                         ",,,,,,,,,,\nNT," + std::string(30, 'C') +
                         ",,,,,,,,,,\n",
                     12 + 41 + 40, &err));
  EXPECT_EQ(err.line, 4);
  EXPECT_NE(err.message.find("LEVEL2"), std::string::npos) << err.message;
}

// The output folder is made (with the folders above it) only for a CSV that
// compiles; a path that is a file is refused.
TEST(RefdbBuilderErrors, BadDateOrOutputPathWriteNothing) {
  std::string dir = make_temp_dir();
  BuildError err;
  std::string csv = kRefHeader + "HK,A,,,,,,,,,,\n";
  EXPECT_FALSE(build_reference_db(csv, dir, "2026011", &err));
  EXPECT_NE(err.message.find("8 characters"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_empty(dir));
  const std::string wide_street = "HK," + std::string(31, 'S') + ",,,,,,,,,,\n";
  EXPECT_FALSE(build_reference_db(kRefHeader + wide_street, dir + "/new",
                                  "20260101", &err));
  EXPECT_TRUE(std::filesystem::is_empty(dir));
  orlo::testing::write_file(dir + "/file", "");
  EXPECT_FALSE(build_reference_db(csv, dir + "/file", "20260101", &err));
  EXPECT_NE(err.message.find("output folder " + dir + "/file"),
            std::string::npos)
      << err.message;
  std::filesystem::remove(dir + "/file");
  ASSERT_TRUE(build_reference_db(csv, dir + "/new/db", "20260101", &err))
      << err.message;
  EXPECT_TRUE(file_exists(dir + "/new/db/BASEDATA"));
  std::filesystem::remove_all(dir + "/new");
  EXPECT_FALSE(build_reference_db_file(dir + "/none.csv", dir, "", &err));
  EXPECT_NE(err.message.find("cannot open"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_empty(dir));
  std::filesystem::remove_all(dir);
}

TEST(RefdbBuilderDate, DefaultDateIsTodaysUtcDate) {
  TestDb db("HK,A,,,,,,,,,,\n", "");
  std::string date = read_file(db.basedata()).substr(0, 8);
  EXPECT_EQ(date, today_utc_date8());
  EXPECT_EQ(date.find_first_not_of("0123456789"), std::string::npos);
  EXPECT_EQ(date.substr(0, 2), "20");
}

TEST(RefdbBuilderFiles, FileBuildMatchesTextBuildAndReplacesOldFiles) {
  std::string csv = kRefHeader + "KLN,NATHAN ROAD,TST,00001,,E,,2,,88,,\n";
  std::string dir = make_temp_dir();
  std::string path = dir + "/ref.csv";
  orlo::testing::write_file(path, csv);
  orlo::testing::write_file(dir + "/LEVEL1", "old contents");
  BuildError err;
  ASSERT_TRUE(build_reference_db_file(path, dir, "20260101", &err))
      << err.message;
  TestDb text(csv);
  EXPECT_EQ(read_file(dir + "/LEVEL1"), read_file(text.level1()));
  EXPECT_EQ(read_file(dir + "/BASEDATA"), read_file(text.basedata()));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir),
                          std::filesystem::directory_iterator()),
            4);
  std::filesystem::remove_all(dir);
}
}  // namespace
}  // namespace orlo::tools
