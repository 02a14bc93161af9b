// SPDX-License-Identifier: MIT
// Stock of articles by lot.
#include "tavelor/articles/articulos_lotes.hpp"

#include "tavelor/frame/component.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/session_global.hpp"
#include "tests/classes/stock.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::StockShop;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTodos =
    "SELECT Id, Lote, Codigo AS Artículo, Existencia, Activo, Caduca, Stock FROM Articulos_Lotes";
constexpr const char* kMedida =
    "SELECT Medida_compra as Medida FROM Articulos WHERE Codigo = 'A100'";
constexpr const char* kExisteLote =
    "SELECT Id, Codigo AS Código, Lote FROM Articulos_Lotes  Where ( Codigo =  'A100' and Lote =  "
    "'L1')";
constexpr const char* kDescargaStockLote =
    "SELECT Id, Codigo AS Código, Lote FROM Articulos_Lotes  Where ( Codigo =  'A100' and Lote =  "
    "'L1' And Stock <> 0)";
constexpr const char* kNuevoCodigo = "SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Lotes";
constexpr const char* kNoActivos = "UPDATE  Articulos_Lotes SET Activo = 0 WHERE(Codigo ='A100' )";
constexpr const char* kActivarLoteUso =
    "SELECT Activar_Lote_Uso FROM Numeradores WHERE ((Periodo)='2026');";

class LotsShop : protected StockShop {
 protected:
  explicit LotsShop(const Settings& settings = test::fastSettings()) : StockShop(settings) {
    article("A100", {.medida = 12});
    auto& apartment = shop.apartment();
    apartment.sessionGlobal().SetValue(apartment.version().sessionRoot() + "Periodo\\", "2026");
    shop.run("INSERT INTO Numeradores (Codigo, Periodo) VALUES ('001', '2026')");
  }

  void activateByUse(bool on) {
    shop.run(std::string("UPDATE Numeradores SET Activar_Lote_Uso = ") + (on ? "True" : "False"));
  }
  void lot(const std::string& id, const std::string& code, const std::string& word,
           const std::string& stock, const std::string& active = "0",
           const std::string& keepsStock = "True") {
    shop.run("INSERT INTO Articulos_Lotes (Id, Codigo, Lote, Existencia, Activo, Stock) VALUES (" +
             id + ", '" + code + "', '" + word + "', " + stock + ", " + active + ", " + keepsStock +
             ")");
  }
  /// "stock/active" of a lot.
  std::string lotOf(const std::string& word, const std::string& code = "A100") {
    const std::string of =
        " FROM Articulos_Lotes WHERE Codigo = '" + code + "' AND Lote = '" + word + "'";
    return shop.text("SELECT Existencia" + of) + "/" + shop.text("SELECT Activo" + of);
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Lotes"); }

  ClsArticulosLotes lots;
};

class LotsTest : public testing::Test, protected LotsShop {};

class ServerLotsTest : public testing::Test, protected LotsShop {
 protected:
  ServerLotsTest() : LotsShop(test::serverSettings()) {}
};

// ---- Modes

TEST_F(LotsTest, TheModesOfIniciaRs) {
  for (const char* mode : {"todos_lista", "seleccion", "seleccionlote", "seleccionlotestock",
                           "seleccionartlote", "seleccionsololote"}) {
    std::string word = mode;
    lots.IniciaRs(word, "X1");
    EXPECT_EQ(word, mode);
  }
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "SELECT  Lote, Codigo AS Artículo,  Existencia, Activo, Caduca, Id FROM Articulos_Lotes",
          std::string(kTodos) + " WHERE Codigo =  'X1'",
          "SELECT Lote as Código , Codigo AS Artículo, Existencia FROM Articulos_Lotes WHERE "
          "Codigo =  'X1'",
          "SELECT Lote, Codigo AS Artículo, Existencia FROM Articulos_Lotes WHERE Codigo =  'X1' "
          "And Existencia > 0",
          " SELECT Articulos_Lotes.Codigo as Código , Articulos.Descripcion AS Descripción, "
          "Articulos_Lotes.lote, Articulos_Lotes.Activo, Articulos_Lotes.id FROM Articulos INNER "
          "JOIN Articulos_Lotes ON Articulos.Codigo = Articulos_Lotes.Codigo WHERE "
          "(((Articulos_Lotes.Lote) like  'X1'))",
          "SELECT Lote as Código , Codigo AS Artículo, Activo, Id FROM Articulos_Lotes WHERE "
          "Codigo like  'X1'"));
}

