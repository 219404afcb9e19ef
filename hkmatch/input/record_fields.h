// The fields of the input and output records as FieldRefs, built from the
// one definition of the layouts in orlo_records.h.
#ifndef ORLO_HKMATCH_INPUT_RECORD_FIELDS_H
#define ORLO_HKMATCH_INPUT_RECORD_FIELDS_H

#include "common/fixed_field.h"
#include "orlo_records.h"

namespace orlo::in {
#define ORLO_IN(name, NAME) \
  inline constexpr FieldRef name{HKIN_##NAME##_OFF, HKIN_##NAME##_LEN};
ORLO_IN(filler1, FILLER1)
ORLO_IN(refcode, REFCODE)
ORLO_IN(premno, PREMNO)
ORLO_IN(street, STREET)
ORLO_IN(bldg, BLDG)
ORLO_IN(unit, UNIT)
ORLO_IN(extra, EXTRA)
ORLO_IN(district, DISTRICT)
ORLO_IN(region, REGION)
ORLO_IN(unitext, UNITEXT)
ORLO_IN(filler2, FILLER2)
ORLO_IN(mode, MODE)
#undef ORLO_IN
}  // namespace orlo::in

namespace orlo::out {
#define ORLO_OUT(name, NAME) \
  inline constexpr FieldRef name{HKOUT_##NAME##_OFF, HKOUT_##NAME##_LEN};
ORLO_OUT(retcode, RETCODE)
ORLO_OUT(premno, PREMNO)
ORLO_OUT(street, STREET)
ORLO_OUT(bldg, BLDG)
ORLO_OUT(unit, UNIT)
ORLO_OUT(district, DISTRICT)
ORLO_OUT(region, REGION)
ORLO_OUT(mode, MODE)
ORLO_OUT(line1, LINE1)
ORLO_OUT(line2, LINE2)
ORLO_OUT(refcode, REFCODE)
ORLO_OUT(refid, REFID)
ORLO_OUT(filler, FILLER)
ORLO_OUT(areachg, AREACHG)
ORLO_OUT(streetchg, STREETCHG)
ORLO_OUT(premchg, PREMCHG)
ORLO_OUT(matchstat, MATCHSTAT)
ORLO_OUT(refline, REFLINE)
ORLO_OUT(unitext, UNITEXT)
ORLO_OUT(grade, GRADE)
ORLO_OUT(bldgsrc, BLDGSRC)
#undef ORLO_OUT
}  // namespace orlo::out

#endif  // ORLO_HKMATCH_INPUT_RECORD_FIELDS_H
