// SPDX-License-Identifier: MIT
// The ledger of warehouse movements.
#include "tavelor/articles/articulos_mov_almacen.hpp"

#include "tavelor/frame/component.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tests/classes/stock.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::StockShop;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kTodos =
    "SELECT Id, Fecha, Hora, Almacen, Codigo, Lote, Cantidad, Referencia, Movimiento, Seccion, "
    "Empleado, Estado, Doc_E FROM Articulos_Movimientos_Almacen";
constexpr const char* kVista =
    "SELECT Articulos_Movimientos_Almacen.id as Mov, Articulos_Movimientos_Almacen.Fecha, "
    "Articulos_Movimientos_Almacen.Hora, Almacenes.Descripcion as Almacén, "
    "Articulos_Movimientos_Almacen.Codigo as  Código, Articulos.Descripcion as Artículo, "
    "Articulos_Movimientos_Almacen.Lote, Articulos_Movimientos_Almacen.Cantidad, "
    "Articulos_Movimientos_Almacen.Precio, Articulos_Movimientos_Almacen.Movimiento, "
    "Articulos_Movimientos_Almacen.Referencia, Articulos_Movimientos_Almacen.Seccion, "
    "Articulos_Movimientos_Almacen.Empleado, Articulos_Movimientos_Almacen.Estado, "
    "Articulos_Movimientos_Almacen.Doc_E as Documento FROM (Articulos INNER JOIN "
    "Articulos_Movimientos_Almacen ON Articulos.Codigo = Articulos_Movimientos_Almacen.Codigo) "
    "INNER JOIN Almacenes ON Articulos_Movimientos_Almacen.Almacen = Almacenes.Codigo";

std::string sumOfKind(const char* kind) {
  return std::string(
             "SELECT Sum(Articulos_Movimientos_Almacen.Cantidad) AS SumaDeCantidad From "
             "Articulos_Movimientos_Almacen GROUP BY Articulos_Movimientos_Almacen.Codigo, "
             "Articulos_Movimientos_Almacen.Movimiento HAVING "
             "(((Articulos_Movimientos_Almacen.Codigo)='A100') AND "
             "((Articulos_Movimientos_Almacen.Movimiento)=") +
         kind + "));";
}

class LedgerShop : protected StockShop {
 protected:
  explicit LedgerShop(const Settings& settings = test::fastSettings()) : StockShop(settings) {}

  struct Row {
    std::string article = "A100";
    double quantity = 1;
    double price = 0;
    std::int16_t kind = 0;
    Date day = Date::of(2026, 3, 5);
    std::string warehouse = "01";
    double document = 1523;
    std::int16_t state = 2;
  };
  void add(const Row& row) {
    ledger.Insertar({.vId = ++lastId_,
                     .dtFecha = row.day,
                     .hHora = Date(0.5),
                     .sAlmacen = row.warehouse,
                     .sCodigo = row.article,
                     .dCantidad = row.quantity,
                     .dPrecio = row.price,
                     .iMovimiento = row.kind,
                     .iEstado = row.state,
                     .dDoc_E = row.document});
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Movimientos_Almacen"); }
  std::string column(const std::string& name, int id) {
    return shop.text("SELECT " + name +
                     " FROM Articulos_Movimientos_Almacen WHERE Id = " + std::to_string(id));
  }

  ClsArticulosMovAlmacen ledger;

 private:
  int lastId_ = 0;
};

class LedgerTest : public testing::Test, protected LedgerShop {};

// ---- Modes

TEST_F(LedgerTest, TheModesOfIniciaRs) {
  ledger.IniciaRs("vista rapida");
  ledger.IniciaRs("seleccion", "A100");
  std::string mode = "registro";
  ledger.IniciaRs(mode, "7");
  EXPECT_EQ(mode, "todos");
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kVista,
                  std::string(kVista) + " WHERE Articulos_Movimientos_Almacen.Codigo = 'A100'",
                  kTodos));
}

TEST_F(LedgerTest, TheJoinedListNamesArticlesAndWarehouses) {
  article("A100");
  shop.run("INSERT INTO Almacenes (Codigo, Descripcion) VALUES ('01', 'Central')");
  add({.quantity = 3});
  add({.article = "none"});
  ledger.IniciaRs("vista rapida");
  const RecordsetPtr rows = ledger.DataMember("Primary");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(rows->Field("Almacén").Value(), Variant("Central"));
  EXPECT_EQ(rows->Field("Artículo").Value(), Variant("Artículo A100"));
}

