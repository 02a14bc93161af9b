// SPDX-License-Identifier: MIT
// A form on the current row of a record class.
#include "tavelor/qt/form_mapper.hpp"

#include <QtCore/QEvent>
#include <QtCore/QScopedValueRollback>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractSpinBox>
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
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/qt/set_watcher.hpp"
#include "tavelor/qt/values.hpp"
#include "tavelor/qt/widget_control.hpp"

namespace tavelor::qt {

namespace {

constexpr const char* kRefused = "refused";
// As a new spin box has them: nobody has chosen them.
constexpr int kUsualMaximum = 99;
constexpr double kUsualRealMaximum = 99.99;

/// "dd/mm/yyyy" as Qt writes masks.
QString dateMaskOf(const Locale& locale) {
  QString mask = toQString(locale.shortDate);
  return mask.replace(u'm', u'M');
}

/// Boxes that nobody has set up take what a field may hold, and can be empty.
void setUp(QWidget* widget, const Locale& locale) {
  if (auto* whole = qobject_cast<QSpinBox*>(widget)) {
    if (whole->minimum() == 0 && whole->maximum() == kUsualMaximum) {
      whole->setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    }
  } else if (auto* real = qobject_cast<QDoubleSpinBox*>(widget)) {
    if (real->minimum() == 0 && real->maximum() == kUsualRealMaximum) {
      constexpr double kMost = 1e15;
      real->setRange(-kMost, kMost);
    }
  } else if (auto* moment = qobject_cast<QDateTimeEdit*>(widget)) {
    if (moment->specialValueText().isEmpty()) moment->setSpecialValueText(QStringLiteral(" "));
    if (qobject_cast<QDateEdit*>(moment) != nullptr) moment->setDisplayFormat(dateMaskOf(locale));
  }
}

}  // namespace

class FormMapper::Inner final : public SetWatcher, public RecordClassEvents {
 public:
  Inner(FormMapper& mapper, RecordClass& classRecords) : records(classRecords), mapper_(mapper) {
    records.addListener(*this);
  }
  ~Inner() override { records.removeListener(*this); }
  Inner(const Inner&) = delete;
  Inner& operator=(const Inner&) = delete;

  struct Bound {
    explicit Bound(QWidget* widget, const QString& field) : control(widget, field) {}
    WidgetControl control;
    bool isEntered = false;  ///< by a person, and not written yet
  };

  Bound* boundTo(const QObject* widget) {
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const auto& each) {
      return each->control.widget() == widget;
    });
    return found == fields.end() ? nullptr : found->get();
  }

  void entered(QWidget* widget) {
    Bound* bound = isShowing_ ? nullptr : boundTo(widget);
    if (bound != nullptr) bound->isEntered = true;
  }
  bool take(Bound& bound);
  bool takeAll();
  void forgetEntries();
  void showAll();
  void showOne(Bound& bound);
  template <typename Work>
  bool attempt(Work&& work);
  bool takesKey(Bound& bound, const QKeyEvent& key) const;

  RecordClass& records;
  std::vector<std::unique_ptr<Bound>> fields;
  Failure failure;

 private:
  void WillMove(EventReason reason, EventStatus& status, Recordset& set) override;
  void MoveComplete(EventReason reason, const Error* error, EventStatus& status,
                    Recordset& set) override;
  void FieldChangeComplete(std::span<const Field> changed, const Error* error, EventStatus& status,
                           Recordset& set) override;
  void RecordChangeComplete(EventReason reason, std::int32_t count, const Error* error,
                            EventStatus& status, Recordset& set) override;
  void RecordsetChangeComplete(EventReason reason, const Error* error, EventStatus& status,
                               Recordset& set) override;
  void MoveComplete() override {}
  void DataMemberChanged(std::string_view /*member*/) override { mapper_.load(); }

  bool hasRow() const { return currentNumber() != 0; }
  void refuse(Bound& bound, const QString& reason);

  FormMapper& mapper_;
  bool isShowing_ = false;
  bool isTaking_ = false;
};

// ---- The set

/// What is entered belongs to the row that is left; it stays until it can be written.
void FormMapper::Inner::WillMove(EventReason /*reason*/, EventStatus& status, Recordset& set) {
  if (status == EventStatus::kCantDeny || isTaking_) return;
  const bool isAny =
      std::any_of(fields.begin(), fields.end(), [](const auto& each) { return each->isEntered; });
  if (!isAny) return;
  if (!takeAll()) {
    status = EventStatus::kCancel;
    return;
  }
  if (!attempt([&] { set.Update(); })) status = EventStatus::kCancel;
}

