#!/usr/bin/env python3
"""Writes the reference rows of element stiffness, see README.md."""

import itertools
import pathlib

from mpmath import cos, matrix, mp, mpf, nstr, sin, sqrt

mp.dps = 40


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def unit(a):
    length = sqrt(sum(v * v for v in a))
    return [v / length for v in a]


def axes(d, turn):
    """Local x, y, z; y is horizontal, and in an upright element global Y less its part along x."""
    x = unit(d)
    if sqrt(x[0] ** 2 + x[1] ** 2) < mpf("1e-6"):
        y = unit([(k == 1) - x[1] * x[k] for k in range(3)])
    else:
        y = unit(cross([0, 0, 1], x))
    z = cross(x, y)
    c, s = cos(turn), sin(turn)
    return x, [c * p + s * q for p, q in zip(y, z)], [c * q - s * p for p, q in zip(y, z)]


def add_energy(k, factor, forms):
    """Adds the second derivatives of factor/2 times the integral over 0 to 1 of a squared form.

    The form is linear in the unknowns and in the place, so Simpson's rule is exact."""
    for share, form in zip((mpf(1) / 6, mpf(2) / 3, mpf(1) / 6), forms):
        for i, j in itertools.product(range(12), repeat=2):
            k[i, j] += factor * share * form[i] * form[j]


def space_frame(ea, eiy, eiz, gj, d, turn):
    """From the strain energy of cubic deflections, without any table of stiffness."""
    length = sqrt(sum(v * v for v in d))
    x, y, z = axes(d, turn)
    k = matrix(12, 12)
    zero = [mpf(0)] * 3
    add_energy(k, ea / length, [[-v for v in x] + zero + x + zero] * 3)
    add_energy(k, gj / length, [zero + [-v for v in x] + zero + x] * 3)
    for factor, across, about, sense in ((eiz, y, z, 1), (eiy, z, y, -1)):
        forms = []
        for place in (mpf(0), mpf(1) / 2, mpf(1)):
            bend = (12 * place - 6) / length**2
            first, last = (6 * place - 4) / length, (6 * place - 2) / length
            forms.append([bend * v for v in across] + [sense * first * v for v in about]
                         + [-bend * v for v in across] + [sense * last * v for v in about])
        add_energy(k, factor * length, forms)
    return k


# Which of the six unknowns of a node each kind has.
UNKNOWNS = {0: [1, 5], 1: [0, 1], 2: [0, 1, 2], 3: [0, 1, 5], 4: [2, 3, 4], 5: range(6)}
SECTION = (mpf(2e5) * 71, mpf(2e5) * 8.3, mpf(2e5) * 40.1, mpf(7.7e4) * 3.3)


def main():
    lines = ["kind,ea,eiy,eiz,gj,dx,dy,dz,turn,i,j,largest,value"]
    flat = [(3.0, 4.0, 0.0), (-1e-3, 2e3, 0.0), (0.1, -0.7, 0.0), (1e8, 3e7, 0.0)]
    skew = [(1.5, -2.0, 0.7), (0.0, 0.0, -3.0), (1e-7, 2e-8, 5.0), (1e-5, -3e-5, 5.0),
            (-40.0, 1e-9, 0.3), (1e5, 1e5, 1e5)]
    ea, eiy, eiz, gj = map(float, SECTION)
    cases = [(0, (0, 0, eiz, 0), (length, 0.0, 0.0), 0.0) for length in (0.3, 2.5, 7e4)]
    cases += [(1, (ea, 0, 0, 0), d, 0.0) for d in flat]
    cases += [(2, (ea, 0, 0, 0), d, 0.0) for d in skew]
    cases += [(3, (ea, 0, eiz, 0), d, 0.0) for d in flat]
    cases += [(4, (0, eiy, 0, gj), d, 0.0) for d in flat]
    cases += [(5, (ea, eiy, eiz, gj), d, turn) for d in skew for turn in (0.0, -0.4, 1.3)]
    for kind, section, d, turn in cases:
        k = space_frame(*map(mpf, section), list(map(mpf, d)), mpf(turn))
        places = [6 * node + u for node in range(2) for u in UNKNOWNS[kind]]
        largest = max(abs(k[i, j]) for i in places for j in places)
        for (i, p), (j, q) in itertools.combinations_with_replacement(enumerate(places), 2):
            if (i + 2 * j) % (1 if kind < 5 else 5) == 0:  # of the largest a fifth
                lines.append(",".join(map(repr, (kind, *map(float, section), *d, turn, i, j,
                                                 float(largest)))) + "," + nstr(k[p, q], 32))
    path = pathlib.Path(__file__).with_name("frame.csv")
    path.write_text("\n".join(lines) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
