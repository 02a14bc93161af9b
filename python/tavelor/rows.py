# SPDX-License-Identifier: MIT
"""Record sets: the rows of a statement, fetched whole, with a cursor on them; and connections."""

import collections
import collections.abc
import contextlib
import decimal

from tavelor import _native
from tavelor.constants import BOOLEAN, BYTE, BYTES, DATE, DOUBLE, INT16, INT32, MEMO, MONEY, READ_ONLY, SINGLE, TEXT
from tavelor.errors import _made

Column = collections.namedtuple("Column", "name base_table type width precision attributes", module="tavelor")
Column.__doc__ = """A column of a record set: its type is one of tavelor.INT32, TEXT...; bits of attributes are
4 may be written, 32 takes Null, 64 may hold Null, 128 is long."""
Event = collections.namedtuple("Event", "event reason status column records error", module="tavelor")
Event.__doc__ = "What a listener is told: numbers as tavelor.WILL_MOVE and the like; column is -1 for none."

_FIRST, _LAST, _NEXT, _PREVIOUS = 0, 1, 2, 3
_AS_INT32, _AS_INT64, _AS_DOUBLE, _AS_BOOL8, _AS_UNIX_US, _AS_TEXT, _AS_SINGLE, _AS_INT16 = 1, 2, 3, 4, 5, 7, 8, 9
# How numpy has a column: layout, dtype, and what a Null is where the layout has no place for it.
_LAYOUTS = {
    INT16: (_AS_INT16, "int16", True),
    BYTE: (_AS_INT16, "int16", True),
    INT32: (_AS_INT32, "int32", True),
    SINGLE: (_AS_SINGLE, "float32", False),
    DOUBLE: (_AS_DOUBLE, "float64", False),
    DATE: (_AS_UNIX_US, "datetime64[us]", False),
    BOOLEAN: (_AS_BOOL8, "bool", True),
}
_TEXTS = (_AS_TEXT, None, True)
_MONEY_LAYOUTS = {
    "float": (_AS_DOUBLE, "float64", False),
    "int": (_AS_INT64, "int64", True),
    "decimal": (_AS_INT64, "int64", True),
}


class _Texts:
    """The texts of a column, one behind the other, and where each begins."""

    def __init__(self, content, offsets, validity, is_bytes):
        self.content, self.offsets, self.validity, self.is_bytes = content, offsets, validity, is_bytes

    def array(self):
        import numpy

        made = numpy.empty(len(self.offsets) - 1, "object")
        _native.make_texts(self.content, self.offsets, self.validity, made, self.is_bytes)
        return made


class Columns(collections.abc.Mapping):
    """Columns by name, each a numpy array. Those of texts become arrays of str when they are first asked for;
    texts(name) gives them as they are kept, which copies none."""

    def __init__(self, columns):
        self._columns = columns
        self._made = {}

    def __getitem__(self, name):
        column = self._columns[name]
        if not isinstance(column, _Texts):
            return column
        made = self._made.get(name)
        if made is None:
            made = self._made[name] = column.array()
        return made

    def __iter__(self):
        return iter(self._columns)

    def __len__(self):
        return len(self._columns)

    def texts(self, name):
        """(bytes, offsets, is there) of a column of texts: text i is bytes[offsets[i]:offsets[i + 1]], in UTF-8; the
        last one is None where there is no Null."""
        import numpy

        kept = self._columns[name]
        if not isinstance(kept, _Texts):
            raise TypeError(f"{name} is no column of texts")
        there = None
        if kept.validity is not None:
            there = numpy.unpackbits(kept.validity, count=len(kept.offsets) - 1, bitorder="little").view("bool")
        return numpy.frombuffer(kept.content, "uint8"), kept.offsets, there

    def __repr__(self):
        return f"Columns({', '.join(self._columns)})"


