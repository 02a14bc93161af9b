// SPDX-License-Identifier: MIT
// What a statement says. The parser makes the tree; the binder fills in what it found.
#pragma once

#include <cstdint>
#include <string_view>

#include "tavelor/services/dialect/lexer.hpp"
#include "tavelor/services/dialect/plan.hpp"

namespace tavelor::dialect {

struct Function;
struct Select;
struct Source;

enum class ExprKind : std::uint8_t {
  kLiteral,
  kNull,
  kBoolean,  ///< True or False
  kColumn,
  kStar,  ///< * or t.*, in a list of columns or in Count(*)
  kNegate,
  kNot,
  kBinary,  ///< arithmetic, &, And, Or
  kCompare,
  kLike,
  kBetween,  ///< left, right and third are the value and the bounds, in any order
  kIn,       ///< left; the list in `arguments`
  kInSelect,
  kIsNull,
  kExists,
  kSubselect,
  kCall,
  kCast  ///< put in by the binder: left in another type
};

enum class Operator : std::uint8_t {
  kNone,
  kPower,
  kMultiply,
  kDivide,
  kWholeDivide,
  kModulo,
  kAdd,
  kSubtract,
  kJoin,
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kAnd,
  kOr
};

/// What a cast makes of its operand.
enum class Cast : std::uint8_t {
  kNone,
  kNumber,             ///< a text read by the locale
  kDate,               ///< a text read by the locale
  kDay,                ///< a day of the years that there are
  kText,               ///< a value printed by the locale
  kNumberOfPredicate,  ///< true as -1, false as 0
  kPredicateOfNumber,  ///< anything but 0 is true
  kFlag,               ///< any number but 0 as -1
  kCurrency,           ///< rounded to four decimals
  kWhole,              ///< rounded to whole, within the range of `type`
  kSingle,
  kFit  ///< a text that must fit into `size` characters
};

/// A type as expressions have it: a column's type, or the engine's own truth value, or nothing
/// known (Null).
struct Type {
  ColumnType column = ColumnType::kText;
  bool predicate = false;
  bool null = false;
};

struct Expr {
  ExprKind kind = ExprKind::kNull;
  Operator op = Operator::kNone;
  Cast cast = Cast::kNone;
  bool negated = false;  ///< NOT IN, NOT LIKE, IS NOT NULL; False of kBoolean
  bool inParentheses = false;
  std::uint16_t depth = 1;   ///< of the tree below
  std::uint32_t offset = 0;  ///< in the statement

  std::string_view qualifier;  ///< kColumn, kStar: as written, without brackets
  std::string_view name;       ///< kColumn, kCall
  Token literal;               ///< kLiteral

  Expr* left = nullptr;
  Expr* right = nullptr;
  Expr* third = nullptr;
  Expr* arguments = nullptr;  ///< kCall, kIn; linked by `next`
  Expr* next = nullptr;
  Select* select = nullptr;  ///< kInSelect, kExists, kSubselect

  // From the binder.
  Type type;
  std::int32_t size = 0;  ///< of kFit: characters
  Source* source = nullptr;
  const engine::Column* column = nullptr;
  bool qualified = false;  ///< kColumn: needs its table in front
  const Function* function = nullptr;
  Conversion conversion = Conversion::kText;   ///< kLiteral
  const engine::Column* assignedTo = nullptr;  ///< kLiteral: the column that it goes into
  ColumnType meets = ColumnType::kText;        ///< kLiteral: the type of what it meets
  bool compared = false;                       ///< kLiteral: a side of a comparison

  // From the writer: the placeholder that a literal got in a step.
  mutable std::int32_t placeholder = 0;
  mutable std::int32_t step = -1;
};

/// A table of a FROM clause, or what stands in its place.
struct Source {
  std::string_view table;
  std::string_view alias;  ///< "" when it has none
  std::uint32_t offset = 0;
  const engine::Table* base = nullptr;
  Source* next = nullptr;  ///< of the clause, in the order of the text

  std::string_view name() const { return alias.empty() ? std::string_view(base->name) : alias; }
};

enum class JoinKind : std::uint8_t { kTable, kCross, kInner, kLeft, kRight };

/// A tree of joins with tables as leaves.
struct Join {
  JoinKind kind = JoinKind::kTable;
  Source* source = nullptr;  ///< kTable
  Join* left = nullptr;
  Join* right = nullptr;
  Expr* condition = nullptr;
};

struct OutputItem {
  Expr* expr = nullptr;
  std::string_view alias;
  std::string_view name;  ///< of the result's column; from the binder
  bool hidden = false;
  OutputItem* next = nullptr;
};

struct OrderItem {
  Expr* expr = nullptr;
  bool descending = false;
  const OutputItem* output = nullptr;  ///< sorts by this column of the result, not by `expr`
  std::int32_t position = 0;           ///< sorts by the result's column of this number, from 1
  OrderItem* next = nullptr;
};

struct Select {
  std::uint32_t offset = 0;
  bool distinct = false;
  bool distinctRow = false;
  bool grouped = false;  ///< GROUP BY or an aggregate in the list; from the binder
  std::int64_t top = -1;
  OutputItem* items = nullptr;
  Join* from = nullptr;
  Source* sources = nullptr;
  Expr* where = nullptr;
  Expr* groupBy = nullptr;  ///< linked by `next`
  Expr* having = nullptr;
  OrderItem* orderBy = nullptr;  ///< of the whole union, on its first part
  Select* unionNext = nullptr;
  bool unionAll = false;  ///< how unionNext is joined to this part
};

struct Assignment {
  Expr* target = nullptr;
  Expr* value = nullptr;
  Assignment* next = nullptr;
};

struct TreeStatement {
  StatementKind kind = StatementKind::kSelect;
  Select* select = nullptr;  ///< kSelect, kInsert from a SELECT
  Join* from = nullptr;      ///< kUpdate, kDelete
  Source* sources = nullptr;
  Source* target = nullptr;  ///< kInsert; from the binder for kUpdate and kDelete
  Expr* columns = nullptr;   ///< kInsert: its column list; kDelete: what stands before FROM
  Expr* values = nullptr;    ///< kInsert with VALUES
  Assignment* assignments = nullptr;
  Expr* where = nullptr;
};

}  // namespace tavelor::dialect