TEST_F(LotsTest, AnyOtherModeOpensAllLotsAndReadsTodos) {
  std::string mode = "loquesea";
  lots.IniciaRs(mode);
  EXPECT_EQ(mode, "todos");
  EXPECT_THAT(shop.statements(), ElementsAre(kTodos));
}

TEST_F(LotsTest, SeleccionartloteTakesAPattern) {
  lot("1", "A100", "L2026-01", "1");
  lot("2", "A100", "L2026-02", "1");
  lot("3", "A100", "M1", "1");
  lots.IniciaRs("seleccionartlote", "L2026*");
  const RecordsetPtr rows = lots.DataMember("Primary");
  EXPECT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(rows->Field("Descripción").Value(), Variant("Artículo A100"));
}

TEST_F(LotsTest, LotsThatAreShownWithTheirArticlesAreEditedAddedAndDeleted) {
  lot("1", "A100", "L1", "5");
  std::string mode = "seleccionartlote";
  lots.IniciaRs(mode, "L*");
  const RecordsetPtr rows = lots.DataMember("Primary");
  rows->Field("Activo").Value(-1);
  lots.Update();
  EXPECT_EQ(lotOf("L1"), "5/-1");

  rows->AddNew({"Código", "lote", "id"}, {"A100", "L2", 2});
  lots.Update();
  EXPECT_EQ(count(), "2");
  rows->Field("Descripción").Value("otra");
  EXPECT_EQ(errorOf([&] { lots.Update(); }), errors::kMultipleStep);
  lots.Cancel();

  lots.MoveFirst();
  lots.Delete();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "1");
}

TEST_F(LotsTest, RequeryWithoutAWordReadsTodosAndRestoresTheOrder) {
  lot("1", "A100", "B", "1");
  lot("2", "A100", "A", "1");
  lots.IniciaRs();
  lots.SetOrder(1, "", "todos");
  std::string word;
  lots.Requery(word);
  EXPECT_EQ(word, "Todos");
  EXPECT_EQ(lots.DataMember("Primary")->Field("Lote").Value(), Variant("A"));
}

// ---- Purchases

TEST_F(LotsTest, APurchaseWithANewLotLeavesItTheOnlyActiveOne) {
  lot("41", "A100", "L0", "5", "-1");
  lot("42", "B200", "L0", "5", "-1");
  lots.ActualizarStock("A100", "L1", 9, 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kMedida, kExisteLote, kNuevoCodigo, kNoActivos,
                          "INSERT INTO Articulos_Lotes ( Id, Codigo, Lote, Existencia, Activo ) "
                          "SELECT 43 AS Expr1, 'A100' AS Expr2, 'L1' AS Expr3, 24 AS Expr4, -1 AS "
                          "Expr5"));
  EXPECT_EQ(lotOf("L1"), "24/-1");
  EXPECT_EQ(lotOf("L0"), "5/0");
  EXPECT_EQ(lotOf("L0", "B200"), "5/-1") << "other articles keep theirs";
}

TEST_F(LotsTest, APurchaseIntoALotThatIsThereLeavesTheActiveOneAsItWas) {
  lot("1", "A100", "L0", "5", "-1");
  lot("2", "A100", "L1", "1");
  lots.ActualizarStock("A100", "L1", 9, 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kMedida, kExisteLote,
                          "UPDATE  Articulos_Lotes SET Existencia = Existencia + 24 WHERE(Codigo "
                          "='A100' and Lote ='L1')"));
  EXPECT_EQ(lotOf("L1"), "25/0");
  EXPECT_EQ(lotOf("L0"), "5/-1");
}

