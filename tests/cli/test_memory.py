#!/usr/bin/env python3
"""What large work may take of memory beside its matrices."""

import resource
import unittest

from command_line import CommandLineTest, sanitized

SOLVE = """main()
{
   mat A[3000,3000], b[3000];
   randfill(A);  randfill(b);
   solve(S, A, b);
}
"""


class MemoryTest(CommandLineTest):
    @unittest.skipIf(sanitized(), "the checks of addresses take as much again")
    def test_factorisation_in_place(self):
        self.check(self.vexa("run", self.write("p.vxp", SOLVE)))
        peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024
        self.assertGreater(peak, 3000 * 3000 * 8)
        self.assertLess(peak, 1.1 * 3000 * 3000 * 8)


if __name__ == "__main__":
    unittest.main()
