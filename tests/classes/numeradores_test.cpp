// SPDX-License-Identifier: MIT
// clsNumeradores: counters read and written, codes of rows, lengths of master codes.
#include "tests/classes/numeradores.hpp"

#include "tavelor/frame/component.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::Family;
using test::kFamilies;
using test::kPassed;
using test::Triple;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSimple = "SELECT Alb_Num_Simple FROM Numeradores WHERE ((Periodo)='2026');";
constexpr const char* kCode = "SELECT Codigo FROM Numeradores WHERE ((Periodo)='2026');";

class ClsNumeradoresTest : public testing::Test, protected test::NumberingShop {};

// ---- The component

TEST(ClsNumeradores, TheSlotsOfItsOwnMembersStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : clsNumeradores::component().members()) names.push_back(slot.name);
  names.resize(28);
  EXPECT_THAT(names,
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "IniciaRs", "ActivarLoteUso", "Alb_Num_Simple",
                          "NuevoCodigo", "GetNewNumPeriodo", "GetNewRectifi", "GetNewNum",
                          "SetNewNum", "SetNewNumOrd", "SetDigitArtTo0", "GetCodigo", "GetLetra",
                          "GetAño", "GetMes", "GetContador", "GetLong", "SeguridadPermiso",
                          "ExistenPeriodosNulos", "CrearPeriodoActual", "ExistenPeriodoActual",
                          "ActualizarPeriodosNulos", "CodigoLibre", "EditingRecord"));
}

TEST(ClsNumeradores, NumbersAreReadByReferenceAndWrittenByValue) {
  const Component& counters = clsNumeradores::component();
  EXPECT_EQ(counters.member("GetNewNum").signature(),
            "GetNewNum(vId As String, inout dSerieA As Double, inout dSerieB As Double, inout "
            "dSerieC As Double, [inout objCn As Connection])");
  EXPECT_EQ(counters.member("SetNewNum").signature(),
            "SetNewNum(vId As String, dSerieA As Double, dSerieB As Double, dSerieC As Double, "
            "[inout objCn As Connection], [inout sPeriodo As String])");
}

TEST_F(ClsNumeradoresTest, NumbersComeBackToWhoeverCallsByName) {
  set("Ticket_a = 5, Ticket_b = 6, Ticket_c = 7");
  std::vector<Variant> arguments = {"Tickets", 0.0, 0.0, 0.0};
  clsNumeradores::component().call(counters, "GetNewNum", arguments);
  EXPECT_EQ(arguments[1], Variant(6.0));
  EXPECT_EQ(arguments[2], Variant(7.0));
  EXPECT_EQ(arguments[3], Variant(8.0));
}

// ---- Modes

TEST_F(ClsNumeradoresTest, SeleccionHasCodeAndDescription) {
  std::string word = "seleccion";
  counters.IniciaRs(word);
  EXPECT_EQ(word, "seleccion");
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo AS Código, Descripcion AS Descripción FROM Numeradores"));
}

TEST_F(ClsNumeradoresTest, AnyOtherWordIsAllColumnsInTheirOrderWithoutTheSimpleNumbering) {
  for (const char* other : {"", "seleccioncombo", "registro", "Seleccion"}) {
    std::string word = other;
    counters.IniciaRs(word, "001");
    EXPECT_EQ(word, "todos");
    EXPECT_THAT(
        shop.statements(),
        ElementsAre(
            "SELECT Codigo as Código, Periodo, Descripcion AS Descripción, No_Renumerar, "
            "Digitos_Articulos, Digitos_Clientes, Digitos_Proveedores, Pedido_a, Pedido_b, "
            "Pedido_c, Factura_Prov_a, Factura_Prov_b, Factura_Prov_c, Pedido_Cli_a, Pedido_Cli_b, "
            "Pedido_Cli_c, Albaran_a, Albaran_b, Albaran_c, Factura_a, Factura_b, Factura_c, "
            "Orden_a, Orden_b, Orden_c, Ticket_a, Ticket_b, Ticket_c, Presupuesto_a, "
            "Presupuesto_b, Presupuesto_c, Activar_Lote_Uso, Letra, Año, Mes, Contador, Factura_r "
            "FROM Numeradores"));
  }
}

// ---- Reading

