// SPDX-License-Identifier: MIT
// Tree to an engine's text: what is common, and what engines differ in.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/dialect/plan.hpp"
#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

class StepText;
struct SchemaIndex;

/// What an engine's text differs in. A new engine is a new sub-class.
class Writer {
 public:
  virtual ~Writer() = default;

  /// `isNew` where this number stands for the first time; those that do come in order.
  virtual void placeholder(std::string& out, std::int32_t number, bool isNew) const = 0;
  /// True for a word that can't be a name without quotes.
  virtual bool isReserved(std::string_view name) const = 0;
  /// The functions that give the smaller and the larger of two values.
  virtual std::string_view smaller() const = 0;
  virtual std::string_view larger() const = 0;
  /// What stands before and behind a condition to make it -1, 0 or Null.
  virtual std::string_view beforeTruth() const = 0;
  virtual std::string_view behindTruth() const = 0;

  /// What the rows of a table are sorted by to come as they were stored.
  virtual std::string_view storedOrder() const = 0;

  /// UPDATE and DELETE of a table that is joined with others.
  virtual void joinedUpdate(StepText& text, const TreeStatement& tree) const = 0;
  virtual void joinedDelete(StepText& text, const TreeStatement& tree) const = 0;

  /// CREATE TABLE.
  virtual std::string createTable(const engine::Table& table) const = 0;
  /// What stands for a column's declaration in CREATE TABLE and ADD COLUMN.
  virtual void columnDeclaration(std::string& out, const engine::Table& table,
                                 const engine::Column& column) const = 0;

  /// A name, in double quotes where it needs them.
  void name(std::string& out, std::string_view name) const;
};

/// The text of one step in the making. Public for the writers.
class StepText {
 public:
  /// Steps of one statement have different numbers: a literal has one placeholder in each.
  StepText(const Writer& writer, std::string_view statement, std::int32_t number)
      : writer_(writer), statement_(statement), number_(number) {}

  Step write(const TreeStatement& tree);

  StepText& operator<<(std::string_view text) {
    step_.sql.append(text);
    return *this;
  }
  StepText& operator<<(std::int64_t number) {
    step_.sql.append(std::to_string(number));
    return *this;
  }
  void name(std::string_view name) { writer_.name(step_.sql, name); }
  void column(const Expr& column, bool qualified);
  /// "Bancos", "Bancos AS b".
  void source(const Source& source);
  void join(const Join& tree);
  void expression(const Expr& expr) { expression(expr, 0); }
  void select(const Select& select);
  /// The condition as an operand of AND.
  void conjunct(const Expr& condition);

 private:
  void expression(const Expr& expr, int level);
  /// What stands behind `open` symbols that an engine's parser keeps until it has read it. Raises
  /// kNotSupported (kTooDeep) where the parser would have no room for more.
  void nested(const Expr& expr, int level, int open);
  void bare(const Expr& expr, int level);
  void literal(const Expr& expr);
  void placeholder(const Expr& expr);
  void binary(const Expr& expr, int level);
  void exact(const Expr& expr);
  void joinedTexts(const Expr& expr);
  void compare(const Expr& expr, int level);
  void between(const Expr& expr, int level);
  void like(const Expr& expr);
  void membership(const Expr& expr, int level);
  void inner(const Expr& expr);
  void call(const Expr& expr);
  void cast(const Expr& expr);
  void truth(const Expr& condition);
  void function(std::string_view name, const Expr& first, const Expr& second);
  void list(const Expr* first);
  void arguments(std::span<const Expr* const> arguments);
  void selectPart(const Select& part);
  void delivered(const Select& select);
  void parts(const Select& select);
  void limit(const Select& select);
  void order(const OrderItem* items, const Select& select);
  void key(const Expr& expr);
  void insert(const TreeStatement& tree);
  void update(const TreeStatement& tree);
  void remove(const TreeStatement& tree);

  const Writer& writer_;
  std::string_view statement_;
  std::int32_t number_;
  int open_ = 0;
  Step step_;
};

}  // namespace tavelor::dialect
