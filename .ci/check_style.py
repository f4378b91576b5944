#!/usr/bin/env python3
"""Looks for what no formatter mends: odd blanks and line ends, includes that run the wrong way.

Test programs, expected outputs and test data are bytes on purpose and left alone.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
TEXT = {".cpp", ".h", ".py", ".sh", ".md", ".txt", ".cmake", ".json", ".yml", ".vxp", ".desktop"}
TEXT_NAMES = {"Makefile", "LICENSE", "run", "lint", ".clang-format", ".clang-tidy",
              ".editorconfig", ".gitignore", ".gitattributes"}
LEFT_ALONE = ("tests/programs/", "tests/data/")
MAY_HAVE_TABS = {"Makefile"}
LONGEST_LINE = {".cpp": 100, ".h": 100, ".py": 100}

# Who may include whom: the first folder that fits a file names all folders it may include from.
MAY_INCLUDE = [
    (re.compile(r"src/numlib/.*_builtins\.(cpp|h)"), {"numlib", "interp", "values"}),
    (re.compile(r"src/numlib/"), {"numlib"}),
    (re.compile(r"src/graphics/plot/"), {"graphics", "interp", "values", "numlib"}),
    (re.compile(r"src/graphics/"), {"graphics"}),
    (re.compile(r"src/render/"), {"render", "graphics"}),
    (re.compile(r"src/(interp|values)/"), {"interp", "values", "numlib", "graphics"}),
    (re.compile(r"src/cli/"), {"cli", "interp", "values", "numlib", "graphics"}),
]
INCLUDE = re.compile(rb'\s*#\s*include\s*"(\w+)/')


def files():
    """Paths of the tree that version control knows or would take; all files without it."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others",
                             "--exclude-standard"], cwd=ROOT, capture_output=True)
    if listed.returncode == 0 and listed.stdout:
        return sorted(set(os.fsdecode(listed.stdout).split("\0")) - {""})
    return sorted(str(path.relative_to(ROOT)) for path in ROOT.rglob("*")
                  if path.is_file() and not path.is_relative_to(ROOT / "build"))


def problems(name, data):
    path = Path(name)
    if b"\r" in data:
        yield 1, "line ends other than LF"
    if data and not data.endswith(b"\n"):
        yield data.count(b"\n") + 1, "no line end at the end of the file"
    if data.endswith(b"\n\n"):
        yield data.count(b"\n"), "empty line at the end of the file"
    if path.suffix == ".h" and b"#pragma once" not in data:
        yield 1, "#pragma once is missing"
    allowed = next((folders for place, folders in MAY_INCLUDE if place.match(name)), None)
    longest = LONGEST_LINE.get(path.suffix)
    for number, line in enumerate(data.split(b"\n"), start=1):
        if line != line.rstrip():
            yield number, "blank at the end of the line"
        if b"\t" in line and path.name not in MAY_HAVE_TABS:
            yield number, "tab"
        if longest and len(line.decode("utf-8", errors="replace")) > longest:
            yield number, f"longer than {longest} characters"
        include = INCLUDE.match(line)
        if allowed and include and include.group(1).decode() not in allowed:
            yield number, f"may include only from {', '.join(sorted(allowed))}"


def main():
    found = 0
    for name in files():
        path = ROOT / name
        wanted = path.suffix in TEXT or path.name in TEXT_NAMES
        if not wanted or name.startswith(LEFT_ALONE) and path.suffix != ".md":
            continue
        if path.is_symlink() or not path.is_file():
            continue
        for line, problem in problems(name, path.read_bytes()):
            print(f"{name}:{line}: {problem}")
            found += 1
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
