// SPDX-License-Identifier: MIT
// What views see of a record set, and what they do to it.
#include <QtCore/QDateTime>

#include "adapters/qt/tests/support.hpp"

namespace tavelor::qt::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Model : public QtTest {};

// ---- Reading

TEST_F(Model, ShowsValuesByTheLocaleAndEditsThemInTheirTypes) {
  WatchedModel model(open());
  EXPECT_EQ(model->rowCount(), 3);
  EXPECT_EQ(model->columnCount(), 10);
  EXPECT_EQ(display(*model, 0, kName), "Ana");
  EXPECT_EQ(display(*model, 0, kPrice), "1,005");
  EXPECT_EQ(display(*model, 0, kMoney), "1.234,50");
  EXPECT_EQ(display(*model, 1, kMoney), "0,125");
  EXPECT_EQ(display(*model, 0, kDay), "05/03/2026");
  EXPECT_EQ(model->index(0, kNumber).data(Qt::EditRole), QVariant(1));
  EXPECT_EQ(model->index(0, kPrice).data(Qt::EditRole), QVariant(1.005));
  EXPECT_EQ(model->index(0, kMoney).data(Qt::EditRole), QVariant(1234.5));
  EXPECT_EQ(model->index(0, kDay).data(Qt::EditRole).toDate(), QDate(2026, 3, 5));
  EXPECT_EQ(model->index(0, kMoney).data(RecordsetModel::kEditTextRole), QVariant("1234,5"));
  EXPECT_EQ(model->index(0, kName).data(RecordsetModel::kMaxLengthRole), QVariant(20));
  EXPECT_EQ(model->columnKind(kNotes), ColumnKind::kMemo);
  EXPECT_EQ(model->columnOf("NOMBRE"), kName);
  EXPECT_EQ(model->columnOf("Nada"), -1);
}

