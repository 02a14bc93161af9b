// SPDX-License-Identifier: MIT
// clsArticulos: what fills a document line, and the writes of whole articles.
#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tests/classes/articulos.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

using Datos = clsArticulos::Datos;

std::string lineStatement(const std::string& condition,
                          const std::string& description = "Descripcion",
                          const std::string& price = "Tarifa_A") {
  return fmt::format(
      "SELECT Codigo as Código, Referencia, {} as Descripción, Seccion as Sección, Familia, {} as "
      "Precio, Impuesto, Precio_Coste as Coste, Precio_Medio as Promedio, Descuento, Existencia, "
      "Unidad_Stock as Unidad, Minimo as Mínimo, Maximo as Máximo, Pendiente, Activo, "
      "Unidad_Compra as Unidades, Medida_Compra as Medida, Actualizar_Stock as Control, Lotes, "
      "Articulo_Compuesto as Paquete, Interno, Valor_Interno as Valor, Empleado, Merma FROM "
      "Articulos{}",
      description, price, condition);
}

class ClsArticulosDatosTest : public testing::Test, protected test::ArticleShop {
 protected:
  explicit ClsArticulosDatosTest(const Settings& settings = test::fastSettings())
      : ArticleShop(settings) {}

  /// An article with a value in each column that a line takes.
  void addWhole() {
    add("A1",
        "Referencia = 'R1', Descripcion = 'Tornillo', Idioma_1 = 'Screw', Idioma_6 = 'Vis', "
        "Seccion = 'S1', Familia = 'MAT', Tarifa_A = 10.5, Tarifa_B = 9.75, Tarifa_C = 3, "
        "Impuesto = '01', Precio_Coste = 4, Precio_Medio = 5, Descuento = True, Existencia = 7, "
        "Lotes = True, Interno = True, Valor_Interno = 2, Empleado = '9', Merma = 1.5");
  }
  static Datos typed(const Variant& code) {
    Datos datos;
    datos.vId = code;
    return datos;
  }
  static Datos provider(const Variant& code) {
    Datos datos = typed(code);
    datos.mbIsProvider = true;
    return datos;
  }
};

// ---- Statements

TEST_F(ClsArticulosDatosTest, AnArticleIsLookedForByItsCodeThenByItsReference) {
  Datos datos = typed("A1");
  articles.GetDatos(datos);
  EXPECT_THAT(shop.statements(),
              ElementsAre(lineStatement(" Where (Codigo = 'A1' and Activo <> 0 and (Lista = 'PRC' "
                                        "or Actualizar_Stock <> 0))"),
                          lineStatement(" Where (Referencia = 'A1' and Lista = 'PRC'  and Activo "
                                        "<> 0 )")));
}

TEST_F(ClsArticulosDatosTest, AProviderGetsStockedArticlesThatAreNoPackages) {
  Datos datos = provider("A1");
  articles.GetDatos(datos);
  EXPECT_THAT(shop.statements(),
              ElementsAre(lineStatement(" Where (Codigo = 'A1' and Articulo_Compuesto = 0 And "
                                        "Actualizar_Stock <> 0and Activo <> 0 )"),
                          lineStatement(" Where (Referencia = 'A1' and Articulo_Compuesto = 0 And "
                                        "Actualizar_Stock <> 0 and Activo <> 0 )")));
}

TEST_F(ClsArticulosDatosTest, ByLotTheListIsNotTested) {
  Datos datos = typed("A1");
  articles.GetDatoslote(datos);
  Datos second = provider("A1");
  articles.GetDatoslote(second);
  const std::vector<std::string> ran = shop.statements();
  EXPECT_EQ(ran[0], lineStatement(" Where (Codigo = 'A1' and Activo <> 0 )"));
  EXPECT_EQ(ran[2], lineStatement(" Where (Codigo = 'A1' and Articulo_Compuesto = 0 And "
                                  "Actualizar_Stock <> 0 and Activo <> 0 )"));
}

