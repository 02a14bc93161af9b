// SPDX-License-Identifier: MIT
// The rows of a set as rows of the tables that they were read from.
#include "tavelor/services/recordset/table_rows.hpp"

#include "tavelor/services/recordset/xml_format.hpp"

namespace tavelor {

bool isOf(const dialect::OutputColumn& column, std::string_view table) {
  return column.updatable && column.baseTable == table;
}

void appendName(std::string& sql, std::string_view name) {
  sql += '"';
  for (const char c : name) {
    if (c == '"') sql += '"';
    sql += c;
  }
  sql += '"';
}

void appendKey(std::string& sql, std::vector<engine::Value>& values, const RecordsetStore& store,
               std::string_view table, RecordsetStore::Row row) {
  const char* separator = " WHERE ";
  for (std::size_t i = 0; i < store.columns().size(); ++i) {
    const dialect::OutputColumn& column = store.columns()[i];
    if (!column.key || !isOf(column, table)) continue;
    sql += separator;
    appendName(sql, column.baseColumn);
    sql += "=?";
    values.push_back(store.baseForEngine(row, i));
    separator = " AND ";
  }
}

std::string placeOf(const RecordsetStore& store, RecordsetStore::Row row, std::size_t column) {
  const dialect::OutputColumn& named = store.columns()[column];
  std::string place = named.baseTable + '\0' + named.baseColumn;
  for (std::size_t i = 0; i < store.columns().size(); ++i) {
    if (!store.columns()[i].key || !isOf(store.columns()[i], named.baseTable)) continue;
    const Variant key = store.baseValue(row, i);
    place += '\0';
    if (!key.isNull()) place += xml::textOf(key);
  }
  return place;
}

}  // namespace tavelor
