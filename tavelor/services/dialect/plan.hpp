// SPDX-License-Identifier: MIT
// What a statement becomes: text for an engine, its placeholders, its result columns.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/services/engine/catalogue.hpp"

namespace tavelor::dialect {

using engine::ColumnType;

/// What a statement does.
enum class StatementKind : std::uint8_t { kSelect, kInsert, kUpdate, kDelete, kDdl };

/// How the text of a lifted literal becomes the value of a placeholder.
enum class Conversion : std::uint8_t {
  kText,              ///< as it stands
  kNumber,            ///< a bare number: whole if so written and it fits, else double
  kCurrency,          ///< an amount, bare or by the locale, rounded to four decimals
  kNegativeCurrency,  ///< the same behind a minus sign
  kDate,              ///< the text between # and #
  kNumberByLocale,    ///< a quoted text that met a numeric column: '1,5' is 1.5 in Spanish
  kDateByLocale,      ///< a quoted text that met a date column
  kBoolean,           ///< a number or quoted number for a flag: any non-zero is -1
  // For engines that tell types apart.
  kAmount,  ///< a number beside an amount, as one if it has no more than four decimals
  kDay,  ///< a day number beside a date, as one; far beyond all dates at the first or last of all
  // Of no literal, but of the clock.
  kNow,
  kToday,
  kTimeOfDay
};

/// A placeholder of a step: the first one is ?1. One placeholder may stand several times.
struct Parameter {
  /// Index of the lifted literal (or of the caller's own parameter); -1 for one of the clock.
  std::int32_t literal = 0;
  Conversion conversion = Conversion::kText;
  ColumnType columnType = ColumnType::kText;  ///< of the column that it goes into, for range checks
  std::int32_t maxLength = 0;                 ///< characters that the column holds; 0: no limit
  std::string column;  ///< that column's name, for messages; "" where none is assigned to
  /// A side of a comparison: an empty text that meets a number or a date is Null there, equal to
  /// nothing.
  bool compared = false;
};

/// One statement of the engine. All steps of a plan run in one transaction.
struct Step {
  std::string sql;
  std::vector<Parameter> parameters;
};

/// One column of a SELECT.
struct OutputColumn {
  std::string name;
  ColumnType type = ColumnType::kText;
  std::int32_t definedSize = 0;  ///< characters of text; bytes of the others
  bool nullable = true;
  bool autoNumber = false;
  bool key = false;       ///< part of the base table's primary key
  bool hidden = false;    ///< added for finding the row again; comes after all others
  std::string baseTable;  ///< "" for an expression
  std::string baseColumn;
  /// A record set can write it: the key of the row of `baseTable` that it stands in is among the
  /// columns.
  bool updatable = false;
};

/// A statement as an engine gets it.
struct Plan {
  StatementKind kind = StatementKind::kSelect;
  std::vector<Step> steps;
  std::vector<OutputColumn> columns;  ///< of a SELECT
  /// The table that a record set over this SELECT adds rows to and deletes them from, or "" when
  /// there is none: DISTINCT, grouping, a union, or a join of which no table has each row once.
  std::string updateTable;
  /// Rows of a table of counters and nothing else: in a transaction they are read to be written, so
  /// that nobody else may read them so before it ends.
  bool locks = false;
  /// The table of whose numbers this takes the largest, or "". In a transaction the next one is
  /// going to be taken, which two may not do at once.
  std::string numbersOf;
};

}  // namespace tavelor::dialect
