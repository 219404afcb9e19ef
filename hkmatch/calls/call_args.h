// The arguments of one hk_mtci call as one structure, for the call layer and
// for the front ends that gather them (the JNI boundary).
#ifndef ORLO_HKMATCH_CALLS_CALL_ARGS_H
#define ORLO_HKMATCH_CALLS_CALL_ARGS_H

#include "orlo_matcher.h"

namespace orlo {

// The arguments of one call, in the order of hk_mtci. A private-copy call
// hands them on to its nested calls with only the call type and the handle
// replaced.
struct CallArgs {
  const char *call_type = nullptr;
  HKHANDLE *handle = nullptr;
  const char *in_rec = nullptr;
  char *out_rec = nullptr;
  const char *options = nullptr;
  const char *skip_base_date = nullptr;
  const char *report_lines[6] = {};
  const char *report_path = nullptr;
  const char *level1_path = nullptr;
  const char *level2_path = nullptr;
  const char *basedata_path = nullptr;
  char *namelist = nullptr;
  char *reclist = nullptr;
};

}  // namespace orlo

#endif  // ORLO_HKMATCH_CALLS_CALL_ARGS_H
