// SPDX-License-Identifier: MIT
// ClsTicketsLineas: the batch, single lines, history, the component table.
#include "tavelor/sales/tickets_lineas.hpp"

#include <array>

#include "tavelor/articles/euros.hpp"
#include "tavelor/articles/registros.hpp"
#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tavelor/sales/ticket_rows.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tickets_Lineas: the article Codigo, sold on the ticket Numero.

namespace {

constexpr std::string_view kTodos =
    "SELECT CODIGO AS Código,"
    " Descripcion as Descripción , Cantidad, Precio,"
    " DTO,"
    " IVA,"
    " Importe,"
    " Lote, Numero AS Ticket, ID, Familia"
    " From Tickets_Lineas";

// The text of the format call is never closed, and the database refuses the mode. Closings are
// printed from ClsCierres; callers that ask here know the error.
constexpr std::string_view kTaxTotals =
    "SELECT IVA, Sum(Base) AS [Base Imponible], format(Sum(Importe),'#) AS [Importe IVA]"
    " From HTickets_Lineas_Impuestos"
    " GROUP BY IVA, Cierre"
    " HAVING (((Cierre={id})));";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " Where (Numero = {id})"},
    Mode{"ninguno", kTodos, " Where (Numero = 0)"},
    Mode{"deeliminar", kTodos, " Where (CODIGO = '{id}')"},
    Mode{"totalimpuestos", kTaxTotals},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Tickets_Lineas",
    .table = "Tickets_Lineas",
    .selector = selector::kDocuments,
    .codeColumn = "ID",
    .modes = kModes,
    .remove = DeleteForm::kMarks,
    .clearsDataMembers = true,
    .raisesMoveComplete = false,
    .restoresOrder = false,
};

constexpr life_cycle::Table kTable = {
    .name = "Tickets_Lineas",
    .key = "Numero",
    .copied =
        " ( Numero, Codigo, Descripcion, Cantidad,  Precio, DTO,  IVA, Importe, Lote, Cierre, "
        "Familia )"
        " SELECT"
        " Numero, Codigo, Descripcion, Cantidad,  Precio, DTO,  IVA, Importe, Lote, Cierre, "
        "Familia "};

constexpr std::string_view kTicket = "Ticket";

}  // namespace

ClsTicketsLineas::ClsTicketsLineas() : TicketTable(kInfo, kTable) {}

// ---------------------------------------------------------------------------------------------
// The batch

void ClsTicketsLineas::AddNew(bool bDefVal, bool /*bIsInvoiced*/) {
  Recordset& rows = primary();
  rows.AddNew();
  if (!bDefVal) return;
  const Variant zero = std::int32_t{0};
  for (const std::string_view column : {"Cantidad", "Precio", "Dto", "Iva"}) {
    rows.Field(column).Value(zero);
  }
}

void ClsTicketsLineas::UpdateadAffectCurrent(const Variant& vId) {
  keyCurrentRow(primary(), vId, kTicket);
}

void ClsTicketsLineas::UpdateId(const Variant& vId) {
  if (!ExistenRegistros()) return;
  numberAllRows(primary(), NuevoCodigo(GetConnection()), vId, kTicket);
}

void ClsTicketsLineas::SetFamilia(std::string_view sFam) {
  primary().Field("Familia").Value(sFam);
}

bool ClsTicketsLineas::EditAddRecord() const {
  try {
    return primary().EditMode() == EditMode::kAdd;
  } catch (const Error&) {
    return false;  // asked before IniciaRs, or without a row
  }
}

void ClsTicketsLineas::Update() {
  try {
    primary().UpdateBatch(Affect::kAll);
  } catch (const Error& error) {
    Apartment::current().promptGlobal().Message("Ln · " + error.description());
    throw;
  }
}

void ClsTicketsLineas::CancelBatch() {
  primary().CancelBatch(Affect::kAll);
}

// ---------------------------------------------------------------------------------------------
// Single lines

std::vector<Variant> ClsTicketsLineas::ObtenerCol(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT  ID, Numero From Tickets_Lineas Where (Numero = {id})", vId), *objCn);
  return columnValues(*rows, "ID");
}

void ClsTicketsLineas::Obtener(Lectura& lectura) const {
  const RecordsetPtr rows = read(withId("SELECT CODIGO AS Código,"
                                        " Descripcion as Descripción , Cantidad, Precio,"
                                        " DTO,"
                                        " IVA,"
                                        " Importe,"
                                        " Lote, ID, Numero AS Ticket"
                                        " From Tickets_Lineas"
                                        " Where (ID = {id})",
                                        lectura.vId),
                                 *lectura.objCn);
  if (rows->RecordCount() == 0) return;
  const auto takeFrom = [&](std::string_view column, Variant& to) {
    Variant found = rows->Field(column).Value();
    if (!found.isNull()) to = std::move(found);
  };
  takeFrom("Código", lectura.sCodigo);
  takeFrom("Descripción", lectura.sDescripcion);
  takeFrom("Cantidad", lectura.dCantidad);
  takeFrom("Precio", lectura.dPrecio);
  takeFrom("Dto", lectura.dDtoLin);
  takeFrom("Iva", lectura.dIva);
  takeFrom("Importe", lectura.dImporte);
  lectura.sLote = "0";
  takeFrom("Lote", lectura.sLote);
}

