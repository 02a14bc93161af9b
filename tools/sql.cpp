// SPDX-License-Identifier: MIT
// tavelor sql: runs one statement of the dialect.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <iostream>
#include <iterator>

#include <fmt/format.h>

#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"
#include "tools/session.hpp"
#include "tools/table.hpp"

namespace tavelor::tools {

namespace {

constexpr const char* kFooter =
    R"(DATABASE is a number or a label: 1 main, 3 documents, 4 historic, 5 import,
0 further. A SELECT prints its rows; other statements the number of rows
written. A statement of "-" is read from standard input.

  tavelor sql main "SELECT Codigo, Banco FROM Bancos WHERE Banco Like 'Caja*'"
  tavelor sql 1 "UPDATE Bancos SET Predeterminada = True WHERE Codigo = '1'"
  tavelor sql documents - < statement.sql)";

struct SqlOptions {
  std::string database;
  std::string statement;
  TableOptions table;
};

std::string standardInput() {
  return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
}

bool isSelect(std::string_view statement) {
  constexpr std::string_view kWord = "SELECT";
  const std::size_t begin = statement.find_first_not_of(" \t\r\n(");
  return begin != std::string_view::npos &&
         text::equalsIgnoreCase(statement.substr(begin, kWord.size()), kWord);
}

void runStatement(const SqlOptions& options, const Common& common) {
  Session session(common);
  const int selector = session.selector(options.database);
  const Statement statement(
      Statement::trusted(options.statement == "-" ? standardInput() : options.statement));
  const ConnectionPtr connection = session.apartment().openConnection(selector);
  if (isSelect(statement.text())) {
    const auto rows = std::make_shared<Recordset>();
    rows->Open(statement, connection);
    printRows(*rows, session.locale(), options.table, Style(common.color, stdout));
    return;
  }
  const std::int64_t written = connection->Execute(statement);
  fmt::print("{} row{} written\n", written, written == 1 ? "" : "s");
}

}  // namespace

void addSql(CLI::App& app, Common& common) {
  CLI::App* command = app.add_subcommand("sql", "Run one statement of the dialect");
  auto options = std::make_shared<SqlOptions>();
  command->add_option("database", options->database, "Which database")
      ->required()
      ->type_name("DATABASE");
  command->add_option("statement", options->statement, "The statement, or - for standard input")
      ->required()
      ->type_name("STATEMENT");
  addTableOptions(*command, options->table);
  addInstallationOptions(*command, common);
  addColorOption(*command, common);
  command->footer(kFooter);
  command->callback([options, &common] { runStatement(*options, common); });
}

}  // namespace tavelor::tools