TEST_F(LotsTest, APurchaseIsTakenBackWithTheOtherSign) {
  lot("2", "A100", "L1", "30");
  lots.ActualizarStock("A100", "L1", 0, 2, false);
  EXPECT_EQ(lotOf("L1"), "6/0");
}

TEST_F(LotsTest, ActualizarStockSundIsTheSameInStockUnits) {
  lots.ActualizarStock_sund("A100", "L1", 9, 2.5);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kExisteLote, kNuevoCodigo, kNoActivos,
                          "INSERT INTO Articulos_Lotes ( Id, Codigo, Lote, Existencia, Activo ) "
                          "SELECT 1 AS Expr1, 'A100' AS Expr2, 'L1' AS Expr3, 2.5 AS Expr4, -1 AS "
                          "Expr5"));
  lots.ActualizarStock_sund("A100", "L1", 9, 2.5, false);
  EXPECT_EQ(lotOf("L1"), "0/-1");
}

TEST_F(LotsTest, APurchaseIsRoundedByTheFormatOfQuantities) {
  lots.ActualizarStock("A100", "L1", 0, 0.0011);
  EXPECT_EQ(lotOf("L1"), "0,01/-1");
  lots.ActualizarStock_sund("A100", "L1", 0, 1.005);
  EXPECT_EQ(lotOf("L1"), "1,02/-1");
}

TEST_F(LotsTest, NoFlagOfTheArticleIsAsked) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  article("S1", {.actualizar = false, .restar = false});
  lots.ActualizarStock_sund("S1", "L1", 0, 3);
  shop.run("UPDATE Articulos_Lotes SET Stock = True");
  lots.DescargarStock_V("S1", "L1", 0, 1, false);
  EXPECT_EQ(lotOf("L1", "S1"), "2/-1");
}

TEST_F(LotsTest, WithoutALotAndForTheFreeTextNothingHappens) {
  article("$$$");
  for (const auto& [code, word] : std::vector<std::pair<const char*, Variant>>{
           {"A100", "0"}, {"A100", ""}, {"A100", 0}, {"A100", Variant()}, {"$$$", "L1"}}) {
    lots.ActualizarStock(code, word, 1, 1);
    lots.ActualizarStock_sund(code, word, 1, 1);
    lots.DescargarStock_V(code, word, 1, 1, false);
  }
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(count(), "0");
  lots.ActualizarStock("A100", "00", 1, 1);
  EXPECT_EQ(count(), "1") << "a lot of that word";
}

// ---- Sales

TEST_F(LotsTest, ASaleFromAnUnknownLotMakesItActiveWithNegativeStock) {
  lot("1", "A100", "L0", "5", "-1");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kExisteLote, kNoActivos, kNuevoCodigo,
                          "INSERT INTO Articulos_Lotes ( Id, Codigo, Lote, Existencia, Activo ) "
                          "SELECT 2 AS Expr1, 'A100' AS Expr2, 'L1' AS Expr3, -2 AS Expr4, -1  AS "
                          "Expr5"));
  EXPECT_EQ(lotOf("L1"), "-2/-1");
  EXPECT_EQ(lotOf("L0"), "5/0");
}

TEST_F(LotsTest, ASaleIsNotConvertedByTheMeasure) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  lot("1", "A100", "L1", "30");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_EQ(lotOf("L1"), "28/0");
  lots.DescargarStock_V("A100", "L1", 9, 2);
  EXPECT_EQ(lotOf("L1"), "30/0");
}

