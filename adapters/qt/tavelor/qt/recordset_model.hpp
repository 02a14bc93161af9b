// SPDX-License-Identifier: MIT
// The rows of a record set for Qt's views.
#pragma once

#include <QtCore/QAbstractTableModel>
#include <QtCore/QList>
#include <QtCore/QString>
#include <cstdint>
#include <functional>
#include <memory>

#include "tavelor/qt/export.hpp"
#include "tavelor/qt/failure.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {
class Recordset;
using RecordsetPtr = std::shared_ptr<Recordset>;
}  // namespace tavelor

namespace tavelor::qt {

/// What is pending of a row.
enum class RowState : std::uint8_t { kUnchanged, kAdded, kModified, kDeleted };

/// The kind of a column's values.
enum class ColumnKind : std::uint8_t {
  kText,
  kMemo,
  kFlag,
  kWhole,
  kNumber,
  kMoney,
  kDate,
  kBytes
};

/// A table of what a record set shows, row by row in its order. Values are read from the set when a
/// view asks for them; nothing is copied but the numbers of the rows. It takes part in the set: its
/// edits move the set's cursor, and what anybody else does to the set, or through a clone to the
/// rows that they share, shows in the views.
///
/// Changes are pending in the set until submitAll() writes them. Where the set writes at once
/// (LockType::kOptimistic), an edited row is written by submit(), as views call it when a row is
/// left, or when another row is edited. A new row is in edit until then in both.
///
/// No member raises: what goes wrong is told by failed() and lastFailure(), and the member gives
/// false. Nothing of a refused change stays, unless the member says so. Used by one thread. It
/// holds the set, so rows can be read when their connection is closed.
class TAVELOR_QT_API RecordsetModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// Roles of its own.
  enum Role {
    kStateRole = Qt::UserRole + 1,  ///< RowState as an int
    kConflictRole,   ///< bool: the last submit found that somebody else has changed the row
    kFailureRole,    ///< bool: the last submit could not write the row, whatever the reason
    kOriginalRole,   ///< the value as it was read
    kTheirsRole,     ///< the value that the database had when it was last looked at
    kEditTextRole,   ///< the value as an editor of text shows it; "" for Null
    kMaxLengthRole,  ///< characters that the column takes; -1 for what is no text
    kBookmarkRole    ///< of the row, for Recordset::Bookmark: a double
  };
  Q_ENUM(Role)

  /// Without rows.
  explicit RecordsetModel(QObject* parent = nullptr);
  /// Of a record set, which may be closed still.
  explicit RecordsetModel(RecordsetPtr rows, QObject* parent = nullptr);
  ~RecordsetModel() override;

  /// Shows another set, or none.
  void setRecordset(RecordsetPtr rows);
  /// The set that it shows, or null.
  const RecordsetPtr& recordset() const;

  // ---- Columns. What is said of one is kept by its name when rows are fetched anew.

  /// Position of a column, from 0, by its name without regard to case; -1 for none.
  int columnOf(const QString& name) const;
  /// Name of a column in the set; "" for none.
  QString columnName(int column) const;
  /// Of a column that there is.
  ColumnKind columnKind(int column) const;
  /// The mask of the library's format() by which views show a column, such as "#,##0.00"; "" for
  /// the usual: money with two to four decimals, all else plain.
  void setColumnFormat(const QString& name, const QString& mask);
  /// Where a column's values stand: numbers on the right and dates in the middle without it.
  void setColumnAlignment(const QString& name, Qt::Alignment alignment);
  /// Takes a column from editing, or gives it back where the set lets it be written.
  void setColumnReadOnly(const QString& name, bool readOnly = true);

  // ---- What views ask