TEST_F(Model, NullIsShownAsNothingAndAFlagAsABox) {
  WatchedModel model(open());
  EXPECT_EQ(display(*model, 2, kNumber), "");
  EXPECT_FALSE(model->index(2, kNumber).data(Qt::EditRole).isValid());
  EXPECT_EQ(model->index(0, kActive).data(Qt::CheckStateRole), QVariant(Qt::Checked));
  EXPECT_EQ(model->index(1, kActive).data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
  EXPECT_FALSE(model->index(0, kActive).data().isValid());
  EXPECT_FALSE(model->index(0, kName).data(Qt::CheckStateRole).isValid());
}

TEST_F(Model, NumbersStandOnTheRightAndDatesInTheMiddle) {
  WatchedModel model(open());
  const auto side = [&](int column) {
    return model->index(0, column).data(Qt::TextAlignmentRole).toInt();
  };
  EXPECT_EQ(side(kMoney), int(Qt::AlignRight | Qt::AlignVCenter));
  EXPECT_EQ(side(kName), int(Qt::AlignLeft | Qt::AlignVCenter));
  EXPECT_EQ(side(kDay), int(Qt::AlignCenter));
  EXPECT_EQ(model->headerData(kMoney, Qt::Horizontal, Qt::TextAlignmentRole).toInt(), side(kMoney));
  model->setColumnAlignment("Nombre", Qt::AlignRight);
  EXPECT_EQ(side(kName), int(Qt::AlignRight));
}

TEST_F(Model, ColumnsHaveTitlesAndMasksThatStayWhenRowsAreFetchedAnew) {
  WatchedModel model(open());
  model->setColumnFormat("Precio", "#,##0.00");
  EXPECT_TRUE(model->setHeaderData(kPrice, Qt::Horizontal, "PVP"));
  EXPECT_EQ(display(*model, 0, kPrice), "1,01");
  ASSERT_TRUE(model->requery());
  EXPECT_EQ(display(*model, 0, kPrice), "1,01");
  EXPECT_EQ(model->headerData(kPrice, Qt::Horizontal), QVariant("PVP"));
  EXPECT_EQ(model->columnName(kPrice), "Precio");
  EXPECT_FALSE(model->setHeaderData(99, Qt::Horizontal, "x"));
}

TEST_F(Model, WithoutASetOrWithAClosedOneItIsEmpty) {
  WatchedModel model;
  EXPECT_EQ(model->rowCount(), 0);
  EXPECT_FALSE(model->submitAll());
  EXPECT_EQ(model->lastFailure().number, errors::kObjectClosed);
  model->sort(0);
  const auto rows = open();
  model->setRecordset(rows);
  EXPECT_EQ(model->rowCount(), 3);
  rows->Close();
  EXPECT_EQ(model->rowCount(), 0);
  EXPECT_EQ(model->columnCount(), 0);
  EXPECT_FALSE(model->index(0, 0).isValid());
  rows->Open(Statement::trusted("SELECT Codigo FROM Muestras WHERE Codigo <> 'B'"),
             shop.apartment().openConnection(1));
  EXPECT_THAT(shown(*model), ElementsAre("A", "C"));
  model->setRecordset(nullptr);
  EXPECT_EQ(model->rowCount(), 0);
}

// ---- Editing

TEST_F(Model, TakesValuesOfTheTypeAndTextsByTheLocale) {
  WatchedModel model(open());
  EXPECT_TRUE(put(*model, 0, kPrice, "1.234,5"));
  EXPECT_EQ(display(*model, 0, kPrice), "1234,5");
  EXPECT_TRUE(put(*model, 0, kPrice, 7.25));
  EXPECT_TRUE(put(*model, 0, kMoney, "9,9999"));
  EXPECT_TRUE(put(*model, 0, kDay, "31/12/2026"));
  EXPECT_TRUE(put(*model, 1, kDay, QDate(2026, 2, 28)));
  EXPECT_TRUE(put(*model, 2, kDay, QDateTime(QDate(2026, 2, 28), QTime(10, 30))));
  EXPECT_TRUE(put(*model, 0, kNumber, 5));
  EXPECT_TRUE(model->setData(model->index(0, kActive), Qt::Unchecked, Qt::CheckStateRole));
  EXPECT_TRUE(model->submitAll());
  EXPECT_EQ(shop.text("SELECT Precio FROM Muestras WHERE Codigo = 'A'"), "7,25");
  EXPECT_EQ(shop.text("SELECT Dinero FROM Muestras WHERE Codigo = 'A'"), "9,9999");
  EXPECT_EQ(shop.text("SELECT Fecha FROM Muestras WHERE Codigo = 'A'"), "31/12/2026");
  EXPECT_EQ(shop.text("SELECT Fecha FROM Muestras WHERE Codigo = 'B'"), "28/02/2026");
  EXPECT_EQ(shop.text("SELECT Fecha FROM Muestras WHERE Codigo = 'C'"), "28/02/2026 10:30:00");
  EXPECT_EQ(shop.text("SELECT Activo FROM Muestras WHERE Codigo = 'A'"), "Falso");
}

TEST_F(Model, AnEmptiedCellIsNullButATextMayBeEmpty) {
  WatchedModel model(open());
  EXPECT_TRUE(put(*model, 0, kNumber, ""));
  EXPECT_TRUE(put(*model, 0, kDay, QVariant()));
  EXPECT_TRUE(put(*model, 0, kName, ""));
  EXPECT_TRUE(put(*model, 1, kNotes, "")) << "Null stays Null";
  EXPECT_TRUE(model->submitAll());
  EXPECT_EQ(shop.text("SELECT Numero FROM Muestras WHERE Codigo = 'A'"), "Null");
  EXPECT_EQ(shop.text("SELECT Fecha FROM Muestras WHERE Codigo = 'A'"), "Null");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "");
  EXPECT_EQ(shop.text("SELECT Notas FROM Muestras WHERE Codigo = 'B'"), "Null");
}

TEST_F(Model, AValueThatIsThereAlreadyChangesNothing) {
  WatchedModel model(open());
  EXPECT_TRUE(put(*model, 0, kName, "Ana"));
  EXPECT_TRUE(put(*model, 2, kNumber, ""));
  EXPECT_FALSE(model->hasPendingChanges());
}

