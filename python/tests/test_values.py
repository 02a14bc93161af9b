# SPDX-License-Identifier: MIT
"""Values both ways, and what is refused with a clear word."""

import datetime
import decimal

import numpy
import pytest
import tavelor

D = decimal.Decimal


@pytest.fixture
def cells(shop):
    made = shop.rows(
        ("whole", tavelor.INT32), ("number", tavelor.DOUBLE), ("money", tavelor.MONEY), ("date", tavelor.DATE),
        ("flag", tavelor.BOOLEAN), ("text", tavelor.TEXT, 20), ("bytes", tavelor.BYTES), ("memo", tavelor.MEMO),
    )
    made.add()
    return made


@pytest.mark.parametrize(
    ("column", "value"),
    [
        ("whole", 2**31 - 1),
        ("whole", -(2**31)),
        ("number", 1e300),
        ("number", -0.1),
        ("money", D("-922337203685477.5808")),
        ("money", D("922337203685477.5807")),
        ("money", D("0.0001")),
        ("date", datetime.datetime(100, 1, 1)),
        ("date", datetime.datetime(1899, 12, 29, 18, 0, 1)),
        ("date", datetime.datetime(9999, 12, 31, 23, 59, 59)),
        ("flag", True),
        ("flag", False),
        ("text", "L'Hospitalet €"),
        ("text", ""),
        ("memo", "x" * 100_000 + "ñ"),
        ("bytes", bytes(range(256))),
        ("bytes", b""),
        ("text", None),
    ],
)
def test_a_value_comes_back_as_it_went(cells, column, value):
    cells[column] = value
    found = cells[column]
    assert found == value and type(found) is type(value)


@pytest.mark.parametrize(
    ("column", "value", "found"),
    [
        ("date", datetime.date(1850, 3, 1), datetime.datetime(1850, 3, 1)),
        ("date", datetime.time(18, 30), datetime.datetime(1899, 12, 30, 18, 30)),
        ("date", datetime.datetime(2026, 1, 1, 0, 0, 0, 999_999), datetime.datetime(2026, 1, 1)),
        ("money", D("1.50000000"), D("1.5")),
        ("money", D("1E+3"), D(1000)),
        ("money", D("1.2E-3"), D("0.0012")),
        ("money", D("0E-500"), D(0)),
        ("whole", numpy.int64(7), 7),
        ("number", numpy.float64(0.5), 0.5),
        ("number", 3, 3.0),
        ("flag", 1, True),
    ],
)
def test_a_value_is_taken_for_what_it_is(cells, column, value, found):
    cells[column] = value
    assert cells[column] == found


@pytest.mark.parametrize(
    ("value", "error", "says"),
    [
        (2**63, OverflowError, "wider than 64 bits"),
        (-(2**70), OverflowError, "wider than 64 bits"),
        (float("nan"), ValueError, "nan is no number"),
        (float("-inf"), ValueError, "inf is no number"),
        (numpy.float64("nan"), ValueError, "nan is no number"),
        (D("0.00001"), ValueError, "more than four decimals"),
        (D("1E-9"), ValueError, "more than four decimals"),
        (D("1E-999999"), ValueError, "more than four decimals"),
        (D("1E+999999"), OverflowError, "beyond what money may be"),
        (D("922337203685477.5808"), OverflowError, "beyond what money may be"),
        (D("NaN"), ValueError, "no amount"),
        (D("-Infinity"), ValueError, "no amount"),
        (D("sNaN"), ValueError, "no amount"),
        ("a\ud800b", ValueError, "half a surrogate pair"),
        (datetime.datetime(99, 12, 31), ValueError, "outside the years 100 to 9999"),
        (datetime.date(1, 1, 1), ValueError, "outside the years 100 to 9999"),
        (datetime.datetime(2026, 1, 1, tzinfo=datetime.timezone.utc), ValueError, "has a time zone"),
        (datetime.time(1, 1, tzinfo=datetime.timezone.utc), ValueError, "has a time zone"),
        (datetime.timedelta(1), TypeError, "takes str"),
        ([1], TypeError, "takes str"),
        (object(), TypeError, "takes str"),
        (bytearray(b"x"), TypeError, "takes str"),
        (1j, TypeError, "takes str"),
    ],
)
def test_what_no_value_is_made_of_is_refused_by_name(shop, cells, value, error, says):
    with pytest.raises(error, match=f"GetDatos: vId: .*{says}"):
        shop.ClsArticulos.GetDatos(value)
    with pytest.raises(error, match=f"memo: .*{says}"):
        cells["memo"] = value
    with pytest.raises(error, match=f"query: .*{says}"):
        shop.query("SELECT * FROM Articulos WHERE Codigo = ?", value)
    assert cells["memo"] is None


