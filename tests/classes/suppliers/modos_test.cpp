// SPDX-License-Identifier: MIT
// ClsProveedores: its slots, what IniciaRs opens, codes and new rows.
#include <array>

#include "tests/classes/suppliers/proveedores.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ClsProveedoresTest : public test::SupplierTest {};

// ---- The class

TEST_F(ClsProveedoresTest, TheSlotsStandInOrder) {
  EXPECT_THAT(
      firstSlots(),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "GetDocPath", "GetTxtFile", "ObtenerRegistroActivo",
                  "ObtenerCodigo", "GetCtaTesoreria", "GetRazon_Social", "GetRazonSocial",
                  "GetDatosFacturacion", "GetDatosFacturar", "CtaLibre", "Update_Sub",
                  "esSubcontratado", "IniciaRs", "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToHtmlGrid");
}

TEST_F(ClsProveedoresTest, ItsParametersAreThoseOfTheCustomersWithoutWhatOnlyTheseHave) {
  const std::string profile = signature("GetDatosFacturacion");
  EXPECT_THAT(profile, testing::StartsWith("GetDatosFacturacion(inout id As Variant, inout "
                                           "sEmpresa As String, out sTransportista As String"));
  EXPECT_THAT(profile, testing::EndsWith("out sDocumento_F As String, [index As Integer], [inout "
                                         "objCn As Connection]) As Boolean"));
  EXPECT_EQ(signature("GetDatosFacturar"),
            "GetDatosFacturar(inout id As Variant, out sBanco As String, out dBonificacion As "
            "Double, out dImpBonif As Double, out sFactura_A As String, out sFactura_B As String, "
            "out sFactura_C As String, out sDocumento_P As String, out sDocumento_A As String, out "
            "sDocumento_F As String, [inout objCn As Connection])");
  EXPECT_EQ(signature("GetRazonSocial"),
            "GetRazonSocial(id As Variant, [inout objCn As Connection]) As String");
  EXPECT_EQ(signature("Update_Sub"), "Update_Sub([bsub As Boolean])");
}

TEST_F(ClsProveedoresTest, TheListOfDataMembersGrowsWithEachOpening) {
  suppliers.IniciaRs();
  suppliers.IniciaRs();
  EXPECT_THAT(suppliers.DataMembers(), ElementsAre("Primary", "Primary"));
  EXPECT_EQ(suppliers.sClassName(), "Proveedores");
}

// The frame knows two types of numbers: columns of another one would be taken for dates.
TEST_F(ClsProveedoresTest, ItsNumbersAreFilteredAsNumbers) {
  add("00012", "Activo = -1, Condicion_1 = 100.25");
  suppliers.IniciaRs();
  const auto criterion = [&](auto control) { return suppliers.CreateFilter(control); };
  EXPECT_EQ(criterion(test::CheckBox("Activo", 1)), "Activo <> 0 ");
  EXPECT_EQ(criterion(test::TextBox("Importe", "3")), "Importe = 3 ");
  EXPECT_FALSE(suppliers.ValidaValue(test::TextBox("Importe", "tres")));
}

// ---- Modes

TEST_F(ClsProveedoresTest, EachWordHasItsStatementToTheLetter) {
  const std::vector<std::array<std::string, 3>> words = {
      {"seleccioncombo", "", "seleccioncombo"},
      {"seleccionunico", "00012", "seleccionunico"},
      {"seleccion", "", "seleccion, seleccionmixta, selecciontodos"},
      {"seleccionmixta", "", "seleccion, seleccionmixta, selecciontodos"},
      {"seleccionsub", "", "seleccionsub"},
      {"selecciontodos", "", "seleccion, seleccionmixta, selecciontodos"},
      {"deeliminardivisa", "Eur", "deeliminardivisa"},
      {"deeliminarformapago", "Ctd", "deeliminarformapago"},
      {"deeliminarbanco", "00013 ", "deeliminarbanco"},
      {"deeliminartransportista", "001", "deeliminartransportista"},
      {"deeliminardocumento", "Est", "deeliminardocumento"},
      {"deeliminartipofactura", "001", "deeliminartipofactura"},
      {"sub", "", "sub"},
      {"todos", "", "todos"},
  };
  for (const auto& [word, id, name] : words) {
    const Opened opened = open(word, id);
    EXPECT_EQ(opened.statement, corpus("IniciaRs / " + name)) << word;
    EXPECT_EQ(opened.word, word);
  }
}

TEST_F(ClsProveedoresTest, AnyOtherWordBecomesTodosAndLeavesSubcontractorsOut) {
  add("1");
  add("2", "Sub = True");
  add("3", "Activo = 0");
  for (const char* word : {"", "Sub", "loquesea", "registro"}) {
    const Opened opened = open(word);
    EXPECT_EQ(opened.word, "todos");
    EXPECT_EQ(opened.statement, corpus("IniciaRs / todos"));
    EXPECT_THAT(codes(), ElementsAre("1", "3")) << "in use or not";
  }
}

