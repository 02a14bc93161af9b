// SPDX-License-Identifier: MIT
// Shops that keep records.
#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/breakdown.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/support/records.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::fiscal {

inline Settings settings() {
  return test::recordSettings(Date::of(2027, 1, 1));
}

/// A shop that keeps records, on 1 February 2027.
class BookTest : public ::testing::Test {
 protected:
  BookTest() {
    shop_.apartment().clock().fix(Date::of({2027, 2, 1, 10, 32, 5}));
    documents_ = DataSession().OpenConnection(3);
    book_ = std::make_unique<Book>(settings(), documents_);
  }

  void wait(int seconds) {
    const Date now = shop_.apartment().clock().now();
    shop_.apartment().clock().fix(Date(now.days() + seconds / 86'400.0));
  }
  std::string documents(const std::string& statement) { return shop_.text(statement, 3); }
  void change(const std::string& statement) { shop_.run(statement, 3); }

  /// In the text of a record, and nowhere else.
  void exchange(int position, std::string_view from, std::string_view to) {
    const std::string place = " WHERE Posicion = " + std::to_string(position);
    std::string record = documents("SELECT Registro FROM Fiscal_Registros" + place);
    record.replace(record.find(from), from.size(), to);
    change("UPDATE Fiscal_Registros SET Registro = '" + record + "'" + place);
  }

  /// A ticket of so much at 21 percent, and its record.
  Registration sell(double amount, std::optional<double> ticket = {}) {
    Registration record;
    record.invoice.day = Date::of(2027, 2, 1);
    record.description = "Venta";
    const TaxedAmount sold{amount, 21, 0};
    const Breakdown split = breakdownOf(std::span(&sold, 1), Operation::kTaxed);
    record.details = split.details;
    record.quota = split.quota;
    record.total = split.total;
    return add(std::move(record), ticket);
  }
  Registration add(Registration record, std::optional<double> ticket = {}) {
    documents_->BeginTrans();
    Registration stored = book_->add(std::move(record), ticket);
    documents_->CommitTrans();
    return stored;
  }

  test::Shop shop_;
  ConnectionPtr documents_;
  std::unique_ptr<Book> book_;
};

}  // namespace tavelor::fiscal
