#!/usr/bin/env python3
"""Writes the reference values of integrals, derivatives, roots and sums, see README.md.

Needs mpmath. Each file has the name of a function that the tests know, its arguments as doubles
that read back exactly, and the value to 34 digits.
"""

import mpmath as mp

mp.mp.dps = 60
pi = mp.pi


def exact(x):
    """The double that an argument is, as a number of high precision."""
    return mp.mpf(float(x))


def shown(value):
    return mp.nstr(value, 34, min_fixed=0, max_fixed=0)


def write(name, heading, rows):
    with open(name, "w", encoding="ascii") as file:
        print(heading, file=file)
        for name_, arguments, value in rows:
            print(",".join([name_, *(repr(float(a)) for a in arguments), shown(value)]), file=file)


FUNCTIONS = {
    "sin": mp.sin,
    "exp": mp.exp,
    "sqrt": mp.sqrt,
    "ln": mp.log,
    "runge": lambda x: 1 / (1 + 25 * x * x),
    "peak": lambda x: 1 / (exact(1e-6) + (x - exact(0.3)) ** 2),
    "wave": lambda x: mp.cos(50 * x),
    "gauss": lambda x: mp.exp(-x * x),
    "rootInverse": lambda x: 1 / mp.sqrt(x),
    "expSin": lambda x: mp.exp(x) * mp.sin(x),
    "tan": mp.tan,
    "steep": lambda x: mp.sin(1000 * x),
    "power": lambda x: x ** exact(-0.9),
    "planck": lambda x: x ** 3 / mp.expm1(x),
    "slowTail": lambda x: x ** exact(-1.1),
    "lateBell": lambda x: mp.exp(-(x - 20) ** 2),
    "decayWave": lambda x: mp.exp(-x) * mp.cos(10 * x),
    "cauchy": lambda x: 1 / (1 + x * x),
    "semicircle": lambda x: mp.sqrt(x * (1 - x)),
}

PRIMITIVES = {
    "sin": lambda x: -mp.cos(x),
    "exp": mp.exp,
    "sqrt": lambda x: x ** mp.mpf(1.5) / mp.mpf(1.5),
    "ln": lambda x: x * mp.log(x) - x if x else mp.mpf(0),
    "runge": lambda x: mp.atan(5 * x) / 5,
    "peak": lambda x: mp.atan((x - exact(0.3)) / mp.sqrt(exact(1e-6))) / mp.sqrt(exact(1e-6)),
    "wave": lambda x: mp.sin(50 * x) / 50,
    "gauss": lambda x: mp.sqrt(pi) / 2 * mp.erf(x),
    "rootInverse": lambda x: 2 * mp.sqrt(x),
    "expSin": lambda x: mp.exp(x) * (mp.sin(x) - mp.cos(x)) / 2,
}


def integrals():
    ranges = {
        "sin": [(0, 3), (-1, 2), (0, 100), (1e-9, 2e-9)],
        "exp": [(0, 1), (-700, 3), (1, 1 + 1e-8)],
        "sqrt": [(0, 1), (0, 1e6)],
        "ln": [(0, 1), (1, 1e9)],
        "runge": [(-1, 1), (-1e4, 1e3)],
        "peak": [(0, 1)],
        "wave": [(0, 7)],
        "gauss": [(-3, 8), (0, 0.01)],
        "rootInverse": [(0, 1), (1e-12, 4)],
        "expSin": [(-2, 9)],
    }
    for name, pairs in ranges.items():
        for a, b in pairs:
            primitive = PRIMITIVES[name]
            yield name, (a, b), primitive(exact(b)) - primitive(exact(a))


def improper_integrals():
    infinity = float("inf")
    yield "rootInverse", (0, 1), mp.mpf(2)
    yield "power", (0, 1), 1 / (1 - exact(0.9))
    yield "ln", (0, 1), mp.mpf(-1)
    yield "semicircle", (0, 1), pi / 8
    yield "gauss", (-infinity, infinity), mp.sqrt(pi)
    yield "cauchy", (-infinity, infinity), pi
    yield "cauchy", (3, infinity), mp.acot(3)
    yield "planck", (0, infinity), pi ** 4 / 15
    yield "slowTail", (1, infinity), 1 / (exact(1.1) - 1)
    yield "lateBell", (0, infinity), mp.sqrt(pi) / 2 * (1 + mp.erf(20))
    yield "decayWave", (0, infinity), mp.mpf(1) / 101
    yield "exp", (-infinity, 0), mp.mpf(1)
    yield "gauss", (-infinity, 1), mp.sqrt(pi) / 2 * (1 + mp.erf(1))
    yield "sin", (1, 2), mp.cos(1) - mp.cos(2)
    for a in (-5, 0, 100):
        yield "cauchy", (a, infinity), pi / 2 - mp.atan(a)
    for a in (0, 3):
        yield "gauss", (a, infinity), mp.sqrt(pi) / 2 * mp.erfc(a)
    for b in (2, -10):
        yield "exp", (-infinity, b), mp.exp(b)
    yield "slowTail", (5, infinity), mp.mpf(5) ** (1 - exact(1.1)) / (exact(1.1) - 1)


def derivatives():
    places = {
        "expSin": [1, -0.3, 4, 20],
        "exp": [0, 1, 10, -5, 1e-17, -1e-6, 0.003],
        "sin": [0.5, 100, -3],
        "ln": [1e-6, 1, 3e5],
        "gauss": [0.5, 1, 2],
        "runge": [0.1, 0.7],
        "cauchy": [0.4, 3],
        "sqrt": [2, 1e-8],
    }
    for name, xs in places.items():
        for x in xs:
            for order in range(1, 5):
                yield name, (x, order), mp.diff(FUNCTIONS[name], exact(x), order)
    yield "tan", (1.57, 1), 1 + mp.tan(exact(1.57)) ** 2
    yield "steep", (0, 1), mp.mpf(1000)


def sums():
    yield "inverseSquare", (1,), mp.zeta(2)
    for first in (2, 5, 10, 30, 100):
        yield "inverseSquare", (first,), mp.zeta(2, first)
    for first in (1, 4, 20):
        yield "inverseCube", (first,), mp.zeta(3, first)
    for first in (1, 2, 10):
        yield "power1.5", (first,), mp.zeta(mp.mpf(1.5), first)
    yield "power1.2", (1,), mp.zeta(exact(1.2))
    yield "leibniz", (0,), pi / 4
    yield "alternatingRoot", (1,), -mp.altzeta(mp.mpf(0.5))
    for first in (0, 5, 100):
        yield "geometric", (first,), exact(0.99) ** first / (1 - exact(0.99))
    yield "evenOnly", (0,), mp.mpf(4) / 3
    yield "exponential", (0,), mp.e
    yield "logarithm", (1,), -mp.log(1 - exact(0.9))


if __name__ == "__main__":
    write("integrals.csv", "function,a,b,integral", integrals())
    write("improper.csv", "function,a,b,integral", improper_integrals())
    write("derivatives.csv", "function,x,order,derivative", derivatives())
    write("sums.csv", "terms,first,sum", sums())
