// The hkdb program as users run it: exit status 1 and messages on standard
// error naming the file, line and field, and no output file left behind by
// a failed run (help and usage errors: tool_command_line_test).
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
  EXPECT_TRUE(checked.out.ends_with("; 0 faults\n")) << checked.out;

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
  EXPECT_TRUE(checked.out.ends_with("; 1 fault\n")) << checked.out;

  ToolRun dumped = hkdb("dump " + db + " --out " + path("dump.csv"));
  EXPECT_EQ(dumped.status, 1);
  EXPECT_TRUE(has(dumped.err,
                  "hkdb dump: " + db + "/BASEDATA offset 8: record length 2"))
      << dumped.err;
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

// Rows the front ends could never use are refused with their line and
// field; lower case is folded and exact repeats are dropped, each with one
// warning.
TEST_F(HkdbCli, BuildRefusesUnusableRowsAndWarnsOfWhatItTidies) {
  struct Case {
    const char *row;
    const char *fault;  // after "bad.csv line 2, field "
  } cases[] = {
      {"KOWLOON,A,,,,,,1,,,,", "region: \"KOWLOON\" is not a region key"},
      {"HK,A,,,,X,,1,,,,", "parity: is \"X\"; the side of the street"},
      {"HK,A,,,,,,30,,12,,", "low: 30 is above the high number 12"},
      {"HK,A,AB,,,,,1,,,,", "refcode: \"AB\" is not 3 letters or digits"},
      {"HK,A,A-B,,,,,1,,,,", "refcode: \"A-B\" is not 3 letters"},
      {"HK,A,,1234,,,,1,,,,", "refid: \"1234\" is not 5 letters or digits"},
  };
  std::string out = make_dir("out");
  for (const Case &c : cases) {
    write_file(path("bad.csv"), kRefHeader + c.row + "\n");
    ToolRun r = hkdb("build " + path("bad.csv") + " " + out);
    EXPECT_EQ(r.status, 1) << c.row;
    EXPECT_TRUE(has(r.err, path("bad.csv") + " line 2, field " + c.fault))
        << r.err;
    EXPECT_TRUE(std::filesystem::is_empty(out)) << c.row;
  }
  write_file(path("any.csv"), kRefHeader + "KOWLOON,A,,,,,,1,,,,\n");
  EXPECT_EQ(
      hkdb("build " + path("any.csv") + " " + out + " --any-region").status, 0);

  write_file(path("ref.csv"), kRefHeader +
                                  "kln,nathan road,tst,00001,,e,,2,,88,,\n"
                                  "HK,A ST,,,,,,1,,,,\n"
                                  "KLN,NATHAN ROAD,TST,00001,,E,,2,,88,,\n"
                                  "Hk,a st,,,,,,1,,,,\n"
                                  "HK,A ST,,,,,,3,,,,\n");
  ToolRun built = hkdb("build " + path("ref.csv") + " " + out);
  ASSERT_EQ(built.status, 0) << built.err;
  EXPECT_TRUE(has(built.err,
                  "warning: 2 rows had lower-case letters, folded to upper "
                  "case (the first on line 2)\n"))
      << built.err;
  EXPECT_TRUE(has(built.err,
                  "warning: 2 rows repeated an earlier row exactly and were "
                  "left out: line 4 repeats line 2, line 5 repeats line 3\n"))
      << built.err;
  EXPECT_TRUE(has(built.out, "5 rows (2 left out), 2 regions, 2 streets"))
      << built.out;
  EXPECT_TRUE(has(hkdb("check " + out).out, "3 records;"));
}

// A BASEDATA cut short after its date: one fault of its length and one per
// street, at most ten lines of each kind unless --all.
TEST_F(HkdbCli, CheckGroupsFaultsByKindAndShowsTenOfEach) {
  std::string db = make_dir("cut");
  for (const char *file : {"LEVEL1", "LEVEL2", "BASEDATA"})
    std::filesystem::copy_file(sample_db_dir() + "/" + file, db + "/" + file);
  std::filesystem::resize_file(db + "/BASEDATA", 8);
  for (bool all : {false, true}) {
    ToolRun r = hkdb("check " + db + (all ? " --all" : ""));
    EXPECT_EQ(r.status, 1);
    size_t lines = 0, listed = 0;
    for (char c : r.out) lines += c == '\n';
    for (size_t at = 0; (at = r.out.find("\n  ", at)) != std::string::npos;
         ++at)
      ++listed;
    EXPECT_EQ(listed, all ? 594u : 11u) << r.out;
    EXPECT_EQ(lines, listed + 3) << r.out;  // two headings and the summary
    EXPECT_TRUE(has(r.out, "file lengths: 1 fault\n")) << r.out;
    EXPECT_TRUE(has(r.out, all ? "blocks outside BASEDATA: 593 faults\n"
                               : "blocks outside BASEDATA: 593 faults, the "
                                 "first 10 (--all shows every one)\n"))
        << r.out;
    EXPECT_TRUE(r.out.ends_with("BASEDATA 8 bytes; 594 faults\n")) << r.out;
  }
}

}  // namespace
}  // namespace orlo::testing