TEST_F(LotsTest, WithoutLotsOfUseASaleChangesTheStockAndNoActiveLot) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  activateByUse(false);
  lot("1", "A100", "L0", "5", "-1");
  lot("2", "A100", "L1", "5");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kExisteLote, kActivarLoteUso, kDescargaStockLote,
                          "UPDATE  Articulos_Lotes SET Existencia = Existencia + -2 WHERE(Codigo "
                          "='A100' and Lote ='L1')"));
  EXPECT_EQ(lotOf("L0"), "5/-1");
  EXPECT_EQ(lotOf("L1"), "3/0");
}

TEST_F(LotsTest, WithLotsOfUseTheLotSoldBecomesTheOnlyActiveOne) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  activateByUse(true);
  lot("1", "A100", "L0", "5", "-1");
  lot("2", "A100", "L1", "5");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kExisteLote, kActivarLoteUso, kNoActivos, kDescargaStockLote,
                          "UPDATE  Articulos_Lotes SET Existencia = Existencia + -2 , "
                          "Articulos_Lotes.Activo = -1 WHERE(Codigo ='A100' and Lote ='L1')"));
  EXPECT_EQ(lotOf("L0"), "5/0");
  EXPECT_EQ(lotOf("L1"), "3/-1");
  EXPECT_EQ(lots.GetPredeterminada("A100"), Variant("L1"));
}

// The active lot has been put out by then. It looks like the wrong order and must stay.
TEST_F(LotsTest, WithLotsOfUseASaleFromALotThatKeepsNoStockLeavesNoActiveLot) {
  activateByUse(true);
  lot("1", "A100", "L0", "5", "-1");
  lot("2", "A100", "L1", "5", "-1", "False");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_EQ(lotOf("L0"), "5/0");
  EXPECT_EQ(lotOf("L1"), "5/0");
  EXPECT_TRUE(lots.GetPredeterminada("A100").isEmpty());
}

TEST_F(LotsTest, WithoutLotsOfUseASaleFromALotThatKeepsNoStockDoesNothing) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  activateByUse(false);
  lot("1", "A100", "L1", "5", "-1", "False");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_EQ(lotOf("L1"), "5/-1");
}

TEST_F(LotsTest, ASalesLastWordOnALotIsTheCallersTransaction) {
  lot("1", "A100", "L1", "5");
  ConnectionPtr connection;
  lots.ExisteLote("A100", "L1", connection);
  connection->BeginTrans();
  lots.DescargarStock_V("A100", "L1", 0, 2, false, connection);
  lots.DescargarStock_V("A100", "L2", 0, 2, false, connection);
  connection->RollbackTrans();
  EXPECT_EQ(lotOf("L1"), "5/0");
  EXPECT_EQ(count(), "1");
}

// ---- On a server a lot is active with 1, and lots of use are always on.

TEST_F(ServerLotsTest, ASaleMakesTheLotActiveWithOneWithoutReadingThePeriod) {
  lot("1", "A100", "L0", "5", "1");
  lot("2", "A100", "L1", "5");
  lots.DescargarStock_V("A100", "L1", 9, 2, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kExisteLote, kNoActivos, kDescargaStockLote,
                          "UPDATE  Articulos_Lotes SET Existencia = Existencia + -2 , "
                          "Articulos_Lotes.Activo = 1 WHERE(Codigo ='A100' and Lote ='L1')"));
  EXPECT_EQ(lotOf("L0"), "5/0");
  EXPECT_EQ(lotOf("L1"), "3/1");
}

TEST_F(ServerLotsTest, ANewLotIsActiveWithMinusOneThereToo) {
  lots.ActualizarStock_sund("A100", "L1", 0, 2);
  EXPECT_EQ(lotOf("L1"), "2/-1");
  lots.DescargarStock_V("A100", "L2", 0, 2, false);
  EXPECT_EQ(lotOf("L2"), "-2/-1");
}

// ---- Reads

