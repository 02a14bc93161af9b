// SPDX-License-Identifier: MIT
// Models that are not alone: somebody else's changes, clones, engines that fail.
#include <QtCore/QCoreApplication>
#include <random>

#include <sqlite3.h>

#include "adapters/qt/tests/support.hpp"

namespace tavelor::qt::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Shared : public QtTest {};

// ---- Conflicts

TEST_F(Shared, AConflictLeavesItsRowPendingAndTellsIt) {
  WatchedModel model(open());
  QSignalSpy conflicts(&*model, &RecordsetModel::conflictsFound);
  put(*model, 0, kName, "Mía");
  put(*model, 1, kName, "Beatriz");
  shop.run("UPDATE Muestras SET Nombre = 'Suya' WHERE Codigo = 'A'");
  EXPECT_FALSE(model->submitAll());
  EXPECT_EQ(model->lastFailure().kind, ErrorKind::kConflict);
  ASSERT_EQ(conflicts.count(), 1);
  EXPECT_EQ(conflicts[0][0].value<QList<int>>(), QList<int>{0});
  EXPECT_THAT(marks(*model), ElementsAre("!", "2", "3"));
  EXPECT_TRUE(model->index(0, 0).data(RecordsetModel::kConflictRole).toBool());
  EXPECT_TRUE(model->index(0, 0).data(Qt::BackgroundRole).isValid());
  EXPECT_EQ(display(*model, 0, kName), "Mía");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Suya");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'B'"), "Beatriz");
}

TEST_F(Shared, OfAConflictTheirsMayBeTaken) {
  WatchedModel model(open());
  put(*model, 0, kName, "Mía");
  shop.run("UPDATE Muestras SET Nombre = 'Suya' WHERE Codigo = 'A'");
  model->submitAll();
  EXPECT_TRUE(model->takeTheirs(0));
  EXPECT_EQ(display(*model, 0, kName), "Suya");
  EXPECT_FALSE(model->hasPendingChanges());
  EXPECT_THAT(marks(*model), ElementsAre("1", "2", "3"));
}

TEST_F(Shared, OfAConflictMineMayBeKept) {
  WatchedModel model(open());
  put(*model, 0, kName, "Mía");
  shop.run("UPDATE Muestras SET Nombre = 'Suya' WHERE Codigo = 'A'");
  model->submitAll();
  EXPECT_TRUE(model->keepMine(0));
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Mía");
  EXPECT_FALSE(model->hasPendingChanges());
}

TEST_F(Shared, ARowThatIsNotThereAnyMoreStaysPendingUntilItIsReverted) {
  WatchedModel model(open());
  put(*model, 0, kName, "Mía");
  shop.run("DELETE FROM Muestras WHERE Codigo = 'A'");
  EXPECT_FALSE(model->submitAll());
  EXPECT_FALSE(model->takeTheirs(0));
  EXPECT_EQ(model->lastFailure().number, errors::kRowNotLocated);
  EXPECT_FALSE(model->keepMine(0));
  EXPECT_TRUE(model->index(0, 0).data(RecordsetModel::kConflictRole).toBool());
  EXPECT_TRUE(model->revertRow(0));
  EXPECT_FALSE(model->hasPendingChanges());
  EXPECT_TRUE(model->requery());
  EXPECT_THAT(shown(*model), ElementsAre("B", "C"));
}

TEST_F(Shared, TheirsIsToldBeforeOneDecides) {
  const auto rows = open();
  WatchedModel model(rows);
  put(*model, 0, kName, "Mía");
  shop.run("UPDATE Muestras SET Nombre = 'Suya' WHERE Codigo = 'A'");
  model->submitAll();
  rows->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  EXPECT_EQ(model->index(0, kName).data(RecordsetModel::kTheirsRole), QVariant("Suya"));
  EXPECT_THAT(model->index(0, kName).data(Qt::ToolTipRole).toString().toStdString(),
              HasSubstr("Suya"));
}

// ---- Clones

TEST_F(Shared, TwoModelsOnClonesShowTheSameRowsEachInItsOrder) {
  const auto rows = open();
  WatchedModel one(rows);
  WatchedModel other(rows->Clone());
  other->sort(kCode, Qt::DescendingOrder);
  put(*one, 0, kName, "Anabel");
  EXPECT_EQ(display(*other, 2, kName), "Anabel");
  EXPECT_EQ(state(*other, 2), int(RowState::kModified));
  one->removeRow(1);
  EXPECT_THAT(shown(*other), ElementsAre("C", "A"));
  one->insertRow(2);
  EXPECT_EQ(other->rowCount(), 2) << "in edit it is its own set's";
  put(*one, 2, kCode, "D");
  EXPECT_TRUE(one->submit());
  EXPECT_THAT(shown(*other), ElementsAre("C", "A", "D"));
  EXPECT_TRUE(other->submitAll());
  EXPECT_THAT(marks(*one), ElementsAre("1", "2", "3"));
  EXPECT_TRUE(one->revertAll());
  EXPECT_EQ(other->rowCount(), 3);
}

