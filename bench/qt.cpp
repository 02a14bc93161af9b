// SPDX-License-Identifier: MIT
// The model of the Qt adapter beside Qt's SQL table model on the same rows, as a grid uses them.
// Qt's model fetches 256 rows at a time: all of its rows are fetched here, as ours are.
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlError>
#include <QtSql/QSqlTableModel>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>
#include <algorithm>
#include <ctime>
#include <stdexcept>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/qt/grid.hpp"
#include "tavelor/qt/recordset_model.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kRows = 100'000;
constexpr std::size_t kEdited = 10'000;
constexpr std::size_t kScrolled = 1'000'000;
constexpr int kText = 3;     // Texto3
constexpr int kAmount = 21;  // Doble1
constexpr double kFrame = 16;
constexpr double kMegabyte = 1e6;

void require(bool done, const QString& why) {
  if (!done) throw std::runtime_error("Qt: " + why.toStdString());
}

/// Qt's model, all rows fetched.
class TheirModel {
 public:
  TheirModel(const BenchShop& shop, const QString& name)
      : database_(QSqlDatabase::addDatabase("QSQLITE", name)) {
    database_.setDatabaseName(QString::fromStdString((shop.folder() / "floor.db").string()));
    require(database_.open(), database_.lastError().text());
  }

  double open() {
    model_ = std::make_unique<QSqlTableModel>(nullptr, database_);
    model_->setTable("Anchas");
    model_->setEditStrategy(QSqlTableModel::OnManualSubmit);
    return select();
  }
  void close() { model_.reset(); }
  double sort(int column) {
    model_->setSort(column, Qt::AscendingOrder);
    return select();
  }
  double filter(const QString& condition) {
    model_->setFilter(condition);
    return fetchAll();
  }
  void change(double value) {
    for (int row = 0; row < model_->rowCount(); ++row) {
      require(model_->setData(model_->index(row, kAmount), value + row), "a value is refused");
    }
  }
  double write() {
    database_.transaction();
    const bool written = model_->submitAll();
    database_.commit();
    require(written, model_->lastError().text());
    return fetchAll();
  }

 private:
  double select() {
    require(model_->select(), model_->lastError().text());
    return fetchAll();
  }
  double fetchAll() {
    while (model_->canFetchMore()) model_->fetchMore();
    return model_->rowCount();
  }

  QSqlDatabase database_;
  std::unique_ptr<QSqlTableModel> model_;
};

class OurModel {
 public:
  explicit OurModel(BenchShop& shop) : shop_(shop) {}

  double open() {
    model_ = std::make_unique<qt::RecordsetModel>(shop_.open("SELECT * FROM Anchas"));
    return model_->rowCount();
  }
  void close() { model_.reset(); }
  double sort(int column) {
    model_->sort(column);
    return model_->rowCount();
  }
  double filter(const QString& criteria) {
    require(model_->setFilter(criteria), model_->lastFailure().text);
    return model_->rowCount();
  }
  void change(double value) {
    for (int row = 0; row < model_->rowCount(); ++row) {
      require(model_->setData(model_->index(row, kAmount), value + row), "a value is refused");
    }
  }
  double write() {
    require(model_->submitAll(), model_->lastFailure().text);
    return model_->rowCount();
  }

 private:
  BenchShop& shop_;
  std::unique_ptr<qt::RecordsetModel> model_;
};

/// Bytes that a model has once it is open.
template <typename Model>
std::size_t heldBy(Model& model) {
  model.close();
  const std::size_t before = residentBytes();
  model.open();
  return residentBytes() - before;
}

void measureRows(Report& report, const Scale& scale) {
  BenchShop shop;
  const std::size_t rows = scale.of(kRows);
  addWideTable(shop, rows);
  shop.share();
  TheirModel theirs(shop, "floor");
  OurModel ours(shop);

  report.add(compare({"Qt: open 45 columns",
                      rows,
                      0.3,
                      {[&] { return theirs.open(); }, [&] { theirs.close(); }},
                      {[&] { return ours.open(); }, [&] { ours.close(); }}},
                     scale));
  report.add({"Qt: memory of 45 columns", rows, static_cast<double>(heldBy(theirs)) / kMegabyte,
              static_cast<double>(heldBy(ours)) / kMegabyte, "MB", 0});
  report.add(compare({"Qt: sort by a text",
                      rows,
                      0.05,
                      {[&] { return theirs.sort(kText); }, {}, [&] { theirs.sort(-1); }},
                      {[&] { return ours.sort(kText); }, {}, [&] { ours.sort(-1); }}},
                     scale));
  report.add(
      compare({"Qt: filter a text by its beginning",
               rows,
               0,
               {[&] { return theirs.filter("Texto3 LIKE 'ab%'"); }, {}, [&] { theirs.filter(""); }},
               {[&] { return ours.filter("Texto3 Like 'ab*'"); }, {}, [&] { ours.filter(""); }}},
              scale));
}

void measureEdits(Report& report, const Scale& scale) {
  BenchShop shop;
  const std::size_t rows = scale.of(kEdited);
  addWideTable(shop, rows);
  shop.share();
  TheirModel theirs(shop, "edited");
  OurModel ours(shop);
  theirs.open();
  ours.open();
  double turn = 0;
  // Theirs takes minutes.
  const Scale few{scale.quick, 1};
  const auto edit = [&turn](auto& model) {
    model.change(turn += 0.125);
    return model.write();
  };
  report.add(compare({"Qt: edit a column and write", rows, 0, {[&] { return edit(theirs); }}, {[&] {
                        return edit(ours);
                      }}},
                     few));
}

double processorTime() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Frames of a view that is dragged over all rows, then goes on by pages and by rows.
void measureScrolling(Report& report, const Scale& scale) {
  BenchShop shop;
  const std::size_t rows = scale.of(kScrolled);
  addLongTable(shop, rows);
  qt::RecordsetModel model(shop.open("SELECT * FROM Largas"));
  QTableView view;
  qt::bindGrid(view, model);
  view.resize(1000, 700);
  view.show();
  QApplication::processEvents();
  QScrollBar& bar = *view.verticalScrollBar();
  std::vector<double> frames;
  const auto show = [&](int value) {
    const double begin = processorTime();
    bar.setValue(value);
    view.viewport()->repaint();
    view.verticalHeader()->viewport()->repaint();
    QApplication::processEvents();
    frames.push_back(processorTime() - begin);
  };
  constexpr int kJumps = 400;
  for (int jump = 0; jump <= kJumps; ++jump) show(bar.maximum() / kJumps * jump);
  for (int page = 0; page < kJumps; ++page) show(bar.value() - bar.pageStep());
  for (int row = 0; row < kJumps; ++row) show(bar.value() + 1);
  model.sort(2);
  for (int jump = 0; jump <= kJumps; ++jump) show(bar.maximum() / kJumps * jump);
  std::sort(frames.begin(), frames.end());
  const auto late = frames.end() - std::upper_bound(frames.begin(), frames.end(), kFrame);
  report.add(
      Table{fmt::format("Qt: scrolling {} rows of 12 columns, a view of 1000 by 700 points", rows),
            {"frames", "median ms", "longest ms", "above 16 ms"},
            {{std::to_string(frames.size()), fmt::format("{:.2f}", frames[frames.size() / 2]),
              fmt::format("{:.2f}", frames.back()), std::to_string(late)}}});
}

}  // namespace

void measureQt(Report& report, const Scale& scale) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  int count = 0;
  const QApplication application(count, nullptr);
  measureRows(report, scale);
  measureScrolling(report, scale);
  measureEdits(report, scale);
}

}  // namespace tavelor::bench
