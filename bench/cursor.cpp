// SPDX-License-Identifier: MIT
// Opening, sorting, filtering and writing back the rows of a wide table.
#include <algorithm>
#include <array>
#include <numeric>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/frame/record_class.hpp"

namespace tavelor::bench {

namespace {

using driver::Cell;
using driver::Rows;
using Order = std::vector<std::uint32_t>;

constexpr std::size_t kRows = 100'000;
constexpr std::size_t kBatchRows = 10'000;
constexpr char kAll[] = "SELECT * FROM Anchas";

// Places of columns in the table.
constexpr std::size_t kCode = 1;     // Texto1
constexpr std::size_t kFamily = 2;   // Texto2
constexpr std::size_t kText = 3;     // Texto3
constexpr std::size_t kAmount = 21;  // Doble1

double idOf(const Rows& rows, std::uint32_t row) {
  return static_cast<double>(std::get<std::int64_t>(rows[row][0]));
}

double idOf(Recordset& set) {
  return *set.Field(0).Value().getIf<std::int32_t>();
}

void measureOpen(BenchShop& shop, Report& report, const Scale& scale, std::size_t rows) {
  driver::Query query = shop.floor().prepare(kAll);
  Rows byHand;
  RecordsetPtr set;
  const Comparison open{"open 45 columns",
                        rows,
                        0.60,
                        {[&] {
                           byHand = query.fetch();
                           return static_cast<double>(byHand.size()) + idOf(byHand, 0);
                         },
                         {},
                         [&] { Rows().swap(byHand); }},
                        {[&] {
                           set = shop.open(kAll);
                           return set->RecordCount() + idOf(*set);
                         },
                         {},
                         [&] { set.reset(); }}};
  report.add(compare(open, scale));
  // What nobody gets below: the engine gives every cell, and none is kept.
  report.add(compare({"open 45 columns (by hand: cells read, none kept)",
                      rows,
                      0,
                      {[&] { return static_cast<double>(query.readThrough()); }},
                      {[&] {
                         set = shop.open(kAll);
                         return static_cast<double>(set->RecordCount());
                       },
                       {},
                       [&] { set.reset(); }}},
                     scale));

  const std::size_t empty = residentBytes();
  byHand = query.fetch();
  const std::size_t withHand = residentBytes();
  Rows().swap(byHand);
  const std::size_t emptyAgain = residentBytes();
  set = shop.open(kAll);
  const std::size_t withSet = residentBytes();
  constexpr double kMebibyte = 1024.0 * 1024.0;
  report.add({"memory of 45 columns", rows, static_cast<double>(withHand - empty) / kMebibyte,
              static_cast<double>(withSet - emptyAgain) / kMebibyte, "MiB", 0.50});
}

/// Sorts row numbers, as anybody would who has to keep the rows where they are.
Order sorted(const Rows& rows, std::size_t column) {
  Order order(rows.size());
  std::iota(order.begin(), order.end(), 0U);
  std::stable_sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return rows[a][column] < rows[b][column];
  });
  return order;
}

Comparison sortWork(std::string name, Recordset& set, const Rows& rows, std::size_t column,
                    double target) {
  const std::string field = set.Field(static_cast<std::int32_t>(column)).Name();
  return {std::move(name),
          rows.size(),
          target,
          {[&rows, column] {
            const Order order = sorted(rows, column);
            return idOf(rows, order.front()) + 2 * idOf(rows, order.back());
          }},
          {[&set, field] {
             set.Sort(field);
             const double first = idOf(set);
             set.MoveLast();
             return first + 2 * idOf(set);
           },
           {},
           [&set] { set.Sort(""); }}};
}