@pytest.mark.parametrize(
    ("column", "value", "number"),
    [
        ("whole", 2**31, -2147217887),
        ("whole", 1e300, -2147217887),
        ("text", "x" * 21, -2147217887),
        ("text", "a\0b", 3421),
        ("number", "abc", 3421),
        ("date", "tomorrow", 3421),
    ],
)
def test_what_a_column_does_not_take_is_the_librarys_error(cells, column, value, number):
    with pytest.raises(tavelor.BadValueError) as caught:
        cells[column] = value
    assert caught.value.number == number
    assert cells[column] is None


def test_a_value_never_breaks_out_of_its_place(shop):
    for text in ("'; DELETE FROM Bancos; --", "o'hara", "a\\", "\x01", "%", "[", "#1#", "?"):
        assert len(shop.query("SELECT * FROM Bancos WHERE Banco = ?", text)) == 0
    assert len(shop.query("SELECT * FROM Bancos WHERE Banco = ?", "Caja Rural d'Urgell")) == 1


@pytest.mark.parametrize(
    "call",
    [
        lambda shop: shop.query("SELECT 1\0"),
        lambda shop: shop.query("SELECT \ud800"),
        lambda shop: shop.execute("DELETE FROM Bancos\0 WHERE 1 = 2"),
        lambda shop: tavelor.open("a\0b"),
        lambda shop: tavelor.open("a\ud800"),
        lambda shop: shop.open_tills("0\0"),
        lambda shop: shop.new("ClsBancos\0"),
    ],
)
def test_a_statement_or_name_is_a_whole_text(shop, call):
    with pytest.raises(ValueError):
        call(shop)
    assert len(shop.query("SELECT * FROM Bancos")) == 2


@pytest.mark.parametrize(
    "call",
    [
        lambda shop: shop.query(3),
        lambda shop: shop.query(),
        lambda shop: shop.execute(b"DELETE FROM Bancos"),
        lambda shop: tavelor.open(3),
        lambda shop: shop.fix_clock("today"),
        lambda shop: shop.close_till("01", 3),
        lambda shop: shop.close_till(1, datetime.date(2026, 1, 1)),
        lambda shop: shop.ticket_text("1"),
        lambda shop: shop.take_back(1, till="01", day=datetime.date(2026, 1, 1), lines=[1]),
        lambda shop: shop.sell(reference=3, till="01", day=datetime.date(2026, 1, 1), lines=[]),
        lambda shop: shop.rows("text"),
        lambda shop: shop.query("SELECT * FROM Bancos").listen(3),
        lambda shop: shop.query("SELECT * FROM Bancos")[1.5],
        lambda shop: tavelor.ClsBancos(3),
        lambda shop: tavelor.ClsBancos(),
        lambda shop: tavelor.Object(shop),
    ],
)
def test_the_wrong_type_is_a_type_error(shop, call):
    with pytest.raises(TypeError):
        call(shop)


def test_a_database_is_one_of_five(shop):
    with pytest.raises(ValueError, match="documents"):
        shop.connection("attic")
    with pytest.raises(tavelor.Error):
        shop.connection(17)
    with pytest.raises(OverflowError):
        shop.connection(2**80)
