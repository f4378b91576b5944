#!/usr/bin/env python3
"""Runs the examples of documents and compares what they print with what the page shows.

A block ```vexa is an example: a whole program if it defines main, else the body of one. The
block that follows it at once, ``` or ```output, is what it prints. A block ```messages after
that holds its lines on stderr, in which the program is called program.vxp. An example without
a block ```messages must run without a message; one that shows a message with ": error:" ends
with status 1. A block ```vexa-fragment is not run.

A block ``` that begins with "$ " shows commands. Each is carried out, in one folder that holds
examples/, and must end with status 0. The lines below it are what it writes; of the repl, those
after a prompt are what is typed. None are compared when there are none, and only the beginning
when the last one is "...". A block ```console is not carried out.
"""

import re
import shlex
from pathlib import Path
from tempfile import TemporaryDirectory

from runner import TESTS, BadTest, Result, differences, main, run_vexa

FENCE = re.compile(r"^(\s*)```\s*(\S*)\s*$")
OUTPUT = ("", "output")
PROMPTS = ("vexa> ", "  ... ")
REST = "...\n"


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


class Command:
    def __init__(self, line):
        self.words = shlex.split(line)
        self.typed = ""
        self.shown = ""


def commands_of(transcript):
    """The commands of a block in order, each with what is typed and shown below it."""
    found = []
    for line in transcript.splitlines(keepends=True):
        if line.startswith("$ "):
            found.append(Command(line[2:]))
        elif line.startswith(PROMPTS):
            found[-1].typed += line[len(PROMPTS[0]):]
        else:
            found[-1].shown += line
    return found


def check_command(vexa, command, folder):
    if Path(command.words[0]).name != "vexa":
        raise BadTest(f"{command.words[0]} is not vexa")
    result = run_vexa(vexa, command.words[1:], command.typed.encode(), cwd=folder)
    written = result.out + result.err
    expected = command.shown.encode()
    if not expected:
        expected = written
    elif command.shown.endswith(REST):
        expected = expected[:-len(REST)]
        written = written[:len(expected)]
    return differences(Result(expected, b"", 0), Result(written, b"", result.status))


def check_transcript(vexa, block):
    with TemporaryDirectory(prefix="vexa-docs-") as folder:
        (Path(folder) / "examples").symlink_to(TESTS.parent / "examples")
        return [f"line {block.line}, {shlex.join(command.words)}:\n{text}"
                for command in commands_of(block.text)
                for text in check_command(vexa, command, folder)]


def check(vexa, file, options):
    blocks = read_blocks(file.read_text(encoding="utf-8"))
    found = []
    for i, block in enumerate(blocks):
        if block.language == "" and block.text.startswith("$ "):
            found += check_transcript(vexa, block)
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
