// SPDX-License-Identifier: MIT
// What the tests of the dialect share: a small shop, and short ways to translate.
#pragma once

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"

namespace tavelor::dialect::test {

inline const engine::Catalogue& shop() {
  static const engine::Catalogue catalogue(parseSchema(R"(
    CREATE TABLE Bancos (
      Codigo TEXT(6) NOT NULL, Banco TEXT(50), Saldo CURRENCY, Orden LONG, Alta DATETIME,
      Activo BIT NOT NULL DEFAULT 0, Notas MEMO, Logo LONGBINARY, Tipo DOUBLE, Corto SHORT,
      [Base Imponible] DOUBLE,
      CONSTRAINT PK PRIMARY KEY (Codigo));
    CREATE TABLE Apuntes (
      Id COUNTER PRIMARY KEY, Banco TEXT(6), Importe CURRENCY, Fecha DATETIME, Concepto TEXT(10));
    CREATE TABLE HApuntes (
      Id LONG NOT NULL PRIMARY KEY, Banco TEXT(6), Importe CURRENCY, Fecha DATETIME,
      Concepto TEXT(10));
    CREATE TABLE Sueltos (Texto TEXT(20), Numero DOUBLE);
  )"));
  return catalogue;
}

inline Plan planOf(const Statement& statement) {
  Literals literals;
  return translate(statement, shop(), sqliteWriter(), literals);
}
inline Plan planOf(std::string_view text) {
  return planOf(Statement::trusted(text));
}

/// The engine's text of a statement of one step.
inline std::string sqlOf(const Statement& statement) {
  return planOf(statement).steps.at(0).sql;
}
inline std::string sqlOf(std::string_view text) {
  return sqlOf(Statement::trusted(text));
}

/// The text that PostgreSQL gets, for a schema "s".
inline Plan serverPlanOf(std::string_view text) {
  static const auto writer = postgresWriter("s");
  Literals literals;
  return translate(Statement::trusted(text), shop(), *writer, literals);
}
inline std::string serverSqlOf(std::string_view text) {
  return serverPlanOf(text).steps.at(0).sql;
}

/// The error of a statement, or one of number 0 if it has none.
inline Error errorOf(const Statement& statement) {
  try {
    planOf(statement);
  } catch (const Error& error) {
    return error;
  }
  return Error(0, "", "no error");
}
inline Error errorOf(std::string_view text) {
  return errorOf(Statement::trusted(text));
}

}  // namespace tavelor::dialect::test
