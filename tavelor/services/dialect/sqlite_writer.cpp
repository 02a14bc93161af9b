// SPDX-License-Identifier: MIT
// What the embedded engine's text differs in.
#include <algorithm>
#include <array>

#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"

namespace tavelor::dialect {

namespace {

/// Words that the engine takes for itself, sorted.
constexpr std::array<std::string_view, 108> kReservedWords{"add",          "all",
                                                           "alter",        "and",
                                                           "as",           "asc",
                                                           "attach",       "autoincrement",
                                                           "before",       "begin",
                                                           "between",      "by",
                                                           "case",         "cast",
                                                           "check",        "collate",
                                                           "column",       "commit",
                                                           "conflict",     "constraint",
                                                           "create",       "cross",
                                                           "current",      "current_date",
                                                           "current_time", "current_timestamp",
                                                           "database",     "default",
                                                           "deferrable",   "delete",
                                                           "desc",         "detach",
                                                           "distinct",     "drop",
                                                           "each",         "else",
                                                           "end",          "escape",
                                                           "except",       "exclusive",
                                                           "exists",       "explain",
                                                           "fail",         "filter",
                                                           "following",    "for",
                                                           "foreign",      "from",
                                                           "full",         "glob",
                                                           "group",        "having",
                                                           "if",           "immediate",
                                                           "in",           "index",
                                                           "indexed",      "inner",
                                                           "insert",       "instead",
                                                           "intersect",    "into",
                                                           "is",           "isnull",
                                                           "join",         "key",
                                                           "left",         "like",
                                                           "limit",        "match",
                                                           "natural",      "no",
                                                           "not",          "nothing",
                                                           "notnull",      "null",
                                                           "of",           "on",
                                                           "or",           "order",
                                                           "outer",        "over",
                                                           "partition",    "plan",
                                                           "pragma",       "primary",
                                                           "query",        "raise",
                                                           "references",   "regexp",
                                                           "returning",    "right",
                                                           "rollback",     "row",
                                                           "select",       "set",
                                                           "table",        "then",
                                                           "to",           "transaction",
                                                           "trigger",      "union",
                                                           "unique",       "update",
                                                           "using",        "values",
                                                           "when"};

class SqliteWriter final : public Writer {
 public:
  /// A bare ? takes the next number. The engine searches the numbered ones from the first on for
  /// each that it compiles, so of a long list the rest has no numbers.
  void placeholder(std::string& out, std::int32_t number, bool isNew) const override {
    constexpr std::int32_t kNumbered = 500;
    out.push_back('?');
    if (number <= kNumbered || !isNew) out.append(std::to_string(number));
  }

  bool isReserved(std::string_view name) const override {
    constexpr std::size_t kLongest = 17;
    if (name.size() > kLongest) return false;
    std::array<char, kLongest> lower{};
    std::transform(name.begin(), name.end(), lower.begin(), [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    });
    const std::string_view word(lower.data(), name.size());
    return word == "where" || word == "window" || word == "with" || word == "without" ||
           std::binary_search(kReservedWords.begin(), kReservedWords.end(), word);
  }

  std::string_view smaller() const override { return "min"; }
  std::string_view larger() const override { return "max"; }
  // Conditions are 1, 0 or Null here.
  std::string_view beforeTruth() const override { return "-("; }
  std::string_view behindTruth() const override { return ")"; }

  std::string_view storedOrder() const override { return "rowid"; }

  void joinedUpdate(StepText& text, const TreeStatement& tree) const override {
    text << "UPDATE ";
    text.source(*tree.target);
    if (hasOnlyInnerJoins(*tree.from)) {
      updateFromTables(text, tree);
    } else {
      updateFromRows(text, tree);
    }
  }

  void joinedDelete(StepText& text, const TreeStatement& tree) const override {
    text << "DELETE FROM ";
    text.source(*tree.target);
    text << " WHERE rowid IN (SELECT ";
    text.name(tree.target->name());
    text << ".rowid FROM ";
    text.join(*tree.from);
    where(text, tree);
    text << ")";
  }

  std::string createTable(const engine::Table& table) const override {
    std::string sql = "CREATE TABLE ";
    name(sql, table.name);
    bool keyDeclared = false;
    std::string_view separator = " (";
    for (const engine::Column& column : table.columns) {
      sql.append(separator);
      columnDeclaration(sql, table, column);
      keyDeclared = keyDeclared || column.autoNumber;
      separator = ", ";
    }
    if (!keyDeclared && !table.key.empty()) {
      separator = ", PRIMARY KEY (";
      for (const std::size_t position : table.key) {
        sql.append(separator);
        name(sql, table.columns[position].name);
        separator = ", ";
      }
      sql.append(")");
    }
    return sql.append(")");
  }

