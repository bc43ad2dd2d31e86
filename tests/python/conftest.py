"""What the Python tests share: the paths of the repository and the built tool."""

import os
import pathlib
import subprocess

SOURCE = pathlib.Path(os.environ.get("XKLINKDC_SOURCE_DIR", pathlib.Path(__file__).parents[2]))
REAL = SOURCE / "tests" / "data" / "real"
ARARANGUA = SOURCE / "tests" / "data" / "ararangua-gpl3"
NLE = REAL / "nle-battersea" / "21-7-10-NLE.ags"
WOOLWICH = REAL / "dlr-woolwich" / "DLR_Woolwich_Extension.ags"
M621 = REAL / "m621-widening" / "M621_Widening.ags"


def run_tool(*args):
    """Standard output of the built xklink tool; the test fails with its message if it fails."""
    done = subprocess.run([os.environ["XKLINK_TOOL"], *map(str, args)], capture_output=True,
                          text=True)
    assert done.returncode == 0, done.stderr
    return done.stdout
