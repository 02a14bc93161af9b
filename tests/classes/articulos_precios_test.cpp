// SPDX-License-Identifier: MIT
// What suppliers charge for articles.
#include "tavelor/articles/articulos_precios.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kTodos =
    "SELECT Id, Codigo_Proveedor as Referencia, Codigo AS Código, Proveedor, Precio FROM "
    "Articulos_Precios_Compras";
constexpr std::string_view kJoin =
    "SELECT Id, Articulos_Precios_Compras.Codigo_Proveedor as Referencia, "
    "Articulos_Precios_Compras.Codigo AS Código, Articulos.Descripcion, "
    "Articulos_Precios_Compras.Proveedor, Proveedores.Razon_Social as Empresa, "
    "Articulos_Precios_Compras.Precio FROM (Articulos_Precios_Compras INNER JOIN Articulos ON "
    "Articulos_Precios_Compras.Codigo = Articulos.Codigo) INNER JOIN Proveedores ON "
    "Articulos_Precios_Compras.Proveedor = Proveedores.Codigo";

class ClsArticulosPreciosTest : public test::CatalogueTest<ClsArticulosPrecios> {
 protected:
  void add(int id, const std::string& article, const std::string& supplier,
           const std::string& price = "10", const std::string& reference = "R") {
    shop.run(
        "INSERT INTO Articulos_Precios_Compras (Id, Codigo, Codigo_Proveedor, Proveedor, Precio) "
        "VALUES (" +
        std::to_string(id) + ", '" + article + "', '" + reference + "', '" + supplier + "', " +
        price + ")");
  }
  std::string price(int id) {
    return shop.text("SELECT Precio FROM Articulos_Precios_Compras WHERE Id = " +
                     std::to_string(id));
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Precios_Compras"); }

  ClsArticulosPrecios& prices = catalogue;
};

// ---- Modes

TEST_F(ClsArticulosPreciosTest, AnyOtherWordIsAllPrices) {
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(fieldNames(), ElementsAre("Id", "Referencia", "Código", "Proveedor", "Precio"));
}

TEST_F(ClsArticulosPreciosTest, SeleccionIsByArticleOrBySupplier) {
  add(1, "A1", "P1");
  add(2, "A2", "A1");
  add(3, "A3", "P3");
  const Opened some = open("seleccion", "A1");
  EXPECT_EQ(some.statement, std::string(kTodos) + " WHERE ( Codigo =  'A1' or Proveedor =  'A1')");
  EXPECT_EQ(some.word, "seleccion");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
}

TEST_F(ClsArticulosPreciosTest, PricesOfTheJoinedModesAreEditedAddedAndDeleted) {
  shop.run("INSERT INTO Articulos (Codigo, Descripcion) VALUES ('A1', 'Tornillo')");
  shop.run("INSERT INTO Proveedores (Codigo, Razon_Social) VALUES ('P1', 'Hierros')");
  int last = 0;
  for (const auto& [mode, id] :
       {std::pair{"seleccionproveedor", "P1"}, std::pair{"seleccionarticulo", "A1"}}) {
    add(++last, "A1", "P1");
    open(mode, id);
    rows().Field("Precio").Value("12,5");
    prices.Update();
    EXPECT_EQ(price(last), "12,5");

    prices.AddNew(true);
    rows().Field("Código").Value("A1");
    rows().Field("Proveedor").Value("P1");
    rows().Field("Precio").Value(7);
    prices.Update();
    EXPECT_EQ(price(++last), "7");

    prices.MoveFirst();
    prices.Delete();
    EXPECT_EQ(shop.text("SELECT Max(Id) FROM Articulos_Precios_Compras"), std::to_string(last));
    prices.Requery(mode);
    EXPECT_EQ(field("Empresa"), "Hierros");
    prices.Delete();
    EXPECT_EQ(count(), "0");
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "1");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Proveedores"), "1");
}

TEST_F(ClsArticulosPreciosTest, TheJoinedModesShowNamesAndDropPricesWithoutThem) {
  shop.run("INSERT INTO Articulos (Codigo, Descripcion) VALUES ('A1', 'Tornillo')");
  shop.run("INSERT INTO Proveedores (Codigo, Razon_Social) VALUES ('P1', 'Hierros')");
  add(1, "A1", "P1");
  add(2, "A1", "P9");
  add(3, "A9", "P1");
  EXPECT_EQ(open("seleccionproveedor", "P1").statement,
            std::string(kJoin) + " WHERE ( Proveedor =  'P1')");
  EXPECT_THAT(codes(), ElementsAre("1"));
  EXPECT_EQ(open("seleccionarticulo", "A1").statement,
            std::string(kJoin) + " WHERE ( Articulos_Precios_Compras.Codigo =  'A1')");
  EXPECT_THAT(codes(), ElementsAre("1"));
  rows().MoveFirst();
  EXPECT_EQ(field("Descripcion"), "Tornillo");
  EXPECT_EQ(field("Empresa"), "Hierros");
}

// ---- Look-ups

TEST_F(ClsArticulosPreciosTest, GetPrecioCompraIsThePriceOfThePair) {
  add(1, "A1", "P1", "12.3456");
  EXPECT_EQ(prices.GetPrecioCompra("A1", "P1", 99), 12.3456);
  EXPECT_EQ(statement(),
            "SELECT Precio FROM Articulos_Precios_Compras WHERE ( Codigo =  'A1' and Proveedor =  "
            "'P1')");
}

TEST_F(ClsArticulosPreciosTest, GetPrecioCompraFallsBackWithoutARowAndForNull) {
  add(1, "A1", "P1", "Null");
  EXPECT_EQ(prices.GetPrecioCompra("A1", "P1", 99), 99);
  EXPECT_EQ(prices.GetPrecioCompra("A1", "P2", 98), 98);
  add(2, "A2", "P1", "0");
  EXPECT_EQ(prices.GetPrecioCompra("A2", "P1", 97), 0);
}

TEST_F(ClsArticulosPreciosTest, ExistePrecioAsksForThePairAlsoWithoutAPrice) {
  add(1, "A1", "P1", "Null");
  EXPECT_TRUE(prices.ExistePrecio("A1", "P1"));
  EXPECT_EQ(statement(),
            "SELECT Id, Codigo AS Código, Proveedor, Precio FROM Articulos_Precios_Compras WHERE ( "
            "Codigo =  'A1' and  Proveedor =  'P1')");
  EXPECT_FALSE(prices.ExistePrecio("A1", "P2"));
}

// The blank is inside of the quotes.
TEST_F(ClsArticulosPreciosTest, GetArticuloFindsSuppliersStoredWithABlankBehind) {
  add(1, "A1", "P1", "1", "R1");
  add(2, "A2", "P2 ", "1", "R1");
  EXPECT_TRUE(prices.GetArticulo("R1", "P1").isEmpty());
  EXPECT_EQ(statement(),
            "SELECT Codigo FROM Articulos_Precios_Compras WHERE (Codigo_Proveedor  =  'R1' and "
            "Proveedor = 'P1 ')");
  EXPECT_EQ(prices.GetArticulo("R1", "P2"), Variant("A2"));
}

TEST_F(ClsArticulosPreciosTest, ACodeIsFreeForAPairAndForAllSuppliers) {
  add(1, "A1", "P1");
  EXPECT_FALSE(prices.CodigoLibre("P1", "A1"));
  EXPECT_EQ(statement(),
            "SELECT proveedor, Codigo FROM Articulos_Precios_Compras where ( proveedor ='P1' and "
            "Codigo='A1')");
  EXPECT_TRUE(prices.CodigoLibre("P2", "A1"));
  shop.statements();
  EXPECT_FALSE(prices.CodigoLibreTotal("A1"));
  EXPECT_EQ(statement(),
            "SELECT proveedor, Codigo FROM Articulos_Precios_Compras where ( Codigo='A1')");
  EXPECT_TRUE(prices.CodigoLibreTotal("A2"));
}

// ---- Writing

TEST_F(ClsArticulosPreciosTest, ActualizarPrecioAddsARowWithTheNextId) {
  add(7, "A1", "P1");
  prices.ActualizarPrecio("A2", "P1", 12.5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Id, Codigo AS Código, Proveedor, Precio FROM Articulos_Precios_Compras "
                  "WHERE ( Codigo =  'A2' and  Proveedor =  'P1')",
                  "SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Precios_Compras",
                  "INSERT INTO Articulos_Precios_Compras ( Id, Codigo, Proveedor, Precio ) SELECT "
                  "8 AS Expr1, 'A2' AS Expr2, 'P1' AS Expr3, '12,5' AS Expr4"));
  EXPECT_EQ(price(8), "12,5");
}

