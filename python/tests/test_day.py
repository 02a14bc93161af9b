# SPDX-License-Identifier: MIT
"""A shop's day: sales, returns, closings, receipts, transactions."""

import datetime
import decimal

import pytest
import tavelor
from conftest import DAY

BREAD = tavelor.SaleLine("PAN", 2, decimal.Decimal("1.10"), "Barra", tax=4)


def test_a_reference_is_sold_once(shop):
    ticket = shop.sell(tavelor.Sale("V2", "01", DAY, [BREAD], delivered=5))
    assert isinstance(ticket, int) and ticket > 1
    assert shop.sell(tavelor.Sale("V2", "01", DAY, [BREAD], delivered=5)) is None
    assert "Barra" in shop.ticket_text(ticket)
    assert shop.ticket_text(999) is None and shop.slip_text(999) is None


def test_a_line_without_a_price_is_sold_at_the_shops(shop):
    ticket = shop.sell(reference="V3", till="01", day=DAY, lines=[tavelor.SaleLine("A1", 2)], delivered=5)
    assert "2,20" in shop.ticket_text(ticket)


def test_a_refused_sale_tells_every_fault(shop):
    with pytest.raises(tavelor.RefusedSale) as caught:
        shop.sell(reference="V4", till="99", day=DAY, lines=[tavelor.SaleLine("PAN", 0, 1, "Barra", tax=4)])
    error = caught.value
    assert error.number == 5 and len(error.faults) >= 2
    assert any(line is None for line, _, _ in error.faults)
    assert any(line == 1 and article == "PAN" for line, article, _ in error.faults)


@pytest.mark.parametrize("price", [float("nan"), float("inf"), "1", True, 10**400])
def test_a_price_is_a_number(shop, price):
    with pytest.raises((TypeError, ValueError, OverflowError)):
        shop.sell(reference="V4", till="01", day=DAY, lines=[tavelor.SaleLine("PAN", 1, price, "Barra", tax=4)])


def test_what_is_taken_back_is_a_sale_below_zero(shop):
    ticket = shop.sell(tavelor.Sale("V2", "01", DAY, [BREAD], delivered=5))
    back = shop.take_back(ticket, till="01", day=DAY, lines=[(1, 1)])
    assert back > ticket
    with pytest.raises(tavelor.ArgumentError):
        shop.take_back(ticket, till="01", day=DAY, lines=[(1, 2)])
    with pytest.raises(IndexError):
        shop.take_back(ticket, till="01", day=DAY, lines=[(-1, 2)])
    assert shop.take_back(ticket, till="01", day=DAY) > back


def test_a_closing_takes_the_days_tickets(shop):
    closing = shop.close_till("01", DAY)
    assert closing.tickets == 1 and closing.total == pytest.approx(3.3) and closing.number == 1
    assert "3,30" in shop.slip_text(closing.number)
    assert shop.close_till("01", DAY).number == 0
    meant = [tavelor.Sale("V1", "01", DAY, [tavelor.SaleLine("A1", 3, 1.1, "Barra de pa", tax=4)])]
    found = shop.reconcile(meant)
    assert found.differences == []
    assert found.tallies["meant"].money == found.tallies["closings"].money == decimal.Decimal("3.3")
    missing = shop.reconcile(meant + [tavelor.Sale("V9", "01", DAY, [BREAD])])
    assert missing.differences and "where" in missing.differences[0].what
    assert shop.recover() == (0,) * 6


def test_a_transaction_is_stored_whole_or_not_at_all(shop):
    tickets = "SELECT Count(*) AS n FROM Tickets"

    def count():
        return shop.query(tickets, database="documents")[0]

    before = count()
    with pytest.raises(ZeroDivisionError), shop.transaction() as both:
        shop.sell(tavelor.Sale("V2", "01", DAY, [BREAD], delivered=5))
        both.main.execute("INSERT INTO Bancos (Codigo, Banco) VALUES (?, ?)", "0077", "Con la venta")
        1 / 0
    assert count() == before and len(shop.query("SELECT * FROM Bancos")) == 2
    with shop.transaction() as both:
        shop.sell(tavelor.Sale("V2", "01", DAY, [BREAD], delivered=5))
        both.main.execute("INSERT INTO Bancos (Codigo, Banco) VALUES (?, ?)", "0077", "Con la venta")
    assert count() == before + 1 and len(shop.query("SELECT * FROM Bancos")) == 3


