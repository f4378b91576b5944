#!/usr/bin/env python3
"""Writes the table of docs/accuracy.md: the worst errors of Vexa, SciPy and GNU Octave.

Usage: compare.py PATH-OF-vexa_accuracy. The others compute the same rows of tests/data where they
have the function; each is left out where it is not installed. Errors are in the unit of Vexa's
entry, so a row compares like with like.
"""

import csv
import math
import pathlib
import subprocess
import sys
import tempfile
from fractions import Fraction

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"


def calculus_functions():
    """Integrals as quad computes them, of the functions that tests/data/calculus names."""
    from scipy.integrate import quad

    functions = {
        "sin": math.sin, "exp": math.exp, "sqrt": math.sqrt, "ln": math.log,
        "runge": lambda x: 1 / (1 + 25 * x * x),
        "peak": lambda x: 1 / (1e-6 + (x - 0.3) ** 2), "wave": lambda x: math.cos(50 * x),
        "gauss": lambda x: math.exp(-x * x), "rootInverse": lambda x: 1 / math.sqrt(x),
        "expSin": lambda x: math.exp(x) * math.sin(x), "power": lambda x: x**-0.9,
        "planck": lambda x: x**3 / math.expm1(x) if x < 700 else 0.0,
        "slowTail": lambda x: x**-1.1, "lateBell": lambda x: math.exp(-((x - 20) ** 2)),
        "decayWave": lambda x: math.exp(-x) * math.cos(10 * x),
        "cauchy": lambda x: 1 / (1 + x * x), "semicircle": lambda x: math.sqrt(x * (1 - x))}

    def integral(name, a, b):
        return quad(functions[name], a, b, epsrel=1e-10, epsabs=0, limit=100)[0]

    return {"integ": integral, "imteg": integral}


def argument(text):
    """A number, or the name of a function."""
    try:
        return float(text)
    except ValueError:
        return text


def scipy_functions():
    import numpy as np
    from scipy import special as sp

    def part(function):
        def value(x, y, which, modulus):
            w = function(np.complex128(complex(x, y)))
            return w.real if which == 0 else w.imag
        return value

    def third(phi, n, k):  # within a quarter turn, from the symmetric integrals that SciPy has
        s, c = math.sin(phi), math.cos(phi)
        if abs(phi) > math.pi / 2:
            return math.nan
        p = 1 - k * k * s * s
        return s * sp.elliprf(c * c, p, 1) + n / 3 * s**3 * sp.elliprj(c * c, p, 1, 1 - n * s * s)

    def gauss(column):
        def value(family, alpha, beta, n, i):
            n, i = int(n), int(i)
            points = [sp.roots_legendre, sp.roots_laguerre, sp.roots_hermite, sp.roots_chebyt]
            if family == 4:
                return sp.roots_jacobi(n, alpha, beta)[column][i]
            if alpha != 0:
                return sp.roots_genlaguerre(n, alpha)[column][i]
            return points[int(family)](n)[column][i]
        return value

    modulus = {"ellipf": sp.ellipkinc, "ellipe": sp.ellipeinc}
    table = {"gammaln": sp.gammaln, "erf": sp.erf, "atan2": np.arctan2, "hypot": np.hypot,
             "mod": np.mod, "beta": sp.beta, "binom": sp.binom, "binom, products": sp.binom,
             "hcoc": lambda x, y: np.cosh(x) / np.cosh(y),
             "hcos": lambda x, y: np.cosh(x) / np.sinh(y),
             "hsoc": lambda x, y: np.sinh(x) / np.cosh(y),
             "hsos": lambda x, y: np.sinh(x) / np.sinh(y),
             "gammainc": sp.gammainc, "gammainc, large a": sp.gammainc,
             "gammainc, upper": sp.gammaincc,
             "betainc": sp.betainc, "betainc, upper": lambda a, b, x: 1 - sp.betainc(a, b, x),
             "ellipi": third, "bessj": sp.jv, "bessy": sp.yv, "bessi": sp.iv, "bessk": sp.kv,
             "ccos": part(np.cos), "cexp": part(np.exp), "cln": part(np.log), "csin": part(np.sin),
             "csqrt": part(np.sqrt), "ctan": part(np.tan),
             "gausspt, nodes": gauss(0), "gausspt, weights": gauss(1)}
    table.update(calculus_functions())
    for name, function in modulus.items():
        table[name] = lambda phi, k, f=function: f(phi, k * k)
    return table


# An expression in the columns a1, a2, ... of a file.
OCTAVE = {"gammaln": "gammaln(a1)", "erf": "erf(a1)", "atan2": "atan2(a1,a2)",
          "hypot": "hypot(a1,a2)", "mod": "mod(a1,a2)", "beta": "beta(a1,a2)",
          "binom": "bincoeff(a1,a2)",
          "binom, products": "bincoeff(a1,a2)", "hcoc": "cosh(a1)./cosh(a2)",
          "hcos": "cosh(a1)./sinh(a2)",
          "hsoc": "sinh(a1)./cosh(a2)", "hsos": "sinh(a1)./sinh(a2)", "gammainc": "gammainc(a2,a1)",
          "gammainc, large a": "gammainc(a2,a1)", "gammainc, upper": "gammainc(a2,a1,'upper')",
          "betainc": "betainc(a3,a1,a2)", "betainc, upper": "betainc(a3,a1,a2,'upper')",
          "bessj": "besselj(a1,a2)", "bessy": "bessely(a1,a2)", "bessi": "besseli(a1,a2)",
          "bessk": "besselk(a1,a2)"}
