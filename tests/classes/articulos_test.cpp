// SPDX-License-Identifier: MIT
// clsArticulos: modes, flags and single values.
#include "tests/classes/articulos.hpp"

#include "tavelor/frame/component.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kTodos =
    "SELECT Codigo as Código, Lista, Referencia, Descripcion as Descripción, Idioma_1, Idioma_2, "
    "Idioma_3,Idioma_4, Idioma_5, Idioma_6, Seccion as Sección, Familia, Tarifa_A, Tarifa_B, "
    "Tarifa_C, Impuesto, Precio_Coste as Coste, Precio_Medio as Promedio, Descuento, Descuento_D, "
    "Existencia, Unidad_Stock as Unidad, Minimo as Mínimo, Maximo as Máximo, Pendiente, Activo, "
    "Unidad_Compra as Unidades, Medida_Compra as Medida, Actualizar_Stock as Control, Lotes, "
    "Articulo_Compuesto as Paquete, Interno, Valor_Interno as Valor, Empleado, Merma, Margen, "
    "Margen_b, Margen_c, No_sumar, Repetir, Fecha, Fabricante, Planificar, Restar_Stock, "
    "Precio_Venta FROM Articulos";
const std::string kBreve =
    "SELECT Codigo AS Código, Descripcion AS Descripción , Referencia, Idioma_1, Idioma_2, "
    "Idioma_3,Seccion as Sección, Familia, Tarifa_A, Tarifa_B, Tarifa_C FROM Articulos";
const std::string kSinTarifas =
    "SELECT Codigo AS Código, Descripcion AS Descripción , Referencia, Idioma_1, Idioma_2, "
    "Idioma_3,Seccion as Sección, Familia FROM Articulos";
const std::string kConExistencia =
    "SELECT Codigo AS Código, Descripcion AS Descripción , Existencia, Precio_Medio as Promedio, "
    "Referencia, Idioma_1, Idioma_2, Idioma_3,Seccion as Sección, Familia, Tarifa_A, Tarifa_B, "
    "Tarifa_C FROM Articulos";

class ClsArticulosTest : public testing::Test, protected test::ArticleShop {
 protected:
  /// Codes that a mode shows, in the order of codes, which it opens in.
  std::vector<std::string> codes(std::string word, const Variant& id = {}) {
    articles.IniciaRs(word, id);
    std::vector<std::string> found;
    const RecordsetPtr rows = articles.DataMember("Primary");
    for (; !rows->Eof(); rows->MoveNext()) found.push_back(text(rows->Field(0).Value()));
    return found;
  }
};

// ---- The component

TEST(ClsArticulos, TheSlotsOfItsOwnMembersStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : clsArticulos::component().members()) names.push_back(slot.name);
  ASSERT_THAT(names, SizeIs(119));
  EXPECT_THAT(std::vector(names.begin() + 2, names.begin() + 25),
              ElementsAre("GetValorClsReg", "SetValorClsReg", "Aceptar_todos", "Denegar_todos",
                          "IniciaXML", "UpdateTablesGeneralesToRpt", "Create_xml_Articulos",
                          "GetExportPath", "CambiarListarticulo", "CambiarEstadoarticulo",
                          "CambiarDescripcionarticulo", "ObtenerArticulosVentaActivos",
                          "ObtenerArticulosImport", "ObtenerTarifaArticuloImport", "ObtenerDto_D",
                          "ExisteArt", "ExisteArtEnLista", "ObtenerCodigo", "GetTxtFile",
                          "sClassName", "sQCodigo", "sQFamilia", "sQseccion"));
  EXPECT_THAT(
      std::vector(names.begin() + 27, names.begin() + 61),
      ElementsAre("GetRecargo", "GetPorcentIva", "GetPrecioVenta", "GetMediaUnitaria",
                  "GetValorInterno", "GetImpuesto", "GetDescripcion", "GetFamilia", "GetSeccion",
                  "GetEmpleado", "GetMedidaCompra", "GetPrecioTarifa", "ObtenerDescripcion",
                  "ActualizaPrecioTarifa", "InsertarPrecioTarifa", "RegularizarStock", "EsPaquete",
                  "EsInterno", "EsDescontable", "EsNoSumable", "EsRepetible", "EsdeAlmacen",
                  "RestaStock_V", "EsdeAlmacenVenta", "ObtenerCol_Materiales", "ObtenerCol_Tarifas",
                  "ObtenerCol_TarifasArticulo", "ObtenerRegistroActivo", "GetDatoslote", "GetDatos",
                  "GetDatosReferencia", "GetDatosImport", "Actualizar", "Insertar"));
}

