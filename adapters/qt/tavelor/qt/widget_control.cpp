// SPDX-License-Identifier: MIT
// Qt's widgets as the frame sees controls.
#include "tavelor/qt/widget_control.hpp"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateTimeEdit>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTextEdit>
#include <algorithm>
#include <cmath>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/qt/values.hpp"

namespace tavelor::qt {

namespace {

constexpr int kMostDecimals = 15;

template <typename Widget>
Widget* as(QWidget* widget) {
  return qobject_cast<Widget*>(widget);
}

bool isNothing(const Variant& value) {
  return value.isNull() || value.isEmpty();
}

/// As it is typed: money with its cents, nothing grouped.
QString textOf(const Variant& value, const Locale& locale) {
  if (isNothing(value)) return {};
  if (value.type() == VariantType::kCurrency) return toQString(format(value, "0.00##", locale));
  return toQString(value.toText(locale));
}

bool isEmptied(const QAbstractSpinBox& box) {
  return box.text().isEmpty();
}

bool isDateless(const QDateTimeEdit& box) {
  return box.dateTime() == box.minimumDateTime();
}

Variant numberOf(QWidget* widget) {
  if (const auto* whole = as<QSpinBox>(widget)) {
    return isEmptied(*whole) ? Variant(Null{}) : Variant(whole->value());
  }
  const auto* real = as<QDoubleSpinBox>(widget);
  return isEmptied(*real) ? Variant(Null{}) : Variant(real->value());
}

Variant momentOf(const QDateTimeEdit& box) {
  if (isDateless(box)) return Null{};
  const bool hasTime = box.displayedSections().testAnyFlags(QDateTimeEdit::TimeSections_Mask);
  const Date moment = toDate(box.dateTime());
  return hasTime ? moment : moment.dayOnly();
}

/// The code behind the text of a combo box; no text without one.
QVariant codeOf(const QComboBox& box) {
  const int entry = box.findText(box.currentText(), Qt::MatchExactly);
  return box.itemData(box.currentIndex() >= 0 ? box.currentIndex() : entry);
}

bool hasCodes(const QComboBox& box) {
  for (int entry = 0; entry < box.count(); ++entry) {
    if (box.itemData(entry).isValid()) return true;
  }
  return false;
}

void showInCombo(QComboBox& box, const Variant& value, const QString& text) {
  int entry = -1;
  if (!isNothing(value)) {
    entry = hasCodes(box) ? box.findData(text) : box.findText(text, Qt::MatchExactly);
  }
  box.setCurrentIndex(entry);
  if (box.isEditable() && entry < 0) box.setEditText(text);
}

void showInWhole(QSpinBox& box, const Variant& value, const Locale& locale) {
  const int number =
      isNothing(value) ? std::clamp(0, box.minimum(), box.maximum()) : value.toInt32(locale);
  box.setRange(std::min(box.minimum(), number), std::max(box.maximum(), number));
  box.setValue(number);
  if (isNothing(value)) box.clear();
}

void showInReal(QDoubleSpinBox& box, const Variant& value, const Locale& locale) {
  const double number =
      isNothing(value) ? std::clamp(0.0, box.minimum(), box.maximum()) : value.toDouble(locale);
  box.setRange(std::min(box.minimum(), number), std::max(box.maximum(), number));
  // A value that is not shown whole would be written back cut.
  while (box.decimals() < kMostDecimals &&
         std::abs(number - QString::number(number, 'f', box.decimals()).toDouble()) > 1e-9) {
    box.setDecimals(box.decimals() + 1);
  }
  box.setValue(number);
  if (isNothing(value)) box.clear();
}

void showInDate(QDateTimeEdit& box, const Variant& value, const Locale& locale) {
  if (isNothing(value)) return box.setDateTime(box.minimumDateTime());
  const QDateTime moment = toQDateTime(value.toDate(locale));
  if (moment <= box.minimumDateTime()) box.setMinimumDateTime(moment.addDays(-1));
  if (moment > box.maximumDateTime()) box.setMaximumDateTime(moment);
  box.setDateTime(moment);
}

}  // namespace

WidgetControl::WidgetControl(QWidget* widget, const QString& field)
    : widget_(widget), field_(toText(field)) {}

bool WidgetControl::isKnown(const QWidget* widget) {
  auto* each = const_cast<QWidget*>(widget);
  return as<QLineEdit>(each) || as<QPlainTextEdit>(each) || as<QTextEdit>(each) ||
         as<QCheckBox>(each) || as<QComboBox>(each) || as<QSpinBox>(each) ||
         as<QDoubleSpinBox>(each) || as<QDateTimeEdit>(each) || as<QListWidget>(each) ||
         as<QLabel>(each);
}

ControlKind WidgetControl::kind() const {
  if (as<QCheckBox>(widget_)) return ControlKind::kCheckBox;
  if (as<QListWidget>(widget_)) return ControlKind::kListBox;
  if (const auto* box = as<QComboBox>(widget_)) {
    return hasCodes(*box) ? ControlKind::kBoundCombo : ControlKind::kComboBox;
  }
  return ControlKind::kTextBox;
}

std::string WidgetControl::defaultText() const {
  if (const auto* line = as<QLineEdit>(widget_)) return toText(line->text());
  if (const auto* page = as<QPlainTextEdit>(widget_)) return toText(page->toPlainText());
  if (const auto* page = as<QTextEdit>(widget_)) return toText(page->toPlainText());
  if (const auto* label = as<QLabel>(widget_)) return toText(label->text());
  if (const auto* box = as<QComboBox>(widget_)) return toText(box->currentText());
  if (as<QCheckBox>(widget_)) return std::to_string(Value());
  if (const auto* list = as<QListWidget>(widget_)) {
    return list->currentItem() ? toText(list->currentItem()->text()) : std::string();
  }
  if (!widget_) return {};
  const Variant value = fieldValue();
  return isNothing(value) ? std::string() : value.toText(*currentLocale());
}

std::string WidgetControl::Text() const {
  return defaultText();
}

std::int32_t WidgetControl::Value() const {
  const auto* box = as<QCheckBox>(widget_);
  if (box == nullptr) return Control::Value();
  if (box->checkState() == Qt::PartiallyChecked) return 2;
  return box->isChecked() ? 1 : 0;
}

std::int32_t WidgetControl::ListCount() const {
  const auto* list = as<QListWidget>(widget_);
  return list != nullptr ? list->count() : Control::ListCount();
}

void WidgetControl::ListIndex(std::int32_t entry) {
  auto* list = as<QListWidget>(widget_);
  if (list == nullptr) return Control::ListIndex(entry);
  list->setCurrentRow(entry);
}

std::string WidgetControl::BoundText() const {
  const auto* box = as<QComboBox>(widget_);
  return box != nullptr ? toText(codeOf(*box).toString()) : Control::BoundText();
}

Variant WidgetControl::fieldValue() const {
  if (const auto* box = as<QCheckBox>(widget_)) {
    if (box->checkState() == Qt::PartiallyChecked) return Null{};
    return box->isChecked();
  }
  if (as<QSpinBox>(widget_) || as<QDoubleSpinBox>(widget_)) return numberOf(widget_);
  if (const auto* box = as<QDateTimeEdit>(widget_)) return momentOf(*box);
  const std::string text = kind() == ControlKind::kBoundCombo ? BoundText() : defaultText();
  return text.empty() ? Variant(Null{}) : Variant(text);
}

void WidgetControl::show(const Variant& value) {
  const std::shared_ptr<const Locale> locale = currentLocale();
  const QString text = textOf(value, *locale);
  if (auto* line = as<QLineEdit>(widget_)) {
    // A line that is too short for what is there would cut it.
    line->setMaxLength(std::max(line->maxLength(), static_cast<int>(text.size())));
    line->setText(text);
    line->setCursorPosition(0);
  } else if (auto* page = as<QPlainTextEdit>(widget_)) {
    page->setPlainText(text);
  } else if (auto* rich = as<QTextEdit>(widget_)) {
    rich->setPlainText(text);
  } else if (auto* label = as<QLabel>(widget_)) {
    label->setText(text);
  } else if (auto* tick = as<QCheckBox>(widget_)) {
    tick->setTristate(isNothing(value));
    tick->setCheckState(isNothing(value)           ? Qt::PartiallyChecked
                        : value.toBoolean(*locale) ? Qt::Checked
                                                   : Qt::Unchecked);
  } else if (auto* combo = as<QComboBox>(widget_)) {
    showInCombo(*combo, value, text);
  } else if (auto* whole = as<QSpinBox>(widget_)) {
    showInWhole(*whole, value, *locale);
  } else if (auto* real = as<QDoubleSpinBox>(widget_)) {
    showInReal(*real, value, *locale);
  } else if (auto* moment = as<QDateTimeEdit>(widget_)) {
    showInDate(*moment, value, *locale);
  } else if (auto* list = as<QListWidget>(widget_)) {
    const QList<QListWidgetItem*> found = list->findItems(text, Qt::MatchExactly);
    list->setCurrentItem(found.isEmpty() ? nullptr : found.front());
  }
}

}  // namespace tavelor::qt
