// SPDX-License-Identifier: MIT
// Deliveries of ten lines: stock, lots, movements, prices and the suppliers' accounts, beside the
// same reads and writes by prepared statements.
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/flows/receiving.hpp"

namespace tavelor::bench {

namespace {

using Text = std::string_view;

constexpr std::size_t kArticles = 20'000;
constexpr std::size_t kSuppliers = 50;
constexpr std::size_t kLines = 1'000;
constexpr std::size_t kLinesADelivery = 10;
constexpr std::size_t kDeliveriesADay = 40;
constexpr Text kWarehouse = "001";

/// The next deliveries: every second article is kept by lots.
std::vector<flows::Delivery> deliveriesOf(Dice& dice, std::size_t count, std::size_t articles,
                                          std::size_t& note) {
  std::vector<flows::Delivery> deliveries(count);
  for (flows::Delivery& delivery : deliveries) {
    ++note;
    delivery.supplier = fmt::format("P{:02}", note % kSuppliers);
    delivery.note = fmt::format("A-{}", note);
    const std::size_t day = note / kDeliveriesADay;
    delivery.day = Date(45'000 + static_cast<double>(day));
    for (std::size_t i = 0; i < kLinesADelivery; ++i) {
      const std::size_t article = dice.below(articles);
      const bool byLots = article % 2 == 1;
      delivery.lines.push_back({.code = fmt::format("A{:06}", article),
                                .quantity = static_cast<double>(1 + dice.below(90)),
                                .price = static_cast<double>(1 + dice.below(10'000)) / 100,
                                .discount = 0,
                                .warehouse = {},
                                .lot = byLots ? fmt::format("L{:06}", article) : "",
                                .expires = {},
                                .origin = 0});
    }
  }
  return deliveries;
}

void fill(BenchShop& shop, std::size_t articles) {
  driver::Database& filler = shop.filler();
  filler.execute("BEGIN");
  filler.execute("INSERT INTO Almacenes (Codigo) VALUES ('001')");
  for (std::size_t i = 0; i < kSuppliers; ++i) {
    filler.execute(
        fmt::format("INSERT INTO Proveedores (Codigo, Activo) VALUES ('P{:02}', -1)", i));
  }
  driver::Query article = filler.prepare(
      "INSERT INTO Articulos (Codigo, Descripcion, Existencia, Precio_Medio, Pendiente, "
      "Medida_Compra, Actualizar_Stock, Lotes, Activo) VALUES (?, ?1, 1000, 5, 0, 1, -1, ?, -1)");
  driver::Query warehouse = filler.prepare(
      "INSERT INTO Articulos_Almacenes (Id, Codigo, Almacen, Cantidad) VALUES (?, ?, '001', 1000)");
  driver::Query lot = filler.prepare(
      "INSERT INTO Articulos_Lotes (Id, Codigo, Lote, Existencia, Activo, Stock) VALUES (?, ?, ?, "
      "1000, -1, -1)");
  for (std::size_t i = 0; i < articles; ++i) {
    const std::string code = fmt::format("A{:06}", i);
    const std::string word = fmt::format("L{:06}", i);
    const auto id = static_cast<std::int64_t>(i + 1);
    const bool byLots = i % 2 == 1;
    article.bind(1, Text(code)).bind(2, std::int64_t{byLots ? -1 : 0}).run();
    warehouse.bind(1, id).bind(2, Text(code)).run();
    if (byLots) lot.bind(1, id).bind(2, Text(code)).bind(3, Text(word)).run();
  }
  filler.execute("COMMIT");
}

/// Money without cents is stored as a whole number.
double numberOf(const driver::Cell& cell) {
  if (const auto* const whole = std::get_if<std::int64_t>(&cell))
    return static_cast<double>(*whole);
  const auto* const number = std::get_if<double>(&cell);
  return number == nullptr ? 0 : *number;
}

class ReceivingByHand {
 public:
  explicit ReceivingByHand(driver::Database& d)
      : begin_(d.prepare("BEGIN IMMEDIATE")),
        commit_(d.prepare("COMMIT")),
        supplier_(d.prepare("SELECT Codigo FROM Proveedores WHERE Codigo = ?")),
        known_(d.prepare("SELECT Documento_E, Fecha, Haber FROM Proveedores_Apuntes_Contables "
                         "WHERE Codigo = ? AND Concepto = ? AND Estado = 2")),
        lastEntry_(d.prepare("SELECT MAX(Id) FROM Proveedores_Apuntes_Contables")),
        taken_(d.prepare(
            "SELECT Id FROM Articulos_Movimientos_Almacen WHERE Estado = 2 AND Doc_E = ?")),
        lastMovement_(d.prepare("SELECT MAX(ID) FROM Articulos_Movimientos_Almacen")),
        hasWarehouse_(d.prepare("SELECT Codigo FROM Almacenes WHERE Codigo = ?")),
        readArticle_(d.prepare(
            "SELECT Codigo, Existencia, Pendiente, Precio_Medio, Medida_Compra, Actualizar_Stock, "
            "Lotes, Articulo_Compuesto, Activo FROM Articulos WHERE Codigo = ?")),
        readLot_(d.prepare("SELECT Codigo, Caduca FROM Articulos_Lotes WHERE Lote = ?")),
        isKept_(d.prepare("SELECT Codigo, Actualizar_Stock FROM Articulos WHERE Codigo = ?")),
        measure_(d.prepare("SELECT Medida_compra FROM Articulos WHERE Codigo = ?")),
        article_(d.prepare("UPDATE Articulos SET Existencia = Existencia + ?, Pendiente = "
                           "Pendiente + ? WHERE Codigo = ?")),
        hasPair_(d.prepare("SELECT Id, Codigo, Almacen, Cantidad FROM Articulos_Almacenes WHERE "
                           "Codigo = ? AND Almacen = ?")),
        warehouse_(d.prepare("UPDATE Articulos_Almacenes SET Cantidad = Cantidad + ?, Pendiente = "
                             "Pendiente + ? WHERE Codigo = ? AND Almacen = ?")),
        hasLot_(d.prepare(
            "SELECT Id, Codigo, Lote FROM Articulos_Lotes WHERE Codigo = ? AND Lote = ?")),
        lot_(d.prepare("UPDATE Articulos_Lotes SET Existencia = Existencia + ? WHERE Codigo = ? "
                       "AND Lote = ?")),
        movement_(d.prepare(
            "INSERT INTO Articulos_Movimientos_Almacen (Id, Fecha, Hora, Almacen, Codigo, Lote, "
            "Cantidad, Precio, Referencia, Movimiento, Seccion, Empleado, Estado, Doc_E, Cod_ID) "
            "VALUES (?,?,0,?,?,?,?,?,?,0,'','',2,?,?)")),
        cost_(d.prepare("UPDATE Articulos SET Precio_Coste = ? WHERE Codigo = ?")),
        average_(d.prepare("UPDATE Articulos SET Precio_Medio = round(?, 4) WHERE Codigo = ?")),
        hasPrice_(d.prepare("SELECT Id, Codigo, Proveedor, Precio FROM Articulos_Precios_Compras "
                            "WHERE Codigo = ? AND Proveedor = ?")),
        lastPrice_(d.prepare("SELECT MAX(Id) FROM Articulos_Precios_Compras")),
        newPrice_(d.prepare("INSERT INTO Articulos_Precios_Compras (Id, Codigo, Proveedor, Precio) "
                            "VALUES (?, ?, ?, ?)")),
        price_(d.prepare("UPDATE Articulos_Precios_Compras SET Precio = ? WHERE Codigo = ? AND "
                         "Proveedor = ?")),
        balance_(d.prepare("SELECT Sum(Debe), Sum(Haber) FROM Proveedores_Apuntes_Contables WHERE "
                           "Fecha <= ? AND Codigo = ?")),
        entry_(d.prepare(
            "INSERT INTO Proveedores_Apuntes_Contables (Id, Serie, Codigo, Fecha, Concepto, "
            "Debe_Haber, Debe, Haber, Saldo, Estado, Documento_E) VALUES (?, 'A', ?, ?, ?, 'H', 0, "
            "?, ?, 2, ?)")),
        later_(d.prepare("UPDATE Proveedores_Apuntes_Contables SET Saldo = Saldo + ? WHERE Fecha > "
                         "? AND Codigo = ?")) {}

  void receive(const flows::Delivery& delivery) {
    const Text supplier = delivery.supplier;
    const std::string text = "Albarán " + delivery.note;
    begin_.run();
    if (supplier_.bind(1, supplier).fetch().empty()) throw std::runtime_error("no supplier");
    if (!known_.bind(1, supplier).bind(2, Text(text)).fetch().empty()) {
      throw std::runtime_error("the delivery is known");
    }
    const double number = lastEntry_.firstNumber() + 1;
    if (!taken_.bind(1, number).fetch().empty()) throw std::runtime_error("the number is taken");
    auto movement = static_cast<std::int64_t>(lastMovement_.firstNumber());
    if (hasWarehouse_.bind(1, kWarehouse).fetch().empty()) throw std::runtime_error("no warehouse");
    std::size_t place = 0;
    for (const flows::DeliveryLine& line : delivery.lines) {
      post(delivery, line, number, ++movement, std::to_string(++place));
    }
    charge(delivery, text, number);
    commit_.run();
  }

 private:
  void post(const flows::Delivery& delivery, const flows::DeliveryLine& line, double number,
            std::int64_t movement, const std::string& place) {
    const Text code = line.code;
    const Text lot = line.lot;
    const driver::Rows rows = readArticle_.bind(1, code).fetch();
    const double stock = numberOf(rows.at(0).at(1));
    const double average = numberOf(rows[0].at(3));
    if (!lot.empty() && readLot_.bind(1, lot).fetch().empty()) throw std::runtime_error("no lot");
    if (!isKept_.bind(1, code).fetch().empty()) {
      const double units = line.quantity * measure_.bind(1, code).firstNumber();
      article_.bind(1, units).bind(2, 0.0).bind(3, code).run();
      if (!isKept_.bind(1, code).fetch().empty() &&
          !hasPair_.bind(1, code).bind(2, kWarehouse).fetch().empty()) {
        warehouse_.bind(1, units).bind(2, 0.0).bind(3, code).bind(4, kWarehouse).run();
      }
      if (!lot.empty() && !hasLot_.bind(1, code).bind(2, lot).fetch().empty()) {
        lot_.bind(1, units).bind(2, code).bind(3, lot).run();
      }
      movement_.bind(1, movement).bind(2, delivery.day.days()).bind(3, kWarehouse).bind(4, code);
      movement_.bind(5, lot.empty() ? Text("0") : lot).bind(6, units).bind(7, line.price);
      movement_.bind(8, Text(delivery.note)).bind(9, number).bind(10, Text(place)).run();
    }
    cost_.bind(1, line.price).bind(2, code).run();
    average_.bind(1, (stock * average + line.quantity * line.price) / (stock + line.quantity));
    average_.bind(2, code).run();
    const Text supplier = delivery.supplier;
    if (hasPrice_.bind(1, code).bind(2, supplier).fetch().empty()) {
      const auto id = static_cast<std::int64_t>(lastPrice_.firstNumber()) + 1;
      newPrice_.bind(1, id).bind(2, code).bind(3, supplier).bind(4, line.price).run();
    } else {
      price_.bind(1, line.price).bind(2, code).bind(3, supplier).run();
    }
  }

  void charge(const flows::Delivery& delivery, const std::string& text, double number) {
    const Text supplier = delivery.supplier;
    const auto id = static_cast<std::int64_t>(lastEntry_.firstNumber()) + 1;
    const double day = delivery.day.days();
    const driver::Rows sums = balance_.bind(1, day).bind(2, supplier).fetch();
    const double before = numberOf(sums.at(0).at(1)) - numberOf(sums[0].at(0));
    const double amount = delivery.total();
    entry_.bind(1, id).bind(2, supplier).bind(3, day).bind(4, Text(text)).bind(5, amount);
    entry_.bind(6, before + amount).bind(7, number).run();
    later_.bind(1, amount).bind(2, day).bind(3, supplier).run();
  }

  driver::Query begin_, commit_, supplier_, known_, lastEntry_, taken_, lastMovement_;
  driver::Query hasWarehouse_, readArticle_, readLot_, isKept_, measure_, article_;
  driver::Query hasPair_, warehouse_, hasLot_, lot_, movement_, cost_, average_;
  driver::Query hasPrice_, lastPrice_, newPrice_, price_, balance_, entry_, later_;
};

void receiveHere(flows::Receiving& receiving, const flows::Delivery& delivery) {
  const flows::Receipt receipt = receiving.receive(delivery);
  if (receipt.outcome == flows::Receipt::Outcome::kReceived) return;
  throw std::runtime_error(receipt.faults.empty() ? "known" : receipt.faults.front().reason);
}

/// Sums that show what a delivery leaves behind.
constexpr std::array kSums = {
    "SELECT Sum(Existencia) AS s FROM Articulos",
    "SELECT Sum(Precio_Coste) AS s FROM Articulos",
    "SELECT Sum(Precio_Medio) AS s FROM Articulos",
    "SELECT Sum(Cantidad) AS s FROM Articulos_Almacenes",
    "SELECT Sum(Existencia) AS s FROM Articulos_Lotes",
    "SELECT Sum(Cantidad * Precio) AS s FROM Articulos_Movimientos_Almacen",
    "SELECT Sum(Id + Doc_E) AS s FROM Articulos_Movimientos_Almacen",
    "SELECT Sum(Precio) AS s FROM Articulos_Precios_Compras",
    "SELECT Sum(Saldo) AS s FROM Proveedores_Apuntes_Contables"};

}  // namespace

void measureReceive(Report& report, const Scale& scale) {
  const std::size_t articles = scale.of(kArticles);
  const std::size_t deliveries = scale.of(kLines / kLinesADelivery);
  BenchShop shop;
  fill(shop, articles);
  shop.share();
  ReceivingByHand byHand(shop.floor());
  flows::Receiving receiving;
  // What comes in is made before the clock starts; each side receives the same.
  struct Gate {
    std::vector<flows::Delivery> next;
    std::size_t note = 0;
    Dice dice{31};
  };
  const auto side = [deliveries, articles](Gate& gate, auto receive) {
    return Side{[&gate, receive] {
                  for (const flows::Delivery& delivery : gate.next) receive(delivery);
                  return 0.0;
                },
                [&gate, deliveries, articles] {
                  gate.next = deliveriesOf(gate.dice, deliveries, articles, gate.note);
                }};
  };
  Gate first;
  Gate second;
  report.add(
      compare({"line of a delivery, ten a delivery", deliveries * kLinesADelivery, 1.3,
               side(first, [&](const flows::Delivery& each) { byHand.receive(each); }),
               side(second, [&](const flows::Delivery& each) { receiveHere(receiving, each); })},
              scale));
  shop.mustAgree(kSums);
}

}  // namespace tavelor::bench
