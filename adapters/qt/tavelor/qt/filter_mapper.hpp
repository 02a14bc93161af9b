// SPDX-License-Identifier: MIT
// A search form over a record class.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <memory>

#include "tavelor/qt/export.hpp"
#include "tavelor/qt/failure.hpp"

class QWidget;

namespace tavelor {
class RecordClass;
}

namespace tavelor::qt {

/// How a widget's value is compared with its field.
enum class Comparison : char {
  kLike,     ///< a text begins with it; anything else is equal to it
  kAtLeast,  ///< from it on
  kAtMost    ///< up to it
};

/// Makes a filter of what widgets hold, a criterion each, by the class's CreateFilter. What is
/// typed is data: quotes in it are doubled, numbers and dates are read by the apartment's locale.
///
/// Members do not raise: failed() and lastFailure() tell. The class must outlive the mapper; a
/// widget may go first.
class TAVELOR_QT_API FilterMapper : public QObject {
  Q_OBJECT

 public:
  /// Of a class, before or after IniciaRs.
  explicit FilterMapper(RecordClass& records, QObject* parent = nullptr);
  ~FilterMapper() override;

  /// Adds a widget; false for one of a kind that has no value (see WidgetControl). A field may have
  /// several: one for its least value and one for its greatest.
  bool add(QWidget* widget, const QString& field, Comparison comparison = Comparison::kLike);

  /// The criteria of the widgets that are not empty, joined by And; "" for none. Gives nothing, and
  /// tells, where a text is no number or date, or a field is not there: `ok` is false then.
  QString criteria(bool* ok = nullptr);
  /// What went wrong last; not set before.
  const Failure& lastFailure() const;

 public Q_SLOTS:
  /// Filters the class's rows; the old filter stays after a failure.
  bool apply();
  /// Empties the widgets and shows all rows.
  bool clear();
  /// Stores the criteria under a free word, for remembered() and for the frame's pages ("Filter").
  bool remember(const QString& key);
  /// Filters by what was stored; widgets stay as they are.
  bool applyRemembered(const QString& key);

 Q_SIGNALS:
  /// Something went wrong.
  void failed(const tavelor::qt::Failure& failure);

 private:
  class Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::qt
