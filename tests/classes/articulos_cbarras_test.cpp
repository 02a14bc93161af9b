// SPDX-License-Identifier: MIT
// The barcodes of articles.
#include "tavelor/articles/articulos_cbarras.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Codigo_Barras as CódigoB FROM Articulos_Codigos_barras";

class ClsArticulosCbarrasTest : public test::CatalogueTest<ClsArticulosCbarras> {
 protected:
  void add(int id, const std::string& article, const std::string& barcode,
           const std::string& price = "Null") {
    shop.run("INSERT INTO Articulos_Codigos_barras (Id, Codigo, Codigo_barras, Precio) VALUES (" +
             std::to_string(id) + ", '" + article + "', '" + barcode + "', " + price + ")");
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Codigos_barras"); }

  ClsArticulosCbarras& barcodes = catalogue;
};

TEST_F(ClsArticulosCbarrasTest, SeleccionIsOneArticleAndAnyOtherWordIsAll) {
  add(1, "A1", "8400000000017");
  add(2, "A2", "8400000000024");
  const Opened one = open("seleccion", "A2");
  EXPECT_EQ(one.statement, std::string(kTodos) + " WHERE Codigo =  'A2'");
  EXPECT_EQ(one.word, "seleccion");
  EXPECT_THAT(codes(), ElementsAre("2"));
  const Opened all = open("Seleccion");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(fieldNames(), ElementsAre("Id", "Código", "CódigoB"));
  EXPECT_THAT(barcodes.DataMembers(), ElementsAre("Primary"));
}

TEST_F(ClsArticulosCbarrasTest, GetArticuloIsTheArticleOfABarcodeOrEmpty) {
  add(1, "A1", "8400000000017");
  EXPECT_EQ(barcodes.GetArticulo("8400000000017"), Variant("A1"));
  EXPECT_EQ(statement(),
            "SELECT Codigo FROM Articulos_Codigos_barras WHERE (Codigo_barras  =  "
            "'8400000000017')");
  EXPECT_TRUE(barcodes.GetArticulo("1").isEmpty());
  shop.run("UPDATE Articulos_Codigos_barras SET Codigo = Null");
  EXPECT_TRUE(barcodes.GetArticulo("8400000000017").isEmpty());
}

TEST_F(ClsArticulosCbarrasTest, ABarcodeOfAnotherArticleIsFreeForThisOneButNotInAll) {
  add(1, "A1", "84");
  EXPECT_TRUE(barcodes.CodigoLibre("84", "A2"));
  EXPECT_EQ(statement(),
            "SELECT Codigo_barras , Codigo FROM Articulos_Codigos_barras  where (Codigo_barras "
            "='84' and Codigo='A2')");
  EXPECT_FALSE(barcodes.CodigoLibreTotal("84"));
  EXPECT_EQ(statement(),
            "SELECT Codigo_barras , Codigo FROM Articulos_Codigos_barras  where (Codigo_barras "
            "='84')");
  EXPECT_FALSE(barcodes.CodigoLibre("84", "A1"));
  EXPECT_TRUE(barcodes.CodigoLibreTotal("85"));
}

TEST_F(ClsArticulosCbarrasTest, DeleteAllDeletesTheBarcodesOfOneArticle) {
  add(1, "A1", "1");
  add(2, "A1", "2");
  add(3, "A2", "3");
  barcodes.DeleteAll("A1");
  EXPECT_EQ(statement(), "DELETE  FROM Articulos_Codigos_barras WHERE (Codigo = 'A1')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosCbarrasTest, ActualizarEurosDividesThePricesAndFillsNull) {
  add(1, "A1", "1", "166386");
  add(2, "A1", "2");
  barcodes.ActualizarEuros();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("UPDATE Articulos_Codigos_barras SET Precio = 0 Where (((Precio) Is Null))",
                  "UPDATE Articulos_Codigos_barras SET Precio = "
                  "Format([Precio]/'166,386','Currency');"));
  EXPECT_EQ(shop.text("SELECT Precio FROM Articulos_Codigos_barras WHERE Id = 1"), "1000");
  EXPECT_EQ(shop.text("SELECT Precio FROM Articulos_Codigos_barras WHERE Id = 2"), "0");
}

TEST_F(ClsArticulosCbarrasTest, CodesAreIdsPlusOneHoweverLong) {
  EXPECT_EQ(shown(barcodes.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Codigos_barras");
  add(99999, "A1", "1");
  barcodes.IniciaRs();
  barcodes.AddNew(true);
  EXPECT_EQ(field("Id"), "100000");
}

TEST_F(ClsArticulosCbarrasTest, ABarcodeIsAddedAndFound) {
  barcodes.IniciaRs("seleccion", "A1");
  barcodes.AddNew(true);
  rows().Field("Código").Value("A1");
  rows().Field("CódigoB").Value("8400000000017");
  barcodes.Update();
  EXPECT_EQ(barcodes.GetArticulo("8400000000017"), Variant("A1"));
}

TEST_F(ClsArticulosCbarrasTest, HostileTextInEveryValueChangesNothing) {
  add(1, "A1", "84");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { barcodes.GetArticulo(attack); }), 0);
    EXPECT_NE(errorOf([&] { barcodes.CodigoLibre(attack, "A1"); }), 0);
    EXPECT_NE(errorOf([&] { barcodes.CodigoLibre("84", attack); }), 0);
    EXPECT_NE(errorOf([&] { barcodes.CodigoLibreTotal(attack); }), 0);
    EXPECT_NE(errorOf([&] { barcodes.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { barcodes.IniciaRs("seleccion", attack); }), 0);
  }
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosCbarrasTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(), ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName",
                                        "GetConnection", "GetConnectionStr", "ActualizarEuros",
                                        "GetArticulo", "DeleteAll", "IniciaRs", "NuevoCodigo",
                                        "SeguridadPermiso", "CodigoLibre", "CodigoLibreTotal"));
}

}  // namespace
}  // namespace tavelor
