// SPDX-License-Identifier: MIT
// Classes as an address names them, and what the columns of their rows are.
#include "tavelor/web/class_shape.hpp"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/frame/strict_modes.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_values.hpp"
#include "tavelor/web/context.hpp"

namespace tavelor::web {

using engine::ColumnType;

namespace {

constexpr int kMoneyDecimals = 4;

std::string labelOf(std::string_view name) {
  std::string label(name);
  std::replace(label.begin(), label.end(), '_', ' ');
  return label;
}

Json toJson(const ClassColumn& column) {
  Json json = {{"name", column.name},           {"label", labelOf(column.name)},
               {"type", wordOf(column.type)},   {"size", column.size},
               {"nullable", column.isNullable}, {"key", column.isKey},
               {"writable", column.isWritable}};
  if (column.type == ColumnType::kCurrency) json["decimals"] = kMoneyDecimals;
  if (engine::isWhole(column.type)) json["decimals"] = 0;
  if (column.isHidden) json["hidden"] = true;
  return json;
}

/// What a mode did not open for: the caller's word or id, or the mode itself, whose statement some
/// engines refuse.
Failure notOpened(const Error& error, std::string_view mode, std::string_view id) {
  const std::string with = id.empty() ? std::string() : fmt::format(" with the id {}", id);
  return Failure::refused(
      fmt::format("The mode {} does not open{}: {}", mode, with, error.description()));
}

bool isOfMode(const Error& error) {
  const ErrorKind kind = error.kind();
  return kind == ErrorKind::kSyntax || kind == ErrorKind::kValue || kind == ErrorKind::kArgument ||
         kind == ErrorKind::kNotFound;
}

template <typename Work>
void opening(const Context& context, std::string_view mode, Work&& work) {
  try {
    work();
  } catch (const Error& error) {
    if (!isOfMode(error)) throw;
    throw notOpened(error, mode, context.query("id", ""));
  }
}

RecordClass* recordOf(const Component& component, Object& object) {
  auto* const record = dynamic_cast<RecordClass*>(&object);
  if (record != nullptr) return record;
  throw Failure::refused(
      fmt::format("{} has no rows of its own: its members are called, by {}/call.",
                  component.name(), component.name()));
}

}  // namespace

std::string_view wordOf(ColumnType type) {
  switch (type) {
    case ColumnType::kInt16:
    case ColumnType::kInt32:
    case ColumnType::kByte:
      return "integer";
    case ColumnType::kSingle:
    case ColumnType::kDouble:
      return "number";
    case ColumnType::kCurrency:
      return "money";
    case ColumnType::kDate:
      return "date";
    case ColumnType::kBoolean:
      return "flag";
    case ColumnType::kText:
      return "text";
    case ColumnType::kMemo:
      return "memo";
    case ColumnType::kBinary:
      return "binary";
  }
  return "text";
}

ClassColumns columnsOf(const RecordClass& record, const Recordset& rows) {
  const RecordsetSchema& schema = rows.parts().schema();
  const std::vector<std::string> keys = record.keyColumns();
  ClassColumns columns;
  for (std::size_t i = 0; i < schema.columns().size(); ++i) {
    const dialect::OutputColumn& each = schema.columns()[i];
    const bool isKey = text::equalsIgnoreCase(each.baseTable, record.info().table.text()) &&
                       std::find(keys.begin(), keys.end(), each.baseColumn) != keys.end();
    // What only finds a row of a table without a key is nobody's but the record set's.
    if (each.hidden && !isKey) continue;
    // Of a column that a mode shows twice, engines take one value.
    const bool isAgain =
        std::any_of(columns.begin(), columns.end(), [&](const ClassColumn& before) {
          const dialect::OutputColumn& shown = schema.columns()[before.place];
          return shown.baseTable == each.baseTable && shown.baseColumn == each.baseColumn;
        });
    columns.push_back({.name = each.name,
                       .baseColumn = each.baseColumn,
                       .type = each.type,
                       .size = each.type == ColumnType::kText ? each.definedSize : 0,
                       .isNullable = each.nullable,
                       .isKey = isKey,
                       .isHidden = each.hidden,
                       .isWritable = each.updatable && !each.hidden && !isAgain,
                       .isNumbered = each.autoNumber,
                       .place = i});
  }
  return columns;
}

Json toJson(const ClassColumns& columns) {
  Json json = Json::array();
  for (const ClassColumn& column : columns) json.push_back(toJson(column));
  return json;
}

const ClassColumn* findColumn(const ClassColumns& columns, std::string_view name) {
  for (const auto member : {&ClassColumn::name, &ClassColumn::baseColumn}) {
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const ClassColumn& column) {
      return text::equalsIgnoreCase(column.*member, name);
    });
    if (found != columns.end()) return &*found;
  }
  return nullptr;
}

