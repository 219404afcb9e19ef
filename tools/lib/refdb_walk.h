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

// The kinds of structural fault, in the order a report lists them.
enum class FaultKind {
  kFileLength,    // a file too short or not in whole units
  kLevel1,        // LEVEL1 records: partial, blank or out-of-order keys
  kSegment,       // segments that LEVEL1 places outside LEVEL2
  kStreetRecord,  // LEVEL2 street records: short, bad names, out of order
  kBlock,         // blocks that LEVEL2 places outside BASEDATA
  kRecord,        // packed records in BASEDATA that do not decode
  kCount,         // counts that disagree with what was found
};
inline constexpr size_t kFaultKinds = 7;

// What faults of a kind are, for the headings of a report: "blocks
// outside BASEDATA".
std::string_view fault_kind_title(FaultKind kind);

class RefdbVisitor {
 public:
  virtual ~RefdbVisitor() = default;
  // file is "LEVEL1", "LEVEL2" or "BASEDATA".
  virtual void fault(FaultKind kind, std::string_view file, uint64_t offset,
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
