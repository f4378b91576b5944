#!/usr/bin/env python3
"""Runs programs and compares stdout, stderr and exit status with what they promise.

The promise stands in comments of the program (tests/programs/README.md), or with
--expected-beside in files of the folder expected/ next to it:
NAME.out, and where needed NAME.err, NAME.args, NAME.in and NAME.status.
"""

import re
import shlex

from runner import BadTest, Result, differences, fill_in, main, run_vexa

# The comments that carry an expectation. What follows the mark must be a blank, a bar or nothing.
MARK = re.compile(rb"//(>\||>|!|=|<<|<)( |$)")
MISSPELT = re.compile(rb"//(>|!|<)")


def comment_of(line):
    """The `//` comment that ends a line, or None; one inside a quoted text does not count.

    A line in which a quoted text stays open (it goes on in the next line, or the program tries
    that fault) is searched for a mark as if it had no quotes.
    """
    quote = None
    for i in range(len(line)):
        c = line[i:i + 1]
        if quote:
            if c == quote:
                quote = None
        elif c in (b'"', b"'"):
            quote = c
        elif line[i:i + 2] == b"//":
            return line[i:]
    if quote:
        found = MARK.search(line)
        return line[found.start():] if found else None
    return None


def message_line(text, program, number):
    """An expected line of stderr with the program's path and the line number filled in."""
    if not text.startswith(b"%"):
        return text

    def line_number(found):
        return b":%d" % (number + int(found.group(1) or 0))

    text = re.sub(rb":@([+-]\d+)?(?=:)", line_number, text, count=1)
    return program + text[1:]


class Expectation(Result):
    """Streams and status that a run must show, and the options and input it is given."""

    def __init__(self):
        super().__init__(b"", b"", 0)
        self.arguments = []
        self.stdin = b""

    def add_status(self, text):
        try:
            self.status = int(text)
        except ValueError:
            raise BadTest(f"exit status is not a number: {text!r}") from None

    def add_arguments(self, text, here):
        try:
            self.arguments += [fill_in(word, here) for word in shlex.split(text)]
        except ValueError as problem:
            raise BadTest(f"options cannot be split ({problem}): {text!r}") from None


def read_inside(file):
    """The expectation that stands in the comments of a program."""
    expected = Expectation()
    program = str(file).encode()
    count = 0
    last_line_seen = False
    for number, line in enumerate(file.read_bytes().splitlines(), start=1):
        comment = comment_of(line)
        mark = MARK.match(comment or b"")
        if not mark:
            if MISSPELT.match(comment or b""):
                raise BadTest(f"line {number}: a blank is missing after the mark")
            continue
        kind, text = mark.group(1), comment[mark.end():]
        count += kind in (b">", b">|", b"!", b"=")
        if kind in (b">", b">|"):
            if last_line_seen:
                raise BadTest(f"line {number}: output after a line without a line end")
            last_line_seen = kind == b">|"
            expected.out += text if last_line_seen else text + b"\n"
        elif kind == b"!":
            expected.err += message_line(text, program, number) + b"\n"
        elif kind == b"=":
            expected.add_status(text)
        elif kind == b"<":
            expected.add_arguments(text.decode(), file.parent)
        else:
            expected.stdin += text + b"\n"
    if count == 0:
        raise BadTest("the program promises nothing: give it a //>, //! or //= comment")
    return expected


def read_beside(file):
    """The expectation that stands in files of the folder expected/ beside a program."""

    def beside(ending):
        path = file.parent / "expected" / (file.stem + ending)
        return path.read_bytes() if path.exists() else None

    expected = Expectation()
    expected.out = beside(".out")
    if expected.out is None:
        raise BadTest(f"expected/{file.stem}.out is missing")
    program = str(file).encode()
    expected.err = b"".join(message_line(line, program, 0)
                            for line in (beside(".err") or b"").splitlines(keepends=True))
    expected.add_arguments((beside(".args") or b"").decode(), file.parent)
    expected.add_status((beside(".status") or b"0").decode())
    expected.stdin = beside(".in") or b""
    return expected


def check(vexa, file, options):
    expected = read_beside(file) if options.expected_beside else read_inside(file)
    result = run_vexa(vexa, ["run", str(file)] + expected.arguments, expected.stdin)
    return differences(expected, result)


def add_options(parser):
    parser.add_argument("--expected-beside", action="store_true",
                        help="expectations stand in expected/NAME.out and its relatives")


if __name__ == "__main__":
    main(check, add_options)