TEST_F(LotsTest, ExisteActivoCountsMinusOneAlone) {
  lot("1", "A100", "L1", "5", "1");
  EXPECT_FALSE(lots.ExisteActivo("A100"));
  EXPECT_EQ(lots.GetPredeterminada("A100"), Variant("L1")) << "any flag but 0 counts there";
  shop.run("UPDATE Articulos_Lotes SET Activo = -1");
  EXPECT_TRUE(lots.ExisteActivo("A100"));
  EXPECT_FALSE(lots.ExisteActivo("B200"));
  EXPECT_EQ(shop.statements().front(),
            "SELECT Codigo, Activo FROM Articulos_Lotes WHERE (Activo =  -1 and Codigo =  'A100')");
}

TEST_F(LotsTest, GetPredeterminadaIsTheActiveLotOrEmpty) {
  EXPECT_TRUE(lots.GetPredeterminada("A100").isEmpty());
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo, lote, Activo FROM Articulos_Lotes WHERE (Activo <>  0 "
                          "and Codigo =  'A100')"));
  lot("1", "A100", "L1", "5");
  lot("2", "A100", "L2", "5", "-1");
  EXPECT_EQ(lots.GetPredeterminada("A100"), Variant("L2"));
}

TEST_F(LotsTest, GetPredeterminadaOfSeveralActiveLotsIsTheOneStoredFirst) {
  lot("1", "A100", "L9", "5", "-1");
  lot("2", "A100", "L1", "5", "-1");
  EXPECT_EQ(lots.GetPredeterminada("A100"), Variant("L9"));
}

TEST_F(LotsTest, GetUltimoLoteTakesAKey) {
  lot("7", "A100", "L1", "5");
  EXPECT_EQ(lots.GetUltimoLote(7), Variant("L1"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo, lote, Activo FROM Articulos_Lotes WHERE (Id =  7)"));
  EXPECT_TRUE(lots.GetUltimoLote(8).isEmpty());
}

TEST_F(LotsTest, GetUltimoIDLotePassesOverLotsThatAreSetAside) {
  EXPECT_TRUE(lots.GetUltimoIDLote("A100").isEmpty());
  lot("7", "A100", "L1", "5", "0");
  lot("8", "A100", "L2", "5", "2");
  EXPECT_EQ(lots.GetUltimoIDLote("A100").toInt32(shop.apartment().locale()), 7);
  EXPECT_EQ(last(),
            "SELECT Max(Articulos_Lotes.Id) AS MáxDeId FROM Articulos_Lotes WHERE (Activo <>  2 "
            "and Codigo =  'A100')");
}

TEST_F(LotsTest, ExisteLoteAsksForTheArticleAndEsValidoLoteForAny) {
  lot("1", "B200", "L1", "5");
  EXPECT_FALSE(lots.ExisteLote("A100", "L1"));
  EXPECT_TRUE(lots.ExisteLote("B200", "L1"));
  EXPECT_TRUE(lots.EsValidoLote("L1"));
  EXPECT_FALSE(lots.EsValidoLote("l1")) << "case counts";
  EXPECT_EQ(shop.statements()[2],
            "SELECT Id, Codigo AS Código, Lote FROM Articulos_Lotes  Where ( Lote =  'L1')");
}

TEST_F(LotsTest, DescargaStockLoteIsTheFlagOfTheLot) {
  lot("1", "A100", "L1", "5", "0", "False");
  EXPECT_FALSE(lots.DescargaStockLote("A100", "L1"));
  EXPECT_THAT(shop.statements(), ElementsAre(kDescargaStockLote));
  shop.run("UPDATE Articulos_Lotes SET Stock = True");
  EXPECT_TRUE(lots.DescargaStockLote("A100", "L1"));
}

TEST_F(LotsTest, TheSumsOfLots) {
  lot("1", "A100", "L1", "5");
  lot("2", "A100", "L2", "2.5");
  lot("3", "B200", "L1", "40");
  EXPECT_EQ(lots.GetStockActualLotes("A100"), Variant(7.5));
  EXPECT_EQ(lots.GetStockActualLote("L1", "A100"), Variant(5.0));
  EXPECT_EQ(lots.GetStockActualLotesDif("L1", "A100"), Variant(2.5));
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT sum(Existencia) AS Stock FROM Articulos_Lotes WHERE Codigo =  'A100'",
                  "SELECT sum(Existencia) AS Stock FROM Articulos_Lotes WHERE (Lote =  'L1' and "
                  "Codigo =  'A100')",
                  "SELECT sum(Existencia) AS Stock FROM Articulos_Lotes WHERE (Lote <>  'L1' and "
                  "Codigo =  'A100')"));
  EXPECT_TRUE(lots.GetStockActualLotes("none").isEmpty());
  EXPECT_TRUE(lots.GetStockActualLote("none", "A100").isEmpty());
  EXPECT_TRUE(lots.GetStockActualLotesDif("L1", "B200").isEmpty());
}

