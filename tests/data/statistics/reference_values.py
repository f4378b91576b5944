#!/usr/bin/env python3
"""Writes the reference rows of the tests of significance, see README.md."""

import pathlib
import random

from mpmath import betainc, mp, mpf, nstr, sqrt

mp.dps = 60


def mean(v):
    return sum(map(mpf, v)) / len(v)


def variance(v):
    return sum((x - mean(v)) ** 2 for x in map(mpf, v)) / (len(v) - 1)


def student(t, degrees):
    return betainc(mpf(degrees) / 2, mpf(1) / 2, 0, degrees / (degrees + t * t), regularized=True)


def correlation(x, y):
    products = sum((mpf(a) - mean(x)) * (mpf(b) - mean(y)) for a, b in zip(x, y)) / (len(x) - 1)
    r = products / sqrt(variance(x) * variance(y))
    return r, student(r * sqrt((len(x) - 2) / (1 - r * r)), len(x) - 2)


def ftest(x, y):
    f, a, b = variance(x) / variance(y), mpf(len(x) - 1), mpf(len(y) - 1)
    upper = betainc(b / 2, a / 2, 0, b / (b + a * f), regularized=True)
    lower = betainc(a / 2, b / 2, 0, a * f / (b + a * f), regularized=True)
    return f, 2 * min(upper, lower)


def studente(x, y):
    degrees = len(x) + len(y) - 2
    pooled = ((len(x) - 1) * variance(x) + (len(y) - 1) * variance(y)) / degrees
    t = (mean(x) - mean(y)) / sqrt(pooled * (mpf(1) / len(x) + mpf(1) / len(y)))
    return t, student(t, degrees)


def studentu(x, y):
    a, b = variance(x) / len(x), variance(y) / len(y)
    t = (mean(x) - mean(y)) / sqrt(a + b)
    return t, student(t, (a + b) ** 2 / (a * a / (len(x) - 1) + b * b / (len(y) - 1)))


def studentp(x, y):
    d = [mpf(a) - mpf(b) for a, b in zip(x, y)]
    t = mean(d) / sqrt(variance(d) / len(d))
    return t, student(t, len(d) - 1)


def samples():
    random.seed(2024)
    yield [30.02, 29.99, 30.11, 29.97, 30.01, 29.99], [29.89, 29.93, 29.72, 29.98, 30.02, 29.98]
    yield [1.0, 2.0, 4.0], [-3.0, 5.0, 4.5]
    yield [1e9 + k / 8 for k in range(9)], [1e9 + k * k / 16 for k in range(9)]
    line = [0.5 * k for k in range(12)]
    yield line, [3 * x + 1e-5 * (-1) ** k for k, x in enumerate(line)]
    yield [1e-160 * random.gauss(0, 1) for _ in range(7)], [1e-158 * random.gauss(0, 1) for _ in range(7)]
    yield [1e150 * random.gauss(0, 1) for _ in range(7)], [1e150 * random.gauss(1, 1) for _ in range(7)]
    yield [random.gauss(5, 1) for _ in range(200)], [random.gauss(5.4, 1) for _ in range(200)]
    yield [random.gauss(0, 1) for _ in range(2)], [random.gauss(3, 0.01) for _ in range(2)]
    yield [random.gauss(0, 1) for _ in range(4)], [random.gauss(0, 30) for _ in range(25)]
    yield [random.gauss(100, 1e-3) for _ in range(30)], [random.gauss(0, 10) for _ in range(6)]
    for _ in range(6):
        n = random.randint(3, 40)
        yield ([random.gauss(0, 1) for _ in range(n)],
               [random.gauss(random.uniform(-1, 1), random.uniform(0.2, 3)) for _ in range(n)])
    yield ([-1000000000000.0001, -1000000000000.0034, -999999999999.9977, -1000000000000.0029],
           [0.0034153560980577087, 0.0011143316081777827, -0.0006554848743887574, -0.006585865260059199])


def main():
    for test in (correlation, ftest, studente, studentu, studentp):
        rows = ["part,x,y,value"]
        for x, y in samples():
            pairs = test in (correlation, studentp)
            if pairs and len(x) != len(y) or test is correlation and len(x) < 3:
                continue
            for part, value in enumerate(test(x, y)):
                rows.append(",".join([str(part), " ".join(map(repr, x)), " ".join(map(repr, y)),
                                      nstr(value, 32)]))
        path = pathlib.Path(__file__).with_name(f"{test.__name__}.csv")
        path.write_text("\n".join(rows) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
