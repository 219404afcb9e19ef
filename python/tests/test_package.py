"""The package against the sample database: single addresses, batches,
DataFrames row for row against hkgeocode, the comparison toolkit, and what
goes wrong (bad values, a missing database, a missing library)."""
import io
import os
import re
import shutil
import sys

import pandas as pd
import pytest

import orlo_hk
from orlo_hk import records
from conftest import SAMPLE_ADDRESSES, SAMPLE_DB, SOURCE, run, tool


@pytest.fixture(scope="module")
def geocoder():
    with orlo_hk.Geocoder(SAMPLE_DB) as g:
        yield g


def raw(**fields):
    """A 200-byte input record with fields placed as given."""
    places = {"premno": (10, 8), "street": (18, 30), "district": (133, 30),
              "region": (163, 30)}
    rec = bytearray(b" " * 200)
    for name, text in fields.items():
        off, width = places[name]
        rec[off:off + len(text)] = text.encode()[:width]
    return bytes(rec)


def test_single_addresses(geocoder):
    cases = [
        # (address, return code, match status, reference, reason matches)
        ({"premno": "22", "street": "Castle Peak Road",
          "district": "Sham Shui Po"}, "1", "0", "SSP 12831", None),
        ({"premno": "５", "street": "ＮＡＮＫＩＮＧ ＳＴＲＥＥＴ",
          "region": "Kln."}, "1", "0", "YMT 03673", None),
        ({"premno": 22, "street": "castle peak road", "region": "kowloon"},
         "1", "0", "SSP 12831", None),
        ({"premno": "8", "street": "彌敦道", "region": "九龍"}, "E", "", "",
         r"street: '彌' \(U\+5F4C\) has no Latin-1 form"),
        ({"premno": 1.5, "street": "NATHAN ROAD"}, "E", "", "",
         r"premno: 1.5 \(float\)"),
        ({"street": "X" * 31, "region": "HK"}, "E", "", "", r"^street: "),
        # Raw records are matched as they are: upper case finds the street,
        # the region spelt out is no key.
        (raw(premno="22", street="CASTLE PEAK ROAD", region="KLN"),
         "1", "0", "SSP 12831", None),
        (raw(premno="22", street="CASTLE PEAK ROAD", region="KOWLOON"),
         "0", "1", "", None),
        (b"short", "E", "", "", r"^record of 5 bytes, expected 200$"),
    ]
    for address, rc, ms, ref, reason in cases:
        r = geocoder.geocode(address)
        got = (r.return_code, r.match_status, f"{r.ref_code} {r.ref_id}"
               .strip())
        assert got == (rc, ms, ref), address
        assert r.matched == (ms == "0" and rc == "1")
        if reason:
            assert re.search(reason, r.return_meaning[len("bad input row: "):]
                             ), r.return_meaning


def test_geocode_many_is_geocode_in_order(geocoder):
    frame = pd.read_csv(SAMPLE_ADDRESSES, dtype=str, keep_default_na=False)
    addresses = frame.to_dict("records")
    # Bad addresses among the good ones must not shift or stop them.
    addresses[3:3] = [{"street": "彌敦道"}, b"x" * 199]
    many = geocoder.geocode_many(addresses)
    assert len(many) == len(addresses)
    assert many == [geocoder.geocode(a) for a in addresses]
    assert [r.bad for r in many[2:6]] == [False, True, True, False]
    assert sum(r.matched for r in many) > 150


def test_frame_equals_hkgeocode_row_for_row(tmp_path):
    people = tmp_path / "people.csv"
    with open(SAMPLE_ADDRESSES, "rb") as f:
        sample = f.read()
    people.write_bytes(sample + (
        ",22,Castle Peak Road,,,,Sham Shui Po,Kowloon,\n"
        ",8,彌敦道,,,,尖沙咀,九龍,\n"
        ",５,ＮＡＮＫＩＮＧ ＳＴＲＥＥＴ,,,,,Kln.,\n").encode())
    r = run([tool("hkgeocode"), "--quiet", "--db", SAMPLE_DB, str(people)])
    assert r.returncode == 1, r.stderr
    want = pd.read_csv(io.BytesIO(r.stdout), dtype=str,
                       keep_default_na=False)
    given = pd.read_csv(people, dtype=str, keep_default_na=False)
    got = orlo_hk.geocode_frame(given, SAMPLE_DB)
    pd.testing.assert_frame_equal(got, want)
    # The same with the caller's own column names, and in memory mode.
    renamed = given.rename(columns={"street": "Road", "region": "Area"})
    got = orlo_hk.geocode_frame(renamed, SAMPLE_DB, memory=True,
                                columns={"street": "Road", "region": "Area"})
    assert got[list(orlo_hk.RESULT_NAMES)].equals(
        want[list(orlo_hk.RESULT_NAMES)])


