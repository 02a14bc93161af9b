// SPDX-License-Identifier: MIT
// Names to tables and columns.
#include "tavelor/services/dialect/scope.hpp"

#include <string>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::dialect {

namespace {

[[noreturn]] void raiseAt(std::int32_t number, std::string description, std::string_view statement,
                          std::size_t offset) {
  Error error(number, "Statement", std::move(description));
  error.inStatement(statement, static_cast<std::int64_t>(offset));
  throw error;
}

std::string suggestion(const std::string& nearest) {
  return nearest.empty() ? std::string() : "; did you mean " + nearest + "?";
}

void take(Expr& column, Source& source, int position) {
  column.source = &source;
  column.column = &source.base->columns[static_cast<std::size_t>(position)];
}

}  // namespace

void NameResolver::resolve(Source& source) const {
  source.base = catalogue_.find(source.table);
  if (source.base != nullptr) return;
  std::vector<std::string_view> names;
  names.reserve(catalogue_.tables().size());
  for (const engine::Table& table : catalogue_.tables()) names.push_back(table.name);
  raiseAt(errors::kTableNotFound,
          "Unknown table '" + std::string(source.table) + "'" +
              suggestion(text::nearest(source.table, names)),
          statement_, source.offset);
}

void NameResolver::resolveAll(Source* sources) const {
  for (Source* source = sources; source != nullptr; source = source->next) {
    resolve(*source);
    if (findSource(sources, source->name()) != source) {
      raiseSyntax(statement_, source->offset,
                  "the name " + std::string(source->name()) + " stands twice in FROM");
    }
  }
}

Source* NameResolver::findSource(Source* sources, std::string_view name) {
  for (Source* source = sources; source != nullptr && source->base != nullptr;
       source = source->next) {
    if (text::equalsIgnoreCase(source->name(), name)) return source;
  }
  return nullptr;
}

const OutputItem* NameResolver::resolve(Expr& column, const Scope& scope) const {
  for (const Scope* level = &scope; level != nullptr; level = level->outer) {
    if (resolveIn(column, *level)) {
      column.qualified = level != &scope || level->outer != nullptr || level->manySources();
      return nullptr;
    }
    if (!column.qualifier.empty()) continue;
    for (const OutputItem* item = level->itemsBegin; item != level->itemsEnd; item = item->next) {
      if (!item->alias.empty() && text::equalsIgnoreCase(item->alias, column.name)) return item;
    }
  }
  if (column.qualifier.empty()) raiseUnknownColumn(column, scope.sources);
  raiseUnknownTable(column, scope.sources);
}

bool NameResolver::resolveIn(Expr& column, const Scope& scope) const {
  if (!column.qualifier.empty()) {
    Source* source = findSource(scope.sources, column.qualifier);
    if (source == nullptr) return false;
    const int position = source->base->find(column.name);
    if (position < 0) {
      Source alone = *source;
      alone.next = nullptr;
      raiseUnknownColumn(column, &alone);
    }
    take(column, *source, position);
    return true;
  }
  for (Source* source = scope.sources; source != nullptr; source = source->next) {
    const int position = source->base->find(column.name);
    if (position < 0) continue;
    if (column.source != nullptr) raiseAmbiguous(column, *column.source, *source);
    take(column, *source, position);
  }
  return column.source != nullptr;
}

void NameResolver::raiseUnknownColumn(const Expr& column, const Source* sources) const {
  std::string description = "Unknown column '" + std::string(column.name) + "'";
  std::vector<std::string_view> names;
  std::string tables;
  for (const Source* source = sources; source != nullptr; source = source->next) {
    tables += tables.empty() ? "" : ", ";
    tables += source->base->name;
    for (const engine::Column& candidate : source->base->columns) names.push_back(candidate.name);
  }
  if (!tables.empty()) {
    description += (sources->next == nullptr ? " in table " : " in tables ") + tables;
  }
  description += suggestion(text::nearest(column.name, names));
  raiseAt(errors::kMissingParameter, std::move(description), statement_, column.offset);
}

void NameResolver::raiseUnknownTable(const Expr& column, const Source* sources) const {
  std::vector<std::string_view> names;
  for (const Source* source = sources; source != nullptr; source = source->next) {
    names.push_back(source->name());
  }
  raiseAt(errors::kMissingParameter,
          "The table '" + std::string(column.qualifier) + "' of " + std::string(column.qualifier) +
              "." + std::string(column.name) + " does not stand in FROM" +
              suggestion(text::nearest(column.qualifier, names)),
          statement_, column.offset);
}

void NameResolver::raiseAmbiguous(const Expr& column, const Source& first,
                                  const Source& second) const {
  raiseSyntax(statement_, column.offset,
              "the column " + std::string(column.name) + " may mean that of " +
                  std::string(first.name()) + " or that of " + std::string(second.name()));
}

}  // namespace tavelor::dialect
