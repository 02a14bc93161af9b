// SPDX-License-Identifier: MIT
// The stock of a ticket's lines: article, warehouse, lot and ledger, beside the same reads and
// writes by prepared statements.
#include <array>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "bench/shop.hpp"
#include "bench/works.hpp"
#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::bench {

namespace {

constexpr std::size_t kArticles = 100'000;
constexpr std::size_t kLines = 1'000;
constexpr std::size_t kLinesATicket = 5;
constexpr const char* kWarehouse = "001";
constexpr std::array kWarehouses = {kWarehouse, "002", "003"};
constexpr const char* kYear = "2026";
constexpr double kDay = 46'347;
constexpr double kHour = 0.5;

struct Line {
  std::string article;
  std::string lot;
  double quantity;
  double price;
  double ticket;
};

std::vector<Line> linesOf(Dice& dice, std::size_t count, std::size_t articles, double ticket) {
  std::vector<Line> lines;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t article = dice.below(articles);
    lines.push_back({fmt::format("A{:06}", article), fmt::format("L{:06}", article),
                     static_cast<double>(1 + dice.below(900)) / 100,
                     static_cast<double>(dice.below(10'000)) / 100,
                     ticket + static_cast<double>(i / kLinesATicket)});
  }
  return lines;
}

void fill(BenchShop& shop, std::size_t articles) {
  driver::Database& filler = shop.filler();
  filler.execute("BEGIN");
  driver::Query article = filler.prepare(
      "INSERT INTO Articulos (Codigo, Descripcion, Existencia, Actualizar_Stock, Restar_Stock, "
      "Lotes, Activo) VALUES (?, ?1, 1000, -1, -1, -1, -1)");
  driver::Query warehouse = filler.prepare(
      "INSERT INTO Articulos_Almacenes (Id, Codigo, Almacen, Cantidad) VALUES (?, ?, ?, 1000)");
  driver::Query lot = filler.prepare(
      "INSERT INTO Articulos_Lotes (Id, Codigo, Lote, Existencia, Activo, Stock) "
      "VALUES (?, ?, ?, 1000, 0, -1)");
  for (std::size_t i = 0; i < articles; ++i) {
    const std::string code = fmt::format("A{:06}", i);
    const std::string word = fmt::format("L{:06}", i);
    const auto id = static_cast<std::int64_t>(i + 1);
    article.bind(1, std::string_view(code)).run();
    for (std::size_t w = 0; w < kWarehouses.size(); ++w) {
      warehouse.bind(1, static_cast<std::int64_t>(kWarehouses.size() * i + w + 1));
      warehouse.bind(2, std::string_view(code));
      warehouse.bind(3, std::string_view(kWarehouses[w])).run();
    }
    lot.bind(1, id).bind(2, std::string_view(code)).bind(3, std::string_view(word)).run();
  }
  filler.execute(fmt::format(
      "INSERT INTO Numeradores (Codigo, Periodo, Activar_Lote_Uso) VALUES ('001', '{}', -1)",
      kYear));
  filler.execute("COMMIT");
}

class StockByHand {
 public:
  explicit StockByHand(driver::Database& d)
      : begin_(d.prepare("BEGIN IMMEDIATE")),
        commit_(d.prepare("COMMIT")),
        isKept_(d.prepare("SELECT Codigo, Actualizar_Stock FROM Articulos WHERE Codigo = ?")),
        isSold_(d.prepare("SELECT Codigo, Restar_Stock FROM Articulos WHERE Codigo = ?")),
        article_(d.prepare("UPDATE Articulos SET Existencia = Existencia + ? WHERE Codigo = ? AND "
                           "Actualizar_Stock <> 0")),
        hasPair_(d.prepare("SELECT Id, Codigo, Almacen, Cantidad FROM Articulos_Almacenes WHERE "
                           "Codigo = ? AND Almacen = ?")),
        warehouse_(d.prepare("UPDATE Articulos_Almacenes SET Cantidad = Cantidad + ? WHERE Codigo "
                             "= ? AND Almacen = ?")),
        hasLot_(d.prepare(
            "SELECT Id, Codigo, Lote FROM Articulos_Lotes WHERE Codigo = ? AND Lote = ?")),
        byUse_(d.prepare("SELECT Activar_Lote_Uso FROM Numeradores WHERE Periodo = ?")),
        noneActive_(d.prepare("UPDATE Articulos_Lotes SET Activo = 0 WHERE Codigo = ?")),
        keepsStock_(d.prepare("SELECT Id, Codigo, Lote FROM Articulos_Lotes WHERE Codigo = ? AND "
                              "Lote = ? AND Stock <> 0")),
        lot_(d.prepare("UPDATE Articulos_Lotes SET Existencia = Existencia + ?, Activo = -1 WHERE "
                       "Codigo = ? AND Lote = ?")),
        greatest_(d.prepare("SELECT MAX(ID) FROM Articulos_Movimientos_Almacen")),
        movement_(d.prepare(
            "INSERT INTO Articulos_Movimientos_Almacen (Id, Fecha, Hora, Almacen, Codigo, Lote, "
            "Cantidad, Precio, Referencia, Movimiento, Seccion, Empleado, Estado, Doc_E, Cod_ID) "
            "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)")) {}

  void sell(const std::vector<Line>& lines) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (i % kLinesATicket == 0) begin_.run();
      sell(lines[i]);
      if ((i + 1) % kLinesATicket == 0 || i + 1 == lines.size()) commit_.run();
    }
  }

