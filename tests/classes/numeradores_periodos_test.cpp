// SPDX-License-Identifier: MIT
// clsNumeradores: periods, the format of their codes, and the session's choice among them.
#include <array>
#include <memory>
#include <vector>

#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/session_global.hpp"
#include "tests/classes/numeradores.hpp"
#include "tests/services/faults.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::kPassed;
using test::Triple;
using testing::ElementsAre;

constexpr const char* kPeriodKey = R"(SOFTWARE\Merivan\Global\Configuracion\Sesion\Periodo\)";

class PeriodsTest : public testing::Test, protected test::NumberingShop {};

// ---- The session's period

TEST_F(PeriodsTest, ThePeriodIsTheValueOfItsKeyInTheRegistry) {
  RegistryTree& registry = shop.apartment().registry();
  EXPECT_EQ(registry.get(kPeriodKey, ""), "2026");
  registry.set(kPeriodKey, "", "1999");
  EXPECT_EQ(clsNumeradores::currentPeriod(), "1999");
  clsNumeradores::setCurrentPeriod("2025");
  EXPECT_EQ(registry.get(kPeriodKey, ""), "2025");
  EXPECT_EQ(shop.apartment().sessionGlobal().GetValue(kPeriodKey), "2025");
}

TEST(Periods, TheKeyCarriesTheCompanyOfTheInstallation) {
  Settings settings = test::fastSettings();
  settings.company = "Otra Casa";
  test::NumberingShop other(settings);
  EXPECT_EQ(other.shop.apartment().registry().get(
                R"(SOFTWARE\Otra Casa\Global\Configuracion\Sesion\Periodo\)", ""),
            "2026");
}

TEST_F(PeriodsTest, CountersAreThoseOfThePeriodThatTheSessionIsSwitchedTo) {
  addPeriod("002", "2025");
  set("Pedido_a = 1, Pedido_b = 2, Pedido_c = 3");
  set("Pedido_a = 4, Pedido_b = 5, Pedido_c = 6", "2025");
  EXPECT_EQ(next("Pedidos"), (Triple{2, 3, 4}));
  clsNumeradores::setCurrentPeriod("2025");
  EXPECT_EQ(next("Pedidos"), (Triple{5, 6, 7}));
}

// Both processes keep their installation open all the time.
TEST(Periods, TwoProcessesShareTheSessionsPeriod) {
  const test::TemporaryFolder folder;
  const auto shop = folder.path() / "shop";
  Installation::create(shop, test::fastSettings());

  const auto waitFor = [](const std::string& period) {
    if (!test::eventually([&] { return clsNumeradores::currentPeriod() == period; })) {
      raise(errors::kUnspecified, "test", "the other process's period never came");
    }
  };
  test::Child first([&] {
    Apartment apartment(Installation::open(shop));
    clsNumeradores::setCurrentPeriod("1999");
    waitFor("2100");
    clsNumeradores::setCurrentPeriod("2026");
  });
  test::Child second([&] {
    Apartment apartment(Installation::open(shop));
    waitFor("1999");
    clsNumeradores::setCurrentPeriod("2100");
    waitFor("2026");
  });
  EXPECT_TRUE(first.wait());
  EXPECT_TRUE(second.wait());
  Apartment apartment(Installation::open(shop));
  EXPECT_EQ(apartment.registry().get(kPeriodKey, ""), "2026");
}

// ---- Numbers of a period that the caller names

TEST_F(PeriodsTest, GetNewNumPeriodoReadsEachFamilyOfThatPeriodAndNothingElse) {
  addPeriod("002", "2025");
  for (const test::Family& family : test::kFamilies) {
    const std::string columns = family.columns;
    set(columns + "a = 5, " + columns + "b = 10000, " + columns + "c = 25000", "2025");
    EXPECT_EQ(nextOf(family.word, "2025"), (Triple{6, 10001, 25001})) << family.word;
    EXPECT_THAT(shop.statements(), ElementsAre(std::string(family.select) +
                                               "Numeradores WHERE (((Periodo)='2025'));"));
  }
}

