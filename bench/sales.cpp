// SPDX-License-Identifier: MIT
// Totals of a ticket's lines beside a loop by hand over the same cells, and the closing of a day of
// tickets beside prepared statements.
#include <cmath>
#include <stdexcept>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

using Text = std::string_view;

constexpr int kDocuments = 3;
constexpr std::size_t kLines = 1'000;
constexpr int kTotalsARound = 50;
constexpr std::size_t kTickets = 2'000;
constexpr std::size_t kLinesATicket = 5;
constexpr double kDay = 46'347;

double cents(double amount) {
  return std::round(amount * 100) / 100;
}

// ---- Totals

void fillLines(driver::Database& documents, std::size_t lines) {
  Dice dice{7};
  documents.execute("BEGIN");
  driver::Query insert = documents.prepare(
      "INSERT INTO Tickets_Lineas (ID, Numero, Codigo, Descripcion, Cantidad, Precio, DTO, IVA, "
      "Importe) VALUES (?, 1, ?, ?, 1, 10, 0, ?, ?)");
  for (std::size_t i = 0; i < lines; ++i) {
    const std::string code = fmt::format("A{:05}", dice.below(5'000));
    const std::string description = dice.text();
    insert.bind(1, static_cast<std::int64_t>(i + 1)).bind(2, Text(code)).bind(3, Text(description));
    insert.bind(4, dice.below(3) == 0 ? 10.0 : 21.0);
    insert.bind(5, static_cast<double>(dice.below(100'000)) / 100).run();
  }
  documents.execute("COMMIT");
}

/// What a careful programmer writes over the record set; cents for the mask.
double totalsByHand(Recordset& primary, bool taxIncluded) {
  const RecordsetPtr rows = primary.Clone();
  const Field amounts = rows->Field(6);
  const Field rates = rows->Field(5);
  double base = 0;
  double tax = 0;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Variant amountCell = amounts.Value();
    const Variant rateCell = rates.Value();
    const auto* amountHeld = amountCell.getIf<double>();
    const auto* rateHeld = rateCell.getIf<double>();
    double amount = amountHeld == nullptr ? 0 : *amountHeld;
    double ofLine = 0;
    if (rateHeld != nullptr) {
      ofLine =
          taxIncluded ? cents(amount - amount * 100 / (100 + *rateHeld)) : amount * *rateHeld / 100;
    }
    if (taxIncluded) amount -= ofLine;
    base += cents(amount);
    tax += ofLine;
  }
  return cents(base) + cents(tax);
}

void measureTotals(Report& report, const Scale& scale) {
  const std::size_t count = scale.of(kLines);
  BenchShop shop;
  {
    driver::Database filler(shop.installation().databaseFile(kDocuments));
    fillLines(filler, count);
  }
  ClsTicketsLineas lines;
  lines.IniciaRs({}, "seleccion", std::int32_t{1});
  const RecordsetPtr primary = lines.DataMember("Primary");
  const auto repeated = [](auto totals) {
    return Side{[totals] {
      double sum = 0;
      for (int turn = 0; turn < kTotalsARound; ++turn) sum = totals();
      return sum;
    }};
  };
  for (const bool included : {true, false}) {
    report.add(compare({included ? "totals of a ticket's lines, tax included"
                                 : "totals of a ticket's lines, tax on top",
                        count, 3, repeated([=] { return totalsByHand(*primary, included); }),
                        repeated([&lines, included] {
                          double base = 0;
                          double tax = 0;
                          double surcharge = 0;
                          lines.SumaCol(included, base, tax, surcharge, false);
                          return cents(base) + cents(tax);
                        })},
                       scale));
  }
}

// ---- Closing

/// Empty tables and indexes of one database in another.
void copySchema(driver::Database& from, driver::Database& to) {
  const driver::Rows statements =
      from.prepare(
              "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL AND name LIKE '%Tickets%' "
              "ORDER BY type DESC")
          .fetch();
  for (const auto& row : statements) to.execute(std::get<std::string>(row.front()));
}

/// The tickets of a day in one database, all open; what history holds of the day before goes.
class Day {
 public:
  explicit Day(driver::Database& documents)
      : documents_(documents),
        ticket_(documents.prepare(
            "INSERT INTO Tickets (Numero, Serie, Fecha, Codigo, Caja, Empleado, Total, Estado, "
            "Cierre) VALUES (?, 'A', ?, '00012', '01', '001', ?, 2, 0)")),
        line_(documents.prepare(
            "INSERT INTO Tickets_Lineas (ID, Numero, Codigo, Descripcion, Cantidad, Precio, DTO, "
            "IVA, Importe, Familia, Cierre) VALUES (?, ?, ?, 'Una línea', 1, 10, 0, ?, ?, 'BEB', "
            "0)")),
        header_(documents.prepare("INSERT INTO Tickets_Cabecera (Id, Codigo, Nombre, Cierre) "
                                  "VALUES (?, ?1, 'Cliente', 0)")) {}

  void begin(std::size_t tickets) {
    documents_.execute("BEGIN");
    for (const char* table :
         {"HTickets", "HTickets_Lineas", "HTickets_Cabecera", "HTickets_Lineas_Impuestos"}) {
      documents_.execute(fmt::format("DELETE FROM {}", table));
    }
    std::int64_t id = 0;
    for (std::size_t i = 1; i <= tickets; ++i) {
      const auto number = static_cast<double>(i);
      ticket_.bind(1, number).bind(2, kDay).bind(3, 50.0).run();
      for (std::size_t line = 0; line < kLinesATicket; ++line) {
        const std::string code = fmt::format("A{:05}", dice_.below(5'000));
        line_.bind(1, ++id).bind(2, number).bind(3, Text(code));
        line_.bind(4, line % 2 == 0 ? 21.0 : 10.0);
        line_.bind(5, static_cast<double>(dice_.below(100'000)) / 100).run();
      }
      if (i % 10 == 0) header_.bind(1, static_cast<std::int64_t>(i)).run();
    }
    documents_.execute("COMMIT");
  }

  /// What shows that the day was closed: rows and taxes of history.
  double closed() {
    return documents_.prepare("SELECT COUNT(*) FROM HTickets").firstNumber() +
           documents_.prepare("SELECT COUNT(*) FROM HTickets_Lineas").firstNumber() +
           documents_.prepare("SELECT COUNT(*) FROM HTickets_Cabecera").firstNumber() +
           documents_
               .prepare("SELECT ROUND(SUM(Base) + SUM(Importe), 2) FROM HTickets_Lineas_Impuestos")
               .firstNumber();
  }

 private:
  driver::Database& documents_;
  driver::Query ticket_;
  driver::Query line_;
  driver::Query header_;
  Dice dice_{11};
};

class ClosingByHand {
 public:
  explicit ClosingByHand(driver::Database& d)
      : database_(d),
        ticket_(d.prepare("UPDATE Tickets SET Cierre = ? WHERE Numero = ?")),
        lines_(d.prepare("UPDATE Tickets_Lineas SET Cierre = ? WHERE Numero = ?")),
        header_(d.prepare("UPDATE Tickets_Cabecera SET Cierre = ? WHERE Codigo = ?")),
        comments_(d.prepare("UPDATE Tickets_Comentarios SET Cierre = ? WHERE Codigo = ?")),
        groups_(d.prepare("SELECT IVA, SUM(Importe) FROM Tickets_Lineas WHERE Numero = ? GROUP BY "
                          "IVA, Numero")),
        tax_(d.prepare("INSERT INTO HTickets_Lineas_Impuestos (Numero, IVA, Base, Importe, Cierre) "
                       "VALUES (?, ?, ?, ?, ?)")),
        clear_(d.prepare("DELETE FROM Tickets_Lineas_Impuestos WHERE Cierre = ?")) {}

  void close(std::size_t tickets, std::int64_t closing) {
    database_.execute("BEGIN IMMEDIATE");
    for (std::size_t i = 1; i <= tickets; ++i) {
      const auto number = static_cast<double>(i);
      for (driver::Query* mark : {&ticket_, &lines_, &header_, &comments_}) {
        mark->bind(1, closing).bind(2, number).run();
      }
      groups_.bind(1, number);
      for (const auto& group : groups_.fetch()) {
        const double rate = std::get<double>(group[0]);
        const double base = cents(std::get<double>(group[1]) * 100 / (100 + rate));
        tax_.bind(1, number).bind(2, rate).bind(3, base).bind(4, cents(rate * base / 100));
        tax_.bind(5, closing).run();
      }
      clear_.bind(1, closing).run();
    }
    move("Tickets", "*", "", closing);
    constexpr const char* kLineColumns =
        "Numero, Codigo, Descripcion, Cantidad, Precio, DTO, IVA, Importe, Lote, Cierre, Familia";
    move("Tickets_Lineas", kLineColumns, kLineColumns, closing);
    constexpr const char* kHeaderColumns =
        "Codigo, Nombre, Razon_Social, NIF, Direccion, Codigo_Postal, Poblacion, Provincia, "
        "Telefono, Cierre";
    move("Tickets_Cabecera", kHeaderColumns, kHeaderColumns, closing);
    move("Tickets_Comentarios", "Codigo, Comentarios, Cierre", "Codigo, Comentarios, Cierre",
         closing);
    database_.execute("COMMIT");
  }

 private:
  void move(Text table, Text columns, Text into, std::int64_t closing) {
    const std::string target = into.empty() ? std::string() : fmt::format(" ({})", into);
    database_.execute(fmt::format("INSERT INTO H{}{} SELECT {} FROM {} WHERE Cierre = {}", table,
                                  target, columns, table, closing));
    database_.execute(fmt::format("DELETE FROM {} WHERE Cierre = {}", table, closing));
  }

  driver::Database& database_;
  driver::Query ticket_;
  driver::Query lines_;
  driver::Query header_;
  driver::Query comments_;
  driver::Query groups_;
  driver::Query tax_;
  driver::Query clear_;
};

void closeByClasses(std::size_t tickets, std::int32_t closing) {
  const ClsTickets sales;
  const ClsTicketsLineas lines;
  const ClsTicketsCabecera headers;
  const ClsTicketsComentarios comments;
  ConnectionPtr connection = DataSession().OpenConnection(kDocuments);
  connection->BeginTrans();
  for (std::size_t i = 1; i <= tickets; ++i) {
    const Variant number = static_cast<std::int32_t>(i);
    sales.CerrarTicket(number, closing, connection);
    lines.CerrarTicket(number, closing, connection);
    headers.CerrarTicket(number, closing, connection);
    comments.CerrarTicket(number, closing, connection);
    lines.Mover_Impuestos_A_Historicos(number, closing, true, connection);
  }
  sales.Mover_A_Historicos(closing, connection);
  lines.Mover_A_Historicos(closing, connection);
  headers.Mover_A_Historicos(closing, connection);
  comments.Mover_A_Historicos(closing, connection);
  connection->CommitTrans();
}

void measureClosing(Report& report, const Scale& scale) {
  const std::size_t tickets = scale.of(kTickets);
  constexpr std::int32_t kClosing = 7;
  BenchShop shop;
  driver::Database documents(shop.installation().databaseFile(kDocuments));
  driver::Database floor(shop.folder() / "floor-documents.db");
  copySchema(documents, floor);
  Day first(floor);
  Day second(documents);
  ClosingByHand byHand(floor);
  report.add(compare({"closing a day, with its move to history",
                      tickets,
                      1.3,
                      {[&] {
                         byHand.close(tickets, kClosing);
                         return first.closed();
                       },
                       [&] { first.begin(tickets); }},
                      {[&] {
                         closeByClasses(tickets, kClosing);
                         return second.closed();
                       },
                       [&] { second.begin(tickets); }}},
                     scale));
}

}  // namespace

void measureSales(Report& report, const Scale& scale) {
  measureTotals(report, scale);
  measureClosing(report, scale);
}

}  // namespace tavelor::bench
