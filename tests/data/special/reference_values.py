#!/usr/bin/env python3
"""Writes the reference rows of the special functions, see README.md.

Everything is computed from series with positive or quickly falling terms in decimal arithmetic of
120 digits, far more than the rows show; nothing but Python's own decimal numbers is used.
"""

import math
import pathlib
import random
from decimal import Context, Decimal, getcontext, setcontext
from fractions import Fraction

DIGITS_SHOWN = 34
setcontext(Context(prec=120, Emax=10**9, Emin=-(10**9)))


def ratio(fraction):
    return Decimal(fraction.numerator) / Decimal(fraction.denominator)


def alternating_sum(first, factor_of):
    """first + first*factor_of(1) + first*factor_of(1)*factor_of(2) + ..."""
    total, term, k = first, first, 0
    while abs(term) > abs(total) * Decimal(10) ** -(getcontext().prec + 5):
        k += 1
        term *= factor_of(k)
        total += term
    return total


def arctan_of_inverse(n):
    total, power, k = Decimal(0), Decimal(1) / n, 0
    while power > Decimal(10) ** -(getcontext().prec + 10):
        total += (-power if k % 2 else power) / (2 * k + 1)
        power /= n * n
        k += 1
    return total


PI = 16 * arctan_of_inverse(5) - 4 * arctan_of_inverse(239)


def sine(x):
    """For |x| up to 2, not 0."""
    return alternating_sum(x, lambda k: -x * x / ((2 * k) * (2 * k + 1)))


def bernoulli(count):
    numbers = [Fraction(1)]
    for n in range(1, count):
        numbers.append(-sum(math.comb(n + 1, k) * numbers[k] for k in range(n)) / (n + 1))
    return numbers


BERNOULLI = bernoulli(122)


def log_gamma(x):
    if x <= 0:  # reflected; the caller keeps away from the poles
        nearest = x.to_integral_value()
        return (PI / abs(sine(PI * (x - nearest)))).ln() - log_gamma(1 - x)
    product = Decimal(1)
    while x < 100:
        product *= x
        x += 1
    total = (x - Decimal("0.5")) * x.ln() - x + (2 * PI).ln() / 2
    for k in range(1, 61):
        total += ratio(BERNOULLI[2 * k] / (2 * k * (2 * k - 1))) / x ** (2 * k - 1)
    return total - product.ln()


def gamma_p(a, x):
    total = alternating_sum(Decimal(1), lambda k: x / (a + k))
    return (a * x.ln() - x - log_gamma(a + 1)).exp() * total


def erf(x):
    total = alternating_sum(x, lambda k: 2 * x * x / (2 * k + 1))
    return 2 / PI.sqrt() * (-x * x).exp() * total


def write(name, heading, rows):
    lines = [heading]
    for *arguments, value in rows:
        shown = Context(prec=DIGITS_SHOWN).plus(value)
        lines.append(",".join([repr(a) for a in arguments] + [f"{shown:.{DIGITS_SHOWN - 1}e}"]))
    path = pathlib.Path(__file__).with_name(name)
    path.write_text("\n".join(lines) + "\n", encoding="ascii")


def main():
    random.seed(2718)

    points = [5e-324, 1e-300, 1e-20, 1e-5, 0.1, 0.5, 0.999, 1 - 2**-53, 1 + 2**-52, 1.001, 1.4616,
              1.999999, 2 - 2**-52, 2 + 2**-51, 2.0001, 2.5, 3.0, 8.0, 10.5, 33.0, 171.6, 1e3,
              123456.789, 1e10, 1e100, 1e300, 2.5e305, -1e-300, -0.5, -1.5, -2.4570247382208006,
              -2.7476826467274127, -3.1435808883499798, -9.0000001, -20.5, -100.25, -1000.0001]
    points += [random.uniform(-30, 30) for _ in range(20)] + [10**random.uniform(-10, 10) for _ in range(15)]
    write("log_gamma.csv", "x,ln|gamma(x)|", [(x, log_gamma(Decimal(x))) for x in points])

    pairs = [(2.5, 3.0), (0.5, 1e-300), (0.5, 0.25), (1e-10, 0.5), (1e-300, 1e-300), (1.0, 1e-20),
             (1.0, 50.0), (10.0, 1e-25), (19.5, 3.0), (20.0, 3.0), (20.5, 30.0), (200.0, 100.0),
             (200.0, 20.0), (1000.0, 999.0), (1000.0, 1001.5), (1e5, 98000.0), (1e5, 100300.0),
             (1e6, 963000.0), (9.99e6, 9.98e6), (9.99e6, 9.991e6), (1e7, 9.99e6), (1e7, 9.89e6),
             (1e7, 1.0001e7), (1e9, 999.9e6), (1e9, 998.9e6), (1e9, 1e9)]
    for _ in range(40):
        a = 10 ** random.uniform(-3, 4)
        pairs.append((a, max(1e-3, a + random.uniform(-6, 6) * math.sqrt(a))))
    write("gamma_p.csv", "a,x,P(a,x)", [(a, x, gamma_p(Decimal(a), Decimal(x))) for a, x in pairs])

    points = [5e-324, 1e-310, 1e-160, 1e-8, 0.1, 0.5, 0.84375, 1.0, 1.25, 2.0, 3.0, 5.8]
    points += [10 ** random.uniform(-4, 0.75) for _ in range(30)]
    write("erf.csv", "x,erf(x)", [(x, erf(Decimal(x))) for x in points])


if __name__ == "__main__":
    main()
