"""One open geocoder instance, and the input records made from what people
write."""
import ctypes
import itertools
import math
import numbers
import operator
import os
from array import array

from . import _native
from .records import INPUT_FIELDS, GeocodeResult, LineResult, meaning

# The array type code of a pointer and of a size_t on this machine.
_WORD = "Q" if ctypes.sizeof(ctypes.c_void_p) == 8 else "I"

# Records per call of the batch routine: large enough that the crossing
# costs nothing, small enough to bound the buffers.
BATCH_RECORDS = 8192


class DatabaseError(OSError):
    """The reference database cannot be opened: the return code, its meaning
    and the folder."""

    def __init__(self, code, db_dir):
        self.code = code
        self.db_dir = db_dir
        super().__init__(f"cannot open the reference database {db_dir}: "
                         f"{meaning('R', code)} (return code {code})")


class BadInput(ValueError):
    """An address that cannot be made into an input record, with why."""


def field_bytes(name, value):
    """The bytes of one field value: text as UTF-8, bytes as they are, a
    whole number as its digits, None and NaN as empty. Raises BadInput for
    anything else."""
    if type(value) is str:  # the common case first
        return value.encode("utf-8", "surrogateescape")
    if value is None:
        return b""
    if isinstance(value, str):
        return value.encode("utf-8", "surrogateescape")
    if isinstance(value, (bytes, bytearray)):
        return bytes(value)
    if isinstance(value, bool):
        raise BadInput(f"{name}: {value!r} is not an address text")
    if isinstance(value, numbers.Integral):
        return str(int(value)).encode()
    if isinstance(value, numbers.Real):
        if math.isnan(value):
            return b""
        if float(value).is_integer():
            return str(int(value)).encode()
    raise BadInput(f"{name}: {value!r} ({type(value).__name__}) is not an "
                   "address text")


class _Normaliser:
    """orlo_norm_address with its argument arrays made once."""

    def __init__(self):
        self._lib = _native.library()
        self._texts = (ctypes.c_char_p * _native.NORM_FIELD_COUNT)()
        self._lengths = (ctypes.c_size_t * _native.NORM_FIELD_COUNT)()
        self._record = ctypes.create_string_buffer(_native.INREC_SIZE)
        self._fault = _native.NormFault()

    def record(self, values):
        """The 200-byte input record of nine field byte strings, tidied.
        Raises BadInput with the library's reason."""
        for i, v in enumerate(values):
            self._texts[i] = v
            self._lengths[i] = len(v)
        status = self._lib.orlo_norm_address(self._texts, self._lengths,
                                             self._record, self._fault)
        if status != 0:
            raise BadInput(self._fault.reason.decode("utf-8", "replace"))
        return self._record.raw

    def many(self, rows):
        """The records of many rows of nine field byte strings, tidied in one
        call: (their 200-byte records end to end, and for each row None or
        a BadInput with the reason it could not be tidied)."""
        flat = [v for row in rows for v in row]
        # The fields laid end to end in one buffer, and the pointer and
        # length arrays filled from plain integer arrays: filling ctypes
        # arrays element by element costs more than the tidying itself.
        blob = b"".join(flat)
        base = ctypes.cast(ctypes.c_char_p(blob), ctypes.c_void_p).value
        lengths = array(_WORD, map(len, flat))
        starts = array(_WORD, itertools.accumulate(lengths, initial=base))
        starts.pop()
        texts = (ctypes.c_char_p * len(flat)).from_buffer(starts)
        records = ctypes.create_string_buffer(len(rows) * _native.INREC_SIZE)
        statuses = (ctypes.c_int32 * len(rows))()
        self._lib.orlo_norm_many(
            texts, (ctypes.c_size_t * len(flat)).from_buffer(lengths),
            len(rows), records, statuses)
        faults = [None] * len(rows)
        for i, status in enumerate(statuses):
            if status != 0:  # rare: ask again, alone, for the reason
                try:
                    self.record(rows[i])
                except BadInput as e:
                    faults[i] = e
        return records.raw, faults


