#!/usr/bin/env python3
"""Writes the reference values of polynomials, splines and moving averages, see README.md.

Needs mpmath. Arguments are doubles that read back exactly; values hold for these doubles and are
written with 34 digits.
"""

import functools
import math
import random

import mpmath as mp

mp.mp.dps = 80


def write(name, heading, rows):
    with open(name, "w", encoding="ascii") as file:
        print(heading, file=file)
        for *arguments, value in rows:
            texts = [repr(float(a)).removesuffix(".0") for a in arguments]
            print(*texts, mp.nstr(value, 34, min_fixed=0, max_fixed=0), sep=",", file=file)


def expanded(roots):
    """The coefficients of the product of all (x - root), rounded to doubles, the constant first."""
    c = [mp.mpf(1)]
    for root in roots:
        c = [low - root * high for low, high in zip([0] + c, c + [0])]
    return [float(a) for a in c]


def of_factors(*factors):
    """The coefficients of a product of polynomials."""
    c = [1]
    for factor in factors:
        product = [0] * (len(c) + len(factor) - 1)
        for i, a in enumerate(c):
            for j, b in enumerate(factor):
                product[i + j] += a * b
        c = product
    return [float(a) for a in c]


def legendre(n):
    return [float(mp.chop(c)) for c in mp.taylor(lambda x: mp.legendre(n, x), 0, n)]


def chebyshev(n):
    older, newer = [1], [0, 1]
    for _ in range(n - 1):
        older, newer = newer, [a - b for a, b in zip([0] + [2 * c for c in newer],
                                                     older + [0, 0])]
    return [float(c) for c in newer]


def random_coefficients(n, decades=0.0):
    return [random.choice((-1, 1)) * 10 ** random.uniform(-decades, decades) * random.random()
            for _ in range(n + 1)]


def solved(system, right):
    """With digits enough for elements of every size, which the solver would take for zeros."""
    with mp.workdps(700):
        return list(mp.lu_solve(system, right))


# ---- Polynomials ----

def value(c, x):
    return mp.polyval([mp.mpf(a) for a in reversed(c)], mp.mpf(x))


def derived(c):
    return [k * mp.mpf(a) for k, a in enumerate(c)][1:] or [mp.mpf(0)]


def polynomial_places():
    places = [([3.5], 2), ([-6, 11, -6, 1], 0), ([-6, 11, -6, 1], 2.5), ([1e-300, 1e300], 1e-300),
              ([1, 2, 3], 1e100), ([1, 1e-200, 1e200], -1e-200), ([5e-324, 1], 0)]
    steep, cheb, flat = expanded(range(1, 21)), chebyshev(30), expanded([1] * 20)
    places += [(steep, x) for x in (0.5, 1, 7.25, 12.0001, 20, 20.5, -3, 1e10)]
    places += [(cheb, x) for x in (-1, -0.999, -0.3, 1e-9, 0.5, math.cos(math.pi / 60), 1)]
    places += [(flat, x) for x in (0.9, 1 - 1e-8, 1.01, 3)]
    for degree in (1, 2, 3, 5, 9, 17, 30, 60):
        for x in (random.uniform(-1, 1), random.choice((-1, 1)) * 10 ** random.uniform(-4, 4)):
            places.append((random_coefficients(degree, 3), x))
    return places


SEPARATED = [
    [-6, 11, -6, 1], [5, -2, 1], [1e-30, -1e10, 1e-5, 1], [1, -1e8, 1], [2.5, 3], [1e-200, 0, 1],
    [-1] + [0] * 9 + [1], [-2] + [0] * 4 + [1], [3] + [0] * 19 + [1],
    of_factors([1, 0, 1], [-3, 1], [5, 2, 1]), expanded([10.0 ** k for k in range(7)]),
    expanded([2.0 ** k for k in range(-6, 7)]), legendre(5), [1e200, -3e200, 1e200],
    of_factors([1, 2e-3, 1], [4, 1e-3, 1]), [1e-300, 1e-150, 1],
]


