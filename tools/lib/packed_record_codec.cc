#include "lib/packed_record_codec.h"

#include <cstdint>
#include <cstdio>
#include <utility>

namespace orlo::tools::refdb {

namespace {

constexpr unsigned char kTextType = 0xE0;
constexpr unsigned char kByteNumber = 0xC1;   // type 110, one data byte
constexpr unsigned char kShortNumber = 0x82;  // type 100, two data bytes
constexpr unsigned char kLongNumber = 0x64;   // type 011, four data bytes
constexpr unsigned char kLengthMask = 0x1F;

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
  size_t n = h & kLengthMask;
  const unsigned char *d = item + 1;
  size_t want;
  uint32_t value;
  if ((h & 0xE0) == 0xE0) {
    text->assign(reinterpret_cast<const char *>(d), n);
    if (text->find('\0') != std::string::npos) {
      *why = "text item holds a NUL byte";
      return false;
    }
    return true;
  } else if ((h & 0xC0) == 0xC0) {
    want = 1, value = d[0];
  } else if ((h & 0x80) != 0) {
    want = 2, value = get_be16(d);
  } else if ((h & 0x60) == 0x60) {
    want = 4, value = get_be32(d);
  } else {
    char buf[40];
    std::snprintf(buf, sizeof buf, "unknown item type 0x%02X", h);
    *why = buf;
    return false;
  }
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
    out->push_back(static_cast<char>(kTextType | text.size()));
    out->append(text);
  } else if (v <= 0xFF) {
    out->push_back(static_cast<char>(kByteNumber));
    out->push_back(static_cast<char>(v));
  } else if (v <= 0xFFFF) {
    out->push_back(static_cast<char>(kShortNumber));
    put_be16(out, v);
  } else {
    out->push_back(static_cast<char>(kLongNumber));
    put_be32(out, v);
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
  size_t pos = kRecordHeaderBytes;
  for (size_t f = 0; f < kPackedFields; ++f) {
    std::string &text = (*fields)[f];
    text.clear();
    if (!field_present(rec, f)) continue;
    if (pos >= len)
      return fail(
          fault, pos,
          "item of " + field_name(f) + " starts past the end of the record");
    size_t n = rec[pos] & kLengthMask;
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
