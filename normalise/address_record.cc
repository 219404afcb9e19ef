// The C routines of orlo_normalise.h: single texts, region names, and a
// whole address turned into an input record. No exception leaves them.
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "common/fixed_field.h"
#include "normalise/region_names.h"
#include "normalise/text_tidy.h"
#include "orlo_normalise.h"
#include "orlo_records.h"

namespace orlo::norm {
namespace {

// Where each field goes in the input record, under the name that faults
// give it (the column names of hkgeocode's input). The unit line of up to
// 30 characters is stored in two pieces: 25 in in_unit, 5 in in_unitext.
struct Place {
  std::string_view name;
  FieldRef head;
  FieldRef tail;  // width 0 when the field has one piece
};

constexpr Place kPlaces[ORLO_NF_COUNT] = {
    {"refcode", {HKIN_REFCODE_OFF, HKIN_REFCODE_LEN}, {0, 0}},
    {"premno", {HKIN_PREMNO_OFF, HKIN_PREMNO_LEN}, {0, 0}},
    {"street", {HKIN_STREET_OFF, HKIN_STREET_LEN}, {0, 0}},
    {"building", {HKIN_BLDG_OFF, HKIN_BLDG_LEN}, {0, 0}},
    {"unit",
     {HKIN_UNIT_OFF, HKIN_UNIT_LEN},
     {HKIN_UNITEXT_OFF, HKIN_UNITEXT_LEN}},
    {"extra", {HKIN_EXTRA_OFF, HKIN_EXTRA_LEN}, {0, 0}},
    {"district", {HKIN_DISTRICT_OFF, HKIN_DISTRICT_LEN}, {0, 0}},
    {"region", {HKIN_REGION_OFF, HKIN_REGION_LEN}, {0, 0}},
    {"mode", {HKIN_MODE_OFF, HKIN_MODE_LEN}, {0, 0}},
};

size_t width_of(const Place &p) {
  return static_cast<size_t>(p.head.len + p.tail.len);
}

int32_t set_fault(ORLO_NORM_FAULT *fault, int32_t status, int32_t field,
                  std::string_view reason) {
  if (fault == nullptr) return status;
  fault->status = status;
  fault->field = field;
  size_t n = std::min(reason.size(), sizeof fault->reason - 1);
  // Cut at a character boundary so that the reason stays valid UTF-8.
  while (n > 0 && n < reason.size() &&
         (static_cast<unsigned char>(reason[n]) & 0xC0) == 0x80)
    --n;
  std::memcpy(fault->reason, reason.data(), n);
  fault->reason[n] = '\0';
  return status;
}

std::string too_long(size_t got, size_t width) {
  return std::to_string(got) + " characters after tidying, at most " +
         std::to_string(width);
}

// Tidies field i into *text; on a fault fills *fault (reason prefixed with
// the field's name).
int32_t tidy_field(const char *const *fields, const size_t *lengths, int i,
                   std::string *text, ORLO_NORM_FAULT *fault) {
  std::string reason;
  std::string_view given(fields[i] == nullptr ? "" : fields[i], lengths[i]);
  int32_t st = tidy_text(given, text, &reason);
  if (st == ORLO_NORM_OK && text->size() > width_of(kPlaces[i])) {
    st = ORLO_NORM_TOO_LONG;
    reason = too_long(text->size(), width_of(kPlaces[i]));
  }
  if (st == ORLO_NORM_OK) return st;
  return set_fault(fault, st, i,
                   std::string(kPlaces[i].name) + ": " + std::string(reason));
}

void place(char *inrec, const Place &p, std::string_view text) {
  size_t head = std::min(text.size(), static_cast<size_t>(p.head.len));
  put_field(inrec, p.head, text.substr(0, head));
  if (p.tail.len > 0) put_field(inrec, p.tail, text.substr(head));
}

int32_t build_record(const char *const *fields, const size_t *lengths,
                     char *inrec, ORLO_NORM_FAULT *fault) {
  std::string texts[ORLO_NF_COUNT];
  for (int i = 0; i < ORLO_NF_COUNT; ++i) {
    if (int32_t st = tidy_field(fields, lengths, i, &texts[i], fault);
        st != ORLO_NORM_OK)
      return st;
  }
  // A region written out, or a district written in its place, becomes its
  // key; an empty region is taken from the district.
  std::string &region = texts[ORLO_NF_REGION];
  const char *key =
      region_of_place(region.empty() ? texts[ORLO_NF_DISTRICT] : region);
  if (key != nullptr) region = key;
  for (int i = 0; i < ORLO_NF_COUNT; ++i) place(inrec, kPlaces[i], texts[i]);
  return set_fault(fault, ORLO_NORM_OK, -1, "");
}

}  // namespace
}  // namespace orlo::norm

