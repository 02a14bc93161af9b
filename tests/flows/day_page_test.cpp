// SPDX-License-Identifier: MIT
// The shop owner's page.
#include "tavelor/flows/day_page.hpp"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <pugixml.hpp>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/day_figures.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tests/flows/rows.hpp"

namespace tavelor::flows {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kDay = "11/20/2026";
const Date kFriday = Date::of(2026, 11, 20);

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// What stands in the element with that id.
std::string textOf(const std::string& page, const std::string& id) {
  const std::size_t at = page.find("id=\"" + id + "\">");
  if (at == std::string::npos) return "no " + id;
  const std::size_t begin = page.find('>', at) + 1;
  return page.substr(begin, page.find("</", begin) - begin);
}

std::string sectionOf(const std::string& page, const std::string& id) {
  const std::size_t begin = page.find("id=\"" + id + "\">");
  if (begin == std::string::npos) return "";
  return page.substr(begin, page.find("</section>", begin) - begin);
}

struct Sum {
  double amount = 0;
  int tickets = 0;
  int marks = 0;
};

/// Of the titles "..: 1.234,50 €, 3 tickets" of a chart's columns.
Sum sumOfColumns(const std::string& chart) {
  static const std::regex kTitle("<g class=\"col\"><title>[^<]*: (-?[0-9.,]+) €, ([0-9.]+) ticket");
  Sum sum;
  for (auto it = std::sregex_iterator(chart.begin(), chart.end(), kTitle);
       it != std::sregex_iterator(); ++it) {
    sum.amount += Variant((*it)[1].str()).toDouble(*Locale::spanish());
    sum.tickets += std::stoi((*it)[2].str());
    ++sum.marks;
  }
  return sum;
}

class DayPageTest : public testing::Test {
 protected:
  std::string page() { return contentOf(writeDayPage(kFriday, kFriday)); }
  test::ClosedSales shop_;
};

TEST_F(DayPageTest, LiesInTheExportFolderUnderItsDays) {
  EXPECT_EQ(writeDayPage(kFriday, kFriday),
            shop_.installation().exportFolder() + "/day-2026-11-20.htm");
  EXPECT_EQ(
      std::filesystem::path(writeDayPage(Date::of(2010, 12, 1), Date::of(2011, 2, 28))).filename(),
      "day-2010-12-01_2011-02-28.htm");
}

TEST_F(DayPageTest, DayWithoutSalesSaysSo) {
  const std::string empty = page();
  EXPECT_THAT(empty, HasSubstr("<b>Sin ventas</b>"));
  EXPECT_THAT(empty, HasSubstr("viernes, 20 de noviembre de 2026"));
  EXPECT_THAT(empty, Not(HasSubstr("<svg")));
}

TEST_F(DayPageTest, DayWithoutClosingSaysWhatIsOpen) {
  shop_.ticket(1, kDay, "10:00", 12.5, "Tickets");
  EXPECT_THAT(page(), HasSubstr("<b>1 ticket</b> por 12,50 €"));
}

TEST_F(DayPageTest, TotalsAreTheSumsOfTheRows) {
  for (int i = 1; i <= 4; ++i) {
    shop_.ticket(i, kDay, "10:00", 1000.10);
    shop_.line(i, "A", "Uno", 1.25, 500.05);
    shop_.line(i, "B", "Dos", 2, 500.05);
  }
  shop_.closing(1, kDay, "001", 0, 4000.40, 4000.40);
  shop_.tax(1, 21, 1000, 210);
  shop_.tax(1, 10, 2500, 250.5);
  const std::string made = page();
  EXPECT_EQ(textOf(made, "total"), "4.000,40 €");
  EXPECT_EQ(textOf(made, "tickets"), "4");
  EXPECT_EQ(textOf(made, "average"), "1.000,10 €");
  EXPECT_EQ(textOf(made, "units"), "13");
  EXPECT_EQ(textOf(made, "lines"), "8");
  EXPECT_EQ(textOf(made, "tax"), "460,50 €");
  EXPECT_EQ(textOf(made, "agreement"), "Cierres y tickets suman lo mismo");
}

TEST_F(DayPageTest, HoursAndTicketsWithoutHourAddUpToTheTotal) {
  double total = 0;
  for (int i = 0; i < 40; ++i) {
    const double amount = 3.35 + i * 17.17;
    total += amount;
    shop_.ticket(i, kDay, i % 7 == 0 ? "Mostrador" : fmt::format("{:02}:15", 9 + i % 11), amount);
  }
  const std::string made = page();
  const Sum hours = sumOfColumns(sectionOf(made, "hours"));
  EXPECT_EQ(hours.tickets, 34);
  EXPECT_EQ(hours.marks, 11);
  const std::string timeless = sectionOf(made, "timeless");
  std::smatch found;
  ASSERT_TRUE(std::regex_search(timeless, found, std::regex("<b>6 tickets</b> por ([0-9.,]+) €")));
  const double without = Variant(found[1].str()).toDouble(*Locale::spanish());
  EXPECT_NEAR(hours.amount + without, total, 0.001);
  EXPECT_EQ(textOf(made, "total"), format(total, "Currency", *Locale::spanish()));
}

TEST_F(DayPageTest, EveryDayOfSeveralHasItsColumnAndTheyAddUp) {
  shop_.ticket(1, "11/20/2026", "10:00", 10);
  shop_.ticket(2, "11/21/2026", "10:00", 20);
  shop_.ticket(3, "11/23/2026", "10:00", 40.5);
  const std::string made = contentOf(writeDayPage(kFriday, Date::of(2026, 11, 24)));
  const Sum days = sumOfColumns(sectionOf(made, "days"));
  EXPECT_EQ(days.amount, 70.5);
  EXPECT_EQ(days.tickets, 3);
  EXPECT_EQ(days.marks, 5);
  EXPECT_THAT(made, HasSubstr("Con ventas, 3 de 5 días."));
}

TEST_F(DayPageTest, ManyDaysAreShownByMonthAndAddUp) {
  shop_.ticket(1, "11/20/2026", "10:00", 10);
  shop_.ticket(2, "11/30/2026", "10:00", 20);
  shop_.ticket(3, "05/01/2027", "10:00", 40);
  const std::string made = contentOf(writeDayPage(kFriday, Date::of(2027, 5, 1)));
  const Sum months = sumOfColumns(sectionOf(made, "days"));
  EXPECT_EQ(months.amount, 70);
  EXPECT_EQ(months.marks, 7);
  EXPECT_THAT(made, HasSubstr("noviembre 2026: 30,00 €, 2 tickets"));
}

TEST_F(DayPageTest, OneDayHasNoChartByDay) {
  shop_.ticket(1, kDay, "10:00", 10);
  EXPECT_EQ(sectionOf(page(), "days"), "");
}

TEST_F(DayPageTest, TextsOfTheDatabasesCannotBecomeMarkup) {
  const char* kNasty = "<b>&'";
  shop_.ticket(1, kDay, "10:00", 10);
  shop_.line(1, "<i>", std::string(kNasty) + "\"\"", 1, 10);  // the own quote doubled
  shop_.line(1, "R", kNasty, -1, -1);
  shop_.closing(1, kDay, "<c>", 0, 10, 10);
  shop_.run("INSERT INTO Cierres_Familias (Cierre, Familia, Importe) VALUES (1, \"<b>&'\", 10)");
  shop_.run(
      "INSERT INTO Cierres_Formas_Pago (Cierre, Forma_Pago, Importe) VALUES (1, \"<b>&'\", 10)");
  shop_.run(
      "INSERT INTO Tipos_Documento (Codigo, Predeterminada, Nombre) VALUES ('1', -1, \"<b>&'\")");
  const std::string made = page();
  EXPECT_THAT(made, Not(HasSubstr("<b>&")));
  EXPECT_THAT(made, Not(HasSubstr("<i>")));
  EXPECT_THAT(made, Not(HasSubstr("<c>")));
  EXPECT_THAT(made, HasSubstr("<h1>&lt;b&gt;&amp;&#39;</h1>"));
  EXPECT_THAT(sectionOf(made, "top-amount"), HasSubstr("&lt;b&gt;&amp;&#39;&quot;</span>"));
  EXPECT_THAT(sectionOf(made, "top-amount"),
              HasSubstr("title=\"&lt;i&gt; &lt;b&gt;&amp;&#39;&quot;:"));
  EXPECT_THAT(sectionOf(made, "families"), HasSubstr(">&lt;b&gt;&amp;&#39;</span>"));
  EXPECT_THAT(sectionOf(made, "payments"), HasSubstr(">&lt;b&gt;&amp;&#39;</span>"));
  EXPECT_THAT(sectionOf(made, "closings"), HasSubstr("<td>&lt;c&gt;</td>"));
}

TEST_F(DayPageTest, BreakInTheChainIsMarkedWithWhatWasExpected) {
  shop_.ticket(1, kDay, "10:00", 30);
  shop_.closing(1, "11/19/2026", "001", 0, 100, 100);
  shop_.closing(2, kDay, "001", 90, 10, 100);
  shop_.closing(3, kDay, "001", 100, 20, 120);
  const std::string chain = sectionOf(page(), "closings");
  EXPECT_THAT(chain, HasSubstr("1 salto en la cadena"));
  EXPECT_THAT(chain, HasSubstr("<tr class=\"broken\"><td>001</td><td>2</td>"));
  EXPECT_THAT(chain, HasSubstr("90,00 €<small>el anterior acabó en 100,00 €</small>"));
  EXPECT_THAT(chain, HasSubstr("<tr><td>001</td><td>3</td>"));
}

TEST_F(DayPageTest, UnbrokenChainAndMissingMoneyAreTold) {
  shop_.ticket(1, kDay, "10:00", 30);
  shop_.closing(1, kDay, "001", 0, 29.5, 29.5);
  const std::string chain = sectionOf(page(), "closings");
  EXPECT_THAT(chain, HasSubstr("Cada cierre empieza donde acabó el anterior"));
  EXPECT_THAT(chain, Not(HasSubstr("class=\"broken\"")));
  EXPECT_THAT(chain, HasSubstr("0,50 €"));
}

TEST_F(DayPageTest, RatesThatMissTheSalesByTheirRoundingSayByHowMuch) {
  shop_.ticket(1, kDay, "10:00", 30);
  shop_.closing(1, kDay, "001", 0, 30, 30);
  shop_.tax(1, 21, 24.79, 5.21);
  EXPECT_THAT(page(), Not(HasSubstr("id=\"rounding\"")));
  shop_.tax(1, 10, 0.01, 0);
  EXPECT_THAT(sectionOf(page(), "rounding"), HasSubstr("0,01 €"));
}

TEST_F(DayPageTest, FamiliesBeyondTwelveAreOneBarThatKeepsTheSum) {
  shop_.ticket(1, kDay, "10:00", 1);
  shop_.closing(1, kDay, "001", 0, 1, 1);
  for (int i = 1; i <= 15; ++i) shop_.family(1, fmt::format("F{:02}", i), i);
  const std::string families = sectionOf(page(), "families");
  EXPECT_THAT(families, HasSubstr("Resto (3 familias): 6,00 €, 5,0 %"));  // 1 + 2 + 3 of 120
  EXPECT_THAT(families, HasSubstr("F04: 4,00 €"));
  EXPECT_THAT(families, Not(HasSubstr("F03")));
}

TEST_F(DayPageTest, TopTenAreTheLargestByMoneyAndByUnits) {
  shop_.ticket(1, kDay, "10:00", 1);
  for (int i = 1; i <= 12; ++i) {
    shop_.line(1, fmt::format("A{:02}", i), fmt::format("Art {:02}", i), 13 - i, i);
  }
  const std::string made = page();
  EXPECT_THAT(sectionOf(made, "top-amount"), HasSubstr("Art 12"));
  EXPECT_THAT(sectionOf(made, "top-amount"), Not(HasSubstr("Art 02")));
  EXPECT_THAT(sectionOf(made, "top-units"), HasSubstr("Art 01"));
  EXPECT_THAT(sectionOf(made, "top-units"), Not(HasSubstr("Art 11")));
}

TEST_F(DayPageTest, MoneyGivenBackIsListedAndLeftOutOfTheRing) {
  shop_.ticket(1, kDay, "10:00", 10);
  shop_.ticket(2, kDay, "12:00", -4);
  shop_.closing(1, kDay, "001", 0, 6, 6);
  shop_.payment(1, "1", 10);
  shop_.payment(1, "2", -4);
  const std::string payments = sectionOf(page(), "payments");
  EXPECT_THAT(payments, HasSubstr("stroke-dasharray=\"100.000 0.000\""));
  EXPECT_THAT(payments, HasSubstr("-4,00 €"));
  EXPECT_EQ(payments.find("slice c1"), std::string::npos);
}

TEST_F(DayPageTest, NeedsNoNetworkAndNoScript) {
  shop_.ticket(1, kDay, "10:00", 10);
  const std::string made = page();
  for (const char* foreign : {"http:", "https:", "<script", "<link", "<img", "url(", "@import"}) {
    EXPECT_THAT(made, Not(HasSubstr(foreign)));
  }
}

TEST_F(DayPageTest, ElementsAreClosedInOrder) {
  shop_.ticket(1, kDay, "10:00", 10);
  shop_.line(1, "A", "Uno", -1, -10);
  shop_.closing(1, kDay, "001", 0, 10, 10);
  shop_.closing(2, kDay, "001", 0, 0, 0);
  shop_.family(1, "Pan", 10);
  shop_.payment(1, "1", 10);
  shop_.tax(1, 21, 8, 2);
  std::string made = contentOf(writeDayPage(kFriday, Date::of(2026, 11, 21)));
  // The void elements of the head are the only ones that XML would want closed.
  made = std::regex_replace(made, std::regex("<meta[^>]*>"), "");
  pugi::xml_document document;
  const auto result = document.load_string(made.c_str());
  EXPECT_TRUE(result) << result.description() << " at "
                      << made.substr(static_cast<std::size_t>(result.offset), 80);
}

}  // namespace
}  // namespace tavelor::flows
