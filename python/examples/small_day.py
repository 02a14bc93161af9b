# SPDX-License-Identifier: MIT
"""The small day of examples/070-a-day.cpp: a shop opens, sells, takes back, closes and reconciles.

    python small_day.py [FOLDER]
"""

import datetime
import decimal
import pathlib
import sys
import tempfile

import tavelor
from tavelor import Sale, SaleLine

DAY = datetime.date(2025, 11, 20)
BREAD = dict(code="PAN", description="Barra", family="PAN", price=decimal.Decimal("1.10"), tax=4)
COFFEE = dict(code="CAFE", description="Café molido", family="DES", price=decimal.Decimal("2.75"), tax=10)


def main(folder):
    with tavelor.create(folder) as shop:
        shop.fix_clock(datetime.datetime.combine(DAY, datetime.time()))  # the same paper every day
        shop.seed()
        shop.set_issuer("Colmado Rius", "12345678Z")
        shop.open_tills("01")
        shop.recover()  # what a power cut has left of the last sale

        lines = [SaleLine(quantity=3, **BREAD), SaleLine(quantity=1, **COFFEE)]
        sale = Sale("V0001", "01", DAY, lines, time="10:32", delivered=10)
        ticket = shop.sell(sale)
        print(shop.ticket_text(ticket))
        shop.take_back(ticket, till="01", day=DAY, lines=[(1, 1)])

        print(shop.slip_text(shop.close_till("01", DAY).number))

        found = shop.reconcile([sale, Sale("back", "01", DAY, [SaleLine(quantity=-1, **BREAD)])])
        for difference in found.differences:
            print(f"{difference.place}: {difference.what}")
        sold = found.tallies["history"]
        print(f"history: {sold.tickets} tickets, {sold.lines} lines, {sold.money * 100:.0f} cents")
        return not found.differences


if __name__ == "__main__":
    if len(sys.argv) > 1:
        sys.exit(not main(pathlib.Path(sys.argv[1])))
    with tempfile.TemporaryDirectory() as temporary:
        sys.exit(not main(pathlib.Path(temporary) / "shop"))
