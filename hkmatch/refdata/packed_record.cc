// Packed base records: decoding one field item (hk_stsd) and unpacking a
// whole record into an HKBASEREC (hk_unpk, and the bounded unpack_checked
// that the search uses on data read from BASEDATA).
#include "hkmatch/refdata/packed_record.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "hkmatch/refdata/reference_access.h"

namespace orlo {

namespace {

// Layout of a packed record: length byte, two presence bytes, one unused
// byte, then the items of the present fields in field order.
constexpr size_t kPresence1 = 1;
constexpr size_t kPresence2 = 2;
constexpr size_t kFirstItem = 4;
static_assert(kMinRecordLength == kFirstItem);

// Item header: the top three bits give the type, the low five the number of
// data bytes that follow.
constexpr unsigned char kLengthMask = 0x1F;

enum class ItemType { kText, kSmall, kNumber, kLong, kUnknown };

// The tests are made in this order because the type bits overlap: 111 is
// also 11x, and 11x is also 1xx.
ItemType item_type(unsigned char header) {
  if ((header & 0xE0) == 0xE0) return ItemType::kText;
  if ((header & 0xC0) == 0xC0) return ItemType::kSmall;
  if ((header & 0x80) != 0) return ItemType::kNumber;
  if ((header & 0x60) == 0x60) return ItemType::kLong;
  return ItemType::kUnknown;
}

size_t data_length(unsigned char header) {
  return header & kLengthMask;
}

// Bytes that decoding reads after the header: a number is read at its own
// width whatever the header's length says.
size_t bytes_read(unsigned char header) {
  switch (item_type(header)) {
    case ItemType::kSmall:
      return 1;
    case ItemType::kNumber:
      return 2;
    case ItemType::kLong:
      return 4;
    default:
      return data_length(header);
  }
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
      std::snprintf(text, 32, "%d", static_cast<int>(d[0]));
      return;
    case ItemType::kNumber:
      std::snprintf(text, 32, "%d", static_cast<int>((d[0] << 8) | d[1]));
      return;
    case ItemType::kLong: {
      uint32_t v = (static_cast<uint32_t>(d[0]) << 24) |
                   (static_cast<uint32_t>(d[1]) << 16) |
                   (static_cast<uint32_t>(d[2]) << 8) | d[3];
      std::snprintf(text, 32, "%u", static_cast<unsigned>(v));
      return;
    }
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
constexpr FieldSlot kFields[10] = {
    ORLO_SLOT(brefcode), ORLO_SLOT(brefid),  ORLO_SLOT(bbldg),
    ORLO_SLOT(bparity),  ORLO_SLOT(bqual1),  ORLO_SLOT(blotext),
    ORLO_SLOT(bqual2),   ORLO_SLOT(bhitext), ORLO_SLOT(bfld9),
    ORLO_SLOT(baddr),
};
#undef ORLO_SLOT

// Field 9 keeps at most four characters, whatever its item holds.
constexpr size_t kField9Kept = 4;

bool field_present(const unsigned char *rec, int field) {
  if (field < 8) return (rec[kPresence1] >> field) & 1;
  return (rec[kPresence2] >> (field - 8)) & 1;
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
  size_t pos = kFirstItem;
  char work[32];
  for (int field = 0; field < 10; ++field) {
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
  r->bfld9[kField9Kept] = '\0';
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
  if (out == nullptr || rec == nullptr || avail < kMinRecordLength)
    return false;
  // The length byte is a signed byte: 128 and above are negative lengths.
  int length = static_cast<signed char>(rec[0]);
  if (length < static_cast<int>(kMinRecordLength) ||
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
