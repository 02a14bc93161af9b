// SPDX-License-Identifier: MIT
// Payment methods and what a sale paid so leaves behind.
#include "tavelor/reference/formas_pago.hpp"

#include <filesystem>

#include "tavelor/services/registry_tree.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kTodos =
    "SELECT codigo as Código, Descripcion as Descripción, Numero_Plazos as Plazos, Dias_Plazos as "
    "Vencimiento, Dias1 as Dia, Apunte, Recibo, Contado, Predeterminada, Cta_Contable, "
    "Cta_Tesoreria, No_IRPF, Porcent5 as Recargo, Tipo FROM Formas_Pago";

class ClsFormasPagoTest : public test::CatalogueTest<ClsFormasPago> {
 protected:
  void fill() {
    shop.run(
        "INSERT INTO Formas_Pago (codigo, Descripcion, Numero_Plazos, Dias_Plazos, Dias1, Apunte, "
        "Recibo, Contado, Predeterminada, Cta_Contable, Cta_Tesoreria, No_IRPF, Porcent5, Tipo) "
        "VALUES ('1', 'Recibo', 3, 30, 5, True, True, False, True, '430', '572', True, 1.5, '02')");
    shop.run(
        "INSERT INTO Formas_Pago (codigo, Descripcion, Numero_Plazos, Dias_Plazos, Apunte, "
        "Contado, "
        "Cta_Contable, Cta_Tesoreria) VALUES ('2', 'Contado', 1, 7, True, True, '431', '570')");
    shop.run("INSERT INTO Formas_Pago (codigo, Recibo) VALUES ('3', True)");
    shop.statements();
  }
  ClsFormasPago::Propiedades before(const Variant& id) {
    ClsFormasPago::Propiedades datos;
    datos.vId = id;
    datos.iPlazos = 99;
    datos.iVtoA = 98;
    datos.sCtaConta = "kept";
    datos.sCtaTesor = "kept";
    return datos;
  }
};

TEST_F(ClsFormasPagoTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("sClassName", "GetRptPath", "SeguridadPermiso", "GetConnection",
                          "GetConnectionStrToRpt", "GetConnectionStr", "ExistePredeterminada",
                          "ExisteContado", "GetPredeterminada", "GetCodPredeterminada",
                          "GetDiaPago", "GetRecargo", "GetVencimientos", "NoActualizarIrpf",
                          "GetPropiedades", "GetTipo", "IniciaRs", "NuevoCodigo", "CodigoLibre"));
  EXPECT_EQ(signature("GetPropiedades"),
            "GetPropiedades(vId As Variant, out iPlazos As Integer, out iVtoA As Integer, out "
            "bCrearRecibo As Boolean, out sCtaConta As String, out sCtaTesor As String, out "
            "bCrearApunte As Boolean, [inout objCn As Connection], [out bNoIrpf As Boolean])");
}

TEST_F(ClsFormasPagoTest, TheBlankOfTheClassWordGoesIntoKeysAndFiles) {
  EXPECT_EQ(catalogue.sClassName(), "Formas Pago");
  catalogue.SetFilter("x", "Filter");
  EXPECT_EQ(shop.apartment().registry().get(
                "SOFTWARE\\Merivan\\Tavelor\\1.0\\Configuracion\\registros\\Formas Pago\\Filter",
                "Criteria"),
            "x");
  open("todos");
  catalogue.ToHtmlGrid(test::Grid({{true, "Código", 3}}));
  EXPECT_TRUE(catalogue.GetHtmlFile().ends_with("Formas Pago.htm"));
  EXPECT_TRUE(std::filesystem::exists(catalogue.GetHtmlFile()));
}

// ---- Modes

TEST_F(ClsFormasPagoTest, SeleccomboIsOrderedByDescription) {
  EXPECT_EQ(open("seleccombo").statement,
            "SELECT codigo as Código, Descripcion as Descripción FROM Formas_Pago order by "
            "Descripcion");
}

TEST_F(ClsFormasPagoTest, ContadoShowsCashMethodsAndItsStatementEndsWithASemicolon) {
  fill();
  EXPECT_EQ(open("contado").statement,
            "SELECT codigo as Código, Descripcion as Descripción FROM Formas_Pago Where (Contado "
            "<> 0) order by Codigo;");
  EXPECT_THAT(codes(), ElementsAre("2"));
}

TEST_F(ClsFormasPagoTest, TiposAndSeleccionAreTheShortSelect) {
  for (const char* word : {"tipos", "seleccion"}) {
    const Opened opened = open(word);
    EXPECT_EQ(opened.statement,
              "SELECT codigo as Código, Descripcion as Descripción FROM Formas_Pago");
    EXPECT_EQ(opened.word, word);
  }
}

