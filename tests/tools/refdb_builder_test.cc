// The reference database builder: exact bytes of the three files, the
// encoding of numbers and texts, ordering, and every rejected input.
#include "lib/refdb_builder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lib/refdb_compiler.h"
#include "support/test_db.h"
#include "tools/file_util.h"

namespace orlo::tools {
namespace {

using orlo::testing::file_exists;
using orlo::testing::hex_bytes;
using orlo::testing::make_temp_dir;
using orlo::testing::read_file;
using orlo::testing::TestDb;

const std::string kHeader =
    "region,street,refcode,refid,building,parity,qual1,low,qual2,high,code9,"
    "address\n";

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

}  // namespace
}  // namespace orlo::tools
