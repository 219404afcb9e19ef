// A BASEDATA block walked and unpacked as the search does: record by record
// through its length bytes, every record checked against what is left.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hkmatch/refdata/packed_record.h"
#include "orlo_matcher.h"

namespace {

// Every text of an unpacked record is terminated inside its field.
bool terminated(const HKBASEREC &r) {
  return memchr(r.brefcode, 0, sizeof r.brefcode) &&
         memchr(r.brefid, 0, sizeof r.brefid) &&
         memchr(r.bbldg, 0, sizeof r.bbldg) &&
         memchr(r.bparity, 0, sizeof r.bparity) &&
         memchr(r.bqual1, 0, sizeof r.bqual1) &&
         memchr(r.blotext, 0, sizeof r.blotext) &&
         memchr(r.bqual2, 0, sizeof r.bqual2) &&
         memchr(r.bhitext, 0, sizeof r.bhitext) && memchr(r.bfld9, 0, 5) &&
         memchr(r.baddr, 0, sizeof r.baddr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  size_t pos = 0;
  while (pos < size) {
    HKBASEREC rec;
    std::memset(&rec, 0x5A, sizeof rec);
    if (!orlo::unpack_checked(&rec, data + pos, size - pos)) break;
    if (!terminated(rec)) __builtin_trap();
    if (rec.bside != 'B' && rec.bside != 'E' && rec.bside != 'O')
      __builtin_trap();
    pos += data[pos];
  }
  return 0;
}