TEST_F(ClsFormasPagoTest, VtoShowsMethodsOfThatManyInstalments) {
  fill();
  EXPECT_EQ(open("vto", std::int32_t{3}).statement,
            "SELECT codigo as Código, Descripcion as Descripción FROM Formas_Pago Where "
            "(Numero_plazos = 3)");
  EXPECT_THAT(codes(), ElementsAre("1"));
  EXPECT_EQ(errorOf([&] { catalogue.IniciaRs({}, "vto", ""); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { catalogue.IniciaRs({}, "vto", "3) or (1=1"); }), errors::kSyntax);
}

TEST_F(ClsFormasPagoTest, SeleccioncomboIsNoModeOfThisClass) {
  const Opened opened = open("seleccioncombo");
  EXPECT_EQ(opened.statement, kTodos);
  EXPECT_EQ(opened.word, "todos");
  EXPECT_THAT(fieldNames(),
              ElementsAre("Código", "Descripción", "Plazos", "Vencimiento", "Dia", "Apunte",
                          "Recibo", "Contado", "Predeterminada", "Cta_Contable", "Cta_Tesoreria",
                          "No_IRPF", "Recargo", "Tipo"));
}

// ---- Look-ups

TEST_F(ClsFormasPagoTest, WhetherThereIsACashOrADefaultMethod) {
  EXPECT_FALSE(catalogue.ExisteContado());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Formas_Pago where Contado <> 0");
  EXPECT_FALSE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Formas_Pago where predeterminada <> 0");
  fill();
  EXPECT_TRUE(catalogue.ExisteContado());
  EXPECT_TRUE(catalogue.ExistePredeterminada());
}

TEST_F(ClsFormasPagoTest, TheDefaultMethodByDescriptionAndByCode) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_TRUE(catalogue.GetCodPredeterminada().isEmpty());
  fill();
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("Recibo"));
  EXPECT_EQ(statement(), "SELECT Descripcion as ds FROM Formas_Pago where predeterminada <> 0");
  EXPECT_EQ(catalogue.GetCodPredeterminada(), Variant("1"));
  EXPECT_EQ(statement(), "SELECT Codigo as ds FROM Formas_Pago where predeterminada <> 0");
}

TEST_F(ClsFormasPagoTest, SingleLookUpsGiveTheirColumn) {
  fill();
  EXPECT_EQ(shown(catalogue.GetDiaPago("1")), "5");
  EXPECT_EQ(statement(), "SELECT dias1 as dia  FROM Formas_Pago where codigo ='1'");
  EXPECT_EQ(shown(catalogue.GetRecargo("1")), "1,5");
  EXPECT_EQ(statement(), "SELECT Porcent5 as Recargo  FROM Formas_Pago where codigo ='1'");
  EXPECT_EQ(shown(catalogue.GetVencimientos("1")), "3");
  EXPECT_EQ(statement(),
            "SELECT Numero_Plazos as Vencimientos  FROM Formas_Pago where codigo ='1'");
  EXPECT_TRUE(catalogue.NoActualizarIrpf("1"));
  EXPECT_EQ(statement(), "SELECT No_Irpf FROM Formas_Pago where codigo ='1'");
  EXPECT_EQ(catalogue.GetTipo("1"), "02");
  EXPECT_EQ(statement(), "SELECT Tipo  FROM Formas_Pago where codigo ='1'");
}

TEST_F(ClsFormasPagoTest, SingleLookUpsAreEmptyForNullAndForACodeThatIsNotThere) {
  fill();
  for (const char* id : {"3", "9"}) {
    EXPECT_TRUE(catalogue.GetDiaPago(id).isEmpty()) << id;
    EXPECT_TRUE(catalogue.GetRecargo(id).isEmpty()) << id;
    EXPECT_TRUE(catalogue.GetVencimientos(id).isEmpty()) << id;
    EXPECT_FALSE(catalogue.NoActualizarIrpf(id)) << id;
  }
}

TEST_F(ClsFormasPagoTest, GetTipoOfAMissingMethodIsZeroFour) {
  fill();
  EXPECT_EQ(catalogue.GetTipo("9"), "04");
  EXPECT_EQ(catalogue.GetTipo("3"), "04") << "a null says as much";
}

// ---- GetPropiedades

