// SPDX-License-Identifier: MIT
// The rows of a record set for Qt's views.
#include "tavelor/qt/recordset_model.hpp"

#include <QtCore/QHash>
#include <QtCore/QScopedValueRollback>
#include <QtGui/QBrush>
#include <QtGui/QColor>
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/qt/row_changes.hpp"
#include "tavelor/qt/set_watcher.hpp"
#include "tavelor/qt/values.hpp"

namespace tavelor::qt {

namespace {

// Money in the books has two decimals; prices have up to four.
constexpr const char* kMoneyMask = "#,##0.00##";
const QColor kConflictColour(255, 226, 214);

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

bool isText(ColumnKind kind) {
  return kind == ColumnKind::kText || kind == ColumnKind::kMemo;
}

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

bool isNothing(const Variant& value) {
  return value.isNull() || value.isEmpty();
}

RowState stateOf(std::int32_t status) {
  if ((status & (record_status::kDeleted | record_status::kDbDeleted)) != 0) {
    return RowState::kDeleted;
  }
  if ((status & record_status::kNew) != 0) return RowState::kAdded;
  return (status & record_status::kModified) != 0 ? RowState::kModified : RowState::kUnchanged;
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

// ---- The model

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
