#include "splitter/line_record.h"

#include <cstdio>
#include <cstring>

#include "common/fixed_field.h"
#include "orlo_records.h"

namespace orlo::lines {
namespace {

// One field being filled: its text so far and its width.
struct Field {
  char text[HKINREC_SIZE];  // the first len bytes are the field's
  size_t len = 0;
  size_t width;

  // cppcheck-suppress uninitMemberVar ; text is written before it is read
  explicit Field(size_t w) : width(w) {}
  // Appends a word after a blank; false when it does not fit. An empty
  // word changes nothing.
  bool add(std::string_view word) {
    if (word.empty()) return true;
    size_t need = word.size() + (len > 0);
    if (len + need > width) return false;
    if (len > 0) text[len++] = ' ';
    std::memcpy(text + len, word.data(), word.size());
    len += word.size();
    return true;
  }
  std::string_view view() const { return {text, len}; }
};

// The fields that a part's words fill (the estate's parts and the words no
// part claimed share the extra line).
enum Slot {
  kPremnoSlot,
  kStreetSlot,
  kBuildingSlot,
  kUnitSlot,
  kDistrictSlot,
  kExtraSlot,
  kSlots,
  kNoSlot
};

constexpr Slot slot_of(Part p) {
  switch (p) {
    case Part::kPremno:
      return kPremnoSlot;
    case Part::kStreet:
      return kStreetSlot;
    case Part::kBuilding:
      return kBuildingSlot;
    case Part::kUnit:
      return kUnitSlot;
    case Part::kDistrict:
      return kDistrictSlot;
    case Part::kEstate:
    case Part::kExtra:
      return kExtraSlot;
    case Part::kRegion:
    case Part::kDropped:
      break;
  }
  return kNoSlot;
}

// Word i as placed: in a street or building that the reference data does
// not name, an abbreviated street or building type written out ("RD" as
// "ROAD", "E" after it as "EAST"), so that the matcher compares whole
// words; any other word as the line has it.
std::string_view placed_text(const Words &ws, const Reading &r, int i) {
  const Part part = r.part[i];
  if (part != Part::kStreet && part != Part::kBuilding) return ws.at[i].text;
  const bool after_type =
      i > 0 && r.part[i - 1] == part && street_type(ws.at[i - 1].canonical());
  std::string_view full = written_out_type(ws.at[i].text, after_type);
  return full.empty() ? ws.at[i].text : full;
}

}  // namespace

int32_t place_reading(const Words &ws, const Reading &r,
                      std::string_view region, bool as_written, char *inrec,
                      char (&why)[200]) {
  const std::string_view street_name = as_written ? "" : r.street_name;
  const std::string_view building_name = as_written ? "" : r.building_name;
  Field fields[kSlots] = {
      Field(HKIN_PREMNO_LEN),   Field(HKIN_STREET_LEN),
      Field(HKIN_BLDG_LEN),     Field(HKIN_UNIT_LEN + HKIN_UNITEXT_LEN),
      Field(HKIN_DISTRICT_LEN), Field(HKIN_EXTRA_LEN)};
  // A street or building of the reference data goes in as it spells it.
  fields[kStreetSlot].add(street_name);
  fields[kBuildingSlot].add(building_name);
  // The estate's parts lead the extra line, then what is left over.
  for (Part pass : {Part::kEstate, Part::kExtra}) {
    for (int i = 0; i < ws.count; ++i) {
      Slot s = slot_of(r.part[i]);
      if (s == kNoSlot || (s == kExtraSlot && r.part[i] != pass)) continue;
      if (s != kExtraSlot && pass == Part::kExtra) continue;
      if ((s == kStreetSlot && !street_name.empty()) ||
          (s == kBuildingSlot && !building_name.empty()))
        continue;
      std::string_view text =
          as_written ? ws.at[i].text : placed_text(ws, r, i);
      if (fields[s].add(text) || fields[kExtraSlot].add(text)) continue;
      fill_blanks(inrec, HKINREC_SIZE);
      std::snprintf(why, sizeof why,
                    "the line's words do not fit the fields of an input "
                    "record: no room for \"%.*s\" (the extra line holds %d "
                    "characters)",
                    static_cast<int>(ws.at[i].text.size()),
                    ws.at[i].text.data(), HKIN_EXTRA_LEN);
      return ORLO_LINE_TOO_LONG;
    }
  }
  fill_blanks(inrec, HKINREC_SIZE);
  put_field(inrec, {HKIN_PREMNO_OFF, HKIN_PREMNO_LEN},
            fields[kPremnoSlot].view());
  put_field(inrec, {HKIN_STREET_OFF, HKIN_STREET_LEN},
            fields[kStreetSlot].view());
  put_field(inrec, {HKIN_BLDG_OFF, HKIN_BLDG_LEN},
            fields[kBuildingSlot].view());
  std::string_view unit = fields[kUnitSlot].view();
  size_t head = std::min(unit.size(), static_cast<size_t>(HKIN_UNIT_LEN));
  put_field(inrec, {HKIN_UNIT_OFF, HKIN_UNIT_LEN}, unit.substr(0, head));
  put_field(inrec, {HKIN_UNITEXT_OFF, HKIN_UNITEXT_LEN}, unit.substr(head));
  put_field(inrec, {HKIN_EXTRA_OFF, HKIN_EXTRA_LEN}, fields[kExtraSlot].view());
  put_field(inrec, {HKIN_DISTRICT_OFF, HKIN_DISTRICT_LEN},
            fields[kDistrictSlot].view());
  put_field(inrec, {HKIN_REGION_OFF, HKIN_REGION_LEN}, region);
  why[0] = '\0';
  return ORLO_LINE_OK;
}

}  // namespace orlo::lines
