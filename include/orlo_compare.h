/** @file
 * The comparison library: likeness scores for street names, spellings, general
 * strings and business names, and the helpers they share.
 *
 * Texts are fixed-width, blank-padded upper-case fields (pointer and signed
 * 32-bit length); a blank is 0x20 only, and no routine folds case. Scores run
 * from 100 (identical) down. m_street keeps a one-entry cache of its first
 * street per thread; every other routine keeps no state, so all of them may
 * run on many threads at once as long as no two calls write the same field.
 * None allocates on the heap except tg_isostd (its result) and tg_remac (its
 * work buffer). A pointer may be NULL only where a routine says so. */
#ifndef ORLO_COMPARE_H
#define ORLO_COMPARE_H

#include <stdint.h>

#include "orlo_api.h"

#ifdef __cplusplus
extern "C" {
#endif

/** A word node of the word-level comparisons: one word inside the caller's
 * text. m_iwrdls builds a list of them in an array the caller owns; the list
 * is valid as long as that array and the text. */
typedef struct MWORD {
  struct MWORD *next; /**< NULL for the last word */
  struct MWORD *prev; /**< NULL for the first word */
  char *text;         /**< first byte of the word in the caller's text */
  int32_t len;        /**< length of the word in bytes */
} MWORD;

/** Returns 1 when any of the first len bytes of text is a digit '0' to '9',
 * else 0 (also for len <= 0, when text may be NULL). Reads only those bytes;
 * reentrant. */
ORLO_API int32_t m_isnumb(const char *text, int32_t len);
/** Removes every blank of the len bytes of field, packing the other bytes to
 * the left in order and blank-filling the rest; returns the number of
 * non-blank bytes. An all-blank field or len <= 0 returns 0 and changes
 * nothing. Works in place for any length; reentrant, never allocates. */
ORLO_API int32_t xm_lpck(char *field, int32_t len);
/** Turns the field into its consonant skeleton in place: over its significant
 * length, inner vowels (A, E, I, O, U; never the first or last byte) and
 * letters that repeat the byte before them become blanks, and the rest is
 * packed to the left as by xm_lpck ('MILLER' gives 'MLR'). Returns the
 * skeleton's length; len <= 0 returns 0. Reentrant, never allocates. */
ORLO_API int32_t m_comprs(char *field, int32_t len);
/** Aligns text a (lena bytes) with text b (lenb bytes) character by character
 * and writes four counts: *errors (substitutions, insertions, deletions,
 * transpositions), *repeats (a doubled letter one side has once), *tail
 * (characters left over at the end of the longer side) and *mismatch (1 when
 * the last step was a disagreement). The look-ahead reads up to two bytes past
 * each length, so both texts need two readable bytes behind them. With a
 * length of 0 or less nothing is aligned and *tail is the other length. All
 * four pointers must be valid; reentrant, never allocates. */
ORLO_API void m_chcmp1(int32_t *errors, int32_t *tail, int32_t *repeats,
                       int32_t *mismatch, int32_t lena, int32_t lenb,
                       const char *a, const char *b);
/** Blanks ordinal suffixes (ST, ND, RD, TH) that follow a digit and are
 * followed by a blank, or a final IEME, in the len bytes of field ('21ST ST'
 * gives '21   ST'). Reads and writes only the field; a suffix that ends the
 * field is kept. len <= 0 does nothing. Reentrant. */
ORLO_API void m_fixord(char *field, int32_t len);
/** Abbreviates street-type words (STREET, ROAD, AVENUE, ...) anywhere in the
 * field, at most one occurrence per word, each replacement as long as its word
 * ('MAIN STREET' gives 'MAIN ST    '). The whole-word search is a
 * NUL-terminated search: it reads the text up to its first NUL, which must lie
 * inside the field or in the three bytes behind it (those bytes must be
 * readable), and may rewrite text up to that NUL. len <= 0 does nothing.
 * Reentrant. */
ORLO_API void m_wrdrec(char *field, int32_t len);
/** Recodes the first and second word of the field through the word table (FIRST
 * -> 1ST, AVENUE -> blanks, ...), each replacement as long as its word. A
 * field that then begins "AV " or "BL " is rebuilt as "AVE " or "BLVD "
 * followed by the rest of its text (up to its first NUL or the field's end)
 * and a NUL: up to three bytes behind the field are written, so the caller's
 * buffer must have three writable bytes behind the field. The text pushed past
 * the field is no longer part of it. len <= 0 does nothing. Reentrant. */
ORLO_API void m_recode(char *field, int32_t len);
/** m_recode with the short forms that keep AVE, DES, RANG, RG and RUE; the same
 * three writable bytes behind the field are needed. */
ORLO_API void m_recode_new(char *field, int32_t len);
/** Builds the list of the words (runs of non-blanks) in the first len bytes of
 * text, in the caller's array nodes, which must hold 29 nodes: at most 29
 * words are listed, later ones are ignored. *head and *tail receive the first
 * and last node (both NULL when there is no word). Before a word is listed,
 * "+" becomes "&", "AND" becomes "&", "LIMITED" "LTD", "CORPORATION" "CORP"
 * and "INCORPORATED" "INC" in the text itself (padded with blanks), and the
 * node gets the shorter length. The nodes point into text. Reentrant, never
 * allocates. */
ORLO_API void m_iwrdls(MWORD *nodes, MWORD **head, MWORD **tail, int32_t len,
                       char *text);

/** Street name likeness of s1 and s2, 0 (unlike) to 100 (same), after recoding
 * street words, ordinals, leading zeros and blanks. Reads len bytes of each
 * (at most 99 count; need not be terminated); neither is changed. options:
 * NULL, or a writable NUL-terminated text that is upper-cased in place; "DI"
 * at its start or ";DI" anywhere folds Latin-1 letters (0xC4 to AE, 0xDF to
 * SS, ...), "TYPE" at its start keeps AVE, RUE and the like instead of
 * dropping them.
 *
 * Keeps a one-entry cache of the last s1 per thread, so that one street
 * compared with many is prepared once; safe to call from many threads at once.
 * Never allocates on the heap. */
ORLO_API int32_t m_street(const char *s1, const char *s2, int32_t len,
                          char *options);

/** A set of street names prepared for m_stmany; opaque. */
typedef struct MSTREETS MSTREETS;

/** Prepares count street names for comparison with many input streets: each
 * name is a field of len bytes (blank-padded, need not be terminated) read
 * from names[i] and copied, so the caller's names may go once this returns.
 * options as m_street reads them (NULL for none; read, never written). The
 * normalised, recoded and packed form and the word list of every name are
 * made here, once. Returns the set, or NULL when count < 0, names is NULL
 * with count > 0, or storage fails. The set is immutable: any number of
 * threads may score against it at once. Free it with m_stfree. */
ORLO_API MSTREETS *m_stprep(const char *const *names, int32_t count,
                            int32_t len, const char *options);
/** Scores street (a field of the set's len bytes) against every name of the
 * set and writes scores[i], 0..100, for name i; scores must hold one int32_t
 * per name. Each score is the one m_street(street, names[i], len, options)
 * gives, and the calling thread's m_street cache is left as that run of calls
 * would leave it. Returns the number of names, or -1 (nothing written) when
 * set or scores is NULL. Never allocates on the heap. */
ORLO_API int32_t m_stmany(const MSTREETS *set, const char *street,
                          int32_t *scores);
/** Frees a set made by m_stprep; NULL does nothing. */
ORLO_API void m_stfree(MSTREETS *set);

/** Spelling likeness of f1 and f2 (len bytes each, not changed): 100 equal, 96
 * when one is hyphenated and the other begins with one of its parts, 2 to 99
 * by a weighted character comparison, 1 when exactly one is blank, 0 when both
 * are. options: NULL or a NUL-terminated text (not changed, case counts): "DI"
 * at its start or ";DI" folds Latin-1 letters, "SQUISH" at its start or
 * ";SQUISH" removes apostrophes and blanks first; options are ignored for len
 * above 100. Reentrant, never allocates. */
ORLO_API int32_t m_spllng(const char *f1, const char *f2, int32_t len,
                          const char *options);
/** General string likeness of s1 and s2 (len bytes each, at most 99 count; not
 * changed): 100 identical, lower for less alike after leading zeros, short
 * words and blanks are set aside; two very different texts may score below 0.
 * len <= 0 gives 0. Reentrant, never allocates. */
ORLO_API int32_t m_tgstr(const char *s1, const char *s2, int32_t len);
/** Returns the plain transliteration of one Latin-1 byte as a newly allocated
 * NUL-terminated text of one or two characters (0xC9 gives "E", 0xC6 "AE",
 * 0xDE "TH", '&' a blank; bytes without a rule come back as they are). The
 * caller owns the 3-byte block and frees it with free(). Returns NULL when it
 * cannot be allocated. Reentrant. */
ORLO_API char *tg_isostd(unsigned char ch);
/** Transliterates the NUL-terminated text inside a buffer of size bytes in
 * place, byte by byte as tg_isostd does: only bytes with a rule change (0xFC
 * becomes UE and 'e' becomes E, while 'l' stays). Output that grows to fill
 * all size bytes is cut there and left without a NUL. Allocates a work buffer
 * of size bytes and frees it before returning; when it cannot be allocated the
 * text is left unchanged. NULL or size <= 0 does nothing. Reentrant. */
ORLO_API void tg_remac(char *text, int32_t size);

/** Business name likeness of n1 and n2 (len bytes each, at most 99 count; not
 * changed), aligning them word by word: 100 identical (also 'ACME LIMITED'
 * against 'ACME LTD'), lower for missing, swapped, split, abbreviated or
 * misspelt words; a blank name against any name scores 50. options: NULL or a
 * NUL-terminated text (not changed) that is exactly, or holds after a ';',
 * "COMPACT" (consonant-skeleton comparison), "SORT" (order-free word sets) or
 * "DI" (fold Latin-1 letters first). Reentrant, never allocates. */
ORLO_API int32_t m_busnam(const char *n1, const char *n2, int32_t len,
                          const char *options);
/** Word-level test of m_busnam on two nodes: 1 when p has a following word
 * equal to q's word (p's word is an extra word), else 0 (also when either is
 * NULL). Reads the nodes and their text only. */
ORLO_API int32_t m_insrtw(const MWORD *p, const MWORD *q);
/** Word-level test: 1 when p and q both have a following word, p's word equals
 * q's following word and p's following word equals q's word (two words
 * swapped), else 0 (also when either is NULL). */
ORLO_API int32_t m_trnsps(const MWORD *p, const MWORD *q);
/** Word-level test: 1 when p's word has at least two characters and the words
 * from q on are single letters that spell it, else 0 (also when p is NULL). */
ORLO_API int32_t m_spltwd(const MWORD *p, const MWORD *q);
/** Acronym test: 1 when p's word has more than two characters and they are the
 * first letters of as many consecutive words from *q on; *q then moves past
 * those words. Else 0 with *q unchanged (also when p or q is NULL). */
ORLO_API int32_t m_allino(const MWORD *p, MWORD **q);
/** Replaces node p in its list by one single-letter node per character of its
 * word, taken from pool (100 nodes, *poolcount of them in use, which grows by
 * the word's length); *head or *tail is updated when p was first or last. A
 * word that needs more nodes than are left is not split (the list and
 * *poolcount stay as they were); NULL p, pool or poolcount does nothing. */
ORLO_API void m_spltnd(MWORD *p, MWORD *pool, MWORD **head, int32_t *poolcount,
                       MWORD **tail);
/** Compares the words of p and q and charges the running score of m_busnam:
 * when one word begins the other, *score loses 2 and *initials grows by 1 for
 * a single letter, else *noexact becomes 0; otherwise each spelling difference
 * adds to *charerrs and takes 1 or 2 from *score. NULL p or q does nothing;
 * the four counters must be valid. */
ORLO_API void m_chcmp3(int32_t *charerrs, int32_t *score, const MWORD *p,
                       const MWORD *q, int32_t *initials, int32_t *noexact);
/** Final deductions of m_busnam: counts the words and characters of the lists
 * from head1 and head2 and takes 25 or 10 from *score when worderrs or
 * charerrs are high for names of that size. NULL heads count as empty lists. */
ORLO_API void m_fnlscr(int32_t *score, const MWORD *head1, const MWORD *head2,
                       int32_t worderrs, int32_t charerrs);
/** Prints the word list from head to standard output for diagnosis: each word's
 * length and characters and a blank, then a line end. NULL prints only the
 * line end. */
ORLO_API void m_dsplay(MWORD *head);

#ifdef __cplusplus
}
#endif

#endif /* ORLO_COMPARE_H */
