"""Special functions as SciPy and GNU Octave compute them."""

import math


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
             "cabs": lambda x, y: np.abs(np.complex128(complex(x, y))),
             "ccos": part(np.cos), "cexp": part(np.exp), "cln": part(np.log), "csin": part(np.sin),
             "csqrt": part(np.sqrt), "ctan": part(np.tan),
             "gausspt, nodes": gauss(0), "gausspt, weights": gauss(1)}
    for name, function in modulus.items():
        table[name] = lambda phi, k, f=function: f(phi, k * k)
    return table


OCTAVE_FUNCTIONS = "function v=part(w,p) if p, v=imag(w); else v=real(w); end; end;"
OCTAVE = {"gammaln": "gammaln(a1)", "erf": "erf(a1)", "atan2": "atan2(a1,a2)",
          "hypot": "hypot(a1,a2)", "mod": "mod(a1,a2)", "beta": "beta(a1,a2)",
          "binom": "bincoeff(a1,a2)",
          "binom, products": "bincoeff(a1,a2)", "hcoc": "cosh(a1)./cosh(a2)",
          "hcos": "cosh(a1)./sinh(a2)",
          "hsoc": "sinh(a1)./cosh(a2)", "hsos": "sinh(a1)./sinh(a2)", "gammainc": "gammainc(a2,a1)",
          "gammainc, large a": "gammainc(a2,a1)", "gammainc, upper": "gammainc(a2,a1,'upper')",
          "betainc": "betainc(a3,a1,a2)", "betainc, upper": "betainc(a3,a1,a2,'upper')",
          "bessj": "besselj(a1,a2)", "bessy": "bessely(a1,a2)", "bessi": "besseli(a1,a2)",
          "bessk": "besselk(a1,a2)", "cabs": "abs(complex(a1,a2))"}
for function in ("cos", "exp", "log", "sin", "sqrt", "tan"):
    name = {"log": "cln"}.get(function, "c" + function)
    OCTAVE[name] = f"part({function}(complex(a1,a2)),a3)"