TEST_F(Shared, ACloneThatMovesEditsAndDeletesIsFollowed) {
  const auto rows = open();
  WatchedModel model(rows);
  const auto clone = rows->Clone();
  const QPersistentModelIndex last = model->index(2, kCode);
  QSignalSpy data(&*model, &RecordsetModel::dataChanged);
  clone->MoveLast();
  EXPECT_EQ(model->currentRow(), 0) << "its cursor is its own";
  clone->Field("Nombre").Value("Cel");
  EXPECT_EQ(display(*model, 2, kName), "Celia") << "not posted";
  clone->Update();
  EXPECT_EQ(display(*model, 2, kName), "Cel");
  EXPECT_GE(data.count(), 1);
  clone->MoveFirst();
  clone->Delete();
  EXPECT_THAT(shown(*model), ElementsAre("B", "C"));
  EXPECT_EQ(last.row(), 1);
  clone->CancelBatch();
  EXPECT_THAT(shown(*model), ElementsAre("A", "B", "C"));
}

TEST_F(Shared, ARowInEditThatACloneDeletesIsRefused) {
  const auto rows = open();
  WatchedModel model(rows);
  rows->Field("Nombre").Value("en edición");
  const auto clone = rows->Clone();
  clone->Delete();
  EXPECT_FALSE(model->submit());
  EXPECT_EQ(model->lastFailure().number, errors::kDeletedRow);
  EXPECT_THAT(shown(*model), ElementsAre("B", "C"));
  model->revert();
  EXPECT_TRUE(put(*model, 0, kName, "Beatriz"));
}

TEST_F(Shared, AListenerThatSaysNoIsTold) {
  struct No : RecordsetEvents {
    void WillChangeRecord(EventReason /*reason*/, std::int32_t /*records*/, EventStatus& status,
                          Recordset& /*set*/) override {
      status = EventStatus::kCancel;
    }
  } no;
  const auto rows = open();
  WatchedModel model(rows);
  rows->addListener(&no);
  EXPECT_FALSE(put(*model, 0, kName, "x"));
  EXPECT_EQ(model->lastFailure().number, errors::kOperationCanceled);
  EXPECT_FALSE(model->removeRow(0));
  EXPECT_FALSE(model->insertRow(3));
  EXPECT_EQ(model->rowCount(), 3);
  rows->removeListener(&no);
  EXPECT_TRUE(put(*model, 0, kName, "x"));
}

// ---- What fails

TEST_F(Shared, WhereTheEngineRefusesARowNoneIsWrittenAndAllStayPending) {
  WatchedModel model(open());
  put(*model, 0, kName, "Anabel");
  model->insertRow(3);
  put(*model, 3, kCode, "B");
  EXPECT_FALSE(model->submitAll());
  EXPECT_EQ(model->lastFailure().kind, ErrorKind::kIntegrity);
  EXPECT_THAT(marks(*model), ElementsAre("*", "2", "3", "!"));
  EXPECT_TRUE(model->index(3, 0).data(RecordsetModel::kFailureRole).toBool());
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Ana");
  put(*model, 3, kCode, "D");
  EXPECT_TRUE(model->submitAll());
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras"), "4");
}

