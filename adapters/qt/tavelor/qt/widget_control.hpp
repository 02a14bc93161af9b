// SPDX-License-Identifier: MIT
// Qt's widgets as the frame sees controls.
#pragma once

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtWidgets/QWidget>
#include <cstdint>
#include <string>

#include "tavelor/frame/controls.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/qt/export.hpp"

namespace tavelor::qt {

/// A widget bound to a field: a line or page of text, a box with a number or a date, a check box, a
/// combo box, a list, a label. A combo box whose entries have data is a bound combo, the data being
/// the code. A number box that is emptied, and a date box at its least date, are Null; so is a
/// check box that is half ticked. Once its widget is gone it is an empty text box.
class TAVELOR_QT_API WidgetControl : public Control {
 public:
  /// Of a widget, which it does not own.
  WidgetControl(QWidget* widget, const QString& field);

  /// Whether there is anything that a widget of its kind could show of a field.
  static bool isKnown(const QWidget* widget);

  ControlKind kind() const override;
  std::string DataField() const override { return field_; }
  /// What it shows, numbers and dates by the apartment's locale; of a check box its Value().
  std::string defaultText() const override;
  /// 1 ticked, 0 not, 2 half.
  std::int32_t Value() const override;
  std::string Text() const override;
  std::int32_t ListCount() const override;
  void ListIndex(std::int32_t entry) override;
  std::string BoundText() const override;

  /// What it holds for a field: a text as it stands, which the field reads; Null where it is empty.
  Variant fieldValue() const;
  /// Shows a field's value. Boxes widen their range where it lies outside.
  void show(const Variant& value);
  /// The widget, or null once it is gone.
  QWidget* widget() const { return widget_; }

 private:
  QPointer<QWidget> widget_;
  std::string field_;
};

}  // namespace tavelor::qt
