// hkaddrgen run as a program: repeatable output, rows that hkgeocode takes
// without complaint and mostly finds in the reference they came from.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

const std::string kBin = ORLO_BINARY_DIR "/bin/";
const std::string kSampleCsv = ORLO_SOURCE_DIR "/data/sample/reference.csv";

class Hkaddrgen : public ::testing::Test {
 protected:
  void SetUp() override { dir_ = make_temp_dir(); }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  // Runs a tool of the build; returns its exit status.
  int run(const std::string &command) {
    ToolRun r = run_tool(kBin + command, dir_);
    err_ = r.err;
    return r.status;
  }
  std::string generate(int count, int seed) {
    std::string out = dir_ + "/gen" + std::to_string(seed) + ".csv";
    EXPECT_EQ(run("hkaddrgen --reference " + kSampleCsv + " --count " +
                  std::to_string(count) + " --seed " + std::to_string(seed) +
                  " --out " + out),
              0)
        << err_;
    return read_file(out);
  }

  std::string dir_;
  std::string err_;
};

TEST_F(Hkaddrgen, SameSeedSameAddresses) {
  std::string a = generate(500, 7);
  EXPECT_EQ(a, generate(500, 7));
  EXPECT_NE(a, generate(500, 8));
  EXPECT_EQ(std::count(a.begin(), a.end(), '\n'), 501);
  EXPECT_TRUE(a.starts_with(
      "refcode,premno,street,building,unit,extra,district,region,mode\n"));
}

TEST_F(Hkaddrgen, AddressesAreGoodInputAndMostlyFound) {
  write_file(dir_ + "/in.csv", generate(2000, 3));
  EXPECT_EQ(run("hkgeocode --quiet --db " + sample_db_dir() + " --out " + dir_ +
                "/out.csv " + dir_ + "/in.csv"),
            0)
      << err_;
  EXPECT_TRUE(has(err_, "2000 records read, 2000 processed")) << err_;
  // "2000 processed, N matched": most forms are meant to be found.
  size_t at = err_.find("2000 processed, ");
  ASSERT_NE(at, std::string::npos) << err_;
  long found = std::strtol(err_.c_str() + at + 16, nullptr, 10);
  EXPECT_GT(found, 1200) << err_;
  EXPECT_LT(found, 2000) << "some addresses are meant not to be found";
}

TEST_F(Hkaddrgen, InputErrors) {
  EXPECT_EQ(run("hkaddrgen --reference " + dir_ + "/none.csv --count 5"), 1);
  EXPECT_TRUE(has(err_, "none.csv: No such file")) << err_;
  // Faults name the file and line, as hkdb build does.
  const struct {
    std::string csv, message;
  } cases[] = {
      {"region,street\nHK,A ST\n", "bad.csv line 1: header must be exactly"},
      {kRefHeader + "HK,A ST\n", "bad.csv line 2: expected 12 fields, found 2"},
      {kRefHeader + "HK,\"A ST\n", "bad.csv line 2: "},
      {kRefHeader, "bad.csv: no reference records"},
  };
  for (const auto &c : cases) {
    write_file(dir_ + "/bad.csv", c.csv);
    EXPECT_EQ(run("hkaddrgen --reference " + dir_ + "/bad.csv --count 5"), 1);
    EXPECT_TRUE(has(err_, c.message)) << err_;
  }
}

}  // namespace
}  // namespace orlo::testing
