// hk_mtci with the real preparation and search on a small database: results
// of "P", "D" and "R" agree, the private copy leaves an instance with warm
// caches untouched, the building-name retry, and the dated statement.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "hkmatch/input/record_fields.h"
#include "orlo_matcher.h"
#include "support/file_util.h"
#include "support/scripted_search.h"
#include "support/test_db.h"

namespace orlo::testing {
namespace {

constexpr const char *kCsv =
    "KLN,NATHAN ROAD,TST,00201,CHUNGKING MANSIONS,,,36,,44,COM,"
    "36 NATHAN RD TSIM SHA TSUI\n"
    "KLN,NATHAN ROAD,YMT,00202,,O,,301,,399,STR,301 NATHAN RD YAU MA TEI\n"
    "KLN,CANTON ROAD,TST,00301,,E,,2,,60,STR,2 CANTON RD TSIM SHA TSUI\n"
    "KLN,MIRADOR MANSION,TST,00501,,,,,,,RES,NATHAN ROAD\n"
    "HK,QUEEN'S ROAD CENTRAL,CEN,00101,,O,,1,,99,STR,"
    "1 QUEEN'S RD CENTRAL CENTRAL\n";

std::string address(const std::string &premno, const std::string &street,
                    const std::string &bldg, const std::string &region) {
  std::string r = blank_record(HKINREC_SIZE);
  put(r, in::premno, premno);
  put(r, in::street, street);
  put(r, in::bldg, bldg);
  put(r, in::region, region);
  return r;
}

class Dispatcher : public ::testing::Test {
 protected:
  void SetUp() override {
    db_ = std::make_unique<TestDb>(kCsv, "20261101");
    report_ = db_->dir() + "/report.txt";
  }
  void TearDown() override {
    if (h_.mcb != nullptr) call("C", "", "L");
  }

  // One hk_mtci call; returns the output record.
  std::string call(const char *type, const std::string &in,
                   const char *options = "") {
    std::string out(HKOUTREC_SIZE, '#');
    hk_mtci(type, &h_, in.c_str(), out.data(), options, nullptr, "LINE ONE",
            nullptr, nullptr, nullptr, nullptr, nullptr, report_.c_str(),
            db_->level1().c_str(), db_->level2().c_str(),
            db_->basedata().c_str(), names_.data(), recs_.data());
    return out;
  }
  std::string open(const char *options = "") {
    return call("O", std::string(HKINREC_SIZE, ' '), options);
  }
  std::string block() const {
    return std::string(reinterpret_cast<const char *>(h_.mcb), sizeof(HKMCB));
  }

