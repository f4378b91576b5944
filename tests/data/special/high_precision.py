#!/usr/bin/env python3
"""Writes the reference rows of beta, Bessel, elliptic and complex functions, see README.md.

Needs mpmath (Debian: python3-mpmath). Everything is computed with 60 decimal digits or more and
written with 34; values that leave the range of a double are passed over.
"""

import itertools
import math
import pathlib
import random
import sys

import mpmath
from mpmath import mp, mpf

DIGITS_SHOWN = 34
mp.dps = 60
SMALLEST, LARGEST = mpf(2) ** -1020, mpf(2) ** 1023


def write(name, heading, rows):
    lines = [heading]
    for *arguments, value in rows:
        value = mpf(value)
        if value != 0 and not SMALLEST < abs(value) < LARGEST:
            continue
        lines.append(",".join([repr(a) for a in arguments] + [mpmath.nstr(value, DIGITS_SHOWN)]))
    path = pathlib.Path(__file__).with_name(name)
    path.write_text("\n".join(lines) + "\n", encoding="ascii")
    print(f"{name}: {len(lines) - 1} rows", file=sys.stderr)


def spread(low, high, count):
    """Random numbers, evenly spread over powers of ten."""
    return [10 ** random.uniform(low, high) for _ in range(count)]


def tabulate(function, points):
    return [(*point, function(*map(mpf, point))) for point in points]


# ---- Elementary functions of two numbers ----

def remainder(x, y):
    with mp.workdps(700):
        return x - y * mpmath.floor(x / y)


def ratio(upper, lower):
    return lambda x, y: upper(x) / lower(y)


def elementary():
    pairs = [(1.0, -1.0), (-0.5, -3e-5), (1e-300, 1e300), (3e200, 4e200), (1e-170, 1e-160)]
    pairs += [(random.uniform(-1, 1) * a, random.uniform(-1, 1) * b)
              for a, b in zip(spread(-9, 9, 40), spread(-9, 9, 40))]
    write("atan2.csv", "y,x,angle", tabulate(mpmath.atan2, pairs))
    write("hypot.csv", "x,y,sqrt(x^2+y^2)", tabulate(mpmath.hypot, pairs))

    pairs = [(-7.0, 3.0), (7.0, -3.0), (2.0**53, 3.0), (1e300, 7e-5), (-1e16, 0.1), (-1e-20, 1.0)]
    pairs += [(random.uniform(-1, 1) * a, random.uniform(-1, 1) * b)
              for a, b in zip(spread(-3, 20, 40), spread(-3, 3, 40))]
    write("mod.csv", "x,y,remainder", tabulate(remainder, pairs))

    pairs = [(800.0, 810.0), (1.0, 2.0), (-900.0, 905.0), (1e-9, 2e-9), (-1e-300, 3e-5),
             (19.999, 20.001), (20.0, 20.0), (700.0, 1e-200), (1e-250, 500.0), (1e5, 1e5 - 600),
             (1e9, 1e9 + 3), (0.5, 25.0), (25.0, 0.5)]
    for centre in spread(-3, 6, 60):
        y = centre * random.choice((-1, 1))
        pairs.append((random.choice((-1, 1)) * (centre + random.uniform(-1, 1) * min(centre, 600)), y))
    for name, upper, lower in (("hcoc", mpmath.cosh, mpmath.cosh), ("hcos", mpmath.cosh, mpmath.sinh),
                               ("hsoc", mpmath.sinh, mpmath.cosh), ("hsos", mpmath.sinh, mpmath.sinh)):
        write(f"{name}.csv", "x,y,ratio", tabulate(ratio(upper, lower), pairs))


# ---- Beta, gamma, binomial ----

def binomial(n, k):
    value = mpf(1)
    for j in range(int(k)):
        value = value * (n - j) / (j + 1)
    return value


def beta_fraction(a, b, x):
    """I_x(a, b) by its continued fraction, for x below the mean."""
    def numerator(m):
        if m % 2 == 0:
            m //= 2
            return m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m))
        m //= 2
        return -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1))

    c, d, value = mpf(1), mpf(0), mpf(1)
    for m in itertools.count(1):
        step = numerator(m)
        d = 1 / (1 + step * d)
        c = 1 + step / c
        value *= c * d
        if abs(c * d - 1) < mpf(10) ** (3 - mp.dps):
            return x**a * (1 - x) ** b / (a * mpmath.beta(a, b)) / value


def beta_lower(a, b, x):
    if x < (a + 1) / (a + b + 2):
        return beta_fraction(a, b, x)
    return 1 - beta_fraction(b, a, 1 - x)


