#!/usr/bin/env python3
"""Runs the examples of documents and compares what they print with what the page shows.

A block ```vexa is an example: a whole program if it defines main, else the body of one. The
block that follows it at once, ``` or ```output, is what it prints. A block ```messages after
that holds its lines on stderr, in which the program is called program.vxp. An example without
a block ```messages must run without a message; one that shows a message with ": error:" ends
with status 1. A block ```vexa-fragment is not run.
"""

import re
from pathlib import Path
from tempfile import TemporaryDirectory

from runner import BadTest, Result, differences, main, run_vexa

FENCE = re.compile(r"^(\s*)```\s*(\S*)\s*$")
OUTPUT = ("", "output")


class Block:
    def __init__(self, language, line, text, joined):
        self.language = language
        self.line = line      # of the opening fence
        self.text = text
        self.joined = joined  # nothing but blank lines lies between it and the block before


def read_blocks(page):
    """All fenced blocks of a page in order."""
    blocks = []
    opened = None
    joined = False
    for number, line in enumerate(page.split("\n"), start=1):
        fence = FENCE.match(line)
        if opened:
            if fence and not fence.group(2):
                blocks.append(opened)
                opened, joined = None, True
            else:
                indent = len(opened.indent)
                opened.text += (line[indent:] if not line[:indent].strip() else line) + "\n"
        elif fence:
            opened = Block(fence.group(2), number, "", joined)
            opened.indent = fence.group(1)
        elif line.strip():
            joined = False
    if opened:
        raise BadTest(f"line {opened.line}: the block is not closed")
    return blocks


def program_of(text):
    if re.search(r"\bmain\s*\(", text):
        return text
    return "main()\n{\n" + text + "}\n"


def check_example(vexa, block, expected_out, expected_err):
    with TemporaryDirectory(prefix="vexa-docs-") as folder:
        program = Path(folder) / "program.vxp"
        program.write_text(program_of(block.text), encoding="utf-8")
        result = run_vexa(vexa, ["run", program.name], cwd=folder)
    expected = Result(result.out if expected_out is None else expected_out.encode(),
                      (expected_err or "").encode(), 1 if ": error:" in (expected_err or "") else 0)
    return [f"line {block.line}:\n{text}" for text in differences(expected, result)]


def check(vexa, file, options):
    blocks = read_blocks(file.read_text(encoding="utf-8"))
    found = []
    for i, block in enumerate(blocks):
        if block.language != "vexa":
            continue
        following = []
        for other in blocks[i + 1:i + 3]:
            if not other.joined:
                break
            following.append(other)
        out = err = None
        if following and following[0].language in OUTPUT:
            out = following.pop(0).text
        if following and following[0].language == "messages":
            err = following[0].text
        found += check_example(vexa, block, out, err)
    return found


if __name__ == "__main__":
    main(check)
