"""The library's comparison toolkit on Python strings: likeness scores from
100 (the same) down to 0.

The texts are compared as given, as the matcher compares them: write them in
upper case (the tables of street words, ordinals and business words are in
upper case). The routines compare fixed-width fields, and the width counts:
both texts are padded with blanks to 31 bytes, the width of the matcher's
street names, or to the longer text when it is longer; they are encoded as
Latin-1, and a character outside Latin-1 raises ValueError. Every function
may be called from any thread. StreetNames prepares a list of street names
once for scoring against many streets."""
import ctypes

from . import _native

# The narrowest field the texts are compared in: the matcher's street names.
FIELD_WIDTH = 31


def _latin1(text):
    try:
        return text.encode("latin-1")
    except UnicodeEncodeError as e:
        raise ValueError(f"{e.object!r}: {e.reason}; the comparison reads "
                         "Latin-1 text") from None


def _fields(a, b):
    a, b = _latin1(a), _latin1(b)
    n = max(FIELD_WIDTH, len(a), len(b))
    return a.ljust(n), b.ljust(n), n


def _options(options):
    return None if options is None else options.encode("latin-1")


def m_street(a, b, options=None):
    """Likeness of two street names (word recoding, ordinals, street-type
    words, consonant skeletons). options: keyword text such as "SQUISH"."""
    a, b, n = _fields(a, b)
    opts = None if options is None else \
        ctypes.create_string_buffer(options.encode("latin-1"))
    return _native.library().m_street(a, b, n, opts)


def m_spllng(a, b, options=None):
    """Likeness of two spellings of a word or name."""
    a, b, n = _fields(a, b)
    return _native.library().m_spllng(a, b, n, _options(options))


def m_tgstr(a, b):
    """Likeness of two general strings."""
    a, b, n = _fields(a, b)
    return _native.library().m_tgstr(a, b, n)


def m_busnam(a, b, options=None):
    """Likeness of two business names, word by word."""
    a, b, n = _fields(a, b)
    return _native.library().m_busnam(a, b, n, _options(options))


class StreetNames:
    """Street names prepared once for scoring against many streets: the
    library's prepared street comparison (m_stprep, m_stmany, m_stfree).
    scores(street) gives, for each name in order, what m_street(street,
    name) gives with both padded to the set's width (31, or the longest
    name, or `width` when given). The set is immutable, so any number of
    threads may score against it at once; close() (or the end of a with
    block) frees it, and it is freed when collected."""

    def __init__(self, names, options=None, width=None):
        self._lib = _native.library()
        self._set = None
        names = [_latin1(n) for n in names]
        self.width = max(FIELD_WIDTH, width or 0, *map(len, names))
        self.count = len(names)
        padded = (ctypes.c_char_p * len(names))(
            *(n.ljust(self.width) for n in names))
        prepared = self._lib.m_stprep(padded, len(names), self.width,
                                      _options(options))
        if not prepared:
            raise MemoryError("the street names could not be prepared")
        self._set = prepared

    def scores(self, street):
        """The score of street against every name, as a list. Raises
        ValueError when the street is wider than the set or not Latin-1."""
        if self._set is None:
            raise ValueError("the street names are closed")
        text = _latin1(street)
        if len(text) > self.width:
            raise ValueError(f"a street of {len(text)} characters is wider "
                             f"than the names' {self.width}; give width=")
        scores = (ctypes.c_int32 * max(1, self.count))()
        self._lib.m_stmany(self._set, text.ljust(self.width), scores)
        return list(scores[:self.count])

    def close(self):
        if self._set is not None:
            self._lib.m_stfree(self._set)
            self._set = None

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()

    def __del__(self):
        self.close()


def m_street_many(street, names, options=None):
    """m_street of one street against each of many names, as a list of
    scores, with every text padded to the widest of them (31 at least).
    For many streets against the same names, keep a StreetNames."""
    names = list(names)
    width = max(FIELD_WIDTH, len(street), *map(len, names))
    with StreetNames(names, options, width) as prepared:
        return prepared.scores(street)