// The aliases Base, Registro and Factura are of older documents: columns are met by their order.
void ClsTicketsLineas::Insertar(const Linea& linea) const {
  linea.sDescripcion = doubledQuotes(*linea.sDescripcion);
  Statement statement(
      "INSERT INTO Tickets_Lineas ("
      " Codigo, Descripcion, Cantidad, Precio,"
      " DTO,"
      " IVA,"
      "  Importe , Lote, ID, Numero, Familia"
      " )"
      " SELECT DISTINCTROW '");
  statement << spliced(linea.sCodigo) << "' AS codigo, '" << spliced(*linea.sDescripcion)
            << "' AS Descripcion, '" << spliced(joined(linea.dCantidad)) << "' AS Cantidad , '"
            << spliced(joined(linea.dPrecio)) << "' AS Precio, '" << spliced(joined(linea.dDtoLin))
            << "' AS dto, '" << spliced(joined(linea.dIva)) << "' AS Iva, '"
            << spliced(joined(linea.dImporte)) << "' AS Base, '" << spliced(linea.sLote)
            << "' AS Lote, " << spliced(joined(linea.vIdNewReg)) << " AS Registro , "
            << spliced(joined(linea.vDoc)) << " AS Factura, '" << spliced(linea.sFam)
            << "' AS Familia ";
  write(statement, *linea.cnnActive);
}

// Lines without a ticket are what a till left that died between AddNew and UpdateId: nobody else
// would ever find them.
void ClsTicketsLineas::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Tickets_Lineas  WHERE (Numero = {id} or (Numero) is Null)", vId),
        *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// History

void ClsTicketsLineas::ActualizarEuros(ObjCn cnnActive) const {
  write(euros::nullToZero(table().name, "Precio"), *cnnActive);
  write(euros::nullToZero(table().name, "Importe"), *cnnActive);
  write(Statement("UPDATE  Tickets_Lineas SET Precio = Format([Precio]/'166,386','Currency'), "
                  "Importe = Format([Importe]/'166,386','Currency');"),
        *cnnActive);
}

// The base stands between quotes as the mask writes it; the amount stands bare, so it has a decimal
// point whatever the locale.
void ClsTicketsLineas::Mover_Impuestos_A_Historicos(const Variant& vId, const Variant& vIdCierre,
                                                    bool bIncTax, ObjCn cnnActive) const {
  const Apartment& apartment = Apartment::current();
  const Locale& locale = apartment.locale();
  const FormatGlobal& formats = Apartment::current().formatGlobal();
  const std::string amounts = formats.AmountFormat();
  const std::string quantities = formats.QuantityFormat();
  const RoundingMask rounded(quantities, locale);
  const std::string ticket = joined(vId);
  const std::string closing = joined(vIdCierre);

  const RecordsetPtr groups = read(withId("SELECT IVA, Sum(Importe) AS SumaDeImporte"
                                          " From Tickets_Lineas"
                                          " GROUP BY IVA, Numero"
                                          " HAVING (((Numero)={id}));",
                                          vId),
                                   *cnnActive);
  for (; !groups->Eof(); groups->MoveNext()) {
    const double rate = asNumber(groups->Field("IVA").Value());
    const double sum = asNumber(groups->Field("SumaDeImporte").Value());
    const Variant base =
        bIncTax ? Variant(format(sum * 100 / (rate + 100), amounts, locale)) : Variant(sum);
    const double amount = rounded(rate * asNumber(base) / 100);
    Statement statement("INSERT INTO HTickets_Lineas_Impuestos");
    statement << " ( Numero, IVA, base, Importe, Cierre )"
              << " Values (" << spliced(ticket) << ", '" << spliced(joined(rate)) << "', '"
              << spliced(joined(base)) << "', " << spliced(sqlNumber(amount)) << ", "
              << spliced(closing) << " ) ";
    write(statement, *cnnActive);
  }
  write(withId("DELETE  FROM Tickets_Lineas_Impuestos WHERE ((CIERRE = {id}))", vIdCierre),
        *cnnActive);
}

void ClsTicketsLineas::Mover_Impuestos_De_Historicos(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM HTickets_Lineas_Impuestos WHERE ((CIERRE = {id}))", vId), *cnnActive);
}

