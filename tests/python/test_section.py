"""A section through Python writes what the tool writes, byte for byte, in each of its formats;
a file that cannot be written is an xklink.Error and leaves nothing behind."""

import pytest

import xklink
from conftest import NLE, run_tool

HOLES = "BH03,BH01,BH02,BH05"  # not in the file's order, not along the line


# (extension, the tool's command line that writes the same; OUT is the tool's output file)
FORMATS = [
    (".svg", ["section", NLE, "--holes", HOLES, "--title", "A-A'", "--exaggeration", "20"]),
    (".dxf", ["section", NLE, "--holes", HOLES, "--title", "A-A'", "--exaggeration", "20"]),
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


def test_shows_itself_in_jupyter_as_the_svg_it_writes(tmp_path, section):
    section.write(tmp_path / "s.svg")
    assert section._repr_svg_() == (tmp_path / "s.svg").read_text()
    assert [h.name for h in section.holes] == HOLES.split(",")


@pytest.mark.parametrize("name, message", [
    ("s.png", "must be named .svg or .dxf"),
    ("s.geojson", "does not say which grid"),  # AGS 3.1 without HOLE_GREF, and no crs
    ("no-such-directory/s.svg", "no-such-directory"),
])
def test_unwritable_files_are_errors(tmp_path, section, name, message):
    with pytest.raises(xklink.Error, match=message):
        section.write(tmp_path / name)
    assert list(tmp_path.iterdir()) == []
