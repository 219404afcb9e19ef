/** @file
 * Fixed-width field utilities.
 *
 * A field is a pointer and a signed 32-bit length: blank-padded bytes with no
 * terminator. A blank is the byte 0x20 and nothing else (tab and NUL are
 * ordinary characters). The wide twins work on 16-bit code units, where both
 * U+0020 and U+3000 count as blanks and U+0020 is the blank they write.
 *
 * All routines are reentrant and keep no state: any number of threads may call
 * them at once on different fields. Fields of up to 256 bytes (units) are
 * handled in a fixed work area; longer fields allocate one, released before
 * the routine returns, and when that allocation fails the routine returns -1
 * and leaves the field untouched. */
#ifndef ORLO_FIELDS_H
#define ORLO_FIELDS_H

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Left-justifies the len bytes of field in place and squeezes every inner run
 * of blanks to one blank; the bytes freed at the end become blanks.
 *
 * Returns the significant length (the text's length now at the start), 0 for
 * an all-blank field or a length of 0 (field unchanged), -1 for a negative
 * length or when no work area can be had (field unchanged). field may be NULL
 * only with a length of 0. */
ORLO_API int32_t cm_lftadj(char *field, int32_t len);

/** Squeezes blank runs like cm_lftadj and moves the text to the end of the
 * field (blanks in front). Returns the length of the text, with the same 0 and
 * -1 cases and the same NULL rule as cm_lftadj. */
ORLO_API int32_t cm_rhtadj(char *field, int32_t len);

/** Removes every blank of the len bytes of field, packing the other bytes to
 * the left in order and blank-filling the rest. Returns the number of
 * non-blank bytes, with the same 0 and -1 cases and the same NULL rule as
 * cm_lftadj. */
ORLO_API int32_t cm_lftpck(char *field, int32_t len);

/** Replaces the leading '0' digits of the len bytes of field by blanks and
 * returns how many it replaced; a leading blank stops it at once (returns 0).
 * Returns -1 and touches nothing for a length of 0 or less. Never allocates. */
ORLO_API int32_t cm_bllz(char *field, int32_t len);

/** Formats the NUL-terminated number text src with a comma between groups of
 * three digits counted from its end ("1234567" gives "1,234,567"),
 * right-aligned in out: all outlen bytes of out are set to blanks, the last
 * one to NUL, and the text ends just before it.
 *
 * Returns a pointer into out at the first character of the formatted text, or
 * NULL when src is NULL or outlen is below 1 (out untouched). Never writes
 * outside out[0 .. outlen-1]: text that does not fit is cut on the left, and
 * an empty source gives an empty string. Never allocates. */
ORLO_API char *cm_cfrmt(const char *src, char *out, int32_t outlen);

/** Wide twin of cm_lftadj over len 16-bit units (U+0020 and U+3000 are blanks,
 * U+0020 is written); same results, 0 and -1 cases and NULL rule. */
ORLO_API int32_t cmulftadj(uint16_t *field, int32_t len);
/** Wide twin of cm_lftpck over len 16-bit units, as cmulftadj. */
ORLO_API int32_t cmulftpck(uint16_t *field, int32_t len);
/** Wide twin of cm_rhtadj over len 16-bit units, as cmulftadj. */
ORLO_API int32_t cmurhtadj(uint16_t *field, int32_t len);

/** The library's own zero-filling allocator, exported under the C library's
 * name (the dynamic linker's order decides which of the two a program's calls
 * reach; they behave alike): count * size bytes from malloc, set to zero.
 * Returns NULL when malloc fails or count * size overflows. The caller owns
 * the block and releases it with free(). Thread-safe as malloc is. (C++ sees
 * the declaration of <stdlib.h>, which names the same function.) */
#ifndef __cplusplus
ORLO_API void *calloc(size_t count, size_t size);
#endif

#ifdef __cplusplus
}
#endif

#endif /* ORLO_FIELDS_H */
