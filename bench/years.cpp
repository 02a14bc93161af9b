// SPDX-License-Identifier: MIT
// A day at the tills after years of other days: selling, closing and the page must not feel them.
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/flows/day_page.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/clock.hpp"
#include "tools/built_in_day.hpp"

namespace tavelor::bench {

namespace {

using Text = std::string_view;

constexpr int kDocuments = 3;
constexpr int kMain = 1;
constexpr std::array<std::size_t, 3> kLines{0, 1'000'000, 5'000'000};
constexpr double kMostTimes = 1.2;
constexpr std::size_t kTurns = 9;
const std::vector<std::string> kTills{"01", "02", "03"};

/// Lines of the past, day by day as the tills leave them: tickets and lines in history, movements,
/// closings with their details, and the counter behind them.
class Past {
 public:
  Past(Installation& installation, const std::vector<flows::Sale>& day)
      : documents_(installation.databaseFile(kDocuments)),
        main_(installation.databaseFile(kMain)),
        day_(day) {
    for (const flows::Sale& sale : day) linesADay_ += sale.lines.size();
  }

  void fill(std::size_t lines) {
    documents_.execute("BEGIN");
    main_.execute("BEGIN");
    Writer writer(documents_, main_);
    const auto days = static_cast<std::int64_t>(lines / linesADay_);
    for (std::int64_t ago = days; ago > 0; --ago) {
      addDay(writer, day_.front().day.days() - static_cast<double>(ago));
    }
    main_.execute(
        fmt::format("UPDATE Numeradores SET Ticket_a = {}, Ticket_b = 10000, "
                    "Ticket_c = 25000",
                    ticket_));
    main_.execute("COMMIT");
    documents_.execute("COMMIT");
    for (driver::Database* database : {&documents_, &main_}) {
      database->execute("PRAGMA wal_checkpoint(TRUNCATE)");
    }
  }

 private:
  struct Writer {
    Writer(driver::Database& documents, driver::Database& main)
        : ticket(documents.prepare(
              "INSERT INTO HTickets (Numero, Serie, Fecha, Codigo, Razon_Social, Referencia, "
              "Forma_Pago, Base, Importe_Impuestos, Total, Estado, Concepto, Entrega, Pagado, "
              "Caja, Empleado, Impuesto_Incluido, Cierre) VALUES (?1, 'A', ?2, ?3, ?3, ?4, ?5, "
              "?6, 1.5, ?6, 2, ?7, ?6, -1, ?8, '', -1, ?9)")),
          line(documents.prepare(
              "INSERT INTO HTickets_Lineas (Codigo, Descripcion, Cantidad, Precio, DTO, IVA, "
              "Importe, Lote, Numero, Familia, Cierre) VALUES (?1, ?2, ?3, ?4, 0, ?5, ?6, '0', "
              "?7, ?8, ?9)")),
          tax(documents.prepare("INSERT INTO HTickets_Lineas_Impuestos (Numero, IVA, Base, "
                                "Importe, Cierre) VALUES (?1, 21, ?2, 1.5, ?3)")),
          header(documents.prepare("INSERT INTO HTickets_Cabecera (Codigo, Nombre, Provincia, "
                                   "Cierre) VALUES (?1, ?2, ?3, ?4)")),
          movement(main.prepare(
              "INSERT INTO Articulos_Movimientos_Almacen (Id, Fecha, Hora, Almacen, Codigo, Lote, "
              "Cantidad, Precio, Referencia, Movimiento, Seccion, Empleado, Estado, Doc_E, "
              "Cod_ID) VALUES (?1, ?2, 0.5, '001', ?3, '0', ?4, ?5, ?6, 1, '', '', 1, ?7, '1')")),
          closing(main.prepare(
              "INSERT INTO Cierres (Codigo, Serie, Fecha, Descripcion, Caja, Empleado, Efectivo, "
              "Credito, Total, Saldo_Inicio, Saldo_Final) VALUES (?1, 'A', ?2, 'Cierre', ?3, '', "
              "?4, 0, ?4, 0, 0)")),
          family(main.prepare("INSERT INTO Cierres_Familias VALUES (?1, ?2, 10)")),
          rate(main.prepare("INSERT INTO Cierres_Lineas_Impuestos VALUES (?1, ?2, 10, 2.1)")),
          payment(main.prepare("INSERT INTO Cierres_Formas_Pago VALUES (?1, ?2, 10)")) {}

    driver::Query ticket, line, tax, header, movement, closing, family, rate, payment;
  };

