// SPDX-License-Identifier: MIT
// ClsClientesColaboradores, collaborators of clinics.
#include "tavelor/customers/clientes_colaboradores.hpp"

#include <array>

#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Clientes_Colaboradores: Nombre works at the customer Codigo.

namespace {

constexpr std::string_view kTodos =
    "SELECT   Nombre , Activo, Colegiado,NIF, Direccion as Dirección, Codigo_Postal,"
    " Poblacion as Población, Provincia, Telefono as Teléfono, Id, Codigo as Código, Descuento,"
    " Preferencias as Alias, Notas FROM Clientes_Colaboradores";
constexpr std::string_view kSelecc =
    "SELECT  Id as Código, Nombre as Descripción, Codigo as Clínica  FROM Clientes_Colaboradores";

constexpr std::array kModes = {
    Mode{"selecc", kSelecc, " WHERE (activo <> 0 )"},
    Mode{"ninguno", kTodos, " Where (Nombre = '0')"},
    Mode{"todos_cli",
         "SELECT Clientes_Colaboradores.ID AS Código, Clientes_Colaboradores.Nombre AS Descripción,"
         " Clientes.Razon_social AS Clínica, Clientes_Colaboradores.Activo,"
         " Clientes_Colaboradores.Colegiado, Clientes_Colaboradores.Telefono AS Teléfono"
         " FROM Clientes_Colaboradores INNER JOIN Clientes"
         " ON Clientes_Colaboradores.Codigo = Clientes.Codigo"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Clientes_Colaboradores",
    .table = "Clientes_Colaboradores",
    .codeColumn = "Id",
    .modes = kModes,
    .freeCode = "SELECT id as Codigo FROM Clientes_Colaboradores where id ='{id}'",
    .update = UpdateForm::kAllRows,
    .remove = DeleteForm::kMarks,
    .find = FindForm::kPrefix,
    .clearsDataMembers = true,
};

/// Of a collaborator without a telephone: labels keep their place for it.
constexpr std::string_view kNoTelephone = " ";

}  // namespace

ClsClientesColaboradores::ClsClientesColaboradores() : OpensOnConnection(kInfo) {}

// A clinic takes the place of the whole condition; its code may be a pattern.
Statement ClsClientesColaboradores::modeStatement(std::string& word, const Variant& id) const {
  if (word != "selecc" || joined(id).empty()) return OpensOnConnection::modeStatement(word, id);
  Statement statement(kSelecc);
  statement << withId(" WHERE (Codigo like  '{id}' and  activo <> 0 )", id);
  return statement;
}

void ClsClientesColaboradores::GetDatos(const Variant& id, InOut<std::string> sNombre,
                                        InOut<Variant> vId, InOut<std::string> sColegiado,
                                        ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT   Nombre , Id, Codigo as Código, Colegiado  FROM Clientes_Colaboradores"
                  " WHERE (Codigo =  '{id}')",
                  id),
           *objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Nombre", *sNombre);
  vId = rows->Field("Id").Value();
  takeColumn(*rows, "Colegiado", *sColegiado);
}

std::string ClsClientesColaboradores::GetTel(const Variant& id, std::string_view sNombre,
                                             ObjCn objCn) const {
  Statement statement = withId(
      "SELECT   Telefono  FROM Clientes_Colaboradores WHERE (Codigo =  '{id}' and Nombre =  '", id);
  statement << spliced(sNombre) << "')";
  const Variant telephone = lookUp(statement, "Telefono", *objCn);
  return telephone.isEmpty() ? std::string(kNoTelephone) : joined(telephone);
}

double ClsClientesColaboradores::GetDto(const Variant& id, std::string_view sNombre,
                                        ObjCn objCn) const {
  Statement statement = withId(
      "SELECT Descuento FROM Clientes_Colaboradores"
      " WHERE ( Codigo =  '{id}' and activo <> 0 and Nombre =  '",
      id);
  statement << spliced(sNombre) << "' )";
  return asNumber(lookUp(statement, "Descuento", *objCn));
}

void ClsClientesColaboradores::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Clientes_Colaboradores WHERE (Codigo = '{id}')", vId), *cnnActive);
}

void ClsClientesColaboradores::AddNew(bool bDefVal) {
  Recordset& rows = primary();
  rows.AddNew();
  if (!bDefVal) return;
  rows.Field("Id").Value(NuevoCodigo());
  rows.Field("Activo").Value(true);
}

void ClsClientesColaboradores::UpdateId() {
  if (!ExistenRegistros()) return;
  keyAllRows(primary(), NuevoCodigo(GetConnection()));
}

void ClsClientesColaboradores::UpdateadAffectCurrent(InOut<Variant> vId) {
  keyCurrentRow(primary(), *vId);
}

const Component& ClsClientesColaboradores::component() {
  using C = ClsClientesColaboradores;
  static const Component table(
      "ClsClientesColaboradores", "{A4D2E7C1-5B38-4F06-8C9D-7E1F60B3D504}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("GetDatos", &C::GetDatos, "id, out sNombre, out vId, out sColegiado, [objCn]"),
              member("GetTel", &C::GetTel, "id, sNombre, [objCn]"),
              member("GetDto", &C::GetDto, "id, sNombre, [objCn]"),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              frameMember("CodigoLibre"),
          },
          {
              member("AddNew", &C::AddNew, "[bDefVal]"),
              member("UpdateId", &C::UpdateId),
              member("UpdateadAffectCurrent", &C::UpdateadAffectCurrent, "inout vId"),
          }));
  return table;
}

}  // namespace tavelor
