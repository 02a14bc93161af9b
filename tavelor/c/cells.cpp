// SPDX-License-Identifier: MIT
// Cells of record sets: one at a time, and many rows at once.
#include <optional>
#include <vector>

#include "tavelor/c/recordsets.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/recordset/block_reader.hpp"
#include "tavelor/services/recordset/row_reader.hpp"

using namespace tavelor::c;
using tavelor::engine::ColumnType;

namespace {

std::string_view kindOf(ColumnType type) {
  if (tavelor::engine::isWhole(type)) return "whole numbers";
  if (tavelor::engine::isText(type)) return "texts";
  if (tavelor::engine::isNumeric(type)) return type == ColumnType::kCurrency ? "money" : "numbers";
  if (type == ColumnType::kDate) return "dates";
  return type == ColumnType::kBoolean ? "flags" : "bytes";
}

/// One cell, read where it lies, unless its row is in edit or has changes.
class Cell {
 public:
  Cell(tavelor_object* given, std::int32_t column)
      : object_(asRecordset(given)), reader_(*object_.recordset) {
    const bool liesThere = reader_.toCurrentRow();
    if (column < 0 || static_cast<std::size_t>(column) >= reader_.width()) {
      tavelor::raise(tavelor::errors::kItemNotFound, kSource,
                     "There is no field " + std::to_string(column));
    }
    column_ = static_cast<std::size_t>(column);
    if (!liesThere) changed_ = object_.recordset->CurrentRow().value(column);
  }

  ColumnType type() const { return reader_.type(column_); }
  /// Raises 3421 unless the column is of a type that fits, 94 for Null where nobody is told.
  bool isNull(bool fits, std::string_view wanted, std::int32_t* is_null) const {
    if (!fits) {
      tavelor::raise(
          tavelor::errors::kWrongType, kSource,
          named() + " holds " + std::string(kindOf(type())) + ", not " + std::string(wanted));
    }
    const bool null =
        changed_ ? changed_->isNull() || changed_->isEmpty() : reader_.isNull(column_);
    if (null && is_null == nullptr) {
      tavelor::raise(tavelor::errors::kInvalidUseOfNull, kSource, named() + " is Null in this row");
    }
    if (is_null != nullptr) *is_null = null ? 1 : 0;
    return null;
  }

  /// Of whole numbers, flags (-1, 0) and money.
  std::int64_t whole() const {
    if (!changed_) return reader_.integer(column_);
    if (const auto* flag = changed_->getIf<bool>()) return *flag ? -1 : 0;
    if (const auto* small = changed_->getIf<std::int16_t>()) return *small;
    if (const auto* money = changed_->getIf<tavelor::Currency>()) return money->scaled();
    return *changed_->getIf<std::int32_t>();
  }
  /// Of numbers with a fraction, and dates.
  double real() const {
    if (!changed_) return reader_.real(column_);
    if (const auto* date = changed_->getIf<tavelor::Date>()) return date->days();
    return changed_->toDouble(*tavelor::Locale::neutral());
  }
  /// Of texts and bytes. Of a changed row it is kept with the handle.
  std::string_view bytes() const {
    if (!changed_) return reader_.text(column_);
    if (const auto* text = changed_->getIf<std::string>()) {
      return object_.texts.emplace_back(*text);
    }
    const tavelor::Bytes& held = *changed_->getIf<tavelor::Bytes>();
    return object_.texts.emplace_back(reinterpret_cast<const char*>(held.data()), held.size());
  }

 private:
  std::string named() const {
    return "Field '" + object_.recordset->Field(static_cast<std::int32_t>(column_)).Name() + "'";
  }

  tavelor_object& object_;
  tavelor::RowReader reader_;
  std::size_t column_ = 0;
  std::optional<tavelor::Variant> changed_;
};

}  // namespace

tavelor_status tavelor_recordset_get_integer(tavelor_object* recordset, int32_t column,
                                             int64_t* value, int32_t* is_null,
                                             tavelor_error** error) {
  return answered(error, [&] {
    const Cell cell(recordset, column);
    output(value, "value");
    const bool isFlag = cell.type() == ColumnType::kBoolean;
    const bool fits = isFlag || tavelor::engine::isWhole(cell.type());
    if (cell.isNull(fits, "whole numbers", is_null)) {
      *value = 0;
    } else {
      *value = isFlag ? (cell.whole() != 0 ? 1 : 0) : cell.whole();
    }
  });
}

