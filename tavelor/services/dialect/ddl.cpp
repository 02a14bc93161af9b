// SPDX-License-Identifier: MIT
// The schema's definitions.
#include "tavelor/services/dialect/ddl.hpp"

#include <algorithm>
#include <array>
#include <charconv>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/lexer.hpp"
#include "tavelor/services/dialect/writer.hpp"

namespace tavelor::dialect {

namespace {

constexpr std::int32_t kLongestText = 255;

struct TypeWord {
  std::string_view word;
  ColumnType type;
};
constexpr std::array kTypeWords{
    TypeWord{"TEXT", ColumnType::kText},         TypeWord{"MEMO", ColumnType::kMemo},
    TypeWord{"BYTE", ColumnType::kByte},         TypeWord{"SHORT", ColumnType::kInt16},
    TypeWord{"LONG", ColumnType::kInt32},        TypeWord{"COUNTER", ColumnType::kInt32},
    TypeWord{"SINGLE", ColumnType::kSingle},     TypeWord{"DOUBLE", ColumnType::kDouble},
    TypeWord{"CURRENCY", ColumnType::kCurrency}, TypeWord{"DATETIME", ColumnType::kDate},
    TypeWord{"BIT", ColumnType::kBoolean},       TypeWord{"LONGBINARY", ColumnType::kBinary}};

class DefinitionParser {
 public:
  explicit DefinitionParser(std::string_view ddl)
      : list_(lexSchema(ddl)), token_(list_.tokens.data()) {}

  std::vector<Definition> all() {
    std::vector<Definition> definitions;
    while (true) {
      while (acceptSymbol(Symbol::kSemicolon)) {
      }
      if (token_->kind == TokenKind::kEnd) return definitions;
      definitions.push_back(one());
      if (token_->kind != TokenKind::kEnd) expectSymbol(Symbol::kSemicolon, ";");
    }
  }

 private:
  bool is(std::string_view word) const {
    return token_->kind == TokenKind::kWord && text::equalsIgnoreCase(list_.textOf(*token_), word);
  }
  bool accept(std::string_view word) {
    if (!is(word)) return false;
    ++token_;
    return true;
  }
  void expect(std::string_view word) {
    if (!accept(word)) failExpected(word);
  }
  bool acceptSymbol(Symbol symbol) {
    if (token_->symbol != symbol) return false;
    ++token_;
    return true;
  }
  void expectSymbol(Symbol symbol, std::string_view name) {
    if (!acceptSymbol(symbol)) failExpected(name);
  }
  std::string expectName(std::string_view what) {
    std::string_view text = list_.textOf(*token_);
    if (token_->kind == TokenKind::kBracketed) {
      text = text.substr(1, text.size() - 2);
    } else if (token_->kind != TokenKind::kWord) {
      failExpected(what);
    }
    ++token_;
    return std::string(text);
  }
  [[noreturn]] void fail(const std::string& complaint) const {
    raiseSyntax(list_.text, token_->begin,
                complaint + " at " + placeText(list_.text, token_->begin));
  }
  [[noreturn]] void failExpected(std::string_view what) const {
    fail(std::string(what) + " is expected");
  }

  Definition one() {
    if (accept("CREATE")) {
      if (accept("TABLE")) return createTable();
      const bool unique = accept("UNIQUE");
      expect("INDEX");
      return createIndex(unique);
    }
    if (accept("ALTER")) return addColumn();
    if (accept("DROP")) return drop();
    failExpected("CREATE, ALTER or DROP");
  }

  Definition createTable() {
    Definition definition;
    engine::Table& table = definition.table;
    table.name = expectName("a table");
    expectSymbol(Symbol::kLeftParen, "(");
    do {
      tableItem(table);
    } while (acceptSymbol(Symbol::kComma));
    for (const engine::Column& column : table.columns) {
      if (column.autoNumber && (table.key.size() != 1 || &table.columns[table.key[0]] != &column)) {
        fail("the COUNTER " + column.name + " is not the primary key of its table");
      }
    }
    expectSymbol(Symbol::kRightParen, ")");
    return definition;
  }

  void tableItem(engine::Table& table) {
    if (accept("CONSTRAINT")) expectName("a name");
    if (accept("PRIMARY")) {
      expect("KEY");
      if (!table.key.empty()) fail("a second primary key");
      for (const std::string& name : columnNames()) {
        const int position = table.find(name);
        if (position < 0) fail("unknown column '" + name + "' in the key");
        table.key.push_back(static_cast<std::size_t>(position));
      }
      return;
    }
    engine::Column column = columnDefinition(table);
    if (table.find(column.name) >= 0) fail("a second column " + column.name);
    table.columns.push_back(std::move(column));
  }

  std::vector<std::string> columnNames() {
    std::vector<std::string> names;
    expectSymbol(Symbol::kLeftParen, "(");
    do {
      names.push_back(expectName("a column"));
      accept("ASC");
    } while (acceptSymbol(Symbol::kComma));
    expectSymbol(Symbol::kRightParen, ")");
    return names;
  }

  engine::Column columnDefinition(engine::Table& table) {
    engine::Column column;
    column.name = expectName("a column");
    columnType(column);
    while (true) {
      if (accept("NOT")) {
        expect("NULL");
        column.nullable = false;
      } else if (accept("DEFAULT")) {
        column.defaultText = defaultText();
      } else if (accept("PRIMARY")) {
        expect("KEY");
        if (!table.key.empty()) fail("a second primary key");
        table.key.push_back(table.columns.size());
      } else {
        return column;
      }
    }
  }

