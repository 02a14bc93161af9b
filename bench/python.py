# SPDX-License-Identifier: MIT
"""The Python package beside the library: what a member's call costs, and columns of many rows beside their opening.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/python.py [--quick]

bench/run c tells what the same calls by name cost in C++.
"""

import argparse
import statistics
import tempfile
import time

import tavelor

ROUNDS = 7


def best(work, rounds=ROUNDS):
    """Seconds of the processor, of the quickest and the middle one of some runs, each but the first timed."""
    taken = []
    for _ in range(rounds + 1):
        before = time.process_time()
        work()
        taken.append(time.process_time() - before)
    return min(taken[1:]), statistics.median(taken[1:])


def calls(shop, count):
    banks = shop.ClsBancos
    connection = shop.connection()

    def a_property():
        for _ in range(count):
            banks.sClassName

    def a_row():
        for _ in range(count):
            banks.GetIbanBic("B1", connection)

    for name, work in (("a property", a_property), ("a member that reads a row", a_row)):
        quickest, middle = best(work)
        print(f"{name:32} {quickest / count * 1e6:7.3f} us a call (middle {middle / count * 1e6:.3f})")


WIDE = (
    [("Id", "LONG")]
    + [(f"Texto{i:02}", "TEXT(40)") for i in range(20)]
    + [(f"Numero{i:02}", "DOUBLE") for i in range(10)]
    + [(f"Entero{i:02}", "LONG") for i in range(6)]
    + [(f"Fecha{i:02}", "DATETIME") for i in range(4)]
    + [(f"Marca{i:02}", "BIT") for i in range(4)]
)


def columns(shop, rows):
    shop.add_to_schema(f"CREATE TABLE Anchas ({', '.join(' '.join(column) for column in WIDE)})")
    names = ", ".join(name for name, _ in WIDE)
    statement = f"INSERT INTO Anchas ({names}) VALUES ({', '.join('?' * len(WIDE))})"
    day = shop.now()
    with shop.connection().transaction() as connection:
        for i in range(rows):
            texts = [f"Artículo {i % 97} de {j}" if j % 2 else f"{i * 37 % rows:06}-{j}" for j in range(20)]
            numbers = [i / (j + 3) for j in range(10)]
            wholes = [i * (j + 1) % 1000 for j in range(6)]
            connection.execute(statement, i, *texts, *numbers, *wholes, *[day] * 4, *[i % 2 == 0] * 4)

    def opened():
        return shop.query("SELECT * FROM Anchas ORDER BY Id")

    def laid_down():
        opened().numpy()

    def exported():
        opened().__arrow_c_stream__()

    def iterated():
        for _ in opened():
            pass

    opening, _ = best(opened)
    print(f"{'open ' + str(rows) + ' rows of ' + str(len(WIDE)) + ' columns':32} {opening * 1e3:7.1f} ms")
    for name, work in (("and into numpy", laid_down), ("and into an Arrow stream", exported), ("and row by row", iterated)):
        quickest, _ = best(work)
        print(f"{name:32} {quickest * 1e3:7.1f} ms, {quickest / opening:.2f} of opening")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--quick", action="store_true", help="small counts: only that it runs")
    quick = parser.parse_args().quick
    with tempfile.TemporaryDirectory() as folder, tavelor.create(f"{folder}/shop", unsynchronised=True) as shop:
        shop.execute(
            "INSERT INTO Bancos (Codigo, Banco, IBAN, Swift, Predeterminada) VALUES (?, ?, ?, ?, ?)",
            "B1", "Banco de Ahorro", "ES9121000418450200051332", "CAIXESBBXXX", False,
        )
        calls(shop, 1000 if quick else 50_000)
        columns(shop, 500 if quick else 100_000)


if __name__ == "__main__":
    main()
