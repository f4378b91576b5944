#!/usr/bin/env python3
"""Writes the reference rows of fits, see README.md.

Linear fits are solved in whole fractions, nonlinear ones in 80 digits. Published results that do not
agree with what comes out end the script.
"""

import math
import pathlib
import random
from fractions import Fraction

import mpmath
from mpmath import mp, mpf

mp.dps = 80
HERE = pathlib.Path(__file__).parent
HEADING = "set;method;start;other start;parameters;deviations;residual;x;y;weights"


def models(m):
    """The models by the name of their data, with the functions of the module m."""
    exp, atan = m.exp, getattr(m, "atan", None) or m.arctan

    def decays(x, a, b, c, d, e, f):
        return a * exp(-b * x) + c * exp(-d * x) + e * exp(-f * x)

    def rise(x, a, b):
        return a * (1 - exp(-b * x))

    return {
        "Misra1a": rise,
        "Misra1b": lambda x, a, b: a * (1 - (1 + b * x / 2) ** -2),
        "Misra1c": lambda x, a, b: a * (1 - 1 / m.sqrt(1 + 2 * b * x)),
        "Misra1d": lambda x, a, b: a * b * x / (1 + b * x),
        "DanWood": lambda x, a, b: a * x**b,
        "Chwirut2": lambda x, a, b, c: exp(-a * x) / (b + c * x),
        "Lanczos2": decays, "Lanczos3": decays,
        "Roszman1": lambda x, a, b, c, d: a - b * x - atan(c / (x - d)) / m.pi,
        "MGH17": lambda x, a, b, c, d, e: a + b * exp(-x * d) + c * exp(-x * e),
        "MGH09": lambda x, a, b, c, d: a * (x * x + x * b) / (x * x + x * c + d),
        "MGH10": lambda x, a, b, c: a * exp(b / (x + c)),
        "BoxBOD": rise, "BoxBOD weighted": rise,
        "Rat42": lambda x, a, b, c: a / (1 + exp(b - c * x)),
        "Rat43": lambda x, a, b, c, d: a / (1 + exp(b - c * x)) ** (1 / d),
        "Eckerle4": lambda x, a, b, c: a / b * exp(-((x - c) / b) ** 2 / 2),
        "Thurber": lambda x, a, b, c, d, e, f, g: ((a + x * (b + x * (c + x * d)))
                                                   / (1 + x * (e + x * (f + x * g)))),
    }


def read_sets(name):
    """The data sets of a file: a dictionary of their columns each, numbers as lists."""
    lines = (HERE / name).read_text(encoding="ascii").splitlines()
    texts = [dict(zip(lines[0].split(";"), line.split(";"))) for line in lines[1:]]
    return [{key: text if key in ("set", "method") else list(map(float, text.split()))
             for key, text in row.items()} for row in texts]


