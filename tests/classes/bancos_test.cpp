// SPDX-License-Identifier: MIT
// The catalogue of banks, and the whole road of a catalogue.
#include "tavelor/reference/bancos.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/services/prompt_global.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Banco AS Descripción, Entidad, Oficina, DC,  CC AS Cuenta, IBAN, "
    "Swift, Direccion_Banco AS Dirección,  Codigo_Postal_Banco AS Cp,  Poblacion_Banco AS "
    "Población,  Provincia_Banco AS Provincia,  Telefono_Banco As Teléfono, Fax_Banco as Fax, "
    "E_Mail, Http, Predeterminada FROM Bancos";

class ClsBancosTest : public testing::Test {
 protected:
  std::string text(const Variant& value) { return value.toText(shop.apartment().locale()); }

  test::Shop shop;
  ClsBancos banks;
};

// ---- Modes

TEST_F(ClsBancosTest, SeleccionHasCodeAndDescriptionAndNoOrder) {
  banks.IniciaRs("seleccion");
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo AS Código, Banco AS Descripción FROM Bancos"));
}

TEST_F(ClsBancosTest, SeleccioncomboIsOrderedByTheName) {
  banks.IniciaRs("seleccioncombo");
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Codigo AS Código, Banco AS Descripción FROM Bancos Order By Banco"));
}

TEST_F(ClsBancosTest, RegistroFiltersTheFullSelectByTheCode) {
  banks.IniciaRs("registro", "00012");
  EXPECT_THAT(shop.statements(), ElementsAre(std::string(kTodos) + " Where ( Codigo = '00012')"));
}

TEST_F(ClsBancosTest, AnyOtherWordIsTheFullSelectUnderItsAliases) {
  std::string word = "loquesea";
  banks.IniciaRs(word);
  EXPECT_EQ(word, "todos");
  EXPECT_THAT(shop.statements(), ElementsAre(std::string(kTodos)));
  std::vector<std::string> names;
  const RecordsetPtr rows = banks.DataMember("Primary");
  for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) names.push_back(rows->Field(i).Name());
  EXPECT_THAT(names, ElementsAre("Código", "Descripción", "Entidad", "Oficina", "DC", "Cuenta",
                                 "IBAN", "Swift", "Dirección", "Cp", "Población", "Provincia",
                                 "Teléfono", "Fax", "E_Mail", "Http", "Predeterminada"));
}

// ---- The default bank

TEST_F(ClsBancosTest, GetPredeterminadaOnATableWithoutADefaultIsEmpty) {
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");
  EXPECT_TRUE(banks.GetPredeterminada().isEmpty());
  EXPECT_FALSE(banks.ExistePredeterminada());
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT codigo as ds FROM Bancos where predeterminada <> 0",
                          "SELECT Codigo FROM Bancos where predeterminada <> 0"));
}

TEST_F(ClsBancosTest, GetPredeterminadaIsTheCodeOfTheDefaultBank) {
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");
  shop.run("INSERT INTO Bancos (Codigo, Predeterminada) VALUES ('2', True)");
  EXPECT_EQ(banks.GetPredeterminada(), Variant("2"));
  EXPECT_TRUE(banks.ExistePredeterminada());
}

TEST_F(ClsBancosTest, NothingKeepsTheDefaultUniqueAndOneOfSeveralIsGiven) {
  shop.run("INSERT INTO Bancos (Codigo, Predeterminada) VALUES ('1', True)");
  shop.run("INSERT INTO Bancos (Codigo, Predeterminada) VALUES ('2', True)");
  EXPECT_EQ(banks.GetPredeterminada(), Variant("1"));
}

// ---- GetIbanBic

TEST_F(ClsBancosTest, GetIbanBicOfZeroAnswersWithoutADatabase) {
  std::string iban, bic;
  banks.GetIbanBic("0", iban, bic);
  EXPECT_EQ(iban, "00");
  EXPECT_EQ(bic, "ND");
  EXPECT_THAT(shop.statements(), IsEmpty());
  ConnectionPtr untouched;
  banks.GetIbanBic(std::int32_t{0}, iban, bic, untouched);
  EXPECT_EQ(untouched, nullptr);
}