void FormMapper::Inner::MoveComplete(EventReason /*reason*/, const Error* error,
                                     EventStatus& /*status*/, Recordset& /*set*/) {
  if (error == nullptr) showAll();
}

void FormMapper::Inner::FieldChangeComplete(std::span<const Field> /*changed*/,
                                            const Error* /*error*/, EventStatus& /*status*/,
                                            Recordset& /*set*/) {
  showAll();
}

void FormMapper::Inner::RecordChangeComplete(EventReason /*reason*/, std::int32_t /*count*/,
                                             const Error* /*error*/, EventStatus& /*status*/,
                                             Recordset& /*set*/) {
  showAll();
}

void FormMapper::Inner::RecordsetChangeComplete(EventReason /*reason*/, const Error* error,
                                                EventStatus& /*status*/, Recordset& /*set*/) {
  if (error == nullptr) forgetEntries();
  showAll();
}

// ---- From the set to the widgets

void FormMapper::Inner::showOne(Bound& bound) {
  if (bound.isEntered || bound.control.widget() == nullptr) return;
  bool isThere = hasRow();
  Variant value;
  try {
    if (isThere) value = rows()->CurrentRow().value(bound.control.DataField());
  } catch (const Error&) {
    isThere = false;  // a deleted row, or a field that these rows do not have
  }
  bound.control.widget()->setEnabled(isThere);
  bound.control.widget()->setProperty(kRefused, false);
  attempt([&] { bound.control.show(value); });
}

void FormMapper::Inner::showAll() {
  {
    const QScopedValueRollback<bool> showing(isShowing_, true);
    for (const auto& each : fields) showOne(*each);
  }
  Q_EMIT mapper_.shown();
}

void FormMapper::Inner::forgetEntries() {
  for (const auto& each : fields) each->isEntered = false;
}

// ---- From the widgets to the set

void FormMapper::Inner::refuse(Bound& bound, const QString& reason) {
  bound.control.widget()->setProperty(kRefused, true);
  Q_EMIT mapper_.refused(bound.control.widget(), reason);
}

/// Writes an entry; false where it is refused.
bool FormMapper::Inner::take(Bound& bound) {
  if (!bound.isEntered || isTaking_ || bound.control.widget() == nullptr || !hasRow()) return true;
  const QScopedValueRollback<bool> taking(isTaking_, true);
  try {
    const Variant value = bound.control.fieldValue();
    if (!value.isNull() && value.isText() && !records.ValidaValue(bound.control)) {
      refuse(bound, FormMapper::tr("This does not fit the field %1")
                        .arg(toQString(bound.control.DataField())));
      return false;
    }
    bound.isEntered = false;
    const Variant there = rows()->CurrentRow().value(bound.control.DataField());
    const bool isNothing = there.isNull() || there.isEmpty();
    if (value == there || (value.isNull() && isNothing)) return true;
    rows()->Field(bound.control.DataField()).Value(value);
    bound.control.widget()->setProperty(kRefused, false);
    return true;
  } catch (...) {
    failure = currentFailure();
    bound.isEntered = true;
    refuse(bound, failure.text);
    return false;
  }
}

bool FormMapper::Inner::takeAll() {
  bool taken = true;
  for (const auto& each : fields) taken = take(*each) && taken;
  return taken;
}

template <typename Work>
bool FormMapper::Inner::attempt(Work&& work) {
  try {
    work();
    return true;
  } catch (...) {
    failure = currentFailure();
  }
  Q_EMIT mapper_.failed(failure);
  return false;
}

bool FormMapper::Inner::takesKey(Bound& bound, const QKeyEvent& key) const {
  const QString text = key.text();
  if (text.size() != 1 || !isOpen()) return true;
  // A key that replaces what is selected, or rules an editor, adds nothing.
  const auto* line = qobject_cast<const QLineEdit*>(bound.control.widget());
  if (line == nullptr || line->hasSelectedText() || !text.front().isPrint()) return true;
  try {
    return records.ValidaKey(bound.control, static_cast<std::int16_t>(text.front().unicode()));
  } catch (const Error&) {
    return true;
  }
}

// ---- The mapper

FormMapper::FormMapper(RecordClass& records, QObject* parent)
    : QObject(parent), inner_(std::make_unique<Inner>(*this, records)) {
  load();
}

FormMapper::~FormMapper() = default;

