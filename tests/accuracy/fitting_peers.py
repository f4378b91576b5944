"""Fits, tests of significance, linear programs and dates by SciPy and GNU Octave."""

import functools
import importlib.util
import pathlib
import warnings

import numpy as np

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"


@functools.lru_cache
def reference_script():
    """The script beside the data of fits, which knows their models."""
    spec = importlib.util.spec_from_file_location("fits", DATA / "fitting" / "reference_values.py")
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


@functools.lru_cache
def data_set(name):
    script = reference_script()
    rows = script.read_sets("published.csv") + script.read_sets("made.csv")
    return next(row for row in rows if row["set"] == name)


def columns(row):
    x = np.reshape(row["x"], (len(row["y"]), -1))
    return np.column_stack([np.ones(len(x)), x]) if row["method"] == "multiple" else x


def part(parameters, deviations, residual, kind, which):
    return (parameters, deviations, [residual])[int(kind)][int(which)]


def weights_of(row):
    """Without the points that do not count."""
    w = np.array(row["weights"] or np.ones(len(row["y"])))
    return w, w > 0


def polynomial(name, _, kind, which):
    row = data_set(name)
    w, used = weights_of(row)
    x, y, n = np.array(row["x"])[used], np.array(row["y"])[used], int(row["method"])
    root = np.sqrt(w[used])
    p, covariance = np.polyfit(x, y, n, w=root, cov=True)
    residual = np.sqrt(np.sum((root * (y - np.polyval(p, x))) ** 2) / (len(y) - n - 1))
    return part(p[::-1], np.sqrt(np.diag(covariance))[::-1], residual, kind, which)


def linear(name, _, kind, which):
    import scipy.linalg

    row = data_set(name)
    w, used = weights_of(row)
    root = np.sqrt(w[used])
    a, y = columns(row)[used] * root[:, None], np.array(row["y"])[used] * root
    p = scipy.linalg.lstsq(a, y)[0]
    freedom = len(y) - len(p)
    s = np.sqrt(np.sum((y - a @ p) ** 2) / freedom) if freedom else np.nan
    deviations = s * np.sqrt(np.diag(scipy.linalg.inv(a.T @ a)))
    return part(p, deviations, s, kind, which)


def model(name, start, kind, which):
    from scipy.optimize import curve_fit

    row = data_set(name)
    w, _ = weights_of(row)
    f = reference_script().models(np)[name]
    x, y = np.array(row["x"]), np.array(row["y"])
    p, covariance = curve_fit(f, x, y, row["other start" if start else "start"],
                              sigma=1 / np.sqrt(w), ftol=1e-14, xtol=1e-14, maxfev=20000)
    residual = np.sqrt(np.sum(w * (y - f(x, *p)) ** 2) / (len(y) - len(p)))
    return part(p, np.sqrt(np.diag(covariance)), residual, kind, which)


def numbers(text):
    return np.array(str(text).split(), dtype=float)


def significance(test):
    return lambda which, x, y: test(numbers(x), numbers(y))[int(which)]


def variance_ratio(x, y):
    from scipy import stats

    ratio = np.var(x, ddof=1) / np.var(y, ddof=1)
    f = stats.f(len(x) - 1, len(y) - 1)
    return ratio, 2 * min(f.cdf(ratio), f.sf(ratio))


def bounds_of(low, high):
    return [(None if a < -1e307 else a, None if b > 1e307 else b)
            for a, b in zip(numbers(low), numbers(high))]


def program(objective, c, a, b, senses, low, high, which, _):
    from scipy.optimize import linprog

    c, b, s = numbers(c), numbers(b), numbers(senses)
    a, sign = numbers(a).reshape(len(b), len(c)), 1 - 2 * objective
    below, same = s != 0, s == 0
    turn = -s[below]
    found = linprog(sign * c, a[below] * turn[:, None] if below.any() else None,
                    b[below] * turn if below.any() else None, a[same] if same.any() else None,
                    b[same] if same.any() else None, bounds_of(low, high), "highs",
                    options={"primal_feasibility_tolerance": 1e-10,
                             "dual_feasibility_tolerance": 1e-10})
    if found.status != 0:
        return np.nan
    duals = np.zeros(len(b))
    duals[below], duals[same] = found.ineqlin.marginals * turn, found.eqlin.marginals
    return sign * (found.fun if which == 0 else duals[int(which) - 1])


def scipy_functions():
    from scipy import stats

    warnings.simplefilter("ignore")  # of poor conditions, which are there on purpose
    return {"lfit": polynomial, "lfit, Wampler": polynomial, "lfit, multiple": linear,
            "lcfit": linear, "nfit": model,
            "correlation": significance(stats.pearsonr), "ftest": significance(variance_ratio),
            "studente": significance(stats.ttest_ind), "studentp": significance(stats.ttest_rel),
            "studentu": significance(lambda x, y: stats.ttest_ind(x, y, equal_var=False)),
            "simplx": program}


OCTAVE_FUNCTIONS = """
function v = parts(p, sd, s, kind, which)
  all = {p, sd, s}; v = all{kind + 1}(which + 1);
end
function v = polynomial(x, y, n, kind, which)
  [p, S] = polyfit(x, y, n); s = S.normr/sqrt(S.df);
  v = parts(fliplr(p), flipud(s*sqrt(diag(S.C))), s, kind, which);
end
function v = covariant(A, y, w, kind, which)
  [p, sd, mse] = lscov(A, y, w); v = parts(p, sd, sqrt(mse), kind, which);
end
function v = linear(sense, c, A, b, types, low, high, which)
  param.tolbnd = param.toldj = 1e-10; param.msglev = 0;
  [x, f, e, extra] = glpk(c, A, b, low, high, types, repmat('C', 1, numel(c)), sense, param);
  if which == 0, v = f; else v = extra.lambda(which); end
end
"""


def list_of(values, separator=";"):
    return "[" + separator.join(repr(float(v)) for v in values) + "]"


def octave_polynomial(name, _, kind, which):
    row = data_set(name)
    if row["weights"]:  # polyfit has none
        return None
    return (f"polynomial({list_of(row['x'])},{list_of(row['y'])},{row['method']},"
            f"{kind},{which})")


def octave_linear(name, _, kind, which):
    row = data_set(name)
    w, used = weights_of(row)
    a, y = columns(row)[used], np.array(row["y"])[used]
    rows = "[" + ";".join(list_of(r, ",") for r in a) + "]"
    return f"covariant({rows},{list_of(y)},{list_of(w[used])},{kind},{which})"


def octave_program(objective, c, a, b, senses, low, high, which, _):
    def bound(text):
        return list_of([v if abs(v) < 1e307 else np.copysign(np.inf, v) for v in numbers(text)])

    types = "".join("USL"[int(s) + 1] for s in numbers(senses))
    return (f"linear({1 - 2 * int(objective)},{list_of(numbers(c))},reshape({list_of(numbers(a))},"
            f"{len(numbers(c))},[])',{list_of(numbers(b))},'{types}',{bound(low)},{bound(high)},"
            f"{which})")


def octave_correlation(which, x, y):
    return f"corr({list_of(numbers(x))},{list_of(numbers(y))})" if which == "0" else None


OCTAVE = {"lfit": octave_polynomial, "lfit, Wampler": octave_polynomial,
          "lfit, multiple": octave_linear, "lcfit": octave_linear, "simplx": octave_program,
          "correlation": octave_correlation,
          "date2serial": "datenum(a1,a2,a3,a4,a5,a6)-693960-(a1==1900&a2<3)"}
