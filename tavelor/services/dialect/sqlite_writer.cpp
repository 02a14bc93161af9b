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
  const Words& words() const override {
    // Conditions are 1, 0 or Null here, Null is the smallest of all, and texts know no letters.
    static constexpr Words kWords{.row = "rowid",
                                  .smaller = "min",
                                  .larger = "max",
                                  .truth = {"-(", ")"},
                                  .mostArguments = 101};
    return kWords;
  }

  /// A bare ? takes the next number. The engine searches the numbered ones from the first on for
  /// each that it compiles, so of a long list the rest has no numbers.
  void placeholder(std::string& out, std::int32_t number, bool isNew) const override {
    constexpr std::int32_t kNumbered = 500;
    out.push_back('?');
    if (number <= kNumbered || !isNew) out.append(std::to_string(number));
  }

  void name(std::string& out, std::string_view name) const override {
    if (isPlain(name) && !isReserved(name)) {
      out.append(name);
    } else {
      quote(out, name, '"');
    }
  }

  std::string createTable(const engine::Table& table) const override {
    std::string sql = "CREATE TABLE ";
    this->table(sql, table.name);
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

  void indexedColumn(std::string& out, std::string_view column, bool) const override {
    name(out, column);
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

  static bool isPlain(std::string_view name) {
    const auto isLetter = [](char c) {
      return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
             static_cast<unsigned char>(c) >= 0x80;
    };
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return !name.empty() && isLetter(name.front()) &&
           std::all_of(name.begin(), name.end(), [&](char c) { return isLetter(c) || isDigit(c); });
  }

  /// A word that can't be a name without quotes.
  static bool isReserved(std::string_view name) {
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
};

}  // namespace

const Writer& sqliteWriter() {
  static const SqliteWriter writer;
  return writer;
}

std::unique_ptr<const Writer> sqliteWriter(const std::string& /*schema*/) {
  return std::make_unique<SqliteWriter>();
}

}  // namespace tavelor::dialect