TEST_F(ClsFormasPagoTest, GetPropiedadesOfAMethodWithReceiptGivesAll) {
  fill();
  ClsFormasPago::Propiedades datos = before("1");
  catalogue.GetPropiedades(datos);
  EXPECT_EQ(statement(),
            "SELECT codigo as Código, Descripcion as Descripción, Numero_Plazos as Plazos, "
            "Dias_Plazos as Vencimiento, Apunte, Recibo, Contado, Predeterminada ,Cta_Tesoreria, "
            "Cta_Contable, No_Irpf FROM Formas_Pago where codigo ='1'");
  EXPECT_EQ(datos.iPlazos, 3);
  EXPECT_EQ(datos.iVtoA, 30);
  EXPECT_TRUE(datos.bCrearRecibo);
  EXPECT_EQ(datos.sCtaConta, "430");
  EXPECT_EQ(datos.sCtaTesor, "572");
  EXPECT_TRUE(datos.bCrearApunte);
  EXPECT_TRUE(datos.bNoIrpf);
}

TEST_F(ClsFormasPagoTest, GetPropiedadesOfAMethodWithoutReceiptHasNoInstalmentsAndLeavesTheRest) {
  fill();
  ClsFormasPago::Propiedades datos = before("2");
  datos.bNoIrpf = true;
  catalogue.GetPropiedades(datos);
  EXPECT_EQ(datos.iPlazos, 0);
  EXPECT_EQ(datos.iVtoA, 98);
  EXPECT_FALSE(datos.bCrearRecibo);
  EXPECT_EQ(datos.sCtaConta, "kept");
  EXPECT_EQ(datos.sCtaTesor, "kept");
  EXPECT_TRUE(datos.bCrearApunte);
  EXPECT_FALSE(datos.bNoIrpf);
}

TEST_F(ClsFormasPagoTest, GetPropiedadesLeavesWhatIsNull) {
  fill();
  ClsFormasPago::Propiedades datos = before("3");
  catalogue.GetPropiedades(datos);
  EXPECT_TRUE(datos.bCrearRecibo);
  EXPECT_EQ(datos.iPlazos, 0);
  EXPECT_EQ(datos.iVtoA, 98);
  EXPECT_EQ(datos.sCtaConta, "kept");
}

TEST_F(ClsFormasPagoTest, GetPropiedadesOfAMissingMethodOnlyClearsTheInstalments) {
  ClsFormasPago::Propiedades datos = before("9");
  datos.bCrearRecibo = datos.bCrearApunte = datos.bNoIrpf = true;
  catalogue.GetPropiedades(datos);
  EXPECT_EQ(datos.iPlazos, 0);
  EXPECT_EQ(datos.iVtoA, 98);
  EXPECT_TRUE(datos.bCrearRecibo && datos.bCrearApunte && datos.bNoIrpf);
}

TEST_F(ClsFormasPagoTest, GetPropiedadesFillsTheCallersConnection) {
  ConnectionPtr connection;
  ClsFormasPago::Propiedades datos{.vId = "1", .objCn = connection};
  catalogue.GetPropiedades(datos);
  EXPECT_NE(connection, nullptr);
}

// ---- Codes and new rows

TEST_F(ClsFormasPagoTest, CodesComeFromTheTableNotFromTheClassWord) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(codigo) AS Nuevo_Codigo FROM Formas_Pago");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Formas_Pago where codigo ='1'");
}

TEST_F(ClsFormasPagoTest, ANewMethodWithDefaults) {
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "1");
  EXPECT_EQ(field("Plazos"), "1");
  EXPECT_EQ(field("Vencimiento"), "0");
  EXPECT_EQ(field("Dia"), "0");
  EXPECT_EQ(field("Apunte"), "Verdadero");
  EXPECT_EQ(field("Recibo"), "Verdadero");
  EXPECT_EQ(field("Contado"), "Empty");
}

TEST_F(ClsFormasPagoTest, ANewMethodWithoutDefaultsHasDayEntryAndReceiptAllTheSame) {
  open("todos");
  catalogue.AddNew(false);
  EXPECT_EQ(field("Código"), "Empty");
  EXPECT_EQ(field("Plazos"), "Empty");
  EXPECT_EQ(field("Vencimiento"), "Empty");
  EXPECT_EQ(field("Dia"), "0");
  EXPECT_EQ(field("Apunte"), "Verdadero");
  EXPECT_EQ(field("Recibo"), "Verdadero");
}

TEST_F(ClsFormasPagoTest, HostileTextChangesNothing) {
  fill();
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_EQ(errorOf([&] { catalogue.GetDiaPago(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetRecargo(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetVencimientos(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.NoActualizarIrpf(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetTipo(attack); }), errors::kSyntax);
    ClsFormasPago::Propiedades datos = before(attack);
    EXPECT_EQ(errorOf([&] { catalogue.GetPropiedades(datos); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.IniciaRs({}, "vto", attack); }), errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Formas_Pago"), "3");
}

}  // namespace
}  // namespace tavelor