def separated_roots():
    polynomials = SEPARATED + [random_coefficients(n) for n in (4, 8, 12, 20)]
    for c in polynomials:
        with mp.workdps(900):
            found = mp.polyroots([mp.mpf(a) for a in reversed(c)], maxsteps=2000, extraprec=3000)
        for z in found:
            if mp.im(z) < -mp.mpf(10) ** -60 * abs(z):
                continue
            real = abs(mp.im(z)) < mp.mpf(10) ** -60 * abs(z)
            near = (float(mp.re(z)), 0.0 if real else float(mp.im(z)))
            yield 0, *near, *c, mp.re(z)
            if not real:
                yield 1, *near, *c, mp.im(z)


def hard_polynomials():
    polynomials = [expanded(range(1, n + 1)) for n in (5, 10, 15, 20, 25)]
    polynomials += [expanded([1.0 / k for k in range(1, 16)]), expanded([1] * 5), expanded([1] * 12),
                    of_factors(*[[1, 0, 1]] * 5), [0, 0, -1, 0, 1], chebyshev(20), chebyshev(40),
                    legendre(30), [-1] + [0] * 99 + [1], [1.0] * 61]
    polynomials += [[1 / math.factorial(k) for k in range(n + 1)] for n in (20, 60)]
    polynomials += [[2.0 ** (-k * k) for k in range(20)], [10.0 ** (-k * k / 2) for k in range(20)],
                    [2.0 ** (k * (20 - k)) for k in range(21)]]
    polynomials.append(of_factors([-2] + [0] * 6 + [1], [1]))
    polynomials.append([-2.0, 400, -20000] + [0] * 12 + [1])  # Mignotte: two roots nearly one
    polynomials += [random_coefficients(n) for n in (50, 100, 200)]
    polynomials += [random_coefficients(n, 40) for n in (6, 15, 30)]
    polynomials.append([random.choice((-1, 1)) for _ in range(121)])
    for c in SEPARATED + polynomials:
        yield *c, mp.mpf(0)


def point_sets():
    """Abscissae with ordinates, of at most eight points."""
    for n in range(2, 9):
        sets = [[k + 1 for k in range(n)], [-1 + 2 * k / (n - 1) for k in range(n)],
                [math.cos(math.pi * (2 * k + 1) / (2 * n)) for k in range(n)],
                [10.0 ** (k - 4) for k in range(n)], [1e6 + k for k in range(n)],
                sorted(random.uniform(-1, 1) for _ in range(n)),
                [1e-40 * random.uniform(-1, 1) for _ in range(n)]]
        for x in sets:
            random.shuffle(x)
            yield x, [random.uniform(-3, 3) for _ in x]
    yield [0, 1, 2, 4], [1, 3, 2, 5]
    yield [1, 2, 3, 4, 5, 6], [2 * x - 1 for x in range(1, 7)]


def coefficients(x, y):
    n = len(x)
    system = mp.matrix(n, n)
    for i in range(n):
        for k in range(n):
            system[i, k] = mp.mpf(x[i]) ** k
    return solved(system, mp.matrix(y))


