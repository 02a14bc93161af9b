# SPDX-License-Identifier: MIT
"""Members of the component table as Python's own calls."""

import decimal
import inspect
import pickle

import pytest
import tavelor


def test_a_member_gives_a_named_tuple_of_its_outputs(shop):
    found = shop.ClsArticulos.GetDatos("A1")
    assert type(found).__name__ == "clsArticulos_GetDatos"
    assert found.vId == "A1" and found.sDescripcion == "Barra de pa" and found.dPrecio == 1.1
    assert found._fields[:3] == ("vId", "sDescripcion", "sSeccion")
    assert "objCn" not in found._fields


def test_a_member_without_outputs_gives_its_result(shop):
    assert shop.ClsArticulos.GetDescripcion("A1") == "Barra de pa"
    assert shop.ClsArticulos.ExisteArt("A1") is True
    assert shop.ClsArticulos.ExisteArt("B1") is False


def test_a_result_stands_before_the_outputs(shop):
    found = shop.ClsArticulos.ObtenerDescripcion("A1")
    assert found == (True, "Barra de pa")
    assert found.result is True and found.sDescrip == "Barra de pa"


def test_outputs_travel_to_another_process(shop):
    found = shop.ClsArticulos.GetDatos("A1")
    again = pickle.loads(pickle.dumps(found))
    assert again == found and type(again) is type(found)
    assert tavelor.clsArticulos_GetDatos is type(found)


def test_arguments_go_by_name_too(shop):
    articles = shop.ClsArticulos
    assert articles.GetDatos(vId="A1") == articles.GetDatos("A1")
    assert articles.GetDatos("A1", sTarifa="B").dPrecio == 0
    assert articles.ExisteArtEnLista(sLista="PRC", vId="A1") is True


@pytest.mark.parametrize(
    ("call", "says"),
    [
        (lambda a: a.GetDatos(), "vId is missing"),
        (lambda a: a.GetPrecioTarifa("A1"), "sTarifa is missing"),
        (lambda a: a.GetPrecioTarifa("A1", "A", None, 4), "takes 3 arguments at most, not 4"),
        (lambda a: a.GetPrecioTarifa("A1", vId="A1"), "vId is given twice"),
        (lambda a: a.GetPrecioTarifa("A1", sTarif="A"), "no parameter is called sTarif"),
        (lambda a: type(a).GetPrecioTarifa(3, "A1", "A"), "of an object of the class"),
        (lambda a: type(a).GetPrecioTarifa(), "of an object of the class"),
    ],
)
def test_a_call_that_does_not_fit_says_what(shop, call, says):
    with pytest.raises(TypeError, match=says):
        call(shop.ClsArticulos)


def test_a_member_of_another_class_is_refused(shop):
    with pytest.raises(tavelor.BadValueError) as caught:
        type(shop.ClsArticulos).GetPrecioVenta(shop.ClsBancos, "A1")
    assert caught.value.number == 13


def test_names_are_found_in_any_case_and_near_ones_are_told(shop):
    assert shop.clsarticulos is shop.ClsArticulos is shop.clsArticulos
    assert shop.ClsArticulos.getprecioventa("A1") == shop.ClsArticulos.GetPrecioVenta("A1")
    with pytest.raises(AttributeError, match="clsArticulos"):
        shop.ClsArticulo
    with pytest.raises(AttributeError, match="GetDatos"):
        shop.ClsArticulos.GetDato
    with pytest.raises(AttributeError):
        tavelor.ClsNothing
    with pytest.raises(AttributeError):
        shop.ClsArticulos.sClasName = 3


def test_each_object_of_a_class_has_its_own_cursor(shop):
    banks, others = shop.ClsBancos, shop.ClsBancos()
    assert banks is shop.ClsBancos and others is not banks and others != banks
    banks.IniciaRs("todos")
    others.IniciaRs("todos")
    others.MoveNext()
    assert (banks.AbsolutePosition, others.AbsolutePosition) == (1, 2)
    assert shop.new(banks.identifier) != banks
    assert tavelor.ClsBancos(shop).sClassName == "Bancos"


def test_properties_are_read_and_written(shop):
    lines = shop.ClsRegistros
    lines.Cantidad = 3
    assert lines.Cantidad == 3
    with pytest.raises(AttributeError, match="can only be read"):
        shop.ClsBancos.sClassName = "x"


def test_lists_are_lists(shop):
    found = shop.ClsArticulos.ObtenerCol_Tarifas()
    assert isinstance(found, list) and all(isinstance(entry, str) for entry in found)


def test_members_tell_what_they_do():
    member = tavelor.ClsArticulos.GetDatos
    assert member.__doc__.startswith("GetDatos(inout vId As Variant")
    assert "A usable article of the list" in member.__doc__
    signature = inspect.signature(member)
    assert list(signature.parameters)[:4] == ["self", "vId", "sDescripcion", "sTarifa"]
    assert signature.parameters["vId"].default is inspect.Parameter.empty
    assert signature.parameters["mbIsProvider"].default is False
    assert tavelor.ClsArticulos.__doc__
    assert "ClsBancos" in tavelor.classes()


def test_an_error_tells_number_source_and_description(shop):
    with pytest.raises(tavelor.NotFoundError) as caught:
        shop.query("SELECT Codigo\nFROM Nada WHERE x = ?", "o'hara")
    error = caught.value
    assert error.number == -2147217865 and "Nada" in error.description and error.source
    assert error.place[1:] == (2, 6) and "Nada" in error.statement
    assert isinstance(error, LookupError) and str(error.number) in str(error)
    again = pickle.loads(pickle.dumps(error))
    assert (type(again), again.number, again.place) == (type(error), error.number, error.place)


def test_an_object_is_an_argument(shop):
    connection = shop.connection()
    prices = "SELECT Tarifa_A FROM Articulos WHERE Codigo = ?"
    with pytest.raises(ZeroDivisionError), connection.transaction():
        shop.ClsArticulos.ActualizarTarifa("A1", 2.5, "A", connection)
        assert connection.query(prices, "A1")[0] == decimal.Decimal("2.5")
        with pytest.raises(tavelor.BadValueError):
            shop.ClsArticulos.ExisteArt("A1", shop.ClsBancos)
        1 / 0
    assert connection.query(prices, "A1")[0] == decimal.Decimal("1.1")
    with tavelor.open(shop.folder) as other:
        with pytest.raises(tavelor.ArgumentError):
            shop.ClsArticulos.ExisteArt("A1", other.connection())


def test_prompts_are_answered(shop):
    asked = []
    shop.on_prompt(lambda kind, severity, text, title: asked.append((kind, text)) or True)
    shop.on_prompt(None)
    with pytest.raises(TypeError):
        shop.on_prompt(3)
    assert asked == []