TEST_F(Shared, WhereTheTableIsGoneRowsStayToBeRead) {
  WatchedModel model(open());
  put(*model, 0, kName, "Anabel");
  sqlite3* engine = nullptr;
  ASSERT_EQ(sqlite3_open(shop.installation().databaseFile(1).c_str(), &engine), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(engine, "DROP TABLE Muestras", nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(engine);
  EXPECT_FALSE(model->submitAll());
  EXPECT_NE(model->lastFailure().number, 0);
  EXPECT_FALSE(model->requery());
  EXPECT_EQ(display(*model, 0, kName), "Anabel");
  EXPECT_THAT(shown(*model), ElementsAre("A", "B", "C"));
  EXPECT_TRUE(model->hasPendingChanges());
}

TEST_F(Shared, AModelOutlivesItsConnection) {
  const auto rows = open();
  WatchedModel model(rows);
  rows->ActiveConnection(nullptr);
  EXPECT_EQ(display(*model, 0, kName), "Ana");
  model->sort(kName, Qt::DescendingOrder);
  EXPECT_TRUE(put(*model, 0, kName, "Cel"));
  EXPECT_FALSE(model->submitAll());
  EXPECT_EQ(model->lastFailure().kind, ErrorKind::kClosed);
  EXPECT_FALSE(model->requery());
  EXPECT_FALSE(model->takeTheirs(0));
  EXPECT_EQ(display(*model, 0, kName), "Cel");
  rows->ActiveConnection(shop.apartment().openConnection(1));
  EXPECT_TRUE(model->submitAll());
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'C'"), "Cel");
}

TEST_F(Shared, AConnectionThatIsClosedEmptiesTheModel) {
  const auto rows = open();
  WatchedModel model(rows);
  rows->ActiveConnection()->Close();
  EXPECT_EQ(display(*model, 0, kName), "") << "nobody is told of it";
  QCoreApplication::processEvents();
  EXPECT_EQ(model->rowCount(), 0);
  EXPECT_FALSE(model->submitAll());
}

TEST(SharedModel, OutlivesItsApartment) {
  std::unique_ptr<RecordsetModel> model;
  {
    SampleShop shop;
    shop.run("INSERT INTO Muestras (Codigo, Precio) VALUES ('A', 1.5)");
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(1, Statement::trusted("SELECT * FROM Muestras"), rows, connection);
    model = std::make_unique<RecordsetModel>(rows);
  }
  EXPECT_EQ(model->index(0, 5).data().toString(), "1,5");
  model->sort(0);
  EXPECT_EQ(model->rowCount(), 1);
}

// ---- Whatever comes

/// Many steps by chance on two models of clones, Qt's tester watching both: after each they show
/// what their sets show.
TEST_F(Shared, WhateverIsDoneModelsShowWhatTheirSetsShow) {
  for (int i = 0; i < 40; ++i) {
    shop.run("INSERT INTO Muestras (Codigo, Nombre, Numero) VALUES ('N" + std::to_string(i) +
             "', 'n" + std::to_string(i * 7 % 13) + "', " + std::to_string(i % 5) + ")");
  }
  const auto rows = open();
  WatchedModel one(rows);
  WatchedModel other(rows->Clone());
  std::mt19937 dice(20261120);
  const auto below = [&](int limit) {
    return static_cast<int>(dice() % static_cast<unsigned>(limit));
  };
  int added = 0;
  for (int step = 0; step < 1500; ++step) {
    RecordsetModel& model = below(2) == 0 ? *one : *other;
    Recordset& set = *model.recordset();
    const int row = model.rowCount() > 0 ? below(model.rowCount()) : 0;
    switch (below(14)) {
      case 0:
        model.sort(below(4), below(2) == 0 ? Qt::AscendingOrder : Qt::DescendingOrder);
        break;
      case 1:
        model.setFilter(below(2) == 0 ? "" : "Numero < 4");
        break;
      case 2:
        model.setFilter(below(3) == 0 ? FilterGroup::kPending : FilterGroup::kNone);
        break;
      case 3:
        if (model.insertRow(model.rowCount())) {
          put(model, model.rowCount() - 1, kCode, QString("X%1").arg(added++ % 1000));
        }
        break;
      case 4:
        model.removeRows(row, std::min(1 + below(3), std::max(1, model.rowCount() - row)));
        break;
      case 5:
        model.submitAll();
        break;
      case 6:
        if (below(4) == 0) model.revertAll();
        break;
      case 7:
        model.revertRow(row);
        break;
      case 8:
        if (below(5) == 0) model.requery();
        break;
      case 9:
        try {
          set.MoveFirst();
          set.Field("Nombre").Value("z" + std::to_string(step % 17));
          set.MoveNext();
        } catch (const Error&) {
        }
        break;
      case 10:
        model.submit();
        model.setCurrentRow(row);
        break;
      case 11:
        model.revert();
        break;
      default:
        put(model, row, below(2) == 0 ? kName : kNumber, below(30));
    }
    for (WatchedModel* each : {&one, &other}) {
      std::vector<std::uint32_t> numbers;
      for (int i = 0; i < (*each)->rowCount(); ++i) {
        numbers.push_back((*each)->index(i, 0).data(RecordsetModel::kBookmarkRole).toUInt());
      }
      ASSERT_EQ(numbers, (*each)->recordset()->shownRows()) << "step " << step;
    }
  }
}

}  // namespace
}  // namespace tavelor::qt::test
