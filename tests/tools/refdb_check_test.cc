// The structural check of reference files: clean databases pass, and every
// kind of damage is reported with its file and offset without reading out
// of bounds (this program also runs under AddressSanitizer).
#include "lib/refdb_check.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "common/byte_order.h"
#include "lib/csv_reader.h"
#include "lib/refdb_dump.h"
#include "support/file_util.h"
#include "support/test_db.h"

namespace orlo::tools {
namespace {

using orlo::testing::hex_bytes;
using orlo::testing::read_file;
using orlo::testing::TestDb;

RefdbImages images_of(const std::string &dir) {
  RefdbImages images;
  std::string error;
  EXPECT_TRUE(load_reference_images(dir, &images, &error)) << error;
  return images;
}

bool has_fault(const CheckReport &r, const std::string &file, uint64_t offset,
               const std::string &text) {
  for (const CheckFault &f : r.faults)
    if (f.file == file && f.offset == offset &&
        f.message.find(text) != std::string::npos)
      return true;
  return false;
}

std::string all_faults(const CheckReport &r) {
  std::string s;
  for (const CheckFault &f : r.faults) s += format_fault(f) + "\n";
  return s;
}

// Two regions, three streets, records of every item type; the block and
// record layout is known: BASEDATA blocks start at 8.
constexpr const char *kCorpusCsv =
    "KLN,NATHAN ROAD,TST,00001,CHUNGKING MANSIONS,,FLOOR,1,FLOOR,17,RES,"
    "36 NATHAN RD\n"
    "KLN,NATHAN ROAD,TST,70000,,E,,2,,300,,2-300 NATHAN RD\n"
    "KLN,CANTON ROAD,TST,123,HARBOUR CITY,,,3,,27,COM,\n"
    "HK,QUEEN'S ROAD CENTRAL,CEN,99999,4294967295,O,,1,,99A,STR,\n"
    "HK,QUEEN'S ROAD CENTRAL,CEN,,,,,,,,,\n";

TEST(RefdbCheck, CleanDatabasesPass) {
  TestDb db(kCorpusCsv);
  CheckReport report = check_reference_images(images_of(db.dir()));
  EXPECT_EQ(report.fault_count, 0u) << all_faults(report);
  EXPECT_EQ(report.totals.regions, 2u);
  EXPECT_EQ(report.totals.streets, 3u);
  EXPECT_EQ(report.totals.records, 5u);
  EXPECT_EQ(report.totals.date, "20260101");

  std::string csv = read_file(ORLO_SOURCE_DIR "/data/sample/reference.csv");
  CheckReport sample =
      check_reference_images(images_of(orlo::testing::sample_db_dir()));
  EXPECT_EQ(sample.fault_count, 0u) << all_faults(sample);
  EXPECT_EQ(sample.totals.regions, 3u);
  EXPECT_EQ(
      sample.totals.records,
      static_cast<uint64_t>(std::count(csv.begin(), csv.end(), '\n') - 1));
  EXPECT_EQ(sample.totals.date, "20261101");
}

TEST(RefdbCheck, EmptyLevel1IsAnEmptyIndex) {
  RefdbImages images;
  images.basedata = "20260101" + std::string(23192, '\0');
  CheckReport report = check_reference_images(images);
  EXPECT_EQ(report.fault_count, 0u) << all_faults(report);
  EXPECT_EQ(report.totals.regions, 0u);

  images.basedata.clear();
  report = check_reference_images(images);
  EXPECT_TRUE(has_fault(report, "BASEDATA", 0, "shorter than its 8-byte date"))
      << all_faults(report);
}

// Every cut of LEVEL2 or BASEDATA breaks them (they are whole units);
// a cut of LEVEL1 is a fault unless it falls between records.
TEST(RefdbCheck, EveryTruncationIsReportedWithoutOverreading) {
  TestDb db(kCorpusCsv);
  const RefdbImages good = images_of(db.dir());
  auto cut = [&](std::string RefdbImages::*file, size_t size) {
    RefdbImages images = good;
    (images.*file).resize(size);
    return check_reference_images(images);
  };
  for (size_t n = 0; n < good.level1.size(); ++n) {
    CheckReport r = cut(&RefdbImages::level1, n);
    EXPECT_EQ(r.fault_count > 0, n % 40 != 0) << "LEVEL1 cut at " << n;
  }
  for (size_t n = 0; n < good.level2.size(); n += n < 200 ? 1 : 997)
    EXPECT_GT(cut(&RefdbImages::level2, n).fault_count, 0u)
        << "LEVEL2 cut at " << n;
  for (size_t n = 0; n < good.basedata.size(); n += n < 300 ? 1 : 997)
    EXPECT_GT(cut(&RefdbImages::basedata, n).fault_count, 0u)
        << "BASEDATA cut at " << n;
}

// Flips every byte of the used part of each file in several ways. Offsets,
// lengths, counts and record length bytes must never pass unnoticed; any
// other byte may, but must not make the check misbehave.
TEST(RefdbCheck, FlippedBytesAreReportedWithoutOverreading) {
  TestDb db(kCorpusCsv);
  const RefdbImages good = images_of(db.dir());
  const std::string &l2 = good.level2;
  // The bytes whose damage must be found: LEVEL1 offsets and counts, LEVEL2
  // offsets, lengths and counts, and every record's length byte.
  std::vector<bool> must[3] = {std::vector<bool>(good.level1.size()),
                               std::vector<bool>(l2.size()),
                               std::vector<bool>(good.basedata.size())};
  for (size_t i = 0; i < good.level1.size(); ++i) must[0][i] = i % 40 >= 30;
  for (size_t pos = 0; pos < 3 * 40 && l2[pos + 10] != 0;) {
    for (size_t i = 0; i < 10; ++i) must[1][pos + i] = true;
    auto *p = reinterpret_cast<const unsigned char *>(l2.data()) + pos;
    size_t off = orlo::load_be32(p), len = orlo::load_be32(p + 4);
    for (size_t r = off; r < off + len; r += good.basedata[r])
      must[2][r] = true;
    pos = l2.find('\0', pos + 10) + 1;
  }
  const struct {
    std::string RefdbImages::*file;
    size_t from, to;
  } files[3] = {
      {&RefdbImages::level1, 0, 2 * 40},
      {&RefdbImages::level2, 0, l2.find(std::string(12, '\0'))},
      {&RefdbImages::basedata, 8, good.basedata.find_last_not_of('\0') + 1}};
  for (unsigned char (*change)(unsigned char) :
       {+[](unsigned char b) -> unsigned char { return b ^ 0x01; },
        +[](unsigned char b) -> unsigned char { return b ^ 0x80; },
        +[](unsigned char) -> unsigned char { return 0x00; },
        +[](unsigned char) -> unsigned char { return 0xFF; }}) {
    for (int f = 0; f < 3; ++f) {
      for (size_t i = files[f].from; i < files[f].to; ++i) {
        RefdbImages images = good;
        std::string &file = images.*files[f].file;
        unsigned char b = file[i], v = change(b);
        if (v == b) continue;
        file[i] = static_cast<char>(v);
        uint64_t faults = check_reference_images(images).fault_count;
        if (must[f][i]) {
          EXPECT_GT(faults, 0u) << "file " << f << " byte " << i;
        }
      }
    }
  }
}

// One patch of one file and the fault it must raise.
struct Patch {
  std::string RefdbImages::*file;
  size_t at;
  std::string bytes;
  const char *fault_file;
  uint64_t fault_offset;
  const char *text;
};

void expect_faults(const RefdbImages &good, const std::vector<Patch> &patches) {
  for (const Patch &p : patches) {
    SCOPED_TRACE(p.text);
    RefdbImages images = good;
    (images.*p.file).replace(p.at, p.bytes.size(), p.bytes);
    CheckReport r = check_reference_images(images);
    EXPECT_TRUE(has_fault(r, p.fault_file, p.fault_offset, p.text))
        << all_faults(r);
  }
}

// Patches to the one record "09 04 00 00 E4 ABCD" (length, presence bits,
// one text item) at BASEDATA offset 8.
TEST(RefdbCheck, RecordFaultsNameTheirOffsetAndCause) {
  TestDb db("HK,S,,,ABCD,,,,,,,\n");
  const RefdbImages good = images_of(db.dir());
  ASSERT_EQ(good.basedata.substr(8, 9), hex_bytes("09 04 00 00 E4") + "ABCD");
  auto rec = [](size_t at, const char *hex, uint64_t offset, const char *text) {
    return Patch{&RefdbImages::basedata,
                 8 + at,
                 hex_bytes(hex),
                 "BASEDATA",
                 offset,
                 text};
  };
  expect_faults(
      good,
      {rec(0, "03", 8, "record length 3 outside 4..127"),
       rec(0, "80", 8, "record length 128"),
       rec(0, "0A", 8, "runs past the end of its block"),
       rec(4, "20", 12, "unknown item type 0x20"),
       rec(4, "E5", 12, "runs past the end of the record"),
       rec(4, "E3", 16, "1 bytes after the last item"),
       rec(4, "C4", 12, "numeric item of 4 data bytes, expected 1"),
       // "ABCD" read as the 3-byte refcode is too wide for it.
       rec(1, "01", 12, "refcode decodes to 4 bytes, more than 3"),
       rec(5, "00", 12, "NUL byte"), rec(2, "04", 10, "unused presence bits"),
       rec(1, "0C", 17, "item of parity starts past the end")});
}

// LEVEL1 holds HK then KLN; KLN's LEVEL2 segment is CANTON ROAD then
// NATHAN ROAD.
TEST(RefdbCheck, IndexFaultsNameTheirOffsetAndCause) {
  TestDb db(kCorpusCsv);
  const RefdbImages good = images_of(db.dir());
  const auto l1 = &RefdbImages::level1, l2 = &RefdbImages::level2;
  size_t canton = good.level2.find("CANTON ROAD") - 10;
  size_t nathan = good.level2.find("NATHAN ROAD") - 10;
  expect_faults(
      good,
      {{l1, 40, "HK ", "LEVEL1", 40, "not above the key before it"},
       {l1, 38, hex_bytes("0002"), "LEVEL1", 38,
        "counts 2 streets, its segment holds 1"},
       {l1, 30, hex_bytes("00010000"), "LEVEL1", 30,
        "runs past the end of LEVEL2"},
       {l2, nathan + 10, "A", "LEVEL2", nathan, "is not above the street"},
       {l2, nathan + 21, "X", "LEVEL2", nathan + 10,
        "not terminated inside its segment"},
       {l2, canton + 21, std::string(20, 'X'), "LEVEL2", canton + 10,
        "longer than 30 bytes"},
       {l2, canton + 8, hex_bytes("0007"), "LEVEL2", canton + 8,
        "counts 7 records, its block holds 1"},
       {l2, canton, hex_bytes("00000004"), "LEVEL2", canton,
        "lies outside BASEDATA"}});

  RefdbImages partial = good;
  partial.level1.resize(85);
  EXPECT_TRUE(has_fault(check_reference_images(partial), "LEVEL1", 80,
                        "partial record of 5 bytes"));
  RefdbImages odd = good;
  odd.level2.push_back('\0');
  EXPECT_TRUE(has_fault(check_reference_images(odd), "LEVEL2", 23200,
                        "not a whole number of 23200-byte units"));
}

// Faults are kept up to the cap for each kind and all counted; a name with
// bytes that are not printable is shown with them as \xNN.
TEST(RefdbCheck, FaultsAreCappedPerKindCountedAndPrintable) {
  TestDb db(kCorpusCsv);
  RefdbImages images = images_of(db.dir());
  images.level2.resize(7);  // every segment now lies outside
  images.basedata.resize(9);
  CheckReport r = check_reference_images(images, 1);
  auto count = [&r](FaultKind k) { return r.by_kind[static_cast<size_t>(k)]; };
  EXPECT_EQ(count(FaultKind::kFileLength), 2u);
  EXPECT_EQ(count(FaultKind::kSegment), 2u);
  EXPECT_EQ(r.fault_count, 4u);
  ASSERT_EQ(r.faults.size(), 2u) << all_faults(r);
  EXPECT_EQ(r.faults[0].kind, FaultKind::kFileLength);
  EXPECT_EQ(r.faults[1].kind, FaultKind::kSegment);

  TestDb odd("HK,N\x01\xC9,,,,,,1,,,,\n");
  images = images_of(odd.dir());
  images.basedata.resize(8);
  r = check_reference_images(images);
  ASSERT_EQ(count(FaultKind::kBlock), 1u) << all_faults(r);
  EXPECT_NE(all_faults(r).find("street \"N\\x01\\xC9\" of region \"HK\""),
            std::string::npos)
      << all_faults(r);
}

// Random damage to the sample database: the check must stay inside the
// images (AddressSanitizer watches), and whatever it accepts must dump to a
// CSV that reads back as one 12-field row per record, whatever bytes the
// damage put into the texts.
TEST(RefdbCheck, RandomDamageToTheSampleIsHandled) {
  const RefdbImages good = images_of(orlo::testing::sample_db_dir());
  const size_t used[3] = {good.level1.size(),
                          good.level2.find_last_not_of('\0') + 1,
                          good.basedata.find_last_not_of('\0') + 1};
  std::mt19937 rng(20261101);
  int accepted = 0;
  for (int round = 0; round < 400; ++round) {
    RefdbImages images = good;
    std::string *files[3] = {&images.level1, &images.level2, &images.basedata};
    size_t which = rng() % 3;
    std::string &file = *files[which];
    for (int n = 1 + rng() % 3; n > 0; --n)
      file[rng() % used[which]] = static_cast<char>(rng());
    if (rng() % 8 == 0) file.resize(rng() % file.size());
    CheckReport report = check_reference_images(images);
    if (report.fault_count > 0) continue;
    ++accepted;
    std::string csv;
    WalkTotals totals;
    dump_reference_images(
        images, [&csv](std::string_view b) { csv.append(b); }, &totals);
    CsvReader reader(csv);
    std::vector<std::string> row;
    uint64_t rows = 0;
    while (reader.next(&row) == CsvReader::Status::kRow) {
      ASSERT_EQ(row.size(), 12u) << "round " << round;
      ++rows;
    }
    ASSERT_TRUE(reader.error().empty()) << reader.error();
    EXPECT_EQ(rows, totals.records + 1) << "round " << round;
  }
  // Some damage lands in texts and keys and passes; most must not.
  EXPECT_GT(accepted, 0);
  EXPECT_LT(accepted, 400);
}

}  // namespace
}  // namespace orlo::tools
