// SPDX-License-Identifier: MIT
// clsNumeradores: the years that counters are kept in, and the format of their codes.
#include <array>
#include <utility>

#include "tavelor/frame/reading.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/session_global.hpp"

namespace tavelor {

namespace {

// Fields of a new period that take the seeds of series a, b and c in turn: orders, supplier
// invoices, customer orders, delivery notes, invoices, work orders.
constexpr std::int32_t kFirstSeeded = 7;
constexpr std::int32_t kLastSeeded = 24;

std::string periodKey() {
  return Apartment::current().version().sessionRoot() + "Periodo\\";
}

}  // namespace

std::string clsNumeradores::currentPeriod() {
  return Apartment::current().sessionGlobal().GetValue(periodKey());
}

void clsNumeradores::setCurrentPeriod(std::string_view year) {
  Apartment::current().sessionGlobal().SetValue(periodKey(), year);
}

// ---------------------------------------------------------------------------------------------
// A period's row

Variant clsNumeradores::periodColumn(Statement::Constant column, ObjCn objCn,
                                     std::string& sPeriodo) const {
  fillPeriod(sPeriodo);
  Statement statement("SELECT ");
  statement << column << " FROM Numeradores WHERE ((Periodo)='" << spliced(sPeriodo) << "');";
  const RecordsetPtr rows = read(statement, *objCn);
  return rows->RecordCount() == 0 ? Variant() : rows->Field(column).Value();
}

Variant clsNumeradores::GetCodigo(ObjCn objCn, InOut<std::string> sPeriodo) const {
  Variant code = periodColumn("Codigo", *objCn, *sPeriodo);
  return code.isNull() ? Variant("001") : code;
}

std::string clsNumeradores::GetLetra(ObjCn objCn, InOut<std::string> sPeriodo) const {
  return joined(periodColumn("Letra", *objCn, *sPeriodo));
}

bool clsNumeradores::GetAño(ObjCn objCn, InOut<std::string> sPeriodo) const {
  return asFlag(periodColumn("Año", *objCn, *sPeriodo));
}

bool clsNumeradores::GetMes(ObjCn objCn, InOut<std::string> sPeriodo) const {
  return asFlag(periodColumn("Mes", *objCn, *sPeriodo));
}

bool clsNumeradores::GetContador(ObjCn objCn, InOut<std::string> sPeriodo) const {
  return asFlag(periodColumn("Contador", *objCn, *sPeriodo));
}

// ---------------------------------------------------------------------------------------------
// The years

bool clsNumeradores::ExistenPeriodosNulos(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM "
                          "Numeradores"
                          " WHERE (((Periodo) Is Null));"),
                *objCn);
}

bool clsNumeradores::ExistenPeriodoActual(ObjCn objCn) const {
  const std::string year = today("YYYY");
  const bool isThere = anyRow(withId("SELECT Codigo FROM "
                                     "Numeradores"
                                     " WHERE (((Periodo)= '{id}'));",
                                     year),
                              *objCn);
  missingYear_ = isThere ? std::string() : year;
  return isThere;
}

// 2004 is the first year that had periods: rows from before it are taken for that year's, whatever
// the date.
void clsNumeradores::ActualizarPeriodosNulos(ObjCn cnnActive) const {
  write(Statement("UPDATE  "
                  "Numeradores"
                  " SET Periodo = '2004'"
                  " WHERE (((Periodo) Is Null));"),
        *cnnActive);
  setCurrentPeriod(today("YYYY"));
}

// Who asked and was told that there is no row wants one, and not a second: another program may have
// begun the year since then. Who did not ask gets a row of its own.
void clsNumeradores::CrearPeriodoActual() {
  const std::string year = today("YYYY");
  const bool wasMissing = std::exchange(missingYear_, {}) == year;
  IniciaRs();
  const ConnectionPtr connection = GetConnection();
  connection->BeginTrans();
  try {
    connection->HoldNumbersOf(info().table);
    if (wasMissing && ExistenPeriodoActual(connection)) {
      Requery();
    } else {
      addPeriod(year);
    }
    connection->CommitTrans();
  } catch (...) {
    connection->RollbackTrans();
    throw;
  }
  setCurrentPeriod(year);
}

void clsNumeradores::addPeriod(const std::string& year) {
  const std::string seed = today("yy") + "0000";
  const std::array<double, 3> seeds = {asNumber(Variant(seed)), asNumber(Variant(seed + "0")),
                                       asNumber(Variant(seed + "00"))};
  AddNew(true);

  Recordset& rows = primary();
  rows.Field(1).Value(year);
  rows.Field(2).Value("Numeradores " + year);
  rows.Field("Digitos_Articulos").Value(GetLong("Artículos"));
  rows.Field("Digitos_Clientes").Value(GetLong("Clientes"));
  rows.Field("Digitos_Proveedores").Value(GetLong("Proveedores"));
  for (std::int32_t field = kFirstSeeded; field <= kLastSeeded; ++field) {
    rows.Field(field).Value(seeds[static_cast<std::size_t>(field - kFirstSeeded) % seeds.size()]);
  }
  rows.Field("Factura_r").Value(asNumber(Variant(year + "00000")));
  // Work orders once more, by name: they have their seeds wherever the places above end.
  for (const char* family : {"Presupuesto_", "Orden_"}) {
    rows.Field(std::string(family) + "a").Value(seeds[0]);
    rows.Field(std::string(family) + "b").Value(seeds[1]);
    rows.Field(std::string(family) + "c").Value(seeds[2]);
  }
  Update();
}

}  // namespace tavelor
