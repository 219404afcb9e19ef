// Address lines split into the fields of the input record: every part the
// splitter recognises, in lines as people write them, with the names of an
// open database and by the shape of the words alone; the refusals; the
// splits tried through the matcher and the one kept; one record counted a
// line; the sample addresses as lines against their fielded results; and
// the promise of no allocation once warm.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "hkmatch/input/record_fields.h"
#include "hkmatch/refdata/reference_names.h"
#include "lib/csv_reader.h"
#include "orlo_codes.h"
#include "orlo_lines.h"
#include "orlo_normalise.h"
#include "support/allocation_counter.h"
#include "support/open_instance.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

// Streets with and without a type word, one that ends in a direction and
// one in a district's name, one in two regions, and two buildings.
constexpr const char *kLinesDbCsv =
    "HK,QUEEN'S ROAD CENTRAL,CEN,00101,,,,1,,99,STR,1 QUEEN'S RD C CENTRAL\n"
    "HK,CONNAUGHT ROAD CENTRAL,CEN,00102,,,,1,,99,STR,1 CONNAUGHT RD C\n"
    "HK,GLENEALY,MID,00103,,,,1,,30,STR,1 GLENEALY MID-LEVELS\n"
    "HK,MATHESON STREET,CWB,00104,TIMES SQUARE,,,1,,1,COM,1 MATHESON ST\n"
    "KLN,NATHAN ROAD,TST,00201,SUNSHINE GARDEN,,,28,,28,RES,28 NATHAN RD\n"
    "KLN,NATHAN ROAD,TST,00202,,,,1,,27,STR,1 NATHAN RD TSIM SHA TSUI\n"
    "KLN,SAI YEUNG CHOI STREET NORTH,MKK,00203,,,,1,,99,STR,1 SAI YEUNG\n"
    "KLN,CASTLE PEAK ROAD,SSP,00204,,,,1,,49,STR,1 CASTLE PEAK RD SSP\n"
    "KLN,MUN KING TERRACE,KLC,00205,PAK HING BUILDING,,,15,,15,COM,15 MUN\n"
    "KLN,MUN KING CRESCENT,YMT,00206,,,,1,,99,STR,1 MUN KING CRES\n"
    "NT,CASTLE PEAK ROAD,TMN,00301,,,,1,,99,STR,1 CASTLE PEAK RD TMN\n"
    "NT,TAI PO ROAD,STN,00302,,,,1,,99,STR,1 TAI PO RD SHA TIN\n"
    "NT,CASTLE PEAK ROAD TSUEN WAN,TSW,00303,,,,1,,99,STR,1 CASTLE PEAK\n";

struct Fields {
  std::string premno, street, building, unit, extra, district, region;
  bool operator==(const Fields &) const = default;
};

std::string trimmed(const char *rec, FieldRef f) {
  std::string s(rec + f.off, static_cast<size_t>(f.len));
  return s.substr(0, s.find_last_not_of(' ') + 1);
}

Fields fields_of(const char *rec) {
  std::string unit = trimmed(rec, in::unit);
  std::string ext = trimmed(rec, in::unitext);
  if (!ext.empty()) unit += (unit.size() == 25 ? "" : " ") + ext;
  return {trimmed(rec, in::premno), trimmed(rec, in::street),
          trimmed(rec, in::bldg),   unit,
          trimmed(rec, in::extra),  trimmed(rec, in::district),
          trimmed(rec, in::region)};
}

void PrintTo(const Fields &f, std::ostream *os) {
  *os << "[" << f.premno << "|" << f.street << "|" << f.building << "|"
      << f.unit << "|" << f.extra << "|" << f.district << "|" << f.region
      << "]";
}

class LineSplit : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    db_ = new TestDb(kLinesDbCsv, "20261101");
    instance_ = new OpenInstance(db_->dir());
  }
  static void TearDownTestSuite() {
    delete instance_;
    delete db_;
  }

  // Splits the line with the database's names (or without any); the record
  // comes back as fields.
  static Fields split(const std::string &line, bool names = true,
                      ORLO_LINE_INFO *info = nullptr) {
    char rec[HKINREC_SIZE];
    ORLO_LINE_INFO local{};
    int32_t st =
        orlo_line_split(names ? instance_->handle() : nullptr, line.data(),
                        line.size(), rec, info != nullptr ? info : &local);
    EXPECT_EQ(st, ORLO_LINE_OK) << (info != nullptr ? info : &local)->reason;
    return fields_of(rec);
  }

  static TestDb *db_;
  static OpenInstance *instance_;
};
TestDb *LineSplit::db_ = nullptr;
OpenInstance *LineSplit::instance_ = nullptr;

