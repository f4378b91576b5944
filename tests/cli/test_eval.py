#!/usr/bin/env python3
"""vexa eval: what it shows, the functions of a program, and exit status."""

import unittest

from command_line import CommandLineTest

DIVISION = 'Error #14*: Floating point error (division by zero or value out of range):'


class EvalTest(CommandLineTest):
    def test_values_are_shown_as_whole_lines(self):
        for expression, shown in (
                ("2^10 > 1000", "           1\n"),
                ("!{1,2;3,4}*{1;1}", "           3\n           7\n"),
                ("@{1,2}*{0,1}", "          -2           1\n"),
                ("x = 3; x*2;; x/2", "           3\n           6\n         1.5\n"),
                ('%s = "some text"; s', "some text\n"),
                ("!m = {1,2}; m; ncol(m)", "           1           2\n" * 2 + "           2\n"),
                ("print(5)", "           5"),
                ("print(5); 6", "           5\n           6\n"),
                ("exec({ x = 2; }, x^3)", "           8\n"),
                ("1; exec({ end; }); 2", "           1\n"),
                ("1 // comment", "           1\n"),
                ("1 +\n2", "           3\n"),
                ("t#() < 60", "           1\n"),
                ("-2+3", "           1\n"), ("-x", None), ("--5", None)):
            with self.subTest(expression):
                done = self.vexa("eval", expression)
                if shown is None:  # an expression, not an option
                    self.assertNotEqual(done.returncode, 2)
                else:
                    self.check(done, shown)
        self.check(self.vexa("eval", "--", "-h"), "",
                   'CALC: error: Error #54: Undefined variable or unrecognized keyword:   near '
                   '"h " on line CALC \n', 1)

    def test_a_fault_ends_the_line_after_what_was_shown(self):
        self.check(self.vexa("eval", "1; 1/0; 2"), "           1\n",
                   f'CALC: error: {DIVISION}   near "; " on line CALC\n', 1)
        self.check(self.vexa("eval", ";"), "",
                   'CALC: error: Error # No expression present:   near " " on line CALC\n', 1)

    def test_messages_without_a_program_speak_for_the_calculator(self):
        self.check(self.vexa("eval", 'notice("m"); yesno("q")'), "           1\n",
                   "CALC: message: m\nCALC: question: q -> Yes\n")

    def test_functions_of_a_program_are_callable_without_running_it(self):
        self.write("p q.vxp", "float a = 1;\nf(float x) { return 1/x; }\nmain() { print(9); }\n"
                              "g()\n{\n   return f(0);\n}\n")
        self.check(self.vexa("eval", "--program", "p q.vxp", "f(4)"), "        0.25\n")
        self.check(self.vexa("eval", "--program=p q.vxp", "f(2); isvar(a)"),
                   "         0.5\n           0\n")
        self.check(self.vexa("eval", "--program", "p q.vxp", "f(1); g()"), "           1\n",
                   f'p q.vxp:2: error: {DIVISION}   near "; " on line  2\n', 1)
        self.check(self.vexa("eval", "--program", "-", "h()*2", stdin="h() { return 21; }"),
                   "          42\n")

    def test_a_broken_program_is_told_and_the_rest_serves(self):
        self.write("p.vxp", "f() { return 1; }\n12;\ng() { return 2; }\n")
        done = self.vexa("eval", "--program", "p.vxp", "f()+g()")
        self.assertEqual((done.stdout, done.returncode), (b"           3\n", 1))
        self.assertRegex(done.stderr, rb"^p\.vxp:2: error: Error #19\.")
        self.assertRegex(done.stderr,
                         rb"p\.vxp: message: Program Update: Error in function declaration\n$")

    def test_a_program_that_cannot_be_read_evaluates_nothing(self):
        self.check(self.vexa("eval", "--program", "missing.vxp", "print(1)"), "",
                   "vexa: cannot read missing.vxp: No such file or directory; check the path\n", 2)


if __name__ == "__main__":
    unittest.main()
