# SPDX-License-Identifier: MIT
"""A small day: the shop opens, sells at two tills, takes one thing back, closes, and looks whether all is there.

    python small_day.py [FOLDER]
"""

import datetime
import decimal
import pathlib
import sys
import tempfile

import tavelor
from tavelor import Sale, SaleLine

DAY = datetime.date(2026, 11, 20)

BREAD = dict(code="PAN", description="Barra de pan", price=decimal.Decimal("1.10"), tax=4, family="Panadería")
WATER = dict(code="AGUA", description="Agua mineral 1,5 l", price=decimal.Decimal("0.65"), tax=10, family="Bebidas")
TUNA = dict(code="ATUN", description="Conserva de atún", price=decimal.Decimal("4.50"), tax=10, family="Despensa")


def sales():
    """What is sold: a ticket every twenty minutes, at one till after the other."""
    baskets = [
        [SaleLine(quantity=2, **BREAD)],
        [SaleLine(quantity=1, **BREAD), SaleLine(quantity=6, **WATER)],
        [SaleLine(quantity=3, **TUNA), SaleLine(quantity=1, **WATER)],
        [SaleLine(quantity=decimal.Decimal("0.5"), **BREAD)],
    ]
    for number, lines in enumerate(baskets * 3, 1):
        hour, minute = divmod(9 * 60 + 20 * number, 60)
        yield Sale(
            reference=f"V{number:04}",
            till=f"{1 + number % 2:02}",
            day=DAY,
            time=f"{hour:02}:{minute:02}",
            lines=lines,
            delivered=20,
        )


def main(folder):
    with tavelor.create(folder) as shop:
        shop.fix_clock(datetime.datetime.combine(DAY, datetime.time(20, 30)))  # the same paper every day
        shop.seed()
        shop.set_issuer("Colmado Rius", "12345678Z")
        shop.open_tills("01", "02")
        shop.recover()  # what a power cut has left of the last sale

        meant = list(sales())
        tickets = [shop.sell(sale) for sale in meant]
        print(f"sold {len(tickets)} tickets; again: {sum(shop.sell(sale) is not None for sale in meant)}")

        try:
            shop.sell(Sale("V9999", "07", DAY, [SaleLine(**{**BREAD, "quantity": 0})]))
        except tavelor.RefusedSale as refused:
            for line, article, sentence in refused.faults:
                print(f"refused: {f'line {line}, {article}: ' if line else ''}{sentence}")

        shop.take_back(tickets[2], till="01", day=DAY, lines=[(1, 1)])
        meant.append(Sale("back", "01", DAY, [SaleLine(quantity=-1, **TUNA)]))

        print(shop.ticket_text(tickets[2]))
        closings = [shop.close_till(till, DAY) for till in ("01", "02")]
        for closing in closings:
            print(f"closing {closing.number}: {closing.tickets} tickets, {closing.total:.2f} euros")

        found = shop.reconcile(meant)
        for difference in found.differences:
            print("differs:", difference)
        for place, tally in found.tallies.items():
            print(f"{place:12} {tally.tickets:3} tickets {tally.lines:3} lines {tally.units:8.3f} units {tally.money:8} euros")
        print("reconciled: to the unit and to the cent" if not found.differences else "not reconciled")

        stock = shop.query("SELECT Codigo, Existencia FROM Articulos ORDER BY Codigo")
        print("stock:", ", ".join(f"{row.Codigo} {row.Existencia:g}" for row in stock))
        return not found.differences


if __name__ == "__main__":
    if len(sys.argv) > 1:
        sys.exit(not main(pathlib.Path(sys.argv[1])))
    with tempfile.TemporaryDirectory() as temporary:
        sys.exit(not main(pathlib.Path(temporary) / "shop"))
