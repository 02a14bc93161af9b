// SPDX-License-Identifier: MIT
// Names to columns, types to expressions.
#pragma once

#include "tavelor/services/dialect/functions.hpp"
#include "tavelor/services/dialect/scope.hpp"
#include "tavelor/services/dialect/types.hpp"

namespace tavelor::dialect {

/// Completes a tree: finds tables and columns, gives every expression its type, puts in the casts,
/// expands `*`, adds the hidden key columns, and describes the result in the plan.
///
/// Errors: as translate().
class Binder {
 public:
  /// `row` is the engine's own name for the place of a row: see Words::row. The tree holds parts of
  /// the binder, which must outlive it.
  Binder(std::string_view statement, const engine::Catalogue& catalogue, Arena& arena,
         std::string_view row)
      : statement_(statement),
        arena_(arena),
        names_(statement, catalogue),
        convert_(statement, arena) {
    rowLocator_.name = row;
  }

  void bind(TreeStatement& tree, Plan& plan);

 private:
  enum class Aggregates : std::uint8_t { kRefused, kAllowed };

  /// Where an expression stands.
  struct Place {
    const Scope& scope;
    Aggregates aggregates = Aggregates::kRefused;
    bool* sawAggregate = nullptr;
  };

  // Expressions: the result is the expression, perhaps with casts around it.
  Expr* value(Expr* expr, const Place& place);
  Expr* condition(Expr* expr, const Place& place);
  Expr* column(Expr* expr, const Place& place);
  Expr* literal(Expr* expr);
  Expr* negation(Expr* expr, const Place& place);
  Expr* negatedTruth(Expr* expr, const Place& place);
  Expr* connection(Expr* expr, const Place& place);
  Expr* binary(Expr* expr, const Place& place);
  Expr* addition(Expr* expr);
  Expr* comparison(Expr* expr, const Place& place);
  Expr* truthTest(Expr* expr);
  Expr* like(Expr* expr, const Place& place);
  Expr* between(Expr* expr, const Place& place);
  Expr* membership(Expr* expr, const Place& place);
  Expr* subSelect(Expr* expr, const Place& place);
  Expr* call(Expr* expr, const Place& place);
  void callArguments(Expr* expr, const Place& place);
  Expr* argument(Expr* expr, char letter, const Place& place);
  void callType(Expr* expr);
  Expr* conversionCall(Expr* expr);

  // Selects.
  void select(Select& select, const Scope* outer);
  void selectPart(Select& part, const Scope* outer);
  void conditions(Join* join, const Place& place);
  void items(Select& part, Scope& scope, bool* sawAggregate);
  OutputItem* expandStar(OutputItem* star, const Scope& scope);
  void nameItems(Select& part, const Scope& scope);
  void order(Select& first, const Scope& scope);
  void orderOfUnion(Select& first);
  void unionTypes(Select& first);
  void checkDistinctRow(Select& part);
  void hideKeys(Select& select, Source& rowSource);
  void selectRows(Select& select, Plan& plan);
  void describeResult(const Select& select, Plan& plan);
  OutputColumn describeItem(const OutputItem& item) const;

  // The others.
  void insert(TreeStatement& tree);
  void insertValues(TreeStatement& tree, const Scope& target);
  void insertSelected(TreeStatement& tree, const Scope& target);
  Expr* insertedColumns(const engine::Table& table, const OutputItem* named, Source* target);
  void update(TreeStatement& tree);
  void remove(TreeStatement& tree);
  Source* deletedSource(const Expr& item, Source* sources) const;

  [[noreturn]] void failSyntax(std::uint32_t offset, std::string_view complaint) const {
    raiseSyntax(statement_, offset, complaint);
  }

  std::string_view statement_;
  Arena& arena_;
  NameResolver names_;
  Converter convert_;
  /// Stands for the place of a row in a table without a key. It bears the engine's own name for it,
  /// so that what a record set composes from it runs as it stands.
  engine::Column rowLocator_{.name = {},
                             .type = ColumnType::kInt32,
                             .size = 0,
                             .nullable = false,
                             .autoNumber = true,
                             .defaultText = {}};
};

}  // namespace tavelor::dialect
