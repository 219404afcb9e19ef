// hkaddrgen run as a program: repeatable output, rows that hkgeocode takes
// without complaint and mostly finds in the reference they came from.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/test_db.h"
#include "tools/file_util.h"

namespace orlo::testing {
namespace {

const std::string kBin = std::string(ORLO_BINARY_DIR) + "/bin/";
const std::string kSampleCsv =
    std::string(ORLO_SOURCE_DIR) + "/data/sample/reference.csv";

class Hkaddrgen : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(file_exists(kBin + "hkaddrgen"));
    dir_ = make_temp_dir();
  }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  // Runs a tool of the build; returns its exit status.
  int run(const std::string &command) {
    int rc = std::system((kBin + command + " 2>" + dir_ + "/stderr").c_str());
    err_ = read_file(dir_ + "/stderr");
    return WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
  }
  std::string generate(int count, int seed) {
    std::string out = dir_ + "/gen" + std::to_string(seed) + ".csv";
    EXPECT_EQ(run("hkaddrgen --reference " + kSampleCsv + " --count " +
                  std::to_string(count) + " --seed " + std::to_string(seed) +
                  " --out " + out),
              0)
        << err_;
    return out;
  }

  std::string dir_;
  std::string err_;
};

size_t count_lines(const std::string &text) {
  size_t n = 0;
  for (char c : text) n += c == '\n';
  return n;
}

TEST_F(Hkaddrgen, SameSeedSameAddresses) {
  std::string a = read_file(generate(500, 7));
  std::string b = read_file(generate(500, 7));
  std::string c = read_file(generate(500, 8));
  EXPECT_EQ(a, b);
  EXPECT_NE(a, c);
  EXPECT_EQ(count_lines(a), 501u);
  EXPECT_EQ(a.substr(0, a.find('\n')),
            "refcode,premno,street,building,unit,extra,district,region,mode");
}

TEST_F(Hkaddrgen, AddressesAreGoodInputAndMostlyFound) {
  std::string in = generate(2000, 3);
  std::string out = dir_ + "/out.csv";
  EXPECT_EQ(run("hkgeocode --quiet --db " + sample_db_dir() + " --out " + out +
                " " + in),
            0)
      << err_;
  EXPECT_NE(err_.find("2000 records read, 2000 processed"), std::string::npos)
      << err_;
  // "'0' candidate accepted   N": most forms are meant to be found.
  size_t at = err_.find("candidate accepted");
  ASSERT_NE(at, std::string::npos) << err_;
  long found = std::strtol(err_.c_str() + at + 18, nullptr, 10);
  EXPECT_GT(found, 1200) << err_;
  EXPECT_LT(found, 2000) << "some addresses are meant not to be found";
}

TEST_F(Hkaddrgen, UsageAndInputErrors) {
  EXPECT_EQ(run("hkaddrgen --count 5"), 2);
  EXPECT_EQ(run("hkaddrgen --reference x.csv --count five"), 2);
  EXPECT_EQ(run("hkaddrgen --reference x.csv --count 5 --bogus 1"), 2);
  EXPECT_EQ(run("hkaddrgen --reference " + dir_ + "/none.csv --count 5"), 1);
  write_file(dir_ + "/bad.csv", "region,street\nHK,A ST\n");
  EXPECT_EQ(run("hkaddrgen --reference " + dir_ + "/bad.csv --count 5"), 1);
  EXPECT_NE(err_.find("bad.csv:1: expected 12 fields"), std::string::npos)
      << err_;
  EXPECT_EQ(run("hkaddrgen --help >/dev/null"), 0);
}

}  // namespace
}  // namespace orlo::testing
