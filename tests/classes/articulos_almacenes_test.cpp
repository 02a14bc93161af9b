// SPDX-License-Identifier: MIT
// Stock of articles by warehouse.
#include "tavelor/articles/articulos_almacenes.hpp"

#include "tavelor/frame/component.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tests/classes/stock.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::StockShop;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kTodos =
    "SELECT   Almacen as Almacén, Cantidad, Codigo AS Código, ID FROM Articulos_Almacenes";
constexpr const char* kEsdeAlmacen =
    "SELECT Codigo, Actualizar_Stock FROM Articulos where codigo ='A100'";
constexpr const char* kRestaStock =
    "SELECT Codigo, Restar_Stock FROM Articulos where codigo ='A100'";
constexpr const char* kMedida =
    "SELECT Medida_compra as Medida FROM Articulos WHERE Codigo = 'A100'";
constexpr const char* kEstaEnElAlmacen =
    "SELECT Id, Codigo AS Código, Almacen as Almacén, Cantidad FROM Articulos_Almacenes  Where ( "
    "Codigo =  'A100' and Almacen =  '01')";
constexpr const char* kNuevoCodigo = "SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Almacenes";

class WarehouseStockTest : public testing::Test, protected StockShop {
 protected:
  WarehouseStockTest() { article("A100", {.existencia = 50, .medida = 12}); }

  void row(const std::string& id, const std::string& code, const std::string& warehouse,
           const std::string& stock, const std::string& onOrder = "0", int selector = 1) {
    shop.run("INSERT INTO Articulos_Almacenes (Id, Codigo, Almacen, Cantidad, Pendiente) VALUES (" +
                 id + ", '" + code + "', '" + warehouse + "', " + stock + ", " + onOrder + ")",
             selector);
  }
  /// "stock/on order" of a pair.
  std::string pair(const std::string& code, const std::string& warehouse) {
    const std::string of =
        " FROM Articulos_Almacenes WHERE Codigo = '" + code + "' AND Almacen = '" + warehouse + "'";
    return shop.text("SELECT Cantidad" + of) + "/" + shop.text("SELECT Pendiente" + of);
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Almacenes"); }

  ClsArticulosAlmacenes warehouses;
};

// ---- Modes

TEST_F(WarehouseStockTest, TheModesOfIniciaRs) {
  warehouses.IniciaRs({}, "seleccion", "A100");
  warehouses.IniciaRs({}, "deeliminaralmacen", "01");
  warehouses.IniciaRs({}, "ninguno", "A100");
  EXPECT_THAT(shop.statements(), ElementsAre(std::string(kTodos) + " WHERE Codigo =  'A100'",
                                             std::string(kTodos) + "  Where ( Almacen =  '01')",
                                             std::string(kTodos) + " Where (Codigo = '0')"));
}

TEST_F(WarehouseStockTest, AnUnknownModeOpensAllRowsAndReadsTodos) {
  row("1", "A100", "01", "3");
  row("2", "B200", "02", "4");
  std::string mode = "loquesea";
  warehouses.IniciaRs({}, mode);
  EXPECT_EQ(mode, "todos");
  EXPECT_THAT(shop.statements(), ElementsAre(kTodos));
  EXPECT_EQ(warehouses.DataMember("Primary")->RecordCount(), 2);
}

TEST_F(WarehouseStockTest, TheRecordSetRidesOnTheCallersConnection) {
  ConnectionPtr connection;
  warehouses.IniciaRs(connection, "ninguno");
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(warehouses.GetConnection(), connection);
}

// ---- Orders and receptions

TEST_F(WarehouseStockTest, TheFirstMovementOfAPairMakesItsRow) {
  row("41", "Z", "09", "1");
  warehouses.ActualizarStock("A100", "01", 10, 2);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kEsdeAlmacen, kMedida, kEstaEnElAlmacen, kNuevoCodigo,
                  "INSERT INTO Articulos_Almacenes ( Id, Codigo, Almacen, Cantidad, Pendiente ) "
                  "SELECT 42 AS Expr1, 'A100' AS Expr2, '01' AS Expr3, 24 AS Expr4, 120 AS Expr5"));
  EXPECT_EQ(pair("A100", "01"), "24/120");
}

