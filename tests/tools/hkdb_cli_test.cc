// The hkdb program as users run it: exit codes 0 / 1 / 2, messages on
// standard error naming the file, line and field, help for every command,
// and no output file left behind by a failed run.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/test_db.h"
#include "tools/file_util.h"

namespace {

using orlo::testing::file_exists;
using orlo::testing::read_file;
using orlo::testing::write_file;

const std::string kHkdb = ORLO_BINARY_DIR "/bin/hkdb";
const std::string kHeader =
    "region,street,refcode,refid,building,parity,qual1,low,qual2,high,code9,"
    "address\n";

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

class HkdbCli : public ::testing::Test {
 protected:
  void SetUp() override { dir_ = orlo::testing::make_temp_dir(); }
  void TearDown() override { std::filesystem::remove_all(dir_); }

  // Runs hkdb with args (a shell word list of paths without blanks).
  Outcome hkdb(const std::string &args) {
    std::string cmd = kHkdb + " " + args + " >" + dir_ + "/stdout 2>" + dir_ +
                      "/stderr </dev/null";
    int raw = std::system(cmd.c_str());
    Outcome r;
    r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    r.out = read_file(dir_ + "/stdout");
    r.err = read_file(dir_ + "/stderr");
    return r;
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
    Outcome r = hkdb(std::string(cmd) + " --help");
    EXPECT_EQ(r.status, 0) << cmd;
    EXPECT_NE(r.out.find(std::string("Usage: hkdb ") + cmd), std::string::npos)
        << r.out;
  }
  Outcome top = hkdb("--help");
  EXPECT_EQ(top.status, 0);
  EXPECT_NE(top.out.find("generate --records N"), std::string::npos);
}

TEST_F(HkdbCli, WrongUsageExitsWith2) {
  const char *cases[] = {"",
                         "frobnicate",
                         "build only_one_arg",
                         "build a.csv outdir --date 2026",
                         "build a.csv outdir --colour red",
                         "build a.csv outdir --date",
                         "dump",
                         "check a b",
                         "generate",
                         "generate --records 12x",
                         "generate --records 10 --seed -1",
                         "generate --records 10 extra"};
  for (const char *args : cases) {
    Outcome r = hkdb(args);
    EXPECT_EQ(r.status, 2) << "hkdb " << args;
    EXPECT_FALSE(r.err.empty()) << "hkdb " << args;
    EXPECT_TRUE(r.out.empty()) << "hkdb " << args;
  }
}

TEST_F(HkdbCli, BuildErrorNamesFileLineAndFieldAndWritesNothing) {
  write_file(path("bad.csv"), kHeader + "HK,A,,,,,,1,,,,\nHK," +
                                  std::string(31, 'S') + ",,,,,,,,,,\n");
  std::string out = make_dir("out");
  Outcome r = hkdb("build " + path("bad.csv") + " " + out + " --date 20260101");
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find(path("bad.csv") + " line 3, field street: is 31 bytes"),
            std::string::npos)
      << r.err;
  EXPECT_TRUE(std::filesystem::is_empty(out));

  Outcome missing = hkdb("build " + path("none.csv") + " " + out);
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("cannot open"), std::string::npos);
}

TEST_F(HkdbCli, BuildCheckDumpAndBuildAgain) {
  write_file(path("ref.csv"), kHeader +
                                  "KLN,NATHAN ROAD,TST,00001,,E,,2,,88,,\n"
                                  "HK,\"QUEEN'S ROAD, C\",CEN,,,,,1,,,,\n");
  std::string db = make_dir("db");
  Outcome built =
      hkdb("build " + path("ref.csv") + " " + db + " --date=20260315");
  ASSERT_EQ(built.status, 0) << built.err;
  EXPECT_NE(built.out.find("2 rows, 2 regions, 2 streets"), std::string::npos)
      << built.out;

  Outcome checked = hkdb("check " + db);
  EXPECT_EQ(checked.status, 0) << checked.out;
  EXPECT_NE(checked.out.find("2 regions, 2 streets, 2 records; date 20260315"),
            std::string::npos)
      << checked.out;
  EXPECT_NE(checked.out.find("0 faults"), std::string::npos);

  Outcome dumped = hkdb("dump " + db);
  ASSERT_EQ(dumped.status, 0) << dumped.err;
  EXPECT_NE(dumped.err.find("database date 20260315"), std::string::npos);
  Outcome to_file = hkdb("dump " + db + " --out " + path("dump.csv"));
  ASSERT_EQ(to_file.status, 0);
  EXPECT_EQ(read_file(path("dump.csv")), dumped.out);

  std::string again = make_dir("again");
  ASSERT_EQ(hkdb("build " + path("dump.csv") + " " + again + " --date 20260315")
                .status,
            0);
  for (const char *f : {"/LEVEL1", "/LEVEL2", "/BASEDATA"})
    EXPECT_TRUE(read_file(db + f) == read_file(again + f)) << f;
}

TEST_F(HkdbCli, DamagedDatabaseFailsCheckAndIsNotDumped) {
  write_file(path("ref.csv"), kHeader + "KLN,NATHAN ROAD,TST,,,,,2,,,,\n");
  std::string db = make_dir("db");
  ASSERT_EQ(hkdb("build " + path("ref.csv") + " " + db).status, 0);
  std::string base = read_file(db + "/BASEDATA");
  base[8] = 2;  // the first record's length byte
  write_file(db + "/BASEDATA", base);

  Outcome checked = hkdb("check " + db);
  EXPECT_EQ(checked.status, 1);
  EXPECT_NE(checked.out.find("BASEDATA offset 8: record length 2"),
            std::string::npos)
      << checked.out;
  EXPECT_NE(checked.out.find("1 faults"), std::string::npos);

  Outcome dumped = hkdb("dump " + db + " --out " + path("dump.csv"));
  EXPECT_EQ(dumped.status, 1);
  EXPECT_NE(dumped.err.find("record length 2"), std::string::npos);
  EXPECT_FALSE(file_exists(path("dump.csv")));

  Outcome absent = hkdb("check " + path("nowhere"));
  EXPECT_EQ(absent.status, 1);
  EXPECT_NE(absent.err.find("cannot open " + path("nowhere") + "/LEVEL1"),
            std::string::npos)
      << absent.err;
}

TEST_F(HkdbCli, GenerateIsDeterministicAndBuilds) {
  Outcome a = hkdb("generate --records 3000 --seed 9");
  ASSERT_EQ(a.status, 0) << a.err;
  EXPECT_TRUE(a.out.starts_with(kHeader));
  EXPECT_NE(a.err.find("3000 records (seed 9)"), std::string::npos);
  Outcome b = hkdb("generate --records 3000 --seed 9 --out " + path("g.csv"));
  ASSERT_EQ(b.status, 0);
  EXPECT_TRUE(b.out.empty());
  EXPECT_EQ(read_file(path("g.csv")), a.out);

  std::string db = make_dir("db");
  ASSERT_EQ(hkdb("build " + path("g.csv") + " " + db).status, 0);
  EXPECT_EQ(hkdb("check " + db).status, 0);
}

}  // namespace
