// hk_mtci, the matcher's one entry point: gathers its arguments and runs
// the call with the library's own steps. Every outcome is reported in byte 0
// of the output record; nothing is thrown.
#include <cstring>
#include <ctime>

#include "hkmatch/calls/call_dispatch.h"

namespace orlo {
namespace {

time_t system_now() {
  return std::time(nullptr);
}

constexpr MatcherSteps kLibrarySteps{hk_pad, hk_mpro, system_now};

}  // namespace

const MatcherSteps &library_steps() {
  return kLibrarySteps;
}

}  // namespace orlo

extern "C" void hk_mtci(const char *callType, void *handle, const char *inRec,
                        char *outRec, const char *options,
                        const char *skipBaseDate, const char *reportLine1,
                        const char *reportLine2, const char *reportLine3,
                        const char *reportLine4, const char *reportLine5,
                        const char *reportLine6, const char *reportPath,
                        const char *level1Path, const char *level2Path,
                        const char *basedataPath, char *namelist,
                        char *reclist) {
  orlo::CallArgs a;
  a.call_type = callType;
  a.handle = static_cast<HKHANDLE *>(handle);
  a.in_rec = inRec;
  a.out_rec = outRec;
  a.options = options;
  a.skip_base_date = skipBaseDate;
  const char *lines[6] = {reportLine1, reportLine2, reportLine3,
                          reportLine4, reportLine5, reportLine6};
  std::memcpy(a.report_lines, lines, sizeof lines);
  a.report_path = reportPath;
  a.level1_path = level1Path;
  a.level2_path = level2Path;
  a.basedata_path = basedataPath;
  a.namelist = namelist;
  a.reclist = reclist;
  orlo::dispatch(a, orlo::library_steps());
}
