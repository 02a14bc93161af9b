// SPDX-License-Identifier: MIT
// A delivery, from top to bottom, and under it the steps that it takes.
#include "tavelor/flows/receiving.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <unordered_set>

#include <fmt/format.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/articles/articulos_precios.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/suppliers/proveedores_apuntes_conta.hpp"

namespace tavelor::flows {

namespace {

constexpr double kMostUnits = 1e12;
// What the columns of the tables hold.
constexpr std::size_t kNoteWidth = 50;
constexpr std::size_t kLotWidth = 50;

/// As much of a text as a message has room for.
std::string shown(std::string_view text) {
  return std::string(tavelor::text::left(text, 40));
}

bool hasLot(const DeliveryLine& line) {
  return !line.lot.empty() && line.lot != kNoLot;
}

std::string lotOf(const DeliveryLine& line) {
  return hasLot(line) ? line.lot : std::string(kNoLot);
}

std::string warehouseOf(const DeliveryLine& line) {
  return line.warehouse.empty() ? std::string(kWarehouse) : line.warehouse;
}

/// What the ledger's entry of a delivery says, by which the delivery is known again.
std::string entryText(const Delivery& delivery) {
  return "Albarán " + delivery.note;
}

/// Prices of a stock unit keep four decimals.
double unitPrice(const DeliveryLine& line, double measure) {
  return roundHalfAway(line.netPrice() / measure, 4);
}

/// Statements carry six decimals, doubles fifteen digits.
bool isSame(double a, double b) {
  return std::abs(a - b) <= 1e-6 + 1e-12 * std::abs(b);
}

}  // namespace

/// All members work on the delivery at hand.
class Receiving::Inner {
 public:
  explicit Inner(ConnectionPtr main);
  Receipt take(const Delivery& delivery, bool keeps);
  Receipt takeOnce(const Delivery& delivery, bool keeps);

 private:
  struct Article;
  struct Known;
  struct Order;
  struct Posting;

  std::string checkHead(const Delivery& delivery);
  std::optional<Known> known(const Delivery& delivery);
  std::string difference(const Delivery& delivery, const Known& known, bool& hasMovements);
  bool hasOtherExpiry(const DeliveryLine& line);
  double freeNumber();

  std::string take(const DeliveryLine& line, Posting& posting);
  Article articleOf(const DeliveryLine& line);
  std::string checkValues(const DeliveryLine& line) const;
  std::string checkArticle(const DeliveryLine& line, const Article& article) const;
  std::string checkWarehouse(const DeliveryLine& line);
  std::string checkLot(const DeliveryLine& line, const Posting& posting, Article& article);
  void moveStock(const DeliveryLine& line, const Article& article);
  void writeMovements(const Posting& posting);
  void writePrices(const DeliveryLine& line, const Article& article, const Posting& posting);
  void charge(const Delivery& delivery, const Posting& posting);
  std::vector<Order> ordersOf(const Article& article, const std::string& warehouse, double arrived);

  ConnectionPtr main_;
  std::string quantityMask_;
  RoundingMask rounded_;
  clsArticulos articles_;
  ClsArticulosAlmacenes warehouses_;
  ClsArticulosLotes lots_;
  ClsArticulosMovAlmacen movements_;
  ClsArticulosPrecios prices_;
  ClsProveedoresApuntesConta ledger_;

  // Of the delivery at hand: another program may write the catalogue between two of them.
  std::unordered_set<std::string> knownWarehouses_;
};

Receiving::Receiving()
    : inner_(std::make_unique<Inner>(DataSession().OpenConnection(selector::kMain))) {}
Receiving::Receiving(const Shop& shop) : inner_(std::make_unique<Inner>(shop.inner_->main())) {}
Receiving::~Receiving() = default;

Receipt Receiving::receive(const Delivery& delivery) {
  return inner_->take(delivery, true);
}
Receipt Receiving::rehearse(const Delivery& delivery) {
  return inner_->take(delivery, false);
}

/// What the shop has of the article of a line, before it; and what the line adds.
struct Receiving::Inner::Article {
  bool isThere = false;
  std::string code;    // as the classes take it
  double stock = 0;    // stock units
  double pending = 0;  // stock units on order
  double average = 0;  // cost of one purchase unit
  double measure = 0;  // stock units in one purchase unit
  bool keepsStock = false;
  bool byLots = false;
  bool isPackage = false;
  bool isInUse = false;

