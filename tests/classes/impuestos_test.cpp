// SPDX-License-Identifier: MIT
// Rates, surcharges and the default rate.
#include "tavelor/reference/impuestos.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción,  Impuesto, Recargo, Predeterminada FROM "
    "TIPOS_IMPUESTO";

class ClsImpuestosTest : public test::CatalogueTest<ClsImpuestos> {
 protected:
  void fill() {
    shop.run(
        "INSERT INTO TIPOS_IMPUESTO (Codigo, Descripcion, Impuesto, Recargo, Predeterminada) "
        "VALUES "
        "('1', 'General', 21, 5.2, True)");
    shop.run("INSERT INTO TIPOS_IMPUESTO (Codigo, Impuesto) VALUES ('2', 10)");
    shop.statements();
  }
};

TEST_F(ClsImpuestosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "sClassName", "GetConnection", "GetConnectionStrToRpt",
                          "GetConnectionStr", "GetImpuesto", "GetRecargo", "GetPredeterminada",
                          "GetImpuestoPredeterminada", "GetDescripcion", "ExistePredeterminada",
                          "IniciaRs", "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToHtmlGrid");
  EXPECT_EQ(signature("GetImpuesto"),
            "GetImpuesto(inout vId As Variant, [inout objCn As Connection]) As Double");
}

TEST_F(ClsImpuestosTest, TheClassWordIsNotTheTable) {
  EXPECT_EQ(catalogue.sClassName(), "Impuestos");
}

// ---- Modes

TEST_F(ClsImpuestosTest, SeleccionHasCodeAndDescription) {
  const Opened opened = open("seleccion");
  EXPECT_EQ(opened.statement,
            "SELECT Codigo AS Código, Descripcion AS Descripción FROM TIPOS_IMPUESTO");
  EXPECT_EQ(opened.word, "seleccion");
}

TEST_F(ClsImpuestosTest, SeleccioncomboAndRegistroAreNoModesHere) {
  for (const char* word : {"seleccioncombo", "registro", "Seleccion", "todos", ""}) {
    const Opened opened = open(word, "1");
    EXPECT_EQ(opened.statement, kTodos) << word;
    EXPECT_EQ(opened.word, "todos");
  }
  EXPECT_THAT(fieldNames(),
              ElementsAre("Código", "Descripción", "Impuesto", "Recargo", "Predeterminada"));
}

// ---- Look-ups

TEST_F(ClsImpuestosTest, GetImpuestoIsTheRateAndZeroForACodeThatIsNotThere) {
  fill();
  EXPECT_DOUBLE_EQ(catalogue.GetImpuesto("1"), 21);
  EXPECT_EQ(statement(), "SELECT Codigo, Impuesto FROM Tipos_Impuesto WHERE Codigo = '1'");
  EXPECT_DOUBLE_EQ(catalogue.GetImpuesto("9"), 0);
  Variant id = "1";
  catalogue.GetImpuesto(id);
  EXPECT_EQ(id, Variant("1")) << "it is passed by reference and stays";
}

TEST_F(ClsImpuestosTest, GetRecargoIsZeroWhereItIsNullOrTheCodeIsNotThere) {
  fill();
  EXPECT_DOUBLE_EQ(catalogue.GetRecargo("1"), 5.2);
  EXPECT_EQ(statement(), "SELECT Codigo, Impuesto, Recargo FROM Tipos_Impuesto WHERE Codigo = '1'");
  EXPECT_DOUBLE_EQ(catalogue.GetRecargo("2"), 0);
  EXPECT_DOUBLE_EQ(catalogue.GetRecargo("9"), 0);
}

TEST_F(ClsImpuestosTest, GetDescripcionOfACodeThatIsNotThereIsImpuesto) {
  fill();
  EXPECT_EQ(catalogue.GetDescripcion("1"), "General");
  EXPECT_EQ(statement(), "SELECT Descripcion FROM TIPOS_IMPUESTO  WHERE Codigo = '1'");
  EXPECT_EQ(catalogue.GetDescripcion("9"), "Impuesto");
  EXPECT_EQ(catalogue.GetDescripcion("2"), "Impuesto") << "a null description says nothing either";
}

