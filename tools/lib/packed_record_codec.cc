#include "lib/packed_record_codec.h"

#include <cstdint>
#include <cstdio>
#include <utility>

#include "common/byte_order.h"

namespace orlo::tools::refdb {

namespace {

// True when text is "0" or a decimal number without leading zeros that fits
// 32 bits: only such texts decode back to themselves from binary.
bool canonical_number(std::string_view text, uint32_t *value) {
  if (text.empty() || text.size() > 10) return false;
  if (text[0] == '0' && text.size() > 1) return false;
  uint64_t v = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + static_cast<uint64_t>(c - '0');
  }
  if (v > UINT32_MAX) return false;
  *value = static_cast<uint32_t>(v);
  return true;
}

bool field_present(const unsigned char *rec, size_t field) {
  return field < 8 ? (rec[1] >> field & 1) != 0 : (rec[2] >> (field - 8) & 1);
}

std::string field_name(size_t field) {
  return std::string(kColumnNames[kFirstPackedColumn + field]);
}

size_t fail(UnpackFault *fault, size_t offset, std::string message) {
  fault->offset = offset;
  fault->message = std::move(message);
  return 0;
}

// Decodes the data of one item whose header h and n data bytes are known to
// lie inside the record. Returns false when the type or length is wrong.
bool decode_item(const unsigned char *item, std::string *text,
                 std::string *why) {
  unsigned char h = item[0];
  size_t n = h & kItemLengthMask;
  const unsigned char *d = item + 1;
  const ItemType type = item_type(h);
  if (type == ItemType::kText) {
    text->assign(reinterpret_cast<const char *>(d), n);
    if (text->find('\0') != std::string::npos) {
      *why = "text item holds a NUL byte";
      return false;
    }
    return true;
  }
  if (type == ItemType::kUnknown) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "unknown item type 0x%02X", h);
    *why = buf;
    return false;
  }
  const size_t want = number_width(type);
  const uint32_t value = want == 1   ? d[0]
                         : want == 2 ? load_be16(d)
                                     : load_be32(d);
  if (n != want) {
    *why = "numeric item of " + std::to_string(n) + " data bytes, expected " +
           std::to_string(want);
    return false;
  }
  *text = std::to_string(value);
  return true;
}

}  // namespace

void append_item(std::string *out, std::string_view text) {
  uint32_t v;
  if (!canonical_number(text, &v)) {
    out->push_back(static_cast<char>(kTextItem | text.size()));
    out->append(text);
  } else if (v <= 0xFF) {
    out->push_back(static_cast<char>(kSmallItem));
    out->push_back(static_cast<char>(v));
  } else if (v <= 0xFFFF) {
    out->push_back(static_cast<char>(kNumberItem));
    append_be16(out, v);
  } else {
    out->push_back(static_cast<char>(kLongItem));
    append_be32(out, v);
  }
}

size_t append_packed_record(std::string *out, const PackedFields &fields) {
  size_t start = out->size();
  unsigned presence = 0;
  for (size_t f = 0; f < kPackedFields; ++f)
    if (!fields[f].empty()) presence |= 1u << f;
  out->push_back('\0');  // length, set below
  out->push_back(static_cast<char>(presence & 0xFF));
  out->push_back(static_cast<char>(presence >> 8));
  out->push_back('\0');
  for (std::string_view text : fields)
    if (!text.empty()) append_item(out, text);
  size_t len = out->size() - start;
  (*out)[start] = static_cast<char>(len);
  return len;
}

size_t unpack_record(const unsigned char *rec, size_t avail,
                     UnpackedFields *fields, UnpackFault *fault) {
  if (avail < kMinRecordBytes)
    return fail(fault, 0,
                "record header needs 4 bytes, " + std::to_string(avail) +
                    " left in the block");
  size_t len = rec[0];
  if (len < kMinRecordBytes || len > kMaxRecordBytes)
    return fail(fault, 0,
                "record length " + std::to_string(len) + " outside 4..127");
  if (len > avail)
    return fail(fault, 0,
                "record of " + std::to_string(len) +
                    " bytes runs past the "
                    "end of its block (" +
                    std::to_string(avail) + " left)");
  if ((rec[2] & ~3u) != 0) return fail(fault, 2, "unused presence bits set");
  if (rec[3] != 0) return fail(fault, 3, "reserved byte is not zero");
  size_t pos = kFirstItemAt;
  for (size_t f = 0; f < kPackedFields; ++f) {
    std::string &text = (*fields)[f];
    text.clear();
    if (!field_present(rec, f)) continue;
    if (pos >= len)
      return fail(
          fault, pos,
          "item of " + field_name(f) + " starts past the end of the record");
    size_t n = rec[pos] & kItemLengthMask;
    if (pos + 1 + n > len)
      return fail(
          fault, pos,
          "item of " + field_name(f) + " runs past the end of the record");
    std::string why;
    if (!decode_item(rec + pos, &text, &why))
      return fail(fault, pos, field_name(f) + ": " + why);
    if (text.size() > kUnpackedWidths[f])
      return fail(fault, pos,
                  field_name(f) + " decodes to " + std::to_string(text.size()) +
                      " bytes, more than " +
                      std::to_string(kUnpackedWidths[f]));
    pos += 1 + n;
  }
  if (pos != len)
    return fail(fault, pos,
                std::to_string(len - pos) + " bytes after the last item");
  return len;
}

}  // namespace orlo::tools::refdb
