// SPDX-License-Identifier: MIT
// Tree to an engine's text: what is common, and what engines differ in.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/dialect/plan.hpp"
#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

/// What stands before and behind an expression.
struct Around {
  std::string_view before;
  std::string_view behind;
  bool isNothing() const { return before.empty() && behind.empty(); }
};

/// The words that an engine's text differs in.
struct Words {
  /// The column, of every table and shown by none, by which rows come as they were stored.
  std::string_view row = {};
  /// The functions that give the smaller and the larger of two values, and Null where one of them
  /// is. "" for an engine whose BETWEEN takes its bounds in either order.
  std::string_view smaller = {};
  std::string_view larger = {};
  /// Makes a condition -1, 0 or Null.
  Around truth = {};
  /// Behind what is sorted by, so that Null is the smallest of all; shorter where there is none.
  std::string_view ascending = {};
  std::string_view descending = " DESC";
  /// Behind a text that is sorted or compared, if nothing in it says that its characters count.
  std::string_view byCharacter = {};
  /// Behind a SELECT in a transaction: nobody else gets the rows until it ends. "" where nobody
  /// does anyhow.
  std::string_view lock = {};

  /// Arguments that a function takes.
  std::size_t mostArguments = 0;
  /// The function through which a number goes that is given to a counter, so that the counter goes
  /// on behind it: of the table, the column and the number. "" where counters see it themselves.
  std::string_view counted = {};

  /// Whether the engine tells the dialect's types apart, and everything has to be of one: dates are
  /// no numbers, a Null in a column of a result has its type, a group shows nothing but what it is
  /// grouped by. What follows is for such a one.
  bool isTyped = false;
  /// Makes of a stored value what is calculated with: the day number of a date, a whole number and
  /// a number of the widest types.
  Around days = {};
  Around whole = {};
  Around number = {};
  /// Makes a stored date of a calculated one.
  Around date = {};
};

class StepText;

/// What an engine's text differs in. A new engine is a new sub-class.
class Writer {
 public:
  virtual ~Writer() = default;

  virtual const Words& words() const = 0;

  /// `isNew` where this number stands for the first time; those that do come in order.
  virtual void placeholder(std::string& out, std::int32_t number, bool isNew) const = 0;
  /// Placeholders that one statement may have.
  virtual std::int32_t mostPlaceholders() const { return std::numeric_limits<std::int32_t>::max(); }

  /// A name, in double quotes where it needs them. Raises kNotSupported for one that is too long.
  virtual void name(std::string& out, std::string_view name) const = 0;
  /// A table's name, with whatever an engine wants in front of it.
  virtual void table(std::string& out, std::string_view name) const { this->name(out, name); }

  /// The engine's text of one that the library composed for all engines: plain SQL of one table
  /// with `?` or `?1` for values, names bare or in double quotes, and the table's behind INTO, FROM
  /// or UPDATE.
  virtual std::string composed(std::string_view neutral) const { return std::string(neutral); }

  /// CREATE TABLE.
  virtual std::string createTable(const engine::Table& table) const = 0;
  /// What stands for a column's declaration in CREATE TABLE and ADD COLUMN.
  virtual void columnDeclaration(std::string& out, const engine::Table& table,
                                 const engine::Column& column) const = 0;
  /// What stands between CREATE INDEX and the index's name.
  virtual std::string_view unlessThere() const { return ""; }
  /// DROP INDEX names the index alone, or as a table is named.
  virtual void index(std::string& out, std::string_view name) const { this->name(out, name); }
  /// A column of an index; `mayBeNull` where it is not known to hold a value in each row.
  virtual void indexedColumn(std::string& out, std::string_view column, bool mayBeNull) const = 0;
  /// A Null of a type, for an engine that is typed.
  virtual std::string_view nullOf(ColumnType) const { return "NULL"; }

  /// Between two marks, those within doubled.
  static void quote(std::string& out, std::string_view text, char mark);
};

/// The text of one step in the making.
class StepText {
 public:
  /// Steps of one statement have different numbers: a literal has one placeholder in each.
  StepText(const Writer& writer, std::string_view statement, std::int32_t number)
      : writer_(writer), words_(writer.words()), statement_(statement), number_(number) {}

  Step write(const TreeStatement& tree);