TEST(ClsArticulos, CalledByNameItAddsARowWithDefaultsUnlessToldOtherwise) {
  EXPECT_EQ(clsArticulos::component().member("AddNew").signature(),
            "AddNew([bDefVal As Boolean = True])");
}

// ---- Modes

TEST_F(ClsArticulosTest, EachWordHasItsStatement) {
  struct Case {
    std::string word, statement;
  };
  const std::string inList = " or (Actualizar_Stock <> 0 AND activo <> 0 AND Lista =  'TDS')";
  const std::vector<Case> cases = {
      {"deeliminar",
       "SELECT Seccion, Familia, Impuesto  FROM Articulos WHERE ( Seccion = 'X' or Familia = 'X' "
       "or Impuesto = 'X')"},
      {"seleccion", kBreve + " WHERE ( activo <> 0 )"},
      {"seleccionmixta",
       "SELECT Codigo AS Código, [codigo] + ' ' & [Descripcion] + ' ' + [Referencia] AS "
       "Descripción, Descripcion AS Artículo ,  Referencia FROM Articulos WHERE ( activo <> 0 and "
       "Lista =  'X')" +
           inList},
      {"seleccionmixta_cobro",
       "SELECT Codigo AS Código, [codigo] + ' ' + [Descripcion] + ' ' + [Referencia] AS "
       "Descripción, Descripcion AS Artículo ,  Referencia FROM Articulos WHERE ( activo <> 0 and "
       "Interno = 0 and Lista =  'X' )" +
           inList},
      {"selec_plan",
       "SELECT Codigo AS Código, Descripcion AS Descripción , Planificar FROM Articulos WHERE ( "
       "activo <> 0 )"},
      {"seleccion_lista", kBreve + " WHERE ( activo <> 0 and Lista =  'X')" + inList},
      {"seleccion_lista_cobro", kBreve +
                                    " WHERE ( activo <> 0 and Interno = 0 and Lista =  'X' ) or "
                                    "(Actualizar_Stock <> 0 AND activo <> 0)"},
      {"seleccion_lista_almacen",
       kBreve + " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo <> 0)"},
      {"seleccion_lista_venta",
       kBreve + " WHERE ( activo <> 0 and Interno = 0 and Lista =  'X' )" + inList},
      {"seleccion_tl", kSinTarifas + " WHERE ( activo <> 0 )"},
      {"seleccionnointerno", kBreve + " WHERE ( activo <> 0  and Interno = 0 )"},
      {"seleccionnointernocombo",
       kBreve + " WHERE ( activo <> 0  and Interno = 0 ) Order by Descripcion"},
      {"seleccionnointernocombo_lista_materiales",
       kBreve + " WHERE ( activo <> 0 and Interno = 0 and Lista =  'X' )" + inList +
           " Order by Descripcion"},
      {"seleccionnointernocombo_lista",
       kBreve + " WHERE ( activo <> 0  and Interno = 0 and Lista =  'X' ) Order by Descripcion"},
      {"seleccionnocompuesto", kConExistencia +
                                   " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and "
                                   "activo <> 0)"},
      {"seleccionstock", kConExistencia +
                             " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and activo "
                             "<> 0 )"},
      {"seleccionstockcombo", kBreve +
                                  " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and "
                                  "activo <> 0 ) Order by Descripcion"},
      {"vistarapidastock", kTodos + " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock <> 0 and "
                                    "activo <> 0 and Interno = 0)"},
      {"vistarapidanostock", kTodos + " WHERE (Articulo_Compuesto = 0 and Actualizar_Stock = 0 and "
                                      "activo <> 0 and Interno = 0)"},
      {"vistarapidainternos", kTodos + " WHERE ( activo <> 0  and Interno <> 0 )"},
      {"vistarapidapack", kTodos + " WHERE ( activo <> 0  and Articulo_Compuesto <> 0)"},
      {"vista rapida", kTodos},
      {"frmArticulos", kTodos},
  };
  for (const Case& each : cases) {
    std::string word = each.word;
    articles.IniciaRs(word, "X");
    EXPECT_EQ(word, each.word);
    EXPECT_THAT(shop.statements(), ElementsAre(each.statement)) << each.word;
  }
}