// The test stands behind the read: the statement runs, even when it finds a row.
TEST_F(ClsImpuestosTest, GetDescripcionOfNullIsNoWhateverWasRead) {
  fill();
  shop.run("INSERT INTO TIPOS_IMPUESTO (Codigo, Descripcion) VALUES ('', 'Sin código')");
  EXPECT_EQ(catalogue.GetDescripcion(Null{}), "No");
  EXPECT_EQ(statement(), "SELECT Descripcion FROM TIPOS_IMPUESTO  WHERE Codigo = ''");
  EXPECT_EQ(catalogue.GetDescripcion(""), "Sin código");
}

// The names read alike and their answers differ: one is for people, the other for statements.
TEST_F(ClsImpuestosTest, GetPredeterminadaIsTheDescriptionAndGetImpuestoPredeterminadaTheCode) {
  fill();
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("General"));
  EXPECT_EQ(statement(), "SELECT Descripcion as ds FROM TIPOS_IMPUESTO where predeterminada <> 0");
  EXPECT_EQ(catalogue.GetImpuestoPredeterminada(), Variant("1"));
  EXPECT_EQ(statement(), "SELECT codigo as ds FROM TIPOS_IMPUESTO where predeterminada <> 0");
  EXPECT_TRUE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM TIPOS_IMPUESTO where predeterminada <> 0");
}

TEST_F(ClsImpuestosTest, WithoutADefaultRateTheAnswersAreEmpty) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_TRUE(catalogue.GetImpuestoPredeterminada().isEmpty());
  EXPECT_FALSE(catalogue.ExistePredeterminada());
}

TEST_F(ClsImpuestosTest, ADefaultRateWithoutADescriptionGivesNone) {
  shop.run("INSERT INTO TIPOS_IMPUESTO (Codigo, Predeterminada) VALUES ('1', True)");
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
}

// ---- Codes and new rows

TEST_F(ClsImpuestosTest, CodesComeFromTheTable) {
  EXPECT_EQ(shown(catalogue.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM TIPOS_IMPUESTO");
  EXPECT_TRUE(catalogue.CodigoLibre("1"));
  EXPECT_EQ(statement(), "SELECT Codigo FROM TIPOS_IMPUESTO where codigo ='1'");
}

TEST_F(ClsImpuestosTest, ANewRateWithDefaultsHasZerosBesideItsCode) {
  fill();
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "3");
  EXPECT_EQ(field("Impuesto"), "0");
  EXPECT_EQ(field("Recargo"), "0");
  EXPECT_EQ(field("Predeterminada"), "Falso");
  catalogue.Update();
  EXPECT_EQ(shop.text("SELECT Recargo FROM TIPOS_IMPUESTO WHERE Codigo = '3'"), "0");
}

// The zeros go to fields by their place, which the short list does not have: a form adds rates from
// the full list only.
TEST_F(ClsImpuestosTest, ANewRateWithDefaultsFailsInTheShortListAndCanBeCancelled) {
  open("seleccion");
  EXPECT_EQ(errorOf([&] { catalogue.AddNew(true); }), errors::kItemNotFound);
  EXPECT_TRUE(catalogue.EditingRecord()) << "the row was added before";
  catalogue.Cancel();
  EXPECT_FALSE(catalogue.ExistenRegistros());
}

TEST_F(ClsImpuestosTest, ANewRateWithoutDefaultsIsEmpty) {
  open("todos");
  catalogue.AddNew(false);
  for (const char* name : {"Código", "Impuesto", "Recargo", "Predeterminada"}) {
    EXPECT_EQ(field(name), "Empty") << name;
  }
}

TEST_F(ClsImpuestosTest, HostileTextChangesNothing) {
  fill();
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_EQ(errorOf([&] { catalogue.GetImpuesto(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetRecargo(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetDescripcion(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.CodigoLibre(attack); }), errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM TIPOS_IMPUESTO"), "2");
}

}  // namespace
}  // namespace tavelor
