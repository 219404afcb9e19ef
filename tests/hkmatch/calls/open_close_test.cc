// Opening and closing a geocoder instance: options, reference files, the
// LEVEL1 index, memory images, failure codes and what close releases.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "hkmatch/refdata/reference_access.h"
#include "orlo_matcher.h"
#include "support/reference_files.h"

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
// a one-unit LEVEL2, and a BASEDATA of a date and some bytes. Every test
// ends with no descriptor left open.
class Instance : public ::testing::Test {
 protected:
  void SetUp() override {
    write_file(level1_, level1_record("HONG KONG", 0, 60, 2) +
                            level1_record("KOWLOON", 60, 1000, 17) +
                            level1_end());
    write_file(level2_, patterned(kUnit));
    write_file(basedata_, "20260101" + patterned(500));
    baseline_fds_ = open_descriptors();
  }
  void TearDown() override {
    close();
    EXPECT_EQ(open_descriptors(), baseline_fds_) << "a file was left open";
  }

  int32_t open(const char *options) {
    return open_with(options, level1_.c_str(), level2_.c_str(),
                     basedata_.c_str());
  }
  int32_t open_with(const char *options, const char *l1, const char *l2,
                    const char *base) {
    close();
    retcode_ = '0';
    return hk_mopn(&mcb_, &retcode_, options, l1, l2, base);
  }
  void close() {
    hk_mclo(&mcb_, nullptr);
    mcb_ = nullptr;
  }

  TempDir dir_;
  std::string level1_ = dir_.file("LEVEL1"), level2_ = dir_.file("LEVEL2"),
              basedata_ = dir_.file("BASEDATA");
  long baseline_fds_ = 0;
  HKMCB *mcb_ = nullptr;
  char retcode_ = '0';
};

// File mode reads only LEVEL1 (which stays open after its end record) and
// leaves the code byte as the caller set it.
TEST_F(Instance, OpensInFileMode) {
  char rc = '?';
  ASSERT_EQ(hk_mopn(&mcb_, &rc, "", level1_.c_str(), level2_.c_str(),
                    basedata_.c_str()),
            0);
  EXPECT_EQ(rc, '?');
  ASSERT_NE(mcb_, nullptr);
  EXPECT_EQ(mcb_->state, 'O');
  EXPECT_EQ(mcb_->lvl2mem, nullptr);
  EXPECT_EQ(mcb_->lvl2size, static_cast<int64_t>(kUnit));
  EXPECT_EQ(mcb_->basesize, 508);
  ASSERT_NE(mcb_->lvl1fp, nullptr);
  EXPECT_EQ(ftello(mcb_->lvl1fp), 120);
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

// The index ends at the end record (only its first four bytes decide) or at
// the last whole 40-byte record.
TEST_F(Instance, Level1EndsAtTheEndRecordOrTheLastWholeRecord) {
  const std::string k = level1_record("K", 0, 10, 1),
                    l = level1_record("L", 10, 10, 1),
                    m = level1_record("M", 20, 10, 1);
  const struct {
    const char *note;
    std::string bytes;
    std::string keys;  // first key byte of each entry loaded
  } cases[] = {
      {"empty", "", ""},
      {"end record first", level1_end() + k, ""},
      {"no end record", k + l + m, "KLM"},
      {"end record after two", k + l + level1_end() + m, "KL"},
      {"partial final record", k + l + m.substr(0, 20), "KL"},
      {"lone partial record", k.substr(0, 39), ""},
      {"end record with text after the zeros",
       k + std::string(4, '\0') + "X" + std::string(35, ' ') + m, "K"},
      {"three zero bytes are a key", k + std::string(3, '\0') + l.substr(3),
       std::string("K\0", 2)},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.note);
    write_file(level1_, c.bytes);
    ASSERT_EQ(open(""), 0);
    ASSERT_EQ(mcb_->lvl1cnt, static_cast<int32_t>(c.keys.size()));
    ASSERT_NE(mcb_->lvl1tab, nullptr);
    for (size_t i = 0; i < c.keys.size(); ++i)
      EXPECT_EQ(mcb_->lvl1tab[i].l1key[0], c.keys[i]) << i;
  }
}