TEST_F(Model, RefusesATextThatIsWiderThanItsColumnAndSaysSo) {
  WatchedModel model(open());
  QSignalSpy failures(&*model, &RecordsetModel::failed);
  EXPECT_FALSE(put(*model, 0, kName, QString(21, 'x')));
  ASSERT_EQ(failures.count(), 1);
  const Failure& failure = model->lastFailure();
  EXPECT_EQ(failure.number, errors::kMultipleStep);
  EXPECT_EQ(failure.kind, ErrorKind::kValue);
  EXPECT_THAT((failure.text + failure.details).toStdString(), HasSubstr("Nombre"));
  EXPECT_EQ(display(*model, 0, kName), "Ana");
  EXPECT_FALSE(model->hasPendingChanges()) << "nothing of it stays";
  EXPECT_TRUE(put(*model, 0, kName, QString(20, QChar(0xF1)))) << "characters, not bytes";
}

TEST_F(Model, RefusesWhatIsNoValueOfTheColumn) {
  WatchedModel model(open());
  EXPECT_FALSE(put(*model, 0, kNumber, "mucho"));
  EXPECT_EQ(model->lastFailure().number, errors::kWrongType);
  EXPECT_FALSE(put(*model, 0, kShort, 40000));
  EXPECT_EQ(model->lastFailure().number, errors::kMultipleStep);
  EXPECT_FALSE(put(*model, 0, kDay, "31/02/2026"));
  EXPECT_FALSE(put(*model, 0, kName, QVariant::fromValue(static_cast<void*>(nullptr))));
  EXPECT_FALSE(model->setData(QModelIndex(), 1));
  EXPECT_FALSE(model->hasPendingChanges());
}

TEST_F(Model, ColumnsThatCannotBeWrittenAreReadOnly) {
  WatchedModel model(open("SELECT Codigo, Numero * 2 AS Doble, Foto, Nombre FROM Muestras"));
  EXPECT_TRUE(model->flags(model->index(0, 0)) & Qt::ItemIsEditable);
  EXPECT_FALSE(model->flags(model->index(0, 1)) & Qt::ItemIsEditable) << "computed";
  EXPECT_FALSE(model->flags(model->index(0, 2)) & Qt::ItemIsEditable) << "bytes";
  EXPECT_FALSE(put(*model, 0, 1, 3));
  model->setColumnReadOnly("Nombre");
  EXPECT_FALSE(put(*model, 0, 3, "Eva"));
  model->setColumnReadOnly("Nombre", false);
  EXPECT_TRUE(put(*model, 0, 3, "Eva"));
  WatchedModel reading(open()->Clone(LockType::kReadOnly));
  EXPECT_FALSE(put(*reading, 0, kName, "Eva"));
}

// ---- What is pending

TEST_F(Model, ChangesArePendingUntilTheyAreSubmitted) {
  WatchedModel model(open());
  QSignalSpy pending(&*model, &RecordsetModel::pendingChanged);
  put(*model, 0, kName, "Anabel");
  EXPECT_EQ(state(*model, 0), int(RowState::kModified));
  EXPECT_EQ(model->index(0, kName).data(RecordsetModel::kOriginalRole), QVariant("Ana"));
  EXPECT_TRUE(model->insertRow(3));
  put(*model, 3, kCode, "D");
  EXPECT_THAT(marks(*model), ElementsAre("*", "2", "3", "+"));
  EXPECT_TRUE(model->removeRow(1));
  EXPECT_THAT(shown(*model), ElementsAre("A", "C", "D"));
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras"), "3");
  EXPECT_TRUE(model->hasPendingChanges());
  EXPECT_TRUE(model->submitAll());
  EXPECT_THAT(marks(*model), ElementsAre("1", "2", "3"));
  EXPECT_FALSE(model->hasPendingChanges());
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Anabel");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras WHERE Codigo = 'B'"), "0");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras WHERE Codigo = 'D'"), "1");
  ASSERT_EQ(pending.count(), 2);
  EXPECT_EQ(pending[0][0], QVariant(true));
  EXPECT_EQ(pending[1][0], QVariant(false));
}

TEST_F(Model, RevertDropsAllThatIsPending) {
  WatchedModel model(open());
  put(*model, 0, kName, "Anabel");
  model->removeRows(1, 2);
  model->insertRow(1);
  put(*model, 1, kCode, "D");
  EXPECT_THAT(shown(*model), ElementsAre("A", "D"));
  EXPECT_TRUE(model->revertAll());
  EXPECT_THAT(shown(*model), ElementsAre("A", "B", "C"));
  EXPECT_EQ(display(*model, 0, kName), "Ana");
  EXPECT_FALSE(model->hasPendingChanges());
}

