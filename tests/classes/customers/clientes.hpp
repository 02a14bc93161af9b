// SPDX-License-Identifier: MIT
// A shop with customers, for the tests of their classes.
#pragma once

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/customers/clientes.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tests/classes/corpus.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::test {

inline Settings customerSettings(const std::string& locale) {
  Settings settings = fastSettings();
  settings.locale = locale;
  return settings;
}

/// Customers of a shop whose main database is on a server.
inline Settings customerServer() {
  Settings settings = fastSettings();
  settings.databases.front().servesAsServer = true;
  return settings;
}

/// The statement of that name in the corpus: `Insertar` is "ClsClientes.Insertar".
inline std::string corpus(const std::string& name) {
  return corpusStatement({"customers-clsclientes", "customers-clsclientes-fiscal",
                          "customers-clsclientes-invoicing", "customers-clsclientes-bulk"},
                         "ClsClientes." + name);
}

/// Answers questions as told and keeps what was shown.
class Till final : public PromptHandler {
 public:
  explicit Till(bool yes) : yes_(yes) {}
  void message(const Prompt& prompt) override { messages.push_back(prompt); }
  Variant askInput(const std::string& /*prompt*/) override { return ""; }
  bool question(const Prompt& prompt) override {
    questions.push_back(prompt);
    return yes_;
  }
  void beep() override {}

  std::vector<Prompt> messages;
  std::vector<Prompt> questions;

 private:
  bool yes_;
};

/// 5 March 2026. No period has a row of counters, so the length of codes is not fixed.
class CustomerShop {
 public:
  explicit CustomerShop(const Settings& settings = fastSettings()) : shop(settings) {
    shop.apartment().clock().fix(Date::of(2026, 3, 5));
  }

  /// A customer in use, then what `assignments` say.
  void add(const std::string& code, const std::string& assignments = {}) {
    shop.run("INSERT INTO Clientes (Codigo, Activo, Razon_Social) VALUES ('" + code +
             "', -1, 'Cliente " + code + "')");
    if (!assignments.empty()) set(code, assignments);
  }
  void set(const std::string& code, const std::string& assignments) {
    shop.run("UPDATE Clientes SET " + assignments + " WHERE Codigo = '" + code + "'");
  }
  /// A column of a customer, as text; "Null" for null.
  std::string column(const std::string& name, const std::string& code = "00012") {
    return shop.text("SELECT " + name + " FROM Clientes WHERE Codigo = '" + code + "'");
  }
  /// The length of customer codes in the session's period; "Null" for none.
  void setDigits(const std::string& ofCustomers) {
    shop.run("DELETE FROM Numeradores");
    shop.run(
        "INSERT INTO Numeradores (Codigo, Periodo, Digitos_Articulos, Digitos_Clientes, "
        "Digitos_Proveedores) VALUES ('001', '', 4, " +
        ofCustomers + ", 4)");
  }
  std::shared_ptr<Till> answer(bool yes) {
    auto till = std::make_shared<Till>(yes);
    shop.apartment().setPromptHandler(till);
    return till;
  }
  /// What `action` sends to the database.
  template <typename Action>
  std::vector<std::string> traceOf(Action&& action) {
    shop.statements();
    action();
    return shop.statements();
  }
  std::string text(const Variant& value) { return value.toText(shop.apartment().locale()); }

  Shop shop;
  ClsClientes customers;
};

}  // namespace tavelor::test
