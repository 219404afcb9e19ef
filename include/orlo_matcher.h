/** @file
 * The Hong Kong address matcher: its structures and routines.
 *
 * A geocoder instance is an HKMCB reached through word 0 of a 16-byte
 * HKHANDLE. Every call goes through hk_mtci: "O" opens an instance on the
 * three reference files, "P" geocodes one 200-byte input record into a
 * 300-byte output record, "R" does the same in a private copy of the instance,
 * "C" closes it. The other routines are exported for callers and tools that
 * need a single step of the work. Records are the fixed-width byte arrays of
 * orlo_records.h; outcomes are the codes of orlo_codes.h.

 *
 * Threads: one instance serves one call at a time (a "P" call updates its
 * caches and counters); different instances may be used from different
 * threads at once. Instances of the same files share one read-only
 * reference store, which opens and closes attach to and release under a
 * lock of their own; a program that keeps a table of instances must guard
 * that table itself (the Java boundary holds one lock over every open and
 * close). Unless a routine says otherwise, it keeps no state and may run on
 * many threads at once on data of its own.
 *
 * The matcher compares bytes: give it upper-case text and the region as its
 * key ("HK", "KLN", "NT"), or build the record from what people wrote with
 * orlo_norm_address (orlo_normalise.h).
 *
 * A close ("C") writes the address accuracy statement unless its option
 * string starts with 'L' (or 'W', 'R', 'X'; see hk_mtci); when the report
 * file cannot be created, the page goes to standard output. So a close that
 * must print nothing passes "L".
 *
 * Example: two instances opened (as two workers would), one address
 * processed, one instance closed without the statement and the other with
 * it written to a file. Build it with
 * "cc example.c -I include -L build/release -lorloHKGeocoder" and run it
 * with the database folder (the build tests compile and run this text):
 *
 * @code
 * ---- example ----
 * #include <stdio.h>
 * #include <string.h>
 *
 * #include "orlo_codes.h"
 * #include "orlo_matcher.h"
 *
 * static char level1[512], level2[512], basedata[512];
 * static char namelist[30000], reclist[7500];  // used by listing mode 3 only
 *
 * // Opens an instance on the database; byte 0 of out is the return code.
 * static int open_instance(HKHANDLE *h) {
 *   char out[HKOUTREC_SIZE];
 *   memset(h, 0, sizeof *h);
 *   hk_mtci("O", h, NULL, out, "", NULL, NULL, NULL, NULL, NULL, NULL, NULL,
 *           NULL, level1, level2, basedata, NULL, NULL);
 *   if (out[HKOUT_RETCODE_OFF] == HKRC_OK) return 1;
 *   hk_doem(out);  // e.g. " POSTAL-MATCH_ERROR QMV-BAD OPEN ON LEVEL1 ..."
 *   return 0;
 * }
 *
 * // Prints a blank-padded field without its padding.
 * static void print_field(const char *rec, int off, int len) {
 *   while (len > 0 && rec[off + len - 1] == ' ') --len;
 *   printf("%.*s", len, rec + off);
 * }
 *
 * int main(int argc, char **argv) {
 *   const char *dir = argc > 1 ? argv[1] : ".";
 *   const char *report = argc > 2 ? argv[2] : "statement.txt";
 *   snprintf(level1, sizeof level1, "%s/LEVEL1", dir);
 *   snprintf(level2, sizeof level2, "%s/LEVEL2", dir);
 *   snprintf(basedata, sizeof basedata, "%s/BASEDATA", dir);
 *
 *   HKHANDLE h, other;
 *   if (!open_instance(&h) || !open_instance(&other)) return 1;
 *
 *   // One address: fixed-width fields, blank-padded, in upper case.
 *   char in[HKINREC_SIZE], out[HKOUTREC_SIZE];
 *   memset(in, ' ', sizeof in);
 *   memcpy(in + HKIN_PREMNO_OFF, "22", 2);
 *   memcpy(in + HKIN_STREET_OFF, "CASTLE PEAK ROAD", 16);
 *   memcpy(in + HKIN_REGION_OFF, "KLN", 3);
 *   hk_mtci("P", &h, in, out, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL,
 *           NULL, NULL, NULL, NULL, namelist, reclist);
 *
 *   char rc = out[HKOUT_RETCODE_OFF], ms = out[HKOUT_MATCHSTAT_OFF];
 *   if (rc == HKRC_REFERENCE && ms == HKMS_ACCEPTED) {
 *     print_field(out, HKOUT_LINE1_OFF, HKOUT_LINE1_LEN);
 *     printf(" / ");
 *     print_field(out, HKOUT_LINE2_OFF, HKOUT_LINE2_LEN);
 *     printf(" (reference %.3s %.5s)\n", out + HKOUT_REFCODE_OFF,
 *            out + HKOUT_REFID_OFF);
 *   } else if (rc == HKRC_OK || rc == HKRC_REFERENCE) {
 *     printf("not matched: match status '%c'\n", ms);  // see orlo_codes.h
 *   } else {
 *     hk_doem(out);  // an error: damaged data, out of memory, ...
 *   }
 *
 *   // A close without the statement: options "L".
 *   hk_mtci("C", &other, NULL, out, "L", NULL, NULL, NULL, NULL, NULL, NULL,
 *           NULL, NULL, NULL, NULL, NULL, NULL, NULL);
 *
 *   // A close with the statement written to `report`, counting the one
 *   // process call of this instance. A close sets byte 0 only on failure.
 *   out[HKOUT_RETCODE_OFF] = HKRC_OK;
 *   hk_mtci("C", &h, NULL, out, "", NULL, "Example run", NULL, NULL, NULL,
 *           NULL, NULL, report, NULL, NULL, NULL, NULL, NULL);
 *   if (out[HKOUT_RETCODE_OFF] != HKRC_OK) hk_doem(out);
 *   printf("statement written to %s\n", report);
 *   return 0;
 * }
 * ---- end ----
 * @endcode
 */