TEST_F(ClsArticulosTest, AnyOtherWordIsAllColumnsAndBecomesTodos) {
  for (const char* other : {"", "registro", "seleccioncombo", "Seleccion", "VISTA RAPIDA"}) {
    std::string word = other;
    articles.IniciaRs(word, "X");
    EXPECT_EQ(word, "todos");
    EXPECT_THAT(shop.statements(), ElementsAre(kTodos));
  }
}

TEST_F(ClsArticulosTest, TheModeOfTariffsIsTwoSelectsAndRefused) {
  EXPECT_EQ(errorOf([&] { articles.IniciaRs("tarifas"); }), errors::kSyntax);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kTodos + "  SELECT DISTINCT Articulos_Tarifas.Tarifa FROM Articulos_Tarifas;"));
}

TEST_F(ClsArticulosTest, TheFormOpensAsItsTwoSavedSettingsSay) {
  struct Case {
    const char *stock, *active, *condition;
  };
  for (const Case& each :
       {Case{"1", "0", " WHERE Actualizar_Stock <> 0"}, Case{"0", "1", " WHERE Activo <> 0"},
        Case{"1", "1", " WHERE Actualizar_Stock <> 0 AND Activo <> 0"}, Case{"0", "0", ""},
        Case{"2", "1", ""}, Case{"-1", "0", ""},
        Case{"1,0", "0", " WHERE Actualizar_Stock <> 0"}}) {
    articles.SetValorClsReg("Articulos", "stock", each.stock);
    articles.SetValorClsReg("Articulos", "activos", each.active);
    std::string word = "frmArticulos";
    articles.IniciaRs(word);
    EXPECT_EQ(word, "frmArticulos");
    EXPECT_THAT(shop.statements(), ElementsAre(kTodos + each.condition))
        << each.stock << each.active;
  }
  articles.SetValorClsReg("Articulos", "stock", "yes");
  EXPECT_EQ(errorOf([&] { articles.IniciaRs("frmArticulos"); }), errors::kTypeMismatch);
}

TEST_F(ClsArticulosTest, SavedSettingsLieUnderTheirKeyAndHaveADefault) {
  EXPECT_EQ(articles.GetValorClsReg("Articulos", "stock", "0"), "0");
  articles.SetValorClsReg("Articulos", "stock", "1");
  articles.SetValorClsReg("Otros", "stock", "2");
  EXPECT_EQ(articles.GetValorClsReg("Articulos", "stock", "0"), "1");
  EXPECT_EQ(articles.GetValorClsReg("Otros", "stock", "0"), "2");
}

