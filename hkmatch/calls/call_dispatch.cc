// Selection of the action of one call on the first character of its call
// type, and the checks that a call has an instance to work on.
//
// Calls that need an instance are refused with 'A' when there is none: a
// null handle area, an empty handle word, or an instance whose open failed,
// whatever step it failed at (see open_succeeded). A process or private-copy
// call without an input record is refused with '2', like a call type that is
// not known.
#include "hkmatch/calls/call_dispatch.h"

#include "common/fixed_field.h"
#include "orlo_codes.h"
#include "orlo_records.h"

namespace orlo {
namespace {

void blank_record(char *rec) {
  fill_blanks(rec, HKOUTREC_SIZE);
  rec[HKOUT_RETCODE_OFF] = HKRC_OK;
}

void open_instance(const CallArgs &a) {
  blank_record(a.out_rec);
  if (a.handle == nullptr) {
    a.out_rec[HKOUT_RETCODE_OFF] = HKRC_NOT_OPEN;
    return;
  }
  hk_mopn(&a.handle->mcb, &a.out_rec[HKOUT_RETCODE_OFF], a.options,
          a.level1_path, a.level2_path, a.basedata_path);
}

void process_call(const CallArgs &a, const MatcherSteps &steps, char *area) {
  blank_record(a.out_rec);
  if (a.in_rec == nullptr) {
    a.out_rec[HKOUT_RETCODE_OFF] = HKRC_CALL_TYPE;
    return;
  }
  HKMCB *mcb = processable_instance(a.handle);
  if (mcb == nullptr) {
    a.out_rec[HKOUT_RETCODE_OFF] = HKRC_NOT_OPEN;
    return;
  }
  process_record(a, mcb, steps, area);
}

void private_copy_call(const CallArgs &a, const MatcherSteps &steps) {
  if (a.in_rec == nullptr) {
    a.out_rec[HKOUT_RETCODE_OFF] = HKRC_CALL_TYPE;
    return;
  }
  process_in_private_copy(a, steps);
}

}  // namespace

// Only the last step of a successful open marks the block opened; a private
// copy carries the mark of the instance it was copied from.
bool open_succeeded(const HKMCB &mcb) {
  return mcb.opened == 1;
}

HKMCB *processable_instance(const HKHANDLE *handle) {
  if (handle == nullptr || handle->mcb == nullptr) return nullptr;
  HKMCB *mcb = handle->mcb;
  if (mcb->state != 'O' && mcb->state != 'R') return nullptr;
  if (!open_succeeded(*mcb)) return nullptr;
  return mcb;
}

void dispatch(const CallArgs &a, const MatcherSteps &steps) {
  if (a.out_rec == nullptr) return;  // nowhere to report anything
  // The search is handed this area on every call; it is blanked once per
  // call, not per search.
  char area[kSearchAreaSize];
  fill_blanks(area, sizeof area);
  char type = a.call_type != nullptr ? a.call_type[0] : '\0';
  switch (type) {
    case 'O':
      open_instance(a);
      break;
    case 'P':
    case 'D':
      process_call(a, steps, area);
      break;
    case 'R':
      private_copy_call(a, steps);
      break;
    case 'C':
      close_instance(a, steps.now());
      break;
    default:
      a.out_rec[HKOUT_RETCODE_OFF] = HKRC_CALL_TYPE;
      break;
  }
}

}  // namespace orlo
