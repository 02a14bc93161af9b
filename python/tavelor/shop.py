# SPDX-License-Identifier: MIT
"""A shop: an installation, bound to the thread that opened it."""

import collections
import contextlib
import dataclasses
import datetime
import decimal
import os
import typing

from tavelor import _native, errors
from tavelor.constants import LOOK_AT_LATEST, READ_ONLY

_DATABASES = {"main": 1, "documents": 3, "historic": 4, "import": 5, "further": 0}

Number = typing.Union[int, float, decimal.Decimal]

Closing = collections.namedtuple("Closing", "number total tickets", module="tavelor")
Closing.__doc__ = "A closing that was made: its number (0 where there was nothing to close), euros, tickets."
Recovered = collections.namedtuple(
    "Recovered", "sales closings rewritten taken_back kept undecided", module="tavelor"
)
Recovered.__doc__ = """What recover() found and mended: sales whose stock had not been moved, closings without their
tickets, closings made again, lost tickets undone, what stays by decision, what nothing mends."""
Difference = collections.namedtuple("Difference", "till day place what", module="tavelor")
Difference.__doc__ = 'One figure that differs: "12 tickets where 13 were sold".'
Tally = collections.namedtuple("Tally", "tickets lines units money owed", module="tavelor")
Tally.__doc__ = "What was counted at one place; money in euros, tax included."
Reconciliation = collections.namedtuple("Reconciliation", "differences tallies", module="tavelor")
Reconciliation.__doc__ = "Whether what was sold is what the shop has: without differences it is."

Price = collections.namedtuple("Price", "price discount tax surcharge", module="tavelor")
Price.__doc__ = "The shop's own price of one unit, euros with tax; discount, tax and surcharge in percent."
Message = collections.namedtuple("Message", "severity text title", module="tavelor")
Message.__doc__ = "What a class told and nobody took; severity is 0 plain, 1 information, 2 critical."
Flaw = collections.namedtuple("Flaw", "kind is_of_event chain position invoice sentence", module="tavelor")
Flaw.__doc__ = "What is wrong with a record of an invoice, or an event; its place in its chain, 0 for none."
RecordsCheck = collections.namedtuple("RecordsCheck", "records events tickets total flaws", module="tavelor")
RecordsCheck.__doc__ = "What a check of the records of invoices has gone through and found: without flaws they are whole."

_PLACES = ("meant", "tickets", "history", "closings", "stock moves", "accounts")


@dataclasses.dataclass
class SaleLine:
    """One article of a sale. Without a price it is sold at the shop's own: its discount and tax too."""

    code: str
    quantity: Number = 1  # pieces, kilos; below 0 for a return
    price: Number | None = None  # of one unit, euros, tax included
    description: str = ""
    tax: Number = 0  # percent, one that the shop has
    discount: Number = 0  # percent off the price
    surcharge: Number = 0  # percent, of a customer under equivalence surcharge
    family: str = ""
    lot: str = ""
    free: bool = False  # given away on purpose


@dataclasses.dataclass
class Sale:
    """One ticket. Its reference is what the shop calls it elsewhere: the same one is never sold twice."""

    reference: str
    till: str
    day: datetime.date
    lines: typing.Sequence[SaleLine]
    payment: str = "1"  # code of a payment method; "1" is cash
    time: str = ""  # "10:32"
    customer: str = ""
    name: str = ""
    place: str = ""
    comment: str = ""
    delivered: Number = 0  # euros handed over
    credit_granted: bool = False  # sold on credit whatever the customer owes


_FLAWS = ("changed", "removed", "inserted", "reordered", "date", "sum", "series", "ticket")


def _selector(database):
    selector = _DATABASES.get(database, database)
    if not isinstance(selector, int):
        raise ValueError(f"database: is one of {', '.join(_DATABASES)}, not {database!r}")
    return selector