TEST_F(Model, ARowIsRevertedAlone) {
  WatchedModel model(open());
  put(*model, 0, kName, "Anabel");
  put(*model, 1, kName, "Beatriz");
  EXPECT_TRUE(model->revertRow(0));
  EXPECT_EQ(display(*model, 0, kName), "Ana");
  EXPECT_EQ(display(*model, 1, kName), "Beatriz");
  model->insertRow(3);
  EXPECT_TRUE(model->revertRow(3));
  EXPECT_EQ(model->rowCount(), 3);
  EXPECT_FALSE(model->revertRow(7));
}

TEST_F(Model, PendingRowsCanBeShownDeletedOnesAmongThem) {
  WatchedModel model(open());
  put(*model, 0, kName, "Anabel");
  model->removeRow(1);
  EXPECT_TRUE(model->setFilter(FilterGroup::kPending));
  EXPECT_THAT(shown(*model), ElementsAre("A", "B"));
  EXPECT_THAT(marks(*model), ElementsAre("*", "-"));
  EXPECT_EQ(display(*model, 1, kName), "Bea") << "as it was";
  EXPECT_FALSE(put(*model, 1, kName, "x"));
  EXPECT_TRUE(model->revertRow(1));
  EXPECT_TRUE(model->setFilter(FilterGroup::kNone));
  EXPECT_THAT(shown(*model), ElementsAre("A", "B", "C"));
}

TEST_F(Model, RowsComeAtTheEndOnly) {
  WatchedModel model(open());
  EXPECT_FALSE(model->insertRow(0));
  EXPECT_FALSE(model->insertRows(3, 0));
  EXPECT_TRUE(model->insertRows(3, 2));
  EXPECT_EQ(model->rowCount(), 5);
  EXPECT_EQ(model->currentRow(), 4);
  EXPECT_FALSE(model->removeRows(4, 2));
  EXPECT_TRUE(model->removeRows(3, 2));
  EXPECT_EQ(model->currentRow(), 2);
  EXPECT_FALSE(model->hasPendingChanges());
}

TEST_F(Model, ASubmitWritesWhatAFilterHides) {
  WatchedModel model(open());
  put(*model, 0, kName, "Anabel");
  EXPECT_TRUE(model->setFilter("Codigo = 'C'"));
  EXPECT_TRUE(model->submitAll());
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Anabel");
}

TEST_F(Model, RowsWrittenAtOnceAreWrittenWhenTheyAreLeft) {
  auto rows = std::make_shared<Recordset>();
  rows->LockType(LockType::kOptimistic);
  rows->Open(Statement::trusted(kAll), shop.apartment().openConnection(1));
  WatchedModel model(rows);
  put(*model, 0, kName, "Anabel");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Ana");
  EXPECT_TRUE(model->submit());
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Anabel");
  put(*model, 0, kName, "Anita");
  put(*model, 1, kName, "Beatriz");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Anita");
  model->revert();
  EXPECT_EQ(display(*model, 1, kName), "Bea");
  EXPECT_FALSE(model->insertRows(3, 2)) << "one at a time";
  EXPECT_TRUE(model->insertRow(3));
  put(*model, 3, kCode, "A");
  EXPECT_FALSE(model->submit()) << "the key is there";
  EXPECT_EQ(model->lastFailure().kind, ErrorKind::kIntegrity);
  EXPECT_EQ(model->rowCount(), 4) << "the row stays in edit";
  put(*model, 3, kCode, "D");
  EXPECT_TRUE(model->submit());
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras"), "4");
  EXPECT_TRUE(model->removeRow(3));
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras"), "3");
}

// ---- Order, filter, the set's own row

