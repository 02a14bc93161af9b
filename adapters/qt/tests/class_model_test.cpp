// SPDX-License-Identifier: MIT
// Grids over a record class: its rules, and what is remembered under its word.
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTableView>

#include "adapters/qt/tests/support.hpp"
#include "tavelor/qt/grid.hpp"
#include "tavelor/qt/record_class_model.hpp"

namespace tavelor::qt::test {
namespace {

using testing::ElementsAre;

class ClassModel : public QtTest {
 protected:
  ClassModel() { samples.IniciaRs("todos"); }
  Sample samples;
};

TEST_F(ClassModel, AnOrderIsTheClassesAndIsRememberedUnderItsWord) {
  {
    Watched<RecordClassModel> model(samples, "todos");
    model->sort(kName, Qt::DescendingOrder);
    EXPECT_THAT(shown(*model), ElementsAre("C", "B", "A"));
    EXPECT_EQ(samples.DataMember("Primary")->Sort(), "Nombre DESC");
  }
  Sample again;
  again.IniciaRs("todos");
  Watched<RecordClassModel> model(again, "todos");
  EXPECT_THAT(shown(*model), ElementsAre("C", "B", "A"));
  EXPECT_EQ(model->rememberedColumn(), kName);
  EXPECT_EQ(model->rememberedOrder(), Qt::DescendingOrder);
  QTableView view;
  bindGrid(view, *model);
  EXPECT_THAT(shown(*model), ElementsAre("C", "B", "A")) << "binding sorts nothing";
  EXPECT_EQ(view.horizontalHeader()->sortIndicatorSection(), kName);
  view.horizontalHeader()->setSortIndicator(kCode, Qt::AscendingOrder);
  EXPECT_THAT(shown(*model), ElementsAre("A", "B", "C"));
}

TEST_F(ClassModel, ColumnsOfAViewAreRemembered) {
  Watched<RecordClassModel> model(samples, "todos");
  {
    QTableView view;
    bindGrid(view, *model);
    EXPECT_FALSE(restoreColumns(view, *model)) << "nothing yet";
    view.setColumnWidth(kName, 211);
    view.setColumnHidden(kNotes, true);
    view.horizontalHeader()->moveSection(kMoney, 1);
    EXPECT_TRUE(rememberColumns(view, *model));
  }
  QTableView view;
  bindGrid(view, *model);
  EXPECT_EQ(view.columnWidth(kName), 211);
  EXPECT_TRUE(view.isColumnHidden(kNotes));
  EXPECT_EQ(view.horizontalHeader()->visualIndex(kMoney), 1);
  EXPECT_EQ(samples.GetFilter("todos"), "") << "beside filter and order";
}

TEST_F(ClassModel, RowsComeAndGoAsTheClassHasThem) {
  Watched<RecordClassModel> model(samples, "todos");
  ASSERT_TRUE(model->insertRow(3));
  EXPECT_NE(display(*model, 3, kCode), "") << "the next code";
  put(*model, 3, kCode, "D");
  EXPECT_TRUE(model->submitAll());
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras"), "4");
  EXPECT_TRUE(model->removeRow(0));
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Muestras"), "3") << "this class writes at once";
}

TEST_F(ClassModel, RowsFetchedOrOpenedAnewAreShown) {
  Watched<RecordClassModel> model(samples, "todos");
  shop.run("INSERT INTO Muestras (Codigo) VALUES ('D')");
  EXPECT_TRUE(model->requery());
  EXPECT_EQ(model->rowCount(), 4);
  samples.IniciaRs("corto");
  model->load();
  EXPECT_EQ(model->columnCount(), 2);
}

TEST_F(ClassModel, TheSetsRowAndTheViewsAreOne) {
  Watched<RecordClassModel> model(samples, "todos");
  QTableView view;
  bindGrid(view, *model);
  view.setCurrentIndex(model->index(2, kName));
  EXPECT_EQ(samples.AbsolutePosition(), 3);
  samples.MoveFirst();
  EXPECT_EQ(view.currentIndex().row(), 0);
  EXPECT_EQ(view.currentIndex().column(), kName) << "in the same column";
}

TEST_F(ClassModel, TheEditorKnowsNullDecimalsAndWidths) {
  Watched<RecordClassModel> model(samples, "todos");
  QTableView view;
  bindGrid(view, *model);
  const RecordsetDelegate delegate;
  QStyleOptionViewItem option;
  const auto edited = [&](int row, int column, const QString& typed) {
    const QModelIndex index = model->index(row, column);
    const std::unique_ptr<QWidget> editor(delegate.createEditor(&view, option, index));
    auto* line = qobject_cast<QLineEdit*>(editor.get());
    delegate.setEditorData(line, index);
    const QString before = line->text();
    if (!typed.isNull()) {
      line->selectAll();
      line->insert(typed);
      line->setModified(true);
    }
    delegate.setModelData(line, &*model, index);
    return before.toStdString();
  };
  EXPECT_EQ(edited(0, kPrice, {}), "1,005") << "all decimals";
  EXPECT_FALSE(model->hasPendingChanges()) << "opened and left";
  edited(0, kPrice, "1,0075");
  EXPECT_EQ(model->index(0, kPrice).data(Qt::EditRole), QVariant(1.0075));
  edited(0, kPrice, "");
  EXPECT_FALSE(model->index(0, kPrice).data(Qt::EditRole).isValid());
  edited(0, kName, QString(30, 'x'));
  EXPECT_EQ(display(*model, 0, kName), std::string(20, 'x')) << "no more than the column";
}

TEST_F(ClassModel, APageIsWrittenOfTheColumnsThatAViewShows) {
  Watched<RecordClassModel> model(samples, "todos");
  model->setHeaderData(kMoney, Qt::Horizontal, "Importe");
  QTableView view;
  bindGrid(view, *model);
  view.setColumnHidden(kNotes, true);
  const ViewColumns columns(view);
  EXPECT_EQ(columns.Count(), 10);
  EXPECT_FALSE(columns.Item(kNotes).visible);
  EXPECT_EQ(columns.Item(kMoney).caption, "Importe");
  EXPECT_EQ(columns.Item(kMoney).alignment, 1);
  EXPECT_EQ(columns.Item(kName).alignment, 3);
  EXPECT_EQ(columns.Item(kDay).alignment, 2);
  samples.ToHtmlGrid(columns, true, "todos");
}

}  // namespace
}  // namespace tavelor::qt::test
