// SPDX-License-Identifier: MIT
// ClsTicketsCabecera, the customer's data as typed at the till.
#include "tavelor/sales/tickets_cabecera.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/sales/ticket_rows.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tickets_Cabecera: who the customer of the ticket Codigo is.

namespace {

constexpr std::string_view kTodos =
    "SELECT"
    " Id, Codigo as Código, Nombre, Razon_Social as Empresa,"
    " NIF,  Direccion as Dirección,"
    " Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono"
    " FROM "
    "Tickets_Cabecera";

// "cabeceras" shows the customers that the till has known.
constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE  Codigo =  {id}"},
    Mode{"ninguno", kTodos, " Where Codigo = 0"},
    Mode{"cabeceras",
         "SELECT DISTINCT"
         " Telefono AS Código,Razon_social AS Descripción,"
         " NIF,  Direccion,"
         " Codigo_Postal, Poblacion, Provincia"
         " FROM H"
         "Tickets_Cabecera"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Tickets_Cabecera",
                             .table = "Tickets_Cabecera",
                             .selector = selector::kDocuments,
                             .codeColumn = "Id",
                             .modes = kModes,
                             .find = FindForm::kPrefix,
                             .clearsDataMembers = true};

// The key stays behind: history numbers its rows by itself.
constexpr life_cycle::Table kTable = {
    .name = "Tickets_Cabecera",
    .key = "Codigo",
    .copied =
        " ( Codigo, Nombre, Razon_Social, NIF, Direccion, Codigo_Postal, Poblacion, "
        "Provincia, Telefono, Cierre )"
        " SELECT"
        " Codigo, Nombre, Razon_Social, NIF, Direccion, Codigo_Postal, Poblacion, "
        "Provincia, Telefono, Cierre "};

constexpr std::string_view kNothingFound = "no";

/// What a ticket's header and a customer that was looked for have in common.
template <typename Parameters>
void takeCustomer(Recordset& rows, Parameters& to) {
  takeColumn(rows, "NIF", to.sNif);
  takeColumn(rows, "Nombre", to.sNombre);
  takeColumn(rows, "Empresa", to.sEmpresa);
  takeColumn(rows, "Direccion", to.sDireccion);
  takeColumn(rows, "Codigo_Postal", to.sCp);
  takeColumn(rows, "Poblacion", to.sPoblacion);
  takeColumn(rows, "Provincia", to.sProvincia);
}

}  // namespace

ClsTicketsCabecera::ClsTicketsCabecera() : TicketNotes(kInfo, kTable) {}

void ClsTicketsCabecera::Insertar(const Alta& alta) const {
  Statement statement(
      "INSERT INTO "
      "Tickets_Cabecera"
      " ( id, Codigo, Nombre, Razon_Social,"
      " NIF,  Direccion,"
      " Codigo_Postal, Poblacion, Provincia"
      " ) Values ( ");
  statement << spliced(joined(alta.vId)) << "," << spliced(joined(alta.vNum)) << ",'"
            << spliced(alta.sNombre) << "','" << spliced(alta.sEmpresa) << "','"
            << spliced(alta.sNif) << "','" << spliced(alta.sDireccion) << "','" << spliced(alta.sCp)
            << "','" << spliced(alta.sPoblacion) << "','" << spliced(alta.sProvincia) << "' )";
  write(statement, *alta.objCn);
}

void ClsTicketsCabecera::Obtener(Datos& datos) const {
  const RecordsetPtr rows = read(withId("SELECT"
                                        " Nombre, Razon_Social as Empresa,"
                                        " NIF,  Direccion,"
                                        " Codigo_Postal, Poblacion, Provincia"
                                        " FROM "
                                        "Tickets_Cabecera"
                                        " WHERE  Codigo = {id}",
                                        datos.vId),
                                 *datos.objCn);
  if (rows->RecordCount() > 0) takeCustomer(*rows, datos);
}

std::vector<Variant> ClsTicketsCabecera::GetCabecera() const {
  Recordset& rows = primary();
  const auto column = [&](std::string_view name) { return rows.Field(name).Value(); };
  std::vector<Variant> lines;
  const auto add = [&](const Variant& found) {
    if (!found.isNull()) lines.emplace_back(joined(found));
  };
  for (const std::string_view name : {"Nombre", "Empresa", "Nif", "Dirección"}) add(column(name));
  if (const Variant town = column("Población"); !town.isNull()) {
    const Variant postalCode = column("Codigo_Postal");
    add(postalCode.isNull() ? town : Variant(joined(postalCode) + " " + joined(town)));
  }
  for (const std::string_view name : {"Provincia", "Teléfono"}) add(column(name));
  return lines;
}

