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


def test_lines_equal_hkgeocode_lines_row_for_row(tmp_path, geocoder):
    lines = tmp_path / "lines.csv"
    lines.write_text(
        "id,address\n"
        '1,"Flat B, 12/F, 22 Castle Peak Rd, Sham Shui Po, Kowloon"\n'
        "2,22 Nathan Road\n"
        "3,5 nanking street yau ma tei\n"
        "4,\n"
        "5,彌敦道\n"
        "6,ＲＭ 1203 23 ＷＨＩＴＦＩＥＬＤ ＲＤ\n"
        f"7,{'9 ' * 300}\n", encoding="utf-8")
    r = run([tool("hkgeocode"), "--quiet", "--lines", "--column", "address",
             "--db", SAMPLE_DB, str(lines)])
    assert r.returncode == 1, r.stderr
    want = pd.read_csv(io.BytesIO(r.stdout), dtype=str,
                       keep_default_na=False)
    given = pd.read_csv(lines, dtype=str, keep_default_na=False)
    got = orlo_hk.geocode_frame(given, SAMPLE_DB, line_column="address")
    pd.testing.assert_frame_equal(got, want)
    assert list(got["return_code"]) == ["1", "0", "1", "E", "E", "1", "E"]

    # The result keeps the record of the split it used; a refused line or a
    # value that is not text is an E result, never an exception.
    r = geocoder.geocode_line(given["address"][0])
    assert r.input_record[78:103].rstrip() == b"FLAT B 12/F"
    assert (r.status, r.split, r.matched) == (0, "1", True)
    for line, status, reason in [
            ("", 1, "no letter or digit"), ("彌敦道", 3, "U+5F4C"),
            (b"22 NATHAN\x00ROAD", 4, ""), (["22 NATHAN ROAD"], None,
                                              "list")]:
        r = geocoder.geocode_line(line)
        assert (r.return_code, r.status, r.input_record, r.split) == \
            ("E", status, None, ""), line
        assert reason in r.reason and r.return_meaning.endswith(r.reason)
    with pytest.raises(ValueError, match="with line_column= the address"):
        orlo_hk.geocode_frame(given, SAMPLE_DB, line_column="address",
                              columns={"street": "address"})
    with pytest.raises(ValueError, match="already has a result column"):
        orlo_hk.geocode_frame(got, SAMPLE_DB, line_column="address")


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
    # Prepared names score as m_street scores each pair, street after
    # street; and a street wider than the set is refused.
    names = ["NATHAN RD", "NATHAN ROAD", "CANTON ROAD", "N", "X" * 40]
    with orlo_hk.StreetNames(names) as prepared:
        for street in ("NATHAN ROAD", "CANTON RD", "1ST ST", ""):
            assert prepared.scores(street) == \
                [orlo_hk.m_street(street.ljust(40), n.ljust(40))
                 for n in names], street
        with pytest.raises(ValueError, match="wider than the names' 40"):
            prepared.scores("Y" * 41)
    assert orlo_hk.m_street_many("NATHAN ROAD", names[:3]) == \
        [orlo_hk.m_street("NATHAN ROAD", n) for n in names[:3]]
    with pytest.raises(ValueError, match="Latin-1"):
        orlo_hk.m_street("彌敦道", "NATHAN ROAD")


def test_output_layout_is_the_headers():
    with open(os.path.join(SOURCE, "include", "orlo_records.h")) as f:
        text = f.read()
    for record, fields in (("OUT", records.OUT_FIELDS),
                           ("IN", records.IN_FIELDS)):
        offsets = dict(re.findall(rf"HK{record}_(\w+)_OFF = (\d+)", text))
        widths = dict(re.findall(rf"HK{record}_(\w+)_LEN = (\d+)", text))
        assert fields == {k.lower(): (int(offsets[k]), int(widths[k]))
                          for k in offsets}, record


def test_partitions_are_whole_rows_in_order():
    from orlo_hk.cli import partitions
    rows = [b",1,A ROAD,,,,,HK,\n", b',2,"B\nROAD",,,,,HK,\n',
            b',3,"C ""X""\n\nROAD",,,,,HK,\n', b",4,D ROAD,,,,,HK,\n",
            b',5,"E\nROAD,,,,,HK,\n']  # the last quote is never closed
    text = b"".join(rows)
    for each in (1, 2, 3, 100):
        parts = list(partitions(io.BytesIO(text), each))
        assert b"".join(data for _, data in parts) == text, each
        line = 2
        for first, data in parts:
            # Starts where the last one ended, and ends at the end of a row
            # (or of the input).
            assert first == line, each
            assert any(text.startswith(b"".join(rows[:k]) + data)
                       for k in range(len(rows))), (each, data)
            line += data.count(b"\n")
    # One line a partition: the rows that span lines stay whole.
    assert [d.count(b"\n") for _, d in partitions(io.BytesIO(text), 1)] == \
        [1, 2, 3, 1, 2]


def test_command_help():
    r = run([sys.executable, "-m", "orlo_hk", "--help"], text=True)
    assert r.returncode == 0
    for text in ("geocode", "--scheduler ADDRESS", "--workers N",
                 "Exit status"):
        assert text in r.stdout
    r = run([sys.executable, "-m", "orlo_hk", "geocode", "in.csv"],
            text=True)
    assert r.returncode == 2 and "--db" in r.stderr
