// SPDX-License-Identifier: MIT
// What is read of some days.
#include "tavelor/flows/day_figures.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/flows/rows.hpp"

namespace tavelor::flows {
namespace {

constexpr const char* kDay = "11/20/2026";
const Date kFriday = Date::of(2026, 11, 20);

class DayFiguresTest : public testing::Test {
 protected:
  PageFigures read() { return gatherFigures(kFriday, kFriday); }
  test::ClosedSales shop_;
};

TEST_F(DayFiguresTest, OnlyTicketsOfTheDaysCountBothBoundsIncluded) {
  shop_.ticket(1, "11/19/2026", "10:00", 1);
  shop_.ticket(2, kDay, "10:00", 2.5);
  shop_.ticket(3, "11/21/2026", "10:00", 4);
  shop_.ticket(4, "11/22/2026", "10:00", 8);
  shop_.line(2, "A", "Uno", 2, 2.5);
  shop_.line(3, "A", "Uno", 1.5, 4);
  shop_.line(4, "A", "Uno", 8, 8);

  const PageFigures figures = gatherFigures(kFriday, Date::of(2026, 11, 21));
  EXPECT_EQ(figures.all.tickets, 2);
  EXPECT_EQ(figures.all.amount, 6.5);
  EXPECT_EQ(figures.lines, 2);
  EXPECT_EQ(figures.units, 3.5);
  ASSERT_EQ(figures.days.size(), 2U);
  EXPECT_EQ(figures.days[0].day, kFriday);
  EXPECT_EQ(figures.days[1].amount, 4);
}

TEST_F(DayFiguresTest, LastDayBeforeTheFirstIsRefused) {
  EXPECT_EQ(test::errorOf([] { gatherFigures(kFriday, Date::of(2026, 11, 19)); }),
            errors::kInvalidCall);
}

TEST_F(DayFiguresTest, TicketsThatNoClosingTookAreCountedApart) {
  shop_.ticket(1, kDay, "10:00", 2);
  shop_.ticket(2, kDay, "10:00", 3, "Tickets");
  const PageFigures figures = read();
  EXPECT_EQ(figures.all.amount, 2);
  EXPECT_EQ(figures.open.tickets, 1);
  EXPECT_EQ(figures.open.amount, 3);
}

TEST_F(DayFiguresTest, ConceptThatIsNoTimeIsWithoutHour) {
  shop_.ticket(1, kDay, "09:59", 1);
  shop_.ticket(2, kDay, "9:05", 2);
  shop_.ticket(3, kDay, "23:00", 4);
  shop_.ticket(4, kDay, "24:00", 8);
  shop_.ticket(5, kDay, "Pedido 10:30", 16);
  shop_.ticket(6, kDay, "10:75", 32);
  shop_.ticket(7, kDay, "", 64);
  shop_.run("INSERT INTO HTickets (Numero, Fecha, Total) VALUES (8, #11/20/2026#, 128)", 3);

  const PageFigures figures = read();
  ASSERT_EQ(figures.hours.size(), 2U);
  EXPECT_EQ(figures.hours[0].hour, 9);
  EXPECT_EQ(figures.hours[0].tickets, 2);
  EXPECT_EQ(figures.hours[0].amount, 3);
  EXPECT_EQ(figures.hours[1].hour, 23);
  EXPECT_EQ(figures.timeless.tickets, 5);
  EXPECT_EQ(figures.timeless.amount, 8 + 16 + 32 + 64 + 128);
}

TEST_F(DayFiguresTest, ReturnsAreTakenOffTheArticleAndToldApart) {
  shop_.ticket(1, kDay, "10:00", 10);
  shop_.ticket(2, kDay, "11:00", -4);
  shop_.line(1, "A", "Uno", 5, 10);
  shop_.line(2, "A", "Uno", -2, -4);
  const PageFigures figures = read();
  ASSERT_EQ(figures.articles.size(), 1U);
  EXPECT_EQ(figures.articles[0].units, 3);
  EXPECT_EQ(figures.articles[0].amount, 6);
  ASSERT_EQ(figures.returned.size(), 1U);
  EXPECT_EQ(figures.returned[0].units, 2);
  EXPECT_EQ(figures.returned[0].amount, 4);
  EXPECT_EQ(figures.returns, 1);
}

TEST_F(DayFiguresTest, ClosingsAddUpByFamilyMethodAndRate) {
  shop_.closing(1, kDay, "001", 0, 30, 30);
  shop_.closing(2, "11/20/2026 20:31:00", "002", 0, 12, 12);
  shop_.closing(3, "11/21/2026", "001", 30, 99, 129);
  for (const int closing : {1, 2, 3}) {
    shop_.family(closing, "001", 10);
    shop_.family(closing, "Pan", closing);
    shop_.payment(closing, "1", 20);
    shop_.tax(closing, 21, 100, 21);
    shop_.tax(closing, 4, 50, 2);
  }
  shop_.run("INSERT INTO Familias (Codigo, Descripcion) VALUES ('001', 'General')");
  shop_.run("INSERT INTO Formas_Pago (codigo, Descripcion) VALUES ('1', 'Contado')");

  const PageFigures figures = read();
  ASSERT_EQ(figures.families.size(), 2U);
  EXPECT_EQ(figures.families[0].name, "General");
  EXPECT_EQ(figures.families[0].amount, 20);
  EXPECT_EQ(figures.families[1].name, "Pan");  // no such code: the word itself
  EXPECT_EQ(figures.families[1].amount, 3);
  ASSERT_EQ(figures.payments.size(), 1U);
  EXPECT_EQ(figures.payments[0].name, "Contado");
  EXPECT_EQ(figures.payments[0].amount, 40);
  ASSERT_EQ(figures.taxes.size(), 2U);
  EXPECT_EQ(figures.taxes[0].rate, 4);
  EXPECT_EQ(figures.taxes[1].base, 200);
  EXPECT_EQ(figures.tax(), 46);
  EXPECT_EQ(figures.closedAmount(), 42);
}

TEST_F(DayFiguresTest, StartThatIsNotTheTillsLastEndBreaksTheChain) {
  shop_.closing(1, "11/18/2026", "001", 0, 5, 5);
  shop_.closing(2, "11/19/2026", "001", 5, 2, 7);
  shop_.closing(3, "11/19/2026", "002", 0, 3, 3);
  shop_.closing(4, kDay, "001", 7.004, 10, 17);  // the same to the cent
  shop_.closing(5, kDay, "002", 7, 1, 8);        // another till's end
  shop_.closing(6, kDay, "001", 16.99, 1, 18);
  shop_.closing(7, kDay, "003", 50, 1, 51);  // its first one

  const PageFigures figures = read();
  ASSERT_EQ(figures.closings.size(), 4U);
  std::vector<int> numbers;
  std::vector<bool> broken;
  for (const ClosingFigures& closing : figures.closings) {
    numbers.push_back(closing.number);
    broken.push_back(closing.isBroken);
  }
  EXPECT_THAT(numbers, testing::ElementsAre(4, 6, 5, 7));
  EXPECT_THAT(broken, testing::ElementsAre(false, true, true, false));
  EXPECT_EQ(figures.closings[1].expected, 17);
  EXPECT_EQ(figures.closings[2].expected, 3);
}

TEST_F(DayFiguresTest, ShopIsNamedByItsDocumentsElseByItsFolder) {
  EXPECT_EQ(read().shop, "shop");
  shop_.run(
      "INSERT INTO Tipos_Documento (Codigo, Predeterminada, Nombre) VALUES "
      "('1', -1, 'Ultramarinos')");
  EXPECT_EQ(read().shop, "Ultramarinos");
}

TEST_F(DayFiguresTest, RowsWithoutValuesCountAsNothing) {
  shop_.run("INSERT INTO HTickets (Numero, Fecha) VALUES (1, #11/20/2026#)", 3);
  shop_.run("INSERT INTO HTickets_Lineas (Numero) VALUES (1)", 3);
  shop_.run("INSERT INTO Cierres (Codigo, Fecha) VALUES (1, #11/20/2026#)");
  shop_.run("INSERT INTO Cierres_Familias (Cierre) VALUES (1)");
  const PageFigures figures = read();
  EXPECT_EQ(figures.all.tickets, 1);
  EXPECT_EQ(figures.all.amount, 0);
  ASSERT_EQ(figures.families.size(), 1U);
  EXPECT_EQ(figures.families[0].name, "");
}

}  // namespace
}  // namespace tavelor::flows