const Component& classCalled(std::string_view name) {
  std::vector<std::string> names;
  for (const Component* each : components()) {
    if (text::equalsIgnoreCase(each->name(), name)) return *each;
    names.push_back(each->name());
  }
  const std::string nearest = text::nearest(name, names);
  throw Failure::missing(fmt::format("There is no class {}{}.", text::left(name, 40),
                                     nearest.empty() ? "" : "; " + nearest + " is near"));
}

void mustWithClass(const Context& context, const Component& component, std::string_view what) {
  const std::string& word = component.word().empty() ? component.name() : component.word();
  if (context.mayWithClass(word, what)) return;
  throw Failure::forbidden(fmt::format("You may not do this with {}: class.{}.{} is denied.",
                                       component.name(), word, what));
}

std::string modeOf(const Context& context, const RecordClass& record) {
  std::string mode = context.query("mode", "todos");
  const std::vector<std::string> words = modeWords(record.info());
  if (mode.empty()) return words.front();
  if (std::find(words.begin(), words.end(), mode) != words.end()) return mode;
  const std::string nearest = text::nearest(mode, words);
  throw Failure::input(fmt::format("There is no mode {}{}; the modes are {}.", text::left(mode, 40),
                                   nearest.empty() ? "" : ", " + nearest + " is near",
                                   fmt::join(words, ", ")));
}

OpenClass::OpenClass(const Context& context, std::string_view what)
    : component_(classCalled(context.path("name"))),
      object_(component_.make()),
      record_(recordOf(component_, *object_)) {
  mustWithClass(context, component_, "read");
  if (what != "read") mustWithClass(context, component_, what);
}

OpenClass::~OpenClass() = default;

Recordset& OpenClass::rows() const {
  return *record_->DataMember("Primary");
}

void OpenClass::openMode(const Context& context) const {
  const std::string mode = modeOf(context, *record_);
  opening(context, mode,
          [&] { tavelor::openMode(component_, *object_, mode, context.query("id", "")); });
}

void OpenClass::openByKey(const Context& context, const std::vector<Variant>& key) const {
  const std::string mode = modeOf(context, *record_);
  const std::vector<Variant> none(record_->keyColumns().size(), Variant(Null()));
  const std::string id = doubledQuotes(context.query("id", ""));
  opening(context, mode, [&] { record_->openByKey(mode, Variant(id), key.empty() ? none : key); });
}

std::vector<Variant> keyOf(const Json& json, const RecordClass& record,
                           const ClassColumns& columns) {
  const std::vector<std::string> names = record.keyColumns();
  const auto wrong = [&](std::string_view why) {
    return Failure::input(
        fmt::format("The key {}: it has the columns {}.", why, fmt::join(names, ", ")));
  };
  if (!json.is_object() && !json.is_array() && names.size() > 1) throw wrong("is a single value");
  if (json.is_array() && json.size() != names.size()) throw wrong("has another number of values");
  std::vector<Variant> key;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto column = std::find_if(columns.begin(), columns.end(), [&](const ClassColumn& each) {
      return each.isKey && each.baseColumn == names[i];
    });
    if (column == columns.end()) {
      throw Failure::refused(
          fmt::format("This mode does not show {}, which is of the key.", names[i]));
    }
    const Json* given = nullptr;
    if (json.is_object()) {
      for (const auto& member : json.items()) {
        if (findColumn(columns, member.key()) == &*column) given = &member.value();
      }
    } else {
      given = json.is_array() ? &json[i] : &json;
    }
    if (given == nullptr) throw wrong(fmt::format("lacks {}", column->name));
    std::string fault;
    Variant value = valueOf(*given, *column, fault);
    if (!fault.empty()) throw Failure::input(fmt::format("The key's {} {}.", column->name, fault));
    if (value.isNull()) throw Failure::input(fmt::format("The key's {} is null.", column->name));
    key.push_back(std::move(value));
  }
  return key;
}

}  // namespace tavelor::web
