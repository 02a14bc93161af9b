// SPDX-License-Identifier: MIT
// How a model follows its record set.
#pragma once

#include <QtCore/QHash>
#include <QtCore/QMetaObject>
#include <QtCore/QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/platform/locale.hpp"
#include "tavelor/qt/recordset_model.hpp"
#include "tavelor/qt/set_watcher.hpp"
#include "tavelor/qt/values.hpp"

namespace tavelor::qt {

/// What is said of a column by its name.
struct Wish {
  QString title;
  std::string mask;
  Qt::Alignment alignment;  ///< of its kind where none is said
  bool readOnly = false;
};

struct Column {
  QString name;
  QString key;  ///< of its wish
  ColumnKind kind = ColumnKind::kText;
  int maxLength = -1;
  bool writable = false;
};

/// What a field holds that nobody has written, or Null.
inline bool isNothing(const Variant& value) {
  return value.isNull() || value.isEmpty();
}

/// By the bits of record_status.
RowState stateOf(std::int32_t status);
/// On which side values of a kind stand.
Qt::Alignment alignmentOf(ColumnKind kind);

/// The set as it was last shown, and what has happened to it since.
class RecordsetModel::Inner final : public SetWatcher {
 public:
  explicit Inner(RecordsetModel& model) : model_(model) {}

  // ---- What is shown

  std::vector<Column> columns;
  std::vector<std::uint32_t> shown;  ///< numbers of rows, by position
  QHash<QString, Wish> wishes;
  std::shared_ptr<const Locale> locale = currentLocale();
  Failure failure;

  Row rowAt(int position) const {
    return rows()->rowOf(static_cast<double>(shown[static_cast<std::size_t>(position)]));
  }
  const Column& columnAt(int position) const { return columns[static_cast<std::size_t>(position)]; }
  bool isShown(int position) const {
    return position >= 0 && position < static_cast<int>(shown.size());
  }
  /// Whether an index is of this model and in it still.
  bool has(const QModelIndex& index) const {
    return index.isValid() && index.model() == &model_ && isShown(index.row()) &&
           index.column() < static_cast<int>(columns.size());
  }
  int positionOf(std::uint32_t number) const;
  std::int32_t statusAt(int position) const { return rowAt(position).status(); }
  Wish wishOf(const Column& column) const { return wishes.value(column.key); }
  int alignmentOfColumn(const Column& column) const {
    const Qt::Alignment wished = wishOf(column).alignment;
    return static_cast<int>(wished == Qt::Alignment() ? alignmentOf(column.kind) : wished);
  }
  bool isWritable(const Column& column) const {
    return column.writable && !wishOf(column).readOnly;
  }
  Variant valueAt(int position, int column) const;
  QString textOf(const Variant& value, const Column& column) const;

  // ---- What is done

  void goTo(std::uint32_t number) {
    if (currentNumber() != number) rows()->Bookmark(static_cast<double>(number));
  }
  bool writesInBatches() const { return rows()->LockType() == LockType::kBatchOptimistic; }
  void put(std::uint32_t number, int column, const Variant& value);
  /// Shows the set's rows as those of another one.
  void showAnew() {
    isAnew_ = true;
    settle();
  }
  bool attempt(const std::function<void()>& work, bool needsRows = true);
  /// When whoever asks now has been answered.
  void settleLater() {
    if (busy_ || std::exchange(isQueued_, true)) return;
    QMetaObject::invokeMethod(
        &model_, [this] { settleFromQueue(); }, Qt::QueuedConnection);
  }
  void note(std::uint32_t number) { changed_.push_back(number); }
  void noteAll() { allChanged_ = true; }
  std::vector<std::uint32_t> numbersOf(int row, int count) const {
    const auto first = shown.begin() + row;
    return {first, first + count};
  }

 private:
  void MoveComplete(EventReason reason, const Error* error, EventStatus& status,
                    Recordset& set) override;
  void FieldChangeComplete(std::span<const Field> fields, const Error* error, EventStatus& status,
                           Recordset& set) override;
  void RecordChangeComplete(EventReason reason, std::int32_t records, const Error* error,
                            EventStatus& status, Recordset& set) override;
  void RecordsetChangeComplete(EventReason reason, const Error* error, EventStatus& status,
                               Recordset& set) override;

  void settleUnlessBusy() {
    if (!busy_) settle();
  }
  void settleFromQueue() {
    isQueued_ = false;
    settleUnlessBusy();
  }
  void settle();
  void beginAnew();
  void readColumns();
  void show(const std::vector<std::uint32_t>& fresh);
  void tellChanges();
  void tellState();

  RecordsetModel& model_;
  bool isQueued_ = false;
  bool busy_ = false;  // the model's own work, or its settling
  bool wasOpen_ = false;
  bool isAnew_ = false;  // other rows have come
  bool allChanged_ = false;
  std::vector<std::uint32_t> changed_;
  std::uint64_t stamp_ = 0;
  int toldRow_ = -1;
  bool toldPending_ = false;
};

}  // namespace tavelor::qt
