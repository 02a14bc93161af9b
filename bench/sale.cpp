// SPDX-License-Identifier: MIT
// A ticket with five lines, their stock and movements, and the counter, in one transaction: what a
// till does all day.
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kLines = 5;
constexpr std::size_t kArticles = 5'000;
constexpr Date kTime(0.4375);  // 10:30

struct Line {
  std::string article;
  std::string description;
  double quantity;
  double price;
  double amount;
};

struct Sale {
  double number;
  std::string customer;
  Date date;
  double total;
  std::array<Line, kLines> lines;
};

Sale saleOf(std::size_t turn, Dice& dice) {
  Sale sale{static_cast<double>(turn),
            fmt::format("{:05}", dice.below(1000)),
            Date(46000 + static_cast<double>(turn % 300)),
            0,
            {}};
  for (Line& line : sale.lines) {
    const auto quantity = static_cast<double>(1 + dice.below(9));
    const double price = static_cast<double>(dice.below(10'000)) / 100;
    line = {fmt::format("A{:05}", dice.below(kArticles)), dice.text(), quantity, price,
            quantity * price};
    sale.total += line.amount;
  }
  return sale;
}

constexpr const char* kTables =
    "CREATE TABLE Ventas (Numero DOUBLE NOT NULL, Serie TEXT(5), Fecha DATETIME, Codigo TEXT(20), "
    "Razon_Social TEXT(150), Tarifa TEXT(10), Almacen TEXT(20), Divisa TEXT(20), Forma_Pago "
    "TEXT(50), Descuento DOUBLE, Base CURRENCY, Importe_Impuestos CURRENCY, Total CURRENCY, Estado "
    "LONG DEFAULT 0, Impreso BIT NOT NULL DEFAULT 0, Caja TEXT(20), Empleado TEXT(20), CONSTRAINT "
    "PK_Ventas PRIMARY KEY (Numero));"
    "CREATE INDEX IX_Ventas_Caja ON Ventas (Caja, Fecha);"
    "CREATE TABLE Ventas_Lineas (Documento DOUBLE, Linea LONG, Codigo TEXT(50), Descripcion "
    "TEXT(255), Cantidad DOUBLE, Precio CURRENCY, Importe CURRENCY, Impuesto DOUBLE, Almacen "
    "TEXT(20));"
    "CREATE INDEX IX_Ventas_Lineas ON Ventas_Lineas (Documento);"
    "CREATE TABLE Existencias (Codigo TEXT(50) NOT NULL, Existencia DOUBLE DEFAULT 0, "
    "Actualizar_Stock BIT NOT NULL DEFAULT 0, CONSTRAINT PK_Existencias PRIMARY KEY (Codigo));"
    "CREATE TABLE Movimientos (Id LONG NOT NULL, Fecha DATETIME, Hora DATETIME, Almacen TEXT(10), "
    "Codigo TEXT(50), Cantidad DOUBLE DEFAULT 0, Precio CURRENCY DEFAULT 0, Movimiento SHORT "
    "DEFAULT 0, Documento DOUBLE, CONSTRAINT PK_Movimientos PRIMARY KEY (Id));"
    "CREATE INDEX IX_Movimientos_Codigo ON Movimientos (Codigo, Fecha);"
    "CREATE INDEX IX_Movimientos_Documento ON Movimientos (Documento);"
    "CREATE TABLE Contadores (Codigo TEXT(3) NOT NULL, Ticket_a DOUBLE, CONSTRAINT PK_Contadores "
    "PRIMARY KEY (Codigo));";

class SaleByHand {
 public:
  explicit SaleByHand(driver::Database& database)
      : database_(database),
        begin_(database.prepare("BEGIN IMMEDIATE")),
        commit_(database.prepare("COMMIT")),
        ticket_(database.prepare(
            "INSERT INTO Ventas (Numero, Serie, Fecha, Codigo, Razon_Social, Tarifa, Almacen, "
            "Divisa, Forma_Pago, Descuento, Base, Importe_Impuestos, Total, Caja, Empleado) "
            "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)")),
        line_(database.prepare(
            "INSERT INTO Ventas_Lineas (Documento, Linea, Codigo, Descripcion, Cantidad, Precio, "
            "Importe, Impuesto, Almacen) VALUES (?,?,?,?,?,?,?,?,?)")),
        stock_(
            database.prepare("UPDATE Existencias SET Existencia = Existencia + ? WHERE Codigo = ? "
                             "AND Actualizar_Stock <> 0")),
        movement_(database.prepare(
            "INSERT INTO Movimientos (Id, Fecha, Hora, Almacen, Codigo, Cantidad, Precio, "
            "Movimiento, Documento) VALUES (?,?,?,?,?,?,?,?,?)")),
        counter_(database.prepare("UPDATE Contadores SET Ticket_a = ? WHERE Codigo = ?")) {}

  void sell(const Sale& sale) {
    using Text = std::string_view;
    begin_.run();
    ticket_.bind(1, sale.number).bind(2, Text("a")).bind(3, sale.date.days());
    ticket_.bind(4, Text(sale.customer)).bind(5, Text("CLIENTE CONTADO")).bind(6, Text("01"));
    ticket_.bind(7, Text("00")).bind(8, Text("EURO")).bind(9, Text("CONTADO")).bind(10, 0.0);
    ticket_.bind(11, sale.total).bind(12, sale.total * 0.21).bind(13, sale.total * 1.21);
    ticket_.bind(14, Text("CAJA1")).bind(15, Text("0001")).run();
    std::int64_t number = 0;
    for (const Line& line : sale.lines) {
      line_.bind(1, sale.number).bind(2, ++number).bind(3, Text(line.article));
      line_.bind(4, Text(line.description)).bind(5, line.quantity).bind(6, line.price);
      line_.bind(7, line.amount).bind(8, 21.0).bind(9, Text("00")).run();
      stock_.bind(1, -line.quantity).bind(2, Text(line.article)).run();
      movement_.bind(1, ++movements_).bind(2, sale.date.days()).bind(3, kTime.days());
      movement_.bind(4, Text("00")).bind(5, Text(line.article)).bind(6, line.quantity);
      movement_.bind(7, line.price).bind(8, std::int64_t{1}).bind(9, sale.number).run();
    }
    counter_.bind(1, sale.number).bind(2, Text("1")).run();
    commit_.run();
  }

  double sold() {
    return database_.prepare("SELECT COUNT(*) FROM Ventas_Lineas").firstNumber() +
           database_.prepare("SELECT SUM(Cantidad) FROM Movimientos").firstNumber();
  }

 private:
  driver::Database& database_;
  driver::Query begin_;
  driver::Query commit_;
  driver::Query ticket_;
  driver::Query line_;
  driver::Query stock_;
  driver::Query movement_;
  driver::Query counter_;
  std::int64_t movements_ = 0;
};

/// As the classes do it: every value printed and spliced, a DataSession a member.
class SaleBySplicing {
 public:
  void sell(const Sale& sale) {
    if (!connection_) connection_ = DataSession().OpenConnection(1);
    connection_->BeginTrans();
    Statement ticket(
        "INSERT INTO Ventas (Numero, Serie, Fecha, Codigo, Razon_Social, Tarifa, Almacen, Divisa, "
        "Forma_Pago, Descuento, Base, Importe_Impuestos, Total, Caja, Empleado) VALUES (");
    const std::string number = sqlNumber(sale.number);
    ticket << spliced(number) << ", '" << spliced("a") << "', "
           << spliced(DataSession().DateLiteral(1, Variant(sale.date))) << ", '"
           << spliced(sale.customer) << "', '" << spliced("CLIENTE CONTADO") << "', '"
           << spliced("01") << "', '" << spliced("00") << "', '" << spliced("EURO") << "', '"
           << spliced("CONTADO") << "', " << spliced(sqlNumber(0)) << ", "
           << spliced(sqlNumber(sale.total)) << ", " << spliced(sqlNumber(sale.total * 0.21))
           << ", " << spliced(sqlNumber(sale.total * 1.21)) << ", '" << spliced("CAJA1") << "', '"
           << spliced("0001") << "')";
    run(ticket);
    int order = 0;
    for (const Line& line : sale.lines) {
      const std::string quantity = sqlNumber(line.quantity);
      Statement detail(
          "INSERT INTO Ventas_Lineas (Documento, Linea, Codigo, Descripcion, Cantidad, Precio, "
          "Importe, Impuesto, Almacen) VALUES (");
      detail << spliced(number) << ", " << spliced(std::to_string(++order)) << ", '"
             << spliced(line.article) << "', '" << spliced(line.description) << "', "
             << spliced(quantity) << ", " << spliced(sqlNumber(line.price)) << ", "
             << spliced(sqlNumber(line.amount)) << ", " << spliced(sqlNumber(21)) << ", '"
             << spliced("00") << "')";
      run(detail);
      Statement stock("UPDATE  Existencias SET Existencia = Existencia + ");
      stock << spliced(sqlNumber(-line.quantity)) << " WHERE(Codigo ='" << spliced(line.article)
            << "' and Actualizar_Stock <> 0)";
      run(stock);
      Statement movement(
          "INSERT INTO Movimientos (Id, Fecha, Hora, Almacen, Codigo, Cantidad, Precio, "
          "Movimiento, Documento) VALUES (");
      movement << spliced(std::to_string(++movements_)) << ", "
               << spliced(DataSession().DateLiteral(1, Variant(sale.date))) << ", "
               << spliced(DataSession().TimeLiteral(1, Variant(kTime))) << ", '" << spliced("00")
               << "', '" << spliced(line.article) << "', " << spliced(quantity) << ", "
               << spliced(sqlNumber(line.price)) << ", " << spliced("1") << ", " << spliced(number)
               << ")";
      run(movement);
    }
    Statement counter("UPDATE Contadores SET Ticket_a = ");
    counter << spliced(number) << " WHERE Codigo = '" << spliced("1") << "'";
    run(counter);
    connection_->CommitTrans();
  }

  double sold(BenchShop& shop) {
    const auto number = [&](const char* statement) {
      return shop.open(statement)->Field(0).Value().toDouble(*shop.installation().locale());
    };
    return number("SELECT COUNT(*) AS n FROM Ventas_Lineas") +
           number("SELECT SUM(Cantidad) AS n FROM Movimientos");
  }

 private:
  void run(const Statement& statement) { DataSession().Execute(1, statement, connection_); }
  ConnectionPtr connection_;
  std::int64_t movements_ = 0;
};

void measureWith(Report& report, const Scale& scale, bool synchronous) {
  const std::size_t sales = scale.of(synchronous ? 100 : 1000);
  BenchShop shop(synchronous);
  shop.addTables(kTables);
  shop.filler().execute("BEGIN");
  for (std::size_t i = 0; i < kArticles; ++i) {
    shop.filler().execute(fmt::format("INSERT INTO Existencias VALUES ('A{:05}', 1000, -1)", i));
  }
  shop.filler().execute("INSERT INTO Contadores VALUES ('1', 0)");
  shop.filler().execute("COMMIT");
  shop.share();

  SaleByHand byHand(shop.floor());
  SaleBySplicing spliced;
  // What is sold is made before the clock starts; each side sells the same.
  struct Till {
    std::vector<Sale> next;
    std::size_t turn = 0;
    Dice dice{11};
  };
  const auto round = [sales](Till& till, auto sell) {
    return Side{[&till, sell] {
                  for (const Sale& sale : till.next) sell(sale);
                  return static_cast<double>(till.turn);
                },
                [&till, sales] {
                  till.next.clear();
                  for (std::size_t i = 0; i < sales; ++i) {
                    till.next.push_back(saleOf(++till.turn, till.dice));
                  }
                }};
  };
  Till first;
  Till second;
  // By time, 1/0.90 and 1/0.70: at least nine and seven sales in the time of ten.
  report.add(
      compare({synchronous ? "sale, every commit on the disk" : "sale, commits left to the system",
               sales, synchronous ? 1 / 0.90 : 1 / 0.70,
               round(first, [&](const Sale& sale) { byHand.sell(sale); }),
               round(second, [&](const Sale& sale) { spliced.sell(sale); }), synchronous},
              scale));
  if (byHand.sold() != spliced.sold(shop)) throw std::runtime_error("The sales differ.");
}

}  // namespace

void measureSale(Report& report, const Scale& scale) {
  measureWith(report, scale, true);
  measureWith(report, scale, false);
}

}  // namespace tavelor::bench
