// SPDX-License-Identifier: MIT
// The rows of a record class for Qt's views, by the rules of the class.
#pragma once

#include <QtCore/QString>
#include <memory>

#include "tavelor/qt/recordset_model.hpp"

namespace tavelor {
class RecordClass;
}

namespace tavelor::qt {

/// A model on the primary record set of a record class. Orders are set by the class and remembered
/// under its word and the model's key, rows are added and deleted as the class does it: some
/// classes write a deletion at once, and with it all that is pending. Each move tells the class's
/// listeners.
///
/// The class must outlive the model or, if it goes first, be let go by setRecordset(nullptr). It
/// works while its apartment is bound, as the class does.
class TAVELOR_QT_API RecordClassModel : public RecordsetModel {
  Q_OBJECT

 public:
  /// `key` is the free word under which order and columns are remembered: most often the mode word
  /// given to IniciaRs, which restores that order by itself.
  RecordClassModel(RecordClass& records, QString key, QObject* parent = nullptr);
  ~RecordClassModel() override;

  /// The class.
  RecordClass& records() const;
  /// The word that order and columns are remembered under.
  const QString& key() const;
  /// Takes the rows that the class has now: to be called after IniciaRs. None before it.
  void load();

  /// Column of the order that is remembered, 0 where none is; -1 where it cannot be read.
  int rememberedColumn() const;
  /// Its direction.
  Qt::SortOrder rememberedOrder() const;
  /// A setting beside the order, under the class's word and the model's key; "" where there is
  /// none. It outlives the program.
  QString remembered(const QString& name);
  /// Stores one.
  bool remember(const QString& name, const QString& value);

 protected:
  void addRow(Recordset& rows) override;
  void deleteRow(Recordset& rows) override;
  void sortRows(Recordset& rows, int column, Qt::SortOrder order) override;
  void fetchAnew(Recordset& rows) override;

 private:
  class Listener;
  RecordClass& records_;
  QString key_;
  std::unique_ptr<Listener> listener_;
};

}  // namespace tavelor::qt
