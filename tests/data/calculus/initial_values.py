#!/usr/bin/env python3
"""Writes the reference values of systems of differential equations, see README.md.

Needs mpmath for closed forms and trigonometric functions. Everything else but published solutions
is computed in decimal numbers of sixty digits by extrapolating the modified midpoint rule until two
columns agree.
"""

import decimal
import re
import sys

import mpmath as mp

from texts import Elements, function_of

D = decimal.Decimal
decimal.getcontext().prec = 60
mp.mp.dps = 60
COLUMNS = 16
AGREEMENT = D(10) ** -40


def through_mpmath(function):
    return lambda x: D(mp.nstr(function(mp.mpf(str(x))), 60))


NAMES = {"D": D, "exp": lambda x: D(x).exp(), "sqrt": lambda x: D(x).sqrt(),
         "sin": through_mpmath(mp.sin), "cos": through_mpmath(mp.cos)}


def right_sides(text):
    """The derivatives in decimal numbers; a number in the text is the double that it reads as."""
    exact = re.sub(r"\d+(\.\d+)?e[+-]?\d+|\d+\.\d+", lambda number: f"D({number[0]})", text)
    values = function_of(exact, NAMES, "t", "y")
    return lambda t, y: values(t, Elements(y))


def midpoint(f, t, y, h, count):
    step = h / count
    before, now = y, [p + step * s for p, s in zip(y, f(t, y))]
    for k in range(1, count):
        slopes = f(t + k * step, now)
        before, now = now, [p + 2 * step * s for p, s in zip(before, slopes)]
    return [(p + q + step * s) / 2 for p, q, s in zip(before, now, f(t + h, now))]


def big_step(f, t, y, h):
    """The state at t + h and how far the last two columns are from each other."""
    row = []
    for k in range(1, COLUMNS + 1):
        new = [midpoint(f, t, y, h, 2 * k)]
        for j, old in enumerate(row, start=1):
            weight = D(k * k) / (k * k - (k - j) ** 2) - 1
            new.append([p + (p - q) * weight for p, q in zip(new[-1], old)])
        row, before = new, row
    return row[-1], max(abs(p - q) for p, q in zip(row[-1], before[-1]))


def solution(text, a, b, start):
    f = right_sides(text)
    t, end, y = D(a), D(b), [D(x) for x in start]
    h = (end - t) / 100
    while t != end:
        if abs(h) > abs(end - t):
            h = end - t
        try:
            reached, error = big_step(f, t, y, h)
        except decimal.Overflow:
            h /= 10
            continue
        if error > AGREEMENT * max(D("1e-9"), max(map(abs, reached))):
            h /= 2
            continue
        t, y = (end if h == end - t else t + h), reached
        h *= D("1.2")
    return y


def e(x):
    return mp.exp(mp.mpf(x))


def constant(x):
    """The double, where the closed form needs it in high precision."""
    return mp.mpf(float(x))


OSCILLATOR = "y[2];-y[1]"
PENDULUM = "y[2];-9.81*sin(y[1])"
VAN_DER_POL = "y[2];(1-y[1]^2)*y[2]-y[1]"
KEPLER = "y[3];y[4];-y[1]/sqrt(y[1]^2+y[2]^2)^3;-y[2]/sqrt(y[1]^2+y[2]^2)^3"
LOTKA = "y[1]*(1-y[2]);y[2]*(y[1]-1)"
LORENZ = "10*(y[2]-y[1]);y[1]*(28-y[3])-y[2];y[1]*y[2]-8*y[3]/3"
EULER = "y[2]*y[3];-y[1]*y[3];-0.51*y[1]*y[2]"

# Text, from, to, start and, where there is one, the solution in closed form.
PLAIN = [
    (OSCILLATOR, 0, 1, (1, 0), [mp.cos(1), -mp.sin(1)]),
    (OSCILLATOR, 0, 100, (1, 0), [mp.cos(100), -mp.sin(100)]),
    (OSCILLATOR, 7, -20, (0.5, -2), None),
    ("y[1]*(1-y[1])", 0, 5, (0.01,), [1 / (1 + (1 / constant(0.01) - 1) * e(-5))]),
    ("y[1]*(1-y[1])", 0, -5, (0.5,), [1 / (1 + e(5))]),
    (PENDULUM, 0, 2, (0.5, 0), None), (PENDULUM, 0, 20, (2, 0), None),
    (VAN_DER_POL, 0, 10, (2, 0), None), (VAN_DER_POL, 0, 40, (1e-3, 0), None),
    ("y[1]", 0, 20, (1,), [e(20)]), ("-y[1]", 0, 20, (1,), [e(-20)]),
    ("y[1]", 0, 1, (1e100,), [constant(1e100) * mp.e]),
    ("-y[1]+cos(t)", 0, 30, (1,), [(mp.cos(30) + mp.sin(30) + e(-30)) / 2]),
    ("50*cos(50*t)", 0, 10, (0,), [mp.sin(500)]),
    ("exp(-((20*(t-5))^2))", 0, 10, (0,), [mp.sqrt(mp.pi) / 20 * mp.erf(100)]),
    ("y[1]^2", 0, 0.99, (1,), [1 / (1 - constant(0.99))]),
    ("-2*t*y[1]^2", 0, 10, (1,), [1 / mp.mpf(101)]),
    ("y[1]*cos(t)", 0, 20, (1,), [mp.exp(mp.sin(20))]),
    ("y[2];-y[2]/t-(1-1/t^2)*y[1]", 1, 30, (mp.besselj(1, 1), mp.diff(lambda x: mp.besselj(1, x), 1)),
     None),
    (LOTKA, 0, 20, (3, 1), None), (LORENZ, 0, 4, (1, 1, 20), None), (EULER, 0, 20, (0, 1, 1), None),
    (KEPLER, 0, 20, (0.5, 0, 0, mp.sqrt(3)), None), (KEPLER, 0, 6, (0.1, 0, 0, mp.sqrt(19)), None),
    ("y[2];-0.3*y[2]+y[1]-y[1]^3+0.2*cos(1.2*t)", 0, 30, (0.2, 0), None)]

