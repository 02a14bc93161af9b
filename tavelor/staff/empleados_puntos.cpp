// SPDX-License-Identifier: MIT
// ClsEmpleadosPuntos, what employees earn by work phase.
#include "tavelor/staff/empleados_puntos.hpp"

#include <array>
#include <cmath>

#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Empleados_Puntos: Valor points of the employee Empleado for the phase Fase, which is done
// in the section Seccion. A row may lack its phase.

namespace {

constexpr std::string_view kTodos =
    "SELECT ID, Fase, Seccion as Sección, Valor, Max AS Máximo, Empleado as Código "
    " FROM Empleados_Puntos";
constexpr std::string_view kDeEmpleado = " WHERE (Empleado =  '{id}')";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, kDeEmpleado},
    Mode{"seleccionar",
         "SELECT Empleados_Puntos.Fase AS Código, Fases.Descripcion AS Descripcion"
         " FROM Empleados_Puntos"
         " INNER JOIN Fases ON Empleados_Puntos.Fase = Fases.Codigo",
         kDeEmpleado},
    // No condition that nothing meets: where an employee has the code 0, its rows are shown.
    Mode{"ninguno", kTodos, " Where (Empleado = '0')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Empleados_Puntos",
    .table = "Empleados_Puntos",
    .codeColumn = "Id",
    .modes = kModes,
    .update = UpdateForm::kAllRows,
    .remove = DeleteForm::kMarks,
    .clearsDataMembers = true,
};

/// For a Null section or phase in the outputs of ObtenerFase.
constexpr std::string_view kNone = "0";

bool isBlank(std::string_view section) {
  return text::trim(section).empty();
}

}  // namespace

ClsEmpleadosPuntos::ClsEmpleadosPuntos() : OpensOnConnection(kInfo) {}

// ---------------------------------------------------------------------------------------------
// The table

void ClsEmpleadosPuntos::Insertar(std::string_view sEmpleado, std::string_view sFase, double dValor,
                                  ObjCn objCn) const {
  // Behind the clearing the database would refuse it too late.
  if (!std::isfinite(dValor)) raise(errors::kOverflow, info().word, "The value is not finite");
  Statement clearing(
      "DELETE Empleados_Puntos.* From Empleados_Puntos"
      " WHERE (((Empleados_Puntos.Empleado)='");
  clearing << spliced(sEmpleado) << "') AND ((Empleados_Puntos.Fase)='" << spliced(sFase) << "'));";
  write(clearing, *objCn);

  const Variant section =
      lookUp(withId("SELECT Seccion FROM Fases WHERE Codigo = '{id}'", sFase), "Seccion", *objCn);
  Statement statement(
      "INSERT INTO Empleados_Puntos ("
      " Id, Empleado, Seccion, Fase, Valor, [Max] )"
      " Values ( ");
  statement << spliced(joined(NuevoCodigo(*objCn))) << ", '" << spliced(sEmpleado) << "', '"
            << spliced(joined(section)) << "', '" << spliced(sFase) << "', '"
            << spliced(joined(dValor)) << "', 1 )";
  write(statement, *objCn);
}

// The blank behind the value is read over with the number.
void ClsEmpleadosPuntos::ActualizarValor(std::string_view sEmpleado, double dValor,
                                         ObjCn objCn) const {
  Statement statement("UPDATE Empleados_Puntos SET Empleados_Puntos.Valor = '");
  statement << spliced(joined(dValor)) << " ' WHERE (((Empleados_Puntos.Empleado)='"
            << spliced(sEmpleado) << "') AND (Not (Empleados_Puntos.Fase) Is Null))";
  write(statement, *objCn);
}

std::vector<Variant> ClsEmpleadosPuntos::ObtenerFasesEmpleado(const Variant& vId,
                                                              ObjCn objCn) const {
  return columnValues(*read(withId("SELECT id as Codigo  FROM Empleados_Puntos"
                                   " WHERE (((Empleados_Puntos.Empleado)='{id}')"
                                   " AND (Not (Empleados_Puntos.Fase) Is Null)) Order by id",
                                   vId),
                            *objCn),
                      "Codigo");
}