void ClsTicketsCabecera::GetDatos(Busqueda& busqueda) const {
  Statement statement(
      "SELECT"
      " Nombre, Razon_Social as Empresa,"
      " NIF,  Direccion,"
      " Codigo_Postal, Poblacion, Provincia, Telefono");
  statement << (busqueda.bHistor ? Statement::Constant(" FROM H") : " FROM ") << "Tickets_Cabecera";
  if (busqueda.index == 0) {
    statement << " WHERE  Telefono =  '" << spliced(busqueda.idTel) << "'";
  } else if (busqueda.index == 1) {
    statement << " WHERE  Razon_Social = '" << spliced(busqueda.sEmpresa) << "' ";
  }
  const RecordsetPtr rows = read(statement, *busqueda.objCn);
  if (rows->RecordCount() == 0) {
    busqueda.sNombre = kNothingFound;
    return;
  }
  // The one entered last is the one that holds.
  rows->MoveLast();
  takeColumn(*rows, "Telefono", busqueda.idTel);
  takeCustomer(*rows, busqueda);
}

const Component& ClsTicketsCabecera::component() {
  using C = ClsTicketsCabecera;
  constexpr std::string_view kExport = "[bDoclone], [sSelecSql], [bFilter]";
  static const Component table(
      "ClsTicketsCabecera", "{3E7C51D4-8A20-4B96-A1F7-5C0D92E6B402}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnectionStr"),
              member(
                  "Insertar", &C::Insertar,
                  {parameter("vId", &Alta::vId), parameter("vNum", &Alta::vNum),
                   parameter("sNif", &Alta::sNif), parameter("sNombre", &Alta::sNombre),
                   parameter("sEmpresa", &Alta::sEmpresa),
                   parameter("sDireccion", &Alta::sDireccion), parameter("sCp", &Alta::sCp),
                   parameter("sPoblacion", &Alta::sPoblacion),
                   parameter("sProvincia", &Alta::sProvincia), parameter("[objCn]", &Alta::objCn)}),
              member("Obtener", &C::Obtener,
                     {parameter("vId", &Datos::vId), parameter("inout sNif", &Datos::sNif),
                      parameter("inout sNombre", &Datos::sNombre),
                      parameter("inout sEmpresa", &Datos::sEmpresa),
                      parameter("inout sDireccion", &Datos::sDireccion),
                      parameter("inout sCp", &Datos::sCp),
                      parameter("inout sPoblacion", &Datos::sPoblacion),
                      parameter("inout sProvincia", &Datos::sProvincia),
                      parameter("[objCn]", &Datos::objCn)}),
              member("GetCabecera", &C::GetCabecera),
              member("Mover_De_Historicos", &C::Mover_De_Historicos, kOnClosing),
              member("Mover_A_Historicos", &C::Mover_A_Historicos, kOnClosing),
              member("CerrarTicket", &C::CerrarTicket, kClosesTicket),
              member("ConvertirSerie", &C::ConvertirSerie, kRenumbersTicket),
              frameMember("GetConnection"),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
              member(
                  "GetDatos", &C::GetDatos,
                  {parameter("inout idTel", &Busqueda::idTel),
                   parameter("inout sNif", &Busqueda::sNif),
                   parameter("inout sNombre", &Busqueda::sNombre),
                   parameter("inout sEmpresa", &Busqueda::sEmpresa),
                   parameter("inout sDireccion", &Busqueda::sDireccion),
                   parameter("inout sCp", &Busqueda::sCp),
                   parameter("inout sPoblacion", &Busqueda::sPoblacion),
                   parameter("inout sProvincia", &Busqueda::sProvincia),
                   parameter("bHistor", &Busqueda::bHistor), parameter("index", &Busqueda::index),
                   parameter("[objCn]", &Busqueda::objCn)}),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
          },
          {
              member("AddNew", &C::AddNew, "[bDefVal]"),
              member("UpdateId", &C::UpdateId, "vId"),
              member("ToHtml", &C::ToHtml, kExport),
              member("ToTxt", &C::ToTxt, kExport),
          }));
  return table;
}

}  // namespace tavelor