TEST_F(ClsNumeradoresTest, GetNewNumReadsEachFamilyByItsStatementThenAsksForSimpleNumbering) {
  for (const Family& family : kFamilies) {
    const std::string columns = family.columns;
    set(columns + "a = 5, " + columns + "b = 10000, " + columns + "c = 25000");
    EXPECT_EQ(next(family.word), (Triple{6, 10001, 25001})) << family.word;
    EXPECT_THAT(shop.statements(),
                ElementsAre(std::string(family.select) + "Numeradores WHERE (((Periodo)='2026'));",
                            kSimple))
        << family.word;
    set(columns + "a = Null, " + columns + "b = Null, " + columns + "c = Null");
  }
}

// What is wrong with it is what callers have: a till that works with series a alone finds its seed
// there although the missing number is another series', and has numbered its documents by that.
TEST_F(ClsNumeradoresTest, ANullSeriesPutsItsSeedInTheFirstNumberAndLeavesItsOwnAsItCame) {
  set("Ticket_a = 5, Ticket_c = 25000");
  EXPECT_EQ(next("Tickets"), (Triple{26000000, kPassed.b, 25001})) << "not 6";
  set("Ticket_b = 8, Ticket_c = Null");
  EXPECT_EQ(next("Tickets"), (Triple{260000000, 9, kPassed.c}));
  set("Ticket_b = Null");
  EXPECT_EQ(next("Tickets"), (Triple{260000000, kPassed.b, kPassed.c})) << "the last one wins";
}

TEST_F(ClsNumeradoresTest, ANullFirstSeriesIsTheSeed) {
  set("Ticket_b = 8, Ticket_c = 9");
  EXPECT_EQ(next("Tickets"), (Triple{260000, 9, 10}));
}

TEST_F(ClsNumeradoresTest, AFamilyNeverUsedEndsAtTheLongestSeed) {
  for (const Family& family : kFamilies) {
    if (std::string_view(family.word) == "Albaranes") continue;
    EXPECT_EQ(next(family.word), (Triple{260000000, kPassed.b, kPassed.c})) << family.word;
  }
  EXPECT_EQ(next("Albaranes"), (Triple{260000000, kPassed.b, kPassed.c}));
}

TEST_F(ClsNumeradoresTest, SeedsCarryTheYearOfTodayNotThatOfThePeriod) {
  setToday(1999);
  EXPECT_EQ(next("Facturas").a, 990000000);
  set("Factura_b = 1, Factura_c = 1");
  EXPECT_EQ(next("Facturas").a, 990000);
}

// The seed is a text of digits that counts as a number: the zeros of the year 2100 are no digits.
TEST_F(ClsNumeradoresTest, InTheYear2100TheSeedsAreZero) {
  setToday(2100);
  EXPECT_EQ(next("Facturas"), (Triple{0, kPassed.b, kPassed.c}));
}

// Nothing is reserved, on purpose: programs read to show the number of a document that may never be
// made. Who must have it for himself takes a transaction.
TEST_F(ClsNumeradoresTest, TwoReadsGiveTheSameNumbers) {
  set("Pedido_a = 1, Pedido_b = 2, Pedido_c = 3");
  EXPECT_EQ(next("Pedidos"), (Triple{2, 3, 4}));
  EXPECT_EQ(next("Pedidos"), (Triple{2, 3, 4}));
  EXPECT_EQ(stored("Pedido_"), "1, 2, 3");
  write("Pedidos", {2, 2, 3});
  EXPECT_EQ(next("Pedidos"), (Triple{3, 3, 4}));
}

TEST_F(ClsNumeradoresTest, AnUnknownFamilyIsAStatementThatTheDatabaseRefuses) {
  for (const char* word : {"", "tickets", "Tickets ", "rectificativa", "Otros"}) {
    Triple numbers = kPassed;
    EXPECT_EQ(errorOf([&] { counters.GetNewNum(word, numbers.a, numbers.b, numbers.c); }),
              errors::kSyntax)
        << word;
    EXPECT_EQ(numbers, kPassed);
    EXPECT_THAT(shop.statements(), ElementsAre(" WHERE (((Periodo)='2026'));"));
    EXPECT_EQ(errorOf([&] { nextOf(word, "2025"); }), errors::kSyntax) << word;
    EXPECT_THAT(shop.statements(), ElementsAre(" WHERE (((Periodo)='2025'));"));
  }
}

