// SPDX-License-Identifier: MIT
// clsArticulos: codes, references, and what a new row begins with.
#include "tests/classes/articulos.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

const std::string kDigits =
    "SELECT Digitos_Articulos, Digitos_Clientes, Digitos_Proveedores FROM Numeradores WHERE "
    "((Periodo)='');";

class ClsArticulosCodigosTest : public testing::Test, protected test::ArticleShop {};

// ---- Codes

TEST_F(ClsArticulosCodigosTest, TheNextCodeOfAnEmptyTableIsOne) {
  EXPECT_EQ(text(articles.NuevoCodigo()), "1");
  EXPECT_THAT(shop.statements(),
              ElementsAre(kDigits, "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Articulos"));
}

TEST_F(ClsArticulosCodigosTest, TheNextCodeIsANumberWithoutPadding) {
  add("00012");
  EXPECT_EQ(text(articles.NuevoCodigo()), "13");
}

TEST_F(ClsArticulosCodigosTest, AGreatestCodeThatIsNoNumberComesBackAndCollides) {
  add("ABC");
  EXPECT_EQ(text(articles.NuevoCodigo()), "ABC");
  EXPECT_FALSE(articles.CodigoLibre(articles.NuevoCodigo()));
}

TEST_F(ClsArticulosCodigosTest, ACodeThatWouldBeLongerThanCodesAreComesBack) {
  add("999999");
  EXPECT_EQ(text(articles.NuevoCodigo()), "999999");
  setDigits("Null");  // no length: the word without an accent is answered with 0
  EXPECT_EQ(text(articles.NuevoCodigo()), "1000000");
}

// The counters know the length of "Artículos"; asked for "Articulos" they answer by their rule for
// other words.
TEST_F(ClsArticulosCodigosTest, TheLengthOfNewCodesIsNotTheOneThatIsSetForArticles) {
  add("99");
  setDigits("2");
  EXPECT_EQ(text(articles.NuevoCodigo()), "100");
  std::string code = "7";
  EXPECT_EQ(articles.ObtenerCodigo(code), "07");
}

TEST_F(ClsArticulosCodigosTest, ObtenerCodigoFillsWithZerosInPlaceAndLeavesLongerOnes) {
  setDigits("5");
  std::string code = "12";
  EXPECT_EQ(articles.ObtenerCodigo(code), "00012");
  EXPECT_EQ(code, "00012");
  code = "1234567";
  EXPECT_EQ(articles.ObtenerCodigo(code), "1234567");
  code = "";
  EXPECT_EQ(articles.ObtenerCodigo(code), "00000");
  setDigits("0");
  code = "12";
  EXPECT_EQ(articles.ObtenerCodigo(code), "12");
}

TEST_F(ClsArticulosCodigosTest, TheNextReferenceIsOneMoreThanTheGreatest) {
  EXPECT_EQ(text(articles.NuevaRef()), "1");
  EXPECT_THAT(shop.statements(),
              ElementsAre(kDigits, "SELECT MAX(Referencia) AS Nuevo_Codigo FROM Articulos"));
  add("1", "Referencia = '41'");
  EXPECT_EQ(text(articles.NuevaRef()), "42");
  set("1", "Referencia = 'R'");
  EXPECT_EQ(text(articles.NuevaRef()), "R");
}

TEST_F(ClsArticulosCodigosTest, TheFirstCodeOfAFamilyIsItsNameAndOne) {
  EXPECT_EQ(articles.NuevoCodigo_Fam("MAT"), "MAT001");
  EXPECT_THAT(shop.statements(),
              ElementsAre(kDigits,
                          "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Articulos WHERE "
                          "(((Familia)='MAT'));"));
  setDigits("Null");  // no length set: six all the same
  EXPECT_EQ(articles.NuevoCodigo_Fam("MAT"), "MAT001");
  EXPECT_EQ(articles.NuevoCodigo_Fam("AB"), "AB0001");
  EXPECT_EQ(articles.NuevoCodigo_Fam("LARGAS"), "LARGAS1") << "no room for a zero";
}

TEST_F(ClsArticulosCodigosTest, CodesOfAFamilyAreCountedWithThreeDigitsUntilTheyRunOut) {
  const auto after = [&](const std::string& code) {
    shop.run("DELETE FROM Articulos");
    add(code, "Familia = 'MAT'");
    return articles.NuevoCodigo_Fam("MAT");
  };
  EXPECT_EQ(after("MAT001"), "MAT002");
  EXPECT_EQ(after("MAT009"), "MAT010");
  EXPECT_EQ(after("MAT099"), "MAT100");
  EXPECT_EQ(after("MAT999"), "MAT1000");
  EXPECT_EQ(after("XYZ7"), "MAT008") << "whatever stands in front";
  EXPECT_EQ(after("MATA01"), "MATA01");
  EXPECT_EQ(after("MAT"), "MAT");
  EXPECT_EQ(after("M"), "M");
}

