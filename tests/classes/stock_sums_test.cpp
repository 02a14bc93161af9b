// SPDX-License-Identifier: MIT
// Nobody joins the four places that hold stock: these tests do it as a calling layer would, by
// random documents, and compare the sums.
#include <random>

#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tests/classes/stock.hpp"

namespace tavelor {
namespace {

using test::StockShop;

constexpr double kTolerance = 1e-6;  // what six decimals in a statement leave open
constexpr std::array kArticles = {"A1", "B12", "C05"};
constexpr std::array kMeasures = {1.0, 12.0, 0.5};

/// One line of a document, told to each place in turn on one connection.
class Stocktaker {
 public:
  explicit Stocktaker(Apartment& apartment) : locale_(apartment.locale()) {
    lots_.ExisteLote("", "", connection_);
  }

  ConnectionPtr& connection() { return connection_; }

  void order(const char* article, const char* warehouse, double quantity, bool add) {
    articles_.ActualizarStock_Pedido(article, quantity, 0, add, false, connection_);
    warehouses_.ActualizarStock(article, warehouse, quantity, 0, add, false, connection_);
  }
  /// What was ordered arrives, in purchase units.
  void receive(const char* article, const char* warehouse, const char* lot, double quantity) {
    const double units = quantity * measure(article);
    articles_.ActualizarStock_Pedido(article, -quantity, quantity, true, false, connection_);
    warehouses_.ActualizarStock(article, warehouse, -quantity, quantity, true, false, connection_);
    lots_.ActualizarStock(article, lot, 0, quantity, true, false, connection_);
    note(article, warehouse, lot, units, 0);
  }
  /// The same by the members for a reception of a whole order; the pair must have a row.
  void receiveOrder(const char* article, const char* warehouse, const char* lot, double quantity) {
    if (!warehouses_.EstaEnElAlmacen(article, warehouse, connection_)) return;
    const double units = quantity * measure(article);
    articles_.ActualizarStock_Recep_pedido(article, quantity, connection_);
    warehouses_.ActualizarStock_Recep(article, warehouse, quantity, connection_);
    lots_.ActualizarStock(article, lot, 0, quantity, true, false, connection_);
    note(article, warehouse, lot, units, 0);
  }
  /// In stock units, in or out.
  void move(const char* article, const char* warehouse, const char* lot, double units, bool in) {
    articles_.ActualizarStock_Movimientos(article, 0, units, in, false, connection_);
    warehouses_.ActualizarStock_sund(article, warehouse, 0, units, in, false, connection_);
    lots_.ActualizarStock_sund(article, lot, 0, units, in, false, connection_);
    note(article, warehouse, lot, units, in ? 0 : 1);
  }
  void sell(const char* article, const char* warehouse, const char* lot, double units, bool back) {
    articles_.DescargarStock_V(article, 0, units, back, false, connection_);
    warehouses_.DescargarStock_V(article, warehouse, 0, units, back, false, connection_);
    lots_.DescargarStock_V(article, lot, 0, units, back, connection_);
    note(article, warehouse, lot, units, back ? 0 : 1);
  }
  void transfer(const char* article, const char* from, const char* to, double units) {
    warehouses_.ActualizarStock_sund(article, from, 0, units, false, false, connection_);
    warehouses_.ActualizarStock_sund(article, to, 0, units, true, false, connection_);
    note(article, from, "", units, 1);
    note(article, to, "", units, 0);
  }

  double inWarehouses(const char* article) {
    return warehouses_.GetStockActual(article, connection_).toDouble(locale_);
  }
  double inLots(const char* article) {
    return lots_.GetStockActualLotes(article, connection_).toDouble(locale_);
  }
  double inLedger(const char* article) { return ledger_.GetTotalMaovArt(article, connection_); }

 private:
  double measure(const char* article) {
    return articles_.GetMedidaCompra(article, connection_).toDouble(locale_);
  }
  void note(const char* article, const char* warehouse, const char* lot, double units,
            std::int16_t kind) {
    ledger_.Insertar({.vId = ledger_.NuevoCodigo("A", connection_),
                      .dtFecha = Date::of(2026, 11, 21),
                      .hHora = Date(0.5),
                      .sAlmacen = warehouse,
                      .sCodigo = article,
                      .sLote = lot,
                      .dCantidad = units,
                      .iMovimiento = kind,
                      .objCn = connection_});
  }

  const Locale& locale_;
  ConnectionPtr connection_;
  clsArticulos articles_;
  ClsArticulosAlmacenes warehouses_;
  ClsArticulosLotes lots_;
  ClsArticulosMovAlmacen ledger_;
};

class StockSumsTest : public testing::TestWithParam<unsigned>, protected StockShop {
 protected:
  StockSumsTest() {
    for (std::size_t i = 0; i < kArticles.size(); ++i) {
      article(kArticles[i], {.medida = kMeasures[i]});
    }
  }

  std::size_t below(std::size_t limit) { return dice_() % limit; }
  template <typename Choices>
  const char* one(const Choices& choices) {
    return choices[below(choices.size())];
  }
  /// Even hundredths: half of one keeps to the two decimals of the shop's format, so that no place
  /// rounds what another keeps.
  double quantity() { return static_cast<double>(2 * (1 + below(500))) / 100; }

