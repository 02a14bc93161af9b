// SPDX-License-Identifier: MIT
// What the shop asks of a customer for an article.
#include "tools/shop/prices.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tools/shop/customers.hpp"
#include "tools/shop/rows.hpp"

namespace tavelor::shop {

namespace {

constexpr double kUntouched = -1;  // no row grants a price below zero

/// What a look-up of a customer's own prices grants.
struct Granted {
  bool applies = false;
  double price = kUntouched;
  float percent = 0;
};

}  // namespace

bool Prices::readConditions(const std::string& customer, Conditions& to) {
  Statement statement("SELECT Tarifa, Descuento FROM Clientes WHERE Codigo = ");
  statement << sqlText(customer);
  const Rows row(selector::kMain, statement, main_);
  if (!row.hasRow()) return false;
  if (const std::string tariff = row.text("Tarifa"); !tariff.empty()) to.tariff = tariff;
  to.discount = std::max(0.0, row.number("Descuento"));
  return true;
}

Prices::Conditions Prices::conditionsOf(const std::string& customer) {
  Conditions conditions{.customer = customer};
  const bool isKnown = !customer.empty() && readConditions(customer, conditions);
  if (!isKnown) readConditions(std::string(kWalkIn), conditions);
  return conditions;
}

std::string Prices::fill(SaleLine& line, const Conditions& conditions) {
  const std::string code = doubledQuotes(line.code);
  Statement statement(
      "SELECT Descripcion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, Descuento, Impuesto FROM "
      "Articulos WHERE Codigo = '");
  statement << spliced(code) << "'";
  const Rows article(selector::kMain, statement, main_);
  if (!article.hasRow()) {
    return fmt::format("there is no price, and the shop has no article {}", line.code);
  }
  const std::string family = article.text("Familia");
  const std::string owner = doubledQuotes(conditions.customer);
  const float usual = article.flag("Descuento") ? static_cast<float>(conditions.discount) : 0.0F;
  Granted granted{.percent = usual};
  if (!conditions.customer.empty()) {
    granted.applies =
        ofCustomers_.GetPrecioVenta(code, owner, granted.price, granted.percent, main_);
    if (!granted.applies) {
      granted = {.percent = usual};
      granted.applies = !family.empty() &&
                        ofCustomers_.GetPrecioVentaFamilia(doubledQuotes(family), owner,
                                                           granted.price, granted.percent, main_);
    }
  }
  if (granted.price == kUntouched) {
    const std::string& tariff = conditions.tariff;
    const bool isColumn = tariff == "A" || tariff == "B" || tariff == "C";
    granted.price = isColumn ? article.number("Tarifa_" + tariff)
                             : articles_.GetPrecioTarifa(code, doubledQuotes(tariff), main_);
    if (granted.price <= 0) {
      return fmt::format("there is no price, and the article has none in tariff {}", tariff);
    }
  }
  line.price = granted.price;
  // Percentages are kept in single precision: 12,3 would come as 12,300000190734863.
  line.discount = roundHalfAway(static_cast<double>(granted.percent), 4);
  line.wantsPrice = false;
  if (line.description.empty()) line.description = article.text("Descripcion");
  if (line.family.empty()) line.family = family;
  if (line.tax == kTaxOfArticle) {
    const std::string tax = article.text("Impuesto");
    line.tax = tax.empty() ? kGeneralTax : articles_.GetPorcentIva(doubledQuotes(tax), main_);
  }
  return {};
}

}  // namespace tavelor::shop
