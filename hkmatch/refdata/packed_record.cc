// Packed base records: decoding one field item (hk_stsd) and unpacking a
// whole record into an HKBASEREC (hk_unpk, and the bounded unpack_checked
// that the search uses on data read from BASEDATA).
#include "hkmatch/refdata/packed_record.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "common/byte_order.h"
#include "hkmatch/refdata/reference_access.h"
#include "hkmatch/refdata/reference_format.h"

namespace orlo {

namespace {

using refdb::item_type;
using refdb::ItemType;

size_t data_length(unsigned char header) {
  return header & refdb::kItemLengthMask;
}

// Bytes that decoding reads after the header: a number is read at its own
// width whatever the header's length says.
size_t bytes_read(unsigned char header) {
  const ItemType type = item_type(header);
  if (type == ItemType::kText || type == ItemType::kUnknown) {
    return data_length(header);
  }
  return refdb::number_width(type);
}

// The decimal text of v and its NUL, as "%u" writes it (at most 11 bytes).
void write_decimal(uint32_t v, char *text) {
  char *end = std::to_chars(text, text + 10, v).ptr;
  *end = '\0';
}

// Decodes one item into text (at least 32 bytes); unknown types give the
// empty string.
void decode_item(const unsigned char *item, char *text) {
  const unsigned char *d = item + 1;
  switch (item_type(item[0])) {
    case ItemType::kText: {
      size_t n = data_length(item[0]);
      std::memcpy(text, d, n);
      text[n] = '\0';
      return;
    }
    case ItemType::kSmall:
      write_decimal(d[0], text);
      return;
    case ItemType::kNumber:
      write_decimal(load_be16(d), text);
      return;
    case ItemType::kLong:
      write_decimal(load_be32(d), text);
      return;
    case ItemType::kUnknown:
      text[0] = '\0';
      return;
  }
}

// Where each of the ten fields goes: its HKBASEREC member and its width.
struct FieldSlot {
  size_t offset;
  size_t size;
};

#define ORLO_SLOT(member)                                  \
  FieldSlot {                                              \
    offsetof(HKBASEREC, member), sizeof(HKBASEREC::member) \
  }
constexpr FieldSlot kFields[refdb::kPackedFields] = {
    ORLO_SLOT(brefcode), ORLO_SLOT(brefid),  ORLO_SLOT(bbldg),
    ORLO_SLOT(bparity),  ORLO_SLOT(bqual1),  ORLO_SLOT(blotext),
    ORLO_SLOT(bqual2),   ORLO_SLOT(bhitext), ORLO_SLOT(bfld9),
    ORLO_SLOT(baddr),
};
#undef ORLO_SLOT

bool field_present(const unsigned char *rec, int field) {
  if (field < 8) return (rec[refdb::kPresence1At] >> field) & 1;
  return (rec[refdb::kPresence2At] >> (field - 8)) & 1;
}

// Copies text into a field, cut to the field's width.
void store_text(HKBASEREC *out, const FieldSlot &slot, const char *text) {
  char *dst = reinterpret_cast<char *>(out) + slot.offset;
  size_t n = strnlen(text, slot.size - 1);
  std::memcpy(dst, text, n);
  dst[n] = '\0';
}

// Step 1: the ten fields. limit is the record's length, or SIZE_MAX when the
// caller vouches for the record; with a limit, an item that would be read
// past it, a number whose item is narrower than the number, and an item of
// an unknown type make the record malformed.
bool unpack_fields(HKBASEREC *out, const unsigned char *rec, size_t limit) {
  const bool bounded = limit != SIZE_MAX;
  size_t pos = refdb::kFirstItemAt;
  char work[32];
  for (int field = 0; field < static_cast<int>(refdb::kPackedFields); ++field) {
    const FieldSlot &slot = kFields[field];
    if (!field_present(rec, field)) {
      store_text(out, slot, "");
      continue;
    }
    if (bounded) {
      if (pos >= limit) return false;
      unsigned char header = rec[pos];
      if (item_type(header) == ItemType::kUnknown) return false;
      // A number shorter than its width would be read into the next item.
      if (data_length(header) < bytes_read(header)) return false;
      if (data_length(header) > limit - pos - 1) return false;
    }
    decode_item(rec + pos, work);
    store_text(out, slot, work);
    pos += data_length(rec[pos]) + 1;
  }
  return true;
}

void parse_numbers(HKBASEREC *r) {
  r->blorc =
      hk_cvtr(r->blotext, &r->blonum, &r->blotyp, &r->blosub, &r->blosubtyp);
  r->bhirc =
      hk_cvtr(r->bhitext, &r->bhinum, &r->bhityp, &r->bhisub, &r->bhisubtyp);
}

template <typename T>
void exchange(T &a, T &b) {
  T t = a;
  a = b;
  b = t;
}

// Step 3: a plain numeric range written high to low is put in order. A
// second part that is a number or letters makes the order ambiguous, so
// such ranges are left as they are.
void order_range(HKBASEREC *r) {
  auto plain = [](char kind, char subkind) {
    return kind == 'N' && subkind != 'N' && subkind != 'A';
  };
  if (!plain(r->blotyp, r->blosubtyp) || !plain(r->bhityp, r->bhisubtyp))
    return;
  if (r->blonum <= r->bhinum) return;
  exchange(r->blonum, r->bhinum);
  exchange(r->blosub, r->bhisub);
  exchange(r->blosubtyp, r->bhisubtyp);
  char text[sizeof r->blotext];
  std::memcpy(text, r->blotext, sizeof text);
  std::memcpy(r->blotext, r->bhitext, sizeof text);
  std::memcpy(r->bhitext, text, sizeof text);
}

char side_of(const char *parity) {
  if (parity[0] == 'E') return 'E';
  if (parity[0] == 'O') return 'O';
  return 'B';
}

// Steps 2 to 6 after the fields are in place. bscore, bcand and bpen belong
// to the search and the comparison and are not touched.
void finish_record(HKBASEREC *r) {
  parse_numbers(r);
  order_range(r);
  r->bfld9[refdb::kField9Kept] = '\0';
  r->bside = side_of(r->bparity);
  r->bmscore = 0;
}

bool unpack(HKBASEREC *out, const unsigned char *rec, size_t limit) {
  if (!unpack_fields(out, rec, limit)) return false;
  finish_record(out);
  return true;
}

}  // namespace

bool unpack_checked(HKBASEREC *out, const unsigned char *rec, size_t avail) {
  if (out == nullptr || rec == nullptr || avail < refdb::kMinRecordBytes)
    return false;
  // The length byte is a signed byte: 128 and above are negative lengths.
  int length = static_cast<signed char>(rec[0]);
  if (length < static_cast<int>(refdb::kMinRecordBytes) ||
      static_cast<size_t>(length) > avail)
    return false;
  if (!unpack(out, rec, static_cast<size_t>(length))) return false;
  ++access_counters().unpacks;
  return true;
}

}  // namespace orlo

extern "C" {

void hk_stsd(const unsigned char *item, char *text) {
  orlo::decode_item(item, text);
}

void hk_unpk(HKBASEREC *rec, const unsigned char *packed) {
  orlo::unpack(rec, packed, SIZE_MAX);
}

}  // extern "C"