TEST_F(ClsArticulosDatosTest, AnotherIndexLooksForTheDescription) {
  Datos datos = typed("A1");
  datos.sDescripcion = "Tornillo";
  datos.index = 1;
  articles.GetDatos(datos);
  EXPECT_THAT(shop.statements(),
              ElementsAre(lineStatement(" Where (Descripcion = 'Tornillo' and Activo <> 0 and "
                                        "(Lista = 'PRC' or Actualizar_Stock <> 0))"),
                          lineStatement(" Where (Descripcion = 'Tornillo' and Lista = 'PRC'  and "
                                        "Activo <> 0 )")));
}

TEST_F(ClsArticulosDatosTest, LanguageAndTariffChooseTheColumns) {
  addWhole();
  const std::string condition =
      " Where (Codigo = 'A1' and Activo <> 0 and (Lista = 'PRC' or Actualizar_Stock <> 0))";
  for (int language = 1; language <= 6; ++language) {
    Datos datos = typed("A1");
    datos.sQIdioma = fmt::format("Idioma {}", language);
    articles.GetDatos(datos);
    EXPECT_THAT(shop.statements(),
                ElementsAre(lineStatement(condition, fmt::format("Idioma_{}", language))));
  }
  for (const auto& [tariff, column] : {std::pair("A", "Tarifa_A"),
                                       {"B", "Tarifa_B"},
                                       {"C", "Tarifa_C"},
                                       {"D", "Tarifa_A"},
                                       {"b", "Tarifa_A"}}) {
    Datos datos = typed("A1");
    datos.sTarifa = tariff;
    datos.sQIdioma = "Idioma_1";
    articles.GetDatos(datos);
    EXPECT_THAT(shop.statements(), ElementsAre(lineStatement(condition, "Descripcion", column)));
  }
}

// ---- A line

TEST_F(ClsArticulosDatosTest, AnArticleFillsTheLine) {
  addWhole();
  Datos datos = typed("A1");
  datos.sQIdioma = "Idioma 1";
  datos.sTarifa = "B";
  articles.GetDatos(datos);
  EXPECT_EQ(datos.vId, Variant("A1"));
  EXPECT_EQ(datos.sDescripcion, "Screw");
  EXPECT_EQ(datos.sSeccion, "S1");
  EXPECT_EQ(datos.sFamilia, "MAT");
  EXPECT_EQ(datos.dPrecio, 9.75);
  EXPECT_TRUE(datos.bDto);
  EXPECT_EQ(datos.sImpuesto, "01");
  EXPECT_EQ(datos.dExistencia, 7);
  EXPECT_TRUE(datos.bLotes);
  EXPECT_TRUE(datos.bInterno);
  EXPECT_EQ(datos.sEmpleado, "9");
  EXPECT_EQ(datos.dPuntos, 2);
  EXPECT_EQ(datos.dMerma, 1.5);
}

TEST_F(ClsArticulosDatosTest, WhatIsNullStaysAsItCameAndPointsAreOne) {
  add("A1", "Descripcion = Null, Tarifa_A = Null, Existencia = Null");
  Datos datos = typed("A1");
  datos.sDescripcion = "kept";
  datos.sSeccion = "kept";
  datos.dPrecio = 8;
  datos.dExistencia = 9;
  datos.sEmpleado = "kept";
  datos.dMerma = 4;
  datos.bDto = true;
  articles.GetDatos(datos);
  EXPECT_EQ(datos.sDescripcion, "kept");
  EXPECT_EQ(datos.sSeccion, "kept");
  EXPECT_EQ(datos.dPrecio, 8);
  EXPECT_EQ(datos.dExistencia, 9);
  EXPECT_EQ(datos.sEmpleado, "kept");
  EXPECT_EQ(datos.dMerma, 4);
  EXPECT_EQ(datos.dPuntos, 1);
  EXPECT_FALSE(datos.bDto) << "a flag is never null";
}

