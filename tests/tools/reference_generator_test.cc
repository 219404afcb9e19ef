// The synthetic reference generator: deterministic per seed, exact record
// count, valid rows that build and check cleanly, and the variety of
// premises that the matcher's tests and benchmarks rely on.
#include "lib/reference_generator.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "lib/csv_reader.h"
#include "lib/refdb_check.h"
#include "lib/refdb_dump.h"
#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::tools {
namespace {

std::string generate(uint64_t records, uint64_t seed) {
  GeneratorOptions options;
  options.records = records;
  options.seed = seed;
  std::string csv, error;
  EXPECT_TRUE(generate_reference_csv(
      options, [&csv](std::string_view b) { csv.append(b); }, &error))
      << error;
  return csv;
}

std::vector<std::vector<std::string>> parse(const std::string &csv) {
  CsvReader reader(csv);
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> row;
  CsvReader::Status st;
  while ((st = reader.next(&row)) == CsvReader::Status::kRow)
    rows.push_back(row);
  EXPECT_EQ(st, CsvReader::Status::kEnd) << reader.error();
  return rows;
}

TEST(ReferenceGenerator, SameSeedSameOutputOtherSeedOtherOutput) {
  std::string a = generate(5000, 7);
  EXPECT_EQ(a, generate(5000, 7));
  EXPECT_NE(a, generate(5000, 8));
}

TEST(ReferenceGenerator, WritesExactlyTheRequestedRecords) {
  for (uint64_t n : {0u, 1u, 2u, 23u, 24u, 25u, 999u}) {
    auto rows = parse(generate(n, 3));
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows.size() - 1, n) << n;
  }
}

TEST(ReferenceGenerator, RowsAreValidAndVaried) {
  auto rows = parse(generate(30000, 11));
  ASSERT_EQ(rows.size(), 30001u);
  const std::vector<size_t> widths = {30, 30, 3, 5, 30, 1, 12, 5, 12, 5, 3, 30};
  std::set<std::string> refids, regions;
  std::map<std::pair<std::string, std::string>, int> per_street;
  int odd = 0, even = 0, suffixed = 0, floors = 0, shops = 0, bare = 0;
  for (size_t i = 1; i < rows.size(); ++i) {
    const auto &r = rows[i];
    ASSERT_EQ(r.size(), 12u) << "row " << i;
    for (size_t c = 0; c < 12; ++c) ASSERT_LE(r[c].size(), widths[c]) << i;
    EXPECT_EQ(r[2].size(), 3u) << "district code of row " << i;
    EXPECT_TRUE(refids.insert(r[3]).second) << "repeated refid " << r[3];
    regions.insert(r[0]);
    ++per_street[{r[0], r[1]}];
    if (r[5] == "O" || r[5] == "E") {
      int lo = std::stoi(r[7]), hi = std::stoi(r[9]);
      EXPECT_LT(lo, hi);
      EXPECT_EQ(lo % 2, r[5] == "O" ? 1 : 0) << "row " << i;
      EXPECT_EQ(hi % 2, lo % 2);
      (r[5] == "O" ? odd : even)++;
    }
    if (!r[7].empty() && std::isalpha(static_cast<unsigned char>(r[7].back())))
      ++suffixed;
    if (r[6] == "FLOOR") ++floors;
    if (r[6] == "SHOP") ++shops;
    if (r[7].empty()) {
      ++bare;
      EXPECT_FALSE(r[4].empty()) << "row " << i << " has neither number nor "
                                 << "building";
    }
  }
  EXPECT_EQ(regions, (std::set<std::string>{"HK", "KLN", "NT"}));
  EXPECT_GT(per_street.size(), 1000u);
  for (int count : {odd, even, suffixed, floors, shops, bare})
    EXPECT_GT(count, 300);
}

// Generated data builds, checks cleanly, and dumps to a CSV that builds the
// same three files again.
TEST(ReferenceGenerator, OutputBuildsChecksAndRoundTrips) {
  orlo::testing::TestDb db(generate(50000, 5));
  RefdbImages images;
  std::string error;
  ASSERT_TRUE(load_reference_images(db.dir(), &images, &error)) << error;
  CheckReport report = check_reference_images(images);
  EXPECT_EQ(report.fault_count, 0u);
  EXPECT_EQ(report.totals.records, 50000u);
  EXPECT_EQ(report.totals.regions, 3u);

  std::string csv;
  WalkTotals totals;
  dump_reference_images(
      images, [&csv](std::string_view b) { csv.append(b); }, &totals);
  orlo::testing::TestDb again(csv, report.totals.date);
  for (const char *f : {"/LEVEL1", "/LEVEL2", "/BASEDATA"})
    EXPECT_TRUE(orlo::testing::read_file(db.dir() + f) ==
                orlo::testing::read_file(again.dir() + f))
        << f;
}

TEST(ReferenceGenerator, RefusesMoreRecordsThanItsStreetsCanHold) {
  GeneratorOptions options;
  options.records = max_generated_records() + 1;
  std::string error;
  bool called = false;
  EXPECT_FALSE(generate_reference_csv(
      options, [&called](std::string_view) { called = true; }, &error));
  EXPECT_FALSE(called);
  EXPECT_NE(error.find("at most"), std::string::npos);
  // Its streets stay under 65536 records each even at the largest size.
  EXPECT_GE(max_generated_records(), 2000000u * 1000);
}

}  // namespace
}  // namespace orlo::tools