// ---- Insertar

TEST_F(LedgerTest, InsertarWritesEveryColumn) {
  ledger.Insertar({.vId = 7,
                   .dtFecha = Date::of(2026, 3, 5),
                   .hHora = Date(0.5),
                   .sAlmacen = "01",
                   .sCodigo = "A100",
                   .sLote = "L1",
                   .dCantidad = 12.5,
                   .dPrecio = 9.75,
                   .sReferencia = "T-1523",
                   .iMovimiento = 1,
                   .sSeccion = "05",
                   .sEmpleado = "003",
                   .iEstado = 2,
                   .dDoc_E = 1523,
                   .sCod_ID = "2"});
  EXPECT_THAT(shop.statements(),
              ElementsAre("INSERT INTO Articulos_Movimientos_Almacen ( Id, Fecha, Hora, Almacen, "
                          "Codigo, Lote, Cantidad, Precio, Referencia, Movimiento, Seccion, "
                          "Empleado, Estado, Doc_E, Cod_ID) Values ( 7 , #03/05/2026# , "
                          "#12/30/1899 12:00:00# , '01' , 'A100' , 'L1' , 12.5 , 9.75 ,'T-1523' , "
                          "1 , '05' , '003' , 2 , 1523 ,'2' )"));
  for (const auto& [name, wanted] :
       std::vector<std::pair<const char*, const char*>>{{"Fecha", "05/03/2026"},
                                                        {"Hora", "12:00:00"},
                                                        {"Almacen", "01"},
                                                        {"Codigo", "A100"},
                                                        {"Lote", "L1"},
                                                        {"Cantidad", "12,5"},
                                                        {"Precio", "9,75"},
                                                        {"Movimiento", "1"},
                                                        {"Seccion", "05"},
                                                        {"Referencia", "T-1523"},
                                                        {"Empleado", "003"},
                                                        {"Estado", "2"},
                                                        {"Doc_E", "1523"},
                                                        {"Cod_ID", "2"}}) {
    EXPECT_EQ(column(name, 7), wanted) << name;
  }
}

TEST_F(LedgerTest, InsertarPrintsTheDocumentByTheLocaleSoDecimalsBreakASpanishStatement) {
  EXPECT_EQ(errorOf([&] { add({.document = 1523.5}); }), errors::kSyntax);
  EXPECT_EQ(count(), "0");
}

TEST(LedgerLocale, TheNeutralLocaleWritesTheSameRow) {
  StockShop neutral(test::localeSettings("neutral"));
  ClsArticulosMovAlmacen().Insertar({.vId = 7,
                                     .dtFecha = "2026-03-05",
                                     .hHora = Date(0.25),
                                     .sCodigo = "A100",
                                     .dCantidad = 12.5,
                                     .dPrecio = 9.75,
                                     .dDoc_E = 1523.5});
  EXPECT_EQ(neutral.last(),
            "INSERT INTO Articulos_Movimientos_Almacen ( Id, Fecha, Hora, Almacen, Codigo, Lote, "
            "Cantidad, Precio, Referencia, Movimiento, Seccion, Empleado, Estado, Doc_E, Cod_ID) "
            "Values ( 7 , #03/05/2026# , #12/30/1899 06:00:00# , '' , 'A100' , '' , 12.5 , 9.75 "
            ",'' , 0 , '' , '' , 0 , 1523.5 ,'' )");
  EXPECT_EQ(neutral.shop.text("SELECT Doc_E FROM Articulos_Movimientos_Almacen"), "1523.5");
}

