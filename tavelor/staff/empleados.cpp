// SPDX-License-Identifier: MIT
// ClsEmpleados, the staff.
#include "tavelor/staff/empleados.hpp"

#include <array>

#include "tavelor/companions/active_row.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/paths_service.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/staff/pass_text.hpp"

namespace tavelor {

// Table Empleados: an employee, in the work phase Codigo_Fase where none is given.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo as Código, Nombre, Razon_Social as Empresa, NIF,"
    " Direccion as Dirección, Codigo_Postal, Poblacion as Población, Provincia,"
    " Telefono as Teléfono, Telefono_2 as Teléfono_2, Movil as Móvil, Fax,  E_Mail, Http,"
    " Activo, IRPF, Comision as Comisión, Impuesto, Categoria, Documento, Notas,"
    " Codigo_Fase, NSS, Fecha_Nacimiento, Fecha_Alta, Fecha_Baja, IBAN, Colegiado"
    " FROM Empleados";
constexpr std::string_view kSeleccion =
    "SELECT Codigo AS Código, Nombre AS Descripción FROM Empleados";
constexpr std::string_view kDelPersonalActivo = " WHERE ( activo <> 0 )";

constexpr std::array kModes = {
    Mode{"seleccion", kSeleccion, kDelPersonalActivo},
    // The sum is Null as soon as one of its texts is, and the row stands without a description.
    Mode{"seleccionmixta",
         "SELECT Codigo AS Código,[Codigo] + ' ' + [Nombre] + ' ' + [Razon_Social] AS Descripción"
         " FROM Empleados",
         kDelPersonalActivo},
    Mode{"categoria", "SELECT Categoria AS Código, Nombre AS Descripción FROM Empleados",
         kDelPersonalActivo},
    // An older word for the first one, which keeps an order of its own.
    Mode{"Selecc", kSeleccion, kDelPersonalActivo},
    Mode{kAnyOtherWord, kTodos},
};
/// What the lists for choosing show.
constexpr std::int32_t kFieldsOfChoice = 2;

constexpr ClassInfo kInfo = {
    .word = "Empleados",
    .table = "Empleados",
    .modes = kModes,
    .find = FindForm::kPrefix,
};

/// No phase, as a new employee gets it and as the one of nobody reads.
constexpr std::string_view kNoPhase = "0";

std::string textOf(const Variant& column) {
  return column.toText(Apartment::current().locale());
}

}  // namespace

// The zeros of a missing code go into the postcode's place, not into its own. A text like that has
// been handed out and is compared with; it must not be mended here.
std::string passText(const Variant& postcode, const Variant& code) {
  constexpr std::string_view kFiller = "00000";
  std::string first(kFiller);
  std::string second;
  if (!postcode.isNull()) first = textOf(postcode);
  if (!code.isNull()) {
    second = textOf(code);
  } else {
    first = kFiller;
  }
  return first + second;
}

ClsEmpleados::ClsEmpleados() : OpensOnConnection(kInfo) {}

// ---------------------------------------------------------------------------------------------
// The current row, lists and paths

std::vector<Variant> ClsEmpleados::ObtenerCol(ObjCn objCn) const {
  return columnValues(*read(Statement("SELECT Codigo FROM Empleados"), *objCn), "Codigo");
}

void ClsEmpleados::ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sNombre,
                                         InOut<std::string> sEmpresa, InOut<std::string> sDireccion,
                                         InOut<std::string> sCp, InOut<std::string> sPoblacion,
                                         InOut<std::string> sProvincia,
                                         InOut<std::string> sTelefono) const {
  takeActiveRow(primary(), {*vId, *sNombre, *sEmpresa, *sDireccion, *sCp, *sPoblacion, *sProvincia,
                            *sTelefono});
}

std::string ClsEmpleados::GetTxtFile() const {
  mustBeHome();
  return PathsService().TxtFolder() + "Empleados.txt";
}

std::string ClsEmpleados::GetTxtFile_email() const {
  mustBeHome();
  return PathsService().EmailTxtFolder() + "Empleados_e.txt";
}

void ClsEmpleados::GetDocPath(InOut<std::string> sDocPath) const {
  mustBeHome();
  sDocPath = DataSession().DocPath(*sDocPath);
}

std::string ClsEmpleados::sQMailDoc() const {
  return joined(primary().Field("E_Mail").Value());
}

// ---------------------------------------------------------------------------------------------
// One column by code

std::string ClsEmpleados::NombreEmpleado(std::string_view sEmple, ObjCn objCn) const {
  return joined(lookUp(withId("SELECT Nombre FROM Empleados WHERE ((Codigo = '{id}'))", sEmple),
                       "Nombre", *objCn));
}

std::string ClsEmpleados::CategoriaEmpleado(std::string_view sEmple, ObjCn objCn) const {
  return joined(lookUp(withId("SELECT Categoria FROM Empleados WHERE ((Codigo = '{id}'))", sEmple),
                       "Categoria", *objCn));
}

