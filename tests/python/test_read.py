"""Reading through Python: every problem of the input is one exception type located at its file,
line and field; warnings are Python warnings; the holes come back with their fields."""

import json
import warnings

import pytest

import xklink
from conftest import M621, NLE, REAL, WOOLWICH

BAD_CSV = "HOLEID,X,Y,Z,FROM,TO,CODE\nBH1,0,0,10,0,2,A\nBH2,5,0,10,0,abc,A\n"


# (a real file or the name and text of one, options, whether the error names the file, its line
# and field, a part of the message). Problems of the options name no file.
ERRORS = [
    (("bad.csv", BAD_CSV), {}, True, 3, "TO", "not a number: 'abc'"),
    (("missing.ags", None), {}, True, None, None, "cannot read the file"),
    (M621, {"strict": True}, True, 1461, "LOCA_NATE", "stands at the same plan position as"),
    (NLE, {"holes": ["BH01", "BH1"]}, True, None, "holes", "holes: no hole 'BH1'"),
    (NLE, {"holes": "BH01,,BH02"}, False, None, "holes", "holes: empty hole name"),
    (NLE, {"input_format": "xml"}, False, None, "input_format", "input_format: unknown"),
    (NLE, {"collars": NLE}, False, None, "collars", "collars: a collar table goes with a CSV"),
    (NLE, {"depths": "deep"}, False, None, "depths", "depths: 'depth' or 'elevation'"),
]


@pytest.mark.parametrize("source, options, located, line, field, message", ERRORS,
                         ids=[f"{e[3]}-{e[4]}" for e in ERRORS])
def test_errors_name_file_line_and_field(tmp_path, source, options, located, line, field,
                                         message):
    path = tmp_path / source[0] if isinstance(source, tuple) else source
    if isinstance(source, tuple) and source[1]:
        path.write_text(source[1])
    with pytest.raises(xklink.Error) as raised:
        xklink.read(path, **options)
    error = raised.value
    assert (error.file, error.line, error.field) == (str(path) if located else None, line, field)
    assert message in str(error)


def test_holes_at_one_position_are_not_correlated():
    site = xklink.read(REAL / "dlr-city-airport" / "DLR_City_Airport_Extension.ags",
                       holes="TP222(S),TP222(N)")
    with pytest.raises(xklink.Error, match="same plan position") as raised:
        xklink.correlate(*site.holes)
    assert (raised.value.line, raised.value.field) == (2394, "LOCA_ID")


def test_warnings_are_python_warnings_with_their_place():
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        xklink.read(WOOLWICH)
    assert [(w.category, w.message.line, w.message.field) for w in caught] == [
        (xklink.XklinkWarning, 3997, "LOCA_FDEP"), (xklink.XklinkWarning, 2066, "GEOL_TOP")]
    with warnings.catch_warnings():
        warnings.simplefilter("error", xklink.XklinkWarning)
        with pytest.raises(xklink.XklinkWarning):
            xklink.read(WOOLWICH)


def test_holes_and_strata_keep_the_files_values(tmp_path):
    hole = {"name": "BH-é", "x": 512345.25, "y": 181234.5, "top": 12.5,
            "strata": [{"code": "MG", "top": 12.5, "bottom": 11.0},
                       {"code": "LC", "top": 11.0, "bottom": 0.25}]}
    path = tmp_path / "site.json"
    path.write_text(json.dumps({"boreholes": [hole, dict(hole, name="BH2", x=512400.0)]}))
    site = xklink.read(path)
    read = site["BH-é"]
    assert (read.name, read.x, read.y, read.ground_level) == ("BH-é", 512345.25, 181234.5, 12.5)
    assert [(s.code, s.top, s.bottom) for s in read.strata] == [
        ("MG", 12.5, 11.0), ("LC", 11.0, 0.25)]
    assert [h.name for h in site.holes] == ["BH-é", "BH2"]

    pandas = pytest.importorskip("pandas")
    frame = read.strata_frame()
    assert isinstance(frame, pandas.DataFrame)
    assert frame[["code", "top", "bottom"]].values.tolist() == [
        ["MG", 12.5, 11.0], ["LC", 11.0, 0.25]]