TEST_F(LotsTest, GetArticuloIsTheArticleOfALotOrPlusOneForSeveral) {
  EXPECT_EQ(lots.GetArticulo("L1"), "");
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo FROM Articulos_Lotes WHERE (Lote =  'L1' )"));
  lot("1", "A100", "L1", "5");
  EXPECT_EQ(lots.GetArticulo("L1"), "A100");
  lot("2", "B200", "L1", "5");
  EXPECT_EQ(lots.GetArticulo("L1"), "+1");
}

TEST_F(LotsTest, CodigoLibreTakesTheLotFirst) {
  lot("1", "A100", "L1", "5");
  EXPECT_FALSE(lots.CodigoLibre("L1", "A100"));
  EXPECT_TRUE(lots.CodigoLibre("A100", "L1"));
  EXPECT_EQ(shop.statements().front(),
            "SELECT lote , Codigo FROM Articulos_Lotes  where (lote ='L1' and codigo='A100')");
}

// ---- Small updates and rows

TEST_F(LotsTest, ActualizarFechaWritesTheExpiryAsTheLocalePrintsIt) {
  lot("1", "A100", "L1", "5");
  lots.ActualizarFecha("A100", "L1", Date::of(2026, 3, 5));
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Articulos_Lotes SET   Caduca = '05/03/2026' WHERE(Codigo "
                          "='A100' and Lote ='L1')"));
  EXPECT_EQ(shop.text("SELECT Caduca FROM Articulos_Lotes"), "05/03/2026");
  EXPECT_NE(errorOf([&] { lots.ActualizarFecha("A100", "L1", "pronto"); }), 0);
  EXPECT_EQ(shop.text("SELECT Caduca FROM Articulos_Lotes"), "05/03/2026");
}

TEST(LotsLocale, ActualizarFechaUnderTheNeutralLocaleIsTheSameDay) {
  StockShop neutral(test::localeSettings("neutral"));
  neutral.shop.run("INSERT INTO Articulos_Lotes (Id, Codigo, Lote) VALUES (1, 'A100', 'L1')");
  ClsArticulosLotes().ActualizarFecha("A100", "L1", Date::of(2026, 3, 5));
  EXPECT_EQ(neutral.last(),
            "UPDATE  Articulos_Lotes SET   Caduca = '2026-03-05' WHERE(Codigo ='A100' and Lote "
            "='L1')");
  EXPECT_EQ(neutral.shop.text("SELECT Caduca FROM Articulos_Lotes"), "2026-03-05");
}

TEST(LotsLocale, QuantitiesHaveADecimalPointInAnyLocale) {
  for (const char* locale : {"es-ES", "neutral"}) {
    StockShop there(test::localeSettings(locale));
    ClsArticulosLotes().ActualizarStock_sund("A100", "L1", 0, 1234.5);
    EXPECT_EQ(there.last(),
              "INSERT INTO Articulos_Lotes ( Id, Codigo, Lote, Existencia, Activo ) SELECT 1 AS "
              "Expr1, 'A100' AS Expr2, 'L1' AS Expr3, 1234.5 AS Expr4, -1 AS Expr5");
  }
}

