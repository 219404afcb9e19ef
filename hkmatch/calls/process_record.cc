// Processing one address record: the search, a second search with the
// building name in the place of the street, the choice between the two
// results, the instance's counters and the change flags of the output.
#include <cstring>

#include "common/fixed_field.h"
#include "hkmatch/calls/call_dispatch.h"
#include "hkmatch/input/record_fields.h"
#include "orlo_codes.h"

namespace orlo {
namespace {

// The scratch the search is given besides the scratch area of the call.
constexpr int kSmallAreaSize = 30;

bool same_bytes(const char *a, FieldRef fa, const char *b, FieldRef fb,
                int32_t len) {
  return std::memcmp(a + fa.off, b + fb.off, static_cast<size_t>(len)) == 0;
}

bool accepted(const char *outrec) {
  return outrec[out::matchstat.off] == HKMS_ACCEPTED;
}

// Runs the search into `result`, which starts as blanks with '0' in byte 0.
void search_once(const CallArgs &a, HKMCB *mcb, const MatcherSteps &steps,
                 char *working_in, HKWORKREC *work, char *area, char *result) {
  std::memset(work, 0, sizeof *work);
  steps.pad(working_in, work, mcb);
  fill_blanks(result, HKOUTREC_SIZE);
  result[out::retcode.off] = HKRC_OK;
  char small_area[kSmallAreaSize];
  fill_blanks(small_area, sizeof small_area);
  steps.search(a.handle, work, result, working_in, a.namelist, a.reclist, 0,
               area, 0, small_area);
}

// A building name is worth a second search unless the first result is
// accepted and already carries the reference's own building name.
bool wants_second_attempt(const char *in_rec, const char *first) {
  if (in_rec[in::bldg.off] == kBlank) return false;
  if (!accepted(first)) return true;
  return first[out::bldgsrc.off] != 'Y';
}

// The building name becomes the street; building and premise number go.
void building_as_street(char *working_in) {
  std::memcpy(working_in + in::street.off, working_in + in::bldg.off,
              static_cast<size_t>(in::street.len));
  fill_blanks(working_in + in::bldg.off, static_cast<size_t>(in::bldg.len));
  fill_blanks(working_in + in::premno.off, static_cast<size_t>(in::premno.len));
}

// Whether the first result's street is the street of the second result's
// reference: its first 25 characters against the reference line.
bool same_street_as_reference(const char *first, const char *second) {
  return same_bytes(first, out::street, second, out::refline, out::refline.len);
}

// The second result wins only when it is accepted and does not contradict
// the first: for an accepted first result it must name another record of
// the same reference code, without a building name, on the first street (or
// with no reference line at all).
bool second_replaces_first(const char *first, const char *second) {
  if (!accepted(second)) return false;
  if (!accepted(first)) return same_street_as_reference(first, second);
  bool street_fits = same_street_as_reference(first, second) ||
                     second[out::refline.off] == kBlank;
  bool no_building = second[out::bldg.off] == kBlank;
  bool other_record =
      !same_bytes(second, out::refid, first, out::refid, out::refid.len);
  bool same_code =
      same_bytes(second, out::refcode, first, out::refcode, out::refcode.len);
  return street_fits && no_building && other_record && same_code;
}

struct ChangeTest {
  FieldRef in_field;
  FieldRef out_field;
  int32_t len;
  FieldRef flag;
};

// Each flag is set when any of its field pairs differs; a pair that is equal
// never clears a flag that another pair set.
constexpr ChangeTest kChangeTests[] = {
    {in::street, out::street, 30, out::streetchg},
    {in::unit, out::unit, 25, out::premchg},
    {in::premno, out::premno, 8, out::premchg},
    {in::district, out::district, 30, out::areachg},
    {in::region, out::region, 30, out::areachg},
};

// Compared with the caller's record, not with the working copy that the
// second attempt changed.
void set_change_flags(const char *in_rec, char *outrec) {
  for (const ChangeTest &t : kChangeTests) {
    if (!same_bytes(in_rec, t.in_field, outrec, t.out_field, t.len)) {
      outrec[t.flag.off] = 'Y';
    }
  }
}

}  // namespace

void process_record(const CallArgs &a, HKMCB *mcb, const MatcherSteps &steps,
                    char *area) {
  ++mcb->nread;
  char working_in[HKINREC_SIZE];
  std::memcpy(working_in, a.in_rec, sizeof working_in);
  HKWORKREC work;
  char result[HKOUTREC_SIZE];
  search_once(a, mcb, steps, working_in, &work, area, result);
  std::memcpy(a.out_rec, result, HKOUTREC_SIZE);

  if (wants_second_attempt(a.in_rec, a.out_rec)) {
    building_as_street(working_in);
    search_once(a, mcb, steps, working_in, &work, area, result);
    if (second_replaces_first(a.out_rec, result)) {
      std::memcpy(a.out_rec, result, HKOUTREC_SIZE);
    }
  }
  if (!accepted(a.out_rec)) return;
  ++mcb->nmatched;
  set_change_flags(a.in_rec, a.out_rec);
}

}  // namespace orlo
