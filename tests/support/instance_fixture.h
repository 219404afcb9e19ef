// A geocoder instance opened on a small test database, driven through the
// dispatcher with the scripted search, for the tests of the "R" and "C"
// calls.
#ifndef ORLO_TESTS_SUPPORT_INSTANCE_FIXTURE_H
#define ORLO_TESTS_SUPPORT_INSTANCE_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "hkmatch/calls/call_dispatch.h"
#include "support/file_util.h"
#include "support/reference_files.h"
#include "support/scripted_search.h"
#include "support/test_db.h"

namespace orlo::testing {

inline constexpr const char *kSmallDbCsv =
    "HK,DES VOEUX ROAD CENTRAL,C01,00001,,B,,1,,99,,DES VOEUX ROAD CENTRAL\n"
    "KLN,NATHAN ROAD,K01,00002,CHUNGKING MANSIONS,B,,36,,44,,NATHAN ROAD\n"
    "KLN,NATHAN ROAD,K01,00003,,B,,1,,35,,NATHAN ROAD\n";

using testfiles::open_descriptors;

class InstanceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    script = &script_;
    db_ = std::make_unique<TestDb>(kSmallDbCsv, "20260102");
    report_ = db_->dir() + "/report.txt";
    level1_ = db_->level1();
    level2_ = db_->level2();
    basedata_ = db_->basedata();
    in_ = blank_record(HKINREC_SIZE);
    // The input that the default scripted result echoes unchanged.
    put(in_, in::premno, "12");
    put(in_, in::street, "NATHAN ROAD");
    put(in_, in::unit, "12/F FLAT A");
    put(in_, in::district, "YAU MA TEI");
    put(in_, in::region, "KLN");
    out_ = std::string(HKOUTREC_SIZE, '#');
  }
  void TearDown() override {
    if (handle_.mcb != nullptr) call("C", "L");
    script = nullptr;
  }

  // Runs one call on the instance with the scripted search.
  void call(const char *type, const char *options = "",
            const char *skip_date = nullptr) {
    CallArgs a = args(type, options);
    a.skip_base_date = skip_date;
    dispatch(a, kScripted);
  }
  CallArgs args(const char *type, const char *options) {
    CallArgs a;
    a.call_type = type;
    a.handle = &handle_;
    a.in_rec = in_.data();
    a.out_rec = out_.data();
    a.options = options;
    a.report_lines[0] = "TEST RUN";
    a.report_path = report_.c_str();
    a.level1_path = level1_.c_str();
    a.level2_path = level2_.c_str();
    a.basedata_path = basedata_.c_str();
    a.namelist = namelist_;
    a.reclist = reclist_;
    return a;
  }
  // Opens the instance; the paths may be changed before.
  void open(const char *options = "") { call("O", options); }
  std::string report() const { return read_file(report_); }
  bool report_written() const { return file_exists(report_); }
  HKMCB &mcb() { return *handle_.mcb; }

  std::unique_ptr<TestDb> db_;
  Script script_;
  HKHANDLE handle_{};
  std::string level1_, level2_, basedata_, report_;
  std::string in_, out_;
  char namelist_[30000] = {};
  char reclist_[7500] = {};
};

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_INSTANCE_FIXTURE_H
