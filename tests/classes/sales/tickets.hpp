// SPDX-License-Identifier: MIT
// A shop with tickets, for the tests of their classes.
#pragma once

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/sales/tickets.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

inline Settings tillSettings(const std::string& locale) {
  Settings settings = fastSettings();
  settings.locale = locale;
  return settings;
}

/// 5 March 2026, whose day number is 46086.
class TicketShop {
 public:
  static constexpr int kDocuments = 3;

  explicit TicketShop(const Settings& settings = fastSettings()) : shop(settings) {
    shop.apartment().clock().fix(Date::of({2026, 3, 5, 14, 5, 9}));
  }

  /// A ticket of series A, till 01, employee 001 and today, then what `assignments` say.
  void add(int number, const std::string& assignments = {}, const std::string& table = "Tickets") {
    const std::string key = std::to_string(number);
    run("INSERT INTO " + table + " (Numero, Serie, Fecha, Codigo, Caja, Empleado) VALUES (" + key +
        ", 'A', #03/05/2026#, '00012', '01', '001')");
    if (!assignments.empty()) {
      run("UPDATE " + table + " SET " + assignments + " WHERE Numero = " + key);
    }
  }
  void addToHistory(int number, const std::string& assignments = {}) {
    add(number, assignments, "HTickets");
  }
  void run(const std::string& statement) { shop.run(statement, kDocuments); }
  /// First column of the first row, as text; "Null" for null, "" without a row.
  std::string text(const std::string& statement) { return shop.text(statement, kDocuments); }
  /// A column of a live ticket.
  std::string column(const std::string& name, int number = 1) {
    return text("SELECT " + name + " FROM Tickets WHERE Numero = " + std::to_string(number));
  }
  std::string count(const std::string& table) { return text("SELECT Count(*) FROM " + table); }

  std::string shown(const Variant& value) {
    if (value.isNull()) return "Null";
    return value.isEmpty() ? "Empty" : value.toText(shop.apartment().locale());
  }
  std::vector<std::string> shown(const std::vector<Variant>& values) {
    std::vector<std::string> texts;
    for (const Variant& value : values) texts.push_back(shown(value));
    return texts;
  }
  /// A field of the current row of a class.
  std::string field(const RecordClass& of, std::string_view name) {
    return shown(of.DataMember("Primary")->Field(name).Value());
  }
  /// First column of all rows of a class.
  std::vector<std::string> firstColumn(RecordClass& of) {
    std::vector<std::string> found;
    const RecordsetPtr rows = of.DataMember("Primary");
    for (of.MoveFirst(); !rows->Eof(); rows->MoveNext()) {
      found.push_back(shown(rows->Field(0).Value()));
    }
    return found;
  }

  Shop shop;
  ClsTickets tickets;
};

}  // namespace tavelor::test
