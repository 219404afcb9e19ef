// The hkdb program as users run it: exit codes 0 / 1 / 2, messages on
// standard error naming the file, line and field, help for every command,
// and no output file left behind by a failed run.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

class HkdbCli : public ::testing::Test {
 protected:
  void SetUp() override { dir_ = make_temp_dir(); }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  // Runs hkdb with args (a shell word list of paths without blanks).
  ToolRun hkdb(const std::string &args) {
    return run_tool(ORLO_BINARY_DIR "/bin/hkdb " + args, dir_);
  }
  std::string path(const std::string &name) { return dir_ + "/" + name; }
  std::string make_dir(const std::string &name) {
    std::filesystem::create_directory(path(name));
    return path(name);
  }

  std::string dir_;
};

TEST_F(HkdbCli, EveryCommandHasHelp) {
  for (const char *cmd : {"build", "dump", "check", "generate"}) {
    ToolRun r = hkdb(std::string(cmd) + " --help");
    EXPECT_EQ(r.status, 0) << cmd;
    EXPECT_TRUE(has(r.out, std::string("Usage: hkdb ") + cmd)) << r.out;
  }
  ToolRun top = hkdb("--help");
  EXPECT_EQ(top.status, 0);
  EXPECT_TRUE(has(top.out, "generate --records N")) << top.out;
}

// Wrong usage exits with 2, says why on stderr and writes nothing to stdout.
TEST_F(HkdbCli, WrongUsageExitsWith2) {
  for (const char *args :
       {"", "frobnicate", "build only_one_arg",
        "build a.csv outdir --date 2026", "build a.csv outdir --colour red",
        "build a.csv outdir --date", "dump", "check a b", "generate",
        "generate --records 12x", "generate --records 10 --seed -1",
        "generate --records 10 extra"}) {
    ToolRun r = hkdb(args);
    EXPECT_EQ(r.status, 2) << "hkdb " << args;
    EXPECT_FALSE(r.err.empty()) << "hkdb " << args;
    EXPECT_TRUE(r.out.empty()) << "hkdb " << args;
  }
}

TEST_F(HkdbCli, BuildErrorNamesFileLineAndFieldAndWritesNothing) {
  write_file(path("bad.csv"), kRefHeader + "HK,A,,,,,,1,,,,\nHK," +
                                  std::string(31, 'S') + ",,,,,,,,,,\n");
  std::string out = make_dir("out");
  ToolRun r = hkdb("build " + path("bad.csv") + " " + out + " --date 20260101");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(
      has(r.err, path("bad.csv") + " line 3, field street: is 31 bytes"))
      << r.err;
  EXPECT_TRUE(std::filesystem::is_empty(out));

  ToolRun missing = hkdb("build " + path("none.csv") + " " + out);
  EXPECT_EQ(missing.status, 1);
  EXPECT_TRUE(has(missing.err, "cannot open")) << missing.err;
}

// build, check and dump (to stdout and to a file) with their summaries; the
// round trip itself is pinned by the library tests.
TEST_F(HkdbCli, BuildCheckAndDump) {
  write_file(path("ref.csv"), kRefHeader +
                                  "KLN,NATHAN ROAD,TST,00001,,E,,2,,88,,\n"
                                  "HK,\"QUEEN'S ROAD, C\",CEN,,,,,1,,,,\n");
  std::string db = make_dir("db");
  ToolRun built =
      hkdb("build " + path("ref.csv") + " " + db + " --date=20260315");
  ASSERT_EQ(built.status, 0) << built.err;
  EXPECT_TRUE(has(built.out, "2 rows, 2 regions, 2 streets")) << built.out;

  ToolRun checked = hkdb("check " + db);
  EXPECT_EQ(checked.status, 0) << checked.out;
  EXPECT_TRUE(
      has(checked.out, "2 regions, 2 streets, 2 records; date 20260315; "))
      << checked.out;
  EXPECT_TRUE(has(checked.out, "0 faults")) << checked.out;

  ToolRun dumped = hkdb("dump " + db);
  ASSERT_EQ(dumped.status, 0) << dumped.err;
  EXPECT_TRUE(has(dumped.err, "database date 20260315")) << dumped.err;
  ASSERT_EQ(hkdb("dump " + db + " --out " + path("dump.csv")).status, 0);
  EXPECT_EQ(read_file(path("dump.csv")), dumped.out);
}

