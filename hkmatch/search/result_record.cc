// The result record: fills the 300-byte output record at the end of a
// search. With a chosen reference record the output carries the reference's
// street, building, codes and address text beside the caller's own premise
// number, unit line, district and region; without one it echoes the input.
// Both cases compose two address lines.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "common/fixed_field.h"
#include "common/squeeze.h"
#include "hkmatch/input/record_fields.h"
#include "orlo_codes.h"
#include "orlo_fields.h"
#include "orlo_matcher.h"

namespace orlo {
namespace {

constexpr size_t kLineBufLen = 300;
constexpr size_t kAddrCopyLen = 250;
constexpr size_t kUnitLineLen = HKIN_UNIT_LEN + HKIN_UNITEXT_LEN;

// Mode of records whose building name stands in the street's place.
constexpr char kBuildingMode = '3';

// A work line on which the parts of an address line are laid out at fixed
// positions, then left-justified with their blank runs collapsed, so that
// the line reads as its parts separated by single blanks.
struct LineBuffer {
  std::array<char, kLineBufLen> text;

  LineBuffer() { fill_blanks(text.data(), text.size()); }

  void put(size_t pos, std::string_view part) {
    const size_t n = std::min(part.size(), text.size() - pos);
    std::copy_n(part.begin(), n, text.begin() + pos);
  }