// The first character selects the list, pass and extract settings (the rest
// of the string is the extract path); a second character 'M' or 'm' selects
// memory mode. Runs in the temporary directory, where the relative extract
// paths are created.
TEST_F(Instance, OptionStringSelectsTheSettings) {
  static constexpr struct {
    const char *options;  // nullptr: no option string
    int32_t listmode, passopt, outmode;
    const char *outpath;
    int32_t inmem;
  } kCases[] = {{nullptr, 0, 0, 0, "", 0},
                {"", 0, 0, 0, "", 0},
                {"Y", 1, 0, 0, "", 0},
                {"y", 1, 0, 0, "", 0},
                {"2", 2, 0, 0, "", 0},
                {"3", 3, 0, 0, "", 0},
                {"4", 0, 1, 0, "", 0},
                {"5", 0, 2, 0, "", 0},
                {"6", 1, 1, 0, "", 0},
                {"7", 1, 2, 0, "", 0},
                {"8", 2, 1, 0, "", 0},
                {"9", 2, 2, 0, "", 0},
                {"A", 3, 1, 0, "", 0},
                {"B", 3, 2, 0, "", 0},
                {"a", 0, 0, 0, "", 0},
                {"1xyz", 0, 0, 0, "", 0},
                {"Wstreets.out", 0, 0, 1, "streets.out", 0},
                {"wstreets.out", 0, 0, 1, "streets.out", 0},
                {"Rstreets.out", 0, 0, 1, "streets.out", 0},
                {"rstreets.out", 0, 0, 1, "streets.out", 0},
                {"Xrecords.out", 0, 0, 2, "records.out", 0},
                {"xrecords.out", 0, 0, 2, "records.out", 0},
                {"XMrecords.out", 0, 0, 2, "Mrecords.out", 1},
                {"YM", 1, 0, 0, "", 1},
                {"Bm", 3, 2, 0, "", 1},
                {"ZM", 0, 0, 0, "", 1},
                {"M", 0, 0, 0, "", 0},
                {"YxM", 1, 0, 0, "", 0}};
  char cwd[4096];
  ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
  ASSERT_EQ(chdir(dir_.path().c_str()), 0);
  for (const auto &c : kCases) {
    SCOPED_TRACE(c.options != nullptr ? c.options : "(null)");
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
  close();
  EXPECT_EQ(chdir(cwd), 0);
}

TEST_F(Instance, ExtractFileIsTruncatedAndClosedWithTheInstance) {
  std::string path = dir_.file("extract.out");
  write_file(path, "old contents");
  ASSERT_EQ(open(("W" + path).c_str()), 0);
  EXPECT_EQ(read_file(path), "");
  std::fputs("street record", mcb_->outfp);
  close();
  EXPECT_EQ(read_file(path), "street record");
}

// 199 characters fit; a longer path fails the open rather than being cut to
// name another file.
TEST_F(Instance, ExtractPathOfAtMost199Characters) {
  std::string path = dir_.file(std::string(199 - dir_.path().size() - 1, 'e'));
  std::string longer = path + "e";
  EXPECT_EQ(open(("X" + longer).c_str()), 1);
  EXPECT_EQ(retcode_, '6');
  EXPECT_EQ(mcb_->outfp, nullptr);
  EXPECT_EQ(mcb_->basefp, nullptr);
  EXPECT_FALSE(std::filesystem::exists(longer));
  EXPECT_FALSE(std::filesystem::exists(path));

  ASSERT_EQ(open(("X" + path).c_str()), 0);
  EXPECT_EQ(std::string(mcb_->outpath), path);
  EXPECT_TRUE(std::filesystem::exists(path));
}

// Each file that cannot be opened has its own code and the files opened
// before it stay with the block, which close releases.
TEST_F(Instance, OpenFailureReportsItsCodeAndLeavesABlockToClose) {
  enum Path { G, Miss, Dir, Null };
  const struct {
    const char *note;
    std::string options;  // "-": no option string
    Path level1, level2, basedata;
    char code;
    bool base_open, level1_open;  // LEVEL2 is never left open
  } cases[] = {
      {"extract is a directory", "W" + dir_.path(), G, G, G, '6', false, false},
      {"extract path empty", "X", G, G, G, '6', false, false},
      {"BASEDATA null", "", G, G, Null, '6', false, false},
      {"BASEDATA missing", "", G, G, Miss, '6', false, false},
      {"BASEDATA directory", "", G, G, Dir, '6', false, false},
      {"LEVEL1 missing", "", Miss, G, G, '7', true, false},
      {"LEVEL1 missing with extract", "X" + dir_.file("records.out"), Miss, G,
       G, '7', true, false},
      {"LEVEL2 null", "", G, Null, G, '8', true, true},
      {"LEVEL2 missing in memory mode", "YM", G, Miss, G, '8', true, true},
      {"LEVEL2 directory", "", G, Dir, G, '8', true, true},
      {"all null", "-", Null, Null, Null, '6', false, false},
  };
  std::string missing = dir_.file("no-such-file");
  auto resolve = [&](Path p, const std::string &good) -> const char * {
    const char *paths[] = {good.c_str(), missing.c_str(), dir_.path().c_str(),
                           nullptr};
    return paths[p];
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.note);
    EXPECT_EQ(open_with(c.options == "-" ? nullptr : c.options.c_str(),
                        resolve(c.level1, level1_), resolve(c.level2, level2_),
                        resolve(c.basedata, basedata_)),
              1);
    EXPECT_EQ(retcode_, c.code);
    ASSERT_NE(mcb_, nullptr);
    EXPECT_EQ(mcb_->state, 'O');
    EXPECT_EQ(mcb_->opened, 0);
    EXPECT_EQ(mcb_->basefp != nullptr, c.base_open);
    EXPECT_EQ(mcb_->lvl1fp != nullptr, c.level1_open);
    EXPECT_EQ(mcb_->lvl2fp, nullptr);
    EXPECT_EQ(hk_mclo(&mcb_, nullptr), 0);
    mcb_ = nullptr;
    EXPECT_EQ(open_descriptors(), baseline_fds_);
  }
}

