// SPDX-License-Identifier: MIT
// What customers pay for articles and families.
#include "tavelor/articles/articulos_precios_ventas.hpp"

#include "tavelor/services/clock.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view kTodos =
    "SELECT id, Cliente, Codigo AS Código, Familia, descripcion as Descripción, Precio, Dto, "
    "Porcentaje, Lista, Fecha FROM Articulos_Precios_Ventas";
constexpr double kCame = 77;
constexpr float kCameDto = 7.5F;

/// A row of the article A1 and the customer C1, whose columns a test changes.
struct SpecialPrice {
  int id = 1;
  std::string cliente = "C1", codigo = "A1", familia = "0", precio = "12", dto = "False",
              porcentaje = "0", lista = "PRC", fecha = "Null";
};

class ClsArticulosPreciosVentasTest : public test::CatalogueTest<ClsArticulosPreciosVentas> {
 protected:
  // 5 March 2026, in the afternoon: days are compared, not moments.
  ClsArticulosPreciosVentasTest() {
    shop.apartment().clock().fix(Date::of({2026, 3, 5, 17, 30, 0}));
  }

  void add(const SpecialPrice& row) {
    shop.run(
        "INSERT INTO Articulos_Precios_Ventas (Id, Cliente, Codigo, Descripcion, Familia, Precio, "
        "Dto, Porcentaje, Lista, Fecha) VALUES (" +
        std::to_string(row.id) + ", '" + row.cliente + "', '" + row.codigo + "', 'Tornillo', '" +
        row.familia + "', " + row.precio + ", " + row.dto + ", " + row.porcentaje + ", '" +
        row.lista + "', " + row.fecha + ")");
  }
  std::string column(const std::string& name, int id = 1) {
    return shop.text("SELECT " + name +
                     " FROM Articulos_Precios_Ventas WHERE Id = " + std::to_string(id));
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Precios_Ventas"); }

  /// Looks the price of A1 for C1 up, beginning with what a caller has.
  bool lookUp() {
    price = kCame;
    discount = kCameDto;
    return prices.GetPrecioVenta("A1", "C1", price, discount);
  }
  bool lookUpFamily() {
    price = kCame;
    discount = kCameDto;
    return prices.GetPrecioVentaFamilia("MAT", "C1", price, discount);
  }

  ClsArticulosPreciosVentas& prices = catalogue;
  double price = kCame;
  float discount = kCameDto;
};

// ---- Modes

TEST_F(ClsArticulosPreciosVentasTest, AnyOtherWordIsAllPrices) {
  const Opened all = open("");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(fieldNames(), ElementsAre("Id", "Cliente", "Código", "Familia", "Descripción",
                                        "Precio", "Dto", "Porcentaje", "Lista", "Fecha"));
}

TEST_F(ClsArticulosPreciosVentasTest, SeleccionIsByArticleOrByCustomer) {
  add({.id = 1});
  add({.id = 2, .cliente = "A1", .codigo = "A2"});
  add({.id = 3, .codigo = "A3"});
  const Opened some = open("seleccion", "A1");
  EXPECT_EQ(some.statement, std::string(kTodos) + " WHERE ( Codigo =  'A1' or Cliente =  'A1')");
  EXPECT_EQ(some.word, "seleccion");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
}

// ---- A customer's price of an article

TEST_F(ClsArticulosPreciosVentasTest, WithoutARowNothingApplies) {
  EXPECT_FALSE(lookUp());
  EXPECT_EQ(price, kCame);
  EXPECT_EQ(discount, kCameDto);
  EXPECT_EQ(statement(),
            "SELECT Codigo , Cliente, Precio, porcentaje, dto, fecha FROM Articulos_Precios_Ventas "
            "WHERE ( Codigo =  'A1'  and Cliente =  'C1')");
}

TEST_F(ClsArticulosPreciosVentasTest, APriceWithoutADateAppliesAndLeavesTheDiscount) {
  add({.precio = "12"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 12);
  EXPECT_EQ(discount, kCameDto);
}

TEST_F(ClsArticulosPreciosVentasTest, ThePriceOfAnOfferThatRunsIsNet) {
  add({.precio = "12", .fecha = "#03/06/2026#"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 12);
  EXPECT_EQ(discount, 0);
}

TEST_F(ClsArticulosPreciosVentasTest, AnOfferStillRunsOnItsLastDay) {
  add({.precio = "12", .fecha = "#03/05/2026#"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 12);
  EXPECT_EQ(discount, 0);
}

TEST_F(ClsArticulosPreciosVentasTest, AnOfferOfYesterdayDoesNotApplyAlthoughItsPriceIsTaken) {
  add({.precio = "12", .fecha = "#03/04/2026#"});
  EXPECT_FALSE(lookUp());
  EXPECT_EQ(price, 12);
  EXPECT_EQ(discount, kCameDto) << "only a live date makes the price net";
}

TEST_F(ClsArticulosPreciosVentasTest, APriceOfOneCentIsAFreeArticle) {
  add({.precio = "0.01"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 0);
}

TEST_F(ClsArticulosPreciosVentasTest, NearlyOneCentIsAPrice) {
  add({.precio = "0.0101"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 0.0101);
}

TEST_F(ClsArticulosPreciosVentasTest, AFreeArticleThatHasExpiredDoesNotApply) {
  add({.precio = "0.01", .fecha = "#03/04/2026#"});
  EXPECT_FALSE(lookUp());
  EXPECT_EQ(price, 0);
}

TEST(ArticulosPreciosVentas, OneCentIsFreeUnderAnyLocale) {
  Settings settings = test::fastSettings();
  settings.locale = "neutral";
  test::Shop shop(settings);
  shop.run(
      "INSERT INTO Articulos_Precios_Ventas (Id, Cliente, Codigo, Precio) VALUES (1, 'C1', "
      "'A1', 0.01)");
  shop.run(
      "INSERT INTO Articulos_Precios_Ventas (Id, Cliente, Codigo, Precio) VALUES (2, 'C1', "
      "'A2', 1)");
  double price = kCame;
  float discount = kCameDto;
  const ClsArticulosPreciosVentas prices;
  EXPECT_TRUE(prices.GetPrecioVenta("A1", "C1", price, discount));
  EXPECT_EQ(price, 0);
  EXPECT_TRUE(prices.GetPrecioVenta("A2", "C1", price, discount));
  EXPECT_EQ(price, 1);
}

TEST_F(ClsArticulosPreciosVentasTest, APercentageAloneAppliesAndLeavesThePrice) {
  add({.precio = "0", .dto = "True", .porcentaje = "10"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, kCame);
  EXPECT_EQ(discount, 10);
}

TEST_F(ClsArticulosPreciosVentasTest, AGrantedPercentageStandsBesideTheNetPriceOfAnOffer) {
  add({.precio = "12", .dto = "True", .porcentaje = "10.5", .fecha = "#03/06/2026#"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 12);
  EXPECT_EQ(discount, 10.5F);
}

TEST_F(ClsArticulosPreciosVentasTest, APercentageThatIsNotGrantedIsNotTaken) {
  add({.precio = "12", .dto = "False", .porcentaje = "10"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(discount, kCameDto);
  shop.run("UPDATE Articulos_Precios_Ventas SET Dto = Null");
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(discount, kCameDto);
}

TEST_F(ClsArticulosPreciosVentasTest, AGrantedNullPercentageLeavesTheDiscount) {
  add({.precio = "12", .dto = "True", .porcentaje = "Null"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(discount, kCameDto);
}

TEST_F(ClsArticulosPreciosVentasTest, ARowThatGrantsNothingDoesNotApply) {
  add({.precio = "0"});
  EXPECT_FALSE(lookUp());
  EXPECT_EQ(price, kCame);
  shop.run("UPDATE Articulos_Precios_Ventas SET Precio = Null");
  EXPECT_FALSE(lookUp());
  shop.run("UPDATE Articulos_Precios_Ventas SET Precio = -5");
  EXPECT_FALSE(lookUp());
  EXPECT_EQ(price, kCame);
  EXPECT_EQ(discount, kCameDto);
}

TEST_F(ClsArticulosPreciosVentasTest, APercentageOnANullPriceApplies) {
  add({.precio = "Null", .dto = "True", .porcentaje = "10", .fecha = "#03/06/2026#"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, kCame);
  EXPECT_EQ(discount, 10);
}

TEST_F(ClsArticulosPreciosVentasTest, AnExpiredPercentageDoesNotApplyAlthoughItIsTaken) {
  add({.precio = "0", .dto = "True", .porcentaje = "10", .fecha = "#03/04/2026#"});
  EXPECT_FALSE(lookUp());
  EXPECT_EQ(discount, 10);
}

TEST(ArticulosPreciosVentas, OffersEndTheSameOnAServer) {
  Settings settings = test::fastSettings();
  for (DatabaseSettings& database : settings.databases) database.servesAsServer = true;
  test::Shop shop(settings);
  shop.apartment().clock().fix(Date::of(2026, 3, 5));
  const ClsArticulosPreciosVentas prices;
  prices.InsertarOferta({"A1", "C1", "Tornillo", 12, "0", false, 0, "PRC", "05/03/2026"});
  prices.InsertarOferta({"A2", "C1", "Tuerca", 12, "0", false, 0, "PRC", "04/03/2026"});
  double price = 0;
  float discount = 0;
  EXPECT_TRUE(prices.GetPrecioVenta("A1", "C1", price, discount));
  EXPECT_FALSE(prices.GetPrecioVenta("A2", "C1", price, discount));
}

// ---- A customer's price of a family

TEST_F(ClsArticulosPreciosVentasTest, AFamilyRowAppliesWhateverItHolds) {
  EXPECT_FALSE(lookUpFamily());
  EXPECT_EQ(statement(),
            "SELECT Familia , Cliente, Precio, porcentaje, dto FROM Articulos_Precios_Ventas WHERE "
            "( Familia =  'MAT'  and Cliente =  'C1')");
  add({.codigo = "0", .familia = "MAT", .precio = "0"});
  EXPECT_TRUE(lookUpFamily());
  EXPECT_EQ(price, kCame);
  EXPECT_EQ(discount, kCameDto);
}

TEST_F(ClsArticulosPreciosVentasTest, AFamilyRowGivesItsPriceAndItsPercentage) {
  add({.codigo = "0", .familia = "MAT", .precio = "3.5", .dto = "True", .porcentaje = "10"});
  EXPECT_TRUE(lookUpFamily());
  EXPECT_EQ(price, 3.5);
  EXPECT_EQ(discount, 10);
}

// Nothing keeps the pair unique. An index by customer and article would give the row of "0" first.
TEST_F(ClsArticulosPreciosVentasTest, OfSeveralRowsOfAFamilyTheOneStoredFirstGivesThePrice) {
  add({.id = 2, .codigo = "Z9", .familia = "MAT", .precio = "7"});
  add({.id = 1, .codigo = "0", .familia = "MAT", .precio = "3.5"});
  EXPECT_TRUE(lookUpFamily());
  EXPECT_EQ(price, 7);
}

TEST_F(ClsArticulosPreciosVentasTest, OfSeveralRowsOfAnArticleTheOneStoredFirstGivesThePrice) {
  add({.id = 2, .precio = "7"});
  add({.id = 1, .precio = "3.5"});
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 7);
}

TEST_F(ClsArticulosPreciosVentasTest, AFamilyRowKnowsNoDateAndNoFreeArticle) {
  add({.codigo = "0", .familia = "MAT", .precio = "0.01", .fecha = "#03/04/2026#"});
  EXPECT_TRUE(lookUpFamily());
  EXPECT_EQ(price, 0.01);
  EXPECT_EQ(discount, kCameDto);
}

// ---- Other reads

TEST_F(ClsArticulosPreciosVentasTest, ObtenerPreciosClienteGivesIdsInTheOrderOfArticles) {
  add({.id = 1, .codigo = "B"});
  add({.id = 2, .codigo = "A"});
  add({.id = 3, .codigo = "C", .lista = "OTRA"});
  add({.id = 4, .cliente = "C2", .codigo = "D"});
  std::vector<std::string> ids;
  for (const Variant& id : prices.ObtenerPreciosCliente("C1", "PRC")) ids.push_back(shown(id));
  EXPECT_THAT(ids, ElementsAre("2", "1"));
  EXPECT_EQ(statement(),
            "SELECT id, Cliente, Codigo AS Código, descripcion as Artículo, Precio, Familia, Dto, "
            "Porcentaje, Fecha FROM Articulos_Precios_Ventas WHERE ( Cliente =  'C1' and Lista =  "
            "'PRC') Order by Codigo");
}

TEST_F(ClsArticulosPreciosVentasTest, GetDatosImportReadsARowByItsId) {
  add({.id = 7, .precio = "1.5", .dto = "True", .porcentaje = "10.5", .lista = "TDS"});
  ClsArticulosPreciosVentas::Datos datos;
  datos.vId = std::int32_t{7};
  prices.GetDatosImport(datos);
  EXPECT_EQ(statement(),
            "SELECT id, Cliente, Codigo AS Código, descripcion as Artículo, Precio, Familia, Dto, "
            "Porcentaje, Lista FROM Articulos_Precios_Ventas WHERE ( id =  7) Order by ID");
  EXPECT_EQ(datos.sCodigo, "A1");
  EXPECT_EQ(datos.sDescripcion, "Tornillo");
  EXPECT_EQ(datos.sFamilia, "0");
  EXPECT_EQ(datos.dPrecio, 1.5);
  EXPECT_TRUE(datos.bDto);
  EXPECT_EQ(datos.dPorcentaje, 10.5);
  EXPECT_EQ(datos.sLista, "TDS");
}

TEST_F(ClsArticulosPreciosVentasTest, GetDatosImportLeavesWhatIsNullOrNotThere) {
  add({.precio = "Null", .dto = "Null", .porcentaje = "Null"});
  ClsArticulosPreciosVentas::Datos datos;
  datos.vId = "1";
  datos.dPrecio = 5;
  datos.bDto = true;
  datos.dPorcentaje = 6;
  prices.GetDatosImport(datos);
  EXPECT_EQ(datos.sCodigo, "A1");
  EXPECT_EQ(datos.dPrecio, 5);
  EXPECT_TRUE(datos.bDto);
  EXPECT_EQ(datos.dPorcentaje, 6);
  datos.vId = "9";
  datos.sCodigo = "kept";
  prices.GetDatosImport(datos);
  EXPECT_EQ(datos.sCodigo, "kept");
}

TEST_F(ClsArticulosPreciosVentasTest, ACodeIsFreeForThePairOfCustomerAndArticleOrFamily) {
  add({.codigo = "A1", .familia = "MAT"});
  EXPECT_FALSE(prices.CodigoLibre("C1", "A1"));
  EXPECT_EQ(statement(),
            "SELECT Cliente, Codigo FROM Articulos_Precios_Ventas where ( Cliente ='C1' and "
            "Codigo='A1')");
  EXPECT_FALSE(prices.FamiliaLibre("C1", "MAT"));
  EXPECT_EQ(statement(),
            "SELECT Cliente, Familia FROM Articulos_Precios_Ventas where ( Cliente ='C1' and "
            "Familia='MAT')");
  EXPECT_TRUE(prices.CodigoLibre("C2", "A1"));
  EXPECT_TRUE(prices.FamiliaLibre("C1", "A1"));
}

// ---- Writing

TEST_F(ClsArticulosPreciosVentasTest, InsertarAddsAPriceOfAnArticle) {
  add({.id = 41, .codigo = "A9"});
  prices.Insertar("A1", "Tornillo", "C1", 9.75, "PRC");
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Precios_Ventas",
                  "INSERT INTO Articulos_Precios_Ventas (  ID, Codigo, Descripcion, Cliente, "
                  "Precio, Lista, Familia ) values ( 42, 'A1', 'Tornillo', 'C1', 9.75, 'PRC', '0' "
                  ")"));
  EXPECT_TRUE(lookUp());
  EXPECT_EQ(price, 9.75);
}

TEST_F(ClsArticulosPreciosVentasTest, InsertarTodoWritesAllButTheDate) {
  prices.InsertarTodo({"A1", "C1", "Tornillo", 0.01, "0", true, 10.5, "PRC", "06/03/2026"});
  EXPECT_EQ(shop.statements().back(),
            "INSERT INTO Articulos_Precios_Ventas (  ID, Codigo, Descripcion, Precio, Familia, "
            "dto, Porcentaje, Cliente, Lista ) values ( 1, 'A1', 'Tornillo', 0.01, '0', -1, 10.5, "
            "'C1', 'PRC' )");
  EXPECT_EQ(column("Fecha"), "Null");
  EXPECT_EQ(column("Porcentaje"), "10,5");
  EXPECT_EQ(column("Dto"), "Verdadero");
}

TEST_F(ClsArticulosPreciosVentasTest, InsertarOfertaWritesTheLastDayAsALiteral) {
  prices.InsertarOferta({"A1", "C1", "Tornillo", 12, "0", false, 0, "PRC", "06/03/2026"});
  EXPECT_EQ(shop.statements().back(),
            "INSERT INTO Articulos_Precios_Ventas (  ID, Codigo, Descripcion, Precio, Familia, "
            "dto, Porcentaje, Cliente, Lista, Fecha ) values ( 1, 'A1', 'Tornillo', 12, '0', 0, 0, "
            "'C1', 'PRC', #03/06/2026# )");
  EXPECT_EQ(column("Fecha"), "06/03/2026");
  EXPECT_EQ(column("Dto"), "Falso");
}

TEST_F(ClsArticulosPreciosVentasTest, InsertarOfertaWithABlankDateHasNone) {
  for (const Variant& none : {Variant(), Variant(Null{}), Variant(""), Variant("   ")}) {
    prices.InsertarOferta({"A1", "C1", "Tornillo", 12, "0", false, 0, "PRC", none});
    EXPECT_THAT(shop.statements().back(), HasSubstr("Cliente, Lista ) values"));
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Precios_Ventas WHERE Fecha Is Null"), "4");
}

TEST_F(ClsArticulosPreciosVentasTest, InsertarOfertaWithWhatIsNoDateAddsNothing) {
  EXPECT_EQ(errorOf([&] {
              prices.InsertarOferta({"A1", "C1", "Tornillo", 12, "0", false, 0, "PRC", "pronto"});
            }),
            errors::kTypeMismatch);
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsArticulosPreciosVentasTest, ARiseOfACustomersPricesIsRounded) {
  add({.id = 1, .precio = "9.99"});
  add({.id = 2, .cliente = "C2", .precio = "100"});
  prices.ActualizarTarifas("C1", 10);
  EXPECT_EQ(statement(),
            "UPDATE  Articulos_Precios_Ventas SET Precio =  ROUND(((Precio * 10)/100)+ Precio,2) "
            "WHERE (((Cliente) Like 'C1'));");
  EXPECT_EQ(column("Precio", 1), "10,99");
  EXPECT_EQ(column("Precio", 2), "100");
}

TEST_F(ClsArticulosPreciosVentasTest, ARiseTakesWildcardsAndAPercentageWithAllItsDecimals) {
  add({.id = 1, .precio = "100"});
  add({.id = 2, .cliente = "C2", .precio = "100"});
  add({.id = 3, .cliente = "D1", .precio = "100"});
  prices.ActualizarTarifas("C?", 2.555);
  EXPECT_THAT(statement(), HasSubstr("(Precio * 2.555)/100"));
  EXPECT_EQ(column("Precio", 1), "102,56");  // 102.555
  EXPECT_EQ(column("Precio", 3), "100");
  prices.ActualizarTarifas("*", -50);
  EXPECT_EQ(column("Precio", 2), "51,28");
  EXPECT_EQ(column("Precio", 3), "50");
}

TEST_F(ClsArticulosPreciosVentasTest, DeleteAllClearsByArticleAndByCustomer) {
  add({.id = 1});
  add({.id = 2, .cliente = "A1", .codigo = "A2"});
  add({.id = 3, .codigo = "A3"});
  prices.DeleteAll("A1");
  EXPECT_EQ(statement(),
            "DELETE  FROM Articulos_Precios_Ventas WHERE ( Codigo =  'A1' or Cliente =  'A1')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosPreciosVentasTest, ActualizarEurosDividesAllPricesAndFillsNull) {
  add({.id = 1, .precio = "166386"});
  add({.id = 2, .codigo = "A2", .precio = "Null"});
  prices.ActualizarEuros();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("UPDATE Articulos_Precios_Ventas SET Precio = 0 Where (((Precio) Is Null))",
                  "UPDATE Articulos_Precios_Ventas SET Precio = "
                  "Format([Precio]/'166,386','Currency');"));
  EXPECT_EQ(column("Precio", 1), "1000");
  EXPECT_EQ(column("Precio", 2), "0");
}

// ---- The grid

TEST_F(ClsArticulosPreciosVentasTest, AddNewFillsTheRowOfACustomer) {
  add({.id = 99999});
  prices.IniciaRs();
  prices.AddNew(true, "C5");
  EXPECT_EQ(field("id"), "100000") << "however long";
  EXPECT_EQ(field("Cliente"), "C5");
  for (const char* name : {"Código", "Familia", "Descripción", "Lista"}) EXPECT_EQ(field(name), "");
  EXPECT_EQ(field("Precio"), "0");
  EXPECT_EQ(field("Dto"), "Falso");
  EXPECT_EQ(field("Porcentaje"), "0");
  EXPECT_EQ(field("Fecha"), "Empty");
}

TEST_F(ClsArticulosPreciosVentasTest, AddNewWithoutDefaultsLeavesTheRowEmpty) {
  prices.IniciaRs();
  prices.AddNew(false, "C5");
  EXPECT_EQ(field("id"), "Empty");
  EXPECT_EQ(field("Cliente"), "Empty");
}

TEST_F(ClsArticulosPreciosVentasTest, UpdateDatesAnArticleRowThatHasNoDate) {
  prices.IniciaRs();
  prices.AddNew(true, "C1");
  rows().Field("Código").Value("A1");
  rows().Field("Familia").Value("0");
  prices.Update();
  EXPECT_EQ(column("Fecha"), "01/01/2040");
  EXPECT_FALSE(prices.EditingRecord());
}

TEST_F(ClsArticulosPreciosVentasTest, UpdateKeepsADateAndLeavesFamilyRowsUndated) {
  add({.id = 1, .fecha = "#03/06/2026#"});
  add({.id = 2, .codigo = "0", .familia = "MAT"});
  prices.IniciaRs();
  rows().Field("Precio").Value(5.0);
  prices.Update();
  rows().MoveNext();
  rows().Field("Precio").Value(6.0);
  prices.Update();
  EXPECT_EQ(column("Fecha", 1), "06/03/2026");
  EXPECT_EQ(column("Fecha", 2), "Null");
  EXPECT_EQ(column("Precio", 2), "6");
}

TEST_F(ClsArticulosPreciosVentasTest, Update_FamiliaKnowsNoDateRule) {
  add({});
  prices.IniciaRs();
  prices.Update_Familia();
  rows().Field("Precio").Value(5.0);
  prices.Update_Familia();
  EXPECT_EQ(column("Precio"), "5");
  EXPECT_EQ(column("Fecha"), "Null");
}

TEST_F(ClsArticulosPreciosVentasTest, Update_FamiliaPostsOnlyARowInEdit) {
  add({});
  prices.IniciaRs();
  rows().Field("Precio").Value(5.0);
  rows().Update();
  prices.Update_Familia();
  EXPECT_EQ(column("Precio"), "12");
}

TEST_F(ClsArticulosPreciosVentasTest, SetDesripcionWritesTheCurrentRow) {
  add({});
  prices.IniciaRs();
  prices.SetDesripcion("Arandela");
  EXPECT_TRUE(prices.EditingRecord());
  EXPECT_EQ(column("Descripcion"), "Tornillo");
  prices.Update_Familia();
  EXPECT_EQ(column("Descripcion"), "Arandela");
}

TEST_F(ClsArticulosPreciosVentasTest, MembersOfTheGridNeedARecordSet) {
  EXPECT_EQ(errorOf([&] { prices.SetDesripcion("x"); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { prices.Update(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { prices.Update_Familia(); }), errors::kObjectNotSet);
  prices.IniciaRs();
  EXPECT_EQ(errorOf([&] { prices.Update(); }), errors::kNoCurrentRecord);
}

// ---- By name

TEST_F(ClsArticulosPreciosVentasTest, ACallByNameBringsPriceAndDiscountBack) {
  add({.precio = "12", .dto = "True", .porcentaje = "10"});
  std::vector<Variant> arguments = {"A1", "C1", 77.0, 0.0};
  EXPECT_EQ(ClsArticulosPreciosVentas::component().call(prices, "GetPrecioVenta", arguments),
            Variant(true));
  EXPECT_EQ(arguments[2], Variant(12.0));
  EXPECT_EQ(arguments[3], Variant(10.0F));
  EXPECT_EQ(signature("GetPrecioVenta"),
            "GetPrecioVenta(vId As Variant, vIdCli As Variant, inout dPrecio As Double, inout dDto "
            "As Single, [inout objCn As Connection]) As Boolean");
}

TEST_F(ClsArticulosPreciosVentasTest, AnOfferIsInsertedByName) {
  std::vector<Variant> arguments = {"A1", "C1",  "Tornillo",          12.0, "0", true,
                                    10.0, "PRC", Date::of(2026, 3, 6)};
  ClsArticulosPreciosVentas::component().call(prices, "InsertarOferta", arguments);
  EXPECT_EQ(column("Fecha"), "06/03/2026");
  EXPECT_TRUE(lookUp());
}

TEST_F(ClsArticulosPreciosVentasTest, TheSlotsStandInOrder) {
  EXPECT_THAT(
      firstSlots(),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "ObtenerPreciosCliente", "GetDatosImport", "ActualizarEuros",
                  "DeleteAll", "GetPrecioVenta", "GetPrecioVentaFamilia", "ActualizarTarifas",
                  "Insertar", "InsertarOferta", "InsertarTodo", "sQFamilia", "SetDesripcion",
                  "IniciaRs", "NuevoCodigo", "SeguridadPermiso", "CodigoLibre", "FamiliaLibre"));
  EXPECT_EQ(lastSlot(), "Update_Familia");
  EXPECT_EQ(signature("AddNew"), "AddNew([bDefVal As Boolean], [sIdCli As String])");
}

TEST_F(ClsArticulosPreciosVentasTest, SQFamiliaNamesTheColumnOfTheFamily) {
  EXPECT_EQ(prices.sQFamilia(), "Familia");
  std::vector<Variant> none;
  EXPECT_EQ(ClsArticulosPreciosVentas::component().call(catalogue, "sQFamilia", none),
            Variant("Familia"));
}

TEST_F(ClsArticulosPreciosVentasTest, HostileTextInEveryValueChangesNothing) {
  add({});
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { prices.GetPrecioVenta(attack, "C1", price, discount); }), 0);
    EXPECT_NE(errorOf([&] { prices.GetPrecioVentaFamilia("MAT", attack, price, discount); }), 0);
    EXPECT_NE(errorOf([&] { prices.ObtenerPreciosCliente("C1", attack); }), 0);
    EXPECT_NE(errorOf([&] { prices.Insertar("A1", attack, "C1", 1, "PRC"); }), 0);
    EXPECT_NE(errorOf([&] {
                prices.InsertarTodo({"A1", "C1", "", 1, attack, false, 0, "", {}});
              }),
              0);
    EXPECT_NE(errorOf([&] { prices.ActualizarTarifas(attack, 10); }), 0);
    EXPECT_NE(errorOf([&] { prices.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { prices.FamiliaLibre(attack, "MAT"); }), 0);
    ClsArticulosPreciosVentas::Datos datos;
    datos.vId = attack;
    EXPECT_NE(errorOf([&] { prices.GetDatosImport(datos); }), 0);
  }
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(column("Precio"), "12");
  EXPECT_EQ(price, kCame);
}

}  // namespace
}  // namespace tavelor
