#!/usr/bin/env python3
"""The test scripts fail when they should: a stand-in for vexa writes what each case tells it."""

import os
import subprocess
import sys
import unittest
from pathlib import Path
from tempfile import TemporaryDirectory

import check_docs

SUPPORT = Path(__file__).resolve().parent

# Writes the prepared replies, on demand also its options and its input.
STAND_IN = """#!/bin/sh
cat "$REPLIES/reply.out"
sed "s|PATH|$2|" "$REPLIES/reply.err" >&2
if [ -n "$ECHO" ]; then shift 2; echo "$@"; cat; fi
exit "$(cat "$REPLIES/reply.status")"
"""


class ScriptTest(unittest.TestCase):
    def setUp(self):
        folder = TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.vexa = self.folder / "vexa"
        self.vexa.write_text(STAND_IN)
        self.vexa.chmod(0o755)

    def write(self, name, data):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(data if isinstance(data, bytes) else data.encode())
        return path

    def passes(self, script, file, out="", err="", status=0, options=(), echo=""):
        for name, data in (("out", out), ("err", err), ("status", str(status))):
            self.write("reply." + name, data)
        done = subprocess.run(
            [sys.executable, "-B", SUPPORT / script, "--vexa", self.vexa, *options, file],
            env=dict(os.environ, REPLIES=str(self.folder), ECHO=echo),
            capture_output=True, text=True)
        self.assertNotIn("Traceback", done.stderr)
        self.assertEqual(done.stderr, "")
        self.report = done.stdout
        return done.returncode == 0


class RunProgramTest(ScriptTest):
    def program(self, text, **reply):
        return self.passes("run_program.py", self.write("p.vxp", text), **reply)

    def test_streams_and_status_are_compared_to_the_byte(self):
        text = 'print("a//> x"); //> one\n//>\n//>  two  \n' \
               'f(); //! %:@: error: Error #1: no\n//= 1\n'
        good = {"out": "one\n\n two  \n", "err": "PATH:4: error: Error #1: no\n", "status": 1}
        self.assertTrue(self.program(text, **good), "as promised")
        for change in ({"out": "one\n\n two \n"}, {"out": "one\n\n two  "}, {"out": ""},
                       {"out": good["out"] + "\n"}, {"err": ""}, {"status": 0},
                       {"err": "PATH:5: error: Error #1: no\n"},
                       {"err": good["err"] + "more\n"}):
            with self.subTest(change):
                self.assertFalse(self.program(text, **{**good, **change}))

    def test_last_line_without_end(self):
        self.assertTrue(self.program("//> a\n//>| b", out="a\nb"))
        self.assertFalse(self.program("//> a\n//>| b", out="a\nb\n"))
        self.assertFalse(self.program("//>| a\n//> b\n", out="ab\n"))

    def test_line_numbers_beside_the_comment_and_every_line_end(self):
        text = b"//! %:@+1: a\r//! %:@-1: b\r\n//! c:@: d\n"
        self.assertTrue(self.program(text, err="PATH:2: a\nPATH:1: b\nc:@: d\n"))

    def test_marks_in_quoted_text_do_not_count_but_open_quotes_hide_nothing(self):
        self.assertTrue(self.program("print(\"//! no\", '\"'); //> yes\n", out="yes\n"))
        self.assertTrue(self.program('print("ab); //! %:@: open\n', err="PATH:1: open\n"))

    def test_options_and_input(self):
        text = "//< --answer 'a b' {here}/f\n//< -x\n//<< first\n//<<\n//> --answer %s\n" \
               "//> first\n//>\n" % f"a b {self.folder}/f -x"
        self.assertTrue(self.program(text, echo="yes"), getattr(self, "report", ""))

    def test_a_program_must_promise_something_in_the_right_spelling(self):
        for text in ("main() { }\n", "//< --seed 1\n//<< input\n", "//>text\n", "//!x\n//= 0\n",
                     "//= none\n", "//====\n"):
            with self.subTest(text):
                self.assertFalse(self.program(text))