TEST_F(WarehouseStockTest, TheSecondMovementOfAPairAddsToItsRow) {
  row("1", "A100", "01", "24", "120");
  warehouses.ActualizarStock("A100", "01", -2, 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kMedida, kEstaEnElAlmacen,
                          "UPDATE  Articulos_Almacenes SET Cantidad = Cantidad + 24, Pendiente = "
                          "Pendiente + -24 WHERE(Codigo ='A100' and Almacen ='01' )"));
  EXPECT_EQ(pair("A100", "01"), "48/96");
  EXPECT_EQ(count(), "1");
}

TEST_F(WarehouseStockTest, BSumarFalseTakesOff) {
  warehouses.ActualizarStock("A100", "01", 1, 2, false);
  EXPECT_EQ(pair("A100", "01"), "-24/-12");
  warehouses.ActualizarStock("A100", "01", 1, 2, false);
  EXPECT_EQ(pair("A100", "01"), "-48/-24");
}

TEST_F(WarehouseStockTest, OnlyTheReceivedQuantityIsRounded) {
  warehouses.ActualizarStock("A100", "01", 0.0011, 0.0011);
  EXPECT_EQ(pair("A100", "01"), "0,01/0,0132");
}

TEST_F(WarehouseStockTest, TheArticlesOwnTotalIsNotTouched) {
  warehouses.ActualizarStock("A100", "01", 1, 1);
  warehouses.DescargarStock_V("A100", "01", 0, 1, false);
  EXPECT_EQ(of("A100", "Existencia"), "50");
}

TEST_F(WarehouseStockTest, ActualizarStockSundIsTheSameInStockUnits) {
  warehouses.ActualizarStock_sund("A100", "01", 10, 2.5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kEsdeAlmacen, kEstaEnElAlmacen, kNuevoCodigo,
                  "INSERT INTO Articulos_Almacenes ( Id, Codigo, Almacen, Cantidad, Pendiente ) "
                  "SELECT 1 AS Expr1, 'A100' AS Expr2, '01' AS Expr3, 2.5 AS Expr4, 10 AS Expr5"));
  warehouses.ActualizarStock_sund("A100", "01", 10, 2.5, false);
  EXPECT_EQ(pair("A100", "01"), "0/0");
}

// All numbers are bare here: what is on order keeps six decimals, in any country.
TEST_F(WarehouseStockTest, NumbersHaveADecimalPointInAnyLocale) {
  for (const char* locale : {"es-ES", "neutral"}) {
    StockShop there(test::localeSettings(locale));
    there.article("A100");
    ClsArticulosAlmacenes().ActualizarStock("A100", "01", 0.123456789, 1234.5);
    EXPECT_EQ(there.last(),
              "INSERT INTO Articulos_Almacenes ( Id, Codigo, Almacen, Cantidad, Pendiente ) SELECT "
              "1 AS Expr1, 'A100' AS Expr2, '01' AS Expr3, 1234.5 AS Expr4, 0.123457 AS Expr5");
  }
}

TEST_F(WarehouseStockTest, AReceptionMovesWhatWasOnOrderToTheStock) {
  row("1", "A100", "01", "0", "120");
  warehouses.ActualizarStock_Recep("A100", "01", 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kMedida,
                          "UPDATE  Articulos_Almacenes SET Cantidad = Cantidad + 24, Pendiente = "
                          "Pendiente + -24 WHERE(Codigo ='A100' and Almacen ='01' )"));
  EXPECT_EQ(pair("A100", "01"), "24/96");
}

TEST_F(WarehouseStockTest, OnlyWhatIsOnOrderIsRoundedInAReception) {
  row("1", "A100", "01", "0", "0");
  warehouses.ActualizarStock_Recep("A100", "01", 0.0011);
  EXPECT_EQ(pair("A100", "01"), "0,0132/-0,01");
}

TEST_F(WarehouseStockTest, AReceptionOfAMissingPairMakesNoRow) {
  warehouses.ActualizarStock_Recep("A100", "01", 2);
  EXPECT_EQ(count(), "0");
}

