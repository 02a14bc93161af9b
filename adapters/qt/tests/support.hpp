// SPDX-License-Identifier: MIT
// A shop with a few samples, and models over them that Qt's own tester watches.
#pragma once

#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/qt/recordset_model.hpp"
#include "tavelor/qt/values.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tests/frame/sample.hpp"

namespace tavelor::qt::test {

using tavelor::test::Sample;
using tavelor::test::SampleShop;

/// A model that must keep Qt's rules at each step: the tester ends the program otherwise.
template <typename Model>
class Watched {
 public:
  template <typename... Arguments>
  explicit Watched(Arguments&&... arguments) : model_(std::forward<Arguments>(arguments)...) {}
  Model* operator->() { return &model_; }
  Model& operator*() { return model_; }

 private:
  Model model_;
  QAbstractItemModelTester tester_{&model_, QAbstractItemModelTester::FailureReportingMode::Fatal};
};
using WatchedModel = Watched<RecordsetModel>;

class QtTest : public testing::Test {
 protected:
  static constexpr const char* kAll = "SELECT * FROM Muestras ORDER BY Codigo";
  enum Place { kCode, kName, kNotes, kNumber, kShort, kPrice, kMoney, kActive, kDay, kPhoto };

  QtTest() {
    for (const char* row : {"'A', 'Ana', 'Una nota', 1, 10, 1.005, 1234.5, True, #03/05/2026#",
                            "'B', 'Bea', Null, 20, Null, 2.5, 0.125, False, Null",
                            "'C', 'Celia', Null, Null, 30, Null, Null, True, #12/31/2026#"}) {
      shop.run(
          "INSERT INTO Muestras (Codigo, Nombre, Notas, Numero, Corto, Precio, Dinero, "
          "Activo, Fecha) VALUES (" +
          std::string(row) + ")");
    }
  }

  static RecordsetPtr open(const std::string& statement = kAll) {
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(1, Statement::trusted(statement), rows, connection);
    return rows;
  }
  static std::string display(const QAbstractItemModel& model, int row, int column) {
    return model.index(row, column).data().toString().toStdString();
  }
  /// What views show of a column.
  static std::vector<std::string> shown(const QAbstractItemModel& model, int column = kCode) {
    std::vector<std::string> texts;
    for (int row = 0; row < model.rowCount(); ++row) texts.push_back(display(model, row, column));
    return texts;
  }
  static std::vector<std::string> marks(const QAbstractItemModel& model) {
    std::vector<std::string> texts;
    for (int row = 0; row < model.rowCount(); ++row) {
      texts.push_back(model.headerData(row, Qt::Vertical).toString().toStdString());
    }
    return texts;
  }
  static bool put(QAbstractItemModel& model, int row, int column, const QVariant& value) {
    return model.setData(model.index(row, column), value);
  }
  static int state(const QAbstractItemModel& model, int row) {
    return model.index(row, 0).data(RecordsetModel::kStateRole).toInt();
  }

  SampleShop shop;
};

}  // namespace tavelor::qt::test
