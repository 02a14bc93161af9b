// SPDX-License-Identifier: MIT
// A shop with articles in stock, for the tests of the places that hold it.
#pragma once

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

/// Columns of an article that matter for its stock.
struct StockedArticle {
  double existencia = 0;
  double pendiente = 0;
  double medida = 1;
  bool actualizar = true;  ///< stock is kept
  bool restar = true;      ///< a sale takes off
  bool interno = false;
};

inline Settings serverSettings() {
  Settings settings = fastSettings();
  for (auto& database : settings.databases) database.servesAsServer = true;
  return settings;
}

inline Settings localeSettings(const std::string& locale) {
  Settings settings = fastSettings();
  settings.locale = locale;
  return settings;
}

class StockShop {
 public:
  explicit StockShop(const Settings& settings = fastSettings()) : shop(settings) {}

  void article(const std::string& code, const StockedArticle& article = {}) {
    const auto flag = [](bool on) { return on ? "True" : "False"; };
    const auto number = [](double value) { return sqlNumber(value); };
    shop.run(
        "INSERT INTO Articulos (Codigo, Descripcion, Existencia, Pendiente, Medida_Compra, "
        "Actualizar_Stock, Restar_Stock, Interno) VALUES ('" +
        code + "', 'Artículo " + code + "', " + number(article.existencia) + ", " +
        number(article.pendiente) + ", " + number(article.medida) + ", " +
        flag(article.actualizar) + ", " + flag(article.restar) + ", " + flag(article.interno) +
        ")");
  }
  /// A column of an article as text.
  std::string of(const std::string& code, const std::string& column) {
    return shop.text("SELECT " + column + " FROM Articulos WHERE Codigo = '" + code + "'");
  }
  /// The last statement that ran.
  std::string last() {
    const std::vector<std::string> all = shop.statements();
    return all.empty() ? "" : all.back();
  }

  Shop shop;
};

}  // namespace tavelor::test
