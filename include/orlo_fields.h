/* Fixed-width field utilities.
 *
 * A field is a pointer and a signed 32-bit length: blank-padded bytes with no
 * terminator. A blank is the byte 0x20 and nothing else (tab and NUL are
 * ordinary characters). The wide twins work on 16-bit code units, where both
 * U+0020 and U+3000 count as blanks and U+0020 is the blank they write.
 *
 * All routines are reentrant and keep no state. Fields of up to 256 bytes
 * (units) are handled in a fixed work area; longer fields allocate one, and
 * when that allocation fails the routine returns -1 and leaves the field
 * untouched. */
#ifndef ORLO_FIELDS_H
#define ORLO_FIELDS_H

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Left-justifies the field in place and squeezes every inner run of blanks to
 * one blank. Returns the significant length (0 for an all-blank field or a
 * length of 0, which is left unchanged; -1 for a negative length or when no
 * work area can be had). NULL is allowed only with a length of 0. */
ORLO_API int32_t cm_lftadj(char *field, int32_t len);

/* Squeezes blank runs like cm_lftadj and moves the text to the end of the
 * field. Returns the length of the text, with the same 0 and -1 cases. */
ORLO_API int32_t cm_rhtadj(char *field, int32_t len);

/* Removes every blank, packing the other bytes to the left in order and
 * blank-filling the rest. Returns the number of non-blank bytes (0 and -1 as
 * above). */
ORLO_API int32_t cm_lftpck(char *field, int32_t len);

/* Replaces the leading '0' digits of the field by blanks and returns how many
 * it replaced; a leading blank stops it. Returns -1 for a length of 0 or less
 * and touches nothing. */
ORLO_API int32_t cm_bllz(char *field, int32_t len);

/* Formats the NUL-terminated number text `src` with a comma between groups of
 * three digits, right-aligned in `out` (outlen bytes, the last one receiving
 * the NUL). Returns a pointer into `out` at the first character of the
 * formatted text, or NULL when src is NULL or outlen is below 1 (out
 * untouched). Never writes outside out[0 .. outlen-1]: text that does not
 * fit is cut on the left, and an empty source gives an empty string. */
ORLO_API char *cm_cfrmt(const char *src, char *out, int32_t outlen);

/* Wide twins of cm_lftadj, cm_lftpck and cm_rhtadj over 16-bit units. */
ORLO_API int32_t cmulftadj(uint16_t *field, int32_t len);
ORLO_API int32_t cmulftpck(uint16_t *field, int32_t len);
ORLO_API int32_t cmurhtadj(uint16_t *field, int32_t len);

/* The library's own zero-filling allocator: count * size bytes from malloc,
 * set to zero. Returns NULL when malloc fails or count * size overflows.
 * Release with free(). Thread-safe as malloc is. (C++ sees the declaration
 * of <stdlib.h>, which names the same function.) */
#ifndef __cplusplus
ORLO_API void *calloc(size_t count, size_t size);
#endif

#ifdef __cplusplus
}
#endif

#endif /* ORLO_FIELDS_H */
