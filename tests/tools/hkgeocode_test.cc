// hkgeocode run as a program: its output against a golden file, the same
// output with several threads, fixed records against direct matcher calls,
// the sample addresses as people spell them, address lines, every kind of
// bad row, the statement, the legend, and the exit codes.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "lib/csv_reader.h"
#include "lib/csv_writer.h"
#include "orlo_matcher.h"
#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

const std::string kGolden = ORLO_SOURCE_DIR "/tests/tools/golden/";
const std::string kSample = ORLO_SOURCE_DIR "/data/sample/addresses.csv";
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

// Columns of the CSV output.
constexpr size_t kReturnCode = 9;
constexpr size_t kReturnMeaning = 10;
constexpr size_t kMatchStatus = 11;
constexpr size_t kColumns = 29;

class Hkgeocode : public ::testing::Test {
 protected:
  void SetUp() override {
    db_ = std::make_unique<TestDb>(kReferenceCsv, "20261101");
    dir_ = db_->dir();
  }
  std::string path(const std::string &name) const { return dir_ + "/" + name; }

  // Runs the tool with args (already quoted as needed).
  ToolRun run(const std::string &args) {
    return run_tool(ORLO_BINARY_DIR "/bin/hkgeocode --quiet " + args, dir_);
  }
  ToolRun run_csv(const std::string &csv, const std::string &more = "") {
    write_file(path("in.csv"), csv);
    return run("--db " + dir_ + " " + more + " " + path("in.csv"));
  }
  ToolRun run_fixed(const std::string &records) {
    write_file(path("in.dat"), records);
    return run("--fixed --db " + dir_ + " " + path("in.dat"));
  }

  std::unique_ptr<TestDb> db_;
  std::string dir_;
};

