// SPDX-License-Identifier: MIT
// What is written beside a ticket: its header and its comments.
#include "tavelor/sales/ticket_notes.hpp"

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

void TicketNotes::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  Statement statement("DELETE  FROM ");
  statement << table().name << " WHERE (" << table().key << " = " << spliced(joined(vId)) << ")";
  write(statement, *cnnActive);
}

void TicketNotes::AddNew(bool bDefVal) {
  Recordset& rows = primary();
  rows.AddNew();
  if (bDefVal) rows.Field("Id").Value(NuevoCodigo(GetConnection()));
}

// The key leaves a gap, since the next one is above the table's greatest already. That is what
// installed tills have: mended, old and new rows would be numbered by two rules.
void TicketNotes::UpdateId(const Variant& vId) {
  if (!ExistenRegistros()) return;
  Recordset& rows = primary();
  const double next = asNumber(NuevoCodigo(GetConnection()));
  rows.Field("Código").Value(vId);
  rows.Field("ID").Value(next + 1);
  rows.Update();
}

void TicketNotes::ToHtml(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeRecordPage(bDoclone, sSelecSql, bFilter);
}

void TicketNotes::ToTxt(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeRecordText(bDoclone, sSelecSql, bFilter);
}

}  // namespace tavelor
