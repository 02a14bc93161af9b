// SPDX-License-Identifier: MIT
// Forms: widgets bound to fields, and widgets that make a filter.
#include "tavelor/qt/form_mapper.hpp"

#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDateEdit>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QSpinBox>

#include "adapters/qt/tests/support.hpp"
#include "tavelor/qt/filter_mapper.hpp"
#include "tavelor/qt/widget_control.hpp"

namespace tavelor::qt::test {
namespace {

class Form : public QtTest {
 protected:
  Form() {
    samples.IniciaRs("todos");
    mapper.load();
    mapper.add(&code, "Código");
    mapper.add(&name, "Nombre");
    mapper.add(&notes, "Notas");
    mapper.add(&number, "Numero");
    mapper.add(&price, "Precio");
    mapper.add(&money, "Dinero");
    mapper.add(&active, "Activo");
    mapper.add(&day, "Fecha");
  }
  /// As somebody types, and goes on to the next widget.
  static void type(QLineEdit& line, const QString& text) {
    line.selectAll();
    line.del();
    QTest::keyClicks(&line, text);
    QTest::keyClick(&line, Qt::Key_Return);
  }
  template <typename Box>
  void enter(Box& box, const QString& text) {
    auto* line = box.template findChild<QLineEdit*>();
    line->selectAll();
    QTest::keyClick(&box, Qt::Key_Delete);
    QTest::keyClicks(&box, text);
  }
  Variant field(const char* column) { return samples.DataMember("Primary")->Field(column).Value(); }

