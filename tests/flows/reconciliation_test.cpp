// SPDX-License-Identifier: MIT
// Harm done to each place where a sale lies must show.
#include "tavelor/flows/reconciliation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"
#include "tools/built_in_day.hpp"

namespace tavelor::flows {
namespace {

using tools::builtInDay;

using ::testing::Contains;
using ::testing::Field;
using ::testing::IsEmpty;

/// The built-in day, sold and closed.
class ReconciliationTest : public ::testing::Test {
 protected:
  ReconciliationTest() {
    place_.apartment().clock().fix(Date::of(2026, 11, 21));
    seedCatalogues();
    const std::vector<std::string> tills = {"01", "02"};
    Shop shop;
    shop.openTills(tills);
    for (const Sale& sale : builtInDay(tills)) {
      day_ = sale.day;
      reconciliation_.expect(sale);
      shop.sell(sale);
    }
    for (const std::string& till : tills) shop.close(till, day_);
  }

  /// Which places differ after a statement has done harm.
  std::vector<Reconciliation::Place> harmedBy(const std::string& statement, int selector) {
    place_.run(statement, selector);
    reconciliation_.compare();
    std::vector<Reconciliation::Place> places;
    for (const auto& difference : reconciliation_.differences()) places.push_back(difference.place);
    return places;
  }

  test::Shop place_;
  Reconciliation reconciliation_;
  Date day_;
};

TEST_F(ReconciliationTest, ADayThatWasSoldAndClosedIsTheSameEverywhere) {
  reconciliation_.compare();
  EXPECT_THAT(reconciliation_.differences(), IsEmpty());
  EXPECT_EQ(reconciliation_.tillDays(), 2U);
  EXPECT_GT(reconciliation_.total(Reconciliation::kMeant).tickets, 200);
  const Tally& meant = reconciliation_.total(Reconciliation::kMeant);
  const Tally& history = reconciliation_.total(Reconciliation::kHistory);
  EXPECT_EQ(history.tickets, meant.tickets);
  EXPECT_EQ(history.lines, meant.lines);
  EXPECT_EQ(history.cents, meant.cents);
  EXPECT_NEAR(history.units, meant.units, 1e-6);
}

TEST_F(ReconciliationTest, ALostTicketShows) {
  EXPECT_THAT(harmedBy("DELETE FROM HTickets WHERE Numero = 7", 3),
              Contains(Reconciliation::kTickets));
}

TEST_F(ReconciliationTest, ALostLineShows) {
  EXPECT_THAT(harmedBy("DELETE FROM HTickets_Lineas WHERE ID = 7", 3),
              Contains(Reconciliation::kHistory));
}

TEST_F(ReconciliationTest, ACentInATicketShows) {
  EXPECT_THAT(harmedBy("UPDATE HTickets SET Total = Total + 0.01 WHERE Numero = 7", 3),
              Contains(Reconciliation::kTickets));
}

TEST_F(ReconciliationTest, ACentInALineShows) {
  EXPECT_THAT(harmedBy("UPDATE HTickets_Lineas SET Importe = Importe - 0.01 WHERE ID = 7", 3),
              Contains(Reconciliation::kHistory));
}

TEST_F(ReconciliationTest, AUnitInALineShows) {
  EXPECT_THAT(harmedBy("UPDATE HTickets_Lineas SET Cantidad = Cantidad + 1 WHERE ID = 7", 3),
              Contains(Reconciliation::kTickets));
}

TEST_F(ReconciliationTest, ACentInAClosingShows) {
  EXPECT_THAT(harmedBy("UPDATE Cierres SET Total = Total - 0.01 WHERE Codigo = 2", 1),
              Contains(Reconciliation::kClosings));
}

TEST_F(ReconciliationTest, AClosingThatWasMadeTwiceShows) {
  EXPECT_THAT(harmedBy("INSERT INTO Cierres (Codigo, Caja, Fecha, Total, Credito) SELECT 99 AS a, "
                       "Caja, Fecha, Total, Credito FROM Cierres WHERE Codigo = 1",
                       1),
              Contains(Reconciliation::kClosings));
}

TEST_F(ReconciliationTest, AMovementThatWentTheWrongWayShows) {
  EXPECT_THAT(harmedBy("UPDATE Articulos_Movimientos_Almacen SET Movimiento = 0 WHERE Id = 7", 1),
              Contains(Reconciliation::kMovements));
}

TEST_F(ReconciliationTest, ATicketThatStayedOpenShowsInHistoryAndClosings) {
  Shop shop;
  Sale sale = builtInDay({"01", "02"}).front();
  sale.reference = "LATE";
  shop.sell(sale);
  reconciliation_.expect(sale);
  reconciliation_.compare();
  EXPECT_THAT(reconciliation_.differences(),
              Contains(Field(&Reconciliation::Difference::place, Reconciliation::kHistory)));
  EXPECT_THAT(reconciliation_.differences(),
              Contains(Field(&Reconciliation::Difference::place, Reconciliation::kClosings)));
  EXPECT_THAT(reconciliation_.differences(),
              ::testing::Not(
                  Contains(Field(&Reconciliation::Difference::place, Reconciliation::kTickets))));
}

}  // namespace
}  // namespace tavelor::flows
