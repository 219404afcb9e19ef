// Bounds-checked reads of LEVEL2 and BASEDATA in memory and file mode.
#include "hkmatch/refdata/reference_access.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

#include "support/reference_files.h"

namespace {

using orlo::testfiles::patterned;
using orlo::testfiles::TempDir;
using orlo::testfiles::write_file;

enum class Target { kLevel2, kBasedata };
enum class Storage { kFile, kMemory };

constexpr uint32_t kSize = 1000;

// One HKMCB whose LEVEL2 or BASEDATA is a 1000-byte patterned file, served
// from the open file or from an image in memory.
class ReferenceRead
    : public ::testing::TestWithParam<std::tuple<Target, Storage>> {
 protected:
  void SetUp() override {
    content_ = patterned(kSize);
    path_ = dir_.file("data");
    write_file(path_, content_);
    fp_ = std::fopen(path_.c_str(), "rb");
    ASSERT_NE(fp_, nullptr);
    FILE *fp = memory() ? nullptr : fp_;
    char *mem = memory() ? content_.data() : nullptr;
    if (level2()) {
      mcb_.lvl2fp = fp;
      mcb_.lvl2mem = mem;
      mcb_.lvl2size = kSize;
    } else {
      mcb_.basefp = fp;
      mcb_.basemem = mem;
      mcb_.basesize = kSize;
    }
  }
  void TearDown() override {
    if (fp_ != nullptr) std::fclose(fp_);
  }

  bool level2() const { return std::get<0>(GetParam()) == Target::kLevel2; }
  bool memory() const { return std::get<1>(GetParam()) == Storage::kMemory; }
  char failure() const { return level2() ? '4' : '5'; }

  char read(uint32_t off, uint32_t len, char *dst) {
    return level2() ? orlo::read_level2(&mcb_, off, len, dst)
                    : orlo::read_basedata(&mcb_, off, len, dst);
  }

  TempDir dir_;
  std::string path_;
  std::string content_;
  FILE *fp_ = nullptr;
  HKMCB mcb_{};
};

// Ranges inside the file, up to an empty read at its very end, are served.
TEST_P(ReferenceRead, ReadsRangesInsideTheFile) {
  const std::pair<uint32_t, uint32_t> ranges[] = {
      {0, 40}, {517, 33}, {kSize - 7, 7}, {kSize, 0}};
  for (auto [off, len] : ranges) {
    std::string dst(len + 1, '#');
    ASSERT_EQ(read(off, len, dst.data()), '0') << off;
    EXPECT_EQ(dst, content_.substr(off, len) + "#") << off;
  }
}

// Offsets or lengths past the end are refused, also when offset plus length
// wraps in 32 bits (0xFFFFFFF0 + 0x20 is 0x10, well inside the file).
TEST_P(ReferenceRead, RejectsRangesPastTheEnd) {
  const std::pair<uint32_t, uint32_t> ranges[] = {
      {kSize, 1},     {kSize + 1, 0},      {0xFFFFFFFFu, 1},   {kSize - 5, 6},
      {0, kSize + 1}, {0xFFFFFFF0u, 0x20}, {0x20, 0xFFFFFFF0u}};
  for (auto [off, len] : ranges) {
    std::string dst(64, '#');
    EXPECT_EQ(read(off, len, dst.data()), failure())
        << "off " << off << " len " << len;
    EXPECT_EQ(dst, std::string(64, '#')) << "a refused read writes nothing";
  }
}

TEST_P(ReferenceRead, CountsEveryCallOnItsOwnCounter) {
  orlo::AccessCounters before = orlo::access_counters();
  char dst[8];
  read(0, 8, dst);
  read(kSize, 8, dst);  // rejected, still a call
  orlo::AccessCounters after = orlo::access_counters();
  EXPECT_EQ(after.level2_reads - before.level2_reads, level2() ? 2u : 0u);
  EXPECT_EQ(after.basedata_reads - before.basedata_reads, level2() ? 0u : 2u);
  EXPECT_EQ(after.unpacks, before.unpacks);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, ReferenceRead,
    ::testing::Combine(::testing::Values(Target::kLevel2, Target::kBasedata),
                       ::testing::Values(Storage::kFile, Storage::kMemory)),
    [](const auto &info) {
      std::string name =
          std::get<0>(info.param) == Target::kLevel2 ? "Level2" : "Basedata";
      return name +
             (std::get<1>(info.param) == Storage::kFile ? "File" : "Memory");
    });

// A file that is shorter than the size recorded at open (it shrank since):
// the read comes back short and is an error, not a partial result.
TEST(ReferenceReadFile, ShortReadIsAnError) {
  TempDir dir;
  write_file(dir.file("LEVEL2"), patterned(100));
  FILE *fp = std::fopen(dir.file("LEVEL2").c_str(), "rb");
  ASSERT_NE(fp, nullptr);
  HKMCB mcb{};
  mcb.lvl2fp = fp;
  mcb.lvl2size = 200;
  mcb.basefp = fp;
  mcb.basesize = 200;
  char dst[50];
  EXPECT_EQ(orlo::read_level2(&mcb, 60, 50, dst), '4');
  EXPECT_EQ(orlo::read_basedata(&mcb, 60, 50, dst), '5');
  EXPECT_EQ(orlo::read_level2(&mcb, 50, 50, dst), '0');
  std::fclose(fp);
}

TEST(ReferenceReadFile, NoFileAndNoImageIsAnError) {
  HKMCB mcb{};
  mcb.lvl2size = 100;
  mcb.basesize = 100;
  char dst[10];
  EXPECT_EQ(orlo::read_level2(&mcb, 0, 10, dst), '4');
  EXPECT_EQ(orlo::read_basedata(&mcb, 0, 10, dst), '5');
  EXPECT_EQ(orlo::read_level2(nullptr, 0, 10, dst), '4');
  EXPECT_EQ(orlo::read_basedata(nullptr, 0, 10, dst), '5');
}

TEST(AccessCounters, AreKeptPerThread) {
  std::string image = patterned(64);
  HKMCB mcb{};
  mcb.lvl2mem = image.data();
  mcb.lvl2size = 64;
  char dst[4];
  orlo::read_level2(&mcb, 0, 4, dst);
  uint64_t mine = orlo::access_counters().level2_reads;
  uint64_t other_start = 99, other_end = 99;
  std::thread t([&] {
    other_start = orlo::access_counters().level2_reads;
    char buf[4];
    for (int i = 0; i < 3; ++i) orlo::read_level2(&mcb, 0, 4, buf);
    other_end = orlo::access_counters().level2_reads;
  });
  t.join();
  EXPECT_EQ(other_start, 0u);
  EXPECT_EQ(other_end, 3u);
  EXPECT_EQ(orlo::access_counters().level2_reads, mine);
}

}  // namespace
