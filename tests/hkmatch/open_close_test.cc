// Opening and closing a geocoder instance: options, reference files, the
// LEVEL1 index, memory images, failure codes and what close releases.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "hkmatch/reference_access.h"
#include "hkmatch/reference_files.h"
#include "orlo_matcher.h"
#include "support/test_db.h"

namespace {

using orlo::testfiles::level1_end;
using orlo::testfiles::level1_record;
using orlo::testfiles::open_descriptors;
using orlo::testfiles::patterned;
using orlo::testfiles::read_file;
using orlo::testfiles::TempDir;
using orlo::testfiles::write_file;

constexpr size_t kUnit = 23200;

// A small database: two regions whose segments lie inside the first unit of
// a one-unit LEVEL2, and a BASEDATA of a date and some bytes.
class Instance : public ::testing::Test {
 protected:
  void SetUp() override {
    level1_ = dir_.file("LEVEL1");
    level2_ = dir_.file("LEVEL2");
    basedata_ = dir_.file("BASEDATA");
    write_file(level1_, level1_record("HONG KONG", 0, 60, 2) +
                            level1_record("KOWLOON", 60, 1000, 17) +
                            level1_end());
    write_file(level2_, patterned(kUnit));
    write_file(basedata_, "20260101" + patterned(500));
    baseline_fds_ = open_descriptors();
  }
  void TearDown() override {
    hk_mclo(&mcb_, nullptr);
    EXPECT_EQ(open_descriptors(), baseline_fds_) << "a file was left open";
  }

  int32_t open(const char *options) {
    return open_with(options, level1_.c_str(), level2_.c_str(),
                     basedata_.c_str());
  }
  int32_t open_with(const char *options, const char *l1, const char *l2,
                    const char *base) {
    hk_mclo(&mcb_, nullptr);
    mcb_ = nullptr;
    retcode_ = '0';
    return hk_mopn(&mcb_, &retcode_, options, l1, l2, base);
  }
  void close() {
    hk_mclo(&mcb_, nullptr);
    mcb_ = nullptr;
  }

