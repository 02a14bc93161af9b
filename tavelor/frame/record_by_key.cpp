// SPDX-License-Identifier: MIT
// A row of a mode by its key: the mode's own statement, with the key as one more condition.
#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/frame/strict_modes.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

using Ranges = std::vector<Statement::Range>;

constexpr std::array<std::string_view, 4> kBehindWhere = {"GROUP", "HAVING", "ORDER", "UNION"};

bool isPartOfWord(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte == '_' || byte >= 0x80 || (byte >= '0' && byte <= '9') ||
         ((byte | 0x20U) >= 'a' && (byte | 0x20U) <= 'z');
}

/// Where the condition of a SELECT begins and ends. Without a WHERE both are where one would stand.
struct ConditionPlace {
  std::size_t where = std::string::npos;  ///< of the word itself
  std::size_t end = 0;
};

/// Looks outside of quotes, brackets, parentheses and of what came from outside.
ConditionPlace conditionPlace(std::string_view text, const Ranges& values) {
  ConditionPlace place{.end = text.size()};
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto value = std::find_if(values.begin(), values.end(), [&](Statement::Range range) {
      return range.begin <= i && i < range.end;
    });
    if (value != values.end()) {
      i = value->end - 1;
      continue;
    }
    const char c = text[i];
    if (c == '\'' || c == '"' || c == '[' || c == '#') {
      const std::size_t closing = text.find(c == '[' ? ']' : c, i + 1);
      if (closing == std::string_view::npos) break;
      i = closing;
      continue;
    }
    depth += c == '(' ? 1 : c == ')' ? -1 : 0;
    if (depth == 0 && c == ';') {
      place.end = i;
      break;
    }
    if (!isPartOfWord(c)) continue;
    const std::size_t begin = i;
    while (i + 1 < text.size() && isPartOfWord(text[i + 1])) ++i;
    if (depth != 0) continue;
    const std::string_view word = text.substr(begin, i + 1 - begin);
    if (text::equalsIgnoreCase(word, "WHERE")) place.where = begin;
    const bool ends =
        std::any_of(kBehindWhere.begin(), kBehindWhere.end(),
                    [&](std::string_view each) { return text::equalsIgnoreCase(word, each); });
    if (ends) {
      place.end = begin;
      break;
    }
  }
  return place;
}

/// Appends [begin, end) of a text, its values as values.
void appendPart(Statement& to, const Statement::Joined& from, std::size_t begin, std::size_t end) {
  const std::string_view text = from.text;
  std::size_t at = begin;
  for (const Statement::Range value : from.ranges) {
    if (value.begin < begin || value.end > end) continue;
    to << Statement::trusted(text.substr(at, value.begin - at))
       << spliced(text.substr(value.begin, value.end - value.begin));
    at = value.end;
  }
  to << Statement::trusted(text.substr(at, end - at));
}

Statement withCondition(const Statement& select, const Statement& condition) {
  constexpr std::size_t kWhere = 5;
  const Statement::Joined joined = select.joined();
  const ConditionPlace place = conditionPlace(joined.text, joined.ranges);
  Statement made;
  if (place.where == std::string::npos) {
    appendPart(made, joined, 0, place.end);
    made << " WHERE " << condition << " ";
  } else {
    appendPart(made, joined, 0, place.where);
    made << " WHERE " << condition << " AND (";
    appendPart(made, joined, place.where + kWhere, place.end);
    made << ") ";
  }
  appendPart(made, joined, place.end, joined.text.size());
  return made;
}

}  // namespace

std::vector<std::string> RecordClass::keyColumns() const {
  mustBeHome();
  const auto catalogue = Apartment::current().installation().catalogue(info_.selector);
  const engine::Table* const table = catalogue->find(info_.table.text());
  if (table == nullptr) raise(errors::kTableNotFound, info_.word, info_.table.text());
  std::vector<std::string> columns;
  for (const std::size_t position : table->key) columns.push_back(table->columns[position].name);
  if (columns.empty()) columns.emplace_back(info_.codeColumn.text());
  return columns;
}

void RecordClass::openByKey(std::string word, const Variant& id, const std::vector<Variant>& key) {
  const std::vector<std::string> columns = keyColumns();
  if (key.size() != columns.size()) {
    raise(errors::kWrongNumberOfArguments, info_.word,
          fmt::format("The key has the columns {}.", fmt::join(columns, ", ")));
  }
  Statement condition("(");
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) condition << " AND ";
    condition << info_.table << "." << Statement::trusted(columns[i]) << " = "
              << sqlLiteral(key[i]);
  }
  condition << ")";
  const StrictModes strict;
  const Statement statement = withCondition(modeStatement(word, id), condition);
  takePrimary(std::make_shared<Recordset>());
  ConnectionPtr connection;
  try {
    DataSession().OpenRecordset(info_.selector, statement, adoPrimaryRS_, connection);
  } catch (Error& error) {
    error.noting("class " + typeName());
    throw;
  }
  cnnPrimary_ = adoPrimaryRS_->ActiveConnection();
  offerPrimary();
}

}  // namespace tavelor