TEST_F(ClsNumeradoresTest, APeriodWithoutARowCannotBeRead) {
  clsNumeradores::setCurrentPeriod("2027");
  Triple numbers = kPassed;
  EXPECT_EQ(errorOf([&] { counters.GetNewNum("Tickets", numbers.a, numbers.b, numbers.c); }),
            errors::kNoCurrentRecord);
  EXPECT_EQ(numbers, kPassed);
  EXPECT_EQ(errorOf([&] { counters.GetNewRectifi(numbers.a); }), errors::kNoCurrentRecord);
  EXPECT_EQ(errorOf([&] { nextOf("Tickets", "2027"); }), errors::kNoCurrentRecord);
  EXPECT_EQ(numbers, kPassed);
}

TEST_F(ClsNumeradoresTest, ASessionThatNeverHadAPeriodReadsThatOfNoName) {
  clsNumeradores::setCurrentPeriod("");
  EXPECT_EQ(errorOf([&] { next("Tickets"); }), errors::kNoCurrentRecord);
  EXPECT_EQ(shop.statements().front(),
            "SELECT Ticket_a as Serie_a, Ticket_b as Serie_b, Ticket_c as Serie_c FROM "
            "Numeradores WHERE (((Periodo)=''));");
  EXPECT_FALSE(counters.Alb_Num_Simple());
  EXPECT_EQ(counters.GetLong("Clientes"), Variant(std::int32_t{0}));
}

TEST_F(ClsNumeradoresTest, APeriodWithAQuoteBreaksItsStatement) {
  clsNumeradores::setCurrentPeriod("2026' or '1'='1");
  EXPECT_EQ(errorOf([&] { next("Tickets"); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { write("Tickets", {1, 2, 3}); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { nextOf("Tickets", "x'"); }), errors::kSyntax);
  EXPECT_EQ(stored("Ticket_"), "Null, Null, Null");
}

// ---- Rectifying invoices

TEST_F(ClsNumeradoresTest, GetNewRectifiIsTheLastPlusOneOrTheYearAndOne) {
  double number = 0;
  counters.GetNewRectifi(number);
  EXPECT_EQ(number, 20260001);
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT Factura_R as Serie_R FROM Numeradores WHERE "
                                             "(((Periodo)='2026'));"));
  set("Factura_r = 20260041");
  counters.GetNewRectifi(number);
  EXPECT_EQ(number, 20260042);
}

TEST_F(ClsNumeradoresTest, TheFirstRectifyingInvoiceCarriesTheWholeYearOfToday) {
  for (const auto& [year, first] : {std::pair{1999, 19990001.0}, {2100, 21000001.0}}) {
    setToday(year);
    double number = 0;
    counters.GetNewRectifi(number);
    EXPECT_EQ(number, first);
  }
}

TEST_F(ClsNumeradoresTest, SetNewNumOfRectificativaWritesItsOneColumnAndNothingElse) {
  for (const Family& family : kFamilies) {
    const std::string columns = family.columns;
    set(columns + "a = 1, " + columns + "b = 2, " + columns + "c = 3");
  }
  write("rectificativa", {12, 99, 99});
  EXPECT_THAT(shop.statements(),
              ElementsAre(kSimple, kCode,
                          "UPDATE Numeradores SET Factura_R ='12'  WHERE (((Numeradores.Codigo) "
                          "='001'));"));
  EXPECT_EQ(column("Factura_r"), "12");
  for (const Family& family : kFamilies) EXPECT_EQ(stored(family.columns), "1, 2, 3");
}

// ---- Writing

TEST_F(ClsNumeradoresTest, SetNewNumWritesEachFamilyByItsStatement) {
  for (const Family& family : kFamilies) {
    const std::string columns = family.columns;
    write(family.word, {7, 8, 9});
    EXPECT_THAT(
        shop.statements(),
        ElementsAre(kSimple, kCode,
                    "UPDATE Numeradores SET " + columns + "a ='7' , " + columns + "b ='8' , " +
                        columns + "c ='9'  WHERE (((Numeradores.Codigo) ='001'));"));
    EXPECT_EQ(stored(columns), "7, 8, 9") << family.word;
  }
}

TEST_F(ClsNumeradoresTest, AFamilyIsWrittenWithItsZeros) {
  write("Facturas", {0, 0, 0});
  EXPECT_EQ(stored("Factura_"), "0, 0, 0");
}

