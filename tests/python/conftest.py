"""What the Python tests share: the paths of the repository and the built tool."""

import os
import pathlib
import subprocess

import pytest

SOURCE = pathlib.Path(os.environ.get("XKLINKDC_SOURCE_DIR", pathlib.Path(__file__).parents[2]))
REAL = SOURCE / "tests" / "data" / "real"
ARARANGUA = SOURCE / "tests" / "data" / "ararangua-gpl3"
NLE = REAL / "nle-battersea" / "21-7-10-NLE.ags"


def run_tool(*args):
    """Standard output of the built xklink tool; the test fails with its message if it fails."""
    tool = os.environ.get("XKLINK_TOOL")
    if not tool:
        pytest.skip("XKLINK_TOOL names no built tool (ctest sets it)")
    done = subprocess.run([tool, *map(str, args)], capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    return done.stdout
