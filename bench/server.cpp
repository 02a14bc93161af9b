// SPDX-License-Identifier: MIT
// The same works over a server: sales spliced through the library, rows, articles, tills at once.
// TAVELOR_BENCH_SERVER says where it is; without it nothing is measured.
#include "bench/server.hpp"

#include <algorithm>
#include <atomic>
#include <bit>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fmt/format.h>

#include "bench/records.hpp"
#include "bench/spliced_sale.hpp"
#include "bench/works.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/trace.hpp"
#include "tests/support/line_proxy.hpp"
#include "tools/article_import.hpp"

namespace tavelor::bench {

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration time) {
  return std::chrono::duration<double, std::milli>(time).count();
}

// ---------------------------------------------------------------------------------------------
// A sale

constexpr const char* kTicket =
    "INSERT INTO main.\"Ventas\" (\"Numero\", \"Serie\", \"Fecha\", \"Codigo\", \"Razon_Social\", "
    "\"Tarifa\", \"Almacen\", \"Divisa\", \"Forma_Pago\", \"Descuento\", \"Base\", "
    "\"Importe_Impuestos\", \"Total\", \"Caja\", \"Empleado\") VALUES "
    "($1,$2,$3,$4,$5,$6,$7,$8,$9,$10,$11,$12,$13,$14,$15)";
constexpr const char* kLine =
    "INSERT INTO main.\"Ventas_Lineas\" (\"Documento\", \"Linea\", \"Codigo\", \"Descripcion\", "
    "\"Cantidad\", \"Precio\", \"Importe\", \"Impuesto\", \"Almacen\") VALUES "
    "($1,$2,$3,$4,$5,$6,$7,$8,$9)";
constexpr const char* kStock =
    "UPDATE main.\"Existencias\" SET \"Existencia\" = \"Existencia\" + $1 WHERE \"Codigo\" = $2 "
    "AND "
    "\"Actualizar_Stock\" <> 0";
constexpr const char* kMovement =
    "INSERT INTO main.\"Movimientos\" (\"Id\", \"Fecha\", \"Hora\", \"Almacen\", \"Codigo\", "
    "\"Cantidad\", \"Precio\", \"Movimiento\", \"Documento\") VALUES ($1,$2,$3,$4,$5,$6,$7,$8,$9)";

/// Over libpq, every statement prepared: each waited for, or on its way with the others.
class SaleOverLibpq {
 public:
  SaleOverLibpq(ServerLine line, std::int64_t movements)
      : line_(std::move(line)), movements_(movements) {
    line_.prepare("begin", "BEGIN");
    line_.prepare("commit", "COMMIT");
    line_.prepare("ticket", kTicket);
    line_.prepare("line", kLine);
    line_.prepare("stock", kStock);
    line_.prepare("movement", kMovement);
    line_.prepare("counter",
                  "UPDATE main.\"Contadores\" SET \"Ticket_a\" = $1 WHERE \"Codigo\" = '1'");
    line_.prepare(
        "count",
        "UPDATE main.\"Contadores\" SET \"Ticket_a\" = \"Ticket_a\" + 1 WHERE \"Codigo\" = '1'");
    line_.prepare("counted", "SELECT \"Ticket_a\" FROM main.\"Contadores\" WHERE \"Codigo\" = '1'");
  }

  void sellWaiting(const Sale& sale) {
    run("begin", {});
    const std::string number = fmt::format("{}", sale.number);
    writeTicket(sale, number);
    int order = 0;
    for (const SaleLine& line : sale.lines) {
      writeLine(line, number, ++order);
      takeStock(line);
      writeMovement(sale, line, number);
    }
    run("counter", {number.c_str()});
    run("commit", {});
  }