std::vector<std::string> lines_of(const std::string &text) {
  std::vector<std::string> lines;
  for (size_t start = 0, end; start < text.size(); start = end + 1) {
    end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

// The output parsed back into rows of fields (header first).
std::vector<std::vector<std::string>> csv_rows(const std::string &text) {
  tools::CsvReader reader(text);
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> fields;
  while (reader.next(&fields) == tools::CsvReader::Status::kRow)
    rows.push_back(fields);
  EXPECT_TRUE(reader.error().empty()) << reader.error();
  return rows;
}

TEST_F(Hkgeocode, UnusableFilesGive2AndAMissingDatabase3) {
  write_file(path("in.csv"), kHeader);
  ToolRun no_db = run("--db " + dir_ + "/nowhere " + path("in.csv"));
  EXPECT_EQ(no_db.status, 3);
  EXPECT_TRUE(no_db.err.starts_with(
      "hkgeocode: cannot open the reference database " + dir_ +
      "/nowhere: BASEDATA (or the extract file) cannot be opened"))
      << no_db.err;
  EXPECT_TRUE(has(no_db.err, " POSTAL-MATCH_ERROR QMV-BAD OPEN ON BASEDATA"))
      << no_db.err;

  ToolRun no_input = run("--db " + dir_ + " " + path("missing.csv"));
  EXPECT_EQ(no_input.status, 2);
  EXPECT_TRUE(has(no_input.err, "missing.csv")) << no_input.err;

  EXPECT_EQ(run("--db " + dir_ + " --report " + dir_ + "/no/dir/report.txt " +
                path("in.csv"))
                .status,
            2);
  ToolRun bad_header = run_csv("premno,street\n1,NATHAN ROAD\n");
  EXPECT_EQ(bad_header.status, 2);
  EXPECT_TRUE(has(bad_header.err, "line 1")) << bad_header.err;
  EXPECT_EQ(run_csv("").status, 2);
  ToolRun utf16 = run_csv("\xFF\xFEr\0e\0");
  EXPECT_EQ(utf16.status, 2);
  EXPECT_TRUE(has(utf16.err, "the input is UTF-16 text")) << utf16.err;
}

// A header and no rows is a valid empty run, not an error.
TEST_F(Hkgeocode, HeaderOnlyInputGivesHeaderOnlyOutput) {
  ToolRun r = run_csv(kHeader);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out,
            lines_of(read_file(kGolden + "hkgeocode_out.csv"))[0] + "\n");
  EXPECT_TRUE(
      has(r.err,
          "0 records read, 0 processed, 0 matched (match status '0'), 0 bad"))
      << r.err;
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
  r.replace(HKIN_PREMNO_OFF, premno.size(), premno);
  r.replace(HKIN_STREET_OFF, street.size(), street);
  r.replace(HKIN_REGION_OFF, region.size(), region);
  return r;
}

// Good records get exactly the library's answer; a record with a control
// byte and a short last record get 'E' and a message naming the record.
TEST_F(Hkgeocode, FixedRecordsAreWhatTheMatcherAnswers) {
  std::vector<std::string> good = {
      input_record("12", "QUEEN'S ROAD CENTRAL", "HK"),
      input_record("40", "NATHAN RD", "KLN"),
      input_record("7", "NO SUCH STREET", "NT"),
      input_record("", "", ""),
  };
  std::string with_nul = good[0];
  with_nul[30] = '\0';
  std::string raw;
  for (const std::string &r : good) raw += r;
  ToolRun r = run_fixed(raw + with_nul + "SHORT");
  EXPECT_EQ(r.status, 1);
  ASSERT_EQ(r.out.size(), 6u * HKOUTREC_SIZE);
  EXPECT_EQ(r.out.substr(0, 4 * HKOUTREC_SIZE), direct_results(*db_, good));
  EXPECT_EQ(r.out[4 * HKOUTREC_SIZE], 'E');
  EXPECT_EQ(r.out.substr(5 * HKOUTREC_SIZE),
            "E" + std::string(HKOUTREC_SIZE - 1, ' '));
  EXPECT_TRUE(has(r.err, "in.dat:record 5: byte 0x00 at position 31")) << r.err;
  EXPECT_TRUE(has(r.err, "in.dat:record 6: short record of 5 bytes")) << r.err;
  // A text file given as records is told apart by its byte-order mark.
  ToolRun text = run_fixed("\xEF\xBB\xBF" + good[0].substr(3));
  EXPECT_EQ(text.status, 1);
  EXPECT_TRUE(has(text.err,
                  "record 1: the input starts with a byte-order "
                  "mark, as text files do"))
      << text.err;
}

// Each bad row is reported with its line, counted, and written with E, its
// reason and its fields exactly as read; tidied (default) and placed as
// given (--raw), the same rows fail for the reasons of each way.
TEST_F(Hkgeocode, EveryKindOfBadRowIsReportedCountedAndWritten) {
  struct Case {
    std::string row;
    const char *tidied;  // the reason by default; nullptr: a good row
    const char *raw;     // the reason with --raw
  } cases[] = {
      {",1,CASTLE PEAK ROAD,,,,,NT,", nullptr, nullptr},
      {",12,NATHAN ROAD,,,,,KLN", "expected 9 fields, found 8",
       "expected 9 fields, found 8"},
      {",12,NATHAN ROAD,,,,,KLN,,", "expected 9 fields, found 10",
       "expected 9 fields, found 10"},
      {",123456789,NATHAN ROAD,,,,,KLN,",
       "premno: 9 characters after tidying, at most 8",
       "premno: 9 characters, at most 8"},
      {",1,NATHAN ROAD,," + std::string(31, 'U') + ",,,KLN,",
       "unit: 31 characters after tidying, at most 30",
       "unit: 31 characters, at most 30"},
      {",1,NATHAN ROAD,,  12/F  " + std::string(26, 'U') + ",,,KLN,",
       "unit: 31 characters after tidying, at most 30",
       "unit: 34 characters, at most 30"},
      {",1,NATHAN" + std::string(1, '\0') + "ROAD,,,,,KLN,",
       "street: control character U+0000 at character 7",
       "street: byte 0x00 at position 7 is not printable text"},
      {",1,NATHAN ROAD,A\tB,,,,KLN,", nullptr,
       "building: byte 0x09 at position 2 is not printable text"},
      {",1,NATHAN ROAD,,,,\xE4\xB9\x9D,KLN,",
       "district: '\xE4\xB9\x9D' (U+4E5D) has no Latin-1 form; write the "
       "address in English",
       "district: byte 0xE4 at position 1 is not printable text"},
      {",1,NATHAN ROAD,,,,CAF\xC9,KLN,", nullptr,
       "district: byte 0xC9 at position 4 is not printable text"},
      {"", "expected 9 fields, found 1", "expected 9 fields, found 1"},
      {",3,\"CANTON ROAD,,,,,KLN,",
       "malformed CSV (quoted field is not closed before the end of the "
       "file); the rest of the input is not read",
       "malformed CSV (quoted field is not closed"},
  };
  std::string csv = kHeader;
  for (const Case &c : cases) csv += c.row + "\n";
  for (bool raw : {false, true}) {
    SCOPED_TRACE(raw ? "--raw" : "tidied");
    ToolRun r = run_csv(csv, raw ? "--raw" : "");
    EXPECT_EQ(r.status, 1);
    auto rows = csv_rows(r.out);
    ASSERT_EQ(rows.size(), std::size(cases) + 1);
    size_t bad = 0;
    for (size_t i = 0; i < std::size(cases); ++i) {
      const Case &c = cases[i];
      const char *why = raw ? c.raw : c.tidied;
      SCOPED_TRACE(c.row);
      const std::vector<std::string> &out = rows[i + 1];
      ASSERT_EQ(out.size(), kColumns);
      EXPECT_EQ(out[kReturnCode] == "E", why != nullptr);
      if (why == nullptr) continue;
      ++bad;
      std::string line = std::to_string(i + 2);
      EXPECT_TRUE(has(r.err, "in.csv:" + line + ": " + why)) << r.err;
      EXPECT_TRUE(
          has(out[kReturnMeaning], std::string("bad input row: ") + why))
          << out[kReturnMeaning];
      for (size_t col = kReturnMeaning + 1; col < kColumns; ++col)
        EXPECT_EQ(out[col], "");
    }
    EXPECT_TRUE(
        has(r.err, std::to_string(std::size(cases)) + " records read, " +
                       std::to_string(std::size(cases) - bad) + " processed"))
        << r.err;
    // Bad rows repeat what was read, byte for byte.
    EXPECT_EQ(rows[7][2], std::string("NATHAN\0ROAD", 11));
    EXPECT_EQ(rows[9][6], "\xE4\xB9\x9D");
  }
}

// The 30-character unit column is split over out_unit and out_unitext in
// the record and joined again in the output.
TEST_F(Hkgeocode, UnitLineIsSplitAndJoinedAgain) {
  std::string unit = "FLAT A 12/F BLOCK 3 PHASE 2 XY";
  ASSERT_EQ(unit.size(), 30u);
  ToolRun r = run_csv(kHeader + ",1,CASTLE PEAK ROAD,," + unit + ",,,NT,\n");
  EXPECT_EQ(r.status, 0) << r.err;
  auto rows = csv_rows(r.out);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[1][4], unit);
  EXPECT_EQ(rows[1][16], unit) << "out_unit joins out_unit and out_unitext";
}

