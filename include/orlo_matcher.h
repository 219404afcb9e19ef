/* The Hong Kong address matcher: its structures and routines.
 *
 * A geocoder instance is an HKMCB reached through word 0 of a 16-byte
 * HKHANDLE. Every call goes through hk_mtci; the other routines are exported
 * for callers and tools that need a single step of the work. Records are the
 * fixed-width byte arrays of orlo_records.h; return codes and match statuses
 * are named in orlo_codes.h. Unless a routine says otherwise, one instance
 * serves one call at a time; different instances may be used from different
 * threads at once.
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

/* One entry of the first-level (region) index held in memory. */
typedef struct L1ENTRY {
  char l1key[30]; /* region key, blank-padded, as stored in LEVEL1 */
  uint32_t l2off; /* offset of the region's segment in LEVEL2 */
  uint32_t l2len; /* length of the segment in bytes */
  uint16_t l2cnt; /* number of street records in the segment */
} L1ENTRY;

/* An unpacked reference (base) record with the scores the search puts on it.
 * Text fields are NUL-terminated. */
typedef struct HKBASEREC {
  char brefcode[4];
  char brefid[6];
  char bbldg[31];
  char bparity[2];
  char bqual1[13];
  char blotext[6];
  char bqual2[13];
  char bhitext[6];
  char bfld9[35];
  char baddr[31];
  char bside;      /* 'B' both sides, 'E' even, 'O' odd */
  int32_t bscore;  /* street score of the record's street */
  int32_t bcand;   /* index of the record's street in the candidate list */
  int16_t bmscore; /* comparison score */
  int32_t bpen;    /* penalty count */
  int32_t blorc;
  int32_t blonum;
  char blotyp;
  int32_t blosub;
  char blosubtyp;
  int32_t bhirc;
  int32_t bhinum;
  char bhityp;
  int32_t bhisub;
  char bhisubtyp;
} HKBASEREC;

/* One street of a region's street table. */
typedef struct STREETENT {
  uint32_t boff;    /* block offset in BASEDATA */
  uint32_t blen;    /* block length */
  char *bpack;      /* owning: cached packed block, or NULL */
  HKBASEREC *bunpk; /* owning: cached unpacked records (bcnt), or NULL */
  uint16_t bcnt;    /* number of base records in the block */
  uint8_t sscore;   /* street score when it last became a candidate */
  char sname[33];   /* street name, NUL-terminated */
} STREETENT;

/* A shared, read-only reference store (opaque). */
typedef struct HKSTORE HKSTORE;

/* The match control block: the whole state of one geocoder instance. */
typedef struct HKMCB {
  FILE *basefp;
  FILE *lvl1fp;
  FILE *lvl2fp;
  FILE *outfp;
  int32_t outmode; /* 0 none, 1 street extract, 2 base record extract */
  char outpath[200];
  HKBASEREC *baserecs; /* owning */
  HKBASEREC *basecur;
  char *blockbuf;     /* owning */
  L1ENTRY *lvl1tab;   /* owning (state 'O') */
  STREETENT *lvl2tab; /* owning */
  char *lvl2mem;      /* owning: LEVEL2 image in memory mode */
  char *basemem;      /* owning: BASEDATA image in memory mode */
  uint16_t lvl2cnt;
  char *lvl2buf;     /* owning: raw LEVEL2 segment of the current key */
  STREETENT **cands; /* owning: candidate list */
  char lastkey[30];
  int32_t lastidx;
  char lastname[31];
  int32_t lastcnt;
  int32_t laststat;
  int32_t passopt;
  int32_t listmode;
  int32_t cachemax;
  int32_t cacheused;
  int32_t lvl1cnt;
  int32_t nread;
  int32_t nmatched;
  char state; /* 'O' open instance, 'R' private copy of an "R" call */
  int32_t inmem;
  /* Additions after the fields above: the sizes of LEVEL2 and BASEDATA (of
   * the files, or of the images in memory mode) as found at open, against
   * which every offset and length read from the reference data is checked. */
  int64_t lvl2size;
  int64_t basesize;
  /* Capacities of the search's reusable buffers, so that a search on warm
   * caches allocates nothing and a change of region allocates only its
   * caches: entries of cands, records of baserecs, bytes of blockbuf, bytes
   * of lvl2buf, entries of lvl2tab. Each one counts only while its pointer
   * is non-NULL, so a copy that clears the pointers (an "R" call) needs no
   * other change. */
  int64_t candcap;
  int64_t reccap;
  int64_t blockcap;
  int64_t lvl2bufcap;
  int64_t lvl2tabcap;
  /* 1 when the entries of lvl2tab are in order of their first bytes, so
   * that a fuzzy scan may start at the first name with the input's initial
   * instead of walking past every name that sorts before it. */
  int32_t lvl2initials;
  /* 1 once hk_mopn has completed every step of the open; an instance whose
   * open failed keeps 0 and is refused by every call but the close. */
  int32_t opened;
  /* The reference store the block reads through (shared by every instance
   * of the same files; lvl1tab, lvl2tab and in memory mode lvl2mem and
   * basemem point into it and are not the block's to free), and the street
   * score of each candidate in cands (candcap entries), kept with the
   * instance because the street table entries are shared. */
  struct HKSTORE *store;
  uint8_t *candscore;
} HKMCB;

