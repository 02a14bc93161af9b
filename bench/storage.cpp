// SPDX-License-Identifier: MIT
// What dates, money and flags cost by the way they are stored: the figures behind the choice.
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>
#include <sqlite3.h>

#include "bench/driver.hpp"
#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kRows = 100'000;
constexpr double kFirstDay = 43831;  // 2020-01-01
constexpr int kDays = 2000;

std::string isoText(double days) {
  const CivilTime c = Date(days).civil();
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", c.year, c.month, c.day, c.hour,
                     c.minute, c.second);
}

/// The way back that a reader of texts has to go.
double daysOf(std::string_view iso) {
  const auto digits = [&](std::size_t at, std::size_t count) {
    int number = 0;
    for (std::size_t i = at; i < at + count; ++i) number = number * 10 + (iso[i] - '0');
    return number;
  };
  return Date::of({digits(0, 4), digits(5, 2), digits(8, 2), digits(11, 2), digits(14, 2),
                   digits(17, 2)})
      .days();
}

/// One way to store a value in a column of that declared type.
struct Way {
  std::string name;
  std::string type;
  std::function<void(sqlite3_stmt*, int, double)> bind;
  std::function<double(sqlite3_stmt*, int)> read;
  std::string range;     ///< condition that one row in ten or so fits
  std::string sum = "";  ///< of what is added up by the engine
};

struct Cost {
  double insert, fetch, range, sum, bytes;
};

Cost cost(const Way& way, const std::filesystem::path& file, const std::vector<double>& values,
          const Scale& scale) {
  driver::Database database(file);
  database.execute("CREATE TABLE t (id INTEGER PRIMARY KEY, v " + way.type +
                   "); CREATE INDEX i ON t (v)");
  sqlite3_stmt* insert = nullptr;
  sqlite3_prepare_v2(database.handle(), "INSERT INTO t (v) VALUES (?)", -1, &insert, nullptr);
  Cost found{};
  found.insert = measure({[&] {
                            database.execute("BEGIN");
                            for (const double v : values) {
                              way.bind(insert, 1, v);
                              sqlite3_step(insert);
                              sqlite3_reset(insert);
                            }
                            database.execute("COMMIT");
                            return 0.0;
                          },
                          [&] { database.execute("DELETE FROM t"); }},
                         scale);
  sqlite3_finalize(insert);

  sqlite3_stmt* select = nullptr;
  sqlite3_prepare_v2(database.handle(), "SELECT v FROM t NOT INDEXED", -1, &select, nullptr);
  std::vector<double> read;
  found.fetch = measure({[&] {
                          read.clear();
                          while (sqlite3_step(select) == SQLITE_ROW)
                            read.push_back(way.read(select, 0));
                          sqlite3_reset(select);
                          return 0.0;
                        }},
                        scale);
  sqlite3_finalize(select);
  const auto query = [&](const std::string& text) {
    driver::Query prepared = database.prepare(text);
    return measure({[&] { return prepared.firstNumber(); }}, scale);
  };
  found.range = query("SELECT count(id + 0) FROM t WHERE " + way.range);
  if (!way.sum.empty()) found.sum = query("SELECT " + way.sum + " FROM t NOT INDEXED");
  database.execute("VACUUM; PRAGMA wal_checkpoint(TRUNCATE)");
  found.bytes = static_cast<double>(std::filesystem::file_size(file));
  return found;
}

void bindReal(sqlite3_stmt* statement, int index, double v) {
  sqlite3_bind_double(statement, index, v);
}
double readReal(sqlite3_stmt* statement, int column) {
  return sqlite3_column_double(statement, column);
}

std::vector<Way> dates() {
  const double from = kFirstDay + 500;
  const double to = from + kDays / 10.0;
  return {{"date as day number (REAL)", "DATETIME", bindReal, readReal,
           fmt::format("v BETWEEN {} AND {}", from, to)},
          {"date as ISO text", "TEXT",
           [](sqlite3_stmt* statement, int index, double v) {
             const std::string text = isoText(v);
             sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()),
                               SQLITE_TRANSIENT);
           },
           [](sqlite3_stmt* statement, int column) {
             return daysOf(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
           },
           fmt::format("v BETWEEN '{}' AND '{}'", isoText(from), isoText(to))}};
}

std::vector<Way> money() {
  return {{"money as number (REAL)", "DECIMAL(19,4)", bindReal, readReal, "v BETWEEN 1000 AND 2000",
           "sum(v)"},
          {"money as ten-thousandths (INTEGER)", "INTEGER",
           [](sqlite3_stmt* statement, int index, double v) {
             sqlite3_bind_int64(statement, index, std::llround(v * 10'000));
           },
           [](sqlite3_stmt* statement, int column) {
             return static_cast<double>(sqlite3_column_int64(statement, column)) / 10'000;
           },
           "v BETWEEN 10000000 AND 20000000", "sum(v) / 10000.0"}};
}

std::vector<Way> flags() {
  const auto whole = [](int yes) {
    return [yes](sqlite3_stmt* statement, int index, double v) {
      sqlite3_bind_int(statement, index, v != 0 ? yes : 0);
    };
  };
  const auto isSet = [](sqlite3_stmt* statement, int column) {
    return sqlite3_column_int(statement, column) != 0 ? 1.0 : 0.0;
  };
  return {{"flag as -1 and 0", "BOOLEAN", whole(-1), isSet, "v <> 0", "-sum(v)"},
          {"flag as 1 and 0", "BOOLEAN", whole(1), isSet, "v <> 0", "sum(v)"}};
}

}  // namespace

void measureStorage(Report& report, const Scale& scale) {
  test::TemporaryFolder folder;
  Dice dice(3);
  Table table{fmt::format("Storage: {} rows, one indexed column", scale.of(kRows)),
              {"way", "insert ms", "fetch as number ms", "range by index ms", "sum ms", "file KiB"},
              {}};
  const auto add = [&](const std::vector<Way>& ways, const std::function<double()>& next) {
    std::vector<double> values(scale.of(kRows));
    for (double& v : values) v = next();
    for (const Way& way : ways) {
      const auto file = folder.path() / fmt::format("{}.db", table.rows.size());
      const Cost c = cost(way, file, values, scale);
      table.rows.push_back({way.name, fmt::format("{:.1f}", c.insert),
                            fmt::format("{:.2f}", c.fetch), fmt::format("{:.3f}", c.range),
                            way.sum.empty() ? "" : fmt::format("{:.2f}", c.sum),
                            fmt::format("{:.0f}", c.bytes / 1024)});
    }
  };
  add(dates(), [&] { return kFirstDay + static_cast<double>(dice.below(kDays)); });
  add(money(), [&] { return static_cast<double>(dice.below(1'000'000)) / 100; });
  add(flags(), [&] { return static_cast<double>(dice.below(2)); });
  report.add(std::move(table));
}

}  // namespace tavelor::bench