TEST_F(LedgerTest, InsertarOfAKeyThatIsThereIsRefused) {
  add({});
  EXPECT_EQ(errorOf([&] { ledger.Insertar({.vId = 1, .dtFecha = Date(1), .hHora = Date(0.5)}); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(count(), "1");
}

TEST_F(LedgerTest, InsertarReadsTextDatesByTheLocaleAndRefusesOthers) {
  ledger.Insertar({.vId = 1, .dtFecha = "05/03/2026", .hHora = "10:30"});
  EXPECT_EQ(column("Fecha", 1), "05/03/2026");
  EXPECT_EQ(errorOf([&] { ledger.Insertar({.vId = 2, .dtFecha = "ayer", .hHora = "10:30"}); }),
            errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { ledger.Insertar({.vId = 2, .dtFecha = Null{}, .hHora = "10:30"}); }),
            errors::kInvalidUseOfNull);
  EXPECT_EQ(count(), "1");
}

TEST_F(LedgerTest, InsertarFillsTheConnectionOfItsParameters) {
  ConnectionPtr connection;
  ledger.Insertar({.vId = 1, .dtFecha = Date(1), .hHora = Date(0.5), .objCn = connection});
  EXPECT_NE(connection, nullptr);
}

// ---- Sums

TEST_F(LedgerTest, EntriesAndExitsAreSummedApart) {
  add({.quantity = 7});
  add({.quantity = 3});
  add({.quantity = 2.5, .kind = 1});
  add({.article = "B200", .quantity = 100});
  shop.statements();
  EXPECT_EQ(ledger.GetEntradas_Art("A100"), 10);
  EXPECT_EQ(ledger.GetSalidas_Art("A100"), 2.5);
  EXPECT_THAT(shop.statements(), ElementsAre(sumOfKind("0"), sumOfKind("1")));
}

TEST_F(LedgerTest, WithoutAMovementASumIsZero) {
  EXPECT_EQ(ledger.GetEntradas_Art("A100"), 0);
  EXPECT_EQ(ledger.GetSalidas_Art("A100"), 0);
  EXPECT_EQ(ledger.GetTotalMaovArt("A100"), 0);
  EXPECT_EQ(ledger.GetEntradas_Art_Fecha("A100", Date(1)), 0);
  EXPECT_EQ(ledger.GetPrecioMedioCompra_Art_periodo("A100", Date(1)), 0);
}

TEST_F(LedgerTest, ASumOfNullsIsZero) {
  shop.run(
      "INSERT INTO Articulos_Movimientos_Almacen (Id, Codigo, Cantidad, Movimiento) VALUES "
      "(1, 'A100', Null, 0)");
  EXPECT_EQ(ledger.GetEntradas_Art("A100"), 0);
}

TEST_F(LedgerTest, TheTotalIsEntriesMinusExits) {
  add({.quantity = 10});
  add({.quantity = 3, .kind = 1});
  shop.statements();
  EXPECT_EQ(ledger.GetTotalMaovArt("A100"), 7);
  EXPECT_THAT(shop.statements(), ElementsAre(sumOfKind("0"), sumOfKind("1")));
}

TEST_F(LedgerTest, TheTotalOfExitsAloneIsNegative) {
  add({.quantity = 3, .kind = 1});
  EXPECT_EQ(ledger.GetTotalMaovArt("A100"), -3);
}

TEST_F(LedgerTest, SumsFromADateOnTakeInThatDay) {
  add({.quantity = 1, .day = Date::of(2026, 3, 4)});
  add({.quantity = 2, .day = Date::of(2026, 3, 5)});
  add({.quantity = 4, .day = Date::of(2026, 3, 6)});
  add({.quantity = 8, .kind = 1, .day = Date::of(2026, 3, 6)});
  EXPECT_EQ(ledger.GetEntradas_Art_Fecha("A100", Date::of(2026, 3, 5)), 6);
  EXPECT_EQ(ledger.GetSalidas_Art_Fecha("A100", "05/03/2026"), 8);
}

TEST_F(LedgerTest, AStarSumsAllWarehouses) {
  add({.quantity = 1, .warehouse = "01"});
  add({.quantity = 2, .warehouse = "02"});
  shop.statements();
  EXPECT_EQ(ledger.GetEntradas_Art_Fecha("A100", Date::of(2026, 3, 5), "*"), 3);
  EXPECT_EQ(ledger.GetEntradas_Art_Fecha("A100", Date::of(2026, 3, 5), "02"), 2);
  EXPECT_EQ(ledger.GetSalidas_Art_Fecha("A100", Date::of(2026, 3, 5), "02"), 0);
  constexpr const char* kHead =
      "SELECT Sum(Articulos_Movimientos_Almacen.Cantidad) AS SumaDeCantidad From "
      "Articulos_Movimientos_Almacen WHERE ( ((Articulos_Movimientos_Almacen.Codigo)='A100') ";
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(std::string(kHead) + " AND ((Articulos_Movimientos_Almacen.Movimiento)=0)  AND "
                                       "((Articulos_Movimientos_Almacen.Fecha) >= #03/05/2026#));",
                  std::string(kHead) + " AND ((Articulos_Movimientos_Almacen.Almacen)= '02')  AND "
                                       "((Articulos_Movimientos_Almacen.Movimiento)=0)  AND "
                                       "((Articulos_Movimientos_Almacen.Fecha) >= #03/05/2026#));",
                  std::string(kHead) +
                      " AND ((Articulos_Movimientos_Almacen.Almacen)= '02')  AND "
                      "((Articulos_Movimientos_Almacen.Movimiento)=1)  AND "
                      "((Articulos_Movimientos_Almacen.Fecha) >= #03/05/2026#));"));
}

// ---- Prices

TEST_F(LedgerTest, TheMeanPriceIsNotWeighedByTheQuantity) {
  add({.quantity = 1, .price = 10});
  add({.quantity = 99, .price = 20});
  add({.quantity = 1, .price = 500, .kind = 1});
  add({.quantity = 1, .price = 500, .day = Date::of(2026, 3, 4)});
  shop.statements();
  EXPECT_EQ(ledger.GetPrecioMedioCompra_Art_periodo("A100", Date::of(2026, 3, 5)), 15);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT DISTINCT Avg(Articulos_Movimientos_Almacen.Precio) AS "
                          "PromedioDePrecio From Articulos_Movimientos_Almacen Where "
                          "(((Articulos_Movimientos_Almacen.Codigo)='A100') And "
                          "((Articulos_Movimientos_Almacen.Fecha) >= #03/05/2026#)) GROUP BY "
                          "Articulos_Movimientos_Almacen.Movimiento HAVING "
                          "(((Articulos_Movimientos_Almacen.Movimiento)=0));"));
}

