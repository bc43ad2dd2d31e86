"""A section through Python writes what the tool writes, byte for byte, in each of its formats;
a file that cannot be written is an xklink.Error and leaves nothing behind."""

import pytest

import xklink
from conftest import NLE, run_tool

HOLES = "BH03,BH01,BH02,BH05"  # not in the file's order, not along the line
LINE = "529568,177187,531647,177993"  # BH02, BH03 and BH10 lie within 100 m of it


# (extension, the tool's command line that writes the same; OUT is the tool's output file)
SECTION = ["section", NLE, "--holes", HOLES, "--title", "A-A'", "--exaggeration", "20"]
FORMATS = [(extension, SECTION) for extension in (".svg", ".dxf", ".json", ".html")] + [
    (".csv", ["lines", NLE, "--holes", HOLES, "--format", "csv"]),
    (".geojson", ["lines", NLE, "--holes", HOLES, "--format", "geojson", "--crs", "EPSG:27700"]),
]


@pytest.fixture(scope="module")
def section():
    return xklink.section(xklink.read(NLE), holes=HOLES, title="A-A'", exaggeration=20)


@pytest.mark.parametrize("extension, command", FORMATS, ids=[f[0] for f in FORMATS])
def test_writes_what_the_tool_writes(tmp_path, section, extension, command):
    ours = tmp_path / ("ours" + extension)
    section.write(ours, crs="EPSG:27700")
    theirs = tmp_path / ("theirs" + extension)
    run_tool(*command, "-o", theirs)
    assert ours.read_bytes() == theirs.read_bytes()


def test_a_section_along_a_line_is_the_tools(tmp_path):
    ours = xklink.section(xklink.read(NLE), line=LINE, buffer=100, title="B-B'")
    ours.write(tmp_path / "ours.json")
    run_tool("section", NLE, "--line", LINE, "--buffer", "100", "--title", "B-B'",
             "-o", tmp_path / "theirs.json")
    assert (tmp_path / "ours.json").read_bytes() == (tmp_path / "theirs.json").read_bytes()
    assert [h.name for h in ours.holes] == ["BH02", "BH03", "BH10"]
    assert [(h["name"], round(h["chainage"])) for h in ours.layout()["holes"]] == [
        (h.name, round(h.chainage)) for h in ours.holes]
    # The line as a list of vertices is the same line.
    vertices = [float(v) for v in LINE.split(",")]
    as_pairs = xklink.section(xklink.read(NLE), line=list(zip(vertices[::2], vertices[1::2])),
                              buffer=100)
    assert [h.chainage for h in as_pairs.holes] == [h.chainage for h in ours.holes]


def test_shows_itself_in_jupyter_as_the_svg_it_writes(tmp_path, section):
    section.write(tmp_path / "s.svg")
    assert section._repr_svg_() == (tmp_path / "s.svg").read_text()


@pytest.mark.parametrize("name, message", [
    ("s.txt", "must be named .svg, .pdf"),
    ("s.geojson", "does not say which grid.*with crs, such as crs=\"EPSG:27700\""),  # no HOLE_GREF
    ("no-such-directory/s.svg", "no-such-directory"),
])
def test_unwritable_files_are_errors(tmp_path, section, name, message):
    with pytest.raises(xklink.Error, match=message):
        section.write(tmp_path / name)
    assert list(tmp_path.iterdir()) == []


@pytest.mark.parametrize("options, message", [
    ({"line": "1,2,3"}, "line: "),
    ({"line": [(0, 0), (0, 0)]}, "at least two distinct vertices"),
    ({"buffer": 10}, "need the line"),
    ({"line": LINE, "buffer": 1}, "0 hole"),
])
def test_bad_lines_are_errors(options, message):
    with pytest.raises(xklink.Error, match=message):
        xklink.section(xklink.read(NLE), **options)