template <typename Test>
Comparison filterWork(std::string name, Recordset& set, const Rows& rows, std::string criteria,
                      Test test) {
  return {std::move(name),
          rows.size(),
          2.0,
          {[&rows, test] {
            Order hits;
            for (std::uint32_t i = 0; i < rows.size(); ++i) {
              if (test(rows[i])) hits.push_back(i);
            }
            return static_cast<double>(hits.size());
          }},
          {[&set, criteria] {
             set.Filter(criteria);
             return static_cast<double>(set.RecordCount());
           },
           {},
           [&set] { set.Filter(""); }}};
}

/// A prefix without regard to the case of ASCII letters.
bool startsWith(const std::string& text, std::string_view lowerPrefix) {
  return text.size() >= lowerPrefix.size() &&
         std::equal(lowerPrefix.begin(), lowerPrefix.end(), text.begin(), [](char p, char t) {
           return p == (t >= 'A' && t <= 'Z' ? static_cast<char>(t + ('a' - 'A')) : t);
         });
}

constexpr std::array kModes = {Mode{kAnyOtherWord, kAll}};
constexpr ClassInfo kInfo = {
    .word = "Anchas", .table = "Anchas", .codeColumn = "Id", .modes = kModes};

class WideRows final : public OpensByWord {
 public:
  WideRows() : OpensByWord(kInfo) {}
  std::string typeName() const override { return "WideRows"; }
};

/// The same as a form asks for it: through the class, which remembers the order as well.
void measureClassViews(Report& report, const Scale& scale, const Rows& rows) {
  WideRows wide;
  wide.IniciaRs();
  Recordset& set = *wide.DataMember("Primary");

  Comparison order = sortWork("SetOrder by a text", set, rows, kText, 1.0);
  bool other = false;
  order.ours.work = [&] {
    other = !other;  // another text to be stored, the same order
    wide.SetOrder(kText, other ? " ASC" : "", "todos");
    const double first = idOf(set);
    set.MoveLast();
    return first + 2 * idOf(set);
  };
  report.add(compare(order, scale));

  const std::string criteria = "Doble1 > 500000";
  Comparison filter =
      filterWork("AplyFilter: number >", set, rows, criteria, [](const std::vector<Cell>& row) {
        const auto* number = std::get_if<double>(&row[kAmount]);
        return number != nullptr && *number > 500'000;
      });
  filter.ours.work = [&] {
    wide.AplyFilter(criteria);
    return static_cast<double>(set.RecordCount());
  };
  report.add(compare(filter, scale));
}

void measureViews(BenchShop& shop, Report& report, const Scale& scale) {
  const Rows rows = shop.floor().prepare(kAll).fetch();
  const RecordsetPtr set = shop.open(kAll);
  report.add(compare(sortWork("sort by a text", *set, rows, kText, 1.0), scale));
  report.add(compare(sortWork("sort by a text, same beginnings", *set, rows, kCode, 1.0), scale));
  report.add(
      compare(sortWork("sort by a text, few different ones", *set, rows, kFamily, 1.0), scale));
  report.add(compare(sortWork("sort by a double", *set, rows, kAmount, 1.0), scale));

  const std::string family = "FAMILIA 07";
  report.add(compare(filterWork("filter: text = and number >", *set, rows,
                                "Texto2 = 'FAMILIA 07' AND Doble1 > 500000",
                                [&family](const std::vector<Cell>& row) {
                                  const auto* text = std::get_if<std::string>(&row[kFamily]);
                                  const auto* number = std::get_if<double>(&row[kAmount]);
                                  return text != nullptr && *text == family && number != nullptr &&
                                         *number > 500'000;
                                }),
                     scale));
  report.add(compare(filterWork("filter: number >", *set, rows, "Doble1 > 500000",
                                [](const std::vector<Cell>& row) {
                                  const auto* number = std::get_if<double>(&row[kAmount]);
                                  return number != nullptr && *number > 500'000;
                                }),
                     scale));
  report.add(compare(filterWork("filter: text Like 'ab*'", *set, rows, "Texto3 Like 'ab*'",
                                [](const std::vector<Cell>& row) {
                                  const auto* text = std::get_if<std::string>(&row[kText]);
                                  return text != nullptr && startsWith(*text, "ab");
                                }),
                     scale));
  measureClassViews(report, scale, rows);
}

