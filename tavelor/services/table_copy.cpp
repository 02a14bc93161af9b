// SPDX-License-Identifier: MIT
// A table's rows from one engine to another.
#include "tavelor/services/table_copy.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/movable.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor {

using engine::Column;
using engine::ColumnType;
using engine::RowStore;
using engine::Table;
using engine::Value;

namespace {

constexpr std::size_t kPage = 1024;        // rows that are in memory at once
constexpr std::size_t kMostBatch = 64;     // rows of one INSERT
constexpr std::size_t kMostValues = 2048;  // and its values
constexpr std::size_t kMostUnfit = 20;     // that are told one by one

std::string inQuotes(std::string_view name) {
  std::string out;
  dialect::Writer::quote(out, name, '"');
  return out;
}

/// `"Id", "Código"`.
std::string columnList(const Table& table) {
  std::string list;
  for (const Column& column : table.columns) {
    list += (list.empty() ? "" : ", ") + inQuotes(column.name);
  }
  return list;
}

Value valueOf(const RowStore::Row& row, std::size_t place, ColumnType type) {
  if (row.isNull(place)) return Value::null();
  switch (type) {
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return Value::ofInteger(row.integer(place));
    case ColumnType::kBoolean:
      return Value::ofBoolean(row.integer(place) != 0);
    case ColumnType::kCurrency:
      return Value::ofCurrency(Currency::fromScaled(row.integer(place)));
    case ColumnType::kSingle:
      return Value::ofReal(static_cast<double>(static_cast<float>(row.real(place))));
    case ColumnType::kDouble:
      return Value::ofReal(row.real(place));
    case ColumnType::kDate:
      return Value::ofDate(Date(row.real(place)));
    case ColumnType::kText:
    case ColumnType::kMemo:
      return Value::ofText(row.text(place));
    case ColumnType::kBinary:
      return Value::ofBytes(row.text(place));
  }
  return Value::null();
}

/// Any value of that kind.
Value sampleOf(ColumnType type) {
  RowStore store({type});
  RowStore::Cells cells = store.cells(store.append());
  cells.setInteger(0, 0);  // all bits 0 are the number 0 too
  if (engine::isText(type)) return Value::ofText("");
  return type == ColumnType::kBinary ? Value::ofBytes("") : valueOf(store.row(0), 0, type);
}

/// As a person would name it.
std::string textOf(const RowStore::Row& row, std::size_t place, ColumnType type) {
  const Value value = valueOf(row, place, type);
  switch (value.kind) {
    case Value::Kind::kNull:
      return "Null";
    case Value::Kind::kText:
    case Value::Kind::kBytes:
      return fmt::format("\"{}\"", value.text);
    case Value::Kind::kReal:
    case Value::Kind::kDate:
      return fmt::format("{}", value.real);
    case Value::Kind::kCurrency:
      return fmt::format("{}", Currency::fromScaled(value.integer).toDouble());
    default:
      return fmt::format("{}", value.integer);
  }
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0x9E37'79B9'7F4A'7C15;
  return hash ^ hash >> 32U;
}

std::uint64_t mixed(std::uint64_t hash, std::string_view text) {
  hash = mixed(hash, text.size());
  for (; !text.empty(); text.remove_prefix(std::min<std::size_t>(text.size(), 8))) {
    std::uint64_t word = 0;
    std::memcpy(&word, text.data(), std::min<std::size_t>(text.size(), sizeof word));
    hash = mixed(hash, word);
  }
  return hash;
}

/// The two zeros are one number.
std::uint64_t bitsOf(double number) {
  return std::bit_cast<std::uint64_t>(number + 0.0);
}

}  // namespace

TableSource::TableSource(engine::Session& session, const dialect::Writer& writer,
                         const Table& table, std::string_view label)
    : session_(session), writer_(writer), table_(table), label_(label) {}

TableSource::Reading TableSource::begin() const {
  const std::string_view row = writer_.words().row;
  Reading reading;
  reading.statement = session_.prepare(
      writer_.composed(fmt::format("SELECT {0}, {1} FROM {2} WHERE {0}>? ORDER BY {0} LIMIT {3}",
                                   row, columnList(table_), inQuotes(table_.name), kPage)));
  return reading;
}

const RowStore* TableSource::next(Reading& reading) const {
  if (reading.isLast) return nullptr;
  const RowStore* const last = reading.page.get();
  // Numbers of rows begin with 1, unless somebody has given others.
  reading.statement->bind(
      1, Value::ofInteger(last == nullptr
                              ? std::numeric_limits<std::int64_t>::min()
                              : static_cast<std::int64_t>(last->real(last->rows() - 1, 0))));
  std::vector<ColumnType> types{ColumnType::kDouble};
  for (const Column& column : table_.columns) types.push_back(column.type);
  auto page = std::make_unique<RowStore>(std::move(types));
  try {
    reading.statement->fetch(*page);
  } catch (Error& error) {
    const RowStore& before = page->rows() > 0 || last == nullptr ? *page : *last;
    error.noting(before.rows() == 0
                     ? fmt::format("{}, table {}, in the first row", label_, table_.name)
                     : fmt::format("{}, table {}, in the row behind {}", label_, table_.name,
                                   keyOf(before.row(before.rows() - 1))));
    throw;
  }
  reading.page = std::move(page);
  reading.isLast = reading.page->rows() < kPage;
  return reading.page->rows() == 0 ? nullptr : reading.page.get();
}

std::int64_t TableSource::largest(const Column& counter) const {
  const auto read = session_.prepare(writer_.composed(
      fmt::format("SELECT max({}) FROM {}", inQuotes(counter.name), inQuotes(table_.name))));
  RowStore most({ColumnType::kInt32});
  read->fetch(most);
  return most.rows() == 0 || most.isNull(0, 0) ? 0 : most.integer(0, 0);
}

