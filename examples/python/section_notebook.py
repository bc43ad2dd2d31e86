# %% [markdown]
# # A geological section from Python
#
# The ten boreholes of the Northern Line Extension at Battersea (AGS 3.1, see
# examples/nle-battersea/ATTRIBUTION.md), read, correlated pair by pair on every core, and drawn.
# Each `# %%` starts a cell: open the file in Jupyter (jupytext) or VS Code, or run it whole:
#
#     PYTHONPATH=build/default/python python3 examples/python/section_notebook.py [OUTPUT_DIR]

# %%
import os
import pathlib
import sys
from concurrent.futures import ThreadPoolExecutor

import xklink

here = pathlib.Path(__file__).resolve().parent
output = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
site = xklink.read(here.parent / "nle-battersea" / "21-7-10-NLE.ags")
for hole in site.holes:
    print(f"{hole.name:6} {hole.x:10.2f} {hole.y:10.2f} {hole.ground_level:6.2f} "
          f"{len(hole.strata)} strata")

# %% [markdown]
# The log of one hole as a table (with pandas, when it is installed).

# %%
try:
    print(site["BH01"].strata_frame())
except ImportError:
    print(site["BH01"].strata)

# %% [markdown]
# The section lines between neighbouring holes. The library releases the GIL while it
# correlates, so a thread pool keeps every core busy.

# %%
section = xklink.section(site, title="Northern Line Extension, Battersea")
holes = [site[h.name] for h in section.holes]
with ThreadPoolExecutor(max_workers=os.cpu_count()) as pool:
    pairs = list(pool.map(xklink.correlate, holes[:-1], holes[1:]))
for pair in pairs:
    print(f"{pair.hole_a} - {pair.hole_b}:")
    for line in pair.lines:
        print(f"  {line.up:>4} over {line.down:<4} from {line.p1.z:7.2f} to {line.p2.z:7.2f}")

# %% [markdown]
# The drawing. In Jupyter, a cell ending in `section` shows it inline.

# %%
for name in ("battersea.svg", "battersea.dxf"):
    section.write(output / name)
    print("wrote", output / name)

# %% [markdown]
# The lines for GIS. The file does not say which grid its coordinates are on, so we say it:
# British National Grid. GeoJSON is written in WGS 84 longitude and latitude.

# %%
section.write(output / "battersea-lines.geojson", crs="EPSG:27700")
