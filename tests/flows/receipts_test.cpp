// SPDX-License-Identifier: MIT
// Receipts and slips: what stands on them, and that it adds up.
#include <cmath>
#include <map>
#include <random>
#include <regex>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tests/flows/lives.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kMain = 1;
constexpr int kDocuments = 3;

/// Cents of "1273,89" as receipts write it.
std::int64_t cents(std::string text) {
  std::erase(text, ',');
  return std::stoll(text);
}

/// Base and tax of all rates, in cents.
struct Taxes {
  std::map<std::string, std::pair<std::int64_t, std::int64_t>> byRate;
  std::int64_t sum() const {
    std::int64_t all = 0;
    for (const auto& [rate, parts] : byRate) all += parts.first + parts.second;
    return all;
  }
};

Taxes taxesOf(const std::vector<std::string>& lines) {
  static const std::regex kLine(R"( *(\S+)% IVA de +(-?\d+,\d\d) +(-?\d+,\d\d))");
  Taxes taxes;
  std::smatch part;
  for (const std::string& line : lines) {
    if (!std::regex_match(line, part, kLine)) continue;
    taxes.byRate[part[1]] = {cents(part[2]), cents(part[3])};
  }
  return taxes;
}

/// Behind a label.
std::int64_t amountOf(const std::vector<std::string>& lines, const std::string& label) {
  for (const std::string& line : lines) {
    if (line.starts_with(label)) return cents(line.substr(line.find_last_of(' ') + 1));
  }
  ADD_FAILURE() << "there is no " << label;
  return 0;
}

class ReceiptsTest : public ::testing::Test {
 protected:
  ReceiptsTest() {
    setIssuer({.name = "Colmado Rius",
               .fiscalNumber = "12345678Z",
               .address = "Carrer Major 1",
               .place = "Lleida"});
  }
  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }

  test::Shop place_;
  OpenedShop opened_;
  Shop shop_;
};

TEST_F(ReceiptsTest, AReceiptReadsTheSameLiveAndInHistory) {
  Sale sale = saleOf("V1");
  sale.lines = {{.code = "PAN",
                 .description = "Barra d'avui muy larga",
                 .family = "PAN",
                 .quantity = 2,
                 .price = 1.21},
                {.code = "LECHE", .description = "Leche", .quantity = 3, .price = 1.04, .tax = 4},
                {.code = "QUESO",
                 .description = "Queso",
                 .quantity = 0.335,
                 .price = 10,
                 .tax = 4,
                 .discount = 12.5}};
  sale.delivered = 10;
  sale.customer = "17850";
  sale.name = "Núria";
  sale.comment = "Sin bolsa";
  shop_.sell(sale);
  const std::vector<std::string> live = ticketText(1);
  shop_.close("01", kDay);

  EXPECT_THAT(live, ElementsAre("Colmado Rius", "NIF 12345678Z", "Carrer Major 1", "Lleida",
                                "Ticket A/1          20/11/2026", "Caja 01                  10:32",
                                "Ref. V1", "Núria", "------------------------------",
                                "    2 Barra d'avui m      2,42", "    3 Leche               3,12",
                                "0,335 Queso               2,93", "      10,00 - 12,5%",
                                "------------------------------", "TOTAL                     8,47",
                                "Entregado                10,00", "Cambio                    1,53",
                                "   4% IVA de      5,82     0,23",
                                "  21% IVA de      2,00     0,42", "Sin bolsa"));
  EXPECT_EQ(ticketText(1), live);
  EXPECT_THAT(ticketText(2), IsEmpty());
}

TEST_F(ReceiptsTest, ASlipNamesFamiliesAndPaymentsWithTwoDecimals) {
  Sale sale = saleOf("V1");
  sale.lines = {
      {.code = "PAN", .description = "Barra", .family = "001", .quantity = 2, .price = 1.1}};
  shop_.sell(sale);
  shop_.close("01", kDay);
  EXPECT_THAT(slipText(1),
              ElementsAre("Colmado Rius", "NIF 12345678Z", "Carrer Major 1", "Lleida",
                          "Cierre de Caja 1", "Fecha               20/11/2026",
                          "Caja                        01", "Tickets                   2,20",
                          "Alb./Fact.                0,00", "Total Cierre              2,20",
                          "S. Inicio                 0,00", "S. Fin                    2,20",
                          "-- Familias ------------------", "General                   2,20",
                          "-- Formas de pago ------------", "Contado                   2,20",
                          "-- Impuestos -----------------", "  21% IVA de      1,82     0,38"));
  EXPECT_THAT(slipText(2), IsEmpty());
}