TEST_F(PeriodsTest, ItsSeedsCarryTheYearOfThePeriodNotThatOfToday) {
  addPeriod("002", "2025");
  EXPECT_EQ(nextOf("Facturas", "2025"), (Triple{250000000, kPassed.b, kPassed.c}));
  set("Factura_a = 1, Factura_c = 1", "2025");
  EXPECT_EQ(nextOf("Facturas", "2025"), (Triple{25000000, kPassed.b, 2}))
      << "a null series b crosses to the first number";
  set("Factura_a = Null, Factura_b = 1", "2025");
  EXPECT_EQ(nextOf("Facturas", "2025"), (Triple{250000, 2, 2}));
}

TEST_F(PeriodsTest, TheSeedOfAPeriodIsItsLastTwoCharacters) {
  for (const auto& [period, first] :
       {std::pair{"1999", 990000000.0}, {"2100", 0.0}, {"7", 70000000.0}}) {
    addPeriod(std::string("P") + std::string(period).back(), period);
    EXPECT_EQ(nextOf("Tickets", period).a, first) << period;
  }
}

TEST_F(PeriodsTest, APeriodWhoseEndIsNoNumberIsReadAsLongAsNoSeedIsWanted) {
  addPeriod("002", "XXIV");
  EXPECT_EQ(errorOf([&] { nextOf("Tickets", "XXIV"); }), errors::kTypeMismatch);
  set("Ticket_a = 1, Ticket_b = 2, Ticket_c = 3", "XXIV");
  EXPECT_EQ(nextOf("Tickets", "XXIV"), (Triple{2, 3, 4}));
}

TEST_F(PeriodsTest, GetNewNumPeriodoDoesNotKnowSimpleNumbering) {
  set("Alb_Num_Simple = True, Albaran_a = 7, Albaran_b = 9, Albaran_c = 3");
  EXPECT_EQ(nextOf("Albaranes", "2026"), (Triple{8, 10, 4}));
}

TEST_F(PeriodsTest, AnEmptyPeriodIsNotTheSessionsForGetNewNumPeriodo) {
  EXPECT_EQ(errorOf([&] { nextOf("Tickets", ""); }), errors::kNoCurrentRecord);
  EXPECT_EQ(shop.statements().back(),
            "SELECT Ticket_a as Serie_a, Ticket_b as Serie_b, Ticket_c as Serie_c FROM "
            "Numeradores WHERE (((Periodo)=''));");
}

// ---- A period's row

TEST_F(PeriodsTest, GetCodigoIsTheKeyOfThePeriodsRow) {
  addPeriod("002", "2025");
  EXPECT_EQ(counters.GetCodigo({}, "2025"), Variant("002"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo FROM Numeradores WHERE ((Periodo)='2025');"));
}

TEST_F(PeriodsTest, GetCodigoOfAnUnknownPeriodIsEmptySoThatNothingIsWritten) {
  EXPECT_TRUE(counters.GetCodigo({}, "2027").isEmpty());
  std::string period = "2027";
  counters.SetNewNum("Facturas", 1, 2, 3, {}, period);
  EXPECT_EQ(stored("Factura_"), "Null, Null, Null");
}

TEST_F(PeriodsTest, AnEmptyPeriodIsTheSessionsAndComesBack) {
  std::string period;
  EXPECT_EQ(counters.GetCodigo({}, period), Variant("001"));
  EXPECT_EQ(period, "2026");
  const auto left = [&](auto&& call) {
    std::string own;
    call(own);
    return own;
  };
  EXPECT_EQ(left([&](auto& own) { counters.GetLetra({}, own); }), "2026");
  EXPECT_EQ(left([&](auto& own) { counters.GetAño({}, own); }), "2026");
  EXPECT_EQ(left([&](auto& own) { counters.GetMes({}, own); }), "2026");
  EXPECT_EQ(left([&](auto& own) { counters.GetContador({}, own); }), "2026");
}

TEST_F(PeriodsTest, LettersAndFlagsOfTheCodeFormatAreRead) {
  set("Letra = 'F', Año = True, Mes = False, Contador = True");
  EXPECT_EQ(counters.GetLetra(), "F");
  EXPECT_TRUE(counters.GetAño());
  EXPECT_FALSE(counters.GetMes());
  EXPECT_TRUE(counters.GetContador());
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Letra FROM Numeradores WHERE ((Periodo)='2026');",
                          "SELECT Año FROM Numeradores WHERE ((Periodo)='2026');",
                          "SELECT Mes FROM Numeradores WHERE ((Periodo)='2026');",
                          "SELECT Contador FROM Numeradores WHERE ((Periodo)='2026');"));
}

