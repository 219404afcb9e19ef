/** @file
 * The fixed-width records that cross the matcher's call interface.
 *
 * HKINREC is the 200-byte input address record and HKOUTREC the 300-byte
 * output record. Both are plain byte arrays owned by the caller: every
 * character field is blank-padded on the right with no terminator, numbers
 * are held as text, offsets count from 0. Each field has an offset (_OFF)
 * and a width (_LEN); this is the one definition of the layouts. The text is
 * upper case, in the caller's single-byte character set, as the reference
 * data holds it; the matcher compares bytes and folds no case. */
#ifndef ORLO_RECORDS_H
#define ORLO_RECORDS_H

/** Sizes of the two records and the offset and width of each field.
 *
 * Input record (HKINREC): FILLER1 and FILLER2 are not read; REFCODE an optional
 * 3-character reference code that raises or lowers a candidate's score; PREMNO
 * the premise (house) number as written; STREET; BLDG the building name (also
 * tried in the street's place when the first search is not good enough); UNIT
 * and UNITEXT the first 25 and last 5 characters of the 30-character floor and
 * unit line; EXTRA a further line (not compared); DISTRICT (echoed, not
 * compared); REGION the first-level key ("HK", "KLN", "NT"; blank means no
 * search); MODE the record mode ('1', '3', '4', 'E', 'F' or blank).
 *
 * Output record (HKOUTREC): RETCODE the return code (orlo_codes.h); PREMNO,
 * UNIT, UNITEXT, DISTRICT, REGION and MODE the input's unchanged; STREET and
 * BLDG the reference's street and building when a reference address was
 * written, else the input's (mode '3' swaps the two); LINE1 and LINE2 two
 * composed address lines; REFCODE and REFID the written reference's codes
 * (blank when none); AREACHG, STREETCHG and PREMCHG 'Y' when the district or
 * region, the street, or the premise number or unit changed (set only on match
 * status '0'); MATCHSTAT the match status; REFLINE the first 25 characters of
 * the reference's address text; GRADE '9' without a reference, else the first
 * digit of its penalty count; BLDGSRC 'Y' when BLDG is the reference's; FILLER
 * always blank. */
/* clang-format off */
enum {
  HKINREC_SIZE = 200,
  HKOUTREC_SIZE = 300,

  /* HKINREC */
  HKIN_FILLER1_OFF = 0, HKIN_FILLER1_LEN = 7,
  HKIN_REFCODE_OFF = 7, HKIN_REFCODE_LEN = 3,
  HKIN_PREMNO_OFF = 10, HKIN_PREMNO_LEN = 8,
  HKIN_STREET_OFF = 18, HKIN_STREET_LEN = 30,
  HKIN_BLDG_OFF = 48, HKIN_BLDG_LEN = 30,
  HKIN_UNIT_OFF = 78, HKIN_UNIT_LEN = 25,
  HKIN_EXTRA_OFF = 103, HKIN_EXTRA_LEN = 30,
  HKIN_DISTRICT_OFF = 133, HKIN_DISTRICT_LEN = 30,
  HKIN_REGION_OFF = 163, HKIN_REGION_LEN = 30,
  HKIN_UNITEXT_OFF = 193, HKIN_UNITEXT_LEN = 5,
  HKIN_FILLER2_OFF = 198, HKIN_FILLER2_LEN = 1,
  HKIN_MODE_OFF = 199, HKIN_MODE_LEN = 1,

