"""The library's comparison toolkit on Python strings: likeness scores from
100 (the same) down to 0.

The texts are compared as given, as the matcher compares them: write them in
upper case (the tables of street words, ordinals and business words are in
upper case). The routines compare fixed-width fields, and the width counts:
both texts are padded with blanks to 31 bytes, the width of the matcher's
street names, or to the longer text when it is longer; they are encoded as
Latin-1, and a character outside Latin-1 raises ValueError. Every function may be called from any
thread."""
import ctypes

from . import _native

# The narrowest field the texts are compared in: the matcher's street names.
FIELD_WIDTH = 31


def _fields(a, b):
    try:
        a, b = a.encode("latin-1"), b.encode("latin-1")
    except UnicodeEncodeError as e:
        raise ValueError(f"{e.object!r}: {e.reason}; the comparison reads "
                         "Latin-1 text") from None
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


def m_street_many(street, names, options=None):
    """m_street of one street against each of many names, as a list of
    scores. Where the library has the prepared street comparison (m_stprep,
    m_stmany, m_stfree), the names are prepared once and scored in one
    call; otherwise m_street is called for each name. The scores are the
    same either way."""
    names = list(names)
    if not names:
        return []
    width = max(FIELD_WIDTH, len(street), *(len(n) for n in names))
    lib = _native.library()
    if not hasattr(lib, "m_stprep"):
        return [m_street(street.ljust(width), n.ljust(width), options)
                for n in names]
    return _prepared_scores(lib, street, names, width, options)


def _prepared_scores(lib, street, names, width, options):
    encoded = [_fields(n.ljust(width), street.ljust(width))[0]
               for n in names]
    lib.m_stprep.argtypes = [ctypes.POINTER(ctypes.c_char_p), ctypes.c_int32,
                             ctypes.c_int32, ctypes.c_char_p]
    lib.m_stprep.restype = ctypes.c_void_p
    lib.m_stmany.argtypes = [ctypes.c_void_p, ctypes.c_char_p,
                             ctypes.POINTER(ctypes.c_int32)]
    lib.m_stmany.restype = ctypes.c_int32
    lib.m_stfree.argtypes = [ctypes.c_void_p]
    lib.m_stfree.restype = None
    array = (ctypes.c_char_p * len(encoded))(*encoded)
    prepared = lib.m_stprep(array, len(encoded), width, _options(options))
    if not prepared:
        raise MemoryError("the street names could not be prepared")
    try:
        scores = (ctypes.c_int32 * len(encoded))()
        lib.m_stmany(prepared, _fields(street.ljust(width), "")[0], scores)
        return list(scores)
    finally:
        lib.m_stfree(prepared)
