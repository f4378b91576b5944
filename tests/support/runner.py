"""What the test scripts share: running vexa and comparing what it wrote, byte for byte."""

import argparse
import difflib
import os
import subprocess
import sys
import tempfile
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent

# A program that needs longer than this many seconds hangs; ctest's own limit comes later.
LIMIT = 240


class BadTest(Exception):
    """The test itself is wrong: an expectation cannot be read, or there is none."""


class Result:
    def __init__(self, out, err, status):
        self.out = out
        self.err = err
        self.status = status


def vexa_path(parser_value=None):
    path = parser_value or os.environ.get("VEXA")
    if not path:
        raise BadTest("which vexa? give --vexa PATH or set VEXA")
    return os.path.abspath(path)


def run_vexa(vexa, arguments, stdin=b"", cwd=None):
    """Runs vexa in a folder of its own that vanishes afterwards, unless cwd names one."""
    with tempfile.TemporaryDirectory(prefix="vexa-test-") as scratch:
        environment = dict(os.environ, LC_ALL="C.UTF-8", HOME=scratch, TMPDIR=scratch)
        # Settings of the person who runs the tests must not decide the result.
        for name in ("NO_COLOR", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME"):
            environment.pop(name, None)
        try:
            done = subprocess.run([vexa] + arguments, input=stdin, capture_output=True,
                                  cwd=cwd or scratch, env=environment, timeout=LIMIT)
        except subprocess.TimeoutExpired as late:
            return Result(late.stdout or b"",
                          (late.stderr or b"") + b"(stopped by the test: no end in sight)\n", None)
        return Result(done.stdout, done.stderr, done.returncode)


def fill_in(argument, here):
    """{here} in an option is the folder of the program, {data} that of the test data."""
    return argument.replace("{here}", str(here)).replace("{data}", str(TESTS / "data"))


def visible(data):
    """Lines of bytes as text in which every byte that does not print can be seen."""
    lines = []
    for line in data.splitlines(keepends=True):
        ending = "" if line.endswith(b"\n") else "  (no line end)"
        text = line[:-1] if line.endswith(b"\n") else line
        text = text.decode("utf-8", errors="backslashreplace")
        lines.append("".join(c if c.isprintable() else f"\\x{ord(c):02x}" for c in text) + ending)
    return lines


def differences(expected, result):
    """Texts that say where result is not as expected; none when it is."""
    found = []
    for stream in ("out", "err"):
        want, got = getattr(expected, stream), getattr(result, stream)
        if want != got:
            name = "std" + stream
            found.append("\n".join(difflib.unified_diff(
                visible(want), visible(got), "expected " + name, "actual " + name, lineterm="")))
    if expected.status != result.status:
        found.append(f"exit status: expected {expected.status}, actual {result.status}")
    return found


def main(check, add_options=None):
    """Runs check(vexa, file, options) for each file; it returns the differences found."""
    parser = argparse.ArgumentParser(description=sys.modules["__main__"].__doc__.split("\n")[0])
    parser.add_argument("--vexa", metavar="PATH", help="the program under test, default $VEXA")
    parser.add_argument("files", nargs="+", metavar="FILE", type=Path)
    if add_options:
        add_options(parser)
    options = parser.parse_args()
    failures = 0
    for file in options.files:
        try:
            found = check(vexa_path(options.vexa), file.resolve(), options)
        except (BadTest, OSError) as problem:
            found = [str(problem)]
        if found:
            failures += 1
            print(f"{file}: not as expected\n" + "\n\n".join(found) + "\n")
    sys.exit(1 if failures else 0)