  TempDir dir_;
  std::string level1_, level2_, basedata_;
  long baseline_fds_ = 0;
  HKMCB *mcb_ = nullptr;
  char retcode_ = '0';
};

TEST_F(Instance, OpensInFileMode) {
  char rc = '?';  // success leaves the code byte as the caller set it
  ASSERT_EQ(hk_mopn(&mcb_, &rc, "", level1_.c_str(), level2_.c_str(),
                    basedata_.c_str()),
            0);
  EXPECT_EQ(rc, '?');
  ASSERT_NE(mcb_, nullptr);
  EXPECT_EQ(mcb_->state, 'O');
  EXPECT_EQ(mcb_->cachemax, 3000000);
  EXPECT_EQ(mcb_->inmem, 0);
  EXPECT_EQ(mcb_->lvl2mem, nullptr);
  EXPECT_EQ(mcb_->basemem, nullptr);
  EXPECT_EQ(mcb_->outfp, nullptr);
  EXPECT_EQ(mcb_->lvl2size, static_cast<int64_t>(kUnit));
  EXPECT_EQ(mcb_->basesize, 508);
  ASSERT_NE(mcb_->basefp, nullptr);
  ASSERT_NE(mcb_->lvl2fp, nullptr);
  ASSERT_NE(mcb_->lvl1fp, nullptr);
  // Only LEVEL1 is read; LEVEL1 stays open after the end record it read.
  EXPECT_EQ(ftello(mcb_->basefp), 0);
  EXPECT_EQ(ftello(mcb_->lvl2fp), 0);
  EXPECT_EQ(ftello(mcb_->lvl1fp), 120);
  const char zero[30] = {};
  EXPECT_EQ(std::memcmp(mcb_->lastkey, zero, sizeof zero), 0);
  EXPECT_EQ(mcb_->lvl2tab, nullptr);
  EXPECT_EQ(mcb_->nread, 0);
}

TEST_F(Instance, LoadsTheIndexInHostOrder) {
  write_file(level1_, level1_record("A", 0x01020304, 0x100, 0x0102) +
                          level1_record("B", 0, 0, 0));
  write_file(level2_, "");
  std::filesystem::resize_file(level2_, 0x01020404);  // sparse
  ASSERT_EQ(open(nullptr), 0);
  ASSERT_EQ(mcb_->lvl1cnt, 2);
  const L1ENTRY &a = mcb_->lvl1tab[0];
  EXPECT_EQ(std::string(a.l1key, 30), "A" + std::string(29, ' '));
  EXPECT_EQ(a.l2off, 0x01020304u);
  EXPECT_EQ(a.l2len, 0x100u);
  EXPECT_EQ(a.l2cnt, 0x0102);
  EXPECT_EQ(mcb_->lvl1tab[1].l1key[0], 'B');
  EXPECT_EQ(mcb_->lvl1tab[1].l2len, 0u);
}

// A database from the builder: whole units, so memory mode holds all of it,
// and one index entry per region in key order.
TEST(BuiltDatabase, OpensInBothModes) {
  orlo::testing::TestDb db(
      "KOWLOON,NATHAN ROAD,R01,1,,,,1,,9,,\n"
      "HONG KONG,QUEEN'S ROAD CENTRAL,R02,2,,,,2,,8,,\n"
      "KOWLOON,CANTON ROAD,R03,3,,,,3,,7,,\n");
  int64_t l2 = static_cast<int64_t>(std::filesystem::file_size(db.level2()));
  int64_t base =
      static_cast<int64_t>(std::filesystem::file_size(db.basedata()));
  for (const char *options : {"", "YM"}) {
    SCOPED_TRACE(options);
    HKMCB *mcb = nullptr;
    char rc = '0';
    ASSERT_EQ(hk_mopn(&mcb, &rc, options, db.level1().c_str(),
                      db.level2().c_str(), db.basedata().c_str()),
              0)
        << rc;
    EXPECT_EQ(mcb->lvl2size, l2);
    EXPECT_EQ(mcb->basesize, base);
    ASSERT_EQ(mcb->lvl1cnt, 2);
    EXPECT_EQ(std::string(mcb->lvl1tab[0].l1key, 30),
              "HONG KONG" + std::string(21, ' '));
    EXPECT_EQ(std::string(mcb->lvl1tab[1].l1key, 30),
              "KOWLOON" + std::string(23, ' '));
    EXPECT_EQ(mcb->lvl1tab[0].l2cnt, 1);
    EXPECT_EQ(mcb->lvl1tab[1].l2cnt, 2);
    char date[8];
    EXPECT_EQ(orlo::read_basedata(mcb, 0, 8, date), '0');
    EXPECT_EQ(std::string(date, 8), "20260101");
    hk_mclo(&mcb, nullptr);
  }
}

// ---- LEVEL1 shapes
// ------------------------------------------------------------

struct Level1Case {
  const char *name;
  std::string bytes;
  std::string keys;  // first key byte of each entry loaded
};

class Level1Shape : public Instance,
                    public ::testing::WithParamInterface<Level1Case> {};

TEST_P(Level1Shape, GivesTheIndex) {
  write_file(level1_, GetParam().bytes);
  ASSERT_EQ(open(""), 0);
  const std::string &keys = GetParam().keys;
  ASSERT_EQ(mcb_->lvl1cnt, static_cast<int32_t>(keys.size()));
  ASSERT_NE(mcb_->lvl1tab, nullptr);
  for (size_t i = 0; i < keys.size(); ++i)
    EXPECT_EQ(mcb_->lvl1tab[i].l1key[0], keys[i]) << i;
}

const std::string kK = level1_record("K", 0, 10, 1);
const std::string kL = level1_record("L", 10, 10, 1);
const std::string kM = level1_record("M", 20, 10, 1);

INSTANTIATE_TEST_SUITE_P(
    Files, Level1Shape,
    ::testing::Values(
        Level1Case{"empty", "", ""},
        Level1Case{"end_record_first", level1_end() + kK, ""},
        Level1Case{"no_end_record", kK + kL + kM, "KLM"},
        Level1Case{"end_record_after_two", kK + kL + level1_end() + kM, "KL"},
        Level1Case{"partial_final_record", kK + kL + kM.substr(0, 20), "KL"},
        Level1Case{"lone_partial_record", kK.substr(0, 39), ""},
        // Only the first four bytes decide: a zero key start with text after
        // it is still the end record, a zero byte later in the four is not.
        Level1Case{"end_record_with_text",
                   kK + std::string(4, '\0') + "X" + std::string(35, ' ') + kM,
                   "K"},
        Level1Case{"three_zero_bytes_are_a_key",
                   kK + std::string(3, '\0') + kL.substr(3),
                   std::string("K\0", 2)}),
    [](const auto &info) { return std::string(info.param.name); });

// ---- option string
// --------------------------------------------------------------

struct OptionCase {
  const char *name;
  const char *options;  // nullptr: no option string
  int32_t listmode;
  int32_t passopt;
  int32_t outmode;
  const char *outpath;
  int32_t inmem;
};

// Runs in the temporary directory, so that the extract paths of the table
// (relative, some beginning with 'M') are created there.
class OptionString : public Instance,
                     public ::testing::WithParamInterface<OptionCase> {
 protected:
  void SetUp() override {
    Instance::SetUp();
    ASSERT_NE(getcwd(cwd_, sizeof cwd_), nullptr);
    ASSERT_EQ(chdir(dir_.path().c_str()), 0);
  }
  void TearDown() override {
    Instance::TearDown();
    EXPECT_EQ(chdir(cwd_), 0);
  }
  char cwd_[4096] = {};
};

TEST_P(OptionString, SelectsTheSettings) {
  const OptionCase &c = GetParam();
  ASSERT_EQ(open(c.options), 0) << retcode_;
  EXPECT_EQ(mcb_->listmode, c.listmode);
  EXPECT_EQ(mcb_->passopt, c.passopt);
  EXPECT_EQ(mcb_->outmode, c.outmode);
  EXPECT_STREQ(mcb_->outpath, c.outpath);
  EXPECT_EQ(mcb_->inmem, c.inmem);
  EXPECT_EQ(mcb_->lvl2mem != nullptr, c.inmem == 1);
  EXPECT_EQ(mcb_->basemem != nullptr, c.inmem == 1);
  EXPECT_EQ(mcb_->outfp != nullptr, c.outmode != 0);
  if (c.outmode != 0) {
    EXPECT_TRUE(std::filesystem::exists(c.outpath));
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, OptionString,
    ::testing::Values(
        OptionCase{"null", nullptr, 0, 0, 0, "", 0},
        OptionCase{"empty", "", 0, 0, 0, "", 0},
        OptionCase{"Y", "Y", 1, 0, 0, "", 0},
        OptionCase{"y", "y", 1, 0, 0, "", 0},
        OptionCase{"2", "2", 2, 0, 0, "", 0},
        OptionCase{"3", "3", 3, 0, 0, "", 0},
        OptionCase{"4", "4", 0, 1, 0, "", 0},
        OptionCase{"5", "5", 0, 2, 0, "", 0},
        OptionCase{"6", "6", 1, 1, 0, "", 0},
        OptionCase{"7", "7", 1, 2, 0, "", 0},
        OptionCase{"8", "8", 2, 1, 0, "", 0},
        OptionCase{"9", "9", 2, 2, 0, "", 0},
        OptionCase{"A", "A", 3, 1, 0, "", 0},
        OptionCase{"B", "B", 3, 2, 0, "", 0},
        OptionCase{"a_is_not_A", "a", 0, 0, 0, "", 0},
        OptionCase{"L_selects_nothing", "L", 0, 0, 0, "", 0},
        OptionCase{"1_selects_nothing", "1xyz", 0, 0, 0, "", 0},
        OptionCase{"W", "Wstreets.out", 0, 0, 1, "streets.out", 0},
        OptionCase{"w", "wstreets.out", 0, 0, 1, "streets.out", 0},
        OptionCase{"R", "Rstreets.out", 0, 0, 1, "streets.out", 0},
        OptionCase{"r", "rstreets.out", 0, 0, 1, "streets.out", 0},
        OptionCase{"X", "Xrecords.out", 0, 0, 2, "records.out", 0},
        OptionCase{"x", "xrecords.out", 0, 0, 2, "records.out", 0},
        OptionCase{"X_path_starting_M", "XMrecords.out", 0, 0, 2,
                   "Mrecords.out", 1},
        OptionCase{"W_path_starting_m", "wmstreets.out", 0, 0, 1,
                   "mstreets.out", 1},
        OptionCase{"YM", "YM", 1, 0, 0, "", 1},
        OptionCase{"Bm", "Bm", 3, 2, 0, "", 1},
        OptionCase{"unknown_first_then_M", "ZM", 0, 0, 0, "", 1},
        OptionCase{"blank_then_M", " M", 0, 0, 0, "", 1},
        OptionCase{"M_alone", "M", 0, 0, 0, "", 0},
        OptionCase{"M_third", "YxM", 1, 0, 0, "", 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(Instance, ExtractFileIsTruncatedAndClosedWithTheInstance) {
  std::string path = dir_.file("extract.out");
  write_file(path, "old contents");
  std::string options = "W" + path;
  ASSERT_EQ(open(options.c_str()), 0);
  EXPECT_EQ(read_file(path), "");
  std::fputs("street record", mcb_->outfp);
  close();
  EXPECT_EQ(read_file(path), "street record");
}

TEST_F(Instance, ExtractPathOf199CharactersFits) {
  std::string name(199 - dir_.path().size() - 1, 'e');
  std::string path = dir_.file(name);
  ASSERT_EQ(path.size(), 199u);
  ASSERT_EQ(open(("X" + path).c_str()), 0);
  EXPECT_EQ(std::string(mcb_->outpath), path);
  EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(Instance, LongerExtractPathFailsRatherThanNamingAnotherFile) {
  std::string path = dir_.file(std::string(200 - dir_.path().size() - 1, 'e'));
  ASSERT_EQ(path.size(), 200u);
  EXPECT_EQ(open(("X" + path).c_str()), 1);
  EXPECT_EQ(retcode_, '6');
  EXPECT_EQ(mcb_->outfp, nullptr);
  EXPECT_EQ(mcb_->basefp, nullptr);
  EXPECT_FALSE(std::filesystem::exists(path));
  EXPECT_FALSE(std::filesystem::exists(path.substr(0, 199)));
}

// ---- failures
// ---------------------------------------------------------------------

enum class Path { kGood, kMissing, kDirectory, kNull };

struct FailureCase {
  const char *name;
  const char *options;
  Path level1, level2, basedata;
  char code;
  bool base_open, level1_open, level2_open;  // after the failure
};

class OpenFailure : public Instance,
                    public ::testing::WithParamInterface<FailureCase> {
 protected:
  const char *resolve(Path p, const std::string &good) {
    switch (p) {
      case Path::kGood:
        return good.c_str();
      case Path::kMissing:
        missing_ = dir_.file("no-such-file");
        return missing_.c_str();
      case Path::kDirectory:
        return dir_.path().c_str();
      case Path::kNull:
        return nullptr;
    }
    return nullptr;
  }
  std::string missing_;
};

TEST_P(OpenFailure, ReportsItsCodeAndLeavesABlockToClose) {
  const FailureCase &c = GetParam();
  // Extract paths of the table name places in the temporary directory.
  std::string options = c.options != nullptr ? c.options : "";
  if (options == "Wdir") options = "W" + dir_.path();
  if (options == "Wmissing") options = "W" + dir_.file("none/extract");
  if (options == "Xtemp") options = "X" + dir_.file("records.out");
  EXPECT_EQ(open_with(c.options != nullptr ? options.c_str() : nullptr,
                      resolve(c.level1, level1_), resolve(c.level2, level2_),
                      resolve(c.basedata, basedata_)),
            1);
  EXPECT_EQ(retcode_, c.code);
  ASSERT_NE(mcb_, nullptr);
  EXPECT_EQ(mcb_->state, 'O');
  EXPECT_EQ(mcb_->basefp != nullptr, c.base_open);
  EXPECT_EQ(mcb_->lvl1fp != nullptr, c.level1_open);
  EXPECT_EQ(mcb_->lvl2fp != nullptr, c.level2_open);
  EXPECT_EQ(hk_mclo(&mcb_, nullptr), 0);
  mcb_ = nullptr;
  EXPECT_EQ(open_descriptors(), baseline_fds_);
}

constexpr Path G = Path::kGood, Miss = Path::kMissing, Dir = Path::kDirectory,
               Null = Path::kNull;

INSTANTIATE_TEST_SUITE_P(
    Codes, OpenFailure,
    ::testing::Values(
        FailureCase{"extract_directory", "Wdir", G, G, G, '6', false, false,
                    false},
        FailureCase{"extract_in_missing_dir", "Wmissing", G, G, G, '6', false,
                    false, false},
        FailureCase{"extract_path_empty", "X", G, G, G, '6', false, false,
                    false},
        FailureCase{"basedata_null", "", G, G, Null, '6', false, false, false},
        FailureCase{"basedata_missing", "", G, G, Miss, '6', false, false,
                    false},
        FailureCase{"basedata_directory", "", G, G, Dir, '6', false, false,
                    false},
        FailureCase{"level1_null", "", Null, G, G, '7', true, false, false},
        FailureCase{"level1_missing", "", Miss, G, G, '7', true, false, false},
        FailureCase{"level1_directory", "", Dir, G, G, '7', true, false, false},
        FailureCase{"level2_null", "", G, Null, G, '8', true, true, false},
        FailureCase{"level2_missing", "YM", G, Miss, G, '8', true, true, false},
        FailureCase{"level2_directory", "", G, Dir, G, '8', true, true, false},
        FailureCase{"level1_missing_with_extract", "Xtemp", Miss, G, G, '7',
                    true, false, false},
        FailureCase{"all_null", nullptr, Null, Null, Null, '6', false, false,
                    false}),
    [](const auto &info) { return std::string(info.param.name); });

struct SegmentCase {
  const char *name;
  uint32_t off, len;
  bool opens;
};

class SegmentBounds : public Instance,
                      public ::testing::WithParamInterface<SegmentCase> {};

TEST_P(SegmentBounds, IndexEntriesMustLieInsideLevel2) {
  const SegmentCase &c = GetParam();
  write_file(level1_, level1_record("A", 0, 10, 1) +
                          level1_record("B", c.off, c.len, 1));
  for (const char *options : {"", "YM"}) {
    SCOPED_TRACE(options);
    EXPECT_EQ(open(options), c.opens ? 0 : 1);
    EXPECT_EQ(retcode_, c.opens ? '0' : '4');
    // A refused index is dropped and LEVEL1 closed, so that callers can
    // tell the failed instance from an open one.
    ASSERT_NE(mcb_, nullptr);
    EXPECT_EQ(mcb_->lvl1fp != nullptr, c.opens);
    EXPECT_EQ(mcb_->lvl1cnt, c.opens ? 2 : 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Entries, SegmentBounds,
    ::testing::Values(SegmentCase{"ends_at_the_end", kUnit - 100, 100, true},
                      SegmentCase{"empty_at_the_end", kUnit, 0, true},
                      SegmentCase{"one_byte_over", kUnit - 100, 101, false},
                      SegmentCase{"starts_past_the_end", kUnit + 1, 0, false},
                      SegmentCase{"wraps_in_32_bits", 0xFFFFFFF0u, 0x20,
                                  false}),
    [](const auto &info) { return std::string(info.param.name); });

// A FIFO opens for reading but cannot be positioned, which is how a seek
// failure of memory mode is reached. The test holds the FIFO open for
// reading and writing, so that opening it never waits for a writer.
class SeekFailure : public Instance {
 protected:
  std::string make_fifo() {
    std::string path = dir_.file("fifo");
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
    fifo_fd_ = ::open(path.c_str(), O_RDWR | O_NONBLOCK);
    EXPECT_GE(fifo_fd_, 0);
    baseline_fds_ = open_descriptors();
    return path;
  }
  void TearDown() override {
    Instance::TearDown();
    if (fifo_fd_ >= 0) ::close(fifo_fd_);
  }
  int fifo_fd_ = -1;
};

TEST_F(SeekFailure, OnLevel2IsCode4) {
  write_file(level1_, "");
  std::string fifo = make_fifo();
  EXPECT_EQ(open_with("YM", level1_.c_str(), fifo.c_str(), basedata_.c_str()),
            1);
  EXPECT_EQ(retcode_, '4');
}

TEST_F(SeekFailure, OnBasedataIsCode5) {
  std::string fifo = make_fifo();
  EXPECT_EQ(open_with("YM", level1_.c_str(), level2_.c_str(), fifo.c_str()), 1);
  EXPECT_EQ(retcode_, '5');
}

TEST_F(SeekFailure, FileModeDoesNotSeek) {
  write_file(level1_, "");
  std::string fifo = make_fifo();
  EXPECT_EQ(open_with("", level1_.c_str(), fifo.c_str(), fifo.c_str()), 0);
  EXPECT_EQ(mcb_->lvl2size, 0);
  EXPECT_EQ(mcb_->basesize, 0);
}

// ---- memory mode
// --------------------------------------------------------------------

TEST_F(Instance, MemoryModeHoldsTheWholeUnits) {
  std::string level2 = patterned(2 * kUnit + 100);
  std::string basedata = "20260101" + patterned(kUnit - 8);
  write_file(level2_, level2);
  write_file(basedata_, basedata);
  ASSERT_EQ(open("YM"), 0);
  ASSERT_EQ(mcb_->lvl2size, static_cast<int64_t>(2 * kUnit));
  ASSERT_EQ(mcb_->basesize, static_cast<int64_t>(kUnit));
  EXPECT_EQ(std::memcmp(mcb_->lvl2mem, level2.data(), 2 * kUnit), 0);
  EXPECT_EQ(std::memcmp(mcb_->basemem, basedata.data(), kUnit), 0);
  // Both files stay open: the header is read through basefp at close.
  EXPECT_NE(mcb_->basefp, nullptr);
  EXPECT_NE(mcb_->lvl2fp, nullptr);

  // Reads are served from the images; the left-out tail is out of bounds.
  char buf[100];
  EXPECT_EQ(orlo::read_level2(mcb_, 2 * kUnit - 100, 100, buf), '0');
  EXPECT_EQ(std::memcmp(buf, level2.data() + 2 * kUnit - 100, 100), 0);
  EXPECT_EQ(orlo::read_level2(mcb_, 2 * kUnit, 1, buf), '4');
  EXPECT_EQ(orlo::read_basedata(mcb_, 0, 8, buf), '0');
  EXPECT_EQ(std::string(buf, 8), "20260101");
}

TEST_F(Instance, MemoryModeOfFilesShorterThanAUnitHoldsNothing) {
  write_file(level1_, "");
  write_file(level2_, patterned(kUnit - 1));
  ASSERT_EQ(open("2m"), 0);
  EXPECT_NE(mcb_->lvl2mem, nullptr);
  EXPECT_NE(mcb_->basemem, nullptr);
  EXPECT_EQ(mcb_->lvl2size, 0);
  EXPECT_EQ(mcb_->basesize, 0);
  char header[8];
  EXPECT_EQ(orlo::read_basedata(mcb_, 0, 8, header), '5');
}

// The segment lies inside the file but in its final partial unit, which
// memory mode leaves out: the index cannot be served and the open fails.
TEST_F(Instance, MemoryModeRefusesSegmentsInTheLeftOutTail) {
  write_file(level2_, patterned(kUnit + 50));
  write_file(level1_, level1_record("A", kUnit, 50, 1));
  EXPECT_EQ(open(""), 0);
  EXPECT_EQ(open("YM"), 1);
  EXPECT_EQ(retcode_, '4');
}

// ---- close
// ----------------------------------------------------------------------------

TEST_F(Instance, CloseOfNothingDoesNothing) {
  HKMCB *none = nullptr;
  EXPECT_EQ(hk_mclo(&none, nullptr), 0);
  EXPECT_EQ(hk_mclo(nullptr, nullptr), 0);
}

TEST_F(Instance, CloseKeepsTheHandleWordAndReleasesTheFiles) {
  for (const char *options : {"", "YM"}) {
    ASSERT_EQ(open(options), 0);
    EXPECT_GT(open_descriptors(), baseline_fds_);
    HKMCB *word = mcb_;
    EXPECT_EQ(hk_mclo(&word, nullptr), 0);
    EXPECT_EQ(word, mcb_);  // not cleared; the caller forgets it
    mcb_ = nullptr;
    EXPECT_EQ(open_descriptors(), baseline_fds_) << options;
  }
}

// What a search leaves behind belongs to the block; under the leak checker
// this fails if close misses any of it.
void leave_search_data(HKMCB *m) {
  m->lvl2cnt = 2;
  m->lvl2tab = static_cast<STREETENT *>(std::calloc(2, sizeof(STREETENT)));
  m->lvl2tab[0].bpack = static_cast<char *>(std::malloc(64));
  m->lvl2tab[0].bunpk =
      static_cast<HKBASEREC *>(std::malloc(sizeof(HKBASEREC)));
  m->lvl2tab[1].bpack = static_cast<char *>(std::malloc(32));
  m->baserecs = static_cast<HKBASEREC *>(std::malloc(3 * sizeof(HKBASEREC)));
  m->basecur = m->baserecs;
  m->blockbuf = static_cast<char *>(std::malloc(128));
  m->lvl2buf = static_cast<char *>(std::malloc(256));
  m->cands = static_cast<STREETENT **>(std::malloc(8 * sizeof(STREETENT *)));
}

// The private copy of an "R" call, made the way the dispatcher makes it.
HKMCB *copy_for_one_record(const HKMCB *instance, bool share_files) {
  auto *copy = static_cast<HKMCB *>(std::malloc(sizeof(HKMCB)));
  std::memcpy(copy, instance, sizeof(HKMCB));
  copy->lvl2cnt = 0;
  copy->baserecs = copy->basecur = nullptr;
  copy->blockbuf = copy->lvl2buf = nullptr;
  copy->lvl2tab = nullptr;
  copy->cands = nullptr;
  std::memset(copy->lastkey, 0, sizeof copy->lastkey);
  copy->lastname[0] = '\0';
  copy->lastidx = copy->lastcnt = copy->laststat = 0;
  copy->cacheused = copy->nread = copy->nmatched = 0;
  copy->state = 'R';
  copy->inmem = share_files ? 1 : 0;
  if (!share_files) {
    copy->lvl2mem = copy->basemem = nullptr;
    copy->outfp = nullptr;
  }
  return copy;
}

TEST_F(Instance, CloseFreesWhatTheSearchLeft) {
  ASSERT_EQ(open(""), 0);
  leave_search_data(mcb_);
  close();
}

TEST_F(Instance, CopySharingTheFilesLeavesThemToTheInstance) {
  write_file(basedata_, "20260101" + patterned(kUnit - 8));
  ASSERT_EQ(open("YM"), 0);
  long open_fds = open_descriptors();
  HKMCB *copy = copy_for_one_record(mcb_, true);
  leave_search_data(copy);
  EXPECT_EQ(hk_mclo(&copy, nullptr), 0);
  EXPECT_EQ(open_descriptors(), open_fds);
  // The images and the index are still the instance's to use.
  char buf[8];
  EXPECT_EQ(orlo::read_basedata(mcb_, 0, 8, buf), '0');
  EXPECT_EQ(std::string(buf, 8), "20260101");
  EXPECT_EQ(mcb_->lvl1tab[1].l2cnt, 17);
  char header[8];
  ASSERT_EQ(std::fseek(mcb_->basefp, 0, SEEK_SET), 0);
  EXPECT_EQ(std::fread(header, 1, 8, mcb_->basefp), 8u);
}

TEST_F(Instance, CopyWithItsOwnFilesClosesOnlyThose) {
  ASSERT_EQ(open(""), 0);
  long open_fds = open_descriptors();
  HKMCB *copy = copy_for_one_record(mcb_, false);
  copy->basefp = std::fopen(basedata_.c_str(), "rb");
  copy->lvl2fp = std::fopen(level2_.c_str(), "rb");
  ASSERT_NE(copy->basefp, nullptr);
  ASSERT_NE(copy->lvl2fp, nullptr);
  EXPECT_EQ(open_descriptors(), open_fds + 2);
  EXPECT_EQ(hk_mclo(&copy, nullptr), 0);
  EXPECT_EQ(open_descriptors(), open_fds);
  char buf[8];
  EXPECT_EQ(orlo::read_basedata(mcb_, 0, 8, buf), '0');
  EXPECT_EQ(orlo::read_level2(mcb_, 0, 8, buf), '0');
}

}  // namespace