TEST_F(ClsArticulosPreciosTest, ActualizarPrecioOfAPairThatIsThereWritesThePrice) {
  add(1, "A1", "P1", "Null");
  add(2, "A1", "P2", "5");
  prices.ActualizarPrecio("A1", "P1", 12.5);
  EXPECT_EQ(shop.statements().back(),
            "UPDATE  Articulos_Precios_Compras SET Precio =  '12,5' WHERE(Codigo ='A1' and "
            "Proveedor ='P1' )");
  EXPECT_EQ(price(1), "12,5");
  EXPECT_EQ(price(2), "5");
  EXPECT_EQ(count(), "2");
}

TEST_F(ClsArticulosPreciosTest, ActualizarPrecioPassesOverTheFreeText) {
  prices.ActualizarPrecio("$$$", "P1", 12.5);
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(count(), "0");
}

TEST(ArticulosPrecios, ActualizarPrecioPrintsThePointOfTheLocale) {
  Settings settings = test::fastSettings();
  settings.locale = "neutral";
  test::Shop shop(settings);
  const ClsArticulosPrecios prices;
  prices.ActualizarPrecio("A1", "P1", 12.5);
  EXPECT_THAT(shop.statements().back(), testing::HasSubstr("'12.5' AS Expr4"));
  EXPECT_EQ(prices.GetPrecioCompra("A1", "P1", 0), 12.5);
  prices.ActualizarPrecio("A1", "P1", 1234.5);
  EXPECT_THAT(shop.statements().back(), testing::HasSubstr("Precio =  '1234.5' WHERE"));
  EXPECT_EQ(prices.GetPrecioCompra("A1", "P1", 0), 1234.5);
}

