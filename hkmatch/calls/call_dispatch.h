// The matcher's call interface inside the library: the arguments of one
// hk_mtci call, the steps it delegates to, and the handlers of its call
// types. hk_mtci itself only gathers its arguments and runs dispatch() with
// the real steps; tests run the same code with steps of their own.
#ifndef ORLO_HKMATCH_CALLS_CALL_DISPATCH_H
#define ORLO_HKMATCH_CALLS_CALL_DISPATCH_H

#include <cstdint>
#include <ctime>

#include "hkmatch/calls/call_args.h"
#include "hkmatch/calls/statement_rules.h"
#include "orlo_matcher.h"

namespace orlo {

// What the dispatcher delegates: preparing the input, the search, and the
// clock that dates the accuracy statement.
struct MatcherSteps {
  void (*pad)(const char *inrec, HKWORKREC *work, HKMCB *mcb);
  int32_t (*search)(void *handle, HKWORKREC *work, char *outrec,
                    const char *inrec, char *namelist, char *reclist,
                    int32_t level, char *area, int32_t zero, char *area30);
  time_t (*now)();
};

// hk_pad, hk_mpro and the system clock.
const MatcherSteps &library_steps();

// Size of the scratch area that every call blanks and hands to the search.
inline constexpr int kSearchAreaSize = 3000;

// Runs one call: selects on the first character of the call type.
void dispatch(const CallArgs &args, const MatcherSteps &steps);

// Whether the open that made the block (or the instance a private copy was
// made from) completed every step.
bool open_succeeded(const HKMCB &mcb);

// The instance a process call may work on: word 0 of the handle, provided
// the open that made it succeeded, in state 'O' or as the private copy of a
// "R" call. NULL otherwise.
HKMCB *processable_instance(const HKHANDLE *handle);

// "P" and "D" on an output record already set to blanks with '0' in byte 0:
// one record, the second attempt with the building name, the counters and
// the change flags. area is the call's scratch area.
void process_record(const CallArgs &args, HKMCB *mcb, const MatcherSteps &steps,
                    char *area);

// "R": one record in a private copy of the instance, then the copy's close.
void process_in_private_copy(const CallArgs &args, const MatcherSteps &steps);

// "C": the accuracy statement when the conditions hold, then the close.
void close_instance(const CallArgs &args, time_t now);

namespace detail {
// Test hook: when positive, the allocation of the private-copy block with
// this number (counting from 1) fails; it counts down as blocks are made.
extern thread_local int fail_copy_block_number;
}  // namespace detail

}  // namespace orlo

#endif  // ORLO_HKMATCH_CALLS_CALL_DISPATCH_H