TEST_F(ClsArticulosCodigosTest, CodesOfAFamilyThatAreNumbersAreCountedWhole) {
  add("010099", "Familia = '01'");
  EXPECT_EQ(articles.NuevoCodigo_Fam("01"), "10100");
  add("0100991", "Familia = '01'");
  EXPECT_EQ(articles.NuevoCodigo_Fam("01"), "0100991") << "longer than codes are";
  setDigits("Null");
  EXPECT_EQ(articles.NuevoCodigo_Fam("01"), "100992");
}

TEST_F(ClsArticulosCodigosTest, ACodeIsFreeUntilAnArticleHasIt) {
  EXPECT_TRUE(articles.CodigoLibre("A1"));
  EXPECT_FALSE(articles.ExisteArt("A1"));
  add("A1");
  EXPECT_FALSE(articles.CodigoLibre("A1"));
  EXPECT_TRUE(articles.ExisteArt("A1"));
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT Codigo FROM Articulos where codigo ='A1'",
                                             "SELECT Codigo FROM Articulos Where codigo ='A1'",
                                             "SELECT Codigo FROM Articulos where codigo ='A1'",
                                             "SELECT Codigo FROM Articulos Where codigo ='A1'"));
}

TEST_F(ClsArticulosCodigosTest, AnArticleMayKeepItsOwnReference) {
  add("A1", "Referencia = 'R1'");
  EXPECT_TRUE(articles.CodigoRefLibre("R1", "A1"));
  EXPECT_FALSE(articles.CodigoRefLibre("R1", "A2"));
  EXPECT_EQ(shop.statements().back(),
            "SELECT Referencia FROM Articulos where (Referencia ='R1' and Codigo <>'A2')");
}

TEST_F(ClsArticulosCodigosTest, OneArticleInAllListsMakesEveryCodeBeInTheList) {
  add("A1");
  EXPECT_TRUE(articles.ExisteArtEnLista("A1", "PRC"));
  EXPECT_FALSE(articles.ExisteArtEnLista("A1", "OTR"));
  EXPECT_FALSE(articles.ExisteArtEnLista("unknown", "PRC"));
  EXPECT_EQ(shop.statements().back(),
            "SELECT Codigo FROM Articulos Where codigo ='unknown' and Lista ='PRC' or Lista "
            "='TDS'");
  add("A2", "Lista = 'TDS'");
  EXPECT_TRUE(articles.ExisteArtEnLista("unknown", "PRC"));
}

// ---- New rows

TEST_F(ClsArticulosCodigosTest, ANewRowHasItsDefaults) {
  add("7");
  articles.IniciaRs();
  shop.statements();
  articles.AddNew();
  EXPECT_THAT(shop.statements(),
              ElementsAre(kDigits, "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Articulos", kDigits,
                          "SELECT MAX(Referencia) AS Nuevo_Codigo FROM Articulos"));
  articles.Update();
  const std::vector<std::pair<const char*, const char*>> expected = {
      {"Lista", "PRC"},
      {"Referencia", "8"},
      {"Descripcion", "Descripción"},
      {"Idioma_1", "Idioma_1"},
      {"Idioma_6", "Idioma_6"},
      {"Seccion", "Null"},
      {"Familia", "Null"},
      {"Tarifa_A", "0"},
      {"Tarifa_C", "0"},
      {"Impuesto", "Null"},
      {"Precio_Coste", "0"},
      {"Precio_Medio", "0"},
      {"Descuento", "Falso"},
      {"Descuento_D", "0"},
      {"Existencia", "0"},
      {"Unidad_Stock", "Und"},
      {"Minimo", "1"},
      {"Maximo", "1"},
      {"Pendiente", "0"},
      {"Activo", "Verdadero"},
      {"Unidad_Compra", "1"},
      {"Medida_Compra", "1"},
      {"Actualizar_Stock", "Falso"},
      {"Lotes", "Falso"},
      {"Articulo_Compuesto", "Falso"},
      {"Interno", "Falso"},
      {"Valor_Interno", "1"},
      {"Empleado", "Null"},
      {"Merma", "0"},
      {"Margen", "0"},
      {"Margen_c", "0"},
      {"No_sumar", "Falso"},
      {"Repetir", "Falso"},
      {"Fecha", "05/03/2026"},
      {"Fabricante", "Fabricante"},
      {"Planificar", "Falso"},
      {"Restar_Stock", "Falso"}};
  for (const auto& [name, value] : expected) EXPECT_EQ(column(name, "8"), value) << name;
}

TEST_F(ClsArticulosCodigosTest, WithoutDefaultsARowIsEmptyAndTheCodeWasComputedForNothing) {
  articles.IniciaRs();
  shop.statements();
  articles.AddNew(false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kDigits, "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Articulos"));
  const RecordsetPtr rows = articles.DataMember("Primary");
  EXPECT_TRUE(rows->Field(0).Value().isEmpty());
  EXPECT_TRUE(rows->Field("Lista").Value().isEmpty());
}

TEST_F(ClsArticulosCodigosTest, ARowOfASelectionCannotTakeTheDefaults) {
  articles.IniciaRs("seleccion");
  EXPECT_NE(errorOf([&] { articles.AddNew(); }), 0);
}

}  // namespace
}  // namespace tavelor
