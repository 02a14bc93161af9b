# SPDX-License-Identifier: MIT
"""The Arrow stream, read as its readers do: through the structs, with no library of Arrow's."""

import ctypes
import datetime
import decimal
import gc
import threading

import pytest
import tavelor
from conftest import TYPED, typed_rows, typed_values


class Schema(ctypes.Structure):
    pass


class Array(ctypes.Structure):
    pass


class Stream(ctypes.Structure):
    pass


Schema._fields_ = [
    ("format", ctypes.c_char_p), ("name", ctypes.c_char_p), ("metadata", ctypes.c_char_p), ("flags", ctypes.c_int64),
    ("n_children", ctypes.c_int64), ("children", ctypes.POINTER(ctypes.POINTER(Schema))),
    ("dictionary", ctypes.POINTER(Schema)), ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Schema))),
    ("private_data", ctypes.c_void_p),
]
Array._fields_ = [
    ("length", ctypes.c_int64), ("null_count", ctypes.c_int64), ("offset", ctypes.c_int64),
    ("n_buffers", ctypes.c_int64), ("n_children", ctypes.c_int64), ("buffers", ctypes.POINTER(ctypes.c_void_p)),
    ("children", ctypes.POINTER(ctypes.POINTER(Array))), ("dictionary", ctypes.POINTER(Array)),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Array))), ("private_data", ctypes.c_void_p),
]
Stream._fields_ = [
    ("get_schema", ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(Stream), ctypes.POINTER(Schema))),
    ("get_next", ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(Stream), ctypes.POINTER(Array))),
    ("get_last_error", ctypes.CFUNCTYPE(ctypes.c_char_p, ctypes.POINTER(Stream))),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Stream))),
    ("private_data", ctypes.c_void_p),
]

pointer_of = ctypes.pythonapi.PyCapsule_GetPointer
pointer_of.restype = ctypes.c_void_p
pointer_of.argtypes = [ctypes.py_object, ctypes.c_char_p]


def taken(capsule):
    """The stream, moved out of its capsule as a reader does."""
    there = Stream.from_address(pointer_of(capsule, b"arrow_array_stream"))
    mine = Stream()
    ctypes.memmove(ctypes.byref(mine), ctypes.byref(there), ctypes.sizeof(Stream))
    there.release = type(there.release)()
    return mine


def schema_of(stream):
    schema = Schema()
    assert stream.get_schema(stream, schema) == 0
    return schema


def batches_of(stream):
    while True:
        array = Array()
        assert stream.get_next(stream, array) == 0
        if not array.release:
            return
        yield array


EPOCH = datetime.datetime(1970, 1, 1)


