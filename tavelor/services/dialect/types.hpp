// SPDX-License-Identifier: MIT
// Types of expressions, and how one becomes another.
#pragma once

#include "tavelor/services/dialect/arena.hpp"
#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

inline bool isTextual(const Type& type) {
  return !type.null && !type.predicate && engine::isText(type.column);
}
inline bool isDate(const Type& type) {
  return !type.null && !type.predicate && type.column == ColumnType::kDate;
}
inline bool isBinary(const Type& type) {
  return !type.null && !type.predicate && type.column == ColumnType::kBinary;
}
inline bool isMoney(const Type& type) {
  return type.column == ColumnType::kCurrency;
}
/// Numbers, money, flags and truth values.
inline bool isNumberLike(const Type& type) {
  return !type.null &&
         (type.predicate || type.column == ColumnType::kBoolean || engine::isNumeric(type.column));
}
/// Conditions and flags, and Null.
inline bool isTruth(const Type& type) {
  return type.null || type.predicate || type.column == ColumnType::kBoolean;
}
/// Money and floating numbers: those that must be calculated with as decimals.
inline bool hasDecimals(const Type& type) {
  return type.column == ColumnType::kCurrency || type.column == ColumnType::kDouble ||
         type.column == ColumnType::kSingle;
}
/// "a text", "a number": for messages.
std::string_view describe(const Type& type);

inline Type typeOf(ColumnType column) {
  return {column, false, false};
}
inline Type predicateType() {
  return {ColumnType::kBoolean, true, false};
}
inline Type nullType() {
  return {ColumnType::kText, false, true};
}

/// The type of a + b, a - b and a * b for numbers and money.
ColumnType arithmeticType(const Type& a, const Type& b);
/// The type that holds values of both, as in a union or in IIf.
Type commonType(const Type& a, const Type& b);

/// Puts casts around expressions. What is of the wanted type already stays as it is; a lifted
/// literal gets the conversion instead of a cast.
class Converter {
 public:
  Converter(std::string_view statement, Arena& arena) : statement_(statement), arena_(arena) {}

  Expr* cast(Expr* expr, Cast cast, Type type) const;

  /// A truth value becomes -1 or 0.
  Expr* toValue(Expr* expr) const;
  /// A number becomes "not 0". Raises kCriteriaTypeMismatch for texts, dates and bytes.
  Expr* toCondition(Expr* expr) const;
  /// Raises as toCondition() and leaves the expression as it is.
  void checkTruth(const Expr* expr) const;
  Expr* toNumber(Expr* expr) const;
  Expr* toDate(Expr* expr) const;
  Expr* toText(Expr* expr) const;
  /// A number as an amount; of `column` for messages, if it goes into one.
  Expr* toMoney(Expr* expr, const engine::Column* column) const;
  /// One of several values that must be of one type; numbers of all kinds are.
  Expr* toCommon(Expr* expr, const Type& type) const;

  /// Makes two sides comparable: a quoted literal reads as a number or a date where it meets one.
  /// Raises kCriteriaTypeMismatch where the types can't meet.
  void match(Expr*& left, Expr*& right, std::uint32_t offset) const;

  /// The value as it goes into `column`: read by the locale, rounded, range and length checked.
  Expr* toColumn(Expr* expr, const engine::Column& column) const;

 private:
  Expr* literalToColumn(Expr* expr, const engine::Column& column) const;
  Expr* toTextColumn(Expr* expr, const engine::Column& column) const;
  Expr* toDateColumn(Expr* expr) const;
  Expr* toNumberColumn(Expr* expr, const engine::Column& column) const;
  Expr* toFlagColumn(Expr* expr, const engine::Column& column) const;
  [[noreturn]] void raiseMismatch(const Type& left, const Type& right, std::uint32_t offset) const;

  std::string_view statement_;
  Arena& arena_;
};

}  // namespace tavelor::dialect
