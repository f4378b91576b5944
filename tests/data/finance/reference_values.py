#!/usr/bin/env python3
"""Writes the reference rows of annuities and cash flows, see README.md."""

import pathlib
import random

from mpmath import findroot, log, mp, mpf, nstr

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


def shown(x):
    return repr(x) if isinstance(x, float) else str(x)


def main():
    random.seed(41)
    files = {}

    def add(name, arguments, value):
        row = ",".join([shown(a) for a in arguments] + [nstr(value, 32)])
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
    for name, rows in files.items():
        path = pathlib.Path(__file__).with_name(f"{name}.csv")
        path.write_text("\n".join(["arguments...,value"] + rows) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