  /// Rows that the set shows.
  int rowCount(const QModelIndex& parent = {}) const override;
  /// Columns of the set.
  int columnCount(const QModelIndex& parent = {}) const override;
  /// Shown by the locale of the apartment in which the set was given; edited in the column's type,
  /// invalid for Null. A flag is a check box, half ticked for Null. A deleted row, which shows
  /// under a filter of states only, has its original values.
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  /// Writes a value of the column's type, or a text that is read by the locale; the empty text is
  /// Null where the column is no text. A value that is there already changes nothing. Refused: a
  /// text that is longer than the column, a number out of its range, what does not read.
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  /// Not editable: computed columns, columns of bytes, deleted rows, what was made read-only.
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  /// Columns by their title. Rows by number, or by what is pending: + added, * modified, - deleted,
  /// ! could not be written.
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  /// Gives a column another title than its name.
  bool setHeaderData(int section, Qt::Orientation orientation, const QVariant& value,
                     int role = Qt::EditRole) override;
  /// By the set's Sort; -1 is the order of the statement. The current row stays current.
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
  /// Adds rows at the end, the only place there is; false for another one. The last one stays in
  /// edit and current. A set that writes at once takes one at a time.
  bool insertRows(int row, int count, const QModelIndex& parent = {}) override;
  /// Deletes rows, which is pending until submitAll() and takes them out of the model. After a
  /// failure the rows before the refused one are deleted. The row behind them is current.
  bool removeRows(int row, int count, const QModelIndex& parent = {}) override;

  // ---- Changes

  /// Whether a row is in edit or pending.
  bool hasPendingChanges() const;
  /// Writes all that is pending, also of rows that a filter hides. After a conflict the other rows
  /// are written, those that conflict stay pending, and conflictsFound() tells them; after any
  /// other failure all is pending still and no row is written.
  bool submitAll();
  /// Drops all that is pending.
  bool revertAll();
  /// Drops what is pending of a row; one that was added goes away.
  bool revertRow(int row);
  /// Shown rows that the last submit found changed by somebody else.
  QList<int> conflicts() const;
  /// Of a row in conflict: takes what the database has, and drops the change. A row that is not
  /// there any more is refused and stays; revertRow() drops its change.
  bool takeTheirs(int row);
  /// Of a row in conflict: writes the change over what the database has. What a third one has
  /// written since is a conflict again.
  bool keepMine(int row);
  /// Fetches the rows again; pending changes are lost, filter and order stay. After a failure the
  /// old rows are there.
  bool requery();

  // ---- View

  /// Shows the rows that fit a criterion; "" shows all. The old filter stays after a failure.
  bool setFilter(const QString& criteria);
  /// The criterion, or "".
  QString filter() const;
  /// Shows the rows of a state: pending ones, deleted among them, or those in conflict.
  bool setFilter(FilterGroup group);

  // ---- The set's own row

  /// On which the set stands; -1 for none that shows.
  int currentRow() const;
  /// Row of a bookmark; -1 for one that does not show.
  int rowOf(double bookmark) const;

  /// What went wrong last; not set before.
  const Failure& lastFailure() const;

 public Q_SLOTS:
  /// Moves the set. A row in edit is posted first, and may refuse to be left.
  bool setCurrentRow(int row);
  /// Posts the row in edit; where rows are written at once, writes it. It stays in edit after a
  /// failure.
  bool submit() override;
  /// Takes back what is in edit, not what is pending.
  void revert() override;

 Q_SIGNALS:
  /// Something went wrong.
  void failed(const tavelor::qt::Failure& failure);
  /// A submit left these rows pending, as somebody else has changed them.
  void conflictsFound(const QList<int>& rows);
  /// The set stands on another row.
  void currentRowChanged(int row);
  /// There are changes to be written, or none any more.
  void pendingChanged(bool pending);

 protected:
  /// How it adds a row, sorts and fetches anew; `rows` is open. They may raise.
  virtual void addRow(Recordset& rows);
  /// Deletes the current row.
  virtual void deleteRow(Recordset& rows);
  /// `column` is there, or -1.
  virtual void sortRows(Recordset& rows, int column, Qt::SortOrder order);
  /// With the filter and the order that there are.
  virtual void fetchAnew(Recordset& rows);

  /// Does work that may raise, brings the model into line with the set, then tells what went wrong.
  bool attempt(const std::function<void()>& work);

 private:
  class Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::qt

Q_DECLARE_METATYPE(tavelor::qt::RowState)