bool FormMapper::add(QWidget* widget, const QString& field) {
  if (!WidgetControl::isKnown(widget)) return false;
  inner_->fields.push_back(std::make_unique<Inner::Bound>(widget, field));
  Inner::Bound& bound = *inner_->fields.back();
  setUp(widget, *currentLocale());
  widget->installEventFilter(this);
  const auto entered = [this, widget] { inner_->entered(widget); };
  const auto taken = [this, widget] {
    inner_->entered(widget);
    if (Inner::Bound* each = inner_->boundTo(widget)) inner_->take(*each);
  };
  if (auto* line = qobject_cast<QLineEdit*>(widget)) {
    connect(line, &QLineEdit::textEdited, this, entered);
  } else if (auto* page = qobject_cast<QPlainTextEdit*>(widget)) {
    connect(page, &QPlainTextEdit::textChanged, this, entered);
  } else if (auto* rich = qobject_cast<QTextEdit*>(widget)) {
    connect(rich, &QTextEdit::textChanged, this, entered);
  } else if (auto* tick = qobject_cast<QCheckBox*>(widget)) {
    connect(tick, &QCheckBox::clicked, this, taken);
  } else if (auto* combo = qobject_cast<QComboBox*>(widget)) {
    connect(combo, &QComboBox::activated, this, taken);
    connect(combo, &QComboBox::editTextChanged, this, entered);
  } else if (auto* box = qobject_cast<QAbstractSpinBox*>(widget)) {
    // What is typed tells no value where it is emptied, and steps tell no text.
    connect(box->findChild<QLineEdit*>(), &QLineEdit::textEdited, this, entered);
    if (auto* whole = qobject_cast<QSpinBox*>(box)) {
      connect(whole, &QSpinBox::valueChanged, this, entered);
    } else if (auto* real = qobject_cast<QDoubleSpinBox*>(box)) {
      connect(real, &QDoubleSpinBox::valueChanged, this, entered);
    } else if (auto* moment = qobject_cast<QDateTimeEdit*>(box)) {
      connect(moment, &QDateTimeEdit::dateTimeChanged, this, entered);
    }
  } else if (auto* list = qobject_cast<QListWidget*>(widget)) {
    connect(list, &QListWidget::itemClicked, this, taken);
  }
  if (inner_->isOpen()) {
    if (auto* line = qobject_cast<QLineEdit*>(widget)) {
      inner_->attempt([&] {
        line->setMaxLength(std::max(1, inner_->records.ValidaDefinedSize(bound.control)));
      });
    }
  }
  inner_->showAll();
  return true;
}

void FormMapper::load() {
  inner_->forgetEntries();
  inner_->watch(inner_->records.DataMember("Primary"));
  if (inner_->isOpen()) {
    for (const auto& each : inner_->fields) {
      auto* line = qobject_cast<QLineEdit*>(each->control.widget());
      if (line == nullptr) continue;
      inner_->attempt([&] {
        line->setMaxLength(std::max(1, inner_->records.ValidaDefinedSize(each->control)));
      });
    }
  }
  inner_->showAll();
}

bool FormMapper::isEdited() const {
  const auto& fields = inner_->fields;
  if (std::any_of(fields.begin(), fields.end(), [](const auto& each) { return each->isEntered; })) {
    return true;
  }
  return inner_->isOpen() && inner_->records.EditingRecord();
}

const Failure& FormMapper::lastFailure() const {
  return inner_->failure;
}

bool FormMapper::submit() {
  if (!inner_->takeAll()) return false;
  const bool written = inner_->attempt([&] { inner_->records.Update(); });
  if (!written && inner_->failure.number == errors::kRowNotLocated) Q_EMIT conflictFound();
  return written;
}

bool FormMapper::revert() {
  inner_->forgetEntries();
  const bool done = inner_->attempt([&] { inner_->records.Cancel(); });
  inner_->showAll();
  return done;
}

bool FormMapper::addRow() {
  if (!inner_->takeAll()) return false;
  return inner_->attempt([&] { inner_->records.AddNew(true); });
}

bool FormMapper::eventFilter(QObject* watched, QEvent* event) {
  Inner::Bound* bound = inner_ ? inner_->boundTo(watched) : nullptr;
  if (bound == nullptr) return QObject::eventFilter(watched, event);
  if (event->type() == QEvent::FocusOut) inner_->take(*bound);
  if (event->type() == QEvent::KeyPress) {
    const auto& key = *static_cast<const QKeyEvent*>(event);
    if (!inner_->takesKey(*bound, key)) return true;
    const bool isEnter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (isEnter && qobject_cast<QLineEdit*>(watched) != nullptr) inner_->take(*bound);
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace tavelor::qt
