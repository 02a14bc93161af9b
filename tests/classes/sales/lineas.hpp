// SPDX-License-Identifier: MIT
// A shop with lines of tickets, for the tests of their class.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/number_text.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

inline Settings lineSettings(const std::string& locale) {
  Settings settings = fastSettings();
  settings.locale = locale;
  return settings;
}

class LineShop {
 public:
  static constexpr int kDocuments = 3;

  explicit LineShop(const Settings& settings = fastSettings()) : shop(settings) {}

  /// A row as the table holds it; Null where nothing is told.
  struct Row {
    int id = 1;
    std::string ticket = "1234";
    std::string code = "'A1'";
    std::string description = "'Café molido'";
    std::string quantity = "1";
    std::string price = "10";
    std::string discount = "0";
    std::string rate = "21";
    std::string amount = "100";
    std::string lot = "Null";
    std::string family = "'BEB'";
    int closing = 0;
  };
  void store(const Row& row, const std::string& table = "Tickets_Lineas") {
    const bool live = table == "Tickets_Lineas";
    run("INSERT INTO " + table + " (" + (live ? "ID, " : "") +
        "Numero, Codigo, Descripcion, Cantidad, Precio, DTO, IVA, Importe, Lote, Familia, Cierre) "
        "VALUES (" +
        (live ? std::to_string(row.id) + ", " : "") + row.ticket + ", " + row.code + ", " +
        row.description + ", " + row.quantity + ", " + row.price + ", " + row.discount + ", " +
        row.rate + ", " + row.amount + ", " + row.lot + ", " + row.family + ", " +
        std::to_string(row.closing) + ")");
  }
  void run(const std::string& statement) { shop.run(statement, kDocuments); }
  /// First column of the first row, as text; "Null" for null.
  std::string text(const std::string& statement) { return shop.text(statement, kDocuments); }
  std::string column(const std::string& name, int id) {
    return text("SELECT " + name + " FROM Tickets_Lineas WHERE ID = " + std::to_string(id));
  }
  std::string count(const std::string& table = "Tickets_Lineas") {
    return text("SELECT Count(*) FROM " + table);
  }

  std::string shown(const Variant& value) {
    if (value.isNull()) return "Null";
    return value.isEmpty() ? "Empty" : value.toText(shop.apartment().locale());
  }
  std::vector<std::string> shown(const std::vector<Variant>& values) {
    std::vector<std::string> texts;
    for (const Variant& value : values) texts.push_back(shown(value));
    return texts;
  }

  /// Opens the lines of a ticket.
  void open(int ticket = 1234) { lines.IniciaRs({}, "seleccion", std::int32_t{ticket}); }
  Recordset& rows() { return *lines.DataMember("Primary"); }
  std::string field(std::string_view name) { return shown(rows().Field(name).Value()); }

  Shop shop;
  ClsTicketsLineas lines;
};

}  // namespace tavelor::test