def gamma_lower(a, x):
    term = total = mpf(1)
    k = 0
    while term > total * mpf(10) ** -(mp.dps + 5):
        k += 1
        term *= x / (a + k)
        total += term
    return mpmath.exp(a * mpmath.log(x) - x - mpmath.loggamma(a + 1)) * total


def tail(lower, upper_of):
    """One of two tails that add up to 1, with more digits where it is small."""
    def value(*arguments):
        for digits in (60, 120, 240, 480):
            with mp.workdps(digits):
                result = 1 - lower(*arguments) if upper_of else lower(*arguments)
                if result > mpf(10) ** (40 - digits):
                    return result
        return mpf(0)
    return value


def beta_family():
    pairs = [(1e-300, 1e-300), (1e-10, 3.0), (0.5, 0.5), (1.0, 1e10), (2.5, 1.5), (1e-5, 1e5),
             (300.0, 400.0), (1e4, 1e-3), (1e8, 1e-8), (500.5, 0.5)]
    pairs += list(zip(spread(-8, 3, 60), spread(-8, 3, 60)))
    write("beta.csv", "a,b,beta(a,b)", tabulate(mpmath.beta, pairs))

    pairs = [(60.0, 30.0), (50.0, 25.0), (66.0, 33.0), (67.0, 33.0), (100.0, 50.0), (1029.0, 514.0),
             (9e15, 3.0), (1e18, 2.0), (1e300, 1.0), (-2.0, 3.0), (-50.0, 17.0), (0.5, 3.0), (0.5, 100.0),
             (-0.5, 1000.0), (1e-20, 5.0), (3.0000000000000004, 7.0), (1e5 + 0.5, 99998.0),
             (3e4 + 0.25, 3e4), (1e4 + 0.5, 20.0), (-7.25, 60.0), (200000.0, 199950.0), (1e6, 999995.0)]
    pairs += [(random.uniform(-200, 200), float(random.randrange(0, 100))) for _ in range(40)]
    pairs += [(float(random.randrange(1, 300)), float(random.randrange(0, 100))) for _ in range(30)]
    pairs += [(float(random.randrange(-40, 64)), float(random.randrange(1, 30))) for _ in range(40)]
    rows = tabulate(binomial, pairs)
    exact = [row for row in rows if row[0] == int(row[0]) and abs(row[2]) < 2**63]
    write("binom.csv", "n,k,binomial", exact)
    write("binom_product.csv", "n,k,binomial", [row for row in rows if row not in exact])

    pairs = [(2.5, 3.0), (2.5, 60.0), (0.5, 1e-300), (1e-10, 0.5), (1e-300, 1e-300), (1.0, 1e-20), (1.0, 600.0),
             (10.0, 1e-25), (1e-5, 30.0), (20.5, 30.0), (200.0, 100.0), (200.0, 20.0), (1000.0, 999.0),
             (1e5, 98000.0), (1e5, 100300.0), (1e6, 963000.0), (1e6, 1.002e6), (1e6, 1.03e6), (2e7, 2.01e7), (2e7, 1.99e7), (1e-8, 1e-8), (0.25, 700.0)]
    for a in spread(-3, 4, 60):
        pairs.append((a, max(1e-3, a + random.uniform(-8, 8) * math.sqrt(a))))
    pairs += [(23.339227118130317, 1e-9), (150.0, 1.5)]
    write("gammainc.csv", "a,x,P(a,x)", tabulate(tail(gamma_lower, False), pairs))
    write("gammainc_upper.csv", "a,x,1-P(a,x)", tabulate(tail(gamma_lower, True), pairs))

    triples = [(2.0, 3.0, 0.4), (2.0, 3.0, 0.999), (0.5, 0.5, 1e-300), (0.5, 0.5, 1 - 2**-53), (1e-5, 1e-5, 0.5),
               (1e-3, 50.0, 0.3), (1e4, 1e4, 0.5), (1e4, 1e4, 0.49), (1e5, 3.0, 0.9999), (1.0, 1.0, 0.25),
               (5.0, 1e5, 1e-5), (1e3, 2e3, 0.34), (300.0, 1.0, 0.7), (1e-10, 2.0, 1e-5), (20.0, 0.5, 0.9)]
    for a, b in zip(spread(-2, 4, 60), spread(-2, 4, 60)):
        mean, width = a / (a + b), math.sqrt(a * b / (a + b) ** 2 / (a + b + 1))
        triples.append((a, b, min(max(mean + random.uniform(-6, 6) * width, 1e-9), 1 - 1e-9)))
    triples += [(82350.52759245715, 55186.78778016409, 0.5913896747141746),
                (6061573.503028736, 7918159.091936301, 0.4328699568520698),
                (12686.720740800043, 37755.51309629557, 0.289597005983654), (3e9, 7e9, 0.300005)]
    own = random.Random(8)  # leaves the random numbers of other rows as they were
    for k in range(48):
        a, b = 10 ** own.uniform(5, 11), 10 ** own.uniform(5 if k % 3 else -1, 11)
        mean, width = a / (a + b), math.sqrt(a * b / (a + b) ** 2 / (a + b + 1))
        triples.append((a, b, min(max(mean + own.uniform(-7, 7) * width, 1e-9), 1 - 2**-40)))
    write("betainc.csv", "a,b,x,I", tabulate(tail(beta_lower, False), triples))
    write("betainc_upper.csv", "a,b,x,1-I", tabulate(tail(beta_lower, True), triples))


