# SPDX-License-Identifier: MIT
"""A shop for each test, copied from one that is made once."""

import datetime
import decimal
import shutil

import pytest
import tavelor

DAY = datetime.date(2026, 11, 20)


@pytest.fixture(scope="session")
def template(tmp_path_factory):
    folder = tmp_path_factory.mktemp("template") / "shop"
    with tavelor.create(folder, unsynchronised=True) as shop:
        shop.fix_clock(datetime.datetime(2026, 11, 20, 10, 30))
        shop.seed()
        shop.set_issuer("Colmado Rius", "12345678Z")
        shop.open_tills("01")
        shop.ClsBancos.CrearBanco("", "Banco de Ahorro")
        shop.ClsBancos.CrearBanco("", tavelor.doubled_quotes("Caja Rural d'Urgell"))
        shop.sell(
            reference="V1", till="01", day=DAY, lines=[tavelor.SaleLine("A1", 3, 1.1, "Barra de pa", tax=4)], delivered=5
        )
    return folder


@pytest.fixture
def folder(template, tmp_path):
    return shutil.copytree(template, tmp_path / "shop")


@pytest.fixture
def shop(folder):
    with tavelor.open(folder) as opened:
        opened.fix_clock(datetime.datetime(2026, 11, 20, 10, 30))
        yield opened


def typed_rows(shop, rows):
    """A record set with a column of each type: Nulls in every third row, texts that are not ASCII."""
    made = shop.rows(
        ("small", tavelor.INT16),
        ("whole", tavelor.INT32),
        ("single", tavelor.SINGLE),
        ("double", tavelor.DOUBLE),
        ("money", tavelor.MONEY),
        ("date", tavelor.DATE),
        ("flag", tavelor.BOOLEAN),
        ("byte", tavelor.BYTE),
        ("text", tavelor.TEXT, 40),
        ("memo", tavelor.MEMO),
        ("bytes", tavelor.BYTES),
    )
    for values in typed_values(rows):
        made.add(dict(zip(TYPED, values)))
    return made


TYPED = ("small", "whole", "single", "double", "money", "date", "flag", "byte", "text", "memo", "bytes")


def typed_values(rows):
    for i in range(rows):
        if i % 3 == 2:
            yield (None,) * len(TYPED)
            continue
        yield (
            i - 5,
            i * 100_000,
            i / 4,
            i / 7,
            decimal.Decimal(i * 12345 - 20000) / 10000,
            datetime.datetime(1890 + i % 200, 1 + i % 12, 1 + i % 28, i % 24, i % 60, i % 60),
            i % 2 == 0,
            i % 256,
            f"{i} Cañón €uro 漢字 🍞"[: 40 - i % 3],
            "línea " * (i % 50),
            bytes(range(i % 200)),
        )


def pytest_make_parametrize_id(config, val, argname):
    """Values of any size, as a word."""
    text = ascii(val)
    return text if len(text) < 40 and not callable(val) else None if callable(val) else type(val).__name__
