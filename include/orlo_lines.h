/** @file
 * Addresses written as one line of text, the way people hold them
 * ("Flat B, 12/F, Block 3, Sunshine Garden, 28 Nathan Rd, TST, Kowloon" or
 * "Rm 1203 Times Sq 1 Matheson St Causeway Bay HK"): split into the fields
 * of the 200-byte input record and geocoded through hk_mtci.
 *
 * The line is first tidied by the input normalisation (orlo_normalise.h:
 * UTF-8 or Latin-1, case, blanks, full-width letters), then read word by
 * word, commas or none:
 *   - the floor and unit line: flat, room, unit, shop and suite numbers
 *     (FLAT B, RM 1203, SHOP 5), floors (12/F, G/F, UG/F, LG1, 12TH FLOOR);
 *   - block, tower, phase and wing of an estate (BLOCK 3, TOWER 2, PHASE 1,
 *     EAST WING), kept in the extra line;
 *   - the premise number or range (28, 28A, 28-32, NO. 28);
 *   - the street: the reference database's own street names, in full or
 *     with the street type shortened (NATHAN RD for NATHAN ROAD), else the
 *     words up to a street type (ROAD, ST, AVE, ...);
 *   - the building: the database's building names, else words ending in a
 *     building type (BUILDING, BLDG, COURT, CENTRE, MANSION, GARDEN, HOUSE,
 *     PLAZA, TOWER, ESTATE, ...);
 *   - the district and region at the end: the regions and districts the
 *     input normalisation knows (TST, CWB, KOWLOON, KLN, NT, HONG KONG);
 *     a trailing "Hong Kong", "Hong Kong SAR" or "China" after a region or
 *     district names the territory and is dropped.
 * The names come from the reference files of the open instance: a new
 * database teaches the splitter its streets and buildings. They are
 * collected the first time a line is split on an instance and kept with
 * the reference store that instances of the same files share (for a
 * database of a million records this first call takes about a second).
 *
 * Refusals are never guesses: a line that is empty, longer than an input
 * record can carry, or written in characters without a Latin-1 form (the
 * reference data is English) is refused with a status and a reason.
 *
 * Splitting allocates nothing once the calling thread has split a line as
 * long as the current one (its work areas are kept per thread). Every
 * routine may be called from any number of threads; an instance serves one
 * call at a time, as for hk_mtci. */
#ifndef ORLO_LINES_H
#define ORLO_LINES_H

#include <stddef.h>
#include <stdint.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** The longest line: the characters after tidying that the text fields of
 * an input record hold with a separator each (more cannot be placed), and
 * the bytes as given (a UTF-8 character takes up to four). */
enum { ORLO_LINE_MAX_CHARS = 200, ORLO_LINE_MAX_BYTES = 800 };

/** Outcomes of the routines below. */
enum ORLO_LINE_STATUS {
  ORLO_LINE_OK = 0,        /**< the line was split (and geocoded) */
  ORLO_LINE_EMPTY = 1,     /**< no letter or digit in the line */
  ORLO_LINE_TOO_LONG = 2,  /**< longer than ORLO_LINE_MAX_*, or a part
                              longer than its field */
  ORLO_LINE_NOT_LATIN = 3, /**< a character without a Latin-1 form */
  ORLO_LINE_CONTROL = 4,   /**< a control character other than a tab or a
                              line end */
  ORLO_LINE_NO_MEMORY = 5, /**< a work area could not be allocated */
  ORLO_LINE_BAD_CALL = 6   /**< a required pointer is NULL */
};

/** What became of a line. */
typedef struct ORLO_LINE_INFO {
  int32_t status; /**< an ORLO_LINE_STATUS */
  /** Which split of the line the record and result are from, as the
   * matcher was given them: 1 for the first (the most likely reading), 2
   * for the next, ...; 0 when the line was refused. orlo_line_split gives
   * the first. */
  int32_t split;
  /** The splits that went to the matcher (orlo_line_geocode); 1 for
   * orlo_line_split. */
  int32_t tries;
  /** How the kept split read the line, NUL-terminated, for people, e.g.
   * "region KLN from the district; street and building from the reference
   * names"; empty when refused. */
  char note[160];
  /** Why the line was refused, NUL-terminated UTF-8, e.g. "'九' (U+4E5D)
   * has no Latin-1 form; write the address in English"; empty when the
   * status is ORLO_LINE_OK. */
  char reason[200];
} ORLO_LINE_INFO;

/** Splits len bytes of line into the 200-byte input record inrec (written
 * completely: the fields of the most likely split, blank-padded, upper
 * case; 200 blanks when refused). handle: an HKHANDLE of an open instance
 * whose reference names guide the split, or NULL to split by the shape of
 * the words alone. When the line names no region, the record gets the
 * region the names make most likely (or none). No search is made and no
 * counter changes. info may be NULL. Returns an ORLO_LINE_STATUS;
 * ORLO_LINE_BAD_CALL when inrec is NULL or line is NULL with len > 0. */
ORLO_API int32_t orlo_line_split(void *handle, const char *line, size_t len,
                                 char *inrec, ORLO_LINE_INFO *info);

/** Splits the line and geocodes it on the instance in handle (an HKHANDLE)
 * with process calls ("P") of hk_mtci: the most likely split first and,
 * when the line leaves doubt (no region, or a region that the street is not
 * in, or a district that may belong to the street's name), up to five more,
 * stopping at the first accepted one. The result kept is the best by the
 * matcher's return code and match status (an accepted reference first,
 * then an ambiguous one, a rejection on the premise number or unit, on the
 * building, no street, no region); of equals the earlier split. When the
 * region had to be guessed and more than one region accepts a different
 * reference, the line is ambiguous: the result kept is that of the line
 * with no region (match status '1'), and the note says so. The instance's
 * counters, and so the accuracy statement, count one record per line
 * whatever the number of splits tried, matched as the kept result is.
 *
 * outrec (300 bytes) receives the kept result as hk_mtci writes it; for a
 * refused line 300 blanks with HKRC_INPUT_REFUSED ('E') in byte 0, and the
 * instance is not called. inrec, when not NULL, receives the input record
 * of the kept split. namelist and reclist are handed to hk_mtci (used by
 * listing mode 3 only) and may be NULL. An instance that is not open is
 * answered by hk_mtci ('A' in byte 0). info may be NULL. Returns an
 * ORLO_LINE_STATUS; ORLO_LINE_BAD_CALL (nothing written) when handle or
 * outrec is NULL, or line is NULL with len > 0. */
ORLO_API int32_t orlo_line_geocode(void *handle, const char *line, size_t len,
                                   char *inrec, char *outrec, char *namelist,
                                   char *reclist, ORLO_LINE_INFO *info);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_LINES_H */