TEST_F(ClsBancosTest, GetIbanBicReadsBothAndAnswersZeroForNull) {
  shop.run(
      "INSERT INTO Bancos (Codigo, IBAN, Swift) VALUES ('1', 'ES7921000813610123456789', "
      "'CAIXESBBXXX')");
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('2')");
  std::string iban, bic;
  banks.GetIbanBic("1", iban, bic);
  EXPECT_EQ(iban, "ES7921000813610123456789");
  EXPECT_EQ(bic, "CAIXESBBXXX");
  banks.GetIbanBic("2", iban, bic);
  EXPECT_EQ(iban, "0");
  EXPECT_EQ(bic, "0");
  EXPECT_EQ(shop.statements().front(),
            "SELECT iBan AS Código, swift FROM Bancos WHERE codigo = '1'");
}

TEST_F(ClsBancosTest, GetIbanBicOfACodeThatIsNotThereRaisesNoCurrentRecord) {
  std::string iban = "kept", bic = "kept";
  EXPECT_EQ(errorOf([&] { banks.GetIbanBic("9", iban, bic); }), errors::kNoCurrentRecord);
  EXPECT_EQ(iban, "kept");
}

// ---- GetValor

TEST_F(ClsBancosTest, GetValorWritesTheAccount) {
  shop.run(
      "INSERT INTO Bancos (Codigo, Entidad, Oficina, DC, CC, IBAN) VALUES "
      "('1', '2100', '0813', '61', '0123456789', 'ES79')");
  EXPECT_EQ(text(banks.GetValor("1")), "  CC :  2100-0813-61-0123456789  IBAN :  ES79");
  EXPECT_EQ(shop.statements().back(),
            "SELECT Codigo AS Código, Banco AS Descripción, Entidad, Oficina, DC,  CC AS Cuenta, "
            "IBAN,  Telefono_Banco As Teléfono, Fax_Banco as Fax, E_Mail, Http, Predeterminada "
            "FROM Bancos WHERE codigo = '1'");
}

// The first fallback spells a whole account and the four others follow all the same: documents
// carry this text, so it must not be shortened.
TEST_F(ClsBancosTest, GetValorOfARowWithoutAnAccountIsThePatternWithAllFallbacks) {
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");
  EXPECT_EQ(text(banks.GetValor("1")), "0000-0000-00-0000000000-0000-00-0000000000-0000000000");
}

TEST_F(ClsBancosTest, GetValorFillsEachMissingPartByItself) {
  shop.run("INSERT INTO Bancos (Codigo, Entidad, DC) VALUES ('1', '2100', '61')");
  EXPECT_EQ(text(banks.GetValor("1")), "  CC :  2100-0000-61-0000000000-0000000000");
}

TEST_F(ClsBancosTest, GetValorOfACodeThatIsNotThereRaisesNoCurrentRecord) {
  EXPECT_EQ(errorOf([&] { banks.GetValor("9"); }), errors::kNoCurrentRecord);
}

// ---- GetWeb

TEST_F(ClsBancosTest, GetWebIsTheAddressOrAPlaceholderForNull) {
  shop.run("INSERT INTO Bancos (Codigo, Http) VALUES ('1', 'http://www.caja.example')");
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('2')");
  EXPECT_EQ(text(banks.GetWeb("1")), "http://www.caja.example");
  EXPECT_TRUE(text(banks.GetWeb("2")).starts_with("http://"));
  EXPECT_EQ(shop.statements().front(), "SELECT Http as web FROM Bancos WHERE codigo = '1'");
  EXPECT_EQ(errorOf([&] { banks.GetWeb("9"); }), errors::kNoCurrentRecord);
}

// ---- CrearBanco

TEST_F(ClsBancosTest, CrearBancoPadsTheNextCodeAndStoresItWithABlankBehind) {
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('00012')");
  EXPECT_EQ(text(banks.NuevoCodigo()), "13");
  shop.statements();
  Variant code = "whatever the caller passed";
  EXPECT_EQ(banks.CrearBanco(code, "Caja Rural"), "00013");
  EXPECT_EQ(code, Variant("00013"));
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT MAX(Codigo) AS Nuevo_Codigo FROM Bancos",
                  "INSERT INTO Bancos (  Codigo, Banco  ) values ( '00013 ', 'Caja Rural')"));
  EXPECT_EQ(shop.text("SELECT Codigo FROM Bancos WHERE Banco = 'Caja Rural'"), "00013 ");
  EXPECT_TRUE(banks.CodigoLibre("00013")) << "the blank is part of the code";
  EXPECT_FALSE(banks.CodigoLibre("00013 "));
}