// Memory mode loads whole 23200-byte units and serves reads from them; the
// partial unit at the end is left out and out of bounds.
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
  char buf[100];
  EXPECT_EQ(orlo::read_level2(mcb_, 2 * kUnit - 100, 100, buf), '0');
  EXPECT_EQ(std::memcmp(buf, level2.data() + 2 * kUnit - 100, 100), 0);
  EXPECT_EQ(orlo::read_level2(mcb_, 2 * kUnit, 1, buf), '4');
}

// A file shorter than a unit leaves memory mode nothing; a segment in the
// partial unit opens in both modes, but only file mode can serve it.
TEST_F(Instance, MemoryModeLeavesOutThePartialUnit) {
  write_file(level1_, "");
  write_file(level2_, patterned(kUnit - 1));
  ASSERT_EQ(open("2m"), 0);
  EXPECT_EQ(mcb_->lvl2size, 0);
  EXPECT_EQ(mcb_->basesize, 0);
  char buf[50];
  EXPECT_EQ(orlo::read_basedata(mcb_, 0, 8, buf), '5');
  write_file(level2_, patterned(kUnit + 50));
  write_file(level1_, level1_record("A", kUnit, 50, 1));
  for (const char *options : {"", "YM"}) {
    SCOPED_TRACE(options);
    ASSERT_EQ(open(options), 0);
    EXPECT_EQ(orlo::read_level2(mcb_, kUnit, 50, buf), *options ? '4' : '0');
  }
}

// ---- close

// Close releases every file but leaves the handle word: the caller forgets
// it. Without a block it does nothing.
TEST_F(Instance, CloseKeepsTheHandleWordAndReleasesTheFiles) {
  HKMCB *none = nullptr;
  EXPECT_EQ(hk_mclo(&none, nullptr), 0);
  EXPECT_EQ(hk_mclo(nullptr, nullptr), 0);
  for (const char *options : {"", "YM"}) {
    ASSERT_EQ(open(options), 0);
    EXPECT_GT(open_descriptors(), baseline_fds_);
    HKMCB *word = mcb_;
    EXPECT_EQ(hk_mclo(&word, nullptr), 0);
    EXPECT_EQ(word, mcb_);
    mcb_ = nullptr;
    EXPECT_EQ(open_descriptors(), baseline_fds_) << options;
  }
}

}  // namespace