#ifndef ORLO_MATCHER_H
#define ORLO_MATCHER_H

#include <stdint.h>
#include <stdio.h>

#include "orlo_api.h"
#include "orlo_records.h"

#ifdef __cplusplus
extern "C" {
#endif

/** One entry of the first-level (region) index that hk_mopn loads from
 * LEVEL1, numbers in host byte order. */
typedef struct L1ENTRY {
  char l1key[30]; /**< region key, blank-padded, as stored in LEVEL1 */
  uint32_t l2off; /**< offset of the region's segment in LEVEL2 */
  uint32_t l2len; /**< length of the segment in bytes */
  uint16_t l2cnt; /**< number of street records in the segment */
} L1ENTRY;

/** An unpacked reference (base) record, as hk_unpk writes it, with the
 * scores the search and hk_mcte put on it. Text fields are NUL-terminated
 * (empty when the packed record lacks them); kinds are those of hk_cvtr. */
typedef struct HKBASEREC {
  char brefcode[4]; /**< 3-character reference code */
  char brefid[6];   /**< 5-character reference id */
  char bbldg[31];   /**< building name */
  char bparity[2];  /**< side of the street: "E", "O" or empty for both */
  char bqual1[13];  /**< qualifier of the low number (FLOOR, SHOP, ...) */
  char blotext[6];  /**< low premise number (the lower after unpacking) */
  char bqual2[13];  /**< qualifier of the high number */
  char bhitext[6];  /**< high premise number */
  char bfld9[35];   /**< 3-character code, at most 4 characters kept */
  char baddr[31];   /**< address text */
  char bside;       /**< 'B' both sides, 'E' even, 'O' odd */
  int32_t bscore;   /**< street score of the record's street */
  int32_t bcand;    /**< index of the record's street in the candidate list */
  int16_t bmscore;  /**< comparison score (0 after unpacking) */
  int32_t bpen;     /**< penalty count of the comparison */
  int32_t blorc;    /**< hk_cvtr result on blotext: 0, 1 or 2 */
  int32_t blonum;   /**< first value of blotext */
  char blotyp;      /**< its kind */
  int32_t blosub;   /**< second value of blotext */
  char blosubtyp;   /**< its kind */
  int32_t bhirc;    /**< hk_cvtr result on bhitext */
  int32_t bhinum;   /**< first value of bhitext */
  char bhityp;      /**< its kind */
  int32_t bhisub;   /**< second value of bhitext */
  char bhisubtyp;   /**< its kind */
} HKBASEREC;

/** One street of a region's street table (HKMCB::lvl2tab). */
typedef struct STREETENT {
  uint32_t boff;    /**< block offset in BASEDATA */
  uint32_t blen;    /**< block length */
  char *bpack;      /**< owning: cached packed block, or NULL */
  HKBASEREC *bunpk; /**< owning: cached unpacked records (bcnt), or NULL */
  uint16_t bcnt;    /**< number of base records in the block */
  uint8_t sscore;   /**< street score when it last became a candidate */
  char sname[33];   /**< street name, NUL-terminated */
} STREETENT;

/** A shared, read-only reference store (opaque): what every instance of the
 * same reference files reads through. */
typedef struct HKSTORE HKSTORE;

/** The match control block: the whole state of one geocoder instance.
 *
 * hk_mopn allocates it and hk_mclo frees it with everything marked owning
 * (an "R" copy owns only the files it opened itself); what points into the
 * reference store (the index, the street table, the memory images) is the
 * store's. Callers read it (the
 * counters, for instance) but should change nothing in it; one instance
 * serves one call at a time. */
typedef struct HKMCB {
  FILE *basefp;        /**< BASEDATA, open for reading */
  FILE *lvl1fp;        /**< LEVEL1, open and positioned after the index */
  FILE *lvl2fp;        /**< LEVEL2, open for reading */
  FILE *outfp;         /**< extract file when outmode is 1 or 2, else NULL */
  int32_t outmode;     /**< 0 none, 1 street extract, 2 base record extract */
  char outpath[200];   /**< extract file path (the open options from byte 1) */
  HKBASEREC *baserecs; /**< owning: unpacked records of the candidates */
  HKBASEREC *basecur;  /**< the same array, through which it is read */
  char *blockbuf;      /**< owning: buffer of one packed BASEDATA block */
  L1ENTRY *lvl1tab;    /**< the region index (the store's) */
  STREETENT *lvl2tab;  /**< street table of the current region (the store's) */
  char *lvl2mem;       /**< LEVEL2 image in memory mode (the store's) */
  char *basemem;       /**< BASEDATA image in memory mode (the store's) */
  uint16_t lvl2cnt;    /**< entries of lvl2tab */
  char *lvl2buf;       /**< owning: not used (segments are the store's) */
  STREETENT **cands;   /**< owning: candidate list */
  char lastkey[30];    /**< region key of the last search (zero: none) */
  int32_t lastidx;     /**< index of lastkey in lvl1tab */
  char lastname[31];   /**< street of the last search, NUL-terminated */
  int32_t lastcnt;     /**< candidates of the last search */
  int32_t laststat;    /**< passes the last search needed (0: the first) */
  int32_t passopt;     /**< pass option of the open options: 0, 1 or 2 */
  int32_t listmode;    /**< listing mode of the open options: 0 to 3 */
  int32_t cachemax;    /**< 3000000 (records are cached by the store) */
  int32_t cacheused;   /**< 0 (records are cached by the store) */
  int32_t lvl1cnt;     /**< entries of lvl1tab */
  int32_t nread;       /**< process calls made on the instance */
  int32_t nmatched;    /**< process calls that ended with match status '0' */
  char state;    /**< 'O' open instance, 'R' private copy of an "R" call */
  int32_t inmem; /**< 1 in memory mode (LEVEL2 and BASEDATA held whole) */
  /* Additions after the fields above. */
  /** Size of LEVEL2 (of the file, or of the image in memory mode) as found at
   * open, against which every offset and length read from it is checked. */
  int64_t lvl2size;
  int64_t basesize; /**< the same for BASEDATA */
  /* Capacities of the search's reusable buffers, so that a search on warm
   * caches allocates nothing and a change of region allocates only its
   * caches. Each one counts only while its pointer is non-NULL, so a copy
   * that clears the pointers (an "R" call) needs no other change. */
  int64_t candcap;    /**< entries of cands */
  int64_t reccap;     /**< records of baserecs */
  int64_t blockcap;   /**< bytes of blockbuf */
  int64_t lvl2bufcap; /**< bytes of lvl2buf */
  int64_t lvl2tabcap; /**< entries of lvl2tab */
  /** 1 when the entries of lvl2tab are in order of their first bytes, so
   * that a fuzzy scan may start at the first name with the input's initial
   * instead of walking past every name that sorts before it. */
  int32_t lvl2initials;
  /** 1 once hk_mopn has completed every step of the open; an instance whose
   * open failed keeps 0 and is refused by every call but the close. */
  int32_t opened;
  /** The reference store the block reads through, shared by every instance
   * of the same files; lvl1tab, lvl2tab and in memory mode lvl2mem and
   * basemem point into it and are not the block's to free. */
  struct HKSTORE *store;
  /** owning: the street score of each candidate in cands (candcap entries),
   * kept with the instance because the street table entries are shared. */
  uint8_t *candscore;
} HKMCB;

/** The handle area of one instance: word 0 holds the HKMCB address, the rest
 * is zero. Sixteen bytes whatever the pointer width. The caller owns it;
 * set it to zero before the open. */
typedef struct HKHANDLE {
  HKMCB *mcb;                          /**< the instance, or NULL */
  char reserved[16 - sizeof(HKMCB *)]; /**< zero */
} HKHANDLE;

/** The prepared input address, filled completely by hk_pad: every text is
 * left-justified with inner blank runs squeezed to one, cut at its
 * significant length and NUL-terminated; unused bytes are zero. */
typedef struct HKWORKREC {
  char wk_premno[9];    /**< premise number without leading zeros */
  char wk_street[31];   /**< street */
  char wk_bldg[31];     /**< building */
  char wk_unit[31];     /**< floor and unit line, both pieces joined */
  char wk_extra[31];    /**< further address line */
  char wk_district[31]; /**< district */
  char wk_region[31];   /**< region, the first-level key */
  char wk_refcode[4];   /**< reference code */
  char wk_unused[2];    /**< zero */
  char wk_mode;         /**< record mode, a copy of the input's */
  int32_t wk_premrc;    /**< hk_cvtr result on wk_premno: 0, 1 or 2 */
  int32_t wk_prem1;     /**< first value of the premise number */
  char wk_prem1kind;    /**< its kind */
  int32_t wk_prem2;     /**< second value */
  char wk_prem2kind;    /**< its kind */
} HKWORKREC;

/* ---- Premise number parser and messages ---------------------------------- */

/** Classifies a premise number text (NUL-terminated, not modified) into two
 * (value, kind) pairs: kinds 'N' number, 'A' letters, 'F' fraction code, 'G'
 * grid value, 'E' free-text code, ' ' none ("12A" gives 12 'N' and the letter
 * 'A'). Returns 0 converted, 1 text longer than 99 characters (outputs
 * untouched), 2 empty text (outputs 0, ' ', 0, ' '). Pure and reentrant; never
 * allocates; no argument may be NULL. */
ORLO_API int32_t hk_cvtr(const char *text, int32_t *v1, char *k1, int32_t *v2,
                         char *k2);

/** Prints " POSTAL-MATCH_ERROR " and the 49-character message of the return
 * code in byte 0 of rec (orlo_codes.h; "QMV-UNKNOWN ERROR MSG" for a code
 * without one) and a line end to standard error. Reads byte 0 only and writes
 * nothing into rec; NULL counts as an unknown code. Returns what fprintf
 * returns. Thread-safe as stdio is. */
ORLO_API int32_t hk_doem(const char *rec);

/* ---- Opening, closing and packed records ----------------------------------
 */

/** Opens an instance: allocates the HKMCB, stores it in *handle before anything
 * can fail, decodes the option string, opens the three files and loads the
 * LEVEL1 index (in memory mode, second option character 'M' or 'm', LEVEL2 and
 * BASEDATA are read whole too).
 *
 * The option string's first character selects listings ('Y', '2', '3'), passes
 * ('4' to '9', 'A', 'B') or an extract file named by the rest of the string
 * ('W' or 'R' streets, 'X' base records). Returns 0 on success (*retcode
 * untouched); 1 on failure with the code in *retcode: '3' no storage, '4' or
 * '5' a seek failed, '6' BASEDATA (or the extract file), '7' LEVEL1, '8'
 * LEVEL2 cannot be opened. Any string may be NULL (a NULL path fails with its
 * code). A failed open still leaves a block in *handle for hk_mclo to release.
 * The block owns its files and memory until hk_mclo. */
ORLO_API int32_t hk_mopn(HKMCB **handle, char *retcode, const char *options,
                         const char *level1, const char *level2,
                         const char *basedata);

/** Closes the files and frees the memory that the block in *handle owns for its
 * state ('O' instance, 'R' private copy), then the block itself; does nothing
 * when handle or *handle is NULL. The handle word is not cleared: forget it.
 * outrec is not used. Returns 0. Must not overlap any other call on the same
 * instance. */
ORLO_API int32_t hk_mclo(HKMCB **handle, char *outrec);

/** Decodes one packed field item (a header byte whose low five bits give the
 * length, then the data) into text, which needs at least 32 bytes and receives
 * a NUL-terminated string: the bytes of a text item, or the decimal digits of
 * a 1-, 2- or 4-byte big-endian number. Unknown item types decode to the empty
 * string. Reads at most 32 bytes at item. Reentrant. */
ORLO_API void hk_stsd(const unsigned char *item, char *text);

/** Unpacks the packed base record at packed (its length byte) into rec: every
 * text field, the parsed low and high numbers (swapped when the low one is the
 * higher), the side and a comparison score of 0; bscore, bcand and bpen are
 * left alone. The record must be well formed, as the search's bounded variant
 * checks first: this routine trusts its presence bits and item lengths.
 * Reentrant. */
ORLO_API void hk_unpk(HKBASEREC *rec, const unsigned char *packed);

/* ---- Candidate evaluation -------------------------------------------------
 */

/** Prepares the 200-byte input record inrec (read only) into *work, which it
 * fills completely (see HKWORKREC), parsing the premise number with hk_cvtr.
 * mcb is not used and may be NULL. Reentrant; never allocates. */
ORLO_API void hk_pad(const char *inrec, HKWORKREC *work, HKMCB *mcb);

/** Range test of a parsed premise number (i1, k1, i2, k2, on side side: 'E',
 * 'O' or 'B') against a reference range from (l1, lk1, l2, lk2) to (h1, hk1,
 * h2, hk2) on the reference's side rside, both being the letter that means
 * both sides ('B'). Returns 1 in range, possibly adding 1 or 2 to *score for a
 * close fit or taking 1 from it for a reference without number; 0 not in range
 * (score unchanged). Pure and reentrant. */
ORLO_API int32_t hk_mvir(int32_t i1, char k1, int32_t i2, char k2, char side,
                         int32_t l1, char lk1, int32_t l2, char lk2, int32_t h1,
                         char hk1, int32_t h2, char hk2, int32_t *score,
                         char rside, char both);

/** Compares one reference record with the prepared input: premise number
 * against the record's range, floor and unit against its qualifiers, building
 * names (with m_street) and reference codes. Returns 0 acceptable, 3 rejected
 * on the premise or unit number, 4 rejected otherwise. Sets rec->bmscore and
 * rec->bpen; may change work->wk_premrc. Reentrant (the building comparison
 * uses m_street's per-thread cache). */
ORLO_API uint32_t hk_mcte(HKBASEREC *rec, HKWORKREC *work);

/** Writes the 300-byte output record outrec from the input record inrec and the
 * chosen reference record (or NULL when there is none): street, building,
 * composed lines, reference codes, grade and the building's source; it keeps
 * byte 0 and turns a match status other than '5' into '0' when byte 0 is '1'.
 * work and mcb are not used. Reentrant. */
ORLO_API void hk_fret(HKWORKREC *work, HKBASEREC *chosen, const char *inrec,
                      HKMCB *mcb, char *outrec);

/* ---- Search ----------------------------------------------------------------
 */

/** Searches one prepared record in the instance whose HKMCB address is word 0
 * of *handle and writes the whole output record (return code and match status
 * included). inrec supplies the record mode; namelist (30000 bytes) and
 * reclist (7500 bytes) are written only in listing mode 3 and may be NULL
 * otherwise; level 0 or 1 starts with the exact pass, 2 or more with a fuzzy
 * one. Returns 0 when the search ran to its end, 1 when it stopped early (no
 * region, region not found, or an error code in byte 0); 1 as well when handle
 * or the block is NULL. Updates the instance's caches: one call per instance
 * at a time. area, zero and area30 are not used. */
ORLO_API int32_t hk_mpro(void *handle, HKWORKREC *work, char *outrec,
                         const char *inrec, char *namelist, char *reclist,
                         int32_t level, char *area, int32_t zero, char *area30);

/** Listing mode 1: writes six lines describing one base record rec of street
 * street to standard error. mcb is not used. Neither rec nor street may be
 * NULL. */
ORLO_API void hk_disd(const HKBASEREC *rec, const STREETENT *street,
                      const HKMCB *mcb);

/** Listing mode 3: fills the 150-byte summary slot (blank-padded, no
 * terminator) with street's name and rec's building, range, side, codes and
 * address text. inrec and mcb are not used; rec, street and slot may not be
 * NULL. */
ORLO_API void hk_dsus(const HKBASEREC *rec, const STREETENT *street,
                      const char *inrec, const HKMCB *mcb, char *slot);

/* ---- Call interface --------------------------------------------------------
 */

/** The matcher's one entry point. The first character of callType selects the
 * call; every outcome is in byte 0 of outRec (orlo_codes.h), and nothing
 * happens when outRec is NULL. handle points to the caller's HKHANDLE.
 *
 * - "O" open: outRec is set to blanks and '0'; hk_mopn opens level1Path,
 *   level2Path and basedataPath with options into word 0 of *handle.
 * - "P" (or "D") process: geocodes the 200-byte inRec (not changed) into the
 *   300-byte outRec, retrying with the building as the street when that
 *   helps; counts the record; uses namelist and reclist as hk_mpro does.
 * - "R" process in a private copy: the same on a copy of the instance that
 *   opens level2Path and basedataPath afresh (unless the second option
 *   character is 'M'), then closes the copy as "C" does; the instance is
 *   left unchanged.
 * - "C" close: writes the accuracy statement with hk_form to reportPath
 *   (reportLine1..6 as its free lines; the database date read from
 *   BASEDATA unless skipBaseDate is not empty) unless options starts with
 *   'L', 'W', 'R' or 'X' or the open options turned it off; then hk_mclo,
 *   and sets word 0 of *handle back to NULL.
 *
 * Other call types give '2'. A process call on a handle that is NULL, closed
 * or whose open failed gives 'A'; a NULL inRec gives '2'. Every string may be
 * NULL where its call does not need it. The records, strings and list areas
 * belong to the caller for the length of the call; the instance's memory is
 * owned by the instance until "C".
 *
 * Threads: takes no lock. Calls on different instances may run at once; calls
 * on one instance must not overlap one another or its close. A program that
 * keeps a table of handles must serialise opens and closes on it itself. */
ORLO_API void hk_mtci(const char *callType, void *handle, const char *inRec,
                      char *outRec, const char *options,
                      const char *skipBaseDate, const char *reportLine1,
                      const char *reportLine2, const char *reportLine3,
                      const char *reportLine4, const char *reportLine5,
                      const char *reportLine6, const char *reportPath,
                      const char *level1Path, const char *level2Path,
                      const char *basedataPath, char *namelist, char *reclist);

/** Writes the one-page address accuracy statement to path, replacing the file
 * (to standard output when it cannot be created): the five identity texts, the
 * six free lines line1..line6, the processing and database dates, the count
 * *nread with thousands separators and the share of *nmatched in it. Every
 * text is NUL-terminated and may be NULL (left empty); NULL counts count as 0.
 * Thread-safe as stdio is, apart from two calls writing the same path. */
ORLO_API void hk_form(const char *ident1, const char *ident2,
                      const char *ident3, const char *ident4,
                      const char *ident5, const char *line1, const char *line2,
                      const char *line3, const char *line4, const char *line5,
                      const char *line6, const char *procdate,
                      const char *dbdate, const int32_t *nread,
                      const int32_t *nmatched, const char *path);

/* ---- Input record mapping
 * ---------------------------------------------------- */

/** Size of the caller's source record read by hk_amat. */
enum { HKSRCREC_SIZE = 8528 };

/** Fills the 200-byte input record inrec (set to blanks first) from the
 * caller's HKSRCREC_SIZE-byte source record src, choosing among its groups of
 * address fields, recognising the region names and setting the record mode
 * ('1', '3' or '4'). Reads only src and writes only inrec; neither may be
 * NULL. Returns 0 (no meaning). Reentrant. */
ORLO_API int32_t hk_amat(const char *src, char *inrec);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_MATCHER_H */
