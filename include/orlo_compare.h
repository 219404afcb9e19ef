/* The comparison library: likeness scores for street names, spellings,
 * general strings and business names, and the helpers they share.
 *
 * Texts are fixed-width, blank-padded upper-case fields (pointer and signed
 * 32-bit length); a blank is 0x20 only. Scores run from 100 (identical)
 * down. m_street keeps a one-entry cache of its first street per thread;
 * every other routine keeps no state. None allocates on the heap except
 * tg_isostd (its result) and tg_remac (its work buffer). */
#ifndef ORLO_COMPARE_H
#define ORLO_COMPARE_H

#include <stdint.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A word node: a word inside the caller's text. */
typedef struct MWORD {
  struct MWORD *next; /* NULL for the last word */
  struct MWORD *prev; /* NULL for the first word */
  char *text;         /* first byte of the word in the caller's text */
  int32_t len;        /* length of the word in bytes */
} MWORD;

ORLO_API int32_t m_isnumb(const char *text, int32_t len);
ORLO_API int32_t xm_lpck(char *field, int32_t len);
ORLO_API int32_t m_comprs(char *field, int32_t len);
ORLO_API void m_chcmp1(int32_t *errors, int32_t *tail, int32_t *repeats,
                       int32_t *mismatch, int32_t lena, int32_t lenb,
                       const char *a, const char *b);
/* Blanks ordinal suffixes (ST, ND, RD, TH) that follow a digit and are
 * followed by a blank, or a final IEME, in the len bytes of field. Reads and
 * writes only the field; a suffix that ends the field is kept. len <= 0 does
 * nothing. Reentrant. */
ORLO_API void m_fixord(char *field, int32_t len);
/* Abbreviates street-type words (STREET, ROAD, AVENUE, ...) anywhere in the
 * field, at most one occurrence per word, each replacement as long as its
 * word. The whole-word search is a NUL-terminated search: it reads the text
 * up to its first NUL, which must lie inside the field or in the three bytes
 * behind it (those bytes must be readable), and may rewrite text up to that
 * NUL. len <= 0 does nothing. Reentrant. */
ORLO_API void m_wrdrec(char *field, int32_t len);
/* Recodes the first and second word of the field through the word table
 * (FIRST -> 1ST, AVENUE -> blanks, ...), each replacement as long as its word.
 * A field that then begins "AV " or "BL " is rebuilt as "AVE " or "BLVD "
 * followed by the rest of its text (up to its first NUL or the field's end)
 * and a NUL: up to three bytes behind the field are written, so the caller's
 * buffer must have three writable bytes behind the field. The text pushed
 * past the field is no longer part of it. len <= 0 does nothing. Reentrant. */
ORLO_API void m_recode(char *field, int32_t len);
/* m_recode with the short forms that keep AVE, DES, RANG, RG and RUE; the
 * same three writable bytes behind the field are needed. */
ORLO_API void m_recode_new(char *field, int32_t len);
ORLO_API void m_iwrdls(MWORD *nodes, MWORD **head, MWORD **tail, int32_t len,
                       char *text);

/* Street name likeness, 0..100. options may be NULL; when not NULL it must be
 * writable (it is upper-cased in place). */
ORLO_API int32_t m_street(const char *s1, const char *s2, int32_t len,
                          char *options);

/* A set of street names prepared for m_stmany; opaque. */
typedef struct MSTREETS MSTREETS;

/* Prepares count street names for comparison with many input streets: each
 * name is a field of len bytes (blank-padded, need not be terminated) read
 * from names[i] and copied, so the caller's names may go once this returns.
 * options as m_street reads them (NULL for none; read, never written). The
 * normalised, recoded and packed form and the word list of every name are
 * made here, once. Returns the set, or NULL when count < 0, names is NULL
 * with count > 0, or storage fails. The set is immutable: any number of
 * threads may score against it at once. Free it with m_stfree. */
ORLO_API MSTREETS *m_stprep(const char *const *names, int32_t count,
                            int32_t len, const char *options);
/* Scores street (a field of the set's len bytes) against every name of the
 * set and writes scores[i], 0..100, for name i; scores must hold one int32_t
 * per name. Each score is the one m_street(street, names[i], len, options)
 * gives, and the calling thread's m_street cache is left as that run of calls
 * would leave it. Returns the number of names, or -1 (nothing written) when
 * set or scores is NULL. Never allocates on the heap. */
ORLO_API int32_t m_stmany(const MSTREETS *set, const char *street,
                          int32_t *scores);
/* Frees a set made by m_stprep; NULL does nothing. */
ORLO_API void m_stfree(MSTREETS *set);

ORLO_API int32_t m_spllng(const char *f1, const char *f2, int32_t len,
                          const char *options);
ORLO_API int32_t m_tgstr(const char *s1, const char *s2, int32_t len);
/* Returns a malloc'ed 3-byte text; the caller frees it with free(). */
ORLO_API char *tg_isostd(unsigned char ch);
/* Rewrites the NUL-terminated text inside a buffer of size bytes. Output
 * that grows to fill all size bytes is cut there and left without a NUL; when
 * the work buffer cannot be allocated the text is left unchanged. */
ORLO_API void tg_remac(char *text, int32_t size);

ORLO_API int32_t m_busnam(const char *n1, const char *n2, int32_t len,
                          const char *options);
ORLO_API int32_t m_insrtw(const MWORD *p, const MWORD *q);
ORLO_API int32_t m_trnsps(const MWORD *p, const MWORD *q);
ORLO_API int32_t m_spltwd(const MWORD *p, const MWORD *q);
ORLO_API int32_t m_allino(const MWORD *p, MWORD **q);
/* pool holds 100 nodes, *poolcount of them in use; a word that needs more
 * nodes than are left is not split (the list and *poolcount stay as they
 * were). */
ORLO_API void m_spltnd(MWORD *p, MWORD *pool, MWORD **head, int32_t *poolcount,
                       MWORD **tail);
ORLO_API void m_chcmp3(int32_t *charerrs, int32_t *score, const MWORD *p,
                       const MWORD *q, int32_t *initials, int32_t *noexact);
ORLO_API void m_fnlscr(int32_t *score, const MWORD *head1, const MWORD *head2,
                       int32_t worderrs, int32_t charerrs);
ORLO_API void m_dsplay(MWORD *head);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_COMPARE_H */
