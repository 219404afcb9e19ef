// The layout of the reference files LEVEL1, LEVEL2 and BASEDATA and of the
// reference CSV, shared by the builder, the dumper and the checker.
#ifndef ORLO_TOOLS_REFDB_FORMAT_H
#define ORLO_TOOLS_REFDB_FORMAT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orlo::tools::refdb {

// LEVEL2 and BASEDATA are read in units of this many bytes, so both files
// are padded with zero bytes to a whole number of units.
inline constexpr size_t kUnitBytes = 23200;

inline constexpr size_t kLevel1RecordBytes = 40;
inline constexpr size_t kKeyBytes = 30;          // LEVEL1 key, blank-padded
inline constexpr size_t kStreetOrderBytes = 31;  // streets sort padded to 31
inline constexpr size_t kLevel2FixedBytes = 10;  // before the street name
inline constexpr size_t kMaxNameBytes = 30;
inline constexpr size_t kDateBytes = 8;

inline constexpr size_t kRecordHeaderBytes = 4;
inline constexpr size_t kMinRecordBytes = 4;
inline constexpr size_t kMaxRecordBytes = 127;
inline constexpr uint32_t kMaxCount = 65535;  // streets, records (16 bits)

// CSV columns, in order. Columns 2..11 are the ten fields of a packed
// record (refcode .. address).
inline constexpr size_t kColumns = 12;
inline constexpr size_t kPackedFields = 10;
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

inline uint16_t get_be16(const unsigned char *p) {
  return static_cast<uint16_t>(p[0] << 8 | p[1]);
}
inline uint32_t get_be32(const unsigned char *p) {
  return static_cast<uint32_t>(p[0]) << 24 | static_cast<uint32_t>(p[1]) << 16 |
         static_cast<uint32_t>(p[2]) << 8 | p[3];
}
inline void put_be16(std::string *out, uint32_t v) {
  out->push_back(static_cast<char>(v >> 8 & 0xFF));
  out->push_back(static_cast<char>(v & 0xFF));
}
inline void put_be32(std::string *out, uint32_t v) {
  put_be16(out, v >> 16);
  put_be16(out, v & 0xFFFF);
}

// Compares a and b as texts padded with blanks to width bytes, as unsigned
// bytes (the order in which the matcher bisects keys and street names).
int compare_padded(std::string_view a, std::string_view b, size_t width);

// Number of zero bytes that bring size up to a whole number of units.
inline size_t unit_padding(uint64_t size) {
  return static_cast<size_t>((kUnitBytes - size % kUnitBytes) % kUnitBytes);
}

}  // namespace orlo::tools::refdb

#endif  // ORLO_TOOLS_REFDB_FORMAT_H