def test_frame_bad_values_and_names():
    df = pd.DataFrame({
        "premno": pd.array([22, pd.NA, float("nan"), True, "3"], dtype=object),
        "street": ["Castle Peak Road", "NATHAN ROAD", ["a list"], "x",
                   "Ferry Street"],
        "region": ["KLN", "KLN", "KLN", "KLN", "Kowloon"]})
    out = orlo_hk.geocode_frame(df, SAMPLE_DB)
    assert list(out["return_code"]) == ["1", "1", "E", "E", "0"]
    # Missing values are empty fields; a spelt-out region becomes its key.
    assert list(out["out_premno"][:2]) == ["22", ""]
    assert list(out["out_region"]) == ["KLN", "KLN", "", "", "KLN"]
    assert out["return_meaning"][2].startswith("bad input row: street: ")
    assert out["return_meaning"][3].startswith("bad input row: premno: ")
    assert list(out["line1"][2:4]) == ["", ""]
    for columns, message in [
            ({"road": "street"}, "unknown address field 'road'"),
            ({"street": "Road"}, "the frame has no column 'Road'"),
            (None, None)]:
        frame = df if columns else df.rename(columns=lambda c: c.upper())
        with pytest.raises(ValueError, match=message or "none of the"):
            orlo_hk.geocode_frame(frame, SAMPLE_DB, columns=columns)
    with pytest.raises(ValueError, match="already has a result column"):
        orlo_hk.geocode_frame(out, SAMPLE_DB)


def test_database_that_cannot_be_opened(tmp_path):
    only_basedata = tmp_path / "partial"
    only_basedata.mkdir()
    shutil.copy(os.path.join(SAMPLE_DB, "BASEDATA"), only_basedata)
    for db, code, file in [(tmp_path / "none", "6", "BASEDATA"),
                           (only_basedata, "7", "LEVEL1")]:
        with pytest.raises(orlo_hk.DatabaseError) as e:
            orlo_hk.Geocoder(db)
        assert e.value.code == code
        assert str(db) in str(e.value) and file in str(e.value)


def test_library_search_says_where_it_looked(tmp_path):
    script = "import orlo_hk; orlo_hk.Geocoder('.')"
    for variable, expect in [
            ({"ORLO_HK_LIBRARY": str(tmp_path / "gone.so")},
             [str(tmp_path / "gone.so") + " (ORLO_HK_LIBRARY): no such file"]),
            ({"ORLO_HK_LIBRARY": "", "LD_LIBRARY_PATH": ""},
             [os.path.join(SOURCE, "python", "orlo_hk",
                           "liborloHKGeocoder.so"),
              "liborloHKGeocoder.so (the loader's search path)"])]:
        env = dict(os.environ, **variable)
        r = run([sys.executable, "-c", script], env=env, text=True)
        assert r.returncode == 1
        assert "LibraryNotFound: cannot load liborloHKGeocoder.so" in r.stderr
        for text in expect:
            assert text in r.stderr


def test_comparison_toolkit():
    cases = [
        # Scores the library's own tests hold for these pairs.
        (orlo_hk.m_street, ("FIRST ST", "1ST ST"), 98),
        (orlo_hk.m_street, ("MAIN STREET", "MAIN ST"), 98),
        (orlo_hk.m_street, ("SMITH ST", "SMYTH ST"), 96),
        (orlo_hk.m_street, ("N", "NORTH"), 90),
        (orlo_hk.m_spllng, (" SMITH", " SMITH"), 100),
        (orlo_hk.m_spllng, ("", "SMITH"), 1),
        (orlo_hk.m_tgstr, ("MAIN 007", "MAIN   7"), 98),
        (orlo_hk.m_tgstr, (" ABC", " ABC"), 88),
        (orlo_hk.m_busnam, ("HANG SENG BANK", "HANG SENG BANK"), 100),
    ]
    for fn, texts, want in cases:
        assert fn(*texts) == want, (fn.__name__, texts)
    assert orlo_hk.m_street("NATHAN ROAD", "QUEENSWAY") < 90
    names = ["NATHAN RD", "NATHAN ROAD", "CANTON ROAD", "N", "X" * 40]
    assert orlo_hk.m_street_many("NATHAN ROAD", names) == \
        [orlo_hk.m_street("NATHAN ROAD".ljust(40), n.ljust(40))
         for n in names]
    with pytest.raises(ValueError, match="Latin-1"):
        orlo_hk.m_street("彌敦道", "NATHAN ROAD")


def test_output_layout_is_the_headers():
    with open(os.path.join(SOURCE, "include", "orlo_records.h")) as f:
        text = f.read()
    offsets = dict(re.findall(r"HKOUT_(\w+)_OFF = (\d+)", text))
    widths = dict(re.findall(r"HKOUT_(\w+)_LEN = (\d+)", text))
    from_header = {k.lower(): (int(offsets[k]), int(widths[k]))
                   for k in offsets}
    assert records.OUT_FIELDS == from_header


def test_command_help():
    r = run([sys.executable, "-m", "orlo_hk", "--help"], text=True)
    assert r.returncode == 0
    for text in ("geocode", "--scheduler ADDRESS", "--workers N",
                 "Exit status"):
        assert text in r.stdout
    r = run([sys.executable, "-m", "orlo_hk", "geocode", "in.csv"],
            text=True)
    assert r.returncode == 2 and "--db" in r.stderr
