"""Integrals of the functions that tests/data/calculus names, by SciPy and GNU Octave."""

import math


def scipy_functions():
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


OCTAVE_FUNCTIONS = ""
OCTAVE_INTEGRANDS = {
    "sin": "sin(x)", "exp": "exp(x)", "sqrt": "sqrt(x)", "ln": "log(x)", "runge": "1./(1+25*x.^2)",
    "peak": "1./(1e-6+(x-0.3).^2)", "wave": "cos(50*x)", "gauss": "exp(-x.^2)",
    "rootInverse": "1./sqrt(x)", "expSin": "exp(x).*sin(x)", "power": "x.^-0.9",
    "planck": "x.^3./expm1(x)", "slowTail": "x.^-1.1", "lateBell": "exp(-(x-20).^2)",
    "decayWave": "exp(-x).*cos(10*x)", "cauchy": "1./(1+x.^2)", "semicircle": "sqrt(x.*(1-x))"}


def octave_integral(name, a, b):
    return f"quadgk(@(x) {OCTAVE_INTEGRANDS[name]},{a},{b},'RelTol',1e-10,'AbsTol',0)"


OCTAVE = {"integ": octave_integral, "imteg": octave_integral}
