// SPDX-License-Identifier: MIT
// Rows and pending changes that a record set shares with its clones.
#include "tavelor/services/recordset/recordset_store.hpp"

#include <algorithm>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {

namespace {

using engine::ColumnType;

std::vector<ColumnType> typesOf(const std::vector<dialect::OutputColumn>& columns) {
  std::vector<ColumnType> types;
  types.reserve(columns.size());
  for (const dialect::OutputColumn& column : columns) types.push_back(column.type);
  return types;
}

char foldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool equalsFolded(std::string_view a, std::string_view b) {
  const bool plain = [&] {
    for (const char c : a) {
      if (static_cast<unsigned char>(c) >= 0x80) return false;
    }
    return true;
  }();
  if (!plain) return text::equalsIgnoreCase(a, b);
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return foldAscii(x) == foldAscii(y);
         });
}

/// Never a null pointer, which an empty vector may have and memcpy must not get.
std::string_view viewOf(const Bytes& bytes) {
  if (bytes.empty()) return "";
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::int64_t integerOf(const Variant& value) {
  if (const auto* b = value.getIf<bool>()) return *b ? -1 : 0;
  if (const auto* i = value.getIf<std::int16_t>()) return *i;
  if (const auto* l = value.getIf<std::int32_t>()) return *l;
  return value.getIf<Currency>()->scaled();
}

double realOf(const Variant& value) {
  if (const auto* f = value.getIf<float>()) return widen(*f);
  if (const auto* d = value.getIf<double>()) return *d;
  return value.getIf<Date>()->days();
}

std::string_view textOf(const Variant& value) {
  if (const auto* s = value.getIf<std::string>()) return *s;
  return viewOf(*value.getIf<Bytes>());
}

bool isBlank(const Variant& value) {
  return value.isNull() || value.isEmpty();
}

}  // namespace

const WrittenCell* findCell(const std::vector<WrittenCell>& cells, std::size_t column) {
  for (const WrittenCell& cell : cells) {
    if (cell.column == column) return &cell;
  }
  return nullptr;
}

void putCell(std::vector<WrittenCell>& cells, std::size_t column, Variant value) {
  for (WrittenCell& cell : cells) {
    if (cell.column == column) {
      cell.value = std::move(value);
      return;
    }
  }
  cells.push_back({static_cast<std::uint32_t>(column), std::move(value)});
}

std::size_t RecordsetSchema::width() const {
  std::size_t width = columns().size();
  while (width > 0 && columns()[width - 1].hidden) --width;
  return width;
}