_FIELD_NAMES = frozenset(INPUT_FIELDS)


def encode_fields(values):
    """The bytes of the nine field values of an address (INPUT_FIELDS
    order; see field_bytes). Raises BadInput."""
    # The common case, every value text, is encoded in one call and split
    # again at the NULs put between the fields (a NUL inside a field takes
    # the general path, and the library refuses it).
    try:
        joined = "\0".join(values)
    except TypeError:  # a value that is not text
        pass
    else:
        if joined.count("\0") == len(INPUT_FIELDS) - 1:
            return joined.encode("utf-8", "surrogateescape").split(b"\0")
    return [field_bytes(name, v) for name, v in zip(INPUT_FIELDS, values)]


_ALL_FIELDS = operator.itemgetter(*INPUT_FIELDS)


def _fields_of(mapping):
    if not mapping.keys() <= _FIELD_NAMES:
        unknown = sorted(mapping.keys() - _FIELD_NAMES)[0]
        raise ValueError(f"unknown address field {unknown!r}; the fields are "
                         f"{', '.join(INPUT_FIELDS)}")
    try:
        values = _ALL_FIELDS(mapping)
    except KeyError:  # fields left out are empty
        values = [mapping.get(name) for name in INPUT_FIELDS]
    return encode_fields(values)


