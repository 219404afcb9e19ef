/** @file
 * Many records in one call: the way for bindings (Python, Java) that pay a
 * price for every crossing into the library, and for front ends that hold a
 * batch of records already laid end to end. */
#ifndef ORLO_BATCH_H
#define ORLO_BATCH_H

#include <stdint.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Geocodes `count` input records into `count` output records on one open
 * instance. in_recs holds count 200-byte records (HKINREC) end to end and
 * out_recs receives count 300-byte records (HKOUTREC) end to end; both
 * belong to the caller. handle points to the HKHANDLE of an instance opened
 * with hk_mtci "O".
 *
 * Output record i is byte for byte what a "P" call of hk_mtci on input
 * record i gives, the records taken in order, and the instance counts each
 * record as that call does (records read and matched, which its accuracy
 * statement reports). Records are matched as they are: they are not tidied
 * (see orlo_norm_address).
 *
 * A record the matcher cannot process (its region's street table or its
 * street's block damaged or cut short, memory running out) gets the error
 * return code of that failure in byte 0 of its own output record, exactly
 * as a "P" call gives it, and the batch goes on with the next record: one
 * bad record never costs the others their results. When handle is NULL or
 * names no open instance (never opened, its open failed, closed), every
 * output record gets return code 'A'.
 *
 * The name and record lists of listing mode 3 are not written (each record
 * would overwrite the last); the listings and extract of the other modes
 * are written as the "P" calls would write them.
 *
 * Returns the number of output records whose return code is '0' or '1'
 * (processed); count when every record was processed. count <= 0 writes
 * nothing and returns 0. in_recs or out_recs NULL with count > 0 writes
 * nothing and returns -1.
 *
 * Thread safety as for "P": one instance serves one call at a time (a
 * batch is one call); batches on different instances may run at once. */
ORLO_API int32_t orlo_process_batch(void *handle, const char *in_recs,
                                    char *out_recs, int32_t count);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_BATCH_H */
