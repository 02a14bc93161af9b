// SPDX-License-Identifier: MIT
// What the library itself tells of its classes and tables.
#include "tools/reference/class_data.hpp"

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/schema.hpp"
#include "tavelor/services/trace.hpp"

namespace tavelor::reference {

namespace {

std::string typeOf(engine::ColumnType type, std::int32_t size) {
  const std::string_view word = engine::ddlWord(type);
  return type == engine::ColumnType::kText && size > 0 ? fmt::format("{}({})", word, size)
                                                       : std::string(word);
}

// ---------------------------------------------------------------------------------------------
// Comments of the schema: a table's stand above it, a column's behind it and below.

struct TableComment {
  std::string family;
  std::string text;
  std::map<std::string, std::string> columns;
};

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

void join(std::string& to, std::string_view text) {
  if (!to.empty()) to += ' ';
  to += text;
}

/// In the order of the files.
std::vector<std::pair<std::string, TableComment>> tableComments() {
  constexpr std::string_view kCreate = "CREATE TABLE ";
  std::vector<std::pair<std::string, TableComment>> found;
  for (const schema::Family& family : schema::families()) {
    std::istringstream lines{std::string(family.ddl)};
    std::string above;
    std::string column;
    bool inTable = false;
    for (std::string line; std::getline(lines, line);) {
      const std::string_view whole = line;
      const std::size_t mark = whole.find("--");
      const std::string_view comment =
          mark == std::string_view::npos ? "" : trimmed(whole.substr(mark + 2));
      const std::string_view ddl = trimmed(whole.substr(0, mark));
      if (ddl.starts_with(kCreate)) {
        const std::string_view rest = ddl.substr(kCreate.size());
        found.push_back({std::string(rest.substr(0, rest.find_first_of(" ("))),
                         {std::string(family.name), above, {}}});
        inTable = true;
        above.clear();
        column.clear();
      } else if (!inTable) {
        if (ddl.empty() && !comment.empty()) join(above, comment);
        if (!ddl.empty() || comment.empty()) above.clear();
      } else if (ddl.starts_with(")")) {
        inTable = false;
      } else {
        if (!ddl.empty()) column = ddl.substr(0, ddl.find(' '));
        if (!comment.empty() && !column.empty()) join(found.back().second.columns[column], comment);
      }
    }
  }
  return found;
}

std::string databasesOf(std::string_view family, const Installation& installation) {
  std::string labels;
  for (const schema::Assignment& each : schema::assignments()) {
    std::istringstream words{std::string(each.families)};
    for (std::string word; words >> word;) {
      if (word != family) continue;
      if (!labels.empty()) labels += ", ";
      labels += installation.database(each.selector).label;
    }
  }
  return labels;
}

const engine::Table* tableNamed(std::string_view name, const Installation& installation,
                                std::shared_ptr<const engine::Catalogue>& holder) {
  for (const DatabaseSettings& database : installation.settings().databases) {
    holder = installation.catalogue(database.selector);
    if (const engine::Table* table = holder->find(name)) return table;
  }
  return nullptr;
}

// ---------------------------------------------------------------------------------------------
// Modes

/// A code that reads as a number, a text and a day, and stands in no statement by itself.
constexpr std::string_view kCode = "7654";
constexpr std::string_view kCodeAsDay = "#12/14/1920#";

void replaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

std::string templateOf(const ClassInfo& info, std::string_view word) {
  const auto mode = std::find_if(info.modes.begin(), info.modes.end(), [&](const Mode& each) {
    return each.word == word || each.word == kAnyOtherWord;
  });
  return fmt::format("{}{}", mode->select.text(), mode->tail.text());
}

std::vector<Column> columnsOf(Recordset& rows) {
  std::vector<Column> columns;
  const Fields fields = rows.Fields();
  for (std::int32_t i = 0; i < fields.Count(); ++i) {
    const Field field = fields.Item(i);
    Column column;
    column.name = field.Name();
    column.type = typeOf(static_cast<engine::ColumnType>(field.Type()), field.DefinedSize());
    columns.push_back(std::move(column));
  }
  return columns;
}

OpenedMode open(const Component& component, std::string_view word, const std::string& asSent,
                const std::string& asWritten, Apartment& apartment) {
  OpenedMode opened;
  opened.word = word;
  apartment.trace().clear();
  const std::unique_ptr<Object> object = component.make();
  const Member& initial = component.member("IniciaRs");
  std::vector<Variant> arguments;
  for (const Parameter& parameter : initial.parameters) {
    if (parameter.name == "sSelecSql") {
      arguments.emplace_back(asSent);
    } else if (parameter.name == "id") {
      arguments.emplace_back(std::string(kCode));
    } else {
      arguments.emplace_back();
    }
  }
  try {
    component.call(*object, "IniciaRs", arguments);
    opened.columns = columnsOf(*dynamic_cast<RecordClass&>(*object).DataMember("Primary"));
  } catch (const Error& error) {
    opened.refusal = fmt::format("{}: {}", error.number(), error.what());
  }
  if (apartment.trace().entries().empty()) {
    throw std::runtime_error(fmt::format("{}.IniciaRs of \"{}\" has sent nothing: {}",
                                         component.name(), asSent, opened.refusal));
  }
  const std::string sent = apartment.trace().entries().back().text;
  std::string expected = asWritten;
  replaceAll(expected, "{id}", kCode);
  if (sent == expected) {
    opened.statement = asWritten;
    return opened;
  }
  opened.statement = sent;
  opened.made = true;
  replaceAll(opened.statement, kCodeAsDay, "{id}");
  replaceAll(opened.statement, kCode, "{id}");
  return opened;
}

}  // namespace

std::vector<Table> tables(Apartment& apartment) {
  const Installation& installation = apartment.installation();
  std::vector<Table> all;
  for (auto& [name, comment] : tableComments()) {
    std::shared_ptr<const engine::Catalogue> holder;
    const engine::Table* const table = tableNamed(name, installation, holder);
    if (table == nullptr) throw std::runtime_error(fmt::format("no database has a table {}", name));
    Table shown{.name = table->name,
                .family = comment.family,
                .databases = databasesOf(comment.family, installation),
                .comment = comment.text,
                .columns = {}};
    for (std::size_t i = 0; i < table->columns.size(); ++i) {
      const engine::Column& column = table->columns[i];
      shown.columns.push_back(
          {.name = column.name,
           .type = typeOf(column.type, column.size),
           .key = std::find(table->key.begin(), table->key.end(), i) != table->key.end(),
           .nullable = column.nullable,
           .numbered = column.autoNumber,
           .byDefault = column.defaultText,
           .comment = comment.columns[column.name]});
    }
    all.push_back(std::move(shown));
  }
  return all;
}

ClassData dataOf(const Component& component, Apartment& apartment) {
  ClassData data;
  data.component = &component;
  const std::unique_ptr<Object> object = component.make();
  const auto* record = dynamic_cast<const RecordClass*>(object.get());
  if (record == nullptr) return data;
  data.info = &record->info();
  data.events = record->eventInterface();
  for (const Mode& mode : data.info->modes) {
    const bool named = mode.word != kAnyOtherWord;
    if (!named) {
      for (const std::string_view word : data.info->madeModes) {
        data.modes.push_back(open(component, word, std::string(word), "", apartment));
      }
    }
    data.modes.push_back(open(component, mode.word, named ? std::string(mode.word) : "todos",
                              templateOf(*data.info, mode.word), apartment));
  }
  return data;
}

}  // namespace tavelor::reference
