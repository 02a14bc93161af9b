// SPDX-License-Identifier: MIT
// ClsClientes: single values of one customer.
#include "tavelor/frame/component.hpp"
#include "tests/classes/customers/clientes.hpp"

namespace tavelor {
namespace {

using test::corpus;
using test::errorOf;
using testing::ElementsAre;

using C = ClsClientes;

class ClsClientesLecturasTest : public testing::Test, protected test::CustomerShop {
 protected:
  /// The members that read one value by a code, and the value that tells nobody.
  struct Read {
    const char* name;
    const char* code;
    Variant nobody;
  };
  static const std::vector<Read>& reads() {
    static const std::vector<Read> all = {
        {"ObtenerBloqueo", "00012", false},
        {"ExisteCli", "00012", false},
        {"ExisteNif", "12345678Z", false},
        {"ExisteExternalID", "EXT-7", false},
        {"EstaDisponible", "00012", false},
        {"esFacturable", "00012", false},
        {"NoesFacturable", "00012", false},
        {"esDistribuidor", "00012", false},
        {"esAsociado", "00012", false},
        {"esActivo", "00012", false},
        {"esSerie_as", "00012", false},
        {"esPortesNoIncl", "00012", false},
        {"esPersonaFisica", "00012", false},
        {"ObtenerPrintPaper", "00012", false},
        {"IncludeTax", "00012", false},
        {"EsIvaDeducible", "00012", false},
        {"PortesAlConvertir", "00012", false},
        {"GetTipoCli", "00012", "no"},
        {"GetCodigo_Banco", "00012", "0"},
        {"ObtenerRazonSocial", "00012", ""},
        {"ObtenerCP", "00012", ""},
        {"ObtenerHorario", "00012", ""},
        {"ObtenerTexto", "00012", ""},
        {"ObtenerMailDoc", "00012", ""},
        {"ObtenerMailDoc_Admin", "00012", ""},
        {"ObtenerRiesgo", "00012", 0.0},
        {"ObtenerRpt_Fac", "00012", "no"},
        {"ObtenerRpt_Alb", "00012", "no"},
        {"ObtenerRpt_dec", "00012", "no"},
        {"GetSerie", "00012", "A"},
        {"GetLista", "00012", "PRC"},
        {"GetRefPortes", "00012", "0"},
        {"GetFacturacion", "00012", "Mensual"},
        {"GetCodigo_fac", "00012", "0"},
    };
    return all;
  }
  Variant call(const char* member, const Variant& code) {
    std::vector<Variant> arguments = {code};
    return C::component().call(customers, member, arguments);
  }
};

TEST_F(ClsClientesLecturasTest, EachHasItsStatementAndItsAnswerForNobody) {
  for (const Read& read : reads()) {
    Variant answer;
    EXPECT_THAT(traceOf([&] { answer = call(read.name, read.code); }),
                ElementsAre(corpus(read.name)))
        << read.name;
    EXPECT_EQ(answer, read.nobody) << read.name;
  }
}

TEST_F(ClsClientesLecturasTest, AQuoteInTheCodeBreaksTheStatementOrIsTakenForNobody) {
  for (const Read& read : reads()) {
    const std::string name = read.name;
    const bool quiet = name == "GetRefPortes" || name == "ObtenerRpt_dec";
    if (quiet) {
      EXPECT_EQ(call(read.name, "0'12"), read.nobody) << name;
    } else {
      EXPECT_EQ(errorOf([&] { call(read.name, "0'12"); }), errors::kSyntax) << name;
    }
  }
}

TEST_F(ClsClientesLecturasTest, TheyRideOnTheCallersConnection) {
  ConnectionPtr connection;
  EXPECT_EQ(customers.GetSerie("00012", connection), "A");
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  Statement insert("INSERT INTO Clientes (Codigo, Activo, Serie) VALUES ('00012', 1, 'B')");
  connection->Execute(insert);
  EXPECT_EQ(customers.GetSerie("00012", connection), "B");
  connection->RollbackTrans();
  EXPECT_EQ(customers.GetSerie("00012", connection), "A");
}

TEST_F(ClsClientesLecturasTest, ANumberAsACodeIsItsText) {
  add("45");
  EXPECT_TRUE(customers.ExisteCli(45));
  EXPECT_TRUE(customers.ExisteCli("45"));
  EXPECT_FALSE(customers.ExisteCli("045"));
  EXPECT_FALSE(customers.ExisteCli(Null{}));
}

// ---- Is it there

TEST_F(ClsClientesLecturasTest, BlockedIsFalseForNull) {
  add("00012", "Bloqueo = Null");
  EXPECT_FALSE(customers.ObtenerBloqueo("00012"));
  set("00012", "Bloqueo = True");
  EXPECT_TRUE(customers.ObtenerBloqueo("00012"));
}

TEST_F(ClsClientesLecturasTest, ExistingIsByExactText) {
  add("00012", "NIF = 'B12345674', ExternalID = 'EXT-7'");
  EXPECT_TRUE(customers.ExisteNif("B12345674"));
  EXPECT_FALSE(customers.ExisteNif("b12345674"));
  EXPECT_TRUE(customers.ExisteExternalID("EXT-7"));
}

TEST_F(ClsClientesLecturasTest, OnlyTheMarkTwoMakesACustomerUnavailable) {
  add("00012", "Activo = 2");
  EXPECT_FALSE(customers.EstaDisponible("00012"));
  EXPECT_TRUE(customers.ExisteCli("00012"));
  for (const char* other : {"0", "-1", "1"}) {
    set("00012", std::string("Activo = ") + other);
    EXPECT_TRUE(customers.EstaDisponible("00012")) << other;
  }
}

TEST_F(ClsClientesLecturasTest, ACentreOfOneCharacterIsNone) {
  EXPECT_THAT(traceOf([&] { EXPECT_FALSE(customers.ExistenCentros()); }),
              ElementsAre(corpus("ExistenCentros")));
  add("1", "Centro = 'N'");
  EXPECT_FALSE(customers.ExistenCentros());
  add("2", "Centro = 'No'");
  EXPECT_TRUE(customers.ExistenCentros());
}

// ---- Who is billed

TEST_F(ClsClientesLecturasTest, BilledItselfIsNullEmptyOrTheOwnCode) {
  add("00012", "codigo_fac = Null");
  EXPECT_TRUE(customers.esFacturable("00012"));
  for (const char* own : {"", "00012"}) {
    set("00012", std::string("codigo_fac = '") + own + "'");
    EXPECT_TRUE(customers.esFacturable("00012")) << own;
  }
  for (const char* other : {"00013", "+1", "D", "12"}) {
    set("00012", std::string("codigo_fac = '") + other + "'");
    EXPECT_FALSE(customers.esFacturable("00012")) << other;
  }
}

// An empty text is neither the own code nor an associate, so both members say yes; callers ask the
// one that they need.
TEST_F(ClsClientesLecturasTest, NotBilledItselfIsAnyOtherTextThanTheOwnCodeAndAssociates) {
  add("00012", "codigo_fac = '00013'");
  EXPECT_TRUE(customers.NoesFacturable("00012"));
  set("00012", "codigo_fac = 'D'");
  EXPECT_TRUE(customers.NoesFacturable("00012"));
  set("00012", "codigo_fac = ''");
  EXPECT_TRUE(customers.NoesFacturable("00012"));
  for (const char* not_so : {"00012", "+1"}) {
    set("00012", std::string("codigo_fac = '") + not_so + "'");
    EXPECT_FALSE(customers.NoesFacturable("00012")) << not_so;
  }
}

TEST_F(ClsClientesLecturasTest, NotBilledItselfAsksTwiceForANullAndSaysNo) {
  add("00012", "codigo_fac = Null");
  EXPECT_THAT(
      traceOf([&] { EXPECT_FALSE(customers.NoesFacturable("00012")); }),
      ElementsAre(corpus("NoesFacturable"), corpus("NoesFacturable / second run, True as a word")));
}

TEST_F(ClsClientesLecturasTest, ADistributorIsADOfEitherCase) {
  add("00012", "codigo_fac = Null");
  EXPECT_FALSE(customers.esDistribuidor("00012"));
  EXPECT_FALSE(customers.esAsociado("00012"));
  for (const char* letter : {"D", "d"}) {
    set("00012", std::string("codigo_fac = '") + letter + "'");
    EXPECT_TRUE(customers.esDistribuidor("00012")) << letter;
  }
  set("00012", "codigo_fac = '+1'");
  EXPECT_FALSE(customers.esDistribuidor("00012"));
  EXPECT_TRUE(customers.esAsociado("00012"));
}

// ---- Flags

TEST_F(ClsClientesLecturasTest, FlagsAreTheColumnsValue) {
  add("00012", "Serie_As = True, Portes_Alb = True, Fact_Papel = True");
  EXPECT_TRUE(customers.esSerie_as("00012"));
  EXPECT_TRUE(customers.esPortesNoIncl("00012"));
  EXPECT_TRUE(customers.ObtenerPrintPaper("00012"));
  set("00012", "Serie_As = False, Portes_Alb = False, Fact_Papel = False");
  EXPECT_FALSE(customers.esSerie_as("00012"));
  EXPECT_FALSE(customers.esPortesNoIncl("00012"));
  EXPECT_FALSE(customers.ObtenerPrintPaper("00012"));
}

TEST_F(ClsClientesLecturasTest, ActiveIsAnythingButZeroAndNull) {
  add("00012");
  for (const char* mark : {"-1", "1", "2"}) {
    set("00012", std::string("Activo = ") + mark);
    EXPECT_TRUE(customers.esActivo("00012")) << mark;
  }
  for (const char* mark : {"0", "Null"}) {
    set("00012", std::string("Activo = ") + mark);
    EXPECT_FALSE(customers.esActivo("00012")) << mark;
  }
}

TEST_F(ClsClientesLecturasTest, ANaturalPersonIsToldByTheClassWord) {
  add("00012");
  for (const char* word : {"NIF", "NIE", "N", " nif ", "n"}) {
    set("00012", std::string("ID_Fiscal = '") + word + "'");
    EXPECT_TRUE(customers.esPersonaFisica("00012")) << word;
  }
  for (const char* word : {"CIF", "AND", "INT", "VERIFICAR", "", "DNI"}) {
    set("00012", std::string("ID_Fiscal = '") + word + "'");
    EXPECT_FALSE(customers.esPersonaFisica("00012")) << word;
  }
  set("00012", "ID_Fiscal = Null");
  EXPECT_EQ(errorOf([&] { customers.esPersonaFisica("00012"); }), errors::kInvalidUseOfNull);
}

TEST_F(ClsClientesLecturasTest, AMemberOfUsableCustomersTakesAnInactiveOneForNobody) {
  add("00012",
      "Serie = 'B', Lista = 'TDS', Codigo_Portes = 'P1', Facturar = 'Diario', codigo_fac = '9', "
      "Impuesto = True, Impuesto_Incluido = True, Portes_Alb = True");
  EXPECT_EQ(customers.GetSerie("00012"), "B");
  EXPECT_EQ(customers.GetLista("00012"), "TDS");
  EXPECT_EQ(customers.GetRefPortes("00012"), "P1");
  EXPECT_EQ(customers.GetFacturacion("00012"), "Diario");
  EXPECT_EQ(customers.GetCodigo_fac("00012"), "9");
  EXPECT_TRUE(customers.IncludeTax("00012"));
  EXPECT_TRUE(customers.EsIvaDeducible("00012"));
  EXPECT_TRUE(customers.PortesAlConvertir("00012"));
  set("00012", "Activo = 0");
  EXPECT_EQ(customers.GetSerie("00012"), "A");
  EXPECT_EQ(customers.GetLista("00012"), "PRC");
  EXPECT_EQ(customers.GetRefPortes("00012"), "0");
  EXPECT_EQ(customers.GetFacturacion("00012"), "Mensual");
  EXPECT_EQ(customers.GetCodigo_fac("00012"), "0");
  EXPECT_FALSE(customers.IncludeTax("00012"));
  EXPECT_FALSE(customers.EsIvaDeducible("00012"));
  EXPECT_FALSE(customers.PortesAlConvertir("00012"));
}

TEST_F(ClsClientesLecturasTest, ANullRaisesInThoseThatReadItUntested) {
  add("00012");
  for (const auto member : {&C::GetSerie, &C::GetLista, &C::GetFacturacion, &C::GetCodigo_fac}) {
    EXPECT_EQ(errorOf([&] { (customers.*member)("00012"); }), errors::kInvalidUseOfNull);
  }
}

TEST_F(ClsClientesLecturasTest, ANullArticleOfTheCarriageLineIsZero) {
  add("00012");
  EXPECT_EQ(customers.GetRefPortes("00012"), "0");
}

// ---- Texts

TEST_F(ClsClientesLecturasTest, TypeAndBankHaveTheirWordsForNothing) {
  add("00012");
  EXPECT_EQ(customers.GetTipoCli("00012"), "no");
  EXPECT_EQ(customers.GetCodigo_Banco("00012"), "0");
  set("00012", "Tipo_Cliente = '', Banco = ''");
  EXPECT_EQ(customers.GetTipoCli("00012"), "");
  EXPECT_EQ(customers.GetCodigo_Banco("00012"), "0");
  set("00012", "Tipo_Cliente = 'Nuevo', Banco = '001'");
  EXPECT_EQ(customers.GetTipoCli("00012"), "Nuevo");
  EXPECT_EQ(customers.GetCodigo_Banco("00012"), "001");
}

TEST_F(ClsClientesLecturasTest, TheLegalNameIsNoForNull) {
  add("00012");
  EXPECT_EQ(customers.ObtenerRazonSocial("00012"), "Cliente 00012");
  set("00012", "Razon_Social = Null");
  EXPECT_EQ(customers.ObtenerRazonSocial("00012"), "no");
}

// The name promises the postal code; labels of workshops are printed from the centre.
TEST_F(ClsClientesLecturasTest, ThePostalCodesMemberGivesTheProductionCentre) {
  add("00012", "Centro = 'Norte', Codigo_Postal = '28001'");
  EXPECT_EQ(customers.ObtenerCP("00012"), "Norte");
  set("00012", "Centro = Null");
  EXPECT_EQ(customers.ObtenerCP("00012"), "");
}

TEST_F(ClsClientesLecturasTest, OpeningHoursStandBehindABracketThatStaysOpen) {
  add("00012", "Horario = '9 a 14'");
  EXPECT_EQ(customers.ObtenerHorario("00012"), "[ 9 a 14");
  set("00012", "Horario = Null");
  EXPECT_EQ(customers.ObtenerHorario("00012"), "no");
}

TEST_F(ClsClientesLecturasTest, TheWarningIsGivenOnlyWhereDocumentsTakeItUp) {
  add("00012", "Texto_Aviso = 'Llamar antes', Incorporar = True");
  EXPECT_EQ(customers.ObtenerTexto("00012"), "{ Llamar antes");
  set("00012", "Texto_Aviso = Null");
  EXPECT_EQ(customers.ObtenerTexto("00012"), "{ ");
  set("00012", "Texto_Aviso = 'Llamar antes', Incorporar = False, Aviso = True");
  EXPECT_EQ(customers.ObtenerTexto("00012"), "no");
}

TEST_F(ClsClientesLecturasTest, AMailThatIsEmptyOrNullIsNo) {
  add("00012", "E_Mail_doc = 'doc@example.org'");
  EXPECT_EQ(customers.ObtenerMailDoc("00012"), "doc@example.org");
  for (const char* none : {"''", "Null"}) {
    set("00012", std::string("E_Mail_doc = ") + none);
    EXPECT_EQ(customers.ObtenerMailDoc("00012"), "no") << none;
    EXPECT_EQ(customers.ObtenerMailDoc_Admin("00012"), "no") << none;
  }
}

TEST_F(ClsClientesLecturasTest, TheAdministrationsMailTakesTheDocumentsPlaceEvenWhenItIsEmpty) {
  add("00012", "E_Mail_doc = 'doc@example.org', E_Mail_admin = 'adm@example.org'");
  EXPECT_EQ(customers.ObtenerMailDoc_Admin("00012"), "doc@example.org");
  set("00012", "UemlAdm = True");
  EXPECT_EQ(customers.ObtenerMailDoc_Admin("00012"), "adm@example.org");
  set("00012", "E_Mail_admin = ''");
  EXPECT_EQ(customers.ObtenerMailDoc_Admin("00012"), "no");
}

TEST_F(ClsClientesLecturasTest, AReportNeedsMoreThanFourCharacters) {
  add("00012");
  for (const auto member : {&C::ObtenerRpt_Fac, &C::ObtenerRpt_Alb, &C::ObtenerRpt_dec}) {
    for (const char* none : {"Null", "''", "'No'", "'abcd'", "'ñoño'"}) {
      set("00012",
          std::string("Rpt_Fac = ") + none + ", Rpt_Alb = " + none + ", Rpt_Dec = " + none);
      EXPECT_EQ((customers.*member)("00012"), "no") << none;
    }
    set("00012", "Rpt_Fac = 'abcde', Rpt_Alb = 'abcde', Rpt_Dec = 'abcde'");
    EXPECT_EQ((customers.*member)("00012"), "abcde");
  }
}

TEST_F(ClsClientesLecturasTest, TheCreditLimitIsZeroForNull) {
  add("00012", "Riesgo = 1500.5");
  EXPECT_EQ(customers.ObtenerRiesgo("00012"), 1500.5);
  set("00012", "Riesgo = Null");
  EXPECT_EQ(customers.ObtenerRiesgo("00012"), 0);
}

}  // namespace
}  // namespace tavelor
