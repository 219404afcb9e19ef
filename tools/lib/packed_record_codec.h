// Packing of one reference row into the packed base record of BASEDATA, and
// the bounds-checked inverse.
//
// A packed record is a length byte, two bytes of presence bits (fields 1-8,
// then fields 9 and 10), a zero byte, then one item per non-empty field.
// A text that is "0" or a decimal number without leading zeros is stored in
// binary (1, 2 or 4 bytes big-endian) so that it decodes to the same text;
// every other text is stored as it stands.
#ifndef ORLO_TOOLS_PACKED_RECORD_CODEC_H
#define ORLO_TOOLS_PACKED_RECORD_CODEC_H

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "lib/refdb_format.h"

namespace orlo::tools::refdb {

using PackedFields = std::array<std::string_view, kPackedFields>;
using UnpackedFields = std::array<std::string, kPackedFields>;

// Appends the item that stores text (at most 31 bytes).
void append_item(std::string *out, std::string_view text);

// Appends the packed record of fields to out and returns its length.
size_t append_packed_record(std::string *out, const PackedFields &fields);

// Where and why a packed record does not decode.
struct UnpackFault {
  size_t offset = 0;  // from the record's length byte
  std::string message;
};

// Decodes the record at rec, of which avail bytes are readable. Checks the
// length byte (4..127 and within avail), every item inside the record, the
// item types and lengths, the decoded widths, NUL bytes in texts, unused
// presence bits and bytes left over after the last item. Returns the
// record's length, or 0 with *fault set. Never reads past rec + avail.
size_t unpack_record(const unsigned char *rec, size_t avail,
                     UnpackedFields *fields, UnpackFault *fault);

}  // namespace orlo::tools::refdb

#endif  // ORLO_TOOLS_PACKED_RECORD_CODEC_H
