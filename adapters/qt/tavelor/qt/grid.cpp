// SPDX-License-Identifier: MIT
// A table view on a model.
#include "tavelor/qt/grid.hpp"

#include <QtCore/QStringList>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTableView>
#include <algorithm>

#include "tavelor/qt/record_class_model.hpp"
#include "tavelor/qt/recordset_model.hpp"
#include "tavelor/qt/values.hpp"

namespace tavelor::qt {

namespace {

constexpr const char* kColumns = "Columns";
constexpr QChar kBetweenColumns = u';';
constexpr QChar kBehindName = u'=';
constexpr const char* kHidden = "hidden";

bool canBeNamed(const QString& name) {
  return !name.contains(kBetweenColumns) && !name.contains(kBehindName);
}

}  // namespace

RecordsetDelegate::RecordsetDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QWidget* RecordsetDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                         const QModelIndex& index) const {
  auto* line = new QLineEdit(parent);
  line->setFrame(false);
  line->setAlignment(static_cast<Qt::Alignment>(index.data(Qt::TextAlignmentRole).toInt()));
  const int length = index.data(RecordsetModel::kMaxLengthRole).toInt();
  if (length > 0) line->setMaxLength(length);
  return line;
}

void RecordsetDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* line = qobject_cast<QLineEdit*>(editor);
  // What has been typed stays when the row is told to have changed.
  if (line == nullptr || line->isModified()) return;
  line->setText(index.data(RecordsetModel::kEditTextRole).toString());
}

void RecordsetDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                     const QModelIndex& index) const {
  const auto* line = qobject_cast<QLineEdit*>(editor);
  if (line == nullptr || !line->isModified()) return;
  model->setData(index, line->text(), Qt::EditRole);
}

void bindGrid(QTableView& view, RecordsetModel& model) {
  // A view that sorts by itself begins with it, and would undo the order that the set has.
  view.setSortingEnabled(false);
  view.setModel(&model);
  view.setItemDelegate(new RecordsetDelegate(&view));
  QHeaderView& header = *view.horizontalHeader();
  header.setSectionsClickable(true);
  header.setSortIndicatorShown(true);
  header.setSortIndicator(-1, Qt::AscendingOrder);
  QObject::connect(&header, &QHeaderView::sortIndicatorChanged, &view,
                   [&view, &model](int column, Qt::SortOrder order) {
                     if (view.model() == &model) model.sort(column, order);
                   });
  const auto toSet = [&view, &model](const QModelIndex& current) {
    if (!current.isValid() || current.row() == model.currentRow()) return;
    if (model.setCurrentRow(current.row())) return;
    // The row may not be left.
    view.selectionModel()->setCurrentIndex(model.index(model.currentRow(), current.column()),
                                           QItemSelectionModel::ClearAndSelect);
  };
  const auto toView = [&view, &model](int row) {
    if (row < 0 || view.model() != &model || view.currentIndex().row() == row) return;
    const int column = std::max(view.currentIndex().column(), 0);
    view.setCurrentIndex(model.index(row, column));
  };
  QObject::connect(view.selectionModel(), &QItemSelectionModel::currentChanged, &view, toSet);
  QObject::connect(&model, &RecordsetModel::currentRowChanged, &view, toView);
  toView(model.currentRow());
}

void bindGrid(QTableView& view, RecordClassModel& model) {
  bindGrid(view, static_cast<RecordsetModel&>(model));
  // Opening has sorted the rows already, where there are any.
  const QSignalBlocker quiet(view.horizontalHeader());
  view.horizontalHeader()->setSortIndicator(model.rememberedColumn(), model.rememberedOrder());
  restoreColumns(view, model);
}

bool rememberColumns(const QTableView& view, RecordClassModel& model) {
  const QHeaderView& header = *view.horizontalHeader();
  QStringList columns;
  for (int place = 0; place < header.count(); ++place) {
    const int column = header.logicalIndex(place);
    const QString name = model.columnName(column);
    if (!canBeNamed(name)) continue;
    const bool isHidden = header.isSectionHidden(column);
    columns.append(
        name + kBehindName +
        (isHidden ? QString::fromLatin1(kHidden) : QString::number(header.sectionSize(column))));
  }
  return model.remember(kColumns, columns.join(kBetweenColumns));
}

bool restoreColumns(QTableView& view, RecordClassModel& model) {
  const QString kept = model.remembered(kColumns);
  if (kept.isEmpty()) return false;
  QHeaderView& header = *view.horizontalHeader();
  int place = 0;
  for (const QString& each : kept.split(kBetweenColumns)) {
    const int column = model.columnOf(each.section(kBehindName, 0, 0));
    if (column < 0) continue;
    const QString width = each.section(kBehindName, 1);
    header.moveSection(header.visualIndex(column), place++);
    header.setSectionHidden(column, width == QLatin1String(kHidden));
    if (width.toInt() > 0) header.resizeSection(column, width.toInt());
  }
  return true;
}

std::int32_t ViewColumns::Count() const {
  return view_.model()->columnCount();
}

GridColumn ViewColumns::Item(std::int32_t index) const {
  constexpr std::int32_t kRight = 1;
  constexpr std::int32_t kCentred = 2;
  constexpr std::int32_t kLeft = 3;
  const QAbstractItemModel& model = *view_.model();
  const auto alignment = static_cast<Qt::Alignment>(
      model.headerData(index, Qt::Horizontal, Qt::TextAlignmentRole).toInt());
  GridColumn column;
  column.visible = !view_.isColumnHidden(index);
  column.caption = toText(model.headerData(index, Qt::Horizontal).toString());
  column.alignment = alignment.testFlag(Qt::AlignRight) ? kRight : kCentred;
  if (alignment.testFlag(Qt::AlignLeft)) column.alignment = kLeft;
  return column;
}

}  // namespace tavelor::qt
