// SPDX-License-Identifier: MIT
// A table view on a model: its editor, its columns remembered, and its columns as the frame sees
// them.
#pragma once

#include <QtWidgets/QStyledItemDelegate>
#include <cstdint>

#include "tavelor/frame/controls.hpp"
#include "tavelor/qt/export.hpp"

class QTableView;

namespace tavelor::qt {

class RecordClassModel;
class RecordsetModel;

/// Edits each cell as a line of text, which is read and shown by the apartment's locale with all of
/// its decimals, and takes no more characters than the column; emptied it is Null. Qt's own editors
/// know no Null, round numbers to two decimals and write dates by the machine's locale.
class TAVELOR_QT_API RecordsetDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  /// Owned by `parent`, a view most often.
  explicit RecordsetDelegate(QObject* parent = nullptr);

  /// A line of text.
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  /// The whole value, whatever the mask of its column.
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  /// What the model refuses it tells by failed(); the cell keeps its value.
  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override;
};

/// Shows a model in a view: with its own editor, sorting by a click on a title, the set's row and
/// the view's current one being the same. What the view shows before is not deleted. The model must
/// outlive the view, or be its child.
TAVELOR_QT_API void bindGrid(QTableView& view, RecordsetModel& model);
/// The same, with the remembered order at the titles and the remembered columns.
TAVELOR_QT_API void bindGrid(QTableView& view, RecordClassModel& model);

/// Remembers widths, order and hidden columns of a view, under the word of the model's class and
/// its key, beside filter and order. They outlive the program. False where that failed, which the
/// registry's own error tells by `RecordsetModel::failed`.
TAVELOR_QT_API bool rememberColumns(const QTableView& view, RecordClassModel& model);
/// Gives a view the columns that were remembered; those that were not stay. False where none were.
TAVELOR_QT_API bool restoreColumns(QTableView& view, RecordClassModel& model);

/// The columns of a view as the frame sees them, for RecordClass::ToHtmlGrid. The view must outlive
/// it, and has a model.
class TAVELOR_QT_API ViewColumns final : public GridColumns {
 public:
  /// Of a view.
  explicit ViewColumns(const QTableView& view) : view_(view) {}
  std::int32_t Count() const override;
  GridColumn Item(std::int32_t index) const override;

 private:
  const QTableView& view_;
};

}  // namespace tavelor::qt
