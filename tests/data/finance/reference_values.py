#!/usr/bin/env python3
"""Writes the reference rows of annuities and cash flows, see README.md."""

import pathlib
import random

from mpmath import exp, expm1, findroot, log, mp, mpf, nstr

mp.dps = 400  # the walk through 400 periods multiplies errors by up to 1e296


def balances(r, n, pmt, pv, due):
    """What is owed before the first payment and after each of the n periods, by walking."""
    owed, walk = mpf(pv), [mpf(pv)]
    for _ in range(n):
        owed = (owed + pmt * due) * (1 + r) + pmt * (1 - due)
        walk.append(owed)
    return walk


def fv(r, n, pmt, pv, due):
    return -balances(mpf(r), n, mpf(pmt), pv, due)[-1]


def pv(r, n, pmt, last, due):
    r = mpf(r)
    paid = sum(pmt / (1 + r) ** (k + 1 - due) for k in range(n))
    return -(paid + last / (1 + r) ** n)


def pmt(r, n, start, last, due):
    # The end is linear in the payment.
    without, unit = fv(r, n, 0, start, due), fv(r, n, 1, 0, due)
    return (last - without) / unit


def nper(r, payment, start, last, due):
    r, payment = mpf(r), mpf(payment) * (1 + mpf(r) * due)
    if r == 0:
        return -(mpf(start) + last) / payment
    return log((payment - last * r) / (payment + start * r)) / log(1 + r)


def interest_parts(r, n, start, last, due):
    payment, owed, parts = pmt(r, n, start, last, due), mpf(start), []
    for k in range(n):
        if due:
            interest = -mpf(r) * owed if k else mpf(0)
            # Interest falls due with the payment, a period after it began to run.
            owed = owed - interest + payment
        else:
            interest = -mpf(r) * owed
            owed = owed - interest + payment
        parts.append(interest)
    return payment, parts


def worth(r, v, places):
    """The worth of amounts at places in time, counted in periods."""
    return sum(mpf(a) / (1 + mpf(r)) ** p for a, p in zip(v, places))


def years(days):
    return [mpf(int(d) - int(days[0])) / 365 for d in days]


def rate(guess, v, places):
    """The rate where the worth vanishes, by halving outward from the guess as the search does."""
    def at(u):
        return sum(mpf(a) * exp(-u * p) for a, p in zip(v, places))

    with mp.workdps(60):
        middle, step = log(1 + mpf(guess)), mpf("0.02")
        for k in range(500):
            for low, high in ((middle - (k + 1) * step, middle - k * step),
                              (middle + k * step, middle + (k + 1) * step)):
                if at(low) * at(high) < 0:
                    sign = at(low) > 0
                    for _ in range(190):
                        half = (low + high) / 2
                        low, high = (half, high) if (at(half) > 0) == sign else (low, half)
                    return expm1(low)
    raise ArithmeticError("no rate")


def flows():
    """Amounts: loans and savings of many lengths, in order and mixed, of any size."""
    yield [-10000.0, 3000.0, 4200.0, 6800.0]
    yield [-70000.0, 12000.0, 15000.0, 18000.0, 21000.0, 26000.0]
    yield [-70000.0, 12000.0, 15000.0, 18000.0, 21000.0]
    yield [-100.0, 50.0]
    yield [-100.0, 100.00000001]
    yield [-1.0, 0.0, 0.0, 1e9]
    yield [1e-300, -2e-300, -1e-301]
    yield [0.0, 0.0, -1e300, 1.1e300, 0.0]
    for n in (3, 12, 40, 120, 480):
        for size in (1.0, 1e6):
            loan = [round(random.uniform(-2, 9) * size, 2) for _ in range(n)]
            yield [-round(sum(loan) * random.uniform(0.4, 1.3), 2)] + loan
            yield [-size] * (n // 3 + 1) + [round(size * random.uniform(0.3, 3), 2)] * (n // 2 + 1)


def cash_flows(add):
    rates = [1e-13, 1e-9, 0.004, 0.1, 0.9, 45.0, -1e-12, -0.002, -0.4, -0.9, 0.0]
    for v in flows():
        places = list(range(len(v)))
        days = [float(random.randint(36000, 50000)) for _ in v]
        days[0] = 36000.0
        for r in random.sample(rates, 3):
            add("npv", (r, v), worth(r, v, [p + 1 for p in places]))
            add("xnpv", (r, v, days), worth(r, v, years(days)))
        for name, given, when in (("irr", (v,), places), ("xirr", (v, days), years(days))):
            for guess in (0.1, random.choice([-0.3, 0.02, 1.5])):
                try:
                    add(name, (guess, *given), rate(guess, v, when))
                except ArithmeticError:
                    pass
    two = [-1000.0, 2300.0, -1320.0]
    for guess in (0.1, 0.25):  # of two rates the nearer
        add("irr", (guess, two), rate(guess, two, range(3)))


def shown(x):
    if isinstance(x, list):
        return " ".join(map(repr, x))
    return repr(x) if isinstance(x, float) else str(x)


def main():
    random.seed(41)
    files = {}

    def add(name, arguments, value):
        if abs(value) > 1.7e308:  # a double does not hold it
            return
        row = ",".join([*map(shown, arguments), nstr(value, 32)])
        files.setdefault(name, []).append(row)

    rates = [1e-13, 1e-12, 1e-9, 1e-5, 0.004, 0.1, 0.9, 4.5, -1e-12, -0.002, -0.4, 0.0]
    for r in rates:
        for n in (1, 7, 60, 400):
            for due in (0, 1):
                loan, rest = float(random.randint(100, 10**6)), float(random.choice([0, 0, 250, 4e3]))
                fee = -float(random.randint(1, 1000))
                add("pv", (r, n, fee, rest, due), pv(r, n, mpf(fee), mpf(rest), due))
                add("fv", (r, n, fee, loan, due), fv(r, n, fee, loan, due))
                add("pmt", (r, n, loan, -rest, due), pmt(r, n, loan, -mpf(rest), due))
                payment, parts = interest_parts(r, n, loan, -rest, due)
                k = random.randint(1, n)
                add("ipmt", (r, k, n, loan, -rest, due), parts[k - 1])
                add("ppmt", (r, k, n, loan, -rest, due), payment - parts[k - 1])
                payment, parts = interest_parts(r, n, loan, 0, due)
                last = random.randint(k, n)
                interest = sum(parts[k - 1:last])
                add("cumipmt", (r, n, loan, k, last, due), interest)
                add("cumprinc", (r, n, loan, k, last, due), payment * (last - k + 1) - interest)
                saved = -float(random.randint(1, 900))
                add("nper", (r, saved, -loan, 3 * loan, due), nper(r, saved, -loan, 3 * loan, due))
    for r in (1e-9, 1e-4, 0.007, 0.12, -0.003):
        for n in (5, 48, 360):
            for due in (0, 1):
                payment = float(pmt(r, n, 9000, 0, due))
                exact = findroot(lambda x: fv(x, n, payment, 9000, due), mpf(r))
                add("intrate", (n, payment, 9000, 0, due, 0.1), exact)
    with mp.workdps(80):
        cash_flows(add)
    for name, rows in files.items():
        path = pathlib.Path(__file__).with_name(f"{name}.csv")
        path.write_text("\n".join(["arguments...,value"] + rows) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
