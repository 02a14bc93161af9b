# SPDX-License-Identifier: MIT
"""The classes of what comes back: outputs of members, rows of record sets."""

import collections
import functools
import keyword

_results = {}


def result(owner, member, names):
    """The named tuple of a member's outputs, tavelor.clsArticulos_GetDatos: `result` first, where there is one."""
    name = f"{owner}_{member}"
    made = _results.get(name)
    if made is None:
        fields = [field + "_" if keyword.iskeyword(field) else field for field in names]
        made = collections.namedtuple(name, fields, rename=True, module="tavelor")
        made.__doc__ = f"What {owner}.{member} gives."
        _results[name] = made
    return made


class Row(tuple):
    """A row: its values by position, by name (row["Código"]), and by attribute where the name is one."""

    __slots__ = ()
    _fields = ()
    _places = {}

    def __getitem__(self, key):
        if isinstance(key, str):
            place = self._places.get(key)
            if place is None:
                place = self._places.get(key.casefold())
            if place is None:
                raise KeyError(f"the row has no column {key!r}; it has {', '.join(self._fields)}")
            return tuple.__getitem__(self, place)
        return tuple.__getitem__(self, key)

    def __getattr__(self, name):
        place = self._places.get(name)
        if place is None:
            place = self._places.get(name.casefold())
        if place is None:
            raise AttributeError(f"the row has no column {name!r}; it has {', '.join(self._fields)}")
        return tuple.__getitem__(self, place)

    def _asdict(self):
        """The values by the columns' names."""
        return dict(zip(self._fields, self))

    def __repr__(self):
        return f"Row({', '.join(f'{name}={value!r}' for name, value in zip(self._fields, self))})"

    def __reduce__(self):
        return _row, (self._fields, tuple(self))


@functools.lru_cache(maxsize=256)
def row_type(names):
    """The class of the rows with these columns."""
    places = {}
    for place, name in reversed(list(enumerate(names))):
        places[name.casefold()] = place
    for place, name in reversed(list(enumerate(names))):
        places[name] = place  # the first of two of one name
    return type("Row", (Row,), {"__slots__": (), "_fields": names, "_places": places, "__module__": "tavelor"})


def _row(names, values):
    return tuple.__new__(row_type(names), values)
