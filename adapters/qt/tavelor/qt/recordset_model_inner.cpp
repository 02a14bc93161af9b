// SPDX-License-Identifier: MIT
// How a model follows its record set.
#include "tavelor/qt/recordset_model_inner.hpp"

#include <QtCore/QScopedValueRollback>
#include <algorithm>
#include <optional>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/qt/row_changes.hpp"

namespace tavelor::qt {

namespace {

// Money in the books has two decimals; prices have up to four.
constexpr const char* kMoneyMask = "#,##0.00##";

ColumnKind kindOf(DataType type) {
  switch (type) {
    case DataType::kBoolean:
      return ColumnKind::kFlag;
    case DataType::kByte:
    case DataType::kInt16:
    case DataType::kInt32:
    case DataType::kInt64:
      return ColumnKind::kWhole;
    case DataType::kSingle:
    case DataType::kDouble:
    case DataType::kDecimal:
    case DataType::kNumeric:
      return ColumnKind::kNumber;
    case DataType::kCurrency:
      return ColumnKind::kMoney;
    case DataType::kDate:
    case DataType::kDbDate:
    case DataType::kDbTime:
    case DataType::kTimestamp:
      return ColumnKind::kDate;
    case DataType::kBinary:
    case DataType::kVarBinary:
    case DataType::kLongVarBinary:
      return ColumnKind::kBytes;
    case DataType::kBstr:
    case DataType::kLongVarChar:
    case DataType::kLongVarWChar:
      return ColumnKind::kMemo;
    default:
      return ColumnKind::kText;
  }
}

}  // namespace

Qt::Alignment alignmentOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::kWhole:
    case ColumnKind::kNumber:
    case ColumnKind::kMoney:
      return Qt::AlignRight | Qt::AlignVCenter;
    case ColumnKind::kDate:
      return Qt::AlignCenter;
    default:
      return Qt::AlignLeft | Qt::AlignVCenter;
  }
}

RowState stateOf(std::int32_t status) {
  if ((status & (record_status::kDeleted | record_status::kDbDeleted)) != 0) {
    return RowState::kDeleted;
  }
  if ((status & record_status::kNew) != 0) return RowState::kAdded;
  return (status & record_status::kModified) != 0 ? RowState::kModified : RowState::kUnchanged;
}

// ---- Following the set

void RecordsetModel::Inner::MoveComplete(EventReason /*reason*/, const Error* /*error*/,
                                         EventStatus& /*status*/, Recordset& /*set*/) {
  settleUnlessBusy();
}

void RecordsetModel::Inner::FieldChangeComplete(std::span<const Field> /*fields*/,
                                                const Error* /*error*/, EventStatus& /*status*/,
                                                Recordset& /*set*/) {
  // A clone's row in edit shows nowhere else, so it is this set's row.
  note(currentNumber());
  settleUnlessBusy();
}

void RecordsetModel::Inner::RecordChangeComplete(EventReason /*reason*/, std::int32_t records,
                                                 const Error* /*error*/, EventStatus& /*status*/,
                                                 Recordset& /*set*/) {
  // Which rows a clone has changed nobody tells.
  if (busy_ && records == 1) {
    note(currentNumber());
  } else {
    noteAll();
  }
  settleUnlessBusy();
}

void RecordsetModel::Inner::RecordsetChangeComplete(EventReason reason, const Error* error,
                                                    EventStatus& /*status*/, Recordset& /*set*/) {
  if (error == nullptr && reason != EventReason::kResynch) isAnew_ = true;
  noteAll();
  settleUnlessBusy();
}

bool RecordsetModel::Inner::attempt(const std::function<void()>& work, bool needsRows) {
  std::optional<Failure> wrong;
  {
    const QScopedValueRollback<bool> busy(busy_, true);
    try {
      if (needsRows && !isOpen()) raise(errors::kObjectClosed, "RecordsetModel");
      work();
    } catch (...) {
      wrong = currentFailure();
    }
  }
  settleUnlessBusy();
  if (!wrong) return true;
  failure = *wrong;
  Q_EMIT model_.failed(failure);
  return false;
}

/// Brings the model into line with the set. Whoever is told of it may change the set again.
void RecordsetModel::Inner::settle() {
  {
    const QScopedValueRollback<bool> busy(busy_, true);
    while (isAnew_ || isOpen() != wasOpen_ || (wasOpen_ && rows()->shownRowsStamp() != stamp_)) {
      if (isAnew_ || isOpen() != wasOpen_) {
        beginAnew();
      } else {
        stamp_ = rows()->shownRowsStamp();
        show(rows()->shownRows());
      }
    }
  }
  tellChanges();
  tellState();
}

void RecordsetModel::Inner::beginAnew() {
  model_.beginResetModel();
  isAnew_ = false;
  allChanged_ = false;
  changed_.clear();
  wasOpen_ = isOpen();
  columns.clear();
  shown.clear();
  if (wasOpen_) {
    readColumns();
    stamp_ = rows()->shownRowsStamp();
    shown = rows()->shownRows();
  }
  model_.endResetModel();
}