int RecordsetSchema::find(std::string_view name) const {
  const std::size_t count = width();
  // Nearly always the name comes as the statement wrote it.
  for (std::size_t i = 0; i < count; ++i) {
    if (columns()[i].name == name) {
      // An earlier column may differ from it in case only.
      for (std::size_t j = 0; j < i; ++j) {
        if (equalsFolded(name, columns()[j].name)) return static_cast<int>(j);
      }
      return static_cast<int>(i);
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (equalsFolded(name, columns()[i].name)) return static_cast<int>(i);
  }
  return -1;
}

std::size_t RecordsetSchema::require(std::string_view name, std::string_view source) const {
  const int found = find(name);
  if (found >= 0) return static_cast<std::size_t>(found);
  std::vector<std::string_view> names;
  for (std::size_t i = 0; i < width(); ++i) names.push_back(columns()[i].name);
  const std::string nearest = text::nearest(name, names);
  std::string detail = "There is no field '" + std::string(name) + "'";
  if (!nearest.empty()) detail += "; did you mean '" + nearest + "'?";
  raise(errors::kItemNotFound, source, detail);
}

std::int32_t RecordsetSchema::typeNumber(std::size_t column) const {
  return declared.empty() ? static_cast<std::int32_t>(columns()[column].type) : declared[column];
}

RecordsetStore::RecordsetStore(RecordsetSchema schema, const std::shared_ptr<const Locale>& locale)
    : schema_(std::move(schema)),
      width_(schema_.width()),
      locale_(locale ? locale : Locale::spanish()),
      rows_(typesOf(schema_.columns())) {}

RecordsetStore::Row RecordsetStore::append() {
  return static_cast<Row>(rows_.append());
}

void RecordsetStore::setFlags(Row row, std::uint8_t flags) {
  if (row >= flags_.size()) {
    if (flags == 0) return;
    flags_.resize(std::max<std::size_t>(rows_.rows(), row + std::size_t{1}));
  }
  flags_[row] = flags;
}

const RecordsetStore::Edit* RecordsetStore::edit(Row row) const {
  if ((flags(row) & kEdited) == 0) return nullptr;
  return &edits_.find(row)->second;
}

RecordsetStore::Edit* RecordsetStore::edit(Row row) {
  return const_cast<Edit*>(std::as_const(*this).edit(row));
}

RecordsetStore::Edit& RecordsetStore::editOf(Row row) {
  Edit& edit = edits_[row];
  setFlags(row, static_cast<std::uint8_t>(flags(row) | kEdited));
  return edit;
}

void RecordsetStore::dropEdit(Row row) {
  edits_.erase(row);
  setFlags(row, static_cast<std::uint8_t>(flags(row) & ~(kEdited | kDeleted)));
}

Variant cellOf(const engine::RowStore& rows, std::size_t row, std::size_t column) {
  if (rows.isNull(row, column)) return Null{};
  switch (rows.type(column)) {
    case ColumnType::kBoolean:
      return rows.integer(row, column) != 0;
    case ColumnType::kByte:
    case ColumnType::kInt16:
      return static_cast<std::int16_t>(rows.integer(row, column));
    case ColumnType::kInt32:
      return static_cast<std::int32_t>(rows.integer(row, column));
    case ColumnType::kSingle:
      return static_cast<float>(rows.real(row, column));
    case ColumnType::kDouble:
      return rows.real(row, column);
    case ColumnType::kCurrency:
      return Currency::fromScaled(rows.integer(row, column));
    case ColumnType::kDate:
      return Date(rows.real(row, column));
    case ColumnType::kText:
    case ColumnType::kMemo:
      return rows.text(row, column);
    case ColumnType::kBinary: {
      const std::string_view bytes = rows.text(row, column);
      const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
      return Bytes(first, first + bytes.size());
    }
  }
  return Null{};
}

Variant RecordsetStore::baseValue(Row row, std::size_t column) const {
  return cellOf(rows_, row, column);
}

const Variant* RecordsetStore::newerUnderlying(Row row, std::size_t column) const {
  if (underlying_.empty()) return nullptr;
  const auto found = underlying_.find(row);
  if (found == underlying_.end()) return nullptr;
  const WrittenCell* cell = findCell(found->second, column);
  return cell != nullptr ? &cell->value : nullptr;
}

Variant RecordsetStore::underlyingValue(Row row, std::size_t column) const {
  const Variant* newer = newerUnderlying(row, column);
  return newer != nullptr ? *newer : baseValue(row, column);
}

void RecordsetStore::setUnderlying(Row row, std::size_t column, const Variant& value) {
  if (value == baseValue(row, column)) return dropUnderlying(row, column);
  putCell(underlying_[row], column, value);
}

void RecordsetStore::eraseUnderlying(Row row, std::size_t column) {
  const auto found = underlying_.find(row);
  if (found == underlying_.end()) return;
  std::erase_if(found->second, [&](const WrittenCell& cell) { return cell.column == column; });
  if (found->second.empty()) underlying_.erase(found);
}

Variant RecordsetStore::value(Row row, std::size_t column) const {
  if (const Edit* pending = edit(row)) {
    if (const WrittenCell* cell = findCell(pending->cells, column)) return cell->value;
    if (pending->operation == Operation::kInsert) return Empty{};
  }
  return baseValue(row, column);
}

void RecordsetStore::setBase(Row row, std::size_t column, const Variant& value) {
  if (isBlank(value)) return rows_.setNull(row, column);
  switch (rows_.type(column)) {
    case ColumnType::kBoolean:
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
    case ColumnType::kCurrency:
      return rows_.setInteger(row, column, integerOf(value));
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
      return rows_.setReal(row, column, realOf(value));
    case ColumnType::kText:
    case ColumnType::kMemo:
    case ColumnType::kBinary:
      return rows_.setText(row, column, textOf(value));
  }
}

engine::Value RecordsetStore::baseForEngine(Row row, std::size_t column) const {
  if (rows_.isNull(row, column)) return engine::Value::null();
  switch (rows_.type(column)) {
    case ColumnType::kBoolean:
      return engine::Value::ofBoolean(rows_.integer(row, column) != 0);
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return engine::Value::ofInteger(rows_.integer(row, column));
    case ColumnType::kCurrency:
      return engine::Value::ofCurrency(Currency::fromScaled(rows_.integer(row, column)));
    case ColumnType::kSingle:
    case ColumnType::kDouble:
      return engine::Value::ofReal(rows_.real(row, column));
    case ColumnType::kDate:
      return engine::Value::ofDate(Date(rows_.real(row, column)));
    case ColumnType::kText:
    case ColumnType::kMemo:
      return engine::Value::ofText(rows_.text(row, column));
    case ColumnType::kBinary:
      return engine::Value::ofBytes(rows_.text(row, column));
  }
  return engine::Value::null();
}

std::size_t RecordsetStore::memory() const {
  std::size_t bytes = sizeof(*this) + rows_.memory() + flags_.capacity();
  for (const auto& [row, pending] : edits_) {
    bytes += sizeof(std::pair<const Row, Edit>) + 2 * sizeof(void*) +
             pending.cells.capacity() * sizeof(WrittenCell);
    for (const WrittenCell& cell : pending.cells) {
      if (const auto* s = cell.value.getIf<std::string>()) bytes += s->capacity();
      if (const auto* b = cell.value.getIf<Bytes>()) bytes += b->capacity();
    }
  }
  for (const auto& [row, cells] : underlying_) {
    bytes += sizeof(std::pair<const Row, std::vector<WrittenCell>>) + 2 * sizeof(void*) +
             cells.capacity() * sizeof(WrittenCell);
  }
  for (const auto& [place, value] : lookedUpWrites) {
    bytes += sizeof(std::pair<const std::string, Variant>) + 2 * sizeof(void*) + place.capacity();
    if (const auto* s = value.getIf<std::string>()) bytes += s->capacity();
  }
  return bytes;
}

bool EditedRow::isNull(std::size_t row, std::size_t column) const {
  if (const WrittenCell* cell = findCell(cells_, column)) return isBlank(cell->value);
  return added_ || store_.rows().isNull(row, column);
}

std::int64_t EditedRow::integer(std::size_t row, std::size_t column) const {
  if (const WrittenCell* cell = findCell(cells_, column)) return integerOf(cell->value);
  return store_.rows().integer(row, column);
}

double EditedRow::real(std::size_t row, std::size_t column) const {
  if (const WrittenCell* cell = findCell(cells_, column)) return realOf(cell->value);
  return store_.rows().real(row, column);
}

std::string_view EditedRow::text(std::size_t row, std::size_t column) const {
  if (const WrittenCell* cell = findCell(cells_, column)) return textOf(cell->value);
  return store_.rows().text(row, column);
}

engine::Value forEngine(const Variant& value) {
  switch (value.type()) {
    case VariantType::kBoolean:
      return engine::Value::ofBoolean(*value.getIf<bool>());
    case VariantType::kInt16:
    case VariantType::kInt32:
      return engine::Value::ofInteger(integerOf(value));
    case VariantType::kSingle:
    case VariantType::kDouble:
      return engine::Value::ofReal(realOf(value));
    case VariantType::kCurrency:
      return engine::Value::ofCurrency(*value.getIf<Currency>());
    case VariantType::kDate:
      return engine::Value::ofDate(*value.getIf<Date>());
    case VariantType::kText:
      return engine::Value::ofText(*value.getIf<std::string>());
    case VariantType::kBytes:
      return engine::Value::ofBytes(viewOf(*value.getIf<Bytes>()));
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kObject:
      break;
  }
  return engine::Value::null();
}

}  // namespace tavelor
