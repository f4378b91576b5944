#!/usr/bin/env python3
"""Numerical built-ins as calculator lines: which show their value and which work in silence."""

import unittest

from command_line import CommandLineTest


class NumericEchoTest(CommandLineTest):
    def test_calls_without_a_result_show_nothing(self):
        given = "!A = {2,1;1,3}; !b = {1,2}; !T = {1,1}; "
        _, before, _ = self.shown(given)
        for call in ("solve(S, A, b)", "symsolv(S, A, b)", "cholesky(S, A, b)", "gauss(S, A, b)",
                     "invert(A)", "trisolv(T, b, T, !{5,5})", "bandf(S, A, b)", "tmult(A, A, R)",
                     "cmult(A, A, A, A, re, im)"):
            with self.subTest(call):
                self.assertEqual(self.shown(given + call), (0, before, ""))
        for call, value in (("solve(D, A)", 5), ("det(A)", 5), ("solve(J, A, b)", 0),
                            ("symsolv(D, A)", 5), ("cholesky(D, A)", 0)):
            with self.subTest(call):
                self.assertEqual(self.shown(given + call), (0, before + f" {value:11g}\n", ""))

    def shown(self, line):
        done = self.vexa("eval", line)
        return done.returncode, done.stdout.decode(), done.stderr.decode()


if __name__ == "__main__":
    unittest.main()