TEST_F(ClsArticulosDatosTest, AProviderPaysTheAverageAndAWarehouseNoteTheLastCost) {
  addWhole();
  set("A1", "Actualizar_Stock = True");
  Datos datos = provider("A1");
  articles.GetDatos(datos);
  EXPECT_EQ(datos.dPrecio, 5);

  Datos second = provider("A1");
  second.mbIsAlbAlmacen = true;
  articles.GetDatos(second);
  EXPECT_EQ(second.dPrecio, 4);

  Datos third = typed("A1");
  third.mbIsAlbAlmacen = true;
  articles.GetDatos(third);
  EXPECT_EQ(third.dPrecio, 4);

  Datos fourth = provider("A1");
  fourth.mbIsAlbAlmacen = true;
  articles.GetDatoslote(fourth);
  EXPECT_EQ(fourth.dPrecio, 5) << "by lot the flag of the warehouse note plays no part";
  fourth.vId = "R1";
  articles.GetDatosReferencia(fourth);
  EXPECT_EQ(fourth.dPrecio, 5);
}

TEST_F(ClsArticulosDatosTest, WithoutCostsAProviderSeesTheTariff) {
  add("A1", "Tarifa_A = 10, Actualizar_Stock = True");
  Datos datos = provider("A1");
  datos.mbIsAlbAlmacen = true;
  articles.GetDatos(datos);
  EXPECT_EQ(datos.dPrecio, 10);
}

TEST_F(ClsArticulosDatosTest, AStockedArticleIsFoundWhateverItsList) {
  add("A1", "Lista = 'OTR'");
  Datos datos = typed("A1");
  articles.GetDatos(datos);
  EXPECT_EQ(datos.vId, Variant(""));
  set("A1", "Actualizar_Stock = True");
  Datos second = typed("A1");
  articles.GetDatos(second);
  EXPECT_EQ(second.vId, Variant("A1"));
  Datos third = typed("A1");
  set("A1", "Actualizar_Stock = False");
  third.sLista = "OTR";
  articles.GetDatos(third);
  EXPECT_EQ(third.vId, Variant("A1"));
}

TEST_F(ClsArticulosDatosTest, ATypedDescriptionGivesTheCode) {
  addWhole();
  Datos datos = typed("whatever");
  datos.sDescripcion = "Tornillo";
  datos.index = 2;
  articles.GetDatos(datos);
  EXPECT_EQ(datos.vId, Variant("A1"));
  Datos second = typed("whatever");
  second.sDescripcion = "Torn";
  second.index = 2;
  articles.GetDatos(second);
  EXPECT_EQ(second.vId, Variant("")) << "the description counts whole";
}

TEST_F(ClsArticulosDatosTest, ByLotTheCodeStaysAsTyped) {
  addWhole();
  Datos datos = typed("whatever");
  datos.sDescripcion = "Tornillo";
  datos.index = 1;
  articles.GetDatoslote(datos);
  EXPECT_EQ(datos.vId, Variant("whatever"));
  EXPECT_EQ(datos.dPrecio, 10.5);
}

// ---- By reference

TEST_F(ClsArticulosDatosTest, AReferenceGivesTheRealCodeAndLeavesEmployeePointsAndWaste) {
  addWhole();
  for (const auto& look : {&clsArticulos::GetDatos, &clsArticulos::GetDatoslote}) {
    Datos datos = typed("R1");
    datos.sEmpleado = "kept";
    datos.dPuntos = 8;
    datos.dMerma = 9;
    (articles.*look)(datos);
    EXPECT_EQ(datos.vId, Variant("A1"));
    EXPECT_EQ(datos.sDescripcion, "Tornillo");
    EXPECT_EQ(datos.sEmpleado, "kept");
    EXPECT_EQ(datos.dPuntos, 8);
    EXPECT_EQ(datos.dMerma, 9);
  }
}

TEST_F(ClsArticulosDatosTest, AskedByReferenceItselfTheLineIsWhole) {
  addWhole();
  Datos datos = typed("R1");
  articles.GetDatosReferencia(datos);
  EXPECT_EQ(datos.vId, Variant("A1"));
  EXPECT_EQ(datos.sEmpleado, "9");
  EXPECT_EQ(datos.dPuntos, 2);
  EXPECT_EQ(datos.dMerma, 1.5);
}

