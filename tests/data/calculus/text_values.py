#!/usr/bin/env python3
"""Writes the reference values of zeros, extrema, fields and searches, see README.md.

Needs mpmath. Functions are texts, see texts.py; a number in them is the double that it reads as.
"""

import itertools

import mpmath as mp

from texts import Elements, function_of, mpmath_names

mp.mp.dps = 60
NAMES = mpmath_names()


def write(name, heading, rows):
    with open(name, "w", encoding="ascii") as file:
        print(heading, file=file)
        for text, *arguments, value in rows:
            numbers = [repr(float(a)).removesuffix(".0") for a in arguments]
            numbers.append(mp.nstr(mp.mpf(value), 34, min_fixed=0, max_fixed=0))
            print(f'"{text}"', *numbers, sep=",", file=file)


def real_function(text):
    values = function_of(text, NAMES, "x")
    return lambda x: values(x)[0]


# ---- Functions of one variable ----

ZEROS = [
    ("cos(x)-x", 0, 1), ("exp(x)-2", 0, 1), ("x^3-2", 0, 2), ("ln(x)", 0.1, 3), ("tan(x)-1", 0, 1.5),
    ("sin(x)", 3, 4), ("sin(x)", 1, 20), ("sin(x)", 20, 1), ("x*exp(x)-1", 0, 1), ("exp(-x)-x", 0, 1),
    ("x-1e-300", -1, 1), ("x^2-1e50", 0, 1e29), ("sqrt(x)-1e-8", 0, 1),
    ("exp(x)-1e-300", -800, 0), ("atan(x)-1", 0, 10), ("erf(x)-0.5", 0, 2), ("tan(x)-x", 4, 4.6),
    ("cosh(x)*cos(x)+1", 1, 2.5), ("1/x-3", 0.1, 1), ("sinh(x)-1e5", -5, 50), ("x^2-x-1", 0, 2),
    ("(x-0.3)*(x-0.7)", 0, 1), ("(x-0.3)*(x-0.7)", 1, 0), ("x^3-2*x-5", 2, 3), ("x-0.8-0.2*sin(x)", 0, 2),
    ("1e200*(x-1e-5)", 0, 1), ("bessj(0,x)", 2, 3), ("x^9-1e-90", -1, 1), ("atan(1e8*(x-0.25))", 0, 1),
    ("x*exp(-x)-0.1", 1, 100), ("tanh(x)-0.5", 0, 400), ("x^20-1", 0, 3), ("ln(x)/x-0.3", 1, 2.5),
    ("exp(-(x^2))-0.2", 0, 30), ("1-1e9*x", -7, 1), ("sqrt(x)-x^2", 0.2, 5), ("x", -1, 3)]


def sign_change(f, a, b, pieces=100):
    """The first of equal pieces, from a, where f changes its sign; the whole when its ends differ."""
    if f(a) * f(b) < 0:
        return a, b
    places = [a + (b - a) * mp.mpf(k) / pieces for k in range(pieces + 1)]
    return next((p, q) for p, q in zip(places, places[1:]) if f(p) * f(q) <= 0)


def bisected(f, a, b):
    """To sixty digits, and below an end that is a zero by itself."""
    sign = mp.sign(f(a))
    with mp.workdps(400):
        for _ in range(1300):
            middle = (a + b) / 2
            if mp.sign(f(middle)) == sign:
                a = middle
            else:
                b = middle
    return b


def zeros():
    for text, a, b in ZEROS:
        f = real_function(text)
        yield text, a, b, bisected(f, *sign_change(f, mp.mpf(a), mp.mpf(b)))


