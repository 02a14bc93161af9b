// SPDX-License-Identifier: MIT
// ClsClientes: codes, new rows and their writing.
#include "tavelor/frame/component.hpp"
#include "tests/classes/customers/clientes.hpp"

namespace tavelor {
namespace {

using test::corpus;
using test::errorOf;
using testing::Contains;
using testing::ElementsAre;

class ClsClientesCodigosTest : public testing::Test, protected test::CustomerShop {
 protected:
  Field field(const char* name) { return customers.DataMember("Primary")->Field(name); }
  std::string fieldText(const char* name) {
    const Variant held = field(name).Value();
    return held.isNull() ? "Null" : text(held);
  }
};

// ---- Codes

TEST_F(ClsClientesCodigosTest, TheNextCodeOfAnEmptyTableIsOne) {
  EXPECT_EQ(text(customers.NuevoCodigo()), "1");
}

TEST_F(ClsClientesCodigosTest, TheNextCodeLosesItsZeros) {
  add("00012");
  EXPECT_THAT(traceOf([&] { EXPECT_EQ(text(customers.NuevoCodigo()), "13"); }),
              Contains(corpus("NuevoCodigo")));
}

TEST_F(ClsClientesCodigosTest, ACodeThatIsNoNumberIsItsOwnSuccessor) {
  add("ABC");
  EXPECT_EQ(text(customers.NuevoCodigo()), "ABC");
}

TEST_F(ClsClientesCodigosTest, AFullCodeSpaceGivesTheGreatestCodeAgain) {
  setDigits("5");
  add("99999");
  EXPECT_EQ(text(customers.NuevoCodigo()), "99999");
  setDigits("6");
  EXPECT_EQ(text(customers.NuevoCodigo()), "100000");
}

TEST_F(ClsClientesCodigosTest, ALengthOfOneIsALength) {
  setDigits("1");
  add("8");
  EXPECT_EQ(text(customers.NuevoCodigo()), "9");
  add("9");
  EXPECT_EQ(text(customers.NuevoCodigo()), "9");
}

TEST_F(ClsClientesCodigosTest, WithoutALengthCodesGrow) {
  setDigits("0");
  add("99999");
  EXPECT_EQ(text(customers.NuevoCodigo()), "100000");
  setDigits("Null");
  EXPECT_EQ(text(customers.NuevoCodigo()), "100000");
}

TEST_F(ClsClientesCodigosTest, TheGreatestCodeIsTheGreatestText) {
  add("9");
  add("10");
  EXPECT_EQ(text(customers.NuevoCodigo()), "10");
}

TEST_F(ClsClientesCodigosTest, AFreeCodeHasNoRow) {
  EXPECT_THAT(traceOf([&] { EXPECT_TRUE(customers.CodigoLibre("00012")); }),
              ElementsAre(corpus("CodigoLibre")));
  add("00012", "Activo = 0");
  EXPECT_FALSE(customers.CodigoLibre("00012"));
}

TEST_F(ClsClientesCodigosTest, AFreeAccountIsNoOtherCustomers) {
  add("00012", "Cta_Contable = '430012'");
  EXPECT_THAT(traceOf([&] { EXPECT_TRUE(customers.CtaLibre("430012", "00012")); }),
              ElementsAre(corpus("CtaLibre")));
  EXPECT_FALSE(customers.CtaLibre("430012", "00013"));
}

TEST_F(ClsClientesCodigosTest, TheLongestCodeIsTextAndZeroWithoutCustomers) {
  EXPECT_THAT(traceOf([&] { EXPECT_EQ(customers.GetLenMaxDigit(), "0"); }),
              ElementsAre(corpus("GetLenMaxDigit")));
  add("1");
  add("00012");
  EXPECT_EQ(customers.GetLenMaxDigit(), "5");
}

TEST_F(ClsClientesCodigosTest, ACodeIsPaddedInPlace) {
  setDigits("5");
  std::string code = "45";
  EXPECT_EQ(customers.ObtenerCodigo(code), "00045");
  EXPECT_EQ(code, "00045");
  code = "1234567";
  EXPECT_EQ(customers.ObtenerCodigo(code), "1234567");
  code = "añ";
  EXPECT_EQ(customers.ObtenerCodigo(code), "000añ");
}

// Without an apartment there is no database to ask.
TEST(ClsClientesAlone, PaddingPassesOverAFailure) {
  std::string code = "45";
  EXPECT_EQ(ClsClientes().ObtenerCodigo(code), "45");
  EXPECT_EQ(code, "45");
}

// ---- New rows

TEST_F(ClsClientesCodigosTest, ANewRowBeginsWithItsDefaults) {
  setDigits("5");
  add("00012");
  customers.IniciaRs("todos");
  customers.AddNew(true);
  const std::vector<std::pair<const char*, const char*>> told = {
      {"Código", "13"},
      {"Activo", "-1"},
      {"Empresa", "Razón social"},
      {"ID_Fiscal", "CIF"},
      {"Transportista", "0"},
      {"Documento_F", "0"},
      {"Impuesto", "Falso"},
      {"Serie", "A"},
      {"Tarifa", "A"},
      {"Lista", "PRC"},
      {"Bnf1", "0"},
      {"Imp1", "0"},
      {"Bnf2", "0"},
      {"Imp2", "0"},
      {"Dto", "0"},
      {"Dto_PP", "0"},
      {"Dto_PP_B", "0"},
      {"Dto_PP_C", "0"},
      {"Impuesto_Incluido", "Falso"},
      {"Dto_R", "0"},
      {"Aviso", "Falso"},
      {"Cta_Tesoreria", "430000"},
      {"Cta_Contable", "430000"},
      {"Cta_Contrapartida", "700000"},
      {"Fecha", "05/03/2026"},
      {"Facturar", "Mensual"},
      {"Tipo_Cliente", "Nuevo"},
      {"Riesgo", "9000"},
  };
  for (const auto& [name, value] : told) EXPECT_EQ(fieldText(name), value) << name;
  for (const char* untold : {"Nombre", "Contacto", "NIF", "Documento_P", "Bnf3", "Imp3", "Recargo",
                             "ExternalID", "Pago"}) {
    EXPECT_TRUE(field(untold).Value().isEmpty()) << untold;
  }
}

TEST_F(ClsClientesCodigosTest, ANewRowIsWrittenWithItsDefaults) {
  customers.IniciaRs("todos");
  customers.AddNew(true);
  customers.Update();
  EXPECT_EQ(column("Activo", "1"), "-1");
  EXPECT_EQ(column("ID_Fiscal", "1"), "CIF");
  EXPECT_EQ(column("Documento_F", "1"), "0");
  EXPECT_EQ(column("Riesgo", "1"), "9000");
  EXPECT_EQ(column("ExternalID", "1"), "1");
}

// In this mode the sixth field is the postal code: the class word goes there, before the first name
// is looked for and not found.
TEST_F(ClsClientesCodigosTest, TheClassWordIsWrittenByItsPlaceBeforeTheNames) {
  customers.IniciaRs("seleccion");
  EXPECT_EQ(errorOf([&] { customers.AddNew(true); }), errors::kItemNotFound);
  const auto rows = customers.DataMember("Primary");
  EXPECT_EQ(text(rows->Field(5).Value()), "CIF");
  EXPECT_EQ(rows->Field(5).Name(), "Codigo_Postal");
}

TEST_F(ClsClientesCodigosTest, WithoutDefaultsTheRowIsEmptyAndTheCodeComputedAllTheSame) {
  customers.IniciaRs("todos");
  EXPECT_THAT(traceOf([&] { customers.AddNew(); }), Contains(corpus("NuevoCodigo")));
  EXPECT_TRUE(field("Código").Value().isEmpty());
  EXPECT_TRUE(field("Activo").Value().isEmpty());
  customers.Cancel();
  EXPECT_FALSE(customers.ExistenRegistros());
}

// ---- Update

TEST_F(ClsClientesCodigosTest, ANullExternalIdentifierBecomesTwoCharactersOfTheCode) {
  add("4512");
  customers.IniciaRs("todos");
  field("Nombre").Value("Sol");
  customers.Update();
  EXPECT_EQ(column("ExternalID", "4512"), "45");
  EXPECT_EQ(column("Nombre", "4512"), "Sol");
}

TEST_F(ClsClientesCodigosTest, AnExternalIdentifierThatIsThereStays) {
  for (const char* held : {"EXT-7", ""}) {
    shop.run("DELETE FROM Clientes");
    add("4512", std::string("ExternalID = '") + held + "'");
    customers.IniciaRs("todos");
    field("Nombre").Value("Sol");
    customers.Update();
    EXPECT_EQ(column("ExternalID", "4512"), held);
  }
}

TEST_F(ClsClientesCodigosTest, UpdateWritesTheCurrentRowOnly) {
  add("1", "ExternalID = 'x'");
  add("2", "ExternalID = 'x'");
  customers.IniciaRs("todos");
  field("Nombre").Value("Uno");
  customers.MoveNext();
  field("Nombre").Value("Dos");
  customers.Update();
  EXPECT_EQ(column("Nombre", "1"), "Null");
  EXPECT_EQ(column("Nombre", "2"), "Dos");
}

TEST_F(ClsClientesCodigosTest, AModeWithoutTheExternalIdentifierCannotBeUpdated) {
  add("1");
  customers.IniciaRs("seleccion");
  field("Nombre").Value("Uno");
  EXPECT_EQ(errorOf([&] { customers.Update(); }), errors::kItemNotFound);
}

TEST_F(ClsClientesCodigosTest, AnIdentifierTakenFromACodeOfOneAccentedCharacter) {
  add("ñ");
  customers.IniciaRs("todos");
  customers.Update();
  EXPECT_EQ(column("ExternalID", "ñ"), "ñ");
}

TEST_F(ClsClientesCodigosTest, DeletingAsksNoDocument) {
  add("1");
  shop.run("INSERT INTO Albaranes (Numero, Codigo, Fecha) VALUES (1, '1', #03/01/2026#)");
  customers.IniciaRs("todos");
  customers.Delete();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes"), "0");
}

TEST_F(ClsClientesCodigosTest, ACustomerThatAnotherOneChangedIsNotOverwritten) {
  add("1", "ExternalID = 'x'");
  customers.IniciaRs("todos");
  field("Nombre").Value("Uno");
  set("1", "Nombre = 'Otro'");
  EXPECT_EQ(errorOf([&] { customers.Update(); }), errors::kRowNotLocated);
  EXPECT_EQ(column("Nombre", "1"), "Otro");
}

// ---- The current row

TEST_F(ClsClientesCodigosTest, TheCurrentRowIsCopied) {
  add("1",
      "Nombre = 'Sol', Direccion = 'Mayor, 1', Codigo_Postal = '28001', Poblacion = 'Madrid', "
      "Provincia = 'M', Telefono = '91', Banco = '001', Forma_Pago = 'Ctd', E_Mail_doc = "
      "'d@e.org'");
  customers.IniciaRs("todos");
  Variant id;
  std::string name, company, street, postal, town, province, phone;
  customers.ObtenerRegistroActivo(id, name, company, street, postal, town, province, phone);
  EXPECT_EQ(id, Variant("1"));
  EXPECT_THAT((std::vector{name, company, street, postal, town, province, phone}),
              ElementsAre("Sol", "Cliente 1", "Mayor, 1", "28001", "Madrid", "M", "91"));
  EXPECT_EQ(customers.sQBanco(), "001");
  EXPECT_EQ(customers.sQFormaPago(), "Ctd");
  EXPECT_EQ(customers.sQMailDoc(), "d@e.org");
}

TEST_F(ClsClientesCodigosTest, WhatCannotBeReadOfTheCurrentRowStays) {
  Variant id = "was";
  std::string name = "was", company = "was";
  const auto copy = [&] { customers.ObtenerRegistroActivo(id, name, company, {}, {}, {}, {}, {}); };
  copy();
  EXPECT_EQ(id, Variant("was"));
  EXPECT_EQ(customers.sQBanco(), "");

  add("1", "Nombre = Null");
  customers.IniciaRs("todos");
  copy();
  EXPECT_EQ(id, Variant("1"));
  EXPECT_EQ(name, "was");
  EXPECT_EQ(company, "Cliente 1");
  EXPECT_EQ(customers.sQFormaPago(), "");

  customers.IniciaRs("seleccioncombo");
  company = "was";
  copy();
  EXPECT_EQ(company, "was");
}

}  // namespace
}  // namespace tavelor