TEST_F(ClsArticulosTest, ASelectionOfAListShowsItsArticlesAndTheStockedOnesOfAllLists) {
  add("A1");
  add("A2", "Lista = 'OTR'");
  add("A3", "Lista = 'TDS'");
  add("A4", "Lista = 'TDS', Actualizar_Stock = True");
  add("A5", "Activo = False");
  add("A6", "Interno = True");
  add("A7", "Lista = 'OTR', Actualizar_Stock = True");
  EXPECT_THAT(codes("seleccion_lista", "PRC"), ElementsAre("A1", "A4", "A6"));
  EXPECT_THAT(codes("seleccion_lista_venta", "PRC"), ElementsAre("A1", "A4"));
  EXPECT_THAT(codes("seleccion_lista_cobro", "PRC"), ElementsAre("A1", "A4", "A7"));
  EXPECT_THAT(codes("seleccionnointernocombo_lista", "PRC"), ElementsAre("A1"));
  EXPECT_THAT(codes("seleccion_lista_almacen"), ElementsAre("A4", "A7"));
  EXPECT_THAT(codes("vistarapidainternos"), ElementsAre("A6"));
  EXPECT_THAT(codes("loquesea"), SizeIs(7));
}

// + binds tighter than &, and one Null empties what + joins.
TEST_F(ClsArticulosTest, AMixedSelectionShowsCodeDescriptionAndReferenceAsOneText) {
  add("A1", "Referencia = 'R1'");
  add("A2", "Referencia = Null");
  const auto second = [&](const char* word) {
    articles.IniciaRs(word, "PRC");
    std::vector<std::string> texts;
    const RecordsetPtr rows = articles.DataMember("Primary");
    for (; !rows->Eof(); rows->MoveNext()) {
      const Variant shown = rows->Field("Descripción").Value();
      texts.push_back(shown.isNull() ? "Null" : text(shown));
    }
    return texts;
  };
  EXPECT_THAT(second("seleccionmixta"), ElementsAre("A1 Artículo A1 R1", "A2 "));
  EXPECT_THAT(second("seleccionmixta_cobro"), ElementsAre("A1 Artículo A1 R1", "Null"));
}

TEST_F(ClsArticulosTest, ItRidesOnTheCallersConnection) {
  ConnectionPtr connection;
  articles.IniciaRs("seleccion", {}, connection);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(articles.GetConnection(), connection);
}

TEST_F(ClsArticulosTest, ARecordIsFoundByTheBeginningOfItsCode) {
  add("A1");
  add("B12");
  articles.IniciaRs();
  articles.FindRecord("B1");
  EXPECT_EQ(text(articles.DataMember("Primary")->Field(0).Value()), "B12");
}

TEST_F(ClsArticulosTest, NamesAreThoseOfTheFields) {
  EXPECT_EQ(articles.sClassName(), "Articulos");
  EXPECT_EQ(articles.sQCodigo(), "Código");
  EXPECT_EQ(articles.sQFamilia(), "Familia");
  EXPECT_EQ(articles.sQseccion(), "Sección");
  EXPECT_EQ(articles.GetTxtFile(), shop.installation().reportFolder() + "/Articulos.txt");
}

// ---- Flags

TEST_F(ClsArticulosTest, FlagsAreReadByTheirStatements) {
  struct Case {
    bool (clsArticulos::*test)(const Variant&, ObjCn) const;
    const char *column, *statement;
  };
  add("A1");
  for (const Case& each : {
           Case{&clsArticulos::EsPaquete, "Articulo_Compuesto",
                "SELECT Codigo,Articulo_Compuesto as Paquete FROM Articulos where codigo ='A1'"},
           Case{&clsArticulos::EsInterno, "Interno",
                "SELECT Codigo, Interno FROM Articulos where codigo ='A1'"},
           Case{&clsArticulos::EsNoSumable, "No_sumar",
                "SELECT Codigo, No_sumar FROM Articulos where codigo ='A1'"},
           Case{&clsArticulos::EsRepetible, "Repetir",
                "SELECT Codigo, Repetir FROM Articulos where codigo ='A1'"},
           Case{&clsArticulos::EsdeAlmacen, "Actualizar_Stock",
                "SELECT Codigo, Actualizar_Stock FROM Articulos where codigo ='A1'"},
           Case{&clsArticulos::RestaStock_V, "Restar_Stock",
                "SELECT Codigo, Restar_Stock FROM Articulos where codigo ='A1'"},
           Case{&clsArticulos::EsdeAlmacenVenta, "Restar_Stock",
                "SELECT Codigo, Restar_Stock FROM Articulos where codigo ='A1'"},
       }) {
    set("A1", std::string(each.column) + " = False");
    EXPECT_FALSE((articles.*each.test)("A1", {})) << each.column;
    set("A1", std::string(each.column) + " = True");
    EXPECT_TRUE((articles.*each.test)("A1", {})) << each.column;
    EXPECT_EQ(shop.statements().back(), each.statement);
    EXPECT_FALSE((articles.*each.test)("unknown", {})) << each.column;
  }
}

