#!/usr/bin/env python3
"""Input that no one means: each ends soon, with the right status and one clear message."""

import os
import random
import re
import time
import unittest

from command_line import WITHOUT_PRIVILEGE, CommandLineTest, sanitized

MEGABYTE = 1 << 20
SOON = 40  # seconds, on a slow and busy machine as well


class BadInputTest(CommandLineTest):
    def run_soon(self, *arguments, memory=400 * MEGABYTE, **options):
        start = time.monotonic()
        done = self.vexa("run", *arguments, memory=memory, **options)
        self.assertLess(time.monotonic() - start, SOON * (4 if sanitized() else 1))
        return done

    def check_fault(self, text, fault, out=b"", **options):
        """The program ends in this fault, told in one line."""
        name = self.write("p.vxp", text)
        done = self.run_soon(name, **options)
        self.assertEqual((done.stdout, done.returncode), (out, 1), done.stderr[:300])
        self.assertRegex(done.stderr,
                         rb"\A(p\.vxp:\d+|CALC): error: Error #" + fault + rb"[^\n]*\n\Z")
        return done

    def test_files_that_are_none(self):
        os.mkdir(self.folder / "folder")
        cases = [("missing.vxp", "No such file or directory; check the path"),
                 ("folder", "Is a directory; name a file in it"),
                 ("folder/", "Is a directory; name a file in it"),
                 ("p.vxp/x", "Not a directory; check the path"),
                 ("x" * 300, "File name too long; try another file"),
                 ("with\nline", "No such file or directory; check the path")]
        self.write("p.vxp", "main() { }")
        for name, reason in cases:
            with self.subTest(name):
                shown = name.replace("\n", "?")
                self.check(self.vexa("run", name), "", f"vexa: cannot read {shown}: {reason}\n", 2)
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        self.check(self.vexa("run", "-", stdin=folder), "",
                   "vexa: cannot read standard input: Is a directory; name a file in it\n",
                   2)

    def test_unreadable_file(self):
        self.write("p.vxp", "main() { }")
        os.chmod(self.folder / "p.vxp", 0)
        self.check(self.vexa("run", "p.vxp", wrapper=WITHOUT_PRIVILEGE), "",
                   "vexa: cannot read p.vxp: Permission denied; ask for permission to read it\n", 2)

    def test_every_line_end_and_none(self):
        lines = ["// first", "main()", "{", '   print("a", ^);', "   x = 1/0;", "}"]
        for end in ("\n", "\r\n", "\r"):
            for last in (end, ""):
                text = end.join(lines) + last
                with self.subTest(text):
                    self.write("p.vxp", b"\xef\xbb\xbf" + text.encode())
                    done = self.vexa("run", "p.vxp")
                    self.assertEqual((done.stdout, done.returncode), (b"a\n", 1))
                    self.assertTrue(done.stderr.startswith(b"p.vxp:5: error: Error #14*"))

    def test_binary_garbage(self):
        generator = random.Random(20)
        for size in (1, 100, 100000, 3 * MEGABYTE):
            with self.subTest(size):
                self.write("p.vxp", generator.randbytes(size))
                done = self.run_soon("p.vxp")
                self.assertIn(done.returncode, (1, 2))
                self.assertLess(done.stderr.count(b"\n"), 6)
                self.assertRegex(done.stderr, rb"(error: Error #|more than 99999 lines)")

    def test_nul_bytes_are_blanks(self):
        self.write("p.vxp", b'\0main\0()\0{\0print("a\0b");\0}\0')
        self.check(self.run_soon("p.vxp"), "a b")
        done = self.check_fault(b"\0" * 5 * MEGABYTE, rb"19\.")
        self.assertIn(b"p.vxp:1:", done.stderr)

    def test_one_line_of_ten_megabytes(self):
        many = 10 * MEGABYTE
        self.write("p.vxp", "main() { print(1); /*" + "x" * many + "*/ print(2); }")
        self.check(self.run_soon("p.vxp"), "           1           2")
        self.write("p.vxp", "main() { " + "x=1;" * (many // 4) + " print(x); }")
        self.check(self.run_soon("p.vxp"), "           1")
        self.check_fault("x" * many, rb"(36|17)")
        self.check_fault('main() { x = "' + "x" * many + '"; }', rb"41")
        self.check_fault("main() { x = " + "1" * many + "; }", rb"36")
        self.write("p.vxp", "main(){print(f9());}" +
                   "".join(f"f{i}(){{return {i};}}" for i in range(many // 22)))
        self.check(self.run_soon("p.vxp"), "           9")
        self.write("p.vxp", "main() { x = 0; " + "f(x); " * (many // 60) + "}" + " " * many +
                   "f(float a) { x = a + 1; }")
        self.check(self.run_soon("p.vxp"), "")

    def test_too_many_lines(self):
        message = "p.vxp: message:  Program has more than 99999 lines\n"
        self.write("p.vxp", "main() { }" + "\n" * 100000)
        self.check(self.run_soon("p.vxp"), "", message, 2)
        self.write("p.vxp", "\n" * 5000000)
        self.check(self.run_soon("p.vxp"), "", message, 2)
        self.write("p.vxp", "\n\t\n /* */\n" * 33332 + "\n\nmain() { print(1); }\n")
        self.check(self.run_soon("p.vxp"), "           1")

    def test_200000_nested_brackets(self):
        deep = 200000
        too_deep = rb"16\*: Function nesting too deep:"
        self.check_fault("main() { x = " + "(" * deep + "1" + ")" * deep + "; }", too_deep)
        self.check_fault("main() { !x = " + "{" * deep + "1" + "}" * deep + "; }", rb"\d+")
        self.check_fault("main() { x = m" + "[m" * deep + "]" * deep + "; }", rb"\d+")
        self.check_fault("main() " + "{" * deep + "}" * deep, rb"55: Unexpected brace")
        self.check_fault("main() { " + "if (1) { " * deep + "}" * deep + " }", too_deep)
        self.check_fault("main() { " + "while (1) { " * deep + "}" * deep + " }", too_deep)
        self.check_fault("main() { x = " + "sin(" * deep + "1" + ")" * deep + "; }", too_deep)
        self.check_fault("main() { x = " + "exec({" * deep + "})" * deep + "; }", too_deep)
        self.check_fault("main() { x = " + "-" * deep + "1; }", rb"\d+")
        self.check_fault("main() { x = 1" + "^2" * deep + "+" * deep + "; }", rb"27")
        for chain in ("x = " + "x = " * deep + "1", "!x = " + "x = " * deep + "{1}",
                      "!x = " + "!" * deep + "{1}", "@x = " + "@" * deep + "{1,2}"):
            done = self.run_soon(self.write("p.vxp", "main() { " + chain + "; }"))
            self.assertIn(done.returncode, (0, 1), chain[:20])
        done = self.run_soon(self.write("p.vxp", "(" * deep))
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count(b"\n"), 2)  # the warning and the fault

    def test_endless_recursion(self):
        too_deep = rb"16\*: Function nesting too deep:"
        self.check_fault("f(float x) { return f(x + 1); }\nmain() { f(1); }", too_deep)
        self.check_fault("f(mat m) { return f(!m &* 2); }\nmain() { f(!{1,2}); }", rb"\d+")
        self.check_fault('f() { return calc("f()"); }\nmain() { f(); }', too_deep)
        self.check_fault("f() { x = exec({ f(); }, 1); }\nmain() { f(); }", too_deep)

    def test_matrices_that_no_machine_holds(self):
        memory = rb"20: Failed to allocate memory"
        self.check_fault("main() { mat m[100000,100000]; }", memory)
        self.check_fault("mat m[100000,100000];\nmain() { }", memory)
        self.check_fault("main() { mat m[2147483647,2147483647]; }", memory)
        self.check_fault("main() { zeronew(m[1e9,1e9]); }", memory)
        self.check_fault("main() { mat m[1e300]; }", memory)
        if not sanitized():  # where memory is not bounded
            self.check_fault("main() { !m = {1}; while (1) { !n = {m, m}; !m = n; } }", memory)

    def test_a_million_globals(self):
        count = 1000000
        # A program may have 99999 lines, so several stand in each.
        lines = (" ".join(f"v{i} = {i};" for i in range(k, k + 100))
                 for k in range(0, count, 100))
        self.write("p.vxp", "main()\n{\n" + "\n".join(lines) +
                   "\nprint(v999999 + v1, ^);\nx = 1/0; }")
        done = self.run_soon("p.vxp", memory=1000 * MEGABYTE)
        self.assertEqual((done.stdout, done.returncode), (b"       1e+06\n", 1))
        self.assertEqual(done.stderr.count(b"\n"), 1)
        done = self.run_soon("p.vxp", memory=100 * MEGABYTE)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr.count(b"\n"), 1, done.stderr)

    @unittest.skipIf(sanitized(), "memory is not bounded there")
    def test_memory_that_does_not_reach_for_the_program(self):
        self.write("p.vxp", "main() { }" + " " * 60 * MEGABYTE)
        done = self.run_soon("p.vxp", memory=100 * MEGABYTE)
        self.assertEqual(done.stdout, b"")
        self.assertIn(done.returncode, (1, 2))
        self.assertRegex(done.stderr, rb"\A[^\n]*[Mm]emory[^\n]*\n\Z")

    def test_a_program_of_more_than_a_gigabyte(self):
        with open(self.folder / "p.vxp", "wb") as program:
            program.truncate((1 << 30) + 1)
        self.check(self.run_soon("p.vxp"), "",
                   "vexa: p.vxp holds more than 1 GB; split it\n", 2)
        done = self.run_soon("/dev/zero", memory=None)
        self.check(done, "", "vexa: /dev/zero holds more than 1 GB; split it\n", 2)

    def test_a_broken_program_is_no_flood_for_eval(self):
        self.write("p.vxp", random.Random(3).randbytes(500000).replace(b"\n", b""))
        start = time.monotonic()
        done = self.vexa("eval", "--program", "p.vxp", "1")
        self.assertLess(time.monotonic() - start, SOON)
        self.assertEqual((done.stdout, done.returncode), (b"           1\n", 1))
        self.assertLess(done.stderr.count(b"\n"), 50)

    def test_long_lines_in_the_repl(self):
        done = self.vexa("repl", stdin="1" + "+1" * 500000 + "\n" + "(" * 200000 + "\n" +
                         ")" * 200000 + "\n\0\n2\n")
        self.assertTrue(done.stdout.startswith(b"      500001\n"), done.stdout[:100])
        self.assertTrue(done.stdout.endswith(b"           2\n"))
        self.assertEqual(done.returncode, 1)
        for line in done.stderr.splitlines():
            self.assertTrue(re.match(rb"CALC: error: Error #", line), line[:100])


if __name__ == "__main__":
    unittest.main()
