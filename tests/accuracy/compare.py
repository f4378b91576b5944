#!/usr/bin/env python3
"""Writes the table of docs/accuracy.md: the worst errors of Vexa, SciPy and GNU Octave.

Usage: compare.py PATH-OF-vexa_accuracy [NAME...]. The others compute the same rows of tests/data
where they have the function; each is left out where it is not installed. Errors are in the unit of
Vexa's entry, so a row compares like with like. Names, or their beginnings, choose entries.
"""

import csv
import math
import pathlib
import subprocess
import sys
import tempfile
from fractions import Fraction

import calculus_peers
import fitting_peers
import interpolation_peers
import special_peers
import text_peers

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"

# Each module has scipy_functions(), which gives for the name of an entry a function of a row's
# arguments, and OCTAVE, which gives an expression in a1, a2, ... or a function that makes one from
# the row's texts; OCTAVE_FUNCTIONS defines what the expressions call. None passes over a row.
FAMILIES = [special_peers, calculus_peers, text_peers, interpolation_peers, fitting_peers]


def argument(text):
    """A number, or the text of a function."""
    try:
        return float(text)
    except ValueError:
        return text


def scipy_values(function, rows):
    for row in rows:
        try:
            yield function(*map(argument, row[:-1]))
        except (ArithmeticError, ValueError, RuntimeError):
            yield math.nan


def octave_values(family, expression, rows):
    """The numbers that Octave prints, or None when it is not there."""
    program = "1; warning('off','all');" + family.OCTAVE_FUNCTIONS + "\n"
    asked = []
    for *arguments, _ in rows:
        value = expression if isinstance(expression, str) else expression(*arguments)
        asked.append(value is not None)
        if isinstance(expression, str):
            program += "".join(f"a{k}={a};" for k, a in enumerate(arguments, start=1))
        if value is not None:
            program += f"try, v={value}; catch, v=NaN; end; printf('%.17g\\n',real(v));\n"
    with tempfile.NamedTemporaryFile("w", suffix=".m", encoding="ascii") as file:
        file.write(program)
        file.flush()
        try:
            run = subprocess.run(["octave-cli", "--quiet", file.name], capture_output=True,
                                 text=True)
        except FileNotFoundError:
            return None
    values = [float(line) for line in run.stdout.split()]
    if len(values) != sum(asked):
        sys.exit(f"Octave gave {len(values)} values for {sum(asked)} rows: {run.stderr}")
    found = iter(values)
    return [next(found) if there else None for there in asked]


def compared(rows, units, results):
    """A cell: the worst error and how many rows are off by more than ten units or have no value."""
    largest, beyond, count = 0.0, 0, 0
    for row, unit, result in zip(rows, units, results):
        if result is None:
            continue
        count += 1
        if not math.isfinite(result):
            beyond += 1
            continue
        error = abs(Fraction(float(result)) - Fraction(row[-1]))
        errors = float(error / Fraction(unit)) if error else 0.0
        largest = max(largest, errors)
        beyond += errors > 10
    text = f"{largest:.2g}" if largest < 100 else f"{largest:.0e}"
    if beyond:
        return text + f", {beyond} of {count} beyond 10"
    return text + (f", of {count}" if count < len(rows) else "")


def peers(name, rows, units):
    """The cells of SciPy and Octave."""
    scipy = octave = ""
    for family in FAMILIES:
        try:
            function = family.scipy_functions().get(name)
        except ImportError:
            function = None
        if function:
            scipy = compared(rows, units, scipy_values(function, rows))
        if name in family.OCTAVE:
            values = octave_values(family, family.OCTAVE[name], rows)
            octave = "" if values is None else compared(rows, units, values)
    return scipy, octave


def main():
    try:
        import numpy
        numpy.seterr(all="ignore")
    except ImportError:
        pass
    ours = csv.reader(subprocess.run([sys.argv[1], "rows"], capture_output=True, text=True,
                                     check=True).stdout.splitlines())
    print("| Function | Rows | Unit | Vexa | SciPy | Octave |")
    print("|---|---|---|---|---|---|")
    for name, file, error, unit, units in ours:
        if sys.argv[2:] and not name.startswith(tuple(sys.argv[2:])):
            continue
        with open(DATA / file, encoding="ascii") as stream:
            rows = list(csv.reader(stream))[1:]
        scipy, octave = peers(name, rows, list(map(float, units.split())))
        unit = unit.replace("|", "\\|")
        print(f"| {name} | {len(rows)} | {unit} | {float(error):.2g} | {scipy} | {octave} |")


if __name__ == "__main__":
    main()
