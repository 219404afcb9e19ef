#include "lib/refdb_check.h"

namespace orlo::tools {

namespace {

class FaultCollector : public RefdbVisitor {
 public:
  FaultCollector(CheckReport *report, size_t max_faults)
      : report_(report), max_faults_(max_faults) {}

  void fault(std::string_view file, uint64_t offset,
             const std::string &message) override {
    if (report_->faults.size() < max_faults_)
      report_->faults.push_back(CheckFault{std::string(file), offset, message});
    ++report_->fault_count;
  }

 private:
  CheckReport *report_;
  size_t max_faults_;
};

}  // namespace

CheckReport check_reference_images(const RefdbImages &images,
                                   size_t max_faults) {
  CheckReport report;
  FaultCollector collector(&report, max_faults);
  walk_reference_images(images, &collector, &report.totals);
  return report;
}

std::string format_fault(const CheckFault &fault) {
  return fault.file + " offset " + std::to_string(fault.offset) + ": " +
         fault.message;
}

}  // namespace orlo::tools
