"""Zeros, extrema, derivatives, searches and differential equations of the functions that stand as
texts in the rows, by SciPy and GNU Octave."""

import functools
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "data" / "calculus"))

from texts import NAMES, Elements, function_of  # noqa: E402


def scipy_functions():
    import numpy as np
    from scipy import integrate, optimize, special

    names = {name: getattr(np, name.replace("atan2", "arctan2").replace("asin", "arcsin")
                           .replace("acos", "arccos").replace("atan", "arctan"))
             for name in NAMES if name not in ("erf", "atan2")}
    names |= {"abs": abs, "ln": np.log, "erf": special.erf, "gammaln": special.gammaln,
              "bessj": special.jv, "atan2": np.arctan2}

    def of_one(text):
        values = function_of(text, names, "x")
        return lambda x: values(np.float64(x))[0]

    def of_vector(text):
        values = function_of(text, names, "v")
        return lambda v: np.array(values(Elements(map(np.float64, v))))

    def zero(text, a, b):
        return optimize.brentq(of_one(text), a, b, xtol=1e-300, rtol=1e-15, maxiter=1000)

    def extremum(sign, part):
        def value(text, a, b):
            f = of_one(text)
            found = optimize.minimize_scalar(lambda x: sign * f(x), bounds=sorted((a, b)),
                                             method="bounded", options={"xatol": 1e-10})
            return found.x if part == "place" else f(found.x)
        return value

    def derivative(text, which, size, *v):
        return np.ravel(optimize.approx_fprime(v, of_vector(text)))[int(which)]

    @functools.lru_cache(maxsize=100)
    def search(text, start):
        f = of_vector(text)
        return optimize.minimize(lambda v: f(v)[0], start, method="Nelder-Mead",
                                 options={"xatol": 1e-10, "fatol": 1e-15, "maxfev": 20000,
                                          "maxiter": 20000})

    @functools.lru_cache(maxsize=1)
    def state(method, text, a, b, y):
        f = function_of(text, names, "t", "y")
        found = integrate.solve_ivp(lambda t, y: f(t, Elements(y)), (a, b), y, method=method,
                                    rtol=1e-10, atol=1e-10)
        return found.y[:, -1] if found.success else np.full(len(y), np.nan)

    def solved(method):
        return lambda text, which, a, b, *y: state(method, text, a, b, y)[int(which) - 1]

    return {"root1": zero,
            "minz1, place": extremum(1, "place"), "minz1, value": extremum(1, "value"),
            "maxz1, place": extremum(-1, "place"), "maxz1, value": extremum(-1, "value"),
            "grad": derivative, "jacob": derivative,
            "minzs, value": lambda text, *start: search(text, start).fun,
            "minzs, place": lambda text, which, *start: search(text, start).x[int(which)],
            "odesint": solved("DOP853"), "odesint, stiff": solved("Radau")}


OCTAVE_FUNCTIONS = """
function v=ln(x) v=log(x); end
function v=bessj(n,x) v=besselj(n,x); end
function v=extremum(f,a,b,s,place)
  x=fminbnd(@(x) s*f(x),min(a,b),max(a,b),optimset('TolX',1e-10));
  if place, v=x; else v=f(x); end; end
function v=search(f,x0,k)
  persistent key x m;
  if ! isequal(key,{func2str(f),x0})
    [x,m]=fminsearch(f,x0,optimset('TolX',1e-10,'TolFun',1e-15,'MaxFunEvals',2e4,'MaxIter',2e4,
                                   'Display','off')); key={func2str(f),x0};
  end
  v=[m,x](k); end
function v=state(solver,text,f,a,b,y0,k)  % ode15s fails where its own first step is too long
  persistent key y;
  if ! isequal(key,{text,a,b,y0})
    options=odeset('RelTol',1e-10,'AbsTol',1e-10);
    if strcmp(func2str(solver),'ode15s'), options=odeset(options,'InitialStep',1e-12); end
    [t,y]=solver(f,[a,b],y0,options); key={text,a,b,y0};
    if t(end)!=b, y(:)=NaN; end
  end
  v=y(end,k); end
"""


def octave_text(text):
    return text.replace("[", "(").replace("]", ")")


def octave_extremum(sign, place):
    return lambda text, a, b: f"extremum(@(x) {text},{a},{b},{sign},{place})"


def octave_search(text, which, start):
    return f"search(@(v) {octave_text(text)},[{','.join(start)}],{which})"


def octave_state(solver):
    def expression(text, which, a, b, *y):
        return (f"state(@{solver},'{text}',@(t,y) [{octave_text(text)}],{a},{b},[{';'.join(y)}],"
                f"{which})")
    return expression


OCTAVE = {
    "root1": lambda text, a, b: f"fzero(@(x) {text},[{a},{b}],optimset('TolX',0))",
    "minz1, place": octave_extremum(1, 1), "minz1, value": octave_extremum(1, 0),
    "maxz1, place": octave_extremum(-1, 1), "maxz1, value": octave_extremum(-1, 0),
    "minzs, value": lambda text, *start: octave_search(text, 1, start),
    "minzs, place": lambda text, which, *start: octave_search(text, int(which) + 2, start),
    "odesint": octave_state("ode45"), "odesint, stiff": octave_state("ode15s")}