  Sample samples;
  FormMapper mapper{samples};
  QLineEdit code, name, money;
  QPlainTextEdit notes;
  QSpinBox number;
  QDoubleSpinBox price;
  QCheckBox active;
  QDateEdit day;
};

TEST_F(Form, ShowsTheCurrentRowAndFollowsIt) {
  EXPECT_EQ(name.text(), "Ana");
  EXPECT_EQ(notes.toPlainText(), "Una nota");
  EXPECT_EQ(number.value(), 1);
  EXPECT_EQ(price.value(), 1.005) << "with as many decimals as it takes";
  EXPECT_EQ(money.text(), "1234,50");
  EXPECT_TRUE(active.isChecked());
  EXPECT_EQ(day.date(), QDate(2026, 3, 5));
  EXPECT_EQ(day.text(), "05/03/2026");
  samples.MoveLast();
  EXPECT_EQ(name.text(), "Celia");
  EXPECT_EQ(number.text(), "") << "Null";
  EXPECT_EQ(money.text(), "");
  EXPECT_FALSE(mapper.isEdited()) << "nothing was entered";
  samples.DataMember("Primary")->Field("Nombre").Value("Otra");
  EXPECT_EQ(name.text(), "Otra");
}

TEST_F(Form, WritesWhatIsEntered) {
  type(name, "Anabel");
  EXPECT_EQ(field("Nombre"), Variant("Anabel"));
  EXPECT_TRUE(mapper.isEdited());
  enter(number, "42");
  enter(price, "2,5");
  active.click();
  notes.setPlainText("Otra nota");
  type(money, "12,3456");
  day.setDate(QDate(2026, 11, 20));
  EXPECT_TRUE(mapper.submit());
  EXPECT_FALSE(mapper.isEdited());
  const auto stored = [&](const std::string& column) {
    return shop.text("SELECT " + column + " FROM Muestras WHERE Codigo = 'A'");
  };
  EXPECT_EQ(stored("Nombre"), "Anabel");
  EXPECT_EQ(stored("Numero"), "42");
  EXPECT_EQ(stored("Activo"), "Falso");
  EXPECT_EQ(stored("Notas"), "Otra nota");
  EXPECT_EQ(stored("Dinero"), "12,3456");
  EXPECT_EQ(stored("Fecha"), "20/11/2026");
}

TEST_F(Form, WhatIsEmptiedIsNull) {
  type(money, "");
  enter(number, "");
  day.setDate(day.minimumDate());
  EXPECT_TRUE(mapper.submit());
  for (const char* column : {"Dinero", "Numero", "Fecha"}) {
    EXPECT_EQ(shop.text("SELECT " + std::string(column) + " FROM Muestras WHERE Codigo = 'A'"),
              "Null")
        << column;
  }
}

TEST_F(Form, TakesTheKeysAndLengthsThatTheFrameTakes) {
  EXPECT_EQ(name.maxLength(), 20);
  EXPECT_EQ(code.maxLength(), 5);
  QLineEdit whole;
  mapper.add(&whole, "Numero");
  whole.selectAll();
  whole.del();
  QTest::keyClicks(&whole, "1x2a");
  EXPECT_EQ(whole.text(), "12") << "no letters in a number";
}

TEST_F(Form, AnEntryThatDoesNotFitIsRefusedAndKeepsTheRow) {
  QSignalSpy refusals(&mapper, &FormMapper::refused);
  QLineEdit when;
  mapper.add(&when, "Fecha");
  when.setText("31/02");
  QTest::keyClick(&when, Qt::Key_9);
  QTest::keyClick(&when, Qt::Key_Return);
  EXPECT_EQ(refusals.count(), 1);
  EXPECT_TRUE(when.property("refused").toBool());
  EXPECT_FALSE(mapper.submit());
  EXPECT_EQ(when.text(), "31/029") << "it stays to be mended";
  EXPECT_ANY_THROW(samples.MoveNext());
  EXPECT_EQ(name.text(), "Ana");
  EXPECT_TRUE(mapper.revert());
  EXPECT_EQ(when.text(), "05/03/2026");
  samples.MoveNext();
  EXPECT_EQ(name.text(), "Bea");
}

TEST_F(Form, WhatIsEnteredGoesWithItsRowWhenTheRowIsLeft) {
  name.selectAll();
  QTest::keyClicks(&name, "Anita");
  samples.MoveNext();
  EXPECT_EQ(name.text(), "Bea");
  samples.MoveFirst();
  EXPECT_EQ(name.text(), "Anita");
  EXPECT_EQ(field("Nombre"), Variant("Anita"));
}

TEST_F(Form, AConflictIsToldAndTheEntryStaysPending) {
  QSignalSpy conflicts(&mapper, &FormMapper::conflictFound);
  type(name, "Mine");
  shop.run("UPDATE Muestras SET Nombre = 'Suya' WHERE Codigo = 'A'");
  EXPECT_FALSE(mapper.submit());
  EXPECT_EQ(conflicts.count(), 1);
  EXPECT_EQ(name.text(), "Mine");
  EXPECT_EQ(mapper.lastFailure().number, errors::kRowNotLocated);
}

TEST_F(Form, AGridOnTheSameRowsSeesAnEntryAtOnce) {
  WatchedModel model(samples.DataMember("Primary"));
  type(name, "Anabel");
  EXPECT_EQ(display(*model, 0, kName), "Anabel");
  EXPECT_TRUE(put(*model, 0, kName, "Anita"));
  EXPECT_EQ(name.text(), "Anita");
}

TEST_F(Form, AddsARowWithTheNextCodeAndTakesItBack) {
  EXPECT_TRUE(mapper.addRow());
  EXPECT_NE(code.text(), "");
  EXPECT_EQ(name.text(), "");
  EXPECT_TRUE(mapper.revert());
  EXPECT_EQ(name.text(), "Ana");
  EXPECT_EQ(samples.DataMember("Primary")->RecordCount(), 3);
}

TEST_F(Form, WithoutARowOrAFieldAWidgetIsEmptyAndDisabled) {
  samples.AplyFilter("Numero = 999");
  EXPECT_EQ(name.text(), "");
  EXPECT_FALSE(name.isEnabled());
  samples.AplyFilter("");
  EXPECT_TRUE(name.isEnabled());
  QLineEdit none;
  EXPECT_TRUE(mapper.add(&none, "Nada"));
  EXPECT_FALSE(none.isEnabled());
  QProgressBar bar;
  EXPECT_FALSE(mapper.add(&bar, "Numero"));
  Sample unopened;
  FormMapper early(unopened);
  QLineEdit line;
  EXPECT_TRUE(early.add(&line, "Nombre"));
  EXPECT_FALSE(line.isEnabled());
  unopened.IniciaRs("todos");
  early.load();
  EXPECT_EQ(line.text(), "Ana");
}

TEST_F(Form, AWidgetMayGoFirst) {
  auto line = std::make_unique<QLineEdit>();
  mapper.add(line.get(), "Nombre");
  line.reset();
  samples.MoveNext();
  EXPECT_TRUE(mapper.submit());
}

TEST_F(Form, AComboShowsWhatBelongsToTheCode) {
  QComboBox combo;
  combo.addItem("Primera", "A");
  combo.addItem("Segunda", "B");
  mapper.add(&combo, "Código");
  EXPECT_EQ(combo.currentText(), "Primera");
  EXPECT_EQ(WidgetControl(&combo, "Código").kind(), ControlKind::kBoundCombo);
  EXPECT_EQ(WidgetControl(&combo, "Código").BoundText(), "A");
  samples.MoveLast();
  EXPECT_EQ(combo.currentIndex(), -1);
}

// ---- Filters

class Search : public QtTest {
 protected:
  Search() { samples.IniciaRs("todos"); }
  std::string made() { return filter.criteria().toStdString(); }
  int rows() { return samples.DataMember("Primary")->RecordCount(); }

