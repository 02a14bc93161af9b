// SPDX-License-Identifier: MIT
// How a sale is paid: the shop's payment methods, as a till and a file name them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor {
class Connection;
}

namespace tavelor::flows {

/// One of the shop's payment methods.
struct PaymentMethod {
  std::string code;
  std::string name;     ///< as people say it
  bool isCash = false;  ///< it goes into the till, and counts for its balance
  /// Paid later: against a receipt that is due after some days. Until then the customer owes the
  /// sale. A receipt alone says nothing: new methods make one unless somebody takes it off.
  bool isOnCredit = false;
};

/// The methods of the main database, as they are when it is made.
class PaymentMethods {
 public:
  /// Over a connection of its own.
  PaymentMethods() : PaymentMethods(std::shared_ptr<Connection>()) {}
  /// Over `connection`.
  explicit PaymentMethods(std::shared_ptr<Connection> connection);

  /// By code, or by name in whatever case. The word "credit", in English or in Spanish, is the
  /// first method that is paid later, where no method has it as code or name.
  const PaymentMethod* find(std::string_view word) const;
  /// By code alone, to the letter.
  const PaymentMethod* byCode(std::string_view code) const;

 private:
  std::vector<PaymentMethod> methods_;
};

}  // namespace tavelor::flows
