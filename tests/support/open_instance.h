// A geocoder instance opened through hk_mtci on a database directory and
// closed without a statement at the end of the scope.
#ifndef ORLO_TESTS_SUPPORT_OPEN_INSTANCE_H
#define ORLO_TESTS_SUPPORT_OPEN_INSTANCE_H

#include <string>

#include "orlo_matcher.h"
#include "orlo_records.h"

namespace orlo::testing {

class OpenInstance {
 public:
  explicit OpenInstance(const std::string &dir, const char *options = "") {
    std::string l1 = dir + "/LEVEL1", l2 = dir + "/LEVEL2",
                bd = dir + "/BASEDATA";
    char out[HKOUTREC_SIZE];
    hk_mtci("O", &handle_, nullptr, out, options, nullptr, nullptr, nullptr,
            nullptr, nullptr, nullptr, nullptr, nullptr, l1.c_str(), l2.c_str(),
            bd.c_str(), nullptr, nullptr);
    code_ = out[0];
  }
  ~OpenInstance() {
    if (handle_.mcb != nullptr) close("L", nullptr);
  }
  // Closes the instance; with options "" and a path, writing the accuracy
  // statement there.
  void close(const char *options, const char *report_path) {
    char out[HKOUTREC_SIZE];
    hk_mtci("C", &handle_, nullptr, out, options, nullptr, "TEST", nullptr,
            nullptr, nullptr, nullptr, nullptr, report_path, nullptr, nullptr,
            nullptr, nullptr, nullptr);
    handle_.mcb = nullptr;
  }
  OpenInstance(const OpenInstance &) = delete;
  OpenInstance &operator=(const OpenInstance &) = delete;

  char open_code() const { return code_; }
  HKHANDLE *handle() { return &handle_; }
  HKMCB &mcb() { return *handle_.mcb; }

 private:
  HKHANDLE handle_{};
  char code_ = ' ';
};

}  // namespace orlo::testing

#endif  // ORLO_TESTS_SUPPORT_OPEN_INSTANCE_H