TEST_F(LineSplit, EveryPartOfLinesAsPeopleWriteThem) {
  ASSERT_EQ(instance_->open_code(), '0');
  struct Case {
    const char *line;
    Fields want;
  } cases[] = {
      // The two lines: commas or none, unit, estate, building,
      // street abbreviated, short district names.
      {"Flat B, 12/F, Block 3, Sunshine Garden, 28 Nathan Rd, TST, Kowloon",
       {"28", "NATHAN ROAD", "SUNSHINE GARDEN", "FLAT B 12/F", "BLOCK 3", "TST",
        "KLN"}},
      {"Rm 1203 Times Sq 1 Matheson St Causeway Bay HK",
       {"1", "MATHESON STREET", "TIMES SQUARE", "RM 1203", "", "CAUSEWAY BAY",
        "HK"}},
      // Ranges, "No.", ordinal floors, towers, lower case; the region from
      // the district, or from the only region that has the street.
      {"shop 5 g/f 28-32 nathan road",
       {"28-32", "NATHAN ROAD", "", "SHOP 5 G/F", "", "", "KLN"}},
      {"No. 28A Nathan Rd., Tower 2, 12th Floor, Tsim Sha Tsui",
       {"28A", "NATHAN ROAD", "", "12TH FLOOR", "TOWER 2", "TSIM SHA TSUI",
        "KLN"}},
      {"UG/F, Unit 3, Phase 1, East Wing, 5 Tai Po Road, Sha Tin, N.T.",
       {"5", "TAI PO ROAD", "", "UG/F UNIT 3", "PHASE 1 EAST WING", "SHA TIN",
        "NT"}},
      // A street without a type word, known by the database; a building by
      // its type word; a lower ground floor.
      {"LG1 Sun Hing Mansion 7 Glenealy Central Hong Kong",
       {"7", "GLENEALY", "SUN HING MANSION", "LG1", "", "CENTRAL", "HK"}},
      // A district's name that ends the street's ("CENTRAL", "NORTH"), and
      // the same word as the district after a comma.
      {"11 Connaught Rd Central HK",
       {"11", "CONNAUGHT ROAD CENTRAL", "", "", "", "", "HK"}},
      {"11 Queen's Rd C, Central, Hong Kong SAR",
       {"11", "QUEEN'S ROAD CENTRAL", "", "", "", "CENTRAL", "HK"}},
      {"30 Castle Peak Road Tsuen Wan",
       {"30", "CASTLE PEAK ROAD TSUEN WAN", "", "", "", "", "NT"}},
      {"30 Castle Peak Road, Tsuen Wan",
       {"30", "CASTLE PEAK ROAD", "", "", "", "TSUEN WAN", "NT"}},
      {"Suite 1203, 15 Sai Yeung Choi Street North",
       {"15", "SAI YEUNG CHOI STREET NORTH", "", "SUITE 1203", "", "", "KLN"}},
      // "Hong Kong" after a district or region names the territory.
      {"27 Nathan Road, Tsim Sha Tsui, Kowloon, Hong Kong",
       {"27", "NATHAN ROAD", "", "", "", "TSIM SHA TSUI", "KLN"}},
      {"27 Nathan Road, Kowloon, HK",
       {"27", "NATHAN ROAD", "", "", "", "", "KLN"}},
      // A street that fills its 30 places exactly.
      {"9 Abcdefghij Klmnopqrst Tuv Road, Kowloon",
       {"9", "ABCDEFGHIJ KLMNOPQRST TUV ROAD", "", "", "", "", "KLN"}},
      // Streets the database does not name: by their type word, written
      // out; a district's short form.
      {"9 Ocean Vista Rd CWB",
       {"9", "OCEAN VISTA ROAD", "", "", "", "CWB", "HK"}},
      {"22 Hoi Wang Rd W, Yau Ma Tei",
       {"22", "HOI WANG ROAD WEST", "", "", "", "YAU MA TEI", "KLN"}},
      // A known street that runs on into unknown words is another street.
      {"27 Nathan Road Extension, Kowloon",
       {"27", "NATHAN ROAD EXTENSION", "", "", "", "", "KLN"}},
      // The building first or last, the unit between or at the end.
      {"Sunshine Garden Flat A 3/F 28 Nathan Road Kln",
       {"28", "NATHAN ROAD", "SUNSHINE GARDEN", "FLAT A 3/F", "", "", "KLN"}},
      {"28 Nathan Road Sunshine Garden Flat A 3/F",
       {"28", "NATHAN ROAD", "SUNSHINE GARDEN", "FLAT A 3/F", "", "", "KLN"}},
      // A building's "Tower" followed by the premise number.
      {"Sun Hing Tower 27 Nathan Road, Kowloon",
       {"27", "NATHAN ROAD", "SUN HING TOWER", "", "", "", "KLN"}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(split(c.line), c.want);
  }
}

TEST_F(LineSplit, TheOpenDatabaseTeachesItsNames) {
  // A street without a type word beside a building: the database knows
  // the street; by shape alone every word goes to the building.
  const std::string line = "7 Glenealy Sun Hing Mansion, HK";
  EXPECT_EQ(split(line).street, "GLENEALY");
  EXPECT_EQ(split(line).building, "SUN HING MANSION");
  EXPECT_EQ(split(line, false).street, "");
  EXPECT_EQ(split(line, false).building, "GLENEALY SUN HING MANSION");
  // A building known by name though no type word marks it, and the note
  // that says how each part was found.
  ORLO_LINE_INFO info{};
  EXPECT_EQ(split("Times Square, 1 Matheson St", true, &info).building,
            "TIMES SQUARE");
  EXPECT_STREQ(info.note,
               "region HK, which has the street; street from the reference "
               "names; building from the reference names");
  EXPECT_EQ(info.split, 1);
  // Abbreviated names are written as the database spells them.
  EXPECT_EQ(split("28 Nathan Rd Sunshine Gdn").building, "SUNSHINE GARDEN");
  EXPECT_EQ(split("28 Nathan Rd Sunshine Gdn", false).building,
            "SUNSHINE GARDEN");
}

TEST_F(LineSplit, RefusalsSayWhy) {
  struct Case {
    std::string line;
    int32_t status;
    const char *reason;
  } cases[] = {
      {"", ORLO_LINE_EMPTY, "no letter or digit"},
      {" ,;. - ", ORLO_LINE_EMPTY, "no letter or digit"},
      {std::string(801, 'A'), ORLO_LINE_TOO_LONG, "801 bytes, at most 800"},
      {"28 " + std::string(198, 'A'), ORLO_LINE_TOO_LONG,
       "201 characters after tidying, at most 200"},
      {"28 \u5F4C\u6566\u9053", ORLO_LINE_NOT_LATIN,
       "'\u5F4C' (U+5F4C) has no Latin-1 form; write the address in English"},
      {"28 Nathan\x01Road", ORLO_LINE_CONTROL, "U+0001 at character 10"},
      // Words that fill the street, then the extra line, and have no room.
      {"28 " + std::string(29, 'A') + " " + std::string(29, 'B') + " " +
           std::string(29, 'C') + " ROAD",
       ORLO_LINE_TOO_LONG, "no room for \"CCCC"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.line);
    char rec[HKINREC_SIZE];
    ORLO_LINE_INFO info{};
    EXPECT_EQ(orlo_line_split(instance_->handle(), c.line.data(), c.line.size(),
                              rec, &info),
              c.status);
    EXPECT_EQ(info.status, c.status);
    EXPECT_NE(std::string(info.reason).find(c.reason), std::string::npos)
        << info.reason;
    EXPECT_EQ(std::string(rec, HKINREC_SIZE), std::string(HKINREC_SIZE, ' '));
    EXPECT_EQ(info.split, 0);
  }
  char rec[HKINREC_SIZE];
  EXPECT_EQ(orlo_line_split(nullptr, "x", 1, nullptr, nullptr),
            ORLO_LINE_BAD_CALL);
  EXPECT_EQ(orlo_line_split(nullptr, nullptr, 3, rec, nullptr),
            ORLO_LINE_BAD_CALL);
}

struct Geocoded {
  int32_t status;
  std::string out;
  ORLO_LINE_INFO info;
};

Geocoded geocode(HKHANDLE *h, const std::string &line) {
  Geocoded g{0, std::string(HKOUTREC_SIZE, '#'), {}};
  g.status = orlo_line_geocode(h, line.data(), line.size(), nullptr,
                               g.out.data(), nullptr, nullptr, &g.info);
  return g;
}

TEST_F(LineSplit, GeocodeTriesSplitsInOrderAndKeepsTheBest) {
  struct Case {
    const char *line;
    const char *codes;  // return code, match status
    const char *refid;
    int split, tries;
    const char *note;
  } cases[] = {
      {"27 Nathan Rd, TST, Kowloon", "10", "00202", 1, 1,
       "region KLN as written"},
      {"Flat B 12/F Sunshine Garden 28 Nathan Road Kowloon", "10", "00201", 1,
       1, "building from the reference names"},
      // A region without the street: the region that has it, second.
      {"27 Nathan Road, Hong Kong", "10", "00202", 2, 2,
       "region KLN, which has the street"},
      // "Hong Kong" after a Kowloon district: the district's region first.
      {"27 Nathan Road, TST, Hong Kong", "10", "00202", 1, 1,
       "region KLN from the district"},
      // No region: the street is in two regions and both accept a
      // reference, so neither is guessed; the line as it is gets no key.
      {"22 Castle Peak Road", "01", "     ", 3, 3, "ambiguous"},
      // The written region has the street but not the number: no other
      // region is tried.
      {"60 Castle Peak Road, Kowloon", "03", "     ", 1, 1,
       "region KLN as written"},
      // The street's full name finds it, but its one record names a
      // building the line does not; the words as written find another.
      {"15 Mun King Ter, Kowloon", "10", "00206", 2, 2,
       "words placed as written"},
      {"22 Castle Peak Road, Tuen Mun", "10", "00301", 1, 1,
       "region NT from the district"},
      {"5 Tai Po Road", "10", "00302", 1, 1, "region NT, which has the street"},
      {"30 Castle Peak Road Tsuen Wan", "10", "00303", 1, 1,
       "end of the street"},
      {"99 Nowhere Lane, Kowloon", "02", "     ", 1, 1,
       "street by its street type"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.line);
    Geocoded g = geocode(instance_->handle(), c.line);
    EXPECT_EQ(g.status, ORLO_LINE_OK);
    EXPECT_EQ(
        std::string({g.out[HKOUT_RETCODE_OFF], g.out[HKOUT_MATCHSTAT_OFF]}),
        c.codes);
    EXPECT_EQ(g.out.substr(HKOUT_REFID_OFF, HKOUT_REFID_LEN), c.refid);
    EXPECT_EQ(g.info.split, c.split);
    EXPECT_EQ(g.info.tries, c.tries);
    EXPECT_NE(std::string(g.info.note).find(c.note), std::string::npos)
        << g.info.note;
  }
}

TEST_F(LineSplit, OneRecordCountedPerLineRefusalsNone) {
  OpenInstance own(db_->dir());
  const char *lines[] = {
      "27 Nathan Road, Hong Kong",  // two tries, accepted
      "22 Castle Peak Road",        // three tries, ambiguous
      "99 Nowhere Lane, Kowloon",   // no street
      "5 Tai Po Road",              // accepted
      "",                           // refused
      "28 \u5F4C\u6566\u9053",      // refused
  };
  int processed = 0, matched = 0;
  for (const char *line : lines) {
    Geocoded g = geocode(own.handle(), line);
    if (g.status != ORLO_LINE_OK) {
      EXPECT_EQ(g.out, std::string(1, HKRC_INPUT_REFUSED) +
                           std::string(HKOUTREC_SIZE - 1, ' '));
      continue;
    }
    ++processed;
    matched += g.out[HKOUT_MATCHSTAT_OFF] == HKMS_ACCEPTED;
  }
  EXPECT_EQ(own.mcb().nread, processed);
  EXPECT_EQ(own.mcb().nmatched, matched);
  // The accuracy statement counts the same: 4 records, 2 verified.
  const std::string report = db_->dir() + "/statement.txt";
  own.close("", report.c_str());
  std::ifstream in(report);
  std::string text, processed_row, verified_row;
  while (std::getline(in, text)) {
    if (text.find("Records Processed:") != std::string::npos)
      processed_row = text;
    if (text.find("verified addresses:") != std::string::npos)
      verified_row = text;
  }
  EXPECT_NE(processed_row.find(" 4 "), std::string::npos) << processed_row;
  EXPECT_NE(verified_row.find(" 50.00% "), std::string::npos) << verified_row;
  // A line on a handle that holds no instance: the matcher says so.
  HKHANDLE none{};
  EXPECT_EQ(geocode(&none, "5 Tai Po Road").out[0], HKRC_NOT_OPEN);
}

// The sample addresses written as lines (premise number and street,
// building, unit, district and region, with commas) find the reference
// that their fields find.
TEST(LineSample, LinesFindTheFieldedReference) {
  OpenInstance g(sample_db_dir());
  ASSERT_EQ(g.open_code(), '0');
  std::FILE *f = std::fopen(ORLO_SOURCE_DIR "/data/sample/addresses.csv", "rb");
  ASSERT_NE(f, nullptr);
  tools::CsvReader csv(f);
  std::vector<std::string> row;
  csv.next(&row);
  int fielded_matched = 0, same = 0;
  while (csv.next(&row) == tools::CsvReader::Status::kRow) {
    // What a line cannot carry (reference code, extra line, mode) is left
    // out of the fielded record too.
    row[0].clear();
    row[5].clear();
    row[8].clear();
    const char *text[ORLO_NF_COUNT];
    size_t len[ORLO_NF_COUNT];
    for (int i = 0; i < ORLO_NF_COUNT; ++i) {
      text[i] = row[i].data();
      len[i] = row[i].size();
    }
    char in[HKINREC_SIZE], out[HKOUTREC_SIZE];
    ASSERT_EQ(orlo_norm_address(text, len, in, nullptr), ORLO_NORM_OK);
    hk_mtci("P", g.handle(), in, out, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr);
    if (out[HKOUT_MATCHSTAT_OFF] != HKMS_ACCEPTED) continue;
    ++fielded_matched;
    std::string line;
    for (const std::string &part :
         {row[1] + (row[1].empty() ? "" : " ") + row[2], row[3], row[4], row[6],
          row[7]})
      if (!part.empty()) line += (line.empty() ? "" : ", ") + part;
    Geocoded l = geocode(g.handle(), line);
    bool found = l.out[HKOUT_MATCHSTAT_OFF] == HKMS_ACCEPTED &&
                 l.out.substr(HKOUT_REFCODE_OFF, 8) ==
                     std::string(out + HKOUT_REFCODE_OFF, 8);
    same += found;
    EXPECT_TRUE(found || l.out[HKOUT_MATCHSTAT_OFF] != HKMS_ACCEPTED)
        << line << ": another reference";
  }
  std::fclose(f);
  EXPECT_GT(fielded_matched, 180);
  EXPECT_EQ(same, fielded_matched);
}

// Instances of the same files on four threads, the names not yet collected:
// every thread gets the same splits, and the store keeps one set of names.
TEST(LineThreads, InstancesOfTheSameFilesShareOneSetOfNames) {
  TestDb db(kLinesDbCsv, "20261101");
  constexpr int kThreads = 4;
  std::vector<std::unique_ptr<OpenInstance>> instances;
  for (int t = 0; t < kThreads; ++t)
    instances.push_back(std::make_unique<OpenInstance>(db.dir()));
  const std::string line = "Rm 1203 Times Sq 1 Matheson St Causeway Bay HK";
  std::vector<std::string> out(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 20; ++i)
        out[t] = geocode(instances[t]->handle(), line).out;
    });
  }
  for (std::thread &t : threads) t.join();
  for (int t = 0; t < kThreads; ++t) {
    EXPECT_EQ(out[t].substr(HKOUT_REFID_OFF, HKOUT_REFID_LEN), "00104");
    EXPECT_EQ(store_attachment(&instances[t]->mcb()),
              store_attachment(&instances[0]->mcb()));
  }
  EXPECT_NE(store_attachment(&instances[0]->mcb()), nullptr);
}

