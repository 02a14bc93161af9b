// SPDX-License-Identifier: MIT
// What the four tables of a ticket have in common: closing, a new number, history and back.
#pragma once

#include <string_view>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

namespace life_cycle {

/// One of the tables that a ticket lies in. Its history bears the same name with "H" in front.
/// Texts must outlive the class objects: they are literals.
struct TAVELOR_API Table {
  Statement::Constant name;
  Statement::Constant key;  ///< column that holds the number of the ticket
  Statement::Constant
      copied;  ///< " SELECT ..." of the way to history, with the columns it goes into
};

/// Puts a ticket into a closing. All numbers come as text, here and below, and are marked as
/// values.
TAVELOR_API Statement intoClosing(const Table& table, std::string_view ticket,
                                  std::string_view closing);
/// Gives a ticket another number.
TAVELOR_API Statement renumbered(const Table& table, std::string_view ticket,
                                 std::string_view newNumber);
/// Copies the rows of a closing to history.
TAVELOR_API Statement copyToHistory(const Table& table, std::string_view closing);
/// Deletes the live rows of a closing.
TAVELOR_API Statement dropLive(const Table& table, std::string_view closing);
/// Copies the rows of a closing back from history.
TAVELOR_API Statement copyFromHistory(const Table& table, std::string_view closing);
/// Deletes the rows that history has of a closing.
TAVELOR_API Statement dropHistory(const Table& table, std::string_view closing);
/// Opens every row of the live table, whichever closing it had.
TAVELOR_API Statement reopenAll(const Table& table);

}  // namespace life_cycle

/// A record class on one of the tables of a ticket; `Frame` is the shape of its IniciaRs.
///
/// Nothing ties the four classes together: who closes or moves a ticket calls each of them with the
/// same numbers on one connection, inside a transaction of his own. A move that fails between its
/// statements leaves what was written so far to that transaction.
template <typename Frame>
class TAVELOR_API TicketTable : public Frame {
 public:
  /// Puts the rows of the ticket `vId` into the closing `vNewId`.
  void CerrarTicket(const Variant& vId, const Variant& vNewId, ObjCn cnnActive = {}) const;
  /// Gives the rows of the ticket `vId` to the number `vNewId`. `sSerie` is not looked at.
  void ConvertirSerie(const Variant& vId, const Variant& vNewId, std::string_view sSerie,
                      ObjCn cnnActive = {}) const;
  /// Moves a whole closing to history: `vId` is the number of the closing. Without rows it does
  /// nothing.
  void Mover_A_Historicos(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Brings a whole closing back, and opens every row of the live table, whichever closing it had.
  /// Raises the integrity error for a ticket whose number is in use again.
  void Mover_De_Historicos(const Variant& vId, ObjCn cnnActive = {}) const;

 protected:
  /// Both must outlive the object: they are constants.
  TicketTable(const ClassInfo& info, const life_cycle::Table& table) : Frame(info), table_(table) {}

  /// What differs from the other tables of tickets.
  const life_cycle::Table& table() const { return table_; }

 private:
  const life_cycle::Table& table_;
};

extern template class TicketTable<OpensByWord>;
extern template class TicketTable<OpensOnConnection>;

}  // namespace tavelor