TEST_F(ClsArticulosDatosTest, NothingFoundClearsTheLineAndAdmitsADiscount) {
  Datos datos;
  datos.vId = "x";
  datos.sDescripcion = datos.sSeccion = datos.sFamilia = datos.sImpuesto = datos.sEmpleado = "old";
  datos.dPrecio = datos.dExistencia = datos.dMerma = datos.dPuntos = 7;
  datos.bLotes = datos.bInterno = true;
  articles.GetDatosReferencia(datos);
  EXPECT_EQ(datos.vId, Variant(""));
  for (const std::string& text :
       {datos.sDescripcion, datos.sSeccion, datos.sFamilia, datos.sImpuesto, datos.sEmpleado}) {
    EXPECT_EQ(text, "");
  }
  EXPECT_EQ(datos.dPrecio, 0);
  EXPECT_EQ(datos.dExistencia, 0);
  EXPECT_EQ(datos.dMerma, 0);
  EXPECT_EQ(datos.dPuntos, 7) << "points stay";
  EXPECT_FALSE(datos.bLotes);
  EXPECT_FALSE(datos.bInterno);
  EXPECT_TRUE(datos.bDto);
}

TEST_F(ClsArticulosDatosTest, NothingFoundByCodeEitherKeepsWhatIsNotHandedOn) {
  Datos datos = typed("x");
  datos.sEmpleado = "kept";
  datos.dMerma = 7;
  articles.GetDatos(datos);
  EXPECT_EQ(datos.vId, Variant(""));
  EXPECT_EQ(datos.sEmpleado, "kept");
  EXPECT_EQ(datos.dMerma, 7);
}

TEST_F(ClsArticulosDatosTest, AnArticleOutOfUseIsNotFound) {
  addWhole();
  set("A1", "Activo = False");
  for (const auto& look :
       {&clsArticulos::GetDatos, &clsArticulos::GetDatoslote, &clsArticulos::GetDatosReferencia}) {
    Datos datos = typed("A1");
    (articles.*look)(datos);
    EXPECT_EQ(datos.vId, Variant(""));
  }
}

TEST_F(ClsArticulosDatosTest, CalledByNameTheOutputsComeBack) {
  addWhole();
  std::vector<Variant> arguments = {"A1", {}, {}, {}, "C", {}, {}, {}, {}, {}, {}, {}, false, 0.0};
  clsArticulos::component().call(articles, "GetDatos", arguments);
  EXPECT_EQ(arguments[1], Variant("Tornillo"));
  EXPECT_EQ(arguments[6], Variant(3.0));
}

TEST_F(ClsArticulosDatosTest, TheConnectionOfALineIsFilledAndUsed) {
  ConnectionPtr connection;
  Datos datos{.vId = "A1", .objCn = connection};
  articles.GetDatos(datos);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  articles.Insertar({.vId = "A1", .sDescripcion = "Nuevo", .bActivo = true, .objCn = connection});
  Datos inside{.vId = "A1", .objCn = connection};
  articles.GetDatos(inside);
  EXPECT_EQ(inside.sDescripcion, "Nuevo");
  connection->RollbackTrans();
  EXPECT_FALSE(articles.ExisteArt("A1"));
}

// ---- Of the import database, and of the current row

