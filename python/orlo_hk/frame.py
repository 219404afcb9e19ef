"""Geocoding tables: rows of named address fields in, the result columns of
hkgeocode out, for pandas DataFrames and for the CSV partitions of the batch
command."""
import csv
import io
import re
from collections import Counter

from .geocoder import BadInput, Geocoder, encode_fields
from .records import (BAD_ROW_CODE, INPUT_FIELDS, RESULT_NAMES,
                      SPLIT_NAMES, bad_row_values, result_values)


def geocode_rows(geocoder, rows, prepared=False):
    """Geocodes rows of nine field values (INPUT_FIELDS order; see
    field_bytes for the values taken, or nine byte strings when prepared; a
    BadInput in the place of a row is a row already known to be bad) on one
    open Geocoder. Returns the result values of each row (RESULT_NAMES
    order), in row order. A row whose values cannot make an input record
    gets return code E and the reason; the other rows are geocoded all the
    same."""
    items = []
    for values in rows:
        if prepared or isinstance(values, BadInput):
            items.append(values if isinstance(values, BadInput)
                         else list(values))
            continue
        try:
            items.append(encode_fields(values))
        except BadInput as e:
            items.append(e)
    return [result_values(record) if record is not None
            else bad_row_values(reason)
            for record, reason in geocoder._match(items)]


def column_mapping(frame_columns, columns=None):
    """The frame column of each input field that the frame has: a field's
    own name unless `columns` maps it to another. Raises ValueError for an
    unknown field, a mapped column the frame lacks, or no field at all."""
    columns = dict(columns or {})
    for field, name in columns.items():
        if field not in INPUT_FIELDS:
            raise ValueError(f"unknown address field {field!r}; the fields "
                             f"are {', '.join(INPUT_FIELDS)}")
        if name not in frame_columns:
            raise ValueError(f"the frame has no column {name!r} (for "
                             f"{field})")
    mapping = {f: columns.get(f, f) for f in INPUT_FIELDS
               if columns.get(f, f) in frame_columns}
    if not mapping:
        raise ValueError("the frame has none of the address columns "
                         f"{', '.join(INPUT_FIELDS)}; map yours with columns=")
    return mapping


def _values(series):
    return series.astype(object).where(series.notna(), None).tolist()


def _refuse_clash(df, names):
    clash = [n for n in names if n in df.columns]
    if clash:
        raise ValueError(f"the frame already has a result column {clash[0]!r}")


def _add_columns(df, names, values):
    """A copy of df with the columns names holding the rows of values."""
    result = df.copy()
    columns = zip(*values) if values else [()] * len(names)
    for name, column in zip(names, columns):
        result[name] = list(column)
    return result


def geocode_with(geocoder, df, columns=None, line_column=None):
    """geocode_frame on an open Geocoder."""
    if line_column is not None:
        if columns:
            raise ValueError("columns= maps address fields; with line_column= "
                             "the address is one line")
        if line_column not in df.columns:
            raise ValueError(f"the frame has no column {line_column!r}")
        _refuse_clash(df, SPLIT_NAMES + RESULT_NAMES)
        values = [r.values() for r in
                  geocoder.geocode_lines(_values(df[line_column]))]
        return _add_columns(df, SPLIT_NAMES + RESULT_NAMES, values)
    mapping = column_mapping(df.columns, columns)
    _refuse_clash(df, RESULT_NAMES)
    n = len(df)
    # Missing values of every kind (None, NaN, pandas' NA) become None, and
    # empty fields, as fields without a column are.
    sources = [_values(df[mapping[f]]) if f in mapping else [""] * n
               for f in INPUT_FIELDS]
    return _add_columns(df, RESULT_NAMES, geocode_rows(geocoder,
                                                       zip(*sources)))


def geocode_frame(df, db_dir, columns=None, memory=False, line_column=None):
    """Geocodes a pandas DataFrame with one column per address field
    (refcode, premno, street, building, unit, extra, district, region,
    mode; fields without a column are empty). `columns` maps a field to the
    frame's own column name where they differ, e.g. {"street": "Road"}.
    Values are tidied as hkgeocode tidies its CSV fields.

    Returns a copy of the frame with hkgeocode's result columns added
    (return_code, return_meaning, match_status, match_meaning, out_premno,
    ..., building_source), all text. A row whose values cannot be an input
    record (a character outside Latin-1, a field too wide, a value that is
    not text or a whole number) gets return code E and the reason in
    return_meaning; it never stops the other rows.

    With line_column=NAME the addresses are the lines of text in that
    column, each split and geocoded as Geocoder.geocode_line does, and the
    split columns (split_premno ... split_note) come before the result
    columns, as hkgeocode --lines --column NAME writes them; a refused line
    gets return code E and the reason.

    Raises ValueError for column names that do not fit, DatabaseError when
    the database cannot be opened."""
    with Geocoder(db_dir, memory=memory) as g:
        return geocode_with(g, df, columns, line_column)


