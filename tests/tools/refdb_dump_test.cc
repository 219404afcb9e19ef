// Dumping a database back to CSV: exact text for awkward values, and
// byte-identical files when the dump is built again.
#include "lib/refdb_dump.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "lib/refdb_builder.h"
#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::tools {
namespace {

using orlo::testing::make_temp_dir;
using orlo::testing::read_file;
using orlo::testing::TestDb;

using orlo::testing::kRefHeader;

std::string dump(const std::string &dir, WalkTotals *totals = nullptr) {
  RefdbImages images;
  std::string error;
  EXPECT_TRUE(load_reference_images(dir, &images, &error)) << error;
  std::string csv;
  WalkTotals t;
  dump_reference_images(
      images, [&csv](std::string_view bytes) { csv.append(bytes); }, &t);
  if (totals) *totals = t;
  return csv;
}

// Builds csv with date into a new directory and expects its three files to
// equal those in dir.
void expect_rebuilds_identically(const std::string &csv, const std::string &dir,
                                 const std::string &date) {
  std::string again = make_temp_dir();
  BuildError err;
  ASSERT_TRUE(build_reference_db(csv, again, date, &err))
      << "line " << err.line << " " << err.field << ": " << err.message;
  for (const char *name : {"/LEVEL1", "/LEVEL2", "/BASEDATA"})
    EXPECT_TRUE(read_file(dir + name) == read_file(again + name))
        << name << " differs after dump and build";
  std::filesystem::remove_all(again);
}

// Numbers at the edges of each binary width, texts that look like numbers
// but must stay texts, 30-byte names, empty fields, quoting and high bytes.
TEST(RefdbDump, AwkwardValuesComeBackAsTheyWentIn) {
  const std::string n30(30, 'W');
  const std::string rows =
      "HK,EDGE,,,255,,,256,,65535,,65536\n"
      "HK,EDGE,,,4294967295,,,0,,00,,4294967296\n"
      "HK,EDGE,001,00012,0012,,,007,,1,000,-0\n"
      "HK,EDGE,,,,,,,,,,\n"
      "HK,\"QUOTE \"\"Q\"\", COMMA\",,,\"A,B\",,,,,,,\"\"\"\"\n"
      "HK,\xC9\xFF LANE,,,\t TAB ,,,,,,,\n" +
      n30 + "," + n30 + ",ABC,ZZZZZ," + n30 + ",O," + std::string(12, 'F') +
      ",99999," + std::string(12, 'G') + ",12345,XYZ," + n30 + "\n";
  TestDb db(rows, "19991231");
  WalkTotals totals;
  // The rows are given in file order (streets "EDGE" < "QUOTE..." < the
  // bytes 0xC9 0xFF), so the dump gives them back verbatim.
  std::string csv = dump(db.dir(), &totals);
  EXPECT_EQ(csv, kRefHeader + rows);
  EXPECT_EQ(totals.records, 7u);
  EXPECT_EQ(totals.date, "19991231");
  expect_rebuilds_identically(csv, db.dir(), "19991231");
}

// Regions and streets come out sorted; the records of a street keep their
// CSV order even when other rows come between them.
TEST(RefdbDump, DumpIsInFileOrderNotCsvOrder) {
  TestDb db(
      "NT,B,,,,,,1,,,,\n"
      "HK,Z,,,,,,2,,,,\n"
      "NT,A,,,,,,3,,,,\n"
      "NT,B,,,,,,4,,,,\n");
  EXPECT_EQ(dump(db.dir()), kRefHeader +
                                "HK,Z,,,,,,2,,,,\n"
                                "NT,A,,,,,,3,,,,\n"
                                "NT,B,,,,,,1,,,,\n"
                                "NT,B,,,,,,4,,,,\n");
}

}  // namespace
}  // namespace orlo::tools
