"""The 300-byte output record read into named fields, under the column names
that hkgeocode gives them, and the result object built on it."""
import operator

from . import _native

# (offset, width) of the output record's fields, as include/orlo_records.h
# lays them out (a test holds the two together).
OUT_FIELDS = {
    "retcode": (0, 1), "premno": (1, 8), "street": (9, 30),
    "bldg": (39, 30), "unit": (69, 25), "district": (94, 30),
    "region": (124, 30), "mode": (154, 1), "line1": (155, 50),
    "line2": (205, 50), "refcode": (255, 3), "refid": (258, 5),
    "filler": (263, 1), "areachg": (264, 1), "streetchg": (265, 1),
    "premchg": (266, 1), "matchstat": (267, 1), "refline": (268, 25),
    "unitext": (293, 5), "grade": (298, 1), "bldgsrc": (299, 1),
}

# (offset, width) of the input record's fields (the same header).
IN_FIELDS = {
    "filler1": (0, 7), "refcode": (7, 3), "premno": (10, 8),
    "street": (18, 30), "bldg": (48, 30), "unit": (78, 25),
    "extra": (103, 30), "district": (133, 30), "region": (163, 30),
    "unitext": (193, 5), "filler2": (198, 1), "mode": (199, 1),
}

# The input fields by name, in the order orlo_norm_address takes them (and
# of hkgeocode's input columns).
INPUT_FIELDS = ("refcode", "premno", "street", "building", "unit", "extra",
                "district", "region", "mode")

# The result columns in hkgeocode's order: the name, and the output field
# it shows (None for the two meanings, which are looked up).
RESULT_COLUMNS = (
    ("return_code", "retcode"), ("return_meaning", None),
    ("match_status", "matchstat"), ("match_meaning", None),
    ("out_premno", "premno"), ("out_street", "street"),
    ("out_building", "bldg"), ("out_unit", "unit"),
    ("out_district", "district"), ("out_region", "region"),
    ("line1", "line1"), ("line2", "line2"), ("ref_code", "refcode"),
    ("ref_id", "refid"), ("area_changed", "areachg"),
    ("street_changed", "streetchg"), ("premise_changed", "premchg"),
    ("ref_line", "refline"), ("grade", "grade"),
    ("building_source", "bldgsrc"),
)
RESULT_NAMES = tuple(name for name, _ in RESULT_COLUMNS)

# The columns of the split that a line was read into, named as hkgeocode
# --lines names them: input record fields, then which split was kept, how
# many were tried, and how the kept one read the line.
SPLIT_FIELDS = (("split_premno", "premno"), ("split_street", "street"),
                ("split_building", "bldg"), ("split_unit", "unit"),
                ("split_extra", "extra"), ("split_district", "district"),
                ("split_region", "region"))
SPLIT_NAMES = tuple(name for name, _ in SPLIT_FIELDS) + \
    ("split", "splits_tried", "split_note")

# The return code of a row that was not processed because its values could
# not make an input record.
BAD_ROW_CODE = "E"
PROCESSED_CODES = ("0", "1")

_meanings = {"R": {}, "M": {}}


def meaning(kind, code):
    """The plain meaning of a return code (kind 'R') or match status (kind
    'M'), from the library's one table of codes."""
    known = _meanings[kind]
    if code not in known:
        lib = _native.library()
        look = lib.orlo_return_meaning if kind == "R" else \
            lib.orlo_status_meaning
        text = look(code.encode("latin-1")) if len(code) == 1 else None
        known[code] = text.decode() if text is not None else (
            "unknown return code" if kind == "R" else "unknown match status")
    return known[code]


def _slice(field):
    off, width = OUT_FIELDS[field]
    return slice(off, off + width)


# The slice of the decoded record that each result column shows, in order;
# the two meanings take an empty slice (they are looked up), and the unit
# line is put together from its two fields.
_PICK = operator.itemgetter(*(_slice(f) if f is not None else slice(0, 0)
                              for _, f in RESULT_COLUMNS))
_UNIT_AT = [f for _, f in RESULT_COLUMNS].index("unit")
_UNIT, _UNITEXT = _slice("unit"), _slice("unitext")
_MATCHSTAT = OUT_FIELDS["matchstat"][0]