TEST_F(ClsArticulosDatosTest, AnImportedArticleIsReadFromTheImportDatabase) {
  add("A1", "Descripcion = 'of the main database'");
  shop.run(
      "INSERT INTO Articulos (Codigo, Descripcion, Seccion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, "
      "Impuesto, Existencia, Lotes, Actualizar_Stock, Activo, Interno, Descuento, Lista, "
      "Descuento_D) VALUES ('A1', 'Tornillo', 'S1', 'MAT', 1, 2, 3, '01', 4, True, False, True, "
      "False, True, 'OTR', 12.5)",
      selector::kImport);
  clsArticulos::DatosImport datos;
  datos.vId = "A1";
  datos.bStock = 5;
  articles.GetDatosImport(datos);
  EXPECT_EQ(datos.sDescripcion, "Tornillo");
  EXPECT_EQ(datos.sSeccion, "S1");
  EXPECT_EQ(datos.sFamilia, "MAT");
  EXPECT_EQ(datos.dPrecio_A, 1);
  EXPECT_EQ(datos.dPrecio_B, 2);
  EXPECT_EQ(datos.dPrecio_C, 3);
  EXPECT_TRUE(datos.bDto);
  EXPECT_EQ(datos.sImpuesto, "01");
  EXPECT_EQ(datos.dExistencia, 4);
  EXPECT_EQ(datos.bLotes, -1) << "a flag as a number";
  EXPECT_FALSE(datos.bInterno);
  EXPECT_EQ(datos.bStock, 0);
  EXPECT_TRUE(datos.bActivo);
  EXPECT_EQ(datos.sLista, "OTR");
  EXPECT_EQ(datos.dDto_D, 12.5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "SELECT Codigo as Código, Referencia, Descripcion, Seccion as Sección, Familia, Tarifa_A "
          "as Precio_A, Tarifa_B as Precio_B, Tarifa_c as Precio_C, Impuesto, Precio_Coste as "
          "Coste, Precio_Medio as Promedio, Descuento, Existencia, Unidad_Stock as Unidad, Minimo "
          "as Mínimo, Maximo as Máximo, Pendiente, Activo, Unidad_Compra as Unidades, "
          "Medida_Compra as Medida, Actualizar_Stock as Control, Lotes, Articulo_Compuesto as "
          "Paquete, Interno, Valor_Interno as Valor, Empleado, Merma, Lista, Descuento_D FROM "
          "Articulos Where ( Codigo = 'A1' )"));
}

TEST_F(ClsArticulosDatosTest, AnArticleThatIsNotInTheImportDatabaseChangesNothing) {
  clsArticulos::DatosImport datos;
  datos.vId = "A1";
  datos.sLista = "kept";
  articles.GetDatosImport(datos);
  EXPECT_EQ(datos.vId, Variant("A1"));
  EXPECT_EQ(datos.sLista, "kept");
}

TEST_F(ClsArticulosDatosTest, TheCurrentRowIsReadWithoutAStatement) {
  addWhole();
  add("A2", "Descripcion = Null, Tarifa_A = Null");
  articles.IniciaRs();
  shop.statements();
  Variant code;
  std::string description, tax;
  double price = 0;
  articles.ObtenerRegistroActivo(code, description, price, tax);
  EXPECT_EQ(code, Variant("A1"));
  EXPECT_EQ(description, "Tornillo");
  EXPECT_EQ(price, 10.5);
  EXPECT_EQ(tax, "01");
  articles.MoveNext();
  articles.ObtenerRegistroActivo(code, description, price, tax);
  EXPECT_EQ(code, Variant("A2"));
  EXPECT_EQ(description, "") << "a null description is no text";
  EXPECT_EQ(price, 10.5);
  EXPECT_EQ(tax, "01");
  EXPECT_THAT(shop.statements(), IsEmpty());
}

// ---- Writing articles

const std::string kInsertHead =
    "INSERT INTO Articulos ( Codigo, Lista, Referencia, Descripcion, Idioma_1, Idioma_2, Idioma_3, "
    "Idioma_4, Idioma_5, Idioma_6, Seccion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, Impuesto, "
    "Precio_Coste, Precio_Medio, Descuento, Descuento_D, Existencia, Unidad_Stock, Minimo, Maximo, "
    "Pendiente, Activo, Unidad_Compra, Medida_Compra, Actualizar_Stock, Lotes, Articulo_Compuesto, "
    "Interno, Valor_Interno, Empleado, Merma, Fecha ) values ( ";