TEST_F(Hkgeocode, TableShowsOneAlignedLinePerRowAndALegend) {
  ToolRun r = run_csv(kHeader + ",40,NATHAN ROAD,CHUNGKING MANSIONS,,,,KLN,\n" +
                          ",7,NO SUCH ROAD,,,,,HK,\n" + "too,few\n" +
                          ",5,\u4e5d\u9f8d\u9053,,,,,KLN,\n",
                      "--table");
  EXPECT_EQ(r.status, 1) << r.err;
  std::vector<std::string> lines = lines_of(r.out);
  ASSERT_GE(lines.size(), 7u) << r.out;
  EXPECT_TRUE(lines[0].starts_with("LINE  ADDRESS AS GIVEN"));
  // Columns line up under the header's RC and MS.
  size_t rc = lines[0].find(" RC ") + 1, ms = lines[0].find(" MS ") + 1;
  EXPECT_EQ(lines[1].substr(0, 46),
            "2     40 NATHAN ROAD, CHUNGKING MANSIONS, KLN ");
  EXPECT_EQ(lines[1][rc], '1');
  EXPECT_EQ(lines[1][ms], '0');
  EXPECT_TRUE(has(lines[1],
                  "CHUNGKING MANSIONS 40 NATHAN ROAD / 36 NATHAN RD TSIM "
                  "SHA TSUI"))
      << lines[1];
  EXPECT_TRUE(lines[1].ends_with("TST 00201"));
  EXPECT_EQ(lines[2][rc], '0');
  EXPECT_EQ(lines[2][ms], '2');
  EXPECT_TRUE(has(lines[3], "E     bad input row: expected 9 fields"))
      << lines[3];
  // Chinese characters are echoed, two columns wide each.
  EXPECT_TRUE(lines[4].starts_with("5     5 \u4e5d\u9f8d\u9053, KLN" +
                                   std::string(33, ' ') +
                                   " E     bad input "
                                   "row: street: "))
      << lines[4];
  // The legend lists the codes that occurred, and only those.
  EXPECT_EQ(lines[5], "");
  EXPECT_EQ(lines[6], "RC return code, MS match status:");
  std::string legend = r.out.substr(r.out.find("RC return code"));
  for (const char *code : {"RC 0", "RC 1", "RC E", "MS 0", "MS 2"})
    EXPECT_TRUE(has(legend, "\n  " + std::string(code) + "  ")) << code;
  for (const char *code : {"RC 5", "MS 1", "MS 5"})
    EXPECT_FALSE(has(legend, "\n  " + std::string(code) + "  ")) << code;
}