TEST_F(ClsArticulosPreciosTest, ActualizarPrecioOnOneConnectionIsUndoneWithIt) {
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  prices.ActualizarPrecio("A1", "P1", 1, connection);
  prices.ActualizarPrecio("A2", "P1", 1, connection);
  EXPECT_TRUE(prices.ExistePrecio("A2", "P1", connection));
  connection->RollbackTrans();
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsArticulosPreciosTest, DeleteAllClearsByArticleAndBySupplier) {
  add(1, "A1", "P1");
  add(2, "A2", "A1");
  add(3, "A3", "P3");
  prices.DeleteAll("A1");
  EXPECT_EQ(statement(),
            "DELETE  FROM Articulos_Precios_Compras WHERE ( Codigo =  'A1' or Proveedor =  'A1')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosPreciosTest, DeleteIdClearsOneRow) {
  add(1, "A1", "P1");
  add(2, "A1", "P2");
  prices.DeleteId(std::int32_t{2});
  EXPECT_EQ(statement(), "DELETE  FROM Articulos_Precios_Compras WHERE ( Id =  2 )");
  EXPECT_EQ(count(), "1");
  prices.DeleteId("9");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosPreciosTest, ActualizarEurosDividesAllPricesAndFillsNull) {
  add(1, "A1", "P1", "166386");
  add(2, "A1", "P2", "Null");
  prices.ActualizarEuros();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("UPDATE Articulos_Precios_Compras SET Precio = 0 Where (((Precio) Is Null))",
                  "UPDATE Articulos_Precios_Compras SET Precio = "
                  "Format([Precio]/'166,386','Currency');"));
  EXPECT_EQ(price(1), "1000");
  EXPECT_EQ(price(2), "0");
}

TEST_F(ClsArticulosPreciosTest, AddNewGivesTheNextIdHoweverLong) {
  add(99999, "A1", "P1");
  prices.IniciaRs();
  prices.AddNew(true);
  EXPECT_EQ(field("Id"), "100000");
}

TEST_F(ClsArticulosPreciosTest, HostileTextInEveryValueChangesNothing) {
  add(1, "A1", "P1");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { prices.ActualizarPrecio(attack, "P1", 1); }), 0);
    EXPECT_NE(errorOf([&] { prices.ActualizarPrecio("A1", attack, 1); }), 0);
    EXPECT_NE(errorOf([&] { prices.GetPrecioCompra("A1", attack, 1); }), 0);
    EXPECT_NE(errorOf([&] { prices.GetArticulo(attack, "P1"); }), 0);
    EXPECT_NE(errorOf([&] { prices.CodigoLibre("P1", attack); }), 0);
    EXPECT_NE(errorOf([&] { prices.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { prices.DeleteId(attack); }), 0);
    EXPECT_NE(errorOf([&] { prices.IniciaRs("seleccionproveedor", attack); }), 0);
  }
  // Unquoted, what is no number is no value.
  EXPECT_NE(errorOf([&] { prices.DeleteId("1 or 1=1"); }), 0);
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosPreciosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "ActualizarEuros", "GetArticulo", "ActualizarPrecio",
                          "ExistePrecio", "DeleteAll", "DeleteId", "IniciaRs", "GetPrecioCompra",
                          "NuevoCodigo", "SeguridadPermiso", "CodigoLibreTotal", "CodigoLibre"));
}

}  // namespace
}  // namespace tavelor
