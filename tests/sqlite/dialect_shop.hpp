// SPDX-License-Identifier: MIT
// Statements of the dialect over a small shop in memory.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {

inline constexpr std::string_view kDialectSchema = R"(
  CREATE TABLE Tarifas (
    Codigo TEXT(6) NOT NULL PRIMARY KEY, Nombre TEXT(10), Precio CURRENCY, Cantidad DOUBLE,
    Orden LONG, Corto SHORT, Activo BIT NOT NULL DEFAULT 0, Fecha DATETIME, Nota MEMO);
  CREATE TABLE Lineas (Id COUNTER PRIMARY KEY, Codigo TEXT(6), Importe CURRENCY);
  CREATE TABLE Numeradas (Id LONG NOT NULL PRIMARY KEY, Nombre TEXT(10));
)";

class DialectBehaviour : public testing::Test {
 protected:
  DialectBehaviour() {
    for (const std::string& text :
         dialect::translateSchema(kDialectSchema, dialect::sqliteWriter())) {
      session->execute(text);
    }
    run("INSERT INTO Tarifas (Codigo, Nombre, Precio, Cantidad, Orden, Activo, Fecha) VALUES "
        "('a', 'Uno', '1,5', 3, 1, -1, #03/05/2026#)");
    run("INSERT INTO Tarifas (Codigo, Precio, Cantidad, Orden) VALUES ('b', 10, 0, 2)");
  }

  std::int64_t run(std::string_view text) { return plans.run(Statement::trusted(text)); }
  std::int32_t error(std::string_view text) {
    return errorNumber([&] { run(text); });
  }
  /// The first column, of texts, of all rows.
  std::vector<std::string> all(std::string_view text) {
    const RowStore found = fetched(plans, Statement::trusted(text));
    std::vector<std::string> texts;
    for (std::uint32_t row = 0; row < found.rows(); ++row) texts.emplace_back(found.text(row, 0));
    return texts;
  }
  /// The first column of the first row, printed; "none" without a row.
  std::string first(std::string_view text) {
    const RowStore rows = fetched(plans, Statement::trusted(text));
    if (rows.rows() == 0) return "none";
    if (rows.isNull(0, 0)) return "Null";
    switch (rows.type(0)) {
      case ColumnType::kText:
      case ColumnType::kMemo:
        return std::string(rows.text(0, 0));
      case ColumnType::kSingle:
      case ColumnType::kDouble:
      case ColumnType::kDate:
        return plainNumber(rows.real(0, 0), *Locale::neutral());
      case ColumnType::kCurrency:
        return plainNumber(Currency::fromScaled(rows.integer(0, 0)).toDouble(), *Locale::neutral());
      default:
        return std::to_string(rows.integer(0, 0));
    }
  }
  std::string value(std::string_view expression, std::string_view code = "a") {
    return first("SELECT " + std::string(expression) + " FROM Tarifas WHERE Codigo = '" +
                 std::string(code) + "'");
  }

  std::unique_ptr<Session> session = openInMemory();
  dialect::PlanCache plans{*session,
                           std::make_shared<const Catalogue>(dialect::parseSchema(kDialectSchema)),
                           Locale::spanish(), dialect::sqliteWriter()};
};

}  // namespace tavelor::engine::test
