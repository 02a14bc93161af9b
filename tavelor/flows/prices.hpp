// SPDX-License-Identifier: MIT
// What the shop asks of a customer for an article.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_precios_ventas.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {
class Rows;
}

namespace tavelor::flows {

/// Prices of lines that bring none, in this order:
///
/// 1. the customer's own price of the article, where it applies that day: an offer that runs is
/// net,
///    any other row leaves the customer's discount or grants its own percentage;
/// 2. the customer's price of the article's family;
/// 3. the article's price in the customer's tariff, less the customer's discount where the article
///    admits one.
///
/// A row of 1 or 2 that grants a percentage without a price is over the price of 3. Who gives no
/// name, or one that the shop does not know, buys as the walk-in customer does, or by tariff A
/// where there is none. Tariffs hold the tax; the surcharge of a customer who is under it, by the
/// article's tax, comes on top.
class Prices {
 public:
  /// Over a connection to the main database.
  explicit Prices(ConnectionPtr main) : main_(std::move(main)) {}

  /// Who buys, and at what.
  struct Conditions {
    std::string customer;          ///< "" for nobody
    std::string tariff = "A";      ///< its price, where no other one is granted
    double discount = 0;           ///< percent
    bool hasSurcharge = false;     ///< the equivalence surcharge is his
    std::string family = {};       ///< "" for the article's
    std::optional<Date> day = {};  ///< on which offers must run; today, where none is given
  };
  /// Of a customer by his code, or of who is anybody.
  Conditions conditionsOf(const std::string& customer);

  /// Gives a line its price and its discount and, where it has none, its text, family and tax. What
  /// is wrong, or "": then the line stays as it was.
  std::string fill(SaleLine& line, const Conditions& conditions);

 private:
  bool readConditions(const std::string& customer, Conditions& to);
  bool grant(const std::string& code, const std::string& family, const Conditions& conditions,
             double& price, float& percent);

  ConnectionPtr main_;
  clsArticulos articles_;
  ClsArticulosPreciosVentas ofCustomers_;
};

/// The equivalence surcharge on what is sold of an article at a tax (percent): that of the
/// article's tax by the catalogue, where it is that tax; else of the first one of that rate; 0
/// where there is none.
double surchargeRateOf(const std::string& article, double tax, const ConnectionPtr& main);

/// Of a line that was sold, from its ticket's row (Recargo, Importe_Recargo) and its own (Codigo,
/// IVA). Lines keep no surcharge: where those of a ticket differ, they are the catalogue's.
double surchargeRateOf(const Rows& ticket, const Rows& line, const ConnectionPtr& main);

}  // namespace tavelor::flows
