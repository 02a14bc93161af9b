// SPDX-License-Identifier: MIT
// How a sale is paid: the shop's payment methods, as a till and a file name them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

struct PaymentMethod {
  std::string code;
  std::string name;
  bool isCash = false;
  /// Paid later: against a receipt that is due after some days. Until then the customer owes the
  /// sale. A receipt alone says nothing: new methods make one unless somebody takes it off.
  bool isOnCredit = false;
};

/// The methods of the main database, as they are when it is made.
class PaymentMethods {
 public:
  PaymentMethods() : PaymentMethods(ConnectionPtr()) {}
  explicit PaymentMethods(ConnectionPtr connection);

  /// By code, or by name in whatever case. The word "credit", in English or in Spanish, is the
  /// first method that is paid later, where no method has it as code or name.
  const PaymentMethod* find(std::string_view word) const;

 private:
  std::vector<PaymentMethod> methods_;
};

/// One method by its code; nothing where the shop does not have it.
std::optional<PaymentMethod> paymentMethod(const std::string& code, ConnectionPtr connection);

}  // namespace tavelor::flows
