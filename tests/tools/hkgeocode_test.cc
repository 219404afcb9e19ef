// hkgeocode run as a program: its output against a golden file, the same
// output with several threads, fixed records against direct matcher calls,
// every kind of bad row, the statement, and the exit codes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "lib/csv_reader.h"
#include "orlo_matcher.h"
#include "support/test_db.h"
#include "tools/file_util.h"

namespace orlo::testing {
namespace {

const std::string kTool = std::string(ORLO_BINARY_DIR) + "/bin/hkgeocode";
const std::string kHeader =
    "refcode,premno,street,building,unit,extra,district,region,mode\n";

constexpr const char *kReferenceCsv =
    "HK,QUEEN'S ROAD CENTRAL,CEN,00101,,O,,1,,99,STR,"
    "1 QUEEN'S RD CENTRAL CENTRAL\n"
    "HK,QUEEN'S ROAD CENTRAL,CEN,00102,,E,,2,,98,STR,"
    "2 QUEEN'S RD CENTRAL CENTRAL\n"
    "KLN,NATHAN ROAD,TST,00201,CHUNGKING MANSIONS,,,36,,44,COM,"
    "36 NATHAN RD TSIM SHA TSUI\n"
    "KLN,NATHAN ROAD,YMT,00202,,O,,301,,399,STR,301 NATHAN RD YAU MA TEI\n"
    "KLN,CANTON ROAD,TST,00301,,E,,2,,60,STR,2 CANTON RD TSIM SHA TSUI\n"
    "NT,CASTLE PEAK ROAD,TMN,00401,,,,1,,,STR,1 CASTLE PEAK RD TUEN MUN\n"
    // Estates listed as streets of their own, on a street named by their
    // address text: what the second search with the building name finds.
    "KLN,MIRADOR MANSION,TST,00501,,,,,,,RES,NATHAN ROAD\n"
    "KLN,OCEAN CENTRE,TST,00502,,,,,,,COM,CANTON ROAD\n";

struct ToolRun {
  int status = -1;
  std::string out;
  std::string err;
};

class Hkgeocode : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(file_exists(kTool)) << kTool << " is not built";
    db_ = std::make_unique<TestDb>(kReferenceCsv, "20261101");
    dir_ = db_->dir();
  }

  std::string path(const std::string &name) const { return dir_ + "/" + name; }

  // Runs the tool with args (already quoted as needed) and the input file.
  ToolRun run(const std::string &args) {
    std::string cmd = kTool + " --quiet " + args + " >" + path("stdout") +
                      " 2>" + path("stderr");
    int rc = std::system(cmd.c_str());
    ToolRun r;
    r.status = WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
    r.out = read_file(path("stdout"));
    r.err = read_file(path("stderr"));
    return r;
  }
  ToolRun run_csv(const std::string &csv, const std::string &more = "") {
    write_file(path("in.csv"), csv);
    return run("--db " + dir_ + " " + more + " " + path("in.csv"));
  }

  std::unique_ptr<TestDb> db_;
  std::string dir_;
};

