#!/usr/bin/env python3
"""Writes gauss_nodes.csv and gauss_weights.csv, Gauss quadrature in 80 digits, see README.md.

Needs mpmath. Nodes are found by Newton's method on the recurrence of the monic polynomials, from
the eigenvalues that a double gives; weights are reciprocal sums of squares.
"""

import pathlib

import mpmath
import numpy as np
from mpmath import mp, mpf

mp.dps = 80
FAMILIES = {"legendre": 0, "laguerre": 1, "hermite": 2, "chebyshev": 3, "jacobi": 4}


def recurrence(family, n, alpha, beta):
    """Diagonal, squares of the off-diagonal, integral of the weight function."""
    a, b = mpf(alpha), mpf(beta)
    if family == "laguerre":
        return [2 * k + 1 + a for k in range(n)], [k * (k + a) for k in range(n)], mpmath.gamma(a + 1)
    if family == "hermite":
        return [mpf(0)] * n, [mpf(k) / 2 for k in range(n)], mpmath.sqrt(mp.pi)
    if family == "legendre":
        a = b = mpf(0)
    if family == "chebyshev":
        a = b = mpf(-1) / 2
    s = a + b
    diagonal, squares = [(b - a) / (s + 2)], [mpf(0)]
    for k in range(1, n):
        diagonal.append((b - a) * s / ((2 * k + s) * (2 * k + s + 2)))
        squares.append(4 * (a + 1) * (b + 1) / ((s + 2) ** 2 * (s + 3)) if k == 1 else
                       4 * k * (k + a) * (k + b) * (k + s)
                       / ((2 * k + s) ** 2 * (2 * k + s + 1) * (2 * k + s - 1)))
    return diagonal, squares, mpf(2) ** (s + 1) * mpmath.beta(a + 1, b + 1)


def point(diagonal, squares, total, x):
    for _ in range(9):
        before, value, slope_before, slope = mpf(0), mpf(1), mpf(0), mpf(0)
        norm, weight_sum = mpf(1), mpf(0)
        for k, (d, s) in enumerate(zip(diagonal, squares)):
            norm *= s if k else 1
            weight_sum += value * value / norm
            before, value, slope_before, slope = (value, (x - d) * value - s * before,
                                                  slope, (x - d) * slope + value - s * slope_before)
        x -= value / slope
    return x, total / weight_sum


def main():
    tables = {"gauss_nodes.csv": ["family,alpha,beta,n,i,node"],
              "gauss_weights.csv": ["family,alpha,beta,n,i,weight"]}
    for family, alpha, beta, sizes in (("legendre", 0.0, 0.0, (1, 2, 7, 64, 100)),
                                       ("laguerre", 0.0, 0.0, (1, 2, 7, 64, 100)),
                                       ("laguerre", -0.75, 0.0, (3, 64)), ("laguerre", 4.5, 0.0, (3, 64)),
                                       ("hermite", 0.0, 0.0, (1, 2, 7, 64, 100)),
                                       ("chebyshev", 0.0, 0.0, (1, 2, 7, 64)),
                                       ("jacobi", 1.0, 0.0, (1, 7, 64)), ("jacobi", -0.9, 3.5, (2, 64)),
                                       ("jacobi", -0.5, -0.5, (3,)), ("jacobi", 2.5, 2.5, (64,)), ("jacobi", 1000.0, 1000.0, (50,)),
                                       ("laguerre", -1 + 1e-14, 0.0, (100,))):
        for n in sizes:
            diagonal, squares, total = recurrence(family, n, alpha, beta)
            off = np.sqrt(np.array([float(s) for s in squares[1:]]))
            matrix = np.diag([float(d) for d in diagonal]) + np.diag(off, 1) + np.diag(off, -1)
            for i in sorted({0, 1, n // 3, n // 2, n - 2, n - 1}):
                if not 0 <= i < n:
                    continue
                node, weight = point(diagonal, squares, total, mpf(float(np.linalg.eigvalsh(matrix)[i])))
                node = mpf(0) if abs(node) < mpf(10) ** -60 else node
                for lines, value in zip(tables.values(), (node, weight)):
                    if value == 0 or abs(value) > mpf(10) ** -300:
                        lines.append(f"{FAMILIES[family]},{alpha!r},{beta!r},{n},{i},"
                                     f"{mpmath.nstr(value, 34)}")
    for name, lines in tables.items():
        path = pathlib.Path(__file__).with_name(name)
        path.write_text("\n".join(lines) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