  Sample samples;
  FilterMapper filter{samples};
  QLineEdit name, least, most, number;
  QCheckBox active;
};

TEST_F(Search, JoinsTheCriteriaOfTheWidgetsThatAreNotEmpty) {
  filter.add(&name, "Nombre");
  filter.add(&active, "Activo");
  filter.add(&number, "Numero", Comparison::kAtLeast);
  EXPECT_EQ(made(), "");
  name.setText("b");
  number.setText("1");
  EXPECT_EQ(made(), "Nombre Like 'b*' And Numero >= 1 ");
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 1);
  EXPECT_TRUE(filter.clear());
  EXPECT_EQ(name.text(), "");
  EXPECT_EQ(rows(), 3);
  active.setChecked(true);
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 2);
}

TEST_F(Search, WhatIsTypedIsDataAndReadByTheLocale) {
  filter.add(&name, "Nombre");
  filter.add(&least, "Precio", Comparison::kAtLeast);
  filter.add(&most, "Fecha", Comparison::kAtMost);
  name.setText("O'Hara' Or 'a");
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 0);
  name.clear();
  least.setText("1,5");
  EXPECT_EQ(made(), "Precio >= 1.5 ");
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 1);
  least.clear();
  most.setText("05/03/2026");
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 1) << "the fifth of March";
}

TEST_F(Search, MoneyShortNumbersAndMemosAreNoDates) {
  filter.add(&least, "Dinero", Comparison::kAtLeast);
  filter.add(&number, "Corto");
  filter.add(&name, "Notas");
  least.setText("0,1");
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 2);
  number.setText("10");
  name.setText("una");
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 1);
}

TEST_F(Search, AListIsOneOfItsEntries) {
  QListWidget list;
  list.addItems({"Ana", "Celia"});
  filter.add(&list, "Nombre");
  filter.add(&active, "Activo");
  active.setChecked(true);
  EXPECT_TRUE(filter.apply());
  EXPECT_EQ(rows(), 2);
}

TEST_F(Search, WhatDoesNotReadIsToldAndTheOldFilterStays) {
  QSignalSpy failures(&filter, &FilterMapper::failed);
  filter.add(&number, "Numero");
  number.setText("20");
  filter.apply();
  number.setText("veinte");
  bool ok = true;
  EXPECT_EQ(filter.criteria(&ok), "");
  EXPECT_FALSE(ok);
  EXPECT_FALSE(filter.apply());
  EXPECT_EQ(rows(), 1);
  EXPECT_EQ(failures.count(), 2);
  filter.add(&name, "Nada");
  number.clear();
  EXPECT_FALSE(filter.apply());
  EXPECT_EQ(filter.lastFailure().number, errors::kItemNotFound);
}

TEST_F(Search, CriteriaAreRemembered) {
  filter.add(&name, "Nombre");
  name.setText("C");
  EXPECT_TRUE(filter.remember("Filter"));
  EXPECT_EQ(rows(), 3);
  FilterMapper other(samples);
  EXPECT_TRUE(other.applyRemembered("Filter"));
  EXPECT_EQ(rows(), 1);
}

}  // namespace
}  // namespace tavelor::qt::test
