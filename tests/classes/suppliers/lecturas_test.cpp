// SPDX-License-Identifier: MIT
// ClsProveedores: what is read of one supplier.
#include <filesystem>

#include "tests/classes/suppliers/proveedores.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

class ClsProveedoresLecturasTest : public test::SupplierTest {
 protected:
  /// A supplier with a value of its own in each column of the profile.
  void addWhole(const std::string& code = "00012") {
    add(code,
        "Razon_Social = 'Dentales del Sur', Nombre = 'Sur', Transportista = 'T1', Forma_Pago = "
        "'Ctd', Divisa = 'Eur', Impuesto = True, IRPF = 15, Serie = 'B', Tarifa = 'C', Descuento = "
        "5, Descuento_pp = 3, Cta_Tesoreria = '572', Cta_Contable = '400012', Cta_Contrapartida = "
        "'600012', Banco = '001', Recargo = True, Concepto = 'Varios', Bonificacion_1 = 1.5, "
        "Condicion_1 = 100.25, Tipo_Factura_A = 'FA', Tipo_Factura_B = 'FB', Tipo_Factura_C = "
        "'FC', Documento_P = 'DP', Documento_A = 'DA', Documento_F = 'DF'");
  }
};

// ---- Names

TEST_F(ClsProveedoresLecturasTest, TheLegalNameOfAUsableSupplier) {
  add("00012");
  shop.statements();
  EXPECT_EQ(call("GetRazon_Social", {"00012"}), Variant(true));
  EXPECT_EQ(left[1], Variant("Proveedor 00012"));
  EXPECT_EQ(statement(), corpus("GetRazon_Social, GetRazonSocial"));
  EXPECT_EQ(call("GetRazonSocial", {"00012"}), Variant("Proveedor 00012"));
  EXPECT_EQ(statement(), corpus("GetRazon_Social, GetRazonSocial"));
}

TEST_F(ClsProveedoresLecturasTest, AnInactiveSupplierLeavesTheNameAlone) {
  add("00012", "Activo = 0");
  std::string name = "was";
  EXPECT_FALSE(suppliers.GetRazon_Social("00012", name));
  EXPECT_FALSE(suppliers.GetRazon_Social(test::kMissing, name));
  EXPECT_EQ(name, "was");
  EXPECT_EQ(suppliers.GetRazonSocial("00012"), "");
  EXPECT_EQ(suppliers.GetRazonSocial(test::kMissing), "");
}

TEST_F(ClsProveedoresLecturasTest, ANullNameIsNotValidAndTheSupplierIsThere) {
  add("00012", "Razon_Social = Null");
  std::string name = "was";
  EXPECT_TRUE(suppliers.GetRazon_Social("00012", name));
  EXPECT_EQ(name, "No válido");
  EXPECT_EQ(suppliers.GetRazonSocial("00012"), "No válido");
  set("00012", "Razon_Social = ''");
  EXPECT_TRUE(suppliers.GetRazon_Social("00012", name));
  EXPECT_EQ(name, "") << "an empty one is a name";
}

// ---- Account, subcontract

TEST_F(ClsProveedoresLecturasTest, TheTreasuryAccountIsNoForNullAndStaysForNobody) {
  add("00012", "Cta_Tesoreria = '572'");
  shop.statements();
  EXPECT_EQ(call("GetCtaTesoreria", {"00012"}), Variant(true));
  EXPECT_EQ(left[1], Variant("572"));
  EXPECT_EQ(statement(), corpus("GetCtaTesoreria"));
  std::string account = "was";
  EXPECT_TRUE(suppliers.GetCtaTesoreria(test::kMissing, account));
  EXPECT_EQ(account, "was");
  set("00012", "Cta_Tesoreria = Null");
  EXPECT_TRUE(suppliers.GetCtaTesoreria("00012", account));
  EXPECT_EQ(account, "no");
  set("00012", "Activo = 0");
  account = "was";
  EXPECT_TRUE(suppliers.GetCtaTesoreria("00012", account));
  EXPECT_EQ(account, "was");
}

TEST_F(ClsProveedoresLecturasTest, ASubcontractorIsOneInUseOrNotAndNobodyIsNone) {
  add("00012", "Sub = True, Activo = 0");
  add("00013");
  shop.statements();
  EXPECT_EQ(call("esSubcontratado", {"00012"}), Variant(true));
  EXPECT_EQ(statement(), corpus("esSubcontratado"));
  EXPECT_FALSE(suppliers.esSubcontratado("00013"));
  EXPECT_FALSE(suppliers.esSubcontratado(test::kMissing));
}

// ---- The profile

