// SPDX-License-Identifier: MIT
// Names to tables and columns.
#pragma once

#include <string_view>

#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

/// The tables that a name can mean, those of the enclosing statements behind them.
struct Scope {
  Source* sources = nullptr;
  const Scope* outer = nullptr;
  /// The items of the list that are bound already: a later item may use their aliases.
  const OutputItem* itemsBegin = nullptr;
  const OutputItem* itemsEnd = nullptr;

  bool manySources() const { return sources != nullptr && sources->next != nullptr; }
};

class NameResolver {
 public:
  NameResolver(std::string_view statement, const engine::Catalogue& catalogue)
      : statement_(statement), catalogue_(catalogue) {}

  /// Finds the table of a source. Raises kTableNotFound with the nearest name.
  void resolve(Source& source) const;
  /// All sources of a FROM clause; two of one name raise kSyntax.
  void resolveAll(Source* sources) const;
  /// Finds the column of a name, or the item of the list whose alias it is (the only case in which
  /// the result is not null). Raises kMissingParameter with the nearest name when there is none,
  /// kSyntax when several tables have it.
  const OutputItem* resolve(Expr& column, const Scope& scope) const;
  /// The source that `name` means, in `sources` only, or null.
  static Source* findSource(Source* sources, std::string_view name);

 private:
  bool resolveIn(Expr& column, const Scope& scope) const;
  [[noreturn]] void raiseUnknownColumn(const Expr& column, const Source* sources) const;
  [[noreturn]] void raiseUnknownTable(const Expr& column, const Source* sources) const;
  [[noreturn]] void raiseAmbiguous(const Expr& column, const Source& first,
                                   const Source& second) const;

  std::string_view statement_;
  const engine::Catalogue& catalogue_;
};

}  // namespace tavelor::dialect
