// The layout of the reference files LEVEL1, LEVEL2 and BASEDATA and of the
// packed base records in BASEDATA: the one definition that the matcher and
// the builder, checker and dumper of tools/lib share. Numbers in the files
// are unsigned and big-endian (common/byte_order.h).
#ifndef ORLO_HKMATCH_REFDATA_REFERENCE_FORMAT_H
#define ORLO_HKMATCH_REFDATA_REFERENCE_FORMAT_H

#include <cstddef>
#include <cstdint>

namespace orlo::refdb {

// Memory mode reads LEVEL2 and BASEDATA in units of this many bytes and
// leaves out a final partial unit, so the builder pads both to whole units.
inline constexpr size_t kUnitBytes = 23200;

// BASEDATA begins with the database date as 8 characters of text.
inline constexpr size_t kDateBytes = 8;

// LEVEL1: 40-byte records, a blank-padded key and the key's segment of
// LEVEL2. A record whose first four bytes are zero ends the index.
inline constexpr size_t kLevel1RecordBytes = 40;
inline constexpr size_t kKeyBytes = 30;
inline constexpr size_t kLevel1OffsetAt = 30;  // 4 bytes
inline constexpr size_t kLevel1LengthAt = 34;  // 4 bytes
inline constexpr size_t kLevel1CountAt = 38;   // 2 bytes: LEVEL2 records
inline constexpr size_t kEndRecordZeros = 4;

// LEVEL2: per street, its block of BASEDATA and its name with a NUL.
inline constexpr size_t kLevel2OffsetAt = 0;  // 4 bytes
inline constexpr size_t kLevel2LengthAt = 4;  // 4 bytes
inline constexpr size_t kLevel2CountAt = 8;   // 2 bytes: base records
inline constexpr size_t kLevel2FixedBytes = 10;
inline constexpr size_t kMaxNameBytes = 30;
// Keys and street names sort as texts padded with blanks to this width.
inline constexpr size_t kStreetOrderBytes = 31;
inline constexpr uint32_t kMaxCount = 65535;  // streets, records (16 bits)

// A packed base record: its length (a signed byte, this byte included), two
// presence bytes (fields 1-8, fields 9-10), an unused byte, then one item
// per present field in field order.
inline constexpr size_t kPresence1At = 1;
inline constexpr size_t kPresence2At = 2;
inline constexpr size_t kFirstItemAt = 4;
inline constexpr size_t kMinRecordBytes = kFirstItemAt;
inline constexpr size_t kMaxRecordBytes = 127;
inline constexpr size_t kPackedFields = 10;
// Field 9 keeps at most its first four characters when unpacked.
inline constexpr size_t kField9Kept = 4;

// An item: a header byte whose low five bits count the data bytes and whose
// top three bits give the type, tested in the order of item_type() because
// the type bits overlap (111 is also 11x, and 11x also 1xx).
inline constexpr unsigned char kItemLengthMask = 0x1F;
enum class ItemType { kText, kSmall, kNumber, kLong, kUnknown };
constexpr ItemType item_type(unsigned char header) {
  if ((header & 0xE0) == 0xE0) return ItemType::kText;
  if ((header & 0xC0) == 0xC0) return ItemType::kSmall;
  if ((header & 0x80) != 0) return ItemType::kNumber;
  if ((header & 0x60) == 0x60) return ItemType::kLong;
  return ItemType::kUnknown;
}
// The width a number item is read at, whatever its header's length says.
constexpr size_t number_width(ItemType type) {
  return type == ItemType::kSmall ? 1 : type == ItemType::kNumber ? 2 : 4;
}
// The header bytes the builder writes: text with its length, and numbers of
// one, two and four data bytes.
inline constexpr unsigned char kTextItem = 0xE0;
inline constexpr unsigned char kSmallItem = 0xC1;
inline constexpr unsigned char kNumberItem = 0x82;
inline constexpr unsigned char kLongItem = 0x64;
static_assert(item_type(kTextItem) == ItemType::kText &&
              item_type(kSmallItem) == ItemType::kSmall &&
              item_type(kNumberItem) == ItemType::kNumber &&
              item_type(kLongItem) == ItemType::kLong);

}  // namespace orlo::refdb

#endif  // ORLO_HKMATCH_REFDATA_REFERENCE_FORMAT_H
