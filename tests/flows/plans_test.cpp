// SPDX-License-Identifier: MIT
// A sale, a delivery, a closing, the day's page and its reconciliation find their rows by indexes,
// so that they do not get slower with the years.
#include <set>

#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/flows/day_page.hpp"
#include "tavelor/flows/receiving.hpp"
#include "tavelor/flows/reconciliation.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/suppliers.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/dialect/scans.hpp"
#include "tests/support/engines.hpp"
#include "tests/support/shop.hpp"
#include "tools/built_in_day.hpp"

namespace tavelor::flows {
namespace {

using tools::builtInDay;

class ShopPlansTest : public testing::Test {
 protected:
  ShopPlansTest() {
    engine::OpenOptions options;
    options.path = ":memory:";
    options.create = true;
    options.synchronous = false;
    session_ = engine::sqliteEngine().open(options);
    for (const std::string& text :
         dialect::translateSchema(tests::schemaText(), dialect::sqliteWriter())) {
      session_->execute(text);
    }
    shop_.apartment().clock().fix(Date::of(2026, 11, 21));
    seedCatalogues();
    trace_.listen([this](const TraceEntry& entry) { ran_.insert(entry.text); });
  }
  ~ShopPlansTest() override { trace_.listen({}); }

  /// Each statement since the last call looks for its rows, except in tables that stay small.
  void expectNoScans() {
    const tests::AllowedScans allowed;
    EXPECT_FALSE(ran_.empty());
    for (const std::string& text : ran_) {
      for (const std::string& table : scanned(text)) {
        EXPECT_TRUE(allowed.tables.contains(table)) << "The whole of " << table << " is read by\n"
                                                    << text;
      }
    }
    ran_.clear();
  }

  /// A record set writes its rows by statements of the engine's own, which have places for values.
  std::set<std::string> scanned(const std::string& text) {
    if (text.find('?') != std::string::npos) return tests::scannedTables(*session_, text);
    dialect::Literals literals;
    return tests::scannedTables(
        *session_, dialect::translate(Statement::trusted(text), tests::schemaCatalogue(),
                                      dialect::sqliteWriter(), literals));
  }

  test::Shop shop_;
  StatementTrace& trace_ = shop_.apartment().trace();
  std::set<std::string> ran_;
  std::unique_ptr<engine::Session> session_;
};

TEST_F(ShopPlansTest, ADayFindsItsRowsWhateverTheYearsHold) {
  TAVELOR_ONLY_IN_FILES("it asks the embedded engine for its plans");
  const std::vector<std::string> tills = {"01", "02", "03"};
  const std::vector<Sale> day = builtInDay(tills);
  Shop shop;
  shop.openTills(tills);
  Reconciliation reconciliation;
  ran_.clear();
  for (const Sale& sale : day) {
    reconciliation.expect(sale);
    shop.sell(sale);
  }
  expectNoScans();
  for (const std::string& till : tills) shop.close(till, day.front().day);
  expectNoScans();
  writeDayPage(day.front().day, day.front().day);
  expectNoScans();
  reconciliation.compare();
  expectNoScans();
}

TEST_F(ShopPlansTest, ADeliveryFindsItsRowsWhateverTheYearsHold) {
  clsArticulos().Insertar({.vId = "A", .bLotes = -1, .bStock = -1, .bActivo = true});
  ConnectionPtr connection = DataSession().OpenConnection(selector::kMain);
  makeSupplier("400", "Supplier", connection);
  Receiving receiving;
  Delivery delivery{.supplier = "400", .note = "1", .day = Date::of(2025, 3, 4), .lines = {}};
  delivery.lines.push_back({.code = "A", .quantity = 2, .price = 3, .lot = "L1"});
  delivery.lines.back().expires = delivery.day;
  ran_.clear();
  for (const char* note : {"1", "2", "1"}) {
    delivery.note = note;
    EXPECT_NE(receiving.receive(delivery).outcome, Receipt::Outcome::kRefused);
  }
  clsArticulos().ActualizarStock_Pedido("A", 5.0, 0.0);
  delivery.note = "3";
  receiving.receive(delivery);
  expectNoScans();
}

}  // namespace
}  // namespace tavelor::flows
