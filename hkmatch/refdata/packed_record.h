// The bounded unpacker that the search uses on reference data.
#ifndef ORLO_HKMATCH_REFDATA_PACKED_RECORD_H
#define ORLO_HKMATCH_REFDATA_PACKED_RECORD_H

#include <cstddef>

#include "orlo_matcher.h"

namespace orlo {

// Unpacks the packed base record at rec, of which avail bytes remain in its
// block, exactly as hk_unpk does. Returns false, with *out unspecified, when
// the record is malformed: a length byte below 4 or beyond avail, an item
// that runs past the record's end, a numeric item whose length is less than
// the width of its number, or an item of an unknown type. Counts
// each unpacked record in access_counters().unpacks.
bool unpack_checked(HKBASEREC *out, const unsigned char *rec, size_t avail);

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_PACKED_RECORD_H