class ShopTransaction:
    """Sales and what else is written beside them, as one."""

    def __init__(self, apartment):
        self._transaction = apartment.begin()
        self._connections = None

    def _connection(self, place):
        if self._connections is None:
            self._connections = self._transaction.connections()
        return self._connections[place]

    @property
    def main(self):
        """Its connection to the main database."""
        return self._connection(0)

    @property
    def documents(self):
        """Its connection to the documents."""
        return self._connection(1)


class Shop:
    """An installation that is open. shop.ClsArticulos is the shop's own object of a class, made when first asked
    for; shop.ClsArticulos() is another one, with a cursor of its own.

    A shop and all that comes of it is used by the thread that opened it; another thread opens its own. What comes of
    it keeps it open, unless close() or the end of a with block closes it.
    """

    def __init__(self, path, settings=None):
        self._apartment = _native.Apartment(os.fspath(path), settings)
        self._objects = {}
        self._connections = {}

    def __getattr__(self, name):
        if name.startswith("_"):
            raise AttributeError(name)
        try:
            of = _native.type(name)
        except errors.NotFoundError as error:
            raise AttributeError(f"{name}: {error.description}") from None
        made = self._objects.get(of)
        if made is None:
            made = self._objects[of] = of(self._apartment)
        # The next time it is found at once.
        self.__dict__[name] = made
        return made

    def __dir__(self):
        return sorted({*super().__dir__(), *_native.class_names()})

    def new(self, name):
        """A new object of a class, by its name or its identifier in braces."""
        return _native.type(name)(self._apartment)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        """Ends it: what is not committed is undone, record sets are closed. All that is used of it afterwards raises
        ClosedError."""
        self._apartment.close()

    @property
    def closed(self):
        """Whether it is."""
        return self._apartment.closed

    @property
    def folder(self):
        """Full path of the installation."""
        return self._apartment.folder

    # ---- Statements

    def connection(self, database="main"):
        """A new connection to a database: "main", "documents", "historic", "import" or "further"."""
        return self._apartment.connection(_selector(database))

    def _own_connection(self, database):
        made = self._connections.get(database)
        if made is None:
            made = self._connections[database] = self.connection(database)
        return made

    def query(self, statement, *values, database="main", lock=READ_ONLY):
        """The rows of a SELECT; each question mark in it is the next of the values."""
        return self._own_connection(database).query(statement, *values, lock=lock)

    def execute(self, statement, *values, database="main"):
        """Runs a statement that gives no rows, and gives how many it wrote."""
        return self._own_connection(database).execute(statement, *values)

    def add_to_schema(self, ddl, database="main"):
        """Adds tables, columns and indexes of the program's own, in one transaction: CREATE TABLE, CREATE INDEX and
        ALTER TABLE .. ADD COLUMN of the dialect."""
        self._apartment.add_to_schema(_selector(database), ddl)

    def rows(self, *columns):
        """A record set without a database: columns are (name, type, width in characters)."""
        return self._apartment.new_rows(columns)

    # ---- Clock, prompts

    def now(self):
        """The time that classes, flows and statements go by."""
        return self._apartment.now()

    def fix_clock(self, moment=None):
        """From here on it is always that moment; None goes on with this computer's. For tests and examples."""
        self._apartment.fix_clock(moment)

    def on_prompt(self, handler):
        """Who answers what classes ask of the user: handler(kind, severity, text, title) gives True for yes, or the
        text that was typed; kind is 1 message, 2 question, 3 input, 4 beep. None for nobody."""
        self._apartment.set_prompts(handler)

    def take_messages(self):
        """The last messages, up to 256, that classes told and no handler took, oldest first; they are forgotten."""
        return [Message(*message) for message in self._apartment.take_messages()]

    # ---- The day

    def seed(self):
        """Fills each catalogue of a new shop that is empty; may be called again."""
        self._apartment.seed()

    def set_issuer(self, name, fiscal_number, *, company="", address="", place="", postcode="", province=""):
        """Says who the shop is, as receipts tell it."""
        self._apartment.set_issuer(name, company, fiscal_number, address, place, postcode, province)

    def open_tills(self, *tills):
        """Makes sure that the catalogue of tills has them all."""
        self._apartment.open_tills(*tills)

    def sell(self, sale=None, /, **fields):
        """Sells, and gives the number of the ticket; None for a sale that was there already. A Sale, or its fields.
        RefusedSale tells all that is wrong; nothing of the sale is left then."""
        return self._apartment.sell(Sale(**fields) if sale is None else sale)

    def price(self, article, *, customer="", quantity=1, tariff="", family="", day=None):
        """What the shop asks for an article: a Price. Offers must run on the day, today without one."""
        return Price(*self._apartment.price(article, customer, quantity, tariff, family, day))

    def take_back(self, ticket, *, till, day, lines=(), time="", payment="", comment=None):
        """Sells back lines (line from 1, quantity) of a ticket, all without any, and gives the new ticket's number."""
        return self._apartment.take_back(ticket, till, day, time, payment, comment, list(lines))

    def cancel(self, ticket, *, till, day, time="", payment="", comment=None):
        """Takes back all of a ticket that should not have been sold, cancels its invoice in place of rectifying it, and
        gives the new ticket's number."""
        return self._apartment.cancel(ticket, till, day, time, payment, comment, [])

    def invoice_tickets(self, tickets, *, day, customer="", name="", fiscal_number=""):
        """Issues an invoice in the place of tickets, to a customer of the shop by code or to a name with its number, and
        gives its number."""
        return self._apartment.invoice_tickets(list(tickets), day, customer, name, fiscal_number)

    def close_till(self, till, day):
        """Closes a till's tickets of a day and moves them to history: a Closing."""
        return Closing(*self._apartment.close_till(till, day))

    def recover(self, decision=LOOK_AT_LATEST):
        """Mends what a program that died has left: Recovered. The decision says what is done with what is lost."""
        return Recovered(*self._apartment.recover(decision))

    def ticket_text(self, ticket):
        """A ticket as its receipt; None for one that is not there."""
        return self._apartment.ticket_text(ticket)

    def slip_text(self, closing):
        """A closing as its slip; None for one that is not there."""
        return self._apartment.slip_text(closing)

    @contextlib.contextmanager
    def transaction(self):
        """A transaction over the main database and the documents, which all that the shop does joins: stored at the
        end of the block, undone when it raises."""
        transaction = ShopTransaction(self._apartment)
        try:
            yield transaction
            transaction._transaction.commit()
        finally:
            transaction._connections = None
            transaction._transaction.end()

    def reconcile(self, sales):
        """Compares sales as they were meant with what the shop has: a Reconciliation. What was taken back is a sale
        with negative quantities."""
        differences, tallies = self._apartment.reconcile(sales)
        return Reconciliation(
            [Difference(*difference) for difference in differences],
            {place: Tally(*tally) for place, tally in zip(_PLACES, tallies)},
        )

    def check_records(self, first=None, last=None):
        """Computes the records of invoices again and compares tickets with them: a RecordsCheck. Days are those of
        issue. It looks at no signature. NotFoundError in a shop that keeps no records."""
        *counts, flaws = self._apartment.check_records(first, last)
        return RecordsCheck(*counts, [Flaw(_FLAWS[kind], *flaw) for kind, *flaw in flaws])


def open(path):
    """Opens an installation, by its folder or its settings file. Databases of an older schema are brought up to
    date. NotFoundError for a folder that holds none."""
    return Shop(path)


def create(
    path,
    *,
    file=None,
    server=None,
    locale=None,
    amount_format=None,
    quantity_format=None,
    currency_decimals=0,
    unsynchronised=False,
    busy_timeout_ms=0,
    strict_modes=False,
):
    """Makes a working installation in a folder, and opens it: on files, or with `server` ("postgresql://...") on
    that one. A folder that holds one already is left alone, and raises."""
    settings = (
        file,
        server,
        locale,
        amount_format,
        quantity_format,
        currency_decimals,
        unsynchronised,
        busy_timeout_ms,
        strict_modes,
    )
    return Shop(path, settings)