clsArticulos::Alta wholeArticle() {
  return {.vId = "A1",
          .sDescripcion = "Tornillo",
          .sSeccion = "S1",
          .sFamilia = "MAT",
          .dPrecio = 10.5,
          .dPrecio_B = 9.75,
          .dPrecio_C = -3,
          .bDto = false,
          .sImpuesto = "01",
          .dExistencia = 4.25,
          .bLotes = 0,
          .bStock = -1,
          .bActivo = true,
          .sLista = "",
          .dDto_D = 12.5};
}

TEST_F(ClsArticulosDatosTest, ANewArticleIsWrittenWithItsConstants) {
  articles.Insertar(wholeArticle());
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kInsertHead +
                  "'A1', 'PRC', 'A1', 'Tornillo', 'Tornillo', 'Tornillo', 'Tornillo', 'Tornillo', "
                  "'Tornillo', 'Tornillo', 'S1', 'MAT', 10.5, 9.75, -3, '01', '0', '0', '-1', "
                  "'12,5', 4.25, 'Und', '1', '100', '0', '-1', 'Und', '1', '-1', '0', '0', '0', "
                  "'0', '0', '0', #03/05/2026# )"));
  EXPECT_EQ(column("Referencia"), "A1");
  EXPECT_EQ(column("Descuento"), "Verdadero") << "whatever the argument says";
  EXPECT_EQ(column("Descuento_D"), "12,5");
  EXPECT_EQ(column("Existencia"), "4,25");
  EXPECT_EQ(column("Activo"), "Verdadero");
  EXPECT_EQ(column("Actualizar_Stock"), "Verdadero");
  EXPECT_EQ(column("Lotes"), "Falso");
  EXPECT_EQ(column("Maximo"), "100");
  EXPECT_EQ(column("Fecha"), "05/03/2026");
  EXPECT_EQ(column("Margen"), "0") << "not in the statement";
}

TEST_F(ClsArticulosDatosTest, TheListOfANewArticleMayBeAnother) {
  clsArticulos::Alta alta = wholeArticle();
  alta.sLista = "TDS";
  alta.bActivo = false;
  alta.bStock = 1;
  articles.Insertar(alta);
  EXPECT_EQ(column("Lista"), "TDS");
  EXPECT_EQ(column("Activo"), "Falso");
  EXPECT_EQ(column("Actualizar_Stock"), "Verdadero");
}

TEST_F(ClsArticulosDatosTest, ACodeIsInsertedOnce) {
  articles.Insertar(wholeArticle());
  EXPECT_EQ(errorOf([&] { articles.Insertar(wholeArticle()); }), errors::kIntegrityViolation);
}

TEST_F(ClsArticulosDatosTest, FlagsOfANewArticleAreWholeNumbersOfSixteenBits) {
  clsArticulos::Alta alta = wholeArticle();
  for (double clsArticulos::Alta::*flag :
       {&clsArticulos::Alta::bStock, &clsArticulos::Alta::bLotes}) {
    alta.*flag = 40000;
    EXPECT_EQ(errorOf([&] { articles.Insertar(alta); }), errors::kOverflow);
    alta.*flag = 0.4;
  }
  articles.Insertar(alta);
  EXPECT_EQ(column("Actualizar_Stock"), "Falso");
  EXPECT_EQ(column("Lotes"), "Falso");
}

TEST_F(ClsArticulosDatosTest, AnArticleIsRewrittenAndItsReferenceBecomesItsCode) {
  addWhole();
  articles.Actualizar({.vId = "A1",
                       .sDescripcion = "Tuerca",
                       .sSeccion = "S2",
                       .sFamilia = "FER",
                       .dPrecio = 1.5,
                       .dPrecio_B = 2,
                       .dPrecio_C = 0,
                       .bDto = false,
                       .bDto_D = 10,
                       .bActivo = false});
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Articulos SET  Referencia = 'A1', Descripcion = 'Tuerca', "
                          "Seccion = 'S2', Familia = 'FER', Tarifa_A = 1.5, Tarifa_B = 2, Tarifa_C "
                          "= 0, Lista = 'PRC', Descuento =  0, Descuento_D = 10, Activo = '0'  "
                          "WHERE(Codigo ='A1')"));
  EXPECT_EQ(column("Referencia"), "A1");
  EXPECT_EQ(column("Tarifa_A"), "1,5");
  EXPECT_EQ(column("Activo"), "Falso");
  EXPECT_EQ(column("Existencia"), "7") << "stock is not this member's";
}

