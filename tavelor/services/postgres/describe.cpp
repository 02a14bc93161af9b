// SPDX-License-Identifier: MIT
// Reads tables, columns and keys back out of a schema.
#include "tavelor/services/postgres/describe.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/postgres/codecs.hpp"

namespace tavelor::engine::postgres {

namespace {

// One row a column, the tables by the number that they got when they were made. A table without
// columns is no table of ours.
constexpr std::string_view kColumns =
    "SELECT c.oid::int8, c.relname, a.attname, "
    "CASE WHEN d.oid IS NULL THEN a.atttypid ELSE d.typbasetype END::int8, "
    "CASE WHEN d.oid IS NULL THEN a.atttypmod ELSE d.typtypmod END, "
    "CASE WHEN n.nspname = 'tavelor' THEN d.typname END, "
    "a.attnotnull OR coalesce(d.typnotnull, false), a.attidentity <> '', "
    "pg_get_expr(f.adbin, f.adrelid), coalesce(array_position(k.indkey, a.attnum), -1) "
    "FROM pg_class c JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 "
    "AND NOT a.attisdropped "
    "LEFT JOIN pg_type d ON d.oid = a.atttypid AND d.typtype = 'd' "
    "LEFT JOIN pg_namespace n ON n.oid = d.typnamespace "
    "LEFT JOIN pg_attrdef f ON f.adrelid = c.oid AND f.adnum = a.attnum AND a.attgenerated = '' "
    "LEFT JOIN pg_index k ON k.indrelid = c.oid AND k.indisprimary "
    "WHERE c.relnamespace = (SELECT oid FROM pg_namespace WHERE nspname = $1) "
    "AND c.relkind IN ('r', 'p') AND left(c.relname, 3) <> 'tv_' ORDER BY c.oid, a.attnum";

enum Place : std::size_t {
  kTable,
  kTableName,
  kName,
  kType,
  kModifier,
  kDomain,
  kNotNull,
  kIsIdentity,
  kDefault,
  kKeyPlace,
  kPlaces
};

const std::vector<ColumnType> kPlaceTypes{
    ColumnType::kDouble, ColumnType::kMemo, ColumnType::kMemo,    ColumnType::kDouble,
    ColumnType::kInt32,  ColumnType::kMemo, ColumnType::kBoolean, ColumnType::kBoolean,
    ColumnType::kMemo,   ColumnType::kInt32};

// The server keeps the length of a text with the length of the length.
constexpr std::int32_t kModifierHeader = 4;
constexpr std::int32_t kLongestText = 255;

/// The type of a numeric by its digits: all that money holds is money.
ColumnType numericType(std::int32_t modifier) {
  if (modifier < kModifierHeader) return ColumnType::kDouble;
  const std::int32_t digits = (modifier - kModifierHeader) >> 16 & 0xFFFF;
  const std::int32_t decimals = (modifier - kModifierHeader) & 0x7FF;
  const bool isMoney = decimals <= 4 && digits - decimals <= 15;
  return isMoney ? ColumnType::kCurrency : ColumnType::kDouble;
}

void readType(Oid type, std::int32_t modifier, std::string_view domain, Column& column) {
  switch (type) {
    case types::kInt2:
      column.type = ColumnType::kInt16;
      if (domain == "byte") column.type = ColumnType::kByte;
      if (domain == "flag") column.type = ColumnType::kBoolean;
      return;
    case types::kInt4:
      column.type = ColumnType::kInt32;
      return;
    case types::kFloat4:
      column.type = ColumnType::kSingle;
      return;
    case types::kInt8:  // a whole number of 32 bits would be too small
    case types::kOid:
    case types::kFloat8:
      column.type = ColumnType::kDouble;
      return;
    case types::kNumeric:
      column.type = numericType(modifier);
      return;
    case types::kBool:
      column.type = ColumnType::kBoolean;
      return;
    case types::kTimestamp:
    case types::kTimestamptz:
    case types::kDate:
    case types::kTime:
      column.type = ColumnType::kDate;
      return;
    case types::kBytea:
      column.type = ColumnType::kBinary;
      return;
    default:
      column.type = ColumnType::kMemo;
      break;
  }
  const bool hasLength = type == types::kVarchar || type == types::kBpchar;
  if (!hasLength || modifier <= kModifierHeader) return;
  const std::int32_t size = modifier - kModifierHeader;
  if (size > kLongestText) return;
  column.type = ColumnType::kText;
  column.size = size;
}

/// The literal of a DEFAULT as the definition had it: the server writes "0", "'-1'::integer",
/// "(-1)::smallint", "'x'::character varying" or "NULL::character varying".
std::string defaultOf(std::string_view expression, ColumnType type) {
  const auto isQuoted = [](std::string_view text) {
    return text.size() >= 2 && text.front() == '\'' && text.back() == '\'';
  };
  const auto withoutCast = [](std::string_view text) {
    const std::size_t cast = text.rfind("::");
    const std::size_t quote = text.rfind('\'');
    const bool isCast =
        cast != std::string_view::npos && (quote == std::string_view::npos || quote < cast);
    return isCast ? text.substr(0, cast) : text;
  };
  std::string_view literal = withoutCast(expression);
  while (literal.starts_with('(') && literal.ends_with(')')) {
    literal = withoutCast(literal.substr(1, literal.size() - 2));
  }
  if (literal == "NULL") return {};
  const bool isText = engine::isText(type);
  if (isQuoted(literal) && !isText && type != ColumnType::kDate) {
    literal = literal.substr(1, literal.size() - 2);
  }
  return std::string(literal);
}

}  // namespace

Catalogue describeTables(Session& session, std::string_view schema) {
  const std::unique_ptr<Prepared> statement = session.prepare(kColumns);
  statement->bind(1, Value::ofText(schema));
  RowStore rows(kPlaceTypes);
  statement->fetch(rows);

  std::vector<Table> tables;
  std::vector<std::pair<std::int64_t, std::size_t>> key;
  const auto finishTable = [&] {
    std::sort(key.begin(), key.end());
    for (const auto& [place, position] : key) tables.back().key.push_back(position);
    key.clear();
  };
  double last = -1;
  for (std::size_t i = 0; i < rows.rows(); ++i) {
    const RowStore::Row row = rows.row(i);
    if (row.real(kTable) != last) {
      if (!tables.empty()) finishTable();
      tables.emplace_back().name = row.text(kTableName);
      last = row.real(kTable);
    }
    if (row.text(kName) == kRowColumn) continue;
    Table& table = tables.back();
    Column column;
    column.name = row.text(kName);
    const std::string_view domain = row.isNull(kDomain) ? "" : row.text(kDomain);
    readType(static_cast<Oid>(row.real(kType)), static_cast<std::int32_t>(row.integer(kModifier)),
             domain, column);
    column.nullable = row.integer(kNotNull) == 0;
    const std::string_view written = row.isNull(kDefault) ? "" : row.text(kDefault);
    // Older programs make counters of a sequence and a default that takes from it.
    const bool takesNext = written.starts_with("nextval(");
    column.autoNumber = row.integer(kIsIdentity) != 0 || takesNext;
    if (!takesNext) column.defaultText = defaultOf(written, column.type);
    if (row.integer(kKeyPlace) >= 0) key.emplace_back(row.integer(kKeyPlace), table.columns.size());
    table.columns.push_back(std::move(column));
  }
  if (!tables.empty()) finishTable();
  return Catalogue(std::move(tables));
}

}  // namespace tavelor::engine::postgres