  std::unique_ptr<TestDb> db_;
  std::string report_;
  HKHANDLE h_{};
  std::vector<char> names_ = std::vector<char>(30000, ' ');
  std::vector<char> recs_ = std::vector<char>(7500, ' ');
};

// Whatever step an open fails at, its block is refused by every call but the
// close: no search runs, nothing is counted, the statement shows no record.
// (A failure on LEVEL2 comes after LEVEL1 is open, and the seek failures of
// memory mode after both files are.) A FIFO held open for reading and
// writing cannot be positioned.
TEST_F(Dispatcher, CallsAfterAFailedOpenAreRefused) {
  const std::string fifo = db_->dir() + "/fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const int fifo_fd = ::open(fifo.c_str(), O_RDWR | O_NONBLOCK);
  ASSERT_GE(fifo_fd, 0);
  const std::string l1 = db_->level1(), l2 = db_->level2(),
                    bd = db_->basedata(), none = "/nonexistent/file";
  const struct {
    char code;
    const char *options;
    const std::string &level1, &level2, &basedata;
  } cases[] = {
      {'6', "", l1, l2, none},   {'7', "", none, l2, bd},
      {'8', "", l1, none, bd},   {'4', "LM", l1, fifo, bd},
      {'5', "LM", l1, l2, fifo},
  };
  const std::string in = address("40", "NATHAN ROAD", "", "KLN");
  for (const auto &c : cases) {
    SCOPED_TRACE(std::string(1, c.code));
    std::string out(HKOUTREC_SIZE, '#');
    hk_mtci("O", &h_, nullptr, out.data(), c.options, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, c.level1.c_str(),
            c.level2.c_str(), c.basedata.c_str(), nullptr, nullptr);
    EXPECT_EQ(out, c.code + blank_record(HKOUTREC_SIZE - 1));
    ASSERT_NE(h_.mcb, nullptr);
    for (const char *type : {"P", "D", "R"}) {
      EXPECT_EQ(call(type, in)[0], 'A') << type;
    }
    EXPECT_EQ(h_.mcb->nread, 0);
    call("C", in);
    EXPECT_EQ(h_.mcb, nullptr);
    EXPECT_EQ(statement_line(read_file(report_), 27).substr(60, 2), "0 ");
  }
  ::close(fifo_fd);
}

TEST_F(Dispatcher, BlankRecordHasNoRegionKey) {
  ASSERT_EQ(open()[0], '0');
  std::string out = call("P", blank_record(HKINREC_SIZE));
  std::string expected = blank_record(HKOUTREC_SIZE);
  expected[out::retcode.off] = '0';
  expected[out::matchstat.off] = '1';
  expected[out::grade.off] = '9';
  EXPECT_EQ(out, expected);
}

TEST_F(Dispatcher, DAndRAnswerLikeP) {
  ASSERT_EQ(open()[0], '0');
  std::vector<std::string> inputs = {
      address("40", "NATHAN ROAD", "", "KLN"),
      address("12", "CANTON RD", "", "KLN"),
      address("999", "NATHAN ROAD", "MIRADOR MANSION", "KLN"),
      address("7", "QUEENS ROAD CENTRAL", "", "HK"),
      address("7", "NOWHERE ROAD", "", "HK"),
  };
  for (const std::string &in : inputs) {
    std::string p = call("P", in);
    EXPECT_EQ(call("D", in), p);
    EXPECT_EQ(call("R", in), p);
    EXPECT_EQ(call("R", in, "LM"), p) << "memory-mode copy";
  }
  EXPECT_EQ(h_.mcb->nread, 10);  // "R" counts in its copies only
}

TEST_F(Dispatcher, PrivateCopyLeavesWarmCachesAlone) {
  for (const char *options : {"", "NM"}) {
    ASSERT_EQ(open(options)[0], '0');
    std::string in = address("40", "NATHAN ROAD", "", "KLN");
    std::string p = call("P", in);
    ASSERT_NE(h_.mcb->lvl2tab, nullptr) << "the search keeps its street table";
    std::string before = block();
    for (const char *r_options : {"", "LM", "Lm"}) {
      EXPECT_EQ(call("R", in, r_options), p);
      EXPECT_EQ(call("R", address("2", "CANTON ROAD", "", "KLN"), r_options)[0],
                '1');
      EXPECT_EQ(block(), before) << options << "/" << r_options;
    }
    // The instance still searches from its own caches.
    EXPECT_EQ(call("P", in), p);
    call("C", in, "L");
  }
}

TEST_F(Dispatcher, BuildingNameFindsTheEstateWhenTheStreetFails) {
  ASSERT_EQ(open()[0], '0');
  std::string in = address("999", "NATHAN ROAD", "MIRADOR MANSION", "KLN");
  std::string out = call("P", in);
  EXPECT_EQ(out[out::matchstat.off], '0');
  EXPECT_EQ(std::string(field_view(out.data(), out::refid)), "00501");
  EXPECT_EQ(std::string(field_view(out.data(), out::premno)), "        ")
      << "the second search ran without the premise number";
  EXPECT_EQ(out[out::premchg.off], 'Y');
  EXPECT_EQ(out[out::streetchg.off], 'Y');
  EXPECT_EQ(h_.mcb->nmatched, 1);
}

TEST_F(Dispatcher, StatementIsDatedTodayInUtc) {
  ASSERT_EQ(open()[0], '0');
  ASSERT_EQ(call("P", address("12", "CANTON ROAD", "", "KLN"))[0], '1');
  char before[11], after[11];
  format_processing_date(std::time(nullptr), before);
  call("C", blank_record(HKINREC_SIZE), "");
  format_processing_date(std::time(nullptr), after);
  EXPECT_EQ(h_.mcb, nullptr);
  std::string page = read_file(report_);
  ASSERT_EQ(page.size(), 2708u);
  std::string shown = statement_line(page, 29).substr(28, 10);
  EXPECT_TRUE(shown == before || shown == after) << shown;
  EXPECT_EQ(statement_line(page, 13).substr(28, 8), "20261101");
  EXPECT_EQ(statement_line(page, 27).substr(60, 2), "1 ");
  EXPECT_EQ(statement_line(page, 31).substr(60, 7), "100.00%");
}

}  // namespace
}  // namespace orlo::testing