def made_sets():
    """Difficulties that the published sets do not have."""
    random.seed(1805)

    def noise(size):
        return random.gauss(0, size)

    def made(name, method, columns, y, weights=()):
        columns = [column if isinstance(column, tuple) else (column,) for column in columns]
        return {"set": name, "method": method, "x": [v for column in columns for v in column],
                "y": list(y), "weights": list(weights)}

    x = [round(math.cos(math.pi * k / 45), 3) for k in range(46)]
    yield made("degree 20", "20", x, (1 / (1 + 25 * t * t) + noise(0.1) for t in x))
    x = [1e6 + k / 4 for k in range(25)]
    yield made("offset", "3", x, (noise(1) + (t - 1e6) ** 2 for t in x))
    x = [1e-30 * k for k in range(-3, 9)]
    yield made("tiny", "2", x, (1e30 * (1 + noise(0.1)) for t in x))
    x = [0.5 * k for k in range(14)]
    yield made("weighted", "2", x, (3 - t + noise(0.1) for t in x),
               [10.0 ** (k % 7 - 3) if k != 5 else 0.0 for k in range(14)])
    yield made("constant", "0", [5.0] * 9, (1e8 + noise(1) for k in range(9)))

    rows = [(2000.0 + k, (2000.0 + k) ** 2 + noise(3), noise(1)) for k in range(20)]
    yield made("years", "multiple", rows, (noise(1) + row[2] for row in rows))
    rows = [(1e-8 * noise(1), noise(1), 1e9 * noise(1)) for k in range(12)]
    yield made("scales", "multiple", rows, (1 + 1e8 * a + b - 1e-9 * c + noise(0.01)
                                            for a, b, c in rows))
    rows = [(t := noise(1), t + 1e-4 * noise(1)) for k in range(15)]
    yield made("near", "multiple", rows, (a + b + noise(1) for a, b in rows))
    yield made("weighted columns", "multiple", [(noise(1), noise(5)) for k in range(9)],
               [noise(2) for k in range(9)], [0.0, 1e-3, 1e3, 1.0, 2.0, 3.0, 5.0, 0.25, 0.0])

    x = [0.3 * k for k in range(1, 25)]
    for name, functions in {
            "waves": (math.cos, math.sin, lambda t: math.cos(2 * t), lambda t: math.sin(2 * t),
                      lambda t: 1.0),
            "decays": (lambda t: math.exp(-t), lambda t: math.exp(-1.2 * t),
                       lambda t: math.exp(-1.5 * t)),
            "reciprocals": (lambda t: 1 / t, math.log, lambda t: t),
            "powers": (lambda t: 1.0, lambda t: t, lambda t: t * t, lambda t: t**3, lambda t: t**4)
            }.items():
        columns = [tuple(f(t) for f in functions) for t in x]
        yield made(name, "columns", columns, (1 / (1 + t) + noise(0.05) for t in x))
        yield made(name + " weighted", "columns", columns, (1 / (1 + t) + noise(0.05) for t in x),
                   [t**3 for t in x])
    yield made("all points", "columns", [(1.0, t, t * t) for t in (0.1, 0.7, 2.5)], [3.0, -1.0, 8.0])
    box = next(row for row in read_sets("published.csv") if row["set"] == "BoxBOD")
    yield {**box, "set": "BoxBOD weighted", "parameters": [], "deviations": [], "residual": [],
           "weights": [1 / y for y in box["y"]]}


def matrix_of(row):
    """The columns of a linear fit, each row of a point, in whole fractions."""
    x, points = list(map(Fraction, row["x"])), len(row["y"])
    if row["method"].isdigit():
        return [[t**k for k in range(int(row["method"]) + 1)] for t in x]
    width = len(x) // points
    front = [Fraction(1)] if row["method"] == "multiple" else []
    return [front + x[i * width:(i + 1) * width] for i in range(points)]


def solve(a, columns):
    """The solution of a x = b for several b, by elimination."""
    n = len(a)
    rows = [list(row) + [column[i] for column in columns] for i, row in enumerate(a)]
    for k in range(n):
        pivot = next(i for i in range(k, n) if rows[i][k] != 0)
        rows[k], rows[pivot] = rows[pivot], rows[k]
        for i in range(n):
            if i != k and rows[i][k] != 0:
                factor = rows[i][k] / rows[k][k]
                rows[i] = [u - factor * v for u, v in zip(rows[i], rows[k])]
    return [[rows[i][n + j] / rows[i][i] for i in range(n)] for j in range(len(columns))]


def finish(parameters, inverse, squares, freedom):
    """Parameters, their deviations and the residual one; no deviations where nothing is left."""
    if freedom == 0 or squares == 0:
        return parameters, [], []
    variance = mpmath.mpf(squares) / freedom
    deviations = [mp.sqrt(variance * inverse[i][i]) for i in range(len(parameters))]
    return parameters, deviations, [mp.sqrt(variance)]


def exact(x):
    return mpf(x.numerator) / x.denominator if isinstance(x, Fraction) else mpf(x)


def solve_linear(row):
    a, y = matrix_of(row), list(map(Fraction, row["y"]))
    w = list(map(Fraction, row["weights"])) or [Fraction(1)] * len(y)
    k = len(a[0])
    normal = [[sum(w_ * r[i] * r[j] for w_, r in zip(w, a)) for j in range(k)] for i in range(k)]
    right = [sum(w_ * r[i] * y_ for w_, r, y_ in zip(w, a, y)) for i in range(k)]
    unit = [[Fraction(i == j) for i in range(k)] for j in range(k)]
    parameters, *inverse = solve(normal, [right] + unit)
    squares = sum(w_ * (y_ - sum(p * v for p, v in zip(parameters, r))) ** 2
                  for w_, r, y_ in zip(w, a, y))
    used = sum(v > 0 for v in w)
    return finish(list(map(exact, parameters)), [list(map(exact, r)) for r in inverse],
                  exact(squares), used - k)


