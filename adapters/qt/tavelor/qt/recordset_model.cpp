// SPDX-License-Identifier: MIT
// The rows of a record set for Qt's views.
#include "tavelor/qt/recordset_model.hpp"

#include <QtGui/QBrush>
#include <QtGui/QColor>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/qt/recordset_model_inner.hpp"

namespace tavelor::qt {

namespace {

const QColor kConflictColour(255, 226, 214);

bool isText(ColumnKind kind) {
  return kind == ColumnKind::kText || kind == ColumnKind::kMemo;
}

/// Bits that say why a row was not written.
constexpr std::int32_t kFailures = record_status::kInvalid | record_status::kCanceled |
                                   record_status::kConcurrencyViolation |
                                   record_status::kIntegrityViolation;

QString markOf(std::int32_t status, int row) {
  if ((status & kFailures) != 0) return QStringLiteral("!");
  switch (stateOf(status)) {
    case RowState::kAdded:
      return QStringLiteral("+");
    case RowState::kModified:
      return QStringLiteral("*");
    case RowState::kDeleted:
      return QStringLiteral("-");
    case RowState::kUnchanged:
      break;
  }
  return QString::number(row + 1);
}

}  // namespace

RecordsetModel::RecordsetModel(QObject* parent)
    : QAbstractTableModel(parent), inner_(std::make_unique<Inner>(*this)) {}

RecordsetModel::RecordsetModel(RecordsetPtr rows, QObject* parent) : RecordsetModel(parent) {
  setRecordset(std::move(rows));
}

RecordsetModel::~RecordsetModel() = default;

void RecordsetModel::setRecordset(RecordsetPtr rows) {
  inner_->watch(std::move(rows));
  inner_->locale = currentLocale();
  inner_->showAnew();
}

const RecordsetPtr& RecordsetModel::recordset() const {
  return inner_->rows();
}

int RecordsetModel::columnOf(const QString& name) const {
  const QString key = name.toCaseFolded();
  const auto& columns = inner_->columns;
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const Column& column) { return column.key == key; });
  return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

QString RecordsetModel::columnName(int column) const {
  if (column < 0 || column >= columnCount()) return {};
  return inner_->columnAt(column).name;
}

ColumnKind RecordsetModel::columnKind(int column) const {
  return inner_->columnAt(column).kind;
}

void RecordsetModel::setColumnFormat(const QString& name, const QString& mask) {
  inner_->wishes[name.toCaseFolded()].mask = toText(mask);
  const int column = columnOf(name);
  if (column >= 0 && rowCount() > 0) {
    Q_EMIT dataChanged(index(0, column), index(rowCount() - 1, column), {Qt::DisplayRole});
  }
}

void RecordsetModel::setColumnAlignment(const QString& name, Qt::Alignment alignment) {
  inner_->wishes[name.toCaseFolded()].alignment = alignment;
}

void RecordsetModel::setColumnReadOnly(const QString& name, bool readOnly) {
  inner_->wishes[name.toCaseFolded()].readOnly = readOnly;
}

int RecordsetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(inner_->shown.size());
}

int RecordsetModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(inner_->columns.size());
}

QVariant RecordsetModel::data(const QModelIndex& index, int role) const {
  if (!inner_->has(index)) return {};
  const int row = index.row();
  const Column& column = inner_->columnAt(index.column());
  const bool isFlag = column.kind == ColumnKind::kFlag;
  try {
    switch (role) {
      case Qt::TextAlignmentRole:
        return inner_->alignmentOfColumn(column);
      case Qt::DisplayRole:
        if (isFlag) return {};
        return inner_->textOf(inner_->valueAt(row, index.column()), column);
      case Qt::EditRole:
        return toQVariant(inner_->valueAt(row, index.column()));
      case Qt::CheckStateRole: {
        if (!isFlag) return {};
        const Variant value = inner_->valueAt(row, index.column());
        if (isNothing(value)) return Qt::PartiallyChecked;
        return *value.getIf<bool>() ? Qt::Checked : Qt::Unchecked;
      }
      case Qt::BackgroundRole:
        if ((inner_->statusAt(row) & record_status::kConcurrencyViolation) == 0) return {};
        return QBrush(kConflictColour);
      case Qt::ToolTipRole: {
        const Row of = inner_->rowAt(row);
        if ((of.status() & record_status::kConcurrencyViolation) == 0) return {};
        return tr("Now stored: %1").arg(inner_->textOf(of.underlyingValue(index.column()), column));
      }
      case kStateRole:
        return static_cast<int>(stateOf(inner_->statusAt(row)));
      case kConflictRole:
        return (inner_->statusAt(row) & record_status::kConcurrencyViolation) != 0;
      case kFailureRole:
        return (inner_->statusAt(row) & kFailures) != 0;
      case kOriginalRole:
        return toQVariant(inner_->rowAt(row).originalValue(index.column()));
      case kTheirsRole:
        return toQVariant(inner_->rowAt(row).underlyingValue(index.column()));
      case kEditTextRole: {
        const Variant value = inner_->valueAt(row, index.column());
        if (isNothing(value) || column.kind == ColumnKind::kBytes) return QString();
        return toQString(value.toText(*inner_->locale));
      }
      case kMaxLengthRole:
        return column.maxLength;
      case kBookmarkRole:
        return static_cast<double>(inner_->shown[static_cast<std::size_t>(row)]);
      default:
        return {};
    }
  } catch (const std::exception&) {
    // The set is on its way to other rows, or its connection was closed, which tells nobody.
    inner_->settleLater();
    return {};
  }
}