TEST_F(ClsArticulosDatosTest, ADiscountWithDecimalsBreaksTheUpdateUnderADecimalComma) {
  addWhole();
  EXPECT_EQ(errorOf([&] { articles.Actualizar({.vId = "A1", .bDto_D = 12.5}); }), errors::kSyntax);
  EXPECT_EQ(column("Descripcion"), "Tornillo");
}

TEST_F(ClsArticulosDatosTest, SmallUpdatesWriteTheirColumns) {
  add("A1");
  articles.CambiarListarticulo("A1", "TDS");
  articles.CambiarEstadoarticulo("A1", 0);
  articles.CambiarEstadoarticulo("A1", -1);
  articles.CambiarDescripcionarticulo("A1", "Tuerca", "FER", "S2");
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE Articulos SET Lista = 'TDS'  WHERE (Codigo = 'A1')",
                          "UPDATE Articulos SET Activo = 0  WHERE (Codigo = 'A1')",
                          "UPDATE Articulos SET Activo = -1  WHERE (Codigo = 'A1')",
                          "UPDATE Articulos SET Descripcion = 'Tuerca', Familia = 'FER', Seccion = "
                          "'S2'   WHERE (Codigo = 'A1')"));
  EXPECT_EQ(column("Lista"), "TDS");
  EXPECT_EQ(column("Activo"), "Verdadero");
  EXPECT_EQ(column("Descripcion"), "Tuerca");
}

TEST_F(ClsArticulosDatosTest, AQuoteBreaksAWriteAndADoubledOneIsWritten) {
  add("A1");
  const std::string quoted = "6' tubo";
  EXPECT_EQ(errorOf([&] { articles.Insertar({.vId = "A2", .sDescripcion = quoted}); }),
            errors::kSyntax);
  EXPECT_EQ(errorOf([&] { articles.Actualizar({.vId = "A1", .sDescripcion = quoted}); }),
            errors::kSyntax);
  EXPECT_EQ(errorOf([&] { articles.CambiarDescripcionarticulo("A1", quoted, "", ""); }),
            errors::kSyntax);
  EXPECT_EQ(errorOf([&] { articles.CambiarListarticulo("A1", "' WHERE '1'='1"); }),
            errors::kSyntax);
  EXPECT_EQ(column("Descripcion"), "Artículo A1");
  articles.CambiarDescripcionarticulo("A1", "6'' tubo", "", "");
  EXPECT_EQ(column("Descripcion"), quoted);
}

TEST_F(ClsArticulosDatosTest, AWriteFillsAnEmptyConnection) {
  ConnectionPtr connection;
  articles.Insertar({.vId = "A1", .objCn = connection});
  EXPECT_NE(connection, nullptr);
}

// The two printings part under a decimal comma; under a point they look the same.
class ClsArticulosNeutralTest : public ClsArticulosDatosTest {
 protected:
  ClsArticulosNeutralTest() : ClsArticulosDatosTest(test::settingsWithLocale("neutral")) {}
};

TEST_F(ClsArticulosNeutralTest, UnderADecimalPointBothPrintingsAreAlike) {
  articles.Insertar(wholeArticle());
  EXPECT_THAT(shop.statements().front(), testing::HasSubstr("'-1', '12.5', 4.25, 'Und'"));
  articles.Actualizar({.vId = "A1", .dPrecio = 1.5, .bDto_D = 12.5});
  EXPECT_THAT(shop.statements().front(), testing::HasSubstr("Descuento_D = 12.5, Activo"));
  EXPECT_EQ(column("Descuento_D"), "12.5");
  EXPECT_EQ(column("Tarifa_A"), "1.5");
}

}  // namespace
}  // namespace tavelor