ROBERTSON = ("-0.04*y[1]+1e4*y[2]*y[3];0.04*y[1]-1e4*y[2]*y[3]-3e7*y[2]^2;3e7*y[2]^2")
HIRES = ("-1.71*y[1]+0.43*y[2]+8.32*y[3]+0.0007;1.71*y[1]-8.75*y[2];"
         "-10.03*y[3]+0.43*y[4]+0.035*y[5];8.32*y[2]+1.71*y[3]-1.12*y[4];"
         "-1.745*y[5]+0.43*y[6]+0.43*y[7];"
         "-280*y[6]*y[8]+0.69*y[4]+1.71*y[5]-0.43*y[6]+0.69*y[7];"
         "280*y[6]*y[8]-1.81*y[7];-280*y[6]*y[8]+1.81*y[7]")
OREGONATOR = ("77.27*(y[2]+y[1]*(1-8.375e-6*y[1]-y[2]));(y[3]-(1+y[1])*y[2])/77.27;"
              "0.161*(y[1]-y[3])")


def kaps(mu):
    return f"-{mu + 2}*y[1]+{mu}*y[2]^2;y[1]-y[2]-y[2]^2", 0, 5, (1, 1), [e(-10), e(-5)]


def tracking(rate, b):
    """Closed form of y' = -rate (y - cos t), y(0) = 0."""
    k = mp.mpf(rate)
    return (f"-{rate}*(y[1]-cos(t))", 0, b, (0,),
            [k * (k * mp.cos(b) + mp.sin(b) - k * mp.exp(-k * b)) / (k * k + 1)])


def coupled(fast):
    """y' = A y with eigenvalues -1 and -fast."""
    k = mp.mpf(fast)
    return (f"{fast - 2}*y[1]+{2 * fast - 2}*y[2];-{fast - 1}*y[1]-{2 * fast - 1}*y[2]", 0, 10, (1, 0),
            [2 * e(-10) - mp.exp(-10 * k), -e(-10) + mp.exp(-10 * k)])


STIFF = [
    (ROBERTSON, 0, 0.4, (1, 0, 0), None), (ROBERTSON, 0, 4, (1, 0, 0), None),
    (HIRES, 0, 5, (1, 0, 0, 0, 0, 0, 0, 0.0057), None),
    kaps(1000), kaps(1000000), tracking(1000, 3), tracking(1000000, 10), tracking(50, 1.5),
    coupled(1000), coupled(1000000),
    ("y[2];100*(1-y[1]^2)*y[2]-y[1]", 0, 20, (2, 0), None),
    ("-1000*y[1]+1000*t^2+2*t", 0, 20, (1,), [400 + e(-20000)]),
    (OSCILLATOR, 0, 10, (1, 0), [mp.cos(10), -mp.sin(10)]),
    ("-y[1]^2*1e5", 0, 100, (1,), [1 / mp.mpf(10000001)])]

# Reference solutions of the test set of Mazzia and Magherini (Test Set for Initial Value Problem
# Solvers, release 2.4, 2008), to its sixteen digits: beyond what explicit steps can reach.
PUBLISHED = [
    (HIRES, 0, 321.8122, (1, 0, 0, 0, 0, 0, 0, 0.0057),
     ["0.7371312573325668e-3", "0.1442485726316185e-3", "0.5888729740967575e-4",
      "0.1175651343283149e-2", "0.2386356198831331e-2", "0.6238968252742796e-2",
      "0.2849998395185769e-2", "0.2850001604814231e-2"]),
    (OREGONATOR, 0, 360, (1, 2, 3),
     ["0.1000814870318523e1", "0.1228178521549917e4", "0.1320554942846706e3"]),
    ("y[2];((1-y[1]^2)*y[2]-y[1])/1e-6", 0, 2, (2, 0),
     ["0.1706167732170483e1", "-0.8928097010247975"])]


def write(name, systems):
    with open(name, "w", encoding="ascii") as file:
        print("f,which,a,b,y(a) and element of y(b)", file=file)
        for text, a, b, start, exact in systems:
            start = [float(y) for y in start]
            if exact is None:
                exact = solution(text, a, b, start)
            numbers = [repr(float(x)).removesuffix(".0") for x in (a, b, *start)]
            for which, y in enumerate(exact, start=1):
                shown = mp.nstr(mp.mpf(str(y)), 34, min_fixed=0, max_fixed=0)
                print(f'"{text}"', which, *numbers, shown, sep=",", file=file)
            print(name, text[:50], file=sys.stderr)


if __name__ == "__main__":
    write("initial_values.csv", PLAIN)
    write("stiff_values.csv", STIFF + PUBLISHED)
