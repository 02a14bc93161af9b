// SPDX-License-Identifier: MIT
// Statements that are spliced anew each time, beside prepared ones.
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/reference/bancos.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kInserts = 10'000;
constexpr std::size_t kReads = 2'000;

/// A row as the caller has it.
struct Movement {
  std::int64_t id;
  std::string code;
  std::string description;
  Date date;
  double quantity;
  double price;
  double amount;
  bool active;
  std::string store;
  std::int64_t units;
};

std::vector<Movement> movements(std::size_t rows) {
  Dice dice(7);
  std::vector<Movement> made;
  for (std::size_t i = 0; i < rows; ++i) {
    const double quantity = static_cast<double>(dice.below(1000)) / 4;
    const double price = static_cast<double>(dice.below(100'000)) / 100;
    made.push_back({static_cast<std::int64_t>(i + 1), fmt::format("A{:06}", dice.below(1'000'000)),
                    dice.text(), Date(45000 + static_cast<double>(dice.below(1000))), quantity,
                    price, static_cast<double>(dice.below(10'000'000)) / 100, dice.below(2) == 0,
                    fmt::format("{:02}", dice.below(20)),
                    static_cast<std::int64_t>(dice.below(500))});
  }
  return made;
}

/// The values of a row as texts, for the measurement that leaves printing out.
struct Printed {
  std::string id, date, quantity, price, amount, active, units;
};

Printed print(const DataSession& session, const Movement& m) {
  return {std::to_string(m.id),   session.DateLiteral(1, Variant(m.date)),
          sqlNumber(m.quantity),  sqlNumber(m.price),
          sqlNumber(m.amount),    m.active ? "-1" : "0",
          std::to_string(m.units)};
}

Statement splice(const Movement& m, const Printed& p) {
  Statement s(
      "INSERT INTO Apuntes (Id, Codigo, Descripcion, Fecha, Cantidad, Precio, Importe, Activo, "
      "Almacen, Unidades) VALUES (");
  s << spliced(p.id) << ", '" << spliced(m.code) << "', '" << spliced(m.description) << "', "
    << spliced(p.date) << ", " << spliced(p.quantity) << ", " << spliced(p.price) << ", "
    << spliced(p.amount) << ", " << spliced(p.active) << ", '" << spliced(m.store) << "', "
    << spliced(p.units) << ")";
  return s;
}

void measureInserts(BenchShop& shop, Report& report, const Scale& scale) {
  const std::vector<Movement> rows = movements(scale.of(kInserts));
  DataSession session;
  ConnectionPtr connection = session.OpenConnection(1);
  driver::Query insert = shop.floor().prepare("INSERT INTO Apuntes VALUES (?,?,?,?,?,?,?,?,?,?)");

  const Side floor{[&] {
                     std::int64_t written = 0;
                     shop.floor().execute("BEGIN IMMEDIATE");
                     for (const Movement& m : rows) {
                       insert.bind(1, m.id).bind(2, std::string_view(m.code));
                       insert.bind(3, std::string_view(m.description)).bind(4, m.date.days());
                       insert.bind(5, m.quantity).bind(6, m.price).bind(7, m.amount);
                       insert.bind(8, std::int64_t{m.active ? -1 : 0});
                       insert.bind(9, std::string_view(m.store)).bind(10, m.units);
                       written += insert.run();
                     }
                     shop.floor().execute("COMMIT");
                     return static_cast<double>(written);
                   },
                   [&] { shop.floor().execute("DELETE FROM Apuntes"); }};
  const auto empty = [&] { session.Execute(1, Statement("DELETE FROM Apuntes"), connection); };
  std::vector<Printed> printed;
  for (const Movement& m : rows) printed.push_back(print(session, m));

  const auto ours = [&](auto statementOf) {
    return Side{[&, statementOf] {
                  connection->BeginTrans();
                  for (std::size_t i = 0; i < rows.size(); ++i) {
                    session.Execute(1, statementOf(i), connection);
                  }
                  connection->CommitTrans();
                  return static_cast<double>(rows.size());
                },
                empty};
  };
  report.add(compare({"spliced INSERT of 10 columns", rows.size(), 1.25, floor,
                      ours([&](std::size_t i) { return splice(rows[i], printed[i]); })},
                     scale));
  // Where the difference goes: joining the text, and reading it again.
  std::vector<Statement> joined;
  for (std::size_t i = 0; i < rows.size(); ++i) joined.push_back(splice(rows[i], printed[i]));
  report.add(compare({"the same, its text joined before", rows.size(), 0, floor,
                      ours([&](std::size_t i) -> const Statement& { return joined[i]; })},
                     scale));
  report.add(
      compare({"the same, its numbers and dates printed first", rows.size(), 0, floor,
               ours([&](std::size_t i) { return splice(rows[i], print(session, rows[i])); })},
              scale));
}

void measureReads(BenchShop& shop, Report& report, const Scale& scale) {
  const std::size_t reads = scale.of(kReads);
  const std::string text = "SELECT codigo as ds FROM Bancos where predeterminada <> 0";
  driver::Query query = shop.floor().prepare(text);
  const auto repeat = [reads](auto read) {
    return Side{[reads, read] {
      double length = 0;
      for (std::size_t i = 0; i < reads; ++i) length += static_cast<double>(read().size());
      return length;
    }};
  };
  const Side prepared = repeat([&] { return query.firstText(); });
  // A record set holds all rows of its statement.
  const Side fetched = repeat([&] { return std::get<std::string>(query.fetch().at(0).at(0)); });
  const Side compiled = repeat([&] { return shop.floor().prepare(text).firstText(); });
  const Side session = repeat([&] {
    DataSession data;
    RecordsetPtr rows;
    ConnectionPtr connection;
    data.OpenRecordset(1, Statement::trusted(text), rows, connection);
    return *rows->Field("ds").Value().getIf<std::string>();
  });
  ClsBancos bancos;
  const Side member = repeat([&] { return *bancos.GetPredeterminada().getIf<std::string>(); });
  report.add(compare(
      {"read one value (class member; prepared by hand)", reads, 1.35, prepared, member}, scale));
  report.add(compare(
      {"read one value (class member; compiled by hand)", reads, 0, compiled, member}, scale));
  report.add(compare({"read one row (record set; fetched by hand)", reads, 1.35, fetched, session},
                     scale));
}

}  // namespace

void measureStatements(Report& report, const Scale& scale) {
  BenchShop shop;
  shop.addTables(
      "CREATE TABLE Apuntes (Id LONG NOT NULL, Codigo TEXT(20), Descripcion TEXT(100), Fecha "
      "DATETIME, Cantidad DOUBLE, Precio CURRENCY, Importe CURRENCY, Activo BIT, Almacen TEXT(10), "
      "Unidades LONG, CONSTRAINT PK_Apuntes PRIMARY KEY (Id));");
  for (int i = 1; i <= 20; ++i) {
    shop.filler().execute(fmt::format(
        "INSERT INTO Bancos (Codigo, Banco, Predeterminada) VALUES ('{:05}', 'Banco {}', {})", i, i,
        i == 12 ? -1 : 0));
  }
  shop.share();
  measureInserts(shop, report, scale);
  measureReads(shop, report, scale);
}

}  // namespace tavelor::bench
