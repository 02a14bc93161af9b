// SPDX-License-Identifier: MIT
// ClsTicketsComentarios, free comments on tickets.
#include "tavelor/sales/tickets_comentarios.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/sales/ticket_rows.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tickets_Comentarios: Comentarios on the ticket Codigo.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Comentarios FROM Tickets_Comentarios";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE  Codigo =  {id}"},
    Mode{"ninguno", kTodos, " Where Id = 0"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Tickets_Comentarios",
                             .table = "Tickets_Comentarios",
                             .selector = selector::kDocuments,
                             .codeColumn = "Id",
                             .modes = kModes,
                             .find = FindForm::kPrefix,
                             .clearsDataMembers = true};

// The key stays behind: history numbers its rows by itself.
constexpr life_cycle::Table kTable = {.name = "Tickets_Comentarios",
                                      .key = "Codigo",
                                      .copied =
                                          " ( Codigo, Comentarios, Cierre ) "
                                          " SELECT "
                                          " Codigo, Comentarios, Cierre "};

}  // namespace

ClsTicketsComentarios::ClsTicketsComentarios() : TicketNotes(kInfo, kTable) {}

std::string ClsTicketsComentarios::sQComentario() const {
  try {
    return joined(primary().Field("Comentarios").Value());
  } catch (const Error&) {
    return {};  // forms ask while they have no row yet
  }
}

const Component& ClsTicketsComentarios::component() {
  using C = ClsTicketsComentarios;
  constexpr std::string_view kExport = "[bDoclone = True], [sSelecSql = 'todos'], [bFilter]";
  static const Component table(
      "ClsTicketsComentarios", "{3E7C51D4-8A20-4B96-A1F7-5C0D92E6B403}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnectionStr"),
              property("sQComentario", &C::sQComentario),
              member("Mover_De_Historicos", &C::Mover_De_Historicos, kOnClosing),
              member("Mover_A_Historicos", &C::Mover_A_Historicos, kOnClosing),
              member("CerrarTicket", &C::CerrarTicket, kClosesTicket),
              member("ConvertirSerie", &C::ConvertirSerie, kRenumbersTicket),
              frameMember("GetConnection"),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
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
