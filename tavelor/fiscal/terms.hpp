// SPDX-License-Identifier: MIT
// What a till says of the record that its sale is to have.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// The document that somebody wants of a sale.
enum class Form : std::uint8_t {
  kTicket,           ///< names nobody, unless it must: above 3,000 EUR it is an invoice
  kQualifiedTicket,  ///< a ticket with the customer's number on it
  kInvoice,          ///< a full one
};

/// How the law's record of a sale is to be. It means nothing in a shop that keeps no records.
struct Terms {
  Form form = Form::kTicket;
  Party recipient{};                    ///< who buys; without a name it is the sale's customer
  std::optional<Operation> zeroRate{};  ///< of what is sold at 0 percent; none: as the settings say
  /// Of a return: R1 to R4, where an invoice comes back. A ticket's is always R5.
  InvoiceKind cause = InvoiceKind::kRectifying1;
};

/// A party by the number that somebody has typed: a Spanish one, or one of another country of the
/// Union with its prefix.
Party partyOf(std::string_view name, std::string_view typedNumber);

}  // namespace tavelor::fiscal
