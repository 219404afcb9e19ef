#include "lib/refdb_dump.h"

#include <array>
#include <string>

#include "lib/csv_writer.h"
#include "lib/refdb_format.h"

namespace orlo::tools {

namespace {

constexpr size_t kFlushBytes = 1u << 20;

class CsvDumper : public RefdbVisitor {
 public:
  explicit CsvDumper(const std::function<void(std::string_view)> &sink)
      : sink_(sink) {
    buf_.append(refdb::kHeaderLine);
    buf_.push_back('\n');
  }

  void fault(FaultKind, std::string_view, uint64_t,
             const std::string &) override {}

  void record(std::string_view region, std::string_view street,
              const refdb::UnpackedFields &fields) override {
    std::array<std::string_view, refdb::kColumns> row;
    row[0] = region;
    row[1] = street;
    for (size_t f = 0; f < refdb::kPackedFields; ++f)
      row[refdb::kFirstPackedColumn + f] = fields[f];
    append_csv_row(&buf_, row);
    if (buf_.size() >= kFlushBytes) flush();
  }

  void flush() {
    if (!buf_.empty()) sink_(buf_);
    buf_.clear();
  }

 private:
  const std::function<void(std::string_view)> &sink_;
  std::string buf_;
};

}  // namespace

void dump_reference_images(const RefdbImages &images,
                           const std::function<void(std::string_view)> &sink,
                           WalkTotals *totals) {
  CsvDumper dumper(sink);
  walk_reference_images(images, &dumper, totals);
  dumper.flush();
}

}  // namespace orlo::tools