/* The handle area of one instance: word 0 holds the HKMCB address, the rest
 * is zero. Sixteen bytes whatever the pointer width. */
typedef struct HKHANDLE {
  HKMCB *mcb;
  char reserved[16 - sizeof(HKMCB *)];
} HKHANDLE;

/* The prepared input address (filled completely by hk_pad). */
typedef struct HKWORKREC {
  char wk_premno[9];
  char wk_street[31];
  char wk_bldg[31];
  char wk_unit[31];
  char wk_extra[31];
  char wk_district[31];
  char wk_region[31];
  char wk_refcode[4];
  char wk_unused[2];
  char wk_mode;
  int32_t wk_premrc;
  int32_t wk_prem1;
  char wk_prem1kind;
  int32_t wk_prem2;
  char wk_prem2kind;
} HKWORKREC;

/* ---- Premise number parser and messages ---------------------------------- */

/* Classifies a premise number text (NUL-terminated, not modified) into two
 * (value, kind) pairs. Returns 0 converted, 1 text longer than 99 characters
 * (outputs untouched), 2 empty text (outputs 0, ' ', 0, ' '). Pure and
 * reentrant; no argument may be NULL. */
ORLO_API int32_t hk_cvtr(const char *text, int32_t *v1, char *k1, int32_t *v2,
                         char *k2);

/* Prints " POSTAL-MATCH_ERROR <message>\n" to standard error for the return
 * code in byte 0 of rec; writes nothing into rec. Returns the result of the
 * print. */
ORLO_API int32_t hk_doem(const char *rec);

/* ---- Opening, closing and packed records ----------------------------------
 */

/* Opens an instance: allocates the HKMCB, stores it in *handle before anything
 * can fail, decodes the option string, opens the three files and loads the
 * LEVEL1 index (and in memory mode LEVEL2 and BASEDATA). Returns 0 on
 * success; 1 on failure with the code ('3' to '8') in *retcode. Any string
 * may be NULL. A failed open still leaves a block for hk_mclo to release. */
ORLO_API int32_t hk_mopn(HKMCB **handle, char *retcode, const char *options,
                         const char *level1, const char *level2,
                         const char *basedata);

/* Releases what the block in *handle owns for its state ('O' or 'R') and the
 * block itself; does nothing when *handle is NULL. The handle word is not
 * cleared. outrec is not used. Returns 0. */
ORLO_API int32_t hk_mclo(HKMCB **handle, char *outrec);

/* Decodes one packed field item into text (at least 32 bytes, receives a
 * NUL-terminated string). Unknown item types decode to the empty string. */
