# SPDX-License-Identifier: MIT
"""Five questions of a shop owner, cell by cell: open it as a notebook, or run it.

    python five_questions.py [FOLDER [PLOT.png]]

In the folder it makes a shop with a month of sales, unless there is one.
"""

# %% A month of sales
import datetime
import pathlib
import random
import sys
import tempfile

import pandas

import tavelor
from tavelor import Sale, SaleLine

FOLDER = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else tempfile.mkdtemp()) / "shop"
PLOT = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else FOLDER.parent / "five_questions.png")
LAST = datetime.date(2026, 11, 20)

#          code       description            price  tax  family      weight  counted at the end
ARTICLES = [
    ("PAN001", "Barra de pan", 1.10, 4, "Panadería", 10, 290),
    ("PAN002", "Pan de pueblo", 2.35, 4, "Panadería", 5, 60),
    ("LEC001", "Leche entera 1 l", 0.98, 4, "Lácteos", 6, 120),
    ("QUE001", "Queso curado 250 g", 5.40, 4, "Lácteos", 2, 90),
    ("BEB001", "Agua mineral 1,5 l", 0.65, 10, "Bebidas", 5, 50),
    ("BEB002", "Cerveza 33 cl", 0.89, 21, "Bebidas", 6, 210),
    ("CON001", "Conserva de atún", 4.50, 10, "Despensa", 3, 90),
    ("LIM001", "Detergente 2 l", 7.95, 21, "Limpieza", 1, 14),
]


def a_month(shop):
    """Sells as a shop does: more on Saturdays, most around one o'clock, nothing on Sundays."""
    chance = random.Random(20261120)
    shop.seed()
    shop.set_issuer("Colmado Rius", "12345678Z")
    shop.open_tills("01")
    number = 0
    for day in (LAST - datetime.timedelta(days) for days in range(29, -1, -1)):
        if day.weekday() == 6:
            continue
        shop.fix_clock(datetime.datetime.combine(day, datetime.time(21)))
        for _ in range(14 if day.weekday() == 5 else 8):
            number += 1
            hour = min(max(round(chance.gauss(13, 2.2)), 9), 20)
            basket = chance.choices(ARTICLES, [article[5] for article in ARTICLES], k=chance.randint(1, 5))
            shop.sell(
                Sale(
                    reference=f"M{number:05}",
                    till="01",
                    day=day,
                    time=f"{hour:02}:{chance.randrange(60):02}",
                    delivered=200,
                    lines=[
                        SaleLine(code, chance.randint(1, 3), price, description, tax=tax, family=family)
                        for code, description, price, tax, family, _, _ in basket
                    ],
                )
            )
        shop.close_till("01", day)
    with shop.connection().transaction() as connection:
        for code, *_, stock in ARTICLES:
            shop.ClsArticulos.ActualizarStock(code, stock, connection)


new = not FOLDER.exists()
shop = tavelor.create(FOLDER, unsynchronised=True) if new else tavelor.open(FOLDER)
if new:
    a_month(shop)

lines = shop.query(
    "SELECT t.Fecha, t.Concepto, t.Numero, l.Codigo, l.Descripcion, l.Familia, l.Cantidad, l.Importe, l.IVA "
    "FROM HTickets AS t INNER JOIN HTickets_Lineas AS l ON t.Numero = l.Numero",
    database="documents",
).pandas()
lines["hour"] = lines.Concepto.str[:2].astype(int)  # the time of day stands there as a text
print(f"{lines.Numero.nunique()} tickets, {len(lines)} lines, {lines.Importe.sum():.2f} euros")

# %% 1. What brings the money?
by_article = lines.groupby("Descripcion")["Importe"].sum().sort_values(ascending=False)
print("\n1. What brings the money?")
print((by_article / by_article.sum() * 100).head(3).map("{:.1f} %".format).to_string())

# %% 2. When must two people stand at the till?
by_hour = lines.groupby("hour")["Numero"].nunique()
print("\n2. When must two people stand at the till?")
print(f"at {by_hour.idxmax()} o'clock: {by_hour.max()} tickets of {by_hour.sum()}")

# %% 3. What is a ticket worth, and on which day?
tickets = lines.groupby(["Fecha", "Numero"])["Importe"].sum().reset_index()
by_weekday = tickets.groupby(tickets.Fecha.dt.dayofweek)["Importe"].agg(["count", "mean"])
print("\n3. What is a ticket worth, and on which day?")
for weekday, row in by_weekday.iterrows():
    name = ("Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday")[weekday]
    print(f"{name:10} {row['count']:4.0f} tickets of {row['mean']:6.2f} euros")

# %% 4. What runs out within a fortnight?
stock = shop.query("SELECT Codigo, Descripcion, Existencia FROM Articulos").pandas()
days = tickets.Fecha.nunique()
sold = lines.groupby("Codigo")["Cantidad"].sum() / days
stock["days"] = stock.Existencia / stock.Codigo.map(sold)
print("\n4. What runs out within a fortnight of opening days?")
for row in stock[stock.days < 14].sort_values("days").itertuples():
    print(f"{row.Descripcion:20} {row.Existencia:5.0f} left, {row.days:4.1f} days")

# %% 5. How much of it is the tax office's?
taxes = lines.groupby("IVA")["Importe"].sum().to_frame("total")
taxes["tax"] = taxes.total * taxes.index / (100 + taxes.index)
print("\n5. How much of it is the tax office's?")
for percent, row in taxes.iterrows():
    print(f"{percent:3.0f} % of {row.total - row.tax:8.2f}: {row.tax:7.2f} euros")

closed = shop.query("SELECT Fecha, Total FROM Cierres").numpy()
assert abs(closed["Total"].sum() - lines.Importe.sum()) < 0.005, "the closings tell of other money"

# %% All of it in one picture
import matplotlib

matplotlib.use("Agg")
from matplotlib import dates, pyplot

figure, ((first, second), (third, fourth)) = pyplot.subplots(2, 2, figsize=(11, 7.5))
by_article.sort_values().plot.barh(ax=first, title="Euros by article", ylabel="")
by_hour.plot.bar(ax=second, title="Tickets by hour", xlabel="", rot=0)
series = pandas.Series(closed["Total"], closed["Fecha"])
third.plot(series.index, series.values, marker="o", markersize=3)
third.set_title("Euros by closing")
third.xaxis.set_major_formatter(dates.DateFormatter("%d/%m"))
left = stock.sort_values("days")
fourth.barh(left.Descripcion, left.days, color=["tab:red" if days < 14 else "tab:blue" for days in left.days])
fourth.axvline(14, color="grey", linewidth=1)
fourth.set_title("Days until it runs out")
figure.suptitle("Colmado Rius, thirty days")
figure.tight_layout()
figure.savefig(PLOT, dpi=100)
shop.close()
print(f"\nplot: {PLOT.name}")
