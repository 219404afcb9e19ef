// A bounds-checked walk over the three reference files in file order:
// LEVEL1 records, each region's LEVEL2 segment, each street's BASEDATA
// block and its packed records. Every structural fault met on the way is
// reported with its file and byte offset; the walk never reads outside the
// images, however damaged they are, and skips what a fault makes unreadable.
#ifndef ORLO_TOOLS_REFDB_WALK_H
#define ORLO_TOOLS_REFDB_WALK_H

#include <cstdint>
#include <string>
#include <string_view>

#include "lib/packed_record_codec.h"

namespace orlo::tools {

// The whole contents of the three files.
struct RefdbImages {
  std::string level1;
  std::string level2;
  std::string basedata;
};

// Reads LEVEL1, LEVEL2 and BASEDATA of dir. False with *error naming the
// file when one cannot be read.
bool load_reference_images(const std::string &dir, RefdbImages *images,
                           std::string *error);

struct WalkTotals {
  uint64_t regions = 0;
  uint64_t streets = 0;
  uint64_t records = 0;
  std::string date;  // the BASEDATA header (shorter when the file is)
};

class RefdbVisitor {
 public:
  virtual ~RefdbVisitor() = default;
  // file is "LEVEL1", "LEVEL2" or "BASEDATA".
  virtual void fault(std::string_view file, uint64_t offset,
                     const std::string &message) = 0;
  // A record that decoded cleanly. region is the key without its padding.
  virtual void record(std::string_view region, std::string_view street,
                      const refdb::UnpackedFields &fields) {
    (void)region, (void)street, (void)fields;
  }
};

void walk_reference_images(const RefdbImages &images, RefdbVisitor *visitor,
                           WalkTotals *totals);

}  // namespace orlo::tools

#endif  // ORLO_TOOLS_REFDB_WALK_H
