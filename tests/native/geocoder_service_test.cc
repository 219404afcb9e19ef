// The handle table under the JNI entry points: slots, limits, invalid
// handles, and instances used from several threads while others open and
// close.
#include "native/geocoder_service.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "hkmatch/refdata/reference_store.h"
#include "support/test_db.h"

namespace {

using orlo::native::CallArgs;

// Arguments of one call on the sample database, with the records it needs.
struct Call {
  std::string in = std::string(HKINREC_SIZE, ' ');
  std::string out = std::string(HKOUTREC_SIZE, ' ');
  std::string db = orlo::testing::sample_db_dir();
  std::string l1 = db + "/LEVEL1", l2 = db + "/LEVEL2", bd = db + "/BASEDATA";
  std::string options;

  CallArgs args(bool files = true) {
    CallArgs a;
    a.in_rec = in.data();
    a.out_rec = out.data();
    a.options = options.c_str();
    a.skip_base_date = "20261101";
    a.level1_path = files ? l1.c_str() : "/nonexistent/LEVEL1";
    a.level2_path = files ? l2.c_str() : "/nonexistent/LEVEL2";
    a.basedata_path = files ? bd.c_str() : "/nonexistent/BASEDATA";
    return a;
  }
  void address(const char *premno, const char *street, const char *region) {
    in.assign(HKINREC_SIZE, ' ');
    in.replace(HKIN_PREMNO_OFF, std::string(premno).size(), premno);
    in.replace(HKIN_STREET_OFF, std::string(street).size(), street);
    in.replace(HKIN_REGION_OFF, std::string(region).size(), region);
  }
};

int open_one(Call &c, const char *options = "L") {
  c.options = options;
  return orlo::native::open_geocoder(c.args());
}

void close_one(int handle) {
  Call c;
  c.options = "L";
  orlo::native::close_geocoder(handle, c.args());
}

// Slots are handed out lowest free first, up to 200; the 201st open prints
// the limit line, answers 'L' and gets -1.
TEST(GeocoderService, TwoHundredInstancesThenTheLimit) {
  Call c;
  std::vector<int> handles;
  for (int i = 0; i < kMaxGeocoders; ++i) handles.push_back(open_one(c));
  for (int i = 0; i < kMaxGeocoders; ++i) ASSERT_EQ(handles[i], i);
  ::testing::internal::CaptureStdout();
  c.out[0] = '0';
  EXPECT_EQ(open_one(c), -1);
  EXPECT_EQ(::testing::internal::GetCapturedStdout(),
            "\n Cannot run more than 200 HKGeocoders on one server");
  EXPECT_EQ(c.out[0], 'L');
  orlo::native::GivenArgs limit(c.args());
  ::testing::internal::CaptureStdout();
  EXPECT_EQ(orlo::native::open_geocoder(limit), -1);
  ::testing::internal::GetCapturedStdout();
  EXPECT_EQ(limit.asked(), orlo::native::kNeedOutRec);
  close_one(57);
  close_one(3);
  EXPECT_EQ(open_one(c), 3);
  EXPECT_EQ(open_one(c), 57);
  for (int h : handles) close_one(h);
  EXPECT_FALSE(orlo::native::handle_in_use(0));
}

// Each call obtains only what its call type reads or writes, so an argument
// it does not use can be missing or short (the JNI layer length-checks what
// is obtained): the limit only the output record, the open no input record
// nor list areas, "P" the list areas only in listing mode 3, the close no
// input record.
TEST(GeocoderService, CallsAskOnlyForWhatTheyUse) {
  using namespace orlo::native;
  Call c;
  c.options = "L";
  GivenArgs open_args(c.args());
  const int h = open_geocoder(open_args);
  ASSERT_GE(h, 0);
  EXPECT_EQ(open_args.asked(), kNeedOutRec | kNeedFiles);
  c.options = "3";
  GivenArgs listing_open(c.args());
  const int listing = open_geocoder(listing_open);
  ASSERT_GE(listing, 0);
  const struct {
    int handle;
    const char *type;
    unsigned asked;
  } cases[] = {
      {h, "P", kNeedInRec | kNeedOutRec},
      {h, "R", kNeedInRec | kNeedOutRec | kNeedFiles | kNeedReport},
      {listing, "P", kNeedInRec | kNeedOutRec | kNeedLists},
      {-1, "P", kNeedOutRec},
  };
  for (const auto &k : cases) {
    GivenArgs args(c.args());
    process_geocoder(k.handle, args, k.type);
    EXPECT_EQ(args.asked(), k.asked) << k.handle << k.type;
  }
  for (int handle : {h, listing}) {
    GivenArgs args(c.args());
    close_geocoder(handle, args);
    EXPECT_EQ(args.asked(), kNeedOutRec | kNeedReport);
  }
  GivenArgs closed(c.args());
  close_geocoder(h, closed);
  EXPECT_EQ(closed.asked(), 0u);
}

TEST(GeocoderService, FailedOpenHoldsItsSlotUntilClosed) {
  Call c;
  int h = orlo::native::open_geocoder(c.args(false));
  ASSERT_GE(h, 0);
  EXPECT_EQ(c.out[0], '6');
  EXPECT_TRUE(orlo::native::handle_in_use(h));
  close_one(h);
  EXPECT_FALSE(orlo::native::handle_in_use(h));
}

TEST(GeocoderService, InvalidHandlesAreAnsweredWithA) {
  Call c;
  int closed = open_one(c);
  close_one(closed);
  for (int h : {-1, kMaxGeocoders, 100000, closed}) {
    for (const char *type : {"P", "R"}) {
      c.out.assign(HKOUTREC_SIZE, ' ');
      orlo::native::process_geocoder(h, c.args(), type);
      EXPECT_EQ(c.out[0], 'A') << h << type;
      EXPECT_EQ(c.out.substr(1), std::string(HKOUTREC_SIZE - 1, ' '));
    }
    close_one(h);  // does nothing, and must not crash
  }
}

// Addresses of the sample database; their results on one thread are the
// reference for every concurrent run.
const std::vector<std::vector<const char *>> kAddresses = {
    {"8", "HENNESSY ROAD", "HK"},   {"2", "QUEEN'S ROAD CENTRAL", "HK"},
    {"8", "HENNESY RD", "HK"},      {"7", "CASTLE PEAK ROAD", "KLN"},
    {"7", "NO SUCH STREET", "KLN"}, {"22", "CANTON RD", "KLN"},
    {"22", "CANTON ROAD", "KLN"},   {"7", "DES VOEUX ROAD CENTRAL", "HK"},
};

std::vector<std::string> run_addresses(int handle, int rounds,
                                       const char *type) {
  Call c;
  std::vector<std::string> outs;
  for (int r = 0; r < rounds; ++r) {
    for (const auto &a : kAddresses) {
      c.address(a[0], a[1], a[2]);
      c.options = "L";
      orlo::native::process_geocoder(handle, c.args(), type);
      outs.push_back(c.out);
    }
  }
  return outs;
}

class GeocoderServiceThreads : public ::testing::TestWithParam<int> {};

// Workers process on instances of their own (half of them through private
// copies, half in memory mode), all sharing the reference stores of the
// sample files, while two more threads keep opening, using and closing
// instances: of the same files, and of a copy of them (other files, so
// another store). Every worker must see exactly the results of a
// single-threaded run, and the last close frees every store.
TEST_P(GeocoderServiceThreads, ProcessingRacesWithOpensClosesAndPrivateCopies) {
  const orlo::StoreCounts stores_before = orlo::store_counts();
  const std::string copy_dir = orlo::testing::make_temp_dir();
  for (const char *f : {"/LEVEL1", "/LEVEL2", "/BASEDATA"}) {
    std::filesystem::copy_file(orlo::testing::sample_db_dir() + f,
                               copy_dir + f);
  }
  Call c;
  int ref = open_one(c);
  const std::vector<std::string> expected = run_addresses(ref, 20, "P");
  close_one(ref);
  int matched = 0;
  for (const std::string &out : expected) matched += out[0] == '1';
  ASSERT_GE(matched, 20 * 5) << "the reference run must match most addresses";

  const int kWorkers = GetParam();
  std::vector<int> handles;
  for (int i = 0; i < kWorkers; ++i)
    handles.push_back(open_one(c, i % 2 ? "LM" : "L"));
  std::atomic<bool> stop{false};
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kWorkers; ++i) {
    // Even workers process, odd ones use private copies ("R") of theirs.
    const char *type = i % 2 ? "R" : "P";
    threads.emplace_back([&, i, type] {
      if (run_addresses(handles[i], 20, type) != expected) ++mismatches;
    });
  }
  for (const std::string &dir : {orlo::testing::sample_db_dir(), copy_dir}) {
    threads.emplace_back([&, dir] {
      while (!stop) {
        Call mine;
        mine.l1 = dir + "/LEVEL1", mine.l2 = dir + "/LEVEL2";
        mine.bd = dir + "/BASEDATA";
        int h = open_one(mine, "LM");
        if (run_addresses(h, 1, "P") !=
            std::vector<std::string>(expected.begin(),
                                     expected.begin() + kAddresses.size())) {
          ++mismatches;
        }
        close_one(h);
      }
    });
  }
  for (int i = 0; i < kWorkers; ++i) threads[i].join();
  stop = true;
  for (size_t i = kWorkers; i < threads.size(); ++i) threads[i].join();
  EXPECT_EQ(mismatches.load(), 0);
  for (int h : handles) close_one(h);
  EXPECT_EQ(orlo::store_counts().stores, stores_before.stores);
  std::filesystem::remove_all(copy_dir);
}

INSTANTIATE_TEST_SUITE_P(Workers, GeocoderServiceThreads,
                         ::testing::Values(2, 8, 16));

}  // namespace
