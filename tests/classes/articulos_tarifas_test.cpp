// SPDX-License-Identifier: MIT
// Sale tariffs of articles: columns A, B, C and rows D to T.
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/classes/articulos.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class TariffsTest : public testing::Test {
 protected:
  explicit TariffsTest(const Settings& settings = test::fastSettings()) : shop_(settings) {}

  void addRow(const std::string& code, const std::string& letter, const std::string& price) {
    shop.run("INSERT INTO Articulos_Tarifas (Codigo, Nombre, Tarifa, Precio) VALUES ('" + code +
             "', 'Tarifa " + letter + "', '" + letter + "', " + price + ")");
  }
  std::string row(const std::string& letter, const std::string& code = "A1") {
    return shop.text("SELECT Precio FROM Articulos_Tarifas WHERE Codigo = '" + code +
                     "' AND Tarifa = '" + letter + "'");
  }
  std::string column(const std::string& name, const std::string& code = "A1") {
    return shop_.column(name, code);
  }
  std::string only() {
    const std::vector<std::string> all = shop.statements();
    return all.size() == 1 ? all.front() : std::to_string(all.size()) + " statements";
  }
  std::vector<std::string> texts(const std::vector<Variant>& values) {
    std::vector<std::string> all;
    for (const Variant& value : values) all.push_back(shop_.text(value));
    return all;
  }

  test::ArticleShop shop_;
  test::Shop& shop = shop_.shop;
  clsArticulos& articles = shop_.articles;
};

class NeutralTariffsTest : public TariffsTest {
 protected:
  NeutralTariffsTest() : TariffsTest(test::settingsWithLocale("neutral")) {}
};

// ---- The rise of a tariff

TEST_F(TariffsTest, ARiseOfAColumnWritesItsStatement) {
  articles.ActualizarTarifas("a", 10, "Todas", "PRC");
  EXPECT_EQ(only(),
            "UPDATE  Articulos SET TARIFA_a =  ROUND(((tarifa_a * 10)/100)+tarifa_a,2) WHERE ( "
            "(Lista) Like 'PRC');");
  articles.ActualizarTarifas("B", 10, "Todas", "PRC + TDS");
  EXPECT_EQ(only(),
            "UPDATE  Articulos SET TARIFA_b =  ROUND(((tarifa_b * 10)/100)+tarifa_b,2) WHERE ( "
            "(Lista) Like 'TDS' OR (Lista) Like 'PRC');");
  articles.ActualizarTarifas("c", 10, "MAT", "PRC");
  EXPECT_EQ(only(),
            "UPDATE  Articulos SET TARIFA_c =  ROUND(((tarifa_c * 10)/100)+tarifa_c,2) WHERE ( "
            "Familia Like 'MAT' and Lista Like 'PRC');");
}

TEST_F(TariffsTest, EachKeyOfARowTariffNamesItsLetter) {
  const std::vector<std::pair<std::string, std::string>> letters = {
      {"tf3", "D"},  {"tf4", "E"},  {"tf5", "F"},  {"tf6", "G"},  {"tf7", "H"},  {"tf8", "I"},
      {"tf9", "J"},  {"tf10", "K"}, {"tf11", "L"}, {"tf12", "M"}, {"tf13", "N"}, {"tf14", "Ñ"},
      {"tf15", "O"}, {"tf16", "P"}, {"tf17", "Q"}, {"tf18", "R"}, {"tf19", "S"}, {"tf20", "T"}};
  for (const auto& [key, letter] : letters) {
    articles.ActualizarTarifas(key, 10, "MAT", "PRC");
    EXPECT_EQ(only(),
              "UPDATE  Articulos INNER JOIN Articulos_Tarifas ON Articulos.Codigo = "
              "Articulos_Tarifas.Codigo SET Articulos_Tarifas.Precio = "
              "ROUND(((Articulos_Tarifas.Precio * 10)/100)+Articulos_Tarifas.Precio,2) WHERE "
              "(((Articulos_Tarifas.Tarifa)='" +
                  letter + "') AND  Familia Like 'MAT' and Lista Like 'PRC');");
  }
}