// A small fixed input against the test database: the whole output, byte for
// byte, as reviewed when the golden file was made.
TEST_F(Hkgeocode, OutputMatchesTheGoldenFile) {
  ToolRun r = run("--db " + dir_ + " " + kGolden + "hkgeocode_in.csv");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, read_file(kGolden + "hkgeocode_out.csv"));
  EXPECT_TRUE(has(r.err, "records per second")) << r.err;
}

// The sample addresses against the sample database: any number of worker
// threads gives the same output and the same statement.
TEST_F(Hkgeocode, SeveralThreadsGiveTheSameOutputAndStatement) {
  auto run_sample = [&](int threads) {
    return run("--db " + sample_db_dir() + " --threads " +
               std::to_string(threads) + " --report " + path("report.txt") +
               " --report-line 'SAMPLE RUN' " + kSample);
  };
  ToolRun one = run_sample(1);
  ASSERT_EQ(one.status, 0) << one.err;
  std::string statement = read_file(path("report.txt"));
  ASSERT_EQ(statement.size(), 2708u);
  for (int threads : {2, 3}) {
    ToolRun r = run_sample(threads);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, one.out) << threads << " threads";
    // The statement counts every worker's records.
    EXPECT_EQ(read_file(path("report.txt")), statement) << threads;
  }
  auto rows = csv_rows(one.out);
  size_t accepted = 0;
  for (size_t i = 1; i < rows.size(); ++i)
    accepted += rows[i][kMatchStatus] == "0";
  char count[16];
  std::snprintf(count, sizeof count, "%-14zu", rows.size() - 1);
  EXPECT_TRUE(
      has(statement, "Records Processed: " + std::string(17, ' ') + count))
      << statement;
  EXPECT_TRUE(has(statement, "SAMPLE RUN"));
  // Most of the sample addresses are meant to be found.
  EXPECT_GT(accepted * 10, (rows.size() - 1) * 7) << accepted;
}

TEST_F(Hkgeocode, OptionsThatForbidTheStatementAreHonoured) {
  ToolRun r = run("--db " + sample_db_dir() + " --options 4 --report " +
                  path("report.txt") + " " + kSample);
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(read_file(path("report.txt")), "");
  EXPECT_TRUE(has(r.err, "allow no accuracy statement")) << r.err;
}

