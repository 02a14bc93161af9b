// SPDX-License-Identifier: MIT
// The columns of a record set.
#include "tavelor/services/recordset/field.hpp"

#include <algorithm>
#include <optional>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/field_types.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

namespace {

using dialect::OutputColumn;
using engine::ColumnType;

constexpr std::string_view kSource = "Field";

const OutputColumn& columnOf(const RecordsetSchema& schema, std::size_t column) {
  if (column >= schema.columns().size()) raise(errors::kItemNotFound, kSource);
  return schema.columns()[column];
}

bool isLong(ColumnType type) {
  return type == ColumnType::kMemo || type == ColumnType::kBinary;
}

}  // namespace

std::optional<ColumnType> storageOf(DataType type) {
  switch (type) {
    case DataType::kInt16:
      return ColumnType::kInt16;
    case DataType::kInt32:
      return ColumnType::kInt32;
    case DataType::kSingle:
      return ColumnType::kSingle;
    case DataType::kDouble:
    case DataType::kDecimal:
    case DataType::kNumeric:
      return ColumnType::kDouble;
    case DataType::kCurrency:
      return ColumnType::kCurrency;
    case DataType::kDate:
    case DataType::kDbDate:
    case DataType::kDbTime:
    case DataType::kTimestamp:
      return ColumnType::kDate;
    case DataType::kBoolean:
      return ColumnType::kBoolean;
    case DataType::kByte:
      return ColumnType::kByte;
    case DataType::kGuid:
    case DataType::kChar:
    case DataType::kWChar:
    case DataType::kVarChar:
    case DataType::kVarWChar:
      return ColumnType::kText;
    case DataType::kBstr:
    case DataType::kLongVarChar:
    case DataType::kLongVarWChar:
      return ColumnType::kMemo;
    case DataType::kBinary:
    case DataType::kVarBinary:
    case DataType::kLongVarBinary:
      return ColumnType::kBinary;
    case DataType::kInt64:
      break;
  }
  return std::nullopt;
}

// ---- Fields

Fields::Fields(Recordset& set) : set_(&set.parts()) {}

std::int32_t Fields::Count() const {
  if (!set_->store && !set_->appended) return 0;
  return static_cast<std::int32_t>(set_->schema().width());
}

Field Fields::Item(std::int32_t position) const {
  const RecordsetSchema& schema = set_->schema();
  if (position < 0 || static_cast<std::size_t>(position) >= schema.width()) {
    raise(errors::kItemNotFound, "Fields", "There is no field " + std::to_string(position));
  }
  return {*set_, static_cast<std::size_t>(position)};
}

Field Fields::byName(std::string_view name) const {
  return {*set_, set_->schema().require(name, "Fields")};
}

Field Fields::Item(const Variant& which) const {
  if (const auto* name = which.getIf<std::string>()) return byName(*name);
  if (!which.isNumber()) raise(errors::kItemNotFound, "Fields");
  const double position = which.toDouble(*Locale::neutral());
  if (!(position > -1.0 && position < 1e9)) raise(errors::kItemNotFound, "Fields");
  return Item(static_cast<std::int32_t>(position));
}

void Fields::Append(std::string_view name, DataType type, std::int32_t size,
                    std::int32_t attributes) {
  if (set_->store) raise(errors::kObjectOpen, "Fields");
  if (set_->connection) raise(errors::kNotAllowedInContext, "Fields");
  const std::optional<ColumnType> storage = storageOf(type);
  if (name.empty() || !storage || size < 0) raise(errors::kInvalidArgument, "Fields");
  if (!set_->appended) set_->appended = std::make_unique<AppendedFields>();
  AppendedFields& fields = *set_->appended;
  if (fields.schema.find(name) >= 0) {
    raise(errors::kAlreadyInCollection, "Fields", "There is a field '" + std::string(name) + "'");
  }
  OutputColumn column;
  column.name = name;
  column.type = *storage;
  column.definedSize = *storage == ColumnType::kText ? size : fixedSize(*storage);
  constexpr std::int32_t kAnyNull = field_attribute::kIsNullable | field_attribute::kMayBeNull;
  column.nullable = (attributes & kAnyNull) != 0;
  fields.plan->columns.push_back(std::move(column));
  fields.schema.declared.push_back(static_cast<std::int32_t>(type));
}

// ---- What a field is

Field::Field(Recordset& set, std::size_t column) : Field(set.parts(), column) {}

const std::string& Field::Name() const {
  return columnOf(set_->schema(), column_).name;
}

std::int32_t Field::Type() const {
  columnOf(set_->schema(), column_);
  return set_->schema().typeNumber(column_);
}

std::int32_t Field::DefinedSize() const {
  return columnOf(set_->schema(), column_).definedSize;
}

std::int32_t Field::Precision() const {
  switch (columnOf(set_->schema(), column_).type) {
    case ColumnType::kByte:
      return 3;
    case ColumnType::kInt16:
      return 5;
    case ColumnType::kInt32:
      return 10;
    case ColumnType::kSingle:
      return 7;
    case ColumnType::kDouble:
      return 15;
    case ColumnType::kCurrency:
      return 19;
    default:
      return 255;
  }
}

std::int32_t Field::Attributes() const {
  const OutputColumn& column = columnOf(set_->schema(), column_);
  std::int32_t bits = 0;
  if (column.nullable) bits |= field_attribute::kIsNullable | field_attribute::kMayBeNull;
  if (isLong(column.type)) bits |= field_attribute::kLong;
  const bool isWritten = !set_->store || set_->store->detached || column.updatable;
  if (isWritten) bits |= field_attribute::kUpdatable;
  return bits;
}

// ---- What it holds

std::int32_t Field::ActualSize() const {
  const Variant value = Value();
  if (value.isNull() || value.isEmpty()) return 0;
  if (const auto* s = value.getIf<std::string>())
    return static_cast<std::int32_t>(text::length(*s));
  if (const auto* b = value.getIf<Bytes>()) return static_cast<std::int32_t>(b->size());
  return DefinedSize();
}

Variant Field::Value() const {
  columnOf(set_->opened().schema(), column_);
  set_->edit.touch(column_);
  return set_->edit.value(set_->cursor.readableRow(), column_);
}

void Field::Value(const Variant& value) {
  columnOf(set_->opened().schema(), column_);
  set_->edit.touch(column_);
  set_->assign(column_, value);
}

const std::string& Field::BaseTable() const {
  return columnOf(set_->schema(), column_).baseTable;
}

Variant Field::OriginalValue() const {
  columnOf(set_->opened().schema(), column_);
  return set_->store->baseValue(set_->cursor.row(), column_);
}

Variant Field::UnderlyingValue() const {
  columnOf(set_->opened().schema(), column_);
  return set_->store->underlyingValue(set_->cursor.row(), column_);
}

void Field::AppendChunk(const Variant& data) {
  if (!isLong(columnOf(set_->opened().schema(), column_).type)) {
    raise(errors::kNotAllowedInContext, kSource, "Only memo and binary fields take pieces");
  }
  set_->appendChunk(column_, data);
}

Variant Field::GetChunk(std::int32_t length) {
  if (!isLong(columnOf(set_->opened().schema(), column_).type)) {
    raise(errors::kNotAllowedInContext, kSource, "Only memo and binary fields come in pieces");
  }
  if (length < 0) raise(errors::kInvalidArgument, kSource, "A length is not negative");
  return set_->getChunk(column_, static_cast<std::size_t>(length));
}

}  // namespace tavelor
