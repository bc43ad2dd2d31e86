"""Borehole strata correlation for geological sections, from Python.

The XKLinkDc library and the xklink tool's readers, checks and drawing, under one import::

    import xklink
    site = xklink.read("examples/nle-battersea/21-7-10-NLE.ags")
    pair = xklink.correlate(site.holes[0], site.holes[1])
    section = xklink.section(site, title="Battersea")
    section.write("battersea.svg")     # or .pdf, .png, .dxf, .html, .json, .csv, .geojson, .gpkg
    section                            # shown inline in Jupyter

Problems of the input raise ``xklink.Error`` (with ``file``, ``line`` and ``field``); warnings
are issued as ``xklink.XklinkWarning``.
"""

from ._native import (  # noqa: F401 (re-exported)
    Correlation,
    Error,
    Hole,
    Line,
    Point,
    Region,
    Section,
    SectionHole,
    Site,
    Stratum,
    XklinkWarning,
    correlate,
    read,
    section,
)

__all__ = [
    "Correlation", "Error", "Hole", "Line", "Point", "Region", "Section", "SectionHole", "Site",
    "Stratum", "XklinkWarning", "correlate", "read", "section",
]


def _strata_frame(hole):
    """The strata of the hole as a pandas DataFrame: columns code, top, bottom and line."""
    import pandas  # optional: only this method needs it

    columns = ["code", "top", "bottom", "line"]
    return pandas.DataFrame(
        [[s.code, s.top, s.bottom, s.line] for s in hole.strata], columns=columns)


Hole.strata_frame = _strata_frame
