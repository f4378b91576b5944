#!/usr/bin/env python3
"""Runs tables of tiny programs, most of which hold one fault each.

A table is a sequence of records, each a program and the lines that say what it promises, or several
programs of one line each that promise the same:

    * main() { x = 3 y; } // y
    * main() { x = (3) z; } // z
    ! %:1: error: Error #26: Missing operator or  delimiter:   near "\\? " on line  1

Lines without a mark are the program. A mark is followed by a blank:

    *   a program of one line
    >   next line of stdout     >|  the same, without a line end
    !   next line of stderr, "%" at its start for the path of the program
    =   exit status; without it 1 when an error is promised, otherwise 0
    <   options of `vexa run`   <<  one line of standard input
    #   a comment

Empty lines and comments are no part of a record. Elsewhere \\xHH is a byte, \\{text*N} the text N
times, and \\? in a promise the comment that ends the program.
"""

import re
import shlex
import tempfile
from pathlib import Path

from runner import BadTest, Result, differences, main, run_vexa

PROGRAM = b"p.vxp"
MARKS = (b">", b">|", b"!", b"=", b"<", b"<<")


def expand(line):
    line = re.sub(rb"\\\{(.*?)\*(\d+)\}", lambda m: m[1] * int(m[2]), line)
    return re.sub(rb"\\x([0-9a-f]{2})", lambda m: bytes([int(m[1], 16)]), line)


class Record:
    def __init__(self, number):
        self.number = number
        self.programs = []
        self.options = []
        self.stdin = b""
        self.expected = Result(b"", b"", None)

    def add(self, line):
        mark, _, text = line.partition(b" ")
        text = expand(text)
        if mark == b">":
            self.expected.out += text + b"\n"
        elif mark == b">|":
            self.expected.out += text
        elif mark == b"!":
            self.expected.err += (PROGRAM + text[1:] if text[:2] == b"%:" else text) + b"\n"
        elif mark == b"=":
            self.expected.status = int(text)
        elif mark == b"<":
            self.options += shlex.split(text.decode())
        elif mark == b"<<":
            self.stdin += text + b"\n"
        elif mark == b"*":
            self.programs.append([line[2:]])
        else:
            if not self.programs:
                self.programs.append([])
            self.programs[-1].append(line)

    def failures(self, vexa):
        if self.expected.status is None:
            self.expected.status = int(b": error: " in self.expected.err)
            if not self.expected.out + self.expected.err:
                raise BadTest(f"line {self.number}: the record promises nothing")
        return [text for program in self.programs for text in self.failures_of(program, vexa)]

    def failures_of(self, program, vexa):
        with tempfile.TemporaryDirectory(prefix="vexa-test-") as folder:
            text = b"".join(expand(line) + b"\n" for line in program)
            Path(folder, PROGRAM.decode()).write_bytes(text)
            result = run_vexa(vexa, ["run", PROGRAM.decode()] + self.options, self.stdin, folder)
        cited = text.rpartition(b" // ")[2].rstrip(b"\n")
        expected = Result(self.expected.out, self.expected.err.replace(b"\\?", cited),
                          self.expected.status)
        found = differences(expected, result)
        if not found:
            return []
        listing = "\n".join("    " + line[:200].decode("latin-1") for line in program)
        return [f"line {self.number}:\n{listing}\n" + "\n".join(found)]


def read_records(file):
    records = []
    promised = True
    for number, line in enumerate(file.read_bytes().split(b"\n"), start=1):
        mark = line.split(b" ")[0]
        if not line or mark == b"#":
            continue
        if promised and mark not in MARKS:
            records.append(Record(number))
        promised = mark in MARKS
        if not records:
            raise BadTest(f"line {number}: a promise without a program")
        records[-1].add(line)
    return records


def check(vexa, file, options):
    records = read_records(file)
    if not records:
        raise BadTest("the table holds no record")
    return [text for record in records for text in record.failures(vexa)]


if __name__ == "__main__":
    main(check)