TEST_F(LotsTest, NoActivosAndDeleteAllWorkOnOneArticle) {
  lot("1", "A100", "L1", "5", "-1");
  lot("2", "A100", "L2", "5", "2");
  lot("3", "B200", "L1", "5", "-1");
  lots.NoActivos("A100");
  EXPECT_THAT(shop.statements(), ElementsAre(kNoActivos));
  EXPECT_EQ(lotOf("L1"), "5/0");
  EXPECT_EQ(lotOf("L2"), "5/0");
  EXPECT_EQ(lotOf("L1", "B200"), "5/-1");
  lots.DeleteAll("A100");
  EXPECT_EQ(last(), "DELETE  FROM Articulos_Lotes WHERE (Codigo = 'A100')");
  EXPECT_EQ(count(), "1");
}

TEST_F(LotsTest, AddNewGivesTheNextKeyWhateverItsLength) {
  lot("41", "A100", "L1", "5");
  lots.IniciaRs();
  lots.AddNew(true);
  const RecordsetPtr rows = lots.DataMember("Primary");
  EXPECT_EQ(rows->Field("Id").Value(), Variant(42));
  rows->Field("Lote").Value("L2");
  lots.Update();
  EXPECT_EQ(shop.text("SELECT Lote FROM Articulos_Lotes WHERE Id = 42"), "L2");
}

// ---- Bad input

TEST_F(LotsTest, BadQuantitiesAndHostileTextChangeNothing) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  lot("1", "A100", "L1", "5", "-1");
  EXPECT_EQ(errorOf([&] { lots.ActualizarStock("A100", "L1", 0, "x"); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { lots.ActualizarStock("A100", "L1", "x", 0); }), errors::kTypeMismatch)
      << "converted though it is dropped";
  EXPECT_EQ(errorOf([&] { lots.DescargarStock_V("A100", "L1", 0, Null{}); }),
            errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { lots.DescargarStock_V("A100", "L1", "x", 0); }), 0)
      << "a sale does not look at it";
  for (const char* attack : {"'", "' or '1'='1", "L1') --", "x'; DELETE FROM Articulos_Lotes"}) {
    EXPECT_NE(errorOf([&] { lots.ActualizarStock_sund("A100", attack, 9, 9); }), 0) << attack;
    EXPECT_NE(errorOf([&] { lots.DescargarStock_V("A100", attack, 9, 9); }), 0) << attack;
    EXPECT_NE(errorOf([&] { lots.ActualizarFecha("A100", attack, Date::of(2026, 1, 1)); }), 0);
    EXPECT_NE(errorOf([&] { lots.NoActivos(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { lots.DeleteAll(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { lots.GetArticulo(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { lots.GetUltimoLote(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { lots.IniciaRs("seleccion", attack); }), 0) << attack;
  }
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(lotOf("L1"), "5/-1");
}

TEST_F(LotsTest, AnArticleThatIsNotThereHasNoMeasureSoItsPurchaseCountsNothing) {
  lots.ActualizarStock("not there", "L1", 0, 5);
  EXPECT_EQ(lotOf("L1", "not there"), "0/-1");
}

TEST(ClsArticulosLotesSlots, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsArticulosLotes::component().members()) names.push_back(slot.name);
  names.erase(std::find(names.begin(), names.end(), "EditingRecord"), names.end());
  EXPECT_THAT(names,
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "DeleteAll", "IniciaRs", "ExisteLote", "EsValidoLote",
                          "DescargaStockLote", "ActualizarStock", "ActualizarStock_sund",
                          "ActualizarFecha", "DescargarStock_V", "NoActivos", "GetPredeterminada",
                          "GetUltimoLote", "GetUltimoIDLote", "ExisteActivo",
                          "GetStockActualLotesDif", "GetStockActualLote", "GetArticulo",
                          "NuevoCodigo", "GetStockActualLotes", "SeguridadPermiso", "CodigoLibre"));
}

}  // namespace
}  // namespace tavelor