def solve_model(row):
    """Steps of Gauss and Newton from the published result, until nothing changes."""
    model = models(mp)[row["set"]]
    x, y = list(map(mpf, row["x"])), list(map(mpf, row["y"]))
    w = list(map(mpf, row["weights"])) or [mpf(1)] * len(y)
    a = list(map(mpf, row["parameters"] or row["start"]))
    k, step = len(a), mpf(10) ** -26
    for _ in range(400):
        residuals = [v - model(t, *a) for t, v in zip(x, y)]
        moved = [[a[i] + (i == j) * sign * step * abs(a[j]) for i in range(k)]
                 for j in range(k) for sign in (1, -1)]
        jacobian = [[(model(t, *moved[2 * j]) - model(t, *moved[2 * j + 1])) / (2 * step * abs(a[j]))
                     for j in range(k)] for t in x]
        normal = mp.matrix([[sum(w_ * r[i] * r[j] for w_, r in zip(w, jacobian))
                             for j in range(k)] for i in range(k)])
        right = mp.matrix([sum(w_ * r[i] * v for w_, r, v in zip(w, jacobian, residuals))
                           for i in range(k)])
        change = mp.lu_solve(normal, right)
        a = [p + d for p, d in zip(a, change)]
        if all(abs(d) < abs(p) * mpf(10) ** -42 for p, d in zip(a, change)):
            break
    else:
        raise ArithmeticError(f"{row['set']} has not settled")
    squares = sum(w_ * v * v for w_, v in zip(w, residuals))
    return finish(a, (normal**-1).tolist(), squares, len(y) - k), squares


def compare(row, found, published, digits):
    if published and not (len(found) == len(published) and all(
            abs(f - p) <= abs(p) * mpf(10) ** -digits for f, p in zip(found, published))):
        raise ArithmeticError(f"{row['set']}: {found} instead of {published}")


def shown(values):
    return " ".join(map(repr, values))


def main():
    files = {"lfit": [], "lfit_wampler": [], "lfit_multiple": [], "lcfit": [], "nfit": []}
    made = list(made_sets())
    keys = HEADING.split(";")
    (HERE / "made.csv").write_text("\n".join([HEADING] + [
        ";".join(row.get(key, "") if key in ("set", "method") else shown(row.get(key, ()))
                 for key in keys) for row in made]) + "\n", encoding="ascii")
    for row in read_sets("published.csv") + read_sets("made.csv"):
        if row["method"] == "model":
            results, squares = solve_model(row)
            compare(row, [squares], row["residual"], 10)
            name, starts, digits = "nfit", (0, 1), 10
        else:
            results = solve_linear(row)
            compare(row, results[2], row["residual"] if any(row["residual"]) else [], 13)
            name = {"multiple": "lfit_multiple", "columns": "lcfit"}.get(row["method"], "lfit")
            if row["set"].startswith("Wampler"):
                name = "lfit_wampler"
            starts, digits = (0,), 13
        if row["set"] == "Wampler2":  # its ordinates are rounded to doubles
            digits = 9
        compare(row, results[0], row["parameters"], digits)
        if any(row["deviations"]):
            compare(row, results[1], row["deviations"], digits)
        # The deviations of exact data are those of rounding.
        kinds = results[:1] if row["set"] == "Wampler2" else results
        files[name] += [f"{row['set']},{start},{kind},{which},{mp.nstr(value, 34)}"
                        for start in starts for kind, values in enumerate(kinds)
                        for which, value in enumerate(values)]
    for name, rows in files.items():
        (HERE / f"{name}.csv").write_text("\n".join(["set,start,kind,which,value"] + rows) + "\n",
                                          encoding="ascii")


if __name__ == "__main__":
    main()