  void columnType(engine::Column& column) {
    const auto* known = std::find_if(kTypeWords.begin(), kTypeWords.end(),
                                     [&](const TypeWord& type) { return is(type.word); });
    if (known == kTypeWords.end()) failExpected("a type");
    column.autoNumber = is("COUNTER");
    column.type = known->type;
    ++token_;
    if (column.type != ColumnType::kText) return;
    expectSymbol(Symbol::kLeftParen, "(");
    const std::string_view digits = list_.textOf(*token_);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), column.size);
    if (result.ec != std::errc() || column.size < 1 || column.size > kLongestText) {
      failExpected("a size from 1 to 255");
    }
    ++token_;
    expectSymbol(Symbol::kRightParen, ")");
  }

  std::string defaultText() {
    const bool truth = token_->word == Word::kTrue || token_->word == Word::kFalse;
    const std::string sign = acceptSymbol(Symbol::kMinus) ? "-" : "";
    if (token_->kind != TokenKind::kLiteral && !truth) failExpected("a literal");
    std::string text = sign + std::string(list_.textOf(*token_));
    if (truth) text = token_->word == Word::kTrue ? "-1" : "0";
    ++token_;
    return text;
  }

  Definition createIndex(bool unique) {
    Definition definition;
    definition.kind = DefinitionKind::kCreateIndex;
    definition.unique = unique;
    definition.index = expectName("an index");
    expect("ON");
    definition.table.name = expectName("a table");
    definition.indexColumns = columnNames();
    return definition;
  }

  Definition addColumn() {
    Definition definition;
    definition.kind = DefinitionKind::kAddColumn;
    expect("TABLE");
    definition.table.name = expectName("a table");
    expect("ADD");
    accept("COLUMN");
    definition.table.columns.push_back(columnDefinition(definition.table));
    return definition;
  }

  Definition drop() {
    Definition definition;
    if (accept("TABLE")) {
      definition.kind = DefinitionKind::kDropTable;
    } else {
      definition.kind = DefinitionKind::kDropIndex;
      expect("INDEX");
      definition.index = expectName("an index");
      expect("ON");
    }
    definition.table.name = expectName("a table");
    return definition;
  }

  TokenList list_;
  const Token* token_;
};

bool isOfKey(const engine::Table& table, int column) {
  return column >= 0 && std::find(table.key.begin(), table.key.end(),
                                  static_cast<std::size_t>(column)) != table.key.end();
}

std::string translateDefinition(const Definition& definition, const engine::Table* table,
                                const Writer& writer) {
  std::string sql;
  switch (definition.kind) {
    case DefinitionKind::kCreateTable:
      return writer.createTable(definition.table);
    case DefinitionKind::kCreateIndex:
      return createIndex(definition, table, writer);
    case DefinitionKind::kAddColumn:
      sql = "ALTER TABLE ";
      writer.table(sql, definition.table.name);
      sql.append(" ADD COLUMN ");
      writer.columnDeclaration(sql, definition.table, definition.table.columns.front());
      return sql;
    case DefinitionKind::kDropTable:
      sql = "DROP TABLE ";
      writer.table(sql, definition.table.name);
      return sql;
    case DefinitionKind::kDropIndex:
      sql = "DROP INDEX ";
      writer.index(sql, definition.index);
      return sql;
  }
  return sql;
}

}  // namespace

std::string createIndex(const Definition& index, const engine::Table* table, const Writer& writer) {
  std::string sql = index.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ";
  sql.append(writer.unlessThere());
  writer.name(sql, index.index);
  sql.append(" ON ");
  writer.table(sql, index.table.name);
  std::string_view separator = " (";
  for (const std::string& column : index.indexColumns) {
    sql.append(separator);
    writer.indexedColumn(sql, column, table == nullptr || !isOfKey(*table, table->find(column)));
    separator = ", ";
  }
  return sql.append(")");
}

std::vector<Definition> parseDefinitions(std::string_view ddl) {
  return DefinitionParser(ddl).all();
}

std::vector<engine::Table> parseSchema(std::string_view ddl) {
  std::vector<engine::Table> tables;
  for (Definition& definition : parseDefinitions(ddl)) {
    const auto existing = std::find_if(tables.begin(), tables.end(), [&](const engine::Table& t) {
      return text::equalsIgnoreCase(t.name, definition.table.name);
    });
    if (definition.kind == DefinitionKind::kCreateTable) {
      tables.push_back(std::move(definition.table));
    } else if (definition.kind == DefinitionKind::kAddColumn && existing != tables.end()) {
      existing->columns.push_back(std::move(definition.table.columns.front()));
    } else if (definition.kind == DefinitionKind::kDropTable && existing != tables.end()) {
      tables.erase(existing);
    }
  }
  return tables;
}

std::vector<std::string> translateSchema(std::string_view ddl, const Writer& writer) {
  std::vector<std::string> texts;
  const std::vector<Definition> definitions = parseDefinitions(ddl);
  for (const Definition& definition : definitions) {
    const auto made = std::find_if(definitions.begin(), definitions.end(), [&](const auto& other) {
      return other.kind == DefinitionKind::kCreateTable &&
             text::equalsIgnoreCase(other.table.name, definition.table.name);
    });
    texts.push_back(translateDefinition(
        definition, made == definitions.end() ? nullptr : &made->table, writer));
  }
  return texts;
}

}  // namespace tavelor::dialect