TEST_F(LedgerTest, DevaluarTakesThePriceOffEntriesAndExitsOfThePeriodAlone) {
  add({.price = 10, .day = Date::of(2026, 3, 4)});
  add({.price = 20, .day = Date::of(2026, 3, 5)});
  add({.price = 30, .kind = 1, .day = Date::of(2026, 3, 6)});
  add({.article = "B200", .price = 40, .day = Date::of(2026, 3, 6)});
  ledger.Devaluar_Art_periodo("A100", Date::of(2026, 3, 5));
  EXPECT_EQ(last(),
            "UPDATE Articulos_Movimientos_Almacen SET Articulos_Movimientos_Almacen.Precio = 0 "
            "Where (((Articulos_Movimientos_Almacen.Fecha) >= #03/05/2026#) AND "
            "((Articulos_Movimientos_Almacen.Codigo)='A100'));");
  EXPECT_EQ(column("Precio", 1), "10");
  EXPECT_EQ(column("Precio", 2), "0");
  EXPECT_EQ(column("Precio", 3), "0");
  EXPECT_EQ(column("Precio", 4), "40");
}

// ---- Deleting

TEST_F(LedgerTest, DeleteAllTakesTheMovementsOfOneDocument) {
  add({.document = 1523, .state = 2});
  add({.document = 1523, .state = 1});
  add({.document = 1524, .state = 2});
  ledger.DeleteAll(1523, 2);
  EXPECT_EQ(last(),
            "DELETE  FROM Articulos_Movimientos_Almacen WHERE(Doc_E = 1523 and Estado = 2)");
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(column("Id", 1), "");
}

class LedgerKindTest : public testing::TestWithParam<bool>, protected LedgerShop {
 protected:
  LedgerKindTest() : LedgerShop(GetParam() ? test::serverSettings() : test::fastSettings()) {}
};

TEST_P(LedgerKindTest, DeleteAllNoInternoLeavesTheRowsOfInternalArticles) {
  if (!GetParam()) TAVELOR_ONLY_IN_FILES("the class tells files and servers apart");
  article("A100");
  article("I1", {.interno = true});
  add({.article = "A100"});
  add({.article = "I1"});
  add({.article = "gone"});
  add({.article = "A100", .state = 1});
  ledger.DeleteAll_no_Interno(1523, 2);
  EXPECT_EQ(last(), std::string(GetParam() ? "DELETE Articulos_Movimientos_Almacen"
                                           : "DELETE Articulos_Movimientos_Almacen.*") +
                        " FROM Articulos_Movimientos_Almacen INNER JOIN Articulos ON "
                        "Articulos_Movimientos_Almacen.Codigo = Articulos.Codigo WHERE(Doc_E = "
                        "1523 and Estado = 2 and Interno <> -1 )");
  EXPECT_EQ(count(), "3");
  EXPECT_EQ(column("Codigo", 1), "");
  EXPECT_EQ(column("Codigo", 2), "I1");
  EXPECT_EQ(column("Codigo", 3), "gone") << "the join does not find its article";
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "2");
}