  double units = 0;  // what comes in, in stock units
  bool isNewLot = false;
  bool hasExpiry = false;  // of the lot, stored
};

/// What a warehouse has on order of an article.
struct Receiving::Inner::Order {
  std::string warehouse;
  double units = 0;  // stock units
};

/// A delivery that was received.
struct Receiving::Inner::Known {
  double number = 0;
  Date day;
  double amount = 0;
};

/// A delivery on its way into the tables.
struct Receiving::Inner::Posting {
  const Delivery& delivery;
  double number = 0;             // of the delivery
  std::vector<Article> moved{};  // by line, while none has a fault
};

Receiving::Inner::Inner(ConnectionPtr main)
    : main_(std::move(main)),
      quantityMask_(Apartment::current().formatGlobal().QuantityFormat()),
      rounded_(quantityMask_, Apartment::current().locale()) {}

Receipt Receiving::Inner::take(const Delivery& delivery, bool keeps) {
  return untilThrough(
      *main_, [&](Before /*before*/) { return takeOnce(delivery, keeps); }, [] {});
}

/// A delivery that is there already is known, by whichever run it was taken.
Receipt Receiving::Inner::takeOnce(const Delivery& delivery, bool keeps) {
  Receipt receipt;
  const auto refuse = [&](std::uint64_t origin, std::string reason) {
    if (!reason.empty()) receipt.faults.push_back({origin, std::move(reason)});
  };
  knownWarehouses_.clear();
  const std::uint64_t first = delivery.lines.empty() ? 0 : delivery.lines.front().origin;
  DatabaseTransaction transaction(main_);
  // No other program takes the same delivery meanwhile.
  main_->HoldNumbersOf("Proveedores_Apuntes_Contables");
  Posting posting{.delivery = delivery};
  refuse(first, checkHead(delivery));
  if (receipt.faults.empty()) {
    if (const std::optional<Known> before = known(delivery)) {
      receipt.number = before->number;
      bool hasMovements = false;
      const std::string other = difference(delivery, *before, hasMovements);
      if (other.empty()) {
        receipt.outcome = Receipt::Outcome::kKnown;
        if (!hasMovements) refuse(first, "no movements of it are left; day and amount agree");
        return receipt;
      }
      refuse(first, fmt::format("Albaran {} was received on {}{}", shown(delivery.note),
                                isoDay(before->day), other));
      return receipt;
    }
    posting.number = freeNumber();
  }
  // Lines behind one with a fault are posted too, as what they may depend on; all of it is undone.
  for (const DeliveryLine& line : delivery.lines) refuse(line.origin, take(line, posting));
  if (!receipt.faults.empty()) return receipt;
  writeMovements(posting);
  charge(delivery, posting);
  if (keeps) transaction.commit();
  receipt.outcome = Receipt::Outcome::kReceived;
  receipt.number = posting.number;
  return receipt;
}

// ---------------------------------------------------------------------------------------------
// The delivery as such

std::string Receiving::Inner::checkHead(const Delivery& delivery) {
  if (delivery.note.empty()) return "Albaran is empty";
  if (tavelor::text::length(delivery.note) > kNoteWidth) {
    return fmt::format("Albaran has more than {} characters", kNoteWidth);
  }
  if (delivery.lines.empty()) return fmt::format("Albaran {} has no lines", shown(delivery.note));
  if (delivery.day > Apartment::current().clock().today()) {
    return fmt::format("Fecha lies in the future: {}", isoDay(delivery.day));
  }
  Statement statement("SELECT Activo FROM Proveedores WHERE Codigo = ");
  statement << sqlText(delivery.supplier);
  const Rows row(selector::kMain, statement, main_);
  if (!row.hasRow()) {
    return fmt::format("Proveedor is no supplier of the shop: {}", shown(delivery.supplier));
  }
  if (!row.flag("Activo")) {
    return fmt::format("Proveedor is a supplier that is not in use: {}", shown(delivery.supplier));
  }
  return {};
}

std::optional<Receiving::Inner::Known> Receiving::Inner::known(const Delivery& delivery) {
  Statement statement(
      "SELECT Documento_E, Fecha, Haber FROM Proveedores_Apuntes_Contables WHERE Codigo = ");
  statement << sqlText(delivery.supplier) << " AND Concepto = " << sqlText(entryText(delivery))
            << " AND Estado = " << spliced(std::to_string(kDeliveryKind));
  const Rows row(selector::kMain, statement, main_);
  if (!row.hasRow()) return std::nullopt;
  return Known{row.number("Documento_E"), row.day("Fecha"), row.number("Haber")};
}

/// What the delivery differs in from the known one, "" for nothing: line by line, by its movements.
/// Where they were purged the ledger's entry alone has to do.
std::string Receiving::Inner::difference(const Delivery& delivery, const Known& known,
                                         bool& hasMovements) {
  constexpr const char* kOtherLines = " with other lines, or in another order";
  if (delivery.day != known.day) return fmt::format(", not on {}", isoDay(delivery.day));
  if (!isSame(delivery.total(), known.amount)) return " with another amount";
  Statement statement(
      "SELECT Codigo, Almacen, Lote, Cantidad, Precio FROM Articulos_Movimientos_Almacen WHERE "
      "Estado = ");
  statement << spliced(std::to_string(kDeliveryKind))
            << " AND Doc_E = " << spliced(numberText(known.number)) << " ORDER BY Id";
  Rows rows(selector::kMain, statement, main_);
  hasMovements = rows.hasRow();
  if (!hasMovements) return {};
  for (const DeliveryLine& line : delivery.lines) {
    if (!rows.hasRow()) return kOtherLines;
    const Article article = articleOf(line);
    const bool isIt = article.isThere && rows.text("Codigo") == line.code &&
                      rows.text("Almacen") == warehouseOf(line) &&
                      rows.text("Lote") == lotOf(line) &&
                      isSame(article.units, rows.number("Cantidad")) &&
                      isSame(unitPrice(line, article.measure), rows.number("Precio"));
    if (!isIt) return kOtherLines;
    if (hasOtherExpiry(line)) return fmt::format(" with another Caduca of lot {}", line.lot);
    rows.next();
  }
  return rows.hasRow() ? kOtherLines : "";
}

/// Than the one that is stored of its lot. A line that gives none takes the lot as it is.
bool Receiving::Inner::hasOtherExpiry(const DeliveryLine& line) {
  if (!line.expires || !hasLot(line)) return false;
  Statement statement("SELECT Caduca FROM Articulos_Lotes WHERE Codigo = ");
  statement << sqlText(line.code) << " AND Lote = " << sqlText(line.lot);
  const Rows row(selector::kMain, statement, main_);
  return row.hasRow() && (row.isNull("Caduca") || row.day("Caduca") != *line.expires);
}

/// The key that the ledger's entry will get, unless movements of that number are left of an entry
/// that was deleted.
double Receiving::Inner::freeNumber() {
  double free = asNumber(ledger_.NuevoCodigo(main_));
  const auto isTaken = [&] {
    Statement statement("SELECT Id FROM Articulos_Movimientos_Almacen WHERE Estado = ");
    statement << spliced(std::to_string(kDeliveryKind))
              << " AND Doc_E = " << spliced(numberText(free));
    return Rows(selector::kMain, statement, main_).hasRow();
  };
  while (isTaken()) ++free;
  return free;
}

/// The shop owes what was delivered. Taxes come with the invoice.
void Receiving::Inner::charge(const Delivery& delivery, const Posting& posting) {
  ledger_.Insertar({.sSerie = std::string(kSeries),
                    .sCodigo = doubledQuotes(posting.delivery.supplier),
                    .dtFecha = delivery.day,
                    .sConcepto = doubledQuotes(entryText(delivery)),
                    .sD_H = "H",
                    .dHaber = delivery.total(),
                    .iEstado = kDeliveryKind,
                    .vDoc_E = posting.number,
                    .objCn = main_});
}

// ---------------------------------------------------------------------------------------------
// A line

/// Posts a line, or says what is wrong with it.
std::string Receiving::Inner::take(const DeliveryLine& line, Posting& posting) {
  if (std::string fault = checkValues(line); !fault.empty()) return fault;
  Article article = articleOf(line);
  if (std::string fault = checkArticle(line, article); !fault.empty()) return fault;
  if (std::string fault = checkWarehouse(line); !fault.empty()) return fault;
  if (std::string fault = checkLot(line, posting, article); !fault.empty()) return fault;
  if (posting.number == 0) return {};  // the delivery as such is refused
  moveStock(line, article);
  writePrices(line, article, posting);
  posting.moved.push_back(std::move(article));
  return {};
}

std::string Receiving::Inner::checkValues(const DeliveryLine& line) const {
  const auto fault = [](std::string_view name, double number) -> std::string {
    if (number == 0) return fmt::format("{} is 0", name);
    if (number < 0) return fmt::format("{} is negative", name);
    if (!(number <= kMostMoney)) return fmt::format("{} is too large", name);
    return {};
  };
  if (std::string quantity = fault("Cantidad", line.quantity); !quantity.empty()) return quantity;
  if (std::string price = fault("Precio", line.price); !price.empty()) return price;
  if (!(line.discount >= 0 && line.discount <= 100)) return "Descuento is no percentage";
  if (!(line.netPrice() > 0)) return "Precio is 0 to four decimals, less Descuento";
  if (line.amount() > kMostMoney) return "Cantidad by Precio is too large";
  return {};
}

Receiving::Inner::Article Receiving::Inner::articleOf(const DeliveryLine& line) {
  Article article;
  article.code = doubledQuotes(line.code);
  Statement statement(
      "SELECT Existencia, Pendiente, Precio_Medio, Medida_Compra, Actualizar_Stock, Lotes, "
      "Articulo_Compuesto, Activo FROM Articulos WHERE Codigo = '");
  statement << spliced(article.code) << "'";
  const Rows row(selector::kMain, statement, main_);
  article.isThere = row.hasRow();
  if (!article.isThere) return article;
  article.stock = row.number("Existencia");
  article.pending = row.number("Pendiente");
  article.average = row.number("Precio_Medio");
  article.measure = row.number("Medida_Compra");
  article.keepsStock = row.flag("Actualizar_Stock");
  article.byLots = row.flag("Lotes");
  article.isPackage = row.flag("Articulo_Compuesto");
  article.isInUse = row.flag("Activo");
  const double units = line.quantity * article.measure;
  article.units = std::abs(units) <= kMostUnits ? rounded_(units) : units;
  return article;
}

/// Bought is what a supplier's document finds: an article in use, of which stock is kept, and no
/// package.
std::string Receiving::Inner::checkArticle(const DeliveryLine& line, const Article& article) const {
  const auto fault = [&](std::string_view what) {
    return fmt::format("Codigo is {}: {}", what, shown(line.code));
  };
  if (!article.isThere || clsArticulos::isFreeText(line.code)) {
    return fault("no article of the shop");
  }
  if (article.isPackage) return fault("a package, of which only what is in it comes in");
  if (!article.keepsStock) return fault("an article of which no stock is kept");
  if (!article.isInUse) return fault("an article that is not in use");
  if (!(article.measure > 0)) return fault("an article whose Medida_Compra is not above 0");
  if (article.units > kMostUnits) return "Cantidad is too large";
  if (article.units == 0) return "Cantidad is 0 to the decimals that the shop keeps";
  if (line.amount() == 0) return "Cantidad by Precio is 0 to the cent";
  if (unitPrice(line, article.measure) == 0) {
    return "Precio by Medida_Compra is 0 to four decimals";
  }
  return {};
}

std::string Receiving::Inner::checkWarehouse(const DeliveryLine& line) {
  const std::string code = warehouseOf(line);
  if (knownWarehouses_.contains(code)) return {};
  Statement statement("SELECT Codigo FROM Almacenes WHERE Codigo = ");
  statement << sqlText(code);
  if (!Rows(selector::kMain, statement, main_).hasRow()) {
    return fmt::format("Almacen is no warehouse of the shop: {}", shown(code));
  }
  knownWarehouses_.insert(code);
  return {};
}

std::string Receiving::Inner::checkLot(const DeliveryLine& line, const Posting& posting,
                                       Article& article) {
  if (!hasLot(line)) {
    if (article.byLots) return fmt::format("Lote is empty, and {} is kept by lots", line.code);
    return line.expires ? "Caduca stands without a Lote" : "";
  }
  if (!article.byLots)
    return fmt::format("Lote {}, and {} is not kept by lots", shown(line.lot), line.code);
  if (tavelor::text::length(line.lot) > kLotWidth) {
    return fmt::format("Lote has more than {} characters", kLotWidth);
  }
  const Date day = posting.delivery.day;
  if (line.expires && *line.expires < day) {
    return fmt::format("Caduca {} lies before the delivery", isoDay(*line.expires));
  }
  article.isNewLot = true;
  std::string other;
  Statement statement("SELECT Codigo, Caduca FROM Articulos_Lotes WHERE Lote = ");
  statement << sqlText(line.lot);
  for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
    if (rows.text("Codigo") != line.code) {
      other = rows.text("Codigo");
      continue;
    }
    article.isNewLot = false;
    if (rows.isNull("Caduca")) continue;
    article.hasExpiry = true;
    const Date expiry = rows.day("Caduca");
    if (expiry < day) return fmt::format("Lote {} expired on {}", line.lot, isoDay(expiry));
    if (line.expires && *line.expires != expiry) {
      return fmt::format("Caduca is {}, and lot {} expires on {}", isoDay(*line.expires), line.lot,
                         isoDay(expiry));
    }
  }
  if (article.isNewLot && !other.empty()) {
    return fmt::format("Lote {} is one of article {}", line.lot, other);
  }
  return {};
}