TEST_F(TariffsTest, TheKeyOfTariffNyRaisesItsRowsOfTheListInAnyCaseOfLetters) {
  shop_.add("A1");
  shop_.add("A2", "Lista = 'OTRA'");
  addRow("A1", "Ñ", "100");
  addRow("A1", "N", "100");
  addRow("A2", "Ñ", "100");
  articles.ActualizarTarifas("Tf14", 10, "Todas", "PRC");
  EXPECT_EQ(row("Ñ"), "110");
  EXPECT_EQ(row("N"), "100");
  EXPECT_EQ(row("Ñ", "A2"), "100");
}

TEST_F(TariffsTest, ANegativePercentageLowersThePrices) {
  shop_.add("A1", "Tarifa_A = 20, Tarifa_B = 20");
  articles.ActualizarTarifas("a", -10, "Todas", "PRC");
  EXPECT_EQ(column("Tarifa_A"), "18");
  EXPECT_EQ(column("Tarifa_B"), "20");
}

TEST_F(TariffsTest, PricesAreRoundedToTheDecimalsOfTheCurrencyHalvesToEven) {
  shop_.add("A1", "Tarifa_A = 9.99");
  shop_.add("A2", "Tarifa_A = 0.25");
  shop_.add("A3", "Tarifa_A = 0.35");
  articles.ActualizarTarifas("a", 10, "Todas", "PRC");
  EXPECT_EQ(column("Tarifa_A", "A1"), "10,99");  // 10.989
  EXPECT_EQ(column("Tarifa_A", "A2"), "0,28");   // 0.275
  EXPECT_EQ(column("Tarifa_A", "A3"), "0,38");   // 0.385
}

TEST_F(TariffsTest, ThePercentageIsRoundedByTheFormatOfQuantitiesAndHasADecimalPoint) {
  articles.ActualizarTarifas("a", 2.555, "Todas", "PRC");
  EXPECT_THAT(only(), HasSubstr("(tarifa_a * 2.56)"));
}

TEST_F(NeutralTariffsTest, ThePercentageHasADecimalPointUnderAnyLocale) {
  articles.ActualizarTarifas("a", 2.555, "Todas", "PRC");
  EXPECT_THAT(only(), HasSubstr("(tarifa_a * 2.56)"));
}

TEST(Tariffs, TheDecimalsAreThoseOfTheShop) {
  Settings settings = test::fastSettings();
  settings.currencyDecimals = 3;
  test::ArticleShop shop(settings);
  shop.add("A1", "Tarifa_A = 1.111");
  shop.articles.ActualizarTarifas("a", 10, "Todas", "PRC");
  EXPECT_EQ(shop.column("Tarifa_A"), "1,222");
}

TEST_F(TariffsTest, AFamilyAndAListMayBePatterns) {
  shop_.add("A1", "Familia = 'MAT', Tarifa_A = 10");
  shop_.add("A2", "Familia = 'MES', Tarifa_A = 10");
  shop_.add("A3", "Familia = 'OTR', Tarifa_A = 10");
  articles.ActualizarTarifas("a", 50, "M*", "*");
  EXPECT_EQ(column("Tarifa_A", "A1"), "15");
  EXPECT_EQ(column("Tarifa_A", "A2"), "15");
  EXPECT_EQ(column("Tarifa_A", "A3"), "10");
}

TEST_F(TariffsTest, OfAFamilyBothListsAreOneListOfThatName) {
  shop_.add("A1", "Familia = 'MAT', Tarifa_A = 10");
  articles.ActualizarTarifas("a", 50, "MAT", "PRC + TDS");
  EXPECT_EQ(column("Tarifa_A"), "10");
}

// The Or stands outside of the And.
TEST_F(TariffsTest, BothListsRaiseEveryRowTariffOfListPrcAndOneOfListTds) {
  shop_.add("A1");
  shop_.add("A2", "Lista = 'TDS'");
  for (const char* code : {"A1", "A2"}) {
    for (const char* letter : {"D", "E"}) addRow(code, letter, "100");
  }
  articles.ActualizarTarifas("tf3", 10, "Todas", "PRC + TDS");
  EXPECT_EQ(row("D", "A1"), "110");
  EXPECT_EQ(row("E", "A1"), "110");
  EXPECT_EQ(row("D", "A2"), "110");
  EXPECT_EQ(row("E", "A2"), "100");
}

