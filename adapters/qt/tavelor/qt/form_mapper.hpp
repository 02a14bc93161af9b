// SPDX-License-Identifier: MIT
// A form on the current row of a record class.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <functional>
#include <memory>

#include "tavelor/qt/export.hpp"
#include "tavelor/qt/failure.hpp"

class QWidget;

namespace tavelor {
class RecordClass;
}

namespace tavelor::qt {

/// Binds widgets to fields, both ways: they show the current row of the class's primary record set,
/// follow its moves and whatever else is done to it, and write what is entered into the row, which
/// is in edit then. Grids on the same set see it at once.
///
/// What may be entered is the frame's: a line takes as many characters as ValidaDefinedSize says
/// and the keys that ValidaKey takes, and an entry is written when its widget is left if
/// ValidaValue takes it. An entry that is refused stays in its widget with the property "refused"
/// set, and keeps the set on its row; revert() takes it back. An emptied widget writes Null.
///
/// No member raises: failed() and lastFailure() tell. The class must outlive the mapper; a widget
/// may go first. Used by one thread.
class TAVELOR_QT_API FormMapper : public QObject {
  Q_OBJECT

 public:
  /// Of a class, before or after IniciaRs.
  explicit FormMapper(RecordClass& records, QObject* parent = nullptr);
  ~FormMapper() override;

  /// Binds a widget; false for one of a kind that shows no field (see WidgetControl). A field that
  /// the rows do not have leaves its widget empty and disabled.
  bool add(QWidget* widget, const QString& field);
  /// Takes the rows that the class has now: to be called after IniciaRs.
  void load();

  /// Whether something is entered or in edit that submit() has not written.
  bool isEdited() const;
  /// What went wrong last; not set before.
  const Failure& lastFailure() const;

 public Q_SLOTS:
  /// Writes what is entered, then the row by the class's Update. After a failure it is pending
  /// still; after a conflict conflictFound() tells so.
  bool submit();
  /// Takes back what is entered and in edit.
  bool revert();
  /// Adds a row by the class's AddNew, with the next code.
  bool addRow();

 Q_SIGNALS:
  /// Something went wrong.
  void failed(const tavelor::qt::Failure& failure);
  /// An entry does not fit its field.
  void refused(QWidget* widget, const QString& reason);
  /// Somebody else has changed the row: what is entered is pending.
  void conflictFound();
  /// Its widgets show another row, or the same one anew.
  void shown();

 protected:
  /// Asks the frame about each key, and takes an entry whose widget is left.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  class Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::qt