tavelor_status tavelor_recordset_get_number(tavelor_object* recordset, int32_t column,
                                            double* value, int32_t* is_null,
                                            tavelor_error** error) {
  return answered(error, [&] {
    const Cell cell(recordset, column);
    output(value, "value");
    const ColumnType type = cell.type();
    if (cell.isNull(tavelor::engine::isNumeric(type), "numbers", is_null)) {
      *value = 0;
    } else if (type == ColumnType::kCurrency) {
      *value = tavelor::Currency::fromScaled(cell.whole()).toDouble();
    } else {
      *value = tavelor::engine::isWhole(type) ? static_cast<double>(cell.whole()) : cell.real();
    }
  });
}

tavelor_status tavelor_recordset_get_money(tavelor_object* recordset, int32_t column,
                                           int64_t* value, int32_t* is_null,
                                           tavelor_error** error) {
  return answered(error, [&] {
    const Cell cell(recordset, column);
    output(value, "value");
    const bool isMoney = cell.type() == ColumnType::kCurrency;
    const bool fits = isMoney || tavelor::engine::isWhole(cell.type());
    if (cell.isNull(fits, "money", is_null)) {
      *value = 0;
    } else {
      *value = isMoney ? cell.whole() : cell.whole() * TAVELOR_MONEY_SCALE;
    }
  });
}

tavelor_status tavelor_recordset_get_date(tavelor_object* recordset, int32_t column, double* value,
                                          int32_t* is_null, tavelor_error** error) {
  return answered(error, [&] {
    const Cell cell(recordset, column);
    output(value, "value");
    const bool null = cell.isNull(cell.type() == ColumnType::kDate, "dates", is_null);
    *value = null ? 0 : cell.real();
  });
}

tavelor_status tavelor_recordset_get_text(tavelor_object* recordset, int32_t column,
                                          const char** data, size_t* size, int32_t* is_null,
                                          tavelor_error** error) {
  return answered(error, [&] {
    const Cell cell(recordset, column);
    output(data, "data");
    output(size, "size");
    const bool null = cell.isNull(tavelor::engine::isText(cell.type()), "texts", is_null);
    const std::string_view bytes = null ? std::string_view() : cell.bytes();
    *data = bytes.data();
    *size = bytes.size();
  });
}

tavelor_status tavelor_recordset_get_bytes(tavelor_object* recordset, int32_t column,
                                           const void** data, size_t* size, int32_t* is_null,
                                           tavelor_error** error) {
  return answered(error, [&] {
    const Cell cell(recordset, column);
    output(data, "data");
    output(size, "size");
    const bool null = cell.isNull(cell.type() == ColumnType::kBinary, "bytes", is_null);
    const std::string_view bytes = null ? std::string_view() : cell.bytes();
    *data = bytes.data();
    *size = bytes.size();
  });
}

tavelor_status tavelor_recordset_get_value(tavelor_object* recordset, int32_t column, int32_t which,
                                           tavelor_value* value, tavelor_error** error) {
  return answered(error, [&] {
    const tavelor_object& object = asRecordset(recordset);
    output(value, "value");
    requireOneOf(which, "which", TAVELOR_CELL_CURRENT, TAVELOR_CELL_ORIGINAL,
                 TAVELOR_CELL_UNDERLYING);
    const tavelor::Field field = object.recordset->Field(column);
    put(*value,
        which == TAVELOR_CELL_CURRENT    ? field.Value()
        : which == TAVELOR_CELL_ORIGINAL ? field.OriginalValue()
                                         : field.UnderlyingValue(),
        object.sharedRoom());
  });
}

// ---------------------------------------------------------------------------------------------
// Many rows

tavelor_status tavelor_recordset_read(tavelor_object* recordset, int64_t first, int64_t rows,
                                      tavelor_column_buffer* buffers, size_t count, int64_t* read,
                                      tavelor_error** error) {
  return answered(error, [&] {
    tavelor::Recordset& set = *asRecordset(recordset).recordset;
    requireList(buffers, count, "buffers");
    output(read, "read");
    if (first < 0 || rows < 0) {
      tavelor::raise(tavelor::errors::kInvalidCall, kSource, "`first` and `rows` are 0 or more");
    }
    std::vector<tavelor::ColumnTarget> targets;
    targets.reserve(count);
    for (size_t i = 0; i < count; ++i) {
      const tavelor_column_buffer& buffer = sized(&buffers[i], "buffers");
      targets.push_back(
          {.column = buffer.column < 0 ? SIZE_MAX : static_cast<std::size_t>(buffer.column),
           .as = static_cast<tavelor::CellLayout>(buffer.as),
           .values = buffer.values,
           .validity = buffer.validity,
           .offsets = buffer.offsets,
           .bytes = buffer.bytes,
           .capacity = buffer.capacity});
    }
    const std::int64_t got = tavelor::readBlock(set, first, rows, targets);
    for (size_t i = 0; i < count; ++i) {
      buffers[i].used = targets[i].used;
      buffers[i].null_count = targets[i].nullCount;
    }
    *read = got;
  });
}
