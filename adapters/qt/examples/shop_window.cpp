// SPDX-License-Identifier: MIT
// A shop's window: articles as a grid that searches, sorts and edits, the same article as a form,
// and a till that sells what is typed.
//
//     shop_window [--folder FOLDER] [--screenshot FILE]
#include <QtCore/QCommandLineParser>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTableView>
#include <QtWidgets/QVBoxLayout>
#include <filesystem>
#include <iostream>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/qt/filter_mapper.hpp"
#include "tavelor/qt/form_mapper.hpp"
#include "tavelor/qt/grid.hpp"
#include "tavelor/qt/record_class_model.hpp"
#include "tavelor/qt/values.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace {

using tavelor::qt::Failure;
using tavelor::qt::FilterMapper;
using tavelor::qt::FormMapper;
using tavelor::qt::RecordClassModel;
using tavelor::qt::RecordsetModel;

constexpr const char* kKey = "todos";
constexpr const char* kTill = "01";

QString euros(double amount) {
  return tavelor::qt::toQString(
      tavelor::format(amount, "#,##0.00 €", *tavelor::qt::currentLocale()));
}

/// The articles, with a line to search them by.
class Articles : public QGroupBox {
 public:
  Articles(RecordClassModel& model, tavelor::clsArticulos& articles)
      : QGroupBox("Artículos"), filter_(articles) {
    auto* search = new QLineEdit;
    search->setPlaceholderText("Buscar por descripción…");
    search->setClearButtonEnabled(true);
    auto* active = new QCheckBox("Solo activos");
    filter_.add(search, "Descripción");
    filter_.add(active, "Activo");
    connect(search, &QLineEdit::textChanged, &filter_, &FilterMapper::apply);
    connect(active, &QCheckBox::toggled, &filter_, &FilterMapper::apply);

    model.setHeaderData(model.columnOf("Tarifa_A"), Qt::Horizontal, "PVP");
    model.setHeaderData(model.columnOf("Impuesto"), Qt::Horizontal, "IVA %");
    model.setColumnAlignment("Impuesto", Qt::AlignRight | Qt::AlignVCenter);
    view_ = new QTableView;
    bindGrid(*view_, model);
    view_->setAlternatingRowColors(true);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 8);
    if (!tavelor::qt::restoreColumns(*view_, model)) arrange(model);

    auto* save = new QPushButton("Guardar");
    auto* undo = new QPushButton("Deshacer");
    save->setEnabled(false);
    undo->setEnabled(false);
    connect(save, &QPushButton::clicked, &model, &RecordsetModel::submitAll);
    connect(undo, &QPushButton::clicked, &model, &RecordsetModel::revertAll);
    connect(&model, &RecordsetModel::pendingChanged, save, &QPushButton::setEnabled);
    connect(&model, &RecordsetModel::pendingChanged, undo, &QPushButton::setEnabled);

    auto* above = new QHBoxLayout;
    above->addWidget(search, 1);
    above->addWidget(active);
    above->addWidget(save);
    above->addWidget(undo);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(above);
    layout->addWidget(view_, 1);
  }

  QTableView& view() { return *view_; }

 private:
  /// The few columns that a till wants to see.
  void arrange(const RecordClassModel& model) {
    const QStringList shown{"Código",   "Descripción", "Familia", "Tarifa_A",
                            "Impuesto", "Existencia",  "Activo"};
    for (int column = 0; column < model.columnCount(); ++column) {
      view_->setColumnHidden(column, !shown.contains(model.columnName(column)));
    }
    QHeaderView& header = *view_->horizontalHeader();
    for (int place = 0; place < shown.size(); ++place) {
      header.moveSection(header.visualIndex(model.columnOf(shown[place])), place);
    }
    view_->resizeColumnsToContents();
    header.setSectionResizeMode(model.columnOf("Descripción"), QHeaderView::Stretch);
  }

  FilterMapper filter_;
  QTableView* view_;
};

/// The article on which the grid stands.
class Article : public QGroupBox {
 public:
  explicit Article(tavelor::clsArticulos& articles) : QGroupBox("Ficha"), mapper_(articles) {
    auto* layout = new QFormLayout(this);
    const auto add = [&](const char* label, QWidget* widget, const char* field) {
      mapper_.add(widget, field);
      layout->addRow(label, widget);
    };
    const auto number = [] {
      auto* line = new QLineEdit;
      line->setAlignment(Qt::AlignRight);
      return line;
    };
    add("Código", new QLineEdit, "Código");
    add("Descripción", new QLineEdit, "Descripción");
    add("Referencia", new QLineEdit, "Referencia");
    add("Familia", new QLineEdit, "Familia");
    add("PVP", number(), "Tarifa_A");
    add("Coste", number(), "Coste");
    add("IVA %", number(), "Impuesto");
    add("Mínimo", number(), "Mínimo");
    add("", new QCheckBox("Activo"), "Activo");
    auto* save = new QPushButton("Guardar ficha");
    connect(save, &QPushButton::clicked, &mapper_, &FormMapper::submit);
    layout->addRow("", save);
  }