TEST_F(TariffsTest, AKeyThatIsNoneIsRefusedAndNothingRises) {
  shop_.add("A1", "Tarifa_A = 10");
  addRow("A1", "D", "10");
  for (const char* key : {"", "d", "D", "tf2", "tf21", "tf", "Todas"}) {
    EXPECT_EQ(errorOf([&] { articles.ActualizarTarifas(key, 10, "Todas", "PRC"); }),
              errors::kSyntax)
        << key;
  }
  EXPECT_EQ(column("Tarifa_A"), "10");
  EXPECT_EQ(row("D"), "10");
}

TEST_F(TariffsTest, ARiseOfNoArticleIsNoError) {
  EXPECT_NO_THROW(articles.ActualizarTarifas("tf20", 10, "NADA", "PRC"));
}

TEST_F(TariffsTest, ARiseTakesPartInTheCallersTransaction) {
  shop_.add("A1", "Tarifa_A = 10");
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  articles.ActualizarTarifas("a", 10, "Todas", "PRC", connection);
  connection->RollbackTrans();
  EXPECT_EQ(column("Tarifa_A"), "10");
}

// ---- One price

TEST_F(TariffsTest, ActualizarTarifaWritesAColumnByTheLocale) {
  shop_.add("A1");
  articles.ActualizarTarifa("A1", 12.5, "A");
  EXPECT_EQ(only(), "UPDATE  Articulos SET  Tarifa_A = '12,5' WHERE(Codigo ='A1')");
  articles.ActualizarTarifa("A1", 13.25, "B");
  EXPECT_EQ(only(), "UPDATE  Articulos SET  Tarifa_B = '13,25' WHERE(Codigo ='A1')");
  articles.ActualizarTarifa("A1", 14, "C");
  EXPECT_EQ(only(), "UPDATE  Articulos SET  Tarifa_C = '14' WHERE(Codigo ='A1')");
  EXPECT_EQ(column("Tarifa_A"), "12,5");
  EXPECT_EQ(column("Tarifa_B"), "13,25");
  EXPECT_EQ(column("Tarifa_C"), "14");
}

TEST_F(NeutralTariffsTest, ActualizarTarifaPrintsThePointOfTheLocale) {
  shop_.add("A1");
  articles.ActualizarTarifa("A1", 12.5, "A");
  EXPECT_EQ(only(), "UPDATE  Articulos SET  Tarifa_A = '12.5' WHERE(Codigo ='A1')");
  EXPECT_EQ(column("Tarifa_A"), "12.5");
}

TEST_F(TariffsTest, ActualizarTarifaOfARowTariffIsRefused) {
  shop_.add("A1");
  addRow("A1", "D", "1");
  for (const char* letter : {"D", "a", ""}) {
    EXPECT_EQ(errorOf([&] { articles.ActualizarTarifa("A1", 12.5, letter); }), errors::kSyntax);
  }
  EXPECT_EQ(row("D"), "1");
}

TEST_F(TariffsTest, TheFreeTextHasNoPrices) {
  shop_.add("$$$", "Tarifa_A = 1, Precio_Coste = 1, Descuento_D = 1");
  ConnectionPtr untouched;
  articles.ActualizarTarifa("$$$", 12.5, "A", untouched);
  articles.ActualizarTarifa("$$$", 12.5, "no tariff", untouched);
  articles.ActualizarPrecio("$$$", 12.5, 0, untouched);
  articles.ActualizarDto_D("$$$", 12.5, untouched);
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(untouched, nullptr);
  EXPECT_EQ(column("Tarifa_A", "$$$"), "1");
}