TEST_F(ReceiptsTest, BaseAndTaxOfEachTicketAndOfTheClosingAddUpToTheTotal) {
  constexpr int kTickets = 150;
  const std::vector<double> rates = {0, 4, 10, 21};
  std::mt19937 dice(20261120);  // NOLINT: the same tickets each time
  const auto below = [&](unsigned most) { return static_cast<double>(dice() % most); };
  for (int ticket = 1; ticket <= kTickets; ++ticket) {
    Sale sale = saleOf(fmt::format("V{}", ticket));
    sale.lines.clear();
    const auto lines = 1 + dice() % 6;
    for (unsigned at = 0; at < lines; ++at) {
      sale.lines.push_back({.code = fmt::format("A{}", dice() % 9),
                            .description = "Artículo",
                            .quantity = (1 + below(4000)) / (dice() % 2 == 0 ? 1000 : 100),
                            .price = (1 + below(3000)) / 100,
                            .tax = rates[dice() % rates.size()],
                            .discount = dice() % 4 == 0 ? below(50) : 0});
      if (dice() % 9 == 0) sale.lines.back().quantity *= -1;
    }
    shop_.sell(sale);
    const std::vector<std::string> receipt = ticketText(ticket);
    EXPECT_EQ(taxesOf(receipt).sum(), amountOf(receipt, "TOTAL")) << ticket;
    EXPECT_EQ(amountOf(receipt, "TOTAL"), std::llround(sale.total() * 100)) << ticket;
  }
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets WHERE Base + Importe_Impuestos <> Total"), "0");

  std::map<std::string, std::pair<std::int64_t, std::int64_t>> sums;
  for (int ticket = 1; ticket <= kTickets; ++ticket) {
    for (const auto& [rate, parts] : taxesOf(ticketText(ticket)).byRate) {
      sums[rate].first += parts.first;
      sums[rate].second += parts.second;
    }
  }
  const Closing closing = shop_.close("01", kDay).value();
  const std::vector<std::string> slip = slipText(closing.number);
  EXPECT_EQ(taxesOf(slip).byRate, sums) << "the slip is the sum of the receipts";
  EXPECT_EQ(taxesOf(slip).sum(), std::llround(closing.total * 100));
  EXPECT_EQ(main("SELECT Base + Importe_Impuestos - Total FROM Cierres"), "0");
}

TEST_F(ReceiptsTest, AShopWithoutANameGoesByItsFolder) {
  setIssuer({.name = ""});
  EXPECT_EQ(issuer().name,
            std::filesystem::path(place_.apartment().installation().folder()).filename().string());
  setIssuer({.name = "", .company = "Rius SL"});
  EXPECT_EQ(issuer().name, "Rius SL");
  place_.run("DELETE FROM Tipos_Documento");
  EXPECT_EQ(test::errorOf([] { setIssuer({.name = "X"}); }), errors::kNoCurrentRecord);
}

// ---------------------------------------------------------------------------------------------
// Prices

class PriceQuestionTest : public ReceiptsTest {
 protected:
  PriceQuestionTest() {
    place_.run(
        "INSERT INTO Articulos (Codigo, Descripcion, Familia, Tarifa_A, Tarifa_B, Descuento, "
        "Impuesto) VALUES ('PAN', 'Barra', '001', 1.10, 0.90, True, '3')");
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Tarifa, Descuento) VALUES ('C1', -1, 'B', 10)");
  }
  SaleLine ask(PriceQuestion question) { return shop_.price(question); }
};

TEST_F(PriceQuestionTest, OneCallGivesALineThatCanBeSold) {
  const SaleLine line = ask({.article = "PAN", .customer = "C1", .quantity = 3});
  EXPECT_EQ(line.price, 0.9);
  EXPECT_EQ(line.discount, 10);
  EXPECT_EQ(line.tax, 4);
  EXPECT_EQ(line.family, "001");
  EXPECT_EQ(line.amount(), 2.43);
  Sale sale = saleOf("V1");
  sale.lines = {line};
  EXPECT_EQ(shop_.sell(sale), 1);
}

TEST_F(PriceQuestionTest, TheTariffAndTheFamilyMayBeAskedFor) {
  EXPECT_EQ(ask({.article = "PAN"}).price, 1.1);
  EXPECT_EQ(ask({.article = "PAN", .tariff = "B"}).price, 0.9);
  place_.run(
      "INSERT INTO Articulos_Precios_Ventas (Id, Cliente, Codigo, Familia, Precio) VALUES (1, "
      "'C1', "
      "'0', 'FIESTA', 0.75)");
  EXPECT_EQ(ask({.article = "PAN", .customer = "C1", .family = "FIESTA"}).price, 0.75);
}

TEST_F(PriceQuestionTest, AnOfferRunsUntilItsDayWhicheverDayIsAskedFor) {
  place_.run(
      "INSERT INTO Articulos_Precios_Ventas (Id, Cliente, Codigo, Familia, Precio, Fecha) VALUES "
      "(1, 'C1', 'PAN', '0', 0.5, #11/20/2026#)");
  EXPECT_EQ(ask({.article = "PAN", .customer = "C1"}).price, 0.9) << "today it is over";
  const SaleLine onItsDay = ask({.article = "PAN", .customer = "C1", .day = kDay});
  EXPECT_EQ(onItsDay.price, 0.5);
  EXPECT_EQ(onItsDay.discount, 0);
  EXPECT_EQ(place_.apartment().clock().today(), Date(kDay.days() + 1)) << "and it is today again";
}

TEST_F(PriceQuestionTest, AnArticleWithoutAPriceIsTold) {
  EXPECT_EQ(test::errorOf([&] { ask({.article = "X"}); }), errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { ask({.article = "PAN", .quantity = 0}); }), errors::kInvalidCall);
}

}  // namespace
}  // namespace tavelor::flows