def result_values(rec):
    """The result columns of one output record, in RESULT_COLUMNS order: the
    fields without their trailing blanks, the unit line whole (its 25
    characters joined with the 5 of unitext)."""
    s = rec.decode("latin-1")
    values = [v.rstrip(" ") for v in _PICK(s)]
    values[_UNIT_AT] = (s[_UNIT] + s[_UNITEXT]).rstrip(" ")
    values[1] = meaning("R", s[0])
    values[3] = meaning("M", s[_MATCHSTAT])
    return values


def bad_row_values(reason):
    """The result columns of a row that was not processed: return code E, the
    reason, and every other column empty."""
    return [BAD_ROW_CODE, "bad input row: " + reason] + \
        [""] * (len(RESULT_COLUMNS) - 2)


def split_values(inrec, split, tries, note):
    """The split columns of a line's kept split, in SPLIT_NAMES order: the
    fields of its input record without trailing blanks (the unit line with
    its continuation), the split's number, the splits tried and the note."""
    s = inrec.decode("latin-1")
    values = []
    for _, field in SPLIT_FIELDS:
        off, width = IN_FIELDS[field]
        text = s[off:off + width]
        if field == "unit":
            off, width = IN_FIELDS["unitext"]
            text += s[off:off + width]
        values.append(text.rstrip(" "))
    return values + [str(split), str(tries), note]


class GeocodeResult:
    """The result of one address: every result column as an attribute (the
    names of hkgeocode's columns: return_code, return_meaning, match_status,
    line1, line2, ref_code, ...), and `record`, the 300-byte output record
    (None for a bad input). Values are decoded when first read."""
    __slots__ = ("record", "reason", "_values")
    NAMES = RESULT_NAMES
    _INDEX = {name: i for i, name in enumerate(NAMES)}

    def __init__(self, record=None, reason=None):
        self.record = record
        self.reason = reason  # why the input was bad; None when it was not
        self._values = None

    def values(self):
        """The columns (NAMES) in order, as a list of strings."""
        if self._values is None:
            self._values = self._decode()
        return self._values

    def _decode(self):
        return (bad_row_values(self.reason) if self.record is None
                else result_values(self.record))

    def as_dict(self):
        return dict(zip(self.NAMES, self.values()))

    @property
    def bad(self):
        """True when the input could not be made into a record."""
        return self.record is None

    @property
    def processed(self):
        """True when the matcher processed the record (return code 0 or 1)."""
        return self.record is not None and chr(self.record[0]) in \
            PROCESSED_CODES

    @property
    def matched(self):
        """True when a reference address was written (match status 0)."""
        return self.processed and self.record[267:268] == b"0"

    def __getattr__(self, name):
        try:
            index = self._INDEX[name]
        except KeyError:
            raise AttributeError(name) from None
        return self.values()[index]

    def _key(self):
        return self.record, self.reason

    def __eq__(self, other):
        return type(other) is type(self) and self._key() == other._key()

    _SHOWN = ("return_code", "match_status", "line1", "line2", "ref_code",
              "ref_id")

    def __repr__(self):
        v = self.as_dict()
        shown = ", ".join(f"{k}={v[k]!r}" for k in self._SHOWN if v[k])
        if self.bad:
            shown += f", reason={self.reason!r}"
        return f"{type(self).__name__}({shown})"


class LineResult(GeocodeResult):
    """The result of an address written as one line: the split columns
    (split_premno ... split_region, split, splits_tried, split_note, as
    hkgeocode --lines writes them) and then the result columns, all as
    attributes; `input_record`, the 200-byte record of the split kept (None
    when the line was refused); `status`, the splitter's outcome (0, or the
    status of orlo_lines.h that says why the line was refused, with the
    reason in `reason` and return code E; None when the value given was not
    text)."""
    __slots__ = ("input_record", "status", "_split")
    NAMES = SPLIT_NAMES + RESULT_NAMES
    _INDEX = {name: i for i, name in enumerate(NAMES)}
    _SHOWN = ("split_premno", "split_street", "split_building",
              "split_region", "split") + GeocodeResult._SHOWN

    def __init__(self, record=None, reason=None, input_record=None,
                 status=0, split=(0, 0, "")):
        super().__init__(record, reason)
        self.input_record = input_record
        self.status = status
        self._split = split  # (split kept, splits tried, note)

    def _decode(self):
        if self.record is None:
            return [""] * len(SPLIT_NAMES) + bad_row_values(self.reason)
        return split_values(self.input_record, *self._split) + \
            result_values(self.record)

    def _key(self):
        return self.record, self.reason, self.input_record, self._split
