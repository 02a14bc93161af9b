// SPDX-License-Identifier: MIT
// Reading what the database holds now for rows that were read before.
#include "tavelor/services/recordset/row_refresher.hpp"

#include <algorithm>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/recordset/connection_trace.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/table_rows.hpp"

namespace tavelor {

RowRefresher::RowRefresher(RecordsetStore& store, Connection& connection)
    : store_(store), connection_(connection) {
  std::vector<std::string_view> names;
  for (const dialect::OutputColumn& column : store.columns()) {
    const bool isNew =
        column.updatable && std::find(names.begin(), names.end(), column.baseTable) == names.end();
    if (isNew) names.emplace_back(column.baseTable);
  }
  if (names.empty()) {
    raise(errors::kNotSupported, kRecordsetSource,
          "The rows are those of no table whose key is among the columns, so they cannot be read "
          "again");
  }
  for (const std::string_view name : names) {
    std::vector<std::size_t> columns;
    std::vector<engine::ColumnType> types;
    std::string select = "SELECT ";
    for (std::size_t i = 0; i < store.columns().size(); ++i) {
      const dialect::OutputColumn& column = store.columns()[i];
      if (!isOf(column, name)) continue;
      if (!columns.empty()) select += ',';
      appendName(select, column.baseColumn);
      columns.push_back(i);
      types.push_back(column.type);
    }
    select += " FROM ";
    appendName(select, name);
    tables_.push_back({name, std::move(columns), std::move(select), engine::RowStore(types)});
  }
}

void RowRefresher::read(const std::vector<Row>& rows) {
  for (const Row row : rows) (readRow(row) ? found_ : missing_).push_back(row);
}

/// The outer side of a join has no row here: its key is Null.
bool RowRefresher::isLookedUpNowhere(const Table& table, Row row) const {
  return std::any_of(table.columns.begin(), table.columns.end(), [&](std::size_t column) {
    return store_.columns()[column].key && store_.rows().isNull(row, column);
  });
}

bool RowRefresher::readRow(Row row) {
  std::vector<std::int64_t> places;
  for (Table& table : tables_) {
    places.push_back(-1);
    if (isLookedUpNowhere(table, row)) continue;
    std::string sql = table.select;
    std::vector<engine::Value> key;
    appendKey(sql, key, store_, table.name, row);
    const std::size_t before = table.rows.rows();
    connection_.traced(
        [&] { return std::string_view(sql); },
        [&] { return connection_.lease().readingPlans().run(sql, key, &table.rows); });
    if (table.rows.rows() == before) return false;
    places.back() = static_cast<std::int64_t>(before);
  }
  places_.push_back(std::move(places));
  return true;
}

/// Calls `take` with row, column and what was read.
template <typename Take>
void RowRefresher::forEachValue(Take&& take) {
  for (std::size_t i = 0; i < found_.size(); ++i) {
    for (std::size_t t = 0; t < tables_.size(); ++t) {
      if (places_[i][t] < 0) continue;
      const auto place = static_cast<std::size_t>(places_[i][t]);
      const Table& table = tables_[t];
      for (std::size_t c = 0; c < table.columns.size(); ++c) {
        const std::size_t column = table.columns[c];
        const Variant now = cellOf(table.rows, place, c);
        // What the set itself wrote to a looked up row is not the latest any more.
        if (!store_.lookedUpWrites.empty()) {
          const auto ours = store_.lookedUpWrites.find(placeOf(store_, found_[i], column));
          if (ours != store_.lookedUpWrites.end()) ours->second = now;
        }
        take(found_[i], column, now);
      }
    }
  }
}

void RowRefresher::acceptAsUnderlying() {
  forEachValue([&](Row row, std::size_t column, const Variant& now) {
    store_.setUnderlying(row, column, now);
  });
}

void RowRefresher::acceptAsBase() {
  forEachValue([&](Row row, std::size_t column, const Variant& now) {
    store_.setBase(row, column, now);
    store_.dropUnderlying(row, column);
  });
}

}  // namespace tavelor
