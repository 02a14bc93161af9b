// SPDX-License-Identifier: MIT
// Statements that close the tables of a ticket, and move them to history and back.
#include "tavelor/sales/life_cycle.hpp"

#include "tavelor/platform/statement.hpp"

namespace tavelor {

namespace life_cycle {

Statement intoClosing(const Table& table, std::string_view ticket, std::string_view closing) {
  Statement statement("UPDATE ");
  statement << table.name << " SET Cierre = " << spliced(closing) << " WHERE(" << table.key << " = "
            << spliced(ticket) << ")";
  return statement;
}

Statement renumbered(const Table& table, std::string_view ticket, std::string_view newNumber) {
  Statement statement("UPDATE ");
  statement << table.name << " SET " << table.key << " = " << spliced(newNumber) << " WHERE("
            << table.key << " = " << spliced(ticket) << ")";
  return statement;
}

Statement copyToHistory(const Table& table, std::string_view closing) {
  Statement statement("INSERT INTO H");
  statement << table.name << table.copied << " FROM " << table.name
            << " WHERE(CIERRE = " << spliced(closing) << ")";
  return statement;
}

Statement dropLive(const Table& table, std::string_view closing) {
  Statement statement("DELETE  FROM ");
  statement << table.name << " WHERE ((CIERRE = " << spliced(closing) << "))";
  return statement;
}

Statement copyFromHistory(const Table& table, std::string_view closing) {
  Statement statement("INSERT INTO ");
  statement << table.name << " SELECT H" << table.name << ".*"
            << " FROM H" << table.name << " WHERE(CIERRE = " << spliced(closing) << ")";
  return statement;
}

Statement dropHistory(const Table& table, std::string_view closing) {
  Statement statement("DELETE  FROM H");
  statement << table.name << " WHERE ((CIERRE = " << spliced(closing) << "))";
  return statement;
}

Statement reopenAll(const Table& table) {
  Statement statement("UPDATE ");
  statement << table.name << " SET Cierre = 0";
  return statement;
}

}  // namespace life_cycle

template <typename Frame>
void TicketTable<Frame>::CerrarTicket(const Variant& vId, const Variant& vNewId,
                                      ObjCn cnnActive) const {
  this->write(life_cycle::intoClosing(table_, this->joined(vId), this->joined(vNewId)), *cnnActive);
}

template <typename Frame>
void TicketTable<Frame>::ConvertirSerie(const Variant& vId, const Variant& vNewId,
                                        std::string_view /*sSerie*/, ObjCn cnnActive) const {
  this->write(life_cycle::renumbered(table_, this->joined(vId), this->joined(vNewId)), *cnnActive);
}

template <typename Frame>
void TicketTable<Frame>::Mover_A_Historicos(const Variant& vId, ObjCn cnnActive) const {
  const std::string closing = this->joined(vId);
  this->write(life_cycle::copyToHistory(table_, closing), *cnnActive);
  this->write(life_cycle::dropLive(table_, closing), *cnnActive);
}

// The last statement has no condition and must not get one: after a closing is brought back, every
// live row is open, those that other closings had marked as well.
template <typename Frame>
void TicketTable<Frame>::Mover_De_Historicos(const Variant& vId, ObjCn cnnActive) const {
  const std::string closing = this->joined(vId);
  this->write(life_cycle::copyFromHistory(table_, closing), *cnnActive);
  this->write(life_cycle::dropHistory(table_, closing), *cnnActive);
  this->write(life_cycle::reopenAll(table_), *cnnActive);
}

template class TicketTable<OpensByWord>;
template class TicketTable<OpensOnConnection>;

}  // namespace tavelor