  FormMapper& mapper() { return mapper_; }

 private:
  FormMapper mapper_;
};

/// Lines typed as "2 PAN" or "PAN", and sold together.
class Till : public QGroupBox {
 public:
  explicit Till(RecordClassModel& articles) : QGroupBox("Caja 01"), articles_(articles) {
    shop_.openTills({kTill});
    shop_.recover();
    lines_.Fields().Append("Artículo", tavelor::DataType::kVarWChar, 20);
    lines_.Fields().Append("Descripción", tavelor::DataType::kVarWChar, 255);
    lines_.Fields().Append("Cantidad", tavelor::DataType::kDouble);
    lines_.Fields().Append("Precio", tavelor::DataType::kCurrency);
    lines_.Fields().Append("Importe", tavelor::DataType::kCurrency);
    lines_.Open();
    // The set lives in this object.
    shown_.setRecordset(tavelor::RecordsetPtr(&lines_, [](tavelor::Recordset*) {}));
    entry_ = new QLineEdit;
    entry_->setPlaceholderText("Cantidad y código: 2 PAN");
    connect(entry_, &QLineEdit::returnPressed, this, [this] { enter(); });
    auto* view = new QTableView;
    bindGrid(*view, shown_);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->verticalHeader()->hide();
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 8);
    view->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    total_ = new QLabel(euros(0));
    QFont large = total_->font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    total_->setFont(large);
    auto* pay = new QPushButton("Cobrar en efectivo");
    connect(pay, &QPushButton::clicked, this, [this] { sell(); });
    auto* below = new QHBoxLayout;
    below->addWidget(entry_, 1);
    below->addWidget(total_);
    below->addWidget(pay);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(view, 1);
    layout->addLayout(below);
  }

  /// What is typed, as the line of the till does it.
  void type(const QString& text) {
    entry_->setText(text);
    enter();
  }
  void sell();
  /// Tells the person at the till.
  std::function<void(const QString&)> say = [](const QString&) {};

 private:
  void enter();

  RecordClassModel& articles_;
  tavelor::flows::Shop shop_;
  tavelor::flows::Sale sale_;
  tavelor::Recordset lines_;
  RecordsetModel shown_;
  QLineEdit* entry_;
  QLabel* total_;
};

void Till::enter() {
  const QString text = entry_->text().simplified();
  if (text.isEmpty()) return;
  try {
    const QString first = text.section(' ', 0, 0);
    const bool hasQuantity = text.contains(' ');
    const tavelor::Variant quantity =
        hasQuantity ? tavelor::Variant(tavelor::qt::toText(first)) : tavelor::Variant(1.0);
    const QString code = hasQuantity ? text.section(' ', 1) : text;
    tavelor::flows::SaleLine line =
        shop_.price({.article = tavelor::qt::toText(code),
                     .quantity = quantity.toDouble(*tavelor::qt::currentLocale())});
    lines_.AddNew({"Artículo", "Descripción", "Cantidad", "Precio", "Importe"},
                  {line.code, line.description, line.quantity, line.price, line.amount()});
    sale_.lines.push_back(std::move(line));
    total_->setText(euros(sale_.total()));
    entry_->clear();
  } catch (const tavelor::Error& error) {
    say(tavelor::qt::toQString(error.description()));
  }
}

void Till::sell() {
  if (sale_.lines.empty()) return;
  try {
    sale_.till = kTill;
    sale_.day = tavelor::Apartment::current().clock().today();
    sale_.payment = "1";
    sale_.delivered = sale_.total();
    sale_.reference = QDateTime::currentDateTime().toString("yyyyMMdd-hhmmss-zzz").toStdString();
    const double ticket = shop_.sell(sale_).value();
    say(QString("Ticket %1: %2").arg(ticket).arg(euros(sale_.total())));
    sale_ = {};
    while (shown_.rowCount() > 0) shown_.removeRow(0);
    total_->setText(euros(0));
    articles_.requery();  // what is left of them
  } catch (const tavelor::flows::RefusedSale& refused) {
    say(tavelor::qt::toQString(refused.faults().front().reason));
  } catch (const tavelor::Error& error) {
    say(tavelor::qt::toQString(error.description()));
  }
}