 private:
  /// How a value is wanted. Makes no difference to an engine that is not typed.
  enum class Form : std::uint8_t {
    kStored,     ///< as a column holds it
    kCompared,   ///< beside one: a number reads as what it meets
    kCalculated  ///< as functions and signs take it
  };
  /// What a column of a result has to be.
  struct Output {
    const engine::Column* column = nullptr;  ///< that it goes into, if any
    const engine::Table* added = nullptr;    ///< the column's table, if it gets a row by it
    Form form = Form::kStored;
    Type type = {};         ///< of a Null
    bool isSorted = false;  ///< the result is sorted by it
  };

  StepText& operator<<(std::string_view text) {
    step_.sql.append(text);
    return *this;
  }
  StepText& operator<<(std::int64_t number) {
    step_.sql.append(std::to_string(number));
    return *this;
  }
  void name(std::string_view name) { writer_.name(step_.sql, name); }
  void table(std::string_view name) { writer_.table(step_.sql, name); }
  void column(const Expr& column, bool qualified);
  /// The row of a source: see Words::row.
  void row(const Source& source, bool qualified);
  /// "Bancos", "Bancos AS b".
  void source(const Source& source);
  void join(const Join& tree);

  // Expressions.
  void expression(const Expr& expr) { expression(expr, 0); }
  void expression(const Expr& expr, int level, Form form = Form::kStored);
  /// What stands behind `open` symbols that an engine's parser keeps until it has read it. Raises
  /// kNotSupported (kTooDeep) where the parser would have no room for more.
  void nested(const Expr& expr, int level, int open, Form form = Form::kStored);
  /// The condition as an operand of AND.
  void conjunct(const Expr& condition);
  void plain(const Expr& expr, int level);
  void bare(const Expr& expr, int level);
  void literal(const Expr& expr);
  void placeholder(const Expr& expr, Conversion conversion);
  void clock(const Function& function);
  void negation(const Expr& expr);
  void binary(const Expr& expr, int level);
  void exact(const Expr& expr);
  void joinedTexts(const Expr& expr);
  void compare(const Expr& expr, int level);
  void between(const Expr& expr, int level);
  void like(const Expr& expr);
  void membership(const Expr& expr, int level);
  void inner(const Expr& expr, Form form = Form::kStored);
  void call(const Expr& expr);
  void plainCall(const Expr& expr, std::string_view name);
  void aggregate(const Expr& expr, std::string_view name);
  void cast(const Expr& expr);
  void truth(const Expr& condition);
  void function(std::string_view name, const Expr& first, const Expr& second);
  void list(const Expr* first, Form form);
  void arguments(std::span<const Expr* const> arguments);

  // Forms of values: writer_forms.cpp.
  Around aroundOf(const Expr& expr, Form form) const;
  Form formOf(std::span<const Expr* const> compared) const;
  Form formOfMembers(const Expr& membership) const;
  bool needsOrder(std::span<const Expr* const> compared) const;
  Conversion comparedAs(const Expr& expr) const;
  Around resultOf(const Function& function, std::string_view name) const;
  std::vector<Output> outputsOf(const Select& select, Form form) const;
  void output(const Expr& expr, const Output& output);
  void assigned(const Expr& expr, const engine::Column& column, int open = 0);
  void added(const Expr& expr, const engine::Table& table, const engine::Column& column,
             int open = 0);
  void sorted(const Expr& expr, int level);
  bool standsInGroup(const Expr& expr) const;
  bool isOfGroup(const Expr& column) const;
  void ofGroup(const Expr& column);
  void rowOrder(const Source* sources);

  // Statements.
  void select(const Select& select, Form form);
  void delivered(const Select& select, const std::vector<Output>& outputs);
  void parts(const Select& select, const std::vector<Output>& outputs);
  void selectPart(const Select& part, const std::vector<Output>& outputs);
  void groupBy(const Select& part);
  bool isGroupedToSort(const Select& select) const;
  void limit(const Select& select);
  void order(const Select& select);
  void direction(const OrderItem& item, bool isNeverNull);
  void key(const Expr& expr, bool hasOrder);
  void where(const Expr* condition);
  void insert(const TreeStatement& tree);
  void update(const TreeStatement& tree);
  void remove(const TreeStatement& tree);

  // Those that join tables: writer_joins.cpp.
  void joinedUpdate(const TreeStatement& tree);
  void updateFromTables(const TreeStatement& tree);
  void updateFromRows(const TreeStatement& tree);
  void joinedDelete(const TreeStatement& tree);
  void conditions(const Join& join, std::string_view& lead);

  const Writer& writer_;
  const Words& words_;
  std::string_view statement_;
  std::int32_t number_;
  int open_ = 0;
  const Select* group_ = nullptr;  // the SELECT whose groups are written, of a typed engine
  Step step_;
};

}  // namespace tavelor::dialect
