// SPDX-License-Identifier: MIT
// ClsCitas, the agenda.
#include "tavelor/staff/citas.hpp"

#include <array>
#include <utility>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Citas: the customer Codigo comes on the day Fecha at Hora to the employee Codigo_e, in the
// state Estado: nothing, "Presente", "Anula" or "Fin". Doc_f is the order behind it.

namespace {

constexpr std::string_view kTodos =
    "SELECT Hora, Cliente, Empleado, Box, Tipo, Descripcion, Estado, id FROM Citas";

constexpr std::array kModes = {
    // The day of both is a literal of the database, so modeStatement puts it there.
    Mode{"hoy", kTodos},
    Mode{"fecha", kTodos},
    // All days, as in any other word, with an order of its own.
    Mode{"vista rapida", kTodos},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Citas",
    .table = "Citas",
    .codeColumn = "Id",
    .modes = kModes,
    .freeCode = "SELECT Id FROM Citas where Id ={id}",
    .clearsDataMembers = true,
};

const Locale& locale() {
  return Apartment::current().locale();
}

std::string dayLiteral(const Variant& day) {
  return DataSession().DateLiteral(kInfo.selector, day.toDate(locale()).dayOnly());
}

// "0:00:00" is what a form hands on whose user has typed no time. So there is no appointment at
// midnight.
std::string timeLiteral(const Variant& hour) {
  const Date time = hour.toDate(locale());
  const bool isNow = time == Date();
  return DataSession().TimeLiteral(kInfo.selector,
                                   isNow ? Apartment::current().clock().now() : time);
}

// For statements that bring the marks around a date with them.
std::string betweenMarks(const Variant& day) {
  const std::string literal = dayLiteral(day);
  return literal.substr(1, literal.size() - 2);
}

// A file that was moved away, or lies on a computer that is out of reach. What serves as a server
// has no file to look for.
bool isDatabaseThere() {
  const DataSession session;
  return !session.IsDbFile(kInfo.selector) ||
         PathsService().FileExists(session.DbFilePath(kInfo.selector));
}

std::string withoutQuotes(std::string_view text) {
  std::string mended;
  for (const char c : text) {
    if (c == '\'') {
      mended += "´";
    } else {
      mended += c;
    }
  }
  return mended;
}

}  // namespace

ClsCitas::ClsCitas() : OpensByWord(kInfo) {}

Statement ClsCitas::modeStatement(std::string& word, const Variant& id) const {
  Statement statement = OpensByWord::modeStatement(word, id);
  if (word == "hoy" || word == "fecha") {
    const Variant day = word == "hoy" ? Variant(Apartment::current().clock().today()) : id;
    statement << " WHERE (Fecha = " << spliced(dayLiteral(day)) << " )";
  }
  return statement;
}

Variant ClsCitas::NuevoCodigo(std::string_view /*sSerie*/, ObjCn objCn) const {
  return NuevoCodigo(*objCn);
}

// ---------------------------------------------------------------------------------------------
// New appointments

void ClsCitas::insert(const Cita& cita, bool ofOrder) const {
  mustBeHome();
  // Screens of the agenda run beside the till's, and go on without the database of the shop.
  if (!isDatabaseThere()) return;

  const std::string day = dayLiteral(cita.dtFecha);
  const std::string hour = timeLiteral(cita.dtHora);
  if (ofOrder) write(withId("DELETE  FROM Citas  WHERE (doc_f = {id})", cita.vIdOrd), *cita.objCn);
  Statement statement("INSERT INTO Citas (");
  statement << " Id, Fecha, Hora, Codigo, Cliente, Descripcion, Codigo_e, Empleado, Box, Tipo"
            << (ofOrder ? Statement::Constant(", Doc_f)") : ")") << " values ("
            << spliced(joined(NuevoCodigo("A", *cita.objCn))) << ", " << spliced(day) << ", "
            << spliced(hour) << " , '" << spliced(cita.sCod) << "', '"
            << spliced(withoutQuotes(cita.sCliente)) << "', '"
            << spliced(withoutQuotes(cita.sDescripcion)) << "', '" << spliced(cita.sCod_e) << "', '"
            << spliced(withoutQuotes(cita.sEmpleado)) << "', '" << spliced(withoutQuotes(cita.sBox))
            << "', '" << spliced(withoutQuotes(cita.sTipo)) << "'";
  if (ofOrder) statement << ", " << spliced(joined(cita.vIdOrd));
  statement << ");";
  write(statement, *cita.objCn);
}