TEST_F(ClsProveedoresTest, TheListShowsTheWholeSupplierUnderItsOwnNames) {
  suppliers.IniciaRs();
  EXPECT_THAT(
      fieldNames(),
      ElementsAre("Código", "Activo", "Nombre", "Empresa", "Contacto", "NIF", "Dirección",
                  "Codigo_Postal", "Población", "Provincia", "Teléfono", "Teléfono_2", "Móvil",
                  "Fax", "E_Mail", "Http", "Cta_Tesoreria", "Cta_Contable", "Cta_Contrapartida",
                  "IRPF", "Impuesto", "Recargo", "Divisa", "Pago", "Transportista", "Banco", "Dto",
                  "Dto_PP", "Tarifa", "Serie", "Bonificación", "Importe", "Concepto", "Factura_A",
                  "Factura_B", "Factura_C", "Documento_P", "Documento_A", "Documento_F",
                  "Subcontratado"));
}

TEST_F(ClsProveedoresTest, ASubcontractorIsNeitherInTheComboBoxNorInTheUsualList) {
  add("1", "Razon_Social = 'Zinc'");
  add("2", "Sub = True");
  add("3", "Razon_Social = 'Acero'");
  add("4", "Activo = 0");
  suppliers.IniciaRs("seleccioncombo");
  EXPECT_EQ(rows().Field("Descripción").Value(), Variant("Zinc"))
      << "the remembered order, none yet, is by the code";
  EXPECT_THAT(codes(), ElementsAre("1", "3"));
  suppliers.IniciaRs();
  EXPECT_THAT(codes(), ElementsAre("1", "3", "4"));
  suppliers.IniciaRs("sub");
  EXPECT_THAT(codes(), ElementsAre("2"));
}

TEST_F(ClsProveedoresTest, TheOtherChoicesShowSubcontractorsInUseAmongTheRestOrAlone) {
  add("1");
  add("2", "Sub = True");
  add("3", "Activo = 0");
  add("4", "Activo = 0, Sub = True");
  for (const char* word : {"seleccion", "seleccionmixta", "selecciontodos"}) {
    suppliers.IniciaRs(word);
    EXPECT_THAT(codes(), ElementsAre("1", "2")) << word;
  }
  suppliers.IniciaRs("seleccionsub");
  EXPECT_THAT(codes(), ElementsAre("2"));
  suppliers.IniciaRs("seleccionunico", "4");
  EXPECT_THAT(codes(), ElementsAre("4")) << "by its code, whatever it is";
}

TEST_F(ClsProveedoresTest, WhoUsesACodeIsFoundInUseOrNotAndSubcontractorOrNot) {
  add("1", "Divisa = 'X', Forma_Pago = 'X', Banco = 'X', Transportista = 'X', Documento_P = 'X'");
  add("2",
      "Divisa = 'X', Forma_Pago = 'X', Banco = 'X', Transportista = 'X', Documento_A = 'X', "
      "Sub = True");
  add("3",
      "Divisa = 'X', Forma_Pago = 'X', Banco = 'X', Transportista = 'X', Documento_F = 'X', "
      "Activo = 0");
  add("4");
  for (const char* word : {"deeliminardivisa", "deeliminarformapago", "deeliminarbanco",
                           "deeliminartransportista", "deeliminardocumento"}) {
    suppliers.IniciaRs(word, "X");
    EXPECT_THAT(codes(), ElementsAre("1", "2", "3")) << word;
  }
}

TEST_F(ClsProveedoresTest, TheInvoiceTypeOfSeriesCIsNotLookedAt) {
  add("1", "Tipo_Factura_A = 'F'");
  add("2", "Tipo_Factura_B = 'F'");
  add("3", "Tipo_Factura_C = 'F'");
  suppliers.IniciaRs("deeliminartipofactura", "F");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
}

TEST_F(ClsProveedoresTest, FindRecordLooksForTheBeginningOfACode) {
  add("00012");
  add("00123");
  suppliers.IniciaRs();
  suppliers.FindRecord("001");
  EXPECT_EQ(field("Código"), "00123");
}

// ---- Codes

TEST_F(ClsProveedoresTest, TheNextCodeIsTheGreatestPlusOneAndKeepsToTheLengthOfTheCounters) {
  EXPECT_EQ(shown(call("NuevoCodigo")), "1");
  add("00099");
  shop.statements();
  EXPECT_EQ(shown(suppliers.NuevoCodigo()), "100") << "zeros are lost";
  EXPECT_THAT(shop.statements(), Contains(corpus("NuevoCodigo")));
  setDigits("5");
  add("99999");
  EXPECT_EQ(shown(suppliers.NuevoCodigo()), "99999") << "the codes are used up";
  setDigits("0");
  EXPECT_EQ(shown(suppliers.NuevoCodigo()), "100000");
  setDigits("Null");
  EXPECT_EQ(shown(suppliers.NuevoCodigo()), "100000");
  add("ABC");
  EXPECT_EQ(shown(suppliers.NuevoCodigo()), "ABC");
}