def interpolating_coefficients():
    for x, y in point_sets():
        c = coefficients(x, y)
        size = float(max(map(abs, c)))
        for k in (0, len(x) // 2, len(x) - 1):
            yield k, size, *x, *y, c[k]


def many_points():
    for n in (2, 5, 8, 10, 12, 14, 16, 18, 20):
        for x in ([-1 + 2 * k / (n - 1) for k in range(n)],
                  [math.cos(math.pi * (2 * k + 1) / (2 * n)) for k in range(n)],
                  sorted(random.uniform(-1, 1) for _ in range(n))):
            yield *x, *(random.uniform(-3, 3) for _ in x), mp.mpf(0)
    for n in (16, 18, 20) * 2:  # in clusters, where the order of the points tells
        x = sorted(random.choice((-0.8, 0.1, 0.9)) + random.uniform(-0.1, 0.1) for _ in range(n))
        yield *x, *(random.uniform(-3, 3) for _ in x), mp.mpf(0)


# ---- Splines ----

NATURAL, CLAMPED, NOT_A_KNOT, PERIODIC = range(4)


@functools.lru_cache(maxsize=None)
def moments(x, y, end, first_slope, last_slope):
    """The second derivatives at the points, from the equations of a cubic spline as they stand."""
    n = len(x)
    x, y = [mp.mpf(a) for a in x], [mp.mpf(a) for a in y]
    h = [b - a for a, b in zip(x, x[1:])]
    slope = [(b - a) / step for a, b, step in zip(y, y[1:], h)]
    system, right = mp.zeros(n, n), mp.zeros(n, 1)
    for i in range(1, n - 1):
        system[i, i - 1], system[i, i], system[i, i + 1] = h[i - 1], 2 * (h[i - 1] + h[i]), h[i]
        right[i] = 6 * (slope[i] - slope[i - 1])
    if end == NATURAL or end == NOT_A_KNOT and n == 2:
        system[0, 0] = system[n - 1, n - 1] = 1
    elif end == CLAMPED:
        system[0, 0], system[0, 1] = 2 * h[0], h[0]
        system[n - 1, n - 2], system[n - 1, n - 1] = h[-1], 2 * h[-1]
        right[0] = 6 * (slope[0] - mp.mpf(first_slope))
        right[n - 1] = 6 * (mp.mpf(last_slope) - slope[-1])
    elif end == NOT_A_KNOT and n == 3:
        return [2 * (slope[1] - slope[0]) / (x[2] - x[0])] * 3
    elif end == NOT_A_KNOT:
        system[0, 0], system[0, 1], system[0, 2] = h[1], -h[0] - h[1], h[0]
        system[n - 1, n - 3], system[n - 1, n - 2] = h[-1], -h[-2] - h[-1]
        system[n - 1, n - 1] = h[-2]
    else:
        system[0, 0], system[0, n - 1] = 1, -1
        for k, weight in ((0, 2 * h[0]), (1, h[0]), (n - 2, h[-1]), (n - 1, 2 * h[-1])):
            system[n - 1, k] += weight
        right[n - 1] = 6 * (slope[0] - slope[-1])
    return solved(system, right)


def tables():
    pi = math.pi
    yield (0, 1, 2, 4), (0, 1, 0, 2)
    yield (1, 3), (5, -2)
    yield (1e-120, 2e-120, 4e-120), (1, 5, 2)
    yield tuple(range(-5, 6)), tuple(1 / (1 + x * x) for x in range(-5, 6))
    yield tuple(10.0 ** k for k in range(-3, 5)), (1, 2, 0, 3, 3, -1, 2, 0.5)
    yield (0, 0.5, 1, 1 + 1e-6, 2, 50), (0, 1e-6, 1, 1, 0, 0)
    yield tuple(range(10)), (0, 0, 0, 0, 1, 0, 0, 0, 0, 0)
    yield tuple(2 * pi * k / 8 for k in range(9)), tuple(math.sin(pi * k / 4) for k in range(9))
    yield tuple(1e150 * k for k in (1, 2, 3, 5, 8)), (1e100, -1e100, 3e100, 0, 2e100)
    xs = tuple(sorted(random.uniform(-4, 9) for _ in range(12)))
    yield xs, tuple(random.uniform(-1, 1) for _ in xs)
    yield (100, 101, 102, 103, 104, 105), (1e8, 1e8 + 1, 1e8 + 4, 1e8 + 9, 1e8 + 16, 1e8 + 25)


def splines():
    for x, y in tables():
        for end in range(4):
            if end == PERIODIC:
                if len(x) < 3:
                    continue
                y = (*y[:-1], y[0])
            slopes = (0.5 / x[-1] * y[1], -2 / x[-1]) if end == CLAMPED else (0, 0)
            yield end, *slopes, x, y


def spline_moments():
    for end, first, last, x, y in splines():
        m = moments(x, y, end, first, last)
        size = float(max(map(abs, m))) or 1
        for k in sorted({0, 1, len(x) // 2, len(x) - 1}):
            yield end, first, last, k, size, *x, *y, m[k]


def piece(x, y, m, k, at):
    """Value, slope, curvature and the integral from the piece's start."""
    h, t = mp.mpf(x[k + 1]) - x[k], mp.mpf(at) - x[k]
    a, d = mp.mpf(y[k]), (m[k + 1] - m[k]) / (6 * h)
    b = (mp.mpf(y[k + 1]) - y[k]) / h - h * (2 * m[k] + m[k + 1]) / 6
    c = m[k] / 2
    return (a + t * (b + t * (c + t * d)), b + t * (2 * c + 3 * t * d), 2 * c + 6 * t * d,
            t * (a + t * (b / 2 + t * (c / 3 + t * d / 4))))


def spline_values():
    for end, first, last, x, y in splines():
        m = moments(x, y, end, first, last)
        knots = [piece(x, y, m, min(k, len(x) - 2), at) for k, at in enumerate(x)]
        sizes = [max(abs(knot[q]) for knot in knots) for q in range(3)]
        sizes.append(max(map(abs, y)) * (x[-1] - x[0]))
        span = x[-1] - x[0]
        for at in (x[0] - span / 9, (x[0] + x[1]) / 2, x[1], x[-1] - span / 1e3, x[-1] + span / 9):
            k = max(0, min(len(x) - 2, sum(at >= a for a in x) - 1))
            here = list(piece(x, y, m, k, at))
            here[3] += sum(piece(x, y, m, j, x[j + 1])[3] for j in range(k))
            for quantity, exact in enumerate(here):
                size = float(max(sizes[quantity], abs(exact))) or 1
                yield end, first, last, quantity, at, size, *x, *y, exact


# ---- Moving averages ----

def moving_averages():
    series = [[2, 4, 6, 8, 10], [1e16, 1, 2, 3, -1e16, 4, 5], [1e-310] * 4 + [3e-310],
              [1.7e308, 1.6e308, 1.5e308, -1.7e308, 1], [(-1) ** k * (1 + 1e-12 * k) for k in range(9)],
              [random.gauss(0, 1) for _ in range(25)],
              [random.choice((-1, 1)) * 10 ** random.uniform(-20, 20) for _ in range(25)]]
    for y in series:
        m = len(y)
        for n in sorted({1, 3, m, m - m % 2 - 1}):
            for cut_off in range(1 + n % 2):
                for k in (range(m) if cut_off else range(m - n + 1))[::max(1, m // 5)]:
                    low = max(0, k - n // 2) if cut_off else k
                    high = min(m, k + n // 2 + 1) if cut_off else k + n
                    window = [mp.mpf(a) for a in y[low:high]]
                    size = mp.fsum(window, absolute=True) / len(window)
                    yield cut_off, n, k, float(size), *y, mp.fsum(window) / len(window)


if __name__ == "__main__":
    random.seed(6)
    places = polynomial_places()
    write("poly.csv", "x,coefficients and value", ((x, *c, value(c, x)) for c, x in places))
    write("poly_slope.csv", "x,coefficients and derivative",
          ((x, *c, value(derived(c), x)) for c, x in places))
    write("roots.csv", "part,near re,near im,coefficients and part of the root", separated_roots())
    write("roots_residual.csv", "coefficients and 0", hard_polynomials())
    write("polycoe.csv", "which,size,x and y and coefficient", interpolating_coefficients())
    write("polycoe_residual.csv", "x and y and 0", many_points())
    write("spline.csv", "end,first slope,last slope,which,size,x and y and second derivative",
          spline_moments())
    write("splint.csv", "end,first slope,last slope,quantity,x,size,x and y and quantity",
          spline_values())
    write("movingaverage.csv", "cut off,n,which,size,y and mean", moving_averages())