TEST_F(LineSplit, NoAllocationOnceWarm) {
  ASSERT_TRUE(hooks_installed);
  const std::vector<std::string> lines = {
      "Flat B, 12/F, Block 3, Sunshine Garden, 28 Nathan Rd, TST, Kowloon",
      "Rm 1203 Times Sq 1 Matheson St Causeway Bay HK",
      "\uFF12\uFF18 Queen\u2019s Road Central, Hong Kong",  // full width
      "22 Castle Peak Road",
      "28 \u5F4C\u6566\u9053",
      ""};
  char rec[HKINREC_SIZE], out[HKOUTREC_SIZE];
  ORLO_LINE_INFO info;
  auto split_all = [&] {
    for (const std::string &l : lines)
      orlo_line_split(instance_->handle(), l.data(), l.size(), rec, &info);
  };
  split_all();  // warms the thread's work areas and the names
  EXPECT_EQ(allocations_during(split_all), 0);
  // Geocoding a line twice: the second time the search's caches are warm
  // too, whatever the number of splits tried.
  for (const std::string &l : lines) {
    SCOPED_TRACE(l);
    auto geocode = [&] {
      orlo_line_geocode(instance_->handle(), l.data(), l.size(), rec, out,
                        nullptr, nullptr, &info);
    };
    geocode();
    EXPECT_EQ(allocations_during(geocode), 0);
  }
}

}  // namespace
}  // namespace orlo::testing
