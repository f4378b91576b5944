#!/usr/bin/env python3
"""Writes the reference rows of linear programs, solved in whole fractions; see README.md."""

import pathlib
import random
from fractions import Fraction

NONE = 1e308  # no bound


class Tableau:
    """Least c x with A x = b >= 0 and x >= 0 by Bland's rule, which cannot cycle."""

    def __init__(self, a, b):
        m, self.columns = len(a), len(a[0])
        self.rows = [row + [Fraction(i == k) for k in range(m)] + [side]
                     for i, (row, side) in enumerate(zip(a, b))]
        self.basis = [self.columns + i for i in range(m)]

    def minimise(self, costs, allowed):
        while True:
            prices = [costs[j] - sum(costs[k] * row[j] for k, row in zip(self.basis, self.rows))
                      for j in range(allowed)]
            enter = next((j for j, price in enumerate(prices) if price < 0), None)
            if enter is None:
                return
            ratios = [(row[-1] / row[enter], k, i)
                      for i, (k, row) in enumerate(zip(self.basis, self.rows)) if row[enter] > 0]
            if not ratios:
                raise ArithmeticError("without bound")
            self.pivot(min(ratios)[2], enter)

    def pivot(self, i, j):
        self.rows[i] = [v / self.rows[i][j] for v in self.rows[i]]
        for k, row in enumerate(self.rows):
            if k != i and row[j] != 0:
                self.rows[k] = [v - row[j] * w for v, w in zip(row, self.rows[i])]
        self.basis[i] = j


def solve(objective, c, a, b, senses, low, high):
    """Optimum, and the derivatives by b where they are the only ones."""
    sign = 1 if objective == "L" else -1
    # Each x is an offset and new variables >= 0 with their factors.
    parts, offsets = [], []
    rows, sides, kinds = [[] for _ in b], list(map(Fraction, b)), list(senses)
    for j, (lo, hi) in enumerate(zip(low, high)):
        bounded = lo > -NONE
        offsets.append(Fraction(lo if bounded else hi if hi < NONE else 0))
        factors = [1] if bounded else [-1] if hi < NONE else [1, -1]
        parts += [(j, Fraction(f)) for f in factors]
        if bounded and hi < NONE:
            rows.append([Fraction(k == j) for k in range(len(c))])
            sides.append(Fraction(hi) - Fraction(lo))
            kinds.append(-1)
    costs = [sign * Fraction(c[j]) * f for j, f in parts]
    for i, row in enumerate(a):
        sides[i] -= sum(Fraction(v) * o for v, o in zip(row, offsets))
        rows[i] = [Fraction(row[j]) * f for j, f in parts]
    for i in range(len(a), len(rows)):
        rows[i] = [rows[i][j] * f for j, f in parts]
    slacks = [i for i, kind in enumerate(kinds) if kind != 0]
    for i, row in enumerate(rows):
        row += [Fraction(-kinds[i] * (k == i)) for k in slacks]
    turned = [-1 if side < 0 else 1 for side in sides]
    table = Tableau([[t * v for v in row] for t, row in zip(turned, rows)],
                    [t * side for t, side in zip(turned, sides)])
    width = table.columns
    table.minimise([Fraction(0)] * width + [Fraction(1)] * len(rows), width + len(rows))
    if any(k >= width and row[-1] != 0 for k, row in zip(table.basis, table.rows)):
        raise ArithmeticError("not feasible")
    for i, k in enumerate(table.basis):  # what is left of the first phase may not grow again
        column = next((j for j in range(width) if table.rows[i][j] != 0), None)
        if k >= width and column is not None:
            table.pivot(i, column)
    every = costs + [Fraction(0)] * (width - len(costs))
    table.minimise(every + [Fraction(0)] * len(rows), width)
    value = sum(every[k] * row[-1] for k, row in zip(table.basis, table.rows) if k < width)
    optimum = sign * value + sum(Fraction(v) * o for v, o in zip(c, offsets))
    if any(row[-1] == 0 for row in table.rows):
        return optimum, []  # other bases may give other derivatives
    return optimum, [sign * turned[i] * sum(every[k] * row[width + i]
                                            for k, row in zip(table.basis, table.rows))
                     for i in range(len(a))]