using orlo::norm::set_fault;

int32_t orlo_norm_text(const char *text, size_t len, char *out, size_t cap,
                       size_t *out_len, ORLO_NORM_FAULT *fault) {
  if ((text == nullptr && len > 0) || (out == nullptr && cap > 0) ||
      out_len == nullptr)
    return set_fault(fault, ORLO_NORM_BAD_CALL, -1,
                     "a required pointer is NULL");
  try {
    std::string tidied, reason;
    int32_t st =
        orlo::norm::tidy_text(std::string_view(text, len), &tidied, &reason);
    if (st != ORLO_NORM_OK) return set_fault(fault, st, -1, reason);
    *out_len = tidied.size();
    if (cap > 0) std::memcpy(out, tidied.data(), std::min(cap, tidied.size()));
    if (tidied.size() > cap)
      return set_fault(fault, ORLO_NORM_TOO_LONG, -1,
                       orlo::norm::too_long(tidied.size(), cap));
    return set_fault(fault, ORLO_NORM_OK, -1, "");
  } catch (const std::bad_alloc &) {
    return set_fault(fault, ORLO_NORM_NO_MEMORY, -1, "out of memory");
  }
}

size_t orlo_norm_upper(char *text, size_t len) {
  if (text == nullptr) return 0;
  size_t changed = 0;
  for (size_t i = 0; i < len; ++i) {
    auto c = static_cast<unsigned char>(text[i]);
    unsigned char up = orlo::norm::upper_latin1(c);
    changed += up != c;
    text[i] = static_cast<char>(up);
  }
  return changed;
}

const char *orlo_norm_region(const char *text, size_t len) {
  if (text == nullptr) return nullptr;
  try {
    return orlo::norm::region_of_spelling(std::string_view(text, len));
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}

const char *orlo_norm_district_region(const char *text, size_t len) {
  if (text == nullptr) return nullptr;
  try {
    return orlo::norm::region_of_place(std::string_view(text, len));
  } catch (const std::bad_alloc &) {
    return nullptr;
  }
}

const char *const *orlo_norm_region_keys(void) {
  return orlo::norm::kRegionKeys;
}

int32_t orlo_norm_address(const char *const *fields, const size_t *lengths,
                          char *inrec, ORLO_NORM_FAULT *fault) {
  if (fields == nullptr || lengths == nullptr || inrec == nullptr)
    return set_fault(fault, ORLO_NORM_BAD_CALL, -1,
                     "a required pointer is NULL");
  orlo::fill_blanks(inrec, HKINREC_SIZE);
  for (int i = 0; i < ORLO_NF_COUNT; ++i)
    if (fields[i] == nullptr && lengths[i] > 0)
      return set_fault(fault, ORLO_NORM_BAD_CALL, i,
                       "a field pointer is NULL with a length");
  try {
    // Every field is tidied before the first is placed: a fault leaves the
    // record blank.
    return orlo::norm::build_record(fields, lengths, inrec, fault);
  } catch (const std::bad_alloc &) {
    return set_fault(fault, ORLO_NORM_NO_MEMORY, -1, "out of memory");
  }
}

int64_t orlo_norm_many(const char *const *fields, const size_t *lengths,
                       size_t count, char *inrecs, int32_t *statuses) {
  if (count == 0) return 0;
  if (fields == nullptr || lengths == nullptr || inrecs == nullptr ||
      statuses == nullptr)
    return -1;
  int64_t tidied = 0;
  for (size_t i = 0; i < count; ++i) {
    statuses[i] = orlo_norm_address(fields + i * ORLO_NF_COUNT,
                                    lengths + i * ORLO_NF_COUNT,
                                    inrecs + i * HKINREC_SIZE, nullptr);
    if (statuses[i] == ORLO_NORM_OK) ++tidied;
  }
  return tidied;
}
