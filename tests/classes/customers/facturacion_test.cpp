// SPDX-License-Identifier: MIT
// ClsClientes: what a customer brings to a document.
#include "tavelor/frame/component.hpp"
#include "tests/classes/customers/clientes.hpp"

namespace tavelor {
namespace {

using test::corpus;
using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

class ClsClientesFacturacionTest : public testing::Test, protected test::CustomerShop {
 protected:
  /// A customer with a value of its own in each column of the profile.
  void addWhole() {
    add("00012",
        "Razon_Social = 'Clínica Sol, S.L.', Nombre = 'Sol', Transportista = 'T1', Forma_Pago = "
        "'Ctd', Divisa = 'Eur', Impuesto = True, IRPF = 15, IRPF_B = 7, IRPF_C = 2, Serie = 'B', "
        "Tarifa = 'C', Descuento = 5, Descuento_pp = 3, Descuento_pp_B = 4, Descuento_pp_C = 6, "
        "Cta_Contable = '430012', Cta_Contrapartida = '700012', Cta_Tesoreria = '572', Banco = "
        "'001', Recargo = True, Concepto = 'Varios', Bonificacion_1 = 1, Condicion_1 = 100, "
        "Bonificacion_2 = 2, Condicion_2 = 200, Bonificacion_3 = 3.5, Condicion_3 = 300, "
        "Condicion_1_SI = True, Tipo_Factura_A = 'FA', Tipo_Factura_B = 'FB', Tipo_Factura_C = "
        "'FC', Documento_P = 'DP', Documento_A = 'DA', Documento_F = 'DF', Descuento_R = 8, "
        "Gastos = 12.5, Codigo_Portes = 'PORTES'");
  }
};

// ---- The whole profile

TEST_F(ClsClientesFacturacionTest, TheProfileIsLookedForByCodeOrLegalName) {
  ClsClientes::Facturacion byCode;
  byCode.id = "00012";
  EXPECT_THAT(traceOf([&] { customers.GetDatosFacturacion(byCode); }),
              ElementsAre(corpus("GetDatosFacturacion / by code")));
  ClsClientes::Facturacion byName;
  byName.sEmpresa = "Clínica Sol, S.L.";
  byName.index = 1;
  EXPECT_THAT(traceOf([&] { customers.GetDatosFacturacion(byName); }),
              ElementsAre(corpus("GetDatosFacturacion / by legal name")));
}

TEST_F(ClsClientesFacturacionTest, AnyOtherIndexBreaksTheStatement) {
  for (const std::int16_t index : std::vector<std::int16_t>{2, -1}) {
    ClsClientes::Facturacion datos;
    datos.id = "00012";
    datos.index = index;
    EXPECT_EQ(errorOf([&] { customers.GetDatosFacturacion(datos); }), errors::kSyntax);
    EXPECT_EQ(datos.id, Variant("00012"));
  }
}

TEST_F(ClsClientesFacturacionTest, TheProfileFillsEachOutputFromItsColumn) {
  addWhole();
  ClsClientes::Facturacion datos;
  datos.sEmpresa = "Clínica Sol, S.L.";
  datos.index = 1;
  EXPECT_TRUE(customers.GetDatosFacturacion(datos));
  EXPECT_EQ(datos.id, Variant("00012"));
  EXPECT_THAT(
      (std::vector{datos.sEmpresa, datos.sNom, datos.sTransportista, datos.sPago, datos.sDivisa,
                   datos.sSerie, datos.sTarifa, datos.sCta, datos.sCtaC, datos.sBanco,
                   datos.sConcepto, datos.sFactura_A, datos.sFactura_B, datos.sFactura_C,
                   datos.sDocumento_P, datos.sDocumento_A, datos.sDocumento_F}),
      ElementsAre("Clínica Sol, S.L.", "Sol", "T1", "Ctd", "Eur", "B", "C", "430012", "700012",
                  "001", "Varios", "FA", "FB", "FC", "DP", "DA", "DF"));
  EXPECT_THAT(
      (std::vector{datos.dIrpf, datos.dDtoLinea, datos.dDto, datos.dBonificacion, datos.dImpBonif}),
      ElementsAre(15, 5, 3, 1, 100));
  EXPECT_TRUE(datos.bImpuesto);
  EXPECT_TRUE(datos.bRecargo);
}

TEST_F(ClsClientesFacturacionTest, AnInactiveCustomerIsNobodyAndClearsCodeAndNameOnly) {
  addWhole();
  set("00012", "Activo = 0");
  ClsClientes::Facturacion datos;
  datos.id = "00012";
  datos.sEmpresa = "was";
  datos.sSerie = "was";
  datos.sNom = "was";
  datos.dDto = 9;
  datos.bImpuesto = true;
  EXPECT_FALSE(customers.GetDatosFacturacion(datos));
  EXPECT_EQ(datos.id, Variant(""));
  EXPECT_EQ(datos.sEmpresa, "");
  EXPECT_EQ(datos.sSerie, "was");
  EXPECT_EQ(datos.sNom, "was");
  EXPECT_EQ(datos.dDto, 9);
  EXPECT_TRUE(datos.bImpuesto);
}

TEST_F(ClsClientesFacturacionTest, NullsTakeTheirDefaultsOrLeaveTheVariable) {
  add("00012", "Razon_Social = Null");
  ClsClientes::Facturacion datos;
  datos.id = "00012";
  datos.sEmpresa = "was";
  datos.sPago = "was";
  datos.dIrpf = 9;
  datos.dDtoLinea = 9;
  datos.dDto = 9;
  datos.dBonificacion = 9;
  datos.bImpuesto = true;
  datos.bRecargo = true;
  EXPECT_TRUE(customers.GetDatosFacturacion(datos));
  EXPECT_EQ(datos.sSerie, "A");
  EXPECT_EQ(datos.sTarifa, "A");
  EXPECT_EQ(datos.dDtoLinea, 0);
  EXPECT_EQ(datos.dDto, 0);
  EXPECT_EQ(datos.sEmpresa, "was");
  EXPECT_EQ(datos.sPago, "was");
  EXPECT_EQ(datos.dIrpf, 9);
  EXPECT_EQ(datos.dBonificacion, 9);
  EXPECT_FALSE(datos.bImpuesto);
  EXPECT_FALSE(datos.bRecargo);
}

TEST_F(ClsClientesFacturacionTest, ByNameTheProfileAnswersAndGivesItsOutputs) {
  addWhole();
  std::vector<Variant> arguments = {"00012", ""};
  EXPECT_EQ(ClsClientes::component().call(customers, "GetDatosFacturacion", arguments),
            Variant(true));
  ASSERT_EQ(arguments.size(), 27U);
  EXPECT_EQ(arguments[1], Variant("Clínica Sol, S.L."));
  EXPECT_EQ(arguments[7], Variant("B"));
  EXPECT_EQ(arguments[26], Variant("Sol"));
}

// ---- The warning

TEST_F(ClsClientesFacturacionTest, AWarningIsShownUnlessDocumentsTakeItUp) {
  add("00012", "Aviso = True, Texto_Aviso = 'Llamar antes'");
  const auto till = answer(true);
  ClsClientes::Facturacion datos;
  datos.id = "00012";
  customers.GetDatosFacturacion(datos);
  ASSERT_EQ(till->messages.size(), 1U);
  EXPECT_EQ(till->messages[0].text, "Llamar antes");
  EXPECT_EQ(till->messages[0].title, "");

  set("00012", "Incorporar = True");
  customers.GetDatosFacturacion(datos);
  set("00012", "Aviso = False, Incorporar = False");
  customers.GetDatosFacturacion(datos);
  EXPECT_EQ(till->messages.size(), 1U);
}

TEST_F(ClsClientesFacturacionTest, TheWarningAloneIsShownForInactiveCustomersToo) {
  add("00012", "Activo = 0, Aviso = True, Texto_Aviso = 'Llamar antes'");
  const auto till = answer(true);
  EXPECT_THAT(traceOf([&] { customers.GetAviso("00012"); }), ElementsAre(corpus("GetAviso")));
  EXPECT_EQ(till->messages.size(), 1U);
  customers.GetAviso("nobody");
  EXPECT_EQ(till->messages.size(), 1U);
}

TEST_F(ClsClientesFacturacionTest, AWarningWithoutATextIsAnEmptyMessage) {
  add("00012", "Aviso = True, Texto_Aviso = Null");
  const auto till = answer(true);
  customers.GetAviso("00012");
  ASSERT_EQ(till->messages.size(), 1U);
  EXPECT_EQ(till->messages[0].text, "");
}

// ---- The invoicing run

TEST_F(ClsClientesFacturacionTest, TheRunGetsThePromptPaymentDiscount) {
  addWhole();
  ClsClientes::Facturar datos;
  datos.id = "00012";
  EXPECT_THAT(traceOf([&] { customers.GetDatosFacturar(datos); }),
              ElementsAre(corpus("GetDatosFacturar")));
  EXPECT_EQ(datos.id, Variant("00012"));
  EXPECT_THAT((std::vector{datos.dDto, datos.dBonificacion, datos.dImpBonif, datos.dBonificacion2,
                           datos.dImpBonif2, datos.dBonificacion3, datos.dImpBonif3, datos.dIrpfCli,
                           datos.dGastos, datos.dDtoRpt}),
              ElementsAre(3, 1, 100, 2, 200, 3.5, 300, 15, 12.5, 8));
  EXPECT_THAT((std::vector{datos.sBanco, datos.sFactura_A, datos.sFactura_B, datos.sFactura_C,
                           datos.sRefArt}),
              ElementsAre("001", "FA", "FB", "FC", "PORTES"));
}

TEST_F(ClsClientesFacturacionTest, TheRunLeavesEverythingForNobodyAndForNulls) {
  ClsClientes::Facturar datos;
  datos.id = "00012";
  datos.dDto = 9;
  datos.sBanco = "was";
  customers.GetDatosFacturar(datos);
  EXPECT_EQ(datos.id, Variant("00012"));
  EXPECT_EQ(datos.dDto, 9);
  add("00012");
  customers.GetDatosFacturar(datos);
  EXPECT_EQ(datos.dDto, 9);
  EXPECT_EQ(datos.sBanco, "was");
}

TEST_F(ClsClientesFacturacionTest, TheOtherDataAreCodeAndPaymentAlone) {
  addWhole();
  Variant id = "00012";
  std::string payment = "was";
  EXPECT_THAT(traceOf([&] { customers.GetOtrosDatosFacturar(id, payment); }),
              ElementsAre(corpus("GetOtrosDatosFacturar")));
  EXPECT_EQ(payment, "Ctd");
  id = "nobody";
  payment = "was";
  customers.GetOtrosDatosFacturar(id, payment);
  EXPECT_EQ(id, Variant("nobody"));
  EXPECT_EQ(payment, "was");
}

TEST_F(ClsClientesFacturacionTest, BonusesAreGivenAsTheyAre) {
  addWhole();
  ClsClientes::Bonificar datos;
  datos.id = "00012";
  EXPECT_THAT(traceOf([&] { customers.GetDatosBonificar(datos); }),
              ElementsAre(corpus("GetDatosBonificar")));
  EXPECT_THAT((std::vector{datos.dBonificacion, datos.dImpBonif, datos.dBonificacion2,
                           datos.dImpBonif2, datos.dBonificacion3, datos.dImpBonif3}),
              ElementsAre(1, 100, 2, 200, 3.5, 300));
  EXPECT_EQ(datos.bCondicion_1_SI, Variant(true));

  set("00012", "Bonificacion_1 = Null, Condicion_1_SI = Null");
  datos.bCondicion_1_SI = "was";
  customers.GetDatosBonificar(datos);
  EXPECT_EQ(datos.dBonificacion, 1);
  EXPECT_EQ(datos.bCondicion_1_SI, Variant("was"));
}

// ---- Party data

TEST_F(ClsClientesFacturacionTest, PartyDataAndTheMailBehindThem) {
  add("00012",
      "Nombre = 'Sol', NIF = 'B12345674', Direccion = 'Mayor, 1', Codigo_Postal = '28001', "
      "Poblacion = 'Madrid', Provincia = 'M', Telefono = '91', E_Mail = 's@e.org'");
  ClsClientes::Cabecera datos;
  datos.id = "00012";
  datos.sMail = "was";
  const auto shown = [&] {
    return std::vector{datos.idTel,      datos.sNif,       datos.sNombre,
                       datos.sEmpresa,   datos.sDireccion, datos.sCp,
                       datos.sPoblacion, datos.sProvincia, datos.sMail};
  };
  EXPECT_THAT(traceOf([&] { customers.GetDatosCabecera(datos); }),
              ElementsAre(corpus("GetDatosCabecera")));
  EXPECT_THAT(shown(), ElementsAre("91", "B12345674", "Sol", "Cliente 00012", "Mayor, 1", "28001",
                                   "Madrid", "M", "was"));
  EXPECT_THAT(traceOf([&] { customers.GetDatosEmpresa(datos); }),
              ElementsAre(corpus("GetDatosEmpresa")));
  EXPECT_EQ(datos.sMail, "s@e.org");

  set("00012", "Activo = 0");
  datos.sNif = "was";
  customers.GetDatosCabecera(datos);
  customers.GetDatosEmpresa(datos);
  EXPECT_EQ(datos.sNif, "was");
}

TEST_F(ClsClientesFacturacionTest, TheFourAdministrativeCentresComeInPairs) {
  add("00012",
      "Cod_Of_Contable = 'L1', Nom_Of_Contable = 'Contable', Cod_Or_Gestor = 'L2', Nom_Or_Gestor "
      "= 'Gestor', Cod_Un_Tramit = 'L3', Nom_Un_Tramit = 'Tramit', Nom_Or_Propon = 'Propon'");
  ClsClientes::Centros datos;
  datos.id = "00012";
  datos.sOp_c_cod = "was";
  EXPECT_THAT(traceOf([&] { customers.GetAdministrativeCentres(datos); }),
              ElementsAre(corpus("GetAdministrativeCentres")));
  EXPECT_THAT((std::vector{datos.sOf_c_cod, datos.sOf_c_nom, datos.sOg_c_cod, datos.sOg_c_nom,
                           datos.sUt_c_cod, datos.sUt_c_nom, datos.sOp_c_cod, datos.sOp_c_nom}),
              ElementsAre("L1", "Contable", "L2", "Gestor", "L3", "Tramit", "was", "Propon"));
}

// ---- Discounts and withholding

TEST_F(ClsClientesFacturacionTest, TheLineDiscountIsOneAboveZero) {
  double discount = 7;
  EXPECT_THAT(traceOf([&] { EXPECT_FALSE(customers.GetDto("00012", discount)); }),
              ElementsAre(corpus("GetDto")));
  EXPECT_EQ(discount, 7);
  add("00012", "Activo = 0, Descuento = 2.5");
  EXPECT_TRUE(customers.GetDto("00012", discount));
  EXPECT_EQ(discount, 2.5);
  for (const char* none : {"Null", "0", "-3"}) {
    set("00012", std::string("Descuento = ") + none);
    discount = 7;
    EXPECT_FALSE(customers.GetDto("00012", discount)) << none;
    EXPECT_EQ(discount, 0) << none;
  }
}

TEST_F(ClsClientesFacturacionTest, TheReportsDiscountIsAlwaysThere) {
  double discount = 7;
  EXPECT_THAT(traceOf([&] { EXPECT_TRUE(customers.GetDtoRpt("00012", discount)); }),
              ElementsAre(corpus("GetDtoRpt")));
  EXPECT_EQ(discount, 7);
  add("00012");
  EXPECT_TRUE(customers.GetDtoRpt("00012", discount));
  EXPECT_EQ(discount, 0);
  set("00012", "Descuento_R = 8");
  customers.GetDtoRpt("00012", discount);
  EXPECT_EQ(discount, 8);
}

TEST_F(ClsClientesFacturacionTest, WithholdingAndPromptPaymentGoByTheSeries) {
  addWhole();
  set("00012", "Activo = 0");
  EXPECT_THAT(traceOf([&] { EXPECT_EQ(customers.GetIrpfSerie("00012", "A"), 15); }),
              ElementsAre(corpus("GetIrpfSerie")));
  EXPECT_EQ(customers.GetIrpfSerie("00012", "B"), 7);
  EXPECT_EQ(customers.GetIrpfSerie("00012", "b"), 7);
  EXPECT_EQ(customers.GetIrpfSerie("00012", "c"), 2);
  EXPECT_THAT(traceOf([&] { EXPECT_EQ(customers.GetDtoSerie("00012", "a"), 3); }),
              ElementsAre(corpus("GetDtoSerie")));
  EXPECT_EQ(customers.GetDtoSerie("00012", "B"), 4);
  EXPECT_EQ(customers.GetDtoSerie("00012", "C"), 6);
  for (const char* other : {"R", "", "AB", "bc"}) {
    EXPECT_EQ(customers.GetIrpfSerie("00012", other), 0) << other;
    EXPECT_EQ(customers.GetDtoSerie("00012", other), 0) << other;
  }
  set("00012", "IRPF = Null");
  EXPECT_EQ(customers.GetIrpfSerie("00012", "A"), 0);
  EXPECT_EQ(customers.GetIrpfSerie("nobody", "A"), 0);
}

// ---- Account, documents, who is invoiced when

TEST_F(ClsClientesFacturacionTest, TheTreasuryAccountIsNoForNullAndStaysForNobody) {
  std::string account = "was";
  EXPECT_THAT(traceOf([&] { EXPECT_TRUE(customers.GetCtaTesoreria("00012", account)); }),
              ElementsAre(corpus("GetCtaTesoreria")));
  EXPECT_EQ(account, "was");
  add("00012");
  EXPECT_TRUE(customers.GetCtaTesoreria("00012", account));
  EXPECT_EQ(account, "no");
  set("00012", "Cta_Tesoreria = '572'");
  customers.GetCtaTesoreria("00012", account);
  EXPECT_EQ(account, "572");
}

TEST_F(ClsClientesFacturacionTest, DocumentsAreFilledForTheCodeThatGoesIn) {
  add("00012", "Documento_P = 'DP', Documento_F = 'DF'");
  Variant id = "00012";
  std::string order = "was", note = "was", invoice = "was";
  EXPECT_THAT(traceOf([&] { customers.GetDocumentos(id, order, note, invoice); }),
              ElementsAre(corpus("GetDocumentos")));
  EXPECT_EQ(id, Variant("00012"));
  EXPECT_THAT((std::vector{order, note, invoice}), ElementsAre("DP", "was", "DF"));

  set("00012", "Activo = 0");
  order = "was";
  customers.GetDocumentos(id, order, note, invoice);
  EXPECT_EQ(order, "was");
}

TEST_F(ClsClientesFacturacionTest, CustomersOfAPeriodAreAddedToTheCollection) {
  add("1", "Facturar = 'Mensual'");
  add("2", "Facturar = 'Diario'");
  add("3", "Facturar = 'Mensual', Activo = 0");
  std::vector<Variant> codes = {"first"};
  EXPECT_THAT(traceOf([&] { EXPECT_TRUE(customers.ObtenerClientesFacturar(codes, "Mensual")); }),
              ElementsAre(corpus("ObtenerClientesFacturar")));
  EXPECT_EQ(codes, (std::vector<Variant>{"first", "1", "3"}));
  EXPECT_FALSE(customers.ObtenerClientesFacturar(codes, "Nunca"));
  EXPECT_EQ(codes.size(), 3U);

  std::vector<Variant> arguments = {"first", "Mensual"};
  EXPECT_EQ(ClsClientes::component().call(customers, "ObtenerClientesFacturar", arguments),
            Variant(true));
  EXPECT_EQ(arguments[0], Variant("first\n1\n3"));
}

}  // namespace
}  // namespace tavelor