 private:
  using Text = std::string_view;
  bool sells(Text article) {
    return isKept_.bind(1, article).fetch().size() == 1 &&
           isSold_.bind(1, article).fetch().size() == 1;
  }
  void sell(const Line& line) {
    const Text article = line.article;
    const Text lot = line.lot;
    const double taken = -line.quantity;
    if (sells(article)) article_.bind(1, taken).bind(2, article).run();
    if (sells(article) && !hasPair_.bind(1, article).bind(2, Text(kWarehouse)).fetch().empty()) {
      warehouse_.bind(1, taken).bind(2, article).bind(3, Text(kWarehouse)).run();
    }
    if (!hasLot_.bind(1, article).bind(2, lot).fetch().empty()) {
      if (byUse_.bind(1, Text(kYear)).firstNumber() != 0) noneActive_.bind(1, article).run();
      if (!keepsStock_.bind(1, article).bind(2, lot).fetch().empty()) {
        lot_.bind(1, taken).bind(2, article).bind(3, lot).run();
      }
    }
    movement_.bind(1, greatest_.firstNumber() + 1).bind(2, kDay).bind(3, kHour);
    movement_.bind(4, Text(kWarehouse)).bind(5, article).bind(6, lot).bind(7, line.quantity);
    movement_.bind(8, line.price).bind(9, Text("T")).bind(10, std::int64_t{1}).bind(11, Text(""));
    movement_.bind(12, Text("001")).bind(13, std::int64_t{2}).bind(14, line.ticket);
    movement_.bind(15, Text("1")).run();
  }

  driver::Query begin_, commit_;
  driver::Query isKept_, isSold_, article_;
  driver::Query hasPair_, warehouse_;
  driver::Query hasLot_, byUse_, noneActive_, keepsStock_, lot_;
  driver::Query greatest_, movement_;
};

class StockByClasses {
 public:
  void sell(const std::vector<Line>& lines) {
    if (!connection_) connection_ = DataSession().OpenConnection(1);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (i % kLinesATicket == 0) connection_->BeginTrans();
      sell(lines[i]);
      if ((i + 1) % kLinesATicket == 0 || i + 1 == lines.size()) connection_->CommitTrans();
    }
  }

 private:
  void sell(const Line& line) {
    const Variant article(line.article);
    const Variant quantity(line.quantity);
    articles_.DescargarStock_V(article, quantity, quantity, false, false, connection_);
    warehouses_.DescargarStock_V(article, kWarehouse, quantity, quantity, false, false,
                                 connection_);
    lots_.DescargarStock_V(article, line.lot, quantity, quantity, false, connection_);
    ledger_.Insertar({.vId = ledger_.NuevoCodigo("A", connection_),
                      .dtFecha = Date(kDay),
                      .hHora = Date(kHour),
                      .sAlmacen = kWarehouse,
                      .sCodigo = line.article,
                      .sLote = line.lot,
                      .dCantidad = line.quantity,
                      .dPrecio = line.price,
                      .sReferencia = "T",
                      .iMovimiento = 1,
                      .sEmpleado = "001",
                      .iEstado = 2,
                      .dDoc_E = line.ticket,
                      .sCod_ID = "1",
                      .objCn = connection_});
  }

  ConnectionPtr connection_;
  clsArticulos articles_;
  ClsArticulosAlmacenes warehouses_;
  ClsArticulosLotes lots_;
  ClsArticulosMovAlmacen ledger_;
};

/// Sums that show what a sale leaves behind.
constexpr std::array kSums = {"SELECT Sum(Existencia) AS s FROM Articulos",
                              "SELECT Sum(Cantidad) AS s FROM Articulos_Almacenes",
                              "SELECT Sum(Existencia) AS s FROM Articulos_Lotes",
                              "SELECT Sum(Activo) AS s FROM Articulos_Lotes",
                              "SELECT Sum(Cantidad) AS s FROM Articulos_Movimientos_Almacen",
                              "SELECT Sum(Precio) AS s FROM Articulos_Movimientos_Almacen",
                              "SELECT Sum(Id) AS s FROM Articulos_Movimientos_Almacen"};

}  // namespace

void measureStock(Report& report, const Scale& scale) {
  const std::size_t articles = scale.of(kArticles);
  const std::size_t count = scale.of(kLines);
  BenchShop shop;
  fill(shop, articles);
  shop.share();
  clsNumeradores::setCurrentPeriod(kYear);

  StockByHand byHand(shop.floor());
  StockByClasses byClasses;
  // What is sold is made before the clock starts; each side sells the same.
  struct Till {
    std::vector<Line> next;
    double ticket = 0;
    Dice dice{23};
  };
  const auto side = [count, articles](Till& till, auto sell) {
    return Side{[&till, sell] {
                  sell(till.next);
                  return 0.0;
                },
                [&till, count, articles] {
                  till.next = linesOf(till.dice, count, articles, till.ticket);
                  till.ticket += static_cast<double>(count / kLinesATicket + 1);
                }};
  };
  Till first;
  Till second;
  report.add(compare({"stock of a ticket's line in all places", count, 1.5,
                      side(first, [&](const auto& lines) { byHand.sell(lines); }),
                      side(second, [&](const auto& lines) { byClasses.sell(lines); })},
                     scale));
  shop.mustAgree(kSums);
}

}  // namespace tavelor::bench