# ---- CSV text in and out, as hkgeocode reads and writes it ---------------

_NEEDS_QUOTES = re.compile(r'[,"\r\n]|^ | $').search


def csv_field(text):
    """One CSV field as hkgeocode writes it: quoted when it holds a comma, a
    quote or a line end, or starts or ends with a blank."""
    if _NEEDS_QUOTES(text):
        return '"' + text.replace('"', '""') + '"'
    return text


def csv_line(fields):
    """The fields as one CSV line without its end, as hkgeocode writes it.
    A joined line with one comma fewer than fields, no quote, no line end
    and no blank at its edges or beside a comma needs no quotes (a blank at
    a field's edge would show there)."""
    line = ",".join(fields)
    if line.count(",") != len(fields) - 1 or '"' in line or "\n" in line or \
            "\r" in line or ", " in line or " ," in line or \
            line.startswith(" ") or line.endswith(" "):
        return ",".join(map(csv_field, fields))
    return line


HEADER = ",".join(INPUT_FIELDS)
OUTPUT_HEADER = ",".join(INPUT_FIELDS + RESULT_NAMES) + "\n"


class Totals:
    """What the summary counts: records read, processed and bad, and the
    return codes and match statuses of the processed ones."""

    def __init__(self):
        self.read = self.processed = self.bad = 0
        self.by_code = Counter()
        self.by_status = Counter()

    def add_values(self, values):
        self.read += 1
        if values[0] == BAD_ROW_CODE:
            self.bad += 1
            return
        self.processed += 1
        self.by_code[values[0]] += 1
        self.by_status[values[2]] += 1

    def merge(self, other):
        self.read += other.read
        self.processed += other.processed
        self.bad += other.bad
        self.by_code.update(other.by_code)
        self.by_status.update(other.by_status)

    @property
    def matched(self):
        return self.by_status["0"]


def _csv_rows(text, first_line):
    """(line, fields or None, error) for each row of CSV text; a malformed
    row ends the text."""
    lines = io.StringIO(text, newline="")
    reader = csv.reader(lines, strict=True)
    line = first_line
    while True:
        start = line
        try:
            fields = next(reader)
        except StopIteration:
            return
        except csv.Error as e:
            yield start, None, (f"malformed CSV ({e}); the rest of the "
                                "partition is not read")
            return
        line = first_line + reader.line_num
        # An empty line is a row of one empty field, as hkgeocode reads it.
        yield start, fields or [""], None


def geocode_csv(geocoder, data, first_line):
    """Geocodes CSV rows (bytes, the header excluded; fields in UTF-8 or
    Latin-1) that start on line first_line of their file. Returns the output
    lines as bytes (the fields echoed byte for byte, the result columns in
    UTF-8, as hkgeocode writes them), the Totals, and (line, reason) for
    each bad row."""
    text = data.decode("latin-1")  # every byte kept, echoed as read
    rows, lines, bad = [], [], []
    for line, fields, error in _csv_rows(text, first_line):
        lines.append((line, fields or []))
        if error is None and len(fields) != len(INPUT_FIELDS):
            error = (f"expected {len(INPUT_FIELDS)} fields, found "
                     f"{len(fields)}")
        rows.append([f.encode("latin-1") for f in fields]
                    if error is None else BadInput(error))
    results = geocode_rows(geocoder, rows, prepared=True)
    totals = Totals()
    out = []
    quoted = {}  # the meanings, quoted once
    for (line, fields), values in zip(lines, results):
        totals.add_values(values)
        if values[0] == BAD_ROW_CODE:
            bad.append((line, values[1][len("bad input row: "):]))
        echoed = fields[:len(INPUT_FIELDS)]
        echoed += [""] * (len(INPUT_FIELDS) - len(echoed))
        for m in (values[1], values[3]):
            if m not in quoted:
                quoted[m] = csv_field(m)
        result = ",".join((csv_field(values[0]), quoted[values[1]],
                           csv_field(values[2]), quoted[values[3]],
                           csv_line(values[4:])))
        out.append(csv_line(echoed).encode("latin-1") + b"," +
                   result.encode() + b"\n")
    return b"".join(out), totals, bad
