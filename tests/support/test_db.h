// Reference databases for tests, built with the project's own builder from
// inline CSV into a fresh temporary directory that is removed at destruction.
#ifndef ORLO_TESTS_SUPPORT_TEST_DB_H
#define ORLO_TESTS_SUPPORT_TEST_DB_H

#include <string>
#include <string_view>

namespace orlo::testing {

class TestDb {
 public:
  // Builds the database from CSV rows; `csv` may omit the header line, which
  // is then added. Fails the current test (ADD_FAILURE) when the build fails.
  explicit TestDb(std::string_view csv, std::string date8 = "20260101");
  ~TestDb();
  TestDb(const TestDb &) = delete;
  TestDb &operator=(const TestDb &) = delete;

  const std::string &dir() const { return dir_; }
  std::string level1() const { return dir_ + "/LEVEL1"; }
  std::string level2() const { return dir_ + "/LEVEL2"; }
  std::string basedata() const { return dir_ + "/BASEDATA"; }

 private:
  std::string dir_;
};

// Path of the sample database that the build compiles from
// data/sample/reference.csv.
std::string sample_db_dir();

// A fresh temporary directory (removed by the caller or left in /tmp).
std::string make_temp_dir();

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_TEST_DB_H