/// A shop to look at, where there is none.
void fill(tavelor::clsArticulos& articles) {
  struct Sample {
    const char* code;
    const char* name;
    const char* family;
    double price;
    double cost;
    const char* tax;
    double stock;
    bool active;
  };
  const Sample samples[] = {
      {"ACEITE", "Aceite de oliva virgen extra 1 l", "Despensa", 9.95, 7.4, "4", 36, true},
      {"AGUA", "Agua mineral 1,5 l", "Bebidas", 0.65, 0.31, "10", 240, true},
      {"ATUN", "Conserva de atún en aceite", "Despensa", 4.5, 3.12, "10", 58, true},
      {"CAFE", "Café molido natural 250 g", "Desayuno", 2.75, 1.9, "10", 44, true},
      {"JAMON", "Jamón ibérico de bellota, pieza", "Embutidos", 1249.9, 980, "10", 2, true},
      {"LECHE", "Leche entera 1 l", "Desayuno", 1.05, 0.72, "4", 120, true},
      {"PAN", "Barra de pan", "Panadería", 1.1, 0.45, "4", 25.5, true},
      {"QUESO", "Queso curado de oveja", "Quesos", 17.8, 12.25, "4", 6.375, true},
      {"TURRON", "Turrón de Jijona 300 g", "Navidad", 6.2, 4.1, "10", 0, false},
      {"VINO", "Vino tinto crianza 75 cl", "Bebidas", 7.35, 4.88, "21", 90, true},
  };
  const auto rows = articles.DataMember("Primary");
  for (const Sample& each : samples) {
    rows->AddNew({"Código", "Descripción", "Familia", "Tarifa_A", "Coste", "Impuesto", "Existencia",
                  "Activo", "Control", "Restar_Stock"},
                 {each.code, each.name, each.family, each.price, each.cost, each.tax, each.stock,
                  each.active, true, true});
  }
  rows->UpdateBatch();
}

class Window : public QMainWindow {
 public:
  explicit Window(tavelor::clsArticulos& articles)
      : model_(articles, kKey),
        grid_(new Articles(model_, articles)),
        form_(new Article(articles)),
        till_(new Till(model_)) {
    const auto tell = [this](const Failure& failure) { statusBar()->showMessage(failure.text); };
    connect(&model_, &RecordsetModel::failed, this, tell);
    connect(&form_->mapper(), &FormMapper::failed, this, tell);
    connect(&form_->mapper(), &FormMapper::refused, this,
            [this](QWidget*, const QString& reason) { statusBar()->showMessage(reason); });
    till_->say = [this](const QString& text) { statusBar()->showMessage(text); };
    auto* left = new QVBoxLayout;
    left->addWidget(grid_, 3);
    left->addWidget(till_, 2);
    auto* all = new QWidget;
    auto* layout = new QHBoxLayout(all);
    layout->addLayout(left, 1);
    layout->addWidget(form_);
    form_->setFixedWidth(290);
    setCentralWidget(all);
    setWindowTitle("Colmado Rius");
    resize(1120, 700);
    statusBar()->showMessage(QString("%1 artículos").arg(model_.rowCount()));
  }
  ~Window() override { tavelor::qt::rememberColumns(grid_->view(), model_); }

  RecordClassModel& model() { return model_; }
  Till& till() { return *till_; }

 private:
  RecordClassModel model_;
  Articles* grid_;
  Article* form_;
  Till* till_;
};

/// What a person would have done before a picture is taken.
void work(Window& window) {
  RecordClassModel& model = window.model();
  const auto at = [&](int row, const char* column) {
    return model.index(row, model.columnOf(column));
  };
  window.till().type("2 CAFE");
  window.till().type("VINO");
  window.till().sell();
  model.setCurrentRow(5);
  model.setData(at(5, "Tarifa_A"), "1,15");
  model.setData(at(8, "Activo"), true);
  window.till().type("3 PAN");
  window.till().type("0,375 QUESO");
  window.till().type("JAMON");
}

}  // namespace

int main(int count, char** arguments) {
  const QApplication application(count, arguments);
  QCommandLineParser parser;
  parser.addHelpOption();
  const QCommandLineOption folder("folder", "The installation; made where there is none.", "FOLDER",
                                  "shop");
  const QCommandLineOption screenshot("screenshot", "Works a little, keeps a picture and ends.",
                                      "FILE");
  parser.addOptions({folder, screenshot});
  parser.process(application);
  try {
    const std::string path = parser.value(folder).toStdString();
    const bool isNew = !std::filesystem::exists(path);
    tavelor::Apartment apartment(isNew ? tavelor::Installation::create(path)
                                       : tavelor::Installation::open(path));
    if (isNew) {
      tavelor::flows::seedCatalogues();
      tavelor::flows::setIssuer({.name = "Colmado Rius", .fiscalNumber = "12345678Z"});
    }
    tavelor::clsArticulos articles;
    articles.IniciaRs(kKey);
    if (isNew) fill(articles);
    articles.Requery(kKey);
    Window window(articles);
    window.show();
    if (!parser.isSet(screenshot)) return QApplication::exec();
    work(window);
    QApplication::processEvents();
    const bool kept = window.grab().save(parser.value(screenshot));
    std::cout << window.model().rowCount() << " articles, a picture is " << (kept ? "" : "not ")
              << "kept\n";
    return kept ? 0 : 1;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