/// All places get the same number: purchase units become stock units once, in articleOf(). What was
/// on order is so no longer, as far as it came.
void Receiving::Inner::moveStock(const DeliveryLine& line, const Article& article) {
  const std::string& code = article.code;
  const std::string warehouse = warehouseOf(line);
  const double arrived = std::min(std::max(article.pending, 0.0), article.units);
  articles_.ActualizarStock_Movimientos(code, 0 - arrived, article.units, true, false, main_);
  double left = arrived;
  double arrivedHere = 0;
  for (const Order& order : ordersOf(article, warehouse, arrived)) {
    const double taken = std::min(order.units, left);
    if (taken <= 0) break;
    left -= taken;
    if (order.warehouse == warehouse) {
      arrivedHere = taken;
    } else {
      warehouses_.ActualizarStock_sund(code, doubledQuotes(order.warehouse), 0 - taken, 0.0, true,
                                       false, main_);
    }
  }
  warehouses_.ActualizarStock_sund(code, doubledQuotes(warehouse), 0 - arrivedHere, article.units,
                                   true, false, main_);
  if (!hasLot(line)) return;
  const std::string lot = doubledQuotes(line.lot);
  lots_.ActualizarStock_sund(code, lot, 0.0, article.units, true, false, main_);
  if (line.expires && !article.hasExpiry) lots_.ActualizarFecha(code, lot, *line.expires, main_);
  if (article.isNewLot) keepStock(code, lot, main_);
}