class ExpectedBesideTest(ScriptTest):
    def test_files_beside_the_program(self):
        file = self.write("p.vxp", "main() { }\n")
        options = ["--expected-beside"]
        self.assertFalse(self.passes("run_program.py", file, options=options), "no .out")
        self.write("expected/p.out", "out\n--seed 1\nin\n")
        self.write("expected/p.args", "--seed 1\n")
        self.write("expected/p.in", "in\n")
        reply = {"out": "out\n", "options": options, "echo": "yes"}
        self.assertTrue(self.passes("run_program.py", file, **reply))
        self.assertFalse(self.passes("run_program.py", file, **{**reply, "status": 1}))
        self.write("expected/p.status", "1\n")
        self.write("expected/p.err", "%:3: error: e\n")
        reply.update(err="PATH:3: error: e\n", status=1)
        self.assertTrue(self.passes("run_program.py", file, **reply))
        self.assertFalse(self.passes("run_program.py", file, **{**reply, "err": ""}))


class CheckDocsTest(ScriptTest):
    def page(self, text, **reply):
        return self.passes("check_docs.py", self.write("page.md", text), **reply)

    def test_output_that_follows_an_example_is_compared(self):
        page = "# A\n```vexa\nprint(1);\n```\n\n```\n1\n```\n"
        self.assertTrue(self.page(page, out="1\n"))
        self.assertFalse(self.page(page, out="2\n"))
        self.assertFalse(self.page(page, out="1\n", status=1))
        self.assertFalse(self.page(page.replace("```\n1", "```output\n1"), out="2\n"))

    def test_example_without_output_must_run_without_fault(self):
        page = "```vexa\nf();\n```\nProse between.\n```\n1\n```\n"
        self.assertTrue(self.page(page, out="whatever\n"))
        self.assertFalse(self.page(page, err="PATH:1: error: e\n", status=1))
        fragment = page.replace("```vexa", "```vexa-fragment")
        self.assertTrue(self.page(fragment, err="PATH:1: error: e\n", status=1))

    def test_messages(self):
        page = "```vexa\nf();\n```\n```\n1\n```\n```messages\nprogram.vxp:3: error: e\n```\n"
        reply = {"out": "1\n", "err": "PATH:3: error: e\n", "status": 1}
        self.assertTrue(self.page(page, **reply))
        for change in ({"out": ""}, {"err": ""}, {"status": 0}):
            with self.subTest(change):
                self.assertFalse(self.page(page, **{**reply, **change}))

    def test_commands_show_what_they_write(self):
        page = "```\n$ vexa eval 1\none\n$ dir/vexa repl\nvexa> 1\none\n```\n"
        self.assertTrue(self.page(page, out="one\n"))
        for change in ({"out": "two\n"}, {"err": "e\n"}, {"status": 1}):
            with self.subTest(change):
                self.assertFalse(self.page(page, **{"out": "one\n", **change}))
        self.assertTrue(self.page(page.replace("one\n", ""), out="unseen\n"))
        self.assertTrue(self.page(page.replace("one\n", "one\n...\n"), out="one\ntwo\n"))
        self.assertFalse(self.page(page.replace("one\n", "two\n...\n"), out="one\ntwo\n"))
        self.assertFalse(self.page("```\n$ other 1\n```\n"))
        repl = check_docs.commands_of("$ vexa repl\nvexa> (1 +\n  ... 2)\n           3\n")[0]
        self.assertEqual((repl.typed, repl.shown), ("(1 +\n2)\n", "           3\n"))

    def test_a_body_becomes_a_program_and_a_program_stays(self):
        self.assertEqual(check_docs.program_of("x = 1;\n"), "main()\n{\nx = 1;\n}\n")
        self.assertEqual(check_docs.program_of("main ()\n{ }\n"), "main ()\n{ }\n")

    def test_block_left_open(self):
        self.assertFalse(self.page("```vexa\nf();\n"))


if __name__ == "__main__":
    unittest.main()