TEST_F(WarehouseStockTest, ActualizarStockAlmSetsTheStockOfAPair) {
  row("1", "A100", "01", "3", "7");
  warehouses.ActualizarStock_Alm("A100", "01", "40,25");
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen,
                          "UPDATE  Articulos_Almacenes SET Cantidad =  40.25 WHERE(Codigo ='A100' "
                          "and Almacen ='01' )"));
  EXPECT_EQ(pair("A100", "01"), "40,25/7");
}

TEST_F(WarehouseStockTest, ActualizarStockAlmOfAMissingPairChangesNothingSilently) {
  warehouses.ActualizarStock_Alm("A100", "01", 40);
  EXPECT_EQ(count(), "0");
}

// ---- Sales

TEST_F(WarehouseStockTest, ASaleTakesOffTheDeliveredQuantityAlone) {
  row("1", "A100", "01", "10", "7");
  warehouses.DescargarStock_V("A100", "01", 5, 3, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kRestaStock, kEstaEnElAlmacen,
                          "UPDATE  Articulos_Almacenes SET Cantidad = Cantidad + -3 WHERE(Codigo "
                          "='A100' and Almacen ='01' )"));
  EXPECT_EQ(pair("A100", "01"), "7/7");
  warehouses.DescargarStock_V("A100", "01", 5, 3);
  EXPECT_EQ(pair("A100", "01"), "10/7");
}

TEST_F(WarehouseStockTest, ASaleFromAnEmptyWarehouseLeavesANegativeRow) {
  warehouses.DescargarStock_V("A100", "01", 5, 3, false);
  EXPECT_EQ(last(),
            "INSERT INTO Articulos_Almacenes ( Id, Codigo, Almacen, Cantidad, Pendiente ) SELECT 1 "
            "AS Expr1, 'A100' AS Expr2, '01' AS Expr3, -3 AS Expr4, -5 AS Expr5");
  EXPECT_EQ(pair("A100", "01"), "-3/-5");
}

TEST_F(WarehouseStockTest, ASaleOfAnArticleThatSalesDoNotTakeOffDoesNothing) {
  article("B200", {.restar = false});
  warehouses.DescargarStock_V("B200", "01", 5, 3, false);
  EXPECT_EQ(count(), "0");
  warehouses.ActualizarStock("B200", "01", 0, 1);
  EXPECT_EQ(pair("B200", "01"), "1/0");
}

TEST_F(WarehouseStockTest, ATransferIsTwoCallsInOneTransaction) {
  row("1", "A100", "01", "10");
  ConnectionPtr connection;
  warehouses.EstaEnElAlmacen("A100", "01", connection);
  connection->BeginTrans();
  warehouses.ActualizarStock_sund("A100", "01", 0, 4, false, false, connection);
  warehouses.ActualizarStock_sund("A100", "02", 0, 4, true, false, connection);
  connection->CommitTrans();
  EXPECT_EQ(pair("A100", "01"), "6/0");
  EXPECT_EQ(pair("A100", "02"), "4/0");
}

TEST_F(WarehouseStockTest, TheFreeTextAndArticlesWithoutStockAreLeftAloneSilently) {
  article("$$$");
  article("S1", {.actualizar = false});
  for (const char* code : {"$$$", "S1", "not there"}) {
    row("1", code, "01", "1", "1");
    warehouses.ActualizarStock_Alm(code, "01", 9);
    warehouses.ActualizarStock_Recep(code, "01", 9);
    warehouses.ActualizarStock(code, "01", 9, 9);
    warehouses.ActualizarStock_sund(code, "01", 9, 9);
    warehouses.DescargarStock_V(code, "01", 9, 9);
    EXPECT_EQ(pair(code, "01"), "1/1") << code;
    shop.run("DELETE FROM Articulos_Almacenes");
  }
}

// ---- Reads

TEST_F(WarehouseStockTest, GetStockActualSumsAllWarehousesAndIsEmptyWithoutARow) {
  row("1", "A100", "01", "4.5");
  row("2", "A100", "02", "2.5");
  row("3", "B200", "01", "9");
  EXPECT_EQ(warehouses.GetStockActual("A100"), Variant(7.0));
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT sum(Cantidad) AS Stock FROM Articulos_Almacenes WHERE Codigo =  'A100'"));
  EXPECT_TRUE(warehouses.GetStockActual("C300").isEmpty());
}