/// What warehouses have on order of an article, where some of it arrived: first the one that it
/// came into, then the others by their codes, as goods for one are often unloaded at another. So
/// article and warehouses fall by the same, unless the warehouses had less on order than came.
std::vector<Receiving::Inner::Order> Receiving::Inner::ordersOf(const Article& article,
                                                                const std::string& warehouse,
                                                                double arrived) {
  std::vector<Order> orders;
  if (arrived <= 0) return orders;
  Statement statement("SELECT Almacen, Pendiente FROM Articulos_Almacenes WHERE Codigo = '");
  statement << spliced(article.code) << "' AND Pendiente > 0 ORDER BY Almacen";
  for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
    orders.push_back({rows.text("Almacen"), rows.number("Pendiente")});
  }
  std::stable_partition(orders.begin(), orders.end(),
                        [&](const Order& order) { return order.warehouse == warehouse; });
  return orders;
}

/// Of all lines in their order, behind the stock as a sale does it: from the reading of the number
/// to the commit nobody else writes movements, and whoever waits for an article must not hold it.
void Receiving::Inner::writeMovements(const Posting& posting) {
  double movement = asNumber(movements_.NuevoCodigo("A", main_));
  for (std::size_t i = 0; i < posting.moved.size(); ++i) {
    const DeliveryLine& line = posting.delivery.lines[i];
    const Article& article = posting.moved[i];
    movements_.Insertar({.vId = movement++,
                         .dtFecha = posting.delivery.day,
                         .hHora = Date(),
                         .sAlmacen = doubledQuotes(warehouseOf(line)),
                         .sCodigo = article.code,
                         .sLote = doubledQuotes(lotOf(line)),
                         .dCantidad = article.units,
                         .dPrecio = unitPrice(line, article.measure),
                         .sReferencia = doubledQuotes(posting.delivery.note),
                         .iMovimiento = 0,
                         .sSeccion = {},
                         .sEmpleado = {},
                         .iEstado = kDeliveryKind,
                         .dDoc_E = posting.number,
                         .sCod_ID = std::to_string(i + 1),
                         .objCn = main_});
  }
}

/// The last cost, the supplier's price, and the average of what is there and what comes in, each
/// of one purchase unit. What is there at no cost, or is less than nothing, does not weigh.
void Receiving::Inner::writePrices(const DeliveryLine& line, const Article& article,
                                   const Posting& posting) {
  const std::string& code = article.code;
  const double price = line.netPrice();
  const double before = article.average > 0 ? std::max(article.stock, 0.0) / article.measure : 0;
  articles_.ActualizarPrecio(code, price, 0, main_);
  articles_.ActualizarPrecioMedio(code, before * article.average + line.quantity * price, main_,
                                  before + line.quantity);
  prices_.ActualizarPrecio(code, doubledQuotes(posting.delivery.supplier), price, main_);
}

}  // namespace tavelor::flows