def programs():
    yield "G", [3, 5], [[1, 0], [0, 2], [3, 2]], [4, 12, 18], [-1] * 3
    yield "L", [2, 3, 1], [[1, 1, 0], [1, 2, 3]], [4, 12], [1, 0]
    # Degenerate: cycles of the plain rule (Beale; Kuhn), a redundant equation, a transport.
    yield ("L", [-0.75, 150, -0.02, 6], [[0.25, -60, -0.04, 9], [0.5, -90, -0.02, 3], [0, 0, 1, 0]],
           [0, 0, 1], [-1] * 3)
    yield ("L", [-2, -3, 1, 12], [[-2, -9, 1, 9], [1 / 3, 1, -1 / 3, -2], [2, 3, -1, -12]],
           [0, 0, 2], [-1] * 3)
    yield "L", [1, 2], [[1, 1], [2, 2], [1, -1]], [3, 6, 1], [0, 0, -1]
    costs = [[4, 6, 9], [5, 3, 8], [7, 2, 4]]
    yield ("L", sum(costs, []),
           [[float(j // 3 == i) for j in range(9)] for i in range(3)]
           + [[float(j % 3 == i) for j in range(9)] for i in range(3)],
           [20, 30, 50, 20, 30, 50], [0] * 6)
    yield ("L", [2, 0, 3], [[3, 1, -1], [0, 2, 0], [1, 2, 0], [3, 1, 0], [2, -1, 0.5]],
           [15, 0, 4, 16, 10], [0, -1, 1, -1, -1], [0, 0, -NONE], [NONE, 9, NONE])
    # Called infeasible when rows are taken away first.
    yield ("L", [1, 1, -1, 1, -1],
           [[0, 3, 0.5, 0.5, 1], [0, 0, 2, 0.5, 0], [0, 0, 0, -1, 2], [2, 0, 3, 1, 1],
            [-1, -1, -1, -1, 1], [0.5, 0, 1, 0, 0.5], [0, 1, 1, -1, 1]],
           [4, 7.5, 4, 22, -7, 6.5, 5], [1, 1, -1, -1, 0, 1, -1], [0, 0, 0, -NONE, -NONE],
           [9, NONE, NONE, NONE, NONE])
    # Badly scaled: the twisted cubes of Klee and Minty, rows and costs of any size.
    for n in (4, 8):
        yield ("G", [10.0 ** (n - 1 - j) for j in range(n)],
               [[2 * 10.0 ** (i - j) if j < i else float(j == i) for j in range(n)]
                for i in range(n)], [100.0**i for i in range(n)], [-1] * n)
    yield "L", [1e-12, 3e-12], [[1, 1], [1, 2]], [5, 7], [1, 1]
    yield "G", [1, 1e7], [[1e-9, 1e-3], [1e6, 1e9]], [1e-8, 2e7], [-1, -1]
    yield "L", [1e5, 1e-4], [[1e7, 1], [1, 1e-6]], [3e7, 4], [1, 1]
    yield "L", [1], [[1e-9], [1e9]], [4e-9, 1e9], [1, 1]
    n = 5  # ordinates of a Hilbert matrix
    hilbert = [[1 / (i + j + 1) for j in range(n)] for i in range(n)]
    yield "L", [sum(row) for row in hilbert], hilbert, [sum(row) for row in hilbert], [1] * n
    # Bounds: free, from above only, both.
    yield "L", [1, 0], [[1, 1], [1, -1]], [-3, -5], [1, 1], [-NONE, 0], [NONE, 1]
    yield "G", [1, 2], [[1, 1]], [10], [-1], [-1, 2], [3, 4]
    yield "G", [5, 4, 3], [[2, 3, 1], [4, 1, 2]], [5, 11], [-1, -1], [-NONE, 0, 0.5], [1, 8, 0.75]
    random.seed(1947)
    for case in range(24):
        m, n = random.randint(2, 9), random.randint(2, 9)
        spread = 10.0 ** random.choice([0, 0, 2, 4])
        inside = [random.choice([0.0, random.uniform(0, 9)]) for _ in range(n)]
        a = [[round(random.gauss(0, 1) * spread ** random.uniform(-1, 1), 6) for _ in range(n)]
             for _ in range(m)]
        senses = [random.choice([-1, 1, 1, 0] if m < n else [-1, 1]) for _ in range(m)]
        b = [sum(v * x for v, x in zip(row, inside)) - s * random.choice([0, 0.5, 3])
             for row, s in zip(a, senses)]
        low = [random.choice([0.0, 0.0, -4.0, -NONE]) for _ in range(n)]
        high = [random.choice([NONE, 12.0, 30.0]) for _ in range(n)]
        c = [random.gauss(0, 1) if -NONE < lo and hi < NONE else abs(random.gauss(0, 1))
             for lo, hi in zip(low, high)]
        yield "LG"[case % 2], c if case % 2 == 0 else [-v for v in c], a, b, senses, low, high


def digits(x):
    """A fraction in 32 digits."""
    if x == 0:
        return "0"
    exponent = len(str(abs(x.numerator))) - len(str(x.denominator))
    scaled = x * Fraction(10) ** (31 - exponent)
    return f"{round(scaled)}e{exponent - 31}"


def main():
    lines = ["objective,c,a,b,senses,low,high,row of a dual or 0,largest of the kind,value"]
    for objective, c, a, b, senses, *bounds in programs():
        low, high = bounds or ([0.0] * len(c), [NONE] * len(c))
        try:
            optimum, duals = solve(objective, c, a, b, senses, low, high)
        except ArithmeticError:
            continue
        if optimum == 0:  # its error has no size to compare with
            continue
        front = ",".join([str("LG".index(objective))] + [
            " ".join(repr(float(v)) for v in list_)
            for list_ in (c, sum(map(list, a), []), b, senses, low, high)])
        lines.append(f"{front},0,{float(abs(optimum))!r},{digits(optimum)}")
        largest = float(max(map(abs, duals), default=0))
        lines += [f"{front},{i + 1},{largest!r},{digits(dual)}" for i, dual in enumerate(duals)]
    path = pathlib.Path(__file__).with_name("simplx.csv")
    path.write_text("\n".join(lines) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