TEST_F(TariffsTest, ActualizaPrecioTarifaLooksAtTheStockAndWritesWithAPoint) {
  shop_.add("A1");
  addRow("A1", "D", "1");
  addRow("A1", "E", "1");
  articles.ActualizaPrecioTarifa("A1", "D", 12.5);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT sum(Cantidad) AS Stock FROM Articulos_Almacenes WHERE Codigo =  "
                          "'A1'",
                          "UPDATE Articulos_Tarifas SET Articulos_Tarifas.Precio  = 12.5 WHERE "
                          "(Codigo ='A1' AND Articulos_Tarifas.Tarifa ='D' );"));
  EXPECT_EQ(row("D"), "12,5");
  EXPECT_EQ(row("E"), "1");
}

TEST_F(TariffsTest, ActualizaPrecioTarifaWithoutARowWritesNothing) {
  articles.ActualizaPrecioTarifa("A1", "D", 12.5);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas"), "0");
}

TEST_F(TariffsTest, InsertarPrecioTarifaStoresZeroWhateverThePrice) {
  articles.InsertarPrecioTarifa("A1", "D", 12);
  EXPECT_EQ(only(),
            "INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) values ( "
            "'A1','Tarifa D','D', '0' )");
  EXPECT_EQ(row("D"), "0");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Articulos_Tarifas"), "Tarifa D");
}

