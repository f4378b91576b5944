"""Polynomials, splines and moving averages by SciPy and GNU Octave."""

UNIT = 2.0**-53


def halves(points):
    middle = len(points) // 2
    return points[:middle], points[middle:]


def residual(c, roots):
    """The worst |p(z)| in smallest roundings of its terms, computed with more digits."""
    import mpmath as mp

    def ratio(z):
        z = mp.mpc(z)
        terms = mp.polyval([abs(a) for a in reversed(c)], abs(z))
        return abs(mp.polyval(list(reversed(c)), z)) / terms if terms else mp.mpf(0)

    with mp.workdps(60):
        return float(max(map(ratio, roots)) / (UNIT * (len(c) - 1)))


def scipy_functions():
    import numpy as np
    from scipy.interpolate import CubicSpline

    def roots(c):
        return np.roots(c[::-1])

    def part_of_root(part, re, im, *c):
        found = roots(c)
        z = found[np.argmin(abs(found - complex(re, im)))]
        return z.real if part == 0 else z.imag

    def through(points):
        x, y = halves(points)
        try:
            return x, y, np.linalg.solve(np.vander(x), y)
        except np.linalg.LinAlgError:
            return x, y, np.full(len(x), np.nan)

    def coefficient(which, size, *points):
        return through(points)[2][::-1][int(which)]

    def miss(*points):
        x, y, c = through(points)
        return np.max(abs(np.polyval(c, x) - y) / np.polyval(abs(c), np.abs(x))) / (UNIT * len(x))

    def spline(end, first, last, points):
        ends = ["natural", ((1, first), (1, last)), "not-a-knot", "periodic"][int(end)]
        return CubicSpline(*halves(points), bc_type=ends)

    def quantity(end, first, last, which, at, size, *points):
        s = spline(end, first, last, points)
        if end == 3 and not points[0] <= at <= points[len(points) // 2 - 1]:
            return None  # the others continue it periodically
        return s.integrate(points[0], at) if which == 3 else s(at, int(which))

    def mean(cut_off, n, which, size, *y):
        if cut_off:
            return None
        return np.convolve(y, np.ones(int(n)) / n, "valid")[int(which)]

    return {"roots": part_of_root, "roots, residual": lambda *c: residual(c, roots(c)),
            "poly": lambda x, *c: np.polyval(c[::-1], x),
            "poly, derivative": lambda x, *c: np.polyval(np.polyder(c[::-1]), x),
            "polycoe": coefficient, "polycoe, residual": miss,
            "spline": lambda end, first, last, which, size, *points:
                spline(end, first, last, points)(points[int(which)], 2),
            "splint": quantity, "movingaverage": mean}


OCTAVE_FUNCTIONS = """
function v=root(c,z,p) r=roots(c); [~,k]=min(abs(r-z)); v=[real(r(k)),imag(r(k))](p+1); end
function v=coefficient(x,y,k) c=polyfit(x,y,numel(x)-1); v=c(end-k); end
function v=miss(x,y) c=polyfit(x,y,numel(x)-1);
  v=max(abs(polyval(c,x)-y)./polyval(abs(c),abs(x)))/numel(x)*2^53; end
function v=quantity(x,y,q,at) s=spline(x,y);
  if q==3, s=ppint(s); elseif q>0, s=ppder(s,q); end; v=ppval(s,at); end
function v=mean_of(y,n,c,k) v=movmean(y,n,'Endpoints',{'discard','shrink'}{c+1})(k+1); end
"""


def row(numbers):
    return "[" + ",".join(numbers) + "]"


def octave_mean(cut_off, n, which, _, *y):
    return None if n == "1" else f"mean_of({row(y)},{n},{cut_off},{which})"  # it has no such window


def octave_points(points):
    x, y = halves(points)
    return f"{row(x)},{row(y)}"


def octave_spline(quantity, end, first, last, at, points):
    """The ends that Octave has: given slopes, and none."""
    x, y = halves(points)
    if end not in "12" or len(x) == 2:
        return None
    y = [first, *y, last] if end == "1" else y
    return f"quantity({row(x)},{row(y)},{quantity},{at})"


OCTAVE = {
    "roots": lambda part, re, im, *c: f"root({row(c[::-1])},complex({re},{im}),{part})",
    "poly": lambda x, *c: f"polyval({row(c[::-1])},{x})",
    "poly, derivative": lambda x, *c: f"polyval(polyder({row(c[::-1])}),{x})",
    "polycoe": lambda which, size, *points: f"coefficient({octave_points(points)},{which})",
    "polycoe, residual": lambda *points: f"miss({octave_points(points)})",
    "spline": lambda end, first, last, which, size, *points:
        octave_spline("2", end, first, last, points[int(which)], points),
    "splint": lambda end, first, last, quantity, at, size, *points:
        octave_spline(quantity, end, first, last, at, points),
    "movingaverage": octave_mean}