double ClsEmpleados::Get_Comision(const Variant& vId, ObjCn objCn) const {
  return asNumber(lookUp(withId("SELECT Comision as v FROM Empleados  where codigo = '{id}'", vId),
                         "v", *objCn));
}

std::string ClsEmpleados::Get_fase_predeterminada(const Variant& vId, ObjCn objCn) const {
  const Variant phase = lookUp(
      withId("SELECT codigo_fase as v FROM Empleados  where codigo = '{id}'", vId), "v", *objCn);
  return phase.isEmpty() ? std::string(kNoPhase) : joined(phase);
}

std::string ClsEmpleados::Get_Auto_pas(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT codigo_postal as cp, codigo FROM Empleados  where codigo = '{id}'", vId),
           *objCn);
  if (rows->RecordCount() == 0) return {};
  return passText(rows->Field("cp").Value(), rows->Field("codigo").Value());
}

std::string ClsEmpleados::Get_Nombre(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows = read(
      withId("SELECT Nombre, Razon_Social FROM Empleados  where codigo = '{id}'", vId), *objCn);
  std::string name;
  if (rows->RecordCount() > 0) {
    for (const std::string_view column : {"Nombre", "Razon_Social"}) {
      const Variant part = rows->Field(column).Value();
      if (!part.isNull()) name += (name.empty() ? "" : " ") + joined(part);
    }
  }
  return name.empty() ? "no" : name;
}

std::string ClsEmpleados::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows = read(withId("SELECT [Nombre] + ' ' +  [Razon_Social] as Descripcion"
                                        " FROM Empleados WHERE Codigo = '{id}'",
                                        vId),
                                 *objCn);
  const bool isThere = rows->RecordCount() > 0;
  const Variant found = isThere ? rows->Field("Descripcion").Value() : Variant();
  if (vId.isNull() || found.isNull()) return "No";
  return isThere ? joined(found) : "Empleado";
}

// ---------------------------------------------------------------------------------------------
// The walk

std::string ClsEmpleados::nextOf(std::string_view sEmple, const Statement& among,
                                 ConnectionPtr& objCn) const {
  const auto firstOf = [&](const Statement& behind) {
    Statement statement("SELECT Codigo FROM Empleados WHERE (");
    statement << behind << among << "( activo <> 0 )) Order by Codigo";
    return lookUp(statement, "Codigo", objCn);
  };
  Variant next = firstOf(withId("(Codigo > '{id}') and ", sEmple));
  if (next.isEmpty()) next = firstOf(Statement());
  return next.isEmpty() ? std::string(sEmple) : joined(next);
}

// An inequality on purpose: the walk goes round that category. A Null one is not unequal to any, so
// that employees without a category are never met; shifts are planned on that.
std::string ClsEmpleados::SiguienteEmpleadoCatego(std::string_view sEmple, std::string_view scatego,
                                                  ObjCn objCn) const {
  return nextOf(sEmple, withId("(Categoria <> '{id}') and ", scatego), *objCn);
}

std::string ClsEmpleados::SiguienteEmpleado(std::string_view sEmple, ObjCn objCn) const {
  return nextOf(sEmple, Statement(), *objCn);
}

// ---------------------------------------------------------------------------------------------
// New rows

void ClsEmpleados::setDefaults(bool bDefVal) {
  Recordset& rows = primary();
  if (bDefVal && rows.Fields().Count() > kFieldsOfChoice) rows.Field("Codigo_Fase").Value(kNoPhase);
}

const Component& ClsEmpleados::component() {
  using C = ClsEmpleados;
  static const Component table(
      "ClsEmpleados", "{5D92B1E7-46A3-4C8F-9E10-B7D4A2C6F901}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("ObtenerCol", &C::ObtenerCol, "[objCn]"),
          member("ObtenerRegistroActivo", &C::ObtenerRegistroActivo, kActiveRowParameters),
          member("GetTxtFile", &C::GetTxtFile),
          member("GetTxtFile_email", &C::GetTxtFile_email),
          property("sQMailDoc", &C::sQMailDoc),
          member("NombreEmpleado", &C::NombreEmpleado, "sEmple, [objCn]"),
          member("CategoriaEmpleado", &C::CategoriaEmpleado, "sEmple, [objCn]"),
          member("SiguienteEmpleadoCatego", &C::SiguienteEmpleadoCatego,
                 "sEmple, scatego, [objCn]"),
          member("SiguienteEmpleado", &C::SiguienteEmpleado, "sEmple, [objCn]"),
          member("Get_Comision", &C::Get_Comision, "vId, [objCn]"),
          member("Get_fase_predeterminada", &C::Get_fase_predeterminada, "vId, [objCn]"),
          member("Get_Auto_pas", &C::Get_Auto_pas, "vId, [objCn]"),
          member("Get_Nombre", &C::Get_Nombre, "vId, [objCn]"),
          member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          member("GetDocPath", &C::GetDocPath, "inout sDocPath"),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