TEST_F(PeriodsTest, ANullFormatOrNoRowIsNoLetterAndNoFlag) {
  set("Letra = Null, Año = Null, Mes = Null, Contador = Null");
  for (const char* period : {"2026", "2027"}) {
    EXPECT_EQ(counters.GetLetra({}, period), "");
    EXPECT_FALSE(counters.GetAño({}, period));
    EXPECT_FALSE(counters.GetMes({}, period));
    EXPECT_FALSE(counters.GetContador({}, period));
  }
}

// ---- Rows from before periods

TEST_F(PeriodsTest, ExistenPeriodosNulosLooksForRowsWithoutOne) {
  EXPECT_FALSE(counters.ExistenPeriodosNulos());
  shop.run("INSERT INTO Numeradores (Codigo) VALUES ('000')");
  EXPECT_TRUE(counters.ExistenPeriodosNulos());
  EXPECT_EQ(shop.statements().back(),
            "SELECT Codigo FROM Numeradores WHERE (((Periodo) Is Null));");
}

// 2004 was the first year with periods: whatever the date, older rows are taken for its own.
TEST_F(PeriodsTest, ActualizarPeriodosNulosWrites2004AndMakesThePresentYearCurrent) {
  for (const int year : {1999, 2026, 2100}) {
    shop.run("UPDATE Numeradores SET Periodo = Null");
    setToday(year);
    clsNumeradores::setCurrentPeriod("");
    shop.statements();
    counters.ActualizarPeriodosNulos();
    EXPECT_THAT(shop.statements(),
                ElementsAre("UPDATE  Numeradores SET Periodo = '2004' WHERE (((Periodo) Is "
                            "Null));"));
    EXPECT_EQ(column("Periodo"), "2004");
    EXPECT_EQ(clsNumeradores::currentPeriod(), std::to_string(year));
  }
}

TEST_F(PeriodsTest, ActualizarPeriodosNulosLeavesOtherPeriodsAlone) {
  counters.ActualizarPeriodosNulos();
  EXPECT_EQ(column("Periodo"), "2026");
}

// ---- A new year

TEST_F(PeriodsTest, ExistenPeriodoActualAsksForTheYearOfTodayNotForTheSessions) {
  clsNumeradores::setCurrentPeriod("2025");
  EXPECT_TRUE(counters.ExistenPeriodoActual());
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo FROM Numeradores WHERE (((Periodo)= '2026'));"));
  setToday(2027);
  clsNumeradores::setCurrentPeriod("2026");
  EXPECT_FALSE(counters.ExistenPeriodoActual());
}

TEST_F(PeriodsTest, CrearPeriodoActualSeedsAllFamiliesButTickets) {
  shop.run("UPDATE Numeradores SET Periodo = '2025'");
  counters.CrearPeriodoActual();
  EXPECT_EQ(column("Periodo", "002"), "2026");
  EXPECT_EQ(column("Descripcion", "002"), "Numeradores 2026");
  for (const test::Family& family : test::kFamilies) {
    const bool tickets = std::string_view(family.word) == "Tickets";
    EXPECT_EQ(stored(family.columns, "002"),
              tickets ? "Null, Null, Null" : "260000, 2600000, 26000000")
        << family.word;
  }
  EXPECT_EQ(column("Factura_r", "002"), "202600000");
  EXPECT_EQ(clsNumeradores::currentPeriod(), "2026");
}

