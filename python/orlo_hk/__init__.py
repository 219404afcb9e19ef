"""Hong Kong address geocoding from Python: the orloHKGeocoder library
through ctypes, pandas DataFrames in and out, and batch runs on Dask.

    import orlo_hk
    with orlo_hk.Geocoder("build/release/data/sample") as g:
        r = g.geocode(premno="22", street="Castle Peak Road",
                      district="Sham Shui Po")
        print(r.return_code, r.match_status, r.line1, r.line2)
        r = g.geocode_line("Flat B, 12/F, 22 Castle Peak Rd, Sham Shui Po")
        print(r.split_street, r.split_unit, r.split_note, r.line1)

    out = orlo_hk.geocode_frame(df, "build/release/data/sample",
                                columns={"street": "Road"})

The library is looked for beside the package, then through the loader's
search path; ORLO_HK_LIBRARY names it explicitly."""
from ._native import LibraryNotFound
from .compare import (StreetNames, m_busnam, m_spllng, m_street,
                      m_street_many, m_tgstr)
from .frame import geocode_frame
from .geocoder import BadInput, DatabaseError, Geocoder
from .records import (INPUT_FIELDS, RESULT_NAMES, SPLIT_NAMES, GeocodeResult,
                      LineResult)


def geocode_dask(ddf, db_dir, columns=None, memory=False, line_column=None):
    """geocode_frame over a Dask DataFrame, one instance per worker process
    (see orlo_hk.cluster.geocode_dask)."""
    from .cluster import geocode_dask as run
    return run(ddf, db_dir, columns=columns, memory=memory,
               line_column=line_column)


__all__ = ["Geocoder", "GeocodeResult", "LineResult", "geocode_frame",
           "geocode_dask", "DatabaseError", "BadInput", "LibraryNotFound",
           "INPUT_FIELDS", "RESULT_NAMES", "SPLIT_NAMES", "m_street",
           "m_street_many", "StreetNames", "m_spllng", "m_tgstr", "m_busnam"]
