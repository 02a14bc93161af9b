// SPDX-License-Identifier: MIT
// Rows and pending changes that a record set shares with its clones.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/dialect/plan.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor {

class RecordsetListeners;

/// A value written to a column, already of the column's type; Null, or Empty for "not written".
struct WrittenCell {
  std::uint32_t column;
  Variant value;
};

/// The cell of `column`, or null. Rows have few written cells, so they are searched in line.
const WrittenCell* findCell(const std::vector<WrittenCell>& cells, std::size_t column);
void putCell(std::vector<WrittenCell>& cells, std::size_t column, Variant value);

/// The columns of a set: those of a plan, or what was appended or loaded.
struct RecordsetSchema {
  std::shared_ptr<const dialect::Plan> plan;
  std::vector<std::int32_t>
      declared;  ///< DataType of each column where it is not the plan's; or empty

  const std::vector<dialect::OutputColumn>& columns() const { return plan->columns; }
  /// Columns that are not hidden; they come first.
  std::size_t width() const;
  /// Position of a visible column without regard to case, or -1; the first one of equal names.
  int find(std::string_view name) const;
  /// The same, or 3265 naming the nearest.
  std::size_t require(std::string_view name, std::string_view source) const;
  std::int32_t typeNumber(std::size_t column) const;
};

/// The base rows are what the database holds as far as known; changes lie over them until they are
/// written.
class RecordsetStore {
 public:
  using Row = std::uint32_t;
  enum class Operation : std::uint8_t { kUpdate, kInsert, kDelete };
  /// One row's pending change.
  struct Edit {
    Operation operation = Operation::kUpdate;
    std::int32_t failure = 0;  ///< bits of record_status from the last attempt to write it
    std::vector<WrittenCell> cells;
  };

  static constexpr std::uint8_t kEdited = 1;   ///< has an Edit
  static constexpr std::uint8_t kDeleted = 2;  ///< and that is a deletion
  static constexpr std::uint8_t kDead = 4;  ///< gone for good: deletion written, or addition undone
  static constexpr std::uint8_t kDraft = 8;  ///< being added by one of the sets, not posted yet

  RecordsetStore(RecordsetSchema schema, const std::shared_ptr<const Locale>& locale);

  const RecordsetSchema& schema() const { return schema_; }
  const std::vector<dialect::OutputColumn>& columns() const { return schema_.columns(); }
  std::size_t width() const { return width_; }
  const Locale& locale() const { return *locale_; }
  const std::shared_ptr<const Locale>& sharedLocale() const { return locale_; }

  engine::RowStore& rows() { return rows_; }
  const engine::RowStore& rows() const { return rows_; }
  Row append();

  /// False: no row differs from the base in any way.
  bool anyFlags() const { return !flags_.empty(); }
  std::uint8_t flags(Row row) const { return row < flags_.size() ? flags_[row] : std::uint8_t{0}; }
  /// Deleted, whether that is written or pending.
  bool isGone(Row row) const { return (flags(row) & (kDead | kDeleted)) != 0; }
  void setFlags(Row row, std::uint8_t flags);

  const std::unordered_map<Row, Edit>& edits() const { return edits_; }
  const Edit* edit(Row row) const;
  Edit* edit(Row row);
  /// The row's edit, made when there is none; sets kEdited.
  Edit& editOf(Row row);
  /// Forgets the edit; clears kEdited and kDeleted.
  void dropEdit(Row row);

  Variant baseValue(Row row, std::size_t column) const;
  /// With pending changes. Empty for a column of a new row that nobody has written.
  Variant value(Row row, std::size_t column) const;
  /// `value` is of the column's type or Null.
  void setBase(Row row, std::size_t column, const Variant& value);
  engine::Value baseForEngine(Row row, std::size_t column) const;

  /// What the database held when the row was last looked at: the base value, or what was read
  /// since.
  Variant underlyingValue(Row row, std::size_t column) const;
  /// What was read since, or null.
  const Variant* newerUnderlying(Row row, std::size_t column) const;
  /// Forgotten where it is the base value.
  void setUnderlying(Row row, std::size_t column, const Variant& value);
  void dropUnderlying(Row row, std::size_t column) {
    if (!underlying_.empty()) eraseUnderlying(row, column);
  }

  /// Grows with each change that other sets on this store must follow.
  std::uint64_t stamp() const { return stamp_; }
  void touch() { ++stamp_; }

  std::size_t memory() const;

  /// What a set on this store last wrote to a column of a table that is looked up, by a name of its
  /// row and column: other rows that show the same row of that table were read before.
  std::unordered_map<std::string, Variant> lookedUpWrites;

  Statement statement;                           ///< that the rows came from
  bool detached = false;                         ///< made without a database: nothing to write to
  RecordsetListeners* firstListeners = nullptr;  ///< of the sets on this store, linked

 private:
  void eraseUnderlying(Row row, std::size_t column);

  RecordsetSchema schema_;
  std::size_t width_;
  std::shared_ptr<const Locale> locale_;
  engine::RowStore rows_;
  std::vector<std::uint8_t> flags_;  // none as long as all are 0
  std::unordered_map<Row, Edit> edits_;
  std::unordered_map<Row, std::vector<WrittenCell>> underlying_;  // where it is not the base value
  std::uint64_t stamp_ = 0;
};

/// A cell as a value of its column's type, or Null.
Variant cellOf(const engine::RowStore& rows, std::size_t row, std::size_t column);

/// Reads the cells of one row with its pending changes the way engine::RowStore reads base cells.
class EditedRow {
 public:
  EditedRow(const RecordsetStore& store, const std::vector<WrittenCell>& cells, bool added)
      : store_(store), cells_(cells), added_(added) {}

  bool isNull(std::size_t row, std::size_t column) const;
  std::int64_t integer(std::size_t row, std::size_t column) const;
  double real(std::size_t row, std::size_t column) const;
  std::string_view text(std::size_t row, std::size_t column) const;

 private:
  const RecordsetStore& store_;
  const std::vector<WrittenCell>& cells_;
  bool added_;
};

/// For files in which Row is a row of a record set.
using RowNumber = RecordsetStore::Row;

/// Calls `work` with a reader of the row's cells: the base rows, or an EditedRow.
template <typename Work>
decltype(auto) withCells(const RecordsetStore& store, RecordsetStore::Row row, Work&& work) {
  if ((store.flags(row) & RecordsetStore::kEdited) != 0) {
    const RecordsetStore::Edit* edit = store.edit(row);
    return work(
        EditedRow(store, edit->cells, edit->operation == RecordsetStore::Operation::kInsert));
  }
  return work(store.rows());
}

/// `value` as a value of the column's type: Null and Empty stay. Errors: 3421 and -2147217887, as
/// Field::Value tells.
Variant coerce(const Variant& value, const dialect::OutputColumn& column, const Locale& locale);
/// A coerced value on its way into an engine; views `value`.
engine::Value forEngine(const Variant& value);
/// The double that prints as the single does, so that 0.1 is stored as 0.1.
double widen(float single);

}  // namespace tavelor