  void sellPipelined(Sale sale) {
    std::sort(sale.lines.begin(), sale.lines.end(),
              [](const SaleLine& a, const SaleLine& b) { return a.article < b.article; });
    isPipelined_ = true;
    line_.pipeline();
    run("begin", {});
    for (const SaleLine& line : sale.lines) takeStock(line);
    run("count", {});
    run("counted", {});
    const std::string number = line_.settle();
    writeTicket(sale, number);
    int order = 0;
    for (const SaleLine& line : sale.lines) {
      writeLine(line, number, ++order);
      writeMovement(sale, line, number);
    }
    run("commit", {});
    line_.settle();
    line_.endPipeline();
    isPipelined_ = false;
  }

 private:
  void run(const char* name, std::initializer_list<const char*> values) {
    if (isPipelined_) {
      line_.send(name, values);
    } else {
      line_.execute(name, values);
    }
  }
  static std::string day(Date date) {
    return fmt::format("{:04}-{:02}-{:02}", date.civil().year, date.civil().month,
                       date.civil().day);
  }
  void writeTicket(const Sale& sale, const std::string& number) {
    const std::string date = day(sale.date);
    const std::string base = fmt::format("{}", sale.total);
    const std::string tax = fmt::format("{}", sale.total * 0.21);
    const std::string total = fmt::format("{}", sale.total * 1.21);
    run("ticket",
        {number.c_str(), "a", date.c_str(), sale.customer.c_str(), "CLIENTE CONTADO", "01", "00",
         "EURO", "CONTADO", "0", base.c_str(), tax.c_str(), total.c_str(), "CAJA1", "0001"});
  }
  void writeLine(const SaleLine& line, const std::string& number, int order) {
    const std::string place = std::to_string(order);
    const std::string quantity = fmt::format("{}", line.quantity);
    const std::string price = fmt::format("{}", line.price);
    const std::string amount = fmt::format("{}", line.amount);
    run("line", {number.c_str(), place.c_str(), line.article.c_str(), line.description.c_str(),
                 quantity.c_str(), price.c_str(), amount.c_str(), "21", "00"});
  }
  void takeStock(const SaleLine& line) {
    const std::string quantity = fmt::format("{}", -line.quantity);
    run("stock", {quantity.c_str(), line.article.c_str()});
  }
  void writeMovement(const Sale& sale, const SaleLine& line, const std::string& number) {
    const std::string id = std::to_string(++movements_);
    const std::string date = day(sale.date);
    const std::string quantity = fmt::format("{}", line.quantity);
    const std::string price = fmt::format("{}", line.price);
    run("movement", {id.c_str(), date.c_str(), "1899-12-30 10:30", "00", line.article.c_str(),
                     quantity.c_str(), price.c_str(), "1", number.c_str()});
  }

  ServerLine line_;
  std::int64_t movements_;
  bool isPipelined_ = false;
};

void makeSaleTables(ServerShop& shop) {
  shop.installation()->addToSchema(1, kSaleTables);
  shop.database().line().run(
      fmt::format("INSERT INTO main.\"Existencias\" (\"Codigo\", \"Existencia\", "
                  "\"Actualizar_Stock\") SELECT 'A' || lpad(i::text, 5, '0'), 1000, -1 FROM "
                  "generate_series(0, {}) i; INSERT INTO main.\"Contadores\" (\"Codigo\", "
                  "\"Ticket_a\") VALUES ('1', 0); ANALYZE",
                  kSaleArticles - 1));
}

constexpr std::int64_t kMovementsEach = 10'000'000;  // numbers that no two sellers share

void measureOneSale(Report& report, const Scale& scale) {
  ServerShop shop;
  const Apartment apartment(shop.installation());
  makeSaleTables(shop);
  const std::size_t sales = scale.of(300);
  SaleOverLibpq byHand(shop.database().line(), 0);
  SaleBySplicing spliced(kMovementsEach);
  std::size_t turn = 0;
  Dice dice(11);
  const auto side = [&](auto sell) {
    return Side{[&turn, &dice, sales, sell] {
      for (std::size_t i = 0; i < sales; ++i) sell(saleOf(++turn, dice));
      return static_cast<double>(sales);
    }};
  };
  report.add(compare({.work = "server: sale, local socket (by hand: one wait a statement)",
                      .rows = sales,
                      .target = 0.75,
                      .floor = side([&](const Sale& sale) { byHand.sellWaiting(sale); }),
                      .ours = side([&](const Sale& sale) { spliced.sell(sale); }),
                      .waits = true},
                     scale));
}

