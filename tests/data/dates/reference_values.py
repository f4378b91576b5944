#!/usr/bin/env python3
"""Writes the reference rows of dates from Python's own calendar, see README.md."""

import datetime
import pathlib
import random
from decimal import Decimal, getcontext

getcontext().prec = 40
HERE = pathlib.Path(__file__).parent


def serial_of(date):
    days = date.toordinal() - datetime.date(1900, 1, 1).toordinal() + 1
    return days if days < 60 else days + 1  # no day has the number 60


def main():
    random.seed(1582)
    days = {datetime.date(1900, 1, 1), datetime.date(9999, 12, 31)}
    for year in [*range(1900, 2101), *range(2100, 10000, 100), 9996, 9999]:
        days |= {datetime.date(year, 1, 1), datetime.date(year, 3, 1),
                 datetime.date(year, 3, 1) - datetime.timedelta(1)}
    first, last = datetime.date(1900, 1, 1).toordinal(), datetime.date(9999, 12, 31).toordinal()
    days |= {datetime.date.fromordinal(random.randint(first, last)) for _ in range(300)}

    serials, dates = [], []
    for day in sorted(days):
        times = [(0, 0, 0.0)]
        if random.random() < 0.4:
            times.append((random.randint(0, 23), random.randint(0, 59),
                          random.choice([0.0, 59.0, 30.5, random.uniform(0, 60), 59.999999])))
        for hour, minute, second in times:
            part = (Decimal(3600 * hour + 60 * minute) + Decimal(second)) / 86400
            serials.append(f"{day.year},{day.month},{day.day},{hour},{minute},{second!r},"
                           f"{serial_of(day) + part}")
    for _ in range(150):
        day = datetime.date.fromordinal(random.randint(first, last - 1))
        serial = serial_of(day) + (random.choice([0.0, 0.5, random.random(), 1 - 2e-9]))
        thousandths = round((Decimal(serial) - serial_of(day)) * 86_400_000)
        moment = (datetime.datetime.combine(day, datetime.time())
                  + datetime.timedelta(milliseconds=thousandths))
        shown = (moment.year, moment.month, moment.day, moment.hour, moment.minute,
                 Decimal(moment.second) + Decimal(moment.microsecond) / 1_000_000,
                 moment.isoweekday())
        dates += [f"{serial!r},{part},{value}" for part, value in enumerate(shown)]
    for name, heading, rows in (("date2serial", "year,month,day,hour,minute,second,value", serials),
                                ("serial2date", "serial,part,value", dates)):
        (HERE / f"{name}.csv").write_text("\n".join([heading] + rows) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
