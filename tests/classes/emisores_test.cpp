// SPDX-License-Identifier: MIT
// Issuers by number.
#include "tavelor/reference/emisores.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

class EmisoresTest : public test::CatalogueTest<Emisores> {
 protected:
  void fill() {
    shop.run("INSERT INTO Emisores (Id, Descripcion) VALUES (2, 'Dos')");
    shop.run("INSERT INTO Emisores (Id) VALUES (1)");
    shop.statements();
  }
};

TEST_F(EmisoresTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "GetValor", "CuantosRegistros", "IniciaRs",
                          "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ReadBLOB");
  EXPECT_EQ(signature("CuantosRegistros"),
            "CuantosRegistros([inout objCn As Connection]) As Integer");
}

TEST_F(EmisoresTest, SeleccomboAndSeleccionAreTheShortListByNumber) {
  fill();
  for (const char* word : {"seleccombo", "seleccion"}) {
    const Opened opened = open(word);
    EXPECT_EQ(opened.statement, "SELECT Id, Descripcion as Descripción FROM Emisores Order by id");
    EXPECT_EQ(opened.word, word);
    EXPECT_THAT(codes(), ElementsAre("1", "2"));
  }
}

TEST_F(EmisoresTest, AnyOtherWordHasTheLogoToo) {
  const Opened opened = open("seleccioncombo");
  EXPECT_EQ(opened.statement,
            "SELECT Id, Descripcion as Descripción, Logotipo FROM Emisores Order by id");
  EXPECT_EQ(opened.word, "todos");
}

TEST_F(EmisoresTest, GetValorOfAnUnknownIdIsNo) {
  fill();
  EXPECT_EQ(catalogue.GetValor(std::int32_t{2}), "Dos");
  EXPECT_EQ(statement(), "SELECT Descripcion as v  FROM Emisores  where id = 2");
  EXPECT_EQ(catalogue.GetValor("2"), "Dos");
  EXPECT_EQ(catalogue.GetValor("9"), "no");
  EXPECT_EQ(catalogue.GetValor("1"), "no") << "and of one without a description";
}

TEST_F(EmisoresTest, CuantosRegistrosCountsThem) {
  EXPECT_EQ(catalogue.CuantosRegistros(), 0);
  EXPECT_EQ(statement(), "SELECT Descripcion as v  FROM Emisores");
  fill();
  EXPECT_EQ(catalogue.CuantosRegistros(), 2);
}

TEST_F(EmisoresTest, TheNumberStandsWithoutQuotesAndStaysOne) {
  fill();
  for (const char* attack : {"", "2 or 1=1", "2)", "2 --", "x", "1; DELETE FROM Emisores"}) {
    EXPECT_NE(errorOf([&] { catalogue.GetValor(attack); }), 0) << attack;
    EXPECT_NE(errorOf([&] { catalogue.CodigoLibre(attack); }), 0) << attack;
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Emisores"), "2");
}

TEST_F(EmisoresTest, CodesAreNumbers) {
  fill();
  EXPECT_EQ(catalogue.NuevoCodigo(), Variant(std::int32_t{3}));
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Emisores");
  EXPECT_FALSE(catalogue.CodigoLibre("2"));
  EXPECT_EQ(statement(), "SELECT Id FROM Emisores where id =2");
  EXPECT_TRUE(catalogue.CodigoLibre("3"));
}

TEST_F(EmisoresTest, ANewIssuerIsWrittenUnderItsNumber) {
  fill();
  open("todos");
  catalogue.AddNew(true);
  rows().Field("Descripción").Value("Tres");
  catalogue.Update();
  EXPECT_EQ(catalogue.GetValor("3"), "Tres");
}

}  // namespace
}  // namespace tavelor