std::string TableSource::keyOf(const RowStore::Row& row) const {
  if (table_.key.empty()) return fmt::format("row {:.0f}", row.real(0));
  std::string key;
  for (const std::size_t position : table_.key) {
    const Column& column = table_.columns[position];
    if (!key.empty()) key += ", ";
    key += column.name + ' ' + textOf(row, kFirstColumn + position, column.type);
  }
  return key;
}

TableSum::TableSum(const Table& table)
    : isOrdered_(std::none_of(table.columns.begin(), table.columns.end(),
                              [](const Column& column) { return column.autoNumber; })) {
  for (const Column& column : table.columns) types_.push_back(column.type);
}

void TableSum::add(const RowStore::Row& row) {
  ++rows_;
  std::uint64_t hash = mixed(1, isOrdered_ ? static_cast<std::uint64_t>(rows_) : 0);
  for (std::size_t i = 0; i < types_.size(); ++i) {
    const std::size_t place = TableSource::kFirstColumn + i;
    hash = mixed(hash, row.isNull(place) ? 0 : 1);
    if (row.isNull(place)) continue;
    switch (types_[i]) {
      case ColumnType::kSingle:
        hash = mixed(hash, bitsOf(static_cast<double>(static_cast<float>(row.real(place)))));
        break;
      case ColumnType::kDouble:
      case ColumnType::kDate:
        hash = mixed(hash, bitsOf(row.real(place)));
        break;
      case ColumnType::kText:
      case ColumnType::kMemo:
      case ColumnType::kBinary:
        hash = mixed(hash, row.text(place));
        break;
      default:
        hash = mixed(hash, static_cast<std::uint64_t>(row.integer(place)));
        break;
    }
  }
  sum_ += hash;
}

TableTarget::TableTarget(engine::Session& session, const dialect::Writer& writer,
                         const Table& table)
    : session_(session),
      writer_(writer),
      table_(table),
      batch_(std::clamp<std::size_t>(kMostValues / std::max<std::size_t>(table.columns.size(), 1),
                                     1, kMostBatch)) {}

TableTarget::~TableTarget() = default;

std::unique_ptr<engine::Prepared> TableTarget::prepare(std::size_t rows) const {
  std::string values = "(?";
  for (std::size_t i = 1; i < table_.columns.size(); ++i) values += ",?";
  values += ')';
  std::string text = fmt::format("INSERT INTO {} ({}) VALUES {}", inQuotes(table_.name),
                                 columnList(table_), values);
  for (std::size_t i = 1; i < rows; ++i) text.append(",").append(values);
  auto statement = session_.prepare(writer_.composed(text));
  // An engine that tells types apart learns them here, and not from the first row that has a value.
  int place = 0;
  for (std::size_t i = 0; i < rows; ++i) {
    for (const Column& column : table_.columns) statement->bind(++place, sampleOf(column.type));
  }
  return statement;
}

void TableTarget::write(engine::Prepared& statement, const RowStore& page, std::size_t first,
                        std::size_t rows) const {
  int place = 0;
  for (std::size_t i = first; i < first + rows; ++i) {
    const RowStore::Row row = page.row(i);
    for (std::size_t c = 0; c < table_.columns.size(); ++c) {
      statement.bind(++place, valueOf(row, TableSource::kFirstColumn + c, table_.columns[c].type));
    }
  }
  statement.send();
}

void TableTarget::add(const RowStore& page) {
  std::size_t at = 0;
  if (batch_ > 1 && page.rows() >= batch_) {
    if (!many_) many_ = prepare(batch_);
    for (; at + batch_ <= page.rows(); at += batch_) write(*many_, page, at, batch_);
  }
  for (; at < page.rows(); ++at) {
    if (!one_) one_ = prepare(1);
    write(*one_, page, at, 1);
  }
}

void Unfit::add(std::string what) {
  if (++count_ <= kMostUnfit) first_.push_back(std::move(what));
}

void Unfit::lookAt(const TableSource& source, const RowStore::Row& row,
                   const engine::Destination& destination) {
  const std::vector<Column>& columns = source.table().columns;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::size_t place = TableSource::kFirstColumn + i;
    if (row.isNull(place)) continue;
    const std::string why = destination.whyNot(columns[i], row, place);
    if (why.empty()) continue;
    add(fmt::format("{}, table {}, {}: {} {}", source.label(), source.table().name,
                    source.keyOf(row), columns[i].name, why));
  }
}

void Unfit::lookAt(std::string_view label, const std::vector<engine::Index>& indexes) {
  for (const engine::Index& index : indexes) {
    if (std::find(index.columns.begin(), index.columns.end(), "") == index.columns.end()) continue;
    add(fmt::format("{}, table {}: the index {} is one of an expression", label, index.table,
                    index.name));
  }
}

void Unfit::mustBeNone() const {
  if (count_ == 0) return;
  Error error(errors::kTypeMismatch, "Relocation",
              fmt::format("The other engine cannot hold {}; nothing was moved.",
                          count_ == 1 ? "a value" : fmt::format("{} values", count_)));
  for (const std::string& each : first_) error.noting(each);
  if (count_ > first_.size()) error.noting(fmt::format("and {} more", count_ - first_.size()));
  throw error;
}

bool isAlike(const Table& a, const Table& b) {
  return a.key == b.key && std::equal(a.columns.begin(), a.columns.end(), b.columns.begin(),
                                      b.columns.end(), [](const Column& x, const Column& y) {
                                        return x.name == y.name && x.type == y.type &&
                                               x.size == y.size && x.autoNumber == y.autoNumber;
                                      });
}

}  // namespace tavelor
