// The "R" call: a private copy of the instance with clean search state and
// zero counters, files of its own unless in memory mode, the nested process
// and close, and an instance left exactly as it was.
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "support/instance_fixture.h"

namespace orlo::testing {
namespace {

std::string block_bytes(const HKMCB &m) {
  return std::string(reinterpret_cast<const char *>(&m), sizeof m);
}

int64_t size_of(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 ? st.st_size : -1;
}

bool all_zero(const char *p, size_t n) {
  for (size_t i = 0; i < n; ++i)
    if (p[i] != 0) return false;
  return true;
}

// Descriptors open while the scripted search runs.
int descriptors_in_search = 0;
void count_descriptors(HKMCB *) {
  descriptors_in_search = open_descriptors();
}

class PrivateCopy : public InstanceTest {
 protected:
  // Gives the instance a search history, so that the copy has something to
  // leave behind.
  void give_history() {
    script_.results = {Result{}.build()};
    call("P");
    std::memcpy(mcb().lastkey, "KLN", 3);
    std::memcpy(mcb().lastname, "NATHAN ROAD", 11);
    mcb().lastidx = 1;
    mcb().lastcnt = 2;
    mcb().laststat = 1;
    mcb().cacheused = 77;
    mcb().cachemax = 12;
    script_ = Script{};
  }
  // One "R" call answered by the scripted search with an accepted result.
  void private_call(const char *options) {
    script_ = Script{};
    script_.results = {Result{}.build()};
    script_.on_search = count_descriptors;
    call("R", options);
  }
  const HKMCB &searched() { return script_.seen_blocks.at(0); }
};

TEST_F(PrivateCopy, CopyStartsWithCleanStateAndZeroCounters) {
  open();
  give_history();
  private_call("");
  ASSERT_EQ(script_.seen_blocks.size(), 1u);
  const HKMCB &c = searched();
  EXPECT_NE(script_.seen_block_at[0], handle_.mcb);
  EXPECT_EQ(c.state, 'R');
  EXPECT_EQ(c.nread, 1);  // counted in the copy before its search
  EXPECT_EQ(c.nmatched, 0);
  EXPECT_TRUE(all_zero(c.lastkey, sizeof c.lastkey));
  EXPECT_TRUE(all_zero(c.lastname, sizeof c.lastname));
  EXPECT_EQ(c.lastidx, 0);
  EXPECT_EQ(c.lastcnt, 0);
  EXPECT_EQ(c.laststat, 0);
  EXPECT_EQ(c.cachemax, 3000000);
  EXPECT_EQ(c.cacheused, 0);
  // The index is shared with the instance.
  EXPECT_EQ(c.lvl1tab, mcb().lvl1tab);
  EXPECT_EQ(c.lvl1cnt, mcb().lvl1cnt);
  EXPECT_EQ(c.lvl1fp, mcb().lvl1fp);
}

TEST_F(PrivateCopy, WithoutMemoryModeTheCopyOpensItsOwnFiles) {
  // A partial unit at the end of each file: the instance's images leave it
  // out, the copy's files have it.
  for (const std::string &path : {db_->level2(), db_->basedata()}) {
    write_file(path, read_file(path) + std::string(100, '\0'));
  }
  open("NM");  // even an instance in memory mode
  ASSERT_EQ(out_[0], '0');
  EXPECT_EQ(mcb().lvl2size + 100, size_of(db_->level2()));
  int before = open_descriptors();
  for (const char *options : {"", "N", "NX"}) {
    private_call(options);
    const HKMCB &c = searched();
    EXPECT_EQ(c.inmem, 0) << options;
    EXPECT_EQ(c.lvl2mem, nullptr);
    EXPECT_EQ(c.basemem, nullptr);
    EXPECT_NE(c.basefp, mcb().basefp);
    EXPECT_NE(c.lvl2fp, mcb().lvl2fp);
    EXPECT_EQ(c.basesize, size_of(db_->basedata()));
    EXPECT_EQ(c.lvl2size, size_of(db_->level2()));
    EXPECT_EQ(descriptors_in_search, before + 2) << options;
    EXPECT_EQ(open_descriptors(), before) << "the copy's files are closed";
  }
}

// A memory-mode copy shares the instance's files and images (none when the
// instance itself reads from files) and leaves them open.
TEST_F(PrivateCopy, MemoryModeSharesTheInstancesFilesAndImages) {
  for (const char *instance_options : {"NM", ""}) {
    open(instance_options);
    int before = open_descriptors();
    for (const char *options : {"NM", "Xm", "YMORE"}) {
      SCOPED_TRACE(std::string(instance_options) + " / " + options);
      private_call(options);
      const HKMCB &c = searched();
      EXPECT_EQ(c.inmem, 1);
      EXPECT_EQ(c.basefp, mcb().basefp);
      EXPECT_EQ(c.lvl2fp, mcb().lvl2fp);
      EXPECT_EQ(c.lvl2mem, mcb().lvl2mem);
      EXPECT_EQ(c.basemem, mcb().basemem);
      EXPECT_EQ(c.lvl2size, mcb().lvl2size);
      EXPECT_EQ(descriptors_in_search, before);
    }
    struct stat st;
    EXPECT_EQ(fstat(fileno(mcb().basefp), &st), 0) << "still open";
    EXPECT_EQ(fstat(fileno(mcb().lvl2fp), &st), 0) << "still open";
    EXPECT_EQ(mcb().lvl2mem != nullptr, instance_options[0] != '\0');
    call("C", "L");
  }
}

void write_copy(HKMCB *mcb) {
  ASSERT_NE(mcb->outfp, nullptr);
  std::fputs("COPY", mcb->outfp);
}

// In memory mode the copy writes to the instance's extract file and leaves
// it open; otherwise it recreates the file (emptied, written by the copy and
// closed, so flushed, with it).
TEST_F(PrivateCopy, ExtractFileIsTheCopysOwnUnlessInMemoryMode) {
  std::string extract = db_->dir() + "/extract.dat";
  open(("W" + extract).c_str());
  ASSERT_NE(mcb().outfp, nullptr);
  std::fputs("INSTANCE", mcb().outfp);
  std::fflush(mcb().outfp);
  private_call("WM");
  EXPECT_EQ(searched().outfp, mcb().outfp);
  EXPECT_EQ(read_file(extract), "INSTANCE");
  std::fputs("+MORE", mcb().outfp);
  std::fflush(mcb().outfp);
  EXPECT_EQ(read_file(extract), "INSTANCE+MORE");

  int before = open_descriptors();
  script_ = Script{};
  script_.on_search = write_copy;
  script_.results = {Result{}.build()};
  call("R", "Wother");  // second character not 'M'
  EXPECT_NE(searched().outfp, mcb().outfp);
  EXPECT_EQ(read_file(extract), "COPY");
  EXPECT_EQ(open_descriptors(), before);
}

TEST_F(PrivateCopy, FilesThatCannotBeOpenedEndTheCall) {
  open();
  std::string before = block_bytes(mcb());
  int descriptors = open_descriptors();
  std::string good_level2 = level2_, good_base = basedata_;
  struct Case {
    const char *what;
    std::string level2, base;
    bool null_level2, null_base;
    char code;
  } cases[] = {
      {"no LEVEL2 path", good_level2, good_base, true, false, '8'},
      {"LEVEL2 missing", "/nonexistent/L2", good_base, false, false, '8'},
      {"no BASEDATA path", good_level2, good_base, false, true, '6'},
      {"BASEDATA missing", good_level2, "/nonexistent/B", false, false, '6'},
      {"both missing", "/nonexistent/L2", "/nonexistent/B", false, false, '6'},
  };
  for (const Case &c : cases) {
    script_ = Script{};
    out_ = std::string(HKOUTREC_SIZE, '#');
    level2_ = c.level2;
    basedata_ = c.base;
    CallArgs a = args("R", "");
    if (c.null_level2) a.level2_path = nullptr;
    if (c.null_base) a.basedata_path = nullptr;
    dispatch(a, kScripted);
    EXPECT_EQ(out_, c.code + std::string(HKOUTREC_SIZE - 1, '#')) << c.what;
    EXPECT_TRUE(script_.seen_inputs.empty()) << c.what;
    EXPECT_EQ(open_descriptors(), descriptors) << c.what;
    EXPECT_EQ(block_bytes(mcb()), before) << c.what;
  }
  EXPECT_FALSE(report_written());
}

TEST_F(PrivateCopy, ExtractFileThatCannotBeCreatedGives6) {
  std::string sub = db_->dir() + "/sub";
  std::filesystem::create_directory(sub);
  open(("R" + sub + "/extract.dat").c_str());
  ASSERT_EQ(out_[0], '0');
  std::filesystem::remove_all(sub);
  int descriptors = open_descriptors();
  private_call("");
  EXPECT_EQ(out_[0], '6');
  EXPECT_TRUE(script_.seen_inputs.empty());
  EXPECT_EQ(open_descriptors(), descriptors);
  // In memory mode the copy creates nothing and so cannot fail.
  private_call("RM");
  EXPECT_EQ(out_[0], '1');
}

TEST_F(PrivateCopy, RefusedWithoutAnOpenInstance) {
  private_call("");  // empty handle word
  EXPECT_EQ(out_, "A" + std::string(HKOUTREC_SIZE - 1, '#'));

  open();
  mcb().state = 'R';
  private_call("");
  EXPECT_EQ(out_[0], 'A');
  mcb().state = 'O';

  // An open that failed (LEVEL1 missing) leaves a block that cannot serve.
  call("C", "L");
  level1_ = db_->dir() + "/missing";
  open();
  ASSERT_EQ(out_[0], '7');
  private_call("");
  EXPECT_EQ(out_[0], 'A');
  EXPECT_TRUE(script_.seen_inputs.empty());
}

TEST_F(PrivateCopy, StorageExhaustedLeavesTheInstanceUntouched) {
  open();
  give_history();
  std::string before = block_bytes(mcb());
  int descriptors = open_descriptors();
  for (int which : {1, 2}) {
    detail::fail_copy_block_number = which;
    out_ = std::string(HKOUTREC_SIZE, '#');
    private_call("");
    EXPECT_EQ(out_, "3" + std::string(HKOUTREC_SIZE - 1, '#')) << which;
    EXPECT_EQ(block_bytes(mcb()), before);
    EXPECT_EQ(open_descriptors(), descriptors);
  }
  EXPECT_EQ(detail::fail_copy_block_number, 0);
}

TEST_F(PrivateCopy, NestedCallsProcessAndReportInTheCopy) {
  open();
  give_history();
  mcb().nread = 5;
  std::string callers = in_;
  private_call("");
  std::string expected = Result{}.build();
  EXPECT_EQ(out_, expected);  // input and result agree: no change flags
  EXPECT_EQ(in_, callers);
  // The copy's close wrote a statement of its own single record.
  std::string page = report();
  EXPECT_EQ(statement_line(page, 27).substr(60, 14), "1             ");
  EXPECT_EQ(statement_line(page, 31).substr(60, 7), "100.00%");
  EXPECT_EQ(statement_line(page, 13).substr(28, 8), "20260102");
  EXPECT_EQ(mcb().nread, 5);

  std::filesystem::remove(report_);
  private_call("L");
  EXPECT_EQ(out_[0], '1');
  EXPECT_FALSE(report_written()) << "the copy's close follows the options";
}

}  // namespace
}  // namespace orlo::testing