MINIMA = [
    ("(x-3)^2+1", 0, 10), ("cosh(x-2)", -9, 4), ("x*ln(x)", 0.01, 2), ("x+1/x", 0.1, 9),
    ("exp(x)-2*x", -3, 3), ("sin(x)", 3, 6), ("sin(x)+sin(10*x/3)", 2.7, 7.5),
    ("(24*x-16*x^2-5)*exp(-x)", 1.9, 3.9), ("(3*x-1.4)*sin(18*x)", 0, 1.2),
    ("-(x+sin(x))*exp(-(x^2))", -10, 10), ("sin(x)+sin(10*x/3)+ln(x)-0.84*x+3", 2.7, 7.5),
    ("x^6/6-52*x^5/25+39*x^4/80+71*x^3/10-79*x^2/20-x+0.1", -1.5, 11), ("gammaln(x)", 0.5, 3),
    ("x", 2, 5), ("exp(-x)", 0, 3), ("bessj(0,x)", 2, 6), ("(x-1e6)^2+3", 0, 3e6),
    ("(x/1e25-2)^2+1", 0, 1e26), ("1/sin(x)", 0.1, 3), ("x^x", 0.01, 1), ("sqrt(1+x^2)-x/2", -5, 5),
    ("1+1e10*(x-0.3)^2", 0, 1), ("(x-1e-5)^2*1e10+7", -1, 1), ("3e-200*(2+x^2)", -1, 2.5),
    ("1e200*(cosh(x)+x)", -30, 3), ("2-exp(-(1e4*(x-0.51)^2))", 0, 1), ("x^2-1e3", 9, -9),
    ("-1/(1e-4+(x-0.6)^2)", 0, 1), ("cosh(1e10*x-3)", 0, 1e-9), ("cosh(1e4*(x-0.52))", 0, 1),
    ("-cos(30*(x-0.51))*exp(x)", 0.3, 0.7), ("5-1/cosh(300*(x-0.487))", 0, 1)]


def minimum(text, a, b):
    """The least of many samples, refined where the slope vanishes unless it is an end."""
    f = real_function(text)
    places = [mp.mpf(a) + (mp.mpf(b) - a) * k / 2000 for k in range(2001)]
    least = min(range(2001), key=lambda k: f(places[k]))
    x = places[least]
    if 0 < least < 2000:
        step = abs(places[1] - places[0])

        def slope(at):
            return mp.diff(f, at, h=step * mp.mpf(10) ** -25)

        x = mp.findroot(slope, (x - step, x + step), solver="illinois", tol=mp.mpf(10) ** -70,
                        verify=False)
    return x, f(x)


def extrema(which):
    for text, a, b in MINIMA:
        yield text, a, b, minimum(text, a, b)[which]


def greatest(which):
    for text, a, b in MINIMA:
        x, value = minimum(text, a, b)
        yield f"-({text})", a, b, (x, -value)[which]


# ---- Fields ----

SCALARS = [
    ("v[1]^2*v[2]+sin(v[2])", [(1, 2), (0, 0.5), (1e-3, -40)]),
    ("100*(v[2]-v[1]^2)^2+(1-v[1])^2", [(-1.2, 1), (3, 9.5)]),
    ("exp(v[1]*v[2])*cos(v[3])", [(0.3, 2, -1), (-1, 5, 7)]),
    ("1/sqrt(v[1]^2+v[2]^2+v[3]^2)", [(1, 2, 2), (-3e-4, 1e-4, 2e-4), (2e8, 3e8, -6e8)]),
    ("ln(v[1]^2+v[2]^2)", [(3, -4), (0.1, 0.7)]), ("atan2(v[2],v[1])", [(1, 1), (-2, 0.3)]),
    ("v[1]*v[2]*v[3]*v[4]", [(1, 2, 3, 4), (-1e3, 2e-3, 5, 0.1)]),
    ("sqrt(v[1])*v[2]^3+tanh(v[1])", [(2, 1.5), (1e6, 1e-3)]),
    ("1e-100*v[1]^5+1e-100*v[2]", [(2, 3)])]

PLANE = [
    ("-v[2];v[1]", [(1, 2), (0, 0)]), ("v[1]^2*v[2];5*v[1]+sin(v[2])", [(1, 2), (-0.4, 30)]),
    ("exp(v[1])*cos(v[2]);exp(v[1])*sin(v[2])", [(1, 0.5), (-3, 2)]),
    ("-v[2]/(v[1]^2+v[2]^2);v[1]/(v[1]^2+v[2]^2)+v[1]", [(0.6, -1.7), (100, 30)]),
    ("sqrt(v[1]*v[2]);ln(v[1]/v[2])", [(2, 3), (1e5, 1e4)])]

