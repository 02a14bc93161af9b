// SPDX-License-Identifier: MIT
// Values and the default currency.
#include "tavelor/reference/divisas.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT codigo as Código, Descripcion as Descripción, Fecha, Valor, Predeterminada, Valor_Euro "
    "as Euros FROM Divisas";

class ClsDivisasTest : public test::CatalogueTest<ClsDivisas> {
 protected:
  void fill() {
    shop.run(
        "INSERT INTO Divisas (codigo, Descripcion, Valor, Predeterminada, Valor_Euro) VALUES "
        "('EUR', 'Euro', 166.386, True, 1.5)");
    shop.run("INSERT INTO Divisas (codigo) VALUES ('USD')");
    shop.statements();
  }
};

TEST_F(ClsDivisasTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "sClassName", "SeguridadPermiso", "GetConnection",
                          "GetConnectionStrToRpt", "GetConnectionStr", "IniciaRs", "NuevoCodigo",
                          "ValorEuro", "CodigoLibre", "ExistePredeterminada", "GetPredeterminada",
                          "GetValor"));
  EXPECT_EQ(signature("IniciaRs"),
            "IniciaRs([inout cnnActive As Connection], [inout sSelecSql As String], [id As "
            "Variant])");
}

TEST_F(ClsDivisasTest, SeleccionHasCodeAndDescription) {
  EXPECT_EQ(open("seleccion").statement,
            "SELECT codigo as Código, Descripcion as Descripción FROM Divisas");
}

TEST_F(ClsDivisasTest, SeleccioncomboAndRegistroAreNoModesHere) {
  for (const char* word : {"seleccioncombo", "registro", ""}) {
    const Opened opened = open(word, "EUR");
    EXPECT_EQ(opened.statement, kTodos) << word;
    EXPECT_EQ(opened.word, "todos");
  }
  EXPECT_THAT(fieldNames(),
              ElementsAre("Código", "Descripción", "Fecha", "Valor", "Predeterminada", "Euros"));
}

TEST_F(ClsDivisasTest, ValorEuroWithNoDefaultRowIsOne) {
  EXPECT_EQ(shown(catalogue.ValorEuro()), "1");
  EXPECT_EQ(statement(), "SELECT Valor_Euro FROM Divisas where (predeterminada <> 0)");
}

TEST_F(ClsDivisasTest, ValorEuroIsThatOfTheDefaultRowUnlessItIsNull) {
  fill();
  EXPECT_EQ(shown(catalogue.ValorEuro()), "1,5");
  shop.run("UPDATE Divisas SET Valor_Euro = Null");
  EXPECT_EQ(shown(catalogue.ValorEuro()), "1");
}

TEST_F(ClsDivisasTest, TheDefaultCurrencyIsGivenByItsCode) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_FALSE(catalogue.ExistePredeterminada());
  fill();
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("EUR"));
  EXPECT_EQ(statement(), "SELECT Codigo as ds FROM  Divisas  where predeterminada <> 0");
  EXPECT_TRUE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Divisas where predeterminada <> 0");
}

TEST_F(ClsDivisasTest, GetValorIsZeroForNullAndFailsForACodeThatIsNotThere) {
  fill();
  EXPECT_EQ(shown(catalogue.GetValor("EUR")), "166,386");
  EXPECT_EQ(statement(), "SELECT Valor as v, codigo FROM  Divisas  where codigo = 'EUR'");
  EXPECT_EQ(shown(catalogue.GetValor("USD")), "0");
  EXPECT_EQ(errorOf([&] { catalogue.GetValor("GBP"); }), errors::kNoCurrentRecord);
}

TEST_F(ClsDivisasTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(codigo) AS Nuevo_Codigo FROM Divisas");
  EXPECT_TRUE(catalogue.CodigoLibre("EUR"));
  EXPECT_EQ(statement(), "SELECT Codigo FROM Divisas where codigo ='EUR'");
}

// Amounts are zero in both cases: only the code asks for bDefVal here.
TEST_F(ClsDivisasTest, ANewCurrencyHasZerosWhetherDefaultsAreWantedOrNot) {
  open("todos");
  for (const bool defaults : {true, false}) {
    catalogue.AddNew(defaults);
    EXPECT_EQ(field("Código"), defaults ? "1" : "Empty");
    EXPECT_EQ(field("Valor"), "0");
    EXPECT_EQ(field("Predeterminada"), "Falso");
    EXPECT_EQ(field("Euros"), "0");
    EXPECT_EQ(field("Fecha"), "Empty");
    catalogue.Cancel();
  }
}

TEST_F(ClsDivisasTest, HostileTextChangesNothing) {
  fill();
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_EQ(errorOf([&] { catalogue.GetValor(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.CodigoLibre(attack); }), errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Divisas"), "2");
}

}  // namespace
}  // namespace tavelor
