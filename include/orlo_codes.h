/** @file
 * The outcomes a caller reads: the return code in byte 0 of the output
 * record and the match status in out_matchstat (byte 267).
 *
 * This is the one table of them. Each row gives the name, the character, the
 * message that hk_doem prints for it (49 characters, blank-padded; NULL
 * where hk_doem prints its default "QMV-UNKNOWN ERROR MSG") and a plain
 * meaning for people. The library, the tools and the Java classes (generated
 * from this file by the build) all take their codes and texts from here. */
#ifndef ORLO_CODES_H
#define ORLO_CODES_H

#include "orlo_api.h"

/** The return codes, one X(name, character, message or NULL, meaning) row
 * each: '0' and '1' from a call that did its work, '2' to '8' and 'A' from
 * the matcher, 'L' and 'V' to 'Z' from the Java boundary. */
/* clang-format off */
#define ORLO_RETURN_CODES(X)                                                  \
  X(HKRC_OK, '0', NULL,                                                       \
    "processed: no reference address written (the match status says why)")   \
  X(HKRC_REFERENCE, '1', NULL,                                                \
    "processed: a reference address was chosen (written unless the match status is 5)") \
  X(HKRC_CALL_TYPE, '2', "QMV-INVALID DEMATCH CALL TYPE                    ", \
    "invalid call type: the first character is none of O, P, D, R, C")       \
  X(HKRC_STORAGE, '3', "QMV-INSUFFICIENT STORAGE AVAILABLE HKMATCH       ",   \
    "out of memory: the index, the files held in memory or the search's buffers could not be allocated") \
  X(HKRC_LEVEL2_SEEK, '4', "QMV-LEVEL2 SEEK ERROR HKMATCH                    ", \
    "LEVEL2 could not be read where its index points: the file is damaged or cut short") \
  X(HKRC_BASEDATA_SEEK, '5',                                                  \
    "QMV-BASEDATASEEK ERROR HKMATCH                   ",                      \
    "BASEDATA could not be read where LEVEL2 points: the file is damaged or cut short") \
  X(HKRC_BASEDATA_OPEN, '6',                                                  \
    "QMV-BAD OPEN ON BASEDATA HKMATCH                 ",                      \
    "BASEDATA (or the extract file) cannot be opened: no path, no such file or no permission") \
  X(HKRC_LEVEL1_OPEN, '7', "QMV-BAD OPEN ON LEVEL1 HKMATCH                   ", \
    "LEVEL1 cannot be opened: no path, no such file or no permission")       \
  X(HKRC_LEVEL2_OPEN, '8', "QMV-BAD OPEN ON LEVEL2 HKMATCH                   ", \
    "LEVEL2 cannot be opened: no path, no such file or no permission")       \
  X(HKRC_NOT_OPEN, 'A', NULL,                                                 \
    "the instance is not open (never opened, its open failed, or closed)")   \
  X(HKRC_NO_SLOT, 'L', NULL,                                                  \
    "no free geocoder slot: 200 instances are open")                          \
  X(HKRC_OPEN_FAILED, 'X', NULL,                                              \
    "internal failure caught at the Java boundary during openGeocoder")       \
  X(HKRC_PROCESS_FAILED, 'Y', NULL,                                           \
    "internal failure or bad argument caught at the Java boundary during process or minProcess") \
  X(HKRC_CLOSE_FAILED, 'Z', NULL,                                             \
    "internal failure caught at the Java boundary during closeGeocoder")      \
  X(HKRC_ERRMSG_FAILED, 'W', NULL,                                            \
    "internal failure caught at the Java boundary during getErrorMsg")        \
  X(HKRC_COPY_FAILED, 'V', NULL,                                              \
    "internal failure or bad argument caught at the Java boundary during copyFields") \
  X(HKRC_INPUT_REFUSED, 'E', NULL,                                            \
    "bad input: not processed (a field or line that cannot be read as an English address, or a malformed row); the reason comes with it")

/** The match statuses, one X(name, character, meaning) row each. */
#define ORLO_MATCH_STATUSES(X)                                                \
  X(HKMS_NONE, ' ', "blank: no candidate was judged")                         \
  X(HKMS_ACCEPTED, '0', "accepted: the reference address is written")         \
  X(HKMS_NO_KEY, '1', "no region key: the region is empty or not a key of the reference index (HK, KLN, NT), or the record mode is F") \
  X(HKMS_NO_STREET, '2', "no street of the region is like the street given")  \
  X(HKMS_PREMISE, '3', "the nearest reference address was rejected on its premise number or its floor or unit") \
  X(HKMS_REJECTED, '4', "the nearest reference address was rejected on its building name, or none scored high enough") \
  X(HKMS_TIE, '5', "ambiguous: several equally good reference addresses with different references; none written")
/* clang-format on */

/* The codes by name: HKRC_* return codes, HKMS_* match statuses. C++ sees
 * them as char constants, C as enumerators. */
/** Turns one row of a table into a named code (undefined again below). */
#ifdef __cplusplus
#define ORLO_CODE_ROW(name, code, ...) inline constexpr char name = code;
ORLO_RETURN_CODES(ORLO_CODE_ROW)
ORLO_MATCH_STATUSES(ORLO_CODE_ROW)
#else
#define ORLO_CODE_ROW(name, code, ...) name = code,
/** Return codes by name (byte 0 of an output record). */
enum HKRETCODE { ORLO_RETURN_CODES(ORLO_CODE_ROW) };
/** Match statuses by name (byte 267 of an output record). */
enum HKMATCHSTAT { ORLO_MATCH_STATUSES(ORLO_CODE_ROW) };
#endif
#undef ORLO_CODE_ROW

#ifdef __cplusplus
extern "C" {
#endif

/** The plain meaning of a return code (the last column of
 * ORLO_RETURN_CODES), for callers that cannot read the table above (bindings
 * in other languages).
 * @param code the character from byte 0 of an output record
 * @return a static, NUL-terminated string that the caller must not free;
 *         NULL when code is not in the table. Pure and thread-safe. */
ORLO_API const char *orlo_return_meaning(char code);

/** The plain meaning of a match status (the last column of
 * ORLO_MATCH_STATUSES), for the same callers as orlo_return_meaning.
 * @param status the character from byte 267 of an output record
 * @return a static, NUL-terminated string that the caller must not free;
 *         NULL when status is not in the table. Pure and thread-safe. */
ORLO_API const char *orlo_status_meaning(char status);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_CODES_H */