std::vector<std::string> lines_of(const std::string &text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

// The output parsed back into rows of fields (header first).
std::vector<std::vector<std::string>> csv_rows(const std::string &text) {
  tools::CsvReader reader(text);
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> fields;
  while (reader.next(&fields) == tools::CsvReader::Status::kRow) {
    rows.push_back(fields);
  }
  EXPECT_TRUE(reader.error().empty()) << reader.error();
  return rows;
}

constexpr size_t kReturnCode = 9;
constexpr size_t kReturnMeaning = 10;
constexpr size_t kColumns = 29;

TEST_F(Hkgeocode, HelpAndUsageErrors) {
  ToolRun help = run("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("Usage: hkgeocode"), std::string::npos);
  EXPECT_NE(help.out.find("--threads N"), std::string::npos);

  for (const char *args :
       {"--bogus", "--threads 0", "--threads 65", "--threads x", "--db",
        "a.csv b.csv", "--threads 2 --options Wextract.dat",
        "--report-line 1 --report-line 2 --report-line 3 --report-line 4 "
        "--report-line 5 --report-line 6 --report-line 7"}) {
    ToolRun r = run(args);
    EXPECT_EQ(r.status, 2) << args;
    EXPECT_NE(r.err.find("hkgeocode: "), std::string::npos) << args;
    EXPECT_TRUE(r.out.empty()) << args;
  }
}

TEST_F(Hkgeocode, UnusableFilesAndDatabaseGive2) {
  write_file(path("in.csv"), kHeader);
  ToolRun no_db = run("--db " + dir_ + "/nowhere " + path("in.csv"));
  EXPECT_EQ(no_db.status, 2);
  EXPECT_NE(no_db.err.find(" POSTAL-MATCH_ERROR QMV-BAD OPEN ON BASEDATA"),
            std::string::npos)
      << no_db.err;

  ToolRun no_input = run("--db " + dir_ + " " + path("missing.csv"));
  EXPECT_EQ(no_input.status, 2);
  EXPECT_NE(no_input.err.find("missing.csv"), std::string::npos);

  ToolRun bad_report = run("--db " + dir_ + " --report " + dir_ +
                           "/no/dir/report.txt " + path("in.csv"));
  EXPECT_EQ(bad_report.status, 2);

  ToolRun bad_header = run_csv("premno,street\n1,NATHAN ROAD\n");
  EXPECT_EQ(bad_header.status, 2);
  EXPECT_NE(bad_header.err.find("line 1"), std::string::npos);
  ToolRun empty = run_csv("");
  EXPECT_EQ(empty.status, 2);
}

TEST_F(Hkgeocode, HeaderOnlyInputGivesHeaderOnlyOutput) {
  ToolRun r = run_csv(kHeader);
  EXPECT_EQ(r.status, 0);
  ASSERT_EQ(lines_of(r.out).size(), 1u);
  EXPECT_EQ(lines_of(r.out)[0],
            "refcode,premno,street,building,unit,extra,district,region,mode,"
            "return_code,return_meaning,match_status,match_meaning,"
            "out_premno,out_street,out_building,out_unit,out_district,"
            "out_region,line1,line2,ref_code,ref_id,area_changed,"
            "street_changed,premise_changed,ref_line,grade,building_source");
  EXPECT_NE(
      r.err.find(
          "0 records read, 0 processed, 0 matched (match status '0'), 0 bad"),
      std::string::npos);
}

// Feeds the same records to the library directly: the tool's fixed output
// must be exactly what hk_mtci answers.
std::string direct_results(const TestDb &db,
                           const std::vector<std::string> &records) {
  HKHANDLE h{};
  std::string out(HKOUTREC_SIZE, ' ');
  std::vector<char> names(30000, ' '), recs(7500, ' ');
  hk_mtci("O", &h, nullptr, out.data(), "", nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, db.level1().c_str(),
          db.level2().c_str(), db.basedata().c_str(), nullptr, nullptr);
  EXPECT_EQ(out[0], '0');
  std::string all;
  for (const std::string &rec : records) {
    hk_mtci("P", &h, rec.data(), out.data(), nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, names.data(), recs.data());
    all += out;
  }
  hk_mtci("C", &h, nullptr, out.data(), "L", nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
          nullptr, nullptr);
  return all;
}

std::string input_record(const std::string &premno, const std::string &street,
                         const std::string &region) {
  std::string r(HKINREC_SIZE, ' ');
  r.replace(10, premno.size(), premno);
  r.replace(18, street.size(), street);
  r.replace(163, region.size(), region);
  return r;
}

TEST_F(Hkgeocode, FixedRecordsAreWhatTheMatcherAnswers) {
  std::vector<std::string> records = {
      input_record("12", "QUEEN'S ROAD CENTRAL", "HK"),
      input_record("40", "NATHAN RD", "KLN"),
      input_record("7", "NO SUCH STREET", "NT"),
      input_record("", "", ""),
  };
  std::string raw;
  for (const std::string &r : records) raw += r;
  write_file(path("in.dat"), raw + "SHORT");
  ToolRun r = run("--fixed --db " + dir_ + " " + path("in.dat"));
  EXPECT_EQ(r.status, 1) << "the short record is a bad row";
  ASSERT_EQ(r.out.size(), 5u * HKOUTREC_SIZE);
  EXPECT_EQ(r.out.substr(0, 4 * HKOUTREC_SIZE), direct_results(*db_, records));
  EXPECT_EQ(r.out.substr(4 * HKOUTREC_SIZE),
            "E" + std::string(HKOUTREC_SIZE - 1, ' '));
  EXPECT_NE(r.err.find("in.dat:record 5: short record of 5 bytes"),
            std::string::npos)
      << r.err;
}

TEST_F(Hkgeocode, FixedRecordsWithControlBytesAreBad) {
  std::string rec = input_record("1", "CASTLE PEAK ROAD", "NT");
  std::string with_nul = rec;
  with_nul[30] = '\0';
  write_file(path("in.dat"), rec + with_nul + rec);
  ToolRun r = run("--fixed --db " + dir_ + " " + path("in.dat"));
  EXPECT_EQ(r.status, 1);
  ASSERT_EQ(r.out.size(), 3u * HKOUTREC_SIZE);
  EXPECT_EQ(r.out[HKOUTREC_SIZE], 'E');
  EXPECT_EQ(r.out.substr(0, HKOUTREC_SIZE), r.out.substr(2 * HKOUTREC_SIZE));
  EXPECT_NE(r.err.find("record 2: byte 0x00 at position 31"), std::string::npos)
      << r.err;
}

TEST_F(Hkgeocode, EveryKindOfBadRowIsReportedCountedAndWritten) {
  std::string csv = kHeader;
  csv += ",1,CASTLE PEAK ROAD,,,,,NT,\n";      // 2 good
  csv += ",12,NATHAN ROAD,,,,,KLN\n";          // 3 too few
  csv += ",12,NATHAN ROAD,,,,,KLN,,\n";        // 4 too many
  csv += ",123456789,NATHAN ROAD,,,,,KLN,\n";  // 5 premno too wide
  csv += ",1,NATHAN ROAD,," + std::string(31, 'U') + ",,,KLN,\n";  // 6
  csv += ",1,NATHAN" + std::string(1, '\0') + "ROAD,,,,,KLN,\n";   // 7 NUL
  csv += ",1,NATHAN ROAD,A\tB,,,,KLN,\n";                          // 8 tab
  csv += ",1,NATHAN ROAD,,,,\xE4\xB9\x9D,KLN,\n";  // 9 not ASCII
  csv += "\n";                                     // 10 empty line
  csv += ",2,CANTON ROAD,,,,,KLN,\n";              // 11 good
  csv += ",3,\"CANTON ROAD,,,,,KLN,\n";            // 12 open quote
  ToolRun r = run_csv(csv);
  EXPECT_EQ(r.status, 1);
  for (const char *message :
       {"in.csv:3: expected 9 fields, found 8\n",
        "in.csv:4: expected 9 fields, found 10\n",
        "in.csv:5: premno: 9 characters, at most 8\n",
        "in.csv:6: unit: 31 characters, at most 30\n",
        "in.csv:7: street: byte 0x00 at position 7 is not printable text\n",
        "in.csv:8: building: byte 0x09 at position 2 is not printable "
        "text\n",
        "in.csv:9: district: byte 0xE4 at position 1 is not printable "
        "text\n",
        "in.csv:10: expected 9 fields, found 1\n",
        "in.csv:12: malformed CSV (quoted field is not closed before the "
        "end of the file); the rest of the input is not read\n"}) {
    EXPECT_NE(r.err.find(message), std::string::npos) << message << r.err;
  }
  EXPECT_NE(r.err.find("11 records read, 2 processed"), std::string::npos)
      << r.err;
  EXPECT_NE(r.err.find("matched (match status '0'), 9 bad"), std::string::npos)
      << r.err;

  auto rows = csv_rows(r.out);
  ASSERT_EQ(rows.size(), 12u);
  for (size_t i = 1; i < rows.size(); ++i) {
    ASSERT_EQ(rows[i].size(), kColumns) << "output line " << i + 1;
    bool good = i == 1 || i == 10;
    EXPECT_EQ(rows[i][kReturnCode] == "E", !good) << "output line " << i + 1;
    if (!good) {
      EXPECT_EQ(rows[i][kReturnMeaning].rfind("bad input row: ", 0), 0u);
      for (size_t c = kReturnMeaning + 1; c < kColumns; ++c)
        EXPECT_EQ(rows[i][c], "") << "output line " << i + 1;
    }
  }
  // Bad rows repeat what was read, unprintable bytes shown as '?'.
  EXPECT_EQ(rows[2][1], "12");
  EXPECT_EQ(rows[2][8], "");
  EXPECT_EQ(rows[6][2], "NATHAN?ROAD");
  EXPECT_EQ(rows[7][3], "A?B");
  EXPECT_EQ(rows[8][6], "???");
  EXPECT_EQ(rows[4][1], "123456789");
}

TEST_F(Hkgeocode, UnitLineIsSplitAndJoinedAgain) {
  std::string unit = "FLAT A 12/F BLOCK 3 PHASE 2 XY";  // 30 characters
  ASSERT_EQ(unit.size(), 30u);
  ToolRun r = run_csv(kHeader + ",1,CASTLE PEAK ROAD,," + unit + ",,,NT,\n");
  EXPECT_EQ(r.status, 0) << r.err;
  auto rows = csv_rows(r.out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1][4], unit);
  EXPECT_EQ(rows[1][16], unit) << "out_unit joins out_unit and out_unitext";

  std::string rec = input_record("1", "CASTLE PEAK ROAD", "NT");
  rec.replace(78, 25, unit.substr(0, 25));
  rec.replace(193, 5, unit.substr(25));
  EXPECT_EQ(rows[1][kReturnCode],
            std::string(1, direct_results(*db_, {rec})[0]));
}

TEST_F(Hkgeocode, TableShowsOneAlignedLinePerRow) {
  ToolRun r = run_csv(kHeader + ",40,NATHAN ROAD,CHUNGKING MANSIONS,,,,KLN,\n" +
                          ",7,NO SUCH ROAD,,,,,HK,\n" + "too,few\n",
                      "--table");
  EXPECT_EQ(r.status, 1) << r.err;
  std::vector<std::string> lines = lines_of(r.out);
  ASSERT_EQ(lines.size(), 4u) << r.out;
  EXPECT_EQ(lines[0].rfind("LINE  ADDRESS AS GIVEN", 0), 0u);
  // Columns line up under the header's RC and MS.
  size_t rc = lines[0].find(" RC ") + 1, ms = lines[0].find(" MS ") + 1;
  EXPECT_EQ(lines[1].substr(0, 46),
            "2     40 NATHAN ROAD, CHUNGKING MANSIONS, KLN ");
  EXPECT_EQ(lines[1][rc], '1');
  EXPECT_EQ(lines[1][ms], '0');
  EXPECT_NE(lines[1].find("CHUNGKING MANSIONS 40 NATHAN ROAD / 36 NATHAN RD "
                          "TSIM SHA TSUI"),
            std::string::npos)
      << lines[1];
  EXPECT_EQ(lines[1].substr(lines[1].size() - 9), "TST 00201");
  EXPECT_EQ(lines[2][rc], '0');
  EXPECT_EQ(lines[2][ms], '2');
  EXPECT_NE(lines[3].find("E     bad input row: expected 9 fields"),
            std::string::npos)
      << lines[3];
  EXPECT_EQ(run_csv(kHeader, "--table --fixed").status, 2);
}

const std::string kGolden =
    std::string(ORLO_SOURCE_DIR) + "/tests/tools/golden/";

// A small fixed input against the test database: the whole output, byte for
// byte, as reviewed when the golden file was made.
TEST_F(Hkgeocode, OutputMatchesTheGoldenFile) {
  ToolRun r = run("--db " + dir_ + " " + kGolden + "hkgeocode_in.csv");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, read_file(kGolden + "hkgeocode_out.csv"));
  EXPECT_NE(r.err.find("records per second"), std::string::npos);
}