TEST_F(WarehouseStockTest, GetStockActualDifSumsTheOtherWarehouses) {
  row("1", "A100", "01", "4.5");
  row("2", "A100", "02", "2.5");
  row("3", "A100", "03", "1");
  EXPECT_EQ(warehouses.GetStockActualDif("01", "A100"), Variant(3.5));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT sum(Cantidad) AS Stock FROM Articulos_Almacenes WHERE(Almacen <> "
                          " '01' and Codigo =  'A100')"));
  EXPECT_TRUE(warehouses.GetStockActualDif("01", "C300").isEmpty());
}

TEST_F(WarehouseStockTest, EstaEnElAlmacenTellsWhetherAPairHasARow) {
  row("1", "A100", "01", "0");
  EXPECT_TRUE(warehouses.EstaEnElAlmacen("A100", "01"));
  EXPECT_FALSE(warehouses.EstaEnElAlmacen("A100", "02"));
  EXPECT_EQ(shop.statements().front(), kEstaEnElAlmacen);
}

TEST_F(WarehouseStockTest, CodigoLibreTakesTheWarehouseFirst) {
  row("1", "A100", "01", "0");
  EXPECT_FALSE(warehouses.CodigoLibre("01", "A100"));
  EXPECT_TRUE(warehouses.CodigoLibre("A100", "01"));
  EXPECT_EQ(shop.statements().front(),
            "SELECT Almacen, Codigo FROM Articulos_Almacenes  where (Almacen ='01' and "
            "Codigo='A100')");
}

TEST_F(WarehouseStockTest, ObtenerColAlmaActivosReadsTheImportDatabase) {
  row("1", "A100", "99", "0");
  row("1", "A100", "02", "0", "0", selector::kImport);
  row("2", "A100", "01", "0", "0", selector::kImport);
  row("3", "B200", "03", "0", "0", selector::kImport);
  EXPECT_THAT(warehouses.ObtenerColAlmaActivos("A100"), ElementsAre(Variant("02"), Variant("01")))
      << "in the order of the rows";
  EXPECT_EQ(last(), "SELECT Almacen FROM Articulos_Almacenes WHERE Codigo =  'A100'");
  EXPECT_THAT(warehouses.ObtenerColAlmaActivos("none"), IsEmpty());
}

TEST_F(WarehouseStockTest, DeleteAllTakesTheRowsOfOneArticle) {
  row("1", "A100", "01", "0");
  row("2", "A100", "02", "0");
  row("3", "B200", "01", "0");
  warehouses.DeleteAll("A100");
  EXPECT_EQ(last(), "DELETE  FROM Articulos_Almacenes WHERE (Codigo = 'A100')");
  EXPECT_EQ(shop.text("SELECT Codigo FROM Articulos_Almacenes"), "B200");
}

TEST_F(WarehouseStockTest, NuevoCodigoIsTheGreatestKeyPlusOne) {
  EXPECT_EQ(warehouses.NuevoCodigo().toInt32(shop.apartment().locale()), 1);
  row("9", "A100", "01", "0");
  row("10", "A100", "02", "0");
  EXPECT_EQ(warehouses.NuevoCodigo().toInt32(shop.apartment().locale()), 11);
}

// ---- The grid of one article

class WarehouseGridTest : public WarehouseStockTest {
 protected:
  void open() { warehouses.IniciaRs({}, "seleccion", "A100"); }
  RecordsetPtr rows() { return warehouses.DataMember("Primary"); }
  void add(const char* warehouse, double stock) {
    warehouses.AddNew(true);
    rows()->Field("Almacén").Value(warehouse);
    rows()->Field("Cantidad").Value(stock);
  }
};

