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

/** The return codes, one X(name, character, message or NULL, meaning) row
 * each: '0' and '1' from a call that did its work, '2' to '8' and 'A' from
 * the matcher, 'L' and 'V' to 'Z' from the Java boundary. */
/* clang-format off */
#define ORLO_RETURN_CODES(X)                                                  \
  X(HKRC_OK, '0', NULL,                                                       \
    "processed, no reference address written")                               \
  X(HKRC_REFERENCE, '1', NULL,                                                \
    "reference address written")                                              \
  X(HKRC_CALL_TYPE, '2', "QMV-INVALID DEMATCH CALL TYPE                    ", \
    "invalid call type")                                                      \
  X(HKRC_STORAGE, '3', "QMV-INSUFFICIENT STORAGE AVAILABLE HKMATCH       ",   \
    "insufficient storage")                                                   \
  X(HKRC_LEVEL2_SEEK, '4', "QMV-LEVEL2 SEEK ERROR HKMATCH                    ", \
    "LEVEL2 seek error")                                                      \
  X(HKRC_BASEDATA_SEEK, '5',                                                  \
    "QMV-BASEDATASEEK ERROR HKMATCH                   ",                      \
    "BASEDATA seek error")                                                    \
  X(HKRC_BASEDATA_OPEN, '6',                                                  \
    "QMV-BAD OPEN ON BASEDATA HKMATCH                 ",                      \
    "BASEDATA or extract file cannot be opened")                              \
  X(HKRC_LEVEL1_OPEN, '7', "QMV-BAD OPEN ON LEVEL1 HKMATCH                   ", \
    "LEVEL1 cannot be opened")                                                \
  X(HKRC_LEVEL2_OPEN, '8', "QMV-BAD OPEN ON LEVEL2 HKMATCH                   ", \
    "LEVEL2 cannot be opened")                                                \
  X(HKRC_NOT_OPEN, 'A', NULL,                                                 \
    "instance not open")                                                      \
  X(HKRC_NO_SLOT, 'L', NULL,                                                  \
    "no free geocoder slot: 200 instances are open")                          \
  X(HKRC_OPEN_FAILED, 'X', NULL,                                              \
    "a failure escaped during openGeocoder")                                  \
  X(HKRC_PROCESS_FAILED, 'Y', NULL,                                           \
    "a failure escaped during process or minProcess")                         \
  X(HKRC_CLOSE_FAILED, 'Z', NULL,                                             \
    "a failure escaped during closeGeocoder")                                 \
  X(HKRC_ERRMSG_FAILED, 'W', NULL,                                            \
    "a failure escaped during getErrorMsg")                                   \
  X(HKRC_COPY_FAILED, 'V', NULL,                                              \
    "a failure escaped during copyFields")

/** The match statuses, one X(name, character, meaning) row each. */
#define ORLO_MATCH_STATUSES(X)                                                \
  X(HKMS_NONE, ' ', "no candidate judged")                                    \
  X(HKMS_ACCEPTED, '0', "candidate accepted")                                 \
  X(HKMS_NO_KEY, '1', "no region key")                                        \
  X(HKMS_NO_STREET, '2', "no candidate street")                               \
  X(HKMS_PREMISE, '3', "rejected on premise or unit number")                  \
  X(HKMS_REJECTED, '4', "rejected on building name or below threshold")       \
  X(HKMS_TIE, '5', "tie between different references")
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

#endif /* ORLO_CODES_H */