# ---- Elliptic integrals ----

def first(phi, k):
    return mpmath.ellipf(phi, k * k)


def second(phi, k):
    return mpmath.ellipe(phi, k * k)


def third(phi, n, k):
    return mpmath.ellippi(n, phi, k * k)


def elliptic():
    near_one = [1 - 2**-53, 1 - 1e-12, 1 - 1e-8, 1 - 1e-5, 0.999, 0.99]
    moduli = [0.0, 1e-9, 0.1, 0.5, 0.8, -0.8] + near_one
    angles = [1e-300, 1e-8, 0.01, 0.5, -1.2, 1.5, math.pi / 2, 1.6, 2.0, 3.1, -4.0, 20.0, 1234.5, 1e6]
    pairs = [(phi, k) for phi in angles for k in moduli if random.random() < 0.6]
    pairs += [(random.uniform(-20, 20), random.uniform(-1, 1)) for _ in range(40)]
    beyond = [(0.5, 2.0), (0.1, 9.9), (-0.3, 3.3), (1e-5, 99999.0), (0.7, 1.5), (1.55, 1.0001), (0.2, -5.0)]
    unit = [(phi, 1.0) for phi in (1e-8, 0.5, -1.2, 1.5, 1.57)]
    # Where the root nearly vanishes: beside a quarter turn, and beside the greatest angle.
    edge = [(1.5707963076, -1 + 2**-53), (1.5707963261870697, 1 - 3e-14), (1.57, 1 - 1e-9),
            (-0.005260645670532749, -190.09161138055157), (0.00019742384582384, 5065.244283551643),
            (1.1221639359889672e-08, 89113539.29037817), (1.5707962, 1 + 1e-15)]
    write("ellipf.csv", "phi,k,F", tabulate(first, pairs + beyond + unit + edge))
    turns = [(phi, k, 2 * mpmath.nint(mpf(phi) / mp.pi)
              + mpmath.sin(phi - mp.pi * mpmath.nint(mpf(phi) / mp.pi)))
             for phi in (0.5, 1.6, 2.0, -4.0, 20.0, 1234.5) for k in (1.0, -1.0)]
    write("ellipe.csv", "phi,k,E", tabulate(second, pairs + beyond + edge) + turns)

    characteristics = [0.3, -0.3, -2.0, 0.0, 0.9, 1 - 1e-8, -1e3, -1e8, 0.999, 1e-12]
    triples = [(phi, random.choice(characteristics), k) for phi, k in pairs if abs(phi) > 1e-200]
    triples += [(0.5, 3.0, 0.8), (0.1, 99.0, 0.999), (0.3, 2.0, 2.5), (0.2, -50.0, 4.0), (1.2, 1.1, 0.5)]
    triples += [(-0.000515333638351989, 30.068019730815514, -1940.4905285426187), (0.3, -1e6, 2.5),
                (0.1, 1 / math.sin(0.1) ** 2, 0.5), (0.01, 9999.0, 99.9)]
    own = random.Random(8)  # leaves the random numbers of other rows as they were
    for _ in range(36):
        k = 10 ** own.uniform(0, 3)
        triples.append((math.asin(own.uniform(0.01, 0.9999) / k), -(10 ** own.uniform(0, 12)), k))
    write("ellipi.csv", "phi,n,k,Pi", tabulate(third, triples))
    pairs = [(n, k) for n in characteristics + [-1e12] for k in moduli]
    write("ellipi_complete.csv", "n,k,Pi", tabulate(lambda n, k: mpmath.ellippi(n, k * k), pairs))


# ---- Bessel functions ----

def patient(function):
    """A sum of large terms that cancel is given the digits that it needs."""
    return lambda n, x: function(n, x, maxprec=200000, maxterms=10**6)


def oscillating(n, x):
    """J and Y for x well above 1, from low orders upwards in far more digits than are lost."""
    lost = 30 + int(max(0, 0.9 * (n - x)))
    with mp.workdps(60 + lost):
        base = n - mpmath.floor(n)
        j = [mpmath.besselj(base, x), mpmath.besselj(base + 1, x)]
        y = [mpmath.bessely(base, x), mpmath.bessely(base + 1, x)]
        for k in range(1, int(mpmath.floor(n))):
            factor = 2 * (base + k) / x
            j.append(factor * j[-1] - j[-2])
            y.append(factor * y[-1] - y[-2])
        index = int(mpmath.floor(n))
        return j[index], y[index]


