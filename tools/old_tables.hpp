// SPDX-License-Identifier: MIT
// Which table and column of a database file goes into which of an installation, and how values
// become theirs.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/platform/variant.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tools/old_database.hpp"

namespace tavelor {
class Installation;
}

namespace tavelor::tools {

struct ColumnPlan {
  std::size_t from = 0;  ///< column of the file's table
  OldType type = OldType::kText;
  const engine::Column* to = nullptr;
};

struct TablePlan {
  std::size_t from = 0;  ///< table of the file
  std::string oldName;
  std::string fault;  ///< why nothing of it is taken, or ""
  int selector = 0;
  bool isInFile = true;               ///< the shop's database is one
  const engine::Table* to = nullptr;  ///< null where there is none
  std::vector<ColumnPlan> columns;
  /// Places in `columns` of what a row is known by; none where only all of it tells it apart.
  std::vector<std::size_t> key;
  std::vector<std::string> notTaken;  ///< columns of the file, with the reason
  std::vector<std::string> missing;   ///< columns of the shop that the file does not have

  /// By the shop's name without regard to case; -1 for one that the file does not give.
  int place(std::string_view column) const;
};

struct TablePlans {
  std::vector<TablePlan> tables;
  std::vector<std::shared_ptr<const engine::Catalogue>> catalogues;  ///< what the plans point into

  /// The plan that goes into a table of the shop, or null.
  const TablePlan* into(std::string_view table) const;
  /// Of a table of the file, without regard to case, accents and blanks; null for none.
  const TablePlan* of(std::string_view oldTable) const;
};

/// Names are those of the shop, with or without accents and blanks, unless `maps` says otherwise:
/// Table=Table, Table.Column=Column, nothing behind the = leaves it out. `into` is where all goes,
/// else the main database and that of documents, each what it has. Raises UsageError for a map of
/// what is not there, and where two tables or columns go into one.
TablePlans planTables(const OldDatabase& file, const Installation& shop,
                      const std::vector<std::string>& maps, std::optional<int> into);

/// What fits and what does not, for a person.
std::string described(const TablePlans& plans, const OldDatabase& file);

/// Makes a value of the file one of the column. Gives what is wrong with it, by the column's name,
/// or "". Nothing is rounded but what a single holds of a double, and decimals beyond the fifteenth
/// digit of a number that becomes money.
std::string converted(const Variant& value, const ColumnPlan& column, bool isInFile, Variant& to);

}  // namespace tavelor::tools