// The sample addresses as people write them: in title case, in lower case,
// with each region key spelt out and with the regions abbreviated, row for
// row the same return code, status and result as the file as it stands
// (upper case, region keys).
TEST_F(Hkgeocode, SampleInPeoplesSpellingGivesTheSameResults) {
  auto sample = csv_rows(read_file(kSample));
  ASSERT_GT(sample.size(), 200u);
  auto lower = [](std::string s) {
    for (char &c : s) c = static_cast<char>(std::tolower(c));
    return s;
  };
  auto title = [&](std::string s) {
    s = lower(s);
    for (size_t i = 0; i < s.size(); ++i)
      if (i == 0 || !std::isalpha(static_cast<unsigned char>(s[i - 1])))
        s[i] = static_cast<char>(std::toupper(s[i]));
    return s;
  };
  auto region = [](const char *hk, const char *kln, const char *nt) {
    return [=](std::string s) -> std::string {
      return s == "HK" ? hk : s == "KLN" ? kln : s == "NT" ? nt : s;
    };
  };
  struct Variant {
    const char *name;
    std::function<std::string(std::string)> all, region;
  } variants[] = {
      {"title case", title, nullptr},
      {"lower case", lower, nullptr},
      {"spelt out", nullptr, region("Hong Kong", "Kowloon", "New Territories")},
      {"abbreviated", nullptr, region("H.K. Island", "Kln.", "N.T.")},
  };
  auto results = [&](const std::string &csv_path) {
    ToolRun r = run("--db " + sample_db_dir() + " " + csv_path);
    EXPECT_EQ(r.status, 0) << r.err;
    auto rows = csv_rows(r.out);
    for (auto &row : rows) row.erase(row.begin(), row.begin() + kReturnCode);
    return rows;
  };
  auto want = results(kSample);
  size_t accepted = 0;
  for (const auto &row : want)
    accepted += row[kMatchStatus - kReturnCode] == "0";
  EXPECT_GT(accepted, 180u);
  for (const Variant &v : variants) {
    SCOPED_TRACE(v.name);
    std::string csv = kHeader;
    for (size_t i = 1; i < sample.size(); ++i) {
      std::vector<std::string> row = sample[i];
      for (std::string &f : row)
        if (v.all) f = v.all(f);
      if (v.region) row[7] = v.region(row[7]);
      tools::append_csv_row(&csv, row);
    }
    write_file(path("variant.csv"), csv);
    auto got = results(path("variant.csv"));
    ASSERT_EQ(got.size(), want.size());
    for (size_t i = 1; i < got.size(); ++i)
      EXPECT_EQ(got[i], want[i]) << "line " << i + 1;
  }
}

