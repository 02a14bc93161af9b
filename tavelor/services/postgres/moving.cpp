// SPDX-License-Identifier: MIT
// Moving the schemas of a server to another engine, and filling them from there.
#include "tavelor/services/postgres/moving.hpp"

#include <cmath>

#include <fmt/format.h>

#include "tavelor/platform/utf8.hpp"
#include "tavelor/services/postgres/codecs.hpp"
#include "tavelor/services/postgres/connect.hpp"
#include "tavelor/services/postgres/session.hpp"

namespace tavelor::engine::postgres {

namespace {

constexpr std::size_t kLongestName = 63;

// One row a column of an index, without those of keys and of the hidden column.
constexpr std::string_view kIndexes =
    "SELECT i.relname, t.relname, a.attname, x.indisunique "
    "FROM pg_index x JOIN pg_class i ON i.oid = x.indexrelid JOIN pg_class t ON t.oid = x.indrelid "
    "CROSS JOIN LATERAL unnest(x.indkey[0:x.indnkeyatts - 1]) WITH ORDINALITY AS k (number, place) "
    "LEFT JOIN pg_attribute a ON a.attrelid = t.oid AND a.attnum = k.number AND k.number > 0 "
    "WHERE t.relnamespace = (SELECT oid FROM pg_namespace WHERE nspname = $1) "
    "AND left(t.relname, 3) <> 'tv_' AND NOT x.indisprimary AND NOT EXISTS (SELECT FROM pg_attribute h WHERE h.attrelid = t.oid "
    "AND h.attname = 'tv_row' AND h.attnum = ANY (x.indkey)) ORDER BY i.oid, k.place";

constexpr std::string_view kLastNumber =
    "SELECT coalesce(pg_sequence_last_value(pg_get_serial_sequence($1, $2)::regclass), 0)::float8";
constexpr std::string_view kGoOnBehind =
    "SELECT setval(pg_get_serial_sequence($1, $2)::regclass, $3)::float8";

std::string qualified(std::string_view schema, std::string_view table) {
  return quotedName(schema) + "." + quotedName(table);
}

std::string whyNoText(const Column& column, std::string_view text) {
  std::int32_t characters = 0;
  for (std::size_t at = 0; at < text.size(); ++characters) {
    const utf8::Character character = utf8::decode(text, at);
    if (character.code == 0) return "holds a NUL character";
    if (character.code >= utf8::kInvalidBase) return "holds bytes that are no UTF-8";
    at += character.size;
  }
  if (text.size() > kMostBytes) return "is longer than the server takes";
  if (column.type == ColumnType::kText && characters > column.size) {
    return fmt::format("has {} characters, of {} at most", characters, column.size);
  }
  return {};
}

std::string whyNoDate(double days) {
  constexpr const char* kOutside = "is no day that the server has";
  try {
    if (!std::isfinite(days)) return kOutside;
    const double stored = daysOf(microsecondsOf(days));
    if (stored == days) return {};
    return fmt::format("is day {}, which would be kept as {}: round it to a second", days, stored);
  } catch (const Error&) {
    return kOutside;
  }
}

}  // namespace

std::string whyNot(const Column& column, const RowStore::Row& row, std::size_t place) {
  switch (column.type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      return whyNoText(column, row.text(place));
    case ColumnType::kBinary:
      return row.text(place).size() > kMostBytes ? "is longer than the server takes" : "";
    case ColumnType::kDate:
      return whyNoDate(row.real(place));
    case ColumnType::kSingle:
      return std::isfinite(row.real(place)) && !std::isfinite(static_cast<float>(row.real(place)))
                 ? "is too large for its type"
                 : "";
    default:
      return {};
  }
}

void ServerSession::holdStill(const Catalogue& tables) {
  std::string names;
  for (const Table& table : tables.tables()) {
    names += (names.empty() ? "" : ", ") + qualified(state_->schema, table.name);
  }
  if (!names.empty()) execute("LOCK TABLE " + names + " IN SHARE MODE");
}

std::vector<Index> ServerSession::indexes() {
  const std::unique_ptr<Prepared> read = prepare(kIndexes);
  read->bind(1, Value::ofText(state_->schema));
  RowStore rows({ColumnType::kMemo, ColumnType::kMemo, ColumnType::kMemo, ColumnType::kBoolean});
  read->fetch(rows);
  std::vector<Index> indexes;
  for (std::size_t i = 0; i < rows.rows(); ++i) {
    const RowStore::Row row = rows.row(i);
    if (indexes.empty() || indexes.back().name != row.text(0)) {
      Index& index = indexes.emplace_back();
      index.name = row.text(0);
      index.table = row.text(1);
      index.isUnique = row.integer(3) != 0;
    }
    indexes.back().columns.emplace_back(row.isNull(2) ? "" : row.text(2));
  }
  return indexes;
}

std::int64_t ServerSession::lastNumber(const Table& table, const Column& counter) {
  const std::unique_ptr<Prepared> read = prepare(kLastNumber);
  const std::string name = qualified(state_->schema, table.name);
  read->bind(1, Value::ofText(name));
  read->bind(2, Value::ofText(counter.name));
  RowStore last({ColumnType::kDouble});
  read->fetch(last);
  return static_cast<std::int64_t>(last.real(0, 0));
}

void ServerSession::goOnBehind(const Table& table, const Column& counter, std::int64_t number) {
  if (number < 1 || lastNumber(table, counter) >= number) return;
  const std::unique_ptr<Prepared> write = prepare(kGoOnBehind);
  const std::string name = qualified(state_->schema, table.name);
  write->bind(1, Value::ofText(name));
  write->bind(2, Value::ofText(counter.name));
  write->bind(3, Value::ofInteger(number));
  RowStore set({ColumnType::kDouble});
  write->fetch(set);
}

void ServerSession::putAway(std::string_view ending) {
  std::string away = state_->schema.substr(0, kLongestName - std::min(kLongestName, ending.size()));
  away += ending;
  execute("ALTER SCHEMA " + quotedName(state_->schema) + " RENAME TO " + quotedName(away));
}

}  // namespace tavelor::engine::postgres