ORLO_API void hk_stsd(const unsigned char *item, char *text);

/* Unpacks the packed base record at `packed` (its length byte) into rec. The
 * record must be well formed; the search uses a bounded variant that checks
 * the record against its length first. */
ORLO_API void hk_unpk(HKBASEREC *rec, const unsigned char *packed);

/* ---- Candidate evaluation -------------------------------------------------
 */

/* Prepares the 200-byte input record into work. mcb is not used. */
ORLO_API void hk_pad(const char *inrec, HKWORKREC *work, HKMCB *mcb);

/* Range test of a parsed premise number against a reference range. Returns
 * 1 in range (score possibly adjusted), 0 not in range. */
ORLO_API int32_t hk_mvir(int32_t i1, char k1, int32_t i2, char k2, char side,
                         int32_t l1, char lk1, int32_t l2, char lk2, int32_t h1,
                         char hk1, int32_t h2, char hk2, int32_t *score,
                         char rside, char both);

/* Compares one reference record with the prepared input: 0 acceptable,
 * 3 rejected on the premise or unit number, 4 rejected otherwise. Sets
 * rec->bmscore and rec->bpen; may change work->wk_premrc. */
ORLO_API uint32_t hk_mcte(HKBASEREC *rec, HKWORKREC *work);

/* Writes the output record from the chosen reference record (or NULL). */
ORLO_API void hk_fret(HKWORKREC *work, HKBASEREC *chosen, const char *inrec,
                      HKMCB *mcb, char *outrec);

/* ---- Search ----------------------------------------------------------------
 */

/* Searches one prepared record in the instance whose HKMCB address is word 0
 * of *handle and writes the output record. Returns 0 when the search ran to
 * its end, 1 when it stopped early. area, zero and area30 are not used. */
ORLO_API int32_t hk_mpro(void *handle, HKWORKREC *work, char *outrec,
                         const char *inrec, char *namelist, char *reclist,
                         int32_t level, char *area, int32_t zero, char *area30);

/* Listing mode 1: six lines describing one base record on standard error. */
ORLO_API void hk_disd(const HKBASEREC *rec, const STREETENT *street,
                      const HKMCB *mcb);

/* Listing mode 3: fills one 150-byte summary slot. */
ORLO_API void hk_dsus(const HKBASEREC *rec, const STREETENT *street,
                      const char *inrec, const HKMCB *mcb, char *slot);

/* ---- Call interface --------------------------------------------------------
 */

/* The matcher's one entry point. callType's first character selects open
 * "O", process "P" (or "D"), private-copy process "R" or close "C"; every
 * outcome is in byte 0 of outRec. handle points to an HKHANDLE. */
ORLO_API void hk_mtci(const char *callType, void *handle, const char *inRec,
                      char *outRec, const char *options,
                      const char *skipBaseDate, const char *reportLine1,
                      const char *reportLine2, const char *reportLine3,
                      const char *reportLine4, const char *reportLine5,
                      const char *reportLine6, const char *reportPath,
                      const char *level1Path, const char *level2Path,
                      const char *basedataPath, char *namelist, char *reclist);

/* Writes the address accuracy statement to path (or standard output when
 * the file cannot be created). */
ORLO_API void hk_form(const char *ident1, const char *ident2,
                      const char *ident3, const char *ident4,
                      const char *ident5, const char *line1, const char *line2,
                      const char *line3, const char *line4, const char *line5,
                      const char *line6, const char *procdate,
                      const char *dbdate, const int32_t *nread,
                      const int32_t *nmatched, const char *path);

/* ---- Input record mapping
 * ---------------------------------------------------- */

/* Size of the caller's source record read by hk_amat. */
enum { HKSRCREC_SIZE = 8528 };

/* Fills the 200-byte input record from the caller's HKSRCREC_SIZE-byte
 * source record. Returns 0 (no meaning). */
ORLO_API int32_t hk_amat(const char *src, char *inrec);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_MATCHER_H */