INSTANTIATE_TEST_SUITE_P(, LedgerKindTest, testing::Bool(), [](const auto& kind) {
  return kind.param ? std::string("Server") : std::string("File");
});

TEST_F(LedgerTest, DeleteFechaPurgesUpToADay) {
  add({.day = Date::of(2026, 3, 4)});
  add({.day = Date::of(2026, 3, 5)});
  add({.day = Date::of(2026, 3, 6)});
  ledger.DeleteFecha("05/03/2026");
  EXPECT_EQ(last(),
            "DELETE  FROM Articulos_Movimientos_Almacen WHERE "
            "(((Articulos_Movimientos_Almacen.Fecha)<=#03/05/2026#));");
  EXPECT_EQ(count(), "1");
}

// ---- Rows

TEST_F(LedgerTest, GetStateIsZeroWithoutARow) {
  add({.state = 5});
  shop.statements();
  EXPECT_EQ(ledger.GetState(1), 5);
  EXPECT_EQ(ledger.GetState(99), 0);
  EXPECT_EQ(shop.statements().front(),
            "SELECT  Estado FROM Articulos_Movimientos_Almacen WHERE Id = 1");
}

TEST_F(LedgerTest, UpdateStateWritesTheCurrentRow) {
  add({.state = 2});
  add({.state = 2});
  ledger.IniciaRs();
  ledger.MoveNext();
  ledger.UpdateState(4);
  EXPECT_EQ(column("Estado", 1), "2");
  EXPECT_EQ(column("Estado", 2), "4");
}

// The joined list is a record set like the plain one: what it shows of the movement is written to
// the movement, and articles and warehouses stay as they are.
TEST_F(LedgerTest, MovementsOfTheJoinedListAreEditedAddedAndDeleted) {
  shop.apartment().clock().fix(Date::of(2026, 3, 5));
  article("A100");
  shop.run("INSERT INTO Almacenes (Codigo, Descripcion) VALUES ('01', 'Tienda')");
  add({.state = 2});
  add({.state = 2});
  for (const char* word : {"vista rapida", "seleccion"}) {
    std::string mode = word;
    ledger.IniciaRs(mode, "A100");
    ledger.UpdateState(word == std::string("seleccion") ? 5 : 4);
  }
  EXPECT_EQ(column("Estado", 1), "5");
  EXPECT_EQ(column("Estado", 2), "2");

  const RecordsetPtr rows = ledger.DataMember("Primary");
  rows->Field("Cantidad").Value(9);
  ledger.Update();
  EXPECT_EQ(column("Cantidad", 1), "9");

  ledger.AddNew();
  rows->Field("Código").Value("A100");
  rows->Field("Cantidad").Value(3);
  ledger.Update();
  EXPECT_EQ(column("Codigo", 3), "A100");
  EXPECT_EQ(column("Fecha", 3), "05/03/2026");
  EXPECT_EQ(column("Estado", 3), "0");

  ledger.MoveFirst();
  ledger.Delete();
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "1");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Almacenes"), "1");

  ledger.MoveFirst();
  rows->Field("Artículo").Value("Otro");
  EXPECT_EQ(errorOf([&] { ledger.Update(); }), errors::kMultipleStep);
}

TEST_F(LedgerTest, CodigoLibreTellsWhetherAKeyIsFree) {
  add({});
  shop.statements();
  EXPECT_FALSE(ledger.CodigoLibre(1));
  EXPECT_TRUE(ledger.CodigoLibre(2));
  EXPECT_EQ(shop.statements().front(),
            "SELECT Numero FROM Articulos_Movimientos_Almacen WHERE Id = 1");
}