TEST_F(PeriodsTest, CrearPeriodoActualTakesItsSeedsFromTheDate) {
  for (const auto& [year, seeds, rectifying] :
       {std::tuple{1999, "990000, 9900000, 99000000", "199900000"},
        {2100, "0, 0, 0", "210000000"}}) {
    setToday(year);
    counters.CrearPeriodoActual();
    const std::string code =
        shop.text("SELECT Codigo FROM Numeradores WHERE Periodo = '" + std::to_string(year) + "'");
    EXPECT_EQ(stored("Factura_", code), seeds);
    EXPECT_EQ(column("Factura_r", code), rectifying);
    EXPECT_EQ(column("Descripcion", code), "Numeradores " + std::to_string(year));
    EXPECT_EQ(clsNumeradores::currentPeriod(), std::to_string(year));
  }
}

TEST_F(PeriodsTest, CrearPeriodoActualRunsItsStatementsInOrder) {
  setToday(2027);
  counters.CrearPeriodoActual();
  const std::vector<std::string> ran = shop.statements();
  const std::string lengths =
      "SELECT Digitos_Articulos, Digitos_Clientes, Digitos_Proveedores FROM Numeradores WHERE "
      "((Periodo)='2026');";
  ASSERT_GE(ran.size(), 6U);
  EXPECT_THAT(ran[0], testing::EndsWith("Factura_r FROM Numeradores"));
  EXPECT_EQ(ran[1], "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Numeradores");
  for (std::size_t i = 2; i < 5; ++i) EXPECT_EQ(ran[i], lengths);
  EXPECT_THAT(ran[5], testing::StartsWith("INSERT INTO"));
}

TEST_F(PeriodsTest, LengthsOfCodesCarryOverFromTheSessionsPeriod) {
  addPeriod("002", "2025");
  set("Digitos_Articulos = 13, Digitos_Clientes = 5", "2025");
  set("Digitos_Articulos = 8");
  clsNumeradores::setCurrentPeriod("2025");
  setToday(2027);
  counters.CrearPeriodoActual();
  EXPECT_EQ(column("Digitos_Articulos", "003"), "13");
  EXPECT_EQ(column("Digitos_Clientes", "003"), "5");
  EXPECT_EQ(column("Digitos_Proveedores", "003"), "0") << "null carries over as not fixed";
}

// Adoption makes the new year current before it has a row, and so there are no lengths to carry
// over. A caller who wants them sets the session's period back in between.
TEST_F(PeriodsTest, AfterAdoptingOldRowsTheLengthsStartAtZero) {
  set("Digitos_Articulos = 13");
  shop.run("UPDATE Numeradores SET Periodo = Null");
  counters.ActualizarPeriodosNulos();
  counters.CrearPeriodoActual();
  EXPECT_EQ(column("Digitos_Articulos", "002"), "0");
}

TEST_F(PeriodsTest, FlagsAndLetterOfAPeriodDoNotCarryOver) {
  set("No_Renumerar = True, Activar_Lote_Uso = True, Alb_Num_Simple = True, Letra = 'F', "
      "Año = True, Mes = True, Contador = True");
  setToday(2027);
  counters.CrearPeriodoActual();
  for (const char* flag :
       {"No_Renumerar", "Activar_Lote_Uso", "Alb_Num_Simple", "Año", "Mes", "Contador"}) {
    EXPECT_EQ(column(flag, "002"), "Falso") << flag;
  }
  EXPECT_EQ(column("Letra", "002"), "Null");
}

TEST_F(PeriodsTest, TheFirstTicketsOfANewPeriodTakeTheRoadOfAFamilyNeverUsed) {
  setToday(2027);
  counters.CrearPeriodoActual();
  EXPECT_EQ(next("Tickets"), (Triple{270000000, kPassed.b, kPassed.c}));
  EXPECT_EQ(next("Facturas"), (Triple{270001, 2700001, 27000001}));
}

TEST_F(PeriodsTest, TheFirstPeriodOfANewInstallationIsRow001) {
  shop.run("DELETE * FROM Numeradores");
  clsNumeradores::setCurrentPeriod("");
  counters.CrearPeriodoActual();
  EXPECT_EQ(column("Periodo", "001"), "2026");
  EXPECT_EQ(column("Digitos_Clientes", "001"), "0");
}

