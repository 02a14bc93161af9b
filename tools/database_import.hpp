// SPDX-License-Identifier: MIT
// Takes the rows of a database file into an installation.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tavelor/flows/both_databases.hpp"
#include "tools/old_tables.hpp"
#include "tools/refusals.hpp"
#include "tools/row_import.hpp"

namespace tavelor::tools {

/// Counts of one table.
struct TableCounts : ImportCounts {
  std::uint64_t kept = 0;  ///< there already, and otherwise
  std::uint64_t total() const { return ImportCounts::total() + kept; }
};

/// Rows come table by table, those that are referred to first, in one transaction over all tables
/// of a database. Nothing is written before commit(): whatever ends the work before leaves the shop
/// as it was.
///
/// A row that is there already is told by its key, or by all of it in a table without one. It stays
/// as it is unless rows are rewritten. A row is refused, and only that row, for a value that its
/// column does not hold, a key that another row of the file has, a unique index, and for a row that
/// it refers to and that is neither stored nor taken.
class DatabaseImport {
 public:
  struct Setup {
    bool isRewriting = false;
  };

  /// Both outlive this. Begins the transactions.
  DatabaseImport(OldDatabase& file, const TablePlans& plans, Setup setup);
  ~DatabaseImport();
  DatabaseImport(const DatabaseImport&) = delete;
  DatabaseImport& operator=(const DatabaseImport&) = delete;

  /// The plans that are taken, in the order in which to take them.
  const std::vector<const TablePlan*>& order() const { return order_; }
  /// All of a table. Raises what the file and the database raise, and
  /// FileError where a person interrupts.
  TableCounts take(const TablePlan& plan, Refusals& refusals,
                   const Callback<void(std::uint64_t)>& progress);
  /// Main first: after a death between the two, the same command brings the documents.
  void commit();

 private:
  struct Record {
    std::uint64_t number = 0;
    std::vector<Variant> values;  ///< by the plan's columns
  };
  struct Reference;
  struct Known;
  struct Work;

  void findReferences();
  void addReference(Reference reference);
  void orderBy(const TablePlan& plan, std::unordered_set<const TablePlan*>& seen);
  ConnectionPtr& connectionOf(int selector);
  void loadParents(Reference& reference);
  void loadStored(Work& work);

  std::string read(Work& work, OldRow& row, Record& record);
  std::string missingParent(const TablePlan& plan, const Record& record) const;
  void sort(Work& work, Record record);
  void accept(const TablePlan& plan, const Record& record);
  void write(Work& work);
  void insert(const TablePlan& plan, std::span<const Record> records);
  void insertByStatement(const TablePlan& plan, const Record& record);
  RecordsetPtr storedRow(const TablePlan& plan, const Record& record);
  void rewriteOrTell(Work& work, const Record& record);
  void refuse(Work& work, std::uint64_t number, std::string name, std::string reason);

  OldDatabase& file_;
  const TablePlans& plans_;
  Setup setup_;
  std::vector<std::unique_ptr<Reference>> references_;
  std::vector<const TablePlan*> order_;
  std::unordered_set<const TablePlan*> done_;
  std::unordered_map<int, ConnectionPtr> connections_;
  std::optional<flows::DatabaseTransaction> first_;
  std::optional<flows::DatabaseTransaction> second_;  // ends before the first one does
};

}  // namespace tavelor::tools