TEST_F(LedgerTest, NuevoCodigoDoesNotLookAtTheSeries) {
  add({});
  shop.statements();
  EXPECT_EQ(ledger.NuevoCodigo("B").toInt32(shop.apartment().locale()), 2);
  EXPECT_EQ(ledger.NuevoCodigo().toInt32(shop.apartment().locale()), 2);
  EXPECT_EQ(shop.statements().front(),
            "SELECT MAX(ID) AS Nuevo_Codigo FROM Articulos_Movimientos_Almacen");
}

TEST_F(LedgerTest, AddNewGivesTheNextKeyAndTodaysDate) {
  shop.apartment().clock().fix(Date::of(2026, 11, 21));
  add({});
  ledger.IniciaRs();
  ledger.AddNew();
  const RecordsetPtr rows = ledger.DataMember("Primary");
  EXPECT_EQ(rows->Field("Id").Value(), Variant(2));
  EXPECT_EQ(rows->Field("Fecha").Value(), Variant(Date::of(2026, 11, 21)));
  ledger.Update();
  EXPECT_EQ(column("Fecha", 2), "21/11/2026");
}

TEST_F(LedgerTest, AddNewWithoutDefaultsAddsAnEmptyRowAndAsksForNoKey) {
  ledger.IniciaRs();
  shop.statements();
  ledger.AddNew(false);
  EXPECT_TRUE(ledger.DataMember("Primary")->Field("Id").Value().isEmpty());
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(LedgerTest, ObtenerColAlmaActivosReadsTheImportDatabase) {
  add({.warehouse = "99"});
  for (const char* row : {"(1, '01')", "(2, '02')", "(3, '01')"}) {
    shop.run(std::string("INSERT INTO Articulos_Movimientos_Almacen (Id, Almacen) VALUES ") + row,
             selector::kImport);
  }
  EXPECT_THAT(ledger.ObtenerColAlmaActivos(), UnorderedElementsAre(Variant("01"), Variant("02")));
  EXPECT_EQ(last(),
            "SELECT DISTINCT Articulos_Movimientos_Almacen.Almacen FROM "
            "Articulos_Movimientos_Almacen");
}

// ---- Bad input

TEST_F(LedgerTest, HostileTextAndBadDatesChangeNothing) {
  add({.price = 10});
  EXPECT_NE(errorOf([&] {
              ledger.Insertar({.vId = 2, .dtFecha = Date(1), .hHora = Date(1), .sAlmacen = "'"});
            }),
            0);
  EXPECT_NE(
      errorOf([&] { ledger.Insertar({.vId = "2 , 2", .dtFecha = Date(1), .hHora = Date(1)}); }), 0);
  for (const char* attack : {"'", "' or '1'='1", "A100')) --", "1 or 1=1", "1) --"}) {
    EXPECT_NE(errorOf([&] { ledger.DeleteAll(attack, 2); }), 0) << attack;
    EXPECT_NE(errorOf([&] { ledger.DeleteAll_no_Interno(attack, 2); }), 0) << attack;
    EXPECT_NE(errorOf([&] { ledger.GetState(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { ledger.CodigoLibre(attack); }), 0) << attack;
  }
  EXPECT_NE(errorOf([&] { ledger.GetEntradas_Art("'"); }), 0);
  EXPECT_NE(errorOf([&] { ledger.GetEntradas_Art_Fecha("A100", Date(1), "'"); }), 0);
  EXPECT_EQ(errorOf([&] { ledger.DeleteFecha("siempre"); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { ledger.Devaluar_Art_periodo("A100", Null{}); }),
            errors::kInvalidUseOfNull);
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(column("Precio", 1), "10");
}

TEST(ClsArticulosMovAlmacenSlots, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsArticulosMovAlmacen::component().members())
    names.push_back(slot.name);
  names.erase(std::find(names.begin(), names.end(), "EditingRecord"), names.end());
  EXPECT_THAT(
      names,
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "DeleteAll", "DeleteAll_no_Interno", "DeleteFecha",
                  "CodigoLibre", "GetState", "GetEntradas_Art", "GetSalidas_Art",
                  "GetPrecioMedioCompra_Art_periodo", "Devaluar_Art_periodo",
                  "GetEntradas_Art_Fecha", "GetSalidas_Art_Fecha", "ObtenerColAlmaActivos",
                  "GetTotalMaovArt", "Insertar", "IniciaRs", "NuevoCodigo", "SeguridadPermiso"));
}

}  // namespace
}  // namespace tavelor