class Recordset(_native.Recordset):
    """The rows of a statement. Iterating gives rows of the view, in its order, and leaves the cursor where it is.

    rows["Código"] is a cell of the current row, and can be written. Members of the component table (MoveNext, EOF)
    are there too.
    """

    __slots__ = ()

    @property
    def columns(self):
        """Its columns, a Column each."""
        return tuple(Column(*column) for column in self._columns())

    # ---- Position

    def first(self):
        """Goes to the first row; False without rows."""
        return self._move(_FIRST)

    def last(self):
        """Goes to the last row; False without rows."""
        return self._move(_LAST)

    def next(self):
        """Goes to the next row; False past the last one."""
        return self._move(_NEXT)

    def previous(self):
        """Goes to the row before; False before the first one."""
        return self._move(_PREVIOUS)

    def skip(self, rows):
        """Moves by so many rows, backward below 0; False when that is beyond the rows."""
        return self._move_by(rows)

    @property
    def row(self):
        """The current row, with what is in edit and pending; None where there is none."""
        position = self.position
        return None if position is None else self._row_at(position)

    def find(self, criteria, *values, skip=0, backward=False):
        """Goes to the next row that fits one comparison ("Precio > ?"); False where there is none."""
        return self._find(skip, backward, (criteria, *values))

    # ---- Cells

    def __getitem__(self, column):
        return self._cell(column)

    def __setitem__(self, column, value):
        self._set(column, value)

    def original(self, column):
        """A cell of the current row as it was read."""
        return self._cell(column, 1)

    def underlying(self, column):
        """A cell as the database had it when it was last looked at: after resync(keep_changes=True), what others
        have written."""
        return self._cell(column, 2)

    # ---- Edit

    def add(self, values=None, /, **named):
        """Adds a row with values by column, and posts it; without values it stays in edit."""
        self._add_new()
        given = {**(values or {}), **named}
        try:
            for column, value in given.items():
                self._set(column, value)
            if given:
                self.update()
        except BaseException:
            self.cancel()
            raise

    @contextlib.contextmanager
    def writing(self):
        """A block at whose end the batch is written; when it raises, all changes are dropped."""
        try:
            yield self
        except BaseException:
            self.cancel_batch()
            raise
        self.update_batch()

    @property
    def filter_text(self):
        """The filter, "" without one."""
        return self._view()[0]

    @property
    def order(self):
        """The order, "" for that of the statement."""
        return self._view()[1]

    @property
    def edit_state(self):
        """Of the current row: 0 nothing, 1 in edit, 2 being added, 4 deleted."""
        return self._state()[0]

    @property
    def row_status(self):
        """Bits of the current row: 1 new, 2 changed, 4 deleted, 8 as read, 16 refused, 0x800 changed by others."""
        return self._state()[1]

    def on(self, handler, *events):
        """Tells handler(Event) of events, all without any named; False out of a WILL_... says no. Keep what this
        gives: the handler is told as long as it is there."""
        wanted = frozenset(events)

        def told(event, *rest):
            return handler(Event(event, *rest)) if not wanted or event in wanted else None

        return self.listen(told)

    # ---- Many rows at once

    def numpy(self, *names, money="float"):
        """The view's columns as numpy arrays, by name; all without any named: Columns.

        Numbers and flags are as wide as they are stored; in columns with Nulls whole numbers and flags are masked
        arrays, other numbers are NaN and dates NaT there, texts None. Money is euros ("float"), ten-thousandths
        ("int") or Decimal ("decimal", one by one).
        """
        import numpy

        if money not in _MONEY_LAYOUTS:
            raise ValueError(f"money: is one of {', '.join(_MONEY_LAYOUTS)}, not {money!r}")
        rows = len(self)
        columns = self._columns()
        places = self._places(columns, names)
        wishes, found = [], []
        for place in places:
            of = columns[place][2]
            layout, dtype, masks = _MONEY_LAYOUTS[money] if of == MONEY else _LAYOUTS.get(of, _TEXTS)
            is_text = layout == _AS_TEXT
            validity = numpy.empty((rows + 7) // 8, "uint8") if masks else None
            offsets = numpy.empty(rows + 1, "int64") if is_text else None
            values = bytearray(16) if is_text else numpy.empty(rows, dtype)
            # The memory of dates and flags cannot be lent as such.
            raw = values.view("int64") if layout == _AS_UNIX_US else values
            raw = raw.view("uint8") if layout == _AS_BOOL8 else raw
            wishes.append((place, layout, raw, validity, offsets))
            found.append((of, values, validity, offsets))
        nulls = self._read_columns(rows, wishes)
        arrays = {}
        for place, (of, values, validity, offsets), count in zip(places, found, nulls):
            if offsets is not None:
                values = _Texts(values, offsets, validity if count else None, of == BYTES)
            elif validity is not None and count:
                holds = numpy.unpackbits(validity, count=rows, bitorder="little").view("bool")
                values = numpy.ma.MaskedArray(values, mask=~holds)
            if of == MONEY and money == "decimal":
                values = _decimals(numpy, values)
            arrays[_free(columns[place][0], arrays)] = values
        return Columns(arrays)

    def _places(self, columns, names):
        if not names:
            return range(len(columns))
        places = {}
        for place, column in reversed(list(enumerate(columns))):
            places[column[0].casefold()] = place
        missing = [name for name in names if str(name).casefold() not in places]
        if missing:
            known = ", ".join(column[0] for column in columns)
            raise _made(
                3265, 2, "Recordset", f"There is no column {missing[0]!r}", f"there are {known}", "", "", (), -1, 0, 0, 0
            )
        return [places[name.casefold()] for name in names]

    def pandas(self, *names, money="float"):
        """The view's columns as a pandas.DataFrame; as numpy() has them, masked arrays as its own types with Nulls."""
        import numpy
        import pandas

        def column(values):
            if not isinstance(values, numpy.ma.MaskedArray):
                return values
            of = pandas.arrays.BooleanArray if values.dtype == bool else pandas.arrays.IntegerArray
            return of(values.data, numpy.ma.getmaskarray(values))

        return pandas.DataFrame({name: column(values) for name, values in self.numpy(*names, money=money).items()})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


def _decimals(numpy, values):
    made = numpy.empty(len(values), "object")
    held = numpy.ma.getmaskarray(values)
    scale = decimal.Decimal(10000)
    for place, number in enumerate(numpy.ma.getdata(values).tolist()):
        made[place] = None if held[place] else decimal.Decimal(number) / scale
    return made


def _free(name, taken):
    """The name, or the next free one of a column that is there twice."""
    count = 1
    free = name
    while free in taken:
        count += 1
        free = f"{name}_{count}"
    return free


class Connection(_native.Connection):
    """An open connection to a database. Members of the component table are there too."""

    __slots__ = ()

    def query(self, statement, *values, lock=READ_ONLY):
        """The rows of a SELECT; each question mark in it is the next of the values. Changes are refused
        (READ_ONLY), written a row at a time (AT_ONCE), or by update_batch() (BATCH)."""
        return self._open(lock, (statement, *values))

    @contextlib.contextmanager
    def transaction(self):
        """A transaction, or one inside the one that is open: stored at the end of the block, undone when it raises."""
        self.begin()
        try:
            yield self
        except BaseException:
            self.rollback()
            raise
        self.commit()