// The sample addresses against the sample database, with the statement.
class HkgeocodeSample : public Hkgeocode {
 protected:
  ToolRun run_sample(int threads, const std::string &report) {
    return run("--db " + sample_db_dir() + " --threads " +
               std::to_string(threads) + " --report " + path(report) +
               " --report-line 'SAMPLE RUN' " + ORLO_SOURCE_DIR +
               "/data/sample/addresses.csv");
  }
};

TEST_F(HkgeocodeSample, SeveralThreadsGiveTheSameOutputAndStatement) {
  ToolRun one = run_sample(1, "report1.txt");
  ASSERT_EQ(one.status, 0) << one.err;
  std::string statement = read_file(path("report1.txt"));
  ASSERT_EQ(statement.size(), 2708u);
  for (int threads : {2, 3}) {
    std::string report = "report" + std::to_string(threads) + ".txt";
    ToolRun r = run_sample(threads, report);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, one.out) << threads << " threads";
    // The statement counts every worker's records (the processing date is
    // today's either way).
    EXPECT_EQ(read_file(path(report)), statement) << threads << " threads";
  }
  auto rows = csv_rows(one.out);
  size_t accepted = 0;
  for (size_t i = 1; i < rows.size(); ++i) accepted += rows[i][11] == "0";
  char count[16];
  std::snprintf(count, sizeof count, "%-14zu", rows.size() - 1);
  EXPECT_NE(statement.find(std::string("Records Processed: ") +
                           std::string(17, ' ') + count),
            std::string::npos)
      << statement;
  EXPECT_NE(statement.find("SAMPLE RUN"), std::string::npos);
  // Most of the sample addresses are meant to be found.
  EXPECT_GT(accepted * 10, (rows.size() - 1) * 7) << accepted;
}

TEST_F(HkgeocodeSample, OptionsThatForbidTheStatementAreHonoured) {
  ToolRun r = run("--db " + sample_db_dir() + " --options 4 --report " +
                  path("report.txt") + " " + ORLO_SOURCE_DIR +
                  "/data/sample/addresses.csv");
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(read_file(path("report.txt")), "");
  EXPECT_NE(r.err.find("allow no accuracy statement"), std::string::npos);
}

}  // namespace
}  // namespace orlo::testing
