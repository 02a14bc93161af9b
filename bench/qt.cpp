// SPDX-License-Identifier: MIT
// The same works over Qt's SQL table model and its sorting and filtering proxy, which desktop
// programs often take: beside ours, in the place of what is done by hand.
#include <QtCore/QCoreApplication>
#include <QtCore/QRegularExpression>
#include <QtCore/QSortFilterProxyModel>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlTableModel>
#include <stdexcept>

#include "bench/shop.hpp"
#include "bench/works.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kRows = 100'000;
constexpr int kBatchRows = 200;  // 10,000 take minutes
constexpr int kText = 3;         // Texto3
constexpr int kAmount = 21;      // Doble1

class Model {
 public:
  explicit Model(const BenchShop& shop) : database_(QSqlDatabase::addDatabase("QSQLITE", "floor")) {
    database_.setDatabaseName(QString::fromStdString((shop.folder() / "floor.db").string()));
    if (!database_.open()) throw std::runtime_error("Qt can't open the database.");
  }

  double open() {
    model_ = std::make_unique<QSqlTableModel>(nullptr, database_);
    model_->setTable("Anchas");
    model_->setEditStrategy(QSqlTableModel::OnManualSubmit);
    model_->select();
    fetchAll();
    proxy_.setSourceModel(model_.get());
    return model_->rowCount();
  }

  double sort(int column) {
    proxy_.sort(column);
    return proxy_.rowCount();
  }
  void unsort() { proxy_.sort(-1); }

  double filter(const QString& expression) {
    proxy_.setFilterKeyColumn(kText);
    proxy_.setFilterRegularExpression(
        QRegularExpression(expression, QRegularExpression::CaseInsensitiveOption));
    return proxy_.rowCount();
  }
  void unfilter() { proxy_.setFilterRegularExpression(QRegularExpression()); }

  void change(double value) {
    fetchAll();  // writing has selected anew
    for (int row = 0; row < kBatchRows; ++row) {
      if (!model_->setData(model_->index(row, kAmount), value + row)) {
        throw std::runtime_error("Qt doesn't take a value.");
      }
    }
  }
  double write() {
    database_.transaction();
    const bool written = model_->submitAll();
    database_.commit();
    if (!written) throw std::runtime_error(model_->lastError().text().toStdString());
    return kBatchRows;
  }

 private:
  /// A table model fetches 256 rows by itself.
  void fetchAll() {
    while (model_->canFetchMore()) model_->fetchMore();
  }

  QSqlDatabase database_;
  std::unique_ptr<QSqlTableModel> model_;
  QSortFilterProxyModel proxy_;
};

}  // namespace

void measureQt(Report& report, const Scale& scale) {
  int count = 0;
  QCoreApplication application(count, nullptr);
  BenchShop shop;
  const std::size_t rows = std::max<std::size_t>(scale.of(kRows), kBatchRows);
  addWideTable(shop, rows);
  shop.share();
  Model model(shop);
  RecordsetPtr set;

  report.add(compare({"Qt: open 45 columns", rows, 0, {[&] { return model.open(); }}, {[&] {
                        set = shop.open("SELECT * FROM Anchas");
                        return static_cast<double>(set->RecordCount());
                      }}},
                     scale));
  report.add(compare({"Qt: sort by a text",
                      rows,
                      0,
                      {[&] { return model.sort(kText); }, {}, [&] { model.unsort(); }},
                      {[&] {
                         set->Sort("Texto3");
                         return static_cast<double>(set->RecordCount());
                       },
                       {},
                       [&] { set->Sort(""); }}},
                     scale));
  report.add(compare({"Qt: filter a text by its beginning",
                      rows,
                      0,
                      {[&] { return model.filter("^ab"); }, {}, [&] { model.unfilter(); }},
                      {[&] {
                         set->Filter("Texto3 Like 'ab*'");
                         return static_cast<double>(set->RecordCount());
                       },
                       {},
                       [&] { set->Filter(""); }}},
                     scale));
  double turn = 0;
  const auto changeOurs = [&] {
    turn += 0.125;
    set->MoveFirst();
    Field amount = set->Field(kAmount);
    for (int row = 0; row < kBatchRows; ++row) {
      amount.Value(turn + row);
      set->MoveNext();
    }
  };
  report.add(compare({"Qt: write a batch",
                      kBatchRows,
                      0,
                      {[&] { return model.write(); }, [&] { model.change(turn += 0.125); }},
                      {[&] {
                         set->UpdateBatch();
                         return static_cast<double>(kBatchRows);
                       },
                       changeOurs}},
                     scale));
}

}  // namespace tavelor::bench