TEST_F(ClsBancosTest, CrearBancoBehind99999HasASixthDigit) {
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('99999')");
  Variant code;
  EXPECT_EQ(banks.CrearBanco(code, "Caja Rural"), "100000");
  EXPECT_EQ(shop.text("SELECT Codigo FROM Bancos WHERE Banco = 'Caja Rural'"), "100000 ");
}

// The greatest text stays 99999, so that the next code is one that is there. Nothing but the
// database keeps two banks from having it.
TEST_F(ClsBancosTest, CrearBancoBehind99999MakesOneBankAndRefusesTheNext) {
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('99999')");
  Variant code;
  banks.CrearBanco(code, "Caja Rural");
  EXPECT_EQ(errorOf([&] { banks.CrearBanco(code, "Banco de Ahorro"); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "2");
}

TEST_F(ClsBancosTest, CrearBancoOnAnEmptyTableStartsAtOne) {
  Variant code;
  EXPECT_EQ(banks.CrearBanco(code, "Primero"), "00001");
}

TEST_F(ClsBancosTest, CrearBancoFillsAnEmptyConnectionAndUsesAGivenOne) {
  ConnectionPtr connection;
  Variant code;
  banks.CrearBanco(code, "Uno", connection);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  banks.CrearBanco(code, "Dos", connection);
  connection->RollbackTrans();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "1");
}

TEST_F(ClsBancosTest, AQuoteInTheNameBreaksTheStatementOfCrearBanco) {
  Variant code;
  EXPECT_EQ(errorOf([&] { banks.CrearBanco(code, "Banca d'Italia"); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { banks.CrearBanco(code, "x'); DELETE FROM Bancos"); }), errors::kSyntax);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "0");
  banks.CrearBanco(code, "Banca d''Italia");
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos"), "Banca d'Italia");
}

TEST_F(ClsBancosTest, HostileTextInEveryValueChangesNothing) {
  shop.run("INSERT INTO Bancos (Codigo, Banco) VALUES ('1', 'uno')");
  const std::vector<std::string> hostile = {"'",           "'; DELETE FROM Bancos",
                                            "' or '1'='1", std::string("1\0' or 1=1", 11),
                                            "\xc3\x28",    std::string(1 << 20, '\'') + "x'"};
  for (const std::string& attack : hostile) {
    std::string iban, bic;
    EXPECT_NE(errorOf([&] { banks.GetIbanBic(attack, iban, bic); }), 0);
    EXPECT_NE(errorOf([&] { banks.GetValor(attack); }), 0);
    EXPECT_NE(errorOf([&] { banks.GetWeb(attack); }), 0);
    EXPECT_NE(errorOf([&] { banks.CodigoLibre(attack); }), 0);
    EXPECT_NE(errorOf([&] { banks.IniciaRs("registro", attack); }), 0);
    Variant code;
    EXPECT_NE(errorOf([&] { banks.CrearBanco(code, attack); }), 0);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "1");
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos"), "uno");
}

// ---- The whole road of a catalogue

TEST_F(ClsBancosTest, ACallerBrowsesAddsChangesAndDeletes) {
  banks.IniciaRs();
  EXPECT_FALSE(banks.ExistenRegistros());

  banks.AddNew(true);
  RecordsetPtr rows = banks.DataMember("Primary");
  rows->Field("Descripción").Value("Banco Uno");
  rows->Field("Predeterminada").Value(true);
  banks.Update();
  EXPECT_EQ(text(banks.GetPredeterminada()), "1");
  EXPECT_FALSE(banks.EditingRecord());

  rows->Field("Cuenta").Value("0123456789");
  EXPECT_TRUE(banks.EditingRecord());
  banks.Update();
  EXPECT_EQ(shop.text("SELECT CC FROM Bancos WHERE Codigo = '1'"), "0123456789");

  banks.AddNew(true);
  rows->Field("Descripción").Value("Banco Dos");
  banks.Update();
  EXPECT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(text(rows->Field("Código").Value()), "2");

  banks.MoveFirst();
  banks.Delete();
  banks.Requery();
  EXPECT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(text(rows->Field("Descripción").Value()), "Banco Dos");
}

}  // namespace
}  // namespace tavelor