TEST_F(ClsArticulosTest, WhetherAnArticleAdmitsADiscountRaisesForEveryOneThatIsThere) {
  add("A1", "Descuento = True");
  EXPECT_EQ(errorOf([&] { articles.EsDescontable("A1"); }), errors::kItemNotFound);
  EXPECT_FALSE(articles.EsDescontable("unknown"));
  EXPECT_EQ(shop.statements().front(), "SELECT Codigo, Interno FROM Articulos where codigo ='A1'");
}

// ---- Single values

TEST_F(ClsArticulosTest, SingleValuesAreReadByTheirStatements) {
  add("A1",
      "Impuesto = '01', Precio_Venta = 12.5, Precio_Medio = 24, Medida_Compra = 12, Familia = "
      "'MAT', Seccion = 'S1', Empleado = '7', Valor_Interno = 3");
  EXPECT_EQ(articles.GetImpuesto("A1"), Variant("01"));
  EXPECT_EQ(articles.GetPrecioVenta("A1"), 12.5);
  EXPECT_EQ(articles.GetMediaUnitaria("A1"), 2);
  EXPECT_EQ(articles.GetDescripcion("A1"), Variant("Artículo A1"));
  EXPECT_EQ(articles.GetFamilia("A1"), Variant("MAT"));
  EXPECT_EQ(articles.GetSeccion("A1"), Variant("S1"));
  EXPECT_EQ(articles.GetEmpleado("A1"), Variant("7"));
  EXPECT_EQ(articles.GetValorInterno("A1"), 3);
  EXPECT_EQ(articles.GetMedidaCompra("A1"), Variant(12.0));
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Impuesto FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT Precio_Venta FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT  [Precio_Medio]/[medida_compra] AS Precio FROM Articulos WHERE Codigo = "
                  "'A1'",
                  "SELECT Descripcion FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT Familia FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT Seccion FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT Empleado FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT Valor_interno FROM Articulos WHERE Codigo = 'A1'",
                  "SELECT Medida_compra as Medida FROM Articulos WHERE Codigo = 'A1'"));
}

TEST_F(ClsArticulosTest, AnArticleThatIsNotThereHasEmptyValues) {
  EXPECT_TRUE(articles.GetImpuesto("x").isEmpty());
  EXPECT_TRUE(articles.GetDescripcion("x").isEmpty());
  EXPECT_TRUE(articles.GetFamilia("x").isEmpty());
  EXPECT_TRUE(articles.GetSeccion("x").isEmpty());
  EXPECT_TRUE(articles.GetEmpleado("x").isEmpty());
  EXPECT_TRUE(articles.GetMedidaCompra("x").isEmpty());
  EXPECT_EQ(articles.GetPrecioVenta("x"), 0);
  EXPECT_EQ(articles.GetMediaUnitaria("x"), 0);
  EXPECT_EQ(articles.GetValorInterno("x"), 0);
}

