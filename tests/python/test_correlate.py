"""The correlation through Python against the tool on the same real files: the same holes in the
same order, the same lines to the last bit, the same region trees."""

import json
from concurrent.futures import ThreadPoolExecutor

import pytest

import xklink
from conftest import ARARANGUA, M621, NLE, WOOLWICH, run_tool

# (file, keyword options of xklink.read, the same as the tool's options)
SITES = [
    (NLE, {}, []),
    (WOOLWICH, {}, []),
    (ARARANGUA / "ara_lito.csv", {"collars": ARARANGUA / "ara_collar.csv"},
     ["--collars", ARARANGUA / "ara_collar.csv"]),
    # Holes with overlapping strata and holes at one position left out, with warnings.
    (M621, {}, []),
    # Overlaps in other holes, which do not stop these; codes from another column.
    (M621, {"holes": "BH01,BH02,BH03,BH04", "code_column": "GEOL_LEG", "merge_repeats": True},
     ["--holes", "BH01,BH02,BH03,BH04", "--code-column", "GEOL_LEG", "--merge-repeats"]),
]


def pair_as_json(pair):
    """A correlated pair in the form of the tool's JSON."""
    return {"from": pair.hole_a, "to": pair.hole_b, "lines": [
        {"p1": [l.p1.x, l.p1.y, l.p1.z], "p2": [l.p2.x, l.p2.y, l.p2.z], "type": l.type,
         "up": l.up, "down": l.down} for l in pair.lines]}


@pytest.mark.parametrize("path, options, tool_options", SITES, ids=lambda v: getattr(v, "stem", ""))
def test_lines_are_the_tools(path, options, tool_options):
    expected = json.loads(run_tool("lines", path, "--format", "json", *tool_options))
    site = xklink.read(path, **options)
    section = xklink.section(site)
    assert [pair_as_json(p) for p in section.pairs] == expected

    # The same pairs one by one on a pool of threads, each correlating with the GIL released.
    holes = [site[h.name] for h in section.holes]
    with ThreadPoolExecutor(max_workers=4) as pool:
        pairs = list(pool.map(xklink.correlate, holes[:-1], holes[1:]))
    assert [pair_as_json(p) for p in pairs] == expected


def region_as_json(r):
    """A region tree in the form of the tool's JSON."""
    return {"type": r.type, "named": r.named, "name": r.name, "begin1": r.begin1, "end1": r.end1,
            "begin2": r.begin2, "end2": r.end2, "top": [[p.x, p.y, p.z] for p in r.top],
            "bottom": [[p.x, p.y, p.z] for p in r.bottom],
            "children": [region_as_json(c) for c in r.children]}


def test_region_tree_is_the_tools():
    # Woolwich's BH108 and BH111: lenses inside lenses, four levels deep.
    expected = json.loads(run_tool("regions", WOOLWICH, "--holes", "BH108,BH111"))
    site = xklink.read(WOOLWICH)
    assert region_as_json(xklink.correlate(site["BH108"], site["BH111"]).tree) == expected