def falling(n, x):
    """K: the integral of exp(-x cosh t) cosh(n t), by the trapezoidal rule, which here converges
    with the square of its number of points."""
    step = mpf(1) / (20 + int(4 * mpmath.sqrt(max(abs(n), x))))
    total, largest = mpmath.exp(-x) / 2, mpmath.exp(-x)
    for k in itertools.count(1):
        term = mpmath.exp(-x * mpmath.cosh(k * step)) * mpmath.cosh(n * k * step)
        total += term
        largest = max(largest, term)
        if term < largest * mpf(10) ** -(mp.dps + 5):
            return total * step


def bessel():
    orders = [0.0, 1.0, 2.0, 5.0, 0.5, -0.5, 1.5, 2.5, -1.5, 0.3, -3.7, 17.0, 20.0, 99.5, -3.0]
    points = [1e-300, 1e-9, 0.05, 0.7, 1.0, 2.0, 3.0, 4.5, 8.0, 9.9, 13.0, 25.0, 40.25, 77.0]
    points += [2.404825557695773, 5.520078110286311, 3.8317059702075125, 0.8935769662791675,
               math.pi, 2 * math.pi]
    pairs = [(n, x) for n in orders for x in points if random.random() < 0.5]
    pairs += [(50.0, 1.0), (1000.0, 900.0), (1000.0, 1000.0), (1e4, 9900.0), (1e4, 1e4), (5000.25, 5010.0)]
    j = tabulate(patient(mpmath.besselj), pairs)
    y = tabulate(patient(mpmath.bessely), [(n, x) for n, x in pairs if n <= 1000])
    far = [(n, x) for n in (0.0, 1.0, 2.0, 0.5, 10.25, 37.0, 1000.0, 1000.5, 10000.0)
           for x in (150.0, 1234.5, 1.05e4, 99999.5) if n <= 1.1 * x]
    for n, x in far:
        value_j, value_y = oscillating(mpf(n), mpf(x))
        j.append((n, x, value_j))
        y.append((n, x, value_y))
    write("bessj.csv", "n,x,J", j)
    write("bessy.csv", "n,x,Y", y)
    pairs = [(n, x) for n in orders for x in points + [150.0, 600.0] if random.random() < 0.5]
    pairs += [(1000.0, 900.0), (1e4, 9e3), (300.5, 600.0), (1e3, 700.0), (-20.5, 3.0), (0.0, 710.0)]
    growing = patient(lambda n, x, **more: mpmath.besseli(abs(n) if n == int(n) else n, x, **more))
    write("bessi.csv", "n,x,I", tabulate(growing, pairs))
    write("bessk.csv", "n,x,K", tabulate(falling, pairs))


# ---- Complex functions ----

def complex_functions():
    points = [(0.0, 0.0), (1.0, 2.0), (-3.0, 4.0), (-4.0, 0.0), (0.0, 400.0), (1e-8, -1e-9), (1e-200, 1e-190),
              (0.0, 1e-5), (3.0, -700.0), (700.0, 3.0), (-1.0, 1e-17), (1e5, 0.5), (math.pi, 1e-3), (0.5, 20.0),
              (math.pi / 2, 0.0), (1.0, 1e-10), (0.6, 0.8), (1 + 1e-9, 1e-9)]
    points += [(random.uniform(-1, 1) * a, random.uniform(-1, 1) * b)
               for a, b in zip(spread(-6, 2, 40), spread(-6, 2, 40))]
    points += [(1.2356141380903472e-08, 0.01783583087531663), (264669.6656485027, 2.2207335564540465)]
    functions = {"ccos": mpmath.cos, "cexp": mpmath.exp, "cln": mpmath.log, "csin": mpmath.sin,
                 "csqrt": mpmath.sqrt, "ctan": mpmath.tan}
    for name, function in functions.items():
        rows = []
        for x, y in points:
            if name == "cln" and x == 0 and y == 0:
                continue
            w = function(mpmath.mpc(x, y))
            if abs(w) < LARGEST:
                rows += [(x, y, 0.0, float(abs(w)), w.real), (x, y, 1.0, float(abs(w)), w.imag)]
        write(f"{name}.csv", "x,y,part,|w|,value", rows)


if __name__ == "__main__":
    for family in (elementary, beta_family, elliptic, bessel, complex_functions):
        random.seed(family.__name__)
        if len(sys.argv) < 2 or family.__name__ in sys.argv[1:]:
            family()
