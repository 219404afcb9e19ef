// The reference CSV, shared by the builder, the dumper and the checker, and
// the layout of the reference files (the matcher's reference_format.h).
#ifndef ORLO_TOOLS_REFDB_FORMAT_H
#define ORLO_TOOLS_REFDB_FORMAT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "hkmatch/refdata/reference_format.h"

namespace orlo::tools::refdb {

// The file layout is the matcher's own.
using namespace ::orlo::refdb;

// CSV columns, in order. Columns 2..11 are the ten fields of a packed
// record (refcode .. address).
inline constexpr size_t kColumns = 12;
inline constexpr size_t kFirstPackedColumn = 2;
inline constexpr std::array<std::string_view, kColumns> kColumnNames = {
    "region", "street", "refcode", "refid", "building", "parity",
    "qual1",  "low",    "qual2",   "high",  "code9",    "address"};
inline constexpr std::array<size_t, kColumns> kColumnWidths = {
    30, 30, 3, 5, 30, 1, 12, 5, 12, 5, 3, 30};
inline constexpr std::string_view kHeaderLine =
    "region,street,refcode,refid,building,parity,qual1,low,qual2,high,code9,"
    "address";

// Widest text that each packed field may decode to, from the sizes of the
// HKBASEREC text areas less their terminator.
inline constexpr std::array<size_t, kPackedFields> kUnpackedWidths = {
    3, 5, 30, 1, 12, 5, 12, 5, 34, 30};

// Compares a and b as texts padded with blanks to width bytes, as unsigned
// bytes (the order in which the matcher bisects keys and street names).
int compare_padded(std::string_view a, std::string_view b, size_t width);

// Number of zero bytes that bring size up to a whole number of units.
inline size_t unit_padding(uint64_t size) {
  return static_cast<size_t>((kUnitBytes - size % kUnitBytes) % kUnitBytes);
}

}  // namespace orlo::tools::refdb

#endif  // ORLO_TOOLS_REFDB_FORMAT_H