void ClsCitas::Insertar(const Cita& cita) const {
  insert(cita, false);
}

void ClsCitas::Insertar_cita_orden(const Cita& cita) const {
  insert(cita, true);
}

// ---------------------------------------------------------------------------------------------
// Old appointments

void ClsCitas::descargar_registros() const {
  mustBeHome();
  const Variant answer = Apartment::current().promptGlobal().AskInput(
      "Introduzca la fecha tope para descargar datos. Formato: dd/mm/yy ");
  const Date last = answer.toDate(locale());
  ConnectionPtr connection;
  for (const Variant& id : ObtenerCol(Date::of(2000, 1, 1), last, connection)) {
    DeleteAll(id, connection);
  }
}

std::vector<Variant> ClsCitas::ObtenerCol(const Variant& dtFchIni, const Variant& dtFchFin,
                                          ObjCn objCn) const {
  Statement statement("SELECT Id From Citas WHERE (((Fecha) Between #");
  statement << spliced(betweenMarks(dtFchIni)) << "# And #" << spliced(betweenMarks(dtFchFin))
            << "#)) ;";
  return columnValues(*read(statement, *objCn), "Id");
}

// One row, unlike the members of that name elsewhere, which clear what hangs from a master.
void ClsCitas::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Citas  WHERE (Id = {id})", vId), *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Marks

void ClsCitas::mark(Statement::Constant state, const Variant& vId, ObjCn cnnActive) const {
  Statement statement("UPDATE Citas SET Estado = '");
  statement << state << withId("'  WHERE (Id = {id})", vId);
  write(statement, *cnnActive);
}

void ClsCitas::Upd_llego(const Variant& vId, ObjCn cnnActive) const {
  mark("Presente", vId, *cnnActive);
}

void ClsCitas::Upd_Anula(const Variant& vId, ObjCn cnnActive) const {
  mark("Anula", vId, *cnnActive);
}

void ClsCitas::Upd_Fin(const Variant& vId, ObjCn cnnActive) const {
  mark("Fin", vId, *cnnActive);
}

namespace {

using Cita = ClsCitas::Cita;

std::vector<AggregateParameter<Cita>> appointmentParameters(
    const std::vector<AggregateParameter<Cita>>& more = {}) {
  std::vector<AggregateParameter<Cita>> all = {
      parameter("dtFecha", &Cita::dtFecha),
      parameter("dtHora", &Cita::dtHora),
      parameter("sCod", &Cita::sCod),
      parameter("sCliente", &Cita::sCliente),
      parameter("sDescripcion", &Cita::sDescripcion),
      parameter("sCod_e", &Cita::sCod_e),
      parameter("sEmpleado", &Cita::sEmpleado),
      parameter("sBox", &Cita::sBox),
      parameter("sTipo", &Cita::sTipo),
      parameter("[objCn]", &Cita::objCn),
  };
  return withParameters(std::move(all), more);
}

}  // namespace

const Component& ClsCitas::component() {
  using C = ClsCitas;
  constexpr auto kNuevoCodigo =
      static_cast<Variant (C::*)(std::string_view, ObjCn) const>(&C::NuevoCodigo);
  static const Component table(
      "ClsCitas", "{5D92B1E7-46A3-4C8F-9E10-B7D4A2C6F903}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("Insertar", &C::Insertar, appointmentParameters()),
          member("Insertar_cita_orden", &C::Insertar_cita_orden,
                 appointmentParameters({parameter("vIdOrd", &Cita::vIdOrd)})),
          member("descargar_registros", &C::descargar_registros),
          member("ObtenerCol", &C::ObtenerCol, "dtFchIni, dtFchFin, [objCn]"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("Upd_llego", &C::Upd_llego, "vId, [cnnActive]"),
          member("Upd_Anula", &C::Upd_Anula, "vId, [cnnActive]"),
          member("Upd_Fin", &C::Upd_Fin, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          member("NuevoCodigo", kNuevoCodigo, "[sSerie], [objCn]"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