TEST_F(WarehouseGridTest, ANewRowHasTheKeyMinusOneAndNoCodeIsAsked) {
  open();
  shop.statements();
  warehouses.AddNew(true);
  EXPECT_EQ(rows()->Field("ID").Value(), Variant(-1));
  warehouses.AddNew();
  EXPECT_TRUE(rows()->Field("ID").Value().isEmpty());
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(WarehouseGridTest, UpdateIdGivesNewRowsConsecutiveKeysFromOneRead) {
  row("7", "A100", "01", "1");
  open();
  add("02", 2);
  add("03", 3);
  shop.statements();
  warehouses.UpdateId("A100");
  EXPECT_THAT(shop.statements(), ElementsAre(kNuevoCodigo));
  EXPECT_EQ(warehouses.AbsolutePosition(), 1);
  EXPECT_EQ(count(), "1") << "Update writes, not UpdateId";
  warehouses.Update();
  EXPECT_EQ(shop.text("SELECT Almacen FROM Articulos_Almacenes WHERE Id = 8"), "02");
  EXPECT_EQ(shop.text("SELECT Almacen FROM Articulos_Almacenes WHERE Id = 9"), "03");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Almacenes WHERE Codigo = 'A100'"), "3");
}

TEST_F(WarehouseGridTest, UpdateIdGivesKeysToTheNewRowsThatAFilterHidesToo) {
  row("7", "A100", "01", "1");
  open();
  add("02", 2);
  add("03", 3);
  const RecordsetPtr rows = warehouses.DataMember("Primary");
  rows->Filter("ID = -1");
  ASSERT_EQ(rows->RecordCount(), 2);
  warehouses.UpdateId("A100");
  warehouses.Update();
  rows->Filter("ID = 7");
  add("04", 4);
  rows->Filter("ID = 7");
  warehouses.UpdateId("A100");
  EXPECT_EQ(warehouses.AbsolutePosition(), 1);
  EXPECT_EQ(rows->Filter(), "ID = 7");
  rows->Filter("");
  warehouses.Update();
  EXPECT_EQ(shop.text("SELECT Almacen FROM Articulos_Almacenes WHERE Id = 9"), "03");
  EXPECT_EQ(shop.text("SELECT Almacen FROM Articulos_Almacenes WHERE Id = 10"), "04");
}

TEST_F(WarehouseGridTest, UpdateIdLeavesRowsThatAreStoredAlone) {
  row("7", "A100", "01", "1");
  open();
  warehouses.UpdateId("B200");
  warehouses.Update();
  EXPECT_EQ(shop.text("SELECT Codigo FROM Articulos_Almacenes WHERE Id = 7"), "A100");
}

TEST_F(WarehouseGridTest, UpdateIdOnAnEmptyGridDoesNothing) {
  open();
  shop.statements();
  warehouses.UpdateId("A100");
  warehouses.Update();
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(WarehouseGridTest, UpdateadAffectCurrentGivesTheRowItsArticle) {
  row("7", "A100", "01", "1");
  open();
  warehouses.UpdateadAffectCurrent("B200");
  EXPECT_FALSE(warehouses.EditingRecord());
  EXPECT_EQ(shop.text("SELECT Codigo FROM Articulos_Almacenes"), "A100");
  warehouses.Update();
  EXPECT_EQ(shop.text("SELECT Codigo FROM Articulos_Almacenes"), "B200");
}

TEST_F(WarehouseGridTest, DeleteOnlyMarksAndUpdateWritesAllRows) {
  row("1", "A100", "01", "1");
  row("2", "A100", "02", "2");
  open();
  rows()->Field("Cantidad").Value(5);
  rows()->MoveNext();
  warehouses.Delete();
  EXPECT_EQ(count(), "2");
  rows()->MoveFirst();
  warehouses.Update();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(pair("A100", "01"), "5/0");
}

TEST_F(WarehouseGridTest, CancelBatchDropsAllThatIsPending) {
  row("1", "A100", "01", "1");
  open();
  rows()->Field("Cantidad").Value(5);
  add("02", 2);
  warehouses.CancelBatch();
  warehouses.MoveFirst();
  warehouses.Update();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(pair("A100", "01"), "1/0");
}

TEST_F(WarehouseGridTest, ComprobarAlmcenIsTrueForAWarehouseThatIsNotInTheGrid) {
  row("1", "A100", "01", "1");
  row("2", "A100", "02", "1");
  shop.run("UPDATE Articulos_Almacenes SET Almacen = Null WHERE Id = 1");
  open();
  EXPECT_TRUE(warehouses.ComprobarAlmcen("01"));
  EXPECT_FALSE(warehouses.ComprobarAlmcen("02"));
  EXPECT_TRUE(warehouses.ComprobarAlmcen("")) << "Null is passed over";
  EXPECT_EQ(warehouses.AbsolutePosition(), 1) << "a clone is walked";
}

TEST_F(WarehouseGridTest, ComprobarAlmcenSeesRowsThatAreNotStoredYet) {
  open();
  EXPECT_TRUE(warehouses.ComprobarAlmcen("02"));
  add("02", 1);
  rows()->Update();
  EXPECT_FALSE(warehouses.ComprobarAlmcen("02"));
}

TEST_F(WarehouseGridTest, SumaEstockSumsTheGridAndPassesOverNull) {
  row("1", "A100", "01", "1.5");
  row("2", "A100", "02", "Null");
  row("3", "B200", "01", "40");
  open();
  EXPECT_EQ(warehouses.SumaEstock(), 1.5);
  add("03", 2);
  rows()->Update();
  EXPECT_EQ(warehouses.SumaEstock(), 3.5);
  EXPECT_EQ(warehouses.AbsolutePosition(), 3);
}

TEST_F(WarehouseGridTest, SumaEstockOfAnEmptyGridIsZero) {
  open();
  EXPECT_EQ(warehouses.SumaEstock(), 0);
}

// ---- Bad input

TEST_F(WarehouseStockTest, BadQuantitiesAndHostileTextChangeNothing) {
  row("1", "A100", "01", "1", "1");
  EXPECT_EQ(errorOf([&] { warehouses.ActualizarStock("A100", "01", "x", 1); }),
            errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { warehouses.ActualizarStock_sund("A100", "01", 1, Null{}); }),
            errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { warehouses.DescargarStock_V("A100", "01", "x", 1); }),
            errors::kTypeMismatch);
  for (const char* attack :
       {"'", "' or '1'='1", "01' ) --", "x'; DELETE FROM Articulos_Almacenes"}) {
    EXPECT_NE(errorOf([&] { warehouses.ActualizarStock("A100", attack, 9, 9); }), 0) << attack;
    EXPECT_NE(errorOf([&] { warehouses.ActualizarStock_Alm("A100", attack, 9); }), 0) << attack;
    EXPECT_NE(errorOf([&] { warehouses.ActualizarStock_Recep("A100", attack, 9); }), 0) << attack;
    EXPECT_NE(errorOf([&] { warehouses.DescargarStock_V("A100", attack, 9, 9); }), 0) << attack;
    EXPECT_NE(errorOf([&] { warehouses.GetStockActual(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { warehouses.DeleteAll(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { warehouses.IniciaRs({}, "seleccion", attack); }), 0) << attack;
  }
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(pair("A100", "01"), "1/1");
}

TEST_F(WarehouseStockTest, AWarehouseCodeThatIsTooLongIsRefusedWhole) {
  EXPECT_NE(errorOf([&] { warehouses.ActualizarStock("A100", "01234567890", 1, 1); }), 0);
  EXPECT_EQ(count(), "0");
}

TEST(ClsArticulosAlmacenesSlots, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsArticulosAlmacenes::component().members())
    names.push_back(slot.name);
  names.erase(std::find(names.begin(), names.end(), "EditingRecord"), names.end());
  EXPECT_THAT(names,
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "ComprobarAlmcen", "SumaEstock", "DeleteAll",
                          "ActualizarStock_Alm", "ActualizarStock_Recep", "ActualizarStock",
                          "ActualizarStock_sund", "DescargarStock_V", "EstaEnElAlmacen",
                          "ObtenerColAlmaActivos", "IniciaRs", "NuevoCodigo", "GetStockActualDif",
                          "GetStockActual", "SeguridadPermiso", "CodigoLibre"));
}

}  // namespace
}  // namespace tavelor