  void columnDeclaration(std::string& out, const engine::Table& table,
                         const engine::Column& column) const override {
    name(out, column.name);
    out.push_back(' ');
    out.append(typeName(column));
    if (column.autoNumber) {
      out.append(" PRIMARY KEY AUTOINCREMENT");
      return;
    }
    const bool key = std::any_of(table.key.begin(), table.key.end(), [&](std::size_t position) {
      return &table.columns[position] == &column;
    });
    if (!column.nullable || key) out.append(" NOT NULL");
    if (!column.defaultText.empty()) out.append(" DEFAULT ").append(column.defaultText);
  }

 private:
  /// Types that keep values as they are bound and tell the dialect's type when the table is read
  /// back.
  static std::string typeName(const engine::Column& column) {
    switch (column.type) {
      case ColumnType::kText:
        return "TEXT(" + std::to_string(column.size) + ")";
      case ColumnType::kMemo:
        return "TEXT";
      case ColumnType::kByte:
        return "TINYINT";
      case ColumnType::kInt16:
        return "SMALLINT";
      case ColumnType::kInt32:
        // An INTEGER key numbers its rows by itself; a key that is no COUNTER must be given.
        return column.autoNumber ? "INTEGER" : "INT";
      case ColumnType::kSingle:
        return "FLOAT";
      case ColumnType::kDouble:
        return "DOUBLE";
      case ColumnType::kCurrency:
        return "DECIMAL(19,4)";
      case ColumnType::kDate:
        return "DATETIME";
      case ColumnType::kBoolean:
        return "BOOLEAN";
      case ColumnType::kBinary:
        return "BLOB";
    }
    return "";
  }

  static bool hasOnlyInnerJoins(const Join& join) {
    switch (join.kind) {
      case JoinKind::kTable:
        return true;
      case JoinKind::kCross:
      case JoinKind::kInner:
        return hasOnlyInnerJoins(*join.left) && hasOnlyInnerJoins(*join.right);
      default:
        return false;
    }
  }

  static void where(StepText& text, const TreeStatement& tree) {
    if (tree.where == nullptr) return;
    text << " WHERE ";
    text.expression(*tree.where);
  }

  /// The conditions of all joins, each behind WHERE or AND.
  static void conditions(StepText& text, const Join& join, std::string_view& lead) {
    if (join.kind == JoinKind::kTable) return;
    conditions(text, *join.left, lead);
    conditions(text, *join.right, lead);
    if (join.condition == nullptr) return;
    text << lead;
    text.conjunct(*join.condition);
    lead = " AND ";
  }

  static void updateFromTables(StepText& text, const TreeStatement& tree) {
    std::string_view lead = " SET ";
    for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
      text << lead;
      text.column(*a->target, false);
      text << " = ";
      text.expression(*a->value);
      lead = ", ";
    }
    lead = " FROM ";
    for (const Source* source = tree.sources; source != nullptr; source = source->next) {
      if (source == tree.target) continue;
      text << lead;
      text.source(*source);
      lead = ", ";
    }
    lead = " WHERE ";
    conditions(text, *tree.from, lead);
    if (tree.where == nullptr) return;
    text << lead;
    text.conjunct(*tree.where);
  }

  /// With an outer join the rows of the join are computed first, those without a partner too.
  static void updateFromRows(StepText& text, const TreeStatement& tree) {
    std::int64_t number = 0;
    for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
      text << (a == tree.assignments ? " SET " : ", ");
      text.column(*a->target, false);
      text << " = tv_rows.tv_" << ++number;
    }
    text << " FROM (SELECT ";
    text.name(tree.target->name());
    text << ".rowid AS tv_row";
    number = 0;
    for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
      text << ", ";
      text.expression(*a->value);
      text << " AS tv_" << ++number;
    }
    text << " FROM ";
    text.join(*tree.from);
    where(text, tree);
    text << ") AS tv_rows WHERE ";
    text.name(tree.target->name());
    text << ".rowid = tv_rows.tv_row";
  }
};

}  // namespace

const Writer& sqliteWriter() {
  static const SqliteWriter writer;
  return writer;
}

}  // namespace tavelor::dialect
