// The command lines of hkdb, hkgeocode, hkaddrgen and hkpremise: help for
// every tool and command, one form of usage error with exit status 2, and
// "--opt=value" read as "--opt value".
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

const std::string kBin = ORLO_BINARY_DIR "/bin/";
const std::string kSampleCsv = ORLO_SOURCE_DIR "/data/sample/reference.csv";

class ToolCommandLine : public ::testing::Test {
 protected:
  void SetUp() override { dir_ = make_temp_dir(); }
  void TearDown() override { std::filesystem::remove_all(dir_); }
  ToolRun run(const std::string &command) {
    return run_tool(kBin + command, dir_);
  }
  std::string dir_;
};

// Every help names its usage, each option with the name of its value, the
// defaults and the exit statuses; help2man makes the manual pages from these.
TEST_F(ToolCommandLine, EveryToolAndCommandHasHelp) {
  const struct {
    const char *command, *usage;
    std::vector<std::string> options;
  } cases[] = {
      {"hkdb --help", "Usage: hkdb COMMAND", {"-h, --help"}},
      {"hkdb build -h",
       "Usage: hkdb build CSV OUTDIR",
       {"--date TEXT8", "--any-region", "today's UTC date"}},
      {"hkdb dump --help", "Usage: hkdb dump DBDIR", {"--out CSV"}},
      {"hkdb check --help", "Usage: hkdb check DBDIR", {"--all"}},
      {"hkdb generate --help",
       "Usage: hkdb generate --records N",
       {"--records N", "--seed S", "--out CSV", "(default 1)"}},
      {"hkgeocode --help",
       "Usage: hkgeocode [OPTIONS] [INPUT]",
       {"--db DIR", "--options TEXT", "--threads N", "--raw", "--table",
        "--fixed", "--lines", "--column NAME", "--out PATH", "--report PATH",
        "--report-line TEXT", "--quiet", "-h, --help", "4  some rows failed"}},
      {"hkaddrgen --help",
       "Usage: hkaddrgen --reference CSV --count N",
       {"--reference CSV", "--count N", "--seed S", "--out PATH"}},
      {"hkpremise --help",
       "Usage: hkpremise [OPTIONS] TEXT...",
       {"-h, --help"}},
  };
  for (const auto &c : cases) {
    ToolRun r = run(c.command);
    EXPECT_EQ(r.status, 0) << c.command;
    EXPECT_TRUE(r.err.empty()) << c.command << ": " << r.err;
    EXPECT_TRUE(r.out.starts_with(c.usage)) << r.out;
    EXPECT_TRUE(has(r.out, "\nOptions:\n")) << r.out;
    EXPECT_TRUE(has(r.out, "Exit status")) << r.out;
    // An option heads a line of the list; other texts are defaults and
    // statuses anywhere in the help.
    for (const std::string &o : c.options)
      EXPECT_TRUE(has(r.out, o[0] == '-' ? "\n  " + o + " " : o))
          << c.command << ": " << o;
  }
}