def cells(array, form):
    """One column's values, by its format."""
    assert array.offset == 0 and array.n_children == 0
    rows = array.length
    assert array.n_buffers == (3 if form in ("U", "Z") else 2)
    valid = array.buffers[0]
    assert valid or array.null_count == 0
    bits = ctypes.string_at(valid, (rows + 7) // 8) if valid else b"\xff" * (rows // 8 + 1)
    is_there = [bits[i // 8] >> (i % 8) & 1 for i in range(rows)]
    assert is_there.count(0) == array.null_count

    def numbers(of, count):
        return list((of * count).from_address(array.buffers[1])) if count else []

    if form in ("U", "Z"):
        offsets = numbers(ctypes.c_int64, rows + 1)
        content = ctypes.string_at(array.buffers[2], offsets[-1])
        raw = [content[offsets[i] : offsets[i + 1]] for i in range(rows)]
        found = [text.decode("utf-8") for text in raw] if form == "U" else raw
    elif form == "b":
        packed = numbers(ctypes.c_uint8, (rows + 7) // 8)
        found = [bool(packed[i // 8] >> (i % 8) & 1) for i in range(rows)]
    elif form == "d:19,4":
        raw = ctypes.string_at(array.buffers[1], rows * 16)
        found = [
            decimal.Decimal(int.from_bytes(raw[16 * i : 16 * i + 16], "little", signed=True)).scaleb(-4)
            for i in range(rows)
        ]
    elif form == "tsu:":
        found = [
            EPOCH + datetime.timedelta(microseconds=moment) if there else None
            for moment, there in zip(numbers(ctypes.c_int64, rows), is_there)
        ]
    else:
        of = {"s": ctypes.c_int16, "i": ctypes.c_int32, "f": ctypes.c_float, "g": ctypes.c_double}[form]
        found = numbers(of, rows)
    return [value if there else None for value, there in zip(found, is_there)]


def read(capsule):
    """(names, formats, rows) of a stream."""
    stream = taken(capsule)
    schema = schema_of(stream)
    assert schema.format == b"+s"
    names = [schema.children[i].contents.name.decode() for i in range(schema.n_children)]
    forms = [schema.children[i].contents.format.decode() for i in range(schema.n_children)]
    schema.release(schema)
    assert not schema.release
    rows = []
    for batch in batches_of(stream):
        assert batch.n_children == len(names) and batch.n_buffers == 1 and batch.null_count == 0
        columns = [cells(batch.children[i].contents, forms[i]) for i in range(len(names))]
        assert all(len(column) == batch.length for column in columns)
        rows += zip(*columns)
        batch.release(batch)
        assert not batch.release
    stream.release(stream)
    assert not stream.release
    return names, forms, rows


@pytest.mark.parametrize("rows", [0, 1, 3, 8, 9, 64, 65, 1000])
def test_all_types_nulls_and_texts_arrive(shop, rows):
    names, forms, found = read(typed_rows(shop, rows).__arrow_c_stream__())
    assert names == list(TYPED)
    assert forms == ["s", "i", "f", "g", "d:19,4", "tsu:", "b", "s", "U", "U", "Z"]
    assert found == list(typed_values(rows))


def test_rows_beyond_a_batch_come_in_the_next(shop):
    statement = "SELECT a.Codigo FROM Bancos AS a"
    for name in "bcdefghijklmnopq":
        statement += f", Bancos AS {name}"
    rows = shop.query(statement)
    assert len(rows) == 2**17
    stream = taken(rows.__arrow_c_stream__())
    sizes = []
    for batch in batches_of(stream):
        sizes.append(batch.length)
        batch.release(batch)
    stream.release(stream)
    assert sizes == [65536, 65536]


def test_a_view_is_exported_as_it_is_shown(shop):
    rows = typed_rows(shop, 20)
    rows.filter("whole > 1000000")
    rows.sort("whole DESC")
    assert [row[1] for row in read(rows.__arrow_c_stream__())[2]] == [row.whole for row in rows]


def test_two_streams_of_one_set_know_nothing_of_each_other(shop):
    rows = typed_rows(shop, 5)
    first, second = rows.__arrow_c_stream__(), rows.__arrow_c_stream__(None)
    rows.first()
    rows["whole"] = 77
    rows.update()
    assert read(second)[2] == read(first)[2] == list(typed_values(5))
    assert read(rows.__arrow_c_stream__())[2][0][1] == 77


def test_a_stream_lives_without_its_shop_and_on_any_thread(folder):
    shop = tavelor.open(folder)
    capsule = typed_rows(shop, 50).__arrow_c_stream__()
    shop.close()
    del shop
    gc.collect()
    found = []
    thread = threading.Thread(target=lambda: found.append(read(capsule)))
    thread.start()
    thread.join()
    assert found[0][2] == list(typed_values(50))


def test_what_is_not_read_to_its_end_is_released(shop):
    rows = typed_rows(shop, 5)
    capsule = rows.__arrow_c_stream__()
    del capsule  # never read
    stream = taken(rows.__arrow_c_stream__())
    schema = schema_of(stream)
    stream.release(stream)  # before its schema, and before any batch
    assert schema.n_children == len(TYPED)
    schema.release(schema)
    stream = taken(rows.__arrow_c_stream__())
    batch = next(batches_of(stream))
    stream.release(stream)  # the batch has its own memory
    assert cells(batch.children[1].contents, "i")[1] == 100_000
    batch.release(batch)


def test_a_child_may_be_moved_out_and_outlive_its_batch(shop):
    stream = taken(typed_rows(shop, 5).__arrow_c_stream__())
    batch = next(batches_of(stream))
    child = batch.children[8].contents
    mine = Array()
    ctypes.memmove(ctypes.byref(mine), ctypes.byref(child), ctypes.sizeof(Array))
    child.release = type(child.release)()
    batch.release(batch)
    stream.release(stream)
    assert cells(mine, "U")[0] == next(typed_values(1))[8]
    mine.release(mine)
    assert not mine.release


def test_a_set_that_is_closed_exports_nothing(shop):
    rows = typed_rows(shop, 2)
    rows.close()
    with pytest.raises(tavelor.ClosedError):
        rows.__arrow_c_stream__()