def test_transactions_of_a_connection_stand_one_in_the_other(shop):
    connection = shop.connection()
    with connection.transaction():
        connection.execute("DELETE FROM Bancos WHERE Codigo = (SELECT Min(Codigo) FROM Bancos)")
        with pytest.raises(tavelor.StatementError), connection.transaction():
            assert connection.level == 2
            connection.execute("DELETE FROM Bancos")
            connection.execute("DELETE FRUM Bancos")
        assert connection.level == 1
    assert connection.level == 0 and len(shop.query("SELECT * FROM Bancos")) == 1


def test_the_clock_is_the_shops(shop):
    assert shop.now() == datetime.datetime(2026, 11, 20, 10, 30)
    shop.fix_clock()
    assert abs(shop.now() - datetime.datetime.now()) < datetime.timedelta(minutes=1)


def test_a_folder_is_opened_or_made_but_not_both(folder, tmp_path):
    with pytest.raises(tavelor.Error) as caught:
        tavelor.create(folder)
    assert caught.value.number == 75
    with pytest.raises(tavelor.NotFoundError) as caught:
        tavelor.open(tmp_path / "nowhere")
    assert caught.value.number == 53
    with tavelor.create(tmp_path / "año", currency_decimals=3, strict_modes=True) as shop:
        assert shop.folder == str(tmp_path / "año")
        with pytest.raises(tavelor.Error):
            shop.ClsBancos.IniciaRs("nothing of the kind")


def test_a_program_adds_tables_of_its_own(shop):
    shop.add_to_schema("CREATE TABLE Propia (Codigo TEXT(10) NOT NULL, Precio CURRENCY, CONSTRAINT PK_P PRIMARY KEY (Codigo))")
    shop.execute("INSERT INTO Propia (Codigo, Precio) VALUES (?, ?)", "Ñ", decimal.Decimal("1.25"))
    assert shop.query("SELECT * FROM Propia").row == ("Ñ", decimal.Decimal("1.25"))
    with pytest.raises(tavelor.Error):
        shop.add_to_schema("DROP TABLE Bancos")
    assert len(shop.query("SELECT * FROM Bancos")) == 2


def test_the_shop_tells_its_price(shop):
    price = shop.price("A1", quantity=2)
    assert price.price == pytest.approx(1.1) and price.tax == 4 and price.discount == price.surcharge == 0
    assert shop.price("A1", day=DAY) == price
    with pytest.raises(tavelor.ArgumentError):
        shop.price("NADA")
    with pytest.raises(TypeError):
        shop.price("A1", day=3)


FISCAL = """<?xml version="1.0"?>
<fiscal format="1">
  <taxpayer nif="12345678Z" name="Colmado Rius" />
  <system producer-nif="A58818501" producer="Tavelor" name="Tavelor" id="TV" installation="1" />
  <mode word="verifactu" host="test" />
  <start day="20-11-2026" />
  <series tickets="T" invoices="F" rectifying="R" />
  <operations description="Venta al por menor" zero-rate="E1" />
</fiscal>
"""


def test_an_invoice_replaces_a_ticket_and_another_is_cancelled(tmp_path):
    folder = tmp_path / "records"
    with tavelor.create(folder, unsynchronised=True) as shop:
        with pytest.raises(tavelor.NotFoundError, match="no records"):
            shop.check_records()
        (folder / "fiscal.xml").write_text(FISCAL, encoding="utf-8")
        shop.fix_clock(datetime.datetime(2026, 11, 20, 10, 30))
        shop.seed()
        shop.open_tills("01")
        first = shop.sell(tavelor.Sale("V1", "01", DAY, [BREAD]))
        second = shop.sell(tavelor.Sale("V2", "01", DAY, [BREAD]))
        with pytest.raises(tavelor.RefusedSale):
            shop.invoice_tickets([first], day=DAY, name="Ñandú SA", fiscal_number="A58818502")
        assert shop.invoice_tickets([first], day=DAY, name="Ñandú SA", fiscal_number="A58818501") == "F/1"
        assert shop.cancel(second, till="01", day=DAY) == 3
        with pytest.raises(tavelor.RefusedSale):
            shop.cancel(second, till="01", day=DAY)

        found = shop.check_records()
        assert (found.records, found.tickets, found.flaws) == (4, 3, [])
        assert found.total == decimal.Decimal("2.20")
        shop.execute("DELETE FROM Fiscal_Registros WHERE Posicion = 2", database="documents")
        flaw = shop.check_records(DAY, DAY).flaws[0]
        assert flaw.kind == "removed" and not flaw.is_of_event and "is missing" in flaw.sentence


def test_messages_that_nobody_takes_are_kept(shop):
    assert shop.take_messages() == []
    shop.ClsClientes.LimpiarNIFCIF_v1()
    (message,) = shop.take_messages()
    assert message.severity == 1 and message.text.startswith("Proceso completado")
    assert shop.take_messages() == []
