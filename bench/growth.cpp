// SPDX-License-Identifier: MIT
// Time a row from a thousand rows to a million: nothing may grow faster than n, or n log n to sort.
#include <array>
#include <functional>
#include <string>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"

namespace tavelor::bench {

namespace {

constexpr std::array<std::size_t, 4> kSizes{1'000, 10'000, 100'000, 1'000'000};

struct Work {
  std::string name;
  std::function<void(Recordset&)> run;
};

/// Nanoseconds a row, each size in a column.
void addRow(Table& table, const std::string& name, const std::array<double, kSizes.size()>& times) {
  std::vector<std::string> row{name};
  for (const double time : times) row.push_back(fmt::format("{:.1f}", time));
  row.push_back(fmt::format("{:.2f}", times.back() / times.front()));
  table.rows.push_back(std::move(row));
}

}  // namespace

void measureGrowth(Report& report, const Scale& scale) {
  BenchShop shop;
  addLongTable(shop, scale.of(kSizes.back()));
  shop.share();

  const std::array works{
      Work{"sort by a text", [](Recordset& set) { set.Sort("Texto3"); }},
      Work{"sort by a double", [](Recordset& set) { set.Sort("Doble1"); }},
      Work{"filter: text = and number >",
           [](Recordset& set) { set.Filter("Texto2 = 'FAMILIA 07' AND Doble1 > 500000"); }},
      Work{"filter: text Like 'ab*'", [](Recordset& set) { set.Filter("Texto3 Like 'ab*'"); }}};
  std::array<double, kSizes.size()> opening{};
  std::array<double, kSizes.size()> fetching{};
  std::array<std::array<double, kSizes.size()>, works.size()> times{};

  for (std::size_t s = 0; s < kSizes.size(); ++s) {
    const std::size_t rows = scale.of(kSizes[s]);
    Scale few = scale;
    if (kSizes[s] >= 1'000'000) few.rounds = std::min<std::size_t>(scale.rounds, 5);
    const double perRow = 1e6 / static_cast<double>(rows);
    const std::string statement = fmt::format("SELECT * FROM Largas WHERE Id <= {}", rows);
    RecordsetPtr set;
    opening[s] = perRow * measure({[&] {
                                     set = shop.open(statement);
                                     return 0.0;
                                   },
                                   {},
                                   [&] { set.reset(); }},
                                  few);
    driver::Query query = shop.floor().prepare(statement);
    driver::Rows byHand;
    fetching[s] = perRow * measure({[&] {
                                      byHand = query.fetch();
                                      return 0.0;
                                    },
                                    {},
                                    [&] { driver::Rows().swap(byHand); }},
                                   few);
    set = shop.open(statement);
    for (std::size_t w = 0; w < works.size(); ++w) {
      times[w][s] = perRow * measure({[&] {
                                        works[w].run(*set);
                                        return static_cast<double>(set->RecordCount());
                                      },
                                      {},
                                      [&] {
                                        set->Sort("");
                                        set->Filter("");
                                      }},
                                     few);
    }
  }

  Table table{"Growth: nanoseconds a row, 12 columns", {"work"}, {}};
  for (const std::size_t size : kSizes) table.columns.push_back(fmt::format("{}", scale.of(size)));
  table.columns.emplace_back("last / first");
  addRow(table, "open, by hand", fetching);
  addRow(table, "open", opening);
  for (std::size_t w = 0; w < works.size(); ++w) addRow(table, works[w].name, times[w]);
  report.add(std::move(table));
}

}  // namespace tavelor::bench