void ClsEmpleadosPuntos::ObtenerFase(const Variant& vId, InOut<std::string> sSec,
                                     InOut<std::string> sFase, InOut<double> dVal,
                                     InOut<double> dMax, ObjCn objCn) const {
  const RecordsetPtr rows = read(withId("SELECT Seccion, Fase, Valor, Max FROM Empleados_Puntos"
                                        " WHERE (((Empleados_Puntos.Id)= {id}));",
                                        vId),
                                 *objCn);
  if (rows->RecordCount() == 0) return;
  takeColumnOr(*rows, "Seccion", kNone, *sSec);
  takeColumnOr(*rows, "Fase", kNone, *sFase);
  takeColumn(*rows, "Valor", *dVal);
  takeColumn(*rows, "Max", *dMax);
}

double ClsEmpleadosPuntos::GetValorInterno(const Variant& vId, const Variant& vIdSec,
                                           ObjCn objCn) const {
  Statement statement =
      withId("SELECT Valor FROM Empleados_Puntos WHERE ((Empleado = '{id}') AND (Seccion = '", vId);
  statement << spliced(joined(vIdSec)) << "'))";
  return asNumber(lookUp(statement, "Valor", *objCn));
}

// Its name speaks of phases, but callers hand it sections and count on that.
double ClsEmpleadosPuntos::GetValorCantFases(const Variant& vId, const Variant& vIdfase,
                                             ObjCn objCn) const {
  return GetValorInterno(vId, vIdfase, *objCn);
}

void ClsEmpleadosPuntos::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Empleados_Puntos WHERE (Empleado = '{id}')", vId), *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// The grid of one employee

// True for what is there: the answer of the warehouses' ComprobarAlmcen turned round. Forms of both
// classes ask the way that theirs answers.
bool ClsEmpleadosPuntos::ComprobarSeccion(const Variant& vIdReg) const {
  const RecordsetPtr rows = primary().Clone();
  const std::string wanted = joined(vIdReg);
  if (isBlank(wanted)) return false;
  for (; !rows->Eof(); rows->MoveNext()) {
    if (joined(rows->Field("Sección").Value()) == wanted) return true;
  }
  return false;
}

void ClsEmpleadosPuntos::UpdateId(const Variant& vId) {
  if (!ExistenRegistros()) return;
  numberAllRows(primary(), NuevoCodigo(GetConnection()), vId);
  MoveFirst();
}

void ClsEmpleadosPuntos::UpdateadAffectCurrent(const Variant& vId) {
  keyCurrentRow(primary(), vId);
}

void ClsEmpleadosPuntos::CancelBatch() {
  primary().CancelBatch();
}

const Component& ClsEmpleadosPuntos::component() {
  using C = ClsEmpleadosPuntos;
  static const Component table(
      "ClsEmpleadosPuntos", "{5D92B1E7-46A3-4C8F-9E10-B7D4A2C6F902}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("Insertar", &C::Insertar, "sEmpleado, sFase, dValor, [objCn]"),
              member("ActualizarValor", &C::ActualizarValor, "sEmpleado, dValor, [objCn]"),
              member("ObtenerFasesEmpleado", &C::ObtenerFasesEmpleado, "vId, [objCn]"),
              member("ObtenerFase", &C::ObtenerFase,
                     "vId, out sSec, out sFase, out dVal, out dMax, [objCn]"),
              member("ComprobarSeccion", &C::ComprobarSeccion, "vIdReg"),
              member("GetValorInterno", &C::GetValorInterno, "vId, vIdSec, [objCn]"),
              member("GetValorCantFases", &C::GetValorCantFases, "vId, vIdfase, [objCn]"),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
          },
          {
              member("UpdateId", &C::UpdateId, "vId"),
              member("UpdateadAffectCurrent", &C::UpdateadAffectCurrent, "vId"),
              member("CancelBatch", &C::CancelBatch),
          }));
  return table;
}

}  // namespace tavelor