TEST_F(ClsNumeradoresTest, OnlyTheRowOfThePeriodIsWritten) {
  addPeriod("002", "2025");
  write("Facturas", {1, 2, 3});
  EXPECT_EQ(stored("Factura_", "002"), "Null, Null, Null");
  std::string period = "2025";
  counters.SetNewNum("Facturas", 4, 5, 6, {}, period);
  EXPECT_EQ(stored("Factura_", "001"), "1, 2, 3");
  EXPECT_EQ(stored("Factura_", "002"), "4, 5, 6");
  EXPECT_EQ(period, "2025");
}

TEST_F(ClsNumeradoresTest, AnEmptyPeriodComesBackAsTheSessions) {
  std::string period;
  counters.SetNewNum("Facturas", 1, 2, 3, {}, period);
  EXPECT_EQ(period, "2026");
  period.clear();
  counters.SetNewNumOrd("a", 1, 2, 3, {}, period);
  EXPECT_EQ(period, "2026");
}

TEST_F(ClsNumeradoresTest, APeriodWithoutARowIsWrittenNowhereAndSilently) {
  set("Factura_a = 1");
  std::string period = "2027";
  counters.SetNewNum("Facturas", 5, 6, 7, {}, period);
  EXPECT_EQ(shop.statements().back(),
            "UPDATE Numeradores SET Factura_a ='5' , Factura_b ='6' , Factura_c ='7'  WHERE "
            "(((Numeradores.Codigo) =''));");
  counters.SetNewNumOrd("A", 5, 6, 7, {}, period);
  EXPECT_EQ(stored("Factura_"), "1, Null, Null");
  EXPECT_EQ(stored("Orden_"), "Null, Null, Null");
}

TEST_F(ClsNumeradoresTest, AnUnknownFamilyCannotBeWritten) {
  for (const char* word : {"", "facturas", "Rectificativa", "Otros"}) {
    EXPECT_EQ(errorOf([&] { write(word, {1, 2, 3}); }), errors::kSyntax) << word;
    EXPECT_THAT(shop.statements(),
                ElementsAre(kSimple, kCode, " WHERE (((Numeradores.Codigo) ='001'));"));
  }
}

// ---- Delivery notes

TEST_F(ClsNumeradoresTest, WithSimpleNumberingTheGreatestNextNumberServesAllThreeSeries) {
  set("Alb_Num_Simple = True, Albaran_a = 7, Albaran_b = 9, Albaran_c = 3");
  EXPECT_EQ(next("Albaranes"), (Triple{10, 10, 10}));
  set("Albaran_c = 30");
  EXPECT_EQ(next("Albaranes"), (Triple{31, 31, 31}));
  set("Albaran_a = 31");
  EXPECT_EQ(next("Albaranes"), (Triple{32, 32, 32}));
}

TEST_F(ClsNumeradoresTest, WithSimpleNumberingWhatTheCallerPassedCountsForANullSeries) {
  set("Alb_Num_Simple = True, Albaran_a = 7, Albaran_c = 3");
  EXPECT_EQ(next("Albaranes", {0, 0, 0}), (Triple{26000000, 26000000, 26000000}));
  EXPECT_EQ(next("Albaranes", {0, 99000000, 0}), (Triple{99000000, 99000000, 99000000}));
}

TEST_F(ClsNumeradoresTest, SimpleNumberingIsForDeliveryNotesOnly) {
  set("Alb_Num_Simple = True, Factura_a = 7, Factura_b = 9, Factura_c = 3");
  EXPECT_EQ(next("Facturas"), (Triple{8, 10, 4}));
  write("Facturas", {8, 10, 4});
  EXPECT_EQ(stored("Factura_"), "8, 10, 4");
}

TEST_F(ClsNumeradoresTest, WithSimpleNumberingTheGreatestIsWrittenToAllThreeColumns) {
  set("Alb_Num_Simple = True");
  write("Albaranes", {10, 4, 4});
  EXPECT_EQ(shop.statements().back(),
            "UPDATE Numeradores SET Albaran_a ='10' , Albaran_b ='10' , Albaran_c ='10'  WHERE "
            "(((Numeradores.Codigo) ='001'));");
  EXPECT_EQ(stored("Albaran_"), "10, 10, 10");
  write("Albaranes", {4, 4, 11});
  EXPECT_EQ(stored("Albaran_"), "11, 11, 11");
}

