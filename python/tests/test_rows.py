# SPDX-License-Identifier: MIT
"""Record sets: rows, columns, cursor, view, edit, events."""

import pickle

import numpy
import pytest
import tavelor
from conftest import TYPED, typed_rows, typed_values


@pytest.mark.parametrize("rows", [0, 1, 2, 255, 256, 257, 600])
def test_rows_come_in_the_views_order_and_the_cursor_stays(shop, rows):
    made = typed_rows(shop, rows)
    made.first()
    assert [tuple(row) for row in made] == list(typed_values(rows))
    assert len(made) == rows
    assert made.position == (0 if rows else None)


def test_a_row_is_a_tuple_with_names(shop):
    rows = shop.query("SELECT Codigo, Banco AS [El Banco], Codigo AS Otro FROM Bancos ORDER BY Codigo")
    row = next(iter(rows))
    assert row == tuple(row) and row._fields == ("Codigo", "El Banco", "Otro")
    assert row.Codigo == row["codigo"] == row[0] == row[-1] == row.otro
    assert row["El Banco"] == "Banco de Ahorro" and row[:2] == (row.Codigo, "Banco de Ahorro")
    with pytest.raises(KeyError, match="no column 'Nada'; it has Codigo"):
        row["Nada"]
    with pytest.raises(AttributeError):
        row.Nada
    with pytest.raises(IndexError):
        row[3]
    again = pickle.loads(pickle.dumps(row))
    assert again == row and again.otro == row.Otro
    assert row._asdict()["El Banco"] == "Banco de Ahorro"


def test_rows_follow_filter_and_order(shop):
    rows = typed_rows(shop, 30)
    rows.filter("whole >= ? AND flag = ?", 300_000, True)
    rows.sort("whole DESC")
    assert [row.whole for row in rows] == [2800000, 2400000, 2200000, 1800000, 1600000, 1200000, 1000000, 600000, 400000]
    assert rows.filter_text and rows.order == "whole DESC"
    assert rows.find("whole < ?", 2_000_000) and rows["whole"] == 1800000 and rows.row.whole == 1800000
    assert not rows.find("whole = ?", 7) and rows.row is None and rows.position is None
    rows.filter()
    assert len(rows) == 30
    with pytest.raises(tavelor.Error):
        rows.filter("whole >< 3")
    assert len(rows) == 30


def test_the_cursor_moves(shop):
    rows = typed_rows(shop, 4)
    assert rows.first() and rows.position == 0 and not rows.previous() and rows.position is None
    assert rows.last() and rows.position == 3 and not rows.next()
    rows.position = 1
    bookmark = rows.bookmark
    assert rows.skip(2) and rows["whole"] == 300_000 and not rows.skip(9)
    rows.bookmark = bookmark
    assert rows["whole"] == 100_000
    for wrong in (-1, 4, 2**40, 2**31 - 1):
        with pytest.raises((IndexError, tavelor.Error)):
            rows.position = wrong
    with pytest.raises(TypeError):
        rows.position = "1"
    with pytest.raises(AttributeError):
        del rows.position


def test_columns_are_told(shop):
    columns = shop.query("SELECT Codigo, Banco, 1 + 1 AS Dos FROM Bancos").columns
    assert [column.name for column in columns] == ["Codigo", "Banco", "Dos"]
    assert columns[1].base_table == "Bancos" and columns[1].type == tavelor.TEXT and columns[2].base_table == ""


