// SPDX-License-Identifier: MIT
// What is written beside a ticket: its header and its comments.
#pragma once

#include <string_view>

#include "tavelor/platform/export.hpp"
#include "tavelor/sales/life_cycle.hpp"

namespace tavelor {

/// The members that the header and the comments of tickets share.
class TAVELOR_API TicketNotes : public TicketTable<OpensOnConnection> {
 public:
  /// Deletes the rows of a ticket.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Adds a row; with `bDefVal` it has the next key, read on the class's connection.
  void AddNew(bool bDefVal = false);
  /// Gives the current row to the ticket `vId`, with a key two above the table's greatest, and
  /// posts it; Update writes it. Does nothing without rows.
  void UpdateId(const Variant& vId);
  /// The rows as a page, record by record; see ToHtmlGrid for the parameters.
  void ToHtml(bool bDoclone = false, std::string_view sSelecSql = {}, bool bFilter = false);
  /// The same as plain text, in the report folder.
  void ToTxt(bool bDoclone = false, std::string_view sSelecSql = {}, bool bFilter = false);

 protected:
  /// Takes what the table of tickets takes.
  using TicketTable::TicketTable;

 private:
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
};

}  // namespace tavelor