bool RecordsetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole && role != Qt::CheckStateRole) return false;
  const Qt::ItemFlags can = flags(index);
  if (!can.testAnyFlags(Qt::ItemIsEditable | Qt::ItemIsUserCheckable)) return false;
  const Column column = inner_->columnAt(index.column());
  const std::uint32_t number = inner_->shown[static_cast<std::size_t>(index.row())];
  return inner_->attempt([&] {
    Variant wanted =
        role == Qt::CheckStateRole ? Variant(value.toInt() == Qt::Checked) : toVariant(value);
    const Variant there = inner_->valueAt(index.row(), index.column());
    const auto* text = wanted.getIf<std::string>();
    if (text != nullptr && text->empty() && (!isText(column.kind) || isNothing(there))) {
      wanted = Null{};
    }
    if (isNothing(wanted) ? isNothing(there) : wanted == there) return;
    inner_->put(number, index.column(), wanted);
  });
}

Qt::ItemFlags RecordsetModel::flags(const QModelIndex& index) const {
  if (!inner_->has(index)) return Qt::NoItemFlags;
  Qt::ItemFlags can = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  const Column& column = inner_->columnAt(index.column());
  if (!inner_->isWritable(column)) return can;
  if (index.data(kStateRole).toInt() == static_cast<int>(RowState::kDeleted)) return can;
  can |= column.kind == ColumnKind::kFlag ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable;
  return can;
}

QVariant RecordsetModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (section < 0) return {};
  if (orientation == Qt::Horizontal) {
    if (section >= columnCount()) return {};
    const Column& column = inner_->columnAt(section);
    if (role == Qt::TextAlignmentRole) return inner_->alignmentOfColumn(column);
    if (role != Qt::DisplayRole && role != Qt::EditRole) return {};
    const QString title = inner_->wishOf(column).title;
    return title.isEmpty() ? column.name : title;
  }
  if (role != Qt::DisplayRole || !inner_->isShown(section)) return {};
  try {
    return markOf(inner_->statusAt(section), section);
  } catch (const std::exception&) {
    return {};
  }
}

bool RecordsetModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant& value,
                                   int role) {
  const bool isTitle = role == Qt::EditRole || role == Qt::DisplayRole;
  if (orientation != Qt::Horizontal || !isTitle || section < 0 || section >= columnCount()) {
    return false;
  }
  inner_->wishes[inner_->columnAt(section).key].title = value.toString();
  Q_EMIT headerDataChanged(orientation, section, section);
  return true;
}

void RecordsetModel::sort(int column, Qt::SortOrder order) {
  if (column >= columnCount() || !inner_->isOpen()) return;
  inner_->attempt([&] {
    const std::uint32_t number = inner_->currentNumber();
    sortRows(*inner_->rows(), column, order);
    if (number != 0 && stateOf(inner_->rows()->rowOf(static_cast<double>(number)).status()) !=
                           RowState::kDeleted) {
      inner_->goTo(number);
    }
  });
}

bool RecordsetModel::insertRows(int row, int count, const QModelIndex& parent) {
  if (parent.isValid() || row != rowCount() || count < 1) return false;
  return inner_->attempt([&] {
    if (count > 1 && !inner_->writesInBatches()) {
      raise(errors::kNotSupported, "RecordsetModel", "Rows that are written at once come singly");
    }
    for (int i = 0; i < count; ++i) addRow(*inner_->rows());
  });
}

bool RecordsetModel::removeRows(int row, int count, const QModelIndex& parent) {
  if (parent.isValid() || count < 1 || row < 0 || row + count > rowCount()) return false;
  const std::vector<std::uint32_t> numbers = inner_->numbersOf(row, count);
  const bool removed = inner_->attempt([&] {
    for (const std::uint32_t number : numbers) {
      inner_->goTo(number);
      deleteRow(*inner_->rows());
    }
  });
  if (removed && rowCount() > 0) setCurrentRow(std::min(row, rowCount() - 1));
  return removed;
}

// ---- Changes

bool RecordsetModel::hasPendingChanges() const {
  return inner_->isOpen() && inner_->rows()->hasUnwrittenChanges();
}

