// SPDX-License-Identifier: MIT
// Values of columns on their way from and to JSON.
#include "tavelor/web/class_values.hpp"

#include <cmath>
#include <limits>
#include <optional>

#include <fmt/format.h>
#include <openssl/evp.h>

#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor::web {

using engine::ColumnType;

namespace {

constexpr std::size_t kMemoOfList = 200;  // characters

/// Nothing for a text that is no base64.
std::optional<Bytes> bytesOf(const std::string& base64) {
  constexpr std::size_t kQuantum = 4;
  if (base64.size() % kQuantum != 0) return std::nullopt;
  Bytes bytes(base64.size() / kQuantum * 3);
  const int size = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                   reinterpret_cast<const unsigned char*>(base64.data()),
                                   static_cast<int>(base64.size()));
  if (size < 0) return std::nullopt;
  std::size_t padding = 0;
  if (base64.ends_with("==")) {
    padding = 2;
  } else if (base64.ends_with('=')) {
    padding = 1;
  }
  bytes.resize(static_cast<std::size_t>(size) - padding);
  return bytes;
}

Variant numberOf(const Json& json, const ClassColumn& column, std::string& fault) {
  if (!json.is_number()) {
    fault = "must be a number";
    return {};
  }
  const auto number = json.get<double>();
  if (!std::isfinite(number)) {
    fault = "is too large a number";
    return {};
  }
  if (!engine::isWhole(column.type)) return number;
  const engine::WholeRange range = engine::wholeRange(column.type);
  if (number != std::trunc(number)) {
    fault = "must be a whole number";
  } else if (number < static_cast<double>(range.least) ||
             number > static_cast<double>(range.most)) {
    fault = fmt::format("must be from {} to {}", range.least, range.most);
  } else {
    return static_cast<std::int32_t>(number);
  }
  return {};
}

Variant textOf(const Json& json, std::string& fault) {
  if (!json.is_string()) {
    fault = "must be a text";
    return {};
  }
  const auto& text = json.get_ref<const std::string&>();
  if (text.find('\0') != std::string::npos) {
    fault = "has a character of code 0";
    return {};
  }
  return text;
}

/// An entry of a form that is not on any screen.
class Entry final : public Control {
 public:
  Entry(std::string field, std::string text) : field_(std::move(field)), text_(std::move(text)) {}
  ControlKind kind() const override { return ControlKind::kTextBox; }
  std::string DataField() const override { return field_; }
  std::string defaultText() const override { return text_; }

 private:
  std::string field_;
  std::string text_;
};

Variant storedValue(const Recordset& rows, const ClassColumn& column) {
  RecordsetParts& parts = rows.parts();
  const RecordsetStore::Row row = parts.readableRow();
  return column.isHidden ? parts.store->value(row, column.place)
                         : parts.edit.value(row, column.place);
}

}  // namespace

Variant valueOf(const Json& json, const ClassColumn& column, std::string& fault) {
  if (json.is_null()) return Null();
  switch (column.type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      return textOf(json, fault);
    case ColumnType::kBoolean:
      if (json.is_boolean()) return json.get<bool>();
      fault = "must be true or false";
      return {};
    case ColumnType::kDate: {
      const auto day = json.is_string() ? dayOf(json.get_ref<const std::string&>()) : std::nullopt;
      if (day) return *day;
      fault = "must be a day as 2026-11-20, with a time as 2026-11-20T10:32:00";
      return {};
    }
    case ColumnType::kBinary: {
      auto bytes = json.is_string() ? bytesOf(json.get_ref<const std::string&>()) : std::nullopt;
      if (bytes) return *std::move(bytes);
      fault = "must be base64";
      return {};
    }
    default:
      return numberOf(json, column, fault);
  }
}

Json cellOf(const Recordset& rows, const ClassColumn& column) {
  return web::toJson(storedValue(rows, column));
}

Json cellOfList(const Recordset& rows, const ClassColumn& column) {
  const Variant value = storedValue(rows, column);
  if (const auto* const bytes = value.getIf<Bytes>()) return bytes->size();
  const auto* const words = value.getIf<std::string>();
  if (words != nullptr && column.type == ColumnType::kMemo) return text::left(*words, kMemoOfList);
  return web::toJson(value);
}

Json valuesOf(const Recordset& rows, const ClassColumns& columns) {
  Json values = Json::object();
  for (const ClassColumn& column : columns) {
    if (!values.contains(column.name)) values[column.name] = cellOf(rows, column);
  }
  return values;
}

Json keyOfRow(const Recordset& rows, const ClassColumns& columns) {
  Json key = Json::object();
  for (const ClassColumn& column : columns) {
    if (column.isKey && !key.contains(column.name)) key[column.name] = cellOf(rows, column);
  }
  return key;
}

std::string faultOf(const RecordClass& record, const ClassColumn& column, const Variant& value) {
  if (value.isNull() || value.isEmpty()) return {};
  if (column.type == ColumnType::kBinary) return {};
  const Entry entry(column.name, value.toText(Apartment::current().locale()));
  if (column.type == ColumnType::kText) {
    const auto most = static_cast<std::size_t>(record.ValidaDefinedSize(entry));
    const std::size_t length = text::length(entry.defaultText());
    if (length > most) return fmt::format("holds {} characters, and this has {}", most, length);
  }
  return record.ValidaValue(entry) ? std::string() : "does not read as its type";
}

Json rowsOf(Recordset& rows, const ClassColumns& columns, std::int64_t limit) {
  Json list = Json::array();
  for (; limit > 0 && !rows.Eof(); --limit) {
    Json row = Json::array();
    for (const ClassColumn& column : columns) row.push_back(cellOfList(rows, column));
    list.push_back(std::move(row));
    rows.MoveNext();
  }
  return list;
}

}  // namespace tavelor::web
