/** @file
 * Tidying the address fields that people write into the form the matcher
 * reads.
 *
 * The matcher compares bytes and expects what the reference data holds:
 * upper-case single-byte (Latin-1) text, single blanks between words and the
 * region as one of the keys of the reference index. People write mixed case,
 * spell the region out ("Kowloon", "N.T.") or leave it out, type full-width
 * letters from Chinese input methods and save files as UTF-8. The routines
 * here close that gap for every front end (the batch tool, the Java Address
 * builder, ...) so that each does it the same way. The matcher itself does
 * not use them: records passed to hk_mtci are matched as they are.
 *
 * Texts are byte strings with a length; they need not be terminated. A text
 * that is valid UTF-8 is read as UTF-8 (a leading byte-order mark is
 * dropped), any other text as Latin-1. Every routine is reentrant, keeps no
 * state and may be called from any number of threads at once. */
#ifndef ORLO_NORMALISE_H
#define ORLO_NORMALISE_H

#include <stddef.h>
#include <stdint.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Outcomes of the routines below. */
enum ORLO_NORM_STATUS {
  ORLO_NORM_OK = 0,
  ORLO_NORM_NOT_LATIN1 = 1, /**< a character has no Latin-1 form (Chinese) */
  ORLO_NORM_CONTROL = 2,    /**< a control character other than a blank */
  ORLO_NORM_TOO_LONG = 3,   /**< the tidied text is wider than its field */
  ORLO_NORM_NO_MEMORY = 4,  /**< a work area could not be allocated */
  ORLO_NORM_BAD_CALL = 5    /**< a required pointer is NULL */
};

/** The address fields, in the order of the arrays orlo_norm_address takes
 * (and of the columns of hkgeocode's input). */
enum ORLO_NORM_FIELD {
  ORLO_NF_REFCODE,
  ORLO_NF_PREMNO,
  ORLO_NF_STREET,
  ORLO_NF_BUILDING,
  ORLO_NF_UNIT,
  ORLO_NF_EXTRA,
  ORLO_NF_DISTRICT,
  ORLO_NF_REGION,
  ORLO_NF_MODE,
  ORLO_NF_COUNT
};

/** Why a text or an address could not be tidied. */
typedef struct ORLO_NORM_FAULT {
  int32_t status; /**< an ORLO_NORM_STATUS */
  int32_t field;  /**< the ORLO_NORM_FIELD at fault; -1 for a single text */
  /** One sentence for people, NUL-terminated UTF-8, naming the field (for an
   * address), the character and why; empty when status is ORLO_NORM_OK.
   * Example: "district: '九' (U+4E5D) has no Latin-1 form; write the
   * address in English". */
  char reason[200];
} ORLO_NORM_FAULT;

/** Tidies one text: decodes it (UTF-8 or Latin-1, see above), applies
 * Unicode compatibility normalisation (full-width "ＮＡＴＨＡＮ １２" becomes
 * "NATHAN 12"; typographic quotes, dashes and spaces become their ASCII
 * forms), writes letters outside Latin-1 without their accents where that
 * leaves a Latin-1 letter, folds ASCII and Latin-1 letters to upper case,
 * turns tabs and line ends into blanks, collapses runs of blanks and drops
 * leading and trailing ones. Punctuation is kept ("KING'S ROAD").
 *
 * text: len bytes (NULL only when len is 0). out: receives at most cap
 * bytes of Latin-1, neither padded nor terminated; *out_len the bytes
 * written. Returns ORLO_NORM_OK; ORLO_NORM_TOO_LONG when the result needs
 * more than cap bytes (*out_len is then the bytes it needs, out holds its
 * first cap); ORLO_NORM_NOT_LATIN1 or ORLO_NORM_CONTROL (nothing useful in
 * out); ORLO_NORM_NO_MEMORY; ORLO_NORM_BAD_CALL when out (cap > 0) or
 * out_len is NULL. fault may be NULL; otherwise it receives the outcome and
 * reason. */
ORLO_API int32_t orlo_norm_text(const char *text, size_t len, char *out,
                                size_t cap, size_t *out_len,
                                ORLO_NORM_FAULT *fault);

/** Folds the ASCII and Latin-1 lower-case letters among len bytes of text to
 * upper case in place; every other byte is kept (0xDF and 0xFF, which have
 * no Latin-1 capital, too). Returns the number of bytes changed. NULL text
 * or len 0 changes nothing. */
ORLO_API size_t orlo_norm_upper(char *text, size_t len);

/** The region key ("HK", "KLN" or "NT") that a tidied region text names: the
 * keys themselves and the usual spellings of the three regions ("HONG
 * KONG", "HONG KONG ISLAND", "HK ISLAND", "H.K.", "KOWLOON", "KLN", "NEW
 * TERRITORIES", "N.T."), with dots, blanks and hyphens ignored. NULL when
 * the text names none. The result is a static string. */
ORLO_API const char *orlo_norm_region(const char *text, size_t len);

/** The region key of the district or well-known area that a tidied text
 * names (one of Hong Kong's eighteen districts, a neighbourhood such as
 * "TSIM SHA TSUI" or "TST", or a region spelling as above); dots, blanks
 * and hyphens are ignored. NULL when it names none. Static result. */
ORLO_API const char *orlo_norm_district_region(const char *text, size_t len);

/** The region keys that the routines above produce, as a NULL-terminated
 * static array: "HK", "KLN", "NT". */
ORLO_API const char *const *orlo_norm_region_keys(void);

/** Builds a 200-byte input record (HKINREC) from the ORLO_NF_COUNT fields of
 * an address as a person wrote them. fields[i] holds lengths[i] bytes
 * (fields[i] may be NULL when lengths[i] is 0). Each field is tidied by
 * orlo_norm_text and placed blank-padded in its record field (the unit line
 * of up to 30 characters in its two pieces). The region becomes its key
 * when orlo_norm_district_region knows it (a region spelling, or a district
 * written in the region's place) and stays as tidied when it does not; an
 * empty region is taken from the district the same way (or stays blank).
 *
 * Returns ORLO_NORM_OK with inrec filled; on any other outcome inrec holds
 * 200 blanks and fault (which may be NULL) names the first field at fault
 * and why. ORLO_NORM_BAD_CALL when fields, lengths or inrec is NULL, or a
 * field pointer is NULL with a non-zero length. */
ORLO_API int32_t orlo_norm_address(const char *const *fields,
                                   const size_t *lengths, char *inrec,
                                   ORLO_NORM_FAULT *fault);

/** orlo_norm_address on count addresses in one call, for callers that pay
 * for every call (bindings in other languages). Address i is the
 * ORLO_NF_COUNT fields fields[i * ORLO_NF_COUNT + f] of lengths[i *
 * ORLO_NF_COUNT + f] bytes; its record goes to inrecs + i * 200 (HKINREC),
 * exactly as orlo_norm_address builds it (200 blanks when the address
 * cannot be tidied), and statuses[i] receives the outcome. An address that
 * cannot be tidied does not stop the others; orlo_norm_address on it alone
 * gives the reason.
 *
 * Returns the number of addresses tidied (ORLO_NORM_OK); 0 when count is 0;
 * -1 with nothing written when fields, lengths, inrecs or statuses is NULL
 * and count is not 0. Reentrant. */
ORLO_API int64_t orlo_norm_many(const char *const *fields,
                                const size_t *lengths, size_t count,
                                char *inrecs, int32_t *statuses);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_NORMALISE_H */