/// Text and number that a row gets in a turn; each turn has others.
std::string textOf(std::size_t turn, std::size_t row) {
  return fmt::format("changed in turn {} row {}", turn, row);
}
double numberOf(std::size_t turn, std::size_t row) {
  return static_cast<double>(row) + static_cast<double>(turn) / 8.0;
}

/// The prepared UPDATE that is run a row, with what it has to bind made beforehand.
class BatchByHand {
 public:
  BatchByHand(driver::Database& database, std::size_t rows, bool checksOriginals)
      : database_(database),
        checks_(checksOriginals),
        update_(database.prepare(checksOriginals
                                     ? "UPDATE Anchas SET Texto3 = ?, Doble2 = ? WHERE Id = ? AND "
                                       "Texto3 = ? AND Doble2 = ?"
                                     : "UPDATE Anchas SET Texto3 = ?, Doble2 = ? WHERE Id = ?")) {
    for (auto& row :
         database.prepare(fmt::format("SELECT Texto3, Doble2 FROM Anchas WHERE Id <= {}", rows))
             .fetch()) {
      now_.push_back({std::get<std::string>(row[0]), std::get<double>(row[1])});
    }
    next_ = now_;
  }

  void change() {
    ++turn_;
    for (std::size_t i = 0; i < next_.size(); ++i) {
      next_[i] = {textOf(turn_, i), numberOf(turn_, i)};
    }
  }

  double write() {
    std::int64_t written = 0;
    database_.execute("BEGIN IMMEDIATE");
    for (std::size_t i = 0; i < next_.size(); ++i) {
      update_.bind(1, std::string_view(next_[i].text)).bind(2, next_[i].number);
      update_.bind(3, static_cast<std::int64_t>(i + 1));
      if (checks_) update_.bind(4, std::string_view(now_[i].text)).bind(5, now_[i].number);
      written += update_.run();
    }
    database_.execute("COMMIT");
    now_.swap(next_);
    return static_cast<double>(written);
  }

 private:
  struct Values {
    std::string text;
    double number;
  };
  driver::Database& database_;
  bool checks_;
  driver::Query update_;
  std::vector<Values> now_;
  std::vector<Values> next_;
  std::size_t turn_ = 0;
};

void measureBatch(BenchShop& shop, Report& report, const Scale& scale) {
  const std::size_t rows = scale.of(kBatchRows);
  const RecordsetPtr set = shop.open(fmt::format("SELECT * FROM Anchas WHERE Id <= {}", rows));
  std::size_t turn = 100;
  const auto change = [&] {
    ++turn;
    set->MoveFirst();
    for (std::size_t i = 0; !set->Eof(); ++i, set->MoveNext()) {
      set->Field("Texto3").Value(textOf(turn, i));
      set->Field("Doble2").Value(numberOf(turn, i));
    }
    set->MoveFirst();
  };
  const Side ours{[&] {
                    set->UpdateBatch();
                    return static_cast<double>(set->RecordCount());
                  },
                  change};
  for (const bool checks : {true, false}) {
    BatchByHand byHand(shop.floor(), rows, checks);
    report.add(compare({checks ? "write a batch" : "write a batch, by hand without conflict check",
                        rows,
                        checks ? 1.5 : 0,
                        {[&] { return byHand.write(); }, [&] { byHand.change(); }},
                        ours},
                       scale));
  }
}

}  // namespace

void measureCursor(Report& report, const Scale& scale) {
  const std::size_t rows = scale.of(kRows);
  BenchShop shop;
  addWideTable(shop, rows);
  shop.share();
  measureOpen(shop, report, scale, rows);
  measureViews(shop, report, scale);
  measureBatch(shop, report, scale);
}

}  // namespace tavelor::bench