@pytest.mark.parametrize("rows", [0, 1, 7, 8, 9, 2047, 2048, 2049, 5000])
def test_columns_become_arrays(shop, rows):
    found = typed_rows(shop, rows).numpy()
    values = list(typed_values(rows))
    assert list(found) == list(TYPED)
    types = {name: array.dtype.str for name, array in found.items()}
    assert types == dict(small="<i2", whole="<i4", single="<f4", double="<f8", money="<f8", date="<M8[us]",
                         flag="|b1", byte="<i2", text="|O", memo="|O", bytes="|O")
    for place, name in enumerate(TYPED):
        array, wanted = found[name], [row[place] for row in values]
        nulls = [value is None for value in wanted]
        assert len(array) == rows
        if name in ("small", "whole", "flag", "byte"):
            assert isinstance(array, numpy.ma.MaskedArray) == any(nulls)
            assert numpy.ma.getmaskarray(array).tolist() == nulls
        elif name == "date":
            assert numpy.isnat(array).tolist() == nulls
        elif name in ("single", "double", "money"):
            assert numpy.isnan(array).tolist() == nulls
            array = numpy.where(nulls, None, array)
            wanted = [value if value is None else float(value) for value in wanted]
        found_values = [None if null else value for value, null in zip(array.tolist(), nulls)]
        if name == "single":
            wanted = [value if value is None else float(numpy.float32(value)) for value in wanted]
        assert found_values == wanted, name


def test_money_is_exact_where_one_wants_it(shop):
    rows = typed_rows(shop, 10)
    wanted = [row[4] for row in typed_values(10)]
    assert rows.numpy("money", money="decimal")["money"].tolist() == wanted
    assert rows.numpy("money", money="int")["money"][1] == int(wanted[1] * 10000)
    with pytest.raises(ValueError, match="float, int, decimal"):
        rows.numpy(money="euros")


def test_some_columns_by_name(shop):
    rows = typed_rows(shop, 3)
    assert list(rows.numpy("TEXT", "whole")) == ["text", "whole"]
    with pytest.raises(tavelor.NotFoundError, match="no column 'nada'"):
        rows.numpy("nada")
    twice = shop.query("SELECT Codigo, Codigo FROM Bancos").numpy()
    assert len(twice) == 2


def test_texts_that_are_the_same_are_one(shop):
    rows = shop.rows(("text", tavelor.TEXT, 20))
    for i in range(300):
        rows.add(text=f"family {i % 3}")
    array = rows.numpy()["text"]
    assert array[0] is array[3] and array.tolist() == [f"family {i % 3}" for i in range(300)]


def test_texts_are_there_without_an_object_each(shop):
    columns = typed_rows(shop, 20).numpy()
    content, offsets, there = columns.texts("text")
    wanted = [row[8] for row in typed_values(20)]
    found = [bytes(content[offsets[i] : offsets[i + 1]]).decode() if there[i] else None for i in range(20)]
    assert found == wanted == columns["text"].tolist()
    assert columns["text"] is columns["text"]
    assert shop.query("SELECT Codigo FROM Bancos").numpy().texts("Codigo")[2] is None
    with pytest.raises(TypeError, match="no column of texts"):
        columns.texts("whole")
    with pytest.raises(KeyError):
        columns["nada"]


def test_a_wide_text_grows_its_room(shop):
    rows = shop.rows(("memo", tavelor.MEMO), ("whole", tavelor.INT32))
    sizes = [0, 5, 1_000_000, 3, 70_000, 2_000_000, 1]
    for i, size in enumerate(sizes):
        rows.add(memo="ñ" * size, whole=i)
    assert [len(row.memo) for row in rows] == sizes
    assert [len(text) for text in rows.numpy()["memo"]] == sizes


def test_frames_keep_nulls(shop):
    pandas = pytest.importorskip("pandas")
    frame = typed_rows(shop, 9).pandas()
    assert frame["whole"].dtype == "Int32" and frame["flag"].dtype == "boolean" and frame["date"].dtype.kind == "M"
    assert frame["whole"].isna().sum() == 3 and frame["text"].isna().sum() == 3
    assert frame["whole"].sum() == sum(row[1] or 0 for row in typed_values(9))
    assert isinstance(frame, pandas.DataFrame) and frame.shape == (9, 11)


# ---- Edit