// A BASEDATA cut short after its date: most rows fail, the exit status is
// 4 and one line says why; a byte-order mark before the header is no
// fault.
// --lines: one address a line of text or a named CSV column, the split
// shown before the result, refused lines as bad rows, any number of
// workers.
TEST_F(Hkgeocode, LinesAreSplitShownAndGeocoded) {
  write_file(path("lines.txt"),
             "\xEF\xBB\xBF"
             "Flat 3, 12/F, Chungking Mansions, 40 Nathan Rd, "
             "TST, Kowloon\r\n"
             "8 canton road kowloon\n"
             "\n"
             "8 \xE5\xBD\x8C\xE6\x95\xA6\xE9\x81\x93\n");
  const std::string db = "--db " + dir_ + " --lines ";
  ToolRun r = run(db + path("lines.txt"));
  EXPECT_EQ(r.status, 1) << r.err;
  auto rows = csv_rows(r.out);
  ASSERT_EQ(rows.size(), 5u) << r.out;
  const std::vector<std::string> split_head = {
      "line",       "split_premno", "split_street",   "split_building",
      "split_unit", "split_extra",  "split_district", "split_region",
      "split",      "splits_tried", "split_note",     "return_code"};
  EXPECT_EQ(std::vector<std::string>(rows[0].begin(), rows[0].begin() + 12),
            split_head);
  struct Want {
    size_t row;
    std::vector<std::string> split;  // split_premno .. split
    const char *code, *refid;
  } wants[] = {
      {1,
       {"40", "NATHAN ROAD", "CHUNGKING MANSIONS", "FLAT 3 12/F", "", "TST",
        "KLN", "1"},
       "1",
       "00201"},
      {2, {"8", "CANTON ROAD", "", "", "", "", "KLN", "1"}, "1", "00301"},
  };
  for (const Want &w : wants) {
    SCOPED_TRACE(rows[w.row][0]);
    ASSERT_EQ(rows[w.row].size(), 31u);
    EXPECT_EQ(std::vector<std::string>(rows[w.row].begin() + 1,
                                       rows[w.row].begin() + 9),
              w.split);
    EXPECT_EQ(rows[w.row][11], w.code);
    EXPECT_EQ(rows[w.row][24], w.refid);
  }
  EXPECT_EQ(rows[3][11], "E");
  EXPECT_TRUE(has(rows[4][12], "(U+5F4C) has no Latin-1 form")) << rows[4][12];
  EXPECT_TRUE(has(r.err, "lines.txt:3: the line holds no address")) << r.err;
  EXPECT_TRUE(has(r.err, "4 records read, 2 processed, 2 matched")) << r.err;
  // Two workers, the same output.
  EXPECT_EQ(run(db + "--threads 2 " + path("lines.txt")).out, r.out);

  // A column of a CSV file: the other columns are kept.
  write_file(path("lines.csv"), "id,address\n7,\"8 Canton Road, Kowloon\"\n");
  ToolRun c = run(db + "--column address " + path("lines.csv"));
  EXPECT_EQ(c.status, 0) << c.err;
  rows = csv_rows(c.out);
  ASSERT_EQ(rows.size(), 2u) << c.out;
  EXPECT_EQ(rows[0][0] + "," + rows[0][1] + "," + rows[0][2],
            "id,address,split_premno");
  EXPECT_EQ(rows[1][0], "7");
  EXPECT_EQ(rows[1][25], "00301");
  ToolRun table = run(db + "--table " + path("lines.txt"));
  EXPECT_TRUE(has(table.out, "\n2     8 canton road kowloon")) << table.out;
  EXPECT_TRUE(has(table.out, " E     bad input row: the line holds no"))
      << table.out;

  for (const char *args : {"--lines --fixed", "--lines --raw",
                           "--column address", "--lines --column nope"}) {
    ToolRun bad = run("--db " + dir_ + " " + args + " " + path("lines.csv"));
    EXPECT_EQ(bad.status, 2) << args;
    EXPECT_TRUE(has(bad.err, "hkgeocode: ")) << args;
  }
}

TEST_F(Hkgeocode, DamagedDatabaseExits4WithOneLineReason) {
  std::string cut = path("cut");
  std::filesystem::create_directory(cut);
  for (const char *file : {"LEVEL1", "LEVEL2", "BASEDATA"})
    std::filesystem::copy_file(sample_db_dir() + "/" + file, cut + "/" + file);
  std::filesystem::resize_file(cut + "/BASEDATA", 8);
  write_file(path("in.csv"), "\xEF\xBB\xBF" + read_file(kSample));
  ToolRun r = run("--db " + cut + " " + path("in.csv"));
  EXPECT_EQ(r.status, 4);
  size_t at = r.err.find("hkgeocode: BASEDATA is damaged: ");
  ASSERT_NE(at, std::string::npos) << r.err;
  std::string line = r.err.substr(at, r.err.find('\n', at) - at);
  EXPECT_TRUE(
      line.ends_with(" of 224 records could not be read; run `hkdb "
                     "check " +
                     cut + "`"))
      << line;
  EXPECT_GT(std::stol(line.substr(32)), 100) << line;
}

}  // namespace
}  // namespace orlo::testing
