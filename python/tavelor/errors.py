# SPDX-License-Identifier: MIT
"""What the library raises, one class for each thing that a program does about an error."""


class Error(Exception):
    """An error of the library. Its text is the description, with what helps below it.

    number       as programs test for it: 13 for a wrong type, -2147217864 for a changed row
    source       the class or part that raised it: "ClsBancos", "Recordset"
    description  what went wrong, for people
    notes        what it was about (a table, a key) and what helps, one a line
    message      all of it, for a log
    statement    the statement that failed, or ""
    place        (byte, line, column) of the fault in the statement, or None
    native_code  the engine's own result code, or 0
    """

    number = 0
    source = ""
    description = ""
    notes = ""
    message = ""
    statement = ""
    place = None
    native_code = 0

    def __str__(self):
        text = f"{self.description} ({self.number}, {self.source})"
        return f"{text}\n{self.notes}" if self.notes else text

    def __reduce__(self):
        return _rebuilt, (type(self), self.args, self.__dict__)


def _rebuilt(of, arguments, content):
    error = of(*arguments)
    error.__dict__.update(content)
    return error


class ArgumentError(Error, ValueError):
    """A call that makes no sense: the program is wrong."""


class RefusedSale(ArgumentError):
    """A sale that is refused, with all that is wrong in `faults`: (line or None, article, sentence)."""

    faults = ()


class BadValueError(Error, ValueError):
    """A value of the wrong type, too large, too long, or Null."""


class NotFoundError(Error, LookupError):
    """No such row, column, table, file, class or member."""


class ConflictError(Error):
    """Somebody else has changed or deleted the row."""


class IntegrityError(Error):
    """A key that is there already, or a Null that a table refuses."""


class BusyError(Error):
    """Locked by somebody else: try again."""


class ClosedError(Error):
    """What is not open, not there yet, or gone."""


class NotAllowedError(Error):
    """Not now, or not with this object."""


class CancelledError(Error):
    """A listener or the program has said no."""


class StatementError(Error):
    """A statement that does not read."""


class EngineError(Error):
    """The file, the disk, the engine or the line to it."""


# In the order of the numbers of the C interface.
_KINDS = (
    ArgumentError,
    BadValueError,
    NotFoundError,
    ConflictError,
    IntegrityError,
    BusyError,
    ClosedError,
    NotAllowedError,
    CancelledError,
    StatementError,
    EngineError,
    Error,
)


def _made(number, kind, source, description, notes, message, statement, faults, position, line, column, native_code):
    """What the extension module makes an exception with."""
    of = _KINDS[kind] if 0 <= kind < len(_KINDS) else Error
    error = (RefusedSale if faults else of)(description)
    error.number = number
    error.source = source
    error.description = description
    error.notes = notes
    error.message = message or description
    error.statement = statement
    error.place = (position, line, column) if position >= 0 else None
    error.native_code = native_code
    if faults:
        error.faults = tuple((line or None, article, sentence) for line, article, sentence in faults)
    return error