// Nothing prevents the second row, and mending it would take the year's numbers from whoever has
// written documents by it already. ExistenPeriodoActual is asked first.
TEST_F(PeriodsTest, TwiceInAYearMakesTwoRowsOfWhichTheFirstCounts) {
  setToday(2027);
  counters.CrearPeriodoActual();
  counters.CrearPeriodoActual();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Numeradores WHERE Periodo = '2027'"), "2");
  EXPECT_EQ(counters.GetCodigo(), Variant("002"));
  write("Facturas", {5, 6, 7});
  EXPECT_EQ(next("Facturas"), (Triple{6, 7, 8}));
  EXPECT_EQ(stored("Factura_", "002"), "5, 6, 7");
  EXPECT_EQ(stored("Factura_", "003"), "270000, 2700000, 27000000");
}

TEST_F(PeriodsTest, AnOrderRememberedForTheListDoesNotDisturbANewPeriod) {
  addPeriod("002", "2025");
  counters.IniciaRs();
  counters.SetOrder(1, " DESC", "todos");
  setToday(2027);
  counters.CrearPeriodoActual();
  EXPECT_EQ(column("Periodo", "003"), "2027");
  EXPECT_EQ(stored("Orden_", "003"), "270000, 2700000, 27000000");
}

TEST_F(PeriodsTest, AFailedCreationLeavesTheOldPeriodCurrentAndTheRowPending) {
  shop.run("UPDATE Numeradores SET Codigo = '999'");
  setToday(2027);
  EXPECT_EQ(errorOf([&] { counters.CrearPeriodoActual(); }), errors::kIntegrityViolation)
      << "there is no code after 999";
  EXPECT_EQ(clsNumeradores::currentPeriod(), "2026");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Numeradores"), "1");
  EXPECT_EQ(counters.DataMember("Primary")->Field("Periodo").Value(), Variant("2027"));
}

TEST(Periods, ProgramsThatBeginAYearAtOnceMakeItsRowOnce) {
  constexpr int kPrograms = 4;
  const test::TemporaryFolder folder;
  const auto shop = folder.path() / "shop";
  Installation::create(shop, test::fastSettings());
  std::array<int, 2> asked{};
  std::array<int, 2> go{};
  ASSERT_EQ(::pipe(asked.data()), 0);
  ASSERT_EQ(::pipe(go.data()), 0);
  std::vector<std::unique_ptr<test::Child>> programs;
  for (int program = 0; program < kPrograms; ++program) {
    programs.push_back(std::make_unique<test::Child>([&] {
      Apartment apartment(Installation::open(shop));
      apartment.clock().fix(Date::of(2027, 1, 1));
      clsNumeradores counters;
      if (counters.ExistenPeriodoActual()) ::_exit(1);
      char byte = 'a';
      if (::write(asked[1], &byte, 1) != 1 || ::read(go[0], &byte, 1) != 1) ::_exit(1);
      counters.CrearPeriodoActual();
      if (counters.DataMember("Primary")->RecordCount() != 1) ::_exit(1);
      if (clsNumeradores::currentPeriod() != "2027") ::_exit(1);
    }));
  }
  char byte = 0;
  for (int program = 0; program < kPrograms; ++program) {
    ASSERT_EQ(::read(asked[0], &byte, 1), 1);
  }
  ASSERT_EQ(::write(go[1], "gggg", kPrograms), kPrograms);
  for (const auto& program : programs) EXPECT_TRUE(program->wait());
  for (const int end : {asked[0], asked[1], go[0], go[1]}) ::close(end);

  Apartment apartment(Installation::open(shop));
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(1, Statement("SELECT Codigo, Periodo FROM Numeradores"), rows,
                              connection);
  EXPECT_EQ(rows->RecordCount(), 1);
}

// The start of a year, as an application runs it.
TEST_F(PeriodsTest, AYearBeginsOnceHoweverManyProgramsStart) {
  setToday(2027);
  for (int program = 0; program < 3; ++program) {
    if (counters.ExistenPeriodosNulos()) counters.ActualizarPeriodosNulos();
    if (!counters.ExistenPeriodoActual()) counters.CrearPeriodoActual();
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Numeradores"), "2");
  EXPECT_EQ(clsNumeradores::currentPeriod(), "2027");
}

}  // namespace
}  // namespace tavelor