def test_changes_wait_for_their_batch(shop):
    rows = shop.query("SELECT * FROM Bancos ORDER BY Codigo", lock=tavelor.BATCH)
    with rows.writing():
        rows["Banco"] = "Otro"
        rows.update()
        assert rows.original("Banco") == "Banco de Ahorro" and rows.unwritten and rows.row_status & 2
        rows.add({"Codigo": "0099", "Banco": "Nuevo d'Or"})
    assert not rows.unwritten
    assert [row.Banco for row in shop.query("SELECT Banco FROM Bancos ORDER BY Codigo")] == [
        "Otro", "Caja Rural d'Urgell", "Nuevo d'Or",
    ]
    with pytest.raises(ZeroDivisionError), rows.writing():
        rows.first()
        rows.delete()
        1 / 0
    rows.requery()
    assert len(rows) == 3


def test_a_conflict_is_an_exception_of_its_own(shop):
    mine = shop.query("SELECT * FROM Bancos ORDER BY Codigo", lock=tavelor.BATCH)
    shop.execute("UPDATE Bancos SET Banco = ? WHERE Codigo = ?", "Suyo", mine["Codigo"])
    mine["Banco"] = "Mío"
    mine.update()
    with pytest.raises(tavelor.ConflictError) as caught:
        mine.update_batch()
    assert caught.value.number == -2147217864
    mine.filter_group(tavelor.CONFLICTING)
    assert len(mine) == 1
    mine.filter()
    mine.resync(tavelor.CURRENT_ROW, True)
    assert mine.underlying("Banco") == "Suyo" and mine["Banco"] == "Mío"
    mine.update_batch()
    assert shop.query("SELECT Banco FROM Bancos WHERE Codigo = ?", mine["Codigo"])[0] == "Mío"


def test_what_is_refused_leaves_no_row(shop):
    rows = shop.query("SELECT * FROM Bancos", lock=tavelor.AT_ONCE)
    with pytest.raises(tavelor.IntegrityError):
        rows.add(Codigo=rows["Codigo"], Banco="Twice")
    with pytest.raises(tavelor.NotFoundError):
        rows.add(Codigo="0098", Nada=1)
    assert len(rows) == 2 and len(shop.query("SELECT * FROM Bancos")) == 2
    locked = shop.query("SELECT * FROM Bancos")
    with pytest.raises(tavelor.Error):
        locked["Banco"] = "x"


def test_a_clone_has_a_cursor_of_its_own(shop):
    rows = typed_rows(shop, 5)
    other = rows.clone()
    other.last()
    rows.first()
    assert (rows.position, other.position) == (0, 4)
    with pytest.raises(tavelor.Error):
        rows.clone(True)["whole"] = 3


# ---- Events


def test_a_listener_hears_and_says_no(shop):
    rows = typed_rows(shop, 3)
    rows.first()
    heard = []
    listener = rows.on(heard.append, tavelor.MOVED)
    rows.next()
    assert [event.event for event in heard] == [tavelor.MOVED]
    guard = rows.on(lambda event: event.event != tavelor.WILL_CHANGE_FIELD)
    with pytest.raises(tavelor.CancelledError):
        rows["whole"] = 7
    assert rows["whole"] == 100_000
    guard.remove()
    rows["whole"] = 7
    assert rows["whole"] == 7
    del listener
    count = len(heard)
    rows.next()
    assert len(heard) == count


def test_an_exception_of_a_listener_comes_out_of_the_call(shop):
    rows = typed_rows(shop, 3)

    def raising(event):
        raise ZeroDivisionError(event.event)

    guard = rows.on(raising, tavelor.WILL_CHANGE_FIELD)
    rows.first()
    with pytest.raises(ZeroDivisionError, match=str(tavelor.WILL_CHANGE_FIELD)):
        rows["whole"] = 7
    assert rows["whole"] == 0
    guard.remove()
    guard.remove()
    rows["whole"] = 7


def test_a_listener_may_remove_itself_and_close_nothing_above_it(shop):
    rows = typed_rows(shop, 3)
    held = []

    def once(event):
        held.pop().remove()
        with pytest.raises(tavelor.NotAllowedError, match="in use"):
            shop.close()

    rows.first()
    held.append(rows.on(once))
    rows.next()
    rows.next()
    assert not held and rows.position == 2
