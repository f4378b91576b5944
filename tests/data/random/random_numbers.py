#!/usr/bin/env python3
"""Writes uniform.csv and normal.csv: the first thousand draws of some seeds.

An own computation, with whole numbers of any length and decimal arithmetic, so that it shares
neither tricks nor libraries with the generators that it checks.
"""

from decimal import Decimal, getcontext
from pathlib import Path

MODULUS = 2**31 - 1
DRAWS = 1000
UNIFORM_SEEDS = (1, 42, 2147483646)
NORMAL_SEEDS = (1, 31415)
CAP = 0.99999988


def outputs(seed):
    """The shuffled outputs of the minimal standard generator, without end."""
    def congruential(value):
        while True:
            value = 16807 * value % MODULUS
            yield value

    numbers = congruential(seed)
    first = [next(numbers) for _ in range(40)]
    table = first[:7:-1]  # the last 32, the very last one at index 0
    last = table[0]
    while True:
        number = next(numbers)
        place = last // 67108864
        last, table[place] = table[place], number
        yield last


def deviates(seed):
    for output in outputs(seed):
        yield min(output * (1.0 / 2147483647.0), CAP)


def normal(seed):
    """Pairs by the polar method: q f first, p f as the spare."""
    uniform = deviates(seed)
    while True:
        p = 2.0 * next(uniform) - 1.0
        q = 2.0 * next(uniform) - 1.0
        r = p * p + q * q
        if not 0.0 < r < 1.0:
            continue
        exact = Decimal(r)
        f = (-2 * exact.ln() / exact).sqrt()
        yield Decimal(q) * f
        yield Decimal(p) * f


def first_draws(sequence):
    return [next(sequence) for _ in range(DRAWS)]


def main():
    getcontext().prec = 40
    here = Path(__file__).parent
    with open(here / "uniform.csv", "w", encoding="ascii") as file:
        for seed in UNIFORM_SEEDS:
            file.write(",".join(map(str, [seed, *first_draws(outputs(seed))])) + "\n")
    with open(here / "normal.csv", "w", encoding="ascii") as file:
        for seed in NORMAL_SEEDS:
            draws = [f"{x:.20e}" for x in first_draws(normal(seed))]
            file.write(",".join([str(seed), *draws]) + "\n")


if __name__ == "__main__":
    main()