TEST_F(TariffsTest, InsertarPrecioTarifaOfARowThatIsThereRaisesTheIntegrityError) {
  addRow("A1", "D", "5");
  EXPECT_EQ(errorOf([&] { articles.InsertarPrecioTarifa("A1", "D", 12); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(row("D"), "5");
}

TEST_F(TariffsTest, GetPrecioTarifaIsThePriceOfTheRowOrZero) {
  addRow("A1", "D", "12.3456");
  EXPECT_EQ(articles.GetPrecioTarifa("A1", "D"), 12.3456);
  EXPECT_EQ(only(), "SELECT Precio FROM Articulos_Tarifas WHERE Codigo = 'A1' and Tarifa = 'D'");
  EXPECT_EQ(articles.GetPrecioTarifa("A1", "E"), 0);
  EXPECT_EQ(articles.GetPrecioTarifa("A9", "D"), 0);
}

TEST_F(TariffsTest, GetPrecioTarifaOfANullPriceRaisesInvalidUseOfNull) {
  addRow("A1", "D", "Null");
  EXPECT_EQ(errorOf([&] { articles.GetPrecioTarifa("A1", "D"); }), errors::kInvalidUseOfNull);
}

// A, B and C are no rows.
TEST_F(TariffsTest, GetPrecioTarifaOfAColumnIsZero) {
  shop_.add("A1", "Tarifa_A = 10");
  EXPECT_EQ(articles.GetPrecioTarifa("A1", "A"), 0);
}

// ---- Cost and discount

TEST_F(TariffsTest, ActualizarPrecioTakesTheDiscountOff) {
  shop_.add("A1");
  articles.ActualizarPrecio("A1", 100, 25);
  EXPECT_EQ(only(), "UPDATE  Articulos SET Precio_Coste = '75' WHERE(Codigo ='A1')");
  EXPECT_EQ(column("Precio_Coste"), "75");
  articles.ActualizarPrecio("A1", 99.9, 0);
  EXPECT_EQ(only(), "UPDATE  Articulos SET Precio_Coste = '99,9' WHERE(Codigo ='A1')");
  articles.ActualizarPrecio("A1", 100, -10);
  EXPECT_EQ(column("Precio_Coste"), "110");
}

TEST_F(NeutralTariffsTest, ActualizarPrecioPrintsThePointOfTheLocale) {
  shop_.add("A1");
  articles.ActualizarPrecio("A1", 99.98, 25);
  EXPECT_EQ(only(), "UPDATE  Articulos SET Precio_Coste = '74.985' WHERE(Codigo ='A1')");
  EXPECT_EQ(column("Precio_Coste"), "74.985");
}

TEST_F(TariffsTest, TheFixedDiscountIsWrittenAndReadWhateverTheList) {
  shop_.add("A1");
  articles.ActualizarDto_D("A1", 12.5);
  EXPECT_EQ(only(), "UPDATE  Articulos SET  Descuento_D = '12,5' WHERE(Codigo ='A1')");
  EXPECT_EQ(articles.ObtenerDto_D("A1", "OTRA"), 12.5);
  EXPECT_EQ(only(), "SELECT Descuento_D FROM Articulos WHERE ( Codigo = 'A1')");
  EXPECT_EQ(articles.ObtenerDto_D("A9"), 0);
}

TEST_F(NeutralTariffsTest, TheFixedDiscountPrintsThePointOfTheLocale) {
  shop_.add("A1");
  articles.ActualizarDto_D("A1", 12.5);
  EXPECT_EQ(only(), "UPDATE  Articulos SET  Descuento_D = '12.5' WHERE(Codigo ='A1')");
  EXPECT_EQ(articles.ObtenerDto_D("A1"), 12.5);
}

// ---- Whole tariffs

TEST_F(TariffsTest, EliminarTarifaPreciosDeletesOneTariffOfAllArticles) {
  for (const char* code : {"A1", "A2"}) {
    for (const char* letter : {"D", "E"}) addRow(code, letter, "1");
  }
  articles.EliminarTarifaPrecios("D");
  EXPECT_EQ(only(),
            "DELETE Articulos_Tarifas.* From Articulos_Tarifas WHERE "
            "(((Articulos_Tarifas.Tarifa)='D'));");
  EXPECT_THAT(texts(articles.ObtenerCol_Tarifas()), ElementsAre("E"));
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas"), "2");
}

TEST_F(TariffsTest, DeleteAllTarifasDeletesAllTariffsOfOneArticle) {
  for (const char* code : {"A1", "A2"}) {
    for (const char* letter : {"D", "E"}) addRow(code, letter, "1");
  }
  articles.DeleteAllTarifas("A1");
  EXPECT_EQ(only(), "DELETE  FROM Articulos_Tarifas WHERE ( Codigo =  'A1')");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas WHERE Codigo = 'A1'"), "0");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas"), "2");
}

TEST_F(TariffsTest, CopiatTarifaPreciosCopiesColumnsOfAllArticles) {
  shop_.add("A1", "Tarifa_A = 1, Tarifa_B = 2, Tarifa_C = 3");
  shop_.add("A2", "Tarifa_A = 4, Tarifa_B = 5, Tarifa_C = 6");
  articles.CopiatTarifaPrecios("A", "C");
  EXPECT_EQ(only(), "UPDATE Articulos SET Articulos.TARIFA_c = Articulos.TARIFA_a; ");
  EXPECT_EQ(column("Tarifa_C", "A1"), "1");
  EXPECT_EQ(column("Tarifa_C", "A2"), "4");
  articles.CopiatTarifaPrecios("C", "B");
  EXPECT_EQ(only(), "UPDATE Articulos SET Articulos.TARIFA_b = Articulos.TARIFA_c; ");
  articles.CopiatTarifaPrecios("B", "A");
  EXPECT_EQ(only(), "UPDATE Articulos SET Articulos.TARIFA_a = Articulos.TARIFA_b; ");
  articles.CopiatTarifaPrecios("A", "A");
  EXPECT_EQ(column("Tarifa_A", "A2"), "4");
}

TEST_F(TariffsTest, CopiatTarifaPreciosOfOtherTariffsIsRefused) {
  shop_.add("A1", "Tarifa_A = 1, Tarifa_B = 2");
  EXPECT_EQ(errorOf([&] { articles.CopiatTarifaPrecios("D", "A"); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { articles.CopiatTarifaPrecios("A", "D"); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { articles.CopiatTarifaPrecios("D", "E"); }), errors::kSyntax);
  EXPECT_EQ(column("Tarifa_A"), "1");
}

TEST_F(TariffsTest, CrearTarifaPreciosMakesARowTariffFromAColumn) {
  shop_.add("A1", "Tarifa_A = 1, Tarifa_B = 2, Tarifa_C = 3");
  shop_.add("A2", "Tarifa_A = 4, Tarifa_B = 5, Tarifa_C = 6");
  articles.CrearTarifaPrecios("A", "D", "Verano");
  EXPECT_EQ(only(),
            "INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) SELECT "
            "Articulos.Codigo, 'Verano' AS Expr1, 'D' AS Expr2, Articulos.TARIFA_a FROM "
            "Articulos;");
  articles.CrearTarifaPrecios("B", "E", "Otoño");
  EXPECT_EQ(only(),
            "INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) SELECT "
            "Articulos.Codigo, 'Otoño' AS Expr1, 'E' AS Expr2, Articulos.TARIFA_b FROM Articulos;");
  // From C there is no blank before AS.
  articles.CrearTarifaPrecios("C", "Ñ", "Invierno");
  EXPECT_EQ(only(),
            "INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) SELECT "
            "Articulos.Codigo, 'Invierno' AS Expr1, 'Ñ'AS Expr2, Articulos.TARIFA_c FROM "
            "Articulos;");
  EXPECT_EQ(row("D", "A1"), "1");
  EXPECT_EQ(row("E", "A2"), "5");
  EXPECT_EQ(row("Ñ", "A2"), "6");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Articulos_Tarifas WHERE Tarifa = 'E'"), "Otoño");
}

TEST_F(TariffsTest, CrearTarifaPreciosMakesARowTariffFromAnother) {
  addRow("A1", "D", "12.5");
  addRow("A2", "E", "1");
  articles.CrearTarifaPrecios("D", "F", "Copia");
  EXPECT_EQ(only(),
            "INSERT INTO Articulos_Tarifas ( Codigo, Nombre, Tarifa, Precio ) SELECT "
            "Articulos_Tarifas.Codigo, 'Copia' AS Expr1, 'F' AS Expr2, Articulos_Tarifas.Precio "
            "From Articulos_Tarifas WHERE (((Articulos_Tarifas.Tarifa)='D'));");
  EXPECT_EQ(row("F", "A1"), "12,5");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas WHERE Tarifa = 'F'"), "1");
}

TEST_F(TariffsTest, CrearTarifaPreciosOfATariffThatIsThereChangesNothing) {
  shop_.add("A1", "Tarifa_A = 1");
  shop_.add("A2", "Tarifa_A = 1");
  addRow("A2", "D", "7");
  EXPECT_EQ(errorOf([&] { articles.CrearTarifaPrecios("A", "D", "Verano"); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(row("D", "A2"), "7");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas"), "1") << "not half of them";
}

// ---- Lists

TEST_F(TariffsTest, ObtenerCol_TarifasGivesEachLetterOnce) {
  addRow("A1", "D", "1");
  addRow("A2", "D", "1");
  addRow("A2", "Ñ", "1");
  EXPECT_THAT(texts(articles.ObtenerCol_Tarifas()), testing::UnorderedElementsAre("D", "Ñ"));
  EXPECT_EQ(only(), "  SELECT DISTINCT Articulos_Tarifas.Tarifa FROM Articulos_Tarifas;");
}

TEST_F(TariffsTest, ObtenerCol_TarifasArticuloGivesLettersWithPrices) {
  addRow("A1", "E", "12.5");
  addRow("A1", "D", "1000");
  addRow("A1", "F", "Null");
  addRow("A2", "G", "1");
  EXPECT_THAT(texts(articles.ObtenerCol_TarifasArticulo("A1")),
              ElementsAre("D: 1000", "E: 12,5", "F: "));
  EXPECT_EQ(only(),
            "SELECT Articulos_Tarifas.Tarifa, Articulos_Tarifas.Precio From Articulos_Tarifas "
            "WHERE (((Articulos_Tarifas.Codigo)='A1')) Order by Tarifa ;");
  EXPECT_THAT(articles.ObtenerCol_TarifasArticulo("A9"), IsEmpty());
}

// ---- Pesetas to euros

TEST_F(TariffsTest, ActualizarEurosDividesAllPricesAndFillsTheCosts) {
  shop_.add("A1",
            "Tarifa_A = 166386, Tarifa_B = 1000, Tarifa_C = 0, Precio_Coste = 166.386, "
            "Precio_Medio = Null");
  addRow("A1", "D", "166386");
  articles.ActualizarEuros();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "UPDATE Articulos SET Precio_Coste = 0 Where (((Precio_Coste) Is Null))",
          "UPDATE Articulos SET Precio_Medio = 0 Where (((Precio_Medio) Is Null))",
          "UPDATE Articulos SET Articulos.TARIFA_a = Format([TARIFA_a]/'166,386','Currency'), "
          "Articulos.TARIFA_b = Format([TARIFA_b]/'166,386','Currency'), Articulos.TARIFA_c = "
          "Format([TARIFA_c]/'166,386','Currency'), Articulos.Precio_Coste = "
          "Format([Precio_Coste]/'166,386','Currency'), Articulos.Precio_Medio = "
          "Format([Precio_Medio]/'166,386','Currency');"));
  EXPECT_EQ(column("Tarifa_A"), "1000");
  EXPECT_EQ(column("Tarifa_B"), "6,01");
  EXPECT_EQ(column("Tarifa_C"), "0");
  EXPECT_EQ(column("Precio_Coste"), "1");
  EXPECT_EQ(column("Precio_Medio"), "0");
  EXPECT_EQ(row("D"), "166386") << "row tariffs stay";
}

// The comma of the divisor groups here, so that it is a thousand times as great.
TEST_F(NeutralTariffsTest, ActualizarEurosNeedsALocaleWithADecimalComma) {
  shop_.add("A1", "Tarifa_A = 166386");
  articles.ActualizarEuros();
  EXPECT_EQ(column("Tarifa_A"), "1");
}

// ---- Values from outside

TEST_F(TariffsTest, HostileTextInEveryValueChangesNothing) {
  shop_.add("A1", "Tarifa_A = 1");
  addRow("A1", "D", "1");
  const std::vector<std::string> hostile = {"'", "' or '1'='1", "'); DELETE FROM Articulos_Tarifas",
                                            std::string("A1\0'", 4)};
  for (const std::string& attack : hostile) {
    EXPECT_NE(errorOf([&] { articles.ActualizarTarifas("a", 10, attack, "PRC"); }), 0);
    EXPECT_NE(errorOf([&] { articles.ActualizarTarifas("a", 10, "Todas", attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.ActualizarTarifa(attack, 2, "A"); }), 0);
    EXPECT_NE(errorOf([&] { articles.ActualizaPrecioTarifa("A1", attack, 2); }), 0);
    EXPECT_NE(errorOf([&] { articles.InsertarPrecioTarifa("A1", attack, 2); }), 0);
    EXPECT_NE(errorOf([&] { articles.GetPrecioTarifa("A1", attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.EliminarTarifaPrecios(attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.DeleteAllTarifas(attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.CrearTarifaPrecios("A", "E", attack); }), 0);
    EXPECT_NE(errorOf([&] { articles.CrearTarifaPrecios(attack, "E", "Copia"); }), 0);
    EXPECT_NE(errorOf([&] { articles.ObtenerCol_TarifasArticulo(attack); }), 0);
  }
  EXPECT_EQ(column("Tarifa_A"), "1");
  EXPECT_EQ(row("D"), "1");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos_Tarifas"), "1");
}

TEST_F(TariffsTest, APriceThatIsNotFiniteIsRefused) {
  shop_.add("A1", "Tarifa_A = 1");
  addRow("A1", "D", "1");
  const double none = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(errorOf([&] { articles.ActualizaPrecioTarifa("A1", "D", none); }), errors::kOverflow);
  EXPECT_EQ(errorOf([&] { articles.ActualizarTarifa("A1", none, "A"); }), errors::kOverflow);
  EXPECT_EQ(errorOf([&] { articles.ActualizarTarifas("a", none, "Todas", "PRC"); }),
            errors::kOverflow);
  EXPECT_EQ(errorOf([&] { articles.ActualizarPrecio("A1", 1e300, 1e300); }), errors::kOverflow);
  EXPECT_EQ(errorOf([&] { articles.ActualizarDto_D("A1", none); }), errors::kOverflow);
  EXPECT_EQ(row("D"), "1");
  EXPECT_EQ(column("Tarifa_A"), "1");
}

}  // namespace
}  // namespace tavelor
