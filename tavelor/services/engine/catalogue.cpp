// SPDX-License-Identifier: MIT
// Look-ups in the tables of a database.
#include "tavelor/services/engine/catalogue.hpp"

#include "tavelor/platform/text.hpp"

namespace tavelor::engine {

std::string_view ddlWord(ColumnType type) {
  switch (type) {
    case ColumnType::kInt16:
      return "SHORT";
    case ColumnType::kInt32:
      return "LONG";
    case ColumnType::kSingle:
      return "SINGLE";
    case ColumnType::kDouble:
      return "DOUBLE";
    case ColumnType::kCurrency:
      return "CURRENCY";
    case ColumnType::kDate:
      return "DATETIME";
    case ColumnType::kBoolean:
      return "BIT";
    case ColumnType::kByte:
      return "BYTE";
    case ColumnType::kText:
      return "TEXT";
    case ColumnType::kMemo:
      return "MEMO";
    case ColumnType::kBinary:
      return "LONGBINARY";
  }
  return "";
}

int Table::find(std::string_view column) const {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (text::equalsIgnoreCase(columns[i].name, column)) return static_cast<int>(i);
  }
  return -1;
}

Catalogue::Catalogue(std::vector<Table> tables) : tables_(std::move(tables)) {
  byFoldedName_.reserve(tables_.size());
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    byFoldedName_.emplace(text::foldCase(tables_[i].name), i);
  }
}

const Table* Catalogue::find(std::string_view table) const {
  const auto found = byFoldedName_.find(text::foldCase(table));
  return found == byFoldedName_.end() ? nullptr : &tables_[found->second];
}

}  // namespace tavelor::engine
