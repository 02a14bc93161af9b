# SPDX-License-Identifier: MIT
"""The business layer of a Spanish shop: articles, customers, tickets, closings, ledgers.

    with tavelor.open("shop") as shop:
        shop.ClsArticulos.GetDatos("A1")

tavelor.classes() names the classes; help(tavelor.ClsBancos) tells of one.
"""

from tavelor import _native, _tuples
from tavelor.constants import *  # noqa: F403
from tavelor.errors import (
    ArgumentError,
    BadValueError,
    BusyError,
    CancelledError,
    ClosedError,
    ConflictError,
    EngineError,
    Error,
    IntegrityError,
    NotAllowedError,
    NotFoundError,
    RefusedSale,
    StatementError,
)
from tavelor.errors import _made
from tavelor.rows import Column, Columns, Connection, Event, Recordset
from tavelor.shop import (
    Closing,
    Difference,
    Flaw,
    Message,
    Price,
    Reconciliation,
    RecordsCheck,
    Recovered,
    Sale,
    SaleLine,
    Shop,
    ShopTransaction,
    Tally,
    create,
    open,
)
from tavelor._tuples import Row

Object = _native.Object

_native.setup(_made, _tuples.result, _tuples.row_type, Object, Recordset, Connection)
__version__ = _native.version()


def classes():
    """The names of all classes."""
    return _native.class_names()


def doubled_quotes(text):
    """The text for a member that writes the quotes around it itself, as those that find or make by a text do:
    CrearBanco("", doubled_quotes("Caixa d'Urgell")). Values of question marks need none."""
    return text.replace("'", "''")


def __getattr__(name):
    """A class by its name (tavelor.ClsBancos), or what a member gives (tavelor.clsArticulos_GetDatos)."""
    if name.startswith("__"):
        raise AttributeError(name)
    owner, _, member = name.partition("_")
    try:
        of = _native.type(owner if member else name)
    except Error:
        raise AttributeError(f"tavelor has no {name!r}") from None
    if not member:
        return of
    outputs = [entry for entry in _native.describe(owner)[4] if entry[0] == member]
    names = [parameter[0] for entry in outputs for parameter in entry[5] if parameter[3]]
    if not names:
        raise AttributeError(f"tavelor has no {name!r}")
    return _tuples.result(of.__name__, member, (["result"] if outputs[0][2] else []) + names)