  void addDay(Writer& to, double day) {
    const std::int64_t firstClosing = closing_ + 1;
    for (const flows::Sale& sale : day_) {
      const auto number = static_cast<double>(++ticket_);
      const std::string reference = fmt::format("P{}", ticket_);
      const std::int64_t closing = firstClosing + (ticket_ % 3);
      to.ticket.bind(1, number).bind(2, day).bind(3, Text(sale.customer)).bind(4, Text(reference));
      to.ticket.bind(5, Text(sale.payment)).bind(6, sale.total()).bind(7, Text(sale.time));
      to.ticket.bind(8, Text(sale.till)).bind(9, closing).run();
      for (const flows::SaleLine& line : sale.lines) {
        to.line.bind(1, Text(line.code)).bind(2, Text(line.description)).bind(3, line.quantity);
        to.line.bind(4, line.price).bind(5, line.tax).bind(6, line.amount()).bind(7, number);
        to.line.bind(8, Text(line.family)).bind(9, closing).run();
        to.movement.bind(1, ++movement_).bind(2, day).bind(3, Text(line.code));
        to.movement.bind(4, line.quantity).bind(5, line.price).bind(6, Text(reference));
        to.movement.bind(7, number).run();
      }
      to.tax.bind(1, number).bind(2, sale.total()).bind(3, closing).run();
      if (sale.customer.empty()) continue;
      to.header.bind(1, number).bind(2, Text(sale.name)).bind(3, Text(sale.place));
      to.header.bind(4, closing).run();
    }
    for (const std::string& till : kTills) addClosing(to, day, till);
  }

  void addClosing(Writer& to, double day, const std::string& till) {
    to.closing.bind(1, ++closing_).bind(2, day).bind(3, Text(till)).bind(4, 1000.0).run();
    for (const Text family : {"BEB", "FRE", "LIM", "PAN", "CAR"}) {
      to.family.bind(1, closing_).bind(2, family).run();
    }
    for (const double rate : {4.0, 10.0, 21.0}) to.rate.bind(1, closing_).bind(2, rate).run();
    for (const Text method : {"001", "002"}) to.payment.bind(1, closing_).bind(2, method).run();
  }

  driver::Database documents_;
  driver::Database main_;
  const std::vector<flows::Sale>& day_;
  std::size_t linesADay_ = 0;
  std::int64_t ticket_ = 0;
  std::int64_t movement_ = 0;
  std::int64_t closing_ = 0;
};

/// Processor's milliseconds of the works of a day.
struct Times {
  double selling = 0;
  double closing = 0;
  double page = 0;
};

Times measureAfter(std::size_t lines, const Scale& scale) {
  BenchShop installation;
  flows::seedCatalogues();
  const std::vector<flows::Sale> pattern = tools::builtInDay(kTills);
  if (lines > 0) Past(installation.installation(), pattern).fill(lines);

  Clock& clock = Apartment::current().clock();
  flows::Shop tills;
  tills.openTills(kTills);
  Date day = pattern.front().day;
  std::vector<flows::Sale> sales;
  // Day after day, each with its own references; the first one makes the articles and is not
  // measured.
  const auto nextDay = [&] {
    day = Date(day.days() + 1);
    clock.fix(day);
    sales = pattern;
    for (flows::Sale& sale : sales) {
      sale.day = day;
      sale.reference += fmt::format("/{}", day.days());
    }
  };
  const auto sell = [&] {
    for (const flows::Sale& sale : sales) tills.sell(sale);
    return static_cast<double>(sales.size());
  };
  const auto close = [&] {
    double total = 0;
    for (const std::string& till : kTills) {
      if (const auto closing = tills.close(till, day)) total += closing->total;
    }
    return total;
  };
  nextDay();
  sell();
  close();

  Scale few = scale;
  few.rounds = std::min(scale.rounds, kTurns);
  Times times;
  times.selling = measure({sell, nextDay, [&] { close(); }}, few);
  times.closing = measure({close,
                           [&] {
                             nextDay();
                             sell();
                           }},
                          few);
  times.page = measure({[&] {
                         flows::writeDayPage(day, day);
                         return 0.0;
                       }},
                       few);
  clock.release();
  return times;
}

}  // namespace

void measureYears(Report& report, const Scale& scale) {
  std::vector<Times> times;
  Table table{"A day of 310 sales after lines of history: processor's milliseconds", {"work"}, {}};
  for (const std::size_t lines : kLines) {
    table.columns.push_back(fmt::format("{}", scale.of(lines)));
    times.push_back(measureAfter(scale.of(lines), scale));
  }
  struct Work {
    const char* name;
    double Times::*time;
  };
  for (const Work& work :
       {Work{"selling", &Times::selling}, Work{"closing three tills", &Times::closing},
        Work{"the day's page", &Times::page}}) {
    std::vector<std::string> row{work.name};
    for (const Times& each : times) row.push_back(fmt::format("{:.1f}", each.*work.time));
    table.rows.push_back(std::move(row));
    report.add({fmt::format("{}, after {} lines beside none", work.name, scale.of(kLines.back())),
                scale.of(kLines.back()), times.front().*work.time, times.back().*work.time, "ms",
                kMostTimes});
  }
  report.add(std::move(table));
}

}  // namespace tavelor::bench