TEST_F(ClsNumeradoresTest, WithSimpleNumberingZerosStayZeros) {
  set("Alb_Num_Simple = True");
  write("Albaranes", {0, 0, 0});
  EXPECT_EQ(stored("Albaran_"), "0, 0, 0");
}

// These seeds are a zero shorter than those that GetNewNum gives: they are the ones a new period
// starts with, so that a year begun by hand looks like a year begun by the program.
TEST_F(ClsNumeradoresTest, WithoutSimpleNumberingZerosBecomeTheSeedsOfANewPeriod) {
  write("Albaranes", {0, 0, 0});
  EXPECT_EQ(stored("Albaran_"), "260000, 2600000, 26000000");
  write("Albaranes", {5, 0, 7});
  EXPECT_EQ(stored("Albaran_"), "5, 2600000, 7");
  write("Albaranes", {-1, 0.5, -0.0});
  EXPECT_EQ(stored("Albaran_"), "-1, 0,5, 26000000");
  write("Albaranes", {0.5, -1, -1});
  EXPECT_EQ(stored("Albaran_"), "0,5, -1, -1") << "only what is exactly 0";
}

TEST_F(ClsNumeradoresTest, TheSeedsOfDeliveryNotesCarryTheYearOfToday) {
  setToday(1999);
  write("Albaranes", {0, 0, 0});
  EXPECT_EQ(stored("Albaran_"), "990000, 9900000, 99000000");
  setToday(2100);
  write("Albaranes", {0, 0, 0});
  EXPECT_EQ(stored("Albaran_"), "0, 0, 0") << "a year 00 is no digit of a number";
}

TEST_F(ClsNumeradoresTest, SimpleNumberingIsThatOfTheSessionsPeriodWhicheverIsWritten) {
  addPeriod("002", "2025");
  set("Alb_Num_Simple = True", "2025");
  std::string period = "2025";
  counters.SetNewNum("Albaranes", 3, 2, 1, {}, period);
  EXPECT_EQ(stored("Albaran_", "002"), "3, 2, 1");
}

TEST_F(ClsNumeradoresTest, AlbNumSimpleIsTheFlagOrFalseWithoutARow) {
  EXPECT_FALSE(counters.Alb_Num_Simple());
  set("Alb_Num_Simple = True");
  EXPECT_TRUE(counters.Alb_Num_Simple());
  EXPECT_THAT(shop.statements(), ElementsAre(kSimple, kSimple));
  clsNumeradores::setCurrentPeriod("2027");
  EXPECT_FALSE(counters.Alb_Num_Simple());
}

// ---- Work orders

TEST_F(ClsNumeradoresTest, SetNewNumOrdWritesTheOneSeriesOfItsLetterInEitherCase) {
  counters.SetNewNumOrd("A", 1, 2, 3);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kCode,
                  "UPDATE Numeradores SET Orden_a ='1'  WHERE (((Numeradores.Codigo) ='001'));"));
  EXPECT_EQ(stored("Orden_"), "1, Null, Null");
  counters.SetNewNumOrd("b", 1, 2, 3);
  EXPECT_EQ(shop.statements().back(),
            "UPDATE Numeradores SET Orden_b ='2'  WHERE (((Numeradores.Codigo) ='001'));");
  counters.SetNewNumOrd("c", 1, 2, 3);
  EXPECT_EQ(shop.statements().back(),
            "UPDATE Numeradores SET Orden_c ='3'  WHERE (((Numeradores.Codigo) ='001'));");
  EXPECT_EQ(stored("Orden_"), "1, 2, 3");
}

TEST_F(ClsNumeradoresTest, SetNewNumOrdDoesNotKnowFamiliesNorOtherLetters) {
  for (const char* letter : {"", "D", "Ordenes", "a "}) {
    EXPECT_EQ(errorOf([&] { counters.SetNewNumOrd(letter, 1, 2, 3); }), errors::kSyntax) << letter;
    EXPECT_EQ(shop.statements().back(), " WHERE (((Numeradores.Codigo) ='001'));");
  }
}

// ---- The connection of the caller

