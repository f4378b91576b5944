#!/usr/bin/env python3
"""check_picture.py PICTURE.svg: does the example of that name still draw this picture?"""

import subprocess
import sys
import tempfile
from pathlib import Path

from runner import TESTS, vexa_path


def main():
    picture = Path(sys.argv[1])
    example = TESTS.parent / "examples" / (picture.stem + ".vxp")
    with tempfile.TemporaryDirectory(prefix="vexa-test-") as folder:
        drawn = Path(folder) / picture.name
        subprocess.run([vexa_path(), "run", example, "--drawing", drawn], check=True, timeout=60,
                       stdout=subprocess.DEVNULL)
        if drawn.read_bytes() != picture.read_bytes():
            sys.exit(f"{example.name} draws something else; when that is right: make pictures")


if __name__ == "__main__":
    main()