TEST_F(ClsProveedoresTest, ACodeIsPaddedInPlaceToTheLengthOfSuppliersCodes) {
  setDigits("6");
  EXPECT_EQ(call("ObtenerCodigo", {"45"}), Variant("000045"));
  EXPECT_EQ(left[0], Variant("000045"));
  EXPECT_EQ(call("ObtenerCodigo", {"1234567"}), Variant("1234567"));
  setDigits("Null");
  EXPECT_EQ(call("ObtenerCodigo", {"45"}), Variant("45"));
}

TEST_F(ClsProveedoresTest, PaddingPassesOverAFailure) {
  test::Shop other;
  setDigits("6");  // of the other shop: its counters are not asked
  std::string code = "45";
  EXPECT_EQ(suppliers.ObtenerCodigo(code), "45");
  const Apartment::Scope scope(shop.apartment());
  setDigits("6");
  EXPECT_EQ(suppliers.ObtenerCodigo(code), "000045");
}

TEST_F(ClsProveedoresTest, AFreeCodeIsNoSuppliers) {
  EXPECT_EQ(call("CodigoLibre", {"00012"}), Variant(true));
  EXPECT_EQ(statement(), corpus("CodigoLibre"));
  add("00012", "Activo = 0");
  EXPECT_FALSE(suppliers.CodigoLibre("00012"));
}

TEST_F(ClsProveedoresTest, AFreeAccountIsNoOtherSuppliers) {
  add("00012", "Cta_Contable = '400'");
  EXPECT_EQ(call("CtaLibre", {"400", "00012"}), Variant(true));
  EXPECT_EQ(statement(), corpus("CtaLibre"));
  EXPECT_FALSE(suppliers.CtaLibre("400", "00013"));
}

// ---- New rows

TEST_F(ClsProveedoresTest, AddNewGivesCodeAccountsSeriesTariffAndNoSubcontract) {
  add("00012");
  suppliers.IniciaRs();
  call("AddNew", {true});
  for (const auto& [name, value] :
       std::vector<std::pair<std::string, std::string>>{{"Código", "13"},
                                                        {"Activo", "-1"},
                                                        {"Serie", "A"},
                                                        {"Tarifa", "A"},
                                                        {"Cta_Tesoreria", "400"},
                                                        {"Cta_Contable", "400"},
                                                        {"Cta_Contrapartida", "600000"},
                                                        {"Subcontratado", "Falso"},
                                                        {"Nombre", "Empty"},
                                                        {"NIF", "Empty"},
                                                        {"Impuesto", "Empty"}}) {
    EXPECT_EQ(field(name), value) << name;
  }
  suppliers.Update();
  EXPECT_EQ(column("Cta_Contrapartida", "13"), "600000");
  suppliers.IniciaRs();
  EXPECT_THAT(codes(), ElementsAre("00012", "13")) << "the usual list shows it";
}

TEST_F(ClsProveedoresTest, AddNewWithoutDefaultsLeavesTheRowEmptyAndTakesACodeForNothing) {
  suppliers.IniciaRs();
  shop.statements();
  suppliers.AddNew();
  EXPECT_THAT(shop.statements(), Contains(corpus("NuevoCodigo")));
  for (const char* name : {"Código", "Activo", "Serie", "Subcontratado"}) {
    EXPECT_EQ(field(name), "Empty") << name;
  }
}

// A double cannot tell the next code from it.
TEST_F(ClsProveedoresTest, AGreatestCodeTooLargeToCountOnIsRefused) {
  add("99999999999999999999");
  suppliers.IniciaRs();
  EXPECT_EQ(errorOf([&] { suppliers.AddNew(true); }), errors::kOverflow);
}

TEST_F(ClsProveedoresTest, AddNewWantsTheWholeSupplier) {
  suppliers.IniciaRs("seleccion");
  EXPECT_EQ(errorOf([&] { suppliers.AddNew(true); }), errors::kItemNotFound);
}

TEST_F(ClsProveedoresTest, UpdateSubMarksTheCurrentRowAndUpdateWritesIt) {
  add("1");
  add("2");
  suppliers.IniciaRs();
  suppliers.MoveNext();
  shop.statements();
  call("Update_Sub", {true});
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_TRUE(suppliers.EditingRecord());
  EXPECT_FALSE(suppliers.esSubcontratado("2")) << "nothing is written yet";
  suppliers.Update();
  EXPECT_TRUE(suppliers.esSubcontratado("2"));
  EXPECT_FALSE(suppliers.esSubcontratado("1"));
  call("Update_Sub");
  suppliers.Update();
  EXPECT_FALSE(suppliers.esSubcontratado("2")) << "left out, it is false";
}

TEST_F(ClsProveedoresTest, UpdateSubWantsARowThatShowsIt) {
  EXPECT_EQ(errorOf([&] { suppliers.Update_Sub(true); }), errors::kObjectNotSet);
  suppliers.IniciaRs();
  EXPECT_EQ(errorOf([&] { suppliers.Update_Sub(true); }), errors::kNoCurrentRecord);
  add("1");
  suppliers.IniciaRs("seleccion");
  EXPECT_EQ(errorOf([&] { suppliers.Update_Sub(true); }), errors::kItemNotFound);
}

}  // namespace
}  // namespace tavelor