TEST_F(ClsArticulosTest, NullIsTestedInThreeOfThemOnly) {
  add("A1", "Precio_Venta = Null, Medida_Compra = Null, Valor_Interno = Null, Descripcion = Null");
  EXPECT_TRUE(articles.GetSeccion("A1").isEmpty());
  EXPECT_TRUE(articles.GetEmpleado("A1").isEmpty());
  EXPECT_EQ(articles.GetValorInterno("A1"), 0);
  EXPECT_TRUE(articles.GetImpuesto("A1").isNull());
  EXPECT_TRUE(articles.GetMedidaCompra("A1").isNull());
  EXPECT_EQ(errorOf([&] { articles.GetPrecioVenta("A1"); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { articles.GetMediaUnitaria("A1"); }), errors::kInvalidUseOfNull);
  std::string description = "kept";
  EXPECT_TRUE(articles.ObtenerDescripcion("A1", description));
  EXPECT_EQ(description, "kept");
}

TEST_F(ClsArticulosTest, AMeasureOfZeroIsADivisionByZero) {
  add("A1", "Precio_Medio = 1, Medida_Compra = 0");
  EXPECT_EQ(errorOf([&] { articles.GetMediaUnitaria("A1"); }), errors::kDivisionByZero);
}

TEST_F(ClsArticulosTest, ObtenerDescripcionTellsWhetherThereIsOne) {
  add("A1");
  std::string description = "kept";
  EXPECT_FALSE(articles.ObtenerDescripcion("x", description));
  EXPECT_EQ(description, "kept");
  EXPECT_TRUE(articles.ObtenerDescripcion("A1", description));
  EXPECT_EQ(description, "Artículo A1");
}

TEST_F(ClsArticulosTest, ObtenerDescripcionLeavesTheTextForANullOne) {
  add("A1", "Descripcion = Null");
  std::string description = "kept";
  EXPECT_TRUE(articles.ObtenerDescripcion("A1", description));
  EXPECT_EQ(description, "kept");
}

TEST_F(ClsArticulosTest, TheSurchargeIsThatOfTheArticlesTaxAndTheRateThatOfATaxCode) {
  shop.run("INSERT INTO TIPOS_IMPUESTO (Codigo, Impuesto, Recargo) VALUES ('01', 21, 5.2)");
  add("A1", "Impuesto = '01'");
  EXPECT_EQ(articles.GetRecargo("A1"), 5.2);
  EXPECT_EQ(articles.GetRecargo("x"), 0);
  EXPECT_EQ(articles.GetPorcentIva("01"), 21);
  EXPECT_EQ(articles.GetPorcentIva("A1"), 0) << "the argument is no article";
}

// ---- Values from outside

TEST_F(ClsArticulosTest, HostileTextInEveryValueChangesNothing) {
  add("A1");
  for (const std::string& attack :
       {std::string("'"), std::string("' or '1'='1"), std::string("'; DELETE FROM Articulos"),
        std::string("1\0' or 1=1", 11), std::string("\xc3\x28"),
        std::string(1 << 16, '\'') + "x'"}) {
    EXPECT_NE(errorOf([&] { articles.IniciaRs("seleccion_lista", attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.IniciaRs("deeliminar", attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.NuevoCodigo_Fam(attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.CodigoLibre(attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.CodigoRefLibre(attack, "A1"); }), 0);
    EXPECT_NE(errorOf([&] { articles.ExisteArtEnLista("A1", attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.EsPaquete(attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.GetSeccion(attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.GetPrecioVenta(attack); }), 0);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "1");
}

TEST_F(ClsArticulosTest, AReadFillsAnEmptyConnectionAndUsesAGivenOne) {
  add("A1");
  ConnectionPtr connection;
  articles.GetRecargo("A1", connection);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  articles.CambiarListarticulo("A1", "OTR", connection);
  EXPECT_TRUE(articles.ExisteArtEnLista("A1", "OTR", connection));
  EXPECT_TRUE(articles.ExisteArtEnLista("A1", "OTR"))
      << "without a connection it sees what the apartment's own transaction has written";
  connection->RollbackTrans();
  EXPECT_EQ(column("Lista"), "PRC");
}

}  // namespace
}  // namespace tavelor