// Wrong usage exits with 2, names the program (and command) and the
// trouble on standard error, points to --help and writes nothing else.
TEST_F(ToolCommandLine, WrongUsageGivesOneMessageAndStatus2) {
  const struct {
    const char *args, *message;
  } cases[] = {
      {"hkdb", "hkdb: no COMMAND given"},
      {"hkdb --bogus", "hkdb: unknown option --bogus"},
      {"hkdb frobnicate", "hkdb: unknown command 'frobnicate'"},
      {"hkdb build only_one_arg", "hkdb build: OUTDIR is required"},
      {"hkdb build a.csv out --date 2026",
       "hkdb build: --date: needs exactly 8 characters"},
      {"hkdb build a.csv out --colour=red",
       "hkdb build: unknown option --colour"},
      {"hkdb build a.csv out --date",
       "hkdb build: option --date needs a value"},
      {"hkdb dump", "hkdb dump: DBDIR is required"},
      {"hkdb check a b", "hkdb check: unexpected argument 'b'"},
      {"hkdb generate", "hkdb generate: --records is required"},
      {"hkdb generate --records 12x",
       "hkdb generate: --records: takes a number from 0 to"},
      {"hkdb generate --records 99999999999999",
       "hkdb generate: --records: takes a number from 0 to"},
      {"hkdb generate --records 10 --seed=-1",
       "hkdb generate: --seed: needs a whole number, not '-1'"},
      {"hkgeocode --bogus", "hkgeocode: unknown option --bogus"},
      {"hkgeocode --threads 0",
       "hkgeocode: --threads: takes a number from 1 to 64, not 0"},
      {"hkgeocode --threads=65", "takes a number from 1 to 64, not 65"},
      {"hkgeocode --threads x", "takes a number from 1 to 64, not 'x'"},
      {"hkgeocode --db", "hkgeocode: option --db needs a value"},
      {"hkgeocode a.csv b.csv", "hkgeocode: unexpected argument 'b.csv'"},
      {"hkgeocode --table --fixed", "hkgeocode: --table excludes --fixed"},
      {"hkgeocode --lines --raw", "hkgeocode: --raw excludes --lines"},
      {"hkgeocode --column line", "hkgeocode: --column requires --lines"},
      {"hkgeocode --threads 2 --options Wextract.dat",
       "hkgeocode: --options: an extract option cannot be combined with "
       "--threads above 1"},
      {"hkgeocode --report-line 1 --report-line 2 --report-line 3 "
       "--report-line 4 --report-line 5 --report-line 6 --report-line=7",
       "hkgeocode: --report-line: at most six texts"},
      {"hkaddrgen --count 5", "hkaddrgen: --reference is required"},
      {"hkaddrgen --reference x.csv --count five",
       "hkaddrgen: --count: needs a whole number, not 'five'"},
      {"hkaddrgen --reference x.csv --count 5 --bogus 1",
       "hkaddrgen: unknown option --bogus"},
      {"hkpremise", "hkpremise: TEXT is required"},
      {"hkpremise 12 --x", "hkpremise: unknown option --x"},
  };
  for (const auto &c : cases) {
    ToolRun r = run(c.args);
    EXPECT_EQ(r.status, 2) << c.args;
    EXPECT_TRUE(has(r.err, c.message)) << c.args << ": " << r.err;
    std::string tool = r.err.substr(0, r.err.find(':'));
    EXPECT_TRUE(r.err.ends_with("\nTry '" + tool + " --help'.\n")) << r.err;
    EXPECT_TRUE(r.out.empty()) << c.args;
  }
}

// "--opt=value" and "--opt value" give the same run; a different value
// gives a different one, so the value was read at all.
TEST_F(ToolCommandLine, BothOptionFormsAreTheSame) {
  const std::string addrgen =
      "hkaddrgen --reference " + kSampleCsv + " --count";
  const struct {
    std::string spaced, joined, other;
  } cases[] = {
      {"hkdb generate --records 40 --seed 3",
       "hkdb generate --records=40 --seed=3",
       "hkdb generate --records=40 --seed=4"},
      {addrgen + " 30 --seed 2",
       "hkaddrgen --reference=" + kSampleCsv + " --count=30 --seed=2",
       addrgen + " 30 --seed=5"},
  };
  for (const auto &c : cases) {
    ToolRun spaced = run(c.spaced), joined = run(c.joined),
            other = run(c.other);
    ASSERT_EQ(spaced.status, 0) << c.spaced << ": " << spaced.err;
    EXPECT_FALSE(spaced.out.empty()) << c.spaced;
    EXPECT_EQ(joined.out, spaced.out) << c.joined;
    EXPECT_NE(other.out, spaced.out) << c.other;
  }

  // hkgeocode reads its input and writes its output by either form.
  write_file(dir_ + "/in.csv",
             "refcode,premno,street,building,unit,extra,district,region,"
             "mode\n,36,NATHAN ROAD,,,,,KLN,\n");
  const std::string db = sample_db_dir();
  ASSERT_EQ(run("hkgeocode --quiet --db " + db + " --out " + dir_ + "/a.csv " +
                dir_ + "/in.csv")
                .status,
            0);
  ASSERT_EQ(run("hkgeocode --quiet --db=" + db + " --out=" + dir_ +
                "/b.csv -- " + dir_ + "/in.csv")
                .status,
            0);
  EXPECT_EQ(read_file(dir_ + "/a.csv"), read_file(dir_ + "/b.csv"));
  EXPECT_TRUE(has(read_file(dir_ + "/a.csv"), "NATHAN ROAD"));
}

}  // namespace
}  // namespace orlo::testing
