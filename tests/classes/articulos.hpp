// SPDX-License-Identifier: MIT
// A shop with articles, for the tests of their classes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

inline Settings settingsWithLocale(const std::string& locale) {
  Settings settings = fastSettings();
  settings.locale = locale;
  return settings;
}

/// 5 March 2026. No period has a row of counters, so codes have six digits.
class ArticleShop {
 public:
  explicit ArticleShop(const Settings& settings = fastSettings()) : shop(settings) {
    shop.apartment().clock().fix(Date::of(2026, 3, 5));
  }

  /// A usable article of the default list, then what `assignments` say.
  void add(const std::string& code, const std::string& assignments = {}) {
    shop.run("INSERT INTO Articulos (Codigo, Referencia, Descripcion, Lista, Activo) VALUES ('" +
             code + "', '" + code + "', 'Artículo " + code + "', 'PRC', True)");
    if (!assignments.empty()) set(code, assignments);
  }
  void set(const std::string& code, const std::string& assignments) {
    shop.run("UPDATE Articulos SET " + assignments + " WHERE Codigo = '" + code + "'");
  }
  /// A column of an article, as text; "Null" for null.
  std::string column(const std::string& name, const std::string& code = "A1") {
    return shop.text("SELECT " + name + " FROM Articulos WHERE Codigo = '" + code + "'");
  }
  /// The lengths of master codes in the session's period; "Null" for none.
  void setDigits(const std::string& ofArticles, const std::string& ofOthers = "5") {
    shop.run("DELETE FROM Numeradores");
    shop.run(
        "INSERT INTO Numeradores (Codigo, Periodo, Digitos_Articulos, Digitos_Clientes, "
        "Digitos_Proveedores) VALUES ('001', '', " +
        ofArticles + ", " + ofOthers + ", " + ofOthers + ")");
  }
  std::string text(const Variant& value) { return value.toText(shop.apartment().locale()); }

  Shop shop;
  clsArticulos articles;
};

}  // namespace tavelor::test