bool RecordsetModel::submitAll() {
  const bool written = inner_->attempt([&] {
    inner_->noteAll();
    inner_->rows()->UpdateBatch(Affect::kAllChapters);
  });
  if (!written && inner_->isOpen()) {
    const QList<int> found = conflicts();
    if (!found.isEmpty()) Q_EMIT conflictsFound(found);
  }
  return written;
}

bool RecordsetModel::revertAll() {
  return inner_->attempt([&] {
    inner_->noteAll();
    Recordset& rows = *inner_->rows();
    if (inner_->writesInBatches()) return rows.CancelBatch(Affect::kAllChapters);
    rows.CancelUpdate();
  });
}

bool RecordsetModel::revertRow(int row) {
  if (!inner_->isShown(row)) return false;
  return inner_->attempt([&] {
    const std::uint32_t number = inner_->shown[static_cast<std::size_t>(row)];
    inner_->goTo(number);
    inner_->note(number);
    inner_->rows()->CancelUpdate();  // what is in edit
    if (inner_->currentNumber() == number) inner_->rows()->CancelUpdate();
  });
}

QList<int> RecordsetModel::conflicts() const {
  QList<int> found;
  for (int row = 0; row < rowCount(); ++row) {
    try {
      if ((inner_->statusAt(row) & record_status::kConcurrencyViolation) != 0) found.append(row);
    } catch (const std::exception&) {
      break;  // the set has been closed
    }
  }
  return found;
}

bool RecordsetModel::takeTheirs(int row) {
  if (!inner_->isShown(row)) return false;
  return inner_->attempt([&] {
    inner_->goTo(inner_->shown[static_cast<std::size_t>(row)]);
    inner_->noteAll();
    inner_->rows()->Resync(Affect::kCurrent, ResyncValues::kAll);
  });
}

bool RecordsetModel::keepMine(int row) {
  if (!inner_->isShown(row)) return false;
  return inner_->attempt([&] {
    inner_->goTo(inner_->shown[static_cast<std::size_t>(row)]);
    inner_->noteAll();
    inner_->rows()->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
    inner_->rows()->UpdateBatch(Affect::kCurrent);
  });
}

bool RecordsetModel::requery() {
  return inner_->attempt([&] { fetchAnew(*inner_->rows()); });
}

bool RecordsetModel::submit() {
  if (!inner_->isOpen()) return true;
  return inner_->attempt([&] {
    inner_->note(inner_->currentNumber());
    if (inner_->rows()->LockType() != LockType::kReadOnly) inner_->rows()->Update();
  });
}

void RecordsetModel::revert() {
  if (!inner_->isOpen() || inner_->currentNumber() == 0) return;
  inner_->attempt([&] {
    Recordset& rows = *inner_->rows();
    inner_->note(inner_->currentNumber());
    const EditMode mode = rows.EditMode();
    if (mode == EditMode::kInProgress || mode == EditMode::kAdd) rows.CancelUpdate();
  });
}

// ---- View

bool RecordsetModel::setFilter(const QString& criteria) {
  return inner_->attempt([&] { inner_->rows()->Filter(toText(criteria)); });
}

bool RecordsetModel::setFilter(FilterGroup group) {
  return inner_->attempt([&] { inner_->rows()->Filter(group); });
}

QString RecordsetModel::filter() const {
  return inner_->isOpen() ? toQString(inner_->rows()->Filter()) : QString();
}

// ---- The set's own row

int RecordsetModel::currentRow() const {
  return inner_->positionOf(inner_->currentNumber());
}

int RecordsetModel::rowOf(double bookmark) const {
  const auto number = static_cast<std::uint32_t>(bookmark);
  return bookmark >= 1 && number == bookmark ? inner_->positionOf(number) : -1;
}

bool RecordsetModel::setCurrentRow(int row) {
  if (!inner_->isShown(row)) return false;
  return inner_->attempt([&] { inner_->goTo(inner_->shown[static_cast<std::size_t>(row)]); });
}

const Failure& RecordsetModel::lastFailure() const {
  return inner_->failure;
}

bool RecordsetModel::attempt(const std::function<void()>& work) {
  return inner_->attempt(work, false);
}

void RecordsetModel::addRow(Recordset& rows) {
  rows.AddNew();
}

void RecordsetModel::deleteRow(Recordset& rows) {
  rows.Delete();
}

void RecordsetModel::sortRows(Recordset& rows, int column, Qt::SortOrder order) {
  if (column < 0) return rows.Sort("");
  std::string text = "[" + toText(columnName(column)) + "]";
  if (order == Qt::DescendingOrder) text += " DESC";
  rows.Sort(text);
}

void RecordsetModel::fetchAnew(Recordset& rows) {
  rows.Requery();
}

}  // namespace tavelor::qt