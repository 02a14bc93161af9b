// SPDX-License-Identifier: MIT
// What the shop asks of a customer for an article.
#include "tavelor/flows/prices.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/flows/customers.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::flows {

namespace {

constexpr double kUntouched = -1;  // no row grants a price below zero

/// The classes compare offers with today: for as long as it lives, that is another day.
class AnotherDay {
 public:
  explicit AnotherDay(std::optional<Date> day)
      : clock_(Apartment::current().clock()), before_(clock_) {
    if (day) clock_.fix(*day);
  }
  ~AnotherDay() { clock_ = before_; }
  AnotherDay(const AnotherDay&) = delete;
  AnotherDay& operator=(const AnotherDay&) = delete;

 private:
  Clock& clock_;
  Clock before_;
};

}  // namespace

double surchargeRateOf(const std::string& article, double tax, const ConnectionPtr& main) {
  Statement ofArticle(
      "SELECT T.Impuesto, T.Recargo FROM Articulos AS A INNER JOIN Tipos_Impuesto AS T ON "
      "A.Impuesto = T.Codigo WHERE A.Codigo = ");
  ofArticle << sqlText(article);
  const Rows own(selector::kMain, ofArticle, main);
  if (own.hasRow() && own.number("Impuesto") == tax) return own.number("Recargo");
  Statement ofRate("SELECT Recargo FROM Tipos_Impuesto WHERE Impuesto = ");
  ofRate << spliced(sqlNumber(tax)) << " ORDER BY Codigo";
  const Rows any(selector::kMain, ofRate, main);
  return any.hasRow() ? any.number("Recargo") : 0;
}

double surchargeRateOf(const Rows& ticket, const Rows& line, const ConnectionPtr& main) {
  const double tax = line.number("IVA");
  if (ticket.number("Importe_Recargo") == 0 || tax == 0) return 0;
  const double ofAll = ticket.number("Recargo");
  return ofAll != 0 ? ofAll : surchargeRateOf(line.text("Codigo"), tax, main);
}

bool Prices::readConditions(const std::string& customer, Conditions& to) {
  Statement statement("SELECT Tarifa, Descuento, Recargo FROM Clientes WHERE Codigo = ");
  statement << sqlText(customer);
  const Rows row(selector::kMain, statement, main_);
  if (!row.hasRow()) return false;
  if (const std::string tariff = row.text("Tarifa"); !tariff.empty()) to.tariff = tariff;
  to.discount = std::max(0.0, row.number("Descuento"));
  to.hasSurcharge = row.flag("Recargo");
  return true;
}

Prices::Conditions Prices::conditionsOf(const std::string& customer) {
  Conditions conditions{.customer = customer};
  const bool isKnown = !customer.empty() && readConditions(customer, conditions);
  if (!isKnown) readConditions(std::string(kWalkIn), conditions);
  return conditions;
}

/// The customer's own price of the article, else of its family; false where neither applies.
bool Prices::grant(const std::string& code, const std::string& family, const Conditions& conditions,
                   double& price, float& percent) {
  if (conditions.customer.empty()) return false;
  const AnotherDay onThatDay(conditions.day);
  const std::string owner = doubledQuotes(conditions.customer);
  const double priceBefore = price;
  const float percentBefore = percent;
  if (ofCustomers_.GetPrecioVenta(code, owner, price, percent, main_)) return true;
  price = priceBefore;
  percent = percentBefore;
  return !family.empty() &&
         ofCustomers_.GetPrecioVentaFamilia(doubledQuotes(family), owner, price, percent, main_);
}

std::string Prices::fill(SaleLine& line, const Conditions& conditions) {
  const std::string code = doubledQuotes(line.code);
  Statement statement(
      "SELECT Descripcion, Familia, Tarifa_A, Tarifa_B, Tarifa_C, Descuento, Impuesto FROM "
      "Articulos WHERE Codigo = ");
  statement << sqlText(line.code);
  const Rows article(selector::kMain, statement, main_);
  if (!article.hasRow()) {
    return fmt::format("there is no price, and the shop has no article {}", line.code);
  }
  const std::string family =
      conditions.family.empty() ? article.text("Familia") : conditions.family;
  const float usual = article.flag("Descuento") ? static_cast<float>(conditions.discount) : 0.0F;
  double price = kUntouched;
  float percent = usual;
  if (!grant(code, family, conditions, price, percent)) {
    price = kUntouched;
    percent = usual;
  }
  if (price == kUntouched) {
    const std::string& tariff = conditions.tariff;
    const bool isColumn = tariff == "A" || tariff == "B" || tariff == "C";
    price = isColumn ? article.number("Tarifa_" + tariff)
                     : articles_.GetPrecioTarifa(code, doubledQuotes(tariff), main_);
    if (price <= 0) {
      return fmt::format("there is no price, and the article has none in tariff {}", tariff);
    }
  }
  line.price = price;
  line.isFree = price == 0;
  // Percentages are kept in single precision: 12,3 would come as 12,300000190734863.
  line.discount = roundHalfAway(static_cast<double>(percent), 4);
  line.wantsPrice = false;
  if (line.description.empty()) line.description = article.text("Descripcion");
  if (line.family.empty()) line.family = family;
  if (line.tax == kTaxOfArticle) {
    const std::string tax = article.text("Impuesto");
    line.tax = tax.empty() ? kGeneralTax : articles_.GetPorcentIva(doubledQuotes(tax), main_);
  }
  line.surcharge = conditions.hasSurcharge ? surchargeRateOf(line.code, line.tax, main_) : 0;
  return {};
}

}  // namespace tavelor::flows