SPACE = [
    ("v[1]^2;v[1]*v[2];v[3]^2", [(1, 2, 3), (-1e-4, 20, 1e3)]), ("v[2]*v[3];v[1]*v[3]^2;v[1]*v[2]", [(1, -2, 0.5)]),
    ("sin(v[2]*v[3]);cos(v[1]+v[3]);exp(v[1]*v[2])", [(0.3, 1.1, -2), (1, 0, 4)]),
    ("v[1]/(1+v[1]^2+v[2]^2);v[2]/(1+v[3]^2);v[3]*v[1]*v[2]", [(2, -1, 0.7), (30, 40, 10)]),
    ("10*(v[2]-v[1]);v[1]*(28-v[3])-v[2];v[1]*v[2]-8*v[3]/3", [(1, 2, 20), (-8, 7.5, 27)]),
    ("v[1]*cos(v[2])*cosh(v[3]);v[1]*sin(v[2]);tanh(v[3])*v[1]^2", [(2, 0.7, -0.4)])]


def matrix(text, at):
    """All first derivatives, row by row."""
    f = function_of(text, NAMES, "v")
    at = [mp.mpf(a) for a in at]

    def partial(i, j):
        return mp.diff(lambda x: f(Elements(at[:j] + [x] + at[j + 1:]))[i], at[j])

    count = len(f(Elements(at)))
    return [[partial(i, j) for j in range(len(at))] for i in range(count)]


def gradient(text, at):
    return matrix(text, at)[0]


def divergence(text, at):
    rows = matrix(text, at)
    return [mp.fsum(rows[i][i] for i in range(len(at)))]


def curl(text, at):
    rows = matrix(text, at)
    if len(at) == 2:
        return [mp.mpf(0), mp.mpf(0), rows[1][0] - rows[0][1]]
    return [rows[2][1] - rows[1][2], rows[0][2] - rows[2][0], rows[1][0] - rows[0][1]]


def elements(text, at):
    return list(itertools.chain(*matrix(text, at)))


def fields(cases, result):
    """What counts is the largest of the derivatives that the result is made of."""
    for text, places in cases:
        for at in places:
            size = float(max(map(abs, elements(text, at))))
            for which, exact in enumerate(result(text, at)):
                yield text, which, size, *at, exact


# ---- Searches ----

def sum_of_squares(terms):
    return "+".join(f"({term})^2" for term in terms)


def chain(n):
    return "+".join(f"100*(v[{i + 1}]-v[{i}]^2)^2+(1-v[{i}])^2" for i in range(1, n))


def box():
    return sum_of_squares(f"exp(-(0.1*{k}*v[1]))-exp(-(0.1*{k}*v[2]))"
                          f"-v[3]*(exp(-(0.1*{k}))-exp(-{k}))" for k in range(1, 11))


def brown_dennis():
    return "+".join(f"((v[1]+{t}*v[2]-exp({t}))^2+(v[3]+v[4]*sin({t})-cos({t}))^2)^2"
                    for t in (k / 5 for k in range(1, 21)))


def jennrich_sampson():
    return sum_of_squares(f"2+2*{k}-exp({k}*v[1])-exp({k}*v[2])" for k in range(1, 11))


FREUDENSTEIN = sum_of_squares(["v[1]-13+((5-v[2])*v[2]-2)*v[2]", "v[1]-29+((v[2]+1)*v[2]-14)*v[2]"])
HELIX = ("100*(v[3]-10*atan2(v[2],v[1])/6.283185307179586)^2"
         "+100*(sqrt(v[1]^2+v[2]^2)-1)^2+v[3]^2")
WOOD = ("100*(v[2]-v[1]^2)^2+(1-v[1])^2+90*(v[4]-v[3]^2)^2+(1-v[3])^2"
        "+10*(v[2]+v[4]-2)^2+0.1*(v[2]-v[4])^2")
POWELL = "(v[1]+10*v[2])^2+5*(v[3]-v[4])^2+(v[2]-2*v[3])^4+10*(v[1]-v[4])^4"
GOLDSTEIN = ("(1+(v[1]+v[2]+1)^2*(19-14*v[1]+3*v[1]^2-14*v[2]+6*v[1]*v[2]+3*v[2]^2))"
             "*(30+(2*v[1]-3*v[2])^2*(18-32*v[1]+12*v[1]^2+48*v[2]-36*v[1]*v[2]+27*v[2]^2))")
TRID = ("+".join(f"(v[{i}]-1)^2" for i in range(1, 7)) + "-"
        + "-".join(f"v[{i}]*v[{i - 1}]" for i in range(2, 7)))
ZAKHAROV = ("v[1]^2+v[2]^2+v[3]^2+(0.5*v[1]+v[2]+1.5*v[3])^2+(0.5*v[1]+v[2]+1.5*v[3])^4")
SPHERES = "+".join(f"{k}*(v[{k}]-{k})^2" for k in range(1, 11))