  // The first 50 bytes that cm_lftadj over the whole line would give, done
  // in place: the line is longer than the field routines' fixed work area,
  // and only the width of an output line is ever used.
  std::string_view justified() {
    squeeze_prefix(text.data(), static_cast<int32_t>(text.size()),
                   HKOUT_LINE1_LEN);
    return {text.data(), HKOUT_LINE1_LEN};
  }
};

// The 30-character floor and unit line, joined from its two pieces.
std::array<char, kUnitLineLen> unit_line(const char *rec, FieldRef unit,
                                         FieldRef unitext) {
  std::array<char, kUnitLineLen> line;
  std::memcpy(line.data(), rec + unit.off, unit.len);
  std::memcpy(line.data() + unit.len, rec + unitext.off, unitext.len);
  return line;
}

std::string_view view(const std::array<char, kUnitLineLen> &line) {
  return {line.data(), line.size()};
}

std::string_view text_of(const char *s, size_t max) {
  return {s, strnlen(s, max)};
}

// Copies a text over the start of field f, cut to its width; the rest of
// the field stays as it was.
void put_text(char *out, FieldRef f, std::string_view text) {
  std::copy_n(text.begin(), std::min(text.size(), static_cast<size_t>(f.len)),
              out + f.off);
}

void copy_field(char *out, FieldRef to, const char *in, FieldRef from) {
  put_field(out, to, field_view(in, from));
}

// Fields that the output carries from the input in both cases.
void echo_input(const char *in, char *out) {
  copy_field(out, out::premno, in, in::premno);
  copy_field(out, out::unit, in, in::unit);
  copy_field(out, out::unitext, in, in::unitext);
  copy_field(out, out::district, in, in::district);
  copy_field(out, out::region, in, in::region);
  copy_field(out, out::mode, in, in::mode);
}

// The reference street name: the name of candidate bcand. An index outside
// the candidate list gives an empty name. The list holds at most one entry
// per street of the table, and no more than its capacity when the search
// has recorded one (a list built by hand may leave the capacity at 0).
std::string_view reference_street(const HKMCB *mcb, int32_t bcand) {
  if (mcb == nullptr || mcb->cands == nullptr || bcand < 0 ||
      bcand >= static_cast<int32_t>(mcb->lvl2cnt) ||
      (mcb->candcap > 0 && bcand >= mcb->candcap)) {
    return {};
  }
  const STREETENT *street = mcb->cands[bcand];
  if (street == nullptr || mcb->lvl2tab == nullptr || street < mcb->lvl2tab ||
      street >= mcb->lvl2tab + mcb->lvl2cnt) {
    return {};
  }
  return text_of(street->sname, sizeof street->sname - 1);
}

void building_mode_lines_with_ref(char *out, std::string_view sname) {
  LineBuffer first;
  first.put(0, field_view(out, out::street));
  first.put(31, field_view(out, out::premno));
  first.put(40, view(unit_line(out, out::unit, out::unitext)));
  put_field(out, out::line1, first.justified());
  LineBuffer second;
  second.put(0, sname);
  put_field(out, out::line2, second.justified());
}

// Premise number and street on one line; building and unit line on the
// other, followed by that first line when the record has an address text,
// which then takes the second line's place.
void street_lines_with_ref(char *out, const HKBASEREC &ref) {
  std::array<char, kAddrCopyLen> addr;
  fill_blanks(addr.data(), addr.size());
  const std::string_view addr_text = text_of(ref.baddr, sizeof ref.baddr);
  std::memcpy(addr.data(), addr_text.data(), addr_text.size());
  const bool has_addr = addr[0] != ' ';

  LineBuffer street;
  street.put(0, field_view(out, out::premno));
  street.put(9, field_view(out, out::street));
  const std::string_view street_line = street.justified();
  if (has_addr) {
    put_field(out, out::line1, street_line);
    put_field(out, out::line2, {addr.data(), HKOUT_LINE2_LEN});
  } else {
    put_field(out, out::line2, street_line);
  }

  LineBuffer building;
  building.put(0, field_view(out, out::bldg));
  building.put(31, view(unit_line(out, out::unit, out::unitext)));
  if (has_addr) building.put(62, field_view(out, out::line1));
  put_field(out, out::line1, building.justified());
}

void write_with_reference(const HKBASEREC &ref, const char *in,
                          const HKMCB *mcb, char *out) {
  char grade[16];
  std::snprintf(grade, sizeof grade, "%d", static_cast<int>(ref.bpen));
  out[out::grade.off] = grade[0];
  put_text(out, out::refcode, text_of(ref.brefcode, sizeof ref.brefcode));
  put_text(out, out::refid, text_of(ref.brefid, sizeof ref.brefid));
  echo_input(in, out);
  const std::string_view sname = reference_street(mcb, ref.bcand);
  put_text(out, out::street, sname);
  if (ref.bbldg[0] != '\0') {
    put_text(out, out::bldg, text_of(ref.bbldg, sizeof ref.bbldg));
    out[out::bldgsrc.off] = 'Y';
  } else {
    copy_field(out, out::bldg, in, in::bldg);
  }
  // The first 25 characters of the address text.
  put_text(out, out::refline, text_of(ref.baddr, sizeof ref.baddr));
  if (in[in::mode.off] == kBuildingMode) {
    copy_field(out, out::street, in, in::bldg);
    put_field(out, out::bldg, sname);
    building_mode_lines_with_ref(out, sname);
  } else {
    street_lines_with_ref(out, ref);
  }
}

void write_without_reference(const char *in, char *out) {
  out[out::grade.off] = '9';
  echo_input(in, out);
  copy_field(out, out::street, in, in::street);
  copy_field(out, out::bldg, in, in::bldg);
  const auto unit = unit_line(in, in::unit, in::unitext);
  if (in[in::mode.off] == kBuildingMode) {
    copy_field(out, out::street, in, in::bldg);
    LineBuffer first;
    first.put(0, field_view(out, out::street));
    first.put(31, field_view(in, in::premno));
    first.put(40, view(unit));
    put_field(out, out::line1, first.justified());
    // The street name goes into the second line as it stands.
    copy_field(out, out::line2, in, in::street);
  } else {
    LineBuffer street;
    street.put(0, field_view(in, in::premno));
    street.put(9, field_view(in, in::street));
    put_field(out, out::line2, street.justified());
    LineBuffer building;
    building.put(0, field_view(out, out::bldg));
    building.put(31, view(unit));
    put_field(out, out::line1, building.justified());
  }
}

// A blank first line gives its place to a second line that has text.
void finish_lines(char *out) {
  if (out[out::line2.off] != ' ' && out[out::line1.off] == ' ') {
    std::memcpy(out + out::line1.off, out + out::line2.off, out::line2.len);
    fill_blanks(out + out::line2.off, out::line2.len);
  }
}

}  // namespace
}  // namespace orlo

extern "C" void hk_fret(HKWORKREC * /*work*/, HKBASEREC *chosen,
                        const char *inrec, HKMCB *mcb, char *outrec) {
  using namespace orlo;
  const bool chose = outrec[out::retcode.off] == HKRC_REFERENCE;
  char &matchstat = outrec[out::matchstat.off];
  // Several records tied with different codes: none is written.
  const bool tied = matchstat == HKMS_TIE;
  if (chose && !tied) matchstat = HKMS_ACCEPTED;
  if (chose && !tied && chosen != nullptr) {
    write_with_reference(*chosen, inrec, mcb, outrec);
  } else {
    write_without_reference(inrec, outrec);
  }
  finish_lines(outrec);
}