  /* HKOUTREC */
  HKOUT_RETCODE_OFF = 0, HKOUT_RETCODE_LEN = 1,
  HKOUT_PREMNO_OFF = 1, HKOUT_PREMNO_LEN = 8,
  HKOUT_STREET_OFF = 9, HKOUT_STREET_LEN = 30,
  HKOUT_BLDG_OFF = 39, HKOUT_BLDG_LEN = 30,
  HKOUT_UNIT_OFF = 69, HKOUT_UNIT_LEN = 25,
  HKOUT_DISTRICT_OFF = 94, HKOUT_DISTRICT_LEN = 30,
  HKOUT_REGION_OFF = 124, HKOUT_REGION_LEN = 30,
  HKOUT_MODE_OFF = 154, HKOUT_MODE_LEN = 1,
  HKOUT_LINE1_OFF = 155, HKOUT_LINE1_LEN = 50,
  HKOUT_LINE2_OFF = 205, HKOUT_LINE2_LEN = 50,
  HKOUT_REFCODE_OFF = 255, HKOUT_REFCODE_LEN = 3,
  HKOUT_REFID_OFF = 258, HKOUT_REFID_LEN = 5,
  HKOUT_FILLER_OFF = 263, HKOUT_FILLER_LEN = 1,
  HKOUT_AREACHG_OFF = 264, HKOUT_AREACHG_LEN = 1,
  HKOUT_STREETCHG_OFF = 265, HKOUT_STREETCHG_LEN = 1,
  HKOUT_PREMCHG_OFF = 266, HKOUT_PREMCHG_LEN = 1,
  HKOUT_MATCHSTAT_OFF = 267, HKOUT_MATCHSTAT_LEN = 1,
  HKOUT_REFLINE_OFF = 268, HKOUT_REFLINE_LEN = 25,
  HKOUT_UNITEXT_OFF = 293, HKOUT_UNITEXT_LEN = 5,
  HKOUT_GRADE_OFF = 298, HKOUT_GRADE_LEN = 1,
  HKOUT_BLDGSRC_OFF = 299, HKOUT_BLDGSRC_LEN = 1
};
/* clang-format on */

/** True when field a ends where field b begins (a compile-time check). */
#define ORLO_RECORD_FOLLOWS(a, b) (a##_OFF + a##_LEN == b##_OFF)
/** A compile-time assertion in C and C++. */
#ifdef __cplusplus
#define ORLO_STATIC_ASSERT(c, m) static_assert(c, m)
#else
#define ORLO_STATIC_ASSERT(c, m) _Static_assert(c, m)
#endif
ORLO_STATIC_ASSERT(ORLO_RECORD_FOLLOWS(HKIN_FILLER1, HKIN_REFCODE) &&
                       ORLO_RECORD_FOLLOWS(HKIN_REFCODE, HKIN_PREMNO) &&
                       ORLO_RECORD_FOLLOWS(HKIN_PREMNO, HKIN_STREET) &&
                       ORLO_RECORD_FOLLOWS(HKIN_STREET, HKIN_BLDG) &&
                       ORLO_RECORD_FOLLOWS(HKIN_BLDG, HKIN_UNIT) &&
                       ORLO_RECORD_FOLLOWS(HKIN_UNIT, HKIN_EXTRA) &&
                       ORLO_RECORD_FOLLOWS(HKIN_EXTRA, HKIN_DISTRICT) &&
                       ORLO_RECORD_FOLLOWS(HKIN_DISTRICT, HKIN_REGION) &&
                       ORLO_RECORD_FOLLOWS(HKIN_REGION, HKIN_UNITEXT) &&
                       ORLO_RECORD_FOLLOWS(HKIN_UNITEXT, HKIN_FILLER2) &&
                       ORLO_RECORD_FOLLOWS(HKIN_FILLER2, HKIN_MODE) &&
                       HKIN_MODE_OFF + HKIN_MODE_LEN == HKINREC_SIZE,
                   "HKINREC fields must tile its 200 bytes");
ORLO_STATIC_ASSERT(ORLO_RECORD_FOLLOWS(HKOUT_RETCODE, HKOUT_PREMNO) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_PREMNO, HKOUT_STREET) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_STREET, HKOUT_BLDG) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_BLDG, HKOUT_UNIT) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_UNIT, HKOUT_DISTRICT) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_DISTRICT, HKOUT_REGION) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_REGION, HKOUT_MODE) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_MODE, HKOUT_LINE1) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_LINE1, HKOUT_LINE2) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_LINE2, HKOUT_REFCODE) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_REFCODE, HKOUT_REFID) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_REFID, HKOUT_FILLER) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_FILLER, HKOUT_AREACHG) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_AREACHG, HKOUT_STREETCHG) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_STREETCHG, HKOUT_PREMCHG) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_PREMCHG, HKOUT_MATCHSTAT) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_MATCHSTAT, HKOUT_REFLINE) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_REFLINE, HKOUT_UNITEXT) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_UNITEXT, HKOUT_GRADE) &&
                       ORLO_RECORD_FOLLOWS(HKOUT_GRADE, HKOUT_BLDGSRC) &&
                       HKOUT_BLDGSRC_OFF + HKOUT_BLDGSRC_LEN == HKOUTREC_SIZE,
                   "HKOUTREC fields must tile its 300 bytes");

#endif /* ORLO_RECORDS_H */
