// SPDX-License-Identifier: MIT
// The rows of a statement, read one after the other.
#include "tavelor/frame/rows.hpp"

#include "tavelor/services/apartment.hpp"

namespace tavelor {

Rows::Rows(int selector, const Statement& statement, ConnectionPtr connection)
    : locale_(Apartment::current().locale()) {
  DataSession().OpenRecordset(selector, statement, rows_, connection);
}

std::string Rows::text(const ColumnKey& column) const {
  const Variant found = rows_->CurrentRow().value(column);
  return found.isNull() ? std::string() : found.toText(locale_);
}

double Rows::number(const ColumnKey& column) const {
  const Variant found = rows_->CurrentRow().value(column);
  return found.isNull() ? 0 : found.toDouble(locale_);
}

}  // namespace tavelor
