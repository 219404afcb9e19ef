// The names the reference files hold, for front ends that read free text:
// the street names of every region and the building names of the base
// records; and one structure of the front end's own, derived from them,
// that the reference store keeps read-only beside its other parts and frees
// with itself, so that it is built once per set of files.
#ifndef ORLO_HKMATCH_REFDATA_REFERENCE_NAMES_H
#define ORLO_HKMATCH_REFDATA_REFERENCE_NAMES_H

#include <cstdint>
#include <memory>
#include <string_view>

#include "orlo_matcher.h"

namespace orlo {

enum class NameKind : uint8_t { kStreet, kBuilding };

// Receives one name: its kind, the position of its region in the instance's
// LEVEL1 index, and its text as stored (upper case, no padding).
using NameVisitor = void (*)(void *context, NameKind kind, int32_t region,
                             std::string_view name);

// Calls visit for every street name of every region of the index of
// instance m, and for the building name of every base record of those
// streets (a name as often as it occurs; records without one are not
// visited). Reads through m's files or images and the store's region
// tables, without changing m's search state (its current region, street
// table, candidates and counters stay as they were). A region whose street
// table cannot be built, or a street whose block cannot be read or walked,
// is left out and counted in *skipped (which may be NULL). Returns '0';
// '3' when storage for a block fails (the visit ends there); 'A' when m is
// NULL or has no store.
char visit_reference_names(HKMCB *m, NameVisitor visit, void *context,
                           int64_t *skipped);

// A structure that a front end derives from the reference data.
class StoreAttachment {
 public:
  virtual ~StoreAttachment() = default;
};

// The attachment the store of instance m keeps, or NULL when none has been
// published yet or m has no store. Safe from any thread.
const StoreAttachment *store_attachment(const HKMCB *m);

// Offers `made` as the attachment of m's store and returns the one the
// store keeps: `made`, or the one that another thread published first
// (`made` is then freed). Returns NULL, freeing `made`, when m has no store.
// The store frees its attachment when its last instance closes.
const StoreAttachment *publish_store_attachment(
    const HKMCB *m, std::unique_ptr<StoreAttachment> made);

}  // namespace orlo

#endif  // ORLO_HKMATCH_REFDATA_REFERENCE_NAMES_H