// ---------------------------------------------------------------------------------------------
// Tills at once

struct Pace {
  double perSale = 0;   // milliseconds, of all tills together
  double fairness = 0;  // sales of the fastest by those of the slowest
};

/// `makeTill(i)` gives, on the till's own thread, what sells one sale.
template <typename MakeTill>
Pace paceOf(int tills, std::chrono::milliseconds time, MakeTill makeTill) {
  std::vector<std::size_t> sold(static_cast<std::size_t>(tills));
  std::vector<std::string> errors(sold.size());
  std::atomic<int> ready = 0;
  std::atomic<bool> goes = false;
  std::atomic<bool> ends = false;
  std::vector<std::thread> threads;
  for (int i = 0; i < tills; ++i) {
    threads.emplace_back([&, i] {
      const auto place = static_cast<std::size_t>(i);
      try {
        makeTill(i, [&](auto sell) {
          Dice dice(100 + place);
          sell(saleOf(0, dice));  // compiles its statements
          ++ready;
          while (!goes) std::this_thread::yield();
          std::size_t turn = 0;
          for (; !ends; ++turn) sell(saleOf(turn, dice));
          sold[place] = turn;
        });
      } catch (const std::exception& error) {
        errors[place] = error.what();
        ++ready;
      }
    });
  }
  while (ready < tills) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  const Clock::time_point begun = Clock::now();
  goes = true;
  std::this_thread::sleep_for(time);
  ends = true;
  for (std::thread& thread : threads) thread.join();
  const double taken = milliseconds(Clock::now() - begun);
  for (const std::string& error : errors) {
    if (!error.empty()) throw std::runtime_error("tills at once: " + error);
  }
  std::size_t all = 0;
  for (const std::size_t each : sold) all += each;
  const auto [slowest, fastest] = std::minmax_element(sold.begin(), sold.end());
  return {taken / static_cast<double>(std::max<std::size_t>(all, 1)),
          static_cast<double>(*fastest) / static_cast<double>(std::max<std::size_t>(*slowest, 1))};
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void measureTills(Report& report, const Scale& scale) {
  ServerShop shop;
  makeSaleTables(shop);
  const auto time = std::chrono::milliseconds(scale.quick ? 50 : 1'000);
  std::int64_t movements = 0;
  const auto next = [&](int till) { return movements + kMovementsEach / 100 * till; };
  const auto ours = [&](int tills) {
    movements += kMovementsEach;
    return paceOf(tills, time, [&](int i, auto sells) {
      const Apartment apartment(shop.installation());
      SaleBySplicing till(next(i));
      sells([&](Sale sale) { till.sellNext(std::move(sale)); });
    });
  };
  const auto byHand = [&](int tills) {
    movements += kMovementsEach;
    return paceOf(tills, time, [&](int i, auto sells) {
      SaleOverLibpq till(shop.database().line(), next(i));
      sells([&](Sale sale) { till.sellPipelined(std::move(sale)); });
    });
  };
  std::vector<double> one, two, eight, eightByHand, fairness;
  for (std::size_t round = 0; round < std::min<std::size_t>(scale.rounds, 5); ++round) {
    one.push_back(ours(1).perSale);
    two.push_back(ours(2).perSale);
    const Pace crowd = ours(8);
    eight.push_back(crowd.perSale);
    fairness.push_back(crowd.fairness);
    eightByHand.push_back(byHand(8).perSale);
  }
  report.add({"server: a sale of two tills (by hand: of one till here)", 2, medianOf(one),
              medianOf(two), "ms", 1 / 1.3});
  report.add({"server: a sale of eight tills (by hand: pipelined)", 8, medianOf(eightByHand),
              medianOf(eight), "ms", 1 / 0.75});
  report.add({"server: sales of the fastest of eight tills by the slowest's", 8, 1,
              medianOf(fairness), "x", 1 / 0.8});
}

// ---------------------------------------------------------------------------------------------
// Rows

void measureRows(Report& report, const Scale& scale) {
  ServerShop shop;
  const Apartment apartment(shop.installation());
  const std::size_t rows = scale.of(100'000);
  std::string columns = "Id LONG NOT NULL";
  std::string values = "i";
  const auto add = [&](const char* prefix, const char* type, int count, const char* value) {
    for (int i = 1; i <= count; ++i) {
      columns += fmt::format(", {}{} {}", prefix, i, type);
      values += fmt::format(", {}", fmt::format(fmt::runtime(value), i));
    }
  };
  add("Texto", "TEXT(60)", 20, "'text ' || (i * {0} % 100003) || repeat('x', (i + {0}) % 20)");
  add("Doble", "DOUBLE", 10, "(i * {0} % 1000003) / 100.0");
  add("Entero", "LONG", 7, "i * {0} % 1000003");
  add("Fecha", "DATETIME", 3, "timestamp '2020-01-01' + (i * {0} % 2000) * interval '1 day'");
  add("Marca", "BIT", 4, "-((i + {0}) % 2)");
  shop.installation()->addToSchema(
      1, fmt::format("CREATE TABLE Anchas ({}, CONSTRAINT PK_Anchas PRIMARY KEY (Id));", columns));
  ServerLine line = shop.database().line();
  std::string names = "\"Id\"";
  for (const auto& [prefix, count] :
       {std::pair{"Texto", 20}, {"Doble", 10}, {"Entero", 7}, {"Fecha", 3}, {"Marca", 4}}) {
    for (int i = 1; i <= count; ++i) names += fmt::format(", \"{}{}\"", prefix, i);
  }
  line.run(fmt::format("INSERT INTO main.\"Anchas\" ({}) SELECT {} FROM generate_series(1, {}) i",
                       names, values, rows));
  line.run("ANALYZE");
  line.prepare("all", fmt::format("SELECT {} FROM main.\"Anchas\"", names));

  using Cells = std::vector<std::vector<driver::Cell>>;
  Cells byHand;
  RecordsetPtr set;
  const auto take = [&] {
    const auto result = line.execute("all", {}, 1);
    const int found = PQntuples(result.get());
    const int width = PQnfields(result.get());
    byHand.reserve(static_cast<std::size_t>(found));
    for (int row = 0; row < found; ++row) {
      std::vector<driver::Cell>& cells = byHand.emplace_back(static_cast<std::size_t>(width));
      for (int i = 0; i < width; ++i) {
        if (PQgetisnull(result.get(), row, i) != 0) continue;
        const auto* const bytes =
            reinterpret_cast<const unsigned char*>(PQgetvalue(result.get(), row, i));
        const int length = PQgetlength(result.get(), row, i);
        const bool isText = i >= 1 && i <= 20;
        if (isText) {
          cells[static_cast<std::size_t>(i)] =
              std::string(PQgetvalue(result.get(), row, i), static_cast<std::size_t>(length));
          continue;
        }
        std::uint64_t number = 0;
        for (int byte = 0; byte < length; ++byte) number = number << 8U | bytes[byte];
        const bool isDouble = i >= 21 && i <= 30;
        if (isDouble) {
          cells[static_cast<std::size_t>(i)] = std::bit_cast<double>(number);
        } else {
          cells[static_cast<std::size_t>(i)] = static_cast<std::int64_t>(number);
        }
      }
    }
    return static_cast<double>(byHand.size());
  };
  report.add(compare({.work = "server: open 45 columns (by hand: libpq and vectors)",
                      .rows = rows,
                      .target = 0.70,
                      .floor = {take, {}, [&] { Cells().swap(byHand); }},
                      .ours = {[&] {
                                 ConnectionPtr connection;
                                 set.reset();
                                 DataSession().OpenRecordset(1, Statement("SELECT * FROM Anchas"),
                                                             set, connection);
                                 return static_cast<double>(set->RecordCount());
                               },
                               {},
                               [&] { set.reset(); }},
                      .waits = true},
                     scale));
}

// ---------------------------------------------------------------------------------------------
// Articles

void measureArticleImport(Report& report, const Scale& scale) {
  using tools::ArticleField;
  using tools::ArticleImport;
  ServerShop shop;
  const Apartment apartment(shop.installation());
  ServerLine line = shop.database().line();
  Dice dice(7);
  std::vector<std::vector<tools::CsvFile::Row>> batches;
  std::string copied;
  const std::size_t rows = scale.of(92'331);
  for (std::size_t i = 0; i < rows; ++i) {
    if (i % ArticleImport::kBatch == 0) batches.emplace_back();
    tools::CsvFile::Row& row = batches.back().emplace_back();
    row.line = i + 2;
    row.fields = {fmt::format("{:07}", dice.below(10) + 10 * i), dice.text(),
                  fmt::format("F{:02}", dice.below(40)),
                  fmt::format("{}.{:02}", dice.below(500), dice.below(100))};
    const auto& f = row.fields;
    copied += fmt::format(
        "{0}\tPRC\t{0}\t{1}\t{1}\t{1}\t{1}\t{1}\t{1}\t{1}\t\t{2}\t{3}\t0\t0\t\t0\t0\t-"
        "1\t0\t0\tUnd\t1\t"
        "100\t0\t-1\tUnd\t1\t0\t0\t0\t0\t0\t0\t0\t2026-03-01\n",
        f[0], f[1], f[2], f[3]);
  }
  const auto empty = [&] { line.run("TRUNCATE main.\"Articulos\""); };
  const auto sum = [&] {
    return std::stod(line.run("SELECT count(*) + sum(\"Tarifa_A\") FROM main.\"Articulos\""));
  };
  std::vector<tools::FieldSource> from(ArticleImport::kTable.fields.size());
  std::size_t column = 0;
  for (const ArticleField field : {ArticleField::kCode, ArticleField::kDescription,
                                   ArticleField::kFamily, ArticleField::kPriceA}) {
    from[static_cast<std::size_t>(field)] = {.column = column++, .constant = {}, .given = true};
  }
  const auto copy = [&] {
    line.run(
        "COPY main.\"Articulos\" (\"Codigo\", \"Lista\", \"Referencia\", \"Descripcion\", "
        "\"Idioma_1\", \"Idioma_2\", \"Idioma_3\", \"Idioma_4\", \"Idioma_5\", \"Idioma_6\", "
        "\"Seccion\", \"Familia\", \"Tarifa_A\", \"Tarifa_B\", \"Tarifa_C\", \"Impuesto\", "
        "\"Precio_Coste\", \"Precio_Medio\", \"Descuento\", \"Descuento_D\", \"Existencia\", "
        "\"Unidad_Stock\", \"Minimo\", \"Maximo\", \"Pendiente\", \"Activo\", \"Unidad_Compra\", "
        "\"Medida_Compra\", \"Actualizar_Stock\", \"Lotes\", \"Articulo_Compuesto\", \"Interno\", "
        "\"Valor_Interno\", \"Empleado\", \"Merma\", \"Fecha\") FROM STDIN");
    if (PQputCopyData(line.handle(), copied.data(), static_cast<int>(copied.size())) != 1 ||
        PQputCopyEnd(line.handle(), nullptr) != 1) {
      throw std::runtime_error(PQerrorMessage(line.handle()));
    }
    while (PGresult* const each = PQgetResult(line.handle())) {
      const bool isDone = PQresultStatus(each) == PGRES_COMMAND_OK;
      PQclear(each);
      if (!isDone) throw std::runtime_error(PQerrorMessage(line.handle()));
    }
    return sum();
  };
  report.add(compare({.work = "server: import of new articles (by hand: COPY)",
                      .rows = rows,
                      .target = 1.5,
                      .floor = {copy, empty},
                      .ours = {[&] {
                                 ArticleImport import({from, 4, Locale::neutral().get(), false});
                                 for (const auto& batch : batches) import.take(batch, batch.size());
                                 return sum();
                               },
                               empty},
                      .waits = true},
                     Scale{scale.quick, std::min<std::size_t>(scale.rounds, 3)}));
}

// ---------------------------------------------------------------------------------------------
// The shop's own sale, over a line that takes its time

/// What a sale has sent, each statement run alone and waited for, with the same values: the sale is
/// undone before, so that the same numbers are free. Those that a record set composed count as the
/// reading of one row.
void runOneByOne(const std::vector<TraceEntry>& entries, const ConnectionPtr& main,
                 const ConnectionPtr& documents) {
  for (const TraceEntry& entry : entries) {
    const ConnectionPtr& connection = entry.selector == 1 ? main : documents;
    const Statement statement = Statement::trusted(entry.text);
    if (entry.text.find('?') != std::string::npos) {
      main->anyRow(Statement("SELECT Codigo FROM Cajas WHERE Codigo = '01'"));
    } else if (entry.text.starts_with("SELECT")) {
      connection->anyRow(statement);
    } else {
      connection->Execute(statement);
    }
  }
}

constexpr std::chrono::microseconds kSlowLine{1'000};  // there and back

void measureSlowLine(Report& report, const Scale& scale) {
  ServerShop shop;
  test::LineProxy line(shop.database().address().hosts);
  line.delayBy(kSlowLine / 2);
  const auto far = shop.over(line.port());
  Apartment apartment(far);
  flows::seedCatalogues();
  flows::Shop till;
  till.openTills({"01"});
  const ConnectionPtr main = DataSession().OpenConnection(1);
  const ConnectionPtr documents = DataSession().OpenConnection(3);
  const Date day = apartment.clock().today();
  till.sell(shopSale(0, 30, day));
  int turn = 0;
  for (const int lines : {1, 5, 30}) {
    std::vector<double> whole, alone;
    std::int64_t waits = 0;
    for (std::size_t round = 0; round < std::min<std::size_t>(scale.rounds, 5); ++round) {
      main->BeginTrans();
      documents->BeginTrans();
      apartment.trace().turn(true);
      apartment.trace().clear();
      const std::int64_t before = main->waits();
      Clock::time_point begun = Clock::now();
      till.sell(shopSale(++turn, lines, day));
      whole.push_back(milliseconds(Clock::now() - begun));
      waits = main->waits() - before + 1;  // and the commit
      const std::vector<TraceEntry> entries(apartment.trace().entries().begin(),
                                            apartment.trace().entries().end());
      apartment.trace().turn(false);
      documents->RollbackTrans();
      main->RollbackTrans();
      main->BeginTrans();
      documents->BeginTrans();
      begun = Clock::now();
      runOneByOne(entries, main, documents);
      alone.push_back(milliseconds(Clock::now() - begun));
      documents->RollbackTrans();
      main->RollbackTrans();
    }
    report.add(
        {fmt::format("server: the shop's sale of {} lines, line of 1 ms, {} waits", lines, waits),
         static_cast<std::size_t>(lines), medianOf(alone), medianOf(whole), "ms", 0.20});
  }
}

}  // namespace

void measureServer(Report& report, const Scale& scale) {
  if (benchServer().empty()) {
    report.note("TAVELOR_BENCH_SERVER names no server: nothing is measured on one.");
    return;
  }
  measureOneSale(report, scale);
  measureTills(report, scale);
  measureRows(report, scale);
  measureArticleImport(report, scale);
  measureSlowLine(report, scale);
  const ServerShop plain;
  const ServerShop recording;
  compareRecordedSale("server: ", plain.installation(), recording.installation(), report, scale);
}

}  // namespace tavelor::bench