TEST_F(HkdbCli, DamagedDatabaseFailsCheckAndIsNotDumped) {
  write_file(path("ref.csv"), kRefHeader + "KLN,NATHAN ROAD,TST,,,,,2,,,,\n");
  std::string db = make_dir("db");
  ASSERT_EQ(hkdb("build " + path("ref.csv") + " " + db).status, 0);
  std::string base = read_file(db + "/BASEDATA");
  base[8] = 2;  // the first record's length byte
  write_file(db + "/BASEDATA", base);

  ToolRun checked = hkdb("check " + db);
  EXPECT_EQ(checked.status, 1);
  EXPECT_TRUE(has(checked.out, "BASEDATA offset 8: record length 2"))
      << checked.out;
  EXPECT_TRUE(has(checked.out, "1 faults")) << checked.out;

  ToolRun dumped = hkdb("dump " + db + " --out " + path("dump.csv"));
  EXPECT_EQ(dumped.status, 1);
  EXPECT_TRUE(has(dumped.err, "record length 2")) << dumped.err;
  EXPECT_FALSE(file_exists(path("dump.csv")));

  ToolRun absent = hkdb("check " + path("nowhere"));
  EXPECT_EQ(absent.status, 1);
  EXPECT_TRUE(has(absent.err, "cannot open " + path("nowhere") + "/LEVEL1"))
      << absent.err;
}

// A header without rows builds, with a warning, an empty database that
// checks clean and that the matcher opens and answers with match status '1'
// (no region); the output folder is made, with the folders above it.
TEST_F(HkdbCli, HeaderOnlyCsvBuildsAnEmptyDatabase) {
  write_file(path("empty.csv"), kRefHeader);
  std::string db = path("new/db");
  ToolRun built = hkdb("build " + path("empty.csv") + " " + db);
  ASSERT_EQ(built.status, 0) << built.err;
  EXPECT_TRUE(has(built.out, "0 rows, 0 regions, 0 streets")) << built.out;
  EXPECT_TRUE(has(built.err, "warning: " + path("empty.csv") +
                                 " has no rows after its header line"))
      << built.err;
  ToolRun checked = hkdb("check " + db);
  EXPECT_EQ(checked.status, 0) << checked.out;
  EXPECT_TRUE(has(checked.out, "0 faults")) << checked.out;

  std::string in(200, ' ');
  in.replace(18, 11, "NATHAN ROAD");
  in.replace(163, 3, "KLN");
  write_file(path("in.bin"), in);
  ToolRun geocoded =
      run_tool(ORLO_BINARY_DIR "/bin/hkgeocode --quiet --fixed --db " + db +
                   " " + path("in.bin"),
               dir_);
  ASSERT_EQ(geocoded.out.size(), 300u) << geocoded.err;
  EXPECT_EQ(geocoded.out[0], '0');
  EXPECT_EQ(geocoded.out[267], '1');
}

// The same seed writes the same rows to stdout or to --out.
TEST_F(HkdbCli, GenerateIsDeterministic) {
  ToolRun a = hkdb("generate --records 3000 --seed 9");
  ASSERT_EQ(a.status, 0) << a.err;
  EXPECT_TRUE(a.out.starts_with(kRefHeader));
  EXPECT_TRUE(has(a.err, "3000 records (seed 9)")) << a.err;
  ToolRun b = hkdb("generate --records 3000 --seed 9 --out " + path("g.csv"));
  ASSERT_EQ(b.status, 0);
  EXPECT_TRUE(b.out.empty());
  EXPECT_EQ(read_file(path("g.csv")), a.out);
}

}  // namespace
}  // namespace orlo::testing
