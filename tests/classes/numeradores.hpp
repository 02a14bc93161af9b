// SPDX-License-Identifier: MIT
// A shop in the year 2026 for the tests of counters and periods.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

/// The three series of a family.
struct Triple {
  double a = 0;
  double b = 0;
  double c = 0;
  friend bool operator==(const Triple&, const Triple&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Triple& triple) {
    return out << triple.a << ", " << triple.b << ", " << triple.c;
  }
};

/// What a caller's variables hold before a call, to see which of them it writes.
inline constexpr Triple kPassed = {-1, -2, -3};

/// A family word, its columns without the letter of the series, its statement up to the table.
struct Family {
  const char* word;
  const char* columns;
  const char* select;
};

inline constexpr std::array kFamilies = {
    Family{"Pedidos", "Pedido_",
           "SELECT Pedido_a as Serie_a, Pedido_b as Serie_b , Pedido_c as Serie_c FROM "},
    Family{"Facturas_Proveedores", "Factura_Prov_",
           "SELECT Factura_Prov_a as Serie_a, Factura_Prov_b as Serie_b, Factura_Prov_c as "
           "Serie_c  FROM "},
    Family{"Pedidos_Clientes", "Pedido_Cli_",
           "SELECT Pedido_Cli_a as Serie_a, Pedido_Cli_b as Serie_b , Pedido_Cli_c as Serie_c "
           "FROM "},
    Family{"Albaranes", "Albaran_",
           "SELECT Albaran_a as Serie_a, Albaran_b as Serie_b, Albaran_c as Serie_c FROM "},
    Family{"Facturas", "Factura_",
           "SELECT Factura_a as Serie_a, Factura_b as Serie_b , Factura_c as Serie_c FROM "},
    Family{"Tickets", "Ticket_",
           "SELECT Ticket_a as Serie_a, Ticket_b as Serie_b, Ticket_c as Serie_c FROM "},
    Family{"Presupuestos", "Presupuesto_",
           "SELECT Presupuesto_a as Serie_a, Presupuesto_b as Serie_b, Presupuesto_c as Serie_c "
           "FROM "},
    Family{"Ordenes", "Orden_",
           "SELECT Orden_a as Serie_a, Orden_b as Serie_b, Orden_c as Serie_c FROM "},
};

inline Settings settingsOf(const std::string& locale) {
  Settings settings = fastSettings();
  settings.locale = locale;
  return settings;
}

/// 21 November 2026; the session's period is 2026 and has the row 001, with all counters null.
class NumberingShop {
 public:
  explicit NumberingShop(const Settings& settings = fastSettings()) : shop(settings) {
    setToday(2026);
    clsNumeradores::setCurrentPeriod("2026");
    addPeriod("001", "2026");
  }

  void setToday(int year) { shop.apartment().clock().fix(Date::of(year, 11, 21)); }
  void addPeriod(const std::string& code, const std::string& period) {
    shop.run("INSERT INTO Numeradores (Codigo, Periodo) VALUES ('" + code + "', '" + period + "')");
  }
  /// Sets columns of a period's rows.
  void set(const std::string& assignments, const std::string& period = "2026") {
    shop.run("UPDATE Numeradores SET " + assignments + " WHERE Periodo = '" + period + "'");
  }
  /// A column of a row, as text; "Null" for null.
  std::string column(const std::string& name, const std::string& code = "001") {
    return shop.text("SELECT " + name + " FROM Numeradores WHERE Codigo = '" + code + "'");
  }
  /// The columns of a family, "5, 10000, Null".
  std::string stored(const std::string& columns, const std::string& code = "001") {
    return column(columns + "a", code) + ", " + column(columns + "b", code) + ", " +
           column(columns + "c", code);
  }

  Triple next(std::string_view family, Triple numbers = kPassed) {
    counters.GetNewNum(family, numbers.a, numbers.b, numbers.c);
    return numbers;
  }
  Triple nextOf(std::string_view family, std::string_view period, Triple numbers = kPassed) {
    counters.GetNewNumPeriodo(family, period, numbers.a, numbers.b, numbers.c);
    return numbers;
  }
  void write(std::string_view family, const Triple& numbers) {
    counters.SetNewNum(family, numbers.a, numbers.b, numbers.c);
  }

  Shop shop;
  clsNumeradores counters;
};

}  // namespace tavelor::test
