// SPDX-License-Identifier: MIT
// A ticket with five lines, their stock and movements, and the counter, in one transaction: what a
// till does all day.
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/spliced_sale.hpp"
#include "bench/works.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

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
    for (const SaleLine& line : sale.lines) {
      line_.bind(1, sale.number).bind(2, ++number).bind(3, Text(line.article));
      line_.bind(4, Text(line.description)).bind(5, line.quantity).bind(6, line.price);
      line_.bind(7, line.amount).bind(8, 21.0).bind(9, Text("00")).run();
      stock_.bind(1, -line.quantity).bind(2, Text(line.article)).run();
      movement_.bind(1, ++movements_).bind(2, sale.date.days()).bind(3, kSaleTime.days());
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

void measureWith(Report& report, const Scale& scale, bool synchronous) {
  const std::size_t sales = scale.of(synchronous ? 100 : 1000);
  BenchShop shop(synchronous);
  shop.addTables(kSaleTables);
  shop.filler().execute("BEGIN");
  for (std::size_t i = 0; i < kSaleArticles; ++i) {
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