class Geocoder:
    """One open instance of the matcher on a reference database folder
    (LEVEL1, LEVEL2, BASEDATA). memory=True holds LEVEL2 and BASEDATA in
    memory. Instances of the same files share one reference store in the
    library, so a second one costs little.

    One Geocoder serves one thread at a time; give each thread its own.
    Use it as a context manager, or call close(). Raises DatabaseError when
    the database cannot be opened, LibraryNotFound when the library cannot
    be loaded."""

    def __init__(self, db_dir, memory=False):
        self._lib = _native.library()
        self._handle = ctypes.create_string_buffer(_native.HANDLE_SIZE)
        self._open = False
        self._normaliser = _Normaliser()
        self._line_info = _native.LineInfo()
        self.db_dir = os.fspath(db_dir)
        paths = [os.path.join(self.db_dir, f).encode()
                 for f in ("LEVEL1", "LEVEL2", "BASEDATA")]
        out = ctypes.create_string_buffer(_native.OUTREC_SIZE)
        self._lib.hk_mtci(b"O", self._handle, None, out,
                          b" M" if memory else b"", *[None] * 8, *paths,
                          None, None)
        self._open = True
        code = chr(out.raw[0])
        if code != "0":
            self.close()
            raise DatabaseError(code, self.db_dir)

    def close(self):
        """Closes the instance without an accuracy statement; closing twice
        does nothing."""
        if not self._open:
            return
        out = ctypes.create_string_buffer(_native.OUTREC_SIZE)
        self._lib.hk_mtci(b"C", self._handle, None, out, b"L",
                          *[None] * 13)
        self._open = False

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()

    def __del__(self):
        if getattr(self, "_open", False):
            self.close()

    def input_record(self, address=None, **fields):
        """The 200-byte input record of an address: a raw 200-byte record as
        it is; named fields (a mapping, or keywords: refcode, premno, street,
        building, unit, extra, district, region, mode) tidied by the
        library's input normalisation (case, blanks, full-width letters,
        the region from its spelling or the district). Raises BadInput with
        the reason when the address cannot be a record."""
        item = self._item(address, fields)
        if isinstance(item, list):
            return self._normaliser.record(item)
        return item

    @staticmethod
    def _item(address, fields=None):
        """What _match takes for one address: a checked raw record, or the
        nine field byte strings to tidy. Raises BadInput."""
        if isinstance(address, (bytes, bytearray, memoryview)):
            if fields:
                raise ValueError("a raw record takes no named fields")
            rec = bytes(address)
            if len(rec) != _native.INREC_SIZE:
                raise BadInput(f"record of {len(rec)} bytes, expected "
                               f"{_native.INREC_SIZE}")
            return rec
        mapping = dict(address or {}, **fields) if fields or \
            not hasattr(address, "keys") else address
        return _fields_of(mapping)

    def _match(self, items):
        """Geocodes items (a 200-byte record, nine field byte strings to
        tidy, or a BadInput) with one call to tidy and one to geocode per
        BATCH_RECORDS. Returns (output record, None) or (None, reason) for
        each item, in order."""
        size = _native.OUTREC_SIZE
        results = []
        for start in range(0, len(items), BATCH_RECORDS):
            chunk = items[start:start + BATCH_RECORDS]
            tidy = [k for k, item in enumerate(chunk) if type(item) is list]
            if tidy:
                chunk = list(chunk)
                records, faults = self._normaliser.many([chunk[k]
                                                         for k in tidy])
                for j, k in enumerate(tidy):
                    chunk[k] = faults[j] or records[j * _native.INREC_SIZE:
                                                    (j + 1) *
                                                    _native.INREC_SIZE]
            good = [item for item in chunk if type(item) is bytes]
            out = self.geocode_records(b"".join(good), len(good))
            at = 0
            for item in chunk:
                if type(item) is bytes:
                    results.append((out[at:at + size], None))
                    at += size
                else:
                    results.append((None, str(item)))
        return results

    def geocode(self, address=None, **fields):
        """Geocodes one address (see input_record) into a GeocodeResult. An
        address that cannot be a record gives a result with return code E
        and the reason, not an exception."""
        if fields or address is None:
            address = dict(address or {}, **fields)
        return self.geocode_many([address])[0]

    def geocode_line(self, line):
        """Geocodes an address written as one line of text ("Flat B, 12/F,
        22 Castle Peak Rd, Sham Shui Po"; str, or bytes in UTF-8 or
        Latin-1) with the library's line splitter: the likely splits are
        tried through the matcher and the best result kept. Returns a
        LineResult with the split kept, which split it was and its note. A
        line the splitter refuses (empty, too long, Chinese characters, a
        control character), or a value that is not text, gives return code
        E and the reason, not an exception. One crossing per line."""
        if not self._open:
            raise ValueError("the geocoder is closed")
        try:
            text = field_bytes("line", line)
        except BadInput as e:
            return LineResult(reason=str(e), status=None)
        inrec = ctypes.create_string_buffer(_native.INREC_SIZE)
        outrec = ctypes.create_string_buffer(_native.OUTREC_SIZE)
        info = self._line_info
        status = self._lib.orlo_line_geocode(self._handle, text, len(text),
                                             inrec, outrec, None, None, info)
        if status != _native.LINE_OK:
            return LineResult(reason=info.reason.decode("utf-8", "replace"),
                              status=status)
        return LineResult(outrec.raw, None, inrec.raw, status,
                          (info.split, info.tries,
                           info.note.decode("utf-8", "replace")))

    def geocode_lines(self, lines):
        """geocode_line of each line, in order, as a list."""
        return [self.geocode_line(line) for line in lines]

    def geocode_records(self, records, count):
        """Geocodes `count` 200-byte records laid end to end in `records`
        with one call of the library, and returns the 300-byte output
        records end to end."""
        if len(records) != count * _native.INREC_SIZE:
            raise ValueError(f"{len(records)} bytes are not {count} records")
        if not self._open:
            raise ValueError("the geocoder is closed")
        out = ctypes.create_string_buffer(count * _native.OUTREC_SIZE)
        self._lib.orlo_process_batch(self._handle, records, out, count)
        return out.raw

    def geocode_many(self, addresses):
        """Geocodes an iterable of addresses (raw 200-byte records, or
        mappings of named fields) and returns their results in order, one
        crossing into the library per BATCH_RECORDS records. Addresses that
        cannot be records get return code E and the reason; the rest are
        geocoded all the same."""
        items = []
        for address in addresses:
            try:
                items.append(self._item(address))
            except BadInput as e:
                items.append(e)
        return [GeocodeResult(record, reason)
                for record, reason in self._match(items)]