TEST_F(ClsProveedoresLecturasTest, TheProfileFillsEachOutputFromItsColumn) {
  addWhole();
  ClsProveedores::Facturacion datos;
  datos.id = "00012";
  datos.sNom = "was";
  shop.statements();
  EXPECT_TRUE(suppliers.GetDatosFacturacion(datos));
  EXPECT_EQ(statement(), corpus("GetDatosFacturacion / index 0"));
  EXPECT_EQ(datos.id, Variant("00012"));
  EXPECT_THAT((std::vector{datos.sEmpresa, datos.sTransportista, datos.sPago, datos.sDivisa,
                           datos.sSerie, datos.sTarifa, datos.sCta, datos.sCtaC, datos.sBanco,
                           datos.sConcepto, datos.sFactura_A, datos.sFactura_B, datos.sFactura_C,
                           datos.sDocumento_P, datos.sDocumento_A, datos.sDocumento_F}),
              ElementsAre("Dentales del Sur", "T1", "Ctd", "Eur", "B", "C", "400012", "600012",
                          "001", "Varios", "FA", "FB", "FC", "DP", "DA", "DF"));
  EXPECT_THAT(
      (std::vector{datos.dIrpf, datos.dDtoLinea, datos.dDto, datos.dBonificacion, datos.dImpBonif}),
      ElementsAre(15, 5, 3, 1.5, 100.25));
  EXPECT_TRUE(datos.bImpuesto);
  EXPECT_TRUE(datos.bRecargo);
  EXPECT_EQ(datos.sNom, "was") << "a supplier gives no trade name";
}

TEST_F(ClsProveedoresLecturasTest, TheProfileIsLookedForByLegalNameToo) {
  addWhole();
  shop.statements();
  EXPECT_EQ(call("GetDatosFacturacion", {"", "Dentales del Sur",
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         {}, {},
                                         1}),
            Variant(true));
  EXPECT_EQ(statement(), corpus("GetDatosFacturacion / index 1"));
  EXPECT_EQ(left[0], Variant("00012"));
  EXPECT_EQ(left[7], Variant("B"));
}

TEST_F(ClsProveedoresLecturasTest, AnyOtherIndexLeavesAStatementThatEndsInWhere) {
  addWhole();
  for (const std::int16_t index : std::vector<std::int16_t>{2, -1}) {
    ClsProveedores::Facturacion datos;
    datos.id = "00012";
    datos.index = index;
    shop.statements();
    EXPECT_EQ(errorOf([&] { suppliers.GetDatosFacturacion(datos); }), errors::kSyntax);
    EXPECT_EQ(statement(), corpus("GetDatosFacturacion / other index"));
    EXPECT_EQ(datos.id, Variant("00012"));
  }
}

TEST_F(ClsProveedoresLecturasTest, AnInactiveSupplierIsNobodyAndClearsCodeAndNameOnly) {
  addWhole();
  set("00012", "Activo = 0");
  ClsProveedores::Facturacion datos;
  datos.id = "00012";
  datos.sEmpresa = "was";
  datos.sSerie = "was";
  datos.dDto = 9;
  EXPECT_FALSE(suppliers.GetDatosFacturacion(datos));
  EXPECT_EQ(datos.id, Variant(""));
  EXPECT_EQ(datos.sEmpresa, "");
  EXPECT_EQ(datos.sSerie, "was");
  EXPECT_EQ(datos.dDto, 9);
}

TEST_F(ClsProveedoresLecturasTest, NullsTakeTheirDefaultsOrLeaveTheVariable) {
  add("00012", "Razon_Social = Null");
  ClsProveedores::Facturacion datos;
  datos.id = "00012";
  datos.sEmpresa = "was";
  datos.dIrpf = 9;
  datos.dDtoLinea = 9;
  datos.dDto = 9;
  datos.dBonificacion = 9;
  datos.bImpuesto = true;
  EXPECT_TRUE(suppliers.GetDatosFacturacion(datos));
  EXPECT_EQ(datos.sSerie, "A");
  EXPECT_EQ(datos.sTarifa, "A");
  EXPECT_EQ(datos.dDtoLinea, 0);
  EXPECT_EQ(datos.dDto, 0);
  EXPECT_EQ(datos.sEmpresa, "was");
  EXPECT_EQ(datos.dIrpf, 9);
  EXPECT_EQ(datos.dBonificacion, 9);
  EXPECT_FALSE(datos.bImpuesto);
}

TEST_F(ClsProveedoresLecturasTest, TheInvoiceTakesBankBonusTypesAndDocuments) {
  addWhole("00013");
  shop.statements();
  call("GetDatosFacturar", {"00013"});
  EXPECT_EQ(statement(), corpus("GetDatosFacturar"));
  ASSERT_EQ(left.size(), 11U);
  left.pop_back();
  EXPECT_THAT(left, ElementsAre(Variant("00013"), Variant("001"), Variant(1.5), Variant(100.25),
                                Variant("FA"), Variant("FB"), Variant("FC"), Variant("DP"),
                                Variant("DA"), Variant("DF")));
}

TEST_F(ClsProveedoresLecturasTest, TheInvoiceLeavesEverythingForNobodyAndForNulls) {
  add("00012", "Activo = 0");
  ClsProveedores::Facturar datos;
  datos.id = "00012";
  datos.sBanco = "was";
  datos.dBonificacion = 9;
  suppliers.GetDatosFacturar(datos);
  EXPECT_EQ(datos.id, Variant("00012"));
  set("00012", "Activo = -1");
  suppliers.GetDatosFacturar(datos);
  EXPECT_EQ(datos.sBanco, "was");
  EXPECT_EQ(datos.dBonificacion, 9);
}

