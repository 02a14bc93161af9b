// SPDX-License-Identifier: MIT
// The agenda.
#include "tavelor/staff/citas.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tavelor/services/clock.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/support/engines.hpp"
#include "tests/support/form.hpp"
#include "tests/support/typist.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;

using test::errorOf;
using test::hostileTexts;
using test::Typist;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kTodos =
    "SELECT Hora, Cliente, Empleado, Box, Tipo, Descripcion, Estado, id FROM Citas";
constexpr const char* kNuevoCodigo = "SELECT MAX(Id) AS Nuevo_Codigo FROM Citas";

/// 5 March 2026, 14:05:09.
class ClsCitasTest : public test::CatalogueTest<ClsCitas> {
 protected:
  ClsCitasTest() { shop.apartment().clock().fix(Date::of({2026, 3, 5, 14, 5, 9})); }

  static ClsCitas::Cita visit() {
    return {.dtFecha = Date::of(2026, 3, 6),
            .dtHora = "9:30:00",
            .sCod = "00012",
            .sCliente = "Ana Ruiz",
            .sDescripcion = "Revisión",
            .sCod_e = "001",
            .sEmpleado = "Marta Gil",
            .sBox = "2",
            .sTipo = "Visita"};
  }
  /// `day` as a literal.
  void add(int id, const std::string& day, const std::string& order = "Null") {
    shop.run("INSERT INTO Citas (Id, Fecha, Doc_f) VALUES (" + std::to_string(id) + ", " + day +
             ", " + order + ")");
  }
  std::string of(int id, const std::string& column) {
    return shop.text("SELECT " + column + " FROM Citas WHERE Id = " + std::to_string(id));
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Citas"); }
  std::vector<std::string> ids() {
    open("todos");
    std::vector<std::string> all;
    for (; !rows().Eof(); rows().MoveNext()) all.push_back(field("id"));
    std::sort(all.begin(), all.end());
    return all;
  }

  ClsCitas& agenda = catalogue;
};

TEST_F(ClsCitasTest, TheSlotsStandInOrder) {
  EXPECT_THAT(
      firstSlots(),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "Insertar", "Insertar_cita_orden", "descargar_registros",
                  "ObtenerCol", "DeleteAll", "Upd_llego", "Upd_Anula", "Upd_Fin", "IniciaRs",
                  "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToHtmlGrid");
  EXPECT_EQ(signature("IniciaRs"), "IniciaRs([inout sSelecSql As String], [id As Variant])");
  EXPECT_EQ(signature("Insertar_cita_orden"),
            "Insertar_cita_orden(dtFecha As Variant, dtHora As Variant, sCod As String, sCliente "
            "As String, sDescripcion As String, sCod_e As String, sEmpleado As String, sBox As "
            "String, sTipo As String, vIdOrd As Variant, [inout objCn As Connection])");
}

// ---- Modes

TEST_F(ClsCitasTest, HoyShowsTheAppointmentsOfToday) {
  add(1, "#03/05/2026#");
  add(2, "#03/06/2026#");
  EXPECT_EQ(open("hoy", "06/03/2026").statement, kTodos + " WHERE (Fecha = #03/05/2026# )");
  EXPECT_EQ(field("id"), "1");
  EXPECT_EQ(rows().RecordCount(), 1);
  EXPECT_THAT(fieldNames(), ElementsAre("Hora", "Cliente", "Empleado", "Box", "Tipo", "Descripcion",
                                        "Estado", "Id"));
}

TEST_F(ClsCitasTest, FechaShowsTheAppointmentsOfADay) {
  add(1, "#03/05/2026#");
  add(2, "#12/31/2026#");
  for (const Variant& day : {Variant("31/12/2026"), Variant(Date::of(2026, 12, 31)),
                             Variant(Date::of({2026, 12, 31, 9, 30, 0}))}) {
    const Opened list = open("fecha", day);
    EXPECT_EQ(list.statement, kTodos + " WHERE (Fecha = #12/31/2026# )");
    EXPECT_EQ(list.word, "fecha");
    EXPECT_EQ(field("id"), "2");
  }
}

TEST_F(ClsCitasTest, FechaRefusesWhatIsNoDay) {
  EXPECT_EQ(errorOf([&] { agenda.IniciaRs("fecha", "pasado mañana"); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { agenda.IniciaRs("fecha", Null()); }), errors::kInvalidUseOfNull);
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(ClsCitasTest, VistaRapidaShowsAllDaysUnderItsOwnWord) {
  add(1, "#03/05/2026#");
  add(2, "#12/31/2026#");
  const Opened quick = open("vista rapida");
  EXPECT_EQ(quick.statement, kTodos);
  EXPECT_EQ(quick.word, "vista rapida");
  EXPECT_EQ(rows().RecordCount(), 2);
}

TEST_F(ClsCitasTest, AnyOtherWordShowsAllDaysAndReadsTodos) {
  for (const char* word : {"", "Hoy", "vista rápida", "registro"}) {
    const Opened all = open(word, "1");
    EXPECT_EQ(all.statement, kTodos);
    EXPECT_EQ(all.word, "todos");
  }
  EXPECT_THAT(agenda.DataMembers(), ElementsAre("Primary")) << "each opening clears the list";
}

// ---- Frame

// The list shows the time first, and the frame writes the code into the first field: 7 days after
// the zero of dates. Rows are added by Insertar, which knows the key's own place.
TEST_F(ClsCitasTest, AddNewWritesTheCodeIntoTheTime) {
  add(6, "#03/05/2026#");
  agenda.IniciaRs();
  agenda.AddNew(true);
  EXPECT_EQ(rows().Field("Hora").Value(), Variant(Date(7)));
  EXPECT_EQ(field("id"), "Empty");
  EXPECT_NE(errorOf([&] { agenda.Update(); }), 0) << "a row without a key";
  rows().Field("id").Value(7);
  agenda.Update();
  EXPECT_EQ(count(), "2");
}

TEST_F(ClsCitasTest, FindRecordLooksForATime) {
  agenda.Insertar(visit());
  agenda.IniciaRs();
  agenda.FindRecord("9:30:00");
  EXPECT_FALSE(rows().Eof());
}

// The key is a number and stands bare; Codigo is the customer's.
TEST_F(ClsCitasTest, CodigoLibreAsksForTheKey) {
  add(9, "#03/05/2026#");
  EXPECT_FALSE(agenda.CodigoLibre(9));
  EXPECT_EQ(statement(), "SELECT Id FROM Citas where Id =9");
  EXPECT_TRUE(agenda.CodigoLibre(10));
  EXPECT_EQ(errorOf([&] { agenda.CodigoLibre(""); }), errors::kSyntax);
}

TEST_F(ClsCitasTest, NuevoCodigoCountsAllAppointmentsInOneSeriesWhateverTheWord) {
  EXPECT_EQ(shown(agenda.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), kNuevoCodigo);
  add(9, "#03/05/2026#");
  add(10, "#03/05/2026#");
  for (const char* word : {"A", "B", ""}) {
    ConnectionPtr connection;
    EXPECT_EQ(shown(agenda.NuevoCodigo(word, connection)), "11");
    EXPECT_EQ(statement(), kNuevoCodigo);
    EXPECT_NE(connection, nullptr);
  }
  std::vector<Variant> none;
  EXPECT_EQ(shown(ClsCitas::component().call(agenda, "NuevoCodigo", none)), "11");
  EXPECT_EQ(signature("NuevoCodigo"),
            "NuevoCodigo([sSerie As String], [inout objCn As Connection]) As Variant");
}

// ---- New appointments

TEST_F(ClsCitasTest, InsertarTakesTheNextKeyAndInserts) {
  add(8, "#03/05/2026#");
  shop.statements();
  agenda.Insertar(visit());
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kNuevoCodigo,
                  "INSERT INTO Citas ( Id, Fecha, Hora, Codigo, Cliente, Descripcion, Codigo_e, "
                  "Empleado, Box, Tipo) values (9, #03/06/2026#, #09:30:00# , '00012', 'Ana Ruiz', "
                  "'Revisión', '001', 'Marta Gil', '2', 'Visita');"));
  EXPECT_EQ(of(9, "Fecha"), "06/03/2026");
  EXPECT_EQ(of(9, "Hora"), "9:30:00");
  EXPECT_EQ(of(9, "Cliente"), "Ana Ruiz");
}

TEST_F(ClsCitasTest, AnAppointmentStartsInNoStateAndWithoutAnOrder) {
  agenda.Insertar(visit());
  EXPECT_EQ(of(1, "Estado"), "Null");
  EXPECT_EQ(of(1, "Doc_f"), "Null");
}

TEST_F(ClsCitasTest, ATimeOfZeroIsTheTimeOfTheCall) {
  for (const Variant& zero : {Variant("0:00:00"), Variant("00:00"), Variant(Date()), Variant()}) {
    ClsCitas::Cita cita = visit();
    cita.dtHora = zero;
    agenda.Insertar(cita);
  }
  for (int id = 1; id <= 4; ++id) EXPECT_EQ(of(id, "Hora"), "14:05:09");
}

TEST_F(ClsCitasTest, ATimeWithADayKeepsItsTimeAlone) {
  ClsCitas::Cita cita = visit();
  cita.dtHora = Date::of({2026, 3, 6, 17, 45, 0});
  agenda.Insertar(cita);
  EXPECT_EQ(of(1, "Hora"), "17:45:00");
}

TEST_F(ClsCitasTest, ADayIsStoredWithoutItsTimeAndFoundByItsDay) {
  ClsCitas::Cita cita = visit();
  cita.dtFecha = Date::of({2026, 3, 5, 14, 5, 9});
  agenda.Insertar(cita);
  EXPECT_EQ(of(1, "Fecha"), "05/03/2026");
  open("hoy");
  EXPECT_EQ(rows().RecordCount(), 1);
}

TEST_F(ClsCitasTest, AnAppointmentMayLieInThePastAndShareABox) {
  ClsCitas::Cita past = visit();
  past.dtFecha = "01/02/1999";
  agenda.Insertar(past);
  agenda.Insertar(past);
  EXPECT_EQ(count(), "2");
  EXPECT_EQ(of(2, "Fecha"), "01/02/1999");
}

TEST_F(ClsCitasTest, ASingleQuoteInAFreeTextBecomesAnAccent) {
  ClsCitas::Cita cita = visit();
  cita.sCliente = "Ana d'Or";
  cita.sDescripcion = "'urgència' d'avui";
  cita.sEmpleado = "O'Hara";
  cita.sBox = "2'";
  cita.sTipo = "l'altre";
  agenda.Insertar(cita);
  EXPECT_EQ(of(1, "Cliente"), "Ana d´Or");
  EXPECT_EQ(of(1, "Descripcion"), "´urgència´ d´avui");
  EXPECT_EQ(of(1, "Empleado"), "O´Hara");
  EXPECT_EQ(of(1, "Box"), "2´");
  EXPECT_EQ(of(1, "Tipo"), "l´altre");
}

// A code with another sign would be another code, so it is not mended.
TEST_F(ClsCitasTest, ASingleQuoteInACodeIsASyntaxError) {
  ClsCitas::Cita customer = visit();
  customer.sCod = "O'1";
  EXPECT_EQ(errorOf([&] { agenda.Insertar(customer); }), errors::kSyntax);
  ClsCitas::Cita employee = visit();
  employee.sCod_e = "O'1";
  EXPECT_EQ(errorOf([&] { agenda.Insertar(employee); }), errors::kSyntax);
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsCitasTest, WhatIsNoDayOrTimeIsRefusedBeforeAnythingIsWritten) {
  for (const Variant& nonsense : {Variant("mañana"), Variant("31/02/2026"), Variant("25:00")}) {
    ClsCitas::Cita day = visit();
    day.dtFecha = nonsense;
    day.vIdOrd = 7;
    EXPECT_EQ(errorOf([&] { agenda.Insertar_cita_orden(day); }), errors::kTypeMismatch);
    ClsCitas::Cita hour = visit();
    hour.dtHora = nonsense;
    EXPECT_EQ(errorOf([&] { agenda.Insertar(hour); }), errors::kTypeMismatch);
  }
  ClsCitas::Cita never = visit();
  never.dtFecha = Null();
  EXPECT_EQ(errorOf([&] { agenda.Insertar(never); }), errors::kInvalidUseOfNull);
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(ClsCitasTest, ATextThatIsTooLongIsRefused) {
  ClsCitas::Cita cita = visit();
  cita.sDescripcion = std::string(256, 'x');
  EXPECT_NE(errorOf([&] { agenda.Insertar(cita); }), 0);
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsCitasTest, InsertarTakesPartInTheCallersTransaction) {
  ConnectionPtr connection;
  const ClsCitas::Cita cita{.dtFecha = "06/03/2026", .sCliente = "Ana Ruiz", .objCn = connection};
  agenda.Insertar(cita);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  agenda.Insertar(cita);
  connection->RollbackTrans();
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsCitasTest, NoTextLeavesItsPlace) {
  for (const std::string& text : hostileTexts()) {
    for (std::string ClsCitas::Cita::*field :
         {&ClsCitas::Cita::sCod, &ClsCitas::Cita::sCliente, &ClsCitas::Cita::sDescripcion,
          &ClsCitas::Cita::sCod_e, &ClsCitas::Cita::sEmpleado, &ClsCitas::Cita::sBox,
          &ClsCitas::Cita::sTipo}) {
      ClsCitas::Cita cita = visit();
      cita.*field = text;
      errorOf([&] { agenda.Insertar(cita); });
    }
    errorOf([&] { agenda.Upd_Fin(text); });
    errorOf([&] { agenda.CodigoLibre(text); });
  }
  add(1000, "#03/05/2026#");
  for (const char* id : {"1000 or 1=1", "1000) or (1=1", "Id"}) {
    EXPECT_NE(errorOf([&] { agenda.DeleteAll(id); }), 0) << id;
    EXPECT_NE(errorOf([&] { agenda.Upd_Anula(id); }), 0) << id;
  }
  EXPECT_EQ(of(1000, "Estado"), "Null");
}

// ---- Appointments of an order

TEST_F(ClsCitasTest, InsertarCitaOrdenClearsTheOrderNumbersAndInserts) {
  ClsCitas::Cita cita = visit();
  cita.vIdOrd = 260001;
  agenda.Insertar_cita_orden(cita);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("DELETE  FROM Citas  WHERE (doc_f = 260001)", kNuevoCodigo,
                  "INSERT INTO Citas ( Id, Fecha, Hora, Codigo, Cliente, Descripcion, Codigo_e, "
                  "Empleado, Box, Tipo, Doc_f) values (1, #03/06/2026#, #09:30:00# , '00012', 'Ana "
                  "Ruiz', 'Revisión', '001', 'Marta Gil', '2', 'Visita', 260001);"));
  EXPECT_EQ(of(1, "Doc_f"), "260001");
}

TEST_F(ClsCitasTest, InsertarCitaOrdenReplacesTheRowsThatTheOrderHas) {
  add(1, "#03/01/2026#", "7");
  add(2, "#03/02/2026#", "8");
  add(3, "#03/03/2026#");
  add(4, "#03/04/2026#", "7");
  ClsCitas::Cita cita = visit();
  cita.vIdOrd = "7";
  agenda.Insertar_cita_orden(cita);
  EXPECT_THAT(ids(), ElementsAre("2", "3", "4")) << "the greatest key was free again";
  EXPECT_EQ(of(4, "Fecha"), "06/03/2026");
  EXPECT_EQ(of(4, "Doc_f"), "7");
}

TEST_F(ClsCitasTest, AnOrderThatIsNoNumberIsRefusedAndNothingIsCleared) {
  add(1, "#03/01/2026#", "7");
  for (const Variant& nonsense : {Variant(), Variant("7 or 1=1"), Variant("siete")}) {
    ClsCitas::Cita cita = visit();
    cita.vIdOrd = nonsense;
    EXPECT_NE(errorOf([&] { agenda.Insertar_cita_orden(cita); }), 0);
  }
  EXPECT_THAT(ids(), ElementsAre("1"));
}

TEST_F(ClsCitasTest, AfterAnErrorBehindTheClearingTheCallersTransactionBringsTheRowsBack) {
  add(1, "#03/01/2026#", "7");
  ClsCitas::Cita cita = visit();
  cita.vIdOrd = 7;
  cita.sDescripcion = std::string(256, 'x');
  cita.objCn = DataSession().OpenConnection(1);
  (*cita.objCn)->BeginTrans();
  EXPECT_NE(errorOf([&] { agenda.Insertar_cita_orden(cita); }), 0);
  (*cita.objCn)->RollbackTrans();
  EXPECT_THAT(ids(), ElementsAre("1"));
}

// ---- The file of the database

class MissingFileTest : public ClsCitasTest {
 protected:
  void takeAway() { fs::rename(file(), aside()); }
  void bringBack() {
    fs::remove_all(file());
    fs::rename(aside(), file());
  }
  fs::path file() { return shop.installation().databaseFile(1); }
  fs::path aside() { return file().string() + ".aside"; }
  void insertBoth() {
    ClsCitas::Cita cita = visit();
    cita.vIdOrd = 7;
    agenda.Insertar(cita);
    agenda.Insertar_cita_orden(cita);
  }
};

TEST_F(MissingFileTest, WithoutTheFileInsertarEndsQuietlyAndWithoutARow) {
  TAVELOR_ONLY_IN_FILES("it moves the database file away");
  add(1, "#03/01/2026#", "7");
  takeAway();
  insertBoth();
  EXPECT_THAT(shop.statements(), IsEmpty()) << "no key is asked for, and no order cleared";
  bringBack();
  EXPECT_THAT(ids(), ElementsAre("1"));
}

TEST_F(MissingFileTest, AFolderInTheFilesPlaceIsNoFile) {
  TAVELOR_ONLY_IN_FILES("it moves the database file away");
  takeAway();
  fs::create_directory(file());
  insertBoth();
  EXPECT_THAT(shop.statements(), IsEmpty());
  bringBack();
  EXPECT_EQ(count(), "0");
}

TEST_F(MissingFileTest, ALinkThatLeadsNowhereIsNoFile) {
  TAVELOR_ONLY_IN_FILES("it moves the database file away");
  takeAway();
  fs::create_symlink("nowhere", file());
  insertBoth();
  EXPECT_THAT(shop.statements(), IsEmpty());
  bringBack();
}

TEST(AgendaOnAServer, NoFileIsLookedFor) {
  Settings settings = test::fastSettings();
  settings.databases.front().servesAsServer = true;
  test::Shop shop(settings);
  ASSERT_EQ(DataSession().DbFilePath(1), "");
  ClsCitas::Cita cita;
  cita.dtFecha = "06/03/2026";
  ClsCitas().Insertar(cita);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Citas"), "1");
}

// ---- Old appointments

TEST_F(ClsCitasTest, ObtenerColGivesTheKeysBetweenTwoDays) {
  add(1, "#03/04/2026#");
  add(2, "#03/05/2026#");
  add(3, "#03/06/2026#");
  add(4, "#03/07/2026#");
  shop.statements();
  EXPECT_THAT(agenda.ObtenerCol("05/03/2026", Date::of({2026, 3, 6, 8, 0, 0})),
              ElementsAre(Variant(2), Variant(3)));
  EXPECT_EQ(statement(),
            "SELECT Id From Citas WHERE (((Fecha) Between #03/05/2026# And #03/06/2026#)) ;");
  EXPECT_THAT(agenda.ObtenerCol("01/01/2025", "02/01/2025"), IsEmpty());
}

TEST_F(ClsCitasTest, ObtenerColTakesItsDaysInAnyOrder) {
  add(1, "#03/05/2026#");
  EXPECT_THAT(agenda.ObtenerCol("06/03/2026", "04/03/2026"), ElementsAre(Variant(1)));
  EXPECT_EQ(shop.statements().back(),
            "SELECT Id From Citas WHERE (((Fecha) Between #03/06/2026# And #03/04/2026#)) ;");
}

TEST_F(ClsCitasTest, DeleteAllTakesOneAppointment) {
  add(1, "#03/05/2026#");
  add(2, "#03/05/2026#");
  shop.statements();
  agenda.DeleteAll(1);
  EXPECT_EQ(statement(), "DELETE  FROM Citas  WHERE (Id = 1)");
  EXPECT_THAT(ids(), ElementsAre("2"));
}

class ClearingTest : public ClsCitasTest {
 protected:
  void answer(const std::string& line) {
    const auto typist = std::make_shared<Typist>(line);
    shop.apartment().setPromptHandler(typist);
    shop.statements();
    error = errorOf([&] { agenda.descargar_registros(); });
    ran = shop.statements();
    EXPECT_THAT(typist->asked, ElementsAre("Introduzca la fecha tope para descargar datos. "
                                           "Formato: dd/mm/yy "));
  }
  std::int32_t error = 0;
  std::vector<std::string> ran;
};

TEST_F(ClearingTest, DescargarRegistrosDeletesOneByOneUpToTheDayThatIsTyped) {
  add(1, "#12/31/2024#");
  add(2, "#12/31/2025#");
  add(3, "#01/01/2026#");
  answer("31/12/25");
  EXPECT_EQ(error, 0);
  EXPECT_THAT(
      ran,
      ElementsAre("SELECT Id From Citas WHERE (((Fecha) Between #01/01/2000# And #12/31/2025#)) ;",
                  "DELETE  FROM Citas  WHERE (Id = 1)", "DELETE  FROM Citas  WHERE (Id = 2)"));
  EXPECT_THAT(ids(), ElementsAre("3"));
}

TEST_F(ClearingTest, AnAnswerThatIsNoDateRaisesTheConversionErrorAndDeletesNothing) {
  add(1, "#12/31/2024#");
  for (const char* nonsense : {"ayer", "", "31/31/25", "'; DELETE FROM Citas", "31/02/2025"}) {
    answer(nonsense);
    EXPECT_EQ(error, errors::kTypeMismatch) << nonsense;
    EXPECT_THAT(ran, IsEmpty());
  }
}

TEST_F(ClearingTest, WithoutSomebodyWhoAnswersNothingIsDeleted) {
  add(1, "#12/31/2024#");
  EXPECT_EQ(errorOf([&] { agenda.descargar_registros(); }), errors::kTypeMismatch);
  EXPECT_EQ(count(), "1");
}

// The lower bound is fixed, and appointments without a day are between no two.
TEST_F(ClearingTest, AppointmentsBefore2000AndWithoutADayStay) {
  add(1, "#12/31/1999#");
  add(2, "#01/01/2000#");
  add(3, "Null");
  answer("31/12/2026");
  EXPECT_THAT(ids(), ElementsAre("1", "3"));
}

// Between takes its bounds in any order: a day of the last century reads as one behind 2000 would.
TEST_F(ClearingTest, ADayBefore2000TurnsTheBoundsRound) {
  add(1, "#06/30/1998#");
  add(2, "#06/30/1999#");
  add(3, "#01/01/2000#");
  add(4, "#01/02/2000#");
  answer("01/01/99");
  EXPECT_EQ(ran.front(),
            "SELECT Id From Citas WHERE (((Fecha) Between #01/01/2000# And #01/01/1999#)) ;");
  EXPECT_THAT(ids(), ElementsAre("1", "4"));
}

// ---- Marks

TEST_F(ClsCitasTest, TheMarksAreSetInAnyOrder) {
  add(9, "#03/05/2026#");
  add(10, "#03/05/2026#");
  shop.statements();
  agenda.Upd_Fin(9);
  EXPECT_EQ(statement(), "UPDATE Citas SET Estado = 'Fin'  WHERE (Id = 9)");
  EXPECT_EQ(of(9, "Estado"), "Fin");
  agenda.Upd_Anula(9);
  EXPECT_EQ(statement(), "UPDATE Citas SET Estado = 'Anula'  WHERE (Id = 9)");
  EXPECT_EQ(of(9, "Estado"), "Anula");
  agenda.Upd_llego(9);
  EXPECT_EQ(statement(), "UPDATE Citas SET Estado = 'Presente'  WHERE (Id = 9)");
  EXPECT_EQ(of(9, "Estado"), "Presente");
  EXPECT_EQ(of(10, "Estado"), "Null");
}

TEST_F(ClsCitasTest, AMarkOfAnAppointmentThatIsNotThereChangesNothingSilently) {
  agenda.Upd_Fin(9);
  EXPECT_EQ(count(), "0");
}

// ---- Pages

// It is the page of all classes: what the agenda's had beyond that is not known any more.
TEST_F(ClsCitasTest, ThePageShowsTheDay) {
  agenda.Insertar(visit());
  open("fecha", "06/03/2026");
  const test::Grid grid{{{true, "Hora", 1}, {true, "Cliente", 3}}};
  agenda.ToHtmlGrid(grid, true, "fecha");
  std::ifstream stream(agenda.GetHtmlFile(), std::ios::binary);
  const std::string page{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_THAT(page, HasSubstr("Listado de Citas"));
  EXPECT_THAT(page, HasSubstr("Ana Ruiz"));
  EXPECT_THAT(page, HasSubstr("1 registros. - "));
}

}  // namespace
}  // namespace tavelor