TEST_F(Model, SortsByTheSetAndKeepsTheCurrentRowAndIndexes) {
  WatchedModel model(open());
  model->setCurrentRow(1);
  const QPersistentModelIndex celia = model->index(2, kName);
  QSignalSpy layouts(&*model, &RecordsetModel::layoutChanged);
  model->sort(kCode, Qt::DescendingOrder);
  EXPECT_THAT(shown(*model), ElementsAre("C", "B", "A"));
  EXPECT_EQ(model->recordset()->Sort(), "[Codigo] DESC");
  EXPECT_EQ(model->currentRow(), 1);
  EXPECT_EQ(celia.row(), 0);
  EXPECT_EQ(celia.data(), QVariant("Celia"));
  EXPECT_EQ(layouts.count(), 1);
  model->sort(-1);
  EXPECT_THAT(shown(*model), ElementsAre("A", "B", "C"));
}

TEST_F(Model, AnEditedRowGoesToItsPlaceInTheOrder) {
  WatchedModel model(open());
  model->sort(kName);
  const QPersistentModelIndex ana = model->index(0, kName);
  QSignalSpy moves(&*model, &RecordsetModel::rowsMoved);
  put(*model, 0, kName, "Zoe");
  EXPECT_THAT(shown(*model), ElementsAre("B", "C", "A"));
  EXPECT_EQ(moves.count(), 1);
  EXPECT_EQ(ana.row(), 2);
  put(*model, 2, kName, "Bu");
  EXPECT_THAT(shown(*model), ElementsAre("B", "A", "C"));
}

TEST_F(Model, FiltersByTheSet) {
  WatchedModel model(open());
  EXPECT_TRUE(model->setFilter("Numero > 0"));
  EXPECT_THAT(shown(*model), ElementsAre("A", "B"));
  EXPECT_EQ(model->filter(), "Numero > 0");
  EXPECT_FALSE(model->setFilter("Numero >"));
  EXPECT_EQ(model->lastFailure().number, errors::kInvalidArgument);
  EXPECT_THAT(shown(*model), ElementsAre("A", "B")) << "the old one stays";
  QSignalSpy removals(&*model, &RecordsetModel::rowsRemoved);
  put(*model, 0, kNumber, -1);
  EXPECT_THAT(shown(*model), ElementsAre("B")) << "it fits no more";
  EXPECT_EQ(removals.count(), 1);
  EXPECT_TRUE(model->setFilter(""));
  EXPECT_EQ(model->rowCount(), 3);
}

TEST_F(Model, FollowsWhatIsDoneToTheSetItself) {
  const auto rows = open();
  WatchedModel model(rows);
  QSignalSpy current(&*model, &RecordsetModel::currentRowChanged);
  QSignalSpy data(&*model, &RecordsetModel::dataChanged);
  rows->MoveNext();
  EXPECT_EQ(model->currentRow(), 1);
  rows->Field("Nombre").Value("Belén");
  EXPECT_EQ(display(*model, 1, kName), "Belén") << "what is in edit shows";
  EXPECT_GE(data.count(), 1);
  rows->Update();
  rows->Sort("Nombre DESC");
  EXPECT_THAT(shown(*model), ElementsAre("C", "B", "A"));
  rows->AddNew();
  EXPECT_EQ(model->rowCount(), 4);
  rows->CancelUpdate();
  EXPECT_EQ(model->rowCount(), 3);
  rows->MoveFirst();
  rows->Delete();
  EXPECT_THAT(shown(*model), ElementsAre("B", "A"));
  rows->Requery();
  EXPECT_THAT(shown(*model), ElementsAre("C", "B", "A")) << "the order stays";
  EXPECT_GE(current.count(), 2);
  EXPECT_EQ(model->rowOf(model->index(2, 0).data(RecordsetModel::kBookmarkRole).toDouble()), 2);
  EXPECT_EQ(model->rowOf(0.5), -1);
}

TEST_F(Model, AListenerOfItMayChangeTheSetAgain) {
  WatchedModel model(open());
  bool done = false;
  QObject::connect(&*model, &RecordsetModel::rowsInserted, [&] {
    if (std::exchange(done, true)) return;
    put(*model, 0, kName, "Anabel");
    model->removeRow(1);
  });
  model->insertRow(3);
  EXPECT_EQ(display(*model, 0, kName), "Anabel");
  EXPECT_EQ(model->rowCount(), static_cast<int>(model->recordset()->RecordCount()));
}

}  // namespace
}  // namespace tavelor::qt::test