  void anyDocument(Stocktaker& stocktaker) {
    static constexpr std::array kWarehouses = {"01", "02", "03"};
    static constexpr std::array kLots = {"L1", "L2", "L3", "L4"};
    const char* article = one(kArticles);
    const char* warehouse = one(kWarehouses);
    const char* lot = one(kLots);
    switch (below(7)) {
      case 0:
        return stocktaker.order(article, warehouse, quantity(), below(4) != 0);
      case 1:
        return stocktaker.receive(article, warehouse, lot, quantity());
      case 2:
        return stocktaker.receiveOrder(article, warehouse, lot, quantity());
      case 3:
        return stocktaker.move(article, warehouse, lot, quantity(), below(2) != 0);
      case 4:
        return stocktaker.transfer(article, warehouse, one(kWarehouses), quantity());
      default:
        return stocktaker.sell(article, warehouse, lot, quantity(), below(5) == 0);
    }
  }
  /// A lot keeps stock only when somebody says so: the form of lots does.
  void lotsKeepStock(Stocktaker& stocktaker) {
    stocktaker.connection()->Execute(Statement("UPDATE Articulos_Lotes SET Stock = True"));
  }

  double total(const char* article, const char* column) {
    return shop
        .value("SELECT " + std::string(column) + " FROM Articulos WHERE Codigo = '" + article + "'")
        .toDouble(shop.apartment().locale());
  }
  double onOrderInWarehouses(const char* article) {
    const Variant sum =
        shop.value("SELECT Sum(Pendiente) FROM Articulos_Almacenes WHERE Codigo = '" +
                   std::string(article) + "'");
    return sum.isNull() ? 0 : sum.toDouble(shop.apartment().locale());
  }

 private:
  std::mt19937 dice_{GetParam()};
};

TEST_P(StockSumsTest, ArticleWarehousesLotsAndLedgerAgreeAfterAnyDocuments) {
  shop.apartment().trace().turn(false);
  Stocktaker stocktaker(shop.apartment());
  constexpr int kDocuments = 120;
  for (int done = 0; done < kDocuments; ++done) {
    anyDocument(stocktaker);
    lotsKeepStock(stocktaker);
  }
  for (const char* article : kArticles) {
    const double stock = total(article, "Existencia");
    EXPECT_NEAR(stocktaker.inWarehouses(article), stock, kTolerance) << article;
    EXPECT_NEAR(stocktaker.inLots(article), stock, kTolerance) << article;
    EXPECT_NEAR(stocktaker.inLedger(article), stock, kTolerance) << article;
    EXPECT_NEAR(onOrderInWarehouses(article), total(article, "Pendiente"), kTolerance) << article;
  }
  EXPECT_TRUE(shop.value("SELECT Codigo FROM Articulos_Almacenes GROUP BY Codigo, Almacen HAVING "
                         "Count(*) > 1")
                  .isEmpty())
      << "one row a pair";
}

TEST_P(StockSumsTest, ADocumentThatIsRolledBackLeavesAllPlacesAsTheyWere) {
  shop.apartment().trace().turn(false);
  Stocktaker stocktaker(shop.apartment());
  for (int done = 0; done < 10; ++done) anyDocument(stocktaker);
  const auto snapshot = [&] {
    std::vector<double> all;
    for (const char* article : kArticles) {
      for (const double value : {total(article, "Existencia"), total(article, "Pendiente"),
                                 stocktaker.inWarehouses(article), stocktaker.inLots(article),
                                 stocktaker.inLedger(article), onOrderInWarehouses(article)}) {
        all.push_back(value);
      }
    }
    return all;
  };
  const std::vector<double> before = snapshot();
  stocktaker.connection()->BeginTrans();
  for (int done = 0; done < 10; ++done) anyDocument(stocktaker);
  stocktaker.connection()->RollbackTrans();
  EXPECT_EQ(snapshot(), before);
}

// The absolute forms and packages write one place behind the others' backs: regularising brings the
// article back to its warehouses.
TEST_P(StockSumsTest, RegularizarStockBringsTheArticleBackToItsWarehouses) {
  shop.apartment().trace().turn(false);
  Stocktaker stocktaker(shop.apartment());
  const clsArticulos articles;
  for (int done = 0; done < 30; ++done) {
    anyDocument(stocktaker);
    const char* article = one(kArticles);
    switch (below(4)) {
      case 0:
        articles.ActualizarStock(article, quantity(), stocktaker.connection());
        break;
      case 1:
        articles.DescargarStock(article, stocktaker.connection());
        break;
      case 2:
        articles.DescargarStockPaquete(article, 0, 1, false, false, stocktaker.connection());
        break;
      default:
        ClsArticulosAlmacenes().ActualizarStock_Alm(article, "01", quantity(),
                                                    stocktaker.connection());
        break;
    }
  }
  for (const char* article : kArticles) {
    articles.RegularizarStock(article, stocktaker.connection());
    EXPECT_NEAR(total(article, "Existencia"), stocktaker.inWarehouses(article), kTolerance)
        << article;
  }
}

INSTANTIATE_TEST_SUITE_P(Seed, StockSumsTest, testing::Values(1U, 2U, 3U, 20261121U));

// What does not agree, and must not: a lot keeps no stock until its flag is set, so sales pass over
// it, while the article and its warehouse are taken off.
TEST(StockSums, ALotMadeByAPurchaseIsNotTakenOffUntilItKeepsStock) {
  StockShop shop;
  shop.article("A1");
  Stocktaker stocktaker(shop.shop.apartment());
  stocktaker.receive("A1", "01", "L1", 10);
  stocktaker.sell("A1", "01", "L1", 4, false);
  EXPECT_EQ(stocktaker.inWarehouses("A1"), 6);
  EXPECT_EQ(stocktaker.inLots("A1"), 10);
  EXPECT_EQ(stocktaker.inLedger("A1"), 6);
}

}  // namespace
}  // namespace tavelor
