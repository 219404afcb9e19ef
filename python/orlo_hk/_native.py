"""Finding and loading liborloHKGeocoder.so, and the C routines it exports
as ctypes functions with their argument and result types."""
import ctypes
import os

LIBRARY_NAME = "liborloHKGeocoder.so"
# An explicit path to the library; when set, it is the only place looked at.
LIBRARY_VARIABLE = "ORLO_HK_LIBRARY"

INREC_SIZE = 200
OUTREC_SIZE = 300
HANDLE_SIZE = 16
NAMELIST_SIZE = 30000
RECLIST_SIZE = 7500
NORM_FIELD_COUNT = 9


class LibraryNotFound(OSError):
    """The shared library could not be loaded from any of the places tried."""


class NormFault(ctypes.Structure):
    """ORLO_NORM_FAULT of orlo_normalise.h."""
    _fields_ = [("status", ctypes.c_int32), ("field", ctypes.c_int32),
                ("reason", ctypes.c_char * 200)]


class LineInfo(ctypes.Structure):
    """ORLO_LINE_INFO of orlo_lines.h."""
    _fields_ = [("status", ctypes.c_int32), ("split", ctypes.c_int32),
                ("tries", ctypes.c_int32), ("note", ctypes.c_char * 160),
                ("reason", ctypes.c_char * 200)]


LINE_OK = 0


def candidates():
    """The places the library is looked for, in order, as (what, path):
    the path in ORLO_HK_LIBRARY alone when it is set; otherwise the
    package's own folder, the folder that holds the package (where
    cmake --install puts both), and then the loader's search path
    (LD_LIBRARY_PATH, the ld.so cache, the system folders)."""
    explicit = os.environ.get(LIBRARY_VARIABLE)
    if explicit:
        return [(LIBRARY_VARIABLE, explicit)]
    here = os.path.dirname(os.path.abspath(__file__))
    return [("beside the package", os.path.join(here, LIBRARY_NAME)),
            ("beside the package", os.path.join(os.path.dirname(here),
                                                LIBRARY_NAME)),
            ("the loader's search path", LIBRARY_NAME)]


def _load():
    tried = []
    for what, path in candidates():
        if os.sep in path and not os.path.exists(path):
            tried.append(f"{path} ({what}): no such file")
            continue
        try:
            return ctypes.CDLL(path)
        except OSError as e:
            tried.append(f"{path} ({what}): {e}")
    raise LibraryNotFound(
        "cannot load " + LIBRARY_NAME + "; looked at:\n  " +
        "\n  ".join(tried) + "\nBuild it (scripts/build.sh release) and set " +
        LIBRARY_VARIABLE + " to its path, add its folder to LD_LIBRARY_PATH, "
        "or install it with cmake --install.")


def _declare(lib):
    c = ctypes
    cp, vp, i32 = c.c_char_p, c.c_void_p, c.c_int32
    lib.hk_mtci.argtypes = [cp, vp, cp, vp] + [cp] * 12 + [vp, vp]
    lib.hk_mtci.restype = None
    lib.orlo_process_batch.argtypes = [vp, cp, vp, i32]
    lib.orlo_process_batch.restype = i32
    lib.orlo_norm_address.argtypes = [c.POINTER(cp), c.POINTER(c.c_size_t),
                                      vp, c.POINTER(NormFault)]
    lib.orlo_norm_address.restype = i32
    lib.orlo_norm_many.argtypes = [c.POINTER(cp), c.POINTER(c.c_size_t),
                                   c.c_size_t, vp, c.POINTER(i32)]
    lib.orlo_norm_many.restype = c.c_int64
    for name in ("orlo_return_meaning", "orlo_status_meaning"):
        getattr(lib, name).argtypes = [c.c_char]
        getattr(lib, name).restype = cp
    lib.orlo_line_geocode.argtypes = [vp, cp, c.c_size_t, vp, vp, vp, vp,
                                      c.POINTER(LineInfo)]
    lib.orlo_line_geocode.restype = i32
    lib.m_street.argtypes = [cp, cp, i32, vp]
    lib.m_spllng.argtypes = [cp, cp, i32, cp]
    lib.m_tgstr.argtypes = [cp, cp, i32]
    lib.m_busnam.argtypes = [cp, cp, i32, cp]
    for name in ("m_street", "m_spllng", "m_tgstr", "m_busnam"):
        getattr(lib, name).restype = i32
    lib.m_stprep.argtypes = [c.POINTER(cp), i32, i32, cp]
    lib.m_stprep.restype = vp
    lib.m_stmany.argtypes = [vp, cp, c.POINTER(i32)]
    lib.m_stmany.restype = i32
    lib.m_stfree.argtypes = [vp]
    lib.m_stfree.restype = None
    return lib


_library = None


def library():
    """The loaded library (loaded on first use). Raises LibraryNotFound."""
    global _library
    if _library is None:
        _library = _declare(_load())
    return _library