TEST_F(ClsNumeradoresTest, AnEmptyConnectionComesBackFilledAndAGivenOneIsUsed) {
  ConnectionPtr connection;
  counters.SetNewNum("Pedidos", 1, 2, 3, connection);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  counters.SetNewNum("Pedidos", 4, 5, 6, connection);
  Triple numbers = kPassed;
  counters.GetNewNum("Pedidos", numbers.a, numbers.b, numbers.c, connection);
  EXPECT_EQ(numbers, (Triple{5, 6, 7}));
  EXPECT_EQ(next("Pedidos"), (Triple{5, 6, 7}))
      << "without a connection it sees the apartment's own transaction";
  connection->RollbackTrans();
  EXPECT_EQ(stored("Pedido_"), "1, 2, 3");
}

TEST_F(ClsNumeradoresTest, EveryMemberFillsAnEmptyConnection) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use, and is not asked");
  const auto filled = [](auto&& call) {
    ConnectionPtr connection;
    call(connection);
    return connection != nullptr;
  };
  double a = 0, b = 0, c = 0;
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetNewNum("Pedidos", a, b, c, cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetNewNumPeriodo("Pedidos", "2026", a, b, c, cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetNewRectifi(a, cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.Alb_Num_Simple(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.ActivarLoteUso({}, cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetLong("Clientes", cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.NuevoCodigo(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.SetNewNumOrd("A", 1, 2, 3, cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.SetDigitArtTo0(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetCodigo(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetLetra(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.GetAño(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.ExistenPeriodosNulos(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.ExistenPeriodoActual(cn); }));
  EXPECT_TRUE(filled([&](auto& cn) { counters.ActualizarPeriodosNulos(cn); }));
}

// ---- Lots

TEST_F(ClsNumeradoresTest, ActivarLoteUsoIsTheFlagOfThePeriodWhateverItsArgument) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  EXPECT_FALSE(counters.ActivarLoteUso("x"));
  set("Activar_Lote_Uso = True");
  EXPECT_TRUE(counters.ActivarLoteUso(Null()));
  constexpr const char* kLots =
      "SELECT Activar_Lote_Uso FROM Numeradores WHERE ((Periodo)='2026');";
  EXPECT_THAT(shop.statements(), ElementsAre(kLots, kLots));
  clsNumeradores::setCurrentPeriod("2027");
  EXPECT_FALSE(counters.ActivarLoteUso({}));
}

TEST(ClsNumeradores, OnAServerLotsAreAlwaysUsedAndNothingIsAsked) {
  Settings settings = test::fastSettings();
  for (DatabaseSettings& database : settings.databases) {
    if (database.selector == 1) database.servesAsServer = true;
  }
  test::NumberingShop served(settings);
  served.shop.statements();
  ConnectionPtr untouched;
  EXPECT_TRUE(served.counters.ActivarLoteUso({}, untouched));
  EXPECT_THAT(served.shop.statements(), IsEmpty());
  EXPECT_EQ(untouched, nullptr);
}

// ---- Lengths of master codes

TEST_F(ClsNumeradoresTest, GetLongIsTheLengthOfItsWord) {
  set("Digitos_Articulos = 13, Digitos_Clientes = 5, Digitos_Proveedores = 4");
  EXPECT_EQ(counters.GetLong("Artículos"), Variant(std::int32_t{13}));
  EXPECT_EQ(counters.GetLong("Clientes"), Variant(std::int32_t{5}));
  EXPECT_EQ(counters.GetLong("Proveedores"), Variant(std::int32_t{4}));
  EXPECT_EQ(shop.statements().back(),
            "SELECT Digitos_Articulos, Digitos_Clientes, Digitos_Proveedores FROM Numeradores "
            "WHERE ((Periodo)='2026');");
}

TEST_F(ClsNumeradoresTest, ANullLengthIsZeroForItsWord) {
  set("Digitos_Clientes = 5");
  EXPECT_EQ(counters.GetLong("Artículos"), Variant(std::int32_t{0}));
  EXPECT_EQ(counters.GetLong("Clientes"), Variant(std::int32_t{5}));
  EXPECT_EQ(counters.GetLong("Proveedores"), Variant(std::int32_t{0}));
}

TEST_F(ClsNumeradoresTest, WithoutARowLengthsAreZeroAndAnyOtherWordIsSix) {
  clsNumeradores::setCurrentPeriod("2027");
  EXPECT_EQ(counters.GetLong("Clientes"), Variant(std::int32_t{0}));
  EXPECT_EQ(counters.GetLong("Otros"), Variant(std::int16_t{6}));
}

// The 0 and the 3 are what reading a null leaves behind. A caller with a misspelt word depends on
// them without knowing, so they stay.
TEST_F(ClsNumeradoresTest, AnyOtherWordGetsWhatTheLastNullLengthLeavesBehind) {
  const auto other = [&] { return counters.GetLong("articulos"); };
  EXPECT_EQ(other(), Variant(std::int16_t{3})) << "all three are null";
  set("Digitos_Clientes = 5, Digitos_Proveedores = 4");
  EXPECT_EQ(other(), Variant(std::int16_t{0}));
  set("Digitos_Clientes = Null");
  EXPECT_EQ(other(), Variant(std::int16_t{3}));
  set("Digitos_Articulos = 1, Digitos_Proveedores = Null, Digitos_Clientes = 5");
  EXPECT_EQ(other(), Variant(std::int16_t{3}));
  set("Digitos_Proveedores = 4");
  EXPECT_EQ(other(), Variant(std::int16_t{6}));
}

TEST_F(ClsNumeradoresTest, SetDigitArtTo0FreesTheLengthOfTheCurrentPeriodOnly) {
  addPeriod("002", "2025");
  shop.run("UPDATE Numeradores SET Digitos_Articulos = 13, Digitos_Clientes = 5");
  counters.SetDigitArtTo0();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kCode,
                  "UPDATE Numeradores SET Digitos_Articulos = 0 WHERE (((Numeradores.Codigo) "
                  "='001'));"));
  EXPECT_EQ(column("Digitos_Articulos"), "0");
  EXPECT_EQ(column("Digitos_Clientes"), "5");
  EXPECT_EQ(column("Digitos_Articulos", "002"), "13");
}

// ---- Codes of the rows

TEST_F(ClsNumeradoresTest, NuevoCodigoIsTheGreatestTextPlusOne) {
  shop.run("UPDATE Numeradores SET Codigo = '009'");
  EXPECT_EQ(counters.NuevoCodigo(), Variant(10.0));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT MAX(Codigo) AS Nuevo_Codigo FROM Numeradores"));
  shop.run("UPDATE Numeradores SET Codigo = 'ABC'");
  EXPECT_EQ(counters.NuevoCodigo(), Variant("ABC"));
  shop.run("UPDATE Numeradores SET Codigo = '999'");
  EXPECT_EQ(counters.NuevoCodigo(), Variant("999")) << "1000 has no room";
  shop.run("DELETE * FROM Numeradores");
  EXPECT_EQ(counters.NuevoCodigo(), Variant(std::int32_t{1}));
}

TEST_F(ClsNumeradoresTest, AddNewPadsTheNextCodeToThreeCharacters) {
  const auto added = [&] {
    counters.IniciaRs();
    counters.AddNew(true);
    return counters.DataMember("Primary")->Field(0).Value();
  };
  shop.run("UPDATE Numeradores SET Codigo = '009'");
  EXPECT_EQ(added(), Variant("010"));
  shop.run("UPDATE Numeradores SET Codigo = 'AB'");
  EXPECT_EQ(added(), Variant("0AB")) << "a code that is no number is padded too";
  shop.run("DELETE * FROM Numeradores");
  EXPECT_EQ(added(), Variant("001"));
}

TEST_F(ClsNumeradoresTest, AddNewWithoutDefaultsHasComputedTheCodeForNothing) {
  counters.IniciaRs();
  shop.statements();
  counters.AddNew();
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT MAX(Codigo) AS Nuevo_Codigo FROM Numeradores"));
  const RecordsetPtr rows = counters.DataMember("Primary");
  for (std::int32_t i = 0; i < rows->Fields().Count(); ++i) {
    EXPECT_TRUE(rows->Field(i).Value().isEmpty()) << rows->Field(i).Name();
  }
}

TEST_F(ClsNumeradoresTest, CodigoLibreLooksAtTheCode) {
  EXPECT_FALSE(counters.CodigoLibre("001"));
  EXPECT_TRUE(counters.CodigoLibre("002"));
  EXPECT_EQ(shop.statements().back(), "SELECT Codigo FROM Numeradores where codigo ='002'");
}

}  // namespace
}  // namespace tavelor