// ---- The current row, paths

TEST_F(ClsProveedoresLecturasTest, TheCurrentRowIsCopied) {
  add("00012",
      "Nombre = 'Sur', Direccion = 'Mayor 1', Codigo_Postal = '28001', Poblacion = 'Madrid', "
      "Provincia = 'M', Telefono = '910'");
  suppliers.IniciaRs();
  call("ObtenerRegistroActivo");
  EXPECT_THAT(left, ElementsAre(Variant("00012"), Variant("Sur"), Variant("Proveedor 00012"),
                                Variant("Mayor 1"), Variant("28001"), Variant("Madrid"),
                                Variant("M"), Variant("910")));
}

TEST_F(ClsProveedoresLecturasTest, WhatCannotBeReadOfTheCurrentRowStays) {
  Variant id = "was";
  std::string name = "was";
  std::string other = "was";
  const auto take = [&] {
    suppliers.ObtenerRegistroActivo(id, name, other, other, other, other, other, other);
  };
  take();
  EXPECT_EQ(id, Variant("was")) << "before IniciaRs";
  add("00012");
  suppliers.IniciaRs("seleccion");
  take();
  EXPECT_EQ(id, Variant("00012"));
  EXPECT_EQ(name, "was") << "the list does not show it";
}

TEST_F(ClsProveedoresLecturasTest, ItsPathsLieInTheInstallation) {
  const std::filesystem::path folder = shop.installation().folder();
  EXPECT_EQ(call("GetTxtFile"), Variant((folder / "rpt" / "Proveedores.txt").string()));
  call("GetDocPath", {"contrato.doc"});
  EXPECT_EQ(left[0], Variant(DataSession().DocPath("contrato.doc")));
}

// ---- Connections, its apartment, and values that try to leave their place

TEST_F(ClsProveedoresLecturasTest, ReadsFillAnEmptyConnectionAndSeeTheTransactionOfAGivenOne) {
  ConnectionPtr connection;
  suppliers.esSubcontratado("00012", connection);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  DataSession().Execute(
      1, Statement("INSERT INTO Proveedores (Codigo, Activo, Sub) VALUES ('00012', -1, True)"),
      connection);
  EXPECT_TRUE(suppliers.esSubcontratado("00012", connection));
  EXPECT_EQ(suppliers.GetRazonSocial("00012", connection), "No válido");
  connection->RollbackTrans();
  EXPECT_FALSE(suppliers.esSubcontratado("00012", connection));
}

TEST_F(ClsProveedoresLecturasTest, WorksInNoOtherApartmentThanItsOwn) {
  test::Shop other;
  other.run("INSERT INTO Proveedores (Codigo, Activo, Sub) VALUES ('00012', -1, True)");
  std::string text = "was";
  ClsProveedores::Facturacion profile;
  ClsProveedores::Facturar invoice;
  EXPECT_EQ(errorOf([&] { suppliers.esSubcontratado("00012"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetRazonSocial("00012"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetRazon_Social("00012", text); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetCtaTesoreria("00012", text); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.CtaLibre("400", "00012"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.NuevoCodigo(); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetDatosFacturacion(profile); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetDatosFacturar(invoice); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetDocPath(text); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { suppliers.GetTxtFile(); }), errors::kInvalidCall);
  EXPECT_EQ(text, "was");
}

TEST_F(ClsProveedoresLecturasTest, HostileTextInEveryValueChangesNothing) {
  add("00012");
  for (const std::string& attack : test::hostileTexts()) {
    std::string text = "was";
    EXPECT_NE(errorOf([&] { suppliers.esSubcontratado(attack); }), 0);
    EXPECT_NE(errorOf([&] { suppliers.GetRazonSocial(attack); }), 0);
    EXPECT_NE(errorOf([&] { suppliers.GetRazon_Social(attack, text); }), 0);
    EXPECT_NE(errorOf([&] { suppliers.GetCtaTesoreria(attack, text); }), 0);
    EXPECT_NE(errorOf([&] { suppliers.CtaLibre(attack, "00012"); }), 0);
    EXPECT_NE(errorOf([&] { suppliers.CtaLibre("400", attack); }), 0);
    EXPECT_NE(errorOf([&] { suppliers.CodigoLibre(attack); }), 0);
    ClsProveedores::Facturacion profile;
    profile.id = attack;
    profile.sEmpresa = attack;
    EXPECT_NE(errorOf([&] { suppliers.GetDatosFacturacion(profile); }), 0);
    profile.index = 1;
    EXPECT_NE(errorOf([&] { suppliers.GetDatosFacturacion(profile); }), 0);
    ClsProveedores::Facturar invoice;
    invoice.id = attack;
    EXPECT_NE(errorOf([&] { suppliers.GetDatosFacturar(invoice); }), 0);
    for (const char* word : {"seleccionunico", "deeliminardivisa", "deeliminardocumento"}) {
      EXPECT_NE(errorOf([&] { suppliers.IniciaRs(word, attack); }), 0) << word;
    }
    EXPECT_EQ(text, "was");
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Proveedores"), "1");
}

}  // namespace
}  // namespace tavelor
