// SPDX-License-Identifier: MIT
// Free comments on tickets.
#pragma once

#include "tavelor/sales/life_cycle.hpp"

namespace tavelor {

class Component;

/// The comments of tickets.
class ClsTicketsComentarios final : public TicketTable<OpensOnConnection> {
 public:
  ClsTicketsComentarios();
  std::string typeName() const override { return "ClsTicketsComentarios"; }
  static const Component& component();

  /// The comment of the current row; "" where there is none. Never raises.
  std::string sQComentario() const;
  /// Deletes the comments of a ticket.
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
};

}  // namespace tavelor