for function in ("cos", "exp", "log", "sin", "sqrt", "tan"):
    name = {"log": "cln"}.get(function, "c" + function)
    OCTAVE[name] = f"ifelse_part({function}(complex(a1,a2)),a3)"


# The integrands of tests/data/calculus.
OCTAVE_INTEGRANDS = {
    "sin": "sin(x)", "exp": "exp(x)", "sqrt": "sqrt(x)", "ln": "log(x)", "runge": "1./(1+25*x.^2)",
    "peak": "1./(1e-6+(x-0.3).^2)", "wave": "cos(50*x)", "gauss": "exp(-x.^2)",
    "rootInverse": "1./sqrt(x)", "expSin": "exp(x).*sin(x)", "power": "x.^-0.9",
    "planck": "x.^3./expm1(x)", "slowTail": "x.^-1.1", "lateBell": "exp(-(x-20).^2)",
    "decayWave": "exp(-x).*cos(10*x)", "cauchy": "1./(1+x.^2)", "semicircle": "sqrt(x.*(1-x))"}


def octave_lines(program):
    """The numbers that a program prints, or None."""
    try:
        run = subprocess.run(["octave-cli", "--quiet", "--eval", program], capture_output=True,
                             text=True)
    except FileNotFoundError:
        return None
    return [float(line) for line in run.stdout.split()] if run.returncode == 0 else None


def octave_integrals(rows):
    program = "1; warning('off','all');"
    for name, a, b, _ in rows:
        program += (f"try, v=quadgk(@(x) {OCTAVE_INTEGRANDS[name]},{a},{b},'RelTol',1e-10,"
                    "'AbsTol',0); catch, v=NaN; end; printf('%.17g\\n',v);")
    return octave_lines(program)


def octave_values(name, file, columns):
    program = (f"1; function v=ifelse_part(w,p) v=real(w); v(p==1)=imag(w)(p==1); end;"
               f"m=dlmread('{file}',',',1,0);"
               + "".join(f"a{k + 1}=m(:,{k + 1});" for k in range(columns))
               + f"v={OCTAVE[name]}; v=real(v(:)); printf('%.17g\\n',v);")
    return octave_lines(program)


def unit_of(name, row, value):
    if name.startswith("c") and len(row) == 5 and name != "cabs":
        return 2.0**-53 * float(row[3])
    if name in ("integ", "imteg"):
        return 1e-10 * abs(value)
    unit = math.ulp(abs(value))
    if name in ("bessj", "bessy"):
        unit = max(unit, 2.0**-53 * math.sqrt(2 / (math.pi * max(1.0, abs(float(row[1]))))))
    return unit


def worst(name, rows, results):
    """The worst error, and how many rows are off by more than ten units or have no value."""
    largest, beyond = 0.0, 0
    for row, result in zip(rows, results):
        exact = Fraction(row[-1])
        if result is None or not math.isfinite(result):
            beyond += 1
            continue
        error = abs(Fraction(float(result)) - exact)
        units = float(error / Fraction(unit_of(name, row, float(exact)))) if error else 0.0
        largest = max(largest, units)
        beyond += units > 10
    return largest, beyond


def shown(result, rows):
    if result is None:
        return ""
    error, beyond = result
    text = f"{error:.2g}" if error < 100 else f"{error:.0e}"
    return text + (f", {beyond} of {len(rows)} beyond 10" if beyond else "")


def main():
    ours = csv.reader(subprocess.run([sys.argv[1], "rows"], capture_output=True, text=True,
                                     check=True).stdout.splitlines())
    try:
        import numpy
        peers = scipy_functions()
        numpy.seterr(all="ignore")
    except ImportError:
        peers = {}
    print("| Function | Rows | Unit | Vexa | SciPy | Octave |")
    print("|---|---|---|---|---|---|")
    for name, file, error, unit in ours:
        with open(DATA / file, encoding="ascii") as stream:
            rows = list(csv.reader(stream))[1:]
        scipy = octave = None
        if name in peers:
            results = [peers[name](*map(argument, row[:-1])) for row in rows]
            scipy = worst(name, rows, results)
        values = None
        if name in OCTAVE:
            values = octave_values(name, DATA / file, len(rows[0]) - 1)
        elif name in ("integ", "imteg"):
            values = octave_integrals(rows)
        if values is not None and len(values) == len(rows):
            octave = worst(name, rows, values)
        unit = unit.replace("|", "\\|")
        print(f"| {name} | {len(rows)} | {unit} | {float(error):.2g} | {shown(scipy, rows)} "
              f"| {shown(octave, rows)} |")


if __name__ == "__main__":
    main()