# Start and a place near the minimum, from which its place is refined; no place to compare where the
# second derivatives are singular or the minimum is not a single point.
SEARCHES = [
    (chain(2), (-1.2, 1), (1, 1)), (chain(2), (5, -5), (1, 1)), (chain(4), (-1.2, 1, -1.2, 1), (1,) * 4),
    (chain(6), (0, 0.5) * 3, (1,) * 6),
    (sum_of_squares(["1.5-v[1]*(1-v[2])", "2.25-v[1]*(1-v[2]^2)", "2.625-v[1]*(1-v[2]^3)"]), (1, 1),
     (3, 0.5)),
    (sum_of_squares(["1e4*v[1]*v[2]-1", "exp(-v[1])+exp(-v[2])-1.0001"]), (0, 1), (1.0982e-5, 9.1061)),
    (sum_of_squares(["v[1]-1e6", "v[2]-2e-6", "v[1]*v[2]-2"]), (1, 1), (1e6, 2e-6)),
    (FREUDENSTEIN, (0.5, -2), (11.4128, -0.8968)), (FREUDENSTEIN, (6, 4.5), (5, 4)),
    (WOOD, (-3, -1, -3, -1), (1,) * 4), (POWELL, (3, -1, 0, 1), None), (HELIX, (-1, 0, 0), (1, 0, 0)),
    (box(), (0, 10, 20), None), (brown_dennis(), (25, 5, -5, -1), (-11.59, 13.2, -0.4034, 0.2368)),
    (jennrich_sampson(), (0.3, 0.4), (0.25783, 0.25783)),
    (sum_of_squares(["v[1]^2+v[2]-11", "v[1]+v[2]^2-7"]), (0, 0), (3, 2)),
    (GOLDSTEIN, (0.1, -0.8), (0, -1)),
    ("sin(v[1]+v[2])+(v[1]-v[2])^2-1.5*v[1]+2.5*v[2]+1", (0, 0), (-0.5472, -1.5472)),
    (TRID, (0,) * 6, (6, 10, 12, 12, 10, 6)), (ZAKHAROV, (1, -2, 0.5), (0, 0, 0)),
    (SPHERES, (0,) * 10, tuple(range(1, 11))), ("cosh(v[1]-2)", (10,), (2,)),
    ("-exp(-(0.5*(v[1]^2+v[2]^2)))", (1, 1), (0, 0)),
    ("1e100*((v[1]-3)^2+2*(v[2]+1)^2+v[1]*v[2]+5)", (0, 0), (4, -2))]


def least(text, near):
    """The place where the gradient vanishes and the value there."""
    f = function_of(text, NAMES, "v")

    def slopes(*at):
        return [mp.diff(lambda x: f(Elements(at[:j] + (x,) + at[j + 1:]))[0], at[j])
                for j in range(len(at))]

    with mp.workdps(100):
        if len(near) == 1:
            place = [mp.findroot(lambda x: slopes(x)[0], near[0])]
        else:
            place = list(mp.findroot(slopes, near, tol=mp.mpf(10) ** -60, maxsteps=60,
                                     verify=False))
        return place, f(Elements(place))[0]


def least_values():
    for text, start, near in SEARCHES:
        yield text, *start, least(text, near)[1] if near else mp.mpf(0)


def least_places():
    for text, start, near in SEARCHES:
        for which, exact in enumerate(least(text, near)[0] if near else []):
            yield text, which, *start, exact


if __name__ == "__main__":
    write("zeros.csv", "f,a,b,zero", zeros())
    for which, name in enumerate(("place", "value")):
        write(f"minima_{name}.csv", f"f,a,b,{name}", extrema(which))
        write(f"maxima_{name}.csv", f"f,a,b,{name}", greatest(which))
    write("gradients.csv", "f,which,largest,v and component", fields(SCALARS, gradient))
    write("divergences.csv", "f,which,largest,v and divergence", fields(PLANE + SPACE, divergence))
    write("curls.csv", "f,which,largest,v and component", fields(PLANE + SPACE, curl))
    write("jacobians.csv", "f,which,largest,v and element", fields(PLANE + SPACE, elements))
    write("search_values.csv", "f,start and least value", least_values())
    write("search_places.csv", "f,which,start and element of the place", least_places())
