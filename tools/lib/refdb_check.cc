#include "lib/refdb_check.h"

#include <cstdio>

namespace orlo::tools {

namespace {

class FaultCollector : public RefdbVisitor {
 public:
  FaultCollector(CheckReport *report, size_t max_per_kind)
      : report_(report), max_per_kind_(max_per_kind) {}

  void fault(FaultKind kind, std::string_view file, uint64_t offset,
             const std::string &message) override {
    uint64_t &seen = report_->by_kind[static_cast<size_t>(kind)];
    if (seen++ < max_per_kind_)
      report_->faults.push_back(
          CheckFault{kind, std::string(file), offset, message});
    ++report_->fault_count;
  }

 private:
  CheckReport *report_;
  size_t max_per_kind_;
};

}  // namespace

std::string printable_text(std::string_view text) {
  std::string out;
  for (char ch : text) {
    auto c = static_cast<unsigned char>(ch);
    if (c >= 0x20 && c < 0x7F) {
      out.push_back(ch);
    } else {
      char buf[5];
      std::snprintf(buf, sizeof buf, "\\x%02X", c);
      out += buf;
    }
  }
  return out;
}

CheckReport check_reference_images(const RefdbImages &images,
                                   size_t max_per_kind) {
  CheckReport report;
  FaultCollector collector(&report, max_per_kind);
  walk_reference_images(images, &collector, &report.totals);
  return report;
}

std::string format_fault(const CheckFault &fault) {
  return fault.file + " offset " + std::to_string(fault.offset) + ": " +
         printable_text(fault.message);
}

}  // namespace orlo::tools