void RecordsetModel::Inner::readColumns() {
  const bool canWrite = rows()->LockType() != LockType::kReadOnly;
  Fields fields = rows()->Fields();
  for (std::int32_t i = 0; i < fields.Count(); ++i) {
    const Field field = fields.Item(i);
    Column column;
    column.name = toQString(field.Name());
    column.key = column.name.toCaseFolded();
    column.kind = kindOf(static_cast<DataType>(field.Type()));
    if (column.kind == ColumnKind::kText && field.DefinedSize() > 0) {
      column.maxLength = field.DefinedSize();
    }
    column.writable = canWrite && column.kind != ColumnKind::kBytes &&
                      (field.Attributes() & field_attribute::kUpdatable) != 0;
    columns.push_back(std::move(column));
  }
}

/// Tells views the shortest way from the rows that they know to these.
void RecordsetModel::Inner::show(const std::vector<std::uint32_t>& fresh) {
  const RowChange change = changeBetween(shown, fresh);
  switch (change.kind) {
    case RowChange::Kind::kNone:
      return;
    case RowChange::Kind::kInserted:
      model_.beginInsertRows({}, change.first, change.last);
      shown = fresh;
      return model_.endInsertRows();
    case RowChange::Kind::kRemoved:
      model_.beginRemoveRows({}, change.first, change.last);
      shown = fresh;
      return model_.endRemoveRows();
    case RowChange::Kind::kMoved:
      model_.beginMoveRows({}, change.first, change.first, {}, change.last);
      shown = fresh;
      return model_.endMoveRows();
    case RowChange::Kind::kReordered: {
      Q_EMIT model_.layoutAboutToBeChanged({}, VerticalSortHint);
      const QModelIndexList before = model_.persistentIndexList();
      const std::vector<std::uint32_t> old = std::exchange(shown, fresh);
      QModelIndexList after;
      if (!before.isEmpty()) {
        const std::vector<std::int32_t> places = placesOf(shown);
        for (const QModelIndex& index : before) {
          const std::uint32_t number = old[static_cast<std::size_t>(index.row())];
          after.append(model_.index(places[number], index.column()));
        }
      }
      model_.changePersistentIndexList(before, after);
      Q_EMIT model_.layoutChanged({}, VerticalSortHint);
      return;
    }
    case RowChange::Kind::kOthers:
      model_.beginResetModel();
      shown = fresh;
      return model_.endResetModel();
  }
}

void RecordsetModel::Inner::tellChanges() {
  const std::vector<std::uint32_t> rows = std::exchange(changed_, {});
  const bool all = std::exchange(allChanged_, false);
  const int last = static_cast<int>(columns.size()) - 1;
  if (last < 0 || shown.empty()) return;
  const auto tell = [&](int first, int end) {
    Q_EMIT model_.dataChanged(model_.index(first, 0), model_.index(end, last));
    Q_EMIT model_.headerDataChanged(Qt::Vertical, first, end);
  };
  if (all) return tell(0, static_cast<int>(shown.size()) - 1);
  std::uint32_t before = 0;
  for (const std::uint32_t number : rows) {
    if (number == before) continue;
    before = number;
    const int row = positionOf(number);
    if (row >= 0) tell(row, row);
  }
}

void RecordsetModel::Inner::tellState() {
  const int row = positionOf(currentNumber());
  const bool isPending = isOpen() && rows()->hasUnwrittenChanges();
  if (std::exchange(toldPending_, isPending) != isPending) Q_EMIT model_.pendingChanged(isPending);
  if (std::exchange(toldRow_, row) != row) Q_EMIT model_.currentRowChanged(row);
}

// ---- Values

int RecordsetModel::Inner::positionOf(std::uint32_t number) const {
  if (number == 0) return -1;
  // As long as nothing is sorted, filtered or deleted, rows stand where their numbers say.
  if (number <= shown.size() && shown[number - 1] == number) return static_cast<int>(number) - 1;
  const auto found = std::find(shown.begin(), shown.end(), number);
  return found == shown.end() ? -1 : static_cast<int>(found - shown.begin());
}

Variant RecordsetModel::Inner::valueAt(int position, int column) const {
  const Row row = rowAt(position);
  if (stateOf(row.status()) == RowState::kDeleted) return row.originalValue(column);
  return row.value(column);
}

QString RecordsetModel::Inner::textOf(const Variant& value, const Column& column) const {
  if (isNothing(value)) return {};
  if (column.kind == ColumnKind::kBytes) {
    return RecordsetModel::tr("%n byte(s)", nullptr,
                              static_cast<int>(value.getIf<Bytes>()->size()));
  }
  const Wish wish = wishOf(column);
  if (!wish.mask.empty()) return toQString(format(value, wish.mask, *locale));
  if (column.kind == ColumnKind::kMoney) return toQString(format(value, kMoneyMask, *locale));
  return toQString(value.toText(*locale));
}

void RecordsetModel::Inner::put(std::uint32_t number, int column, const Variant& value) {
  goTo(number);
  Recordset& set = *rows();
  const bool wasInEdit = set.EditMode() == EditMode::kInProgress;
  note(number);
  set.Field(column).Value(value);
  if (!writesInBatches() || set.EditMode() != EditMode::kInProgress) return;
  try {
    set.Update();
  } catch (...) {
    // Nothing else was in edit: the cell is as before.
    if (!wasInEdit) set.CancelUpdate();
    throw;
  }
}

}  // namespace tavelor::qt
