// SPDX-License-Identifier: MIT
// What a sale may name: the shop's tills, payment methods and tax rates.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "tavelor/flows/payments.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// Read once, and again where something is asked for that was not there: another program may have
/// added it since.
class Known {
 public:
  explicit Known(ConnectionPtr main) : main_(std::move(main)) {}

  bool hasTill(const std::string& till);
  /// Nothing where the shop does not have it.
  const PaymentMethod* payment(const std::string& code);
  /// Percent.
  bool hasTax(double rate);
  /// To be read again by the next question.
  void forget();

  /// For a message: "001, 002".
  std::string tills() const;
  std::string taxes() const;

 private:
  void readTills();
  void readTaxes();

  ConnectionPtr main_;
  std::optional<std::vector<std::string>> tills_;
  std::optional<std::vector<double>> taxes_;
  std::optional<PaymentMethods> payments_;
};

}  // namespace tavelor::flows