// Unlike the other tables of a ticket, only the lines of this closing are opened, and history is
// emptied last.
void ClsTicketsLineas::Mover_De_Historicos(const Variant& vId, ObjCn cnnActive) const {
  const std::string closing = joined(vId);
  write(life_cycle::copyFromHistory(table(), closing), *cnnActive);
  write(withId("UPDATE Tickets_Lineas SET Tickets_Lineas.Cierre = 0 WHERE(CIERRE = {id})", vId),
        *cnnActive);
  write(life_cycle::dropHistory(table(), closing), *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// The component table

namespace {

using C = ClsTicketsLineas;

std::vector<Member> lifeCycleSlots() {
  return {
      member("ActualizarEuros", &C::ActualizarEuros, "[cnnActive]"),
      member("SetFamilia", &C::SetFamilia, "sFam"),
      member("Mover_Impuestos_A_Historicos", &C::Mover_Impuestos_A_Historicos,
             "vId, vIdCierre, bIncTax, [cnnActive]"),
      member("Mover_Impuestos_De_Historicos", &C::Mover_Impuestos_De_Historicos, kOnClosing),
      member("Mover_De_Historicos", &C::Mover_De_Historicos, kOnClosing),
      member("Mover_A_Historicos", &C::Mover_A_Historicos, kOnClosing),
      member("CerrarTicket", &C::CerrarTicket, kClosesTicket),
      member("ConvertirSerie", &C::ConvertirSerie, kRenumbersTicket),
      frameMember("SeguridadPermiso"),
  };
}

std::vector<Member> lineSlots() {
  using Lectura = C::Lectura;
  using Linea = C::Linea;
  return {
      member("GetCollectionRegs", &C::GetCollectionRegs, "vIdAlm"),
      member("SumCollectionLinHFamilias", &C::SumCollectionLinHFamilias, "vId, [objCn]"),
      member("SumCollectionLinHImpuestos", &C::SumCollectionLinHImpuestos, "vId, [objCn]"),
      member("GetCollectionLinImpuestos", &C::GetCollectionLinImpuestos, "vId, bIncTax, [objCn]"),
      member("GetCollectionLin", &C::GetCollectionLin),
      frameMember("GetConnection"),
      member("ObtenerCol", &C::ObtenerCol, "vId, [objCn]"),
      member(
          "Obtener", &C::Obtener,
          {parameter("vId", &Lectura::vId), parameter("inout sCodigo", &Lectura::sCodigo),
           parameter("inout sDescripcion", &Lectura::sDescripcion),
           parameter("inout dCantidad", &Lectura::dCantidad),
           parameter("inout dPrecio", &Lectura::dPrecio),
           parameter("inout dDtoLin", &Lectura::dDtoLin), parameter("inout dIva", &Lectura::dIva),
           parameter("inout dImporte", &Lectura::dImporte),
           parameter("inout sLote", &Lectura::sLote), parameter("[objCn]", &Lectura::objCn)}),
      member("Insertar", &C::Insertar,
             {parameter("vDoc", &Linea::vDoc), parameter("vIdNewReg", &Linea::vIdNewReg),
              parameter("sCodigo", &Linea::sCodigo),
              parameter("inout sDescripcion", &Linea::sDescripcion),
              parameter("dCantidad", &Linea::dCantidad), parameter("dPrecio", &Linea::dPrecio),
              parameter("dDtoLin", &Linea::dDtoLin), parameter("dIva", &Linea::dIva),
              parameter("dImporte", &Linea::dImporte), parameter("sLote", &Linea::sLote),
              parameter("sFam", &Linea::sFam), parameter("[cnnActive]", &Linea::cnnActive)}),
  };
}

std::vector<Member> batchSlots() {
  return {
      member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
      frameMember("CnnBeginTrans"),
      frameMember("CnnCommitTrans"),
      frameMember("CnnRollbackTrans"),
      frameMember("NuevoCodigo"),
      member("AddNew", &C::AddNew, "[bDefVal], [bIsInvoiced]"),
      member("UpdateadAffectCurrent", &C::UpdateadAffectCurrent, "vId"),
      member("UpdateId", &C::UpdateId, "vId"),
      member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
      property("EditAddRecord", &C::EditAddRecord),
      frameMember("EditingRecord"),
      frameMember("AbsolutePosition"),
      frameMember("Delete"),
      frameMember("Requery"),
      member("Update", &C::Update),
      frameMember("Cancel"),
      member("CancelBatch", &C::CancelBatch),
      frameMember("MoveFirst"),
      frameMember("MoveLast"),
      frameMember("MoveToBookmark"),
      frameMember("MoveNext"),
      frameMember("MovePrevious"),
      frameMember("ExistenRegistros"),
      frameMember("FindRecord"),
      member("SumaCol", &C::SumaCol,
             "bIncTax, inout dBase, inout dImpIva, inout dImpRecargo, bRecargos"),
  };
}

std::vector<Member> allSlots() {
  std::vector<Member> slots;
  for (auto part : {lifeCycleSlots, lineSlots, batchSlots}) {
    for (Member& slot : part()) slots.push_back(std::move(slot));
  }
  return slots;
}

}  // namespace

const Component& ClsTicketsLineas::component() {
  static const Component table(
      "ClsTicketsLineas", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B411}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); }, allSlots());
  return table;
}

}  // namespace tavelor
